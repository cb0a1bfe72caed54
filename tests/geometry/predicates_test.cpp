#include <gtest/gtest.h>

#include <cmath>

#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::test::ToleranceGuard;

TEST(Tolerances, StartAtOneTenMillionthAndAreReadAtEveryCall) {
  EXPECT_EQ(vora::tolValue(), 1e-07);
  EXPECT_EQ(vora::tolPoint(), 1e-07);
  {
    ToleranceGuard guard(1e-3, 1e-9);
    EXPECT_EQ(vora::tolValue(), 1e-3);
    EXPECT_EQ(vora::tolPoint(), 1e-9);
    // A run of 0.0005 is within tolValue of zero: a level line.
    EXPECT_EQ(vora_convertAngle(0.0005, 0, 3), 0.0);
    // Coordinates differ by 1e-8 > tolPoint: distinct points, but the cross
    // product (1e-8) is far under tolValue.
    const double a[3] = {0, 0, 0}, b[3] = {1e-8, 0, 0}, c[3] = {5, 5e-4, 0};
    EXPECT_EQ(vora_collin3D(a, b, c), 1);
  }
  EXPECT_EQ(vora::tolValue(), 1e-07);
  EXPECT_EQ(vora_convertAngle(0.0005, 0, 4), std::atan(1.0 / 0.0005));
}

TEST(Tolerances, ZeroDisablesStrictTests) {
  ToleranceGuard guard(0.0, 0.0);
  const double a[3] = {0, 0, 0};
  // Coinciding points are no longer "within" a zero tolerance; the cross
  // product is exactly zero but the strict test fails too.
  EXPECT_EQ(vora_collin3D(a, a, a), 0);
}

TEST(Orientation, SignFollowsTurnDirection) {
  const double a[3] = {0, 0, 0}, b[3] = {1, 0, 0}, c[3] = {0, 1, 0};
  EXPECT_EQ(vora_orientation2D(a, b, c), 1.0);
  EXPECT_EQ(vora_orientation2D(a, c, b), -1.0);
  const double d[3] = {2, 0, 99};
  EXPECT_EQ(vora_orientation2D(a, b, d), 0.0);
}

TEST(Collinear, CoincidenceFirstThenUnnormalisedCross) {
  const double o[3] = {0, 0, 0}, far[3] = {1e9, -3e7, 12};
  EXPECT_EQ(vora_collin3D(o, o, far), 1);
  EXPECT_EQ(vora_collin3D(far, o, o), 1);
  EXPECT_EQ(vora_collin3D(o, far, o), 1);
  const double b[3] = {1000, 0, 0}, c[3] = {0, 0.0001, 0};
  EXPECT_EQ(vora_collin3D(o, b, c), 0);  // Z = -0.1
  const double b1[3] = {1, 0, 0}, c1[3] = {0.5, 1e-8, 0};
  EXPECT_EQ(vora_collin3D(o, b1, c1), 1);
  // Only z differs: the X and Y components catch it.
  const double c2[3] = {0.5, 0, 1e-3};
  EXPECT_EQ(vora_collin3D(o, b1, c2), 0);
  // Exactly at the point tolerance is not coincident (strict).
  const double at[3] = {1e-07, 0, 0}, off[3] = {0, 1, 0};
  EXPECT_EQ(vora_collin3D(o, at, off), 0);
}

TEST(ConvertAngle, TableOfUnits) {
  const double pi = 3.141592653589793;
  EXPECT_EQ(vora_convertAngle(45.0, 3, 2), std::tan(45.0 / 180.0 * pi) * 100.0);
  EXPECT_EQ(vora_convertAngle(2.0, 0, 1), std::tan(std::atan(1.0 / 2.0)));
  EXPECT_DOUBLE_EQ(vora_convertAngle(2.0, 0, 1), 0.5);
  EXPECT_EQ(vora_convertAngle(0.0, 0, 3), 0.0);
  EXPECT_EQ(vora_convertAngle(0.7, 7, 4), 0.7);
  EXPECT_EQ(vora_convertAngle(0.7, 4, -1), 0.7);
  // Equal codes are not short-cut.
  EXPECT_EQ(vora_convertAngle(0.3, 1, 1), std::tan(std::atan(0.3)));
  EXPECT_EQ(vora_convertAngle(5.0, 2, 2), std::tan(std::atan(5.0 * 0.01)) * 100.0);
  // Degrees: divide first on input, multiply first on output.
  EXPECT_EQ(vora_convertAngle(33.0, 3, 4), 33.0 / 180.0 * pi);
  EXPECT_EQ(vora_convertAngle(0.4, 4, 3), 0.4 * 180.0 / pi);
  // A tiny angle to unit 0 gives 0.0, not a huge run.
  EXPECT_EQ(vora_convertAngle(5e-8, 4, 0), 0.0);
  EXPECT_EQ(vora_convertAngle(0.1, 4, 0), 1.0 / std::tan(0.1));
}

TEST(Zpt, StationsAlongPlanLength) {
  AcGePoint3dArray pts;
  EXPECT_EQ(vora_zpt(&pts, 1.0), 0.0);
  pts.append(AcGePoint3d(0, 0, 10));
  EXPECT_EQ(vora_zpt(&pts, 5.0), 10.0);
  pts.append(AcGePoint3d(3, 4, 20));
  EXPECT_EQ(vora_zpt(&pts, 2.5), 15.0);
  EXPECT_EQ(vora_zpt(&pts, -1.0), 10.0);
  EXPECT_EQ(vora_zpt(&pts, 0.0), 10.0);
  EXPECT_EQ(vora_zpt(&pts, 99.0), 20.0);
  // A vertical segment (zero plan length) is passed over; a station exactly
  // at a vertex ends on the segment that ends there.
  pts.append(AcGePoint3d(3, 4, 50));
  pts.append(AcGePoint3d(3, 14, 60));
  EXPECT_EQ(vora_zpt(&pts, 5.0), 20.0);
  EXPECT_EQ(vora_zpt(&pts, 10.0), 55.0);
  EXPECT_EQ(vora_zpt(&pts, 15.0), 60.0);
}

TEST(ConvertAngle, OperationOrderAndUnitZeroBoundary) {
  const double pi = 3.141592653589793;
  // Multiply by 180 first, then divide by pi; the other order differs here.
  ASSERT_NE(0.7 * 180.0 / pi, 0.7 / pi * 180.0);
  EXPECT_EQ(vora_convertAngle(0.7, 4, 3), 0.7 * 180.0 / pi);
  // An angle of exactly tolValue is not "within" it: the run is 1/tan.
  EXPECT_EQ(vora_convertAngle(1e-07, 4, 0), 1.0 / std::tan(1e-07));
  EXPECT_EQ(vora_convertAngle(-1e-07, 4, 0), 1.0 / std::tan(-1e-07));
  EXPECT_EQ(vora_convertAngle(1e-07, 0, 4), std::atan(1.0 / 1e-07));
}

TEST(Zpt, InterpolationOrderAndZeroLengthLeadingSegment) {
  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(0, 0, 10.1));
  pts.append(AcGePoint3d(3, 4, 20.3));
  // The product with the rise comes before the division by the length.
  const double expected = (1.7 - 5.0 + 5.0) * (20.3 - 10.1) / 5.0 + 10.1;
  ASSERT_NE(expected, (1.7 - 5.0 + 5.0) / 5.0 * (20.3 - 10.1) + 10.1);
  EXPECT_EQ(vora_zpt(&pts, 1.7), expected);

  // Station 0 never enters the walk, so a leading segment of no plan length
  // is not divided by.
  AcGePoint3dArray stacked;
  stacked.append(AcGePoint3d(1, 1, 7));
  stacked.append(AcGePoint3d(1, 1, 9));
  stacked.append(AcGePoint3d(4, 5, 11));
  EXPECT_EQ(vora_zpt(&stacked, 0.0), 7.0);
  EXPECT_EQ(vora_zpt(&stacked, 2.5), 10.0);
}

}  // namespace
