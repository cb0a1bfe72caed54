#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <random>
#include <string>

#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::test::ToleranceGuard;

constexpr double kPi = 3.141592653589793;
constexpr double kSentinel = 777.0;

struct Out {
  double foot[3] = {kSentinel, kSentinel, kSentinel};
  double param = kSentinel;
  bool untouched() const {
    return foot[0] == kSentinel && foot[1] == kSentinel && foot[2] == kSentinel && param == kSentinel;
  }
};

#define EXPECT_POINT(p, X, Y, Z) \
  do {                           \
    EXPECT_EQ((p)[0], X);        \
    EXPECT_EQ((p)[1], Y);        \
    EXPECT_EQ((p)[2], Z);        \
  } while (0)

TEST(DistPointLine, SignIsPositiveToTheRightAndParamIsUnclamped) {
  // z of the inputs is ignored and the foot's z is always 0.
  const double a[3] = {0, 0, 5}, b[3] = {1, 0, -5};
  const double left[3] = {0.5, 1, 9}, right[3] = {2, -3, 9};
  Out o;
  EXPECT_EQ(vora_distpointlinesigned(a, b, left, o.foot, &o.param), -1.0);
  EXPECT_POINT(o.foot, 0.5, 0.0, 0.0);
  EXPECT_EQ(o.param, 0.5);
  EXPECT_EQ(vora_distpointlinesigned(a, b, right, o.foot, &o.param), 3.0);
  EXPECT_POINT(o.foot, 2.0, 0.0, 0.0);
  EXPECT_EQ(o.param, 2.0);
  const double before[3] = {-3, 0, 0};
  EXPECT_EQ(vora_distpointlinesigned(a, b, before, nullptr, &o.param), 0.0);
  EXPECT_EQ(o.param, -3.0);

  Out u;
  EXPECT_EQ(vora_distpointline(a, b, left, u.foot, &u.param), 1.0);
  EXPECT_POINT(u.foot, 0.5, 0.0, 0.0);
  EXPECT_EQ(u.param, 0.5);
  EXPECT_EQ(vora_distpointline(a, b, right, nullptr, nullptr), 3.0);
}

TEST(DistPointLine, AlongLengthIsSummedAfterDividingEachTerm) {
  // Here dx*(px-ax)/L + dy*(py-ay)/L and (dx*(px-ax) + dy*(py-ay))/L differ in
  // the last bit; callers compare feet bit for bit.
  const double a[3] = {0, -9.625, 0}, b[3] = {-4.625, 4, 0}, p[3] = {-1.375, 8, 0};
  const double dx = -4.625, dy = 13.625, len = std::sqrt(dx * dx + dy * dy);
  const double t = dx * (p[0] - a[0]) / len + dy * (p[1] - a[1]) / len;
  ASSERT_NE(t, (dx * (p[0] - a[0]) + dy * (p[1] - a[1])) / len);
  Out o;
  vora_distpointlinesigned(a, b, p, o.foot, &o.param);
  EXPECT_POINT(o.foot, a[0] + t * dx / len, a[1] + t * dy / len, 0.0);
  EXPECT_EQ(o.param, t / len);
}

TEST(DistPointLine, CoincidentEndsFallBackToPointDistanceWithoutOutputs) {
  const double a[3] = {1, 1, 0}, p[3] = {4, 5, 0};
  Out o;
  EXPECT_EQ(vora_distpointlinesigned(a, a, p, o.foot, &o.param), 5.0);
  EXPECT_TRUE(o.untouched());
  // Never negative, even on the "left" side.
  const double q[3] = {1, 4, 0};
  EXPECT_EQ(vora_distpointlinesigned(a, a, q, o.foot, &o.param), 3.0);
  EXPECT_TRUE(o.untouched());

  // The line is degenerate while its plain length is not above tolPoint:
  // not squared, strict, and tolValue plays no part.
  ToleranceGuard guard(1.0, 0.5);
  const double o0[3] = {0, 0, 0}, atTol[3] = {0.5, 0, 0}, past[3] = {0.6, 0, 0}, r[3] = {0.3, 2, 0};
  EXPECT_EQ(vora_distpointline(o0, atTol, r, o.foot, &o.param), std::sqrt(0.3 * 0.3 + 4.0));
  EXPECT_TRUE(o.untouched());
  EXPECT_DOUBLE_EQ(vora_distpointline(o0, past, r, o.foot, &o.param), 2.0);
  EXPECT_FALSE(o.untouched());
  EXPECT_DOUBLE_EQ(o.param, 0.5);
}

TEST(DistPointLine, FootLiesOnTheLineAtTheReturnedDistance) {
  std::mt19937_64 rng(20261123);
  std::uniform_real_distribution<double> coord(-500.0, 500.0);
  for (int i = 0; i < 200; ++i) {
    const double a[3] = {coord(rng), coord(rng), 0}, b[3] = {coord(rng), coord(rng), 0};
    const double p[3] = {coord(rng), coord(rng), 0};
    double foot[3], param;
    const double d = vora_distpointlinesigned(a, b, p, foot, &param);
    EXPECT_NEAR(std::hypot(p[0] - foot[0], p[1] - foot[1]), std::fabs(d), 1e-9);
    EXPECT_NEAR(foot[0], a[0] + param * (b[0] - a[0]), 1e-9);
    EXPECT_NEAR(foot[1], a[1] + param * (b[1] - a[1]), 1e-9);
    // The sign follows the side: swapping the ends flips it.
    EXPECT_NEAR(vora_distpointlinesigned(b, a, p, nullptr, nullptr), -d, 1e-9);
    EXPECT_EQ(vora_distpointline(a, b, p, nullptr, nullptr), std::fabs(d));
  }
}

TEST(DistPointLine3d, SquaredLengthAgainstSquaredPointTolerance) {
  const double a[3] = {0, 0, 0}, b[3] = {0, 0, 2}, p[3] = {1, 0, 1};
  Out o;
  EXPECT_EQ(vora_distpointline3d(a, b, p, o.foot, &o.param), 1.0);
  EXPECT_POINT(o.foot, 0.0, 0.0, 1.0);
  EXPECT_EQ(o.param, 0.5);

  const double tiny[3] = {0, 1e-8, 0};
  Out t;
  EXPECT_EQ(vora_distpointline3d(a, tiny, p, t.foot, &t.param), -1.0);
  EXPECT_TRUE(t.untouched());

  ToleranceGuard guard(100.0, 0.5);
  const double atTol[3] = {0, 0.5, 0}, above[3] = {0, 0, 0.6};
  EXPECT_EQ(vora_distpointline3d(a, atTol, p, t.foot, &t.param), -1.0);  // 0.25 is not > 0.25
  EXPECT_TRUE(t.untouched());
  // 0.36 > 0.25, although 0.36 is less than the unsquared 0.5.
  EXPECT_DOUBLE_EQ(vora_distpointline3d(a, above, p, t.foot, &t.param), 1.0);
  EXPECT_DOUBLE_EQ(t.param, 1.0 / 0.6);
  EXPECT_DOUBLE_EQ(t.foot[2], 1.0);
}

struct ArcCase {
  const char* name;
  double r, start, end;
  double px, py;
  double dist, param;
};

void PrintTo(const ArcCase& c, std::ostream* os) { *os << c.name; }

class DistPointArc : public testing::TestWithParam<ArcCase> {};

TEST_P(DistPointArc, DistanceAndParameter) {
  const ArcCase& c = GetParam();
  const double circle[3] = {0, 0, c.r}, angles[2] = {c.start, c.end}, p[3] = {c.px, c.py, 3};
  double param = kSentinel;
  EXPECT_DOUBLE_EQ(vora_distpointarcsigned(circle, angles, p, nullptr, &param), c.dist);
  EXPECT_DOUBLE_EQ(param, c.param);
  double again = kSentinel;
  EXPECT_DOUBLE_EQ(vora_distpointarc(circle, angles, p, nullptr, &again), std::fabs(c.dist));
  EXPECT_EQ(again, param);
}

// Arc 0..pi/2 of radius 2; arc 3pi/2..pi/2 runs through angle 0 with a span of pi.
INSTANTIATE_TEST_SUITE_P(
    Cases, DistPointArc,
    testing::Values(ArcCase{"AtStart", 2, 0, kPi / 2, 3, 0, 1.0, 0.0},
                    ArcCase{"AtEnd", 2, 0, kPi / 2, 0, 1, -1.0, 1.0},
                    ArcCase{"BeyondEndNearer", 2, 0, kPi / 2, -1, 0, -1.0, 2.0},
                    ArcCase{"BeforeStartNearer", 2, 0, kPi / 2, 4, -0.4, std::hypot(4, 0.4) - 2,
                            -(2 * kPi - (std::atan(-0.1) + 2 * kPi)) / (kPi / 2)},
                    ArcCase{"TieGoesBeyondEnd", 2, 0, kPi / 2, -1, -1, std::sqrt(2.0) - 2, 2.5},
                    ArcCase{"TieOnHalfCircle", 1, 0, kPi, 0, -1, 0.0, 1.5},
                    ArcCase{"ClockwiseStart", -2, 0, kPi / 2, 3, 0, 1.0, 1.0},
                    ArcCase{"ClockwiseEnd", -2, 0, kPi / 2, 0, 1, -1.0, 0.0},
                    ArcCase{"ClockwiseBeyond", -2, 0, kPi / 2, -1, 0, -1.0, -1.0},
                    ArcCase{"WrapAtZero", 1, 3 * kPi / 2, kPi / 2, 5, 0, 4.0, 0.5},
                    ArcCase{"WrapBeforeEnd", 1, 3 * kPi / 2, kPi / 2, 1, 1, std::sqrt(2.0) - 1, 0.75},
                    ArcCase{"WrapAfterStart", 1, 3 * kPi / 2, kPi / 2, 1, -1, std::sqrt(2.0) - 1, 0.25},
                    ArcCase{"WrapGapNearEnd", 1, 3 * kPi / 2, kPi / 2, -1, 0.2, std::hypot(1, 0.2) - 1,
                            (kPi - std::atan(0.2) - kPi / 2) / kPi + 1.0},
                    ArcCase{"WrapGapNearStart", 1, 3 * kPi / 2, kPi / 2, -1, -0.2, std::hypot(1, 0.2) - 1,
                            -(3 * kPi / 2 - (kPi + std::atan(0.2))) / kPi},
                    ArcCase{"WrapNearlyFull", 1, 1.0, 0.9, 0, 1, 0.0, (kPi / 2 - 1.0) / (0.9 + 2 * kPi - 1.0)}),
    [](const testing::TestParamInfo<ArcCase>& info) { return std::string(info.param.name); });

TEST(DistPointArcFoot, RadialProjectionOntoTheWholeCircle) {
  const double circle[3] = {10, 20, 2}, angles[2] = {0, kPi / 2};
  const double outside[3] = {13, 20, 0};
  Out o;
  EXPECT_EQ(vora_distpointarcsigned(circle, angles, outside, o.foot, &o.param), 1.0);
  EXPECT_POINT(o.foot, 12.0, 20.0, 0.0);
  EXPECT_EQ(o.param, 0.0);
  // Off the arc, the foot still lands on the circle; without param the foot
  // is still written.
  const double behind[3] = {7, 20, 0};
  Out b;
  EXPECT_EQ(vora_distpointarcsigned(circle, angles, behind, b.foot, nullptr), 1.0);
  EXPECT_NEAR(b.foot[0], 8.0, 1e-12);
  EXPECT_NEAR(b.foot[1], 20.0, 1e-12);
  EXPECT_EQ(b.foot[2], 0.0);
  EXPECT_EQ(b.param, kSentinel);
}

TEST(DistPointArcDegenerate, CentreAndZeroSpanGiveRadialDistanceOnly) {
  const double circle[3] = {1, 1, -2}, angles[2] = {0, kPi / 2};
  const double centre[3] = {1, 1, 0};
  Out o;
  EXPECT_EQ(vora_distpointarcsigned(circle, angles, centre, o.foot, &o.param), -2.0);
  EXPECT_TRUE(o.untouched());
  EXPECT_EQ(vora_distpointarc(circle, angles, centre, o.foot, &o.param), 2.0);
  EXPECT_TRUE(o.untouched());

  const double flat[2] = {0.5, 0.5}, p[3] = {4, 5, 0};
  EXPECT_EQ(vora_distpointarcsigned(circle, flat, p, o.foot, &o.param), 3.0);
  EXPECT_TRUE(o.untouched());

  // The span is measured with tolValue, the distance to the centre with
  // tolPoint, both strict.
  {
    ToleranceGuard guard(0.5, 1e-7);
    const double atTol[2] = {1.0, 1.5}, wider[2] = {1.0, 1.6};
    EXPECT_EQ(vora_distpointarcsigned(circle, atTol, p, o.foot, &o.param), 3.0);
    EXPECT_TRUE(o.untouched());
    vora_distpointarcsigned(circle, wider, p, o.foot, &o.param);
    EXPECT_FALSE(o.untouched());
  }
  {
    ToleranceGuard guard(1e-7, 0.5);
    const double near[3] = {1.5, 1, 0}, further[3] = {1.6, 1, 0};
    Out n;
    EXPECT_EQ(vora_distpointarcsigned(circle, angles, near, n.foot, &n.param), -1.5);
    EXPECT_TRUE(n.untouched());
    vora_distpointarcsigned(circle, angles, further, n.foot, &n.param);
    EXPECT_FALSE(n.untouched());
  }
}

TEST(DistPointPlane, ProjectionAndUnsquaredValueTolerance) {
  const double normal[3] = {0, 0, 2}, on[3] = {0, 0, 1};
  const double above[3] = {5, 5, 4}, below[3] = {5, 5, -1};
  Out o;
  EXPECT_EQ(vora_distpointplane(normal, on, above, o.foot), 3.0);
  EXPECT_POINT(o.foot, 5.0, 5.0, 1.0);
  EXPECT_EQ(vora_distpointplane(normal, on, below, o.foot), 2.0);
  EXPECT_POINT(o.foot, 5.0, 5.0, 1.0);

  const double oblique[3] = {1, 1, 0}, origin[3] = {0, 0, 0}, p[3] = {2, 0, 7};
  EXPECT_DOUBLE_EQ(vora_distpointplane(oblique, origin, p, o.foot), std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(o.foot[0], 1.0);
  EXPECT_DOUBLE_EQ(o.foot[1], -1.0);
  EXPECT_EQ(o.foot[2], 7.0);

  Out t;
  const double weak[3] = {std::sqrt(5e-8), 0, 0};
  EXPECT_EQ(vora_distpointplane(weak, on, above, t.foot), -1.0);
  EXPECT_TRUE(t.untouched());

  // Squared length 0.16 against tolValue 0.25 (not 0.0625): degenerate.
  ToleranceGuard guard(0.25, 100.0);
  const double short1[3] = {0, 0.4, 0}, short2[3] = {0, 0.6, 0};
  EXPECT_EQ(vora_distpointplane(short1, on, above, t.foot), -1.0);
  EXPECT_TRUE(t.untouched());
  EXPECT_DOUBLE_EQ(vora_distpointplane(short2, on, above, t.foot), 5.0);
  EXPECT_DOUBLE_EQ(t.foot[1], 0.0);
}

// The polar angle as the arc functions take it: the arctangent of the slope
// with a quadrant fix-up (not atan2, which differs in the last bit).
double slopeAngle(double dx, double dy) {
  double a = std::atan(dy / dx);
  if (dx < 0.0) a += kPi;
  if (a < 0.0) a += 2 * kPi;
  return a;
}

TEST(DistPointArcExact, FootAndParameterFollowTheWrittenOrder) {
  constexpr double kTwoPi = 6.283185307179586;
  const double circle[3] = {0, 0, 2};
  // atan(0.3 / -0.1) + pi and atan2(0.3, -0.1) differ in the last bit.
  const double p[3] = {-0.1, 0.3, 0};
  const double alpha = slopeAngle(-0.1, 0.3);
  ASSERT_NE(alpha, std::atan2(0.3, -0.1));
  Out o;
  const double inside[2] = {0.1, 5.1};
  vora_distpointarcsigned(circle, inside, p, o.foot, &o.param);
  EXPECT_POINT(o.foot, std::cos(alpha) * 2.0, std::sin(alpha) * 2.0, 0.0);
  EXPECT_EQ(o.param, (alpha - 0.1) / (5.1 - 0.1));

  // Beyond the end (nearer than the start): past / W + 1.0.
  const double early[2] = {0.1, 0.7};
  vora_distpointarcsigned(circle, early, p, nullptr, &o.param);
  EXPECT_EQ(o.param, (alpha - 0.7) / (0.7 - 0.1) + 1.0);
  // Before the start: -back / W.
  const double late[2] = {2.3, 5.1};
  vora_distpointarcsigned(circle, late, p, nullptr, &o.param);
  EXPECT_EQ(o.param, -(2.3 - alpha) / (5.1 - 2.3));

  // Wrapping arcs: W = end + 2pi - start; a point before end counts from
  // start through 2pi.
  const double wrapBeforeEnd[2] = {5.1, 2.3};
  vora_distpointarcsigned(circle, wrapBeforeEnd, p, nullptr, &o.param);
  EXPECT_EQ(o.param, (alpha + kTwoPi - 5.1) / (2.3 + kTwoPi - 5.1));
  const double q[3] = {-0.1, 0.1, 0}, wrapNearEnd[2] = {2.5, 2.4};
  const double beta = slopeAngle(-0.1, 0.1);
  vora_distpointarcsigned(circle, wrapNearEnd, q, nullptr, &o.param);
  EXPECT_EQ(o.param, (beta + kTwoPi - 2.5) / (2.4 + kTwoPi - 2.5));
  const double wrapAfterStart[2] = {0.7, 0.1};
  vora_distpointarcsigned(circle, wrapAfterStart, p, nullptr, &o.param);
  EXPECT_EQ(o.param, (alpha - 0.7) / (0.1 + kTwoPi - 0.7));
  // Clockwise: the same quantity subtracted from 1.0.
  const double cw[3] = {0, 0, -2};
  vora_distpointarcsigned(cw, wrapBeforeEnd, p, nullptr, &o.param);
  EXPECT_EQ(o.param, 1.0 - (alpha + kTwoPi - 5.1) / (2.3 + kTwoPi - 5.1));
}

TEST(DistPointExact, FeetOfTheSpatialLineAndThePlane) {
  const double a[3] = {0.1, 0.2, 0.3}, b[3] = {0.3, -2.3, 0.9}, p[3] = {0.3, 1.1, -1.9};
  const double u[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
  const double s = u[0] * u[0] + u[1] * u[1] + u[2] * u[2];
  const double dot = (p[0] - a[0]) * u[0] + (p[1] - a[1]) * u[1] + (p[2] - a[2]) * u[2];
  const double t = dot / s;
  Out o;
  vora_distpointline3d(a, b, p, o.foot, &o.param);
  EXPECT_EQ(o.param, t);
  EXPECT_POINT(o.foot, a[0] + t * u[0], a[1] + t * u[1], a[2] + t * u[2]);

  // Plane foot: k / S first, then times the normal.
  const double n[3] = {0.1, 0.7, 1.1}, r[3] = {0.1, 1.1, -1.9};
  const double sn = n[0] * n[0] + n[1] * n[1] + n[2] * n[2];
  const double k = (a[0] - r[0]) * n[0] + (a[1] - r[1]) * n[1] + (a[2] - r[2]) * n[2];
  Out q;
  EXPECT_EQ(vora_distpointplane(n, a, r, q.foot), std::fabs(k) / std::sqrt(sn));
  EXPECT_POINT(q.foot, r[0] + k / sn * n[0], r[1] + k / sn * n[1], r[2] + k / sn * n[2]);
}

}  // namespace
