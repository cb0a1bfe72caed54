#include <cmath>
#include <cstdint>
#include <limits>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "vora/polyline.h"

namespace vora {
namespace {

// 22.5 degrees: flattened arcs never take coarser steps than this, whatever
// the mid ordinate allows.
constexpr double kFlattenMaxAngle = 0.39269908169872414;
constexpr std::uint64_t kNoCountCap = std::numeric_limits<std::uint64_t>::max();

// Appends scratch[from .. length - 1 - dropLast] to out.
void appendRange(AcGePoint3dArray& out, const AcGePoint3dArray& scratch, int from, int dropLast) {
  reserveRoom(out, scratch.length() - from - dropLast);
  for (int k = from; k < scratch.length() - dropLast; ++k) out.append(scratch[k]);
}

}  // namespace
}  // namespace vora

using namespace vora;

VORA_API int vora_tessellatepline(const AcGePoint3dArray* pts, bool closed, double midOrdinate, AcGePoint3dArray* out) {
  const int n = pts->length();
  if (n < 2) return 0;
  const AcGePoint3d* p = pts->asArrayPtr();
  // One scratch list for all arcs: it is emptied, not reallocated, per arc.
  AcGePoint3dArray scratch;
  reserveRoom(*out, n);
  out->append(p[0]);
  for (int i = 0; i + 1 < n; ++i) {
    const double b = p[i].z;
    if (std::fabs(b) < tolValue()) {
      out->append(p[i + 1]);
      continue;
    }
    const double a[3] = {p[i].x, p[i].y, 0.0};
    const double c[3] = {p[i + 1].x, p[i + 1].y, 0.0};
    scratch.setLogicalLength(0);
    vora_arc2pts(a, c, b, midOrdinate, -1.0, kFlattenMaxAngle, kNoCountCap, &scratch, nullptr);
    appendRange(*out, scratch, 1, 0);
  }
  if (closed) {
    const double b = p[n - 1].z;
    if (!(std::fabs(b) < tolValue())) {
      const double a[3] = {p[n - 1].x, p[n - 1].y, 0.0};
      const double c[3] = {p[0].x, p[0].y, 0.0};
      scratch.setLogicalLength(0);
      vora_arc2pts(a, c, b, midOrdinate, -1.0, kFlattenMaxAngle, kNoCountCap, &scratch, nullptr);
      appendRange(*out, scratch, 1, 1);
    }
  }
  return n;
}

VORA_API int vora_tessellate3Dpline(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges, bool closed,
                                    double midOrdinate, double maxChord, double maxAngle, double minPieceLength,
                                    AcGePoint3dArray* outPts, AcGeDoubleArray* outBulges, double* maxDeviation) {
  if (pts == nullptr || bulges == nullptr || outPts == nullptr || pts->length() != bulges->length() ||
      pts->length() == 0) {
    if (maxDeviation != nullptr) *maxDeviation = 0.0;
    return 1;
  }
  const int n = pts->length();
  const AcGePoint3d* p = pts->asArrayPtr();
  const double* bulge = bulges->asArrayPtr();
  const int last = closed ? n - 1 : n - 2;

  int result = 1;
  double worst = 0.0;
  AcGePoint3dArray scratch;
  reserveRoom(*outPts, n + 1);
  reserveRoom(*outBulges, n + 1);
  outPts->append(p[0]);
  outBulges->append(0.0);
  for (int i = 0; i <= last; ++i) {
    const int j = i == n - 1 ? 0 : i + 1;
    const AcGePoint3d& a = p[i];
    const AcGePoint3d& b = p[j];
    const double bi = bulge[i];

    if (std::fabs(bi) < tolValue()) {
      outPts->append(b);
      outBulges->last() = 0.0;
      outBulges->append(0.0);
      continue;
    }

    scratch.setLogicalLength(0);
    std::uint64_t cap = 0;
    if (minPieceLength > 0.0) {
      const double dx = b.x - a.x;
      const double dy = b.y - a.y;
      cap = toStepCount(arcLengthFromChord(std::sqrt(dx * dx + dy * dy), bi) / minPieceLength + 1.0);
    }
    const double pa[3] = {a.x, a.y, 0.0};
    const double pb[3] = {b.x, b.y, 0.0};
    double deviation = 0.0;
    const int code = vora_arc2pts(pa, pb, bi, midOrdinate, maxChord, maxAngle, cap, &scratch, &deviation);
    result |= code;
    if (deviation > worst) worst = deviation;

    // A bulged segment whose end points (nearly) coincide has no arc to step:
    // the scratch list stays empty, so vertex i's entry becomes the unset
    // sub-arc bulge (0) and vertex j is not added. Flattening drops such a
    // vertex the same way.
    const BulgeArc arc = bulgeToArc(a, b, bi);
    const double sweep = sweptAngle(arc.start, arc.end);
    const int m = scratch.length();
    double subBulge = 0.0;
    for (int k = 0; k < m; ++k) {
      AcGePoint3d& q = scratch[k];
      const double dx = q.x - arc.cx;
      const double dy = q.y - arc.cy;
      const double angle = std::fabs(dx) < tolPoint() && std::fabs(dy) < tolPoint() ? 0.0 : directionAngle(dx, dy);
      double travelled = 0.0;
      if (arc.r > 0.0) {
        travelled = (angle < arc.start ? angle + kTwoPi : angle) - arc.start;
      } else {
        travelled = (arc.end < angle ? arc.end + kTwoPi : arc.end) - angle;
      }
      q.z = a.z + (b.z - a.z) * travelled / sweep;
      // The steps are equal, so the first piece's bulge is every piece's.
      if (k == 1) {
        subBulge = arc.r > 0.0 ? arcToBulge(arc.cx, arc.cy, arc.r, arc.start, angle)
                               : arcToBulge(arc.cx, arc.cy, arc.r, angle, arc.end);
      }
    }
    const int dropLast = j == 0 ? 1 : 0;
    outBulges->last() = subBulge;
    reserveRoom(*outBulges, m);
    for (int k = 1; k < m - dropLast; ++k) outBulges->append(subBulge);
    appendRange(*outPts, scratch, 1, dropLast);
  }
  if (maxDeviation != nullptr) *maxDeviation = worst;
  return result;
}
