// Sections of triangles: by a plane, and by another triangle.
#include <cmath>
#include <utility>

#include "geometry/plane_math.h"
#include "geometry/tolerance.h"
#include "vora/distance.h"
#include "vora/plane.h"

using namespace vora;
using namespace vora::planemath;

namespace {

// Where the corners of a triangle lie relative to a plane, the band of
// half-width tol around it counting as "on".
struct CornerSides {
  double d[3];
  double tol;

  bool on(int k) const { return std::fabs(d[k]) < tol; }
  bool above(int k) const { return d[k] > tol; }
  bool below(int k) const { return d[k] < -tol; }
  bool opposite(int j, int k) const { return (above(j) && below(k)) || (below(j) && above(k)); }
  // Corner i alone on its side: the other two not below (not above) the plane,
  // at least one of them clear of it, and i clear on the other side.
  bool aloneBelow(int i, int j, int k) const {
    return d[j] >= 0.0 && d[k] >= 0.0 && (above(j) || above(k)) && below(i);
  }
  bool aloneAbove(int i, int j, int k) const {
    return d[j] <= 0.0 && d[k] <= 0.0 && (below(j) || below(k)) && above(i);
  }
};

double signedCornerDistance(const double* corner, const double* planePoint, const double* normal) {
  const double e = dot3(sub3(corner, planePoint), normal);
  if (std::fabs(e) < tolValue()) return 0.0;
  return std::copysign(vora_distpointplane(normal, planePoint, corner, nullptr), e);
}

bool snapped(const unsigned char* snap, int k) { return snap[k] != 0 || snap[k + 3] != 0 || snap[k + 6] != 0; }

// One end of the section: corner j itself when it lies on the plane, else the
// crossing of the edge from the isolated corner i towards j.
bool sectionEnd(const double* ti, const double* tj, int j, const CornerSides& sides, const double* planePoint,
                const double* normal, const unsigned char* snap, double* out) {
  if (sides.on(j)) {
    copyPoint(out, tj);
    return true;
  }
  if (vora_intlineplane(ti, tj, planePoint, normal, out) == 0) return false;
  if (snapped(snap, j)) copyPoint(out, tj);
  return true;
}

struct Plane {
  const double* point;
  double normal[3];
};

// The plane of triangle p0, p1, p2. Its point is the first corner that
// coincides with no corner of the other triangle (row i of the coincidence
// matrix all zero), p2 when all of them do.
Plane planeOf(const double* p0, const double* p1, const double* p2, const unsigned char coincide[9]) {
  auto rowSet = [&](int i) { return coincide[3 * i] || coincide[3 * i + 1] || coincide[3 * i + 2]; };
  const Vec3 n = unitNormal(p0, p1, p2);
  return {!rowSet(0) ? p0 : !rowSet(1) ? p1 : p2, {n.x, n.y, n.z}};
}

}  // namespace

VORA_API int vora_intplanetriangle(const double* t0, const double* t1, const double* t2, const double* planePoint,
                                   const double* normal, double* out1, double* out2, const unsigned char* snap,
                                   unsigned char skipTouching, double tol) {
  const double* const t[3] = {t0, t1, t2};
  CornerSides sides{{0.0, 0.0, 0.0}, tol};
  for (int k = 0; k < 3; ++k) sides.d[k] = signedCornerDistance(t[k], planePoint, normal);
  const double* d = sides.d;

  const bool allOn = sides.on(0) && sides.on(1) && sides.on(2);
  if (!allOn && !skipTouching) {
    static constexpr int kEdges[3][2] = {{0, 1}, {0, 2}, {1, 2}};
    for (const auto& edge : kEdges) {
      if (sides.on(edge[0]) && sides.on(edge[1])) {
        copyPoint(out1, t[edge[0]]);
        copyPoint(out2, t[edge[1]]);
        return 1;
      }
    }
    // A corner touching the plane with the rest of the triangle on one side:
    // a zero-length section that still counts as found.
    static constexpr int kTouch[3][3] = {{0, 1, 2}, {1, 0, 2}, {2, 0, 1}};
    for (const auto& c : kTouch) {
      if (sides.on(c[0]) && d[c[1]] * d[c[2]] > 0.0) {
        copyPoint(out1, t[c[0]]);
        copyPoint(out2, t[c[0]]);
        return 1;
      }
    }
  }

  // The isolated corner i, with the two others j, k in the order their
  // crossings go to out1, out2.
  int i, j, k;
  if ((sides.on(0) && sides.opposite(1, 2)) || (sides.on(1) && sides.opposite(0, 2)) ||
      sides.aloneBelow(2, 0, 1) || sides.aloneAbove(2, 0, 1)) {
    i = 2, j = 0, k = 1;
  } else if ((sides.on(2) && sides.opposite(0, 1)) || sides.aloneBelow(1, 0, 2) || sides.aloneAbove(1, 0, 2)) {
    i = 1, j = 0, k = 2;
  } else if (sides.aloneBelow(0, 1, 2) || sides.aloneAbove(0, 1, 2)) {
    i = 0, j = 2, k = 1;
  } else {
    return 0;
  }

  const bool found1 = sectionEnd(t[i], t[j], j, sides, planePoint, normal, snap, out1);
  const bool found2 = sectionEnd(t[i], t[k], k, sides, planePoint, normal, snap, out2);
  if (!found1 || !found2) return 0;
  return length3(sub3(out2, out1)) > tol ? 1 : 0;
}

VORA_API int vora_inttriangletriangle(const double* a0, const double* a1, const double* a2, const double* b0,
                                      const double* b1, const double* b2, double* out1, double* out2,
                                      unsigned char skipTouching, double tol) {
  const double* const a[3] = {a0, a1, a2};
  const double* const b[3] = {b0, b1, b2};
  const double tolSq = tol * tol;
  unsigned char m[9];
  unsigned char mt[9];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      m[3 * i + j] = distSq3(a[i], b[j]) < tolSq ? 1 : 0;
      mt[3 * j + i] = m[3 * i + j];
    }
  }

  // Each triangle's plane starts from a corner that is not shared with the
  // other triangle, and crossings are snapped onto shared corners, so that
  // triangles of one mesh meet exactly at their common corners.
  const Plane planeA = planeOf(a0, a1, a2, m);
  double sB[2][3];
  int r = vora_intplanetriangle(b0, b1, b2, planeA.point, planeA.normal, sB[0], sB[1], m, skipTouching, tol);
  if (r != 1) return r;

  const Plane planeB = planeOf(b0, b1, b2, mt);
  double sA[2][3];
  r = vora_intplanetriangle(a0, a1, a2, planeB.point, planeB.normal, sA[0], sA[1], mt, skipTouching, tol);
  if (r != 1) return r;

  // Both sections lie on the line where the planes meet; compare them along
  // the coordinate in which B's section extends most (z when it is vertical).
  const double dx = sB[1][0] - sB[0][0], dy = sB[1][1] - sB[0][1], dz = sB[1][2] - sB[0][2];
  const double* lo;
  const double* hi;
  int axis;
  if (std::fabs(dx) < tol && std::fabs(dy) < tol) {
    axis = 2;
  } else {
    axis = std::fabs(dx) > std::fabs(dy) ? 0 : 1;
  }
  if (axis == 2 && std::fabs(dz) < tol) {
    lo = sB[0];
    hi = sB[1];
  } else {
    const double* aLo = sA[0];
    const double* aHi = sA[1];
    if (aLo[axis] > aHi[axis]) std::swap(aLo, aHi);
    const double* bLo = sB[0];
    const double* bHi = sB[1];
    if (bLo[axis] > bHi[axis]) std::swap(bLo, bHi);
    const double al = aLo[axis], ah = aHi[axis], bl = bLo[axis], bh = bHi[axis];
    if ((al > bl && al > bh) || (bl > ah && bh > ah)) return 0;
    if (al >= bl && ah <= bh) {
      lo = aLo, hi = aHi;
    } else if (al >= bl) {
      lo = aLo, hi = bHi;
    } else if (bh > ah) {
      lo = bLo, hi = aHi;
    } else {
      lo = bLo, hi = bHi;
    }
  }

  if (skipTouching && distSq3(hi, lo) < tolSq) return 0;
  if (out1 != nullptr) copyPoint(out1, lo);
  if (out2 != nullptr) copyPoint(out2, hi);
  return 1;
}
