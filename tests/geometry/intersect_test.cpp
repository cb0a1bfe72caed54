#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>
#include <utility>

#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::test::ToleranceGuard;

constexpr double kPi = 3.141592653589793;
constexpr double kSentinel = 777.0;
constexpr double kDefaultTol = 1e-07;
const double kRoot3Half = std::sqrt(3.0) / 2.0;

struct Pt {
  double v[3] = {kSentinel, kSentinel, kSentinel};
  bool untouched() const { return v[0] == kSentinel && v[1] == kSentinel && v[2] == kSentinel; }
};

#define EXPECT_POINT(p, X, Y, Z) \
  do {                           \
    EXPECT_EQ((p)[0], X);        \
    EXPECT_EQ((p)[1], Y);        \
    EXPECT_EQ((p)[2], Z);        \
  } while (0)

#define EXPECT_POINT_NEAR(p, X, Y)   \
  do {                               \
    EXPECT_NEAR((p)[0], X, 1e-12);   \
    EXPECT_NEAR((p)[1], Y, 1e-12);   \
    EXPECT_EQ((p)[2], 0.0);          \
  } while (0)

std::string caseName(const char* name) { return name; }

// ---------------------------------------------------------------- line-line

struct LineLineCase {
  const char* name;
  double a1x, a1y, b1x, b1y, a2x, a2y, b2x, b2y;
  unsigned char infinite1, infinite2;
  double tolValue, tolPoint;
  int result;
  double x, y;  // expected out on 1 or 2
};

void PrintTo(const LineLineCase& c, std::ostream* os) { *os << c.name; }

class IntLineLine : public testing::TestWithParam<LineLineCase> {};

TEST_P(IntLineLine, ResultAndPoint) {
  const LineLineCase& c = GetParam();
  ToleranceGuard guard(c.tolValue, c.tolPoint);
  // Input z must be ignored.
  const double a1[3] = {c.a1x, c.a1y, 4}, b1[3] = {c.b1x, c.b1y, -4};
  const double a2[3] = {c.a2x, c.a2y, 9}, b2[3] = {c.b2x, c.b2y, 9};
  Pt out;
  EXPECT_EQ(vora_intlineline(a1, b1, a2, b2, out.v, c.infinite1, c.infinite2), c.result);
  if (c.result >= 1) {
    EXPECT_NEAR(out.v[0], c.x, 1e-12);
    EXPECT_NEAR(out.v[1], c.y, 1e-12);
    EXPECT_EQ(out.v[2], 0.0);
  } else {
    EXPECT_POINT(out.v, 0.0, 0.0, -1.0);
  }
  EXPECT_EQ(vora_intlineline(a1, b1, a2, b2, nullptr, c.infinite1, c.infinite2), c.result);
}

constexpr double T = kDefaultTol;

INSTANTIATE_TEST_SUITE_P(
    Cases, IntLineLine,
    testing::Values(
        LineLineCase{"Cross", 0, 0, 2, 2, 0, 2, 2, 0, 0, 0, T, T, 1, 1, 1},
        LineLineCase{"BothSteepSolvedExchanged", 0, 0, 1, 3, 1, 0, 0, 3, 0, 0, T, T, 1, 0.5, 1.5},
        LineLineCase{"Line1VerticalOnly", 0, 0, 0, 4, -1, 1, 1, 3, 0, 0, T, T, 1, 0, 2},
        LineLineCase{"Line2VerticalOnly", -1, 1, 1, 3, 0, 0, 0, 4, 0, 0, T, T, 1, 0, 2},
        LineLineCase{"ParallelApart", 0, 0, 1, 0, 0, 1, 1, 1, 1, 1, T, T, -1, 0, 0},
        LineLineCase{"VerticalParallelApart", 0, 0, 0, 1, 1, 0, 1, 1, 1, 1, T, T, -1, 0, 0},
        LineLineCase{"CollinearOverlap", 0, 0, 2, 0, 1, 0, 3, 0, 0, 0, T, T, 2, 1, 0},
        LineLineCase{"CollinearOverlapReversedInputs", 2, 0, 0, 0, 3, 0, 1, 0, 0, 0, T, T, 2, 1, 0},
        LineLineCase{"CollinearOverlapLine1Later", 1, 0, 3, 0, 0, 0, 2, 0, 0, 0, T, T, 2, 1, 0},
        LineLineCase{"CollinearSteepOverlap", 0, 0, 0, 2, 0, 1, 0, 3, 0, 0, T, T, 2, 0, 1},
        LineLineCase{"CollinearDisjointSegments", 0, 0, 1, 0, 2, 0, 3, 0, 0, 0, T, T, -1, 0, 0},
        LineLineCase{"CollinearDisjointLine1Infinite", 0, 0, 1, 0, 2, 0, 3, 0, 1, 0, T, T, 2, 2, 0},
        // Same start on both lines: neither start lies strictly after the other.
        LineLineCase{"IdenticalSegmentsFindNothing", 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, T, T, -1, 0, 0},
        LineLineCase{"PointOnVerticalSegment", 0, 0, 0, 0, 0, -1, 0, 1, 0, 0, T, T, 2, 0, 0},
        LineLineCase{"MeetJustBeyondEnd", 0, 0, 1, 0, 1 + 1e-8, -1, 1 + 1e-8, 1, 0, 0, T, T, 1, 1 + 1e-8, 0},
        LineLineCase{"MeetTooFarBeyondEnd", 0, 0, 1, 0, 1 + 2e-7, -1, 1 + 2e-7, 1, 0, 0, T, T, -1, 0, 0},
        LineLineCase{"BeyondEndOfInfiniteLine", 0, 0, 1, 0, 1 + 2e-7, -1, 1 + 2e-7, 1, 1, 0, T, T, 1, 1 + 2e-7, 0},
        LineLineCase{"CarrierOfSegment2Misses", 0, 0, 4, 0, 2, 1, 3, 2, 0, 0, T, T, -1, 0, 0},
        LineLineCase{"InfiniteLine2Reaches", 0, 0, 4, 0, 2, 1, 3, 2, 0, 1, T, T, 1, 1, 0},
        // The segment margin is strict.
        LineLineCase{"MarginIsStrict", 0, 0, 1, 0, 1.5, -1, 1.5, 1, 0, 0, T, 0.5, -1, 0, 0},
        LineLineCase{"InsideWideMargin", 0, 0, 1, 0, 1.25, -1, 1.25, 1, 0, 0, T, 0.5, 1, 1.25, 0},
        LineLineCase{"MarginIsStrictAtStart", 0, 0, 1, 0, -0.5, -1, -0.5, 1, 0, 0, T, 0.5, -1, 0, 0},
        // Two lines within tolValue of vertical (not steep enough to be
        // exchanged) are apart only when their u differ by tolValue or more.
        LineLineCase{"NearVerticalPairWithinValueTolerance", 0, 0, 0.4, 0.2, 0.3, 1, 0.6, 1.1, 1, 1, 0.5, T, 2, 0.3,
                     1},
        // Parallel lines whose intercepts differ by exactly tolValue are apart.
        LineLineCase{"InterceptsExactlyTolValueApart", 0, 0, 1, 0, 0.25, 0.5, 1.25, 0.5, 1, 1, 0.5, T, -1, 0, 0},
        // Both lines steep and within tolValue of vertical: exchanging x and y
        // keeps the true crossing (1/11, 20/11).
        LineLineCase{"ExchangeKeepsTrueCrossing", 0, 0, 0.05, 1, 1, 0, 0.5, 1, 1, 1, 0.1, T, 1, 1.0 / 11, 20.0 / 11},
        // One steep line alone is not exchanged: within tolValue of vertical it
        // is taken as vertical through its first point.
        LineLineCase{"SingleSteepLineSnapsVertical", 0, 0, 0.05, 1, -1, 0.5, 1, 0.5, 1, 1, 0.1, T, 1, 0, 0.5},
        // Both near-vertical, unexchanged: line 2's start is taken although it
        // lies beyond line 1, which only a bounded line 1 rejects.
        LineLineCase{"VerticalOverlapBeyondInfiniteLine1", 0, 0, 0, 1, 0, 5, 0.05, 5.04, 1, 0, 0.1, T, 2, 0, 5},
        LineLineCase{"VerticalOverlapBeyondBoundedLine1", 0, 0, 0, 1, 0, 5, 0.05, 5.04, 0, 0, 0.1, T, -1, 0, 0},
        // Parallel within tolValue, but the candidate must still lie within
        // tolPoint of the other segment.
        LineLineCase{"NearlyCollinearWideMargin", 0, 0, 10, 0, 2, 0.005, 12, 0.005, 0, 0, 0.01, 0.01, 2, 2, 0.005},
        LineLineCase{"NearlyCollinearTightMargin", 0, 0, 10, 0, 2, 0.005, 12, 0.005, 0, 0, 0.01, T, -1, 0, 0}),
    [](const testing::TestParamInfo<LineLineCase>& info) { return caseName(info.param.name); });

TEST(IntLineLineExact, CrossingTakesVFromLine1) {
  const double a1[3] = {-1.375, -0.875, 0}, b1[3] = {8.125, 1, 0};
  const double a2[3] = {1, -5.25, 0}, b2[3] = {4, -3.375, 0};
  const double m1 = (b1[1] - a1[1]) / (b1[0] - a1[0]), k1 = a1[1] - m1 * a1[0];
  const double m2 = (b2[1] - a2[1]) / (b2[0] - a2[0]), k2 = a2[1] - m2 * a2[0];
  const double u = (k2 - k1) / (m1 - m2);
  ASSERT_NE(u * m1 + k1, u * m2 + k2);
  Pt out;
  EXPECT_EQ(vora_intlineline(a1, b1, a2, b2, out.v, 1, 1), 1);
  EXPECT_POINT(out.v, u, u * m1 + k1, 0.0);
}

// ---------------------------------------------------------------- line-circle

struct LineCircleCase {
  const char* name;
  double ax, ay, bx, by, cx, cy, r;
  unsigned char infinite;
  double tolValue;
  int count;
  double x1, y1, x2, y2;
};

void PrintTo(const LineCircleCase& c, std::ostream* os) { *os << c.name; }

class IntLineCircle : public testing::TestWithParam<LineCircleCase> {};

TEST_P(IntLineCircle, CountAndPoints) {
  const LineCircleCase& c = GetParam();
  ToleranceGuard guard(c.tolValue, kDefaultTol);
  const double a[3] = {c.ax, c.ay, 3}, b[3] = {c.bx, c.by, 3}, centre[3] = {c.cx, c.cy, 8};
  Pt out1, out2;
  EXPECT_EQ(vora_intlinecircle(a, b, centre, c.r, out1.v, out2.v, c.infinite), c.count);
  if (c.count >= 1) {
    EXPECT_POINT_NEAR(out1.v, c.x1, c.y1);
  } else {
    EXPECT_TRUE(out1.untouched());
  }
  if (c.count == 2) {
    EXPECT_POINT_NEAR(out2.v, c.x2, c.y2);
  } else {
    EXPECT_TRUE(out2.untouched());
  }
  EXPECT_EQ(vora_intlinecircle(a, b, centre, c.r, nullptr, nullptr, c.infinite), c.count);
}

const double kQx = -2.0 / std::sqrt(4.01), kQy = -0.1 / std::sqrt(4.01);
const double kChord = std::sqrt(1.0 - 0.99 * 0.99);

INSTANTIATE_TEST_SUITE_P(
    Cases, IntLineCircle,
    testing::Values(
        LineCircleCase{"SecantForward", -2, 0, 2, 0, 0, 0, 1, 0, T, 2, 1, 0, -1, 0},
        LineCircleCase{"SecantBackward", 2, 0, -2, 0, 0, 0, 1, 0, T, 2, -1, 0, 1, 0},
        LineCircleCase{"SegmentFromCentre", 0, 0, 2, 0, 0, 0, 1, 0, T, 1, 1, 0, 0, 0},
        LineCircleCase{"SegmentInside", -0.5, 0, 0.5, 0, 0, 0, 1, 0, T, 0, 0, 0, 0, 0},
        LineCircleCase{"InfiniteThroughInside", -0.5, 0, 0.5, 0, 0, 0, 1, 1, T, 2, 1, 0, -1, 0},
        LineCircleCase{"Miss", -2, 2, 2, 2, 0, 0, 1, 1, T, 0, 0, 0, 0, 0},
        LineCircleCase{"OffsetCentre", 4, 20, 16, 20, 10, 20, 5, 0, T, 2, 15, 20, 5, 20},
        LineCircleCase{"RadiusSignIgnored", -2, 0, 2, 0, 0, 0, -1, 0, T, 2, 1, 0, -1, 0},
        LineCircleCase{"EndWithinMargin", -2, 0, 1 - 1e-8, 0, 0, 0, 1, 0, T, 2, 1, 0, -1, 0},
        LineCircleCase{"EndOutsideMargin", -2, 0, 1 - 2e-7, 0, 0, 0, 1, 0, T, 1, -1, 0, 0, 0},
        // The second crossing alone lies on the segment and moves to out1.
        LineCircleCase{"OnlySecondOnSegment", 0, 0, -2, -0.1, 0, 0, 1, 0, T, 1, kQx, kQy, 0, 0},
        // dx = -2 is not > dy = 0, so the y range (zero wide) decides and the
        // crossing at (-1, 0), off the segment, is kept.
        LineCircleCase{"SignedSelectorKeepsOffSegmentPoint", 2, 0, 0, 0, 0, 0, 1, 0, T, 2, -1, 0, 1, 0},
        LineCircleCase{"TangentAscending", 1, -7, 7, 1, 0, 0, 5, 0, T, 1, 4, -3, 0, 0},
        LineCircleCase{"TangentDescendingRejected", 7, 1, 1, -7, 0, 0, 5, 0, T, 0, 0, 0, 0, 0},
        LineCircleCase{"TangentDescendingInfinite", 7, 1, 1, -7, 0, 0, 5, 1, T, 1, 4, -3, 0, 0},
        LineCircleCase{"TangentAlongAxisBackward", 2, 1, -2, 1, 0, 0, 1, 0, T, 1, 0, 1, 0, 0},
        LineCircleCase{"TangentAlongAxisForward", -2, 1, 2, 1, 0, 0, 1, 0, T, 1, 0, 1, 0, 0},
        // The discriminant 0.3184 is under tolValue 0.5: one touching point.
        LineCircleCase{"NearTangentWithinValueTolerance", -2, 0.99, 2, 0.99, 0, 0, 1, 0, 0.5, 1, 0, 0.99, 0, 0},
        LineCircleCase{"NearTangentAboveValueTolerance", -2, 0.99, 2, 0.99, 0, 0, 1, 0, 0.3, 2, kChord, 0.99,
                       -kChord, 0.99}),
    [](const testing::TestParamInfo<LineCircleCase>& info) { return caseName(info.param.name); });

TEST(IntLineCircleExact, CrossingsInTheirDocumentedOrder) {
  // A slanted chord through an offset circle: both points are built from the
  // centre-relative discriminant, P with +, Q with -.
  const double a[3] = {1.25, -3.5, 0}, b[3] = {7.75, 2.125, 0}, centre[3] = {3.5, 0.25, 0};
  const double r = 2.75;
  const double x1 = a[0] - centre[0], y1 = a[1] - centre[1], x2 = b[0] - centre[0], y2 = b[1] - centre[1];
  const double dx = x2 - x1, dy = y2 - y1, s = dx * dx + dy * dy, det = x1 * y2 - x2 * y1;
  const double root = std::sqrt(r * r * s - det * det);
  Pt out1, out2;
  ASSERT_EQ(vora_intlinecircle(a, b, centre, r, out1.v, out2.v, 1), 2);
  EXPECT_POINT(out1.v, (det * dy + dx * root) / s + centre[0], (-det * dx + dy * root) / s + centre[1], 0.0);
  EXPECT_POINT(out2.v, (det * dy - dx * root) / s + centre[0], (-det * dx - dy * root) / s + centre[1], 0.0);
  EXPECT_NEAR(std::hypot(out1.v[0] - centre[0], out1.v[1] - centre[1]), r, 1e-12);
  EXPECT_NEAR(std::hypot(out2.v[0] - centre[0], out2.v[1] - centre[1]), r, 1e-12);
}

// ---------------------------------------------------------------- line-arc

TEST(IntLineArc, CountsCrossingsOnTheArcAndAlwaysWritesBoth) {
  const double a[3] = {-2, 0, 0}, b[3] = {2, 0, 0}, o[3] = {0, 0, 0};
  Pt out1, out2;
  // (1, 0) on the arc, (-1, 0) not: the failed point stays in out2.
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 0, kPi / 2, out1.v, out2.v, 0, 0), 1);
  EXPECT_POINT(out1.v, 1.0, 0.0, 0.0);
  EXPECT_POINT(out2.v, -1.0, 0.0, 0.0);
  // Only the second on the arc: it is copied over the first.
  Pt p1, p2;
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, kPi / 2, 3 * kPi / 2, p1.v, p2.v, 0, 0), 1);
  EXPECT_POINT(p1.v, -1.0, 0.0, 0.0);
  EXPECT_POINT(p2.v, -1.0, 0.0, 0.0);
  // Neither: the copy happens too.
  Pt n1, n2;
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, kPi / 4, kPi / 2, n1.v, n2.v, 0, 0), 0);
  EXPECT_POINT(n1.v, -1.0, 0.0, 0.0);
  EXPECT_POINT(n2.v, -1.0, 0.0, 0.0);
  // The full-circle flag skips the clipping.
  Pt f1, f2;
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, kPi / 4, kPi / 2, f1.v, f2.v, 0, 1), 2);
  EXPECT_POINT(f1.v, 1.0, 0.0, 0.0);
  EXPECT_POINT(f2.v, -1.0, 0.0, 0.0);
  // An arc from 3pi/2 to pi/2 runs through 0.
  Pt w1, w2;
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 3 * kPi / 2, kPi / 2, w1.v, w2.v, 0, 0), 1);
  EXPECT_POINT(w1.v, 1.0, 0.0, 0.0);
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, kPi / 2, 3 * kPi / 2 + 0.1, nullptr, nullptr, 0, 0), 1);
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 3 * kPi / 2, kPi + 0.1, nullptr, nullptr, 0, 0), 2);
}

TEST(IntLineArc, ZerosWhereTheCircleGaveNothing) {
  const double a[3] = {-2, 2, 0}, b[3] = {2, 2, 0}, o[3] = {0, 0, 0};
  Pt out1, out2;
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 0, kPi, out1.v, out2.v, 1, 1), 0);
  EXPECT_POINT(out1.v, 0.0, 0.0, 0.0);
  EXPECT_POINT(out2.v, 0.0, 0.0, 0.0);
  // A tangent fills only the first.
  const double ta[3] = {-2, 1, 0}, tb[3] = {2, 1, 0};
  Pt t1, t2;
  EXPECT_EQ(vora_intlinearc(ta, tb, o, 1, 0, kPi, t1.v, t2.v, 0, 0), 1);
  EXPECT_POINT(t1.v, 0.0, 1.0, 0.0);
  EXPECT_POINT(t2.v, 0.0, 0.0, 0.0);
}

TEST(IntLineArc, ClippingToleranceIsAnArcLength) {
  ToleranceGuard guard(kDefaultTol, 0.5);
  const double centre[3] = {0, 0, 0};
  for (double radius : {100.0, -100.0}) {
    // Crossings 0.4 and 0.6 along the circle beyond the arc's end (pi/2).
    for (const auto& [beyond, count] : {std::pair{0.004, 1}, std::pair{0.006, 0}}) {
      const double x = 100.0 * std::cos(kPi / 2 + beyond);
      const double a[3] = {x, -200, 0}, b[3] = {x, 200, 0};
      EXPECT_EQ(vora_intlinearc(a, b, centre, radius, 0, kPi / 2, nullptr, nullptr, 0, 0), count)
          << "radius " << radius << " beyond " << beyond;
    }
  }
}

TEST(IntLineArc, EndsOfTheArcAreStrictAgainstTolPoint) {
  const double a[3] = {-2, 0, 0}, b[3] = {2, 0, 0}, o[3] = {0, 0, 0};
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 0, kPi / 2, nullptr, nullptr, 0, 0), 1);
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, kPi / 2, kPi, nullptr, nullptr, 0, 0), 1);
  ToleranceGuard guard(kDefaultTol, 0.0);
  // (1, 0) sits exactly at the start angle 0, (-1, 0) exactly at the end pi.
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 0, kPi / 2, nullptr, nullptr, 0, 0), 0);
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, kPi / 2, kPi, nullptr, nullptr, 0, 0), 0);
}

// ---------------------------------------------------------------- circle-circle

TEST(IntCircleCircle, CrossingTouchingApartConcentric) {
  const double o[3] = {0, 0, 0}, two[3] = {2, 0, 0}, one[3] = {1, 0, 0};
  Pt out1, out2;
  EXPECT_EQ(vora_intcirclecircle(o, 1, two, 1, out1.v, out2.v), 1);
  EXPECT_POINT(out1.v, 1.0, 0.0, 0.0);
  EXPECT_POINT(out2.v, 1.0, 0.0, 0.0);

  Pt m1, m2;
  EXPECT_EQ(vora_intcirclecircle(o, 1, two, 0.5, m1.v, m2.v), -1);
  EXPECT_TRUE(m1.untouched() && m2.untouched());
  EXPECT_EQ(vora_intcirclecircle(o, 1, o, 1, m1.v, m2.v), 0);
  EXPECT_TRUE(m1.untouched() && m2.untouched());
  // One inside the other without meeting.
  EXPECT_EQ(vora_intcirclecircle(o, 3, one, 1, m1.v, m2.v), -1);
  EXPECT_TRUE(m1.untouched() && m2.untouched());

  // Touching from inside.
  Pt i1, i2;
  EXPECT_EQ(vora_intcirclecircle(o, 2, one, 1, i1.v, i2.v), 1);
  EXPECT_POINT(i1.v, 2.0, 0.0, 0.0);
  EXPECT_POINT(i2.v, 2.0, 0.0, 0.0);

  // out1 lies left of centre1 -> centre2, out2 right of it.
  Pt c1, c2;
  EXPECT_EQ(vora_intcirclecircle(o, 1, one, 1, c1.v, c2.v), 2);
  EXPECT_POINT_NEAR(c1.v, 0.5, kRoot3Half);
  EXPECT_POINT_NEAR(c2.v, 0.5, -kRoot3Half);
  EXPECT_EQ(vora_intcirclecircle(one, -1, o, -1, c1.v, c2.v), 2);
  EXPECT_POINT_NEAR(c1.v, 0.5, -kRoot3Half);
  EXPECT_POINT_NEAR(c2.v, 0.5, kRoot3Half);
  const double up[3] = {0, 2, 0};
  EXPECT_EQ(vora_intcirclecircle(o, std::sqrt(2.0), up, std::sqrt(2.0), c1.v, c2.v), 2);
  EXPECT_POINT_NEAR(c1.v, -1.0, 1.0);
  EXPECT_POINT_NEAR(c2.v, 1.0, 1.0);
  const double offset[3] = {10, -4, 7}, offset2[3] = {11, -4, 7};
  EXPECT_EQ(vora_intcirclecircle(offset, 1, offset2, 1, c1.v, nullptr), 2);
  EXPECT_POINT_NEAR(c1.v, 10.5, -4 + kRoot3Half);
}

TEST(IntCircleCircle, ConcentricUsesSquaredDistanceAgainstTolValue) {
  const double o[3] = {0, 0, 0}, near[3] = {0.4, 0, 0}, further[3] = {0.6, 0, 0};
  ToleranceGuard guard(0.25, kDefaultTol);
  Pt out1, out2;
  // 0.16 is not above 0.25, though 0.4 is and 0.16 is above 0.25^2.
  EXPECT_EQ(vora_intcirclecircle(o, 1, near, 1, out1.v, out2.v), 0);
  EXPECT_TRUE(out1.untouched() && out2.untouched());
  EXPECT_EQ(vora_intcirclecircle(o, 1, further, 1, out1.v, out2.v), 2);
}

TEST(IntCircleCircle, TouchingWhenCrossingsAreWithinTolPoint) {
  const double o[3] = {0, 0, 0}, c[3] = {1.999, 0, 0};
  Pt out1, out2;
  {
    // The crossings are 0.063 apart.
    ToleranceGuard guard(kDefaultTol, 0.1);
    EXPECT_EQ(vora_intcirclecircle(o, 1, c, 1, out1.v, out2.v), 1);
    EXPECT_POINT_NEAR(out1.v, 0.9995, 0.0);
    EXPECT_EQ(out2.v[0], out1.v[0]);
    EXPECT_EQ(out2.v[1], out1.v[1]);
  }
  ToleranceGuard guard(0.1, kDefaultTol);
  EXPECT_EQ(vora_intcirclecircle(o, 1, c, 1, out1.v, out2.v), 2);
}

// ---------------------------------------------------------------- arc-arc

TEST(IntArcArc, ClipsEachCrossingToBothArcs) {
  const double o[3] = {0, 0, 0}, one[3] = {1, 0, 0};
  Pt out1, out2;
  // Crossings (0.5, +0.866) at pi/3 about o and (0.5, -0.866) at 5pi/3.
  EXPECT_EQ(vora_intarcarc(o, 1, 0, kPi / 2, one, 1, 0, 0, out1.v, out2.v, 0, 1), 1);
  EXPECT_POINT_NEAR(out1.v, 0.5, kRoot3Half);
  EXPECT_POINT_NEAR(out2.v, 0.5, -kRoot3Half);

  // About centre2 they lie at 2pi/3 and 4pi/3: only the second is on arc 2.
  Pt s1, s2;
  EXPECT_EQ(vora_intarcarc(o, 1, 0, 0, one, 1, kPi, 3 * kPi / 2, s1.v, s2.v, 1, 0), 1);
  EXPECT_POINT_NEAR(s1.v, 0.5, -kRoot3Half);
  EXPECT_POINT_NEAR(s2.v, 0.5, -kRoot3Half);

  // Each crossing fails one of the arcs.
  Pt n1, n2;
  EXPECT_EQ(vora_intarcarc(o, 1, 0, kPi / 2, one, 1, kPi, 3 * kPi / 2, n1.v, n2.v, 0, 0), 0);
  EXPECT_POINT_NEAR(n1.v, 0.5, -kRoot3Half);
  EXPECT_POINT_NEAR(n2.v, 0.5, -kRoot3Half);

  // Arc 1 from 3pi/2 through 0 to pi/2 holds both; so do two full circles.
  EXPECT_EQ(vora_intarcarc(o, 1, 3 * kPi / 2, kPi / 2, one, 1, 0, 0, nullptr, nullptr, 0, 1), 2);
  EXPECT_EQ(vora_intarcarc(o, 1, 2.0, 1.0, one, -1, 2.0, 1.0, nullptr, nullptr, 1, 1), 2);
  EXPECT_EQ(vora_intarcarc(o, -1, 3 * kPi / 2, kPi / 2, one, -1, kPi / 2, 3 * kPi / 2, nullptr, nullptr, 0, 0), 2);
}

TEST(IntArcArc, TouchingAndFailuresStillWriteBothOutputs) {
  const double o[3] = {0, 0, 0}, two[3] = {2, 0, 0};
  Pt t1, t2;
  // Touching at (1, 0): angle 0 about o, pi about two.
  EXPECT_EQ(vora_intarcarc(o, 1, 0, kPi / 2, two, 1, kPi / 2, 3 * kPi / 2, t1.v, t2.v, 0, 0), 1);
  EXPECT_POINT(t1.v, 1.0, 0.0, 0.0);
  EXPECT_POINT(t2.v, 1.0, 0.0, 0.0);
  Pt u1, u2;
  EXPECT_EQ(vora_intarcarc(o, 1, 0, kPi / 2, two, 1, 0, kPi / 2, u1.v, u2.v, 0, 0), 0);
  EXPECT_POINT(u1.v, 1.0, 0.0, 0.0);
  EXPECT_POINT(u2.v, 1.0, 0.0, 0.0);

  Pt m1, m2;
  EXPECT_EQ(vora_intarcarc(o, 1, 0, kPi, two, 0.5, 0, kPi, m1.v, m2.v, 1, 1), -1);
  EXPECT_POINT(m1.v, 0.0, 0.0, 0.0);
  EXPECT_POINT(m2.v, 0.0, 0.0, 0.0);
  Pt c1, c2;
  EXPECT_EQ(vora_intarcarc(two, 1, 0, kPi, two, 1, 0, kPi, c1.v, c2.v, 1, 1), 0);
  EXPECT_POINT(c1.v, 0.0, 0.0, 0.0);
  EXPECT_POINT(c2.v, 0.0, 0.0, 0.0);
}

TEST(IntArcArc, AgreesWithCircleCircleOnFullCircles) {
  const double c1[3] = {3.25, -1.5, 0}, c2[3] = {5.0, 0.75, 0};
  Pt a1, a2, b1, b2;
  const int n = vora_intcirclecircle(c1, 2.5, c2, 1.75, a1.v, a2.v);
  ASSERT_EQ(n, 2);
  EXPECT_EQ(vora_intarcarc(c1, 2.5, 1.0, 2.0, c2, 1.75, 4.0, 5.0, b1.v, b2.v, 1, 1), n);
  EXPECT_POINT(b1.v, a1.v[0], a1.v[1], 0.0);
  EXPECT_POINT(b2.v, a2.v[0], a2.v[1], 0.0);
}

TEST(IntLineLineExact, VerticalLinesTakeTheWrittenFormulas) {
  // Line 1 vertical: v = v2a - m2*u2a + m2*u1a.
  const double v1[3] = {0.7, -5, 0}, v2[3] = {0.7, 5, 0};
  const double s1[3] = {0.1, 0.3, 0}, s2[3] = {1.3, 0.9, 0};
  const double m = (0.9 - 0.3) / (1.3 - 0.1);
  ASSERT_NE(0.3 - m * 0.1 + m * 0.7, 0.3 + m * (0.7 - 0.1));
  Pt out;
  EXPECT_EQ(vora_intlineline(v1, v2, s1, s2, out.v, 1, 1), 1);
  EXPECT_POINT(out.v, 0.7, 0.3 - m * 0.1 + m * 0.7, 0.0);
  // Line 2 vertical: v = m1*u2a + k1 with k1 = v1a - m1*u1a.
  const double k = 0.3 - m * 0.1;
  ASSERT_NE(m * 0.7 + k, 0.3 + m * (0.7 - 0.1));
  Pt swapped;
  EXPECT_EQ(vora_intlineline(s1, s2, v1, v2, swapped.v, 1, 1), 1);
  EXPECT_POINT(swapped.v, 0.7, m * 0.7 + k, 0.0);
  // The points of line 1 given the other way round: k1 still comes from the
  // point with the smaller u.
  Pt reversed;
  EXPECT_EQ(vora_intlineline(s2, s1, v1, v2, reversed.v, 1, 1), 1);
  EXPECT_POINT(reversed.v, 0.7, m * 0.7 + k, 0.0);
}

TEST(IntLineCircleExact, TangentPointAndDiscriminantBoundary) {
  // With a large tolValue every line that reaches the circle counts as a
  // tangent, met at D*dy/S, -D*dx/S from the centre.
  const double a[3] = {0.1, 1.1, 0}, b[3] = {-0.7, 0.7, 0}, centre[3] = {0.3, 0.2, 0};
  const double x1 = a[0] - centre[0], y1 = a[1] - centre[1], x2 = b[0] - centre[0], y2 = b[1] - centre[1];
  const double dx = x2 - x1, dy = y2 - y1, s = dx * dx + dy * dy, det = x1 * y2 - x2 * y1;
  {
    ToleranceGuard guard(1e9, kDefaultTol);
    Pt out1, out2;
    EXPECT_EQ(vora_intlinecircle(a, b, centre, 1.1, out1.v, out2.v, 1), 1);
    EXPECT_POINT(out1.v, det * dy / s + centre[0], -det * dx / s + centre[1], 0.0);
    EXPECT_TRUE(out2.untouched());
  }
  {
    // dy < 0 here: the x offsets take the sign -1 and the y offsets |dy|.
    ASSERT_LT(dy, 0.0);
    const double root = std::sqrt(1.1 * 1.1 * s - det * det);
    Pt out1, out2;
    EXPECT_EQ(vora_intlinecircle(a, b, centre, 1.1, out1.v, out2.v, 1), 2);
    EXPECT_POINT(out1.v, (det * dy + -1.0 * dx * root) / s + centre[0], (-det * dx + -dy * root) / s + centre[1],
                 0.0);
    EXPECT_POINT(out2.v, (det * dy - -1.0 * dx * root) / s + centre[0], (-det * dx - -dy * root) / s + centre[1],
                 0.0);
  }
  // The chord y = 0.75 of the unit circle has a discriminant of exactly 7:
  // a tangent only when that is strictly under tolValue.
  const double c[3] = {-2, 0.75, 0}, d[3] = {2, 0.75, 0}, o[3] = {0, 0, 0};
  {
    ToleranceGuard guard(7.0, kDefaultTol);
    EXPECT_EQ(vora_intlinecircle(c, d, o, 1.0, nullptr, nullptr, 0), 2);
  }
  ToleranceGuard guard(7.5, kDefaultTol);
  EXPECT_EQ(vora_intlinecircle(c, d, o, 1.0, nullptr, nullptr, 0), 1);
}

TEST(IntCircleCircleExact, PointsFromTheRotatedChordOffsets) {
  // P and Q are (a, +h) and (a, -h) turned by the polar angle of c2 - c1.
  const auto offsets = [](const double* c1, double r1, const double* c2, double r2) {
    const AcGePoint2d p1(c1[0], c1[1]), p2(c2[0], c2[1]);
    const double len = p1.distanceTo(p2);
    const double a = (len * len - r2 * r2 + r1 * r1) * 0.5 / len;
    const double h = std::sqrt(r1 * r1 - a * a);
    const double theta = (p2 - p1).angle();
    std::pair<AcGeVector2d, AcGeVector2d> pq{AcGeVector2d(a, h), AcGeVector2d(a, -h)};
    pq.first.rotateBy(theta);
    pq.second.rotateBy(theta);
    return pq;
  };
  const double c1[3] = {0.1, 0.3, 0}, c2[3] = {1.3, 0.7, 0};
  const auto [left, right] = offsets(c1, 0.9, c2, 1.1);
  Pt out1, out2;
  ASSERT_EQ(vora_intcirclecircle(c1, 0.9, c2, 1.1, out1.v, out2.v), 2);
  EXPECT_POINT(out1.v, c1[0] + left.x, c1[1] + left.y, 0.0);
  EXPECT_POINT(out2.v, c1[0] + right.x, c1[1] + right.y, 0.0);

  // Crossings closer together than a wide tolPoint count as touching, at
  // their midpoint taken as P + (Q - P) * 0.5.
  ToleranceGuard guard(kDefaultTol, 1.0);
  const double c3[3] = {0.3, 0.7, 0};
  const auto [p, q] = offsets(c1, 0.3, c3, 0.7);
  ASSERT_NE(p.x, q.x);
  const AcGeVector2d mid = p + (q - p) * 0.5;
  Pt t1, t2;
  ASSERT_EQ(vora_intcirclecircle(c1, 0.3, c3, 0.7, t1.v, t2.v), 1);
  EXPECT_POINT(t1.v, c1[0] + mid.x, c1[1] + mid.y, 0.0);
  EXPECT_POINT(t2.v, c1[0] + mid.x, c1[1] + mid.y, 0.0);
  Pt a1, a2;
  ASSERT_EQ(vora_intarcarc(c1, 0.3, 0, 0, c3, 0.7, 0, 0, a1.v, a2.v, 1, 1), 1);
  EXPECT_POINT(a1.v, c1[0] + mid.x, c1[1] + mid.y, 0.0);
  EXPECT_POINT(a2.v, c1[0] + mid.x, c1[1] + mid.y, 0.0);
}

TEST(IntCircleCircle, RadiusThatIsNotANumberMeetsNothing) {
  const double o[3] = {0, 0, 0}, two[3] = {2, 0, 0};
  Pt out1, out2;
  EXPECT_EQ(vora_intcirclecircle(o, std::nan(""), two, 1, out1.v, out2.v), -1);
  EXPECT_TRUE(out1.untouched() && out2.untouched());
}

TEST(IntLineArc, EqualStartAndEndIsTheWholeCircle) {
  // end not greater than start wraps through 0: with end == start every
  // angle is on the arc.
  const double a[3] = {-2, 0.5, 0}, b[3] = {2, 0.5, 0}, o[3] = {0, 0, 0}, one[3] = {1, 0, 0};
  EXPECT_EQ(vora_intlinearc(a, b, o, 1, 1.0, 1.0, nullptr, nullptr, 0, 0), 2);
  EXPECT_EQ(vora_intarcarc(o, 1, 4.0, 4.0, one, 1, 2.5, 2.5, nullptr, nullptr, 0, 0), 2);
}

}  // namespace
