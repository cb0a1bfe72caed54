#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <random>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "support/arrays.h"
#include "vora/vora.h"

namespace {

using vora::kPi;

using vora::test::doubles;
using vora::test::points;

TEST(TessellatePline, StraightSegmentsCarryTheirStoredZAndShortListsGiveNothing) {
  AcGePoint3dArray out = points({{-1, -1, -1}});
  const AcGePoint3dArray two = points({{0, 0, 0}, {10, 0, 0}});
  EXPECT_EQ(vora_tessellatepline(&two, false, 0.1, &out), 2);
  ASSERT_EQ(out.length(), 3);
  EXPECT_EQ(out[1], AcGePoint3d(0, 0, 0));
  EXPECT_EQ(out[2], AcGePoint3d(10, 0, 0));

  const AcGePoint3dArray one = points({{0, 0, 1}});
  EXPECT_EQ(vora_tessellatepline(&one, true, 0.1, &out), 0);
  EXPECT_EQ(out.length(), 3);

  // (1,0) is reached by a straight segment, so its own bulge stays in z.
  const AcGePoint3dArray mixed = points({{0, 0, 0}, {1, 0, 0.5}, {2, 0, 0}});
  out.setLogicalLength(0);
  EXPECT_EQ(vora_tessellatepline(&mixed, false, 0.0, &out), 3);
  EXPECT_EQ(out[1].z, 0.5);
  EXPECT_EQ(out.last(), AcGePoint3d(2, 0, 0));
}

TEST(TessellatePline, HalfCircleIsCutAtTwentyTwoAndAHalfDegreesUnlessTheMidOrdinateIsFiner) {
  const AcGePoint3dArray half = points({{0, 0, 1}, {2, 0, 0}});
  AcGePoint3dArray out;
  EXPECT_EQ(vora_tessellatepline(&half, false, 0.0, &out), 2);
  ASSERT_EQ(out.length(), 9);  // vertex 0, 7 interior points, the end point
  EXPECT_EQ(out[0], AcGePoint3d(0, 0, 1));
  for (int k = 1; k < 8; ++k) {
    EXPECT_EQ(out[k].z, 0.0);
    EXPECT_NEAR(std::hypot(out[k].x - 1.0, out[k].y), 1.0, 1e-12);
    EXPECT_LT(out[k].y, 0.0);  // positive bulge from (0,0) to (2,0) runs below
  }
  EXPECT_EQ(out[8], AcGePoint3d(2, 0, 0));

  // A mid ordinate of 1 - cos(pi/32) asks for pi/16 steps.
  out.setLogicalLength(0);
  vora_tessellatepline(&half, false, (1.0 - std::cos(kPi / 32)) * (1.0 + 1e-9), &out);
  EXPECT_EQ(out.length(), 17);
  // A coarse mid ordinate does not loosen the 22.5 degree bound.
  out.setLogicalLength(0);
  vora_tessellatepline(&half, false, 0.5, &out);
  EXPECT_EQ(out.length(), 9);
}

TEST(TessellatePline, ClosingSegmentAddsOnlyInteriorPointsOfAnArc) {
  AcGePoint3dArray out;
  const AcGePoint3dArray straightClose = points({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}});
  EXPECT_EQ(vora_tessellatepline(&straightClose, true, 0.0, &out), 3);
  EXPECT_EQ(out.length(), 3);  // vertex 0 is not repeated

  const AcGePoint3dArray arcClose = points({{2, 0, 0}, {0, 0, 1}});
  out.setLogicalLength(0);
  EXPECT_EQ(vora_tessellatepline(&arcClose, true, 0.0, &out), 2);
  ASSERT_EQ(out.length(), 2 + 7);
  EXPECT_EQ(out[1], AcGePoint3d(0, 0, 1));
  EXPECT_LT(out[2].y, 0.0);  // counter-clockwise from (0,0) to (2,0) runs below
  EXPECT_NEAR(std::hypot(out.last().x - 1.0, out.last().y), 1.0, 1e-12);
  EXPECT_NE(out.last(), AcGePoint3d(2, 0, 0));
}

TEST(Tessellate3Dpline, HalfCircleSplitIntoEqualSubArcsWithHeightsAlongTheArc) {
  const AcGePoint3dArray half = points({{0, 0, 0}, {2, 0, 10}});
  const AcGeDoubleArray bulges = doubles({1, 0});
  AcGePoint3dArray out;
  AcGeDoubleArray outB;
  double dev = -1.0;
  EXPECT_EQ(vora_tessellate3Dpline(&half, &bulges, false, 0.0, 0.0, kPi / 4, 0.0, &out, &outB, &dev), 9);
  ASSERT_EQ(out.length(), 5);
  ASSERT_EQ(outB.length(), 5);
  const double heights[5] = {0, 2.5, 5, 7.5, 10};
  for (int k = 0; k < 5; ++k) {
    EXPECT_NEAR(out[k].z, heights[k], 1e-12) << k;
    EXPECT_NEAR(outB[k], std::tan(kPi / 16), 1e-12) << k;
  }
  EXPECT_EQ(out[0], AcGePoint3d(0, 0, 0));
  EXPECT_EQ(out[4].x, 2.0);
  EXPECT_EQ(out[4].z, 10.0);
  EXPECT_NEAR(dev, 1.0 - std::cos(kPi / 8), 1e-15);

  // Clockwise, the heights still run from the first vertex to the second.
  const AcGeDoubleArray cw = doubles({-1, 0});
  out.setLogicalLength(0);
  outB.setLogicalLength(0);
  EXPECT_EQ(vora_tessellate3Dpline(&half, &cw, false, 0.0, 0.0, kPi / 4, 0.0, &out, &outB, nullptr), 9);
  ASSERT_EQ(out.length(), 5);
  for (int k = 0; k < 5; ++k) {
    EXPECT_NEAR(out[k].z, heights[k], 1e-12) << k;
    EXPECT_NEAR(outB[k], -std::tan(kPi / 16), 1e-12) << k;
  }
  EXPECT_GT(out[2].y, 0.0);
}

TEST(Tessellate3Dpline, BadInputReturnsOneAndOnlyZeroesTheDeviation) {
  const AcGePoint3dArray half = points({{0, 0, 0}, {2, 0, 10}});
  const AcGeDoubleArray shortB = doubles({1});
  const AcGePoint3dArray none;
  const AcGeDoubleArray noneB;
  AcGePoint3dArray out;
  AcGeDoubleArray outB;
  double dev = 5.0;
  EXPECT_EQ(vora_tessellate3Dpline(&half, &shortB, false, 0.1, 0, kPi / 4, 0, &out, &outB, &dev), 1);
  EXPECT_EQ(dev, 0.0);
  EXPECT_EQ(vora_tessellate3Dpline(&none, &noneB, false, 0.1, 0, kPi / 4, 0, &out, &outB, nullptr), 1);
  EXPECT_EQ(vora_tessellate3Dpline(nullptr, &shortB, false, 0.1, 0, kPi / 4, 0, &out, &outB, nullptr), 1);
  EXPECT_EQ(vora_tessellate3Dpline(&half, nullptr, false, 0.1, 0, kPi / 4, 0, &out, &outB, nullptr), 1);
  EXPECT_EQ(vora_tessellate3Dpline(&half, &shortB, false, 0.1, 0, kPi / 4, 0, nullptr, &outB, nullptr), 1);
  EXPECT_EQ(out.length(), 0);
  EXPECT_EQ(outB.length(), 0);
}

TEST(Tessellate3Dpline, StraightSegmentsResetBulgesAndClosingRulesDiffer) {
  // Straight, arc, straight, closed with a straight closing segment.
  const AcGePoint3dArray pl = points({{0, 0, 0}, {2, 0, 2}, {4, 0, 4}, {4, 4, 6}});
  const AcGeDoubleArray b = doubles({0, 1, 0, 0});
  AcGePoint3dArray out;
  AcGeDoubleArray outB = doubles({123});
  double dev = 0;
  EXPECT_EQ(vora_tessellate3Dpline(&pl, &b, true, 0.0, 0.0, kPi / 2, 0.0, &out, &outB, &dev), 9);
  ASSERT_EQ(out.length(), 6);  // 0, 1, arc mid, 2, 3, and vertex 0 again
  ASSERT_EQ(outB.length(), 7);
  EXPECT_EQ(outB[0], 123.0);
  EXPECT_EQ(outB[1], 0.0);
  EXPECT_NEAR(outB[2], std::tan(kPi / 8), 1e-12);
  EXPECT_NEAR(outB[3], std::tan(kPi / 8), 1e-12);
  EXPECT_EQ(outB[4], 0.0);  // the next straight segment overwrote the arc's entry
  EXPECT_EQ(outB[6], 0.0);
  EXPECT_NEAR(out[2].z, 3.0, 1e-12);
  EXPECT_EQ(out[3], AcGePoint3d(4, 0, 4));
  EXPECT_EQ(out[5], AcGePoint3d(0, 0, 0));

  // An arc closing segment does not repeat vertex 0.
  const AcGeDoubleArray arcClose = doubles({0, 0, 0, 0.5});
  out.setLogicalLength(0);
  outB.setLogicalLength(0);
  vora_tessellate3Dpline(&pl, &arcClose, true, 0.0, 0.0, kPi / 16, 0.0, &out, &outB, nullptr);
  EXPECT_EQ(out.length(), outB.length());
  EXPECT_NE(out.last(), AcGePoint3d(0, 0, 0));
  EXPECT_NE(outB[3], 0.0);
  EXPECT_EQ(outB.last(), outB[3]);
  EXPECT_LT(out.last().z, 6.0);
  EXPECT_GT(out.last().z, 0.0);
}

TEST(Tessellate3Dpline, BulgedSegmentWithCoincidentEndsAddsNoVertex) {
  // The last segment returns to the same plan point with a bulge: there is
  // no arc to step, so vertex 2 never reaches the output and vertex 1's
  // bulge entry is overwritten with 0.
  const AcGePoint3dArray pl = points({{0, 0, 0}, {2, 0, 1}, {2, 0, 5}});
  const AcGeDoubleArray b = doubles({1, 0.5, 0});
  AcGePoint3dArray out = points({{-9, -9, -9}});
  AcGeDoubleArray outB = doubles({-9});
  double dev = -1.0;
  EXPECT_EQ(vora_tessellate3Dpline(&pl, &b, false, 0.0, 0.0, kPi / 4, 0.0, &out, &outB, &dev), 9);
  ASSERT_EQ(out.length(), 6);  // sentinel, vertex 0, 3 interior points, vertex 1
  ASSERT_EQ(outB.length(), 6);
  EXPECT_EQ(out[0], AcGePoint3d(-9, -9, -9));
  EXPECT_EQ(outB[0], -9.0);
  EXPECT_EQ(out[5], AcGePoint3d(2, 0, 1));
  EXPECT_NEAR(outB[4], std::tan(kPi / 16), 1e-12);
  EXPECT_EQ(outB[5], 0.0);
  EXPECT_NEAR(dev, 1.0 - std::cos(kPi / 8), 1e-15);

  // A bulged closing segment back onto vertex 0's plan point adds nothing,
  // where a straight one would repeat vertex 0.
  const AcGePoint3dArray ring = points({{0, 0, 0}, {2, 0, 0}, {0, 0, 3}});
  const AcGeDoubleArray ringB = doubles({0, 0, 0.5});
  out.setLogicalLength(0);
  outB.setLogicalLength(0);
  EXPECT_EQ(vora_tessellate3Dpline(&ring, &ringB, true, 0.0, 0.0, kPi / 4, 0.0, &out, &outB, &dev), 1);
  ASSERT_EQ(out.length(), 3);
  ASSERT_EQ(outB.length(), 3);
  EXPECT_EQ(out[2], AcGePoint3d(0, 0, 3));
  EXPECT_EQ(outB[2], 0.0);
  EXPECT_EQ(dev, 0.0);

  // Flattening treats the same segment alike: its end vertex is dropped.
  const AcGePoint3dArray packed = points({{0, 0, 0.5}, {0, 0, 0}, {1, 0, 0}});
  AcGePoint3dArray flat;
  EXPECT_EQ(vora_tessellatepline(&packed, false, 0.0, &flat), 3);
  ASSERT_EQ(flat.length(), 2);
  EXPECT_EQ(flat[1], AcGePoint3d(1, 0, 0));
}

TEST(Tessellate3Dpline, MinimumPieceLengthCapsTheMidOrdinateButNotTheMaximumAngle) {
  const AcGePoint3dArray half = points({{0, 0, 0}, {2, 0, 10}});
  const AcGeDoubleArray b = doubles({1, 0});
  AcGePoint3dArray out;
  AcGeDoubleArray outB;
  // Length pi, pieces of at least 1: at most trunc(pi + 1) = 4 pieces.
  EXPECT_EQ(vora_tessellate3Dpline(&half, &b, false, 1e-4, 0.0, kPi, 1.0, &out, &outB, nullptr), 17);
  EXPECT_EQ(out.length(), 5);
  out.setLogicalLength(0);
  outB.setLogicalLength(0);
  EXPECT_EQ(vora_tessellate3Dpline(&half, &b, false, 0.0, 0.0, kPi / 10, 1.0, &out, &outB, nullptr), 9);
  EXPECT_EQ(out.length(), 11);
}

TEST(TessellateProperties, SubArcsKeepThePlanLengthAndPointsStayWithinTheMidOrdinate) {
  const unsigned seed = 31337;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-200.0, 200.0);
  std::uniform_real_distribution<double> bulge(-2.5, 2.5);
  for (int round = 0; round < 30; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round);
    const int n = 2 + round % 7;
    AcGePoint3dArray pts, packed;
    AcGeDoubleArray bulges;
    for (int i = 0; i < n; ++i) {
      double b = (i % 3 == 2) ? 0.0 : bulge(rng);
      if (std::fabs(b) < 0.01) b = 0.0;
      const AcGePoint3d p(coord(rng), coord(rng), coord(rng));
      pts.append(p);
      bulges.append(b);
      packed.append(AcGePoint3d(p.x, p.y, b));
    }
    const bool closed = round % 2 == 0;
    const double m = 0.05;

    AcGePoint3dArray out;
    AcGeDoubleArray outB;
    double dev = 0.0;
    const int code = vora_tessellate3Dpline(&pts, &bulges, closed, m, 0.0, kPi / 3, 0.0, &out, &outB, &dev);
    EXPECT_EQ(code & 1, 1);
    EXPECT_LE(dev, m * (1 + 1e-9));
    ASSERT_EQ(out.length(), outB.length());
    // An arc closing segment ends on vertex 0 without repeating it.
    const bool arcCloses = closed && bulges[n - 1] != 0.0;
    const double before = vora_plinelength2D(&pts, &bulges, closed);
    const double after = vora_plinelength2D(&out, &outB, arcCloses);
    EXPECT_NEAR(after, before, 1e-9 * before);

    // Flattening: every chord's middle is within the mid ordinate of the arc.
    AcGePoint3dArray flat;
    vora_tessellatepline(&packed, closed, m, &flat);
    int at = 1;
    for (int i = 0; i < (closed ? n : n - 1); ++i) {
      const int j = i + 1 == n ? 0 : i + 1;
      if (bulges[i] == 0.0) {
        if (j != 0) ++at;
        continue;
      }
      const vora::BulgeArc arc = vora::bulgeToArc(pts[i], pts[j], bulges[i]);
      const double R = std::fabs(arc.r);
      AcGePoint3d prev = pts[i];
      while (true) {
        const bool closingEnd = j == 0 && at == flat.length();
        const AcGePoint3d q = closingEnd ? pts[0] : flat[at];
        EXPECT_NEAR(std::hypot(q.x - arc.cx, q.y - arc.cy), R, 1e-9 * R);
        const double mx = 0.5 * (q.x + prev.x), my = 0.5 * (q.y + prev.y);
        EXPECT_LE(R - std::hypot(mx - arc.cx, my - arc.cy), m + 1e-9 * R);
        prev = q;
        if (closingEnd) break;
        ++at;
        if (q.x == pts[j].x && q.y == pts[j].y) break;
      }
    }
    EXPECT_EQ(at, flat.length());
  }
}

TEST(TessellateProperties, ReversingThePolylineReversesItsTessellation) {
  const unsigned seed = 2718;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-50.0, 50.0);
  std::uniform_real_distribution<double> bulge(-1.8, 1.8);
  for (int round = 0; round < 30; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round);
    const int n = 2 + round % 6;
    AcGePoint3dArray pts, rev;
    AcGeDoubleArray b, revB;
    for (int i = 0; i < n; ++i) {
      pts.append(AcGePoint3d(coord(rng), coord(rng), coord(rng)));
      b.append(i % 2 == 0 ? bulge(rng) : 0.0);
    }
    // Reversed: vertex i is n-1-i, and segment i runs backwards over n-2-i.
    for (int i = 0; i < n; ++i) {
      rev.append(pts[n - 1 - i]);
      revB.append(i + 1 < n ? -b[n - 2 - i] : 0.0);
    }
    AcGePoint3dArray out, outRev;
    AcGeDoubleArray outB, outRevB;
    vora_tessellate3Dpline(&pts, &b, false, 0.02, 0.0, kPi / 5, 0.0, &out, &outB, nullptr);
    vora_tessellate3Dpline(&rev, &revB, false, 0.02, 0.0, kPi / 5, 0.0, &outRev, &outRevB, nullptr);
    ASSERT_EQ(out.length(), outRev.length());
    const int m = out.length();
    for (int k = 0; k < m; ++k) {
      EXPECT_NEAR(outRev[k].x, out[m - 1 - k].x, 1e-9) << k;
      EXPECT_NEAR(outRev[k].y, out[m - 1 - k].y, 1e-9) << k;
      EXPECT_NEAR(outRev[k].z, out[m - 1 - k].z, 1e-9) << k;
      if (k + 1 < m) {
        EXPECT_NEAR(outRevB[k], -outB[m - 2 - k], 1e-9) << k;
      }
    }
  }
}

}  // namespace
