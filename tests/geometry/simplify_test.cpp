#include <gtest/gtest.h>

#include <cmath>

#include "geometry/tolerance.h"
#include "vora/vora.h"

namespace {

using vora::kPi;

AcGePoint3dArray pts(std::initializer_list<AcGePoint3d> list) {
  AcGePoint3dArray a;
  for (const AcGePoint3d& p : list) a.append(p);
  return a;
}

AcGeDoubleArray bulges(std::initializer_list<double> list) {
  AcGeDoubleArray a;
  for (double b : list) a.append(b);
  return a;
}

void expectVertices(const AcGePoint3dArray& got, std::initializer_list<AcGePoint3d> want) {
  ASSERT_EQ(got.length(), static_cast<int>(want.size()));
  int i = 0;
  for (const AcGePoint3d& w : want) {
    EXPECT_EQ(got[i].x, w.x) << i;
    EXPECT_EQ(got[i].y, w.y) << i;
    EXPECT_EQ(got[i].z, w.z) << i;
    ++i;
  }
}

TEST(SimplifyPoly2D, OpenListWithAndWithoutABulgeList) {
  // Without bulges the vertex that moves into a removed vertex's place is
  // skipped in this pass; with a bulge list it is examined again.
  AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 1, 0}});
  EXPECT_EQ(vora_simplifyPoly2D(&p, nullptr), 1);
  expectVertices(p, {{0, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 1, 0}});

  AcGePoint3dArray q = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 1, 0}});
  AcGeDoubleArray b = bulges({0, 0, 0, 0, 0.5});
  EXPECT_EQ(vora_simplifyPoly2D(&q, &b), 2);
  expectVertices(q, {{0, 0, 0}, {3, 0, 0}, {4, 1, 0}});
  EXPECT_EQ(b, bulges({0, 0, 0.5}));

  // The first vertex of an open list stays, on the line or not; a list whose
  // ends meet only in plan is open.
  AcGePoint3dArray r = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 5}});
  EXPECT_EQ(vora_simplifyPoly2D(&r, nullptr), 0);
  EXPECT_EQ(r.length(), 5);

  // Heights do not enter the line test, and kept vertices keep theirs.
  AcGePoint3dArray h = pts({{0, 0, 1}, {1, 0, 50}, {2, 0, 3}});
  EXPECT_EQ(vora_simplifyPoly2D(&h, nullptr), 1);
  expectVertices(h, {{0, 0, 1}, {2, 0, 3}});
}

TEST(SimplifyPoly2D, LongStraightRunsWithAndWithoutABulgeList) {
  for (int k = 1; k < 12; ++k) {
    AcGePoint3dArray line;
    for (int i = 0; i <= k + 1; ++i) line.append(AcGePoint3d(i, 2.0 * i, i));
    line.append(AcGePoint3d(k + 1, 0, 0));  // a corner, then the end
    AcGePoint3dArray withBulges = line;
    AcGeDoubleArray b;
    b.setLogicalLength(line.length(), 0.0);
    b[k + 2] = 0.5;
    EXPECT_EQ(vora_simplifyPoly2D(&withBulges, &b), k);
    ASSERT_EQ(withBulges.length(), 3);
    EXPECT_EQ(withBulges[1].x, k + 1);
    EXPECT_EQ(b[1], 0.0);
    EXPECT_EQ(b[2], 0.5);
    // Without bulges every other vertex of the run is skipped: 1, 3, 5, ... go.
    const AcGePoint3dArray before = line;
    EXPECT_EQ(vora_simplifyPoly2D(&line, nullptr), (k + 1) / 2);
    ASSERT_EQ(line.length(), before.length() - (k + 1) / 2);
    for (int i = 0; i < line.length(); ++i) {
      const int from = i <= k / 2 ? 2 * i : i + (k + 1) / 2;
      EXPECT_EQ(line[i].z, before[from].z) << k << " " << i;
      EXPECT_EQ(line[i].x, before[from].x) << k << " " << i;
    }
  }
}

TEST(SimplifyPoly2D, RingsMayLoseTheirFirstVertex) {
  AcGePoint3dArray p = pts({{0, 0, 0}, {0.5, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
  EXPECT_EQ(vora_simplifyPoly2D(&p, nullptr), 1);
  expectVertices(p, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});

  // First vertex mid-edge: it goes, and the ring is closed on the next one.
  AcGePoint3dArray q = pts({{0.5, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {0.5, 0, 0}});
  AcGeDoubleArray b = bulges({0, 0, 0.25, 0, 0, 0.75});
  EXPECT_EQ(vora_simplifyPoly2D(&q, &b), 1);
  expectVertices(q, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}});
  EXPECT_EQ(b, bulges({0, 0.25, 0, 0, 0}));

  // The same as an open list keeps its first vertex.
  AcGePoint3dArray open = pts({{0.5, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {0.5, 0, 1}});
  EXPECT_EQ(vora_simplifyPoly2D(&open, nullptr), 0);

  // A ring of one point twice is left whole.
  AcGePoint3dArray two = pts({{3, 3, 0}, {3, 3, 0}});
  EXPECT_EQ(vora_simplifyPoly2D(&two, nullptr), 0);
  EXPECT_EQ(two.length(), 2);
}

TEST(SimplifyPoly2D, ArcsOfOneCircleMerge) {
  const double q = std::tan(kPi / 8);
  AcGePoint3dArray p = pts({{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}});
  AcGeDoubleArray b = bulges({q, q, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&p, &b), 1);
  expectVertices(p, {{1, 0, 0}, {-1, 0, 0}});
  EXPECT_EQ(b[0], 1.0);
  EXPECT_EQ(b[1], 0.0);

  // Clockwise: the pairs are stored end first.
  AcGePoint3dArray c = pts({{-1, 0, 0}, {0, 1, 0}, {1, 0, 0}});
  AcGeDoubleArray cb = bulges({-q, -q, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&c, &cb), 1);
  EXPECT_EQ(cb[0], -1.0);

  // Three quarters merge into one arc of three quarters.
  AcGePoint3dArray t = pts({{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}});
  AcGeDoubleArray tb = bulges({q, q, q, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&t, &tb), 2);
  ASSERT_EQ(t.length(), 2);
  EXPECT_NEAR(tb[0], std::tan(3 * kPi / 8), 1e-12);

  // Opposite turning, other radius, or one arc and one line: kept.
  AcGePoint3dArray o = pts({{1, 0, 0}, {0, 1, 0}, {-1, 2, 0}});
  AcGeDoubleArray ob = bulges({q, -q, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&o, &ob), 0);
  AcGePoint3dArray r = pts({{1, 0, 0}, {0, 1, 0}, {-2, 1, 0}});
  AcGeDoubleArray rb = bulges({q, 0.3, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&r, &rb), 0);
  AcGePoint3dArray m = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  AcGeDoubleArray mb = bulges({0.3, 0, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&m, &mb), 0);
  EXPECT_EQ(m.length(), 3);
}

TEST(SimplifyPoly2D, BadInputChangesNothing) {
  AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  AcGeDoubleArray shortList = bulges({0, 0});
  EXPECT_EQ(vora_simplifyPoly2D(&p, &shortList), 0);
  EXPECT_EQ(p.length(), 3);
  EXPECT_EQ(shortList.length(), 2);
  AcGePoint3dArray empty;
  EXPECT_EQ(vora_simplifyPoly2D(&empty, nullptr), 0);
  AcGePoint3dArray one = pts({{1, 1, 1}});
  EXPECT_EQ(vora_simplifyPoly2D(&one, nullptr), 0);
}

}  // namespace
