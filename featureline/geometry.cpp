#include "featureline/geometry.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "featureline/errors.h"

namespace vora::fl {

namespace {

constexpr double kTwoPi = 6.283185307179586;

AcGePoint2d plan(const AcGePoint3d& p) { return {p.x, p.y}; }

// Grade breaks of the arc from vertex i to vertex e, appended as elevation
// points. s holds the plan distance along the arc of vertices i..e (s[0] is vertex i).
void appendGradeBreaks(const std::vector<AcGePoint3d>& pos, std::size_t i, std::size_t e,
                       const std::vector<double>& s, const AcGeTol& tol, std::vector<FeaturelinePoint>& out) {
  auto sAt = [&](std::size_t k) { return s[k - i]; };
  auto breakAt = [&](std::size_t k) {
    out.emplace_back(pos[k], 0.0, sAt(k), FeaturelinePoint::kElevationPoint);
  };
  std::size_t k = i + 1;
  while (k < e) {
    const AcGePoint3d& prev = pos[k - 1];
    const AcGePoint3d& cur = pos[k];
    if (prev.isEqualTo(cur, tol)) {
      ++k;
      continue;
    }
    if (plan(prev).isEqualTo(plan(cur), tol) || std::fabs(sAt(k) - sAt(k - 1)) <= kNearZero) {
      // A vertical step: follow it while the vertices stay above the same plan
      // point and keep climbing (or keep falling); the break is its top (or bottom).
      const bool rising = pos[k + 1].z > cur.z;
      std::size_t j = k + 1;
      while (j <= e && plan(pos[j]).isEqualTo(plan(prev), tol) &&
             (rising ? pos[j].z >= pos[j - 1].z : pos[j].z <= pos[j - 1].z))
        ++j;
      if (j <= e) breakAt(j - 1);
      // The walk resumes at the first vertex that left the step; resuming at
      // the break itself would find the same step again and repeat the break.
      k = j;
      continue;
    }
    if (e >= pos.size()) throw std::out_of_range("endIndex >= vertices.size())");
    const AcGeLine2d profile(AcGePoint2d(sAt(k - 1), prev.z), AcGePoint2d(sAt(k), cur.z));
    std::size_t j = k + 1;
    for (; j <= e; ++j) {
      if (std::isnan(sAt(j)) || std::isnan(pos[j].z)) throw FeaturelineError::eInvalidInputPoint;
      if (!profile.isOn(AcGePoint2d(sAt(j), pos[j].z), tol)) break;
    }
    if (j > e) {
      ++k;
      continue;
    }
    if (j - 1 < e) breakAt(j - 1);
    k = j;
  }
}

}  // namespace

double pointTolerance(const AcGePoint3d& first, const AcGePoint3d& last, double midOrdinateDistance) {
  const AcGePoint3d mid((first.x + last.x) * 0.5, (first.y + last.y) * 0.5, (first.z + last.z) * 0.5);
  const double m = std::max({std::fabs(mid.x), std::fabs(mid.y), std::fabs(mid.z)});
  const double e = std::min(8.0, 12.0 - std::log10(m));
  const double t = std::pow(10.0, -std::trunc(e));
  const double fromDistance = midOrdinateDistance / 10.0;
  return fromDistance < t ? fromDistance : t;
}

std::vector<AcGePoint3d> withoutDuplicates(const AcGePoint3d* positions, std::size_t count, const AcGeTol& tol) {
  std::vector<AcGePoint3d> kept;
  kept.reserve(count);
  for (std::size_t k = 0; k < count; ++k)
    if (kept.empty() || !positions[k].isEqualTo(kept.back(), tol)) kept.push_back(positions[k]);
  return kept;
}

namespace {

// b - a when the subtraction is exact (the rounding error of the sum, found
// with Knuth's two-sum, is zero); false otherwise.
bool exactDifference(double b, double a, double& d) {
  d = b - a;
  const double bv = d - b;
  const double err = (b - (d - bv)) + (-a - bv);
  return err == 0.0;
}

// Whether a * b == c * d exactly: a product is the pair of its rounded value
// and its rounding error (fma), and that pair is unique. Factors so small
// that the error could underflow are refused.
bool sameProduct(double a, double b, double c, double d) {
  for (double f : {a, b, c, d})
    if (f != 0.0 && !(std::fabs(f) >= 1e-140 && std::fabs(f) <= 1e140)) return false;
  const double p = a * b, q = c * d;
  return p == q && std::fma(a, b, -p) == std::fma(c, d, -q);
}

int sign(double v) { return (v > 0.0) - (v < 0.0); }

// How far from the origin an exact straight run may reach, per unit of the
// global point tolerance, for the host's on-segment test of its vertices to
// be certain: a vertex exactly on a segment is found off it by rounding
// alone, a few units of roundoff (1.1e-16) of the coordinates involved, and
// this keeps the tolerance at 90 such units or more. With the default 1e-10,
// runs within 1e4 of the origin qualify.
constexpr double kExactRunReach = 1e14;

double planMagnitude(const AcGePoint3d& p) { return std::max(std::fabs(p.x), std::fabs(p.y)); }

}  // namespace

std::vector<std::size_t> exactStraightRuns(const std::vector<AcGePoint3d>& pos) {
  const std::size_t n = pos.size();
  std::vector<std::size_t> runs(n);
  double nextDx = 0.0, nextDy = 0.0;
  for (std::size_t k = n; k-- > 0;) {
    runs[k] = k;
    double dx = 0.0, dy = 0.0;
    if (k + 1 >= n || !exactDifference(pos[k + 1].x, pos[k].x, dx) || !exactDifference(pos[k + 1].y, pos[k].y, dy) ||
        (dx == 0.0 && dy == 0.0)) {
      nextDx = nextDy = 0.0;
      continue;
    }
    runs[k] = k + 1;
    // Steps k -> k+1 and k+1 -> k+2 parallel and pointing the same way:
    // the three positions lie on one line in this order.
    if (runs[k + 1] > k + 1 && sameProduct(dx, nextDy, dy, nextDx) && sign(dx) == sign(nextDx) &&
        sign(dy) == sign(nextDy))
      runs[k] = runs[k + 1];
    nextDx = dx;
    nextDy = dy;
  }
  return runs;
}

std::size_t nextNonCollinear(const std::vector<AcGePoint3d>& pos, std::size_t i, std::vector<std::size_t>* runs) {
  auto onSegment = [&](std::size_t k) { return AcGeLineSeg2d(plan(pos[i]), plan(pos[k])).isOn(plan(pos[k - 1])); };
  std::size_t k = i + 2;
  // Most scans end at their first test (any vertex of a curve); the runs are
  // worked out only once a scan gets past it.
  if (runs != nullptr && k < pos.size()) {
    if (!onSegment(k)) return k - 1;
    ++k;
    if (runs->empty()) *runs = exactStraightRuns(pos);
  }
  if (runs != nullptr && k < pos.size() && (*runs)[i] >= k) {
    // Every vertex of an exact straight run lies on the segment between any
    // two others around it, so the test below would pass for all of them
    // while they are near enough the origin for rounding not to count. Each
    // coordinate moves one way along the run, so how far the stretch from i
    // to r reaches grows with r: the last vertex that qualifies is found by
    // bisection, and testing resumes after it.
    const double reach = AcGeContext::gTol.equalPoint() * kExactRunReach;
    const double from = planMagnitude(pos[i]);
    std::size_t lo = i, hi = (*runs)[i];
    while (lo < hi) {
      const std::size_t mid = lo + (hi - lo + 1) / 2;
      if (std::max(from, planMagnitude(pos[mid])) <= reach)
        lo = mid;
      else
        hi = mid - 1;
    }
    k = std::max(k, lo + 1);
  }
  for (; k < pos.size(); ++k)
    if (!onSegment(k)) return k - 1;
  return i;
}

bool recognizeArc(const std::vector<AcGePoint3d>& pos, std::size_t i, const AcGeTol& tol, double maxStepAngle,
                  std::size_t& middle, std::size_t& end, std::vector<std::size_t>* runs) {
  const std::size_t m = nextNonCollinear(pos, i, runs);
  // With nothing off the line from i, the second scan would repeat the first.
  const std::size_t e = m == i ? i : nextNonCollinear(pos, m, runs);
  const AcGeCircArc2d arc(plan(pos[i]), plan(pos[m]), plan(pos[e]));
  if (arc.isDegenerate()) return false;

  AcGeCircArc2d circle(arc.center(), arc.radius());
  circle.setRefVec(plan(pos[i]) - arc.center());
  if (!(circle.paramOf(plan(pos[e])) > circle.paramOf(plan(pos[m])))) circle.reverseParam();

  int counted = 1;
  // Vertex i is the reference vector's point: its angle is 0 by construction,
  // not whatever paramOf would round it to (possibly just below 2 pi).
  double previous = 0.0;
  std::size_t last = i;
  for (std::size_t j = i + 1; j < pos.size(); ++j) {
    const AcGePoint2d p = plan(pos[j]);
    if (!circle.isOn(p, tol)) break;
    const double a = std::fmod(circle.paramOf(p), kTwoPi);
    if (previous - a > tol.equalVector()) break;
    if (std::fabs(a - previous) - maxStepAngle > kNearZero) break;
    ++counted;
    previous = a;
    last = j;
  }
  if (last < e || counted < kMinArcVertices) return false;
  middle = m;
  end = last;
  return true;
}

std::vector<FeaturelinePoint> buildPoints(const std::vector<AcGePoint3d>& pos, const AcGeTol& tol,
                                          double maxStepAngle) {
  std::vector<FeaturelinePoint> points;
  points.reserve(pos.size());
  std::size_t i = 0;
  std::vector<double> s;
  std::vector<std::size_t> runs;
  while (i < pos.size()) {
    std::size_t m = 0, e = 0;
    if (i + 4 < pos.size() && recognizeArc(pos, i, tol, maxStepAngle, m, e, &runs)) {
      const AcGeCircArc2d arc(plan(pos[i]), plan(pos[m]), plan(pos[e]));
      double bulge = std::tan((arc.endAng() - arc.startAng()) / 4.0);
      if (arc.isClockWise()) bulge = -bulge;
      points.emplace_back(pos[i], bulge, 0.0, FeaturelinePoint::kFeaturePoint);
      s.clear();
      for (std::size_t k = i; k <= e; ++k) s.push_back(arc.length(arc.startAng(), arc.paramOf(plan(pos[k]))));
      appendGradeBreaks(pos, i, e, s, tol, points);
      i = e;
    } else {
      points.emplace_back(pos[i], 0.0, 0.0, FeaturelinePoint::kFeaturePoint);
      ++i;
    }
  }
  return points;
}

AcGeCircArc2d segmentArc(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
  AcGeCircArc2d arc(plan(a), plan(b), bulge, false);
  // Bulge arcs come out counter-clockwise; a clockwise one has to be turned
  // round to start at a.
  if (bulge < 0.0 && !arc.isDegenerate()) arc.reverseParam();
  return arc;
}

double planLength(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
  // Measured on the arc as it runs from a (a clockwise one turned round), the
  // same arc whose lengths place the samples and elevation points of a
  // write-back, so stations and arc distances agree to the last bit.
  if (isNonZero(bulge)) return segmentArc(a, b, bulge).length();
  return plan(a).distanceTo(plan(b));
}

void computeStations(const std::vector<FeaturelinePoint>& points, std::vector<double>& stations) {
  stations.clear();
  stations.reserve(points.size());
  stations.push_back(0.0);
  if (points.size() < 2) {
    if (stations.size() != points.size()) throw FeaturelineError::eDataError;
    return;
  }
  std::size_t f = 0;
  double base = 0.0;
  for (std::size_t k = 1; k < points.size(); ++k) {
    const FeaturelinePoint& p = points[k];
    if (p.isElevationPoint()) {
      stations.push_back(base + p.arcDistance);
      continue;
    }
    const double station = base + planLength(points[f].position, p.position, points[f].bulge);
    stations.push_back(station);
    f = k;
    base = station;
  }
  if (stations.size() != points.size()) throw FeaturelineError::eDataError;
}

std::vector<double> elevationsByLength(const AcGeCircArc2d& arc, double z0, double z1, const AcGeDoubleArray& params,
                                       int sampleCount) {
  const int n = params.length();
  if (n == 0 || n != sampleCount) throw FeaturelineError::eDataError;
  const double start = arc.startAng();
  const double l0 = arc.length(start, params[0]);
  const double ln = arc.length(start, params[n - 1]);
  if (std::fabs(ln - l0) <= kNearZero) return {z0, z1};
  std::vector<double> z(static_cast<std::size_t>(n));
  const double slope = (z1 - z0) / (ln - l0);
  for (int k = 0; k < n; ++k) z[static_cast<std::size_t>(k)] = (arc.length(start, params[k]) - l0) * slope + z0;
  return z;
}

namespace {

void tessellateArcSpan(const std::vector<FeaturelinePoint>& points, std::size_t a, std::size_t b,
                       const AcGeTol& tol, double midOrdinateDistance, VertexSink& sink) {
  const AcGeCircArc2d arc = segmentArc(points[a].position, points[b].position, points[a].bulge);
  if (arc.isDegenerate()) return;
  const double length = arc.length();
  AcGePoint2dArray samples;
  AcGeDoubleArray params;
  bool firstSpan = true;
  std::size_t s = a;
  while (s < b) {
    std::size_t n = s + 1;
    if (points[n].arcDistance - length > kNearZero) n = b;
    const double d0 = s == a ? 0.0 : points[s].arcDistance;
    const double d1 = n == b ? length : points[n].arcDistance;
    const double t0 = arc.paramAtLength(arc.startAng(), d0);
    const double t1 = arc.paramAtLength(arc.startAng(), d1);
    if (std::fabs(t1 - t0) > tol.equalPoint()) {
      arc.getSamplePoints(t0, t1, midOrdinateDistance, samples, params);
      if (samples.length() < kMinArcSamples) {
        samples.removeAll();
        params.removeAll();
        // k * span / 15 rather than k * (span / 15): the parameters are
        // compared bit for bit with other implementations of this rule.
        for (int k = 0; k < kMinArcSamples; ++k) {
          const double t = t0 + k * std::fabs(t1 - t0) / (kMinArcSamples - 1);
          params.append(t);
          samples.append(arc.evalPoint(t));
        }
      }
    } else {
      samples.removeAll();
      params.removeAll();
      for (int k = 0; k < 2; ++k) {
        params.append(t0);
        samples.append(arc.evalPoint(t0));
      }
    }
    const std::vector<double> z =
        elevationsByLength(arc, points[s].position.z, points[n].position.z, params, samples.length());
    for (int k = firstSpan ? 0 : 1; k < samples.length(); ++k) {
      const std::size_t zk = static_cast<std::size_t>(k);
      sink.put(AcGePoint3d(samples[k].x, samples[k].y, zk < z.size() ? z[zk] : 0.0));
    }
    firstSpan = false;
    s = n;
  }
}

}  // namespace

void tessellate(const std::vector<FeaturelinePoint>& points, const AcGeTol& tol, double midOrdinateDistance,
                VertexSink& sink) {
  std::size_t i = 0;
  while (i < points.size()) {
    const FeaturelinePoint& p = points[i];
    if (p.isElevationPoint()) {
      ++i;
      continue;
    }
    if (isNonZero(p.bulge)) {
      std::size_t j = i + 1;
      while (j < points.size() && !points[j].isFeaturePoint()) ++j;
      if (j == points.size()) throw FeaturelineError::eDataError;
      tessellateArcSpan(points, i, j, tol, midOrdinateDistance, sink);
      i = j;
      continue;
    }
    sink.put(p.position);
    ++i;
  }
}

}  // namespace vora::fl
