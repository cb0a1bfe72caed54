#include "geometry/bulge.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "geometry/tolerance.h"
#include "vora/polyline.h"

namespace vora {

double directionAngle(double dx, double dy) {
  double a = std::atan(dy / dx);
  if (dx < 0.0) a += kPi;
  if (a < 0.0) a += kTwoPi;
  return a;
}

double sweptAngle(double start, double end) { return (end >= start ? end : end + kTwoPi) - start; }

namespace {

// Writes the centre record and, when angles is non-null, the angle pair and
// its trailing zero. The order of operations is the one callers compare bit
// for bit against.
void bulgeToArcRecords(const double* p1, const double* p2, double bulge, double* centreRadius, double* angles) {
  const double dx = p2[0] - p1[0];
  const double dy = p2[1] - p1[1];
  const double c = 0.5 * std::sqrt(dx * dx + dy * dy);
  const double chordDir = std::fabs(c) < tolValue() ? 0.0 : directionAngle(dx, dy);
  if (centreRadius == nullptr) return;

  const double r = std::fabs(bulge) < tolValue() ? 0.0 : (bulge * bulge + 1.0) * c / (2.0 * bulge);
  const double h = std::sqrt(r * r - c * c);
  const double mx = p1[0] + dx / 2.0;
  const double my = p1[1] + dy / 2.0;
  // A zero bulge makes phi 0/0: the centre of a straight segment is not a
  // number, and callers look at the radius first.
  const double phi = bulge * 0.5 / std::fabs(bulge) * kPi;
  const double psi = std::fabs(bulge) < 1.0 ? chordDir + phi : chordDir - phi;
  const double cx = mx + h * std::cos(psi);
  const double cy = my + h * std::sin(psi);
  centreRadius[0] = cx;
  centreRadius[1] = cy;
  centreRadius[2] = r;
  if (angles == nullptr) return;

  angles[2] = 0.0;
  double a1 = 0.0;
  double a2 = 0.0;
  if (!(std::fabs(r) < tolValue())) {
    a1 = directionAngle(p1[0] - cx, p1[1] - cy);
    a2 = directionAngle(p2[0] - cx, p2[1] - cy);
  }
  if (r < 0.0) {
    angles[0] = a2;
    angles[1] = a1;
  } else {
    angles[0] = a1;
    angles[1] = a2;
  }
}

struct ArcEnds {
  double sx, sy, ex, ey;
  double c;  // half the distance between the two end points
};

ArcEnds arcEnds(double cx, double cy, double R, double start, double end) {
  ArcEnds e{};
  e.sx = cx + R * std::cos(start);
  e.sy = cy + R * std::sin(start);
  e.ex = cx + R * std::cos(end);
  e.ey = cy + R * std::sin(end);
  const double dx = e.ex - e.sx;
  const double dy = e.ey - e.sy;
  e.c = 0.5 * std::sqrt(dx * dx + dy * dy);
  return e;
}

double bulgeOfArc(double r, double R, double c, double start, double end) {
  if (R < tolValue()) return 0.0;
  const double s = r / R;
  if (std::fabs(R - c) < tolPoint()) return s;
  const double h = std::sqrt(r * r - c * c);
  // A sweep of exactly pi that escaped the half-circle test takes the long formula.
  return sweptAngle(start, end) < kPi ? s * (R - h) / c : s * (R + h) / c;
}

}  // namespace

BulgeArc bulgeToArc(const double* p1, const double* p2, double bulge) {
  double cr[3];
  double ang[3];
  bulgeToArcRecords(p1, p2, bulge, cr, ang);
  return BulgeArc{cr[0], cr[1], cr[2], ang[0], ang[1]};
}

double arcToBulge(double cx, double cy, double r, double start, double end) {
  const double R = std::fabs(r);
  const ArcEnds e = arcEnds(cx, cy, R, start, end);
  return bulgeOfArc(r, R, e.c, start, end);
}

double planSegmentLength(const AcGePoint3d& a, const AcGePoint3d& b, double bulge) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double chord = std::sqrt(dx * dx + dy * dy);
  return std::fabs(bulge) < tolValue() ? chord : arcLengthFromChord(chord, bulge);
}

std::uint64_t toStepCount(double value) {
  // 2^64 is exact in a double; everything from there up saturates.
  constexpr double kRange = 18446744073709551616.0;
  if (!(value > 0.0)) return 0;
  if (value >= kRange) return std::numeric_limits<std::uint64_t>::max();
  return static_cast<std::uint64_t>(value);
}

}  // namespace vora

using namespace vora;

VORA_API int vora_arc2bulge(const double* centreRadius, const double* angles, double* bulge, double* startPt,
                            double* endPt) {
  const double r = centreRadius[2];
  const double R = std::fabs(r);
  const ArcEnds e = arcEnds(centreRadius[0], centreRadius[1], R, angles[0], angles[1]);
  if (bulge == nullptr) return 0;
  *bulge = bulgeOfArc(r, R, e.c, angles[0], angles[1]);
  const bool reversed = r < 0.0;
  if (startPt != nullptr) {
    startPt[0] = reversed ? e.ex : e.sx;
    startPt[1] = reversed ? e.ey : e.sy;
    startPt[2] = 0.0;
  }
  if (endPt != nullptr) {
    endPt[0] = reversed ? e.sx : e.ex;
    endPt[1] = reversed ? e.sy : e.ey;
    endPt[2] = 0.0;
  }
  return 0;
}

VORA_API double vora_arc2bulgeNET(double cx, double cy, double radius, double startAngle, double endAngle,
                                  double* startX, double* startY, double* endX, double* endY) {
  const double centreRadius[3] = {cx, cy, radius};
  const double angles[2] = {startAngle, endAngle};
  double bulge = 0.0;
  double s[3] = {0.0, 0.0, 0.0};
  double e[3] = {0.0, 0.0, 0.0};
  // The status is always 0 today; the test stays so that a future failure
  // code cannot leak half-written outputs to scalar-only callers.
  if (vora_arc2bulge(centreRadius, angles, &bulge, s, e) < 0) return 0.0;
  if (startX != nullptr) *startX = s[0];
  if (startY != nullptr) *startY = s[1];
  if (endX != nullptr) *endX = e[0];
  if (endY != nullptr) *endY = e[1];
  return bulge;
}

VORA_API int vora_bulge2arc(const double* p1, const double* p2, double bulge, double* centreRadius, double* angles) {
  bulgeToArcRecords(p1, p2, bulge, centreRadius, angles);
  return 0;
}

VORA_API double vora_bulge2arcNET(double x1, double y1, double x2, double y2, double bulge, double* cx, double* cy,
                                  double* startAngle, double* endAngle) {
  const double p1[3] = {x1, y1, 0.0};
  const double p2[3] = {x2, y2, 0.0};
  double centreRadius[3] = {0.0, 0.0, 0.0};
  double angles[3] = {0.0, 0.0, 0.0};
  if (vora_bulge2arc(p1, p2, bulge, centreRadius, angles) < 0) return 0.0;
  if (cx != nullptr) *cx = centreRadius[0];
  if (cy != nullptr) *cy = centreRadius[1];
  if (startAngle != nullptr) *startAngle = angles[0];
  if (endAngle != nullptr) *endAngle = angles[1];
  return centreRadius[2];
}

VORA_API int vora_arc2pts(const double* p1, const double* p2, double bulge, double midOrdinate, double maxChord,
                          double maxAngle, std::uint64_t maxCount, AcGePoint3dArray* out, double* deviation) {
  const BulgeArc arc = bulgeToArc(p1, p2, bulge);
  const double R = std::fabs(arc.r);
  if (R < tolValue()) return 1;

  int code = 1;
  double chord = -1.0;
  if (midOrdinate > 0.0) {
    code = 2;
    const double q = 2.0 * R * midOrdinate - midOrdinate * midOrdinate;
    chord = q >= 0.0 ? 2.0 * std::sqrt(q) : -1.0;
  } else if (maxChord > 0.0) {
    code = 4;
    chord = maxChord;
  }

  double step = 0.0;
  if (chord > 0.0) step = 2.0 * std::asin(std::min(1.0, chord * 0.5 / R));
  if (!(chord > 0.0) || maxAngle <= step) {
    step = maxAngle;
    code = 8;
  }

  const double sweep = sweptAngle(arc.start, arc.end);
  std::uint64_t n = toStepCount(std::ceil(sweep / step));
  // An explicit maximum angle is a hard accuracy request, so the count cap
  // only limits steps chosen by the chord rules.
  if (maxCount != 0 && code != 8 && n > maxCount) {
    n = maxCount;
    code = 16;
  }
  step = n == 0 ? sweep : sweep / static_cast<double>(n);

  if (deviation != nullptr) *deviation = (1.0 - std::cos(step / 2.0)) * R;
  if (out != nullptr) {
    out->append(AcGePoint3d(p1[0], p1[1], p1[2]));
    const double base = arc.r >= 0.0 ? arc.start : arc.end;
    const bool clockwise = arc.r < 0.0;
    // Each interior angle is the step times its index, not a running sum, so
    // no rounding builds up along long arcs. The half-step margin keeps the
    // last multiple from landing on top of p2.
    for (std::uint64_t k = 1;; ++k) {
      const double t = static_cast<double>(k) * step;
      if (!(t < sweep - step / 2.0)) break;
      const double theta = base + (clockwise ? -t : t);
      out->append(AcGePoint3d(arc.cx + R * std::cos(theta), arc.cy + R * std::sin(theta), 0.0));
    }
    out->append(AcGePoint3d(p2[0], p2[1], p2[2]));
  }
  return code;
}
