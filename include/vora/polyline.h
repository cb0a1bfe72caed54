// Bulges, arcs and polylines: conversion, measures, tessellation, point insertion.
//
// A bulge is tan(theta/4), theta the included angle of the arc from the
// segment's first point to its second: positive counter-clockwise, negative
// clockwise, |b| = 1 a half circle, |b| < tolValue a straight segment. An arc
// in centre form is a centre record {cx, cy, signed radius} (negative radius:
// clockwise) and an angle pair {start, end} in [0, 2pi), always read
// counter-clockwise from start to end, so for a clockwise arc start is the
// angle of the segment's second point. Only x and y of input points are read
// here; every point written has z = 0 unless a function says otherwise.
#ifndef VORA_POLYLINE_H
#define VORA_POLYLINE_H

#include <cstdint>

#include "vora/arx.h"

// Bulge and end points of the arc {centreRadius, angles}. Writes *bulge and,
// when non-null, the arc's first point (startPt) and second point (endPt) in
// the direction of travel: for a negative radius startPt is the point at the
// end angle. With a null bulge nothing is written. A radius under tolValue
// gives bulge 0. Always returns 0.
VORA_API int vora_arc2bulge(const double* centreRadius, const double* angles, double* bulge, double* startPt,
                            double* endPt);

// Scalar form of vora_arc2bulge: returns the bulge and writes the non-null
// coordinate outputs (first point x, y, second point x, y).
VORA_API double vora_arc2bulgeNET(double cx, double cy, double radius, double startAngle, double endAngle,
                                  double* startX, double* startY, double* endX, double* endY);

// Arc of the segment p1 -> p2 with the given bulge. Writes centreRadius
// {cx, cy, signed radius} unless it is null, then, unless angles is null,
// three doubles {start, end, 0}. A bulge under tolValue gives radius 0 and
// angles 0; the centre of such a segment (or of coincident points) is not a
// number, so test the radius. Always returns 0.
VORA_API int vora_bulge2arc(const double* p1, const double* p2, double bulge, double* centreRadius, double* angles);

// Scalar form of vora_bulge2arc: returns the signed radius (0.0 for a bulge
// under tolValue) and writes the non-null centre and angle outputs.
VORA_API double vora_bulge2arcNET(double x1, double y1, double x2, double y2, double bulge, double* cx, double* cy,
                                  double* startAngle, double* endAngle);

// Splits the arc p1 -> p2 (bulge) into equal steps. The step comes from the
// mid ordinate when midOrdinate > 0, else from maxChord when > 0, and is
// replaced by maxAngle (radians, must be > 0) whenever maxAngle is not larger
// or no chord rule applies. A non-zero maxCount caps the number of steps,
// except when maxAngle set the step. Appends to out (when non-null) p1 as
// given, the interior points (z = 0) and p2 as given; writes the step's true
// mid ordinate to *deviation (when non-null). Returns what set the step:
// 1 straight segment (nothing written), 2 mid ordinate, 4 maximum chord,
// 8 maximum angle, 16 the count cap.
VORA_API int vora_arc2pts(const double* p1, const double* p2, double bulge, double midOrdinate, double maxChord,
                          double maxAngle, std::uint64_t maxCount, AcGePoint3dArray* out, double* deviation);

// ---------------------------------------------------------------------------
// Measuring 2D polylines with bulges.
//
// pts is the vertex list; bulges is null (all straight) or holds exactly one
// bulge per vertex, entry i for the segment from vertex i. An open polyline of
// n vertices has the n - 1 segments i -> i+1; a closed one also the segment
// n-1 -> 0. A segment's length is its plan chord when straight, else its arc
// length. A parameter k + t names the point at fraction t (of length) along
// segment k. Fewer than 2 vertices or a bulge list of the wrong length makes
// every function fail with its failure value. Inputs are never changed.

// Total length. mode 2 measures straight segments in plan, mode 3 in space
// (dz included), any other mode as 0, leaving only the arcs; arcs are always
// measured in plan. Appends each segment's length to segLengths when it is
// non-null (not cleared first; untouched on failure). Failure: 0.0.
VORA_API double vora_plinelength(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed, int mode,
                                 AcGeDoubleArray* segLengths);

// vora_plinelength in mode 2 without segment lengths.
VORA_API double vora_plinelength2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed);

// Parameter of the position on the polyline nearest to point (x, y read).
// Only segments whose foot lies within the segment (tolValue margin) count,
// and with onlyOnPline only those closer than tolPoint; on equal distances
// the earlier segment wins, so a point on a vertex gets that vertex's index.
// Returns -1.0 when no segment qualifies.
VORA_API double vora_paramPtPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                    const double* point, bool onlyOnPline);

// Distance along the polyline to the position vora_paramPtPline2D finds, or -1.0.
VORA_API double vora_distPtPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                   const double* point, bool onlyOnPline);

// Point at a parameter, through vora_ptDistPline2D; (0, 0, 0) on failure or
// for a negative parameter. A parameter past the last segment gives the end.
VORA_API AcGePoint3d vora_ptParamPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                         double param);

// Point at distance dist along the polyline: returns the index of the segment
// that holds it (the first whose end reaches dist) and writes x, y, z to
// outPoint; returns -1 and writes nothing when dist is negative, beyond the
// total, or falls on a segment not longer than tolPoint. On a straight segment
// all three coordinates are interpolated. On an arc the point is written as
// (cos t * R * cx, sin t * R * cy, z of the segment's first vertex), t taken
// from the first angle of the arc's pair: exact only for arcs centred on the
// origin and run counter-clockwise. Long-standing callers rely on this form.
VORA_API std::int64_t vora_ptDistPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                         double dist, double* outPoint);

// ---------------------------------------------------------------------------
// Tessellation: arcs broken into pieces by the stepping rule of vora_arc2pts.

// Flattens a packed 2D polyline, whose vertices carry their segment's bulge
// in z, into chords: appends vertex 0 as stored, then for each segment either
// the next vertex as stored (straight) or the arc's points after its first
// (z = 0), stepped by the mid ordinate and never coarser than 22.5 degrees.
// When closed, an arc closing segment adds its interior points only; a
// straight one adds nothing. Output z is therefore a mix of stored bulges and
// zeros. Returns the vertex count, or 0 (nothing appended) under 2 vertices.
VORA_API int vora_tessellatepline(const AcGePoint3dArray* pts, bool closed, double midOrdinate, AcGePoint3dArray* out);

// Splits each arc of a 3D polyline (arcs in plan, heights along them) into
// equal sub-arcs with vora_arc2pts (midOrdinate, maxChord, maxAngle; with
// minPieceLength > 0 the count is capped at arc length / minPieceLength + 1).
// Appends vertex 0, then per segment the new vertices, with heights
// interpolated by angle along each arc, and one bulge per vertex appended to
// outBulges (the sub-arc bulge on every piece of an arc, 0 on straight
// segments). A straight closing segment repeats vertex 0; an arc closing
// segment does not. A bulged segment whose end points coincide in plan has
// no arc to step: its end vertex is not added and the start vertex's bulge
// becomes 0, as flattening also drops that vertex. Writes the largest step mid ordinate to maxDeviation
// (optional; 0 without arcs) and returns 1 or-ed with every arc's code.
// Returns 1 and appends nothing when pts, bulges or outPts is null, the
// counts differ or there is no vertex. outBulges is required.
VORA_API int vora_tessellate3Dpline(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                    double midOrdinate, double maxChord, double maxAngle, double minPieceLength,
                                    AcGePoint3dArray* outPts, AcGeDoubleArray* outBulges, double* maxDeviation);

// ---------------------------------------------------------------------------
// Point insertion into 3D polylines with bulges.

// Inserts a vertex at plan distance dist along the polyline (segment lengths
// as vora_plinelength in plan) and appends the result to outPts/outBulges:
// vertices before the segment, its start vertex with its new bulge, the new
// vertex (height interpolated along the segment; on an arc, on the circle,
// the two parts keeping the circle with their own bulges), then the rest.
// Returns the index of the new vertex. Without an insertion the outputs
// receive copies of the input and the result is: 0 for |dist| < tolValue;
// n - 1 for dist within tolValue of the total (closed polylines included);
// the vertex index when dist lands within tolPoint of a vertex (a distance on
// a vertex belongs to the segment starting there); -1 for a negative dist, a
// dist beyond the total or fewer than 2 vertices. All four arrays are
// required; bulges must hold one entry per vertex.
VORA_API std::int64_t vora_addpoint3Dpline(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                           double dist, AcGePoint3dArray* outPts, AcGeDoubleArray* outBulges);

#endif
