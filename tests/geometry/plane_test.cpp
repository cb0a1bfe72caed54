#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

using vora::test::ToleranceGuard;
using P = std::array<double, 3>;

// Outputs are pre-filled with this so that "left untouched" can be asserted.
constexpr P kSentinel = {-777.0, 888.0, -999.0};

void expectPoint(const P& got, double x, double y, double z) {
  EXPECT_EQ(got[0], x);
  EXPECT_EQ(got[1], y);
  EXPECT_EQ(got[2], z);
}

TEST(IntLinePlane, InfiniteLineAndParallelTolerance) {
  const P a{0, 0, 0}, b{0, 0, 1}, pp{5, 5, 2}, n{0, 0, 3};
  P out = kSentinel;
  EXPECT_EQ(vora_intlineplane(a.data(), b.data(), pp.data(), n.data(), out.data()), 1);
  expectPoint(out, 0, 0, 2);  // beyond b: the line is not limited to [a, b]
  EXPECT_EQ(vora_intlineplane(a.data(), b.data(), pp.data(), n.data(), nullptr), 1);

  // A line lying in a plane parallel to it.
  const P c{1, 0, 7}, d{4, -2, 7};
  out = kSentinel;
  EXPECT_EQ(vora_intlineplane(c.data(), d.data(), pp.data(), n.data(), out.data()), 0);
  EXPECT_EQ(out, kSentinel);

  // normal . (b - a) is compared with tolValue, strictly.
  const P e{0, 0, 0}, f{1, 0, 0}, onTol{1e-07, 0, 1}, underTol{0.9e-07, 0, 1};
  EXPECT_EQ(vora_intlineplane(e.data(), f.data(), pp.data(), onTol.data(), nullptr), 1);
  EXPECT_EQ(vora_intlineplane(e.data(), f.data(), pp.data(), underTol.data(), nullptr), 0);
  {
    ToleranceGuard guard(1e-3, 1e-7);
    EXPECT_EQ(vora_intlineplane(e.data(), f.data(), pp.data(), onTol.data(), nullptr), 0);
  }
}

TEST(IntPlinePlane, NearestCrossingToThePlanePoint) {
  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(0, 0, 0));
  pts.append(AcGePoint3d(0, 0, 10));
  pts.append(AcGePoint3d(10, 0, 10));
  pts.append(AcGePoint3d(10, 0, 0));
  const P pp{10, 0, 5}, n{0, 0, 1};
  P out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&pts, 0, pp.data(), n.data(), out.data()), 1);
  expectPoint(out, 10, 0, 5);
  // The closing segment lies in z = 0, parallel to the plane.
  out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&pts, 1, pp.data(), n.data(), out.data()), 1);
  expectPoint(out, 10, 0, 5);

  // The closing segment brings a nearer crossing.
  AcGePoint3dArray open;
  open.append(AcGePoint3d(0, 0, 0));
  open.append(AcGePoint3d(0, 0, 10));
  open.append(AcGePoint3d(10, 0, 10));
  const P low{5, 0, 1}, nz{0, 0, 1};
  out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&open, 0, low.data(), nz.data(), out.data()), 1);
  expectPoint(out, 0, 0, 1);
  out = kSentinel;
  // Closing runs from (10,0,10) back to the origin and meets z = 1 at (1,0,1),
  // nearer to (5,0,1) than (0,0,1) is.
  EXPECT_EQ(vora_intplineplane(&open, 1, low.data(), nz.data(), out.data()), 1);
  expectPoint(out, 1, 0, 1);
}

TEST(IntPlinePlane, MissesTiesAndDegenerateArrays) {
  const P pp{0, 0, 0}, n{0, 0, 1};
  P out = kSentinel;
  AcGePoint3dArray pts;
  EXPECT_EQ(vora_intplineplane(&pts, 0, pp.data(), n.data(), out.data()), 0);
  EXPECT_EQ(vora_intplineplane(&pts, 1, pp.data(), n.data(), out.data()), 0);
  pts.append(AcGePoint3d(0, 0, -1));
  EXPECT_EQ(vora_intplineplane(&pts, 1, pp.data(), n.data(), out.data()), 0);
  EXPECT_EQ(out, kSentinel);

  // Two crossings at the same distance: the earlier segment wins.
  AcGePoint3dArray u;
  u.append(AcGePoint3d(-1, 0, -1));
  u.append(AcGePoint3d(-1, 0, 1));
  u.append(AcGePoint3d(1, 0, 1));
  u.append(AcGePoint3d(1, 0, -1));
  EXPECT_EQ(vora_intplineplane(&u, 0, pp.data(), n.data(), out.data()), 1);
  expectPoint(out, -1, 0, 0);

  // Crossings of the carrier line outside every segment are not kept.
  AcGePoint3dArray above;
  above.append(AcGePoint3d(0, 0, 1));
  above.append(AcGePoint3d(0, 1, 2));
  out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&above, 0, pp.data(), n.data(), out.data()), 0);
  EXPECT_EQ(out, kSentinel);
}

TEST(IntPlinePlane, SegmentMarginIsTolPointInLengthUnits) {
  const P n{0, 0, 1};
  P out = kSentinel;
  AcGePoint3dArray seg;
  seg.append(AcGePoint3d(0, 0, 0));
  seg.append(AcGePoint3d(0, 0, 1));
  // Both margins are inclusive.
  const P before{0, 0, -1e-07}, after{0, 0, 1.0 + 1e-07}, pastBefore{0, 0, -1.5e-07}, pastAfter{0, 0, 1.0 + 2e-07};
  EXPECT_EQ(vora_intplineplane(&seg, 0, before.data(), n.data(), out.data()), 1);
  expectPoint(out, 0, 0, -1e-07);
  EXPECT_EQ(vora_intplineplane(&seg, 0, after.data(), n.data(), out.data()), 1);
  out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&seg, 0, pastBefore.data(), n.data(), out.data()), 0);
  EXPECT_EQ(vora_intplineplane(&seg, 0, pastAfter.data(), n.data(), out.data()), 0);
  EXPECT_EQ(out, kSentinel);

  // A short segment: its squared length 4e-8 is compared with tolPoint
  // squared, so it is measured and its midpoint crossing is kept.
  AcGePoint3dArray shortSeg;
  shortSeg.append(AcGePoint3d(0, 0, 0));
  shortSeg.append(AcGePoint3d(0, 0, 2e-4));
  const P mid{0, 0, 1e-4};
  EXPECT_EQ(vora_intplineplane(&shortSeg, 0, mid.data(), n.data(), out.data()), 1);
  expectPoint(out, 0, 0, 1e-4);

  // A segment shorter than tolPoint is not measured: it counts wherever the
  // carrier crosses, since its length is within the margin.
  AcGePoint3dArray tiny;
  tiny.append(AcGePoint3d(0, 0, 0));
  tiny.append(AcGePoint3d(0, 0, 5e-08));
  const ToleranceGuard guard(1e-09, 1e-07);
  const P far{0, 0, 3.0};
  out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&tiny, 0, far.data(), n.data(), out.data()), 1);
  EXPECT_NEAR(out[2], 3.0, 1e-12);
}

TEST(PointInTriangle2d, InsideBorderAndElevation) {
  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 10};
  P p{2, 2, -1};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  expectPoint(p, 2, 2, 2.0);
  p = {5, 5, -1};  // on the edge t1 -> t2
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  EXPECT_EQ(p[2], 5.0);
  p = {6, 6, -1};  // outside, but the elevation is still written
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  expectPoint(p, 6, 6, 6.0);

  // Degenerate in plan (a vertical triangle): 0 and p untouched.
  const P v0{0, 0, 0}, v1{10, 0, 0}, v2{5, 0, 10};
  p = {5, 0, -1};
  EXPECT_EQ(vora_pointintriangle2d(v0.data(), v1.data(), v2.data(), p.data()), 0);
  expectPoint(p, 5, 0, -1);
}

TEST(PointInTriangle2d, ToleranceEdges) {
  // Twice the plan area exactly tolValue is not degenerate (>=).
  const P s0{0, 0, 0}, s1{1e-07, 0, 0}, s2{0, 1, 0};
  P p{2e-08, 0.2, 5};
  EXPECT_EQ(vora_pointintriangle2d(s0.data(), s1.data(), s2.data(), p.data()), 1);
  EXPECT_EQ(p[2], 0.0);
  const P thin{0.9e-07, 0, 0};
  p = {2e-08, 0.2, 5};
  EXPECT_EQ(vora_pointintriangle2d(s0.data(), thin.data(), s2.data(), p.data()), 0);
  EXPECT_EQ(p[2], 5.0);

  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 0};
  // Corners match per coordinate: 0.9e-7 off in x and y (1.27e-7 away) is
  // still the corner, though no edge is that close.
  p = {10 + 0.9e-07, 0.9e-07, 0};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  p = {10 + 1.1e-07, 0, 0};  // beyond t1 along t0->t1: param > 1
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  // Just outside an edge, within and beyond tolPoint.
  p = {4, -0.5e-07, 0};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  p = {4, -1.5e-07, 0};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  {
    const ToleranceGuard guard(1e-07, 1e-06);
    p = {4, -5e-07, 0};
    EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  }
  // Orientation does not matter.
  p = {1, 1, 0};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t2.data(), t1.data(), p.data()), 1);
}

TEST(PointInTriangle3d, ProjectsOntoThePlane) {
  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 10};
  P p{2, 2, 4};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  expectPoint(p, 2, 2, 3.0);
  p = {2, 2, 100};  // projects to s + t = 5.3
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  expectPoint(p, 2, 2, 100);

  const P c0{0, 0, 0}, c1{1, 0, 0}, c2{2, 0, 0};
  p = {1, 0, 7};
  EXPECT_EQ(vora_pointintriangle3d(c0.data(), c1.data(), c2.data(), p.data()), 0);
  EXPECT_EQ(p[2], 7.0);
}

TEST(PointInTriangle3d, BarycentricMarginIsTolValue) {
  // With the unit right triangle the weights are exactly p.x and p.y.
  const P t0{0, 0, 0}, t1{1, 0, 0}, t2{0, 1, 0};
  P p{-1e-07, 0.5, 3};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  EXPECT_EQ(p[2], 0.0);
  p = {-1.5e-07, 0.5, 3};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  p = {0.5, -1e-07, 3};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  p = {0.5, -1.5e-07, 3};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  p = {1.0 + 1e-07, 0, 3};  // s + t == 1 + tolValue
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  p = {1.0 + 2e-07, 0, 3};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  {
    // The margin follows tolValue, not tolPoint.
    const ToleranceGuard guard(1e-03, 1e-09);
    p = {-5e-04, 0.5, 3};
    EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  }
  // On a tilted triangle (plane z = 1 + 2x - y) the point moves along the
  // normal (-2, 1, 1), not vertically: (0.5, 2.5, 2.5) lands on (1.5, 2, 2),
  // whereas the plane lies at z = -0.5 above (0.5, 2.5).
  const P r0{1, 1, 2}, r1{3, 1, 6}, r2{1, 5, -2};
  p = {0.5, 2.5, 2.5};
  EXPECT_EQ(vora_pointintriangle3d(r0.data(), r1.data(), r2.data(), p.data()), 1);
  EXPECT_EQ(p[0], 0.5);
  EXPECT_EQ(p[1], 2.5);
  EXPECT_NEAR(p[2], 2.0, 1e-12);
  p = {0.5, 2.5, 2.5};
  EXPECT_EQ(vora_pointintriangle2d(r0.data(), r1.data(), r2.data(), p.data()), 0);
  EXPECT_NEAR(p[2], -0.5, 1e-12);
}

TEST(IntLineTriangle, CrossingIsWrittenBeforeItIsTested) {
  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 0};
  const P a{2, 2, -5}, b{2, 2, 5};
  P out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 1);
  expectPoint(out, 2, 2, 0);
  EXPECT_EQ(vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), nullptr, 0), 1);

  // The segment stops short of the plane (t = -1): 0, yet out holds the crossing.
  const P c{2, 2, 5}, d{2, 2, 10};
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(c.data(), d.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);
  expectPoint(out, 2, 2, 0);
  // A ray from a through b is not extended behind a either.
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(c.data(), d.data(), t0.data(), t1.data(), t2.data(), out.data(), 1), 0);
  expectPoint(out, 2, 2, 0);
  // ... but it is beyond b.
  EXPECT_EQ(vora_intlinetriangle(d.data(), c.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);
  EXPECT_EQ(vora_intlinetriangle(d.data(), c.data(), t0.data(), t1.data(), t2.data(), out.data(), 1), 1);

  // Crossing the plane outside the triangle: 0 with the crossing written.
  const P e{8, 8, -1}, f{8, 8, 1};
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(e.data(), f.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);
  expectPoint(out, 8, 8, 0);

  // Parallel: 0 and out untouched, even when a sits on a corner.
  const P g{5, 5, 0};
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(t0.data(), g.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);
  EXPECT_EQ(out, kSentinel);

  // A vertical triangle has no plan area: its interior is never hit.
  const P v0{0, 0, 0}, v1{10, 0, 0}, v2{0, 0, 10};
  const P h{2, -1, 2}, k{2, 1, 2};
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(h.data(), k.data(), v0.data(), v1.data(), v2.data(), out.data(), 0), 0);
  expectPoint(out, 2, 0, 2);
}

TEST(IntLineTriangle, CornerShortcuts) {
  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 0};
  P out = kSentinel;
  // Squared distance against tolPoint squared, strictly.
  const P near{0, 0, 0.9e-07}, at{0, 0, 1e-07}, away{-1, -1, 1};
  EXPECT_EQ(vora_intlinetriangle(near.data(), away.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 1);
  expectPoint(out, 0, 0, 0);
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(at.data(), away.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);
  // 2e-4 is far beyond tolPoint though its square is below tolPoint.
  const P above{0, 0, 2e-04};
  EXPECT_EQ(vora_intlinetriangle(above.data(), away.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);

  // b near a corner: the shortcut is taken for a segment only. The ray goes
  // on and crosses the plane 9e-5 beyond t1, outside the triangle.
  const P a{10 - 1000, 0, 1}, b{10, 0, 9e-08};
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 1);
  expectPoint(out, 10, 0, 0);
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 1), 0);
  EXPECT_NEAR(out[0], 10 + 9e-05, 1e-09);

  // The corners of a vertical triangle are still reached.
  const P v0{0, 0, 0}, v1{10, 0, 0}, v2{0, 0, 10};
  const P s{0, -1, 10}, e{0, 0, 10};
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(s.data(), e.data(), v0.data(), v1.data(), v2.data(), out.data(), 0), 1);
  expectPoint(out, 0, 0, 10);
}

TEST(IntLineTriangle, RandomCrossingsLieOnThePlaneAndInPlan) {
  std::mt19937_64 rng(20261123);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  std::uniform_real_distribution<double> weight(0.0, 1.0);
  int hits = 0;
  for (int iter = 0; iter < 2000; ++iter) {
    P t0, t1, t2, a, b;
    for (P* q : {&t0, &t1, &t2, &a}) {
      for (double& c : *q) c = coord(rng);
    }
    // Aim b at a random point of the triangle (sometimes outside it).
    const double s = weight(rng) * 1.4, w = weight(rng) * 1.4;
    for (int i = 0; i < 3; ++i) b[i] = t0[i] + s * (t1[i] - t0[i]) + w * (t2[i] - t0[i]);
    P out = kSentinel;
    const int r = vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 1);
    const bool inside = s + w < 1.0;
    if (r == 1) {
      ++hits;
      P probe = out;
      EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), probe.data()), 1) << iter;
      const double n[3] = {(t1[1] - t0[1]) * (t2[2] - t0[2]) - (t1[2] - t0[2]) * (t2[1] - t0[1]),
                           (t1[2] - t0[2]) * (t2[0] - t0[0]) - (t1[0] - t0[0]) * (t2[2] - t0[2]),
                           (t1[0] - t0[0]) * (t2[1] - t0[1]) - (t1[1] - t0[1]) * (t2[0] - t0[0])};
      EXPECT_LT(vora_distpointplane(n, t0.data(), out.data(), nullptr), 1e-9) << iter;
    } else if (inside && s > 1e-3 && w > 1e-3 && s + w < 0.999) {
      ADD_FAILURE() << "missed a ray aimed inside, case " << iter;
    }
  }
  EXPECT_GT(hits, 500);
}

TEST(IntPlinePlane, ZeroPointToleranceKeepsNoCrossing) {
  // The on-segment test is strict: with tolPoint 0 even an exact crossing
  // (its distance from the carrier exactly 0) is not kept.
  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(0, 0, 0));
  pts.append(AcGePoint3d(0, 0, 10));
  const P pp{0, 0, 5}, n{0, 0, 1};
  P out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&pts, 0, pp.data(), n.data(), out.data()), 1);
  expectPoint(out, 0, 0, 5);
  ToleranceGuard guard(1e-07, 0.0);
  out = kSentinel;
  EXPECT_EQ(vora_intplineplane(&pts, 0, pp.data(), n.data(), out.data()), 0);
  expectPoint(out, kSentinel[0], kSentinel[1], kSentinel[2]);
}

TEST(PointInTriangleExact, ElevationsFollowTheWrittenSums) {
  const P t0{0.1, 0.3, 1.3}, t1{2.3, 0.7, -0.9}, t2{0.9, 1.9, 3.3};
  // Plan weights of t1 (s) and t2 (w), then z = dz1*s + z0 + dz2*w.
  const double x = 0.2, y = 0.4;
  const double det = t0[0] * (t1[1] - t2[1]) + t1[0] * (t2[1] - t0[1]) + t2[0] * (t0[1] - t1[1]);
  const double s = (t0[1] * t2[0] - t0[0] * t2[1] + (t2[1] - t0[1]) * x + (t0[0] - t2[0]) * y) / det;
  const double w = (t1[1] * t0[0] - t0[1] * t1[0] + (t0[1] - t1[1]) * x + (t1[0] - t0[0]) * y) / det;
  P p{x, y, 0};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  EXPECT_EQ(p[2], (t1[2] - t0[2]) * s + t0[2] + (t2[2] - t0[2]) * w);
  ASSERT_NE(p[2], (t1[2] - t0[2]) * s + (t2[2] - t0[2]) * w + t0[2]);

  // In space: z = s*u.z + z0 + t*v.z with the projected weights.
  const double u[3] = {t1[0] - t0[0], t1[1] - t0[1], t1[2] - t0[2]};
  const double v[3] = {t2[0] - t0[0], t2[1] - t0[1], t2[2] - t0[2]};
  const double q[3] = {0.1, 1.6, -0.1};
  const double wq[3] = {q[0] - t0[0], q[1] - t0[1], q[2] - t0[2]};
  const double uu = u[0] * u[0] + u[1] * u[1] + u[2] * u[2], vv = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
  const double uv = u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
  const double wu = wq[0] * u[0] + wq[1] * u[1] + wq[2] * u[2], wv = wq[0] * v[0] + wq[1] * v[1] + wq[2] * v[2];
  const double d = uv * uv - vv * uu;
  const double s3 = (wv * uv - wu * vv) / d, t3 = (wu * uv - wv * uu) / d;
  P r{q[0], q[1], q[2]};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), r.data()), 1);
  EXPECT_EQ(r[2], s3 * u[2] + t0[2] + t3 * v[2]);
  ASSERT_NE(r[2], s3 * u[2] + t3 * v[2] + t0[2]);
}

TEST(PointInTriangle2d, BorderTestsAreStrict) {
  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 10};
  {
    // With tolPoint 0 a point exactly on an edge is outside: its weight of
    // 0 fails the strict inside test and no distance is below 0.
    ToleranceGuard guard(1e-07, 0.0);
    P p{5, 0, -1};
    EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 0);
    EXPECT_EQ(p[2], 0.0);
  }
  // A point exactly tolPoint from a corner in x (and on the extension of an
  // edge) is not at the corner.
  ToleranceGuard guard(1e-07, 0.5);
  P p{-0.5, 0, -1};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 0);
  p = {-0.4, 0, -1};
  EXPECT_EQ(vora_pointintriangle2d(t0.data(), t1.data(), t2.data(), p.data()), 1);
}

TEST(PointInTriangle3d, DeterminantBoundIsStrict) {
  // D = uv^2 - vv*uu = -1 here: degenerate only when strictly under tolValue.
  const P t0{0, 0, 0}, t1{1, 0, 0}, t2{0, 1, 0};
  ToleranceGuard guard(1.0, 1e-07);
  P p{0.25, 0.25, 3};
  EXPECT_EQ(vora_pointintriangle3d(t0.data(), t1.data(), t2.data(), p.data()), 1);
  expectPoint(p, 0.25, 0.25, 0.0);
}

TEST(IntLineTriangle, ValueToleranceBoundsOnDenominatorAndParameter) {
  const P t0{0, 0, 0}, t1{10, 0, 0}, t2{0, 10, 0};
  ToleranceGuard guard(0.5, 1e-07);
  P out = kSentinel;
  // |n.d| = 0.5 is not under tolValue 0.5.
  const P a{2, 2, -0.25}, b{2, 2, 0.25};
  EXPECT_EQ(vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 1);
  expectPoint(out, 2, 2, 0);
  // t = 1.5 = 1 + tolValue still counts for a segment.
  const P c{2, 2, -3}, d{2, 2, -1};
  EXPECT_EQ(vora_intlinetriangle(c.data(), d.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 1);
  // t = -0.25 lies within tolValue (not tolPoint) behind a.
  const P e{2, 2, 0.5}, f{2, 2, 2.5};
  EXPECT_EQ(vora_intlinetriangle(e.data(), f.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 1);
  EXPECT_EQ(vora_intlinetriangle(e.data(), f.data(), t0.data(), t1.data(), t2.data(), out.data(), 1), 1);
  // The denominator uses the unit normal, not the cross product (of length
  // 100 here): 0.5 is under tolValue 0.6, so the line counts as parallel.
  ToleranceGuard wider(0.6, 1e-07);
  out = kSentinel;
  EXPECT_EQ(vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 0), 0);
  expectPoint(out, kSentinel[0], kSentinel[1], kSentinel[2]);
}

TEST(IntLineTriangle, CrossingIsThatOfThePlaneThroughT0WithTheUnitNormal) {
  const P t0{0.1, 0.3, 1.3}, t1{2.3, 0.7, -0.9}, t2{0.9, 1.9, 3.3};
  const P a{0.7, 0.9, -2.1}, b{1.1, 0.3, 4.7};
  AcGeVector3d n = AcGeVector3d(t1[0] - t0[0], t1[1] - t0[1], t1[2] - t0[2])
                       .crossProduct(AcGeVector3d(t2[0] - t0[0], t2[1] - t0[1], t2[2] - t0[2]));
  n.normalize();
  const P normal{n.x, n.y, n.z};
  P expected = kSentinel;
  ASSERT_EQ(vora_intlineplane(a.data(), b.data(), t0.data(), normal.data(), expected.data()), 1);
  P out = kSentinel;
  vora_intlinetriangle(a.data(), b.data(), t0.data(), t1.data(), t2.data(), out.data(), 1);
  expectPoint(out, expected[0], expected[1], expected[2]);
}

}  // namespace
