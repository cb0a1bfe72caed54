#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <random>

#include "geometry/tolerance.h"
#include "support/arrays.h"
#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::kPi;

using vora::test::doubles;
using vora::test::points;

const AcGePoint3dArray kSquare = points({{0, 0, 0}, {1, 0, 1}, {1, 1, 2}, {0, 1, 3}});
const AcGeDoubleArray kSquareB = doubles({0, 0, 0, 0});

TEST(AddPoint3Dpline, NoInsertionCopiesTheInputAndReportsTheVertex) {
  struct Case {
    double dist;
    bool closed;
    std::int64_t expected;
  };
  const Case cases[] = {
      {0.0, false, 0},  {5e-8, true, 0},      // at the start
      {4.0, true, 3},   {3.0, false, 3},      // the total: the last vertex, also when closed
      {-0.5, false, -1}, {3.5, false, -1},    // outside
      {2.0, false, 2},  {1.0, true, 1},       // on interior vertices
      {2.0 + 5e-8, false, 2},                 // within tolPoint past a vertex
      {2.0 - 5e-8, false, 2},                 // within tolPoint before it: the segment's end
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "dist " << c.dist << " closed " << c.closed);
    AcGePoint3dArray out = points({{9, 9, 9}});
    AcGeDoubleArray outB = doubles({9});
    EXPECT_EQ(vora_addpoint3Dpline(&kSquare, &kSquareB, c.closed, c.dist, &out, &outB), c.expected);
    ASSERT_EQ(out.length(), 5);
    ASSERT_EQ(outB.length(), 5);
    EXPECT_EQ(out[0], AcGePoint3d(9, 9, 9));
    for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i + 1], kSquare[i]);
  }
  const AcGePoint3dArray one = points({{1, 2, 3}});
  const AcGeDoubleArray oneB = doubles({0.5});
  AcGePoint3dArray out;
  AcGeDoubleArray outB;
  EXPECT_EQ(vora_addpoint3Dpline(&one, &oneB, false, 0.0, &out, &outB), -1);
  EXPECT_EQ(out.length(), 1);
  EXPECT_EQ(outB[0], 0.5);
}

TEST(AddPoint3Dpline, StraightSegmentGetsAnInterpolatedVertex) {
  const AcGePoint3dArray line = points({{0, 0, 0}, {10, 0, 10}});
  const AcGeDoubleArray b = doubles({0, 0});
  AcGePoint3dArray out;
  AcGeDoubleArray outB;
  EXPECT_EQ(vora_addpoint3Dpline(&line, &b, false, 2.5, &out, &outB), 1);
  ASSERT_EQ(out.length(), 3);
  EXPECT_EQ(out[1], AcGePoint3d(2.5, 0, 2.5));
  EXPECT_EQ(outB[1], 0.0);

  // The closing segment of a closed square: inserted after the last vertex.
  out.setLogicalLength(0);
  outB.setLogicalLength(0);
  EXPECT_EQ(vora_addpoint3Dpline(&kSquare, &kSquareB, true, 3.25, &out, &outB), 4);
  ASSERT_EQ(out.length(), 5);
  EXPECT_EQ(out[4], AcGePoint3d(0, 0.75, 2.25));
  EXPECT_EQ(out[3], kSquare[3]);
}

TEST(AddPoint3Dpline, SplitArcsKeepTheCircleWithABulgePerPart) {
  const AcGePoint3dArray half = points({{1, 0, 0}, {-1, 0, 0}});
  const AcGeDoubleArray ccw = doubles({1, 0.25});
  AcGePoint3dArray out;
  AcGeDoubleArray outB;
  EXPECT_EQ(vora_addpoint3Dpline(&half, &ccw, false, kPi / 2, &out, &outB), 1);
  ASSERT_EQ(out.length(), 3);
  EXPECT_NEAR(out[1].x, 0.0, 1e-12);
  EXPECT_NEAR(out[1].y, 1.0, 1e-12);
  EXPECT_EQ(out[1].z, 0.0);
  EXPECT_NEAR(outB[0], std::tan(kPi / 8), 1e-12);
  EXPECT_NEAR(outB[1], std::tan(kPi / 8), 1e-12);
  EXPECT_EQ(outB[2], 0.25);

  // Clockwise with heights, split at a quarter: 45 then 135 degrees.
  const AcGePoint3dArray rising = points({{1, 0, 0}, {-1, 0, 8}});
  const AcGeDoubleArray cw = doubles({-1, 0});
  out.setLogicalLength(0);
  outB.setLogicalLength(0);
  EXPECT_EQ(vora_addpoint3Dpline(&rising, &cw, false, kPi / 4, &out, &outB), 1);
  ASSERT_EQ(out.length(), 3);
  EXPECT_NEAR(out[1].x, std::sqrt(0.5), 1e-12);
  EXPECT_NEAR(out[1].y, -std::sqrt(0.5), 1e-12);
  EXPECT_NEAR(out[1].z, 2.0, 1e-12);
  EXPECT_NEAR(outB[0], -std::tan(kPi / 16), 1e-12);
  EXPECT_NEAR(outB[1], -std::tan(3 * kPi / 16), 1e-12);
}

TEST(AddPoint3Dpline, StartVertexKeepsTheAfterBulgeUnlessTheNewVertexMovedByTolPoint) {
  // Quarter circle from 45 to 135 degrees: the first step runs diagonally, so
  // a distance just over tolPoint moves the new vertex less than tolPoint in
  // x and in y.
  const vora::test::ToleranceGuard guard(1e-7, 1e-3);
  const double h = std::sqrt(0.5);
  const AcGeDoubleArray b = doubles({std::tan(kPi / 8), 0});
  const double dist = 1.2e-3;
  struct Case {
    double z0;
    bool tookBefore;
  };
  // Level, the vertex has not moved; rising by 10 over the arc it has, in z;
  // a height that is not a number is no difference of at least tolPoint.
  const Case cases[] = {{10.0, false}, {0.0, true}, {std::nan(""), false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "z0 " << c.z0);
    const AcGePoint3dArray arc = points({{h, h, c.z0}, {-h, h, 10}});
    AcGePoint3dArray out;
    AcGeDoubleArray outB;
    ASSERT_EQ(vora_addpoint3Dpline(&arc, &b, false, dist, &out, &outB), 1);
    ASSERT_EQ(outB.length(), 3);
    EXPECT_LT(std::fabs(out[1].x - h), 1e-3);
    EXPECT_LT(std::fabs(out[1].y - h), 1e-3);
    if (c.tookBefore) {
      EXPECT_NE(outB[0], outB[1]);
      EXPECT_NEAR(outB[0], std::tan(dist / 4), 1e-9);
    } else {
      EXPECT_EQ(outB[0], outB[1]);
    }
  }
}

TEST(AddPoint3Dpline, InsertionKeepsLengthAndPositionOnRandomPolylines) {
  const unsigned seed = 8675309;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-100.0, 100.0);
  std::uniform_real_distribution<double> bulge(-1.5, 1.5);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round);
    const int n = 2 + round % 8;
    AcGePoint3dArray pts;
    AcGeDoubleArray b;
    for (int i = 0; i < n; ++i) {
      pts.append(AcGePoint3d(coord(rng), coord(rng), coord(rng)));
      b.append(i % 2 == 0 ? bulge(rng) : 0.0);
    }
    const bool closed = round % 2 == 1;
    const double total = vora_plinelength2D(&pts, &b, closed);
    const double dist = unit(rng) * total;
    AcGePoint3dArray out;
    AcGeDoubleArray outB;
    const std::int64_t at = vora_addpoint3Dpline(&pts, &b, closed, dist, &out, &outB);
    ASSERT_GT(at, 0);
    ASSERT_EQ(out.length(), n + 1);
    ASSERT_EQ(outB.length(), n + 1);
    // The plan length does not change, and the new vertex sits at dist.
    EXPECT_NEAR(vora_plinelength2D(&out, &outB, closed), total, 1e-9 * total);
    AcGeDoubleArray lengths;
    vora_plinelength(&out, &outB, closed, 2, &lengths);
    double before = 0.0;
    for (std::int64_t i = 0; i < at; ++i) before += lengths[static_cast<int>(i)];
    EXPECT_NEAR(before, dist, 1e-9 * total);
    EXPECT_EQ(vora_paramPtPline2D(&out, &outB, closed, &out[static_cast<int>(at)].x, true) >= 0.0, true);
  }
}

}  // namespace
