// The module against the plain second implementation in reference/, on
// generated alignments: loaded points, stations and tolerance, the vertices
// written after every edit, result codes and printed messages, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "drawing_fixture.h"
#include "featureline/errors.h"
#include "featureline/featureline.h"
#include "reference/api.h"
#include "vora/featureline.h"

namespace vora::test {
namespace {

using flref::Line;
using flref::Model;

bool same(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b)); }
bool same(const AcGePoint3d& a, const AcGePoint3d& b) { return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z); }

std::string str(const AcGePoint3d& p) {
  char buf[160];
  std::snprintf(buf, sizeof buf, "(%.17g, %.17g, %.17g)", p.x, p.y, p.z);
  return buf;
}

// Random alignments: straight runs (some with collinear or nearly collinear
// inner vertices) and arcs of various radii and angular steps (some above the
// 30 degree limit, some too short to count), grade changes and vertical steps
// inside arcs, repeated vertices, near the origin or at survey coordinates.
class AlignmentGen {
public:
  explicit AlignmentGen(std::uint64_t seed) : rng_(seed) {}
  double uni(double a, double b) { return std::uniform_real_distribution<double>(a, b)(rng_); }
  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }
  bool chance(double p) { return uni(0.0, 1.0) < p; }

  std::vector<AcGePoint3d> alignment() {
    std::vector<AcGePoint3d> v;
    if (chance(0.02)) {
      // Collapses to a single point once the repeated vertex is dropped.
      const AcGePoint3d p(uni(1e5, 1e6), uni(1e5, 1e6), uni(0, 800));
      return {p, p};
    }
    AcGePoint3d at = chance(0.5) ? AcGePoint3d(uni(-50, 50), uni(-50, 50), uni(-5, 5))
                                 : AcGePoint3d(uni(1e5, 1e6), uni(1e5, 1e6), uni(0, 800));
    double heading = uni(0, 2 * kPi), grade = uni(-0.08, 0.08);
    v.push_back(at);
    const int parts = 1 + pick(5);
    for (int part = 0; part < parts; ++part) {
      if (chance(0.1)) {
        // An exact straight run: dyadic steps from a dyadic point, so that no
        // coordinate is rounded; long enough that scanning it costs.
        static const double steps[][2] = {{0.5, 0.25}, {1, 0}, {0, -2}, {-0.75, 0.125}, {3, -4}, {0.5, 0.5}};
        const double* d = steps[pick(6)];
        AcGePoint3d p(std::round(at.x * 8) / 8, std::round(at.y * 8) / 8, at.z);
        for (int k = 10 + pick(50); k > 0; --k) {
          v.push_back(p);
          p += AcGeVector3d(d[0], d[1], chance(0.1) ? uni(-1, 1) : 0.0);
        }
        at = v.back();
        heading = std::atan2(d[1], d[0]);
      } else if (chance(0.4)) {
        const double len = uni(2, 300);
        const int pieces = 1 + pick(4);
        const bool jitter = chance(0.3);
        for (int k = 1; k <= pieces; ++k) {
          const double d = len * k / pieces;
          double off = jitter && k < pieces ? std::pow(10.0, uni(-12, -6)) * (chance(0.5) ? 1 : -1) : 0.0;
          if (chance(0.2)) grade = uni(-0.08, 0.08);
          v.emplace_back(at.x + d * std::cos(heading) - off * std::sin(heading),
                         at.y + d * std::sin(heading) + off * std::cos(heading), at.z + grade * d);
          if (chance(0.05)) v.push_back(v.back() + AcGeVector3d(0, 0, uni(-3, 3)));  // a vertical segment
        }
        at = v.back();
      } else {
        static const double steps[] = {5, 10, 20, 29.99, 30, 30.01, 31, 45, 1, 2.5};
        const double step = (chance(0.7) ? steps[pick(10)] : uni(0.5, 35)) * kDeg;
        const double r = std::pow(10.0, uni(0.3, 3.3));
        const double sense = chance(0.5) ? 1.0 : -1.0;
        const int count = 1 + pick(std::max(2, std::min(18, static_cast<int>(1.6 * kPi / step))));
        const AcGePoint2d c(at.x - sense * r * std::sin(heading), at.y + sense * r * std::cos(heading));
        const double a0 = std::atan2(at.y - c.y, at.x - c.x);
        double z = at.z;
        for (int k = 1; k <= count; ++k) {
          if (chance(0.15)) grade = uni(-0.08, 0.08);
          const double a = a0 + sense * step * k;
          z += grade * r * step;
          v.emplace_back(c.x + r * std::cos(a), c.y + r * std::sin(a), z);
          if (chance(0.05)) {
            z += uni(-2, 2);
            v.emplace_back(v.back().x, v.back().y, z);
          }
        }
        heading += sense * step * count;
        at = v.back();
      }
      if (chance(0.15)) v.push_back(chance(0.5) ? v.back() : v.back() + AcGeVector3d(1e-13, 0, 0));
    }
    if (chance(0.03)) v[static_cast<std::size_t>(pick(static_cast<int>(v.size())))].z = std::nan("");
    return v;
  }

  double midOrdinate() {
    static const double values[] = {0.015, 0.015, 0.001, 0.1, 0.5, 5.0, 80.0, 2e-4};
    return values[pick(8)];
  }

private:
  std::mt19937_64 rng_;
};

class FeaturelineCrosscheck : public DrawingFixture {
protected:
  // The module's model of id against the reference loaded from line.
  void compareLoad(AcDbObjectId id, const Line& line, double def, const std::string& what) {
    compareLoad([id] { return std::make_unique<Featureline>(id, AcDb::kForRead); }, line, def, what);
  }
  template <class Open>
  void compareLoad(Open&& open, const Line& line, double def, const std::string& what) {
    Model ref;
    std::string refOut;
    bool refFailed = false;
    int refError = -1;
    try {
      ref.load(line.vertices, line.marked ? line.stored : def);
    } catch (const flref::FlError& e) {
      refFailed = true;
      refError = e.value;
    }
    try {
      const std::unique_ptr<Featureline> opened = open();
      Featureline& fl = *opened;
      ASSERT_FALSE(refFailed) << what << ": the reference failed with " << refError;
      EXPECT_TRUE(same(fl.tolerance().equalPoint(), ref.tol.equalPoint())) << what;
      EXPECT_TRUE(same(fl.midOrdinateDistance(), ref.mod)) << what;
      ASSERT_EQ(fl.numPoints(), ref.points.size()) << what;
      for (std::size_t i = 0; i < ref.points.size(); ++i) {
        const auto& a = fl.points()[i];
        const auto& b = ref.points[i];
        EXPECT_TRUE(same(a.position, b.pos)) << what << " point " << i << str(a.position) << " vs " << str(b.pos);
        EXPECT_TRUE(same(a.bulge, b.bulge)) << what << " bulge " << i << ": " << a.bulge << " vs " << b.bulge;
        EXPECT_TRUE(same(a.arcDistance, b.arcDistance)) << what << " arcDistance " << i;
        EXPECT_EQ(a.type, b.type) << what << " type " << i;
        arcs_ += flref::nonZero(b.bulge) ? 1 : 0;
        breaks_ += b.type;
        EXPECT_TRUE(same(fl.stations()[i], ref.stations[i])) << what << " station " << i;
      }
      fl.release();
    } catch (FeaturelineError e) {
      EXPECT_TRUE(refFailed) << what << ": the module failed with " << static_cast<int>(e);
      EXPECT_EQ(static_cast<int>(e), refError) << what;
    }
    ++loads_;
  }

  void compareVertices(AcDbObjectId id, const Line& line, const std::string& what) {
    const auto got = verticesOf(id);
    ASSERT_EQ(got.size(), line.vertices.size()) << what;
    for (std::size_t i = 0; i < got.size(); ++i)
      ASSERT_TRUE(same(got[i], line.vertices[i])) << what << " vertex " << i << str(got[i]) << " vs "
                                                  << str(line.vertices[i]);
  }

  // Every chord written for an arc stays within the mid ordinate distance of it.
  static void checkChords(const Line& line, const std::string& what) {
    for (const auto& run : line.runs) {
      for (std::size_t k = run.first; k < run.last; ++k) {
        const AcGePoint2d a = line.vertices[k].convert2d(), b = line.vertices[k + 1].convert2d();
        const AcGePoint2d mid(a.x + (b.x - a.x) / 2, a.y + (b.y - a.y) / 2);
        const double slack = 1e-14 * (std::fabs(run.centre.x) + std::fabs(run.centre.y) + run.radius);
        ASSERT_LE(run.radius - mid.distanceTo(run.centre), line.mod + slack) << what << " chord " << k;
      }
    }
  }

  std::size_t loads_ = 0, edits_ = 0, arcs_ = 0, breaks_ = 0, messages_ = 0;
  std::map<int, int> codes_;
};

TEST_F(FeaturelineCrosscheck, GeneratedAlignmentsLoadAndEditAlike) {
  AlignmentGen gen(20261123);
  for (int round = 0; round < 150; ++round) {
    const std::string tag = "alignment " + std::to_string(round);
    Line line;
    line.vertices = gen.alignment();
    line.marked = !gen.chance(0.15);
    line.stored = gen.midOrdinate();
    const double def = gen.chance(0.5) ? 0.015 : gen.midOrdinate();
    setDefaultMidOrdinateDistance(def);
    const AcDbObjectId id = line.marked ? addFeatureline(line.vertices, line.stored) : addPolyline(line.vertices);
    compareLoad(id, line, def, tag);
    if (HasFatalFailure()) return;
    {
      // The same vertices in a polyline outside the drawing: no vertex has an id.
      AcGePoint3dArray pts;
      for (const auto& p : line.vertices) pts.append(p);
      std::unique_ptr<AcDb3dPolyline> loose(new AcDb3dPolyline(AcDb::k3dSimplePoly, pts));
      Line unmarked = line;
      unmarked.marked = false;
      compareLoad([&] { return std::make_unique<Featureline>(loose.get(), AcDb::kForRead); }, unmarked, def,
                  tag + " outside the drawing");
      if (HasFatalFailure()) return;
    }

    for (int step = 0; step < 8; ++step) {
      Model now;
      try {
        now.load(line.vertices, line.marked ? line.stored : def);
      } catch (...) {
        // No longer a feature line: the functions report why and give up.
        std::string refOut;
        EXPECT_EQ(vora_featureline_insert_elevpt(id, 0.0, 1.0), flref::insertElevpt(line, def, refOut, 0.0, 1.0));
        EXPECT_EQ(printed(), refOut) << tag;
        messages_ += refOut.empty() ? 0 : 1;
        break;
      }
      const std::size_t n = now.points.size();
      const double total = now.stations.back();
      const std::string what = tag + " step " + std::to_string(step);
      std::string refOut;
      int refCode = 0, got = 0;
      auto index = [&] { return gen.chance(0.1) ? static_cast<int>(n) + gen.pick(2) : gen.pick(static_cast<int>(n)); };
      switch (gen.pick(9)) {
        case 0: {
          const double s = gen.chance(0.25) ? gen.uni(-1, total + 1) : gen.uni(0, total);
          const double z = gen.uni(-10, 900);
          refCode = flref::insertElevpt(line, def, refOut, s, z);
          got = vora_featureline_insert_elevpt(id, s, z);
          break;
        }
        case 1: {
          const auto& near = now.points[static_cast<std::size_t>(gen.pick(static_cast<int>(n)))].pos;
          // Sometimes onto a point of the line, which collapses a segment.
          const AcGePoint3d p =
              gen.chance(0.2) ? near : near + AcGeVector3d(gen.uni(-20, 20), gen.uni(-20, 20), gen.uni(-3, 3));
          const double s = gen.uni(-0.5, total + 0.5);
          const double b = gen.chance(0.6) ? 0.0 : gen.uni(-0.4, 0.4);
          refCode = flref::insertFeaturePoint(line, def, refOut, p, s, b);
          got = vora_featureline_insert_feature_point(id, p.x, p.y, p.z, s, b);
          break;
        }
        case 2:
        case 3: {
          std::vector<int> idx{index()};
          if (gen.chance(0.3)) idx.push_back(index());
          const bool elevationOnly = gen.chance(0.5);
          refCode = flref::erase(line, def, refOut, idx, elevationOnly);
          got = elevationOnly ? vora_featureline_erase_elevpt(id, idx.data(), static_cast<int>(idx.size()))
                              : vora_featureline_erase_feature_point(id, idx.data(), static_cast<int>(idx.size()));
          break;
        }
        case 4: {
          std::vector<int> idx;
          std::vector<double> z;
          for (int k = 1 + gen.pick(3); k > 0; --k) {
            idx.push_back(index());
            z.push_back(gen.chance(0.05) ? std::numeric_limits<double>::quiet_NaN() : gen.uni(-10, 900));
          }
          refCode = flref::setElevpt(line, def, refOut, idx, z);
          got = vora_featureline_set_elevpt(id, idx.data(), z.data(), static_cast<int>(idx.size()));
          break;
        }
        case 5: {
          std::vector<int> idx;
          for (int k = 1 + gen.pick(3); k > 0; --k) idx.push_back(gen.pick(static_cast<int>(n)));
          std::vector<int> mine = idx;
          const double z0 = gen.uni(0, 500), z1 = gen.uni(0, 500);
          refCode = flref::interpolate(line, def, refOut, mine, z0, z1);
          got = vora_featureline_interpolate(id, z0, z1, idx.data(), static_cast<int>(idx.size()));
          EXPECT_EQ(idx, mine) << what << ": sorted in place";
          break;
        }
        case 6: {
          const double choices[] = {now.mod, now.mod * 2, now.mod / 3, 0.0, now.tol.equalPoint(),
                                    std::numeric_limits<double>::quiet_NaN(), gen.midOrdinate()};
          const double d = choices[gen.pick(7)];
          const bool recalc = gen.chance(0.5);
          refCode = flref::setMidOrdinate(line, def, refOut, recalc, d);
          got = vora_featureline_set_mid_ordinate_dist(id, recalc ? 1 : 0, d);
          break;
        }
        case 7: {
          double* coords = nullptr;
          int* types = nullptr;
          int coordCount = -1, typeCount = -1;
          got = vora_featureline_get_elevpts(id, &coords, &coordCount, &types, &typeCount);
          ASSERT_EQ(coordCount, static_cast<int>(4 * n)) << what;
          ASSERT_EQ(typeCount, static_cast<int>(n)) << what;
          for (std::size_t i = 0; i < n; ++i) {
            EXPECT_TRUE(same(AcGePoint3d(coords[4 * i], coords[4 * i + 1], coords[4 * i + 2]), now.points[i].pos));
            EXPECT_TRUE(same(coords[4 * i + 3], now.stations[i])) << what << " station " << i;
            EXPECT_EQ(static_cast<std::uint32_t>(types[i]), now.points[i].type) << what << " type " << i;
          }
          vora_free(coords);
          vora_free(types);
          double d = 0.0;
          EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(id, &d), 0);
          EXPECT_TRUE(same(d, now.mod)) << what;
          Featureline fl(id, AcDb::kForRead);
          fl.dump();
          fl.release();
          refOut = flref::dump(now);
          break;
        }
        default: {
          // The model's own move and set operations, with their index errors.
          const std::size_t i = static_cast<std::size_t>(index());
          const bool vertical = gen.chance(0.5), useMove = gen.chance(0.5);
          const AcGeVector3d d = vertical ? AcGeVector3d(0, 0, gen.uni(-5, 5))
                                          : AcGeVector3d(gen.uni(-3, 3), gen.uni(-3, 3), gen.uni(-1, 1));
          Model ref;
          ref.load(line.vertices, line.marked ? line.stored : def);
          int refResult, result;
          const AcGePoint3d target = (i < n ? now.points[i].pos : AcGePoint3d::kOrigin) + d;
          try {
            refResult = useMove ? ref.movePoint(i, d) : ref.setPointPosition(i, target);
          } catch (const flref::FlError& e) {
            refResult = -e.value - 1;
          }
          Featureline fl(id, AcDb::kForWrite);
          try {
            result = useMove ? fl.movePoint(i, d) : fl.setPointPosition(i, target);
          } catch (FeaturelineError e) {
            result = -static_cast<int>(e) - 1;
          }
          EXPECT_EQ(result, refResult) << what << (useMove ? " move " : " set ") << i;
          fl.release();
          line.vertices = ref.vertices;
          line.runs = ref.runs;
          line.mod = ref.mod;
          break;
        }
      }
      EXPECT_EQ(got, refCode) << what;
      ++codes_[refCode];
      EXPECT_EQ(printed(), refOut) << what;
      messages_ += refOut.empty() ? 0 : 1;
      compareVertices(id, line, what);
      checkChords(line, what);
      if (HasFatalFailure()) return;
      compareLoad(id, line, def, what);
      if (HasFatalFailure()) return;
      ++edits_;
    }
  }
  std::printf("[ crosscheck ] %zu loads (%zu arcs, %zu grade breaks), %zu edits (%zu with printed output) compared; codes:",
              loads_, arcs_, breaks_, edits_, messages_);
  for (const auto& [code, count] : codes_) std::printf(" %d x%d", code, count);
  std::printf("\n");
}

}  // namespace
}  // namespace vora::test
