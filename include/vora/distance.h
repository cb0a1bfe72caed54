// Distances from points to lines, arcs and planes.
//
// Points are three doubles x, y, z. Planar functions read x and y only and
// write z = 0.0 in the foot point. Output pointers may be null; an output that
// a call does not write keeps what the caller had in it.
#ifndef VORA_DISTANCE_H
#define VORA_DISTANCE_H

#include "vora/arx.h"

// Signed plan distance from p to the infinite line through a and b: positive
// when p lies to the right of a->b, negative to the left.
// foot: the perpendicular foot on the line (z 0.0). param: the foot's position
// along a->b, 0 at a and 1 at b, not clamped.
// When a and b are not more than tolPoint apart the result is the plain
// distance |p - a| (never negative) and neither foot nor param is written.
VORA_API double vora_distpointlinesigned(const double* a, const double* b, const double* p, double* foot,
                                         double* param);

// |vora_distpointlinesigned| with the same arguments; the outputs are written
// exactly as that call writes them.
VORA_API double vora_distpointline(const double* a, const double* b, const double* p, double* foot,
                                   double* param);

// Distance in space from p to the infinite line through a and b.
// foot: the perpendicular foot (x, y, z). param: its position along a->b, 0 at
// a and 1 at b, not clamped.
// Returns -1.0 and writes nothing when |b - a|^2 is not greater than tolPoint^2.
VORA_API double vora_distpointline3d(const double* a, const double* b, const double* p, double* foot,
                                     double* param);

// Signed plan distance from p to the circle of an arc: |p - c| - R, positive
// outside, negative inside.
// circle: cx, cy, r; R = |r|, a negative r marks a clockwise arc.
// angles: start, end in radians counter-clockwise from +x; end <= start means
// the arc runs through angle 0.
// foot: the radial projection of p onto the full circle (z 0.0), whether or not
// it falls within the arc. param: 0 at the arc's start and 1 at its end (the
// other way round for a clockwise arc), extended beyond either end in
// proportion to the angle to the nearer end.
// When p is not more than tolPoint from the centre, or the arc's span
// |end - start| is not more than tolValue, the result is still |p - c| - R but
// neither foot nor param is written.
VORA_API double vora_distpointarcsigned(const double* circle, const double* angles, const double* p,
                                        double* foot, double* param);

// |vora_distpointarcsigned| with the same arguments; the outputs are written
// exactly as that call writes them (so a point on the centre gives +R).
VORA_API double vora_distpointarc(const double* circle, const double* angles, const double* p, double* foot,
                                  double* param);

// Distance in space from p to the plane through planePoint with the given
// normal (any length). foot: the orthogonal projection of p onto the plane.
// Returns -1.0 and writes nothing when normal.normal is not greater than
// tolValue.
VORA_API double vora_distpointplane(const double* normal, const double* planePoint, const double* p,
                                    double* foot);

#endif
