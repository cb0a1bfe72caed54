// Polygons: properties, bounding boxes, simplification, boolean operations.
//
// A polygon is an AcGePoint3dArray given as a ring whose last vertex repeats
// the first; only x and y are read unless a function says otherwise. A bulge
// list (AcGeDoubleArray) has one entry per vertex, entry i being the bulge of
// the edge i -> i+1; a bulge under tolValue is a straight edge. Output arrays
// are appended to, never cleared; inputs are never changed except by the
// functions documented as working in place.
#ifndef VORA_POLYGON_H
#define VORA_POLYGON_H

#include <cstdint>

#include "vora/arx.h"

// ---- Properties --------------------------------------------------------------

// Signed plan area, positive counter-clockwise. Closes the ring itself (the
// last vertex is paired with the first), so a repeated first vertex changes
// nothing. 0 for an empty list.
VORA_API double vora_polygonarea(const AcGePoint3dArray* pts);

// Signed area of a ring with bulged edges: vora_polygonarea of the chords,
// less the circular segment of every arc whose segment lies inside the chord
// polygon (an arc that bites in). Arcs that bulge outward are not added.
// Only edges i -> i+1, i < n-1, are looked at: the bulge of the last vertex is
// ignored. A bulge count other than the vertex count, or a single vertex,
// gives the chord area.
VORA_API double vora_polygonareaB(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges);

// Centroid of the ring's area over the edges i -> i+1, i < n-1 (pass the ring
// with its first vertex repeated), z = 0. One vertex gives NaN; at least one
// vertex is required.
VORA_API AcGePoint3d vora_polygonCentroid2D(const AcGePoint3dArray* pts);

// True when the ring (edges i -> i+1, i < n-1) turns counter-clockwise by more
// than tolValue: a degenerate or nearly zero-area ring is not counter-clockwise.
// At least one vertex is required.
VORA_API bool vora_ispolygonccw(const AcGePoint3dArray* pts);

// Reverses the vertex order and the bulges in place. Does nothing with fewer
// than 2 vertices or a bulge count other than the vertex count. The bulge of
// the last vertex is negated where it stands. For rings of 4k and 4k+3
// vertices this is the exact reversal; for 4k+1 vertices (k >= 1) the two
// middle bulges end up unchanged, and for 4k+2 vertices (k >= 1) the middle
// bulge keeps its sign.
VORA_API void vora_reversepolygon(AcGePoint3dArray* pts, AcGeDoubleArray* bulges);

// Even-odd containment of point (x, y) in the ring (edges i -> i+1, i < n-1).
// A point within *tolerance of an edge (and within its ends, widened by the
// same tolerance) gives onBoundaryResult. One vertex gives false.
VORA_API bool vora_ispointinpolygon(const AcGePoint3dArray* pts, const double* point, bool onBoundaryResult,
                                    const double* tolerance);

// Containment with bulged edges: the chord result, flipped when the point
// lies between an edge's chord and its arc. A bulge count other than the
// vertex count gives the chord result.
VORA_API bool vora_ispointinpolygonB(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges,
                                     const double* point, bool onBoundaryResult, const double* tolerance);

// ---- Bounding boxes ------------------------------------------------------------
//
// A box is a minimum corner and a maximum corner, three doubles each. The
// vora_get* functions start the box from their first input; the vora_add*
// functions only widen the box the caller holds. Widening is strict per axis.
// The arc of a bulged segment (|bulge| >= tolValue) adds the quadrant points
// of its circle that lie on it, and such a point is taken at height 0: it
// pulls the box's z range to include 0.

// Widens the box by p (x, y, z).
VORA_API void vora_addBoundingBoxP(const double* p, double* min, double* max);

// Box of two points.
VORA_API void vora_getBoundingBox2P(const double* p1, const double* p2, double* min, double* max);

// Box of three points.
VORA_API void vora_getBoundingBox3P(const double* p1, const double* p2, const double* p3, double* min, double* max);

// Box of all vertices; an empty list leaves min and max untouched.
VORA_API void vora_getBoundingBoxA(const AcGePoint3dArray* pts, double* min, double* max);

// Box of the bulged segment p1 -> p2.
VORA_API void vora_getBoundingBox2PB(const double* p1, const double* p2, double bulge, double* min, double* max);

// Widens the box by the bulged segment p1 -> p2.
VORA_API void vora_addBoundingBox2PB(const double* p1, const double* p2, double bulge, double* min, double* max);

// Box of a polyline with bulges: all vertices, then the arcs of the segments
// i -> i+1, i < n-1 (a closing segment is never added). The bulge count must
// equal the vertex count or be one less; otherwise nothing is written.
VORA_API void vora_getBoundingBoxAB(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, double* min,
                                    double* max);

// ---- Simplification --------------------------------------------------------------

// Removes in place, in one pass, every vertex that lies within tolPoint of the
// straight line through its neighbours, and every vertex that joins two arcs
// of one circle turning the same way (merged into one arc). The list is a ring
// when its first and last vertices are less than tolPoint apart (in space);
// then the first vertex may go too and the ring is closed again on the next
// one. bulges may be null (all edges straight); otherwise it must have one
// entry per vertex and is updated alongside. Without a bulge list the vertex
// that moves into a removed vertex's place is not examined again in this
// pass. Returns the number of vertices removed; 0 without change for an empty
// or single-vertex list or a bulge count other than the vertex count.
VORA_API int vora_simplifyPoly2D(AcGePoint3dArray* pts, AcGeDoubleArray* bulges);

// ---- Boolean operations ------------------------------------------------------------

// Union or intersection of two sets of closed straight-edged polygons, with the
// even-odd fill rule for both. flags must have bit 0x10 set (else 0 is returned
// and nothing is done); flags & 3 is 0 for a union, anything else for an
// intersection. reserved is ignored. subjects must hold at least one polygon
// with at least one vertex; its first vertex is the origin of the integer
// grid (1e-9 drawing units) the clipping runs on. clips may be empty.
// Each result ring is appended to result (when non-null) as a new vertex list.
// A result vertex within 1e-8 (in x and in y) of an input vertex is that input
// vertex exactly, height included (subjects searched before clips, first
// match wins). Any other vertex is placed on the nearest of the reference
// lines running from vertex (number of polygons in the set - 1) of each polygon
// to its vertex 0 and takes that vertex's height; when there is no such
// line, or its height is -0.5 or lower, the vertex keeps its clipped (x, y)
// with z = 0. Returns 1 on success, 0 when the clipping fails or gives
// nothing (result untouched). Coordinates whose offsets from the origin
// exceed the clipping library's integer range make it throw its own exception.
VORA_API int vora_polygonOperation(int flags, const AcArray<AcGePoint3dArray>* subjects, const void* reserved,
                                   const AcArray<AcGePoint3dArray>* clips, AcArray<AcGePoint3dArray>* result);

#endif
