#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include <polyclipping/clipper.hpp>

#include "geometry/boolean_match.h"
#include "vora/vora.h"

namespace {

using PolygonSet = AcArray<AcGePoint3dArray>;

AcGePoint3dArray ring(std::initializer_list<AcGePoint3d> pts) {
  AcGePoint3dArray a;
  for (const AcGePoint3d& p : pts) a.append(p);
  return a;
}

AcGePoint3dArray square(double x, double y, double size, double z = 0.0) {
  return ring({{x, y, z}, {x + size, y, z}, {x + size, y + size, z}, {x, y + size, z}});
}

PolygonSet set(std::initializer_list<AcGePoint3dArray> polygons) {
  PolygonSet s;
  for (const AcGePoint3dArray& p : polygons) s.append(p);
  return s;
}

bool sameBits(const AcGePoint3d& a, const AcGePoint3d& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// The result vertex at (x, y) (within 1e-6), or null.
const AcGePoint3d* vertexNear(const AcGePoint3dArray& r, double x, double y) {
  for (const AcGePoint3d& p : r)
    if (std::fabs(p.x - x) < 1e-6 && std::fabs(p.y - y) < 1e-6) return &p;
  return nullptr;
}

TEST(PolygonOperation, FlagsSelectUnionOrIntersectionAndRequireBit0x10) {
  const PolygonSet a = set({square(0, 0, 1)});
  const PolygonSet b = set({square(0.5, 0.5, 1)});

  PolygonSet result = set({square(9, 9, 1)});  // appended to, never cleared
  EXPECT_EQ(vora_polygonOperation(0x01, &a, nullptr, &b, &result), 0);
  EXPECT_EQ(vora_polygonOperation(0x00, &a, nullptr, &b, &result), 0);
  EXPECT_EQ(result.length(), 1);

  ASSERT_EQ(vora_polygonOperation(0x10, &a, nullptr, &b, &result), 1);
  ASSERT_EQ(result.length(), 2);
  EXPECT_EQ(result[0].length(), 4);
  EXPECT_EQ(result[1].length(), 8);
  EXPECT_NEAR(std::fabs(vora_polygonarea(&result[1])), 1.75, 1e-12);

  for (int flags : {0x11, 0x12, 0x13, 0x1F}) {
    PolygonSet r;
    ASSERT_EQ(vora_polygonOperation(flags, &a, nullptr, &b, &r), 1) << flags;
    ASSERT_EQ(r.length(), 1);
    ASSERT_EQ(r[0].length(), 4);
    EXPECT_NEAR(std::fabs(vora_polygonarea(&r[0])), 0.25, 1e-12);
  }

  // No result array: the operation still reports success.
  EXPECT_EQ(vora_polygonOperation(0x10, &a, nullptr, &b, nullptr), 1);
}

TEST(PolygonOperation, EmptySolutionsFailAndLeaveTheResultAlone) {
  const PolygonSet a = set({square(0, 0, 1)});
  const PolygonSet far = set({square(5, 5, 1)});
  PolygonSet result = set({square(9, 9, 1)});
  EXPECT_EQ(vora_polygonOperation(0x11, &a, nullptr, &far, &result), 0);
  EXPECT_EQ(result.length(), 1);

  // A set without clips unites the subjects alone; even-odd makes a doubled
  // square vanish.
  const PolygonSet none;
  EXPECT_EQ(vora_polygonOperation(0x11, &a, nullptr, &none, &result), 0);
  const PolygonSet twice = set({square(0, 0, 1), square(0, 0, 1)});
  EXPECT_EQ(vora_polygonOperation(0x10, &twice, nullptr, &none, &result), 0);
  ASSERT_EQ(vora_polygonOperation(0x10, &a, nullptr, &none, &result), 1);
  EXPECT_EQ(result.length(), 2);
}

TEST(PolygonOperation, InputVerticesComeBackExactlyWithTheirHeights) {
  // Coordinates off the 1e-9 grid, far from the origin, with heights: the
  // truncation to the grid must not show in the result.
  const double X = 2567891.123456789123, Y = 5432109.987654321987;
  const PolygonSet a = set({ring({{X, Y, 10.25},
                                  {X + 10.000000000333, Y + 0.1e-9, 11.5},
                                  {X + 10.3, Y + 10.7777777777, 12.125},
                                  {X - 0.0000000004, Y + 10.1, 13.0}})});
  const PolygonSet b = set({ring({{X + 5.123456789, Y + 5.987654321, 20.5},
                                  {X + 15.1, Y + 5.2, 21.5},
                                  {X + 15.3, Y + 15.4, 22.5},
                                  {X + 5.5, Y + 15.6, 23.5}})});
  for (int flags : {0x10, 0x11}) {
    PolygonSet r;
    ASSERT_EQ(vora_polygonOperation(flags, &a, nullptr, &b, &r), 1);
    ASSERT_EQ(r.length(), 1);
    int restored = 0;
    for (const AcGePoint3d& p : r[0])
      for (const PolygonSet* s : {&a, &b})
        for (const AcGePoint3d& q : (*s)[0])
          if (std::fabs(p.x - q.x) < 1e-6 && std::fabs(p.y - q.y) < 1e-6) {
            EXPECT_TRUE(sameBits(p, q)) << p.x - q.x << " " << p.y - q.y << " " << p.z;
            ++restored;
          }
    EXPECT_EQ(restored, flags == 0x10 ? 6 : 2);
  }
}

TEST(PolygonOperation, FirstInputVertexWinsWhenSeveralMatch) {
  // The clip shares a corner with the subject, at another height: subjects are
  // searched first.
  const PolygonSet a = set({square(0, 0, 1, 1.0)});
  const PolygonSet b = set({ring({{1, 1, 2.0}, {2, 1, 2.0}, {2, 2, 2.0}, {1, 2, 2.0}}),
                            ring({{0, 0, 3.0}, {-1, 0, 3.0}, {-1, -1, 3.0}})});
  PolygonSet r;
  ASSERT_EQ(vora_polygonOperation(0x10, &a, nullptr, &b, &r), 1);
  int found = 0;
  for (const AcGePoint3dArray& path : r) {
    if (const AcGePoint3d* p = vertexNear(path, 1, 1)) {
      EXPECT_EQ(p->z, 1.0);
      ++found;
    }
    if (const AcGePoint3d* p = vertexNear(path, 0, 0)) {
      EXPECT_EQ(p->z, 1.0);
      ++found;
    }
    if (const AcGePoint3d* p = vertexNear(path, -1, -1)) {
      EXPECT_EQ(p->z, 3.0);
      ++found;
    }
  }
  EXPECT_GE(found, 3);
}

TEST(PolygonOperation, NewVerticesTakeHeightsFromTheReferenceLines) {
  // One polygon in each set: the reference vertex is vertex 0 itself, so every
  // line is a point. The crossing keeps its position and takes the height of
  // the nearer polygon's vertex 0.
  {
    const PolygonSet a = set({ring({{0, 0, 4.0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}})});
    const PolygonSet b = set({ring({{0.5, 0.5, 7.0}, {1.5, 0.5, 0}, {1.5, 1.5, 0}, {0.5, 1.5, 0}})});
    PolygonSet r;
    ASSERT_EQ(vora_polygonOperation(0x10, &a, nullptr, &b, &r), 1);
    const AcGePoint3d* c1 = vertexNear(r[0], 1.0, 0.5);
    const AcGePoint3d* c2 = vertexNear(r[0], 0.5, 1.0);
    ASSERT_TRUE(c1 && c2);
    EXPECT_NEAR(c1->x, 1.0, 2e-9);  // the clipped position, on the 1e-9 grid
    EXPECT_NEAR(c1->y, 0.5, 2e-9);
    EXPECT_EQ(c1->z, 7.0);  // (0.5, 0.5) is nearer than (0, 0)
    EXPECT_EQ(c2->z, 7.0);
  }
  // Two subjects: their lines run from vertex 1 to vertex 0 and carry the
  // height of vertex 1. The crossings on the first square's bottom edge lie on
  // that line.
  {
    const PolygonSet a = set({ring({{0, 0, 6.0}, {4, 0, 5.0}, {4, 4, 9.0}, {0, 4, 9.0}}),
                              ring({{10, 10, 100.0}, {11, 10, 100.0}, {11, 11, 100.0}, {10, 11, 100.0}})});
    const PolygonSet b = set({ring({{1, -1, 2.0}, {3, -1, 2.0}, {3, 1, 2.0}, {1, 1, 2.0}})});
    PolygonSet r;
    ASSERT_EQ(vora_polygonOperation(0x11, &a, nullptr, &b, &r), 1);
    ASSERT_EQ(r.length(), 1);
    for (double x : {1.0, 3.0}) {
      const AcGePoint3d* c = vertexNear(r[0], x, 0.0);
      ASSERT_TRUE(c);
      EXPECT_EQ(c->z, 5.0);
      EXPECT_EQ(c->y, 0.0);
    }
  }
  // The nearest line's height at or under -0.5 reads as "no line": the
  // crossing keeps its clipped position at height 0.
  {
    const PolygonSet a = set({ring({{0, 0, 6.0}, {4, 0, -0.5}, {4, 4, 9.0}, {0, 4, 9.0}}),
                              ring({{10, 10, 100.0}, {11, 10, 100.0}, {11, 11, 100.0}, {10, 11, 100.0}})});
    const PolygonSet b = set({ring({{1, -1, 2.0}, {3, -1, 2.0}, {3, 1, 2.0}, {1, 1, 2.0}})});
    PolygonSet r;
    ASSERT_EQ(vora_polygonOperation(0x11, &a, nullptr, &b, &r), 1);
    const AcGePoint3d* c = vertexNear(r[0], 1.0, 0.0);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->z, 0.0);
  }
  // Polygons too short to have the reference vertex offer no line: with three
  // subjects, only the square (four vertices) has a vertex 2.
  {
    const PolygonSet a = set({ring({{0, 0, 6.0}, {4, 0, 5.0}, {4, 4, 9.0}, {0, 4, 8.0}}),
                              ring({{10, 10, 100.0}, {11, 10, 100.0}}),
                              ring({{20, 20, 200.0}})});
    const PolygonSet b = set({ring({{1, -1, 2.0}, {3, -1, 2.0}, {3, 1, 2.0}, {1, 1, 2.0}})});
    PolygonSet r;
    ASSERT_EQ(vora_polygonOperation(0x11, &a, nullptr, &b, &r), 1);
    // Line (4,4) -> (0,0) at height 9 against the clip's point (1,-1) at 2:
    // the crossings (1,0) and (3,0) move to their feet on the diagonal.
    EXPECT_EQ(vertexNear(r[0], 1.0, 0.0), nullptr);
    for (double t : {0.5, 1.5}) {
      const AcGePoint3d* c = vertexNear(r[0], t, t);
      ASSERT_TRUE(c) << t;
      EXPECT_EQ(c->z, 9.0);
    }
  }
}

TEST(PolygonOperation, OffsetsBeyondClippersRangeRaiseClippersError) {
  // 5e9 drawing units from the origin is 5e18 grid steps, past Clipper's
  // range; 1e12 is past the 64-bit range itself. The error is not caught.
  const PolygonSet a = set({square(0, 0, 1)});
  for (double far : {5e9, 1e12, -1e300}) {
    const PolygonSet b = set({square(far, 0, 1)});
    PolygonSet r;
    EXPECT_THROW(vora_polygonOperation(0x10, &a, nullptr, &b, &r), ClipperLib::clipperException) << far;
    EXPECT_EQ(r.length(), 0);
  }
  const PolygonSet nan = set({ring({{std::nan(""), 0, 0}, {1, 0, 0}, {1, 1, 0}})});
  PolygonSet r;
  EXPECT_THROW(vora_polygonOperation(0x10, &a, nullptr, &nan, &r), ClipperLib::clipperException);
}

// The index must answer exactly like a scan of every input vertex in order.
TEST(PolygonOperationVertexIndex, AgreesWithAScanInInputOrder) {
  std::mt19937_64 rng(20261123);
  for (double origin : {0.0, -3.5, 1234567.891, 4.0e9}) {
    std::uniform_real_distribution<double> coord(-50.0, 50.0);
    std::uniform_real_distribution<double> tiny(-3e-8, 3e-8);
    std::uniform_int_distribution<int> coin(0, 3);
    PolygonSet subjects, clips;
    std::vector<AcGePoint3d> all;
    for (PolygonSet* s : {&subjects, &clips})
      for (int k = 0; k < 20; ++k) {
        AcGePoint3dArray poly;
        for (int v = 0; v < 50; ++v) {
          AcGePoint3d p(origin + coord(rng), origin + coord(rng), static_cast<double>(all.size()));
          // Clusters of near-coincident vertices, closer than the match distance.
          if (!all.empty() && coin(rng) == 0) {
            const AcGePoint3d& q = all[std::uniform_int_distribution<std::size_t>(0, all.size() - 1)(rng)];
            p.x = q.x + tiny(rng);
            p.y = q.y + tiny(rng);
          }
          poly.append(p);
          all.push_back(p);
        }
        s->append(poly);
      }
    const vora::VertexIndex index(&subjects, &clips);
    for (int q = 0; q < 4000; ++q) {
      const AcGePoint3d& base = all[static_cast<std::size_t>(q) % all.size()];
      double x = base.x, y = base.y;
      if (q % 2 == 1) {
        x += tiny(rng);
        y += tiny(rng);
      }
      if (q % 7 == 3) x = origin + coord(rng);
      const AcGePoint3d* expected = nullptr;
      for (const AcGePoint3d& p : all)
        if (std::fabs(p.x - x) < 1e-8 && std::fabs(p.y - y) < 1e-8) {
          expected = &p;
          break;
        }
      const AcGePoint3d* got = index.find(x, y);
      if (expected == nullptr) {
        EXPECT_EQ(got, nullptr) << origin << " " << q;
      } else {
        ASSERT_NE(got, nullptr) << origin << " " << q;
        EXPECT_EQ(got->z, expected->z) << origin << " " << q;
      }
    }
  }
}

TEST(PolygonOperationVertexIndex, CoordinatesThatAreNotFiniteNeverMatch) {
  const double nan = std::nan("");
  const PolygonSet s = set({ring({{nan, 0, 1}, {0, 0, 2}, {1e308, -1e308, 3}, {1, 1, 4}})});
  const vora::VertexIndex index(&s, nullptr);
  ASSERT_NE(index.find(0, 0), nullptr);
  EXPECT_EQ(index.find(0, 0)->z, 2.0);
  EXPECT_EQ(index.find(1e308, -1e308)->z, 3.0);
  EXPECT_EQ(index.find(0.5, 0.5), nullptr);
  EXPECT_EQ(index.find(1e300, 0), nullptr);
}

}  // namespace
