#include "featureline/featureline.h"

#include <cmath>
#include <memory>

#include "featureline/geometry.h"
#include "featureline/guard.h"

namespace {

double gDefaultMidOrdinateDistance = vora::fl::kDefaultMidOrdinateDistance;

// The vertex slots of a write-back: existing vertex objects first, then new
// vertices appended to the polyline.
class VertexSlots : public vora::fl::VertexSink {
public:
  VertexSlots(AcDb3dPolyline* polyline, std::vector<AcDb3dPolylineVertex*>& vertices)
      : mPolyline(polyline), mVertices(vertices) {}

  void put(const AcGePoint3d& p) override {
    AcDb3dPolylineVertex* v = nullptr;
    if (mCursor >= mVertices.size()) {
      v = new (std::nothrow) AcDb3dPolylineVertex();
      if (v == nullptr) throw Acad::eOutOfMemory;
      v->setPropertiesFrom(mPolyline);
      const Acad::ErrorStatus es = mPolyline->appendVertex(v);
      if (es != Acad::eOk) {
        delete v;
        throw es;
      }
      mVertices.push_back(v);
    } else {
      v = mVertices[mCursor];
      if (v == nullptr) throw Acad::eNullPtr;
      if (!v->objectId().isNull() && !v->isWriteEnabled()) v->upgradeOpen();
    }
    ++mCursor;
    v->setPosition(p);
  }

  std::size_t cursor() const { return mCursor; }

private:
  AcDb3dPolyline* mPolyline;
  std::vector<AcDb3dPolylineVertex*>& mVertices;
  std::size_t mCursor = 0;
};

}  // namespace

double defaultMidOrdinateDistance() { return gDefaultMidOrdinateDistance; }
void setDefaultMidOrdinateDistance(double distance) { gDefaultMidOrdinateDistance = distance; }

// ---- persistence of the marker -----------------------------------------------

bool readFeaturelineXdata(const AcDbObject* polyline, double* outDistance) {
  if (polyline == nullptr) return false;
  resbuf* list = polyline->xData(kFeaturelineAppName);
  if (list == nullptr) return false;
  // The value after the application name is taken whatever its group code;
  // a marker without it (never written so) leaves the distance alone.
  if (outDistance != nullptr && list->rbnext != nullptr) *outDistance = list->rbnext->resval.rreal;
  acutRelRb(list);
  return true;
}

bool writeFeaturelineXdata(AcDbObject* polyline, double distance) {
  if (polyline == nullptr) return false;
  if (!polyline->isWriteEnabled()) polyline->upgradeOpen();
  resbuf* list = acutBuildList(AcDb::kDxfRegAppName, kFeaturelineAppName, AcDb::kDxfXdReal, distance, RTNONE);
  polyline->setXData(list);
  acutRelRb(list);
  return true;
}

bool isFeatureline(const AcDbObject* object) {
  if (object == nullptr || object->isA() != AcDb3dPolyline::desc()) return false;
  const AcDb3dPolyline* polyline = static_cast<const AcDb3dPolyline*>(object);
  if (polyline->polyType() != AcDb::k3dSimplePoly) return false;
  if (!readFeaturelineXdata(polyline, nullptr)) return false;
  std::unique_ptr<AcDbObjectIterator> it(polyline->vertexIterator());
  int count = 0;
  for (it->start(); !it->done() && count < 2; it->step()) ++count;
  return count >= 2;
}

// ---- construction and release --------------------------------------------------

Featureline::Featureline(AcDbObjectId polylineId, AcDb::OpenMode openMode)
    : mPolylineId(polylineId),
      mMaxArcStepAngle(vora::fl::kMaxArcStepAngle),
      mMidOrdinateDistance(gDefaultMidOrdinateDistance) {
  if (acdbOpenObject(mPolyline, polylineId, openMode) != Acad::eOk) {
    mPolyline = nullptr;
    throw FeaturelineError::eDataError;
  }
  load(openMode);
}

Featureline::Featureline(AcDb3dPolyline* polyline, AcDb::OpenMode openMode)
    : mMaxArcStepAngle(vora::fl::kMaxArcStepAngle), mMidOrdinateDistance(gDefaultMidOrdinateDistance) {
  if (polyline == nullptr) throw FeaturelineError::eDataError;
  if (polyline->polyType() != AcDb::k3dSimplePoly) throw FeaturelineError::eNonCompatible3dPoly;
  mPolyline = polyline;
  load(openMode);
}

// The stored distance and the model; what was opened is closed again when
// either fails, since no destructor runs for a constructor that throws.
void Featureline::load(AcDb::OpenMode openMode) {
  try {
    readFeaturelineXdata(mPolyline, &mMidOrdinateDistance);
    loadVertices(openMode);
  } catch (...) {
    closeAll(false);
    throw;
  }
}

Featureline::~Featureline() {
  if (!mReleased) closeAll(false);
}

void Featureline::release() {
  if (!mReleased) closeAll(true);
}

void Featureline::closeAll(bool throwOnFailure) {
  mReleased = true;
  Acad::ErrorStatus first = Acad::eOk;
  if (mPolyline != nullptr && !mPolyline->objectId().isNull()) {
    first = mPolyline->close();
    for (AcDb3dPolylineVertex* v : mVertices) {
      if (v == nullptr) continue;
      const Acad::ErrorStatus es = v->close();
      if (first == Acad::eOk) first = es;
    }
  }
  mPolyline = nullptr;
  mPoints.clear();
  mStations.clear();
  mVertices.clear();
  if (throwOnFailure && first != Acad::eOk) throw first;
}

void Featureline::loadVertices(AcDb::OpenMode openMode) {
  if (openMode == AcDb::kForWrite && !mPolyline->isWriteEnabled()) mPolyline->upgradeOpen();
  std::unique_ptr<AcDbObjectIterator> it(mPolyline->vertexIterator());
  for (it->start(); !it->done(); it->step()) {
    const AcDbObjectId id = it->objectId();
    if (!id.isNull()) {
      AcDb3dPolylineVertex* v = nullptr;
      if (acdbOpenObject(v, id, openMode) == Acad::eOk) mVertices.push_back(v);
    } else {
      AcDbEntity* entity = it->entity();
      if (entity != nullptr && entity->isKindOf(AcDb3dPolylineVertex::desc()))
        mVertices.push_back(static_cast<AcDb3dPolylineVertex*>(entity));
    }
  }
  if (mVertices.size() < 2) throw FeaturelineError::eNonCompatible3dPoly;
  mTolerance.setEqualPoint(
      vora::fl::pointTolerance(mVertices.front()->position(), mVertices.back()->position(), mMidOrdinateDistance));
  rebuild();
}

void Featureline::rebuild() {
  mPoints.clear();
  mStations.clear();
  std::vector<AcGePoint3d> positions;
  positions.reserve(mVertices.size());
  for (const AcDb3dPolylineVertex* v : mVertices)
    if (v != nullptr) positions.push_back(v->position());
  const std::vector<AcGePoint3d> kept = vora::fl::withoutDuplicates(positions.data(), positions.size(), mTolerance);
  mPoints = vora::fl::buildPoints(kept, mTolerance, mMaxArcStepAngle);
  vora::fl::computeStations(mPoints, mStations);
}

// ---- read access ------------------------------------------------------------

double Featureline::station(std::size_t i) const {
  if (i >= mStations.size()) throw FeaturelineError::eOutOfBounds;
  return mStations[i];
}

double Featureline::length() const {
  if (mPoints.empty()) return 0.0;
  if (mStations.size() < mPoints.size()) throw FeaturelineError::eOutOfBounds;
  return mStations[mPoints.size() - 1];
}

void Featureline::dump() const {
  acutPrintf(ACRX_T("Featureline: \n"));
  acutPrintf(ACRX_T("Number of feature points: %d, mid ordinate distance: %f\nFeature points: \n"),
             static_cast<int>(mPoints.size()), mMidOrdinateDistance);
  for (std::size_t i = 0; i < mPoints.size(); ++i) {
    const FeaturelinePoint& p = mPoints[i];
    double segment = 0.0, grade = 0.0;
    if (i + 1 < mPoints.size()) {
      segment = station(i + 1) - station(i);
      grade = (mPoints[i + 1].position.z - p.position.z) / segment;
    }
    acutPrintf(ACRX_T("    p%d: (%.9f, %.9f, %.9f) t:%s station: %f bulge: %.9f length: %f grade: %f \n"),
               static_cast<int>(i), p.position.x, p.position.y, p.position.z,
               p.isFeaturePoint() ? ACRX_T("V") : ACRX_T("E"), station(i), p.bulge, segment, grade);
  }
}

// ---- writing back -------------------------------------------------------------

bool Featureline::upgradeToWrite() {
  if (mPolyline == nullptr) return false;
  if (mPolyline->isWriteEnabled()) return true;
  return mPolyline->upgradeOpen() == Acad::eOk;
}

void Featureline::writeBack() {
  upgradeToWrite();
  VertexSlots slots(mPolyline, mVertices);
  vora::fl::tessellate(mPoints, mTolerance, mMidOrdinateDistance, slots);
  const bool shrunk = mVertices.size() > slots.cursor();
  while (mVertices.size() > slots.cursor()) {
    AcDb3dPolylineVertex* v = mVertices.back();
    mVertices.pop_back();
    if (v == nullptr) continue;
    if (!v->objectId().isNull()) {
      if (!v->isWriteEnabled()) v->upgradeOpen();
      v->erase(true);
      v->close();
    }
    // A vertex of a polyline outside any database belongs to that polyline,
    // which has no way to give one back; it stays where it is.
  }
  if (shrunk) mPolyline->recordGraphicsModified(true);
  vora::fl::computeStations(mPoints, mStations);
}

bool Featureline::commit() {
  if (!upgradeToWrite()) return false;
  writeBack();
  return true;
}

bool Featureline::setMidOrdinateDistance(double distance, bool recalculate) {
  if (std::isnan(distance)) return false;
  if (distance - mTolerance.equalPoint() <= vora::fl::kNearZero) return false;
  writeFeaturelineXdata(mPolyline, distance);
  if (std::fabs(distance - mMidOrdinateDistance) <= vora::fl::kNearZero) return true;
  // A coarser tessellation is computed from a fresh reading of the vertices.
  if (distance - mMidOrdinateDistance > vora::fl::kNearZero) rebuild();
  mMidOrdinateDistance = distance;
  if (recalculate && upgradeToWrite()) writeBack();
  return true;
}

// ---- opening for the exported functions ----------------------------------------

std::unique_ptr<Featureline> openFeatureline(AcDbObjectId polylineId, AcDb::OpenMode openMode) {
  if (polylineId.isNull()) throw VORA_FEATURELINE_NULL_ID;
  try {
    return std::make_unique<Featureline>(polylineId, openMode);
  } catch (...) {
    reportCurrentException();
    throw VORA_FEATURELINE_OPEN_FAILED;
  }
}
