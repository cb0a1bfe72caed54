#include <cmath>

#include "host/db/internal.h"

#define VORA_SET_ES(FIELD, VALUE)                          \
  do {                                                     \
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;  \
    FIELD = VALUE;                                         \
    setHostModified(true);                                 \
    return Acad::eOk;                                      \
  } while (false)

#define VORA_SET_VOID(FIELD, VALUE)    \
  do {                                 \
    if (!assertWriteEnabled()) return; \
    FIELD = VALUE;                     \
    setHostModified(true);             \
  } while (false)

// Lines.

ACRX_DXF_DEFINE_MEMBERS(AcDbLine, AcDbCurve, AcDb::kDHL_CURRENT, 0, 0, LINE, ObjectDBX Classes)

AcDbLine::AcDbLine() = default;
AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : mStart(start), mEnd(end) {}
AcDbLine::~AcDbLine() = default;
Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& pt) { VORA_SET_ES(mStart, pt); }
Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& pt) { VORA_SET_ES(mEnd, pt); }
Acad::ErrorStatus AcDbLine::setThickness(double t) { VORA_SET_ES(mThickness, t); }
Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& n) { VORA_SET_ES(mNormal, n); }

// Circles.

ACRX_DXF_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, AcDb::kDHL_CURRENT, 0, 0, CIRCLE, ObjectDBX Classes)

AcDbCircle::AcDbCircle() = default;
AcDbCircle::AcDbCircle(const AcGePoint3d& cntr, const AcGeVector3d& nrm, double radius)
    : mCenter(cntr), mNormal(nrm), mRadius(radius) {}
AcDbCircle::~AcDbCircle() = default;
Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& pt) { VORA_SET_ES(mCenter, pt); }
Acad::ErrorStatus AcDbCircle::setRadius(double r) {
  if (!(r > 0.0)) return Acad::eInvalidInput;
  VORA_SET_ES(mRadius, r);
}
Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& n) { VORA_SET_ES(mNormal, n); }
Acad::ErrorStatus AcDbCircle::setThickness(double t) { VORA_SET_ES(mThickness, t); }

// Arcs.

ACRX_DXF_DEFINE_MEMBERS(AcDbArc, AcDbCurve, AcDb::kDHL_CURRENT, 0, 0, ARC, ObjectDBX Classes)

AcDbArc::AcDbArc() = default;
AcDbArc::AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
    : mCenter(center), mRadius(radius), mStartAngle(startAngle), mEndAngle(endAngle) {}
AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
                 double endAngle)
    : mCenter(center), mNormal(normal), mRadius(radius), mStartAngle(startAngle), mEndAngle(endAngle) {}
AcDbArc::~AcDbArc() = default;
Acad::ErrorStatus AcDbArc::setCenter(const AcGePoint3d& pt) { VORA_SET_ES(mCenter, pt); }
Acad::ErrorStatus AcDbArc::setRadius(double r) {
  if (!(r > 0.0)) return Acad::eInvalidInput;
  VORA_SET_ES(mRadius, r);
}
Acad::ErrorStatus AcDbArc::setStartAngle(double angle) { VORA_SET_ES(mStartAngle, angle); }
Acad::ErrorStatus AcDbArc::setEndAngle(double angle) { VORA_SET_ES(mEndAngle, angle); }
Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& n) { VORA_SET_ES(mNormal, n); }
Acad::ErrorStatus AcDbArc::setThickness(double t) { VORA_SET_ES(mThickness, t); }

// Light-weight polylines.

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, AcDb::kDHL_CURRENT, 0, 0, LWPOLYLINE, ObjectDBX Classes)

AcDbPolyline::AcDbPolyline() = default;
AcDbPolyline::AcDbPolyline(unsigned int num_verts) { mVerts.reserve(num_verts); }
AcDbPolyline::~AcDbPolyline() = default;

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& pt, double bulge, double startWidth,
                                            double endWidth, Adesk::Int32 vertexIdentifier) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (index > mVerts.size()) return Acad::eInvalidIndex;
  Vertex v;
  v.pt = pt;
  v.bulge = bulge;
  v.startWidth = startWidth < 0.0 ? 0.0 : startWidth;
  v.endWidth = endWidth < 0.0 ? 0.0 : endWidth;
  v.id = vertexIdentifier;
  mVerts.insert(mVerts.begin() + index, v);
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  mVerts.erase(mVerts.begin() + index);
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& pt) const {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  pt = mVerts[index].pt;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& pt) const {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  const AcGePoint2d& p = mVerts[index].pt;
  if (mNormal.x == 0.0 && mNormal.y == 0.0 && mNormal.z == 1.0) {
    pt.set(p.x, p.y, mElevation);
    return Acad::eOk;
  }
  // The plane's axes by the drawing format's arbitrary-axis rule: the x axis
  // is perpendicular to the normal and to world Y when the normal is within
  // 1/64 of world Z, to world Z otherwise.
  const AcGeVector3d n = mNormal.normal();
  const double limit = 1.0 / 64.0;
  const AcGeVector3d ax = (std::fabs(n.x) < limit && std::fabs(n.y) < limit ? AcGeVector3d::kYAxis.crossProduct(n)
                                                                            : AcGeVector3d::kZAxis.crossProduct(n))
                              .normal();
  const AcGeVector3d ay = n.crossProduct(ax).normal();
  const AcGeVector3d w = ax * p.x + ay * p.y + n * mElevation;
  pt.set(w.x, w.y, w.z);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& pt) {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  VORA_SET_ES(mVerts[index].pt, pt);
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  bulge = mVerts[index].bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  VORA_SET_ES(mVerts[index].bulge, bulge);
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  startWidth = mVerts[index].startWidth;
  endWidth = mVerts[index].endWidth;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth, double endWidth) {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mVerts[index].startWidth = startWidth;
  mVerts[index].endWidth = endWidth;
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getVertexIdentifierAt(unsigned int index, Adesk::Int32& id) const {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  id = mVerts[index].id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setVertexIdentifierAt(unsigned int index, Adesk::Int32 id) {
  if (index >= mVerts.size()) return Acad::eInvalidIndex;
  VORA_SET_ES(mVerts[index].id, id);
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
  width = 0.0;
  for (const Vertex& v : mVerts) {
    if (v.startWidth != mVerts.front().startWidth || v.endWidth != mVerts.front().startWidth) return Acad::eInvalidInput;
  }
  if (!mVerts.empty()) width = mVerts.front().startWidth;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  for (Vertex& v : mVerts) v.startWidth = v.endWidth = width;
  setHostModified(true);
  return Acad::eOk;
}

bool AcDbPolyline::hasWidth() const {
  for (const Vertex& v : mVerts) {
    if (v.startWidth != 0.0 || v.endWidth != 0.0) return true;
  }
  return false;
}

bool AcDbPolyline::hasBulges() const {
  for (const Vertex& v : mVerts) {
    if (v.bulge != 0.0) return true;
  }
  return false;
}

void AcDbPolyline::setClosed(Adesk::Boolean closed) { VORA_SET_VOID(mClosed, closed); }
void AcDbPolyline::setPlinegen(Adesk::Boolean plinegen) { VORA_SET_VOID(mPlinegen, plinegen); }
void AcDbPolyline::setElevation(double elev) { VORA_SET_VOID(mElevation, elev); }
Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& n) { VORA_SET_ES(mNormal, n); }
Acad::ErrorStatus AcDbPolyline::setThickness(double t) { VORA_SET_ES(mThickness, t); }

// Vertices.

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbVertex, AcDbEntity)
AcDbVertex::AcDbVertex() = default;
AcDbVertex::~AcDbVertex() = default;

ACRX_DXF_DEFINE_MEMBERS(AcDb2dVertex, AcDbVertex, AcDb::kDHL_CURRENT, 0, 0, VERTEX, ObjectDBX Classes)

AcDb2dVertex::AcDb2dVertex() = default;
AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth, double endWidth,
                           double tangent, Adesk::Int32 vertexIdentifier)
    : mPosition(position),
      mBulge(bulge),
      mStartWidth(startWidth),
      mEndWidth(endWidth),
      mTangent(tangent),
      mIdentifier(vertexIdentifier) {}
AcDb2dVertex::~AcDb2dVertex() = default;
void AcDb2dVertex::setVertexType(AcDb::Vertex2dType type) { VORA_SET_VOID(mType, type); }
Acad::ErrorStatus AcDb2dVertex::setPosition(const AcGePoint3d& pt) { VORA_SET_ES(mPosition, pt); }
Acad::ErrorStatus AcDb2dVertex::setBulge(double newVal) { VORA_SET_ES(mBulge, newVal); }
Acad::ErrorStatus AcDb2dVertex::setStartWidth(double newVal) { VORA_SET_ES(mStartWidth, newVal); }
Acad::ErrorStatus AcDb2dVertex::setEndWidth(double newVal) { VORA_SET_ES(mEndWidth, newVal); }
void AcDb2dVertex::useTangent() { VORA_SET_VOID(mTangentUsed, true); }
void AcDb2dVertex::ignoreTangent() { VORA_SET_VOID(mTangentUsed, false); }
Acad::ErrorStatus AcDb2dVertex::setTangent(double newVal) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mTangent = newVal;
  mTangentUsed = true;
  setHostModified(true);
  return Acad::eOk;
}
Acad::ErrorStatus AcDb2dVertex::setVertexIdentifier(Adesk::Int32 id) { VORA_SET_ES(mIdentifier, id); }

ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolylineVertex, AcDbVertex, AcDb::kDHL_CURRENT, 0, 0, VERTEX, ObjectDBX Classes)

AcDb3dPolylineVertex::AcDb3dPolylineVertex() = default;
AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& pt) : mPosition(pt) {}
AcDb3dPolylineVertex::~AcDb3dPolylineVertex() = default;
void AcDb3dPolylineVertex::setVertexType(AcDb::Vertex3dType type) { VORA_SET_VOID(mType, type); }
Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& pt) { VORA_SET_ES(mPosition, pt); }

ACRX_DXF_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, SEQEND, ObjectDBX Classes)
AcDbSequenceEnd::AcDbSequenceEnd() = default;
AcDbSequenceEnd::~AcDbSequenceEnd() = default;

// Faces.

ACRX_DXF_DEFINE_MEMBERS(AcDbFace, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, 3DFACE, ObjectDBX Classes)

AcDbFace::AcDbFace() = default;
AcDbFace::AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, const AcGePoint3d& pt3,
                   Adesk::Boolean e0vis, Adesk::Boolean e1vis, Adesk::Boolean e2vis, Adesk::Boolean e3vis)
    : mPts{pt0, pt1, pt2, pt3}, mVisible{e0vis, e1vis, e2vis, e3vis} {}
AcDbFace::AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, Adesk::Boolean e0vis,
                   Adesk::Boolean e1vis, Adesk::Boolean e2vis, Adesk::Boolean e3vis)
    : mPts{pt0, pt1, pt2, pt2}, mVisible{e0vis, e1vis, e2vis, e3vis} {}
AcDbFace::~AcDbFace() = default;

Acad::ErrorStatus AcDbFace::getVertexAt(Adesk::UInt16 index, AcGePoint3d& pt) const {
  if (index > 3) return Acad::eInvalidIndex;
  pt = mPts[index];
  return Acad::eOk;
}
Acad::ErrorStatus AcDbFace::setVertexAt(Adesk::UInt16 index, const AcGePoint3d& pt) {
  if (index > 3) return Acad::eInvalidIndex;
  VORA_SET_ES(mPts[index], pt);
}
Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(Adesk::UInt16 index, Adesk::Boolean& visible) const {
  if (index > 3) return Acad::eInvalidIndex;
  visible = mVisible[index];
  return Acad::eOk;
}
Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(Adesk::UInt16 index) {
  if (index > 3) return Acad::eInvalidIndex;
  VORA_SET_ES(mVisible[index], true);
}
Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(Adesk::UInt16 index) {
  if (index > 3) return Acad::eInvalidIndex;
  VORA_SET_ES(mVisible[index], false);
}

// Block markers.

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockBegin, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, BLOCK, ObjectDBX Classes)
AcDbBlockBegin::AcDbBlockBegin() = default;
AcDbBlockBegin::~AcDbBlockBegin() = default;

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockEnd, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, ENDBLK, ObjectDBX Classes)
AcDbBlockEnd::AcDbBlockEnd() = default;
AcDbBlockEnd::~AcDbBlockEnd() = default;
