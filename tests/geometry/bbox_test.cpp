#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "geometry/tolerance.h"
#include "vora/vora.h"

namespace {

using vora::kPi;

void expectPoint(const double* got, double x, double y, double z) {
  EXPECT_EQ(got[0], x);
  EXPECT_EQ(got[1], y);
  EXPECT_EQ(got[2], z);
}

TEST(BoundingBox, PointsAndLists) {
  double mn[3] = {9, 9, 9}, mx[3] = {9, 9, 9};
  const double p1[3] = {1, 5, 3}, p2[3] = {4, 2, 7}, p3[3] = {-1, 8, 0};
  vora_getBoundingBox2P(p1, p2, mn, mx);
  expectPoint(mn, 1, 2, 3);
  expectPoint(mx, 4, 5, 7);
  vora_getBoundingBox3P(p1, p2, p3, mn, mx);
  expectPoint(mn, -1, 2, 0);
  expectPoint(mx, 4, 8, 7);
  // vora_add* widens what the caller holds.
  const double inside[3] = {0, 3, 1};
  vora_addBoundingBoxP(inside, mn, mx);
  expectPoint(mn, -1, 2, 0);
  expectPoint(mx, 4, 8, 7);

  AcGePoint3dArray empty;
  vora_getBoundingBoxA(&empty, mn, mx);
  expectPoint(mn, -1, 2, 0);
  expectPoint(mx, 4, 8, 7);
  AcGePoint3dArray list;
  list.append(AcGePoint3d(2, 2, 2));
  list.append(AcGePoint3d(3, -1, 2));
  vora_getBoundingBoxA(&list, mn, mx);
  expectPoint(mn, 2, -1, 2);
  expectPoint(mx, 3, 2, 2);
}

TEST(BoundingBox, ArcExtremesAndTheirPullToHeightZero) {
  double mn[3], mx[3];
  const double p1[3] = {1, 0, 0}, p2[3] = {-1, 0, 0};
  // Upper half circle about the origin: (1,0), (0,1) and (-1,0) are on it.
  vora_getBoundingBox2PB(p1, p2, 1.0, mn, mx);
  expectPoint(mn, -1, 0, 0);
  EXPECT_EQ(mx[0], 1.0);
  EXPECT_NEAR(mx[1], 1.0, 1e-15);
  EXPECT_EQ(mx[2], 0.0);
  // Lower half circle: the quadrant point at angle pi is (-1, sin(pi)), a hair
  // above the chord.
  vora_getBoundingBox2PB(p1, p2, -1.0, mn, mx);
  EXPECT_NEAR(mn[1], -1.0, 1e-15);
  EXPECT_EQ(mx[1], std::sin(kPi));

  // Same segment at height 5: the arc is taken at height 0.
  const double h1[3] = {1, 0, 5}, h2[3] = {-1, 0, 5};
  vora_getBoundingBox2PB(h1, h2, 1.0, mn, mx);
  EXPECT_EQ(mn[2], 0.0);
  EXPECT_EQ(mx[2], 5.0);
  const double l1[3] = {1, 0, -5}, l2[3] = {-1, 0, -5};
  vora_getBoundingBox2PB(l1, l2, 1.0, mn, mx);
  EXPECT_EQ(mn[2], -5.0);
  EXPECT_EQ(mx[2], 0.0);

  // A short arc that reaches no quadrant point adds nothing, height included.
  const double a1[3] = {std::cos(0.2), std::sin(0.2), 5}, a2[3] = {std::cos(0.6), std::sin(0.6), 5};
  vora_getBoundingBox2PB(a1, a2, std::tan(0.1), mn, mx);
  expectPoint(mn, a2[0], a1[1], 5);
  expectPoint(mx, a1[0], a2[1], 5);
  // A bulge under tolValue is a straight segment.
  vora_getBoundingBox2PB(p1, p2, 5e-8, mn, mx);
  expectPoint(mn, -1, 0, 0);
  expectPoint(mx, 1, 0, 0);

  // vora_addBoundingBox2PB keeps the caller's box.
  double amn[3] = {-10, -10, 3}, amx[3] = {-9, -9, 4};
  vora_addBoundingBox2PB(h1, h2, 1.0, amn, amx);
  expectPoint(amn, -10, -10, 0);
  EXPECT_EQ(amx[0], 1.0);
  EXPECT_NEAR(amx[1], 1.0, 1e-15);
  EXPECT_EQ(amx[2], 5.0);
}

TEST(BoundingBox, PolylineWithBulgesAcceptsOneBulgePerVertexOrOneFewer) {
  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(1, 0, 2));
  pts.append(AcGePoint3d(-1, 0, 3));
  pts.append(AcGePoint3d(-1, -4, 4));
  AcGeDoubleArray b;
  b.append(1.0);  // upper half circle
  b.append(0.0);
  double mn[3] = {9, 9, 9}, mx[3] = {9, 9, 9};
  vora_getBoundingBoxAB(&pts, &b, mn, mx);
  expectPoint(mn, -1, -4, 0);
  EXPECT_NEAR(mx[1], 1.0, 1e-15);
  EXPECT_EQ(mx[2], 4.0);

  // The last vertex's bulge (a closing arc) is never used.
  b.append(-1.0);
  vora_getBoundingBoxAB(&pts, &b, mn, mx);
  expectPoint(mn, -1, -4, 0);

  // Three vertices and four bulges, or one: nothing is written.
  b.append(0.0);
  double wmn[3] = {9, 9, 9}, wmx[3] = {9, 9, 9};
  vora_getBoundingBoxAB(&pts, &b, wmn, wmx);
  expectPoint(wmn, 9, 9, 9);
  AcGeDoubleArray one;
  one.append(1.0);
  vora_getBoundingBoxAB(&pts, &one, wmn, wmx);
  expectPoint(wmx, 9, 9, 9);

  // One vertex: its own box, bulge or not.
  AcGePoint3dArray single;
  single.append(AcGePoint3d(3, 4, 5));
  vora_getBoundingBoxAB(&single, &one, wmn, wmx);
  expectPoint(wmn, 3, 4, 5);
  expectPoint(wmx, 3, 4, 5);
}

}  // namespace
