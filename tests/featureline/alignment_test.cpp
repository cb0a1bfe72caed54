// Generated road alignments: tangents and curves at grid coordinates with a
// vertical profile that breaks at tangent points and inside curves. The model
// that loads must be the alignment that was drawn, and must survive being
// written back and loaded again.
#include <gtest/gtest.h>

#include <cmath>
#include <algorithm>
#include <random>
#include <vector>

#include "featureline/errors.h"
#include "featureline/geometry.h"

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;

struct Expected {
  AcGePoint3d position;
  double bulge;
  std::uint32_t type;
  double station;
};

struct Alignment {
  std::vector<AcGePoint3d> vertices;
  std::vector<Expected> points;
};

class RecordingSink : public vora::fl::VertexSink {
public:
  void put(const AcGePoint3d& p) override { vertices.push_back(p); }
  std::vector<AcGePoint3d> vertices;
};

// Elevation along the line: grade changes at the listed stations.
struct Profile {
  double z0 = 0.0;
  std::vector<std::pair<double, double>> grades;  // (from station, grade)
  double at(double s) const {
    double z = z0, from = 0.0, g = grades.front().second;
    for (std::size_t k = 1; k < grades.size() && grades[k].first <= s; ++k) {
      z += g * (grades[k].first - from);
      from = grades[k].first;
      g = grades[k].second;
    }
    return z + g * (s - from);
  }
};

Alignment generate(std::mt19937& rng, int elements) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  Alignment a;
  AcGePoint3d p(4e5 + 6e5 * unit(rng), 1e6 + 5e6 * unit(rng), 0.0);
  double heading = 2 * kPi * unit(rng);
  double station = 0.0;
  Profile profile;
  profile.z0 = 50.0 + 200.0 * unit(rng);
  profile.grades.emplace_back(0.0, 0.04 * unit(rng) - 0.02);

  // Plan first, then elevations from the profile, whose breaks are put at vertices.
  struct Vertex {
    AcGePoint2d at;
    double station;
    bool featurePoint;
    double bulge;
  };
  std::vector<Vertex> plan;
  plan.push_back({AcGePoint2d(p.x, p.y), 0.0, true, 0.0});
  for (int el = 0; el < elements; ++el) {
    // Tangent.
    const double length = 20.0 + 300.0 * unit(rng);
    AcGePoint2d end(plan.back().at.x + length * std::cos(heading), plan.back().at.y + length * std::sin(heading));
    station += length;
    plan.push_back({end, station, true, 0.0});
    if (unit(rng) < 0.5) profile.grades.emplace_back(station, 0.06 * unit(rng) - 0.03);
    if (el + 1 == elements) break;
    // Curve: at least 4 steps of at most 25 degrees.
    const double r = 60.0 + 1500.0 * unit(rng);
    const double step = (3.0 + 22.0 * unit(rng)) * kDeg;
    const int steps = std::min(4 + static_cast<int>(30 * unit(rng)), static_cast<int>(300 * kDeg / step));
    const double side = unit(rng) < 0.5 ? 1.0 : -1.0;
    const double sweep = steps * step;
    const AcGePoint2d c(end.x - side * r * std::sin(heading), end.y + side * r * std::cos(heading));
    const double a0 = std::atan2(end.y - c.y, end.x - c.x);
    plan.back().bulge = side * std::tan(sweep / 4);
    const int breakAt = unit(rng) < 0.7 ? 1 + static_cast<int>((steps - 1) * unit(rng)) : -1;
    for (int k = 1; k <= steps; ++k) {
      const double a = a0 + side * step * k;
      const double s = station + r * step * k;
      plan.push_back({AcGePoint2d(c.x + r * std::cos(a), c.y + r * std::sin(a)), s, k == steps, 0.0});
      if (k == breakAt) profile.grades.emplace_back(s, 0.06 * unit(rng) - 0.03);
    }
    station += r * sweep;
    heading += side * sweep;
  }
  std::size_t nextBreak = 1;
  double arcStart = 0.0;
  for (const Vertex& v : plan) {
    const AcGePoint3d at(v.at.x, v.at.y, profile.at(v.station));
    a.vertices.push_back(at);
    const bool isBreak = nextBreak < profile.grades.size() && std::fabs(profile.grades[nextBreak].first - v.station) < 1e-9;
    if (isBreak) ++nextBreak;
    if (v.featurePoint) {
      a.points.push_back({at, v.bulge, 0, v.station});
      arcStart = v.station;
    } else if (isBreak) {
      a.points.push_back({at, 0.0, 1, v.station});
    }
  }
  (void)arcStart;
  return a;
}

void expectModel(const std::vector<FeaturelinePoint>& got, const std::vector<double>& stations,
                 const std::vector<Expected>& want, double positionTol, const char* what, int run) {
  ASSERT_EQ(got.size(), want.size()) << what << " run " << run;
  for (std::size_t k = 0; k < want.size(); ++k) {
    EXPECT_EQ(got[k].type, want[k].type) << what << " run " << run << " point " << k;
    EXPECT_LT(got[k].position.distanceTo(want[k].position), positionTol) << what << " run " << run << " point " << k;
    EXPECT_NEAR(got[k].bulge, want[k].bulge, 1e-9) << what << " run " << run << " point " << k;
    EXPECT_NEAR(stations[k], want[k].station, 1e-6) << what << " run " << run << " point " << k;
  }
}

// Reloading fine samples of a long curve at grid coordinates may cut it into
// several arcs: the circle through three samples a few metres apart carries
// the coordinates' rounding magnified, and far samples fall off it by more
// than the point tolerance. Every drawn point must come back, with its type
// and station; what comes in addition can only be feature points inside a
// drawn curve, continuing it in the same sense.
void expectReloaded(const std::vector<FeaturelinePoint>& got, const std::vector<double>& stations,
                    const std::vector<Expected>& want, int run) {
  std::size_t g = 0;
  double arcEnd = -1.0, arcSense = 0.0;
  for (std::size_t w = 0; w < want.size(); ++w) {
    while (g < got.size() && got[g].position.distanceTo(want[w].position) > 1e-6) {
      EXPECT_EQ(got[g].type, 0u) << "run " << run << " extra point " << g;
      EXPECT_LT(stations[g], arcEnd) << "run " << run << " extra point " << g;
      EXPECT_GT(got[g].bulge * arcSense, 0.0) << "run " << run << " extra point " << g;
      ++g;
    }
    ASSERT_LT(g, got.size()) << "run " << run << " drawn point " << w << " missing";
    EXPECT_EQ(got[g].type, want[w].type) << "run " << run << " point " << w;
    EXPECT_NEAR(stations[g], want[w].station, 1e-5) << "run " << run << " point " << w;
    if (want[w].type == 0) {
      arcSense = want[w].bulge;
      arcEnd = -1.0;
      for (std::size_t k = w + 1; k < want.size() && arcSense != 0.0; ++k)
        if (want[k].type == 0) {
          arcEnd = want[k].station;
          break;
        }
    }
    ++g;
  }
  EXPECT_EQ(g, got.size()) << "run " << run;
}

TEST(FeaturelineAlignments, GeneratedAlignmentsLoadAsDrawnAndSurviveWritingBack) {
  std::mt19937 rng(7001);  // fixed seed
  for (int run = 0; run < 60; ++run) {
    const Alignment a = generate(rng, 2 + run % 6);
    AcGeTol tol;
    tol.setEqualPoint(vora::fl::pointTolerance(a.vertices.front(), a.vertices.back(), 0.015));
    // Every vertex doubled: duplicates are dropped on loading.
    std::vector<AcGePoint3d> doubled;
    for (const auto& v : a.vertices) {
      doubled.push_back(v);
      if (run % 3 == 0) doubled.push_back(v);
    }
    const auto kept = vora::fl::withoutDuplicates(doubled.data(), doubled.size(), tol);
    ASSERT_EQ(kept.size(), a.vertices.size());
    const auto points = vora::fl::buildPoints(kept, tol, vora::fl::kMaxArcStepAngle);
    std::vector<double> stations;
    vora::fl::computeStations(points, stations);
    expectModel(points, stations, a.points, 1e-12, "loaded", run);
    if (HasFailure()) return;

    RecordingSink sink;
    vora::fl::tessellate(points, tol, 0.015, sink);
    const auto again = vora::fl::buildPoints(
        vora::fl::withoutDuplicates(sink.vertices.data(), sink.vertices.size(), tol), tol, vora::fl::kMaxArcStepAngle);
    std::vector<double> againStations;
    vora::fl::computeStations(again, againStations);
    expectReloaded(again, againStations, a.points, run);
    if (HasFailure()) return;
  }
}

}  // namespace
