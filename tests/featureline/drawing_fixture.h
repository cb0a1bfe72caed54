// A drawing for feature-line tests: a database set as the working one with
// the feature-line application registered, the command line captured, the
// default mid ordinate distance restored, and a check that nothing is left open.
#ifndef VORA_TESTS_FEATURELINE_DRAWING_FIXTURE_H
#define VORA_TESTS_FEATURELINE_DRAWING_FIXTURE_H

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "featureline/featureline.h"
#include "vora/arx.h"
#include "vora/arx/dbsymtb.h"
#include "vora/arx/vorahost.h"
#include "vora/vora.h"

namespace vora::test {

class DrawingFixture : public ::testing::Test {
protected:
  void SetUp() override {
    savedWorking_ = acdbHostApplicationServices()->workingDatabase();
    db_ = std::make_unique<AcDbDatabase>(true, true);
    acdbHostApplicationServices()->setWorkingDatabase(db_.get());
    acdbRegApp(kFeaturelineAppName);
    savedDefault_ = defaultMidOrdinateDistance();
    savedSink_ = vorahost::setPrintSink([this](const ACHAR* text) { printed_ += text; });
  }
  void TearDown() override {
    EXPECT_EQ(vorahost::openObjectCount(), 0u) << "objects left open";
    vorahost::setPrintSink(savedSink_);
    setDefaultMidOrdinateDistance(savedDefault_);
    acdbHostApplicationServices()->setWorkingDatabase(savedWorking_);
    db_.reset();
  }

  // A simple 3D polyline in model space, with the marker when midOrdinate is given.
  AcDbObjectId addPolyline(const std::vector<AcGePoint3d>& vertices, const double* midOrdinate = nullptr,
                           AcDb::Poly3dType type = AcDb::k3dSimplePoly) {
    AcGePoint3dArray pts;
    for (const auto& p : vertices) pts.append(p);
    auto* pl = new AcDb3dPolyline(type, pts);
    AcDbBlockTableRecord* space = nullptr;
    EXPECT_EQ(acdbOpenObject(space, db_->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(space->appendAcDbEntity(id, pl), Acad::eOk);
    space->close();
    if (midOrdinate != nullptr) writeFeaturelineXdata(pl, *midOrdinate);
    pl->close();
    return id;
  }
  AcDbObjectId addFeatureline(const std::vector<AcGePoint3d>& vertices, double midOrdinate = 0.015) {
    return addPolyline(vertices, &midOrdinate);
  }

  std::vector<AcGePoint3d> verticesOf(AcDbObjectId id) {
    std::vector<AcGePoint3d> out;
    AcDb3dPolyline* pl = nullptr;
    EXPECT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eOk);
    if (pl == nullptr) return out;
    std::unique_ptr<AcDbObjectIterator> it(pl->vertexIterator());
    for (it->start(); !it->done(); it->step()) {
      AcDb3dPolylineVertex* v = nullptr;
      if (acdbOpenObject(v, it->objectId(), AcDb::kForRead) == Acad::eOk) {
        out.push_back(v->position());
        v->close();
      }
    }
    pl->close();
    return out;
  }

  std::string printed() {
    std::string narrow(printed_.begin(), printed_.end());
    printed_.clear();
    return narrow;
  }

  std::unique_ptr<AcDbDatabase> db_;

private:
  AcDbDatabase* savedWorking_ = nullptr;
  double savedDefault_ = 0.0;
  vorahost::PrintSink savedSink_;
  std::wstring printed_;
};

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

// count vertices on a circle about c from angle a0 in steps of step (negative:
// clockwise), rising from z0 by grade per unit of arc length.
inline std::vector<AcGePoint3d> arcVertices(const AcGePoint3d& c, double r, double a0, double step, int count,
                                            double z0, double grade) {
  std::vector<AcGePoint3d> out;
  for (int k = 0; k < count; ++k) {
    const double a = a0 + step * k;
    out.emplace_back(c.x + r * std::cos(a), c.y + r * std::sin(a), z0 + grade * r * std::fabs(step) * k);
  }
  return out;
}

}  // namespace vora::test

#endif
