// Distances and planar intersections, one benchmark per family, on inputs
// drawn once from a fixed seed. BM_baseline_orientation2D times the cheapest
// kernel call on the same points, so the others can be read as ratios to it.
#include <benchmark/benchmark.h>

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

std::vector<double> randomRadii(unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> radius(100.0, 1500.0);
  std::vector<double> v(kPoints);
  for (double& r : v) r = radius(rng);
  return v;
}

std::vector<double> randomAngles(unsigned seed) {
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
  std::vector<double> v(kPoints);
  for (double& a : v) a = angle(rng);
  return v;
}

const double* at(const std::vector<double>& p, std::size_t i) { return &p[3 * (i % kPoints)]; }

void BM_baseline_orientation2D(benchmark::State& state) {
  const auto p = randomPoints(1);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vora_orientation2D(at(p, i), at(p, i + 1), at(p, i + 2)));
    ++i;
  }
}
BENCHMARK(BM_baseline_orientation2D);

// Distances: arg 0 line (signed, with foot and param), 1 line in space,
// 2 arc (signed, with foot and param), 3 plane.
void BM_distances(benchmark::State& state) {
  const auto p = randomPoints(1);
  const auto r = randomRadii(2);
  const auto ang = randomAngles(3);
  const int which = static_cast<int>(state.range(0));
  double foot[3], param;
  std::size_t i = 0;
  for (auto _ : state) {
    double d = 0.0;
    switch (which) {
      case 0: d = vora_distpointlinesigned(at(p, i), at(p, i + 1), at(p, i + 2), foot, &param); break;
      case 1: d = vora_distpointline3d(at(p, i), at(p, i + 1), at(p, i + 2), foot, &param); break;
      case 2: {
        const double* c = at(p, i);
        const double circle[3] = {c[0], c[1], r[i % kPoints]};
        const double angles[2] = {ang[i % kPoints], ang[(i + 1) % kPoints]};
        d = vora_distpointarcsigned(circle, angles, at(p, i + 1), foot, &param);
        break;
      }
      default: d = vora_distpointplane(at(p, i), at(p, i + 1), at(p, i + 2), foot); break;
    }
    benchmark::DoNotOptimize(d);
    benchmark::DoNotOptimize(foot);
    ++i;
  }
}
BENCHMARK(BM_distances)->ArgName("line_line3d_arc_plane")->DenseRange(0, 3);

// Random segments: a mix of crossings and misses, steep and flat.
void BM_intlineline(benchmark::State& state) {
  const auto p = randomPoints(4);
  const unsigned char infinite = static_cast<unsigned char>(state.range(0));
  double out[3];
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(vora_intlineline(at(p, i), at(p, i + 1), at(p, i + 2), at(p, i + 3), out, infinite,
                                              infinite));
    benchmark::DoNotOptimize(out);
    i += 2;
  }
}
BENCHMARK(BM_intlineline)->ArgName("infinite")->Arg(0)->Arg(1);

// Arg 0: line-circle; 1: line-arc with clipping.
void BM_intlinecircle_arc(benchmark::State& state) {
  const auto p = randomPoints(5);
  const auto r = randomRadii(6);
  const auto ang = randomAngles(7);
  const bool arc = state.range(0) != 0;
  double out1[3], out2[3];
  std::size_t i = 0;
  for (auto _ : state) {
    const double radius = r[i % kPoints];
    int n;
    if (arc) {
      n = vora_intlinearc(at(p, i), at(p, i + 1), at(p, i + 2), radius, ang[i % kPoints], ang[(i + 1) % kPoints],
                          out1, out2, 0, 0);
    } else {
      n = vora_intlinecircle(at(p, i), at(p, i + 1), at(p, i + 2), radius, out1, out2, 0);
    }
    benchmark::DoNotOptimize(n);
    benchmark::DoNotOptimize(out1);
    benchmark::DoNotOptimize(out2);
    ++i;
  }
}
BENCHMARK(BM_intlinecircle_arc)->ArgName("arc")->Arg(0)->Arg(1);

// Arg 0: circle-circle; 1: arc-arc with both arcs clipped.
void BM_intcircle_arc(benchmark::State& state) {
  const auto p = randomPoints(8);
  const auto r = randomRadii(9);
  const auto ang = randomAngles(10);
  const bool arc = state.range(0) != 0;
  double out1[3], out2[3];
  std::size_t i = 0;
  for (auto _ : state) {
    const double r1 = r[i % kPoints], r2 = r[(i + 1) % kPoints];
    int n;
    if (arc) {
      n = vora_intarcarc(at(p, i), r1, ang[i % kPoints], ang[(i + 1) % kPoints], at(p, i + 1), r2,
                         ang[(i + 2) % kPoints], ang[(i + 3) % kPoints], out1, out2, 0, 0);
    } else {
      n = vora_intcirclecircle(at(p, i), r1, at(p, i + 1), r2, out1, out2);
    }
    benchmark::DoNotOptimize(n);
    benchmark::DoNotOptimize(out1);
    benchmark::DoNotOptimize(out2);
    ++i;
  }
}
BENCHMARK(BM_intcircle_arc)->ArgName("arc")->Arg(0)->Arg(1);

}  // namespace

BENCHMARK_MAIN();
