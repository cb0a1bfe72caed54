// Kernel functions, one benchmark per family, on inputs drawn once from a
// fixed seed so that every run times the same work.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "vora/vora.h"

namespace {

std::vector<double> randomPoints(std::size_t n, unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
  std::vector<double> v(3 * n);
  for (double& c : v) c = coord(rng);
  return v;
}

constexpr std::size_t kPoints = 4096;

void BM_orientation2D(benchmark::State& state) {
  const auto p = randomPoints(kPoints, 1);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vora_orientation2D(&p[3 * i], &p[3 * ((i + 1) % kPoints)], &p[3 * ((i + 2) % kPoints)]));
    i = (i + 1) % kPoints;
  }
}
BENCHMARK(BM_orientation2D);

void BM_collin3D(benchmark::State& state) {
  const auto p = randomPoints(kPoints, 2);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vora_collin3D(&p[3 * i], &p[3 * ((i + 1) % kPoints)], &p[3 * ((i + 2) % kPoints)]));
    i = (i + 1) % kPoints;
  }
}
BENCHMARK(BM_collin3D);

void BM_convertAngle(benchmark::State& state) {
  double v = 0.25;
  for (auto _ : state) {
    v = vora_convertAngle(v, 1, 1);
    benchmark::DoNotOptimize(v);
  }
}
BENCHMARK(BM_convertAngle);

void BM_zpt(benchmark::State& state) {
  AcGePoint3dArray pts;
  for (int i = 0; i < state.range(0); ++i) pts.append(AcGePoint3d(i * 3.0, i * 4.0, i * 0.1));
  const double length = 5.0 * static_cast<double>(state.range(0) - 1);
  double station = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vora_zpt(&pts, station));
    station += 0.37 * length;
    if (station > length) station -= length;
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_zpt)->Arg(100)->Arg(10000);

}  // namespace

BENCHMARK_MAIN();
