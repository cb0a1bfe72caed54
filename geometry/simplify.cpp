#include <cmath>
#include <cstdint>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "vora/distance.h"
#include "vora/polygon.h"

namespace vora {

namespace {

// The bulge that replaces the two segments prev -> i -> next when vertex i is
// redundant, or nothing when i must stay.
bool mergedBulge(const AcGePoint3d& prev, const AcGePoint3d& at, const AcGePoint3d& next, double bPrev, double bAt,
                 double& merged) {
  const bool straightPrev = std::fabs(bPrev) < tolValue();
  const bool straightAt = std::fabs(bAt) < tolValue();
  if (straightPrev && straightAt) {
    const double d = vora_distpointlinesigned(&prev.x, &next.x, &at.x, nullptr, nullptr);
    merged = 0.0;
    return std::fabs(d) < tolPoint();
  }
  if (straightPrev || straightAt) return false;

  const BulgeArc a1 = bulgeToArc(prev, at, bPrev);
  const BulgeArc a2 = bulgeToArc(at, next, bAt);
  if (a1.r * a2.r <= 0.0) return false;
  if (std::fabs(std::fabs(a1.r) - std::fabs(a2.r)) >= tolPoint()) return false;
  if (!(AcGePoint2d(a1.cx, a1.cy).distanceTo(AcGePoint2d(a2.cx, a2.cy)) < tolPoint())) return false;
  // Clockwise pairs are stored end first, so the two arcs then join at s1/e2
  // and the merged pair is (s2, e1).
  const bool joinAtE1 = !(std::fabs(a1.end - a2.start) >= tolValue());
  const double start = joinAtE1 ? a1.start : a2.start;
  const double end = joinAtE1 ? a2.end : a1.end;
  merged = arcToBulge(a1.cx, a1.cy, a1.r, start, end);
  return true;
}

}  // namespace

}  // namespace vora

using namespace vora;

VORA_API int vora_simplifyPoly2D(AcGePoint3dArray* pts, AcGeDoubleArray* bulges) {
  const std::int64_t n0 = pts->length();
  if (n0 == 0) return 0;
  if (bulges != nullptr && bulges->length() != n0) return 0;
  if (n0 == 1) return 0;
  const bool ring = pts->first().distanceTo(pts->last()) < tolPoint();

  int removed = 0;
  for (std::int64_t i = 0; i < static_cast<std::int64_t>(pts->length()) - 1; ++i) {
    const std::int64_t count = pts->length();
    std::int64_t prev = 0;
    std::int64_t next = 0;
    if (i == 0) {
      // A ring of two vertices (one point twice) has nothing to take away
      // without losing the ring itself.
      if (!ring || count < 3) continue;
      prev = count - 2;
      next = 1;
    } else {
      prev = i - 1;
      next = i + 1;
    }
    const int ip = static_cast<int>(prev), ii = static_cast<int>(i), in = static_cast<int>(next);
    const double bPrev = bulges != nullptr ? (*bulges)[ip] : 0.0;
    const double bAt = bulges != nullptr ? (*bulges)[ii] : 0.0;
    double merged = 0.0;
    if (!mergedBulge((*pts)[ip], (*pts)[ii], (*pts)[in], bPrev, bAt, merged)) continue;

    ++removed;
    if (i > 0) {
      pts->removeAt(ii);
      if (bulges != nullptr) {
        (*bulges)[ip] = merged;
        bulges->removeAt(ii);
        // Examine the vertex that moved into place i. Without a bulge list it
        // is skipped in this pass; callers see both behaviours and keep them.
        --i;
      }
    } else {
      // Open the ring, drop vertex 0 and close it again on the next vertex.
      pts->removeLast();
      pts->removeAt(0);
      pts->append(pts->first());
      if (bulges != nullptr) {
        (*bulges)[ip] = merged;
        bulges->removeLast();
        bulges->removeAt(0);
        bulges->append(bulges->first());
      }
    }
  }
  return removed;
}
