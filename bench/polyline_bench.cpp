// Polyline functions on survey-sized inputs: every family at 10^5 and 10^6
// vertices. The polylines are random walks drawn once from a fixed seed, with
// every other segment an arc, so each run times the same work.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <map>
#include <random>

#include "geometry/bulge.h"
#include "vora/vora.h"

namespace {

struct Pline {
  AcGePoint3dArray pts;
  AcGeDoubleArray bulges;
  AcGePoint3dArray packed;  // bulges in z, for vora_tessellatepline
  double total = 0.0;
};

const Pline& pline(int n) {
  static std::map<int, Pline> cache;
  auto it = cache.find(n);
  if (it != cache.end()) return it->second;
  Pline& p = cache[n];
  std::mt19937_64 rng(12345);
  std::uniform_real_distribution<double> step(-10.0, 10.0);
  std::uniform_real_distribution<double> bulge(0.05, 0.6);
  std::uniform_real_distribution<double> rise(-0.5, 0.5);
  double x = 500000.0, y = 4000000.0, z = 100.0;  // survey-like coordinates
  for (int i = 0; i < n; ++i) {
    const double b = i % 2 == 0 ? (rng() & 1 ? bulge(rng) : -bulge(rng)) : 0.0;
    p.pts.append(AcGePoint3d(x, y, z));
    p.bulges.append(b);
    p.packed.append(AcGePoint3d(x, y, b));
    x += 5.0 + std::fabs(step(rng));
    y += step(rng);
    z += rise(rng);
  }
  p.total = vora_plinelength2D(&p.pts, &p.bulges, false);
  return p;
}

void sizes(benchmark::internal::Benchmark* b) {
  b->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}

void BM_plinelength(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    AcGeDoubleArray lengths;
    benchmark::DoNotOptimize(vora_plinelength(&p.pts, &p.bulges, false, 2, &lengths));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_plinelength)->Apply(sizes);

void BM_paramPtPline2D(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  const AcGePoint3d q = vora_ptParamPline2D(&p.pts, &p.bulges, false, state.range(0) * 0.7 + 0.5);
  const double off[3] = {q.x + 0.25, q.y - 0.25, 0.0};
  for (auto _ : state) benchmark::DoNotOptimize(vora_paramPtPline2D(&p.pts, &p.bulges, false, off, false));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_paramPtPline2D)->Apply(sizes);

void BM_distPtPline2D(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  const AcGePoint3d q = vora_ptParamPline2D(&p.pts, &p.bulges, false, state.range(0) * 0.7 + 0.5);
  for (auto _ : state) benchmark::DoNotOptimize(vora_distPtPline2D(&p.pts, &p.bulges, false, &q.x, true));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_distPtPline2D)->Apply(sizes);

void BM_ptDistPline2D(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  double out[3];
  for (auto _ : state) benchmark::DoNotOptimize(vora_ptDistPline2D(&p.pts, &p.bulges, false, p.total * 0.7, out));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ptDistPline2D)->Apply(sizes);

void BM_ptParamPline2D(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  const double param = state.range(0) * 0.7 + 0.5;
  for (auto _ : state) benchmark::DoNotOptimize(vora_ptParamPline2D(&p.pts, &p.bulges, false, param));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ptParamPline2D)->Apply(sizes);

void BM_tessellatepline(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  std::int64_t produced = 0;
  for (auto _ : state) {
    AcGePoint3dArray out;
    benchmark::DoNotOptimize(vora_tessellatepline(&p.packed, false, 0.01, &out));
    produced = out.length();
  }
  state.counters["out_pts"] = static_cast<double>(produced);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_tessellatepline)->Apply(sizes);

void BM_tessellate3Dpline(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  std::int64_t produced = 0;
  for (auto _ : state) {
    AcGePoint3dArray out;
    AcGeDoubleArray outB;
    double dev = 0.0;
    benchmark::DoNotOptimize(
        vora_tessellate3Dpline(&p.pts, &p.bulges, false, 0.01, 0.0, 0.39269908169872414, 0.0, &out, &outB, &dev));
    produced = out.length();
  }
  state.counters["out_pts"] = static_cast<double>(produced);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_tessellate3Dpline)->Apply(sizes);

void BM_addpoint3Dpline(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    AcGePoint3dArray out;
    AcGeDoubleArray outB;
    benchmark::DoNotOptimize(vora_addpoint3Dpline(&p.pts, &p.bulges, false, p.total * 0.7, &out, &outB));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_addpoint3Dpline)->Apply(sizes);

// Baseline for the figures above: one pass that only copies the vertices and
// bulges into fresh arrays, the least any function producing a new polyline
// can do.
void BM_copyBaseline(benchmark::State& state) {
  const Pline& p = pline(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    AcGePoint3dArray out;
    AcGeDoubleArray outB;
    out.append(p.pts);
    outB.append(p.bulges);
    benchmark::DoNotOptimize(out.asArrayPtr());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_copyBaseline)->Apply(sizes);

// Per-segment primitives, for scale.
void BM_bulge2arc(benchmark::State& state) {
  const double p1[3] = {1.0, 0.0, 0.0}, p2[3] = {0.0, 1.0, 0.0};
  double cr[3], ang[3];
  for (auto _ : state) {
    vora_bulge2arc(p1, p2, 0.41421356237309503, cr, ang);
    benchmark::DoNotOptimize(cr);
    benchmark::DoNotOptimize(ang);
  }
}
BENCHMARK(BM_bulge2arc);

void BM_arc2pts(benchmark::State& state) {
  const double p1[3] = {1.0, 0.0, 0.0}, p2[3] = {-1.0, 0.0, 0.0};
  AcGePoint3dArray out;
  for (auto _ : state) {
    out.setLogicalLength(0);
    benchmark::DoNotOptimize(vora_arc2pts(p1, p2, 1.0, 0.001, 0.0, 1.0, 0, &out, nullptr));
  }
}
BENCHMARK(BM_arc2pts);

}  // namespace

BENCHMARK_MAIN();
