#include "featureline/featureline.h"

#include <gtest/gtest.h>

#include <cmath>

#include "drawing_fixture.h"
#include "featureline/geometry.h"

namespace {

using vora::test::arcVertices;
using vora::test::kDeg;
using vora::test::kPi;

class FeaturelineModel : public vora::test::DrawingFixture {
protected:
  // A road edge at grid coordinates: tangent, a 60 degree curve of radius 180
  // drawn at 4 degree steps with a grade break at its 6th vertex, tangent.
  std::vector<AcGePoint3d> roadEdge() {
    const AcGePoint3d c(431250.0, 872340.0, 0.0);
    const double r = 180.0;
    std::vector<AcGePoint3d> v;
    v.emplace_back(c.x + r, c.y - 250.0, 40.0);
    auto arc = arcVertices(c, r, 0.0, 4 * kDeg, 16, 42.0, 0.0);
    for (int k = 0; k < 16; ++k) {
      const double s = r * 4 * kDeg * k, s5 = r * 4 * kDeg * 5;
      arc[k].z = 42.0 + (k <= 5 ? 0.025 * s : 0.025 * s5 - 0.01 * (s - s5));
    }
    v.insert(v.end(), arc.begin(), arc.end());
    v.emplace_back(c.x + r * std::cos(60 * kDeg) - 150.0 * std::sin(60 * kDeg),
                   c.y + r * std::sin(60 * kDeg) + 150.0 * std::cos(60 * kDeg), 41.0);
    return v;
  }
};

TEST_F(FeaturelineModel, OpensFromItsIdAndClosesEverything) {
  const AcDbObjectId id = addFeatureline(roadEdge(), 0.02);
  {
    Featureline line(id, AcDb::kForRead);
    EXPECT_EQ(line.polylineId(), id);
    EXPECT_EQ(line.midOrdinateDistance(), 0.02);
    EXPECT_EQ(line.maxArcStepAngle(), 0.5235987755982988);
    EXPECT_EQ(line.tolerance().equalPoint(), 1e-6);  // 12 - 5.9 -> 6
    EXPECT_EQ(line.tolerance().equalVector(), AcGeTol().equalVector());
    EXPECT_EQ(line.numVertexObjects(), 18u);
    ASSERT_EQ(line.numPoints(), 5u);
    const auto& p = line.points();
    EXPECT_TRUE(p[0].isFeaturePoint() && p[1].isFeaturePoint() && p[3].isFeaturePoint() && p[4].isFeaturePoint());
    EXPECT_TRUE(p[2].isElevationPoint());
    EXPECT_NEAR(p[1].bulge, std::tan(60 * kDeg / 4), 1e-9);
    EXPECT_NEAR(line.station(1), 250.0, 1e-9);
    EXPECT_NEAR(line.station(2), 250.0 + 180.0 * 20 * kDeg, 1e-9);
    EXPECT_NEAR(line.station(3), 250.0 + 180.0 * kPi / 3, 1e-9);
    EXPECT_NEAR(line.length(), 250.0 + 180.0 * kPi / 3 + 150.0, 1e-9);
    EXPECT_THROW(line.station(5), FeaturelineError);
    EXPECT_GT(vorahost::openObjectCount(), 0u);
  }
  EXPECT_EQ(vorahost::openObjectCount(), 0u);

  // Without the marker the default in force at opening is used.
  setDefaultMidOrdinateDistance(0.5);
  const AcDbObjectId plain = addPolyline(roadEdge());
  Featureline line(plain, AcDb::kForWrite);
  EXPECT_EQ(line.midOrdinateDistance(), 0.5);
  EXPECT_TRUE(line.polyline()->isWriteEnabled());
  line.release();
  EXPECT_EQ(vorahost::openObjectCount(), 0u);
}

TEST_F(FeaturelineModel, FailedOpeningsCloseWhatTheyOpened) {
  const AcDbObjectId one = addFeatureline({AcGePoint3d(500000, 500000, 1)});
  try {
    Featureline line(one, AcDb::kForRead);
    FAIL();
  } catch (FeaturelineError e) {
    EXPECT_EQ(e, FeaturelineError::eNonCompatible3dPoly);
  }
  EXPECT_EQ(vorahost::openObjectCount(), 0u);

  // Not a 3D polyline: the open itself fails.
  AcDbLine* segment = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
  AcDbBlockTableRecord* space = nullptr;
  ASSERT_EQ(acdbOpenObject(space, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  AcDbObjectId lineId;
  space->appendAcDbEntity(lineId, segment);
  segment->close();
  space->close();
  try {
    Featureline line(lineId, AcDb::kForRead);
    FAIL();
  } catch (FeaturelineError e) {
    EXPECT_EQ(e, FeaturelineError::eDataError);
  }

  // From an open polyline.
  EXPECT_THROW(Featureline(static_cast<AcDb3dPolyline*>(nullptr), AcDb::kForRead), FeaturelineError);
  const AcDbObjectId spline = addPolyline(roadEdge(), nullptr, AcDb::k3dQuadSplinePoly);
  AcDb3dPolyline* pl = nullptr;
  ASSERT_EQ(acdbOpenObject(pl, spline, AcDb::kForRead), Acad::eOk);
  try {
    Featureline line(pl, AcDb::kForRead);
    FAIL();
  } catch (FeaturelineError e) {
    EXPECT_EQ(e, FeaturelineError::eNonCompatible3dPoly);
  }
  pl->close();
  const AcDbObjectId good = addFeatureline(roadEdge());
  ASSERT_EQ(acdbOpenObject(pl, good, AcDb::kForRead), Acad::eOk);
  {
    Featureline line(pl, AcDb::kForRead);
    EXPECT_TRUE(line.polylineId().isNull());
    EXPECT_EQ(line.numPoints(), 5u);
  }
  // The model took over the caller's opening.
  EXPECT_EQ(vorahost::openObjectCount(), 0u);
}

TEST_F(FeaturelineModel, MarkerReadWriteAndTheFeaturelineTest) {
  const AcDbObjectId id = addPolyline(roadEdge());
  AcDb3dPolyline* pl = nullptr;
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eOk);
  double d = -1.0;
  EXPECT_FALSE(readFeaturelineXdata(pl, &d));
  EXPECT_EQ(d, -1.0);
  EXPECT_FALSE(isFeatureline(pl));
  EXPECT_TRUE(writeFeaturelineXdata(pl, 0.125));  // upgrades the read opening
  EXPECT_TRUE(pl->isWriteEnabled());
  EXPECT_TRUE(readFeaturelineXdata(pl, &d));
  EXPECT_EQ(d, 0.125);
  EXPECT_TRUE(isFeatureline(pl));
  resbuf* rb = pl->xData(kFeaturelineAppName);
  ASSERT_NE(rb, nullptr);
  EXPECT_EQ(rb->restype, 1001);
  ASSERT_NE(rb->rbnext, nullptr);
  EXPECT_EQ(rb->rbnext->restype, 1040);
  EXPECT_EQ(rb->rbnext->rbnext, nullptr);
  acutRelRb(rb);
  writeFeaturelineXdata(pl, 0.25);  // replaces, never appends
  rb = pl->xData(kFeaturelineAppName);
  EXPECT_EQ(rb->rbnext->resval.rreal, 0.25);
  EXPECT_EQ(rb->rbnext->rbnext, nullptr);
  acutRelRb(rb);
  pl->close();
  EXPECT_FALSE(readFeaturelineXdata(nullptr, &d));
  EXPECT_FALSE(writeFeaturelineXdata(nullptr, 1.0));

  const double mod = 0.015;
  const AcDbObjectId single = addPolyline({AcGePoint3d(1, 2, 3)}, &mod);
  ASSERT_EQ(acdbOpenObject(pl, single, AcDb::kForRead), Acad::eOk);
  EXPECT_FALSE(isFeatureline(pl));  // one vertex
  pl->close();
  const AcDbObjectId spline = addPolyline(roadEdge(), &mod, AcDb::k3dCubicSplinePoly);
  ASSERT_EQ(acdbOpenObject(pl, spline, AcDb::kForRead), Acad::eOk);
  EXPECT_FALSE(isFeatureline(pl));
  pl->close();
}

TEST_F(FeaturelineModel, DumpFormats) {
  const AcDbObjectId id = addFeatureline({AcGePoint3d(100000.5, 200000.25, 10.0), AcGePoint3d(100030.5, 200040.25, 12.5)});
  Featureline line(id, AcDb::kForRead);
  line.dump();
  EXPECT_EQ(printed(),
            "Featureline: \n"
            "Number of feature points: 2, mid ordinate distance: 0.015000\n"
            "Feature points: \n"
            "    p0: (100000.500000000, 200000.250000000, 10.000000000) t:V station: 0.000000 bulge: 0.000000000 "
            "length: 50.000000 grade: 0.050000 \n"
            "    p1: (100030.500000000, 200040.250000000, 12.500000000) t:V station: 50.000000 bulge: 0.000000000 "
            "length: 0.000000 grade: 0.000000 \n");
}

TEST_F(FeaturelineModel, MovingPoints) {
  const AcDbObjectId id = addFeatureline(roadEdge());
  Featureline line(id, AcDb::kForWrite);
  const auto before = line.points();
  // An elevation point moves only vertically.
  EXPECT_FALSE(line.canMove(2, AcGeVector3d(0.01, 0, 0)));
  EXPECT_TRUE(line.canMove(2, AcGeVector3d(5e-7, -5e-7, 3)));
  EXPECT_FALSE(line.movePoint(2, AcGeVector3d(0.01, 0, 0)));
  EXPECT_TRUE(line.movePoint(2, AcGeVector3d(0, 0, 1.5)));
  EXPECT_EQ(line.points()[2].position.z, before[2].position.z + 1.5);
  EXPECT_TRUE(line.movePoint(2, AcGeVector3d(0, 0, 0)));
  EXPECT_THROW(line.canMove(9, AcGeVector3d(0, 0, 1)), FeaturelineError);
  EXPECT_THROW(line.movePoint(9, AcGeVector3d(0, 0, 1)), FeaturelineError);
  EXPECT_THROW(line.setPointPosition(9, AcGePoint3d(0, 0, 1)), FeaturelineError);
  // A feature point cannot land on its neighbour's plan position.
  const AcGePoint3d next = line.points()[1].position;
  EXPECT_FALSE(line.setPointPosition(0, AcGePoint3d(next.x, next.y, 0.0)));
  EXPECT_TRUE(line.setPointPosition(0, AcGePoint3d(before[0].position.x + 5, before[0].position.y, 30.0)));
  EXPECT_EQ(line.points()[0].position.z, 30.0);
  // NaN coordinates leave the point where it was, and still write back.
  EXPECT_TRUE(line.setPointPosition(0, AcGePoint3d(before[0].position.x + 5, before[0].position.y, std::nan(""))));
  EXPECT_EQ(line.points()[0].position.z, 30.0);
  line.release();

  // What was written loads as the edited model.
  Featureline again(id, AcDb::kForRead);
  ASSERT_EQ(again.numPoints(), 5u);
  EXPECT_NEAR(again.points()[2].position.z, before[2].position.z + 1.5, 1e-9);
  EXPECT_EQ(again.points()[0].position.z, 30.0);
  EXPECT_NEAR(again.points()[1].bulge, before[1].bulge, 1e-9);
}

TEST_F(FeaturelineModel, InsertingAndErasing) {
  const AcDbObjectId id = addFeatureline(roadEdge());
  Featureline line(id, AcDb::kForWrite);
  line.writeBack();
  const std::size_t vertices = line.numVertexObjects();

  // On the first tangent: a feature point of its own, one vertex more.
  ASSERT_TRUE(line.insertElevationPoint(100.0, 45.0));
  ASSERT_EQ(line.numPoints(), 6u);
  EXPECT_TRUE(line.points()[1].isFeaturePoint());
  EXPECT_NEAR(line.station(1), 100.0, 1e-9);
  EXPECT_EQ(line.points()[1].position.z, 45.0);
  EXPECT_EQ(line.numVertexObjects(), vertices + 1);

  // Inside the curve, before its grade break: an elevation point on the arc.
  const AcGePoint3d centre(431250.0, 872340.0, 0.0);
  const double s10 = line.station(2) + 180.0 * 10 * kDeg;
  ASSERT_TRUE(line.insertElevationPoint(s10, 43.0));
  ASSERT_EQ(line.numPoints(), 7u);
  EXPECT_TRUE(line.points()[3].isElevationPoint());
  EXPECT_NEAR(line.points()[3].arcDistance, 180.0 * 10 * kDeg, 1e-9);
  EXPECT_NEAR(std::hypot(line.points()[3].position.x - centre.x, line.points()[3].position.y - centre.y), 180.0, 1e-8);
  EXPECT_NEAR(line.station(3), s10, 1e-9);

  // After the last grade break the closing feature point is the first point
  // past the station: the arc is taken to the feature point after it.
  const double s40 = line.station(2) + 180.0 * 40 * kDeg;
  ASSERT_TRUE(line.insertElevationPoint(s40, 43.5));
  ASSERT_EQ(line.numPoints(), 8u);
  const auto& p = line.points();
  ASSERT_TRUE(p[5].isElevationPoint());
  const AcGeCircArc2d quirk = vora::fl::segmentArc(p[2].position, p[7].position, p[2].bulge);
  const AcGePoint2d expected = quirk.evalPoint(quirk.paramAtLength(quirk.startAng(), 180.0 * 40 * kDeg));
  EXPECT_EQ(p[5].position.x, expected.x);
  EXPECT_EQ(p[5].position.y, expected.y);
  EXPECT_GT(std::fabs(std::hypot(p[5].position.x - centre.x, p[5].position.y - centre.y) - 180.0), 1.0);

  EXPECT_FALSE(line.insertElevationPoint(-1.0, 1.0));
  EXPECT_FALSE(line.insertElevationPoint(line.length() + 1e-6, 1.0));
  EXPECT_FALSE(line.eraseElevationPoint(1));  // a feature point
  EXPECT_FALSE(line.eraseElevationPoint(70));

  // Appending with a bulge is refused; without, accepted.
  const AcGePoint3d end = line.points().back().position;
  EXPECT_FALSE(line.insertFeaturePoint(AcGePoint3d(end.x + 10, end.y, 1.0), line.numPoints(), 0.2));
  EXPECT_FALSE(line.insertFeaturePointAtStation(AcGePoint3d(end.x + 10, end.y, 1.0), -0.5, 0.0));
  ASSERT_TRUE(line.insertFeaturePointAtStation(AcGePoint3d(end.x + 10, end.y, 1.0), line.length() + 5, 0.0));
  ASSERT_EQ(line.numPoints(), 9u);
  // Coincident with the feature point before it: refused.
  EXPECT_FALSE(line.insertFeaturePoint(end, 8, 0.0));

  // Erasing the tangent point again joins the straight segments.
  ASSERT_TRUE(line.eraseFeaturePoint(1));
  EXPECT_EQ(line.numPoints(), 8u);
  EXPECT_NEAR(line.station(1), 250.0, 1e-9);
  // Erasing the last point ends the line at the feature point before it,
  // straight even when that one started an arc.
  ASSERT_TRUE(line.eraseFeaturePoint(7));
  ASSERT_TRUE(line.eraseFeaturePoint(6));
  ASSERT_EQ(line.numPoints(), 6u);
  EXPECT_FALSE(line.eraseFeaturePoint(6));
  ASSERT_TRUE(line.eraseFeaturePoint(5));
  ASSERT_EQ(line.numPoints(), 2u);
  EXPECT_EQ(line.points()[1].bulge, 0.0);
  line.release();
  EXPECT_EQ(verticesOf(id).size(), 2u);
}

TEST_F(FeaturelineModel, NewVertexSlotsTakeThePolylinesProperties) {
  const AcDbObjectId id = addFeatureline(roadEdge());
  AcDb3dPolyline* pl = nullptr;
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForWrite), Acad::eOk);
  ASSERT_EQ(pl->setColorIndex(3), Acad::eOk);
  pl->close();
  {
    Featureline line(id, AcDb::kForWrite);
    const std::size_t before = line.numVertexObjects();
    ASSERT_TRUE(line.setMidOrdinateDistance(0.001, true));
    ASSERT_GT(line.numVertexObjects(), before);
  }
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eOk);
  std::unique_ptr<AcDbObjectIterator> it(pl->vertexIterator());
  int vertices = 0;
  for (it->start(); !it->done(); it->step()) {
    AcDbEntity* v = nullptr;
    ASSERT_EQ(acdbOpenObject(v, it->objectId(), AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(v->colorIndex(), 3);
    v->close();
    ++vertices;
  }
  pl->close();
  EXPECT_GT(vertices, 18);
}

TEST_F(FeaturelineModel, ErasingTheEndOfATwoPointLineLeavesNoFeatureline) {
  const AcDbObjectId id = addFeatureline({AcGePoint3d(700000, 100000, 5), AcGePoint3d(700100, 100000, 6)});
  {
    Featureline line(id, AcDb::kForWrite);
    ASSERT_TRUE(line.eraseFeaturePoint(1));
    EXPECT_EQ(line.numPoints(), 1u);
    EXPECT_EQ(line.numVertexObjects(), 1u);
  }
  EXPECT_EQ(verticesOf(id).size(), 1u);
  EXPECT_THROW(Featureline(id, AcDb::kForRead), FeaturelineError);
}

TEST_F(FeaturelineModel, MidOrdinateDistance) {
  const AcDbObjectId id = addFeatureline(roadEdge(), 0.015);
  Featureline line(id, AcDb::kForWrite);
  const std::size_t fine = line.numVertexObjects();
  EXPECT_FALSE(line.setMidOrdinateDistance(std::nan(""), true));
  EXPECT_FALSE(line.setMidOrdinateDistance(1e-6, true));  // not above equalPoint
  EXPECT_TRUE(line.setMidOrdinateDistance(0.015 + 1e-11, true));
  EXPECT_EQ(line.numVertexObjects(), fine);  // nothing rewritten
  EXPECT_EQ(line.midOrdinateDistance(), 0.015);
  EXPECT_TRUE(line.setMidOrdinateDistance(0.0005, true));
  EXPECT_EQ(line.midOrdinateDistance(), 0.0005);
  EXPECT_GT(line.numVertexObjects(), fine);
  // The new vertices stay on the curve, chords within the distance.
  line.release();
  const auto v = verticesOf(id);
  double worstChord = 0.0;
  for (std::size_t k = 2; k + 3 < v.size(); ++k) {
    EXPECT_NEAR(std::hypot(v[k].x - 431250.0, v[k].y - 872340.0), 180.0, 1e-8);
    const double mx = (v[k].x + v[k + 1].x) / 2, my = (v[k].y + v[k + 1].y) / 2;
    worstChord = std::max(worstChord, 180.0 - std::hypot(mx - 431250.0, my - 872340.0));
  }
  EXPECT_LE(worstChord, 0.0005 + 1e-9);
  EXPECT_GT(worstChord, 0.0002);
  Featureline again(id, AcDb::kForRead);
  EXPECT_EQ(again.midOrdinateDistance(), 0.0005);
  EXPECT_EQ(again.numPoints(), 5u);
}

TEST_F(FeaturelineModel, InterpolationWithOneIndexKeepsThePoint) {
  const AcDbObjectId id = addFeatureline(roadEdge());
  Featureline line(id, AcDb::kForWrite);
  const double z = line.points()[3].position.z;
  std::vector<int> one{3};
  EXPECT_TRUE(line.interpolate(one, 1.0, 2.0));
  EXPECT_EQ(line.points()[3].position.z, z);
  std::vector<int> many{4, 0, 3};
  EXPECT_TRUE(line.interpolate(many, 10.0, 20.0));
  EXPECT_EQ(many, (std::vector<int>{0, 3, 4}));
  EXPECT_EQ(line.points()[0].position.z, 10.0);
  EXPECT_EQ(line.points()[4].position.z, 20.0);
  EXPECT_NEAR(line.points()[3].position.z, 10.0 + 10.0 * line.station(3) / line.station(4), 1e-12);
}

}  // namespace
