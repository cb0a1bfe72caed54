// Planes and triangles: sections, intersections, point-in-triangle.
//
// A plane is a point on it (planePoint) and a normal of any non-zero length.
// A triangle is its three corners t0, t1, t2. Points and vectors are three
// consecutive doubles. Flags are bytes: zero is false, anything else true.
#ifndef VORA_PLANE_H
#define VORA_PLANE_H

#include "vora/arx.h"

// Crossing of the infinite line through a and b with the plane. Returns 0
// when |normal . (b - a)| < tolValue (parallel; out untouched), else 1 and,
// if out is not null, writes the crossing (the parameter along a->b is not
// limited to [0, 1]).
VORA_API int vora_intlineplane(const double* a, const double* b, const double* planePoint, const double* normal,
                               double* out);

// Of all crossings of the polyline's segments with the plane, the one nearest
// to planePoint (the earlier segment on a tie). closed adds the segment from
// the last point back to the first. Segments with |normal . (q - p)| <
// tolValue are skipped; a crossing counts when it lies on its segment within
// tolPoint. Returns 1 and writes out (required), or 0 and leaves out alone.
VORA_API int vora_intplineplane(const AcGePoint3dArray* points, unsigned char closed, const double* planePoint,
                                const double* normal, double* out);

// Whether the line a->b meets the triangle: a ray from a through b when
// infinite is non-zero, the segment a-b otherwise. 0 when the line is
// parallel to the triangle's plane (|n . (b - a)| < tolValue, out untouched).
// An end point within tolPoint (squared distance against tolPoint squared,
// strict) of a corner answers 1 with that corner in out; b is tried only for
// a segment. Otherwise the crossing with the plane is written to out (if not
// null) before it is tested, so out holds it also when the result is 0. The
// last test is made in plan: a vertical triangle is met only at its corners.
VORA_API int vora_intlinetriangle(const double* a, const double* b, const double* t0, const double* t1,
                                  const double* t2, double* out, unsigned char infinite);

// Plan test: 1 when p lies inside the triangle or on its border (a corner
// within tolPoint per coordinate, an edge within tolPoint), 0 when outside or
// when twice the plan area is below tolValue. For any triangle that is not
// degenerate p[2] is set to the elevation of the triangle's plane above p,
// whether p is inside or not.
VORA_API int vora_pointintriangle2d(const double* t0, const double* t1, const double* t2, double* p);

// Space test: p projected orthogonally onto the triangle's plane lies in the
// triangle, its barycentric weights allowed a margin of tolValue. On 1, p[2]
// is set to the z of the projection (p[0], p[1] unchanged); on 0 (outside, or
// degenerate triangle) p is untouched.
VORA_API int vora_pointintriangle3d(const double* t0, const double* t1, const double* t2, double* p);

// The segment in which the plane cuts the triangle, ends in out1 and out2
// (both required). A corner is on the plane when its signed distance is
// within tol (strict). Unless skipTouching is non-zero, two corners on the
// plane give that edge, and one corner on the plane with the others on one
// side gives that corner twice (result 1, zero length). snap holds nine bytes
// in three groups of three; corner k is snapped when byte k, k + 3 or k + 6
// is non-zero, and a crossing computed on an edge towards a snapped corner is
// replaced by that corner. Returns 1 for those edge and corner contacts, or
// when the section found is longer than tol; 0 otherwise, also for a triangle
// with all three corners on the plane. On 0 the outputs may hold the ends
// computed so far.
VORA_API int vora_intplanetriangle(const double* t0, const double* t1, const double* t2, const double* planePoint,
                                   const double* normal, double* out1, double* out2, const unsigned char* snap,
                                   unsigned char skipTouching, double tol);

// The segment common to triangles A (a0, a1, a2) and B (b0, b1, b2): each is
// cut by the other's plane, and the overlap of the two sections is written to
// out1 and out2 (each optional), low end first along the dominant axis of B's
// section. Corners closer than tol snap crossings onto them. Returns 1 when a
// common segment was found, else 0 with out1 and out2 untouched. skipTouching
// is passed on and also rejects an overlap shorter than tol.
VORA_API int vora_inttriangletriangle(const double* a0, const double* a1, const double* a2, const double* b0,
                                      const double* b1, const double* b2, double* out1, double* out2,
                                      unsigned char skipTouching, double tol);

#endif
