// Crossings of lines and polylines with planes and triangles, and the
// point-in-triangle tests in plan and in space.
#include <cmath>

#include "geometry/plane_math.h"
#include "geometry/tolerance.h"
#include "vora/distance.h"
#include "vora/plane.h"

using namespace vora;
using namespace vora::planemath;

namespace {

// The corner of t0, t1, t2 (in that order) whose squared distance from p is
// below limit, or null.
const double* cornerNear(const double* p, const double* t0, const double* t1, const double* t2, double limit) {
  for (const double* corner : {t0, t1, t2}) {
    if (distSq3(p, corner) < limit) return corner;
  }
  return nullptr;
}

}  // namespace

VORA_API int vora_intlineplane(const double* a, const double* b, const double* planePoint, const double* normal,
                               double* out) {
  const Vec3 u = sub3(b, a);
  const double den = dot3(normal, u);
  if (std::fabs(den) < tolValue()) return 0;
  if (out == nullptr) return 1;
  const double t = dot3(sub3(planePoint, a), normal) / den;
  writePoint(out, load3(a) + u * t);
  return 1;
}

VORA_API int vora_intplineplane(const AcGePoint3dArray* points, unsigned char closed, const double* planePoint,
                                const double* normal, double* out) {
  const int n = points->logicalLength();
  const AcGePoint3d* pts = points->asArrayPtr();
  const int segments = closed ? n : n - 1;
  double best = -1.0;
  Vec3 kept;
  for (int i = 0; i < segments; ++i) {
    const double* p = &pts[i].x;
    const double* q = &pts[i + 1 < n ? i + 1 : 0].x;
    const Vec3 u = sub3(q, p);
    const double den = dot3(normal, u);
    if (std::fabs(den) < tolValue()) continue;
    const double t = dot3(sub3(planePoint, p), normal) / den;
    const Vec3 X = load3(p) + u * t;
    const double uu = dot3(u, u);
    const double L = std::sqrt(uu);
    const double tolP = tolPoint();
    double s = -1.0;
    double e = -1.0;
    if (uu > tolP * tolP) {
      s = dot3(sub3(X, load3(p)), u) / uu;
      e = length3(sub3(load3(p) + u * s, X));
    }
    // The position along the segment is checked in length units, so the
    // margin at either end is tolPoint whatever the segment's length.
    const double along = L * s;
    if (!(e < tolP && -tolP <= along && along <= L + tolP)) continue;
    const double dist = length3(sub3(X, load3(planePoint)));
    if (best < -0.5 || dist < best) {
      best = dist;
      kept = X;
    }
  }
  if (!(best > -0.5)) return 0;
  writePoint(out, kept);
  return 1;
}

VORA_API int vora_pointintriangle2d(const double* t0, const double* t1, const double* t2, double* p) {
  const double det = t0[0] * (t1[1] - t2[1]) + t1[0] * (t2[1] - t0[1]) + t2[0] * (t0[1] - t1[1]);
  if (!(std::fabs(det) >= tolValue())) return 0;
  const double px = p[0], py = p[1];
  const double s = (t0[1] * t2[0] - t0[0] * t2[1] + (t2[1] - t0[1]) * px + (t0[0] - t2[0]) * py) / det;
  const double w = (t1[1] * t0[0] - t0[1] * t1[0] + (t0[1] - t1[1]) * px + (t1[0] - t0[0]) * py) / det;
  p[2] = (t1[2] - t0[2]) * s + t0[2] + (t2[2] - t0[2]) * w;
  if (s > 0.0 && w > 0.0 && s + w < 1.0) return 1;

  const double tolP = tolPoint();
  for (const double* corner : {t0, t1, t2}) {
    if (std::fabs(px - corner[0]) < tolP && std::fabs(py - corner[1]) < tolP) return 1;
  }
  const double* const edges[3][2] = {{t0, t1}, {t1, t2}, {t2, t0}};
  for (const auto& edge : edges) {
    // A degenerate edge leaves param unwritten; its distance can only pass
    // for a point that the corner test above has already accepted.
    double param = -1.0;
    const double d = vora_distpointlinesigned(edge[0], edge[1], p, nullptr, &param);
    if (std::fabs(d) < tolP && param >= 0.0 && param <= 1.0) return 1;
  }
  return 0;
}

VORA_API int vora_pointintriangle3d(const double* t0, const double* t1, const double* t2, double* p) {
  const Vec3 u = sub3(t1, t0);
  const Vec3 v = sub3(t2, t0);
  const double uu = dot3(u, u), vv = dot3(v, v), uv = dot3(u, v);
  const double D = uv * uv - vv * uu;
  const double tolV = tolValue();
  if (std::fabs(D) < tolV) return 0;
  const Vec3 w = sub3(p, t0);
  const double wu = dot3(w, u), wv = dot3(w, v);
  const double s = (wv * uv - wu * vv) / D;
  if (!(s >= -tolV)) return 0;
  const double t = (wu * uv - wv * uu) / D;
  if (!(t >= -tolV)) return 0;
  if (!(s + t <= 1.0 + tolV)) return 0;
  p[2] = s * u.z + t0[2] + t * v.z;
  return 1;
}

VORA_API int vora_intlinetriangle(const double* a, const double* b, const double* t0, const double* t1,
                                  const double* t2, double* out, unsigned char infinite) {
  const Vec3 n = unitNormal(t0, t1, t2);
  const Vec3 d = sub3(b, a);
  const double den = dot3(n, d);
  if (std::fabs(den) < tolValue()) return 0;

  const double tolP = tolPoint();
  const double* corner = cornerNear(a, t0, t1, t2, tolP * tolP);
  if (corner == nullptr && !infinite) corner = cornerNear(b, t0, t1, t2, tolP * tolP);
  if (corner != nullptr) {
    if (out != nullptr) copyPoint(out, corner);
    return 1;
  }

  const double t = dot3(n, sub3(t0, a)) / den;
  const Vec3 q = load3(a) + d * t;
  // Written before the range and triangle tests: callers rely on getting the
  // plane crossing even when the line misses.
  if (out != nullptr) writePoint(out, q);
  const double tolV = tolValue();
  if (!(t >= -tolV)) return 0;
  if (!infinite && !(t <= 1.0 + tolV)) return 0;
  double probe[3] = {q.x, q.y, q.z};
  return vora_pointintriangle2d(t0, t1, t2, probe);
}
