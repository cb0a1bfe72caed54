// A second, deliberately plain implementation of the feature-line model, its
// geometry and its edits, on a vector of vertex positions instead of host
// objects. Tests compare the module against it bit for bit, so it follows the
// documented operation order and tolerances literally and shares nothing with
// the module but the host's geometry classes.
#ifndef VORA_TESTS_FEATURELINE_REFERENCE_MODEL_H
#define VORA_TESTS_FEATURELINE_REFERENCE_MODEL_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "vora/arx.h"

namespace vora::flref {

inline constexpr double kNearZero = 1e-10;
inline constexpr double kMaxStep = 0.5235987755982988;
inline constexpr double kTwoPi = 6.283185307179586;
inline bool nonZero(double v) { return v > kNearZero || v < -kNearZero; }

// Thrown values, kept apart from the module's own types.
struct FlError { int value; };       // the model's error enumeration
struct ResultError { int value; };   // an exported function's result code
struct HostError { int value; };     // an Acad::ErrorStatus

struct Point {
  AcGePoint3d pos;
  double bulge = 0.0;
  double arcDistance = 0.0;
  std::uint32_t type = 0;
  bool isFeature() const { return type == 0; }
};

// Which written vertices sample one arc: [first, last] on the circle.
struct ArcRun {
  std::size_t first, last;
  AcGePoint2d centre;
  double radius;
};

inline AcGePoint2d plan(const AcGePoint3d& p) { return p.convert2d(); }

// The plan arc from a to b with a bulge, running from a.
inline AcGeCircArc2d bulgeArc(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
  AcGeCircArc2d arc(plan(a), plan(b), bulge, false);
  if (bulge < 0.0) arc.reverseParam();
  return arc;
}

struct Model {
  std::vector<AcGePoint3d> vertices;  // the polyline's vertices as they stand
  std::vector<Point> points;
  std::vector<double> stations;
  AcGeTol tol;
  double mod = 0.015;
  std::vector<ArcRun> runs;  // of the last write-back

  // --- loading -------------------------------------------------------------
  void load(const std::vector<AcGePoint3d>& verts, double midOrdinate) {
    vertices = verts;
    mod = midOrdinate;
    if (vertices.size() < 2) throw FlError{6};
    const AcGePoint3d& a = vertices.front();
    const AcGePoint3d& b = vertices.back();
    const double m = std::max({std::fabs((a.x + b.x) * 0.5), std::fabs((a.y + b.y) * 0.5), std::fabs((a.z + b.z) * 0.5)});
    const int n = static_cast<int>(std::trunc(std::min(8.0, 12.0 - std::log10(m))));
    const double t = std::pow(10.0, -n);
    tol.setEqualPoint(mod / 10.0 < t ? mod / 10.0 : t);
    rebuild();
  }

  void rebuild() {
    points.clear();
    stations.clear();
    std::vector<AcGePoint3d> p;
    for (const auto& v : vertices)
      if (p.empty() || !v.isEqualTo(p.back(), tol)) p.push_back(v);
    for (std::size_t i = 0; i < p.size();) {
      std::size_t mid = 0, end = 0;
      if (i + 4 < p.size() && recognize(p, i, mid, end)) {
        const AcGeCircArc2d arc(plan(p[i]), plan(p[mid]), plan(p[end]));
        double bulge = std::tan((arc.endAng() - arc.startAng()) / 4.0);
        if (arc.isClockWise()) bulge = -bulge;
        points.push_back({p[i], bulge, 0.0, 0});
        gradeBreaks(p, i, end, arc);
        i = end;
      } else {
        points.push_back({p[i], 0.0, 0.0, 0});
        ++i;
      }
    }
    computeStations();
  }

  static std::size_t nextNonCollinear(const std::vector<AcGePoint3d>& p, std::size_t i) {
    for (std::size_t k = i + 2; k < p.size(); ++k)
      if (!AcGeLineSeg2d(plan(p[i]), plan(p[k])).isOn(plan(p[k - 1]))) return k - 1;
    return i;
  }

  bool recognize(const std::vector<AcGePoint3d>& p, std::size_t i, std::size_t& mid, std::size_t& end) const {
    mid = nextNonCollinear(p, i);
    end = nextNonCollinear(p, mid);
    const AcGeCircArc2d arc(plan(p[i]), plan(p[mid]), plan(p[end]));
    if (arc.isDegenerate()) return false;
    AcGeCircArc2d circle(arc.center(), arc.radius());
    circle.setRefVec(plan(p[i]) - arc.center());
    if (!(circle.paramOf(plan(p[end])) > circle.paramOf(plan(p[mid])))) circle.reverseParam();
    double prev = 0.0;
    int count = 1;
    std::size_t last = i;
    for (std::size_t j = i + 1; j < p.size(); ++j) {
      if (!circle.isOn(plan(p[j]), tol)) break;
      const double a = std::fmod(circle.paramOf(plan(p[j])), kTwoPi);
      if (prev - a > tol.equalVector()) break;
      if (std::fabs(a - prev) - kMaxStep > kNearZero) break;
      ++count;
      prev = a;
      last = j;
    }
    if (last < end || count < 4) return false;
    end = last;
    return true;
  }

  void gradeBreaks(const std::vector<AcGePoint3d>& p, std::size_t i, std::size_t e, const AcGeCircArc2d& arc) {
    auto s = [&](std::size_t k) { return arc.length(arc.startAng(), arc.paramOf(plan(p[k]))); };
    auto addBreak = [&](std::size_t k) { points.push_back({p[k], 0.0, s(k), 1}); };
    std::size_t k = i + 1;
    while (k < e) {
      if (p[k - 1].isEqualTo(p[k], tol)) {
        ++k;
        continue;
      }
      if (plan(p[k - 1]).isEqualTo(plan(p[k]), tol) || std::fabs(s(k) - s(k - 1)) <= kNearZero) {
        const bool rising = p[k + 1].z > p[k].z;
        std::size_t j = k + 1;
        while (j <= e && plan(p[j]).isEqualTo(plan(p[k - 1]), tol) &&
               (rising ? p[j].z >= p[j - 1].z : p[j].z <= p[j - 1].z))
          ++j;
        if (j <= e && j - 1 < e) addBreak(j - 1);
        k = j;
        continue;
      }
      if (e >= p.size()) throw std::out_of_range("endIndex >= vertices.size())");
      const AcGeLine2d profile(AcGePoint2d(s(k - 1), p[k - 1].z), AcGePoint2d(s(k), p[k].z));
      std::size_t j = k + 1;
      for (; j <= e; ++j) {
        const double sj = s(j);
        if (std::isnan(sj) || std::isnan(p[j].z)) throw FlError{0};
        if (!profile.isOn(AcGePoint2d(sj, p[j].z), tol)) break;
      }
      if (j > e) {
        ++k;
        continue;
      }
      if (j - 1 < e) addBreak(j - 1);
      k = j;
    }
  }

  static double planLength(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
    if (nonZero(bulge)) return bulgeArc(a, b, bulge).length();
    return plan(a).distanceTo(plan(b));
  }

  void computeStations() {
    stations.clear();
    stations.push_back(0.0);
    if (points.size() >= 2) {
      std::size_t f = 0;
      double S = 0.0;
      for (std::size_t k = 1; k < points.size(); ++k) {
        if (!points[k].isFeature()) {
          stations.push_back(S + points[k].arcDistance);
          continue;
        }
        stations.push_back(S + planLength(points[f].pos, points[k].pos, points[f].bulge));
        f = k;
        S = stations[k];
      }
    }
    if (stations.size() != points.size()) throw FlError{3};
  }

  // --- writing back -------------------------------------------------------
  std::size_t cursor = 0;
  void put(const AcGePoint3d& v) {
    if (cursor < vertices.size())
      vertices[cursor] = v;
    else
      vertices.push_back(v);
    ++cursor;
  }

  void writeBack() {
    cursor = 0;
    runs.clear();
    for (std::size_t i = 0; i < points.size();) {
      if (!points[i].isFeature()) {
        ++i;
      } else if (nonZero(points[i].bulge)) {
        std::size_t j = i + 1;
        while (j < points.size() && !points[j].isFeature()) ++j;
        if (j == points.size()) throw FlError{3};
        span(i, j);
        i = j;
      } else {
        put(points[i].pos);
        ++i;
      }
    }
    vertices.resize(cursor);
    computeStations();
  }

  std::vector<double> elevations(const AcGeCircArc2d& arc, double z0, double z1, const AcGeDoubleArray& t,
                                 int count) const {
    const int n = t.length();
    if (n == 0 || n != count) throw FlError{3};
    auto l = [&](int k) { return arc.length(arc.startAng(), t[k]); };
    if (std::fabs(l(n - 1) - l(0)) <= kNearZero) return {z0, z1};
    std::vector<double> z;
    for (int k = 0; k < n; ++k) z.push_back((l(k) - l(0)) * ((z1 - z0) / (l(n - 1) - l(0))) + z0);
    return z;
  }

  void span(std::size_t a, std::size_t b) {
    const AcGeCircArc2d arc = bulgeArc(points[a].pos, points[b].pos, points[a].bulge);
    if (arc.isDegenerate()) return;
    const double L = arc.length();
    const std::size_t runStart = cursor;
    bool first = true;
    for (std::size_t s = a; s < b;) {
      std::size_t n = s + 1;
      if (points[n].arcDistance - L > kNearZero) n = b;
      const double d0 = points[s].arcDistance;
      const double d1 = n == b ? L : points[n].arcDistance;
      const double t0 = arc.paramAtLength(arc.startAng(), d0);
      const double t1 = arc.paramAtLength(arc.startAng(), d1);
      AcGePoint2dArray pts;
      AcGeDoubleArray ts;
      if (std::fabs(t1 - t0) > tol.equalPoint()) {
        arc.getSamplePoints(t0, t1, mod, pts, ts);
        if (pts.length() < 16) {
          pts.setLogicalLength(0);
          ts.setLogicalLength(0);
          for (int k = 0; k < 16; ++k) {
            const double t = t0 + k * std::fabs(t1 - t0) / 15;
            ts.append(t);
            pts.append(arc.evalPoint(t));
          }
        }
      } else {
        for (int k = 0; k < 2; ++k) {
          ts.append(t0);
          pts.append(arc.evalPoint(t0));
        }
      }
      const std::vector<double> z = elevations(arc, points[s].pos.z, points[n].pos.z, ts, pts.length());
      for (int k = first ? 0 : 1; k < pts.length(); ++k)
        put(AcGePoint3d(pts[k].x, pts[k].y, static_cast<std::size_t>(k) < z.size() ? z[k] : 0.0));
      first = false;
      s = n;
    }
    if (cursor > runStart) runs.push_back({runStart, cursor - 1, arc.center(), arc.radius()});
  }

  // --- editing ------------------------------------------------------------
  std::size_t neighbour(std::size_t i, std::uint32_t type, bool backwards) const {
    if (backwards) {
      for (std::size_t k = i; k-- > 0;)
        if (points[k].type == type) return k;
    } else {
      for (std::size_t k = i + 1; k < points.size(); ++k)
        if (points[k].type == type) return k;
    }
    return i;
  }

  bool segmentIsValid(const Point& a, const Point& b) const {
    if (nonZero(a.bulge)) return !AcGeCircArc2d(plan(a.pos), plan(b.pos), a.bulge, false).isDegenerate();
    return !a.pos.isEqualTo(b.pos, tol);
  }

  bool planSegmentHolds(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) const {
    if (nonZero(bulge)) return !AcGeCircArc2d(plan(a), plan(b), bulge, false).isDegenerate();
    return !plan(a).isEqualTo(plan(b), tol);
  }

  bool canMove(std::size_t i, const AcGeVector3d& d) const {
    if (i >= points.size()) throw FlError{4};
    const AcGePoint3d q = points[i].pos + d;
    if (!points[i].isFeature()) return std::fabs(d.x) <= tol.equalPoint() && std::fabs(d.y) <= tol.equalPoint();
    bool ok = true;
    if (i > 0) {
      const std::size_t f = neighbour(i, 0, true);
      ok = ok && planSegmentHolds(points[f].pos, q, points[f].bulge);
    }
    if (i + 1 < points.size()) {
      const std::size_t g = neighbour(i, 0, false);
      ok = ok && planSegmentHolds(q, points[g].pos, points[i].bulge);
    }
    return ok;
  }

  static bool hasNaN(double x, double y, double z) { return std::isnan(x) || std::isnan(y) || std::isnan(z); }

  bool movePoint(std::size_t i, const AcGeVector3d& d) {
    if (i >= points.size()) throw FlError{4};
    if (d.isZeroLength()) return true;
    if (!canMove(i, d)) return false;
    if (!hasNaN(d.x, d.y, d.z)) points[i].pos += d;
    writeBack();
    return true;
  }

  bool setPointPosition(std::size_t i, const AcGePoint3d& p) {
    if (i >= points.size()) throw FlError{4};
    if (p.isEqualTo(points[i].pos, tol)) return true;
    if (!canMove(i, p - points[i].pos)) return false;
    if (!hasNaN(p.x, p.y, p.z)) points[i].pos = p;
    writeBack();
    return true;
  }

  bool insertFeaturePoint(const AcGePoint3d& p, std::size_t k, double bulge) {
    const Point fresh{p, bulge, 0.0, 0};
    if (k > 0) {
      std::size_t f = k;
      while (f-- > 0 && !points[f].isFeature()) {
      }
      if (f == static_cast<std::size_t>(-1)) return false;
      if (!segmentIsValid(points[f], fresh)) return false;
    }
    if (!points.empty() && k + 1 < points.size()) {
      if (points[k].isFeature() || neighbour(k, 0, false) != k)
        if (!segmentIsValid(fresh, points[k])) return false;
    }
    if (k < points.size()) {
      points.insert(points.begin() + static_cast<std::ptrdiff_t>(k), fresh);
      auto from = points.begin() + static_cast<std::ptrdiff_t>(k + 1);
      auto to = from;
      while (to != points.end() && !to->isFeature()) ++to;
      points.erase(from, to);
    } else {
      if (nonZero(bulge)) return false;
      points.push_back(fresh);
    }
    writeBack();
    return true;
  }

  std::size_t firstAtOrAfter(double station, std::size_t from) const {
    std::size_t k = from;
    while (k < points.size() && stations[k] < station - kNearZero) ++k;
    return k;
  }

  bool insertFeaturePointAtStation(const AcGePoint3d& p, double station, double bulge) {
    if (station < -kNearZero) return false;
    return insertFeaturePoint(p, firstAtOrAfter(station, 0), bulge);
  }

  bool insertElevationPoint(double station, double elevation) {
    if (station < -kNearZero) return false;
    if (!(stations.size() > points.size() - 1)) throw FlError{4};
    if (station - stations.back() > kNearZero) return false;
    const std::size_t k = firstAtOrAfter(station, 1);
    if (k >= points.size()) return false;  // a one-point line has no segment to hold it
    const std::size_t p = k - 1;
    const Point& at = points[p];
    if (at.isFeature() && std::fabs(at.bulge) <= tol.equalPoint()) {
      const AcGeLineSeg2d seg(plan(at.pos), plan(points[k].pos));
      const AcGePoint2d q = seg.evalPoint(seg.paramAtLength(0.0, station - stations[p]));
      points.insert(points.begin() + static_cast<std::ptrdiff_t>(k), Point{{q.x, q.y, elevation}, 0.0, 0.0, 0});
    } else {
      const std::size_t f = at.isFeature() ? p : neighbour(p, 0, true);
      const std::size_t g = neighbour(k, 0, false);
      const AcGeCircArc2d arc = bulgeArc(points[f].pos, points[g].pos, points[f].bulge);
      const double along = station - stations[f];
      const AcGePoint2d q = arc.evalPoint(arc.paramAtLength(arc.startAng(), along));
      points.insert(points.begin() + static_cast<std::ptrdiff_t>(k), Point{{q.x, q.y, elevation}, 0.0, along, 1});
    }
    writeBack();
    return true;
  }

  bool eraseElevationPoint(std::size_t i) {
    if (i >= points.size() || points[i].isFeature()) return false;
    points.erase(points.begin() + static_cast<std::ptrdiff_t>(i));
    writeBack();
    return true;
  }

  bool eraseFeaturePoint(std::size_t i) {
    if (i >= points.size()) return false;
    const auto at = [&](std::size_t k) { return points.begin() + static_cast<std::ptrdiff_t>(k); };
    if (!points[i].isFeature()) {
      points.erase(at(i));
    } else if (i + 1 < points.size() || points.size() < 2) {
      // Without a feature point after i (a one-point line) the range runs to the end.
      const std::size_t g = neighbour(i, 0, false);
      points.erase(at(i), g == i ? points.end() : at(g));
    } else {
      const std::size_t f = neighbour(i, 0, true);
      points[f].bulge = 0.0;
      points.erase(at(f + 1), points.end());
    }
    writeBack();
    return true;
  }

  bool setMidOrdinateDistance(double distance, bool recalculate) {
    if (std::isnan(distance)) return false;
    if (distance - tol.equalPoint() <= kNearZero) return false;
    if (std::fabs(distance - mod) <= kNearZero) return true;
    if (distance - mod > kNearZero) rebuild();
    mod = distance;
    if (recalculate) writeBack();
    return true;
  }

  bool interpolate(std::vector<int>& indices, double z0, double z1) {
    std::sort(indices.begin(), indices.end());
    const double s0 = stations.at(static_cast<std::size_t>(indices.front()));
    const double s1 = stations.at(static_cast<std::size_t>(indices.back()));
    bool ok = true;
    for (int i : indices) {
      const auto k = static_cast<std::size_t>(i);
      const double z = (stations[k] - s0) * (z1 - z0) / (s1 - s0) + z0;
      if (!setPointPosition(k, AcGePoint3d(points[k].pos.x, points[k].pos.y, z))) ok = false;
    }
    return ok;
  }
};

}  // namespace vora::flref

#endif
