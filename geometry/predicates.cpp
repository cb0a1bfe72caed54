#include <cmath>

#include "geometry/tolerance.h"
#include "vora/geometry.h"

namespace vora {

KernelTolerances g_tolerances{1e-07, 1e-07};

namespace {

bool coincide3d(const double* p, const double* q) {
  const double tol = tolPoint();
  return std::fabs(q[0] - p[0]) < tol && std::fabs(q[1] - p[1]) < tol && std::fabs(q[2] - p[2]) < tol;
}

double toRadians(double value, int unit) {
  switch (unit) {
    case 0:
      // A run of zero means a level line, not a right angle.
      return std::fabs(value) < tolValue() ? 0.0 : std::atan(1.0 / value);
    case 1: return std::atan(value);
    case 2: return std::atan(value * 0.01);
    case 3: return value / 180.0 * kPi;
    default: return value;
  }
}

double fromRadians(double angle, int unit) {
  switch (unit) {
    case 0: return std::fabs(angle) < tolValue() ? 0.0 : 1.0 / std::tan(angle);
    case 1: return std::tan(angle);
    case 2: return std::tan(angle) * 100.0;
    case 3: return angle * 180.0 / kPi;
    default: return angle;
  }
}

}  // namespace
}  // namespace vora

using namespace vora;

VORA_API void vora_initeps(double tolValue, double tolPoint) {
  g_tolerances.value = tolValue;
  g_tolerances.point = tolPoint;
}

VORA_API double vora_orientation2D(const double* a, const double* b, const double* c) {
  return (c[1] - a[1]) * (b[0] - a[0]) - (b[1] - a[1]) * (c[0] - a[0]);
}

VORA_API int vora_collin3D(const double* a, const double* b, const double* c) {
  if (coincide3d(a, b) || coincide3d(b, c) || coincide3d(a, c)) return 1;
  const double ux = b[0] - a[0], uy = b[1] - a[1], uz = b[2] - a[2];
  const double vx = c[0] - a[0], vy = c[1] - a[1], vz = c[2] - a[2];
  // Twice the projected triangle areas, deliberately not normalised.
  const double X = uz * vy - vz * uy;
  const double Y = uz * vx - vz * ux;
  const double Z = uy * vx - vy * ux;
  const double tol = tolValue();
  return (std::fabs(X) < tol && std::fabs(Y) < tol && std::fabs(Z) < tol) ? 1 : 0;
}

VORA_API double vora_convertAngle(double value, int fromUnit, int toUnit) {
  return fromRadians(toRadians(value, fromUnit), toUnit);
}

VORA_API double vora_zpt(const AcGePoint3dArray* points, double station) {
  const int n = points->logicalLength();
  if (n < 1) return 0.0;
  const AcGePoint3d* p = points->asArrayPtr();
  double s = 0.0;
  int i = 0;
  if (station > 0.0) {
    do {
      if (i >= n - 1) {
        if (station > s) return p[n - 1].z;
        break;
      }
      s += std::sqrt((p[i + 1].x - p[i].x) * (p[i + 1].x - p[i].x) + (p[i + 1].y - p[i].y) * (p[i + 1].y - p[i].y));
      ++i;
    } while (station > s);
  }
  if (i == 0) return p[0].z;
  const double dx = p[i].x - p[i - 1].x, dy = p[i].y - p[i - 1].y;
  const double L = std::sqrt(dx * dx + dy * dy);
  return (station - s + L) * (p[i].z - p[i - 1].z) / L + p[i - 1].z;
}
