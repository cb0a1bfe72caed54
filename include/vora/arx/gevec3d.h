// Spatial points and vectors of the geometry library.
#ifndef VORA_ARX_GEVEC3D_H
#define VORA_ARX_GEVEC3D_H

#include <cmath>

#include "vora/arx/gevec2d.h"

class AcGeVector3d {
public:
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

  static const AcGeVector3d kIdentity;
  static const AcGeVector3d kXAxis;
  static const AcGeVector3d kYAxis;
  static const AcGeVector3d kZAxis;

  AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  AcGeVector3d operator-() const { return {-x, -y, -z}; }
  AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
  AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
  AcGeVector3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
  AcGeVector3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  AcGeVector3d& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
  AcGeVector3d& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }
  bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }

  double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
  AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  double length() const { return std::sqrt(x * x + y * y + z * z); }
  double lengthSqrd() const { return x * x + y * y + z * z; }

  // Scales to unit length; a vector not longer than equalVector stays as it is.
  AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol) {
    const double len = length();
    if (len > tol.equalVector()) { x /= len; y /= len; z /= len; }
    return *this;
  }
  AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const {
    AcGeVector3d v(*this);
    return v.normalize(tol);
  }
  // Angle to v in [0, pi].
  double angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), dotProduct(v));
  }

  bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const { return length() <= tol.equalVector(); }
  bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const {
    return std::fabs(length() - 1.0) <= tol.equalVector();
  }
  bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (*this - v).length() <= tol.equalVector();
  }
  bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    const AcGeVector3d a = normal(tol), b = v.normal(tol);
    return (a - b).length() < tol.equalVector() || (a + b).length() < tol.equalVector();
  }
  bool isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return (normal(tol) - v.normal(tol)).length() < tol.equalVector();
  }
  bool isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const {
    return std::fabs(normal(tol).dotProduct(v.normal(tol))) <= tol.equalVector();
  }
  AcGeVector2d convert2d() const { return {x, y}; }
  AcGeVector3d& set(double xx, double yy, double zz) { x = xx; y = yy; z = zz; return *this; }

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline AcGeVector3d operator*(double s, const AcGeVector3d& v) { return v * s; }
inline const AcGeVector3d AcGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline const AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline const AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline const AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};

class AcGePoint3d {
public:
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

  static const AcGePoint3d kOrigin;

  AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
  AcGePoint3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
  AcGePoint3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
  bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }

  double distanceTo(const AcGePoint3d& p) const {
    const double dx = p.x - x, dy = p.y - y, dz = p.z - z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  }
  bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  AcGeVector3d asVector() const { return {x, y, z}; }
  AcGePoint2d convert2d() const { return {x, y}; }
  AcGePoint3d& set(double xx, double yy, double zz) { x = xx; y = yy; z = zz; return *this; }

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline const AcGePoint3d AcGePoint3d::kOrigin{0.0, 0.0, 0.0};

// An unbounded line through a point along a direction.
class AcGeLine3d {
public:
  AcGeLine3d() : mDir(AcGeVector3d::kXAxis) {}
  AcGeLine3d(const AcGePoint3d& pnt, const AcGeVector3d& vec) : mOrigin(pnt), mDir(vec) {}
  AcGeLine3d(const AcGePoint3d& pnt1, const AcGePoint3d& pnt2) : mOrigin(pnt1), mDir(pnt2 - pnt1) {}

  AcGePoint3d pointOnLine() const { return mOrigin; }
  AcGeVector3d direction() const { return mDir.normal(); }
  AcGeLine3d& set(const AcGePoint3d& pnt, const AcGeVector3d& vec) { mOrigin = pnt; mDir = vec; return *this; }

  // Closest point of the line to pnt (the origin when the direction is null).
  AcGePoint3d closestPointTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const {
    const double s = mDir.lengthSqrd();
    if (std::sqrt(s) <= tol.equalVector()) return mOrigin;
    return mOrigin + mDir * ((pnt - mOrigin).dotProduct(mDir) / s);
  }
  double distanceTo(const AcGePoint3d& pnt, const AcGeTol& tol = AcGeContext::gTol) const {
    return closestPointTo(pnt, tol).distanceTo(pnt);
  }

private:
  AcGePoint3d mOrigin;
  AcGeVector3d mDir;
};

#endif
