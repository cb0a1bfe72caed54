// --featurelines [--json]: the feature lines of model space, as a table or as
// one JSON document. --dump HANDLE: the module's own dump of one 3D polyline.
// The models come from the module's diagnostic functions.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "host/console/common.h"
#include "host/console/module.h"
#include "host/console/options.h"
#include "vora/featureline.h"

namespace vora_console {
namespace {

using GetModel = int (*)(AcDbObjectId, vora_featureline_point_info**, int*, double*, const char**);
using Dump = int (*)(AcDbObjectId);
using Free = void (*)(void*);

bool& jsonWanted() {
  static bool wanted = false;
  return wanted;
}

bool& featurelinesWanted() {
  static bool wanted = false;
  return wanted;
}

// The shortest text that reads back to the same double, with ".0" on
// integral values so that a reader sees a real; NaN and infinities are not
// numbers in JSON and become null there.
std::string number(double v, bool json) {
  if (!std::isfinite(v)) {
    if (json) return "null";
    return std::isnan(v) ? "nan" : (v > 0 ? "inf" : "-inf");
  }
  char buf[64];
  const auto end = std::to_chars(buf, buf + sizeof buf, v).ptr;
  std::string text(buf, end);
  if (text.find_first_of(".e") == std::string::npos) text += ".0";
  return text;
}

std::string jsonString(const std::string& s) {
  std::string out = "\"";
  for (const char ch : s) {
    const auto c = static_cast<unsigned char>(ch);
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\b': out += "\\b"; break;
      case '\f': out += "\\f"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (c < 0x20) {
          char esc[8];
          std::snprintf(esc, sizeof esc, "\\u%04x", c);
          out += esc;
        } else {
          out += ch;
        }
    }
  }
  return out + "\"";
}

struct Report {
  std::string handle, layer;
  int vertices = 0;
  std::string error;  // empty when the model was read
  double midOrdinateDistance = 0.0;
  std::vector<vora_featureline_point_info> points;
};

struct Candidate {
  AcDbObjectId id;
  std::string handle, layer;
  int vertices = 0;
};

// Every 3D polyline of model space, in drawing order; the module tells which
// of them carry the feature-line marker.
bool polylinesOfModelSpace(AcDbDatabase* db, std::vector<Candidate>& out) {
  AcDbBlockTableRecord* ms = nullptr;
  if (acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead) != Acad::eOk) return false;
  AcDbBlockTableRecordIterator* it = nullptr;
  ms->newIterator(it);
  for (; it != nullptr && !it->done(); it->step()) {
    AcDbEntity* e = nullptr;
    if (it->getEntity(e, AcDb::kForRead) != Acad::eOk) continue;
    if (e->isKindOf(AcDb3dPolyline::desc())) {
      Candidate c;
      c.id = e->objectId();
      c.handle = handleOf(e);
      ACHAR* layer = e->layer();
      c.layer = narrow(layer);
      acutDelString(layer);
      std::unique_ptr<AcDbObjectIterator> vertices(static_cast<AcDb3dPolyline*>(e)->vertexIterator());
      for (vertices->start(); !vertices->done(); vertices->step()) ++c.vertices;
      out.push_back(std::move(c));
    }
    e->close();
  }
  delete it;
  ms->close();
  return true;
}

std::string tableOf(const std::vector<Report>& reports) {
  std::vector<std::vector<std::string>> rows = {
      {"handle", "layer", "points", "elevation points", "length", "mid ordinate distance"}};
  for (const Report& r : reports) {
    if (!r.error.empty()) {
      rows.push_back({r.handle, r.layer, "error: " + r.error});
      continue;
    }
    int elevationPoints = 0;
    for (const auto& p : r.points) elevationPoints += p.type == 1 ? 1 : 0;
    const double length = r.points.empty() ? 0.0 : r.points.back().station;
    rows.push_back({r.handle, r.layer, std::to_string(r.points.size()), std::to_string(elevationPoints),
                    number(length, false), number(r.midOrdinateDistance, false)});
  }
  // Columns are as wide as their widest cell; an error row's message runs on
  // from the points column.
  std::vector<std::size_t> widths(rows.front().size(), 0);
  for (const auto& row : rows)
    if (row.size() == widths.size())
      for (std::size_t c = 0; c < row.size(); ++c) widths[c] = std::max(widths[c], row[c].size());
  std::string out;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t c = 0; c < row.size(); ++c) {
      line += row[c];
      if (c + 1 < row.size()) line += std::string(widths[c] - row[c].size() + 2, ' ');
    }
    out += line + "\n";
  }
  return out;
}

std::string jsonOf(const std::vector<Report>& reports) {
  std::string out = "{\"featurelines\": [";
  for (std::size_t i = 0; i < reports.size(); ++i) {
    const Report& r = reports[i];
    out += i == 0 ? "\n  " : ",\n  ";
    if (!r.error.empty()) {
      out += "{\"handle\": " + jsonString(r.handle) + ", \"error\": " + jsonString(r.error) + "}";
      continue;
    }
    const double length = r.points.empty() ? 0.0 : r.points.back().station;
    out += "{\"handle\": " + jsonString(r.handle) + ", \"layer\": " + jsonString(r.layer) +
           ", \"midOrdinateDistance\": " + number(r.midOrdinateDistance, true) + ", \"length\": " +
           number(length, true) + ", \"vertices\": " + std::to_string(r.vertices) + ", \"points\": [";
    for (std::size_t k = 0; k < r.points.size(); ++k) {
      const auto& p = r.points[k];
      if (k != 0) out += ", ";
      out += "{\"type\": " + std::to_string(p.type) + ", \"x\": " + number(p.x, true) + ", \"y\": " +
             number(p.y, true) + ", \"z\": " + number(p.z, true) + ", \"station\": " + number(p.station, true) +
             ", \"bulge\": " + number(p.bulge, true) + ", \"arcDistance\": " + number(p.arcDistance, true) + "}";
    }
    out += "]}";
  }
  out += reports.empty() ? "]}\n" : "\n]}\n";
  return out;
}

int parseFeaturelines(const std::string&) {
  featurelinesWanted() = true;
  return 0;
}

int parseJson(const std::string&) {
  jsonWanted() = true;
  return 0;
}

int checkJson() {
  if (jsonWanted() && !featurelinesWanted()) return fail("--json is a form of --featurelines");
  return 0;
}

int printFeaturelines(AcDbDatabase* db, const std::string&) {
  const auto getModel = moduleFunction<GetModel>("vora_featureline_get_model");
  const auto release = getModel != nullptr ? moduleFunction<Free>("vora_free") : nullptr;
  if (getModel == nullptr || release == nullptr) return 1;
  std::vector<Candidate> candidates;
  if (!polylinesOfModelSpace(db, candidates)) return fail("the drawing has no model space");
  std::vector<Report> reports;
  for (const Candidate& c : candidates) {
    vora_featureline_point_info* points = nullptr;
    int count = 0;
    double distance = 0.0;
    const char* errorName = nullptr;
    const int result = getModel(c.id, &points, &count, &distance, &errorName);
    if (result == 1) continue;
    Report r;
    r.handle = c.handle;
    r.layer = c.layer;
    r.vertices = c.vertices;
    if (result == 0) {
      r.midOrdinateDistance = distance;
      if (points != nullptr) r.points.assign(points, points + count);
      release(points);
    } else {
      r.error = errorName != nullptr ? errorName : "error " + std::to_string(result);
    }
    reports.push_back(std::move(r));
  }
  std::fputs((jsonWanted() ? jsonOf(reports) : tableOf(reports)).c_str(), stdout);
  return 0;
}

int dumpFeatureline(AcDbDatabase* db, const std::string& handleText) {
  AcDbObjectId id;
  AcDbObject* object = nullptr;
  if (!findByHandle(db, handleText, id) || acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk)
    return fail("no object with handle '" + handleText + "'");
  const bool polyline = object->isKindOf(AcDb3dPolyline::desc());
  object->close();
  if (!polyline) return fail("the object '" + handleText + "' is no 3D polyline");
  const auto dump = moduleFunction<Dump>("vora_featureline_dump");
  if (dump == nullptr) return 1;
  if (const int result = dump(id); result != 0)
    return fail("cannot read '" + handleText + "' as a feature line (" + std::to_string(result) + ")");
  return 0;
}

const bool registered =
    registerOption({"--featurelines", false,
                    "list the feature lines of model space: handle, layer, points, elevation points, length, "
                    "mid ordinate distance",
                    &parseFeaturelines, &printFeaturelines}) &&
    registerOption({"--json", false,
                    "with --featurelines: one JSON document with every point of each model",
                    &parseJson, nullptr}) &&
    registerCheck(&checkJson) &&
    registerOption({"--dump", true, "HANDLE  print the feature-line model of the 3D polyline HANDLE, point by point",
                    nullptr, &dumpFeatureline});

}  // namespace
}  // namespace vora_console
