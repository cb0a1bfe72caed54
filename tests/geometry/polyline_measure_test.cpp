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

TEST(PlineMeasure, LengthsAppendedToTheBulgeListItselfMeasureTheOriginalBulges) {
  const AcGePoint3dArray pl = points({{0, 0, 0}, {2, 0, 0}, {2, 3, 0}, {5, 7, 0}});
  const AcGeDoubleArray bulges = doubles({1, 0, -1, 0.5});
  AcGeDoubleArray expected;
  const double total = vora_plinelength(&pl, &bulges, true, 2, &expected);

  AcGeDoubleArray shared = bulges;
  shared.setPhysicalLength(4);  // full, so the first append must move the buffer
  EXPECT_EQ(vora_plinelength(&pl, &shared, true, 2, &shared), total);
  ASSERT_EQ(shared.length(), 8);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(shared[i], bulges[i]) << i;
    EXPECT_EQ(shared[4 + i], expected[i]) << i;
  }
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

TEST(PtDistPline2D, ArcOfZeroRadiusStepsByTheSignOfTheRadius) {
  // With a negative point tolerance a zero-length bulged segment is walked
  // onto: its radius is 0, so the angle takes 0 * (s / 0) and is not a number.
  const vora::test::ToleranceGuard guard(1e-7, -1.0);
  const AcGePoint3dArray dup = points({{0, 0, 2}, {0, 0, 2}, {1, 0, 2}});
  const AcGeDoubleArray b = doubles({0.5, 0, 0});
  double out[3] = {7, 7, 7};
  EXPECT_EQ(vora_ptDistPline2D(&dup, &b, false, 0.0, out), 0);
  EXPECT_TRUE(std::isnan(out[0]));
  EXPECT_TRUE(std::isnan(out[1]));
  EXPECT_EQ(out[2], 2.0);
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

TEST(ParamPtPline2D, VertexTiesGoToTheEarlierSegmentAndNormaliseToTheVertexIndex) {
  const double onVertex[3] = {1, 0, 0};
  EXPECT_EQ(vora_paramPtPline2D(&kSquare, nullptr, false, onVertex, true), 1.0);
  const double onStart[3] = {0, 0, 0};
  // Closed: segment 0 (u = 0) and the closing segment (u = 1) tie; segment 0 wins.
  EXPECT_EQ(vora_paramPtPline2D(&kSquare, nullptr, true, onStart, true), 0.0);
  // Open, at the last vertex: u = 1 on the last segment rolls over to index 3.
  const double onEnd[3] = {0, 1, 0};
  EXPECT_EQ(vora_paramPtPline2D(&kSquare, nullptr, false, onEnd, false), 3.0);
  EXPECT_EQ(vora_distPtPline2D(&kSquare, nullptr, false, onEnd, false), 3.0);
  // The centre is 0.5 from every edge: the first edge wins, at its middle.
  const double centre[3] = {0.5, 0.5, 0};
  EXPECT_EQ(vora_paramPtPline2D(&kSquare, nullptr, true, centre, false), 0.5);
  // Just before vertex 0 on the first segment: within tolValue, pulled to 0.
  const AcGePoint3dArray seg = points({{0, 0, 0}, {1, 0, 0}});
  const double slightlyBefore[3] = {-5e-8, 0.25, 0};
  EXPECT_EQ(vora_paramPtPline2D(&seg, nullptr, false, slightlyBefore, false), 0.0);
}

TEST(ParamPtPline2D, FeetOutsideTheSegmentsAndPointsOffTheLineFindNothing) {
  const AcGePoint3dArray seg = points({{0, 0, 0}, {1, 0, 0}});
  const double beyond[3] = {2, 0.5, 0};
  EXPECT_EQ(vora_paramPtPline2D(&seg, nullptr, false, beyond, false), -1.0);
  EXPECT_EQ(vora_distPtPline2D(&seg, nullptr, false, beyond, false), -1.0);
  const double off[3] = {0.5, 0.001, 0};
  EXPECT_EQ(vora_paramPtPline2D(&seg, nullptr, false, off, true), -1.0);
  EXPECT_EQ(vora_paramPtPline2D(&seg, nullptr, false, off, false), 0.5);
  const double on[3] = {0.25, 0, 0};
  EXPECT_EQ(vora_distPtPline2D(&seg, nullptr, false, on, true), 0.25);
  // A degenerate segment writes no parameter and never qualifies.
  const AcGePoint3dArray dup = points({{0, 0, 0}, {0, 0, 0}});
  EXPECT_EQ(vora_paramPtPline2D(&dup, nullptr, false, on, false), -1.0);
  const AcGeDoubleArray wrong = doubles({0});
  EXPECT_EQ(vora_paramPtPline2D(&seg, &wrong, false, on, false), -1.0);
}

TEST(ParamPtPline2D, ArcParametersRunFromTheFirstVertexInBothDirections) {
  const AcGePoint3dArray half = points({{1, 0, 0}, {-1, 0, 0}});
  const AcGeDoubleArray ccw = doubles({1, 0}), cw = doubles({-1, 0});
  const double top[3] = {0, 2, 0}, bottom[3] = {0, -2, 0};
  EXPECT_NEAR(vora_paramPtPline2D(&half, &ccw, false, top, false), 0.5, 1e-12);
  EXPECT_NEAR(vora_distPtPline2D(&half, &ccw, false, top, false), kPi / 2, 1e-12);
  EXPECT_NEAR(vora_paramPtPline2D(&half, &cw, false, bottom, false), 0.5, 1e-12);
  // A quarter of the way along the clockwise arc from (1,0).
  const double q[3] = {std::cos(-kPi / 4), std::sin(-kPi / 4), 0};
  EXPECT_NEAR(vora_paramPtPline2D(&half, &cw, false, q, true), 0.25, 1e-12);
  EXPECT_NEAR(vora_distPtPline2D(&half, &cw, false, q, true), kPi / 4, 1e-12);
  // Closed, the arc above the chord lies farther from q than the closing
  // chord from (-1,0) back to (1,0), which takes the point.
  EXPECT_NEAR(vora_paramPtPline2D(&half, &ccw, true, q, false), 1.0 + (q[0] + 1) / 2, 1e-12);
}

TEST(PlineMeasureProperties, ParameterAndDistanceRoundTripOnStraightPolylines) {
  const unsigned seed = 99;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-100.0, 100.0);
  std::uniform_real_distribution<double> unit(0.05, 0.95);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << " round " << round);
    AcGePoint3dArray pts;
    const int n = 2 + round % 9;
    for (int i = 0; i < n; ++i) pts.append(AcGePoint3d(coord(rng), coord(rng), 0.0));
    const int segments = n - 1;
    const double param = static_cast<int>(unit(rng) * segments) + unit(rng);
    const AcGePoint3d p = vora_ptParamPline2D(&pts, nullptr, false, param);
    const double back = vora_paramPtPline2D(&pts, nullptr, false, &p.x, true);
    // A crossing of two segments can hand the point to another segment.
    if (std::fabs(back - param) > 1e-9) {
      EXPECT_NE(static_cast<int>(back), static_cast<int>(param));
      continue;
    }
    double out[3];
    const double dist = vora_distPtPline2D(&pts, nullptr, false, &p.x, true);
    EXPECT_EQ(vora_ptDistPline2D(&pts, nullptr, false, dist, out), static_cast<std::int64_t>(param));
    EXPECT_NEAR(out[0], p.x, 1e-9);
    EXPECT_NEAR(out[1], p.y, 1e-9);
  }
}

}  // namespace
