// Internal helpers for bulged segments, shared by the polyline and polygon
// code. They compute exactly what the exported bulge functions compute (same
// operations in the same order), so a caller that mixes them gets the same
// bits either way.
#ifndef VORA_GEOMETRY_BULGE_H
#define VORA_GEOMETRY_BULGE_H

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "vora/arx.h"

namespace vora {

// Direction of the vector (dx, dy) reduced to [0, 2pi): atan(dy/dx), plus pi
// when dx < 0, plus 2pi when still negative. No zero test: (0, 0) gives NaN.
double directionAngle(double dx, double dy);

// Counter-clockwise sweep from start to end: (end >= start ? end : end + 2pi) - start.
double sweptAngle(double start, double end);

// A bulged segment in centre form: centre, signed radius (negative for a
// clockwise arc) and the counter-clockwise angle pair start -> end.
struct BulgeArc {
  double cx = 0.0;
  double cy = 0.0;
  double r = 0.0;
  double start = 0.0;
  double end = 0.0;
};

// The arc of the segment p1 -> p2 with the given bulge (x and y of the points
// are read), as vora_bulge2arc computes it. A bulge under tolValue or
// coincident points give r = 0 and angles 0, with a centre that is not a
// number: test r, never the centre.
BulgeArc bulgeToArc(const double* p1, const double* p2, double bulge);
inline BulgeArc bulgeToArc(const AcGePoint3d& p1, const AcGePoint3d& p2, double bulge) {
  return bulgeToArc(&p1.x, &p2.x, bulge);
}

// The bulge of an arc given in centre form (vora_arc2bulge without the points).
double arcToBulge(double cx, double cy, double r, double start, double end);

// Length in plan of the segment a -> b: the 2D chord when |bulge| < tolValue,
// else the arc length chord * atan(b) * (b^2 + 1) / b (positive for either sign).
double planSegmentLength(const AcGePoint3d& a, const AcGePoint3d& b, double bulge);

// Arc length of a bulged segment from its chord, as planSegmentLength.
inline double arcLengthFromChord(double chord, double bulge) {
  return chord * std::atan(bulge) * (bulge * bulge + 1.0) / bulge;
}

// Saturating conversion of a step count to the unsigned 64-bit counts of the
// arc-stepping rule: NaN and negatives give 0, values past the range give the
// largest count.
std::uint64_t toStepCount(double value);


// Makes room for extra more elements in an output array. The array's own
// growth adds fixed 1 MiB steps once it is past that size, which makes
// filling it with millions of points quadratic; room is taken here in
// doublings instead, so that appending stays linear. Only the capacity
// changes: contents and length are untouched.
template <class T>
void reserveRoom(AcArray<T>& a, long extra) {
  const long need = static_cast<long>(a.length()) + extra;
  const long have = a.physicalLength();
  if (need <= have) return;
  constexpr long kMax = 0x7fffffffL;
  long want = std::max(need, 2 * have);
  if (want > kMax) want = std::max(need, kMax);
  if (want > kMax) return;  // beyond an int length: leave it to the array
  a.setPhysicalLength(static_cast<int>(want));
}

}  // namespace vora

#endif
