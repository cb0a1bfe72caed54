#include "featureline/geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "featureline/errors.h"

namespace {

using vora::fl::buildPoints;
using vora::fl::computeStations;
using vora::fl::kMaxArcStepAngle;
using vora::fl::pointTolerance;
using vora::fl::tessellate;

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

// Survey coordinates: an easting/northing pair like those of a national grid.
const AcGePoint3d kOrigin(512345.25, 6123456.5, 0.0);

AcGeTol toleranceFor(const std::vector<AcGePoint3d>& pos, double midOrdinate = 0.015) {
  AcGeTol tol;
  tol.setEqualPoint(pointTolerance(pos.front(), pos.back(), midOrdinate));
  return tol;
}

// count vertices on a circle about c from angle a0 in steps of step (negative:
// clockwise); elevations from z0 with the given rise per unit of arc length.
std::vector<AcGePoint3d> arcVertices(const AcGePoint3d& c, double r, double a0, double step, int count, double z0,
                                     double grade) {
  std::vector<AcGePoint3d> out;
  for (int k = 0; k < count; ++k) {
    const double a = a0 + step * k;
    out.emplace_back(c.x + r * std::cos(a), c.y + r * std::sin(a), z0 + grade * r * std::fabs(step) * k);
  }
  return out;
}

class RecordingSink : public vora::fl::VertexSink {
public:
  void put(const AcGePoint3d& p) override { vertices.push_back(p); }
  std::vector<AcGePoint3d> vertices;
};

TEST(FeaturelineGeometry, PointToleranceFollowsTheDrawingsMagnitude) {
  const AcGePoint3d a(499000.0, 501000.0, 12.0), b(501000.0, 499000.0, 14.0);
  EXPECT_EQ(pointTolerance(a, b, 0.015), 1e-6);  // 12 - 5.7 = 6.3 -> 6
  EXPECT_EQ(pointTolerance(a, b, 0.001), 1e-6);  // 0.0001 is larger: never taken
  EXPECT_EQ(pointTolerance(a, b, 5e-6), 5e-6 / 10.0);  // smaller: taken
  EXPECT_EQ(pointTolerance(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 0, 0), 0.015), 1e-8);
  EXPECT_EQ(pointTolerance(AcGePoint3d(2e4, 0, 0), AcGePoint3d(2e4, 10, 0), 0.015), 1e-7);
  EXPECT_EQ(pointTolerance(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 0, 10), 0.015), 1e-8);  // 12 - 0.7 capped at 8
  EXPECT_EQ(pointTolerance(AcGePoint3d(1e13, 0, 0), AcGePoint3d(1e13, 0, 0), 0.015), 0.0015);
  // The midpoint counts, not the larger end: a line through the origin.
  EXPECT_EQ(pointTolerance(AcGePoint3d(-5e5, 0, 0), AcGePoint3d(5e5, 0, 0), 0.015), 1e-8);
  // A negative mid ordinate distance is smaller than any tolerance.
  EXPECT_EQ(pointTolerance(a, b, -0.5), -0.05);
}

TEST(FeaturelineGeometry, ArcRecognitionNeedsSmallStepsAndFiveVertices) {
  const AcGePoint3d c = kOrigin;
  // Five vertices, 20 degree steps, constant grade: one arc.
  auto pos = arcVertices(c, 150.0, 10 * kDeg, 20 * kDeg, 5, 100.0, 0.02);
  auto pts = buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 2u);
  EXPECT_NEAR(pts[0].bulge, std::tan(80 * kDeg / 4), 1e-9);
  EXPECT_EQ(pts[1].bulge, 0.0);
  EXPECT_TRUE(pts[0].isFeaturePoint() && pts[1].isFeaturePoint());
  EXPECT_EQ(pts[1].position.x, pos[4].x);

  // Clockwise: the bulge is negative.
  pos = arcVertices(c, 150.0, 10 * kDeg, -20 * kDeg, 5, 100.0, 0.0);
  pts = buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 2u);
  EXPECT_NEAR(pts[0].bulge, -std::tan(80 * kDeg / 4), 1e-9);

  // 31 degree steps: five straight feature points.
  pos = arcVertices(c, 150.0, 0.0, 31 * kDeg, 5, 100.0, 0.0);
  pts = buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 5u);
  for (const auto& p : pts) EXPECT_EQ(p.bulge, 0.0);

  // Exactly 30 degrees still counts.
  pos = arcVertices(c, 150.0, 0.0, 30 * kDeg, 5, 100.0, 0.0);
  EXPECT_EQ(buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle).size(), 2u);

  // Four vertices on a circle never form an arc.
  pos = arcVertices(c, 150.0, 0.0, 10 * kDeg, 4, 100.0, 0.0);
  EXPECT_EQ(buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle).size(), 4u);

  // An arc of three vertices between straight runs stays three feature points.
  std::vector<AcGePoint3d> mixed = {AcGePoint3d(c.x - 100, c.y - 150, 0), AcGePoint3d(c.x - 50, c.y - 150, 0)};
  for (const auto& p : arcVertices(c, 150.0, -90 * kDeg, 10 * kDeg, 3, 0.0, 0.0)) mixed.push_back(p);
  mixed.push_back(AcGePoint3d(c.x + 200, c.y + 100, 0));
  EXPECT_EQ(buildPoints(mixed, toleranceFor(mixed), kMaxArcStepAngle).size(), mixed.size());
}

TEST(FeaturelineGeometry, StraightRunsAndArcsAtSurveyCoordinates) {
  // Tangent, curve of 40 vertices (2.25 degree steps, as a 0.015 mid ordinate
  // on R = 300 gives roughly), tangent; duplicates at the joints.
  const double r = 300.0;
  const AcGePoint3d c = kOrigin;
  std::vector<AcGePoint3d> pos;
  pos.emplace_back(c.x + r, c.y - 400.0, 50.0);
  pos.emplace_back(c.x + r, c.y - 200.0, 52.0);
  auto arc = arcVertices(c, r, 0.0, 2.25 * kDeg, 41, 53.0, 0.01);
  pos.emplace_back(arc.front());
  pos.emplace_back(arc.front());  // duplicate vertex
  for (const auto& p : arc) pos.push_back(p);
  pos.emplace_back(c.x - 300.0, c.y + 600.0, 60.0);
  const AcGeTol tol = toleranceFor(pos);
  EXPECT_EQ(tol.equalPoint(), 1e-5);  // northings of 6e6: 12 - 6.8 = 5.2 -> 5
  const auto kept = vora::fl::withoutDuplicates(pos.data(), pos.size(), tol);
  EXPECT_EQ(kept.size(), pos.size() - 2);
  const auto pts = buildPoints(kept, tol, kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 5u);
  EXPECT_EQ(pts[2].position.x, arc.front().x);
  EXPECT_NEAR(pts[2].bulge, std::tan(90 * kDeg / 4), 1e-9);
  EXPECT_EQ(pts[3].position.y, arc.back().y);

  std::vector<double> st;
  computeStations(pts, st);
  ASSERT_EQ(st.size(), 5u);
  EXPECT_EQ(st[0], 0.0);
  EXPECT_EQ(st[1], 200.0);
  EXPECT_NEAR(st[3] - st[2], r * kPi / 2, 1e-7);
}

TEST(FeaturelineGeometry, GradeBreaksInsideArcsBecomeElevationPoints) {
  const AcGePoint3d c = kOrigin;
  const double r = 200.0, step = 3 * kDeg;
  auto pos = arcVertices(c, r, 0.0, step, 21, 10.0, 0.0);
  // Rising at 2% up to vertex 8, falling at 1% after it.
  for (int k = 0; k < 21; ++k) {
    const double s = r * step * k;
    const double s8 = r * step * 8;
    pos[k].z = 10.0 + (k <= 8 ? 0.02 * s : 0.02 * s8 - 0.01 * (s - s8));
  }
  auto pts = buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 3u);
  EXPECT_TRUE(pts[1].isElevationPoint());
  EXPECT_EQ(pts[1].position.x, pos[8].x);
  EXPECT_EQ(pts[1].bulge, 0.0);
  EXPECT_NEAR(pts[1].arcDistance, r * step * 8, 1e-9);
  std::vector<double> st;
  computeStations(pts, st);
  EXPECT_NEAR(st[1], r * step * 8, 1e-9);
  EXPECT_NEAR(st[2], r * step * 20, 1e-9);

  // Two bends: two elevation points.
  for (int k = 15; k < 21; ++k) pos[k].z += 0.03 * r * step * (k - 14);
  pts = buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 4u);
  EXPECT_EQ(pts[2].position.z, pos[14].z);

  // A break at the last vertex but one is found; the end vertex is never one.
  pos = arcVertices(c, r, 0.0, step, 10, 10.0, 0.0);
  pos[9].z = 11.0;
  pts = buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 3u);
  EXPECT_EQ(pts[1].position.x, pos[8].x);
}

TEST(FeaturelineGeometry, VerticalStepsInsideArcsKeepBothEnds) {
  // A culvert headwall: the edge jumps 2 m at one plan point of the curve.
  auto pos = arcVertices(kOrigin, 120.0, 0.0, 5 * kDeg, 12, 30.0, 0.0);
  AcGePoint3d top = pos[6];
  top.z += 2.0;
  pos.insert(pos.begin() + 7, top);
  for (std::size_t k = 8; k < pos.size(); ++k) pos[k].z += 2.0;
  const AcGeTol tol = toleranceFor(pos);
  const auto pts = buildPoints(pos, tol, kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 4u);
  EXPECT_TRUE(pts[1].isElevationPoint() && pts[2].isElevationPoint());
  EXPECT_EQ(pts[1].position.z, 30.0);
  EXPECT_EQ(pts[2].position.z, 32.0);
  EXPECT_EQ(pts[1].arcDistance, pts[2].arcDistance);
  std::vector<double> st;
  computeStations(pts, st);
  EXPECT_EQ(st[1], st[2]);

  // Written back, the step stays a vertical pair of vertices.
  RecordingSink sink;
  tessellate(pts, tol, 0.015, sink);
  int steps = 0;
  for (std::size_t k = 1; k < sink.vertices.size(); ++k) {
    const auto& a = sink.vertices[k - 1];
    const auto& b = sink.vertices[k];
    if (std::hypot(a.x - b.x, a.y - b.y) < 1e-6 && std::fabs(b.z - a.z) > 1.0) ++steps;
  }
  EXPECT_EQ(steps, 1);
  const auto again = buildPoints(vora::fl::withoutDuplicates(sink.vertices.data(), sink.vertices.size(), tol), tol,
                                 kMaxArcStepAngle);
  ASSERT_EQ(again.size(), 4u);
  EXPECT_EQ(again[2].position.z, 32.0);
}

TEST(FeaturelineGeometry, NaNElevationsInsideArcsAreRejected) {
  auto pos = arcVertices(kOrigin, 100.0, 0.0, 5 * kDeg, 8, 10.0, 0.0);
  pos[5].z = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(buildPoints(pos, toleranceFor(pos), kMaxArcStepAngle), FeaturelineError);
}

TEST(FeaturelineGeometry, StationsCountAndEmptyModels) {
  std::vector<double> st;
  EXPECT_THROW(computeStations({}, st), FeaturelineError);
  computeStations({FeaturelinePoint(AcGePoint3d(1, 2, 3), 0.0, 0.0, 0)}, st);
  EXPECT_EQ(st, std::vector<double>{0.0});
}

// Plan distance from a written vertex to the arc's circle, and chord departure.
struct ArcCheck {
  AcGeCircArc2d arc;
  double worstOffCircle = 0.0;
  double worstChord = 0.0;
  void run(const std::vector<AcGePoint3d>& v, std::size_t from, std::size_t to) {
    for (std::size_t k = from; k <= to; ++k) {
      worstOffCircle = std::max(worstOffCircle, std::fabs((AcGePoint2d(v[k].x, v[k].y) - arc.center()).length() - arc.radius()));
      if (k > from) {
        const AcGePoint2d mid((v[k - 1].x + v[k].x) / 2, (v[k - 1].y + v[k].y) / 2);
        worstChord = std::max(worstChord, arc.radius() - (mid - arc.center()).length());
      }
    }
  }
};

TEST(FeaturelineGeometry, WritingBackReTessellatesWithinTheMidOrdinate) {
  const double r = 250.0;
  const AcGePoint3d c = kOrigin;
  std::vector<AcGePoint3d> pos;
  pos.emplace_back(c.x + r, c.y - 300.0, 20.0);
  auto arc = arcVertices(c, r, 0.0, 6 * kDeg, 16, 23.0, 0.0);  // 90 degrees, coarse
  for (int k = 0; k < 16; ++k) arc[k].z = 23.0 + (k <= 5 ? 0.03 : -0.02) * r * 6 * kDeg * (k <= 5 ? k : k - 5) + (k > 5 ? 0.03 * r * 30 * kDeg : 0.0);
  for (const auto& p : arc) pos.push_back(p);
  pos.emplace_back(c.x - 300.0, c.y + 400.0, 25.0);
  const AcGeTol tol = toleranceFor(pos);
  const auto pts = buildPoints(pos, tol, kMaxArcStepAngle);
  ASSERT_EQ(pts.size(), 5u);  // start, arc start, elevation point, arc end, end
  ASSERT_TRUE(pts[2].isElevationPoint());

  for (double mod : {0.015, 0.001, 0.5}) {
    RecordingSink sink;
    tessellate(pts, tol, mod, sink);
    const auto& v = sink.vertices;
    // start, arc samples of two spans (the second without its first sample), then the repeated arc end and the end.
    EXPECT_EQ(v.front().x, pts[0].position.x);
    EXPECT_EQ(v.back().y, pts[4].position.y);
    EXPECT_EQ(v[v.size() - 2].x, pts[3].position.x);
    EXPECT_LT(std::fabs(v[v.size() - 3].x - pts[3].position.x), 1e-8);
    ArcCheck check{AcGeCircArc2d(AcGePoint2d(c.x, c.y), r)};
    check.run(v, 1, v.size() - 3);
    EXPECT_LT(check.worstOffCircle, 1e-8) << mod;
    EXPECT_LE(check.worstChord, mod + 1e-8) << mod;
    // The grade break is written as a vertex of its own, at its elevation.
    bool found = false;
    for (const auto& p : v)
      if (p.isEqualTo(pts[2].position, tol)) found = true;
    EXPECT_TRUE(found) << mod;
    // Reloading gives the same model.
    const auto kept = vora::fl::withoutDuplicates(v.data(), v.size(), tol);
    const auto again = buildPoints(kept, tol, kMaxArcStepAngle);
    ASSERT_EQ(again.size(), pts.size()) << mod;
    for (std::size_t k = 0; k < pts.size(); ++k) {
      EXPECT_EQ(again[k].type, pts[k].type);
      EXPECT_LT(again[k].position.distanceTo(pts[k].position), 1e-6) << mod << " point " << k;
      EXPECT_NEAR(again[k].bulge, pts[k].bulge, 1e-9);
    }
  }
}

TEST(FeaturelineGeometry, ShortAndZeroLengthSpans) {
  const AcGeTol tol;
  // A 2 degree arc of radius 10: the sampler needs 2 points, the minimum is 16.
  const double b = std::tan(2 * kDeg / 4);
  std::vector<FeaturelinePoint> pts = {
      FeaturelinePoint(AcGePoint3d(10, 0, 0), b, 0.0, 0),
      FeaturelinePoint(AcGePoint3d(10 * std::cos(2 * kDeg), 10 * std::sin(2 * kDeg), 1.5), 0.0, 0.0, 0),
  };
  RecordingSink sink;
  tessellate(pts, tol, 0.015, sink);
  ASSERT_EQ(sink.vertices.size(), 17u);  // 16 samples and the end point again
  EXPECT_EQ(sink.vertices[0].z, 0.0);
  EXPECT_NEAR(sink.vertices[15].z, 1.5, 1e-15);
  EXPECT_NEAR(sink.vertices[8].z, 1.5 * 8 / 15, 1e-12);

  // An elevation point at distance 0: the first span writes its start twice.
  pts.insert(pts.begin() + 1, FeaturelinePoint(AcGePoint3d(10, 0, 0.5), 0.0, 0.0, 1));
  sink.vertices.clear();
  tessellate(pts, tol, 0.015, sink);
  ASSERT_EQ(sink.vertices.size(), 2u + 15u + 1u);
  EXPECT_EQ(sink.vertices[0].x, sink.vertices[1].x);
  EXPECT_EQ(sink.vertices[0].z, 0.0);
  EXPECT_EQ(sink.vertices[1].z, 0.5);

  // An elevation point beyond the arc's end is passed over.
  pts[1].arcDistance = 100.0;
  sink.vertices.clear();
  tessellate(pts, tol, 0.015, sink);
  EXPECT_EQ(sink.vertices.size(), 17u);

  // A bulged last feature point has no arc end.
  pts = {FeaturelinePoint(AcGePoint3d(0, 0, 0), 0.0, 0.0, 0), FeaturelinePoint(AcGePoint3d(5, 0, 0), 0.3, 0.0, 0)};
  sink.vertices.clear();
  EXPECT_THROW(tessellate(pts, tol, 0.015, sink), FeaturelineError);
  EXPECT_EQ(sink.vertices.size(), 1u);
}

TEST(FeaturelineGeometry, ElevationsByLength) {
  const AcGeCircArc2d arc(AcGePoint2d(0, 0), 2.0, 0.0, kPi);
  AcGeDoubleArray params;
  EXPECT_THROW(vora::fl::elevationsByLength(arc, 0, 1, params, 0), FeaturelineError);
  params.append(0.5);
  params.append(1.0);
  params.append(1.5);
  EXPECT_THROW(vora::fl::elevationsByLength(arc, 0, 1, params, 2), FeaturelineError);
  const auto z = vora::fl::elevationsByLength(arc, 10.0, 12.0, params, 3);
  ASSERT_EQ(z.size(), 3u);
  EXPECT_EQ(z[0], 10.0);
  EXPECT_EQ(z[1], 11.0);
  EXPECT_EQ(z[2], 12.0);
  AcGeDoubleArray same;
  for (int k = 0; k < 5; ++k) same.append(0.25);
  EXPECT_EQ(vora::fl::elevationsByLength(arc, 3.0, 4.0, same, 5), (std::vector<double>{3.0, 4.0}));
  EXPECT_TRUE(std::isnan(vora::fl::interpolateElevation(5.0, 5.0, 1.0, 5.0, 2.0)));
  EXPECT_EQ(vora::fl::interpolateElevation(7.5, 5.0, 1.0, 10.0, 2.0), 1.5);
}

TEST(FeaturelineErrors, NamesAndTheUnknownValue) {
  EXPECT_STREQ(featurelineErrorName(FeaturelineError::eInvalidInputPoint), "eInvalidInputPoint");
  EXPECT_STREQ(featurelineErrorName(FeaturelineError::eNonCompatible3dPoly), "eNonCompatible3dPoly");
  EXPECT_STREQ(featurelineErrorName(FeaturelineError::eParsingError), "eParsingError");
  EXPECT_STREQ(featurelineErrorName(static_cast<FeaturelineError>(8)), "NOT FOUND");
  EXPECT_STREQ(featurelineErrorName(static_cast<FeaturelineError>(-1)), "NOT FOUND");
}

}  // namespace

TEST(FeaturelineGeometry, ExactStraightRunsAndTheScanThatSkipsThem) {
  // A dyadic run, a vertical step, a turn back, and steps whose products
  // agree once rounded but not exactly (cross product 2^-60).
  const double e30 = std::ldexp(1.0, -30), e29 = std::ldexp(1.0, -29);
  const std::vector<AcGePoint3d> pos = {
      {0, 0, 0},     {0.5, 0.25, 0}, {1, 0.5, 0},     {1.5, 0.75, 0}, {1.5, 0.75, 2},  // 0..3 exact, 4 vertical
      {2, 1, 2},     {1, 0.5, 2},                                                     // 4 -> 5 -> 6 turns back
      {0, 0, 0},     {1 + e30, 1 + e29, 0}, {2 + e30, 2 + e29 + e30, 0},              // 7..9 not exactly straight
      {1.0, 5, 0},   {1e17, 5, 0},                                                    // an inexact step
  };
  const auto runs = vora::fl::exactStraightRuns(pos);
  const std::vector<std::size_t> want = {3, 3, 3, 3, 5, 7, 7, 8, 9, 10, 10, 11};
  EXPECT_EQ(runs, want);

  // The scan gives the same answer with and without the runs, also for a run
  // too far out for the shortcut and with another global tolerance.
  std::vector<AcGePoint3d> line;
  for (int k = 0; k < 40; ++k) line.emplace_back(9990.0 + 0.5 * k, -3.0 + 0.25 * k, 0.0);
  line.emplace_back(line.back().x + 1.0, line.back().y + 2.0, 0.0);
  for (int k = 0; k < 10; ++k) line.emplace_back(line.back().x + 1.0, line.back().y, 0.0);
  const AcGeTol saved = AcGeContext::gTol;
  for (double tol : {1e-10, 1e-13, 1e-6}) {
    AcGeContext::gTol.setEqualPoint(tol);
    for (const std::vector<AcGePoint3d>* p : {&pos, const_cast<const std::vector<AcGePoint3d>*>(&line)}) {
      std::vector<std::size_t> r;
      for (std::size_t i = 0; i < p->size(); ++i)
        EXPECT_EQ(vora::fl::nextNonCollinear(*p, i, &r), vora::fl::nextNonCollinear(*p, i)) << tol << " " << i;
    }
  }
  AcGeContext::gTol = saved;
}
