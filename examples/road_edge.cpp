// A road edge as a feature line, the way a plug-in builds one.
//
// The edge is designed as an alignment in plan (straights and circular
// curves at site coordinates) with a vertical profile of constant grades.
// It is drawn as a 3D polyline: the curves tessellated into chords, every
// vertex at the profile's level for its chainage. Marked as a feature line,
// the polyline reads back as the alignment: the curves come back as arcs and
// the grade changes inside them as elevation points. We then set two levels
// by station and save the drawing as DXF.
//
//   road_edge [OUT.dxf]      (default: road_edge.dxf)
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "vora/vora.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDeg = kPi / 180.0;

// One element of the plan alignment: a straight (radius 0) or a curve that
// turns by `turn` radians (positive: to the left) on the given radius.
struct Element {
  double length;
  double radius;
  double turnDeg;
};

// The vertical profile: a level at chainage 0 and grades that change at the
// given chainages.
struct GradeChange {
  double chainage;
  double grade;  // rise over run, 0.02 = 2 %
};

double levelAt(double chainage, double startLevel, const std::vector<GradeChange>& profile) {
  double level = startLevel, from = 0.0, grade = profile.front().grade;
  for (const GradeChange& g : profile) {
    if (g.chainage > chainage) break;
    level += (g.chainage - from) * grade;
    from = g.chainage;
    grade = g.grade;
  }
  return level + (chainage - from) * grade;
}

std::wstring widen(const std::string& s) { return std::wstring(s.begin(), s.end()); }

}  // namespace

int main(int argc, char** argv) {
  const std::string out = argc > 1 ? argv[1] : "road_edge.dxf";

  // A new drawing becomes the working database: the drawing utilities and
  // the feature-line functions work there.
  AcDbDatabase drawing(true, false);
  acdbHostApplicationServices()->setWorkingDatabase(&drawing);
  // The feature-line marker is extended data of this application; a drawing
  // keeps extended data only of applications registered in it.
  acdbRegApp(L"VORA_XPLINE_APPN");

  // Plan: start point and bearing, then straight - left curve - straight -
  // right curve - straight.
  const AcGePoint2d start(512340.000, 6843120.000);
  const double startBearing = 28.0 * kDeg;  // from the easting axis, anticlockwise
  const std::vector<Element> plan = {
      {120.0, 0.0, 0.0}, {0.0, 300.0, 35.0}, {90.0, 0.0, 0.0}, {0.0, 180.0, -50.0}, {150.0, 0.0, 0.0}};

  // Key points of the alignment with the bulge of the element they start.
  AcGePoint3dArray keyPoints;
  AcGeDoubleArray bulges;
  AcGePoint2d at = start;
  double bearing = startBearing;
  for (const Element& e : plan) {
    keyPoints.append(AcGePoint3d(at.x, at.y, 0.0));
    if (e.radius == 0.0) {
      bulges.append(0.0);
      at += AcGeVector2d(std::cos(bearing), std::sin(bearing)) * e.length;
      continue;
    }
    const double turn = e.turnDeg * kDeg;
    const double chord = 2.0 * e.radius * std::sin(std::fabs(turn) / 2.0);
    bulges.append(std::tan(turn / 4.0));
    at += AcGeVector2d(std::cos(bearing + turn / 2.0), std::sin(bearing + turn / 2.0)) * chord;
    bearing += turn;
  }
  keyPoints.append(AcGePoint3d(at.x, at.y, 0.0));
  bulges.append(0.0);

  // Curves into chords that depart from the arc by at most 5 mm.
  AcGePoint3dArray vertices;
  AcGeDoubleArray pieceBulges;
  vora_tessellate3Dpline(&keyPoints, &bulges, false, 0.005, 0.0, 10.0 * kDeg, 0.0, &vertices, &pieceBulges, nullptr);

  // Profile: +2.0 % to chainage 200 (inside the first curve), -1.2 % to 470
  // (inside the second), then +0.5 %.
  const std::vector<GradeChange> profile = {{0.0, 0.020}, {200.0, -0.012}, {470.0, 0.005}};
  AcGeDoubleArray pieceLengths;
  vora_plinelength(&vertices, &pieceBulges, false, 2, &pieceLengths);
  double chainage = 0.0;
  for (int i = 0; i < vertices.length(); ++i) {
    if (i > 0) chainage += pieceLengths[i - 1];
    vertices[i].z = levelAt(chainage, 102.350, profile);
  }

  vora_createLayer(L"ROAD EDGE", 3);
  const AcDbObjectId edge = vora_create3DPolyline(&vertices, L"ROAD EDGE", 256, false);
  if (edge.isNull()) {
    std::fprintf(stderr, "road_edge: the polyline could not be made\n");
    return 1;
  }
  std::printf("3D polyline of %d vertices, %.3f m in plan\n", vertices.length(), chainage);

  // Mark it as a feature line; its curves are re-tessellated with a 10 mm
  // mid ordinate whenever it is edited.
  if (int rc = vora_featureline_convert_to(edge, 0.010); rc != 0) {
    std::fprintf(stderr, "road_edge: not converted (%d)\n", rc);
    return 1;
  }

  // Design levels at two stations: one on the first straight (it becomes a
  // feature point there) and one inside the second curve (an elevation point
  // on the arc). The grade changes of the profile fall between vertices, so
  // the model shows each as the two elevation points around it.
  const double stations[] = {60.0, 430.0};
  const double levels[] = {103.600, 103.650};
  for (int k = 0; k < 2; ++k) {
    if (int rc = vora_featureline_insert_elevpt(edge, stations[k], levels[k]); rc != 0) {
      std::fprintf(stderr, "road_edge: level at station %.3f refused (%d)\n", stations[k], rc);
      return 1;
    }
  }

  // Read the model back: every point with its station and type.
  double* coords = nullptr;
  int* types = nullptr;
  int coordCount = 0, pointCount = 0;
  if (vora_featureline_get_elevpts(edge, &coords, &coordCount, &types, &pointCount) != 0) return 1;
  std::printf("feature line: %d points\n   station      easting      northing     level  type\n", pointCount);
  for (int i = 0; i < pointCount; ++i) {
    const double* p = coords + 4 * i;
    std::printf("%10.3f  %11.3f  %12.3f  %8.3f  %s\n", p[3], p[0], p[1], p[2],
                types[i] == 0 ? "feature point" : "elevation point");
  }
  vora_free(coords);
  vora_free(types);

  const Acad::ErrorStatus saved = drawing.dxfOut(widen(out).c_str());
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  if (saved != Acad::eOk) {
    std::fprintf(stderr, "road_edge: %s not saved (%ls)\n", out.c_str(), acadErrorStatusText(saved));
    return 1;
  }
  std::printf("saved %s\n", out.c_str());
  return 0;
}
