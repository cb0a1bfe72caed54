// Edits of an opened feature line. Each successful edit changes the points
// and writes the whole model back.
#include <algorithm>
#include <cmath>

#include "featureline/featureline.h"
#include "featureline/geometry.h"

namespace {

AcGePoint2d plan(const AcGePoint3d& p) { return {p.x, p.y}; }

bool isArcSegment(double bulge) { return vora::fl::isNonZero(bulge); }

}  // namespace

std::size_t Featureline::findNeighbour(std::size_t i, std::uint32_t type, bool backwards) const {
  if (backwards) {
    for (std::size_t k = i; k-- > 0;)
      if (mPoints[k].type == type) return k;
  } else {
    for (std::size_t k = i + 1; k < mPoints.size(); ++k)
      if (mPoints[k].type == type) return k;
  }
  return i;
}

bool Featureline::segmentIsValid(const FeaturelinePoint& a, const FeaturelinePoint& b) const {
  if (isArcSegment(a.bulge)) return !AcGeCircArc2d(plan(a.position), plan(b.position), a.bulge, false).isDegenerate();
  return !a.position.isEqualTo(b.position, mTolerance);
}

bool Featureline::canMove(std::size_t i, const AcGeVector3d& d) const {
  if (i >= mPoints.size()) throw FeaturelineError::eOutOfBounds;
  const FeaturelinePoint& p = mPoints[i];
  const AcGePoint3d q = p.position + d;
  if (p.isElevationPoint())
    return std::fabs(d.x) <= mTolerance.equalPoint() && std::fabs(d.y) <= mTolerance.equalPoint();

  // The segments on both sides must keep a length (or an arc).
  auto stays = [&](const AcGePoint3d& from, double bulge, const AcGePoint3d& to) {
    if (isArcSegment(bulge)) return !AcGeCircArc2d(plan(from), plan(to), bulge, false).isDegenerate();
    return !plan(from).isEqualTo(plan(to), mTolerance);
  };
  bool ok = true;
  if (i > 0) {
    const std::size_t f = findNeighbour(i, FeaturelinePoint::kFeaturePoint, true);
    ok = ok && stays(mPoints[f].position, mPoints[f].bulge, q);
  }
  if (i + 1 < mPoints.size()) {
    const std::size_t g = findNeighbour(i, FeaturelinePoint::kFeaturePoint, false);
    ok = ok && stays(q, p.bulge, mPoints[g].position);
  }
  return ok;
}

bool Featureline::movePoint(std::size_t i, const AcGeVector3d& d) {
  if (i >= mPoints.size()) throw FeaturelineError::eOutOfBounds;
  if (d.isZeroLength()) return true;
  if (!canMove(i, d)) return false;
  mPoints[i].add(d);
  return commit();
}

bool Featureline::setPointPosition(std::size_t i, const AcGePoint3d& p) {
  if (i >= mPoints.size()) throw FeaturelineError::eOutOfBounds;
  if (p.isEqualTo(mPoints[i].position, mTolerance)) return true;
  if (!canMove(i, p - mPoints[i].position)) return false;
  mPoints[i].setPosition(p);
  return commit();
}

bool Featureline::insertFeaturePoint(const AcGePoint3d& p, std::size_t k, double bulge) {
  const FeaturelinePoint added(p, bulge, 0.0, FeaturelinePoint::kFeaturePoint);
  if (k > 0) {
    if (mPoints.empty()) return false;
    std::size_t f = std::min(k, mPoints.size()) - 1;
    while (!mPoints[f].isFeaturePoint()) {
      if (f == 0) return false;
      --f;
    }
    if (!segmentIsValid(mPoints[f], added)) return false;
  }
  // Below the last index a feature point always follows k (the last point is
  // one), so the new segment is checked against point k whatever its type.
  if (!mPoints.empty() && k < mPoints.size() - 1 && !segmentIsValid(added, mPoints[k])) return false;

  if (k < mPoints.size()) {
    mPoints.insert(mPoints.begin() + static_cast<std::ptrdiff_t>(k), added);
    // An arc split by the new point loses its grade breaks after the split.
    auto from = mPoints.begin() + static_cast<std::ptrdiff_t>(k + 1);
    auto to = std::find_if(from, mPoints.end(), [](const FeaturelinePoint& q) { return q.isFeaturePoint(); });
    mPoints.erase(from, to);
  } else {
    if (vora::fl::isNonZero(bulge)) return false;
    mPoints.push_back(added);
  }
  return commit();
}

bool Featureline::insertFeaturePointAtStation(const AcGePoint3d& p, double station, double bulge) {
  if (station < -vora::fl::kNearZero) return false;
  std::size_t k = 0;
  while (k < mStations.size() && mStations[k] < station - vora::fl::kNearZero) ++k;
  if (k == mStations.size()) k = mPoints.size();
  return insertFeaturePoint(p, k, bulge);
}

bool Featureline::insertElevationPoint(double station, double elevation) {
  if (station < -vora::fl::kNearZero) return false;
  if (mPoints.empty()) return false;
  if (mStations.size() < mPoints.size()) throw FeaturelineError::eOutOfBounds;
  if (station - mStations[mPoints.size() - 1] > vora::fl::kNearZero) return false;
  std::size_t k = 1;
  while (k < mPoints.size() && mStations[k] < station - vora::fl::kNearZero) ++k;
  // Only a line of one point gets here: it has no segment to hold the point.
  if (k >= mPoints.size()) return false;
  const std::size_t p = k - 1;
  const FeaturelinePoint& before = mPoints[p];

  if (before.isFeaturePoint() && std::fabs(before.bulge) <= mTolerance.equalPoint()) {
    // Straight segments hold no elevation points: a grade break there is a
    // vertex of its own.
    const AcGeLineSeg2d segment(plan(before.position), plan(mPoints[k].position));
    const AcGePoint2d at = segment.evalPoint(segment.paramAtLength(0.0, station - mStations[p]));
    mPoints.insert(mPoints.begin() + static_cast<std::ptrdiff_t>(k),
                   FeaturelinePoint(AcGePoint3d(at.x, at.y, elevation), 0.0, 0.0, FeaturelinePoint::kFeaturePoint));
    return commit();
  }

  std::size_t f = p;
  while (f > 0 && !mPoints[f].isFeaturePoint()) --f;
  // The arc's end is searched from k + 1: point k is never taken, even when it
  // is the feature point that closes the arc. Kept as it always was, so
  // drawings edited before come out the same.
  std::size_t g = k;
  for (std::size_t j = k + 1; j < mPoints.size(); ++j)
    if (mPoints[j].isFeaturePoint()) {
      g = j;
      break;
    }
  const double distance = station - mStations[f];
  const AcGeCircArc2d arc = vora::fl::segmentArc(mPoints[f].position, mPoints[g].position, mPoints[f].bulge);
  const AcGePoint2d at = arc.evalPoint(arc.paramAtLength(arc.startAng(), distance));
  mPoints.insert(mPoints.begin() + static_cast<std::ptrdiff_t>(k),
                 FeaturelinePoint(AcGePoint3d(at.x, at.y, elevation), 0.0, distance, FeaturelinePoint::kElevationPoint));
  return commit();
}

bool Featureline::eraseElevationPoint(std::size_t i) {
  if (i >= mPoints.size() || !mPoints[i].isElevationPoint()) return false;
  mPoints.erase(mPoints.begin() + static_cast<std::ptrdiff_t>(i));
  return commit();
}

bool Featureline::eraseFeaturePoint(std::size_t i) {
  if (i >= mPoints.size()) return false;
  const auto at = mPoints.begin() + static_cast<std::ptrdiff_t>(i);
  if (mPoints[i].isElevationPoint()) {
    mPoints.erase(at);
  } else if (i + 1 < mPoints.size() || mPoints.size() < 2) {
    // The point goes with the grade breaks of the arc it started; the previous
    // feature point keeps its bulge and now reaches the next feature point.
    // A line of one point has no next feature point: the range runs to the
    // end and the point goes.
    const auto to = std::find_if(at + 1, mPoints.end(), [](const FeaturelinePoint& q) { return q.isFeaturePoint(); });
    mPoints.erase(at, to);
  } else {
    const std::size_t f = findNeighbour(i, FeaturelinePoint::kFeaturePoint, true);
    mPoints[f].bulge = 0.0;
    mPoints.erase(mPoints.begin() + static_cast<std::ptrdiff_t>(f + 1), mPoints.end());
  }
  return commit();
}

bool Featureline::interpolate(std::vector<int>& indices, double z0, double z1) {
  std::sort(indices.begin(), indices.end());
  const double s0 = station(static_cast<std::size_t>(indices.front()));
  const double s1 = station(static_cast<std::size_t>(indices.back()));
  bool all = true;
  for (int index : indices) {
    const std::size_t i = static_cast<std::size_t>(index);
    const double z = vora::fl::interpolateElevation(station(i), s0, z0, s1, z1);
    const AcGePoint3d p = mPoints.at(i).position;
    if (!setPointPosition(i, AcGePoint3d(p.x, p.y, z))) all = false;
  }
  return all;
}
