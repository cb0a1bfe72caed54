// Feature lines of 10^3 to 10^5 vertices: opening (rebuilding the model from
// the vertices), inserting an elevation point through the exported function
// (open, edit, write back, close) and writing the model back. The alignment
// is a road centreline at grid coordinates: tangents of two vertices between
// curves of radius 300 to 900 m tessellated at the default mid ordinate
// distance, with a vertical profile that breaks inside every curve. A second
// family times straight runs of many collinear vertices, where loading scans
// ahead for the next vertex off the line.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "featureline/featureline.h"
#include "vora/arx.h"
#include "vora/arx/dbsymtb.h"
#include "vora/arx/vorahost.h"
#include "vora/vora.h"

namespace {

constexpr double kPi = 3.141592653589793;

// About n vertices of tangents and curves turning left and right in turn.
std::vector<AcGePoint3d> roadCentreline(std::size_t n) {
  std::vector<AcGePoint3d> v;
  AcGePoint3d at(512000.0, 6120000.0, 100.0);
  double heading = 0.3;
  int curve = 0;
  while (v.size() < n) {
    v.push_back(at);
    at.x += 80.0 * std::cos(heading);
    at.y += 80.0 * std::sin(heading);
    at.z += 0.8;
    const double r = 300.0 + 200.0 * (curve % 4);
    const double turn = (curve % 2 == 0 ? 1.0 : -1.0) * (0.4 + 0.1 * (curve % 3));
    // Steps of the default mid ordinate distance: 4 asin(sqrt(m / 2R)).
    const double step = 4.0 * std::asin(std::sqrt(0.015 / (2.0 * r)));
    const int steps = static_cast<int>(std::ceil(std::fabs(turn) / step));
    const double side = turn > 0 ? 1.0 : -1.0;
    const AcGePoint3d c(at.x - side * r * std::sin(heading), at.y + side * r * std::cos(heading), 0.0);
    const double a0 = std::atan2(at.y - c.y, at.x - c.x);
    const double s = r * std::fabs(turn) / steps;
    for (int k = 0; k <= steps && v.size() < n; ++k) {
      const double a = a0 + turn * k / steps;
      // Rising to the middle of the curve, falling after it: one grade break.
      const double z = at.z + (k <= steps / 2 ? 0.02 * s * k : 0.02 * s * (steps / 2) - 0.01 * s * (k - steps / 2));
      v.emplace_back(c.x + r * std::cos(a), c.y + r * std::sin(a), z);
    }
    const double aEnd = a0 + turn;
    at = AcGePoint3d(c.x + r * std::cos(aEnd), c.y + r * std::sin(aEnd), v.back().z);
    heading += turn;
    ++curve;
    if (v.size() < n) at.z += 0.01;
  }
  v.resize(n);
  return v;
}

// n collinear vertices one metre apart, rising at 1 %.
std::vector<AcGePoint3d> straightRun(std::size_t n) {
  std::vector<AcGePoint3d> v;
  for (std::size_t k = 0; k < n; ++k)
    v.emplace_back(512000.0 + 0.6 * k, 6120000.0 + 0.8 * k, 100.0 + 0.01 * k);
  return v;
}

// The same run near the origin, at coordinates that hold it exactly.
std::vector<AcGePoint3d> straightRunAtOrigin(std::size_t n) {
  std::vector<AcGePoint3d> v;
  for (std::size_t k = 0; k < n; ++k) v.emplace_back(0.5 * k, 0.25 * k, 100.0 + 0.01 * k);
  return v;
}

class Drawing {
public:
  Drawing() : db_(std::make_unique<AcDbDatabase>(true, true)) {
    acdbHostApplicationServices()->setWorkingDatabase(db_.get());
    acdbRegApp(kFeaturelineAppName);
  }
  ~Drawing() { acdbHostApplicationServices()->setWorkingDatabase(nullptr); }

  AcDbObjectId add(const std::vector<AcGePoint3d>& vertices) {
    AcGePoint3dArray pts;
    for (const auto& p : vertices) pts.append(p);
    auto* pl = new AcDb3dPolyline(AcDb::k3dSimplePoly, pts);
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, db_->modelSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    space->appendAcDbEntity(id, pl);
    space->close();
    writeFeaturelineXdata(pl, 0.015);
    pl->close();
    return id;
  }

private:
  std::unique_ptr<AcDbDatabase> db_;
};

void BM_open(benchmark::State& state, std::vector<AcGePoint3d> (*make)(std::size_t)) {
  Drawing drawing;
  const AcDbObjectId id = drawing.add(make(static_cast<std::size_t>(state.range(0))));
  std::size_t points = 0;
  for (auto _ : state) {
    Featureline line(id, AcDb::kForRead);
    points = line.numPoints();
    line.release();
  }
  state.counters["points"] = static_cast<double>(points);
  state.SetComplexityN(state.range(0));
}

void BM_insertElevationPoint(benchmark::State& state) {
  Drawing drawing;
  const auto vertices = roadCentreline(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    const AcDbObjectId id = drawing.add(vertices);
    double* coords = nullptr;
    int* types = nullptr;
    int nc = 0, nt = 0;
    vora_featureline_get_elevpts(id, &coords, &nc, &types, &nt);
    // Halfway along the line.
    const double station = coords[nc - 1] / 2;
    vora_free(coords);
    vora_free(types);
    state.ResumeTiming();
    benchmark::DoNotOptimize(vora_featureline_insert_elevpt(id, station, 150.0));
  }
  state.SetComplexityN(state.range(0));
}

void BM_writeBack(benchmark::State& state) {
  Drawing drawing;
  const AcDbObjectId id = drawing.add(roadCentreline(static_cast<std::size_t>(state.range(0))));
  Featureline line(id, AcDb::kForWrite);
  for (auto _ : state) line.writeBack();
  state.counters["vertices"] = static_cast<double>(line.numVertexObjects());
  line.release();
  state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(BM_open, road, roadCentreline)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_insertElevationPoint)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_writeBack)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK_CAPTURE(BM_open, straight, straightRun)->Arg(1000)->Arg(2000)->Arg(4000)->Arg(8000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK_CAPTURE(BM_open, straightAtOrigin, straightRunAtOrigin)->Arg(1000)->Arg(2000)->Arg(4000)->Arg(8000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace

BENCHMARK_MAIN();
