// Lookup of polygon boolean result vertices among the input vertices.
#ifndef VORA_GEOMETRY_BOOLEAN_MATCH_H
#define VORA_GEOMETRY_BOOLEAN_MATCH_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "vora/arx.h"

namespace vora {

// The vertices of a subject set and a clip set, in input order (subjects
// first, each polygon's vertices in order), hashed by grid cell. find(x, y)
// answers exactly what a scan of all vertices in input order for the first
// one with |x_in - x| < 1e-8 and |y_in - y| < 1e-8 answers, in time
// independent of the number of vertices for coordinates of the inputs'
// magnitude. The sets must outlive the index and stay unchanged.
class VertexIndex {
public:
  VertexIndex(const AcArray<AcGePoint3dArray>* subjects, const AcArray<AcGePoint3dArray>* clips);

  // The first matching input vertex, or null.
  const AcGePoint3d* find(double x, double y) const;

private:
  // A vertex as stored in its bucket: its plan coordinates and input position.
  struct Entry {
    double x;
    double y;
    std::uint32_t v;
  };
  // Cells are never narrower than this, a hundred times the match distance, so
  // a query nearly always falls in one cell per axis.
  static constexpr double kMinCell = 1e-6;
  static constexpr std::int64_t kMaxCellSpan = 8;

  std::int64_t cellOf(double v) const;
  std::size_t bucketOf(std::int64_t kx, std::int64_t ky) const;
  const AcGePoint3d* scan(double x, double y) const;
  const AcGePoint3d* vertex(std::size_t v) const;

  // The polygons in input order and the input position of each one's vertex 0.
  std::vector<const AcGePoint3dArray*> polygons_;
  std::vector<std::size_t> starts_;
  // Bucket b holds entries_[ends_[b-1] .. ends_[b]), in input order; the
  // entries of one cell all sit in one bucket.
  std::unique_ptr<Entry[]> entries_;
  std::vector<std::uint32_t> ends_;
  std::size_t bucketMask_ = 0;
  double inverseCell_ = 1.0 / kMinCell;
};

}  // namespace vora

#endif
