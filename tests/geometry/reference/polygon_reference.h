// A second, deliberately plain implementation of the polygon properties,
// bounding boxes and simplification, written from the written behaviour
// without looking at geometry/. The cross-check test runs it side by side with
// the module and compares the results bit for bit. It favours one statement
// per rule over speed; it leans on the module only for the distance and
// bulge/arc building blocks, which have their own tests.
#ifndef VORA_TESTS_REFERENCE_POLYGON_REFERENCE_H
#define VORA_TESTS_REFERENCE_POLYGON_REFERENCE_H

#include <cmath>
#include <utility>

#include "geometry/tolerance.h"
#include "vora/vora.h"

namespace vora::ref {

struct Arc {
  double cx, cy, r, s, e;
};

inline Arc arcOf(const AcGePoint3d& p1, const AcGePoint3d& p2, double bulge) {
  double cr[3];
  double ang[3];
  vora_bulge2arc(&p1.x, &p2.x, bulge, cr, ang);
  return {cr[0], cr[1], cr[2], ang[0], ang[1]};
}

inline double sweepOf(const Arc& a) { return a.e > a.s ? a.e - a.s : a.e + (kTwoPi - a.s); }

// The arc's midpoint, reached from its start angle by half the sweep.
inline void arcMid(const Arc& a, double& x, double& y) {
  const double m = a.s + sweepOf(a) * 0.5;
  x = a.cx + std::fabs(a.r) * std::cos(m);
  y = a.cy + std::fabs(a.r) * std::sin(m);
}

// ---- properties ----

inline double polygonarea(const AcGePoint3dArray& p) {
  const int n = p.length();
  if (n == 0) return 0.0;
  double s = 0.0;
  for (int i = 0; i < n; ++i) {
    const int j = i == 0 ? n - 1 : i - 1;
    s += p[j].x * p[i].y - p[i].x * p[j].y;
  }
  return 0.5 * s;
}

inline bool ispointinpolygon(const AcGePoint3dArray& p, const double* q, bool onBoundary, const double* tol) {
  const int n = p.length();
  if (n == 1) return false;
  int count = 0;
  for (int i = 0; i + 1 < n; ++i) {
    double t = 0.0;
    const double d = std::fabs(vora_distpointlinesigned(&p[i].x, &p[i + 1].x, q, nullptr, &t));
    if (d < *tol && -*tol <= t && t <= 1.0 + *tol) return onBoundary;
    const double yi = p[i].y, yj = p[i + 1].y;
    if ((yi <= q[1] && q[1] < yj) || (yj <= q[1] && q[1] < yi)) {
      const double x = (q[1] - yi) / (yj - yi) * (p[i + 1].x - p[i].x) + p[i].x;
      if (x > q[0]) ++count;
    }
  }
  return count % 2 == 1;
}

inline double polygonareaB(const AcGePoint3dArray& p, const AcGeDoubleArray& b) {
  double area = polygonarea(p);
  const int n = p.length();
  if (b.length() != n || n == 1) return area;
  for (int i = 0; i + 1 < n; ++i) {
    if (!(std::fabs(b[i]) >= tolValue())) continue;
    const Arc a = arcOf(p[i], p[i + 1], b[i]);
    const double sweep = sweepOf(a);
    double seg = std::fabs((sweep - std::sin(sweep)) * (a.r * 0.5 * a.r));
    if (area < 0.0) seg = -seg;
    double mx, my;
    arcMid(a, mx, my);
    const double cx = (p[i].x + p[i + 1].x) / 2, cy = (p[i].y + p[i + 1].y) / 2;
    const double test[3] = {(mx + cx) / 2, (my + cy) / 2, 0.0};
    if (ispointinpolygon(p, test, false, &g_tolerances.point)) area = area - seg;
  }
  return area;
}

inline AcGePoint3d polygonCentroid2D(const AcGePoint3dArray& p) {
  double a = 0.0, sx = 0.0, sy = 0.0;
  for (int i = 0; i + 1 < p.length(); ++i) {
    const double k = p[i].x * p[i + 1].y - p[i].y * p[i + 1].x;
    a += k;
    sx += (p[i].x + p[i + 1].x) * k;
    sy += (p[i].y + p[i + 1].y) * k;
  }
  a = 3 * a;
  return {sx / a, sy / a, 0.0};
}

inline bool ispolygonccw(const AcGePoint3dArray& p) {
  double s = 0.0;
  for (int i = 0; i + 1 < p.length(); ++i) s += (p[i + 1].y + p[i].y) * (p[i + 1].x - p[i].x);
  return s < -tolValue();
}

inline void reversepolygon(AcGePoint3dArray& p, AcGeDoubleArray& b) {
  const int n = p.length();
  if (n < 2 || b.length() != n) return;
  if (n == 2) {
    std::swap(p[0], p[1]);
    b[0] = -b[0];
    b[1] = -b[1];
    return;
  }
  const int h = (n - 1) / 2;
  for (int i = 0; i <= h; ++i) {
    std::swap(p[i], p[n - 1 - i]);
    if (i == h && (n & 2) != 0) continue;
    const int j = n - 2 - i;
    if (i == j) {
      b[i] = -b[i];
    } else {
      const double old = b[i];
      b[i] = -b[j];
      b[j] = -old;
    }
  }
  b[n - 1] = -b[n - 1];
}

inline bool ispointinpolygonB(const AcGePoint3dArray& p, const AcGeDoubleArray& b, const double* q, bool onBoundary,
                              const double* tol) {
  const bool inside = ispointinpolygon(p, q, onBoundary, tol);
  const int n = p.length();
  if (b.length() != n || n == 1) return inside;
  for (int i = 0; i + 1 < n; ++i) {
    if (!(std::fabs(b[i]) >= tolValue())) continue;
    const Arc a = arcOf(p[i], p[i + 1], b[i]);
    const double R = std::fabs(a.r);
    const double d = AcGePoint3d(q[0], q[1], 0.0).distanceTo(AcGePoint3d(a.cx, a.cy, 0.0));
    if (!(d <= R - *tol || ((onBoundary || inside) && std::fabs(d - R) < *tol))) continue;
    const double ddx = q[0] - a.cx, ddy = q[1] - a.cy;
    double alpha = std::atan(ddy / ddx);
    if (ddx < 0) alpha += kPi;
    if (alpha < 0) alpha += kTwoPi;
    const bool inSpan = (a.e > a.s && a.s <= alpha && alpha <= a.e) || (a.s > a.e && (alpha >= a.s || alpha <= a.s));
    if (!inSpan) continue;
    double mx, my;
    arcMid(a, mx, my);
    const double dx = p[i + 1].x - p[i].x, dy = p[i + 1].y - p[i].y;
    const double L = std::sqrt(dx * dx + dy * dy);
    auto side = [&](double x, double y) {
      if (L <= tolPoint()) return std::sqrt((x - p[i].x) * (x - p[i].x) + (y - p[i].y) * (y - p[i].y));
      return ((p[i].y - y) * dx - (p[i].x - x) * dy) / L;
    };
    if (side(q[0], q[1]) * side(mx, my) > 0) return !inside;
  }
  return inside;
}

// ---- bounding boxes ----

inline void widen(const double* q, double* mn, double* mx) {
  for (int k = 0; k < 3; ++k) {
    if (q[k] < mn[k]) mn[k] = q[k];
    if (q[k] > mx[k]) mx[k] = q[k];
  }
}

inline void start(const double* q, double* mn, double* mx) {
  for (int k = 0; k < 3; ++k) mn[k] = mx[k] = q[k];
}

inline void arcExtremes(const double* p1, const double* p2, double bulge, double* mn, double* mx) {
  if (!(std::fabs(bulge) >= tolValue())) return;
  double cr[3];
  double ang[3];
  vora_bulge2arc(p1, p2, bulge, cr, ang);
  const double R = std::fabs(cr[2]);
  for (int k = 0; k < 4; ++k) {
    const double q[3] = {cr[0] + R * std::cos(k * kPi / 2), cr[1] + R * std::sin(k * kPi / 2), 0.0};
    // The parameter is left unwritten for a point on the centre or an arc of
    // no span; such a point does not count as on the arc.
    double u = -1.0;
    vora_distpointarcsigned(cr, ang, q, nullptr, &u);
    if (0.0 <= u && u <= 1.0) {
      for (int a = 0; a < 2; ++a) {
        if (q[a] < mn[a]) mn[a] = q[a];
        if (q[a] > mx[a]) mx[a] = q[a];
      }
      if (mn[2] > 0.0) mn[2] = 0.0;
      if (mx[2] < 0.0) mx[2] = 0.0;
    }
  }
}

inline void getBoundingBoxA(const AcGePoint3dArray& p, double* mn, double* mx) {
  if (p.length() == 0) return;
  start(&p[0].x, mn, mx);
  for (int i = 0; i < p.length(); ++i) widen(&p[i].x, mn, mx);
}

inline void getBoundingBox2P(const double* p1, const double* p2, double* mn, double* mx) {
  start(p1, mn, mx);
  widen(p2, mn, mx);
}

inline void getBoundingBox3P(const double* p1, const double* p2, const double* p3, double* mn, double* mx) {
  AcGePoint3dArray a;
  a.append({p1[0], p1[1], p1[2]});
  a.append({p2[0], p2[1], p2[2]});
  a.append({p3[0], p3[1], p3[2]});
  getBoundingBoxA(a, mn, mx);
}

inline void getBoundingBox2PB(const double* p1, const double* p2, double bulge, double* mn, double* mx) {
  start(p1, mn, mx);
  widen(p2, mn, mx);
  arcExtremes(p1, p2, bulge, mn, mx);
}

inline void addBoundingBox2PB(const double* p1, const double* p2, double bulge, double* mn, double* mx) {
  widen(p1, mn, mx);
  widen(p2, mn, mx);
  arcExtremes(p1, p2, bulge, mn, mx);
}

inline void getBoundingBoxAB(const AcGePoint3dArray& p, const AcGeDoubleArray& b, double* mn, double* mx) {
  const int n = p.length();
  if (b.length() != n && b.length() != n - 1) return;
  getBoundingBoxA(p, mn, mx);
  if (n == 1) return;
  for (int i = 0; i + 1 < n; ++i) arcExtremes(&p[i].x, &p[i + 1].x, b[i], mn, mx);
}

// ---- simplification ----

inline int simplifyPoly2D(AcGePoint3dArray& p, AcGeDoubleArray* b) {
  const int n0 = p.length();
  if (n0 == 0 || (b != nullptr && b->length() != n0) || n0 == 1) return 0;
  const bool ring = p[0].distanceTo(p[n0 - 1]) < tolPoint();
  int removed = 0;
  for (int i = 0; i < p.length() - 1; ++i) {
    if (i == 0 && !ring) continue;
    const int prev = i == 0 ? p.length() - 2 : i - 1;
    const int next = i + 1;
    const double bp = b ? (*b)[prev] : 0.0;
    const double bi = b ? (*b)[i] : 0.0;
    const bool straightP = std::fabs(bp) < tolValue(), straightI = std::fabs(bi) < tolValue();
    double nb = 0.0;
    if (straightP && straightI) {
      const double d = vora_distpointlinesigned(&p[prev].x, &p[next].x, &p[i].x, nullptr, nullptr);
      if (!(std::fabs(d) < tolPoint())) continue;
    } else if (!straightP && !straightI) {
      const Arc a1 = arcOf(p[prev], p[i], bp);
      const Arc a2 = arcOf(p[i], p[next], bi);
      if (a1.r * a2.r <= 0 || std::fabs(std::fabs(a1.r) - std::fabs(a2.r)) >= tolPoint()) continue;
      if (!(AcGePoint2d(a1.cx, a1.cy).distanceTo(AcGePoint2d(a2.cx, a2.cy)) < tolPoint())) continue;
      const double rec[3] = {a1.cx, a1.cy, a1.r};
      double pair[2] = {a1.s, a2.e};
      if (std::fabs(a1.e - a2.s) >= tolValue()) {
        pair[0] = a2.s;
        pair[1] = a1.e;
      }
      double s[3], e[3];
      vora_arc2bulge(rec, pair, &nb, s, e);
    } else {
      continue;
    }
    ++removed;
    if (i > 0) {
      p.removeAt(i);
      if (b) {
        (*b)[prev] = nb;
        b->removeAt(i);
        --i;
      }
    } else {
      p.removeAt(p.length() - 1);
      p.removeAt(0);
      const AcGePoint3d first = p[0];
      p.append(first);
      if (b) {
        (*b)[prev] = nb;
        b->removeAt(b->length() - 1);
        b->removeAt(0);
        const double firstBulge = (*b)[0];
        b->append(firstBulge);
      }
    }
  }
  return removed;
}

}  // namespace vora::ref

#endif
