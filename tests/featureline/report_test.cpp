// The diagnostics for tools: the model copied out without a message, and the
// dump through the guard.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "featureline/drawing_fixture.h"

namespace vora::test {
namespace {

class FeaturelineReportTest : public DrawingFixture {};

TEST_F(FeaturelineReportTest, ModelIsCopiedOutExactlyAndSilently) {
  // A straight run into a quarter circle, with a grade break inside the arc.
  std::vector<AcGePoint3d> vertices = {{-10, -10, 0}};
  for (const auto& p : arcVertices({0, 0, 0}, 10, -kPi / 2, 10 * kDeg, 10, 0, 0.1)) vertices.push_back(p);
  const AcDbObjectId id = addFeatureline(vertices, 0.02);
  ASSERT_EQ(vora_featureline_insert_elevpt(id, 20.0, 4.0), 0);
  printed();

  vora_featureline_point_info* points = nullptr;
  int count = -1;
  double distance = 0;
  const char* name = "untouched";
  ASSERT_EQ(vora_featureline_get_model(id, &points, &count, &distance, &name), 0);
  EXPECT_EQ(printed(), "");
  EXPECT_STREQ(name, "untouched");
  EXPECT_EQ(distance, 0.02);

  const Featureline line(id, AcDb::kForRead);
  ASSERT_EQ(static_cast<std::size_t>(count), line.numPoints());
  ASSERT_NE(points, nullptr);
  int elevationPoints = 0;
  for (int i = 0; i < count; ++i) {
    const FeaturelinePoint& want = line.points()[static_cast<std::size_t>(i)];
    const vora_featureline_point_info& got = points[i];
    EXPECT_EQ(got.x, want.position.x) << i;
    EXPECT_EQ(got.y, want.position.y) << i;
    EXPECT_EQ(got.z, want.position.z) << i;
    EXPECT_EQ(got.station, line.station(static_cast<std::size_t>(i))) << i;
    EXPECT_EQ(got.bulge, want.bulge) << i;
    EXPECT_EQ(got.arcDistance, want.arcDistance) << i;
    EXPECT_EQ(got.type, static_cast<int>(want.type)) << i;
    elevationPoints += got.type;
  }
  EXPECT_EQ(elevationPoints, 1);
  vora_free(points);
}

TEST_F(FeaturelineReportTest, ModelFailuresGiveCodeAndNameAndLeaveOutputsAlone) {
  const AcDbObjectId plain = addPolyline({{0, 0, 0}, {1, 0, 0}});
  const AcDbObjectId single = addFeatureline({{0, 0, 0}});
  // The marker on a line: marked, but no 3D polyline to build a model of.
  AcDbLine* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
  const AcDbObjectId lineId = vora_createEntity(line, nullptr);
  ASSERT_FALSE(lineId.isNull());
  AcDbObject* opened = nullptr;
  ASSERT_EQ(acdbOpenObject(opened, lineId, AcDb::kForWrite), Acad::eOk);
  writeFeaturelineXdata(opened, 0.5);
  opened->close();

  struct Case {
    AcDbObjectId id;
    int result;
    const char* name;
  };
  const Case cases[] = {
      {AcDbObjectId(), VORA_FEATURELINE_NULL_ID, "untouched"},
      {plain, 1, "untouched"},
      {single, VORA_FEATURELINE_FALSE, "eNonCompatible3dPoly"},
      {lineId, VORA_FEATURELINE_FALSE, "eDataError"},
  };
  for (const Case& c : cases) {
    vora_featureline_point_info sentinel{};
    vora_featureline_point_info* points = &sentinel;
    int count = -7;
    double distance = -7;
    const char* name = "untouched";
    EXPECT_EQ(vora_featureline_get_model(c.id, &points, &count, &distance, &name), c.result) << c.name;
    EXPECT_STREQ(name, c.name);
    EXPECT_EQ(points, &sentinel);
    EXPECT_EQ(count, -7);
    EXPECT_EQ(distance, -7);
    EXPECT_EQ(vorahost::openObjectCount(), 0u) << c.name;
  }
  // Without an errorName to write, a failure is still only its code.
  EXPECT_EQ(vora_featureline_get_model(single, nullptr, nullptr, nullptr, nullptr), VORA_FEATURELINE_FALSE);
  EXPECT_EQ(printed(), "");
}

TEST_F(FeaturelineReportTest, DumpPrintsTheModelOrTheGuardsMessages) {
  const AcDbObjectId id = addFeatureline({{100, 0, 0}, {103, 4, 1}}, 0.25);
  const AcDbObjectId single = addFeatureline({{0, 0, 0}});
  EXPECT_EQ(vora_featureline_dump(id), 0);
  EXPECT_EQ(printed(),
            "Featureline: \nNumber of feature points: 2, mid ordinate distance: 0.250000\nFeature points: \n"
            "    p0: (100.000000000, 0.000000000, 0.000000000) t:V station: 0.000000 bulge: 0.000000000"
            " length: 5.000000 grade: 0.200000 \n"
            "    p1: (103.000000000, 4.000000000, 1.000000000) t:V station: 5.000000 bulge: 0.000000000"
            " length: 0.000000 grade: 0.000000 \n");
  EXPECT_EQ(vora_featureline_dump(AcDbObjectId()), VORA_FEATURELINE_NULL_ID);
  EXPECT_EQ(printed(), "\nAn error (-10) occured during the execution.\n;");
  EXPECT_EQ(vora_featureline_dump(single), VORA_FEATURELINE_OPEN_FAILED);
  EXPECT_EQ(printed(), "\nA featureline error (6) occured.\n;\nAn error (-11) occured during the execution.\n;");
}

}  // namespace
}  // namespace vora::test
