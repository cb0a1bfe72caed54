#include <cmath>
#include <cstdint>
#include <utility>

#include <algorithm>
#include <limits>

#include "geometry/bulge.h"
#include "geometry/edge_slabs.h"
#include "geometry/tolerance.h"
#include "vora/distance.h"
#include "vora/polygon.h"

namespace vora {

namespace {

std::int64_t countOf(const AcGePoint3dArray* pts) { return pts->length(); }

// Sweep of an angle pair as the area and containment tests have always taken
// it: e + (2pi - s) for a pair through angle 0, which may differ in the last
// bit from the (e + 2pi) - s of the bulge code.
double pairSweep(double s, double e) { return e > s ? e - s : e + (kTwoPi - s); }

AcGePoint3d arcMidpoint(const BulgeArc& arc) {
  const double m = arc.start + pairSweep(arc.start, arc.end) * 0.5;
  const double R = std::fabs(arc.r);
  return {arc.cx + R * std::cos(m), arc.cy + R * std::sin(m), 0.0};
}

}  // namespace

EdgeHit testEdge(const AcGePoint3d& a, const AcGePoint3d& b, const double* point, double tol) {
  double t = 0.0;
  const double d = std::fabs(vora_distpointlinesigned(&a.x, &b.x, point, nullptr, &t));
  if (d < tol && -tol <= t && t <= 1.0 + tol) return EdgeHit::kBoundary;
  const double px = point[0], py = point[1];
  // Half-open in y, so a vertex on the ray is counted once.
  if ((a.y <= py && py < b.y) || (b.y <= py && py < a.y)) {
    const double x = (py - a.y) / (b.y - a.y) * (b.x - a.x) + a.x;
    if (x > px) return EdgeHit::kCrossing;
  }
  return EdgeHit::kNone;
}

bool EdgeSlabs::build(const AcGePoint3dArray* pts, double tol) {
  const std::int64_t n = countOf(pts);
  if (n < 2 || n > std::numeric_limits<std::uint32_t>::max() / 16 || !std::isfinite(tol)) return false;
  p_ = pts->asArrayPtr();
  tol_ = tol;
  double ylo = p_[0].y, yhi = p_[0].y, magnitude = 0.0;
  for (std::int64_t i = 0; i < n; ++i) {
    if (!std::isfinite(p_[i].x) || !std::isfinite(p_[i].y)) return false;
    ylo = std::min(ylo, p_[i].y);
    yhi = std::max(yhi, p_[i].y);
    magnitude = std::max(magnitude, std::max(std::fabs(p_[i].x), std::fabs(p_[i].y)));
  }
  const std::size_t edges = static_cast<std::size_t>(n - 1);

  // How far from an edge's y range the boundary test can fire: tol from the
  // line, tol of the edge's length beyond either end. Doubled, plus a margin
  // far above the rounding of coordinates of this magnitude.
  const double reach = std::max(tol, 0.0);
  const double slack = 1e-12 * (1.0 + magnitude);
  std::vector<double> low(edges), high(edges);
  double spans = 0.0;
  for (std::size_t i = 0; i < edges; ++i) {
    const AcGePoint3d& a = p_[i];
    const AcGePoint3d& b = p_[i + 1];
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double margin = 2.0 * (reach + reach * std::sqrt(dx * dx + dy * dy)) + slack;
    low[i] = std::min(a.y, b.y) - margin;
    high[i] = std::max(a.y, b.y) + margin;
    spans += high[i] - low[i];
  }
  if (!std::isfinite(spans)) return false;
  // As many slabs as edges, unless the edges are so tall that each would be
  // listed in many: then fewer, so that the lists hold about five entries
  // per edge in all.
  const double range = yhi - ylo;
  const double wanted = spans > 0.0 ? std::floor(4.0 * static_cast<double>(edges) * range / spans) : 1.0;
  slabs_ = static_cast<std::size_t>(std::clamp(wanted, 1.0, static_cast<double>(edges)));
  y0_ = ylo;
  inverseHeight_ = range > 0.0 ? static_cast<double>(slabs_) / range : 0.0;
  if (!std::isfinite(inverseHeight_)) return false;

  std::vector<std::size_t> first(edges), last(edges);
  std::size_t total = 0;
  for (std::size_t i = 0; i < edges; ++i) {
    first[i] = slabOf(low[i]);
    last[i] = slabOf(high[i]);
    total += last[i] - first[i] + 1;
  }
  if (total > 8 * edges + 1024) return false;
  ends_.assign(slabs_, 0);
  for (std::size_t i = 0; i < edges; ++i)
    for (std::size_t s = first[i]; s <= last[i]; ++s) ++ends_[s];
  std::uint32_t sum = 0;
  for (std::uint32_t& e : ends_) {
    const std::uint32_t count = e;
    e = sum;
    sum += count;
  }
  edges_.resize(sum);
  for (std::size_t i = 0; i < edges; ++i)
    for (std::size_t s = first[i]; s <= last[i]; ++s) edges_[ends_[s]++] = static_cast<std::uint32_t>(i);
  return true;
}

std::size_t EdgeSlabs::slabOf(double y) const {
  // Monotone in y, so an edge listed from slabOf(low) to slabOf(high) is
  // listed in the slab of every y between the two.
  const double s = std::floor((y - y0_) * inverseHeight_);
  if (!(s > 0.0)) return 0;
  if (s >= static_cast<double>(slabs_ - 1)) return slabs_ - 1;
  return static_cast<std::size_t>(s);
}

bool EdgeSlabs::contains(const double* point, bool onBoundaryResult) const {
  std::int64_t count = 0;
  if (std::isnan(point[1])) {
    // No slab for it; only the boundary test could answer, and it will not.
    return false;
  }
  const std::size_t s = slabOf(point[1]);
  for (std::uint32_t e = s == 0 ? 0 : ends_[s - 1]; e < ends_[s]; ++e) {
    const std::uint32_t i = edges_[e];
    const EdgeHit hit = testEdge(p_[i], p_[i + 1], point, tol_);
    if (hit == EdgeHit::kBoundary) return onBoundaryResult;
    if (hit == EdgeHit::kCrossing) ++count;
  }
  return (count & 1) != 0;
}

}  // namespace vora

using namespace vora;

VORA_API double vora_polygonarea(const AcGePoint3dArray* pts) {
  const std::int64_t n = countOf(pts);
  if (n == 0) return 0.0;
  const AcGePoint3d* p = pts->asArrayPtr();
  double sum = 0.0;
  const AcGePoint3d* prev = &p[n - 1];
  for (std::int64_t i = 0; i < n; ++i) {
    sum += prev->x * p[i].y - p[i].x * prev->y;
    prev = &p[i];
  }
  return sum * 0.5;
}

VORA_API double vora_polygonareaB(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges) {
  double area = vora_polygonarea(pts);
  const std::int64_t n = countOf(pts);
  if (bulges->length() != n || n == 1) return area;
  const AcGePoint3d* p = pts->asArrayPtr();
  const double* b = bulges->asArrayPtr();
  const double tol = tolPoint();
  EdgeSlabs slabs;
  int tests = 0;
  bool triedSlabs = false, haveSlabs = false;
  for (std::int64_t i = 0; i + 1 < n; ++i) {
    if (!(std::fabs(b[i]) >= tolValue())) continue;
    const BulgeArc arc = bulgeToArc(p[i], p[i + 1], b[i]);
    const double sweep = pairSweep(arc.start, arc.end);
    double segment = std::fabs((sweep - std::sin(sweep)) * (arc.r * 0.5 * arc.r));
    if (area < 0.0) segment = -segment;
    const AcGePoint3d mid = arcMidpoint(arc);
    const double test[3] = {(mid.x + (p[i].x + p[i + 1].x) / 2.0) / 2.0,
                            (mid.y + (p[i].y + p[i + 1].y) / 2.0) / 2.0, 0.0};
    // Only a segment that bites into the chord polygon changes the area; one
    // that bulges outward is deliberately not added.
    // From the fourth arc on, the ring's edges are sorted into slabs once so
    // that each further test looks at a few edges instead of all of them.
    if (!triedSlabs && ++tests > 3) {
      triedSlabs = true;
      haveSlabs = slabs.build(pts, tol);
    }
    const bool inside = haveSlabs ? slabs.contains(test, false) : vora_ispointinpolygon(pts, test, false, &tol);
    if (inside) area -= segment;
  }
  return area;
}

VORA_API AcGePoint3d vora_polygonCentroid2D(const AcGePoint3dArray* pts) {
  const std::int64_t n = countOf(pts);
  const AcGePoint3d* p = pts->asArrayPtr();
  double a = 0.0, sx = 0.0, sy = 0.0;
  for (std::int64_t i = 0; i + 1 < n; ++i) {
    const double k = p[i].x * p[i + 1].y - p[i].y * p[i + 1].x;
    a += k;
    sx += (p[i].x + p[i + 1].x) * k;
    sy += (p[i].y + p[i + 1].y) * k;
  }
  a = 3.0 * a;
  return {sx / a, sy / a, 0.0};
}

VORA_API bool vora_ispolygonccw(const AcGePoint3dArray* pts) {
  const std::int64_t n = countOf(pts);
  const AcGePoint3d* p = pts->asArrayPtr();
  double s = 0.0;
  for (std::int64_t i = 0; i + 1 < n; ++i) s += (p[i + 1].y + p[i].y) * (p[i + 1].x - p[i].x);
  return s < -tolValue();
}

VORA_API void vora_reversepolygon(AcGePoint3dArray* pts, AcGeDoubleArray* bulges) {
  const std::int64_t n = countOf(pts);
  if (n < 2 || bulges->length() != n) return;
  AcGePoint3d* p = pts->asArrayPtr();
  double* b = bulges->asArrayPtr();
  // Two vertices: exchanged, and both bulges change sign once. The closing
  // bulge's negation at the end belongs to the general pass; applying it here
  // as well would undo the sign change of bulge 1.
  if (n == 2) {
    std::swap(p[0], p[1]);
    b[0] = -b[0];
    b[1] = -b[1];
    return;
  }
  const std::int64_t h = (n - 1) / 2;
  for (std::int64_t i = 0; i <= h; ++i) {
    std::swap(p[i], p[n - 1 - i]);
    // The last pass skips the bulges only when n & 2 is set. For n = 4k+1
    // this exchanges the middle pair a second time (they end up as they
    // were) and for n = 4k+2 it leaves the middle bulge's sign alone. Stored
    // polygons have been reversed this way for years, so it stays.
    if (i == h && (n & 2) != 0) continue;
    const std::int64_t j = n - 2 - i;
    if (i == j) {
      b[i] = -b[i];
    } else {
      const double bi = b[i];
      b[i] = -b[j];
      b[j] = -bi;
    }
  }
  b[n - 1] = -b[n - 1];
}

VORA_API bool vora_ispointinpolygon(const AcGePoint3dArray* pts, const double* point, bool onBoundaryResult,
                                    const double* tolerance) {
  const std::int64_t n = countOf(pts);
  if (n == 1) return false;
  const AcGePoint3d* p = pts->asArrayPtr();
  const double tol = *tolerance;
  std::int64_t count = 0;
  for (std::int64_t i = 0; i + 1 < n; ++i) {
    const EdgeHit hit = testEdge(p[i], p[i + 1], point, tol);
    if (hit == EdgeHit::kBoundary) return onBoundaryResult;
    if (hit == EdgeHit::kCrossing) ++count;
  }
  return (count & 1) != 0;
}

VORA_API bool vora_ispointinpolygonB(const AcGePoint3dArray* pts, const AcGeDoubleArray* bulges,
                                     const double* point, bool onBoundaryResult, const double* tolerance) {
  const bool inside = vora_ispointinpolygon(pts, point, onBoundaryResult, tolerance);
  const std::int64_t n = countOf(pts);
  if (bulges->length() != n || n == 1) return inside;
  const AcGePoint3d* p = pts->asArrayPtr();
  const double* b = bulges->asArrayPtr();
  const double tol = *tolerance;
  const AcGePoint3d q(point[0], point[1], 0.0);
  for (std::int64_t i = 0; i + 1 < n; ++i) {
    if (!(std::fabs(b[i]) >= tolValue())) continue;
    const BulgeArc arc = bulgeToArc(p[i], p[i + 1], b[i]);
    const double R = std::fabs(arc.r);
    const double d = q.distanceTo(AcGePoint3d(arc.cx, arc.cy, 0.0));
    if (!(d <= R - tol || ((onBoundaryResult || inside) && std::fabs(d - R) < tol))) continue;
    const double alpha = directionAngle(q.x - arc.cx, q.y - arc.cy);
    bool inSpan = false;
    if (arc.end > arc.start) {
      inSpan = arc.start <= alpha && alpha <= arc.end;
    } else if (arc.start > arc.end) {
      // For an arc through angle 0 the span test compares alpha with the start
      // from both sides, so every direction passes; the side test below then
      // decides alone. Kept as it always behaved. A point on the centre has
      // no direction (NaN) and so lies in no span.
      inSpan = arc.start <= alpha || alpha <= arc.start;
    }
    if (!inSpan) continue;
    const AcGePoint3d mid = arcMidpoint(arc);
    const double dx = p[i + 1].x - p[i].x, dy = p[i + 1].y - p[i].y;
    const double L = std::sqrt(dx * dx + dy * dy);
    auto side = [&](const AcGePoint3d& s) {
      if (L <= tolPoint()) return AcGePoint3d(p[i].x, p[i].y, 0.0).distanceTo(AcGePoint3d(s.x, s.y, 0.0));
      return ((p[i].y - s.y) * dx - (p[i].x - s.x) * dy) / L;
    };
    // Between the chord and its arc: the chord test got this point wrong.
    if (side(q) * side(mid) > 0.0) return !inside;
  }
  return inside;
}
