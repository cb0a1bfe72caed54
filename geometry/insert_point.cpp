#include <cmath>
#include <cstdint>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "vora/polyline.h"

namespace vora {
namespace {

void copyInput(const AcGePoint3dArray& pts, const AcGeDoubleArray& bulges, AcGePoint3dArray& outPts,
               AcGeDoubleArray& outBulges) {
  outPts.append(pts);
  outBulges.append(bulges);
}

}  // namespace
}  // namespace vora

using namespace vora;

VORA_API std::int64_t vora_addpoint3Dpline(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                           double dist, AcGePoint3dArray* outPts, AcGeDoubleArray* outBulges) {
  const int n = pts->length();
  if (n < 2) {
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return -1;
  }
  const AcGePoint3d* p = pts->asArrayPtr();
  const double* bulge = bulges->asArrayPtr();
  const int segments = closed ? n : n - 1;
  auto next = [n](int i) { return i == n - 1 ? 0 : i + 1; };

  double total = 0.0;
  for (int i = 0; i < segments; ++i) total += planSegmentLength(p[i], p[next(i)], bulge[i]);

  if (std::fabs(dist) < tolValue()) {
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return 0;
  }
  if (std::fabs(dist - total) < tolValue()) {
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return n - 1;
  }
  if (dist < 0.0 || dist >= total) {
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return -1;
  }

  // Every segment that holds the distance is recorded and the last one kept,
  // so a distance on a vertex belongs to the segment that starts there.
  int k = -1;
  double before = 0.0;
  double kBefore = 0.0;
  double kLength = 0.0;
  for (int i = 0; i < segments; ++i) {
    const double len = planSegmentLength(p[i], p[next(i)], bulge[i]);
    if (before <= dist && dist <= before + len) {
      k = i;
      kBefore = before;
      kLength = len;
    }
    before += len;
  }
  if (k < 0) {
    // Unreachable for 0 < dist < total; kept for lengths that are not numbers.
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return -1;
  }
  double s = dist - kBefore;
  if (s < 0.0) s = 0.0;
  if (s > kLength) s = kLength;
  if (std::fabs(s) < tolPoint()) {
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return k;
  }
  if (std::fabs(s - kLength) < tolPoint()) {
    copyInput(*pts, *bulges, *outPts, *outBulges);
    return k + 1;
  }

  const AcGePoint3d& a = p[k];
  const AcGePoint3d& b = p[next(k)];
  const double zq = a.z + (b.z - a.z) * s / kLength;
  AcGePoint3d q;
  double bulgeK = 0.0;
  double bulgeQ = 0.0;
  const double bk = bulge[k];
  if (std::fabs(bk) < tolValue()) {
    q.set(a.x + (b.x - a.x) * s / kLength, a.y + (b.y - a.y) * s / kLength, zq);
  } else {
    const BulgeArc arc = bulgeToArc(a, b, bk);
    const double R = std::fabs(arc.r);
    // A clockwise arc leaves a at the pair's end angle and turns back.
    double theta = arc.r > 0.0 ? arc.start + s / R : arc.end - s / R;
    if (theta < 0.0) {
      theta += kTwoPi;
    } else if (theta >= kTwoPi) {
      theta -= kTwoPi;
    }
    q.set(arc.cx + R * std::cos(theta), arc.cy + R * std::sin(theta), zq);
    const bool ccw = arc.r >= 0.0;
    const double after = ccw ? arcToBulge(arc.cx, arc.cy, arc.r, theta, arc.end)
                             : arcToBulge(arc.cx, arc.cy, arc.r, arc.start, theta);
    const double beforePart = ccw ? arcToBulge(arc.cx, arc.cy, arc.r, arc.start, theta)
                                  : arcToBulge(arc.cx, arc.cy, arc.r, theta, arc.end);
    const double tol = tolPoint();
    const bool moved = std::fabs(q.x - a.x) >= tol || std::fabs(q.y - a.y) >= tol || std::fabs(q.z - a.z) >= tol;
    bulgeK = moved ? beforePart : after;
    bulgeQ = after;
  }

  reserveRoom(*outPts, n + 1);
  reserveRoom(*outBulges, n + 1);
  for (int i = 0; i < k; ++i) {
    outPts->append(p[i]);
    outBulges->append(bulge[i]);
  }
  outPts->append(a);
  outBulges->append(bulgeK);
  outPts->append(q);
  outBulges->append(bulgeQ);
  for (int i = k + 1; i < n; ++i) {
    outPts->append(p[i]);
    outBulges->append(bulge[i]);
  }
  return k + 1;
}
