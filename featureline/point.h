// One point of a feature line's model.
#ifndef VORA_FEATURELINE_POINT_H
#define VORA_FEATURELINE_POINT_H

#include <cstdint>

#include "vora/arx.h"

// A feature point (type 0) is a vertex of the plan alignment: where straight
// segments meet, or where an arc starts or ends. An elevation point (type 1)
// lies inside an arc and marks a change of grade there; it never starts a
// segment, so its bulge stays 0.
class FeaturelinePoint {
public:
  static constexpr std::uint32_t kFeaturePoint = 0;
  static constexpr std::uint32_t kElevationPoint = 1;

  FeaturelinePoint() = default;
  FeaturelinePoint(const AcGePoint3d& pos, double bulgeOfSegment, double distanceOnArc, std::uint32_t pointType)
      : position(pos), bulge(bulgeOfSegment), arcDistance(distanceOnArc), type(pointType) {}
  FeaturelinePoint(const FeaturelinePoint&) = default;
  FeaturelinePoint& operator=(const FeaturelinePoint&) = default;
  virtual ~FeaturelinePoint();

  bool isFeaturePoint() const { return type == kFeaturePoint; }
  bool isElevationPoint() const { return type == kElevationPoint; }

  // Both leave the point as it was when any coordinate of the argument is NaN.
  void setPosition(const AcGePoint3d& p);
  void add(const AcGeVector3d& d);

  AcGePoint3d position;
  double bulge = 0.0;        // of the segment starting here (tan of a quarter of the included angle)
  double arcDistance = 0.0;  // elevation points: plan distance along the arc from its start feature point
  std::uint32_t type = kFeaturePoint;
};

#endif
