#include <algorithm>
#include <cmath>
#include <utility>

#include "geometry/tolerance.h"
#include "vora/intersect.h"

namespace vora {
namespace {

struct Uv {
  double u;
  double v;
};

void writePoint(double* out, double x, double y) {
  out[0] = x;
  out[1] = y;
  out[2] = 0.0;
}

// Crossing of two lines in a frame where neither is steeper than 45 degrees
// unless both are. Returns -1, 1, or 2 for collinear overlap, with the point
// in `hit` on success.
int crossLines(Uv p1a, Uv p1b, Uv p2a, Uv p2b, bool bounded1, bool bounded2, Uv& hit) {
  if (p1a.u > p1b.u) std::swap(p1a, p1b);
  if (p2a.u > p2b.u) std::swap(p2a, p2b);
  const double tv = tolValue();
  const double du1 = p1b.u - p1a.u;
  const double du2 = p2b.u - p2a.u;
  bool overlap = false;

  if (std::fabs(du1) < tv && std::fabs(du2) < tv) {
    if (!(std::fabs(p1a.u - p2a.u) < tv)) return -1;
    overlap = true;
    if (p1a.v > p1b.v) std::swap(p1a, p1b);
    if (p2a.v > p2b.v) std::swap(p2a, p2b);
    // The first test checks line 2's own far end, not line 1's: a start of
    // line 2 beyond line 1 is left to the segment test below, which only
    // rejects it when line 1 is bounded.
    if (p2a.v > p1a.v && p2b.v > p2a.v) {
      hit = p2a;
    } else if (p1a.v > p2a.v && p2b.v > p1a.v) {
      hit = p1a;
    } else {
      return -1;
    }
    if (p1a.u > p1b.u) std::swap(p1a, p1b);
    if (p2a.u > p2b.u) std::swap(p2a, p2b);
  } else if (std::fabs(du1) < tv) {
    const double m2 = (p2b.v - p2a.v) / du2;
    hit = {p1a.u, p2a.v - m2 * p2a.u + m2 * p1a.u};
  } else {
    const double m1 = (p1b.v - p1a.v) / du1;
    const double k1 = p1a.v - m1 * p1a.u;
    if (std::fabs(du2) < tv) {
      hit = {p2a.u, m1 * p2a.u + k1};
    } else {
      const double m2 = (p2b.v - p2a.v) / du2;
      const double k2 = p2a.v - m2 * p2a.u;
      if (std::fabs(m1 - m2) < tv) {
        if (!(std::fabs(k1 - k2) < tv)) return -1;
        overlap = true;
        if (p2a.u > p1a.u && p2b.u > p2a.u) {
          hit = p2a;
        } else if (p1a.u > p2a.u && p2b.u > p1a.u) {
          hit = p1a;
        } else {
          return -1;
        }
      } else {
        const double u = (k2 - k1) / (m1 - m2);
        hit = {u, u * m1 + k1};
      }
    }
  }

  const double t = tolPoint();
  if (bounded1 && !(p1a.u - t < hit.u && hit.u < p1b.u + t)) return -1;
  if (bounded2 && !(p2a.u - t < hit.u && hit.u < p2b.u + t)) return -1;
  const double v1lo = std::min(p1a.v, p1b.v), v1hi = std::max(p1a.v, p1b.v);
  const double v2lo = std::min(p2a.v, p2b.v), v2hi = std::max(p2a.v, p2b.v);
  if (bounded1 && !(v1lo - t < hit.v && hit.v < v1hi + t)) return -1;
  if (bounded2 && !(v2lo - t < hit.v && hit.v < v2hi + t)) return -1;
  return overlap ? 2 : 1;
}

// Whether q lies on the arc, compared in arc length so that tolPoint is a
// distance along the arc whatever its radius.
bool onArc(const double* q, const double* centre, double radius, double start, double end) {
  const double r = std::fabs(radius);
  const double pos = r * AcGeVector2d(q[0] - centre[0], q[1] - centre[1]).angle();
  const double tol = tolPoint();
  if (end > start) return pos > r * start - tol && r * end + tol > pos;
  return pos > r * start - tol || r * end + tol > pos;
}

// Crossings of two circles, as absolute points; p and q are written only when
// the result is 1 or 2.
int crossCircles(const double* centre1, double radius1, const double* centre2, double radius2, AcGePoint2d& p,
                 AcGePoint2d& q) {
  const AcGePoint2d c1(centre1[0], centre1[1]);
  const AcGePoint2d c2(centre2[0], centre2[1]);
  const AcGeVector2d d = c2 - c1;
  // The squared distance against the unsquared tolerance, on purpose.
  if (!(d.lengthSqrd() > tolValue())) return 0;
  const double len = c1.distanceTo(c2);
  const double a = (len * len - radius2 * radius2 + radius1 * radius1) * 0.5 / len;
  const double h2 = radius1 * radius1 - a * a;
  if (!(h2 >= 0.0)) return -1;
  const double h = std::sqrt(h2);
  const double theta = d.angle();
  AcGeVector2d left(a, h);
  AcGeVector2d right(a, -h);
  left.rotateBy(theta);
  right.rotateBy(theta);
  if ((AcGePoint2d::kOrigin + left).distanceTo(AcGePoint2d::kOrigin + right) < tolPoint()) {
    const AcGeVector2d mid = left + (right - left) * 0.5;
    p = c1 + mid;
    q = p;
    return 1;
  }
  p = c1 + left;
  q = c1 + right;
  return 2;
}

// Reduces n circle crossings to those that passed the arc tests. A second
// point that passes alone moves to the first place; so does one that fails
// when both fail, which callers see in the first output.
int keepPassing(int n, bool ok1, bool ok2, double* first, const double* second) {
  if (n == 1) return ok1 ? 1 : 0;
  if (n != 2) return n;
  if (ok1 && ok2) return 2;
  if (ok1) return 1;
  first[0] = second[0];
  first[1] = second[1];
  first[2] = second[2];
  return ok2 ? 1 : 0;
}

}  // namespace
}  // namespace vora

using namespace vora;

VORA_API int vora_intlineline(const double* a1, const double* b1, const double* a2, const double* b2, double* out,
                              unsigned char infinite1, unsigned char infinite2) {
  // Two steep lines are solved with x and y exchanged, so that neither slope
  // is large; one steep line alone is handled as near-vertical instead.
  const bool exchange =
      std::fabs(b1[1] - a1[1]) > std::fabs(b1[0] - a1[0]) && std::fabs(b2[1] - a2[1]) > std::fabs(b2[0] - a2[0]);
  const int ix = exchange ? 1 : 0;
  const int iy = exchange ? 0 : 1;
  Uv hit{0.0, 0.0};
  const int result = crossLines({a1[ix], a1[iy]}, {b1[ix], b1[iy]}, {a2[ix], a2[iy]}, {b2[ix], b2[iy]},
                                infinite1 == 0, infinite2 == 0, hit);
  if (out) {
    if (result >= 1) {
      writePoint(out, exchange ? hit.v : hit.u, exchange ? hit.u : hit.v);
    } else {
      out[0] = 0.0;
      out[1] = 0.0;
      out[2] = -1.0;
    }
  }
  return result;
}

VORA_API int vora_intlinecircle(const double* a, const double* b, const double* centre, double radius,
                                double* out1, double* out2, unsigned char infinite) {
  const double x1 = a[0] - centre[0], y1 = a[1] - centre[1];
  const double x2 = b[0] - centre[0], y2 = b[1] - centre[1];
  const double dx = x2 - x1, dy = y2 - y1;
  const double s = dx * dx + dy * dy;
  const double det = x1 * y2 - x2 * y1;
  const double disc = radius * radius * s - det * det;
  if (disc < 0.0) return 0;
  const double tp = tolPoint();

  if (std::fabs(disc) < tolValue()) {
    const double x = det * dy / s;
    const double y = -det * dx / s;
    if (!infinite) {
      // Signed comparison and a range taken from a to b as given, unordered:
      // callers depend on tangents to reversed segments being rejected.
      const bool inside = dx > dy ? (x1 - tp < x && x < x2 + tp) : (y1 - tp < y && y < y2 + tp);
      if (!inside) return 0;
    }
    if (out1) writePoint(out1, x + centre[0], y + centre[1]);
    return 1;
  }

  const double root = std::sqrt(disc);
  const double sign = dy < 0.0 ? -1.0 : 1.0;
  double px = (det * dy + sign * dx * root) / s;
  double py = (-det * dx + std::fabs(dy) * root) / s;
  const double qx = (det * dy - sign * dx * root) / s;
  const double qy = (-det * dx - std::fabs(dy) * root) / s;

  int count = 2;
  if (!infinite) {
    const double xlo = std::min(x1, x2), xhi = std::max(x1, x2);
    const double ylo = std::min(y1, y2), yhi = std::max(y1, y2);
    const auto within = [&](double x, double y) {
      return dx > dy ? (xlo - tp < x && x < xhi + tp) : (ylo - tp < y && y < yhi + tp);
    };
    const bool okP = within(px, py);
    const bool okQ = within(qx, qy);
    if (okP && okQ) {
      count = 2;
    } else if (okP) {
      count = 1;
    } else if (okQ) {
      count = 1;
      px = qx;
      py = qy;
    } else {
      count = 0;
    }
  }
  if (count >= 1 && out1) writePoint(out1, px + centre[0], py + centre[1]);
  if (count == 2 && out2) writePoint(out2, qx + centre[0], qy + centre[1]);
  return count;
}

VORA_API int vora_intlinearc(const double* a, const double* b, const double* centre, double radius, double start,
                             double end, double* out1, double* out2, unsigned char infinite,
                             unsigned char fullCircle) {
  double first[3] = {0.0, 0.0, 0.0};
  double second[3] = {0.0, 0.0, 0.0};
  const int n = vora_intlinecircle(a, b, centre, radius, first, second, infinite);
  bool ok1 = true, ok2 = true;
  if (n >= 1 && !fullCircle) {
    ok1 = onArc(first, centre, radius, start, end);
    if (n == 2) ok2 = onArc(second, centre, radius, start, end);
  }
  const int result = keepPassing(n, ok1, ok2, first, second);
  if (out1) writePoint(out1, first[0], first[1]);
  if (out2) writePoint(out2, second[0], second[1]);
  return result;
}

VORA_API int vora_intcirclecircle(const double* centre1, double radius1, const double* centre2, double radius2,
                                  double* out1, double* out2) {
  AcGePoint2d p, q;
  const int n = crossCircles(centre1, radius1, centre2, radius2, p, q);
  if (n < 1) return n;
  if (out1) writePoint(out1, p.x, p.y);
  if (out2) writePoint(out2, q.x, q.y);
  return n;
}

VORA_API int vora_intarcarc(const double* centre1, double radius1, double start1, double end1,
                            const double* centre2, double radius2, double start2, double end2, double* out1,
                            double* out2, unsigned char fullCircle1, unsigned char fullCircle2) {
  AcGePoint2d p, q;
  const int n = crossCircles(centre1, radius1, centre2, radius2, p, q);
  double first[3] = {p.x, p.y, 0.0};
  double second[3] = {q.x, q.y, 0.0};
  bool ok1 = true, ok2 = true;
  if (n == 1 || n == 2) {
    if (!fullCircle1) {
      ok1 = onArc(first, centre1, radius1, start1, end1);
      if (n == 2) ok2 = onArc(second, centre1, radius1, start1, end1);
    }
    if (!fullCircle2) {
      if (!onArc(first, centre2, radius2, start2, end2)) ok1 = false;
      if (n == 2 && !onArc(second, centre2, radius2, start2, end2)) ok2 = false;
    }
  }
  const int result = keepPassing(n, ok1, ok2, first, second);
  if (out1) writePoint(out1, first[0], first[1]);
  if (out2) writePoint(out2, second[0], second[1]);
  return result;
}
