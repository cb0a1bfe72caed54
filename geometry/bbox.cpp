#include <cmath>
#include <cstdint>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "vora/distance.h"
#include "vora/polygon.h"

namespace vora {

namespace {

void widenPlan(const double* q, double* min, double* max) {
  for (int k = 0; k < 2; ++k) {
    if (q[k] < min[k]) min[k] = q[k];
    if (q[k] > max[k]) max[k] = q[k];
  }
}

// Widens the box by the quadrant points of the segment's circle that lie on
// its arc.
void addArcExtremes(const double* p1, const double* p2, double bulge, double* min, double* max) {
  if (!(std::fabs(bulge) >= tolValue())) return;
  const BulgeArc arc = bulgeToArc(p1, p2, bulge);
  const double circle[3] = {arc.cx, arc.cy, arc.r};
  const double angles[2] = {arc.start, arc.end};
  const double R = std::fabs(arc.r);
  for (int k = 0; k < 4; ++k) {
    const double a = k * kPi / 2.0;
    const double q[3] = {arc.cx + R * std::cos(a), arc.cy + R * std::sin(a), 0.0};
    // Stays outside [0, 1] when the distance call writes no parameter (an arc
    // of no span).
    double u = -1.0;
    vora_distpointarcsigned(circle, angles, q, nullptr, &u);
    if (!(0.0 <= u && u <= 1.0)) continue;
    widenPlan(q, min, max);
    // The arc is taken to lie at height 0, whatever the heights of its end
    // points: the box's z range is pulled to include 0.
    if (min[2] > 0.0) min[2] = 0.0;
    if (max[2] < 0.0) max[2] = 0.0;
  }
}

void setBox(const double* p, double* min, double* max) {
  for (int k = 0; k < 3; ++k) min[k] = max[k] = p[k];
}

}  // namespace

}  // namespace vora

using namespace vora;

VORA_API void vora_addBoundingBoxP(const double* p, double* min, double* max) {
  for (int k = 0; k < 3; ++k) {
    if (p[k] < min[k]) min[k] = p[k];
    if (p[k] > max[k]) max[k] = p[k];
  }
}

VORA_API void vora_getBoundingBox2P(const double* p1, const double* p2, double* min, double* max) {
  setBox(p1, min, max);
  vora_addBoundingBoxP(p2, min, max);
}

VORA_API void vora_getBoundingBox3P(const double* p1, const double* p2, const double* p3, double* min, double* max) {
  AcGePoint3dArray scratch(3);
  scratch.append(AcGePoint3d(p1[0], p1[1], p1[2]));
  scratch.append(AcGePoint3d(p2[0], p2[1], p2[2]));
  scratch.append(AcGePoint3d(p3[0], p3[1], p3[2]));
  vora_getBoundingBoxA(&scratch, min, max);
}

VORA_API void vora_getBoundingBoxA(const AcGePoint3dArray* pts, double* min, double* max) {
  if (pts->isEmpty()) return;
  // Widened in locals and written once: the same strict comparisons as
  // vora_addBoundingBoxP, without a store through the caller's pointers per
  // vertex.
  double lo[3] = {pts->first().x, pts->first().y, pts->first().z};
  double hi[3] = {lo[0], lo[1], lo[2]};
  for (const AcGePoint3d& p : *pts) vora_addBoundingBoxP(&p.x, lo, hi);
  for (int k = 0; k < 3; ++k) {
    min[k] = lo[k];
    max[k] = hi[k];
  }
}

VORA_API void vora_getBoundingBox2PB(const double* p1, const double* p2, double bulge, double* min, double* max) {
  vora_getBoundingBox2P(p1, p2, min, max);
  addArcExtremes(p1, p2, bulge, min, max);
}

VORA_API void vora_addBoundingBox2PB(const double* p1, const double* p2, double bulge, double* min, double* max) {
  vora_addBoundingBoxP(p1, min, max);
  vora_addBoundingBoxP(p2, min, max);
  addArcExtremes(p1, p2, bulge, min, max);
}

VORA_API void vora_getBoundingBoxAB(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, double* min,
                                    double* max) {
  const std::int64_t n = pts->length();
  const std::int64_t nb = bulges->length();
  if (nb != n && nb != n - 1) return;
  vora_getBoundingBoxA(pts, min, max);
  if (n == 1) return;
  const AcGePoint3d* p = pts->asArrayPtr();
  const double* b = bulges->asArrayPtr();
  // The closing segment, n-1 -> 0, is never added.
  for (std::int64_t i = 0; i + 1 < n; ++i) addArcExtremes(&p[i].x, &p[i + 1].x, b[i], min, max);
}
