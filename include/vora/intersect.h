// Planar intersections of lines, segments, circles and arcs.
//
// Only x and y of the input points are read; every point written has z = 0.0.
// Output pointers may be null. Flags are bytes, 0 or non-zero: `infinite`
// non-zero takes the infinite line through the two points instead of the
// segment between them; `fullCircle` non-zero takes an arc's whole circle.
// Arc angles are radians counter-clockwise from +x, expected in [0, 2*pi); an
// arc whose end is not greater than its start runs through angle 0 (so equal
// angles give the whole circle). A point is on an arc when pos = R * angle
// (R = |radius|, angle in [0, 2*pi)) satisfies R*start - tolPoint < pos and
// pos < R*end + tolPoint, both for an arc with end > start, either one for
// an arc through 0: the margin is a length along the arc.
#ifndef VORA_INTERSECT_H
#define VORA_INTERSECT_H

#include "vora/arx.h"

// Crossing of line a1-b1 with line a2-b2.
// Returns 1 for a single crossing; -1 when the lines are parallel and apart,
// or do not meet within the bounded segments (within tolPoint of their ends);
// 2 when they are collinear (slopes and intercepts within tolValue) and the
// start of one line (its end with the smaller coordinate along the lines)
// lies strictly after the start of the other and strictly before the end of
// line 2, out then holding that later start (one end of the overlap, not
// both). Collinear lines that start at the same point give -1.
// out, if given, is always written: the point on 1 or 2, (0, 0, -1) on -1.
VORA_API int vora_intlineline(const double* a1, const double* b1, const double* a2, const double* b2, double* out,
                              unsigned char infinite1, unsigned char infinite2);

// Crossings of line a-b with the circle (centre, radius).
// Returns the number of points found, 0 to 2. A tangent line gives 1. On 1,
// out1 is written and out2 left alone; on 2, out1 and out2 are written; on 0,
// nothing is written.
// On a bounded segment one coordinate decides: x when b.x - a.x > b.y - a.y
// (a signed comparison), else y. A crossing is kept when that coordinate lies
// strictly within tolPoint of the segment's range, so a crossing off the
// segment is kept when the segment does not extend in that coordinate. For a
// tangent the range is taken from a to b as given, not ordered, so a tangent
// to a segment whose tested coordinate decreases from a to b (by more than
// 2 * tolPoint) is not found.
VORA_API int vora_intlinecircle(const double* a, const double* b, const double* centre, double radius,
                                double* out1, double* out2, unsigned char infinite);

// Crossings of line a-b with the arc (centre, radius, start, end).
// Returns the number of points on the arc, 0 to 2; the first found is in out1.
// Both outputs, when given, are always written: where the count says there is
// no point they hold (0, 0, 0) or a crossing with the circle that lies off the
// arc.
VORA_API int vora_intlinearc(const double* a, const double* b, const double* centre, double radius, double start,
                             double end, double* out1, double* out2, unsigned char infinite,
                             unsigned char fullCircle);

// Crossings of two circles.
// Returns 2 (out1 left of the directed line centre1->centre2, out2 right of
// it), 1 for circles that touch (the touching point in both outputs), 0 for
// concentric circles (|centre2 - centre1|^2 not greater than tolValue) and -1
// for circles that do not meet. Outputs are written only on 1 and 2.
VORA_API int vora_intcirclecircle(const double* centre1, double radius1, const double* centre2, double radius2,
                                  double* out1, double* out2);

// Crossings of two arcs, each taken as its full circle when its flag is set.
// Returns the number of points on both arcs, 0 to 2, or -1 when the circles do
// not meet (0 when they are concentric). Both outputs, when given, are always
// written: (0, 0, 0) where nothing was computed, or a crossing of the circles
// that lies off an arc where the count says there is no point.
VORA_API int vora_intarcarc(const double* centre1, double radius1, double start1, double end1,
                            const double* centre2, double radius2, double start2, double end2, double* out1,
                            double* out2, unsigned char fullCircle1, unsigned char fullCircle2);

#endif
