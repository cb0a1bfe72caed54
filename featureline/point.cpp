#include "featureline/point.h"

#include <cmath>

FeaturelinePoint::~FeaturelinePoint() = default;

void FeaturelinePoint::setPosition(const AcGePoint3d& p) {
  if (std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z)) return;
  position = p;
}

void FeaturelinePoint::add(const AcGeVector3d& d) {
  if (std::isnan(d.x) || std::isnan(d.y) || std::isnan(d.z)) return;
  position += d;
}
