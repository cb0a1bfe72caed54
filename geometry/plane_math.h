// Small spatial vector helpers shared by the plane and triangle functions.
// Sums are always taken x, then y, then z, so results do not depend on which
// helper computed them.
#ifndef VORA_GEOMETRY_PLANE_MATH_H
#define VORA_GEOMETRY_PLANE_MATH_H

#include <cmath>

#include "vora/arx.h"

namespace vora::planemath {

using Vec3 = AcGeVector3d;

inline Vec3 sub3(const double* a, const double* b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vec3 sub3(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 load3(const double* p) { return {p[0], p[1], p[2]}; }

inline double dot3(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline double dot3(const double* a, const Vec3& b) { return a[0] * b.x + a[1] * b.y + a[2] * b.z; }
inline double dot3(const Vec3& a, const double* b) { return a.x * b[0] + a.y * b[1] + a.z * b[2]; }

inline double length3(const Vec3& v) { return std::sqrt(dot3(v, v)); }
inline double distSq3(const double* a, const double* b) { return dot3(sub3(a, b), sub3(a, b)); }

inline void writePoint(double* out, const Vec3& v) {
  out[0] = v.x;
  out[1] = v.y;
  out[2] = v.z;
}
inline void copyPoint(double* out, const double* p) {
  out[0] = p[0];
  out[1] = p[1];
  out[2] = p[2];
}

// Unit normal of the triangle p0, p1, p2, normalised with the host's default
// tolerance: a degenerate triangle keeps its (near) zero cross product.
inline Vec3 unitNormal(const double* p0, const double* p1, const double* p2) {
  Vec3 n = sub3(p1, p0).crossProduct(sub3(p2, p0));
  n.normalize();
  return n;
}

}  // namespace vora::planemath

#endif
