// Planar curves of the geometry library: lines, segments and circular arcs.
//
// Parameters follow the library's conventions:
// - a line or segment built from two points p1, p2 is p1 + t * (p2 - p1), so a
//   segment runs over [0, 1];
// - a circular arc is parameterised by its angle in radians, measured from the
//   reference vector in the arc's own sense of travel (counter-clockwise, or
//   clockwise when isClockWise()). Its parameter interval is [startAng, endAng]
//   with startAng <= endAng; startPoint() is at startAng. That the curve
//   parameter equals this angle is the documented meaning of the angles; the
//   SDK does not state it for the parameter itself, and we take it so.
#ifndef VORA_ARX_GECURVE2D_H
#define VORA_ARX_GECURVE2D_H

#include "vora/arx/acarray.h"

struct AcGe {
  enum EntityId {
    kEntity2d,
    kPointEnt2d,
    kCurve2d,
    kLinearEnt2d,
    kLine2d,
    kLineSeg2d,
    kCircArc2d,
  };
};

// The common interface of planar curves.
class VORA_HOST_API AcGeCurve2d {
public:
  virtual ~AcGeCurve2d();

  virtual AcGe::EntityId type() const = 0;
  bool isKindOf(AcGe::EntityId id) const;

  // Parameter of the point of the curve nearest to pnt.
  virtual double paramOf(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;
  virtual AcGePoint2d evalPoint(double param) const = 0;
  virtual bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const = 0;
  bool isOn(const AcGePoint2d& pnt, double& param, const AcGeTol& tol = AcGeContext::gTol) const;

  // Curve length between two parameters, whatever their order.
  virtual double length(double fromParam, double toParam, double tol = AcGeContext::gTol.equalPoint()) const = 0;
  // Parameter at the given length from datumParam, forward along increasing
  // parameters when posParamDir, backward otherwise. Unbounded curves and
  // arcs answer past their ends too.
  virtual double paramAtLength(double datumParam, double length, bool posParamDir = true,
                               double tol = AcGeContext::gTol.equalPoint()) const = 0;

  // Polygonises the curve between two parameters (in the order given): no
  // chord of the returned points departs from the curve by more than
  // approxEps, and both end parameters are among the samples. The arrays are
  // cleared first; params receives the parameter of each point.
  virtual void getSamplePoints(double fromParam, double toParam, double approxEps,
                               AcGePoint2dArray& pointArray, AcGeDoubleArray& paramArray) const = 0;
  // numSample points evenly spaced in parameter over the curve's interval.
  virtual void getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const = 0;

  // A curve is degenerate when it has collapsed to a point (or, for an arc
  // built from three points, when no circle passes through them).
  virtual bool isDegenerate(AcGe::EntityId& degenerateType, const AcGeTol& tol = AcGeContext::gTol) const = 0;
  bool isDegenerate(const AcGeTol& tol = AcGeContext::gTol) const;

  // Same point set, traversed the other way.
  virtual AcGeCurve2d& reverseParam() = 0;

protected:
  AcGeCurve2d() = default;
  AcGeCurve2d(const AcGeCurve2d&) = default;
  AcGeCurve2d& operator=(const AcGeCurve2d&) = default;
};

// Common part of straight curves: an origin and a direction whose length is
// the parameter unit.
class VORA_HOST_API AcGeLinearEnt2d : public AcGeCurve2d {
public:
  AcGePoint2d pointOnLine() const { return mOrigin; }
  AcGeVector2d direction() const { return mDir.normal(); }

  double paramOf(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGePoint2d evalPoint(double param) const override;
  double length(double fromParam, double toParam, double tol = AcGeContext::gTol.equalPoint()) const override;
  double paramAtLength(double datumParam, double length, bool posParamDir = true,
                       double tol = AcGeContext::gTol.equalPoint()) const override;
  using AcGeCurve2d::isDegenerate;
  bool isDegenerate(AcGe::EntityId& degenerateType, const AcGeTol& tol = AcGeContext::gTol) const override;
  // A straight piece needs no more than its ends: the samples are the two
  // given parameters (an unbounded line has no interval of its own).
  void getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint2dArray& pointArray,
                       AcGeDoubleArray& paramArray) const override;
  // Samples the parameters 0 to 1.
  void getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const override;

protected:
  AcGeLinearEnt2d() : mDir(AcGeVector2d::kXAxis) {}
  AcGeLinearEnt2d(const AcGePoint2d& origin, const AcGeVector2d& dir) : mOrigin(origin), mDir(dir) {}
  // Unclamped parameter of the foot of the perpendicular from pnt.
  double footParam(const AcGePoint2d& pnt) const;
  // Distance from pnt to the point at param, computed from differences so
  // that large coordinates keep their precision.
  double distanceAt(const AcGePoint2d& pnt, double param) const;

  AcGePoint2d mOrigin;
  AcGeVector2d mDir;
};

// An unbounded line.
class VORA_HOST_API AcGeLine2d : public AcGeLinearEnt2d {
public:
  AcGeLine2d() = default;
  AcGeLine2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : AcGeLinearEnt2d(pnt, vec) {}
  AcGeLine2d(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) : AcGeLinearEnt2d(pnt1, pnt2 - pnt1) {}

  AcGeLine2d& set(const AcGePoint2d& pnt, const AcGeVector2d& vec);
  AcGeLine2d& set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2);

  AcGe::EntityId type() const override { return AcGe::kLine2d; }
  using AcGeCurve2d::isOn;
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeLine2d& reverseParam() override;
};

// A bounded segment from startPoint() (parameter 0) to endPoint() (parameter 1).
class VORA_HOST_API AcGeLineSeg2d : public AcGeLinearEnt2d {
public:
  AcGeLineSeg2d() : AcGeLinearEnt2d({0.0, 0.0}, {1.0, 0.0}) {}
  AcGeLineSeg2d(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2) : AcGeLinearEnt2d(pnt1, pnt2 - pnt1) {}
  AcGeLineSeg2d(const AcGePoint2d& pnt, const AcGeVector2d& vec) : AcGeLinearEnt2d(pnt, vec) {}

  AcGeLineSeg2d& set(const AcGePoint2d& pnt1, const AcGePoint2d& pnt2);

  AcGePoint2d startPoint() const { return mOrigin; }
  AcGePoint2d endPoint() const { return mOrigin + mDir; }
  AcGePoint2d midPoint() const { return evalPoint(0.5); }
  double length() const { return mDir.length(); }
  using AcGeLinearEnt2d::length;

  AcGe::EntityId type() const override { return AcGe::kLineSeg2d; }
  // Parameters are clamped to the segment.
  double paramOf(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  using AcGeCurve2d::isOn;
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  AcGeLineSeg2d& reverseParam() override;
};

// A circular arc, or a full circle.
class VORA_HOST_API AcGeCircArc2d : public AcGeCurve2d {
public:
  // The unit circle at the origin.
  AcGeCircArc2d();
  // Full circle, counter-clockwise from the x axis.
  AcGeCircArc2d(const AcGePoint2d& cent, double radius);
  AcGeCircArc2d(const AcGePoint2d& cent, double radius, double startAngle, double endAngle,
                const AcGeVector2d& refVec = AcGeVector2d::kXAxis, bool isClockWise = false);
  // The arc from startPoint through pnt to endPoint. When the three points lie
  // on one line (or two coincide) there is no such arc: the result has a zero
  // radius and isDegenerate() answers true.
  AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& pnt, const AcGePoint2d& endPoint);
  // The arc between two points with a bulge: bulgeFlag true reads bulge as the
  // largest distance between arc and chord, false as tan(included angle / 4),
  // positive when the arc turns counter-clockwise from startPoint to endPoint.
  // As in the SDK the result is always counter-clockwise, so a clockwise bulge
  // gives an arc whose startPoint() is the given endPoint; call reverseParam()
  // to run it from the given startPoint. A zero bulge or coincident points give
  // a degenerate arc of radius 0.
  AcGeCircArc2d(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge, bool bulgeFlag = true);

  AcGeCircArc2d& set(const AcGePoint2d& cent, double radius);
  AcGeCircArc2d& set(const AcGePoint2d& cent, double radius, double startAngle, double endAngle,
                     const AcGeVector2d& refVec = AcGeVector2d::kXAxis, bool isClockWise = false);
  AcGeCircArc2d& set(const AcGePoint2d& startPoint, const AcGePoint2d& pnt, const AcGePoint2d& endPoint);
  AcGeCircArc2d& set(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulge, bool bulgeFlag = true);

  AcGePoint2d center() const { return mCenter; }
  double radius() const { return mRadius; }
  double startAng() const { return mStartAng; }
  double endAng() const { return mEndAng; }
  bool isClockWise() const { return mClockWise; }
  AcGeVector2d refVec() const { return mRefVec; }
  AcGePoint2d startPoint() const { return evalPoint(mStartAng); }
  AcGePoint2d endPoint() const { return evalPoint(mEndAng); }
  bool isClosed(const AcGeTol& tol = AcGeContext::gTol) const;

  AcGeCircArc2d& setCenter(const AcGePoint2d& cent);
  AcGeCircArc2d& setRadius(double radius);
  // The angles keep their values and are read from the new reference vector,
  // so the arc turns with it. startAngle > endAngle takes endAngle + 2*pi.
  AcGeCircArc2d& setAngles(double startAngle, double endAngle);
  AcGeCircArc2d& setRefVec(const AcGeVector2d& vec);

  AcGe::EntityId type() const override { return AcGe::kCircArc2d; }
  // The angle of pnt from the reference vector, in the arc's sense, placed in
  // [startAng, startAng + 2*pi). A point outside the arc's interval gets the
  // parameter of the nearer end point; a full circle answers in [startAng, endAng).
  double paramOf(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  // Any parameter evaluates on the arc's circle.
  AcGePoint2d evalPoint(double param) const override;
  // On the circle within equalPoint, and within the arc's interval or within
  // equalPoint of one of its end points.
  using AcGeCurve2d::isOn;
  bool isOn(const AcGePoint2d& pnt, const AcGeTol& tol = AcGeContext::gTol) const override;
  double length(double fromParam, double toParam, double tol = AcGeContext::gTol.equalPoint()) const override;
  using AcGeCurve2d::length;
  double length() const { return length(mStartAng, mEndAng); }
  double paramAtLength(double datumParam, double length, bool posParamDir = true,
                       double tol = AcGeContext::gTol.equalPoint()) const override;
  // Equal parameter steps, as many as the sagitta bound needs. A non-positive
  // approxEps is replaced by the global equalPoint; the number of steps is
  // capped at kMaxSampleSteps, where the bound may then not hold.
  void getSamplePoints(double fromParam, double toParam, double approxEps, AcGePoint2dArray& pointArray,
                       AcGeDoubleArray& paramArray) const override;
  void getSamplePoints(int numSample, AcGePoint2dArray& pointArray) const override;
  bool isDegenerate(AcGe::EntityId& degenerateType, const AcGeTol& tol = AcGeContext::gTol) const override;
  using AcGeCurve2d::isDegenerate;
  // The start and end points swap and the sense of travel flips; the angles
  // are re-expressed from the same reference vector.
  AcGeCircArc2d& reverseParam() override;

  static constexpr int kMaxSampleSteps = 1 << 20;

private:
  double sense() const { return mClockWise ? -1.0 : 1.0; }
  // Angle of pnt from the reference vector in the arc's sense, in [0, 2*pi).
  double angleOf(const AcGePoint2d& pnt) const;
  void setDegenerate(const AcGePoint2d& at);

  AcGePoint2d mCenter;
  double mRadius = 1.0;
  double mStartAng = 0.0;
  double mEndAng = 6.283185307179586;
  AcGeVector2d mRefVec{1.0, 0.0};
  bool mClockWise = false;
};

#endif
