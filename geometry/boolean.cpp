#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include <polyclipping/clipper.hpp>

#include "geometry/boolean_match.h"
#include "vora/distance.h"
#include "vora/polygon.h"

namespace vora {

namespace {

// The clipping grid: 1e-9 drawing units relative to the first subject vertex,
// fine enough for survey coordinates and far inside the 64-bit range.
constexpr double kGridStep = 1e-9;
// A result vertex this close (in x and in y, strictly) to an input vertex is
// that input vertex: a little more than the grid step, so the truncation to
// the grid never separates a vertex from its own input.
constexpr double kMatchDistance = 1e-8;

using PolygonSet = AcArray<AcGePoint3dArray>;

// Truncation toward zero. Offsets past the 64-bit range (and NaN) saturate,
// which is still far outside Clipper's range: Clipper refuses them with its
// own range error instead of the conversion being undefined.
ClipperLib::cInt toGrid(double offset) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  constexpr ClipperLib::cInt kMax = std::numeric_limits<ClipperLib::cInt>::max();
  const double v = offset / kGridStep;
  if (!(v < kLimit)) return kMax;
  if (!(v > -kLimit)) return -kMax;
  return static_cast<ClipperLib::cInt>(v);
}

ClipperLib::Path toGridPath(const AcGePoint3dArray& polygon, double x0, double y0) {
  ClipperLib::Path path;
  path.reserve(static_cast<std::size_t>(polygon.length()));
  for (const AcGePoint3d& p : polygon) path.emplace_back(toGrid(p.x - x0), toGrid(p.y - y0));
  return path;
}

// A line from vertex `a` of a polygon to its vertex 0. Which vertex is `a` is
// the number of polygons in the polygon's set less one, not anything about
// the polygon itself. Callers have relied on the heights this gives for a long
// time, so the choice stays; a polygon too short to have that vertex offers no
// line.
struct ReferenceLine {
  const AcGePoint3d* a;
  const AcGePoint3d* b;
};

void collectReferenceLines(const PolygonSet* set, std::vector<ReferenceLine>& lines) {
  if (set == nullptr) return;
  const int a = set->length() - 1;
  for (const AcGePoint3dArray& polygon : *set) {
    if (polygon.isEmpty() || a >= polygon.length()) continue;
    lines.push_back({&polygon[a], &polygon[0]});
  }
}

// Places a result vertex that is no input vertex: on the nearest reference
// line, at the height of that line's first vertex.
AcGePoint3d placeOnReferenceLines(double x, double y, const std::vector<ReferenceLine>& lines) {
  const AcGePoint3d p(x, y, 0.0);
  // A degenerate line writes no foot; its candidate then carries the foot of
  // the line before it, or the vertex itself when there was none.
  AcGePoint3d foot = p;
  bool haveBest = false;
  double bestDistance = 0.0;
  AcGePoint3d bestFoot = p;
  double bestHeight = -1.0;
  for (const ReferenceLine& line : lines) {
    const double d = vora_distpointline(&line.a->x, &line.b->x, &p.x, &foot.x, nullptr);
    if (!haveBest || d < bestDistance) {
      haveBest = true;
      bestDistance = d;
      bestFoot = foot;
      bestHeight = line.a->z;
    }
  }
  // -1 marks "no line found"; any height at or under -0.5 is read the same way.
  if (bestHeight > -0.5) return {bestFoot.x, bestFoot.y, bestHeight};
  return p;
}

}  // namespace

// ---- Input vertex index -----------------------------------------------------

namespace {

std::uint64_t mixCell(std::int64_t kx, std::int64_t ky) {
  std::uint64_t h = static_cast<std::uint64_t>(kx) * 0x9E3779B97F4A7C15ull;
  h ^= static_cast<std::uint64_t>(ky) + 0x7F4A7C159E3779B9ull + (h << 6) + (h >> 2);
  h ^= h >> 31;
  h *= 0xBF58476D1CE4E5B9ull;
  h ^= h >> 29;
  return h;
}

}  // namespace

VertexIndex::VertexIndex(const PolygonSet* subjects, const PolygonSet* clips) {
  std::size_t n = 0;
  double magnitude = 0.0;
  for (const PolygonSet* set : {subjects, clips}) {
    if (set == nullptr) continue;
    for (const AcGePoint3dArray& polygon : *set) {
      polygons_.push_back(&polygon);
      starts_.push_back(n);
      n += static_cast<std::size_t>(polygon.length());
      for (const AcGePoint3d& p : polygon) {
        if (std::isfinite(p.x)) magnitude = std::max(magnitude, std::fabs(p.x));
        if (std::isfinite(p.y)) magnitude = std::max(magnitude, std::fabs(p.y));
      }
    }
  }
  // Beyond what 32-bit positions can index, every query scans.
  if (n >= std::numeric_limits<std::uint32_t>::max()) return;
  // Cells wide enough that the cell number of a coordinate of this magnitude
  // is computed with a rounding error far below one cell.
  inverseCell_ = 1.0 / std::max(kMinCell, std::ldexp(magnitude, -40));

  // Buckets in compressed form: count, running sum, then a fill in input
  // order, so every bucket lists its vertices in input order.
  std::size_t buckets = 16;
  while (buckets < n) buckets *= 2;
  bucketMask_ = buckets - 1;
  ends_.assign(buckets, 0);
  // Left uninitialised on purpose: every cell is written before it is read.
  const std::unique_ptr<std::uint32_t[]> bucketOfVertex(new std::uint32_t[n]);
  constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
  std::size_t i = 0;
  for (const AcGePoint3dArray* polygon : polygons_)
    for (const AcGePoint3d& p : *polygon) {
      // A vertex with a coordinate that is not finite never passes the match test.
      if (!std::isfinite(p.x) || !std::isfinite(p.y)) {
        bucketOfVertex[i++] = kNone;
        continue;
      }
      const std::size_t b = bucketOf(cellOf(p.x), cellOf(p.y));
      bucketOfVertex[i++] = static_cast<std::uint32_t>(b);
      ++ends_[b];
    }
  std::uint32_t sum = 0;
  for (std::uint32_t& e : ends_) {
    const std::uint32_t count = e;
    e = sum;  // for now the start of the bucket; the fill moves it to the end
    sum += count;
  }
  entries_.reset(new Entry[sum]);
  i = 0;
  for (const AcGePoint3dArray* polygon : polygons_)
    for (const AcGePoint3d& p : *polygon) {
      if (bucketOfVertex[i] != kNone)
        entries_[ends_[bucketOfVertex[i]]++] = Entry{p.x, p.y, static_cast<std::uint32_t>(i)};
      ++i;
    }
}

const AcGePoint3d* VertexIndex::vertex(std::size_t v) const {
  const std::size_t k = static_cast<std::size_t>(std::upper_bound(starts_.begin(), starts_.end(), v) - starts_.begin()) - 1;
  return &(*polygons_[k])[static_cast<int>(v - starts_[k])];
}

std::int64_t VertexIndex::cellOf(double v) const {
  // Monotone in v (a correctly rounded product by a positive constant, floor,
  // clamp), which is what makes the search below exact.
  constexpr double kLimit = 4611686018427387904.0;  // 2^62
  const double c = std::floor(v * inverseCell_);
  if (!(c > -kLimit)) return -(std::int64_t{1} << 62);
  if (c > kLimit) return std::int64_t{1} << 62;
  return static_cast<std::int64_t>(c);
}

std::size_t VertexIndex::bucketOf(std::int64_t kx, std::int64_t ky) const {
  return static_cast<std::size_t>(mixCell(kx, ky)) & bucketMask_;
}

const AcGePoint3d* VertexIndex::scan(double x, double y) const {
  for (const AcGePoint3dArray* polygon : polygons_)
    for (const AcGePoint3d& p : *polygon)
      if (std::fabs(p.x - x) < kMatchDistance && std::fabs(p.y - y) < kMatchDistance) return &p;
  return nullptr;
}

const AcGePoint3d* VertexIndex::find(double x, double y) const {
  if (ends_.empty()) return scan(x, y);
  // Any vertex that passes the match test lies strictly within kMatchDistance
  // of (x, y) in real arithmetic (rounding is monotone and the bound is a
  // double). The interval searched is that one widened by far more than the
  // rounding of its bounds: 2^-50 of the magnitude is at least four ulps,
  // and 1e-20 covers the rounding near zero.
  const double mx = std::fabs(x) * 0x1p-50 + 1e-20;
  const double my = std::fabs(y) * 0x1p-50 + 1e-20;
  const std::int64_t kx0 = cellOf((x - kMatchDistance) - mx), kx1 = cellOf((x + kMatchDistance) + mx);
  const std::int64_t ky0 = cellOf((y - kMatchDistance) - my), ky1 = cellOf((y + kMatchDistance) + my);
  // Only for coordinates far outside the inputs' magnitude.
  if (kx1 - kx0 > kMaxCellSpan || ky1 - ky0 > kMaxCellSpan) return scan(x, y);
  std::uint32_t best = std::numeric_limits<std::uint32_t>::max();
  for (std::int64_t kx = kx0; kx <= kx1; ++kx)
    for (std::int64_t ky = ky0; ky <= ky1; ++ky) {
      const std::size_t b = bucketOf(kx, ky);
      const std::uint32_t end = ends_[b];
      for (std::uint32_t e = b == 0 ? 0 : ends_[b - 1]; e < end; ++e) {
        const Entry& entry = entries_[e];
        if (entry.v >= best) break;
        if (std::fabs(entry.x - x) < kMatchDistance && std::fabs(entry.y - y) < kMatchDistance) {
          best = entry.v;
          break;
        }
      }
    }
  return best == std::numeric_limits<std::uint32_t>::max() ? nullptr : vertex(best);
}

}  // namespace vora

using namespace vora;

VORA_API int vora_polygonOperation(int flags, const AcArray<AcGePoint3dArray>* subjects, const void* /*reserved*/,
                                   const AcArray<AcGePoint3dArray>* clips, AcArray<AcGePoint3dArray>* result) {
  if ((flags & 0x10) == 0) return 0;
  if (subjects == nullptr || subjects->isEmpty() || subjects->first().isEmpty()) return 0;
  const double x0 = subjects->first().first().x;
  const double y0 = subjects->first().first().y;

  ClipperLib::Clipper clipper;
  for (const AcGePoint3dArray& polygon : *subjects)
    clipper.AddPath(toGridPath(polygon, x0, y0), ClipperLib::ptSubject, true);
  if (clips != nullptr)
    for (const AcGePoint3dArray& polygon : *clips)
      clipper.AddPath(toGridPath(polygon, x0, y0), ClipperLib::ptClip, true);
  // Only union and intersection are offered: the two low bits select nothing else.
  const ClipperLib::ClipType op = (flags & 3) == 0 ? ClipperLib::ctUnion : ClipperLib::ctIntersection;
  ClipperLib::Paths solution;
  if (!clipper.Execute(op, solution, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd) || solution.empty()) return 0;
  if (result == nullptr) return 1;

  VertexIndex index(subjects, clips);
  std::vector<ReferenceLine> lines;
  collectReferenceLines(subjects, lines);
  collectReferenceLines(clips, lines);

  for (const ClipperLib::Path& path : solution) {
    if (path.empty()) continue;
    const int slot = result->append(AcGePoint3dArray());
    AcGePoint3dArray& out = (*result)[slot];
    out.setPhysicalLength(static_cast<int>(path.size()));
    for (const ClipperLib::IntPoint& q : path) {
      const double x = static_cast<double>(q.X) * kGridStep + x0;
      const double y = static_cast<double>(q.Y) * kGridStep + y0;
      if (const AcGePoint3d* input = index.find(x, y))
        out.append(*input);
      else
        out.append(placeOnReferenceLines(x, y, lines));
    }
  }
  return 1;
}
