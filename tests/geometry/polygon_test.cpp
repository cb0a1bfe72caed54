#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "geometry/edge_slabs.h"
#include "geometry/tolerance.h"
#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::kPi;
using vora::test::ToleranceGuard;

AcGePoint3dArray pts(std::initializer_list<AcGePoint3d> list) {
  AcGePoint3dArray a;
  for (const AcGePoint3d& p : list) a.append(p);
  return a;
}

bool sameBits(const AcGePoint3dArray& a, const AcGePoint3dArray& b) {
  if (a.length() != b.length()) return false;
  for (int i = 0; i < a.length(); ++i)
    if (a[i].x != b[i].x || a[i].y != b[i].y || a[i].z != b[i].z) return false;
  return true;
}

AcGeDoubleArray bulges(std::initializer_list<double> list) {
  AcGeDoubleArray a;
  for (double b : list) a.append(b);
  return a;
}

// A star-shaped counter-clockwise ring with its first vertex repeated.
AcGePoint3dArray randomRing(std::mt19937_64& rng, int n) {
  std::uniform_real_distribution<double> radius(1.0, 10.0);
  std::uniform_real_distribution<double> height(-5.0, 5.0);
  AcGePoint3dArray a;
  for (int i = 0; i < n; ++i) {
    const double t = 2.0 * kPi * i / n;
    const double r = radius(rng);
    a.append(AcGePoint3d(3.0 + r * std::cos(t), -7.0 + r * std::sin(t), height(rng)));
  }
  a.append(a.first());
  return a;
}

TEST(PolygonArea, SignFollowsOrientationAndTheRingClosesItself) {
  const AcGePoint3dArray ccw = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
  const AcGePoint3dArray cw = pts({{0, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0}});
  const AcGePoint3dArray repeated = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
  EXPECT_EQ(vora_polygonarea(&ccw), 1.0);
  EXPECT_EQ(vora_polygonarea(&cw), -1.0);
  EXPECT_EQ(vora_polygonarea(&repeated), 1.0);
  const AcGePoint3dArray empty;
  EXPECT_EQ(vora_polygonarea(&empty), 0.0);
  // Heights play no part.
  const AcGePoint3dArray high = pts({{0, 0, 5}, {2, 0, -3}, {0, 2, 9}});
  EXPECT_EQ(vora_polygonarea(&high), 2.0);
}

TEST(PolygonAreaB, ArcsThatBiteInAreTakenOffArcsThatBulgeOutAreNot) {
  const AcGePoint3dArray square = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
  // The half circle over the first edge, clockwise: into the square.
  const AcGeDoubleArray bite = bulges({-1, 0, 0, 0, 0});
  const double segment = std::fabs((kPi - std::sin(kPi)) * (0.5 * 0.5 * 0.5));
  EXPECT_EQ(vora_polygonareaB(&square, &bite), 1.0 - segment);
  EXPECT_NEAR(vora_polygonareaB(&square, &bite), 1.0 - kPi / 8, 1e-15);
  const AcGeDoubleArray bulge = bulges({1, 0, 0, 0, 0});
  EXPECT_EQ(vora_polygonareaB(&square, &bulge), 1.0);

  // Clockwise ring: the area is negative and a bite makes it smaller in magnitude.
  const AcGePoint3dArray cw = pts({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0}});
  const AcGeDoubleArray cwBite = bulges({0, 0, 0, 1, 0});  // edge (1,0) -> (0,0), counter-clockwise: inward
  EXPECT_EQ(vora_polygonareaB(&cw, &cwBite), -1.0 + segment);

  // The last vertex's bulge is never read; a bulge count other than the vertex
  // count, or one vertex, gives the chord area.
  const AcGeDoubleArray last = bulges({0, 0, 0, 0, -1});
  EXPECT_EQ(vora_polygonareaB(&square, &last), 1.0);
  const AcGeDoubleArray shortList = bulges({-1, 0, 0, 0});
  EXPECT_EQ(vora_polygonareaB(&square, &shortList), 1.0);
  const AcGePoint3dArray one = pts({{3, 4, 0}});
  const AcGeDoubleArray oneBulge = bulges({1});
  EXPECT_EQ(vora_polygonareaB(&one, &oneBulge), 0.0);
}

TEST(PolygonCentroid, SquareRingAndSingleVertex) {
  const AcGePoint3dArray ring = pts({{0, 0, 7}, {2, 0, 7}, {2, 2, 7}, {0, 2, 7}, {0, 0, 7}});
  const AcGePoint3d c = vora_polygonCentroid2D(&ring);
  EXPECT_EQ(c.x, 1.0);
  EXPECT_EQ(c.y, 1.0);
  EXPECT_EQ(c.z, 0.0);
  // Without the repeated vertex the closing edge is left out.
  const AcGePoint3dArray shifted = pts({{1, 1, 0}, {3, 1, 0}, {3, 3, 0}, {1, 3, 0}, {1, 1, 0}});
  EXPECT_EQ(vora_polygonCentroid2D(&shifted).x, 2.0);
  const AcGePoint3dArray open = pts({{1, 1, 0}, {3, 1, 0}, {3, 3, 0}, {1, 3, 0}});
  EXPECT_NE(vora_polygonCentroid2D(&open).x, 2.0);
  const AcGePoint3dArray one = pts({{3, 4, 5}});
  EXPECT_TRUE(std::isnan(vora_polygonCentroid2D(&one).x));
}

TEST(PolygonCcw, OrientationOfRingsAndOpenChains) {
  const AcGePoint3dArray ccw = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
  const AcGePoint3dArray cw = pts({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}, {0, 0, 0}});
  EXPECT_TRUE(vora_ispolygonccw(&ccw));
  EXPECT_FALSE(vora_ispolygonccw(&cw));
  // Open chain: the closing edge is left out, the sign of what remains decides.
  const AcGePoint3dArray open = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
  EXPECT_TRUE(vora_ispolygonccw(&open));
  const AcGePoint3dArray flat = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 0, 0}});
  EXPECT_FALSE(vora_ispolygonccw(&flat));
  // Counter-clockwise by less than tolValue is not counter-clockwise.
  const AcGePoint3dArray sliver = pts({{0, 0, 0}, {1, 0, 0}, {1, 1e-8, 0}, {0, 0, 0}});
  EXPECT_FALSE(vora_ispolygonccw(&sliver));
  ToleranceGuard guard(1e-9, 1e-7);
  EXPECT_TRUE(vora_ispolygonccw(&sliver));
}

TEST(PolygonReverse, BulgesFollowTheKeptExchangeRule) {
  {
    AcGePoint3dArray p = pts({{0, 0, 1}, {1, 0, 2}, {1, 1, 3}, {0, 1, 4}});
    AcGeDoubleArray b = bulges({0.1, 0.2, 0.3, 0.4});
    vora_reversepolygon(&p, &b);
    EXPECT_EQ(b, bulges({-0.3, -0.2, -0.1, -0.4}));
    EXPECT_TRUE(sameBits(p, pts({{0, 1, 4}, {1, 1, 3}, {1, 0, 2}, {0, 0, 1}})));
  }
  {
    AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    AcGeDoubleArray b = bulges({0.1, 0.2, 0.3});
    vora_reversepolygon(&p, &b);
    EXPECT_EQ(b, bulges({-0.2, -0.1, -0.3}));
    EXPECT_TRUE(sameBits(p, pts({{1, 1, 0}, {1, 0, 0}, {0, 0, 0}})));
  }
  {
    AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}});
    AcGeDoubleArray b = bulges({0.1, 0.2});
    vora_reversepolygon(&p, &b);
    EXPECT_EQ(b, bulges({-0.1, -0.2}));
    EXPECT_TRUE(sameBits(p, pts({{1, 0, 0}, {0, 0, 0}})));
  }
  // 4k+1: the two middle bulges come out as they went in.
  {
    AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    AcGeDoubleArray b = bulges({0.1, 0.2, 0.3, 0.4, 0.5});
    vora_reversepolygon(&p, &b);
    EXPECT_EQ(b, bulges({-0.4, 0.2, 0.3, -0.1, -0.5}));
    EXPECT_EQ(p[0].x, 4.0);
    EXPECT_EQ(p[4].x, 0.0);
  }
  // 4k+2: the middle bulge keeps its sign.
  {
    AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}});
    AcGeDoubleArray b = bulges({0.1, 0.2, 0.3, 0.4, 0.5, 0.6});
    vora_reversepolygon(&p, &b);
    EXPECT_EQ(b, bulges({-0.5, -0.4, 0.3, -0.2, -0.1, -0.6}));
    EXPECT_EQ(p[2].x, 3.0);
    EXPECT_EQ(p[3].x, 2.0);
  }
  // Bad input is left alone.
  {
    AcGePoint3dArray p = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    AcGeDoubleArray b = bulges({0.1, 0.2});
    vora_reversepolygon(&p, &b);
    EXPECT_EQ(b, bulges({0.1, 0.2}));
    EXPECT_EQ(p[0].x, 0.0);
    AcGePoint3dArray one = pts({{5, 5, 5}});
    AcGeDoubleArray oneB = bulges({0.7});
    vora_reversepolygon(&one, &oneB);
    EXPECT_EQ(oneB[0], 0.7);
  }
}

TEST(PointInPolygon, BoundaryRayThroughVerticesAndDegenerateInput) {
  const double tol = 1e-7;
  const AcGePoint3dArray square = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
  const double inside[3] = {0.5, 0.5, 0}, outside[3] = {1.5, 0.5, 0}, onEdge[3] = {0.5, 0.0, 0};
  const double nearEdge[3] = {0.5, 5e-8, 0}, pastEnd[3] = {1.0 + 5e-8, 0.0, 0};
  EXPECT_TRUE(vora_ispointinpolygon(&square, inside, false, &tol));
  EXPECT_FALSE(vora_ispointinpolygon(&square, outside, true, &tol));
  for (const double* p : {onEdge, nearEdge, pastEnd}) {
    EXPECT_TRUE(vora_ispointinpolygon(&square, p, true, &tol));
    EXPECT_FALSE(vora_ispointinpolygon(&square, p, false, &tol));
  }
  // The ray towards +x through the vertices of a diamond is counted once.
  const AcGePoint3dArray diamond = pts({{0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}});
  const double inRow[3] = {-0.5, 0, 0}, leftOfRow[3] = {-2, 0, 0}, below[3] = {0, -2, 0};
  EXPECT_TRUE(vora_ispointinpolygon(&diamond, inRow, false, &tol));
  EXPECT_FALSE(vora_ispointinpolygon(&diamond, leftOfRow, false, &tol));
  EXPECT_FALSE(vora_ispointinpolygon(&diamond, below, false, &tol));
  const AcGePoint3dArray one = pts({{0.5, 0.5, 0}});
  EXPECT_FALSE(vora_ispointinpolygon(&one, inside, true, &tol));
  // The caller's tolerance is the one used.
  const double wide = 0.1;
  const double close[3] = {0.5, 0.05, 0};
  EXPECT_FALSE(vora_ispointinpolygon(&square, close, false, &wide));
  EXPECT_TRUE(vora_ispointinpolygon(&square, close, false, &tol));
}

TEST(PointInPolygonB, PointsBetweenChordAndArcFlip) {
  const double tol = 1e-7;
  const AcGePoint3dArray square = pts({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
  const AcGeDoubleArray out = bulges({1, 0, 0, 0, 0});   // half circle below the bottom edge
  const AcGeDoubleArray bite = bulges({-1, 0, 0, 0, 0});  // half circle into the square
  const double underChord[3] = {0.5, -0.3, 0}, inBite[3] = {0.5, 0.3, 0}, aboveBite[3] = {0.5, 0.7, 0};
  const double farBelow[3] = {0.5, -0.6, 0};
  EXPECT_TRUE(vora_ispointinpolygonB(&square, &out, underChord, false, &tol));
  EXPECT_FALSE(vora_ispointinpolygonB(&square, &out, farBelow, false, &tol));
  EXPECT_TRUE(vora_ispointinpolygonB(&square, &out, inBite, false, &tol));
  EXPECT_FALSE(vora_ispointinpolygonB(&square, &bite, inBite, false, &tol));
  EXPECT_TRUE(vora_ispointinpolygonB(&square, &bite, aboveBite, false, &tol));
  // An arc through angle 0 (right edge bulging out to +x).
  const AcGeDoubleArray right = bulges({0, 1, 0, 0, 0});
  const double rightOut[3] = {1.3, 0.5, 0}, rightIn[3] = {0.8, 0.5, 0};
  EXPECT_TRUE(vora_ispointinpolygonB(&square, &right, rightOut, false, &tol));
  EXPECT_TRUE(vora_ispointinpolygonB(&square, &right, rightIn, false, &tol));
  // On the arc itself: counts only when the boundary counts.
  const double onArc[3] = {0.5, -0.5, 0};
  EXPECT_TRUE(vora_ispointinpolygonB(&square, &out, onArc, true, &tol));
  EXPECT_FALSE(vora_ispointinpolygonB(&square, &out, onArc, false, &tol));
  // A bulge count other than the vertex count: chords only.
  const AcGeDoubleArray shortList = bulges({1, 0, 0, 0});
  EXPECT_FALSE(vora_ispointinpolygonB(&square, &shortList, underChord, false, &tol));
}

// The slab index must answer exactly like the test over all edges, also for
// points on vertices, on edges and on the rays through vertices.
TEST(PointInPolygonSlabs, AgreeWithTheTestOverAllEdges) {
  std::mt19937_64 rng(31337);
  std::uniform_int_distribution<int> grid(-20, 20);
  std::uniform_real_distribution<double> any(-25.0, 25.0);
  for (int k = 0; k < 60; ++k) {
    AcGePoint3dArray ring;
    if (k % 3 == 0) {
      ring = randomRing(rng, 8 + k);
    } else {
      // Vertices on a coarse grid: many horizontal edges, shared y values and
      // repeated vertices.
      for (int i = 0; i < 6 + k; ++i) ring.append(AcGePoint3d(grid(rng) * 0.5, grid(rng) * 0.5, 0));
      ring.append(ring.first());
    }
    for (double tol : {0.0, 1e-7, 0.05, 3.0}) {
      vora::EdgeSlabs slabs;
      // A tolerance of the ring's own size makes every edge reach every slab.
      ASSERT_TRUE(slabs.build(&ring, tol)) << k << " " << tol;
      for (int q = 0; q < 400; ++q) {
        double p[3] = {any(rng), any(rng), 0.0};
        const AcGePoint3d& a = ring[q % (ring.length() - 1)];
        const AcGePoint3d& b = ring[q % (ring.length() - 1) + 1];
        if (q % 4 == 1) {
          p[0] = a.x;
          p[1] = a.y;
        } else if (q % 4 == 2) {
          p[0] = (a.x + b.x) / 2;
          p[1] = (a.y + b.y) / 2;
        } else if (q % 4 == 3) {
          p[1] = a.y;
        }
        for (bool boundary : {false, true})
          ASSERT_EQ(slabs.contains(p, boundary), vora_ispointinpolygon(&ring, p, boundary, &tol))
              << k << " " << tol << " " << q << " " << p[0] << " " << p[1];
      }
    }
  }
  // What cannot be sorted is refused, so callers fall back to the plain test.
  AcGePoint3dArray bad = pts({{0, 0, 0}, {1, std::nan(""), 0}, {0, 1, 0}, {0, 0, 0}});
  vora::EdgeSlabs slabs;
  EXPECT_FALSE(slabs.build(&bad, 1e-7));
  const AcGePoint3dArray fine = pts({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}});
  EXPECT_FALSE(slabs.build(&fine, std::nan("")));
}

// Many arcs take the sorted path: every inward arc's segment comes off, no
// outward arc adds anything.
TEST(PolygonAreaB, ManyArcsInAndOut) {
  const int n = 400;
  AcGePoint3dArray ring;
  for (int i = 0; i < n; ++i) {
    const double t = 2.0 * kPi * i / n;
    ring.append(AcGePoint3d(100.0 * std::cos(t), 100.0 * std::sin(t), 0));
  }
  ring.append(ring.first());
  const double chordArea = vora_polygonarea(&ring);
  const double theta = 0.5;  // included angle of every arc
  AcGeDoubleArray in, out;
  for (int i = 0; i <= n; ++i) {
    in.append(i < n ? -std::tan(theta / 4) : 0.0);
    out.append(i < n ? std::tan(theta / 4) : 0.0);
  }
  const double chord = 2.0 * 100.0 * std::sin(kPi / n);
  const double R = chord / 2 / std::sin(theta / 2);
  const double segment = R * R / 2 * (theta - std::sin(theta));
  EXPECT_NEAR(vora_polygonareaB(&ring, &in), chordArea - n * segment, 1e-9 * chordArea);
  EXPECT_EQ(vora_polygonareaB(&ring, &out), chordArea);
}

}  // namespace
