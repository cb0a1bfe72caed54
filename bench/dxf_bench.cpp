// DXF load and save of large drawings: 200,000 LINE entities, and one 3D
// polyline of 200,000 vertices, both R2018 as written by this host. The files
// are left in $VORA_BENCH_DIR (default /tmp/vora_dxf_bench) so that
// bench/dxf_bench_ezdxf.py can time ezdxf on the same bytes.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "host/dxf/dxfio.h"
#include "vora/arx.h"

namespace {

namespace fs = std::filesystem;

std::string benchDir() {
  const char* env = std::getenv("VORA_BENCH_DIR");
  const std::string dir = env ? env : "/tmp/vora_dxf_bench";
  fs::create_directories(dir);
  return dir;
}

std::wstring wide(const std::string& s) { return std::wstring(s.begin(), s.end()); }

void appendToModelSpace(AcDbDatabase* db, AcDbEntity* e) {
  AcDbBlockTableRecord* ms = nullptr;
  acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForWrite);
  ms->appendAcDbEntity(e);
  ms->close();
}

// Builds the drawing through the API, saves it, and returns the path.
std::string makeLines() {
  const std::string path = benchDir() + "/lines-200k.dxf";
  if (fs::exists(path)) return path;
  AcDbDatabase db(true, true);
  AcDbBlockTableRecord* ms = nullptr;
  acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite);
  for (int i = 0; i < 200000; ++i) {
    auto* l = new AcDbLine(AcGePoint3d(i * 0.1, i * 0.2, 0), AcGePoint3d(i * 0.1 + 1.23456789, i * 0.2 - 3.3, 0.5));
    ms->appendAcDbEntity(l);
    l->close();
  }
  ms->close();
  db.dxfOut(wide(path).c_str());
  return path;
}

std::string makePolyline() {
  const std::string path = benchDir() + "/pline3d-200k.dxf";
  if (fs::exists(path)) return path;
  AcDbDatabase db(true, true);
  auto* p = new AcDb3dPolyline;
  appendToModelSpace(&db, p);
  for (int i = 0; i < 200000; ++i) {
    auto* v = new AcDb3dPolylineVertex(AcGePoint3d(i * 0.25, 1000.0 + i * 0.125, 3.0 + (i % 17) * 0.0625));
    p->appendVertex(v);
    v->close();
  }
  p->close();
  db.dxfOut(wide(path).c_str());
  return path;
}

void load(benchmark::State& state, const std::string& path) {
  const auto size = static_cast<std::int64_t>(fs::file_size(path));
  for (auto _ : state) {
    auto db = std::make_unique<AcDbDatabase>(false, true);
    if (db->dxfIn(wide(path).c_str()) != Acad::eOk) state.SkipWithError(vora_host::dxf::lastErrorMessage().c_str());
    benchmark::DoNotOptimize(db.get());
  }
  state.SetBytesProcessed(state.iterations() * size);
}

// Save of a loaded drawing: unchanged records are copied as read.
void save(benchmark::State& state, const std::string& path) {
  auto db = std::make_unique<AcDbDatabase>(false, true);
  db->dxfIn(wide(path).c_str());
  const std::string out = benchDir() + "/out.dxf";
  for (auto _ : state) {
    if (db->dxfOut(wide(out).c_str()) != Acad::eOk) state.SkipWithError(vora_host::dxf::lastErrorMessage().c_str());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(out)));
}

// Save with every record written from the objects' fields (a drawing made in
// memory): the worst case of the writer.
void saveRegenerated(benchmark::State& state, const std::string& path) {
  auto db = std::make_unique<AcDbDatabase>(false, true);
  db->dxfIn(wide(path).c_str());
  // Marking every object changed makes the writer regenerate each record.
  AcDbBlockTableRecord* ms = nullptr;
  acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead);
  AcDbBlockTableRecordIterator* it = nullptr;
  ms->newIterator(it);
  for (; !it->done(); it->step()) {
    AcDbEntity* e = nullptr;
    if (it->getEntity(e, AcDb::kForWrite) != Acad::eOk) continue;
    if (auto* p = AcDb3dPolyline::cast(e)) {
      AcDbObjectIterator* vi = p->vertexIterator();
      for (; !vi->done(); vi->step()) {
        AcDbObject* v = nullptr;
        if (acdbOpenObject(v, vi->objectId(), AcDb::kForWrite) == Acad::eOk) v->close();
      }
      delete vi;
    }
    e->close();
  }
  delete it;
  ms->close();
  const std::string out = benchDir() + "/out-regenerated.dxf";
  for (auto _ : state) {
    if (db->dxfOut(wide(out).c_str()) != Acad::eOk) state.SkipWithError(vora_host::dxf::lastErrorMessage().c_str());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(out)));
}

void BM_DxfLoad_Lines200k(benchmark::State& s) { load(s, makeLines()); }
void BM_DxfSave_Lines200k(benchmark::State& s) { save(s, makeLines()); }
void BM_DxfSaveRegenerated_Lines200k(benchmark::State& s) { saveRegenerated(s, makeLines()); }
void BM_DxfLoad_Polyline3d200k(benchmark::State& s) { load(s, makePolyline()); }
void BM_DxfSave_Polyline3d200k(benchmark::State& s) { save(s, makePolyline()); }
void BM_DxfSaveRegenerated_Polyline3d200k(benchmark::State& s) { saveRegenerated(s, makePolyline()); }

BENCHMARK(BM_DxfLoad_Lines200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DxfSave_Lines200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DxfSaveRegenerated_Lines200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DxfLoad_Polyline3d200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DxfSave_Polyline3d200k)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DxfSaveRegenerated_Polyline3d200k)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
