// Repeated even-odd containment tests against one ring.
#ifndef VORA_GEOMETRY_EDGE_SLABS_H
#define VORA_GEOMETRY_EDGE_SLABS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "vora/arx.h"

namespace vora {

// One edge i -> i+1 of the containment test of vora_ispointinpolygon: whether
// the point lies on it (within tol, ends widened by tol), or else whether the
// ray from the point towards +x crosses it.
enum class EdgeHit { kNone, kBoundary, kCrossing };
EdgeHit testEdge(const AcGePoint3d& a, const AcGePoint3d& b, const double* point, double tol);

// The edges of a ring sorted into horizontal slabs, each edge listed in every
// slab its y range (widened by what the boundary test can reach) touches.
// contains() answers exactly what vora_ispointinpolygon answers for the same
// ring, tolerance and onBoundaryResult, testing only the edges of the point's
// slab. The ring must outlive the index and stay unchanged.
class EdgeSlabs {
public:
  // False when the ring cannot be sorted usefully (coordinates or tolerance
  // that are not finite, or edges so tall that the slabs would hold many
  // times the edge count); then the plain test must be used.
  bool build(const AcGePoint3dArray* pts, double tol);
  bool contains(const double* point, bool onBoundaryResult) const;

private:
  std::size_t slabOf(double y) const;

  const AcGePoint3d* p_ = nullptr;
  double tol_ = 0.0;
  double y0_ = 0.0;
  double inverseHeight_ = 0.0;
  std::size_t slabs_ = 0;
  // Slab s lists edges_[ends_[s-1] .. ends_[s]).
  std::vector<std::uint32_t> ends_;
  std::vector<std::uint32_t> edges_;
};

}  // namespace vora

#endif
