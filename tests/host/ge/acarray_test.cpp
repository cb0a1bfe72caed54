#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "vora/arx.h"

namespace {

TEST(AcArray, LayoutMatchesTheSdk) {
  static_assert(sizeof(AcGePoint3d) == 24);
  static_assert(sizeof(AcGePoint3dArray) == 24);
  // Read the members back through the C layout: pointer, physical, logical, grow.
  AcGeDoubleArray a(5, 3);
  a.append(1.5);
  a.append(2.5);
  struct CLayout {
    double* p;
    int physical, logical, grow;
  };
  static_assert(sizeof(CLayout) == sizeof(AcGeDoubleArray));
  CLayout c;
  std::memcpy(&c, &a, sizeof c);
  EXPECT_EQ(c.p, a.asArrayPtr());
  EXPECT_EQ(c.physical, 5);
  EXPECT_EQ(c.logical, 2);
  EXPECT_EQ(c.grow, 3);
  EXPECT_EQ(c.p[1], 2.5);
}

TEST(AcArray, GrowthDoublesThenStepsByTheThreshold) {
  AcGeIntArray a;
  EXPECT_EQ(a.growLength(), 8);
  a.append(1);
  EXPECT_EQ(a.physicalLength(), 8);  // max(grow 8, doubling 0)
  for (int i = 0; i < 8; ++i) a.append(i);
  EXPECT_EQ(a.physicalLength(), 16);  // doubling
  AcArray<char> big;
  big.setLogicalLength(0x100000);
  big.append('x');
  EXPECT_EQ(big.physicalLength(), 0x200000);  // 1 MiB step past the threshold
}

TEST(AcArray, EditingOperations) {
  AcGeIntArray a;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(a.append(i * 10), i);
  a.insertAt(0, -1);
  a.insertAt(a.length(), 99);
  a.insertAt(100, 7);  // out of range: nothing
  a.insertAt(-1, 7);
  ASSERT_EQ(a.length(), 7);
  EXPECT_EQ(a.first(), -1);
  EXPECT_EQ(a.last(), 99);
  a.removeAt(0).removeAt(50).removeLast();
  ASSERT_EQ(a.length(), 5);
  EXPECT_EQ(a[0], 0);
  EXPECT_EQ(a.find(30), 3);
  EXPECT_EQ(a.find(31), -1);
  int at = -5;
  EXPECT_FALSE(a.find(10, at, 2));
  EXPECT_EQ(at, -5);
  EXPECT_TRUE(a.find(40, at, 2));
  EXPECT_EQ(at, 4);
  EXPECT_TRUE(a.contains(20));
  EXPECT_FALSE(a.contains(0, 1));
  a.reverse();
  EXPECT_EQ(a[0], 40);
  EXPECT_EQ(a[4], 0);
  a.append(a);  // self-append
  ASSERT_EQ(a.length(), 10);
  EXPECT_EQ(a[5], 40);
  a.removeSubArray(1, 8);
  ASSERT_EQ(a.length(), 2);
  EXPECT_EQ(a[1], 0);
  a.setLogicalLength(-3);
  EXPECT_EQ(a.length(), 0);
  EXPECT_GE(a.physicalLength(), 10);  // capacity is kept
}

TEST(AcArray, HoldsNonTrivialElements) {
  AcArray<std::string> a;
  for (int i = 0; i < 20; ++i) a.append(std::string(30, static_cast<char>('a' + i)));
  a.append(a[0]);  // an element of the array itself, while growing
  EXPECT_EQ(a.last(), a.first());
  AcArray<std::string> b(a);
  a.removeAt(0);
  EXPECT_EQ(b.length(), 21);
  EXPECT_EQ(a.length(), 20);
  EXPECT_EQ(a[0], b[1]);
  b = a;
  EXPECT_TRUE(b == a);
}

TEST(GeVectors, AngleRotationAndNormalisation) {
  const double pi = 3.141592653589793;
  EXPECT_EQ(AcGeVector2d(1, 0).angle(), 0.0);
  EXPECT_EQ(AcGeVector2d(0, -1).angle(), 1.5 * pi);
  EXPECT_EQ(AcGeVector2d(-1, 0).angle(), pi);
  EXPECT_GE(AcGeVector2d(1, -1e-300).angle(), 0.0);
  AcGeVector2d v(1, 0);
  v.rotateBy(pi / 2);
  EXPECT_NEAR(v.x, 0.0, 1e-16);
  EXPECT_EQ(v.y, 1.0);
  AcGeVector3d tiny(1e-13, 0, 0);
  tiny.normalize();
  EXPECT_EQ(tiny.x, 1e-13);  // not longer than equalVector: unchanged
  AcGeVector3d w(3, 0, 4);
  w.normalize();
  EXPECT_EQ(w.x, 0.6);
  EXPECT_EQ(w.z, 0.8);
  EXPECT_EQ(AcGeContext::gTol.equalPoint(), 1e-10);
  EXPECT_EQ(AcGeContext::gTol.equalVector(), 1e-12);
  EXPECT_EQ(AcGePoint2d(0, 0).distanceTo(AcGePoint2d(3, 4)), 5.0);
  const AcGeLine3d line(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 0, 2));
  EXPECT_EQ(line.distanceTo(AcGePoint3d(1, 0, 1)), 1.0);
}

}  // namespace
