// Runs the module's polygon functions side by side with the plain reference
// versions in reference/ over random and adversarial input, and requires
// bit-identical results, including the outputs that must be left alone.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "geometry/tolerance.h"
#include "reference/boolean_reference.h"
#include "reference/polygon_reference.h"
#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::kPi;
using vora::test::ToleranceGuard;

bool same(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

bool same(const AcGePoint3d& a, const AcGePoint3d& b) { return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z); }

bool same(const AcGePoint3dArray& a, const AcGePoint3dArray& b) {
  if (a.length() != b.length()) return false;
  for (int i = 0; i < a.length(); ++i)
    if (!same(a[i], b[i])) return false;
  return true;
}

bool same(const AcGeDoubleArray& a, const AcGeDoubleArray& b) {
  if (a.length() != b.length()) return false;
  for (int i = 0; i < a.length(); ++i)
    if (!same(a[i], b[i])) return false;
  return true;
}

bool same(const AcArray<AcGePoint3dArray>& a, const AcArray<AcGePoint3dArray>& b) {
  if (a.length() != b.length()) return false;
  for (int i = 0; i < a.length(); ++i)
    if (!same(a[i], b[i])) return false;
  return true;
}

bool same(const double* a, const double* b, int n) {
  for (int i = 0; i < n; ++i)
    if (!same(a[i], b[i])) return false;
  return true;
}

std::string show(const AcGePoint3dArray& p) {
  std::ostringstream o;
  o.precision(17);
  for (int i = 0; i < p.length(); ++i) o << "(" << p[i].x << "," << p[i].y << "," << p[i].z << ")";
  return o.str();
}

std::string show(const AcGeDoubleArray& b) {
  std::ostringstream o;
  o.precision(17);
  for (int i = 0; i < b.length(); ++i) o << b[i] << " ";
  return o.str();
}

// Counts comparisons and keeps the first few mismatches of each function.
class Tally {
public:
  void check(const char* what, bool ok, const std::string& detail) {
    ++cases_;
    if (ok) return;
    if (++failures_[what] <= 3) ADD_FAILURE() << what << " differs: " << detail;
  }
  long cases() const { return cases_; }

private:
  long cases_ = 0;
  std::map<std::string, int> failures_;
};

// Tolerance settings the cases cycle through: the defaults, a loose value
// with a tight point tolerance and the reverse, zero (every strict test off),
// and a coarse setting that makes near-ties common.
constexpr double kTolerances[][2] = {{1e-7, 1e-7}, {1e-3, 1e-9}, {1e-9, 1e-3}, {0.0, 0.0}, {0.05, 0.05}, {0.0, 1e-6}};
constexpr int kToleranceCount = 6;

class Gen {
public:
  explicit Gen(std::uint64_t seed) : rng_(seed) {}

  double uniform(double a, double b) { return std::uniform_real_distribution<double>(a, b)(rng_); }
  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }
  bool coin() { return pick(2) == 0; }

  // A ring of n distinct corners, star-shaped about (ox, oy), either
  // direction, on an integer grid (exact ties with edges and rays) or not,
  // then roughened: collinear midpoints, near-collinear points, duplicates,
  // and a repeated first vertex or not.
  AcGePoint3dArray ring(int n, double ox, double oy, double scale) {
    const bool grid = pick(3) == 0;
    const bool cw = coin();
    AcGePoint3dArray p;
    for (int i = 0; i < n; ++i) {
      double a = (i + uniform(0.0, 0.9)) / n * 2 * kPi;
      if (cw) a = -a;
      const double r = uniform(0.3, 1.0) * scale;
      double x = ox + r * std::cos(a), y = oy + r * std::sin(a);
      if (grid) {
        x = std::round(x);
        y = std::round(y);
      }
      p.append({x, y, height()});
    }
    for (int k = pick(4); k > 0 && p.length() > 1; --k) {
      const int i = pick(p.length() - 1);
      const AcGePoint3d& a = p[i];
      const AcGePoint3d& b = p[i + 1];
      double t = pick(3) == 0 ? 0.5 : uniform(0.1, 0.9);
      AcGePoint3d m(a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, uniform(-5, 5));
      if (pick(3) == 0) {  // off the line by about a tolerance
        const double off = std::pow(10.0, -pick(10)) * (coin() ? 1 : -1);
        m.x += off;
        m.y -= off;
      }
      p.insertAt(i + 1, m);
    }
    if (pick(4) == 0 && p.length() > 0) {
      const int i = pick(p.length());
      const AcGePoint3d d = p[i];
      p.insertAt(i, d);
    }
    if (pick(4) != 0 && p.length() > 0) {
      const AcGePoint3d first = p[0];
      p.append(first);
    }
    return p;
  }

  // Heights that sit on the tests' thresholds now and then.
  double height() {
    switch (pick(8)) {
      case 0: return 0.0;
      case 1: return -0.0;
      case 2: return -0.5;
      default: return uniform(-5, 5);
    }
  }

  // An axis-parallel rectangle with a corner at the origin, with vertices put
  // on its edges exactly 0, 1/2, 1 or 2 point tolerances off the edge, or
  // exactly one point tolerance along it from a corner, so that the strict
  // tolerance tests meet exact ties. The ring is closed exactly, or a point
  // tolerance short, or left open.
  AcGePoint3dArray rectilinear() {
    const double tol = vora::tolPoint();
    const double w = 1 + pick(4), h = 1 + pick(4);
    AcGePoint3dArray p;
    const double corners[4][2] = {{0, 0}, {w, 0}, {w, h}, {0, h}};
    const bool cw = coin();
    for (int k = 0; k < 4; ++k) {
      const double* c = corners[cw ? (4 - k) % 4 : k];
      p.append({c[0], c[1], height()});
    }
    for (int k = pick(4); k > 0; --k) {
      const int i = pick(p.length());
      const AcGePoint3d a = p[i];
      const AcGePoint3d b = p[(i + 1) % p.length()];
      const double offs[] = {0.0, tol, -tol, tol / 2, 2 * tol};
      const double off = offs[pick(5)];
      AcGePoint3d m;
      if (pick(3) == 0) {  // one tolerance along the edge from its start (exact at the origin corner)
        const double dx = b.x > a.x ? tol : b.x < a.x ? -tol : 0.0;
        const double dy = b.y > a.y ? tol : b.y < a.y ? -tol : 0.0;
        m = {a.x + dx, a.y + dy, height()};
      } else if (a.y == b.y) {
        m = {(a.x + b.x) / 2, a.y + off, height()};
      } else {
        m = {a.x + off, (a.y + b.y) / 2, height()};
      }
      p.insertAt(i + 1, m);
    }
    const AcGePoint3d first = p[0];
    switch (pick(4)) {
      case 0: break;
      case 1: p.append({first.x + tol, first.y, first.z}); break;
      default: p.append(first);
    }
    return p;
  }

  // Pieces of one circle, each with its exact bulge, so that neighbouring
  // arcs can merge; sometimes closed, sometimes clockwise.
  void circleArcs(AcGePoint3dArray& p, AcGeDoubleArray& b) {
    const double cx = uniform(-10, 10), cy = uniform(-10, 10), r = uniform(0.5, 5);
    const int n = 2 + pick(5);
    const bool closed = coin();
    const double dir = coin() ? 1.0 : -1.0;
    const double span = closed ? 2 * kPi : uniform(0.5, 6.0);
    double a0 = uniform(0, 2 * kPi);
    for (int i = 0; i <= n; ++i) {
      const double a = a0 + dir * span * i / n;
      if (closed && i == n) {
        const AcGePoint3d first = p[0];
        p.append(first);
      } else {
        p.append({cx + r * std::cos(a), cy + r * std::sin(a), 0.0});
      }
      b.append(std::tan(dir * span / n / 4));
    }
  }

  double bulge() {
    switch (pick(8)) {
      case 0:
      case 1: return 0.0;
      case 2: return uniform(-1e-7, 1e-7);
      case 3: return coin() ? 1.0 : -1.0;
      case 4: return uniform(-3.0, 3.0);
      case 5: return std::pow(10.0, -pick(9)) * (coin() ? 1 : -1);
      default: return uniform(-0.8, 0.8);
    }
  }

  AcGeDoubleArray bulges(int n) {
    AcGeDoubleArray b;
    for (int i = 0; i < n; ++i) b.append(bulge());
    return b;
  }

  // Points worth asking about: vertices, edge points, arc midpoints and
  // centres, grid points and plain random ones.
  AcGePoint3d probe(const AcGePoint3dArray& p, const AcGeDoubleArray& b) {
    const int n = p.length();
    if (n == 0) return {uniform(-3, 3), uniform(-3, 3), 0.0};
    const int i = pick(n);
    const int j = i + 1 < n ? i + 1 : i;
    switch (pick(7)) {
      case 0: return p[i];
      case 1: {
        const double t = pick(2) == 0 ? 0.5 : uniform(-0.1, 1.1);
        return {p[i].x + (p[j].x - p[i].x) * t, p[i].y + (p[j].y - p[i].y) * t, 0.0};
      }
      case 2:
      case 3: {
        if (b.length() <= i || std::fabs(b[i]) < 1e-9) break;
        const vora::ref::Arc a = vora::ref::arcOf(p[i], p[j], b[i]);
        if (pick(3) == 0) return {a.cx, a.cy, 0.0};
        double mx, my;
        vora::ref::arcMid(a, mx, my);
        const double t = uniform(-0.2, 1.2);
        return {mx + (p[i].x - mx) * t * 0.1, my + (p[i].y - my) * t * 0.1, 0.0};
      }
      case 4: return {std::round(p[i].x + uniform(-2, 2)), std::round(p[i].y + uniform(-2, 2)), 0.0};
      default: break;
    }
    return {p[i].x + uniform(-2, 2), p[i].y + uniform(-2, 2), 0.0};
  }

  // A box corner pair to widen: ordinary, inverted (min above max), or NaN.
  void box(double* mn, double* mx) {
    const int kind = pick(4);
    for (int k = 0; k < 3; ++k) {
      if (kind == 0) {
        mn[k] = std::numeric_limits<double>::infinity();
        mx[k] = -mn[k];
      } else if (kind == 1) {
        mn[k] = uniform(-1, 1);
        mx[k] = mn[k] + uniform(0, 2);
      } else if (kind == 2) {
        mx[k] = uniform(-1, 1);
        mn[k] = mx[k] + uniform(0, 2);
      } else {
        mn[k] = mx[k] = std::numeric_limits<double>::quiet_NaN();
      }
    }
  }

private:
  std::mt19937_64 rng_;
};

void checkProperties(Gen& g, Tally& t, const AcGePoint3dArray& p, const AcGeDoubleArray& b) {
  const std::string in = show(p) + " | " + show(b);
  t.check("vora_polygonarea", same(vora_polygonarea(&p), vora::ref::polygonarea(p)), in);
  t.check("vora_polygonareaB", same(vora_polygonareaB(&p, &b), vora::ref::polygonareaB(p, b)), in);
  if (p.length() > 0) {
    t.check("vora_polygonCentroid2D", same(vora_polygonCentroid2D(&p), vora::ref::polygonCentroid2D(p)), in);
    t.check("vora_ispolygonccw", vora_ispolygonccw(&p) == vora::ref::ispolygonccw(p), in);
    for (int k = 0; k < 6; ++k) {
      const AcGePoint3d q = g.probe(p, b);
      const double tol = k % 3 == 0 ? vora::tolPoint() : std::pow(10.0, -g.pick(10));
      const bool on = g.coin();
      std::ostringstream d;
      d.precision(17);
      d << in << " point (" << q.x << "," << q.y << ") on " << on << " tol " << tol;
      t.check("vora_ispointinpolygon",
              vora_ispointinpolygon(&p, &q.x, on, &tol) == vora::ref::ispointinpolygon(p, &q.x, on, &tol), d.str());
      t.check("vora_ispointinpolygonB",
              vora_ispointinpolygonB(&p, &b, &q.x, on, &tol) == vora::ref::ispointinpolygonB(p, b, &q.x, on, &tol),
              d.str());
    }
  }
  AcGePoint3dArray p1 = p, p2 = p;
  AcGeDoubleArray b1 = b, b2 = b;
  vora_reversepolygon(&p1, &b1);
  vora::ref::reversepolygon(p2, b2);
  t.check("vora_reversepolygon", same(p1, p2) && same(b1, b2), in + " -> " + show(b1) + " vs " + show(b2));
}

void checkBoxes(Gen& g, Tally& t, const AcGePoint3dArray& p, const AcGeDoubleArray& b) {
  const std::string in = show(p) + " | " + show(b);
  double m1[6], m2[6];
  auto fresh = [&] {
    g.box(m1, m1 + 3);
    for (int k = 0; k < 6; ++k) m2[k] = m1[k];
  };
  fresh();
  vora_getBoundingBoxA(&p, m1, m1 + 3);
  vora::ref::getBoundingBoxA(p, m2, m2 + 3);
  t.check("vora_getBoundingBoxA", same(m1, m2, 6), in);
  AcGeDoubleArray shorter = b;
  if (shorter.length() > 0 && g.coin()) shorter.removeLast();
  if (g.pick(5) == 0) shorter.append(0.5);
  fresh();
  vora_getBoundingBoxAB(&p, &shorter, m1, m1 + 3);
  vora::ref::getBoundingBoxAB(p, shorter, m2, m2 + 3);
  t.check("vora_getBoundingBoxAB", same(m1, m2, 6), in + " bulges " + show(shorter));
  if (p.length() < 3) return;
  for (int i = 0; i + 1 < p.length(); ++i) {
    const double* a = &p[i].x;
    const double* c = &p[i + 1].x;
    const double bulge = b.length() > i ? b[i] : 0.0;
    fresh();
    vora_addBoundingBoxP(a, m1, m1 + 3);
    vora::ref::widen(a, m2, m2 + 3);
    t.check("vora_addBoundingBoxP", same(m1, m2, 6), in);
    fresh();
    vora_getBoundingBox2P(a, c, m1, m1 + 3);
    vora::ref::getBoundingBox2P(a, c, m2, m2 + 3);
    t.check("vora_getBoundingBox2P", same(m1, m2, 6), in);
    fresh();
    vora_getBoundingBox3P(a, c, &p[i + 2 < p.length() ? i + 2 : 0].x, m1, m1 + 3);
    vora::ref::getBoundingBox3P(a, c, &p[i + 2 < p.length() ? i + 2 : 0].x, m2, m2 + 3);
    t.check("vora_getBoundingBox3P", same(m1, m2, 6), in);
    fresh();
    vora_getBoundingBox2PB(a, c, bulge, m1, m1 + 3);
    vora::ref::getBoundingBox2PB(a, c, bulge, m2, m2 + 3);
    t.check("vora_getBoundingBox2PB", same(m1, m2, 6), in);
    fresh();
    vora_addBoundingBox2PB(a, c, bulge, m1, m1 + 3);
    vora::ref::addBoundingBox2PB(a, c, bulge, m2, m2 + 3);
    t.check("vora_addBoundingBox2PB", same(m1, m2, 6), in);
  }
}

void checkSimplify(Tally& t, const AcGePoint3dArray& p, const AcGeDoubleArray& b) {
  const std::string in = show(p) + " | " + show(b);
  AcGePoint3dArray p1 = p, p2 = p;
  AcGeDoubleArray b1 = b, b2 = b;
  const int n1 = vora_simplifyPoly2D(&p1, &b1);
  const int n2 = vora::ref::simplifyPoly2D(p2, &b2);
  t.check("vora_simplifyPoly2D", n1 == n2 && same(p1, p2) && same(b1, b2),
          in + " -> " + show(p1) + " | " + show(b1) + " vs " + show(p2) + " | " + show(b2));
  p1 = p;
  p2 = p;
  const int m1 = vora_simplifyPoly2D(&p1, nullptr);
  const int m2 = vora::ref::simplifyPoly2D(p2, nullptr);
  t.check("vora_simplifyPoly2D (no bulges)", m1 == m2 && same(p1, p2), in + " -> " + show(p1) + " vs " + show(p2));
}

// A two-vertex ring (first and last vertices together) has nothing left to
// close once its first vertex goes; such input is not a polygon and is kept
// out of the simplification comparison.
bool simplifiable(const AcGePoint3dArray& p) {
  return !(p.length() == 2 && p[0].distanceTo(p[1]) < vora::tolPoint());
}

TEST(PolygonCrossCheck, PropertiesBoxesAndSimplificationMatchTheReference) {
  Gen g(20261123);
  Tally t;
  for (int iter = 0; iter < 6000; ++iter) {
    const double* tol = kTolerances[iter % kToleranceCount];
    ToleranceGuard guard(tol[0], tol[1]);
    AcGePoint3dArray p;
    AcGeDoubleArray b;
    if (g.pick(4) == 0) {
      g.circleArcs(p, b);
      if (g.coin()) {  // a straight run or two around the arcs
        const AcGePoint3d last = p.last();
        p.append({last.x + 1, last.y, 0.0});
        b.append(0.0);
      }
    } else {
      const double scale = g.pick(3) == 0 ? 1e-3 * std::pow(10.0, g.pick(9)) : 3.0;
      const double origin = g.pick(5) == 0 ? 1e6 : 0.0;
      p = g.pick(3) == 0 ? g.rectilinear() : g.ring(g.pick(12) == 0 ? g.pick(3) : 3 + g.pick(9), origin, -origin, scale);
      b = g.bulges(p.length());
    }
    if (g.pick(40) == 0 && p.length() > 0) {  // a coordinate that is not a number or not finite
      const double odd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()};
      p[g.pick(p.length())].y = odd[g.pick(2)];
    }
    checkProperties(g, t, p, b);
    checkBoxes(g, t, p, b);
    if (simplifiable(p)) checkSimplify(t, p, b);
  }
  RecordProperty("cases", static_cast<int>(t.cases()));
  std::printf("property/box/simplify cases compared: %ld\n", t.cases());
}

AcArray<AcGePoint3dArray> polygons(Gen& g, int count, double scale) {
  AcArray<AcGePoint3dArray> set;
  for (int i = 0; i < count; ++i) {
    const double ox = g.uniform(-1, 1) * scale, oy = g.uniform(-1, 1) * scale;
    AcGePoint3dArray p = g.pick(4) == 0 ? g.rectilinear() : g.ring(3 + g.pick(6), ox, oy, scale);
    if (g.pick(20) == 0) p.setLogicalLength(g.pick(3));  // empty or too short to be a path
    set.append(p);
  }
  return set;
}

TEST(PolygonCrossCheck, BooleanOperationsMatchTheReference) {
  Gen g(777);
  Tally t;
  constexpr int kFlags[] = {0x10, 0x11, 0x12, 0x13, 0x30, 0x1c, 0x00, 0x03};
  for (int iter = 0; iter < 1500; ++iter) {
    const double* tol = kTolerances[iter % kToleranceCount];
    ToleranceGuard guard(tol[0], tol[1]);
    const double scale = g.pick(3) == 0 ? 1e-6 * std::pow(10.0, g.pick(8)) : 3.0;
    AcArray<AcGePoint3dArray> subjects = polygons(g, 1 + g.pick(3), scale);
    if (subjects[0].length() == 0) subjects[0] = g.ring(4, 0.0, 0.0, scale);
    if (g.pick(8) == 0) {  // far from the origin, where the grid offset matters
      for (int i = 0; i < subjects.length(); ++i)
        for (int j = 0; j < subjects[i].length(); ++j) subjects[i][j].x += 5e5, subjects[i][j].y -= 3e5;
    }
    const AcArray<AcGePoint3dArray> clips = polygons(g, g.pick(4), scale);
    const int flags = kFlags[g.pick(8)];
    AcArray<AcGePoint3dArray> r1, r2;
    const AcGePoint3dArray sentinel = g.ring(3, 7.0, 7.0, 1.0);
    r1.append(sentinel);
    r2.append(sentinel);
    const bool deliver = g.pick(6) != 0;
    const int c1 = vora_polygonOperation(flags, &subjects, nullptr, &clips, deliver ? &r1 : nullptr);
    const int c2 = vora::ref::polygonOperation(flags, &subjects, nullptr, &clips, deliver ? &r2 : nullptr);
    std::ostringstream in;
    in << "flags " << flags << " subjects";
    for (int i = 0; i < subjects.length(); ++i) in << " [" << show(subjects[i]) << "]";
    in << " clips";
    for (int i = 0; i < clips.length(); ++i) in << " [" << show(clips[i]) << "]";
    t.check("vora_polygonOperation", c1 == c2 && same(r1, r2), in.str());
  }
  RecordProperty("cases", static_cast<int>(t.cases()));
  std::printf("boolean cases compared: %ld\n", t.cases());
}

}  // namespace
