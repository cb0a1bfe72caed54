// The exported feature-line functions. Each opens the feature line, does one
// job and releases it, every step inside the guard, so a failure while
// closing after a successful edit is reported like one while working.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "featureline/featureline.h"
#include "featureline/geometry.h"
#include "featureline/guard.h"
#include "vora/featureline.h"

namespace {

// Runs work on the feature line of id, opened in mode; work returns the
// function's own result code.
template <class Work>
int withFeatureline(AcDbObjectId id, AcDb::OpenMode mode, Work&& work) {
  std::unique_ptr<Featureline> line;
  int status = guarded([&] { line = openFeatureline(id, mode); });
  if (status != 0) return status;
  int result = 0;
  status = guarded([&] { result = work(*line); });
  const int closing = guarded([&] { line->release(); });
  line.reset();
  if (status != 0) return status;
  if (closing != 0) return closing;
  return result;
}

bool below(int index, std::size_t count) { return index >= 0 && static_cast<std::size_t>(index) < count; }

template <class T>
T* allocate(std::size_t count) {
  if (count == 0) return nullptr;
  void* p = std::malloc(count * sizeof(T));
  if (p == nullptr) throw Acad::eOutOfMemory;
  return static_cast<T*>(p);
}

// Both erase functions: check every index from the largest down, then erase
// from the largest down so that the smaller indices keep their points.
template <class Erase>
int eraseIndices(AcDbObjectId id, const int* indices, int count, bool elevationPointsOnly, Erase&& erase) {
  return withFeatureline(id, AcDb::kForWrite, [&](Featureline& line) {
    std::vector<int> sorted(indices, indices + std::max(count, 0));
    std::sort(sorted.begin(), sorted.end());
    for (auto it = sorted.rbegin(); it != sorted.rend(); ++it) {
      if (!below(*it, line.numPoints())) return static_cast<int>(VORA_FEATURELINE_INDEX_OUT_OF_RANGE);
      if (elevationPointsOnly && !line.points()[static_cast<std::size_t>(*it)].isElevationPoint())
        return static_cast<int>(VORA_FEATURELINE_NOT_ELEVATION_POINT);
    }
    bool all = true;
    for (auto it = sorted.rbegin(); it != sorted.rend(); ++it)
      if (!erase(line, static_cast<std::size_t>(*it))) all = false;
    return all ? 0 : static_cast<int>(VORA_FEATURELINE_ERASE_FAILED);
  });
}

}  // namespace

VORA_API void vora_free(void* p) { std::free(p); }

VORA_API int vora_featureline_convert_to(AcDbObjectId polylineId, double midOrdinateDistance) {
  if (polylineId.isNull()) return VORA_FEATURELINE_NULL_ID;
  int result = 0;
  const int status = guarded([&] {
    AcDb3dPolyline* polyline = nullptr;
    if (acdbOpenObject(polyline, polylineId, AcDb::kForWrite) != Acad::eOk) {
      result = VORA_FEATURELINE_CANNOT_OPEN;
      return;
    }
    if (readFeaturelineXdata(polyline, nullptr)) {
      result = VORA_FEATURELINE_ALREADY_FEATURELINE;
    } else if (-vora::fl::kNearZero <= midOrdinateDistance && midOrdinateDistance <= vora::fl::kNearZero) {
      result = VORA_FEATURELINE_BAD_DISTANCE;
    } else {
      writeFeaturelineXdata(polyline, midOrdinateDistance);
    }
    const Acad::ErrorStatus es = polyline->close();
    if (es != Acad::eOk) throw es;
  });
  return status != 0 ? status : result;
}

VORA_API int vora_featureline_erase_elevpt(AcDbObjectId polylineId, const int* indices, int count) {
  return eraseIndices(polylineId, indices, count, true,
                      [](Featureline& line, std::size_t i) { return line.eraseElevationPoint(i); });
}

VORA_API int vora_featureline_erase_feature_point(AcDbObjectId polylineId, const int* indices, int count) {
  return eraseIndices(polylineId, indices, count, false,
                      [](Featureline& line, std::size_t i) { return line.eraseFeaturePoint(i); });
}

VORA_API int vora_featureline_get_elevpts(AcDbObjectId polylineId, double** coords, int* coordCount, int** types,
                                          int* typeCount) {
  return withFeatureline(polylineId, AcDb::kForRead, [&](Featureline& line) {
    const std::size_t n = line.numPoints();
    double* c = allocate<double>(4 * n);
    int* t = nullptr;
    try {
      t = allocate<int>(n);
    } catch (...) {
      std::free(c);
      throw;
    }
    for (std::size_t i = 0; i < n; ++i) {
      const FeaturelinePoint& p = line.points()[i];
      c[4 * i] = p.position.x;
      c[4 * i + 1] = p.position.y;
      c[4 * i + 2] = p.position.z;
      c[4 * i + 3] = line.station(i);
      t[i] = static_cast<int>(p.type);
    }
    *coords = c;
    *coordCount = static_cast<int>(4 * n);
    *types = t;
    *typeCount = static_cast<int>(n);
    return 0;
  });
}

VORA_API int vora_featureline_get_mid_ordinate_dist(AcDbObjectId polylineId, double* distance) {
  return withFeatureline(polylineId, AcDb::kForRead, [&](Featureline& line) {
    *distance = line.midOrdinateDistance();
    return 0;
  });
}

VORA_API int vora_featureline_get_default_mid_ordinate_dist(double* distance) {
  *distance = defaultMidOrdinateDistance();
  return 0;
}

VORA_API int vora_featureline_set_default_mid_ordinate_dist(double distance) {
  setDefaultMidOrdinateDistance(distance);
  return 0;
}

VORA_API int vora_featureline_insert_elevpt(AcDbObjectId polylineId, double station, double elevation) {
  return withFeatureline(polylineId, AcDb::kForWrite, [&](Featureline& line) {
    return line.insertElevationPoint(station, elevation) ? 0 : static_cast<int>(VORA_FEATURELINE_INSERT_REFUSED);
  });
}

VORA_API int vora_featureline_insert_feature_point(AcDbObjectId polylineId, double x, double y, double z,
                                                   double station, double bulge) {
  return withFeatureline(polylineId, AcDb::kForWrite, [&](Featureline& line) {
    return line.insertFeaturePointAtStation(AcGePoint3d(x, y, z), station, bulge)
               ? 0
               : static_cast<int>(VORA_FEATURELINE_INSERT_REFUSED);
  });
}

VORA_API int vora_featureline_interpolate(AcDbObjectId polylineId, double z0, double z1, int* indices, int count) {
  return withFeatureline(polylineId, AcDb::kForWrite, [&](Featureline& line) {
    if (line.numPoints() == 0) return static_cast<int>(VORA_FEATURELINE_NO_POINTS);
    std::sort(indices, indices + std::max(count, 0));
    std::vector<int> sorted(indices, indices + std::max(count, 0));
    if (sorted.empty()) throw FeaturelineError::eDataError;
    return line.interpolate(sorted, z0, z1) ? 0 : static_cast<int>(VORA_FEATURELINE_UPDATE_FAILED);
  });
}

VORA_API int vora_featureline_set_elevpt(AcDbObjectId polylineId, const int* indices, const double* elevations,
                                         int count) {
  return withFeatureline(polylineId, AcDb::kForWrite, [&](Featureline& line) {
    if (line.numPoints() == 0) return static_cast<int>(VORA_FEATURELINE_NO_POINTS);
    const int n = std::max(count, 0);
    for (int k = 0; k < n; ++k)
      if (!below(indices[k], line.numPoints())) return static_cast<int>(VORA_FEATURELINE_INDEX_OUT_OF_RANGE);
    std::vector<std::pair<std::size_t, AcGePoint3d>> changed;
    for (int k = 0; k < n; ++k) {
      const std::size_t i = static_cast<std::size_t>(indices[k]);
      const AcGePoint3d before = line.points()[i].position;
      if (line.setPointPosition(i, AcGePoint3d(before.x, before.y, elevations[k]))) {
        changed.emplace_back(i, before);
        continue;
      }
      for (const auto& [index, position] : changed) line.setPointPosition(index, position);
      return static_cast<int>(VORA_FEATURELINE_UPDATE_FAILED);
    }
    return 0;
  });
}

VORA_API int vora_featureline_set_mid_ordinate_dist(AcDbObjectId polylineId, unsigned char recalculate,
                                                    double distance) {
  return withFeatureline(polylineId, AcDb::kForWrite, [&](Featureline& line) {
    return line.setMidOrdinateDistance(distance, recalculate != 0) ? 0 : static_cast<int>(VORA_FEATURELINE_FALSE);
  });
}
