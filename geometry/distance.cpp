#include <cmath>

#include "geometry/tolerance.h"
#include "vora/distance.h"

namespace vora {
namespace {

// Polar angle of (dx, dy) in [0, 2*pi) by the arctangent of the slope and a
// quadrant fix-up. It is not atan2: callers compare the parameters it yields
// bit for bit.
double slopeAngle(double dx, double dy) {
  double a = std::atan(dy / dx);
  if (dx < 0.0) a += kPi;
  if (a < 0.0) a += kTwoPi;
  return a;
}

// Position of angle a along the arc start->end (counter-clockwise), 0 at the
// start and 1 at the end. Outside the arc the value continues from whichever
// end is angularly nearer: negative before the start, above 1 beyond the end;
// an exact tie counts as beyond the end.
double arcParam(double a, double start, double end) {
  if (end > start) {
    const double span = end - start;
    if (start <= a && a <= end) return (a - start) / span;
    double back, past;
    if (a < start) {
      back = start - a;
      past = a + kTwoPi - end;
    } else {
      back = kTwoPi - a + start;
      past = a - end;
    }
    return past > back ? -back / span : past / span + 1.0;
  }
  const double span = end + kTwoPi - start;
  if (a >= start) return (a - start) / span;
  if (a <= end) return (a + kTwoPi - start) / span;
  const double back = start - a;
  const double past = a - end;
  return past > back ? -back / span : past / span + 1.0;
}

}  // namespace
}  // namespace vora

using namespace vora;

VORA_API double vora_distpointlinesigned(const double* a, const double* b, const double* p, double* foot,
                                         double* param) {
  const double dx = b[0] - a[0];
  const double dy = b[1] - a[1];
  const double len = std::sqrt(dx * dx + dy * dy);
  if (len > tolPoint()) {
    const double d = ((a[1] - p[1]) * dx - (a[0] - p[0]) * dy) / len;
    const double t = dx * (p[0] - a[0]) / len + dy * (p[1] - a[1]) / len;
    if (foot) {
      foot[0] = a[0] + t * dx / len;
      foot[1] = a[1] + t * dy / len;
      foot[2] = 0.0;
    }
    if (param) *param = t / len;
    return d;
  }
  const double px = p[0] - a[0];
  const double py = p[1] - a[1];
  return std::sqrt(px * px + py * py);
}

VORA_API double vora_distpointline(const double* a, const double* b, const double* p, double* foot,
                                   double* param) {
  return std::fabs(vora_distpointlinesigned(a, b, p, foot, param));
}

VORA_API double vora_distpointline3d(const double* a, const double* b, const double* p, double* foot,
                                     double* param) {
  const double ux = b[0] - a[0], uy = b[1] - a[1], uz = b[2] - a[2];
  const double s = ux * ux + uy * uy + uz * uz;
  const double tol = tolPoint();
  if (!(s > tol * tol)) return -1.0;
  const double t = ((p[0] - a[0]) * ux + (p[1] - a[1]) * uy + (p[2] - a[2]) * uz) / s;
  const double qx = a[0] + t * ux, qy = a[1] + t * uy, qz = a[2] + t * uz;
  const double ex = qx - p[0], ey = qy - p[1], ez = qz - p[2];
  const double dist = std::sqrt(ex * ex + ey * ey + ez * ez);
  if (foot) {
    foot[0] = qx;
    foot[1] = qy;
    foot[2] = qz;
  }
  if (param) *param = t;
  return dist;
}

VORA_API double vora_distpointarcsigned(const double* circle, const double* angles, const double* p,
                                        double* foot, double* param) {
  const double cx = circle[0], cy = circle[1];
  const double radius = std::fabs(circle[2]);
  const double dx = p[0] - cx, dy = p[1] - cy;
  const double dist = std::sqrt(dx * dx + dy * dy);
  if (!(dist > tolPoint())) return dist - radius;
  const double start = angles[0], end = angles[1];
  if (!(std::fabs(end - start) > tolValue())) return dist - radius;
  const double alpha = slopeAngle(dx, dy);
  if (foot) {
    foot[0] = cx + std::cos(alpha) * radius;
    foot[1] = cy + std::sin(alpha) * radius;
    foot[2] = 0.0;
  }
  if (!param) return dist - radius;
  double t = arcParam(alpha, start, end);
  // A clockwise arc runs from its end angle to its start angle.
  if (circle[2] < 0.0) t = 1.0 - t;
  *param = t;
  return dist - radius;
}

VORA_API double vora_distpointarc(const double* circle, const double* angles, const double* p, double* foot,
                                  double* param) {
  return std::fabs(vora_distpointarcsigned(circle, angles, p, foot, param));
}

VORA_API double vora_distpointplane(const double* normal, const double* planePoint, const double* p,
                                    double* foot) {
  const double s = normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2];
  // The squared length against the unsquared tolerance, unlike the line
  // functions: callers rely on this threshold for near-zero normals.
  if (!(s > tolValue())) return -1.0;
  const double k = (planePoint[0] - p[0]) * normal[0] + (planePoint[1] - p[1]) * normal[1] +
                   (planePoint[2] - p[2]) * normal[2];
  const double dist = std::fabs(k) / std::sqrt(s);
  if (foot) {
    const double f = k / s;
    foot[0] = p[0] + f * normal[0];
    foot[1] = p[1] + f * normal[1];
    foot[2] = p[2] + f * normal[2];
  }
  return dist;
}
