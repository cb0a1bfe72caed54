// Planes and triangles, one benchmark per family, on inputs drawn once from a
// fixed seed. BM_baseline_distpointplane times a plane distance on the same
// points, so the others can be read as ratios to it.
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <vector>

#include "vora/vora.h"

namespace {

constexpr std::size_t kPoints = 4096;

std::vector<double> randomPoints(unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
  std::vector<double> v(3 * kPoints);
  for (double& c : v) c = coord(rng);
  return v;
}

const double* at(const std::vector<double>& p, std::size_t i) { return &p[3 * (i % kPoints)]; }

// Points on the planes of the triangles (i, i+1, i+2) of p, at barycentric
// weights of t1 and t2 drawn from [0, 0.65]: about one in nine falls outside
// the triangle.
std::vector<double> aimPoints(const std::vector<double>& p, unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> weight(0.0, 0.65);
  std::vector<double> v(3 * kPoints);
  for (std::size_t i = 0; i < kPoints; ++i) {
    const double s = weight(rng), w = weight(rng);
    const double *t0 = at(p, i), *t1 = at(p, i + 1), *t2 = at(p, i + 2);
    for (int k = 0; k < 3; ++k) v[3 * i + k] = t0[k] + s * (t1[k] - t0[k]) + w * (t2[k] - t0[k]);
  }
  return v;
}

// Share of calls that answered 1, shown next to the time.
void countHits(benchmark::State& state, double hits) {
  state.counters["hit"] = benchmark::Counter(hits, benchmark::Counter::kAvgIterations);
}

void BM_baseline_distpointplane(benchmark::State& state) {
  const auto p = randomPoints(1);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vora_distpointplane(at(p, i), at(p, i + 1), at(p, i + 2), nullptr));
    ++i;
  }
}
BENCHMARK(BM_baseline_distpointplane);

void BM_intlineplane(benchmark::State& state) {
  const auto p = randomPoints(1);
  double out[3];
  std::size_t i = 0;
  double hits = 0.0;
  for (auto _ : state) {
    hits += vora_intlineplane(at(p, i), at(p, i + 1), at(p, i + 2), at(p, i + 3), out);
    benchmark::ClobberMemory();
    ++i;
  }
  countHits(state, hits);
}
BENCHMARK(BM_intlineplane);

// A closed polyline through range(0) random points, against planes through
// random points with random normals.
void BM_intplineplane(benchmark::State& state) {
  const auto p = randomPoints(1);
  AcGePoint3dArray pts;
  for (int k = 0; k < state.range(0); ++k) {
    const double* q = at(p, static_cast<std::size_t>(k));
    pts.append(AcGePoint3d(q[0], q[1], q[2]));
  }
  double out[3];
  std::size_t i = 0;
  double hits = 0.0;
  for (auto _ : state) {
    hits += vora_intplineplane(&pts, 1, at(p, i), at(p, i + 7), out);
    benchmark::ClobberMemory();
    ++i;
  }
  countHits(state, hits);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_intplineplane)->Arg(16)->Arg(1024);

// Lines from a random point towards a point of the triangle: arg 0 segment
// (ending on the plane), 1 ray.
void BM_intlinetriangle(benchmark::State& state) {
  const auto p = randomPoints(1);
  const auto a = randomPoints(2);
  const auto b = aimPoints(p, 3);
  const auto infinite = static_cast<unsigned char>(state.range(0));
  double out[3];
  std::size_t i = 0;
  double hits = 0.0;
  for (auto _ : state) {
    hits += vora_intlinetriangle(at(a, i), at(b, i), at(p, i), at(p, i + 1), at(p, i + 2), out, infinite);
    benchmark::ClobberMemory();
    ++i;
  }
  countHits(state, hits);
}
BENCHMARK(BM_intlinetriangle)->Arg(0)->Arg(1);

// The probe lies 1.0 above a point of the triangle's plane. arg 0: in plan,
// 1: in space.
void BM_pointintriangle(benchmark::State& state) {
  const auto p = randomPoints(1);
  const auto b = aimPoints(p, 3);
  const bool inSpace = state.range(0) != 0;
  std::array<double, 3> probe;
  std::size_t i = 0;
  double hits = 0.0;
  for (auto _ : state) {
    const double* q = at(b, i);
    probe = {q[0], q[1], q[2] + 1.0};
    hits += inSpace ? vora_pointintriangle3d(at(p, i), at(p, i + 1), at(p, i + 2), probe.data())
                    : vora_pointintriangle2d(at(p, i), at(p, i + 1), at(p, i + 2), probe.data());
    benchmark::ClobberMemory();
    ++i;
  }
  countHits(state, hits);
}
BENCHMARK(BM_pointintriangle)->Arg(0)->Arg(1);

void BM_intplanetriangle(benchmark::State& state) {
  const auto p = randomPoints(1);
  const auto q = randomPoints(2);
  const unsigned char snap[9] = {};
  double out1[3], out2[3];
  std::size_t i = 0;
  double hits = 0.0;
  for (auto _ : state) {
    hits += vora_intplanetriangle(at(p, i), at(p, i + 1), at(p, i + 2), at(q, i), at(q, i + 1), out1, out2, snap, 0,
                                  1e-6);
    benchmark::ClobberMemory();
    ++i;
  }
  countHits(state, hits);
}
BENCHMARK(BM_intplanetriangle);

// Pairs of random triangles: a little over a quarter of them meet.
void BM_inttriangletriangle(benchmark::State& state) {
  const auto p = randomPoints(1);
  const auto q = randomPoints(2);
  double out1[3], out2[3];
  std::size_t i = 0;
  double hits = 0.0;
  for (auto _ : state) {
    hits += vora_inttriangletriangle(at(p, i), at(p, i + 1), at(p, i + 2), at(q, i), at(q, i + 1), at(q, i + 2), out1,
                                     out2, 0, 1e-6);
    benchmark::ClobberMemory();
    ++i;
  }
  countHits(state, hits);
}
BENCHMARK(BM_inttriangletriangle);

}  // namespace

BENCHMARK_MAIN();
