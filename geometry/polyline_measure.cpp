#include <cmath>
#include <cstdint>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "vora/distance.h"
#include "vora/polyline.h"

namespace vora {
namespace {

// A polyline as the measuring functions read it. A null bulge list reads as
// all zeros, which is what measuring a zero-filled copy gives, without the copy.
struct PlineView {
  const AcGePoint3d* p = nullptr;
  const double* b = nullptr;
  int n = 0;
  int segments = 0;

  double bulge(int i) const { return b != nullptr ? b[i] : 0.0; }
  int next(int i) const { return i == n - 1 ? 0 : i + 1; }
  double length(int i) const { return planSegmentLength(p[i], p[next(i)], bulge(i)); }
};

// False when the polyline cannot be measured: under 2 vertices, or a bulge
// list whose length is not the vertex count.
bool viewOf(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed, PlineView& v) {
  v.n = pts->length();
  if (v.n < 2) return false;
  if (bulges != nullptr && bulges->length() != v.n) return false;
  v.p = pts->asArrayPtr();
  v.b = bulges != nullptr ? bulges->asArrayPtr() : nullptr;
  v.segments = closed ? v.n : v.n - 1;
  return true;
}

// Distance along the polyline to parameter k + t. A parameter past the last
// segment reads that missing segment as having length 0, so it lands on the
// end of the polyline.
double distanceAtParam(const PlineView& v, double param) {
  const double kf = std::trunc(param);
  double before = 0.0;
  int k = 0;
  for (; k < v.segments && static_cast<double>(k) < kf; ++k) before += v.length(k);
  const double len = k < v.segments && static_cast<double>(k) == kf ? v.length(k) : 0.0;
  return before + (param - kf) * len;
}

}  // namespace
}  // namespace vora

using namespace vora;

VORA_API double vora_plinelength(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed, int mode,
                                 AcGeDoubleArray* segLengths) {
  // The bulges are measured as they were at the call, even when the caller
  // collects the lengths in the same array.
  AcGeDoubleArray bulgeCopy;
  if (segLengths != nullptr && segLengths == bulges) {
    bulgeCopy = *bulges;
    bulges = &bulgeCopy;
  }
  PlineView v;
  if (!viewOf(pts, bulges, closed, v)) return 0.0;
  if (segLengths != nullptr) reserveRoom(*segLengths, v.segments);
  double total = 0.0;
  for (int i = 0; i < v.segments; ++i) {
    const AcGePoint3d& a = v.p[i];
    const AcGePoint3d& b = v.p[v.next(i)];
    const double bulge = v.bulge(i);
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    double len = 0.0;
    if (!(std::fabs(bulge) < tolValue())) {
      // Arcs are plan curves: their rise never counts, in mode 3 either.
      len = arcLengthFromChord(std::sqrt(dx * dx + dy * dy), bulge);
    } else if (mode == 2) {
      len = std::sqrt(dx * dx + dy * dy);
    } else if (mode == 3) {
      const double dz = b.z - a.z;
      len = std::sqrt(dx * dx + dy * dy + dz * dz);
    }
    if (segLengths != nullptr) segLengths->append(len);
    total += len;
  }
  return total;
}

VORA_API double vora_plinelength2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed) {
  return vora_plinelength(pts, bulges, closed, 2, nullptr);
}

VORA_API double vora_paramPtPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                    const double* point, bool onlyOnPline) {
  PlineView v;
  if (!viewOf(pts, bulges, closed, v)) return -1.0;
  bool found = false;
  int bestSeg = 0;
  double bestU = 0.0;
  double bestD = 0.0;
  for (int i = 0; i < v.segments; ++i) {
    const AcGePoint3d& a = v.p[i];
    const AcGePoint3d& b = v.p[v.next(i)];
    const double pa[3] = {a.x, a.y, 0.0};
    const double pb[3] = {b.x, b.y, 0.0};
    const double bulge = v.bulge(i);
    // A degenerate segment writes no parameter and so stays out of the race.
    double u = -1.0;
    double d = 0.0;
    if (!(std::fabs(bulge) < tolValue())) {
      double centreRadius[3];
      double angles[3];
      vora_bulge2arc(pa, pb, bulge, centreRadius, angles);
      d = std::fabs(vora_distpointarcsigned(centreRadius, angles, point, nullptr, &u));
    } else {
      d = std::fabs(vora_distpointlinesigned(pa, pb, point, nullptr, &u));
    }
    if (onlyOnPline && !(d < tolPoint())) continue;
    if (!(u > -tolValue() && u < 1.0 + tolValue())) continue;
    if (found && !(d < bestD)) continue;
    found = true;
    bestSeg = i;
    bestU = u;
    bestD = d;
  }
  if (!found) return -1.0;

  std::int64_t k = bestSeg;
  double u = bestU;
  if (u < 0.0) {
    if (k == 0) {
      u = 0.0;
    } else {
      k -= 1;
      u += 1.0;
    }
  }
  if (u >= 1.0) {
    u -= 1.0;
    k += 1;
  }
  return static_cast<double>(k) + u;
}

VORA_API double vora_distPtPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                   const double* point, bool onlyOnPline) {
  const double param = vora_paramPtPline2D(pts, bulges, closed, point, onlyOnPline);
  if (!(param > -0.5)) return -1.0;
  PlineView v;
  viewOf(pts, bulges, closed, v);
  return distanceAtParam(v, param);
}

VORA_API AcGePoint3d vora_ptParamPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                         double param) {
  AcGePoint3d result(0.0, 0.0, 0.0);
  PlineView v;
  if (!viewOf(pts, bulges, closed, v) || param < 0.0) return result;
  vora_ptDistPline2D(pts, bulges, closed, distanceAtParam(v, param), &result.x);
  return result;
}

VORA_API std::int64_t vora_ptDistPline2D(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                         double dist, double* outPoint) {
  PlineView v;
  if (!viewOf(pts, bulges, closed, v) || dist < 0.0) return -1;

  // The running sums are the total's own partial sums, so a distance beyond
  // the total is exactly one that no segment reaches: one pass decides both.
  double before = 0.0;
  int k = 0;
  double len = 0.0;
  for (; k < v.segments; ++k) {
    len = v.length(k);
    if (before + len >= dist) break;
    before += len;
  }
  if (k == v.segments) return -1;
  if (!(len > tolPoint())) return -1;

  const double s = dist - before;
  const AcGePoint3d& a = v.p[k];
  const AcGePoint3d& b = v.p[v.next(k)];
  const double bulge = v.bulge(k);
  if (std::fabs(bulge) < tolPoint()) {
    const double f = s / len;
    outPoint[0] = a.x + (b.x - a.x) * f;
    outPoint[1] = a.y + (b.y - a.y) * f;
    outPoint[2] = a.z + (b.z - a.z) * f;
  } else {
    const BulgeArc arc = bulgeToArc(a, b, bulge);
    const double R = std::fabs(arc.r);
    const double sign = arc.r > 0.0 ? 1.0 : (arc.r < 0.0 ? -1.0 : 0.0);
    const double theta = arc.start + sign * (s / R);
    // Kept as callers have always received it: the centre scales the point
    // instead of offsetting it, and a clockwise arc starts from the angle of
    // its far end. Only arcs about the origin come out on the arc.
    outPoint[0] = std::cos(theta) * (R * arc.cx);
    outPoint[1] = std::sin(theta) * (R * arc.cy);
    outPoint[2] = a.z;
  }
  return k;
}
