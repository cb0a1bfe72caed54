// Writes the drawing that console_module_test.py reads, made with the
// module's own functions, and tells the test what it holds.
//
// Usage: vora_console_drawing OUT.dxf
// Standard output: one line "NAME HANDLE" per entity, in drawing order, then
// for each feature line that can be read, after saving and loading the file
// again, "model HANDLE VERTICES MIDORDINATE" and one line "point TYPE X Y Z
// STATION BULGE ARCDISTANCE" per point (%.17g, exact).
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "vora/arx.h"
#include "vora/vora.h"

namespace {

constexpr double kPi = 3.141592653589793;

int failed(const char* what) {
  std::fprintf(stderr, "vora_console_drawing: %s\n", what);
  return 1;
}

std::string handleOf(AcDbObjectId id) {
  AcDbObject* object = nullptr;
  if (acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) return "?";
  ACHAR text[AcDbHandle::kStrSiz];
  object->handle().getIntoAsciiBuffer(text, AcDbHandle::kStrSiz);
  object->close();
  std::string out;
  for (const ACHAR* p = text; *p != 0; ++p) out += static_cast<char>(*p);
  return out;
}

bool attachXdata(AcDbObjectId id, const std::vector<const ACHAR*>& apps) {
  AcDbObject* object = nullptr;
  if (acdbOpenObject(object, id, AcDb::kForWrite) != Acad::eOk) return false;
  for (const ACHAR* app : apps) {
    acdbRegApp(app);
    resbuf* list = acutBuildList(AcDb::kDxfRegAppName, app, AcDb::kDxfXdAsciiString, ACRX_T("tag"), RTNONE);
    object->setXData(list);
    acutRelRb(list);
  }
  object->close();
  return true;
}

AcDbObjectId polyline(const std::vector<AcGePoint3d>& points, const ACHAR* layer) {
  AcGePoint3dArray array;
  for (const auto& p : points) array.append(p);
  return vora_create3DPolyline(&array, layer, 256, false);
}

int countVertices(AcDbObjectId id) {
  AcDb3dPolyline* pl = nullptr;
  if (acdbOpenObject(pl, id, AcDb::kForRead) != Acad::eOk) return -1;
  std::unique_ptr<AcDbObjectIterator> it(pl->vertexIterator());
  int count = 0;
  for (it->start(); !it->done(); it->step()) ++count;
  pl->close();
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return failed("usage: vora_console_drawing OUT.dxf");
  std::wstring out;
  for (const char* p = argv[1]; *p != 0; ++p) out += static_cast<wchar_t>(static_cast<unsigned char>(*p));

  std::vector<std::pair<std::string, std::string>> handles;
  {
    std::vector<std::pair<std::string, AcDbObjectId>> made;
    auto db = std::make_unique<AcDbDatabase>(true, true);
    acdbHostApplicationServices()->setWorkingDatabase(db.get());
    const ACHAR* site = ACRX_T("Site \"A\"\\1");
    // The plug-in registers its application when it loads; feature-line
    // writers count on that.
    acdbRegApp(ACRX_T("VORA_XPLINE_APPN"));
    vora_createLayer(ACRX_T("ROAD"), 1);
    vora_createLayer(site, 3);

    const AcGePoint3d o(0, 0, 0), a(5, 5, 0), b(9, 2, 1);
    made.emplace_back("line0", vora_createLine(&o, &a, ACRX_T("0"), 256));
    if (!attachXdata(made.back().second, {ACRX_T("SURVEY")})) return failed("xdata of line0");
    made.emplace_back("lineRoad", vora_createLine(&a, &b, ACRX_T("ROAD"), 256));
    made.emplace_back("face", vora_create3DFace(&o, &a, &b, site, 256));
    if (!attachXdata(made.back().second, {ACRX_T("SURVEY"), ACRX_T("OTHER")})) return failed("xdata of face");
    made.emplace_back("plain", polyline({{0, 50, 0}, {10, 50, 0}, {10, 60, 2}}, ACRX_T("ROAD")));

    // A straight run, a quarter circle of radius 10 in 10 degree steps rising
    // with grade 0.1, and a straight run again; then a grade break inside the
    // arc, which the model keeps as an elevation point.
    std::vector<AcGePoint3d> road = {{0, 0, 0}};
    for (int k = 0; k <= 9; ++k) {
      const double angle = -kPi / 2 + k * (kPi / 18);
      road.emplace_back(10 + 10 * std::cos(angle), 10 + 10 * std::sin(angle), 1 + 0.1 * 10 * (kPi / 18) * k);
    }
    road.emplace_back(20, 25, 3);
    made.emplace_back("road", polyline(road, ACRX_T("ROAD")));
    if (vora_featureline_convert_to(made.back().second, 0.015) != 0) return failed("marking road");
    if (vora_featureline_insert_elevpt(made.back().second, 18.0, 5.0) != 0) return failed("elevation point");

    made.emplace_back("broken", polyline({{40, 0, 0}}, ACRX_T("0")));
    if (vora_featureline_convert_to(made.back().second, 0.015) != 0) return failed("marking broken");

    made.emplace_back("short", polyline({{100, 0, 0}, {103, 4, 1}}, site));
    if (vora_featureline_convert_to(made.back().second, 0.25) != 0) return failed("marking short");

    for (const auto& [name, id] : made) {
      if (id.isNull()) return failed(name.c_str());
      handles.emplace_back(name, handleOf(id));
      std::printf("%s %s\n", name.c_str(), handles.back().second.c_str());
    }
    if (db->dxfOut(out.c_str()) != Acad::eOk) return failed("saving");
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  }

  // The models as a reader of the saved file sees them.
  auto db = std::make_unique<AcDbDatabase>(false, true);
  if (db->dxfIn(out.c_str()) != Acad::eOk) return failed("loading");
  acdbHostApplicationServices()->setWorkingDatabase(db.get());
  for (const auto& [name, handleText] : handles) {
    if (name != "road" && name != "short") continue;
    AcDbObjectId id;
    if (db->getAcDbObjectId(id, false, AcDbHandle(handleText.c_str())) != Acad::eOk) return failed("handle");
    vora_featureline_point_info* points = nullptr;
    int count = 0;
    double distance = 0;
    const char* why = nullptr;
    if (const int r = vora_featureline_get_model(id, &points, &count, &distance, &why); r != 0) {
      std::fprintf(stderr, "%s: %d %s\n", handleText.c_str(), r, why ? why : "");
      return failed("model");
    }
    std::printf("model %s %d %.17g\n", handleText.c_str(), countVertices(id), distance);
    for (int i = 0; i < count; ++i) {
      const auto& p = points[i];
      std::printf("point %d %.17g %.17g %.17g %.17g %.17g %.17g\n", p.type, p.x, p.y, p.z, p.station, p.bulge,
                  p.arcDistance);
    }
    vora_free(points);
  }
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  return 0;
}
