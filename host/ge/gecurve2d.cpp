#include "vora/arx/gecurve2d.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

double cross(const AcGeVector2d& a, const AcGeVector2d& b) { return a.x * b.y - a.y * b.x; }

double wrapTwoPi(double a) {
  a = std::fmod(a, kTwoPi);
  if (a < 0.0) a += kTwoPi;
  // fmod of a tiny negative angle plus 2*pi rounds to 2*pi itself.
  if (a >= kTwoPi) a = 0.0;
  return a;
}

}  // namespace

// ---- AcGeCurve2d -----------------------------------------------------------

AcGeCurve2d::~AcGeCurve2d() = default;

bool AcGeCurve2d::isKindOf(AcGe::EntityId id) const {
  const AcGe::EntityId own = type();
  if (id == own || id == AcGe::kEntity2d || id == AcGe::kCurve2d) return true;
  return id == AcGe::kLinearEnt2d && (own == AcGe::kLine2d || own == AcGe::kLineSeg2d);
}

bool AcGeCurve2d::isOn(const AcGePoint2d& pnt, double& param, const AcGeTol& tol) const {
  if (!isOn(pnt, tol)) return false;
  param = paramOf(pnt, tol);
  return true;
}

bool AcGeCurve2d::isDegenerate(const AcGeTol& tol) const {
  AcGe::EntityId ignored = AcGe::kEntity2d;
  return isDegenerate(ignored, tol);
}

// ---- straight curves -------------------------------------------------------

double AcGeLinearEnt2d::footParam(const AcGePoint2d& pnt) const {
  const double len2 = mDir.lengthSqrd();
  if (len2 == 0.0) return 0.0;
  return (pnt - mOrigin).dotProduct(mDir) / len2;
}

double AcGeLinearEnt2d::distanceAt(const AcGePoint2d& pnt, double param) const {
  return ((pnt - mOrigin) - mDir * param).length();
}

double AcGeLinearEnt2d::paramOf(const AcGePoint2d& pnt, const AcGeTol&) const { return footParam(pnt); }

AcGePoint2d AcGeLinearEnt2d::evalPoint(double param) const { return mOrigin + mDir * param; }

double AcGeLinearEnt2d::length(double fromParam, double toParam, double) const {
  return std::fabs(toParam - fromParam) * mDir.length();
}

double AcGeLinearEnt2d::paramAtLength(double datumParam, double length, bool posParamDir, double) const {
  const double unit = mDir.length();
  if (unit == 0.0) return datumParam;
  return posParamDir ? datumParam + length / unit : datumParam - length / unit;
}

bool AcGeLinearEnt2d::isDegenerate(AcGe::EntityId& degenerateType, const AcGeTol& tol) const {
  if (mDir.length() > tol.equalPoint()) return false;
  degenerateType = AcGe::kPointEnt2d;
  return true;
}

void AcGeLinearEnt2d::getSamplePoints(double fromParam, double toParam, double, AcGePoint2dArray& pointArray,
                                      AcGeDoubleArray& paramArray) const {
  pointArray.removeAll();
  paramArray.removeAll();
  pointArray.append(evalPoint(fromParam));
  paramArray.append(fromParam);
  pointArray.append(evalPoint(toParam));
  paramArray.append(toParam);
}

void AcGeLinearEnt2d::getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const {
  pointArray.removeAll();
  for (int k = 0; k < numSample; ++k)
    pointArray.append(evalPoint(numSample == 1 ? 0.0 : static_cast<double>(k) / (numSample - 1)));
}

AcGeLine2d& AcGeLine2d::set(const AcGePoint2d& pnt, const AcGeVector2d& vec) {
  mOrigin = pnt;
  mDir = vec;
  return *this;
}

AcGeLine2d& AcGeLine2d::set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) { return set(pnt1, pnt2 - pnt1); }

bool AcGeLine2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  const double len = mDir.length();
  if (len == 0.0) return (pnt - mOrigin).length() <= tol.equalPoint();
  return std::fabs(cross(mDir, pnt - mOrigin)) / len <= tol.equalPoint();
}

AcGeLine2d& AcGeLine2d::reverseParam() {
  mDir = -mDir;
  return *this;
}

AcGeLineSeg2d& AcGeLineSeg2d::set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) {
  mOrigin = pnt1;
  mDir = pnt2 - pnt1;
  return *this;
}

double AcGeLineSeg2d::paramOf(const AcGePoint2d& pnt, const AcGeTol&) const {
  return std::clamp(footParam(pnt), 0.0, 1.0);
}

bool AcGeLineSeg2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  return distanceAt(pnt, paramOf(pnt, tol)) <= tol.equalPoint();
}

AcGeLineSeg2d& AcGeLineSeg2d::reverseParam() {
  mOrigin = mOrigin + mDir;
  mDir = -mDir;
  return *this;
}

// ---- circular arcs ---------------------------------------------------------

AcGeCircArc2d::AcGeCircArc2d() = default;

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& cent, double radius) { set(cent, radius); }

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& cent, double radius, double startAngle, double endAngle,
                             const AcGeVector2d& refVec, bool isClockWise) {
  set(cent, radius, startAngle, endAngle, refVec, isClockWise);
}

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& pnt, const AcGePoint2d& endPoint) {
  set(startPoint, pnt, endPoint);
}

AcGeCircArc2d::AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge,
                             bool bulgeFlag) {
  set(startPoint, endPoint, bulge, bulgeFlag);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& cent, double radius) {
  return set(cent, radius, 0.0, kTwoPi);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& cent, double radius, double startAngle, double endAngle,
                                  const AcGeVector2d& refVec, bool isClockWise) {
  mCenter = cent;
  mRadius = radius;
  mRefVec = refVec;
  mClockWise = isClockWise;
  return setAngles(startAngle, endAngle);
}

void AcGeCircArc2d::setDegenerate(const AcGePoint2d& at) {
  mCenter = at;
  mRadius = 0.0;
  mStartAng = 0.0;
  mEndAng = 0.0;
  mRefVec = AcGeVector2d::kXAxis;
  mClockWise = false;
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& startPoint, const AcGePoint2d& pnt, const AcGePoint2d& endPoint) {
  const AcGeTol& tol = AcGeContext::gTol;
  const AcGeVector2d v1 = pnt - startPoint;
  const AcGeVector2d v2 = endPoint - startPoint;
  const AcGeVector2d chord = endPoint - pnt;
  const double c = cross(v1, v2);
  const double base = v2.length();
  // Collinear or coincident points: the middle point is within equalPoint of
  // the line through the other two (or two points coincide).
  if (v1.length() <= tol.equalPoint() || base <= tol.equalPoint() || chord.length() <= tol.equalPoint() ||
      std::fabs(c) / base <= tol.equalPoint()) {
    setDegenerate(startPoint);
    return *this;
  }
  // Circumcentre relative to the start point, so large coordinates cancel first.
  const double l1 = v1.lengthSqrd(), l2 = v2.lengthSqrd();
  const double d = 2.0 * c;
  const AcGeVector2d u((v2.y * l1 - v1.y * l2) / d, (v1.x * l2 - v2.x * l1) / d);
  mCenter = startPoint + u;
  mRadius = u.length();
  mRefVec = AcGeVector2d::kXAxis;
  mClockWise = c < 0.0;
  const double a0 = angleOf(startPoint);
  const double a1 = angleOf(endPoint);
  double sweep = a1 - a0;
  if (sweep <= 0.0) sweep += kTwoPi;
  mStartAng = a0;
  mEndAng = a0 + sweep;
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge,
                                  bool bulgeFlag) {
  const AcGeTol& tol = AcGeContext::gTol;
  AcGePoint2d s = startPoint, e = endPoint;
  const double halfChord = (e - s).length() * 0.5;
  if (halfChord <= tol.equalPoint() || bulge == 0.0 || !std::isfinite(bulge)) {
    setDegenerate(startPoint);
    return *this;
  }
  if (bulge < 0.0) std::swap(s, e);
  // From here on the arc runs counter-clockwise from s to e.
  const double b = bulgeFlag ? std::fabs(bulge) / halfChord : std::fabs(bulge);
  const double included = 4.0 * std::atan(b);
  const double radius = halfChord * (b * b + 1.0) / (2.0 * b);
  const double sagitta = b * halfChord;
  const AcGeVector2d chord = e - s;
  const AcGeVector2d leftNormal = chord.perpVector() / chord.length();
  mCenter = s + chord * 0.5 + leftNormal * (radius - sagitta);
  mRadius = radius;
  mRefVec = AcGeVector2d::kXAxis;
  mClockWise = false;
  mStartAng = angleOf(s);
  mEndAng = mStartAng + included;
  return *this;
}

bool AcGeCircArc2d::isClosed(const AcGeTol& tol) const {
  return startPoint().isEqualTo(endPoint(), tol);
}

AcGeCircArc2d& AcGeCircArc2d::setCenter(const AcGePoint2d& cent) {
  mCenter = cent;
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setRadius(double radius) {
  mRadius = radius;
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setAngles(double startAngle, double endAngle) {
  mStartAng = startAngle;
  mEndAng = endAngle;
  if (mEndAng < mStartAng) mEndAng += kTwoPi;
  return *this;
}

AcGeCircArc2d& AcGeCircArc2d::setRefVec(const AcGeVector2d& vec) {
  mRefVec = vec;
  return *this;
}

double AcGeCircArc2d::angleOf(const AcGePoint2d& pnt) const {
  const AcGeVector2d u = mRefVec.normal();
  const AcGeVector2d v = pnt - mCenter;
  return wrapTwoPi(std::atan2(sense() * cross(u, v), u.dotProduct(v)));
}

double AcGeCircArc2d::paramOf(const AcGePoint2d& pnt, const AcGeTol&) const {
  double a = angleOf(pnt);
  while (a < mStartAng) a += kTwoPi;
  while (a >= mStartAng + kTwoPi) a -= kTwoPi;
  if (a <= mEndAng || mEndAng - mStartAng >= kTwoPi) return a;
  // Outside the arc: the nearer end, measured around the circle.
  return (a - mEndAng) <= (mStartAng + kTwoPi - a) ? mEndAng : mStartAng;
}

AcGePoint2d AcGeCircArc2d::evalPoint(double param) const {
  const AcGeVector2d u = mRefVec.normal();
  const AcGeVector2d w = u.perpVector() * sense();
  return mCenter + (u * std::cos(param) + w * std::sin(param)) * mRadius;
}

bool AcGeCircArc2d::isOn(const AcGePoint2d& pnt, const AcGeTol& tol) const {
  if (std::fabs((pnt - mCenter).length() - mRadius) > tol.equalPoint()) return false;
  if (mEndAng - mStartAng >= kTwoPi) return true;
  double a = angleOf(pnt);
  while (a < mStartAng) a += kTwoPi;
  if (a <= mEndAng) return true;
  return pnt.isEqualTo(startPoint(), tol) || pnt.isEqualTo(endPoint(), tol);
}

double AcGeCircArc2d::length(double fromParam, double toParam, double) const {
  return std::fabs(toParam - fromParam) * mRadius;
}

double AcGeCircArc2d::paramAtLength(double datumParam, double length, bool posParamDir, double) const {
  if (mRadius == 0.0) return datumParam;
  return posParamDir ? datumParam + length / mRadius : datumParam - length / mRadius;
}

void AcGeCircArc2d::getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint2dArray& pointArray,
                                    AcGeDoubleArray& paramArray) const {
  pointArray.removeAll();
  paramArray.removeAll();
  if (!(approxEps > 0.0)) approxEps = AcGeContext::gTol.equalPoint();
  const double sweep = std::fabs(toParam - fromParam);
  // A chord over the angle d departs from the arc by R (1 - cos(d/2)) =
  // 2 R sin^2(d/4); the largest step keeping that within approxEps, written
  // with asin so it stays accurate when approxEps is tiny against R. Beyond a
  // half circle the chord no longer bounds the arc's distance, so the step
  // stays below pi.
  double maxStep = kPi;
  if (approxEps < mRadius) maxStep = std::min(kPi, 4.0 * std::asin(std::sqrt(approxEps / (2.0 * mRadius))));
  double steps = maxStep > 0.0 ? std::ceil(sweep / maxStep) : static_cast<double>(kMaxSampleSteps);
  if (!(steps >= 1.0)) steps = 1.0;
  if (steps > kMaxSampleSteps) steps = kMaxSampleSteps;
  const int n = static_cast<int>(steps);
  const double delta = (toParam - fromParam) / n;
  pointArray.setPhysicalLength(n + 1);
  paramArray.setPhysicalLength(n + 1);
  for (int k = 0; k < n; ++k) {
    const double t = fromParam + delta * k;
    pointArray.append(evalPoint(t));
    paramArray.append(t);
  }
  pointArray.append(evalPoint(toParam));
  paramArray.append(toParam);
}

void AcGeCircArc2d::getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const {
  pointArray.removeAll();
  for (int k = 0; k < numSample; ++k) {
    const double t = numSample == 1 ? mStartAng : mStartAng + (mEndAng - mStartAng) * k / (numSample - 1);
    pointArray.append(evalPoint(t));
  }
}

bool AcGeCircArc2d::isDegenerate(AcGe::EntityId& degenerateType, const AcGeTol& tol) const {
  if (std::isfinite(mRadius) && mRadius > tol.equalPoint()) return false;
  degenerateType = AcGe::kPointEnt2d;
  return true;
}

AcGeCircArc2d& AcGeCircArc2d::reverseParam() {
  const double sweep = mEndAng - mStartAng;
  // The old end point, seen in the opposite sense from the same reference vector.
  mStartAng = wrapTwoPi(-mEndAng);
  mEndAng = mStartAng + sweep;
  mClockWise = !mClockWise;
  return *this;
}
