// Polygon functions on rings of 10^4 and 10^5 vertices drawn once from fixed
// seeds. The boolean operations are timed next to the clipping library's own
// work on the same integer paths, so the ratio shows what the conversion and
// the restoring of input vertices cost on top of the clipping.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <polyclipping/clipper.hpp>

#include "geometry/tolerance.h"
#include "vora/vora.h"

namespace {

using vora::kPi;
using PolygonSet = AcArray<AcGePoint3dArray>;

// A star-shaped counter-clockwise ring of n vertices (first vertex repeated),
// radius 900 to 1000 about (cx, cy), turned by `phase` of a step, with heights.
AcGePoint3dArray starRing(int n, double cx, double cy, double phase, unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> radius(900.0, 1000.0), height(10.0, 20.0);
  AcGePoint3dArray ring(n + 1);
  for (int i = 0; i < n; ++i) {
    const double t = 2.0 * kPi * (i + phase) / n;
    const double r = radius(rng);
    ring.append(AcGePoint3d(cx + r * std::cos(t), cy + r * std::sin(t), height(rng)));
  }
  ring.append(ring.first());
  return ring;
}

AcGePoint3dArray jitteredCircle(int n, double cx, double cy, unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> jitter(-0.005, 0.005), height(10.0, 20.0);
  AcGePoint3dArray ring(n);
  for (int i = 0; i < n; ++i) {
    const double t = 2.0 * kPi * i / n, r = 1000.0 + jitter(rng);
    ring.append(AcGePoint3d(cx + r * std::cos(t), cy + r * std::sin(t), height(rng)));
  }
  return ring;
}

AcGeDoubleArray bulgesEvery(int n, int every, double b) {
  AcGeDoubleArray a(n);
  for (int i = 0; i < n; ++i) a.append(i % every == 0 ? b : 0.0);
  return a;
}

// A near-circle ring (first vertex repeated): the arc tests of the area with
// bulges look at a handful of edges each. On the star rings a horizontal line
// near the top crosses thousands of zigzags.
AcGePoint3dArray smoothRing(int n) {
  AcGePoint3dArray ring = jitteredCircle(n, 5e5, 4e6, 5);
  ring.append(ring.first());
  return ring;
}

void setVertices(benchmark::State& state, int64_t n) {
  state.SetItemsProcessed(state.iterations() * n);
  state.counters["vertices"] = static_cast<double>(n);
}

// ---- Properties ------------------------------------------------------------------

void BM_polygonarea(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  for (auto _ : state) benchmark::DoNotOptimize(vora_polygonarea(&ring));
  setVertices(state, ring.length());
}
BENCHMARK(BM_polygonarea)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// 32 arcs: three containment tests over the whole ring, the rest through
// the ring's slabs.
void BM_polygonareaB_32arcs(benchmark::State& state) {
  const AcGePoint3dArray ring = smoothRing(static_cast<int>(state.range(0)));
  const AcGeDoubleArray b = bulgesEvery(ring.length(), ring.length() / 32, -0.3);
  for (auto _ : state) benchmark::DoNotOptimize(vora_polygonareaB(&ring, &b));
  setVertices(state, ring.length());
}
BENCHMARK(BM_polygonareaB_32arcs)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// Every fourth edge an arc: the containment tests go through the ring's slabs.
void BM_polygonareaB_quarterArcs(benchmark::State& state) {
  const AcGePoint3dArray ring = smoothRing(static_cast<int>(state.range(0)));
  const AcGeDoubleArray b = bulgesEvery(ring.length(), 4, -0.3);
  for (auto _ : state) benchmark::DoNotOptimize(vora_polygonareaB(&ring, &b));
  setVertices(state, ring.length());
}
BENCHMARK(BM_polygonareaB_quarterArcs)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_polygonCentroid2D(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  for (auto _ : state) benchmark::DoNotOptimize(vora_polygonCentroid2D(&ring));
  setVertices(state, ring.length());
}
BENCHMARK(BM_polygonCentroid2D)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_ispolygonccw(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  for (auto _ : state) benchmark::DoNotOptimize(vora_ispolygonccw(&ring));
  setVertices(state, ring.length());
}
BENCHMARK(BM_ispolygonccw)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_reversepolygon(benchmark::State& state) {
  AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  AcGeDoubleArray b = bulgesEvery(ring.length(), 3, 0.25);
  for (auto _ : state) {
    vora_reversepolygon(&ring, &b);
    benchmark::ClobberMemory();
  }
  setVertices(state, ring.length());
}
BENCHMARK(BM_reversepolygon)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_ispointinpolygon(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  const double tol = 1e-7;
  const double p[3] = {5e5 + 300.0, 4e6 - 200.0, 0.0};
  for (auto _ : state) benchmark::DoNotOptimize(vora_ispointinpolygon(&ring, p, false, &tol));
  setVertices(state, ring.length());
}
BENCHMARK(BM_ispointinpolygon)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_ispointinpolygonB_32arcs(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  const AcGeDoubleArray b = bulgesEvery(ring.length(), ring.length() / 32, -0.3);
  const double tol = 1e-7;
  const double p[3] = {5e5 + 300.0, 4e6 - 200.0, 0.0};
  for (auto _ : state) benchmark::DoNotOptimize(vora_ispointinpolygonB(&ring, &b, p, false, &tol));
  setVertices(state, ring.length());
}
BENCHMARK(BM_ispointinpolygonB_32arcs)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// ---- Boxes ------------------------------------------------------------------------

void BM_getBoundingBoxA(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  double mn[3], mx[3];
  for (auto _ : state) {
    vora_getBoundingBoxA(&ring, mn, mx);
    benchmark::DoNotOptimize(mn);
    benchmark::DoNotOptimize(mx);
  }
  setVertices(state, ring.length());
}
BENCHMARK(BM_getBoundingBoxA)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// Every fourth segment an arc: each pays an arc conversion and four arc distances.
void BM_getBoundingBoxAB_quarterArcs(benchmark::State& state) {
  const AcGePoint3dArray ring = starRing(static_cast<int>(state.range(0)), 5e5, 4e6, 0.0, 1);
  const AcGeDoubleArray b = bulgesEvery(ring.length(), 4, 0.4);
  double mn[3], mx[3];
  for (auto _ : state) {
    vora_getBoundingBoxAB(&ring, &b, mn, mx);
    benchmark::DoNotOptimize(mn);
    benchmark::DoNotOptimize(mx);
  }
  setVertices(state, ring.length());
}
BENCHMARK(BM_getBoundingBoxAB_quarterArcs)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// ---- Simplification ------------------------------------------------------------------

// A ring whose every other vertex is the midpoint of its neighbours: half of
// it goes. The copy of the input is timed on its own as the baseline.
AcGePoint3dArray ringWithMidpoints(int n) {
  const AcGePoint3dArray corners = starRing(n / 2, 5e5, 4e6, 0.0, 3);
  AcGePoint3dArray ring(n + 1);
  for (int i = 0; i + 1 < corners.length(); ++i) {
    const AcGePoint3d& a = corners[i];
    const AcGePoint3d& b = corners[i + 1];
    ring.append(a);
    ring.append(AcGePoint3d((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2));
  }
  ring.append(ring.first());
  return ring;
}

void BM_simplify_copyOnly(benchmark::State& state) {
  const AcGePoint3dArray ring = ringWithMidpoints(static_cast<int>(state.range(0)));
  AcGeDoubleArray b;
  b.setLogicalLength(ring.length(), 0.0);
  for (auto _ : state) {
    AcGePoint3dArray p = ring;
    AcGeDoubleArray q = b;
    benchmark::DoNotOptimize(p.asArrayPtr());
    benchmark::DoNotOptimize(q.asArrayPtr());
  }
  setVertices(state, ring.length());
}
BENCHMARK(BM_simplify_copyOnly)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_simplifyPoly2D_bulges(benchmark::State& state) {
  const AcGePoint3dArray ring = ringWithMidpoints(static_cast<int>(state.range(0)));
  AcGeDoubleArray b;
  b.setLogicalLength(ring.length(), 0.0);
  int removed = 0;
  for (auto _ : state) {
    AcGePoint3dArray p = ring;
    AcGeDoubleArray q = b;
    removed = vora_simplifyPoly2D(&p, &q);
    benchmark::DoNotOptimize(removed);
  }
  setVertices(state, ring.length());
  state.counters["removed"] = removed;
}
BENCHMARK(BM_simplifyPoly2D_bulges)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_simplifyPoly2D_noBulges(benchmark::State& state) {
  const AcGePoint3dArray ring = ringWithMidpoints(static_cast<int>(state.range(0)));
  AcGeDoubleArray b;
  b.setLogicalLength(ring.length(), 0.0);
  int removed = 0;
  for (auto _ : state) {
    AcGePoint3dArray p = ring;
    AcGeDoubleArray q = b;  // copied too, so the copies match the bulge case
    removed = vora_simplifyPoly2D(&p, nullptr);
    benchmark::DoNotOptimize(removed);
  }
  setVertices(state, ring.length());
  state.counters["removed"] = removed;
}
BENCHMARK(BM_simplifyPoly2D_noBulges)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// ---- Boolean operations -----------------------------------------------------------------

struct BooleanInput {
  PolygonSet subjects;
  PolygonSet clips;
};

// Two near-circles of n/2 vertices each (radius 1000, a few thousandths of
// jitter), the second moved by (300, 200): long rings, few crossings, almost
// every result vertex an input vertex.
BooleanInput twoRings(int n) {
  BooleanInput in;
  in.subjects.append(jitteredCircle(n / 2, 5e5, 4e6, 21));
  in.clips.append(jitteredCircle(n / 2, 5e5 + 300.0, 4e6 + 200.0, 22));
  return in;
}

// A grid of squares against the same grid moved by a third of a square:
// many small polygons, each square crossing four others.
BooleanInput twoGrids(int n) {
  BooleanInput in;
  const int side = static_cast<int>(std::sqrt(n / 8.0));
  for (int set = 0; set < 2; ++set) {
    const double off = set == 0 ? 0.0 : 4.0;
    PolygonSet& out = set == 0 ? in.subjects : in.clips;
    for (int i = 0; i < side; ++i)
      for (int j = 0; j < side; ++j) {
        const double x = 5e5 + 20.0 * i + off, y = 4e6 + 20.0 * j + off;
        AcGePoint3dArray sq(4);
        sq.append(AcGePoint3d(x, y, 1.0));
        sq.append(AcGePoint3d(x + 12.0, y, 2.0));
        sq.append(AcGePoint3d(x + 12.0, y + 12.0, 3.0));
        sq.append(AcGePoint3d(x, y + 12.0, 4.0));
        out.append(sq);
      }
  }
  return in;
}

int64_t vertexCount(const BooleanInput& in) {
  int64_t n = 0;
  for (const PolygonSet* s : {&in.subjects, &in.clips})
    for (const AcGePoint3dArray& p : *s) n += p.length();
  return n;
}

// The clipping library's share of the work: the same integer paths as the
// boolean operation builds.
ClipperLib::Paths gridPaths(const PolygonSet& set, double x0, double y0) {
  ClipperLib::Paths paths;
  for (const AcGePoint3dArray& polygon : set) {
    ClipperLib::Path path;
    for (const AcGePoint3d& p : polygon)
      path.emplace_back(static_cast<ClipperLib::cInt>((p.x - x0) / 1e-9), static_cast<ClipperLib::cInt>((p.y - y0) / 1e-9));
    paths.push_back(std::move(path));
  }
  return paths;
}

template <BooleanInput (*Make)(int)>
void BM_polygonOperation(benchmark::State& state) {
  const BooleanInput in = Make(static_cast<int>(state.range(0)));
  const int flags = 0x10 | static_cast<int>(state.range(1));
  std::int64_t out = 0;
  for (auto _ : state) {
    PolygonSet result;
    benchmark::DoNotOptimize(vora_polygonOperation(flags, &in.subjects, nullptr, &in.clips, &result));
    out = 0;
    for (const AcGePoint3dArray& p : result) out += p.length();
  }
  setVertices(state, vertexCount(in));
  state.counters["out"] = static_cast<double>(out);
}

// Clipper alone: AddPath for every path, then Execute.
template <BooleanInput (*Make)(int)>
void BM_clipperAddAndExecute(benchmark::State& state) {
  const BooleanInput in = Make(static_cast<int>(state.range(0)));
  const double x0 = in.subjects[0][0].x, y0 = in.subjects[0][0].y;
  const ClipperLib::Paths subj = gridPaths(in.subjects, x0, y0), clip = gridPaths(in.clips, x0, y0);
  const auto op = state.range(1) == 0 ? ClipperLib::ctUnion : ClipperLib::ctIntersection;
  for (auto _ : state) {
    ClipperLib::Clipper c;
    for (const auto& p : subj) c.AddPath(p, ClipperLib::ptSubject, true);
    for (const auto& p : clip) c.AddPath(p, ClipperLib::ptClip, true);
    ClipperLib::Paths solution;
    benchmark::DoNotOptimize(c.Execute(op, solution, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd));
  }
  setVertices(state, vertexCount(in));
}

// Clipper's Execute alone, on paths added once.
template <BooleanInput (*Make)(int)>
void BM_clipperExecute(benchmark::State& state) {
  const BooleanInput in = Make(static_cast<int>(state.range(0)));
  const double x0 = in.subjects[0][0].x, y0 = in.subjects[0][0].y;
  ClipperLib::Clipper c;
  for (const auto& p : gridPaths(in.subjects, x0, y0)) c.AddPath(p, ClipperLib::ptSubject, true);
  for (const auto& p : gridPaths(in.clips, x0, y0)) c.AddPath(p, ClipperLib::ptClip, true);
  const auto op = state.range(1) == 0 ? ClipperLib::ctUnion : ClipperLib::ctIntersection;
  for (auto _ : state) {
    ClipperLib::Paths solution;
    benchmark::DoNotOptimize(c.Execute(op, solution, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd));
  }
  setVertices(state, vertexCount(in));
}

#define VORA_BOOLEAN_BENCH(fn, make)                                                        \
  BENCHMARK_TEMPLATE(fn, make)                                                              \
      ->ArgsProduct({{10000, 100000}, {0, 1}})                                              \
      ->ArgNames({"n", "intersect"})                                                        \
      ->Unit(benchmark::kMillisecond)

VORA_BOOLEAN_BENCH(BM_polygonOperation, twoRings);
VORA_BOOLEAN_BENCH(BM_clipperAddAndExecute, twoRings);
VORA_BOOLEAN_BENCH(BM_clipperExecute, twoRings);
VORA_BOOLEAN_BENCH(BM_polygonOperation, twoGrids);
VORA_BOOLEAN_BENCH(BM_clipperAddAndExecute, twoGrids);
VORA_BOOLEAN_BENCH(BM_clipperExecute, twoGrids);

}  // namespace
BENCHMARK_MAIN();
