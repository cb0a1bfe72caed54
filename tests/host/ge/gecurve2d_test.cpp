#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "vora/arx.h"

namespace {

constexpr double kPi = 3.141592653589793;

// Largest distance from the arc's circle to the chord between two samples:
// the sagitta of the chord, measured from the centre.
double chordDeparture(const AcGeCircArc2d& arc, const AcGePoint2d& a, const AcGePoint2d& b) {
  const AcGePoint2d mid(a.x + (b.x - a.x) * 0.5, a.y + (b.y - a.y) * 0.5);
  return arc.radius() - (mid - arc.center()).length();
}

TEST(AcGeCircArc2d, ThreePointsGiveTheCircumcircleInTheirOrder) {
  const AcGeCircArc2d ccw(AcGePoint2d(1, 0), AcGePoint2d(0, 1), AcGePoint2d(-1, 0));
  EXPECT_NEAR(ccw.center().x, 0.0, 1e-15);
  EXPECT_NEAR(ccw.center().y, 0.0, 1e-15);
  EXPECT_NEAR(ccw.radius(), 1.0, 1e-15);
  EXPECT_FALSE(ccw.isClockWise());
  EXPECT_NEAR(ccw.endAng() - ccw.startAng(), kPi, 1e-15);
  EXPECT_TRUE(ccw.startPoint().isEqualTo(AcGePoint2d(1, 0)));
  EXPECT_TRUE(ccw.endPoint().isEqualTo(AcGePoint2d(-1, 0)));

  const AcGeCircArc2d cw(AcGePoint2d(-1, 0), AcGePoint2d(0, 1), AcGePoint2d(1, 0));
  EXPECT_TRUE(cw.isClockWise());
  EXPECT_NEAR(cw.endAng() - cw.startAng(), kPi, 1e-15);
  EXPECT_TRUE(cw.startPoint().isEqualTo(AcGePoint2d(-1, 0)));
  EXPECT_TRUE(cw.endPoint().isEqualTo(AcGePoint2d(1, 0)));
  EXPECT_TRUE(cw.evalPoint(cw.startAng() + kPi / 2).isEqualTo(AcGePoint2d(0, 1)));

  // An arc longer than a half circle: the middle point decides the side.
  const AcGeCircArc2d big(AcGePoint2d(1, 0), AcGePoint2d(-1, 0), AcGePoint2d(0, -1));
  EXPECT_NEAR(big.endAng() - big.startAng(), 1.5 * kPi, 1e-14);

  EXPECT_TRUE(AcGeCircArc2d(AcGePoint2d(0, 0), AcGePoint2d(1, 1), AcGePoint2d(2, 2)).isDegenerate());
  EXPECT_TRUE(AcGeCircArc2d(AcGePoint2d(0, 0), AcGePoint2d(0, 0), AcGePoint2d(2, 1)).isDegenerate());
  EXPECT_FALSE(ccw.isDegenerate());
}

TEST(AcGeCircArc2d, ThreePointsAtSurveyCoordinatesKeepTheirPrecision) {
  const AcGePoint2d c(512345.678, 6123456.789);
  const double r = 250.0;
  const AcGePoint2d a = c + AcGeVector2d(std::cos(0.1), std::sin(0.1)) * r;
  const AcGePoint2d m = c + AcGeVector2d(std::cos(0.3), std::sin(0.3)) * r;
  const AcGePoint2d e = c + AcGeVector2d(std::cos(0.5), std::sin(0.5)) * r;
  const AcGeCircArc2d arc(a, m, e);
  EXPECT_LT((arc.center() - c).length(), 1e-8);
  EXPECT_NEAR(arc.radius(), r, 1e-8);
  EXPECT_NEAR(arc.endAng() - arc.startAng(), 0.4, 1e-11);
}

TEST(AcGeCircArc2d, BulgeArcsAreCounterClockwise) {
  // Quarter circle counter-clockwise from (1,0) to (0,1).
  const double b = std::tan(kPi / 8);
  const AcGeCircArc2d left(AcGePoint2d(1, 0), AcGePoint2d(0, 1), b, false);
  EXPECT_NEAR(left.center().x, 0.0, 1e-15);
  EXPECT_NEAR(left.center().y, 0.0, 1e-15);
  EXPECT_NEAR(left.radius(), 1.0, 1e-15);
  EXPECT_FALSE(left.isClockWise());
  EXPECT_TRUE(left.startPoint().isEqualTo(AcGePoint2d(1, 0)));
  EXPECT_NEAR(left.length(), kPi / 2, 1e-15);

  // The clockwise bulge gives the same point set with the ends swapped.
  const AcGeCircArc2d right(AcGePoint2d(0, 1), AcGePoint2d(1, 0), -b, false);
  EXPECT_FALSE(right.isClockWise());
  EXPECT_TRUE(right.startPoint().isEqualTo(AcGePoint2d(1, 0)));
  EXPECT_TRUE(right.endPoint().isEqualTo(AcGePoint2d(0, 1)));
  AcGeCircArc2d reversed = right;
  reversed.reverseParam();
  EXPECT_TRUE(reversed.isClockWise());
  EXPECT_TRUE(reversed.startPoint().isEqualTo(AcGePoint2d(0, 1)));
  EXPECT_TRUE(reversed.endPoint().isEqualTo(AcGePoint2d(1, 0)));
  EXPECT_TRUE(reversed.evalPoint(reversed.startAng() + kPi / 4).isEqualTo(AcGePoint2d(std::sqrt(0.5), std::sqrt(0.5))));

  // bulgeFlag true: the bulge is the sagitta. A half circle over a chord of 2.
  const AcGeCircArc2d half(AcGePoint2d(-1, 0), AcGePoint2d(1, 0), 1.0, true);
  EXPECT_NEAR(half.radius(), 1.0, 1e-15);
  EXPECT_TRUE(half.evalPoint(half.startAng() + kPi / 2).isEqualTo(AcGePoint2d(0, -1)));

  // Beyond a half circle the centre crosses the chord.
  const AcGeCircArc2d major(AcGePoint2d(1, 0), AcGePoint2d(0, 1), std::tan(3 * kPi / 8), false);
  EXPECT_NEAR(major.endAng() - major.startAng(), 1.5 * kPi, 1e-14);
  EXPECT_NEAR(major.center().x, 1.0, 1e-14);
  EXPECT_NEAR(major.center().y, 1.0, 1e-14);

  EXPECT_TRUE(AcGeCircArc2d(AcGePoint2d(1, 0), AcGePoint2d(0, 1), 0.0, false).isDegenerate());
  EXPECT_TRUE(AcGeCircArc2d(AcGePoint2d(1, 0), AcGePoint2d(1, 0), 0.5, false).isDegenerate());
}

TEST(AcGeCircArc2d, ParametersFollowTheReferenceVectorAndTheSense) {
  AcGeCircArc2d circle(AcGePoint2d(10, 20), 5.0);
  circle.setRefVec(AcGeVector2d(0, 3));
  EXPECT_NEAR(circle.paramOf(AcGePoint2d(10, 25)), 0.0, 1e-15);
  EXPECT_NEAR(circle.paramOf(AcGePoint2d(5, 20)), kPi / 2, 1e-15);
  EXPECT_NEAR(circle.paramOf(AcGePoint2d(15, 20)), 1.5 * kPi, 1e-15);
  circle.reverseParam();
  EXPECT_TRUE(circle.isClockWise());
  EXPECT_EQ(circle.startAng(), 0.0);
  EXPECT_NEAR(circle.paramOf(AcGePoint2d(15, 20)), kPi / 2, 1e-15);
  EXPECT_TRUE(circle.evalPoint(kPi / 2).isEqualTo(AcGePoint2d(15, 20)));

  // Points beyond an arc's ends take the nearer end's parameter.
  const AcGeCircArc2d arc(AcGePoint2d(0, 0), 1.0, 0.0, kPi / 2);
  EXPECT_EQ(arc.paramOf(AcGePoint2d(1, -0.1)), 0.0);
  EXPECT_EQ(arc.paramOf(AcGePoint2d(-1, 0.1)), kPi / 2);
  EXPECT_TRUE(arc.isOn(AcGePoint2d(std::sqrt(0.5), std::sqrt(0.5))));
  EXPECT_FALSE(arc.isOn(AcGePoint2d(-std::sqrt(0.5), std::sqrt(0.5))));
  EXPECT_FALSE(arc.isOn(AcGePoint2d(0.5, 0.5)));
  AcGeTol loose;
  loose.setEqualPoint(0.3);
  EXPECT_TRUE(arc.isOn(AcGePoint2d(0.5, 0.5), loose));

  EXPECT_NEAR(arc.length(0.2, 0.7), 0.5, 1e-15);
  EXPECT_NEAR(arc.length(0.7, 0.2), 0.5, 1e-15);
  const AcGeCircArc2d wide(AcGePoint2d(0, 0), 4.0, 0.0, kPi);
  EXPECT_EQ(wide.paramAtLength(0.5, 2.0), 1.0);
  EXPECT_EQ(wide.paramAtLength(0.5, 2.0, false), 0.0);
}

TEST(AcGeCircArc2d, SamplesKeepEveryChordWithinTheBound) {
  std::mt19937 rng(20261123);  // fixed seed
  std::uniform_real_distribution<double> radius(0.05, 5000.0), angle(0.0, 2 * kPi), sweep(1e-4, 2 * kPi),
      eps(1e-4, 0.5), coord(1e5, 1e6);
  for (int run = 0; run < 200; ++run) {
    const AcGePoint2d c(coord(rng), coord(rng));
    const double r = radius(rng), from = angle(rng), e = eps(rng);
    const double to = from + sweep(rng);
    AcGeCircArc2d arc(c, r, from, to, AcGeVector2d(1, 0), run % 2 == 1);
    AcGePoint2dArray pts;
    AcGeDoubleArray params;
    arc.getSamplePoints(from, to, e, pts, params);
    ASSERT_GE(pts.length(), 2);
    ASSERT_EQ(pts.length(), params.length());
    EXPECT_EQ(params.first(), from);
    EXPECT_EQ(params.last(), to);
    for (int k = 0; k + 1 < pts.length(); ++k) {
      EXPECT_LE(chordDeparture(arc, pts[k], pts[k + 1]), e + 1e-9) << "run " << run << " chord " << k;
      EXPECT_GT(params[k + 1], params[k]);
    }
    // Not needlessly fine: one step fewer would break the bound.
    if (pts.length() > 2) {
      const double coarser = (to - from) / (pts.length() - 2);
      EXPECT_GT(r * (1.0 - std::cos(coarser / 2)), e * (1 - 1e-9)) << "run " << run;
    }
  }
  // A descending interval is sampled in the order given.
  const AcGeCircArc2d arc(AcGePoint2d(0, 0), 10.0, 0.0, kPi);
  AcGePoint2dArray pts;
  AcGeDoubleArray params;
  arc.getSamplePoints(2.0, 1.0, 0.01, pts, params);
  EXPECT_EQ(params.first(), 2.0);
  EXPECT_EQ(params.last(), 1.0);
  EXPECT_GT(pts.length(), 2);
  // A bound larger than the radius still caps the step below a half circle.
  arc.getSamplePoints(0.0, kPi, 100.0, pts, params);
  EXPECT_EQ(pts.length(), 2);
  const AcGeCircArc2d circle(AcGePoint2d(0, 0), 10.0);
  circle.getSamplePoints(0.0, 2 * kPi, 100.0, pts, params);
  EXPECT_EQ(pts.length(), 3);
}

TEST(AcGeLineSeg2d, ParametersAndOnTests) {
  const AcGeLineSeg2d seg(AcGePoint2d(100000.0, 200000.0), AcGePoint2d(100004.0, 200003.0));
  EXPECT_EQ(seg.length(), 5.0);
  EXPECT_EQ(seg.paramOf(AcGePoint2d(100002.0, 200001.5)), 0.5);
  EXPECT_EQ(seg.paramOf(AcGePoint2d(99990.0, 200000.0)), 0.0);
  EXPECT_EQ(seg.paramOf(AcGePoint2d(100010.0, 200010.0)), 1.0);
  EXPECT_TRUE(seg.isOn(AcGePoint2d(100002.0, 200001.5)));
  EXPECT_FALSE(seg.isOn(AcGePoint2d(100008.0, 200006.0)));  // on the line, past the end
  EXPECT_FALSE(seg.isOn(AcGePoint2d(100002.0, 200001.5 + 1e-9)));
  EXPECT_EQ(seg.paramAtLength(0.0, 2.5), 0.5);
  EXPECT_NEAR(seg.length(0.2, 0.6), 2.0, 1e-15);
  AcGeLineSeg2d back = seg;
  back.reverseParam();
  EXPECT_TRUE(back.startPoint().isEqualTo(seg.endPoint()));
  EXPECT_TRUE(back.endPoint().isEqualTo(seg.startPoint()));
  EXPECT_TRUE(AcGeLineSeg2d(AcGePoint2d(1, 1), AcGePoint2d(1, 1)).isDegenerate());

  const AcGeLine2d line(AcGePoint2d(0, 0), AcGePoint2d(2, 1));
  EXPECT_TRUE(line.isOn(AcGePoint2d(-4, -2)));
  EXPECT_TRUE(line.isOn(AcGePoint2d(10, 5)));
  EXPECT_FALSE(line.isOn(AcGePoint2d(10, 5.001)));
  EXPECT_EQ(line.paramOf(AcGePoint2d(4, 2)), 2.0);
  EXPECT_TRUE(line.isKindOf(AcGe::kLinearEnt2d));
  EXPECT_FALSE(AcGeCircArc2d().isKindOf(AcGe::kLinearEnt2d));
}

}  // namespace
