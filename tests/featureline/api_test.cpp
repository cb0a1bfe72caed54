#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "drawing_fixture.h"
#include "vora/vora.h"

namespace {

using vora::test::arcVertices;
using vora::test::kDeg;

const char* const kOpenFailed = "\nAn error (-11) occured during the execution.\n;";
const char* const kNullId = "\nAn error (-10) occured during the execution.\n;";

class FeaturelineApi : public vora::test::DrawingFixture {
protected:
  // A curve of radius 95 at survey coordinates between two tangents, with a
  // vertical step inside the first tangent (two vertices above one point).
  // Points: 0 start, 1 and 2 the step, 3 a tangent vertex, 4 arc start (station 120), 5 arc end, 6 end.
  std::vector<AcGePoint3d> alignment() {
    const AcGePoint3d c(268400.0, 5540210.0, 0.0);
    std::vector<AcGePoint3d> v;
    v.emplace_back(c.x - 120.0, c.y - 95.0, 310.0);
    v.emplace_back(c.x - 60.0, c.y - 95.0, 310.5);
    v.emplace_back(c.x - 60.0, c.y - 95.0, 311.0);
    v.emplace_back(c.x - 30.0, c.y - 95.0, 311.1);
    auto arc = arcVertices(c, 95.0, -90 * kDeg, 7.5 * kDeg, 13, 311.2, 0.012);
    v.insert(v.end(), arc.begin(), arc.end());
    v.emplace_back(c.x + 95.0, c.y + 80.0, 313.0);
    return v;
  }
  void expectNothingOpen() { EXPECT_EQ(vorahost::openObjectCount(), 0u); }
};

TEST_F(FeaturelineApi, NullIdsAndFailedOpenings) {
  double d = 0.0;
  EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(AcDbObjectId::kNull, &d), -10);
  EXPECT_EQ(printed(), kNullId);
  EXPECT_EQ(vora_featureline_insert_elevpt(AcDbObjectId::kNull, 1.0, 1.0), -10);
  EXPECT_EQ(printed(), kNullId);
  EXPECT_EQ(vora_featureline_convert_to(AcDbObjectId::kNull, 0.1), -10);
  EXPECT_EQ(printed(), "");

  const AcDbObjectId one = addFeatureline({AcGePoint3d(268400.0, 5540210.0, 3.0)});
  EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(one, &d), -11);
  EXPECT_EQ(printed(), std::string("\nA featureline error (6) occured.\n;") + kOpenFailed);
  expectNothingOpen();

  // A polyline open for write elsewhere cannot be opened again: the host's
  // status is the inner cause.
  const AcDbObjectId id = addFeatureline(alignment());
  AcDb3dPolyline* pl = nullptr;
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(vora_featureline_insert_elevpt(id, 10.0, 1.0), -11);
  EXPECT_EQ(printed(), std::string("\nA featureline error (3) occured.\n;") + kOpenFailed);
  pl->close();
  expectNothingOpen();
}

TEST_F(FeaturelineApi, ConvertTo) {
  const AcDbObjectId id = addPolyline(alignment());
  EXPECT_EQ(vora_featureline_convert_to(id, 0.0), -200);
  EXPECT_EQ(vora_featureline_convert_to(id, 1e-10), -200);
  EXPECT_EQ(vora_featureline_convert_to(id, -0.5), 0);
  EXPECT_EQ(vora_featureline_convert_to(id, 0.3), -14);
  double d = 0.0;
  EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(id, &d), 0);
  EXPECT_EQ(d, -0.5);
  EXPECT_EQ(printed(), "");
  expectNothingOpen();

  AcDbLine* segment = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
  AcDbBlockTableRecord* space = nullptr;
  ASSERT_EQ(acdbOpenObject(space, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  AcDbObjectId lineId;
  space->appendAcDbEntity(lineId, segment);
  segment->close();
  space->close();
  EXPECT_EQ(vora_featureline_convert_to(lineId, 0.1), -13);
  expectNothingOpen();
}

TEST_F(FeaturelineApi, DefaultMidOrdinateDistance) {
  double d = 0.0;
  EXPECT_EQ(vora_featureline_get_default_mid_ordinate_dist(&d), 0);
  EXPECT_EQ(d, 0.015);
  EXPECT_EQ(vora_featureline_set_default_mid_ordinate_dist(-2.0), 0);
  EXPECT_EQ(vora_featureline_get_default_mid_ordinate_dist(&d), 0);
  EXPECT_EQ(d, -2.0);
  const AcDbObjectId plain = addPolyline(alignment());
  EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(plain, &d), 0);
  EXPECT_EQ(d, -2.0);
  expectNothingOpen();
}

TEST_F(FeaturelineApi, GetElevationPoints) {
  const AcDbObjectId three = addFeatureline(
      {AcGePoint3d(268400.0, 5540210.0, 1.0), AcGePoint3d(268403.0, 5540214.0, 2.0), AcGePoint3d(268403.0, 5540224.0, 4.0)});
  double* coords = nullptr;
  int* types = nullptr;
  int nc = 0, nt = 0;
  ASSERT_EQ(vora_featureline_get_elevpts(three, &coords, &nc, &types, &nt), 0);
  EXPECT_EQ(nc, 12);
  EXPECT_EQ(nt, 3);
  EXPECT_EQ(coords[4], 268403.0);
  EXPECT_EQ(coords[7], 5.0);
  EXPECT_EQ(coords[11], 15.0);
  EXPECT_EQ(types[2], 0);
  vora_free(coords);
  vora_free(types);
  vora_free(nullptr);

  const AcDbObjectId id = addFeatureline(alignment());
  ASSERT_EQ(vora_featureline_get_elevpts(id, &coords, &nc, &types, &nt), 0);
  ASSERT_EQ(nc, 4 * nt);
  int elevationPoints = 0;
  for (int k = 0; k < nt; ++k) elevationPoints += types[k];
  EXPECT_EQ(elevationPoints, 0);  // a constant grade along the arc
  ASSERT_EQ(nt, 7);
  EXPECT_EQ(coords[4 * 2 + 3], 60.0);  // the step adds no station
  EXPECT_NEAR(coords[4 * 4 + 3], 120.0, 1e-9);
  vora_free(coords);
  vora_free(types);
  expectNothingOpen();
}

TEST_F(FeaturelineApi, EditingResultCodes) {
  const AcDbObjectId id = addFeatureline(alignment());
  // Inside the arc: an elevation point.
  const double arcStart = 120.0;
  ASSERT_EQ(vora_featureline_insert_elevpt(id, arcStart + 95.0 * 30 * kDeg, 312.5), 0);
  expectNothingOpen();
  double* coords = nullptr;
  int* types = nullptr;
  int nc = 0, nt = 0;
  ASSERT_EQ(vora_featureline_get_elevpts(id, &coords, &nc, &types, &nt), 0);
  ASSERT_EQ(nt, 8);
  EXPECT_EQ(types[5], 1);
  EXPECT_EQ(coords[4 * 5 + 2], 312.5);
  EXPECT_NEAR(coords[4 * 5 + 3], arcStart + 95.0 * 30 * kDeg, 1e-8);
  vora_free(coords);
  vora_free(types);
  EXPECT_EQ(vora_featureline_insert_elevpt(id, 1e6, 1.0), -4);
  EXPECT_EQ(vora_featureline_insert_feature_point(id, 0, 0, 0, -3.0, 0.0), -4);

  const int notElevation[] = {2};
  EXPECT_EQ(vora_featureline_erase_elevpt(id, notElevation, 1), -3);
  const int outOfRange[] = {5, 8};
  EXPECT_EQ(vora_featureline_erase_elevpt(id, outOfRange, 2), -16);
  EXPECT_EQ(vora_featureline_erase_feature_point(id, outOfRange, 2), -16);
  const double elevations[] = {1.0, 2.0};
  EXPECT_EQ(vora_featureline_set_elevpt(id, outOfRange, elevations, 2), -16);
  const int negative[] = {-1};
  EXPECT_EQ(vora_featureline_set_elevpt(id, negative, elevations, 1), -16);
  EXPECT_EQ(printed(), "");
  ASSERT_EQ(vora_featureline_get_elevpts(id, &coords, &nc, &types, &nt), 0);
  EXPECT_EQ(nt, 8);  // nothing changed
  vora_free(coords);
  vora_free(types);

  const int elevationPoint[] = {5};
  EXPECT_EQ(vora_featureline_erase_elevpt(id, elevationPoint, 1), 0);
  // The two vertices above one plan point: changing either is refused (the
  // segment between them has no plan length), so the first change is undone.
  const int pair[] = {0, 2};
  const double raise[] = {300.0, 400.0};
  EXPECT_EQ(vora_featureline_set_elevpt(id, pair, raise, 2), -1);
  ASSERT_EQ(vora_featureline_get_elevpts(id, &coords, &nc, &types, &nt), 0);
  EXPECT_EQ(coords[2], 310.0);
  EXPECT_EQ(coords[4 * 2 + 2], 311.0);
  vora_free(coords);
  vora_free(types);
  const int first[] = {0};
  EXPECT_EQ(vora_featureline_set_elevpt(id, first, raise, 1), 0);

  int interp[] = {5, 0};
  EXPECT_EQ(vora_featureline_interpolate(id, 100.0, 200.0, interp, 2), 0);
  EXPECT_EQ(interp[0], 0);
  EXPECT_EQ(interp[1], 5);
  EXPECT_EQ(vora_featureline_set_mid_ordinate_dist(id, 1, std::numeric_limits<double>::quiet_NaN()), -100);
  EXPECT_EQ(vora_featureline_set_mid_ordinate_dist(id, 1, 0.002), 0);
  double d = 0.0;
  EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(id, &d), 0);
  EXPECT_EQ(d, 0.002);
  const int featurePoints[] = {1, 2};
  EXPECT_EQ(vora_featureline_erase_feature_point(id, featurePoints, 2), 0);
  ASSERT_EQ(vora_featureline_get_elevpts(id, &coords, &nc, &types, &nt), 0);
  EXPECT_EQ(nt, 5);
  EXPECT_EQ(coords[2], 100.0);
  EXPECT_EQ(coords[4 * 4 - 2], 200.0);  // the arc end, interpolated
  vora_free(coords);
  vora_free(types);
  EXPECT_EQ(printed(), "");
  expectNothingOpen();
}

}  // namespace
