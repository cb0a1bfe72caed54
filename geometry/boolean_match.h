// Lookup of polygon boolean result vertices among the input vertices.
#ifndef VORA_GEOMETRY_BOOLEAN_MATCH_H
#define VORA_GEOMETRY_BOOLEAN_MATCH_H

#include <cstddef>
#include <cstdint>
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
  struct Slot {
    std::int64_t kx;
    std::int64_t ky;
    std::int64_t head;  // first vertex of the cell's chain, -1 for none
    bool used;
  };
  // Never below the match distance times a few, so a query touches 2 x 2
  // cells at most, and rarely more than one.
  static constexpr double kMinCell = 1e-6;
  static constexpr std::int64_t kMaxCellSpan = 8;

  std::int64_t cellOf(double v) const;
  std::size_t slotOf(std::int64_t kx, std::int64_t ky) const;
  bool matches(std::int64_t v, double x, double y) const;

  std::vector<const AcGePoint3d*> points_;
  std::vector<std::int64_t> next_;
  std::vector<Slot> slots_;
  std::size_t slotMask_ = 0;
  double cell_ = kMinCell;
};

}  // namespace vora

#endif
