#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "geometry/bulge.h"
#include "geometry/tolerance.h"
#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::kPi;
using vora::kTwoPi;
using vora::test::ToleranceGuard;

constexpr double kNear = 1e-12;
constexpr std::uint64_t kNoCap = 0;

TEST(Arc2Bulge, QuarterCircleSignAndPointOrderFollowTheRadius) {
  const double ccw[3] = {0.0, 0.0, 1.0};
  const double cw[3] = {0.0, 0.0, -1.0};
  const double angles[2] = {0.0, kPi / 2};
  double b = 0.0, s[3] = {9, 9, 9}, e[3] = {9, 9, 9};

  EXPECT_EQ(vora_arc2bulge(ccw, angles, &b, s, e), 0);
  EXPECT_NEAR(b, std::tan(kPi / 8), kNear);
  EXPECT_NEAR(s[0], 1.0, kNear);
  EXPECT_NEAR(s[1], 0.0, kNear);
  EXPECT_NEAR(e[0], 0.0, kNear);
  EXPECT_NEAR(e[1], 1.0, kNear);
  EXPECT_EQ(s[2], 0.0);
  EXPECT_EQ(e[2], 0.0);

  // Clockwise: same arc, travelled from the end angle back to the start angle.
  EXPECT_EQ(vora_arc2bulge(cw, angles, &b, s, e), 0);
  EXPECT_NEAR(b, -std::tan(kPi / 8), kNear);
  EXPECT_NEAR(s[0], 0.0, kNear);
  EXPECT_NEAR(s[1], 1.0, kNear);
  EXPECT_NEAR(e[0], 1.0, kNear);
  EXPECT_NEAR(e[1], 0.0, kNear);
}

TEST(Arc2Bulge, NullBulgeWritesNothingAndNullPointsAreSkipped) {
  const double cr[3] = {2.0, 3.0, 1.0};
  const double angles[2] = {0.0, kPi / 2};
  double s[3] = {7, 7, 7}, e[3] = {8, 8, 8};
  EXPECT_EQ(vora_arc2bulge(cr, angles, nullptr, s, e), 0);
  EXPECT_EQ(s[0], 7.0);
  EXPECT_EQ(e[2], 8.0);

  double b = 5.0;
  EXPECT_EQ(vora_arc2bulge(cr, angles, &b, nullptr, e), 0);
  EXPECT_NEAR(b, std::tan(kPi / 8), kNear);
  EXPECT_NEAR(e[0], 2.0, kNear);
  EXPECT_NEAR(e[1], 4.0, kNear);

  // A radius under tolValue is a straight segment: bulge 0, both points on the centre.
  const double tiny[3] = {2.0, 3.0, -1e-8};
  EXPECT_EQ(vora_arc2bulge(tiny, angles, &b, s, e), 0);
  EXPECT_EQ(b, 0.0);
  EXPECT_NEAR(s[0], 2.0, 1e-7);
  EXPECT_NEAR(e[1], 3.0, 1e-7);
}

TEST(Arc2Bulge, SweepDecidesBetweenShortAndLongFormulaAcrossAngleZero) {
  const double cr[3] = {0.0, 0.0, 1.0};
  double b = 0.0;
  // Wrap-around pair 3pi/2 -> pi/4 sweeps 3pi/4: short formula.
  const double wrapShort[2] = {3 * kPi / 2, kPi / 4};
  vora_arc2bulge(cr, wrapShort, &b, nullptr, nullptr);
  EXPECT_NEAR(b, std::tan(3 * kPi / 16), kNear);
  // pi/4 -> 3pi/2 has the same chord but sweeps 5pi/4: long formula.
  const double wrapLong[2] = {kPi / 4, 3 * kPi / 2};
  vora_arc2bulge(cr, wrapLong, &b, nullptr, nullptr);
  EXPECT_NEAR(b, std::tan(5 * kPi / 16), kNear);
  EXPECT_GT(b, 1.0);
  // 0 -> 3pi/2, clockwise radius: magnitude tan(3pi/8), negative.
  const double crCw[3] = {0.0, 0.0, -1.0};
  const double longArc[2] = {0.0, 3 * kPi / 2};
  vora_arc2bulge(crCw, longArc, &b, nullptr, nullptr);
  EXPECT_NEAR(b, -std::tan(3 * kPi / 8), kNear);
}

TEST(Arc2Bulge, HalfCircleIsCaughtByThePointToleranceOrByTheLongFormula) {
  const double cr[3] = {0.0, 0.0, 2.0};
  const double pair[2] = {3 * kPi / 2, kPi / 2};  // sweep pi through angle 0
  double b = 0.0;
  vora_arc2bulge(cr, pair, &b, nullptr, nullptr);
  EXPECT_EQ(b, 1.0);
  // Without the half-circle test the long formula still gives magnitude 1.
  ToleranceGuard guard(1e-07, 0.0);
  const double crCw[3] = {0.0, 0.0, -2.0};
  vora_arc2bulge(crCw, pair, &b, nullptr, nullptr);
  EXPECT_NEAR(b, -1.0, 1e-7);
}

TEST(Bulge2Arc, HalfCirclesGiveExactCentreAndSwappedAnglesWhenClockwise) {
  const double p1[3] = {1.0, 0.0, 5.0}, p2[3] = {-1.0, 0.0, 7.0};
  double cr[3], ang[3] = {9, 9, 9};
  EXPECT_EQ(vora_bulge2arc(p1, p2, 1.0, cr, ang), 0);
  EXPECT_EQ(cr[0], 0.0);
  EXPECT_EQ(cr[1], 0.0);
  EXPECT_EQ(cr[2], 1.0);
  EXPECT_EQ(ang[0], 0.0);
  EXPECT_EQ(ang[1], kPi);
  EXPECT_EQ(ang[2], 0.0);

  EXPECT_EQ(vora_bulge2arc(p1, p2, -1.0, cr, ang), 0);
  EXPECT_EQ(cr[2], -1.0);
  EXPECT_EQ(ang[0], kPi);
  EXPECT_EQ(ang[1], 0.0);
}

TEST(Bulge2Arc, CentreSideAndAnglePairForShortAndLongArcsBothWays) {
  const double a[3] = {1.0, 0.0, 0.0}, b[3] = {0.0, 1.0, 0.0}, c[3] = {0.0, -1.0, 0.0};
  double cr[3], ang[3];
  // Quarter circle counter-clockwise about the origin.
  vora_bulge2arc(a, b, std::tan(kPi / 8), cr, ang);
  EXPECT_NEAR(cr[0], 0.0, kNear);
  EXPECT_NEAR(cr[1], 0.0, kNear);
  EXPECT_NEAR(cr[2], 1.0, kNear);
  EXPECT_NEAR(ang[0], 0.0, kNear);
  EXPECT_NEAR(ang[1], kPi / 2, kNear);
  // The same chord travelled clockwise from b to a: start is the angle of a.
  vora_bulge2arc(b, a, -std::tan(kPi / 8), cr, ang);
  EXPECT_NEAR(cr[2], -1.0, kNear);
  EXPECT_NEAR(ang[0], 0.0, kNear);
  EXPECT_NEAR(ang[1], kPi / 2, kNear);
  // Three quarters counter-clockwise from a to c: the centre stays on the
  // origin although the chord's midpoint is on the other side.
  vora_bulge2arc(a, c, std::tan(3 * kPi / 8), cr, ang);
  EXPECT_NEAR(cr[0], 0.0, kNear);
  EXPECT_NEAR(cr[1], 0.0, kNear);
  EXPECT_NEAR(cr[2], 1.0, kNear);
  EXPECT_NEAR(ang[0], 0.0, kNear);
  EXPECT_NEAR(ang[1], 3 * kPi / 2, kNear);
  // A quarter circle clockwise from a to c crosses angle 0: pair (3pi/2, 0).
  vora_bulge2arc(a, c, -std::tan(kPi / 8), cr, ang);
  EXPECT_NEAR(cr[2], -1.0, kNear);
  EXPECT_NEAR(ang[0], 3 * kPi / 2, kNear);
  // The centre lands a rounding error off the origin, so the angle of (1,0)
  // can come out just under 2pi instead of 0: both are the same direction.
  EXPECT_GE(ang[1], 0.0);
  EXPECT_LT(ang[1], kTwoPi + kNear);
  EXPECT_NEAR(std::remainder(ang[1], kTwoPi), 0.0, kNear);
}

TEST(Bulge2Arc, NullOutputsAndDegenerateSegments) {
  const double p1[3] = {1.0, 0.0, 0.0}, p2[3] = {-1.0, 0.0, 0.0};
  double cr[3] = {9, 9, 9}, ang[3] = {9, 9, 9};
  EXPECT_EQ(vora_bulge2arc(p1, p2, 1.0, nullptr, ang), 0);
  EXPECT_EQ(ang[0], 9.0);
  EXPECT_EQ(vora_bulge2arc(p1, p2, 1.0, cr, nullptr), 0);
  EXPECT_EQ(cr[2], 1.0);
  EXPECT_EQ(ang[0], 9.0);

  // A bulge under tolValue: radius and angles 0, the centre is not a number.
  vora_bulge2arc(p1, p2, 5e-8, cr, ang);
  EXPECT_EQ(cr[2], 0.0);
  EXPECT_TRUE(std::isnan(cr[0]));
  EXPECT_EQ(ang[0], 0.0);
  EXPECT_EQ(ang[1], 0.0);
  // Coincident points with a real bulge: zero chord, zero radius.
  vora_bulge2arc(p1, p1, 0.5, cr, ang);
  EXPECT_EQ(cr[2], 0.0);
  EXPECT_EQ(ang[0], 0.0);
  EXPECT_EQ(ang[1], 0.0);
}

TEST(BulgeNet, ScalarFormsReturnBulgeOrSignedRadiusAndSkipNullPointers) {
  double sx = 0, sy = 0, ex = 0, ey = 0;
  const double b = vora_arc2bulgeNET(0.0, 0.0, -1.0, 0.0, kPi / 2, &sx, &sy, &ex, &ey);
  EXPECT_NEAR(b, -std::tan(kPi / 8), kNear);
  EXPECT_NEAR(sx, 0.0, kNear);
  EXPECT_NEAR(sy, 1.0, kNear);
  EXPECT_NEAR(ex, 1.0, kNear);
  EXPECT_NEAR(ey, 0.0, kNear);
  EXPECT_EQ(vora_arc2bulgeNET(0.0, 0.0, 1.0, 0.0, kPi, nullptr, nullptr, nullptr, nullptr), 1.0);

  double cx = 9, cy = 9, s = 9, e = 9;
  EXPECT_EQ(vora_bulge2arcNET(1.0, 0.0, -1.0, 0.0, -1.0, &cx, &cy, &s, &e), -1.0);
  EXPECT_EQ(cx, 0.0);
  EXPECT_EQ(cy, 0.0);
  EXPECT_EQ(s, kPi);
  EXPECT_EQ(e, 0.0);
  EXPECT_EQ(vora_bulge2arcNET(1.0, 0.0, -1.0, 0.0, 5e-8, nullptr, nullptr, &s, &e), 0.0);
  EXPECT_EQ(s, 0.0);
  EXPECT_EQ(e, 0.0);
}

TEST(BulgeProperties, ArcToBulgeInvertsBulgeToArc) {
  const unsigned seed = 20261123;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-100.0, 100.0);
  std::uniform_real_distribution<double> bulge(-4.0, 4.0);
  for (int i = 0; i < 2000; ++i) {
    const double p1[3] = {coord(rng), coord(rng), 0.0}, p2[3] = {coord(rng), coord(rng), 0.0};
    double b = bulge(rng);
    if (std::fabs(b) < 0.05) b = 0.05;
    double cr[3], ang[3], back = 0.0, s[3], e[3];
    vora_bulge2arc(p1, p2, b, cr, ang);
    vora_arc2bulge(cr, ang, &back, s, e);
    SCOPED_TRACE(testing::Message() << "seed " << seed << " case " << i << " bulge " << b);
    EXPECT_NEAR(back, b, 1e-6 * std::max(1.0, std::fabs(b) * std::fabs(b)));
    EXPECT_NEAR(s[0], p1[0], 1e-8);
    EXPECT_NEAR(s[1], p1[1], 1e-8);
    EXPECT_NEAR(e[0], p2[0], 1e-8);
    EXPECT_NEAR(e[1], p2[1], 1e-8);
    // The internal form matches the exported one bit for bit.
    const vora::BulgeArc arc = vora::bulgeToArc(p1, p2, b);
    EXPECT_EQ(arc.r, cr[2]);
    EXPECT_EQ(arc.start, ang[0]);
    EXPECT_EQ(arc.end, ang[1]);
    EXPECT_EQ(vora::arcToBulge(cr[0], cr[1], cr[2], ang[0], ang[1]), back);
  }
}

TEST(SegmentLength, ArcLengthIsPositiveForBothSignsAndChordWhenStraight) {
  const AcGePoint3d a(0, 0, 0), b(2, 0, 9);
  EXPECT_EQ(vora::planSegmentLength(a, b, 0.0), 2.0);
  EXPECT_NEAR(vora::planSegmentLength(a, b, 1.0), kPi, kNear);
  EXPECT_EQ(vora::planSegmentLength(a, b, -1.0), vora::planSegmentLength(a, b, 1.0));
  EXPECT_EQ(vora::planSegmentLength(a, b, 5e-8), 2.0);
  EXPECT_EQ(vora::sweptAngle(3 * kPi / 2, kPi / 2), kPi);
  EXPECT_EQ(vora::sweptAngle(1.0, 1.0), 0.0);
  EXPECT_EQ(vora::toStepCount(-1.0), 0u);
  EXPECT_EQ(vora::toStepCount(std::numeric_limits<double>::infinity()), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(vora::toStepCount(std::nan("")), 0u);
  EXPECT_EQ(vora::toStepCount(7.0), 7u);
}

// Quarter circle of radius 1 about the origin, counter-clockwise.
const double kQ1[3] = {1.0, 0.0, 4.0};
const double kQ2[3] = {0.0, 1.0, 6.0};
const double kQBulge = 0.41421356237309503;  // tan(pi/8)

TEST(Arc2Pts, StraightSegmentAppendsNothing) {
  AcGePoint3dArray out;
  double dev = 3.0;
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, 5e-8, 0.01, 0.0, kPi / 4, kNoCap, &out, &dev), 1);
  EXPECT_EQ(out.length(), 0);
  EXPECT_EQ(dev, 3.0);
}

TEST(Arc2Pts, MaximumAngleStepKeepsEndPointsAsGivenAndInteriorAtZ0) {
  AcGePoint3dArray out;
  out.append(AcGePoint3d(-5, -5, -5));  // outputs are appended, never cleared
  double dev = 0.0;
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, 0.0, 0.0, kPi / 4, kNoCap, &out, &dev), 8);
  ASSERT_EQ(out.length(), 4);
  EXPECT_EQ(out[0], AcGePoint3d(-5, -5, -5));
  EXPECT_EQ(out[1].x, 1.0);
  EXPECT_EQ(out[1].z, 4.0);
  EXPECT_NEAR(out[2].x, std::sqrt(0.5), kNear);
  EXPECT_NEAR(out[2].y, std::sqrt(0.5), kNear);
  EXPECT_EQ(out[2].z, 0.0);
  EXPECT_EQ(out[3].y, 1.0);
  EXPECT_EQ(out[3].z, 6.0);
  EXPECT_NEAR(dev, 1.0 - std::cos(kPi / 8), kNear);

  // A mid ordinate over twice the radius gives no chord: the maximum angle rules.
  out.setLogicalLength(0);
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, 2.5, 0.0, kPi / 4, kNoCap, &out, nullptr), 8);
  EXPECT_EQ(out.length(), 3);
}

TEST(Arc2Pts, ChordRulesAndTheCountCapThatTheMaximumAngleEscapes) {
  // A chord of 2 sin(pi/38) steps pi/19, so the quarter circle needs 10 pieces.
  const double chord = 2.0 * std::sin(kPi / 38);
  AcGePoint3dArray out;
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, 0.0, chord, kPi, kNoCap, &out, nullptr), 4);
  EXPECT_EQ(out.length(), 11);

  out.setLogicalLength(0);
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, 0.0, chord, kPi, 3, &out, nullptr), 16);
  ASSERT_EQ(out.length(), 4);
  EXPECT_NEAR(std::atan2(out[1].y, out[1].x), kPi / 6, kNear);
  EXPECT_NEAR(std::atan2(out[2].y, out[2].x), kPi / 3, kNear);

  // The same step set by the maximum angle is not capped.
  out.setLogicalLength(0);
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, 0.0, 0.0, kPi / 19, 3, &out, nullptr), 8);
  EXPECT_EQ(out.length(), 11);
  // A maximum angle equal to the chord rule's step wins the tie.
  out.setLogicalLength(0);
  const double R = std::fabs(vora::bulgeToArc(kQ1, kQ2, kQBulge).r);
  const double step = 2.0 * std::asin(std::min(1.0, chord * 0.5 / R));
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, 0.0, chord, step, 3, &out, nullptr), 8);
  EXPECT_EQ(out.length(), 11);

  // Mid ordinate 1 - cos(pi/40) steps pi/20 -> 10 pieces, deviation back to m.
  const double m = 1.0 - std::cos(kPi / 40);
  double dev = 0.0;
  out.setLogicalLength(0);
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, kQBulge, m, 0.5, kPi, kNoCap, nullptr, &dev), 2);
  EXPECT_NEAR(dev, m, 1e-12);
  EXPECT_EQ(out.length(), 0);
}

TEST(Arc2Pts, ClockwiseArcsRunFromFirstToSecondPoint) {
  AcGePoint3dArray out;
  // Clockwise from (0,1) to (1,0) the short way, then from (1,0) to (0,1) the
  // long way round (|b| > 1).
  EXPECT_EQ(vora_arc2pts(kQ2, kQ1, -kQBulge, 0.0, 0.0, kPi / 8, kNoCap, &out, nullptr), 8);
  ASSERT_EQ(out.length(), 5);
  for (int i = 1; i + 1 < out.length(); ++i) {
    EXPECT_NEAR(std::atan2(out[i].y, out[i].x), kPi / 2 - i * kPi / 8, kNear);
  }
  out.setLogicalLength(0);
  EXPECT_EQ(vora_arc2pts(kQ1, kQ2, -std::tan(3 * kPi / 8), 0.0, 0.0, kPi / 4, kNoCap, &out, nullptr), 8);
  ASSERT_EQ(out.length(), 7);
  EXPECT_NEAR(out[1].x, std::sqrt(0.5), kNear);
  EXPECT_NEAR(out[1].y, -std::sqrt(0.5), kNear);
  EXPECT_NEAR(out[5].x, -std::sqrt(0.5), kNear);
  EXPECT_NEAR(out[5].y, std::sqrt(0.5), kNear);
}

TEST(Arc2Pts, InteriorAnglesAreWholeMultiplesOfTheFinalStep) {
  // Long arcs in both directions with many steps: a running sum of the step
  // drifts from k * step in the last bits, so every point is checked exactly.
  const double p1[3] = {3.0, -2.0, 7.0};
  const double p2[3] = {-4.0, 5.0, -1.0};
  for (const double b : {3.0, -3.0, 0.3, -0.7}) {
    SCOPED_TRACE(testing::Message() << "bulge " << b);
    double cr[3] = {};
    double ang[3] = {};
    vora_bulge2arc(p1, p2, b, cr, ang);
    const double R = std::fabs(cr[2]);
    const double sweep = vora::sweptAngle(ang[0], ang[1]);
    const double maxAngle = 0.01;
    const std::uint64_t n = static_cast<std::uint64_t>(std::ceil(sweep / maxAngle));
    const double step = sweep / static_cast<double>(n);
    AcGePoint3dArray out;
    ASSERT_EQ(vora_arc2pts(p1, p2, b, 0.0, 0.0, maxAngle, kNoCap, &out, nullptr), 8);
    ASSERT_EQ(static_cast<std::uint64_t>(out.length()), n + 1);
    const double base = cr[2] >= 0.0 ? ang[0] : ang[1];
    for (std::uint64_t k = 1; k < n; ++k) {
      const double t = static_cast<double>(k) * step;
      const double theta = base + (cr[2] < 0.0 ? -t : t);
      const AcGePoint3d& q = out[static_cast<int>(k)];
      EXPECT_EQ(q.x, cr[0] + R * std::cos(theta)) << k;
      EXPECT_EQ(q.y, cr[1] + R * std::sin(theta)) << k;
      EXPECT_EQ(q.z, 0.0) << k;
    }
    EXPECT_EQ(out.last(), AcGePoint3d(-4.0, 5.0, -1.0));
  }
}

TEST(Arc2Pts, PointsLieOnTheArcWithinTheMidOrdinate) {
  const unsigned seed = 77;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-50.0, 50.0);
  std::uniform_real_distribution<double> bulge(-3.0, 3.0);
  std::uniform_real_distribution<double> mid(0.001, 0.5);
  for (int i = 0; i < 500; ++i) {
    const double p1[3] = {coord(rng), coord(rng), 0.0}, p2[3] = {coord(rng), coord(rng), 0.0};
    double b = bulge(rng);
    if (std::fabs(b) < 0.05) b = -0.05;
    const double m = mid(rng);
    AcGePoint3dArray out;
    double dev = -1.0;
    const int code = vora_arc2pts(p1, p2, b, m, 0.0, kPi / 2, kNoCap, &out, &dev);
    SCOPED_TRACE(testing::Message() << "seed " << seed << " case " << i);
    ASSERT_TRUE(code == 2 || code == 8);
    const vora::BulgeArc arc = vora::bulgeToArc(p1, p2, b);
    const double R = std::fabs(arc.r);
    if (code == 2) {
      EXPECT_LE(dev, m * (1.0 + 1e-9));
    }
    double travelled = 0.0;
    for (int k = 0; k < out.length(); ++k) {
      EXPECT_NEAR(std::hypot(out[k].x - arc.cx, out[k].y - arc.cy), R, 1e-9 * R + 1e-9);
      if (k == 0) continue;
      // Sagitta of each chord, measured from the centre to its midpoint.
      const double mx = 0.5 * (out[k].x + out[k - 1].x), my = 0.5 * (out[k].y + out[k - 1].y);
      EXPECT_LE(R - std::hypot(mx - arc.cx, my - arc.cy), dev + 1e-9 * R);
      const double turn = std::remainder(std::atan2(out[k].y - arc.cy, out[k].x - arc.cx) -
                                             std::atan2(out[k - 1].y - arc.cy, out[k - 1].x - arc.cx),
                                         kTwoPi);
      EXPECT_EQ(turn > 0.0, b > 0.0) << "point " << k;
      travelled += std::fabs(turn);
    }
    EXPECT_NEAR(travelled, vora::sweptAngle(arc.start, arc.end), 1e-9);
  }
}

}  // namespace
