#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <random>

#include "geometry/tolerance.h"
#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::kPi;

AcGePoint3dArray points(std::initializer_list<AcGePoint3d> list) {
  AcGePoint3dArray a;
  for (const AcGePoint3d& p : list) a.append(p);
  return a;
}

AcGeDoubleArray doubles(std::initializer_list<double> list) {
  AcGeDoubleArray a;
  for (double d : list) a.append(d);
  return a;
}

const AcGePoint3dArray kSquare = points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});

TEST(PlineMeasure, BadInputGivesEachFunctionsFailureValueAndTouchesNoOutput) {
  const AcGePoint3dArray one = points({{1, 2, 3}});
  const AcGeDoubleArray shortList = doubles({0, 0, 0});
  AcGeDoubleArray lengths = doubles({42});
  double out[3] = {7, 7, 7};

  EXPECT_EQ(vora_plinelength(&one, nullptr, false, 2, &lengths), 0.0);
  EXPECT_EQ(vora_plinelength(&kSquare, &shortList, true, 2, &lengths), 0.0);
  EXPECT_EQ(lengths.length(), 1);
  EXPECT_EQ(vora_plinelength2D(&kSquare, &shortList, false), 0.0);
  EXPECT_EQ(vora_ptParamPline2D(&one, nullptr, false, 0.0), AcGePoint3d(0, 0, 0));
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, &shortList, false, 0.5), AcGePoint3d(0, 0, 0));
  EXPECT_EQ(vora_ptDistPline2D(&one, nullptr, false, 0.0, out), -1);
  EXPECT_EQ(vora_ptDistPline2D(&kSquare, &shortList, false, 0.5, out), -1);
  EXPECT_EQ(out[0], 7.0);
}

TEST(PlineMeasure, LengthOfSquaresAndHalfCirclesInBothDirections) {
  AcGeDoubleArray lengths = doubles({-1});
  EXPECT_EQ(vora_plinelength(&kSquare, nullptr, false, 2, &lengths), 3.0);
  EXPECT_EQ(vora_plinelength2D(&kSquare, nullptr, true), 4.0);
  ASSERT_EQ(lengths.length(), 4);  // appended after the caller's entry
  EXPECT_EQ(lengths[0], -1.0);
  EXPECT_EQ(lengths[3], 1.0);

  const AcGePoint3dArray chord = points({{0, 0, 0}, {2, 0, 10}});
  const AcGeDoubleArray up = doubles({1, 0}), down = doubles({-1, 0});
  EXPECT_DOUBLE_EQ(vora_plinelength2D(&chord, &up, false), kPi);
  EXPECT_EQ(vora_plinelength2D(&chord, &down, false), vora_plinelength2D(&chord, &up, false));
  // The closing segment of a closed polyline reads the last bulge.
  const AcGeDoubleArray closingArc = doubles({0, 1});
  EXPECT_DOUBLE_EQ(vora_plinelength2D(&chord, &closingArc, true), 2.0 + kPi);
}

TEST(PlineMeasure, ModeDecidesStraightSegmentsButArcsStayInPlan) {
  const AcGePoint3dArray vertical = points({{0, 0, 0}, {0, 0, 5}});
  EXPECT_EQ(vora_plinelength(&vertical, nullptr, false, 3, nullptr), 5.0);
  EXPECT_EQ(vora_plinelength(&vertical, nullptr, false, 2, nullptr), 0.0);
  EXPECT_EQ(vora_plinelength(&kSquare, nullptr, true, 7, nullptr), 0.0);

  const AcGePoint3dArray rising = points({{0, 0, 0}, {2, 0, 10}, {2, 0, 20}});
  const AcGeDoubleArray bulges = doubles({1, 0, 0});
  AcGeDoubleArray lengths;
  EXPECT_DOUBLE_EQ(vora_plinelength(&rising, &bulges, false, 3, &lengths), kPi + 10.0);
  EXPECT_DOUBLE_EQ(vora_plinelength(&rising, &bulges, false, 0, nullptr), kPi);
  ASSERT_EQ(lengths.length(), 2);
  EXPECT_EQ(lengths[1], 10.0);
}

TEST(PtDistPline2D, WalksToTheFirstSegmentReachingTheDistanceAndInterpolatesZ) {
  const AcGePoint3dArray line = points({{0, 0, 0}, {4, 0, 8}, {4, 3, 8}});
  double out[3] = {};
  EXPECT_EQ(vora_ptDistPline2D(&line, nullptr, false, 1.0, out), 0);
  EXPECT_EQ(out[0], 1.0);
  EXPECT_EQ(out[2], 2.0);
  // On the shared vertex the earlier segment reaches first.
  EXPECT_EQ(vora_ptDistPline2D(&line, nullptr, false, 4.0, out), 0);
  EXPECT_EQ(out[0], 4.0);
  EXPECT_EQ(vora_ptDistPline2D(&line, nullptr, false, 7.0, out), 1);
  EXPECT_EQ(out[1], 3.0);
  out[0] = 99;
  EXPECT_EQ(vora_ptDistPline2D(&line, nullptr, false, std::nextafter(7.0, 8.0), out), -1);
  EXPECT_EQ(vora_ptDistPline2D(&line, nullptr, false, -1e-300, out), -1);
  EXPECT_EQ(vora_ptDistPline2D(&line, nullptr, false, std::nan(""), out), -1);
  EXPECT_EQ(out[0], 99.0);

  // A degenerate first segment swallows distance 0 and fails.
  const AcGePoint3dArray dup = points({{0, 0, 0}, {0, 0, 0}, {1, 0, 0}});
  EXPECT_EQ(vora_ptDistPline2D(&dup, nullptr, false, 0.0, out), -1);
  EXPECT_EQ(vora_ptDistPline2D(&dup, nullptr, false, 0.5, out), 1);
}

TEST(PtDistPline2D, ArcPointsKeepTheScaledCentreAndTheFirstAngleOfThePair) {
  // Half circle about (2,3) from (3,3) to (1,3).
  const AcGePoint3dArray half = points({{3, 3, 5}, {1, 3, 9}});
  const AcGeDoubleArray ccw = doubles({1, 0}), cw = doubles({-1, 0});
  double out[3] = {};
  EXPECT_EQ(vora_ptDistPline2D(&half, &ccw, false, kPi / 2, out), 0);
  EXPECT_NEAR(out[0], 0.0, 1e-15);  // cos(pi/2) * (1 * 2)
  EXPECT_EQ(out[1], 3.0);           // sin(pi/2) * (1 * 3)
  EXPECT_EQ(out[2], 5.0);           // the first vertex's z, not interpolated
  // Clockwise: the pair is (pi, 0), so stepping starts from pi and turns back.
  EXPECT_EQ(vora_ptDistPline2D(&half, &cw, false, kPi / 4, out), 0);
  EXPECT_EQ(out[0], std::cos(kPi - kPi / 4) * 2.0);
  EXPECT_EQ(out[1], std::sin(kPi - kPi / 4) * 3.0);
}

TEST(PtParamPline2D, ParameterIsSegmentIndexPlusFractionAndClampsPastTheEnd) {
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, nullptr, false, 1.5), AcGePoint3d(1, 0.5, 0));
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, nullptr, false, 0.0), AcGePoint3d(0, 0, 0));
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, nullptr, false, 2.25), AcGePoint3d(0.75, 1, 0));
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, nullptr, true, 3.5), AcGePoint3d(0, 0.5, 0));
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, nullptr, false, 3.0), AcGePoint3d(0, 1, 0));
  EXPECT_EQ(vora_ptParamPline2D(&kSquare, nullptr, false, 7.5), AcGePoint3d(0, 1, 0));
  const AcGePoint3dArray raised = points({{0, 0, 1}, {1, 0, 3}});
  EXPECT_EQ(vora_ptParamPline2D(&raised, nullptr, false, -0.25), AcGePoint3d(0, 0, 0));
  EXPECT_EQ(vora_ptParamPline2D(&raised, nullptr, false, 0.5), AcGePoint3d(0.5, 0, 2));
}

TEST(PlineMeasureProperties, TotalIsTheSumOfSegmentLengthsAndPointsLieOnTheirSegment) {
  const unsigned seed = 4242;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
  std::uniform_real_distribution<double> bulge(-2.0, 2.0);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int round = 0; round < 50; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round);
    AcGePoint3dArray pts;
    AcGeDoubleArray bulges, zeros;
    const int n = 2 + round % 17;
    for (int i = 0; i < n; ++i) {
      pts.append(AcGePoint3d(coord(rng), coord(rng), coord(rng)));
      bulges.append(round % 2 == 0 ? bulge(rng) : 0.0);
      zeros.append(0.0);
    }
    const bool closed = round % 3 == 0;
    AcGeDoubleArray lengths;
    const double total = vora_plinelength(&pts, &bulges, closed, 2, &lengths);
    double sum = 0.0;
    for (double l : lengths) sum += l;
    EXPECT_EQ(total, sum);
    EXPECT_EQ(lengths.length(), closed ? n : n - 1);
    EXPECT_EQ(vora_plinelength2D(&pts, &bulges, closed), total);
    EXPECT_EQ(vora_plinelength2D(&pts, nullptr, closed), vora_plinelength2D(&pts, &zeros, closed));

    if (round % 2 == 1) {
      // Straight polylines: the point at a distance sits on its segment at
      // the right fraction.
      const double d = unit(rng) * total;
      double out[3];
      const std::int64_t k = vora_ptDistPline2D(&pts, nullptr, closed, d, out);
      ASSERT_GE(k, 0);
      double before = 0.0;
      for (std::int64_t i = 0; i < k; ++i) before += lengths[static_cast<int>(i)];
      EXPECT_LE(before, d);
      EXPECT_GE(before + lengths[static_cast<int>(k)], d);
      const AcGePoint3d& a = pts[static_cast<int>(k)];
      const AcGePoint3d& b = pts[static_cast<int>(k) + 1 == n ? 0 : static_cast<int>(k) + 1];
      EXPECT_NEAR(std::hypot(out[0] - a.x, out[1] - a.y), d - before, 1e-9 * total);
      EXPECT_NEAR(std::hypot(out[0] - b.x, out[1] - b.y), before + lengths[static_cast<int>(k)] - d, 1e-9 * total);
    }
  }
}

}  // namespace
