// Planar points and vectors of the geometry library.
#ifndef VORA_ARX_GEVEC2D_H
#define VORA_ARX_GEVEC2D_H

#include <cmath>

#include "vora/arx/gegbl.h"

class AcGeVector2d {
public:
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

  static const AcGeVector2d kIdentity;
  static const AcGeVector2d kXAxis;
  static const AcGeVector2d kYAxis;

  AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  AcGeVector2d operator-() const { return {-x, -y}; }
  AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
  AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
  AcGeVector2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
  AcGeVector2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
  AcGeVector2d& operator*=(double s) { x *= s; y *= s; return *this; }
  AcGeVector2d& operator/=(double s) { x /= s; y /= s; return *this; }
  bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }

  double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  double length() const { return std::sqrt(x * x + y * y); }
  double lengthSqrd() const { return x * x + y * y; }

  // Angle to the positive x axis, counter-clockwise, in [0, 2*pi).
  double angle() const {
    double a = std::atan2(y, x);
    if (a < 0.0) a += 6.283185307179586;
    return a;
  }
  // Angle to v in [0, pi].
  double angleTo(const AcGeVector2d& v) const {
    return std::fabs(std::atan2(x * v.y - y * v.x, dotProduct(v)));
  }

  // Counter-clockwise rotation by ang radians.
  AcGeVector2d& rotateBy(double ang) {
    const double c = std::cos(ang), s = std::sin(ang);
    const double nx = x * c - y * s;
    const double ny = x * s + y * c;
    x = nx;
    y = ny;
    return *this;
  }
  // Scales to unit length; a vector not longer than equalVector stays as it is.
  AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol) {
    const double len = length();
    if (len > tol.equalVector()) { x /= len; y /= len; }
    return *this;
  }
  AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const {
    AcGeVector2d v(*this);
    return v.normalize(tol);
  }
  AcGeVector2d perpVector() const { return {-y, x}; }

  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const { return length() <= tol.equalVector(); }
  bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return std::fabs(length() - 1.0) <= tol.equalVector();
  }
  bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool isParallelTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    const AcGeVector2d a = normal(tol), b = v.normal(tol);
    return (a - b).length() < tol.equalVector() || (a + b).length() < tol.equalVector();
  }
  bool isCodirectionalTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (normal(tol) - v.normal(tol)).length() < tol.equalVector();
  }
  bool isPerpendicularTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return std::fabs(normal(tol).dotProduct(v.normal(tol))) <= tol.equalVector();
  }
  AcGeVector2d& set(double xx, double yy) { x = xx; y = yy; return *this; }

  double x = 0.0;
  double y = 0.0;
};

inline AcGeVector2d operator*(double s, const AcGeVector2d& v) { return v * s; }
inline const AcGeVector2d AcGeVector2d::kIdentity{0.0, 0.0};
inline const AcGeVector2d AcGeVector2d::kXAxis{1.0, 0.0};
inline const AcGeVector2d AcGeVector2d::kYAxis{0.0, 1.0};

class AcGePoint2d {
public:
  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

  static const AcGePoint2d kOrigin;

  AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
  AcGePoint2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
  AcGePoint2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
  bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }

  double distanceTo(const AcGePoint2d& p) const {
    const double dx = p.x - x, dy = p.y - y;
    return std::sqrt(dx * dx + dy * dy);
  }
  bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  AcGeVector2d asVector() const { return {x, y}; }
  AcGePoint2d& rotateBy(double ang, const AcGePoint2d& wrt = kOrigin) {
    AcGeVector2d v = *this - wrt;
    v.rotateBy(ang);
    *this = wrt + v;
    return *this;
  }
  AcGePoint2d& set(double xx, double yy) { x = xx; y = yy; return *this; }

  double x = 0.0;
  double y = 0.0;
};

inline const AcGePoint2d AcGePoint2d::kOrigin{0.0, 0.0};

#endif
