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
  // Vertex 0 is examined first and only once; in a ring it sits between the
  // last-but-one vertex and vertex 1. A ring of one point twice is left whole
  // rather than emptied.
  if (ring && n0 >= 3) {
    const int prev = static_cast<int>(n0 - 2);
    double merged = 0.0;
    if (mergedBulge((*pts)[prev], (*pts)[0], (*pts)[1], bulges != nullptr ? (*bulges)[prev] : 0.0,
                    bulges != nullptr ? (*bulges)[0] : 0.0, merged)) {
      ++removed;
      // Open the ring, drop vertex 0 and close it again on the next vertex.
      pts->removeLast();
      pts->removeAt(0);
      pts->append(pts->first());
      if (bulges != nullptr) {
        (*bulges)[prev] = merged;
        bulges->removeLast();
        bulges->removeAt(0);
        bulges->append(bulges->first());
      }
    }
  }

  // The rest of the pass visits vertices 1 .. n-2 of the list as it shrinks.
  // Kept vertices are compacted to the front (the first `kept` places), which
  // gives the list the pass would see after each removal without shifting the
  // tail every time: the vertex examined is at `at`, its neighbours are the
  // last kept vertex and the vertex after `at`.
  const std::int64_t n = pts->length();
  AcGePoint3d* p = pts->asArrayPtr();
  double* b = bulges != nullptr ? bulges->asArrayPtr() : nullptr;
  std::int64_t kept = 1;
  std::int64_t at = 1;
  while (at < n - 1) {
    const std::int64_t prev = kept - 1;
    double merged = 0.0;
    if (mergedBulge(p[prev], p[at], p[at + 1], b != nullptr ? b[prev] : 0.0, b != nullptr ? b[at] : 0.0, merged)) {
      ++removed;
      ++at;
      if (b != nullptr) {
        b[prev] = merged;
      } else {
        // Without a bulge list the vertex that moves into the removed one's
        // place is not examined in this pass. Callers see both behaviours and
        // keep them.
        p[kept++] = p[at++];
      }
      continue;
    }
    p[kept] = p[at];
    if (b != nullptr) b[kept] = b[at];
    ++kept;
    ++at;
  }
  for (; at < n; ++at, ++kept) {
    p[kept] = p[at];
    if (b != nullptr) b[kept] = b[at];
  }
  pts->setLogicalLength(static_cast<int>(kept));
  if (bulges != nullptr) bulges->setLogicalLength(static_cast<int>(kept));
  return removed;
}
