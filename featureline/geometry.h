// Feature-line geometry on plain data: from polyline vertices to the model of
// feature and elevation points, stations, and back to vertices.
#ifndef VORA_FEATURELINE_GEOMETRY_H
#define VORA_FEATURELINE_GEOMETRY_H

#include <cstddef>
#include <vector>

#include "featureline/point.h"
#include "vora/arx.h"

namespace vora::fl {

// A bulge, a length or a difference of stations counts as non-zero beyond this.
inline constexpr double kNearZero = 1e-10;
// Largest angle between consecutive vertices that still counts as one arc (30 degrees).
inline constexpr double kMaxArcStepAngle = 0.5235987755982988;
inline constexpr int kMinArcVertices = 4;
inline constexpr int kMinArcSamples = 16;
inline constexpr double kDefaultMidOrdinateDistance = 0.015;

inline bool isNonZero(double v) { return v > kNearZero || v < -kNearZero; }

// The equalPoint of a feature line whose first and last vertices are given:
// 10^-n with n = trunc(min(8, 12 - log10(m))), m the largest absolute
// coordinate of their midpoint, or midOrdinateDistance / 10 when smaller.
// Drawings far from the origin thus get a tolerance their coordinates can hold.
double pointTolerance(const AcGePoint3d& first, const AcGePoint3d& last, double midOrdinateDistance);

// Positions with every vertex dropped that equals the last kept one in 3D.
std::vector<AcGePoint3d> withoutDuplicates(const AcGePoint3d* positions, std::size_t count, const AcGeTol& tol);

// For each vertex k, the last index r >= k such that the plan positions of
// k..r lie exactly (no rounding anywhere) on one line, each strictly further
// along it than the one before; k itself when vertex k + 1 shares its plan
// position or does not exist.
std::vector<std::size_t> exactStraightRuns(const std::vector<AcGePoint3d>& pos);

// From vertex i: the vertex before the first k >= i + 2 whose predecessor is
// off the plan segment p(i) -> p(k) (global tolerance), or i when there is none.
// With runs, a cache of exactStraightRuns(pos) that is filled when first
// needed (pass it empty), the answer is the same, found without testing the
// vertices of an exact straight run one by one.
std::size_t nextNonCollinear(const std::vector<AcGePoint3d>& pos, std::size_t i,
                             std::vector<std::size_t>* runs = nullptr);

// A run of vertices from i on one circle: ends at end, with middle used for the
// three-point arc. False when no arc of at least four vertices starts at i.
// runs as for nextNonCollinear.
bool recognizeArc(const std::vector<AcGePoint3d>& pos, std::size_t i, const AcGeTol& tol, double maxStepAngle,
                  std::size_t& middle, std::size_t& end, std::vector<std::size_t>* runs = nullptr);

// The model points of deduplicated positions: recognised arcs become a
// bulged feature point followed by their grade breaks as elevation points.
// Throws FeaturelineError::eInvalidInputPoint for a NaN station or elevation
// met while looking for grade breaks.
std::vector<FeaturelinePoint> buildPoints(const std::vector<AcGePoint3d>& pos, const AcGeTol& tol,
                                          double maxStepAngle);

// Plan length of the segment from a to b with the given bulge.
double planLength(const AcGePoint3d& a, const AcGePoint3d& b, double bulge);

// One station per point, the first 0. Throws FeaturelineError::eDataError when
// the count ends up different from the number of points (which happens for an
// empty model: its station 0 has no point).
void computeStations(const std::vector<FeaturelinePoint>& points, std::vector<double>& stations);

// The plan arc of a bulged segment, running from a to b.
AcGeCircArc2d segmentArc(const AcGePoint3d& a, const AcGePoint3d& b, double bulge);

// Elevations along sample parameters of an arc by arc length between z0 and
// z1; just {z0, z1} when the samples span no length. Throws
// FeaturelineError::eDataError when there are no parameters or their count
// differs from sampleCount.
std::vector<double> elevationsByLength(const AcGeCircArc2d& arc, double z0, double z1, const AcGeDoubleArray& params,
                                       int sampleCount);

// Receives the vertices of a written-back model, in order.
class VertexSink {
public:
  virtual void put(const AcGePoint3d& p) = 0;

protected:
  ~VertexSink() = default;
};

// The vertices of the model: straight feature points as they are, arc spans
// sampled so that no chord departs from the arc by more than
// midOrdinateDistance, with at least 16 samples per span. The last sample of
// an arc repeats the next feature point's vertex, on purpose: loading drops
// it again. Throws FeaturelineError::eDataError when a bulged feature point
// has no feature point after it (vertices before it have been put by then).
void tessellate(const std::vector<FeaturelinePoint>& points, const AcGeTol& tol, double midOrdinateDistance,
                VertexSink& sink);

// Linear elevation between two stations; no guard against s1 == s0.
inline double interpolateElevation(double s, double s0, double z0, double s1, double z1) {
  return (s - s0) * (z1 - z0) / (s1 - s0) + z0;
}

}  // namespace vora::fl

#endif
