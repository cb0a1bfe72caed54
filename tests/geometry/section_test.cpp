#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::test::ToleranceGuard;
using P = std::array<double, 3>;
using Snap = std::array<unsigned char, 9>;

constexpr P kSentinel = {-777.0, 888.0, -999.0};
constexpr Snap kNoSnap{};
const P kOrigin{0, 0, 0};
const P kUp{0, 0, 1};

void expectPoint(const P& got, double x, double y, double z) {
  EXPECT_EQ(got[0], x);
  EXPECT_EQ(got[1], y);
  EXPECT_EQ(got[2], z);
}

struct Section {
  int result;
  P out1 = kSentinel;
  P out2 = kSentinel;
};

Section cut(const P& t0, const P& t1, const P& t2, const P& pp, const P& n, double tol, const Snap& snap = kNoSnap,
            unsigned char skipTouching = 0) {
  Section s{0};
  s.result = vora_intplanetriangle(t0.data(), t1.data(), t2.data(), pp.data(), n.data(), s.out1.data(),
                                   s.out2.data(), snap.data(), skipTouching, tol);
  return s;
}

Section meet(const P& a0, const P& a1, const P& a2, const P& b0, const P& b1, const P& b2, double tol,
             unsigned char skipTouching = 0) {
  Section s{0};
  s.result = vora_inttriangletriangle(a0.data(), a1.data(), a2.data(), b0.data(), b1.data(), b2.data(),
                                      s.out1.data(), s.out2.data(), skipTouching, tol);
  return s;
}

TEST(IntPlaneTriangle, IsolatedCornerAndSnapFlags) {
  const P t0{0, 0, -1}, t1{1, 0, 1}, t2{0, 1, 1};
  Section s = cut(t0, t1, t2, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0.5, 0);  // on t0 -> t2
  expectPoint(s.out2, 0.5, 0, 0);  // on t0 -> t1

  // Corner 1 is marked by byte 1, 4 or 7; its crossing becomes the corner.
  for (int pos : {1, 4, 7}) {
    Snap snap{};
    snap[pos] = 2;
    s = cut(t0, t1, t2, kOrigin, kUp, 1e-6, snap);
    EXPECT_EQ(s.result, 1) << pos;
    expectPoint(s.out1, 0, 0.5, 0);
    expectPoint(s.out2, 1, 0, 1);
  }
  Snap snap2{};
  snap2[5] = 1;
  s = cut(t0, t1, t2, kOrigin, kUp, 1e-6, snap2);
  expectPoint(s.out1, 0, 1, 1);
  expectPoint(s.out2, 0.5, 0, 0);
  // The isolated corner has no crossing of its own to snap.
  Snap snap0{};
  snap0[0] = snap0[3] = snap0[6] = 1;
  s = cut(t0, t1, t2, kOrigin, kUp, 1e-6, snap0);
  expectPoint(s.out1, 0, 0.5, 0);
  expectPoint(s.out2, 0.5, 0, 0);

  // The other isolated corners and their end order: (t2; t0, t1), (t1; t0, t2).
  s = cut(P{0, 0, 1}, P{1, 0, 1}, P{0, 1, -1}, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0.5, 0);
  expectPoint(s.out2, 0.5, 0.5, 0);
  s = cut(P{0, 0, -1}, P{1, 0, 1}, P{0, 1, -1}, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.5, 0, 0);
  expectPoint(s.out2, 0.5, 0.5, 0);
}

TEST(IntPlaneTriangle, CornersOnThePlane) {
  // Lying in the plane: no section, outputs untouched.
  Section s = cut(P{0, 0, 0}, P{1, 0, 0}, P{0, 1, 0}, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 0);
  EXPECT_EQ(s.out1, kSentinel);
  EXPECT_EQ(s.out2, kSentinel);

  // One corner touching, the others on one side: that corner twice.
  const P c0{0, 0, 0}, c1{1, 0, 1}, c2{0, 1, 2};
  s = cut(c0, c1, c2, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0);
  expectPoint(s.out2, 0, 0, 0);
  s = cut(c1, c2, c0, kOrigin, kUp, 1e-6);
  expectPoint(s.out1, 0, 0, 0);
  s = cut(c0, c1, c2, kOrigin, kUp, 1e-6, kNoSnap, 1);
  EXPECT_EQ(s.result, 0);
  EXPECT_EQ(s.out1, kSentinel);
  EXPECT_EQ(s.out2, kSentinel);

  // An edge in the plane: that edge, in corner order, unless skipped.
  s = cut(P{0, 0, 0}, P{1, 0, 1}, P{0, 1, 0}, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0);
  expectPoint(s.out2, 0, 1, 0);
  s = cut(P{0, 0, 0}, P{1, 0, 1}, P{0, 1, 0}, kOrigin, kUp, 1e-6, kNoSnap, 1);
  EXPECT_EQ(s.result, 0);

  // One corner on the plane between the two others: from that corner to the
  // crossing of the opposite edge, also with skipTouching.
  for (unsigned char skip : {0, 1}) {
    s = cut(P{0, 0, 0}, P{1, 0, 1}, P{0, 1, -1}, kOrigin, kUp, 1e-6, kNoSnap, skip);
    EXPECT_EQ(s.result, 1);
    expectPoint(s.out1, 0, 0, 0);
    expectPoint(s.out2, 0.5, 0.5, 0);
  }
  s = cut(P{1, 0, 1}, P{0, 1, -1}, P{0, 0, 0}, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.5, 0.5, 0);
  expectPoint(s.out2, 0, 0, 0);
}

TEST(IntPlaneTriangle, TheCallersToleranceBand) {
  // A corner at exactly tol is neither on the plane nor off it: nothing is
  // isolated. Just inside the band it touches; just outside it is cut.
  const P t1{1, 0, -1}, t2{0, 1, -1};
  Section s = cut(P{0, 0, 0.5}, t1, t2, kOrigin, kUp, 0.5);
  EXPECT_EQ(s.result, 0);
  EXPECT_EQ(s.out1, kSentinel);
  s = cut(P{0, 0, 0.25}, t1, t2, kOrigin, kUp, 0.5);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0.25);
  expectPoint(s.out2, 0, 0, 0.25);
  s = cut(P{0, 0, 0.75}, t1, t2, kOrigin, kUp, 0.5);
  EXPECT_EQ(s.result, 1);
  EXPECT_NEAR(s.out1[2], 0.0, 1e-15);

  // Corner distances are true distances, whatever the normal's length.
  const P longUp{0, 0, 10};
  s = cut(P{0, 0, 0.3}, P{1, 0, 1}, P{0, 1, 2}, kOrigin, longUp, 0.5);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0.3);
  expectPoint(s.out2, 0, 0, 0.3);

  // The section must be longer than tol, strictly; the ends are written anyway.
  const P n0{0, 0, -1}, n1{1, 0, 1}, n2{1, 0.1, 1};
  s = cut(n0, n1, n2, kOrigin, kUp, 0.05);
  EXPECT_EQ(s.result, 0);
  expectPoint(s.out1, 0.5, 0.05, 0);
  expectPoint(s.out2, 0.5, 0, 0);
  EXPECT_EQ(cut(n0, n1, n2, kOrigin, kUp, 0.049).result, 1);
}

TEST(IntPlaneTriangle, TinyCornerDistancesAreZeroedByTolValue) {
  // (t - planePoint) . normal under tolValue counts as exactly 0, so even a
  // tol far smaller than 5e-8 sees the corner on the plane.
  const P t1{1, 0, 1}, t2{0, 1, 1};
  Section s = cut(P{0, 0, 5e-08}, t1, t2, kOrigin, kUp, 1e-12);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 5e-08);
  s = cut(P{0, 0, 2e-07}, t1, t2, kOrigin, kUp, 1e-12);
  EXPECT_EQ(s.result, 0);
  const ToleranceGuard guard(1e-06, 1e-07);
  s = cut(P{0, 0, 2e-07}, t1, t2, kOrigin, kUp, 1e-12);
  EXPECT_EQ(s.result, 1);
}

TEST(IntTriangleTriangle, ChainLinks) {
  const P a0{0, 0, 0}, a1{2, 0, 0}, a2{0, 2, 0};
  const P b0{0.5, 0.5, -1}, b1{0.5, 0.5, 1}, b2{3, 0.5, 0};
  Section s = meet(a0, a1, a2, b0, b1, b2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.5, 0.5, 0);
  expectPoint(s.out2, 1.5, 0.5, 0);
  // With the roles swapped the overlap is the same.
  s = meet(b0, b1, b2, a0, a1, a2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.5, 0.5, 0);
  expectPoint(s.out2, 1.5, 0.5, 0);
  // Outputs are optional.
  EXPECT_EQ(vora_inttriangletriangle(a0.data(), a1.data(), a2.data(), b0.data(), b1.data(), b2.data(), nullptr,
                                     nullptr, 0, 1e-6),
            1);

  // B moved along the line beyond A: the sections do not overlap.
  s = meet(a0, a1, a2, P{5.5, 0.5, -1}, P{5.5, 0.5, 1}, P{8, 0.5, 0}, 1e-6);
  EXPECT_EQ(s.result, 0);
  EXPECT_EQ(s.out1, kSentinel);
  EXPECT_EQ(s.out2, kSentinel);
  // B inside A along the line: B's whole section.
  s = meet(a0, a1, a2, P{0.5, 0.5, -1}, P{0.5, 0.5, 1}, P{1, 0.5, 0}, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.5, 0.5, 0);
  expectPoint(s.out2, 1, 0.5, 0);
  // A inside B: A's whole section.
  s = meet(a0, a1, a2, P{-1, 0.5, -1}, P{-1, 0.5, 1}, P{3, 0.5, 0}, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0.5, 0);
  expectPoint(s.out2, 1.5, 0.5, 0);
  // A starts inside B and ends beyond it.
  s = meet(a0, a1, a2, P{-1, 0.5, -1}, P{-1, 0.5, 1}, P{1, 0.5, 0}, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0.5, 0);
  expectPoint(s.out2, 1, 0.5, 0);

  // B misses A's plane; coplanar triangles have no section.
  EXPECT_EQ(meet(a0, a1, a2, P{0, 0, 1}, P{1, 0, 2}, P{0, 1, 3}, 1e-6).result, 0);
  EXPECT_EQ(meet(a0, a1, a2, P{0.5, 0.5, 0}, P{3, 0, 0}, P{0, 3, 0}, 1e-6).result, 0);
}

TEST(IntTriangleTriangle, AxisFromTheSectionOfB) {
  // Vertical line of intersection: compared along z.
  const P a0{0, -1, -1}, a1{0, 1, -1}, a2{0, 0, 2};
  const P b0{-1, 0, -2}, b1{1, 0, -2}, b2{0, 0, 1};
  Section s = meet(a0, a1, a2, b0, b1, b2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, -1);
  expectPoint(s.out2, 0, 0, 1);

  // A line along y is compared along y; along x its ends would all tie.
  const P c0{0, 0, 0}, c1{1, 0, 0}, c2{0, 4, 0};
  const P d0{0.25, 0.5, -1}, d1{0.25, 0.5, 1}, d2{0.25, 5, 0};
  s = meet(c0, c1, c2, d0, d1, d2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.25, 0.5, 0);
  expectPoint(s.out2, 0.25, 3, 0);
}

TEST(IntTriangleTriangle, PointSectionsAndSharedCorners) {
  const P a0{0, 0, 0}, a1{10, 0, 0}, a2{0, 10, 0};
  // B touches A's plane with one corner: B's section is a point and is the
  // result as it stands, even where that point lies outside A (kept on
  // purpose: the overlap is only measured along an axis).
  const P b0{8, 5, 0}, b1{7, 4, 1}, b2{9, 4, 1};
  Section s = meet(a0, a1, a2, b0, b1, b2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 8, 5, 0);
  expectPoint(s.out2, 8, 5, 0);
  s = meet(a0, a1, a2, b0, b1, b2, 1e-6, 1);
  EXPECT_EQ(s.result, 0);
  EXPECT_EQ(s.out1, kSentinel);

  // Two triangles of one mesh sharing the edge a0-a1: that edge.
  const P e0{0, 0, 0}, e1{10, 0, 0}, e2{0, 0, 10};
  s = meet(a0, a1, a2, e0, e1, e2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0);
  expectPoint(s.out2, 10, 0, 0);
  s = meet(a0, a1, a2, e1, e2, e0, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0);
  expectPoint(s.out2, 10, 0, 0);
  EXPECT_EQ(meet(a0, a1, a2, e0, e1, e2, 1e-6, 1).result, 0);

  // A shared corner only, the triangles otherwise apart: a point.
  const P f0{0, 0, 0}, f1{-1, -1, 1}, f2{-1, -2, 1};
  s = meet(a0, a1, a2, f0, f1, f2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0);
  expectPoint(s.out2, 0, 0, 0);
}

TEST(IntTriangleTriangle, SkipTouchingRejectsShortOverlaps) {
  // The sections are long, but they overlap over 0.05 only.
  const P a0{0, 0, 0}, a1{2, 0, 0}, a2{0, 2, 0};
  const P b0{1.45, 0.5, -1}, b1{1.45, 0.5, 1}, b2{3, 0.5, 0};
  Section s = meet(a0, a1, a2, b0, b1, b2, 0.1);
  EXPECT_EQ(s.result, 1);
  EXPECT_NEAR(s.out1[0], 1.45, 1e-12);
  EXPECT_NEAR(s.out2[0], 1.5, 1e-12);
  s = meet(a0, a1, a2, b0, b1, b2, 0.1, 1);
  EXPECT_EQ(s.result, 0);
  EXPECT_EQ(s.out1, kSentinel);
  EXPECT_EQ(meet(a0, a1, a2, b0, b1, b2, 0.01, 1).result, 1);
}

TEST(IntPlaneTriangle, IsolatedCornerFoundInTheWrittenOrder) {
  // t0 on the plane, t1 above, t2 below: both "t2 isolated" and "t1
  // isolated" hold; t2 is tested first, so the far end is computed from t2
  // towards t1 (the other direction differs in the last bit here).
  const P t0{0.1, 0.3, 0}, t1{0.1, 0.1, 0.1}, t2{0.1, 1.7, -0.1};
  P fromT2 = kSentinel, fromT1 = kSentinel;
  ASSERT_EQ(vora_intlineplane(t2.data(), t1.data(), kOrigin.data(), kUp.data(), fromT2.data()), 1);
  ASSERT_EQ(vora_intlineplane(t1.data(), t2.data(), kOrigin.data(), kUp.data(), fromT1.data()), 1);
  ASSERT_NE(fromT2, fromT1);
  const Section s = cut(t0, t1, t2, kOrigin, kUp, 1e-6);
  EXPECT_EQ(s.result, 1);
  EXPECT_EQ(s.out1, t0);
  EXPECT_EQ(s.out2, fromT2);
}

TEST(IntPlaneTriangle, BothEndsAreTriedBeforeAMissingCrossingFails) {
  // tolValue 0.5 zeroes t0's distance (e = -0.3) but with tol 0 it is not on
  // the plane; t2 is isolated below and its edge to t0 has n.u = 0.3, under
  // tolValue: that crossing is not found, out1 stays as it was, and the
  // crossing towards t1 is still written to out2. A snap flag on t0 does not
  // stand in for the missing crossing.
  ToleranceGuard guard(0.5, 1e-07);
  const P t0{0, 0, -0.3}, t1{1, 0, 1}, t2{0, 1, -0.6};
  P towardT1 = kSentinel;
  ASSERT_EQ(vora_intlineplane(t2.data(), t1.data(), kOrigin.data(), kUp.data(), towardT1.data()), 1);
  for (const Snap& snap : {kNoSnap, Snap{1, 0, 0, 0, 0, 0, 0, 0, 0}}) {
    const Section s = cut(t0, t1, t2, kOrigin, kUp, 0.0, snap);
    EXPECT_EQ(s.result, 0);
    EXPECT_EQ(s.out1, kSentinel);
    EXPECT_EQ(s.out2, towardT1);
  }
}

TEST(IntPlaneTriangle, CornerDistanceZeroedOnlyStrictlyUnderTolValue) {
  // e = 0.5 for t0 is not under tolValue 0.5: t0 stays above the band of
  // 0.25 and is the isolated corner, rather than a corner touching the plane.
  ToleranceGuard guard(0.5, 1e-07);
  const P t0{0, 0, 0.5}, t1{1, 0, -1}, t2{0, 1, -1};
  P end1 = kSentinel, end2 = kSentinel;
  ASSERT_EQ(vora_intlineplane(t0.data(), t2.data(), kOrigin.data(), kUp.data(), end1.data()), 1);
  ASSERT_EQ(vora_intlineplane(t0.data(), t1.data(), kOrigin.data(), kUp.data(), end2.data()), 1);
  const Section s = cut(t0, t1, t2, kOrigin, kUp, 0.25);
  EXPECT_EQ(s.result, 1);
  EXPECT_EQ(s.out1, end1);
  EXPECT_EQ(s.out2, end2);
}

TEST(IntTriangleTriangle, EachSectionSnapsOntoItsOwnSharedCorners) {
  // a1 coincides with b0. B's plane takes b1 as its point and A's section is
  // snapped at a1 only (row 1 of the matrix): the crossing towards a0 stays
  // a crossing.
  const P a0{2, 1, 1}, a1{0, 0, 0}, a2{1, 2, -1};
  const P b0{0, 0, 0}, b1{4, 0, 0}, b2{0, 4, 0};
  const Section s = meet(a0, a1, a2, b0, b1, b2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0, 0, 0);
  expectPoint(s.out2, 1.5, 1.5, 0);
}

TEST(IntTriangleTriangle, EqualSpreadInXAndYOrdersAlongY) {
  // B's section runs from (0.5, 0.5) to (1.5, -0.5): |dx| = |dy|, so y is
  // the axis and its low end is (1.5, -0.5). It lies inside A's section.
  const P a0{-4, -4, 0}, a1{8, -4, 0}, a2{-4, 8, 0};
  const P b0{0, 1, -1}, b1{1, 0, 1}, b2{2, -1, -1};
  const Section s = meet(a0, a1, a2, b0, b1, b2, 1e-6);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 1.5, -0.5, 0);
  expectPoint(s.out2, 0.5, 0.5, 0);
}

TEST(IntTriangleTriangle, SkipTouchingKeepsAnOverlapOfExactlyTol) {
  // Sections [0, 1.5] (A) and [1.25, 3] (B) along x overlap over exactly
  // tol = 0.25: its squared length is not under tol squared.
  const P a0{0, 0, 0}, a1{2, 0, 0}, a2{0, 2, 0};
  const P b0{1.25, 0.5, -1}, b1{1.25, 0.5, 1}, b2{3, 0.5, 0};
  const Section s = meet(a0, a1, a2, b0, b1, b2, 0.25, 1);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 1.25, 0.5, 0);
  expectPoint(s.out2, 1.5, 0.5, 0);
  EXPECT_EQ(meet(a0, a1, a2, b0, b1, b2, 0.2500001, 1).result, 0);
}

TEST(IntTriangleTriangle, AxisThresholdsAreStrict) {
  // A lies in the plane y = 0; both B triangles cross it with one corner on it.
  const P a0{-2, 0, -2}, a1{4, 0, -2}, a2{-2, 0, 6};
  {
    // B's section runs from (0.25, 0, 0) to (0, 0, 2): |dx| = tol is not
    // under tol, so x is the axis and the end with the smaller x comes first.
    const P b0{0.25, -1, 0}, b1{0.25, 1, 0}, b2{0, 0, 2};
    const Section s = meet(a0, a1, a2, b0, b1, b2, 0.25);
    EXPECT_EQ(s.result, 1);
    expectPoint(s.out1, 0, 0, 2);
    expectPoint(s.out2, 0.25, 0, 0);
  }
  // B's section runs from (0.125, 0, 0) to (0.25, 0, -0.25): x and y spread
  // less than tol, so z is the axis, and |dz| = tol does not make it a point:
  // the ends are ordered by z.
  const P b0{0.125, -1, 0}, b1{0.125, 1, 0}, b2{0.25, 0, -0.25};
  const Section s = meet(a0, a1, a2, b0, b1, b2, 0.25);
  EXPECT_EQ(s.result, 1);
  expectPoint(s.out1, 0.25, 0, -0.25);
  expectPoint(s.out2, 0.125, 0, 0);
}

TEST(IntTriangleTriangle, CornersExactlyTolApartAreNotShared) {
  // b0 lies exactly tol above a0: not coincident, so B's crossing towards b0
  // is not snapped onto it (b0 is neither on nor above the band of A's plane).
  const P a0{0, 0, 0}, a1{4, 0, 0}, a2{0, 4, 0};
  const P b0{0, 0, 0.5}, b1{2, 1, 2}, b2{1, 2, -2};
  P end1 = kSentinel, end2 = kSentinel;
  ASSERT_EQ(vora_intlineplane(b2.data(), b0.data(), a0.data(), kUp.data(), end1.data()), 1);
  ASSERT_EQ(vora_intlineplane(b2.data(), b1.data(), a0.data(), kUp.data(), end2.data()), 1);
  const Section s = meet(a0, a1, a2, b0, b1, b2, 0.5);
  EXPECT_EQ(s.result, 1);
  EXPECT_EQ(s.out1, end1);
  EXPECT_EQ(s.out2, end2);
}

double planeDistance(const P& t0, const P& t1, const P& t2, const P& p) {
  const double n[3] = {(t1[1] - t0[1]) * (t2[2] - t0[2]) - (t1[2] - t0[2]) * (t2[1] - t0[1]),
                       (t1[2] - t0[2]) * (t2[0] - t0[0]) - (t1[0] - t0[0]) * (t2[2] - t0[2]),
                       (t1[0] - t0[0]) * (t2[1] - t0[1]) - (t1[1] - t0[1]) * (t2[0] - t0[0])};
  return vora_distpointplane(n, t0.data(), p.data(), nullptr);
}

bool inTriangle(const P& t0, const P& t1, const P& t2, const P& p) {
  P probe = p;
  return vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), probe.data()) == 1;
}

TEST(SectionProperties, RandomSectionsLieOnBothPlanesAndInBothTriangles) {
  const unsigned seed = 5150;
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  auto randomPoint = [&] { return P{coord(rng), coord(rng), coord(rng)}; };
  int planeHits = 0, triangleHits = 0;
  for (int iter = 0; iter < 3000; ++iter) {
    const P t0 = randomPoint(), t1 = randomPoint(), t2 = randomPoint();
    const P pp = randomPoint(), n = randomPoint();
    const Section s = cut(t0, t1, t2, pp, n, 1e-6);
    if (s.result == 1) {
      ++planeHits;
      for (const P& end : {s.out1, s.out2}) {
        EXPECT_LT(vora_distpointplane(n.data(), pp.data(), end.data(), nullptr), 1e-9) << seed << " " << iter;
        EXPECT_TRUE(inTriangle(t0, t1, t2, end)) << seed << " " << iter;
      }
    }

    const P b0 = randomPoint(), b1 = randomPoint(), b2 = randomPoint();
    const Section m = meet(t0, t1, t2, b0, b1, b2, 1e-6);
    if (m.result == 1) {
      ++triangleHits;
      for (const P& end : {m.out1, m.out2}) {
        EXPECT_LT(planeDistance(t0, t1, t2, end), 1e-9) << seed << " " << iter;
        EXPECT_LT(planeDistance(b0, b1, b2, end), 1e-9) << seed << " " << iter;
        EXPECT_TRUE(inTriangle(t0, t1, t2, end)) << seed << " " << iter;
        EXPECT_TRUE(inTriangle(b0, b1, b2, end)) << seed << " " << iter;
      }
      // The same two triangles in the other order share the same segment.
      const Section r = meet(b0, b1, b2, t0, t1, t2, 1e-6);
      EXPECT_EQ(r.result, 1) << seed << " " << iter;
      const double len = std::hypot(m.out2[0] - m.out1[0], m.out2[1] - m.out1[1], m.out2[2] - m.out1[2]);
      const double rlen = std::hypot(r.out2[0] - r.out1[0], r.out2[1] - r.out1[1], r.out2[2] - r.out1[2]);
      EXPECT_NEAR(len, rlen, 1e-9) << seed << " " << iter;
    }
  }
  EXPECT_GT(planeHits, 1000);
  EXPECT_GT(triangleHits, 50);
}

}  // namespace
