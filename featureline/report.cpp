// Diagnostics for tools: the model of a feature line copied out without any
// message, and its dump on the command line.
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "featureline/featureline.h"
#include "featureline/guard.h"
#include "vora/featureline.h"

namespace {

// The status's name as a narrow string (the names are ASCII identifiers).
// Each text is kept for the life of the process, so a pointer handed out
// stays valid whatever is asked later.
const char* statusName(Acad::ErrorStatus status) {
  static std::map<int, std::string> names;
  const auto found = names.find(static_cast<int>(status));
  if (found != names.end()) return found->second.c_str();
  std::string text;
  if (const ACHAR* wide = acadErrorStatusText(status))
    for (const ACHAR* p = wide; *p != 0; ++p) text += *p > 0 && *p < 0x80 ? static_cast<char>(*p) : '?';
  return names.emplace(static_cast<int>(status), std::move(text)).first->second.c_str();
}

bool carriesMarker(AcDbObjectId id) {
  AcDbObject* object = nullptr;
  // An object that cannot be opened is left to the model, whose own opening
  // then fails with the error a caller expects.
  if (acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) return true;
  const bool marked = readFeaturelineXdata(object, nullptr);
  object->close();
  return marked;
}

}  // namespace

VORA_API int vora_featureline_get_model(AcDbObjectId id, vora_featureline_point_info** points, int* count,
                                        double* midOrdinateDistance, const char** errorName) {
  if (id.isNull()) return VORA_FEATURELINE_NULL_ID;
  const char* name = nullptr;
  int result = 0;
  try {
    if (!carriesMarker(id)) return 1;
    // Built directly rather than through openFeatureline, whose failures are
    // printed: a tool asks here precisely so that nothing is.
    Featureline line(id, AcDb::kForRead);
    const std::vector<FeaturelinePoint>& model = line.points();
    const std::vector<double>& stations = line.stations();
    vora_featureline_point_info* copy = nullptr;
    if (!model.empty()) {
      copy = static_cast<vora_featureline_point_info*>(std::malloc(model.size() * sizeof *copy));
      if (copy == nullptr) throw Acad::eOutOfMemory;
      for (std::size_t i = 0; i < model.size(); ++i) {
        const FeaturelinePoint& p = model[i];
        copy[i] = {p.position.x, p.position.y, p.position.z, i < stations.size() ? stations[i] : 0.0,
                   p.bulge,      p.arcDistance,  static_cast<int>(p.type)};
      }
    }
    const std::size_t n = model.size();
    const double distance = line.midOrdinateDistance();
    try {
      line.release();
    } catch (...) {
      std::free(copy);
      throw;
    }
    if (points != nullptr) {
      *points = copy;
    } else {
      std::free(copy);
    }
    if (count != nullptr) *count = static_cast<int>(n);
    if (midOrdinateDistance != nullptr) *midOrdinateDistance = distance;
  } catch (FeaturelineError e) {
    result = VORA_FEATURELINE_FALSE;
    name = featurelineErrorName(e);
  } catch (Acad::ErrorStatus s) {
    result = VORA_FEATURELINE_HOST_ERROR;
    name = statusName(s);
  } catch (...) {
    result = VORA_FEATURELINE_UNKNOWN_ERROR;
    name = "unknown error";
  }
  if (result != 0 && errorName != nullptr) *errorName = name;
  return result;
}

VORA_API int vora_featureline_dump(AcDbObjectId id) {
  std::unique_ptr<Featureline> line;
  int status = guarded([&] { line = openFeatureline(id, AcDb::kForRead); });
  if (status != 0) return status;
  status = guarded([&] { line->dump(); });
  const int closing = guarded([&] { line->release(); });
  line.reset();
  return status != 0 ? status : closing;
}
