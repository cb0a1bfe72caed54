#include "host/db/internal.h"

using vora_host::Access;

namespace {

// Puts pVertex at the end of a polyline's vertices: into the database when
// the polyline is in one, among the pending vertices otherwise.
Acad::ErrorStatus appendTo(AcDbEntity* polyline, std::vector<AcDbObjectId>& vertices,
                           std::vector<AcDbEntity*>& pending, AcDbObjectId& objId, AcDbEntity* pVertex) {
  objId = AcDbObjectId::kNull;
  if (pVertex == nullptr) return Acad::eNullObjectPointer;
  if (!polyline->isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (pVertex->database() != nullptr) return Acad::eAlreadyInDb;
  for (AcDbEntity* p : pending) {
    if (p == pVertex) return Acad::eAlreadyInDb;
  }
  if (polyline->database() == nullptr) {
    pending.push_back(pVertex);
    polyline->setHostModified(true);
    return Acad::eOk;
  }
  Access::setOwner(pVertex, polyline->objectId());
  if (pVertex->layerId().isNull()) Access::copyProperties(pVertex, polyline);
  const Acad::ErrorStatus es = polyline->database()->addAcDbObject(objId, pVertex);
  if (es != Acad::eOk) {
    Access::setOwner(pVertex, AcDbObjectId::kNull);
    return es;
  }
  vertices.push_back(objId);
  polyline->setHostModified(true);
  return Acad::eOk;
}

// On entering a database: the pending vertices follow, and the SEQEND that
// closes every polyline in a file.
void addChildren(AcDbEntity* polyline, AcDbDatabase* db, std::vector<AcDbObjectId>& vertices,
                 std::vector<AcDbEntity*>& pending, AcDbObjectId& seqEnd) {
  for (AcDbEntity* v : pending) {
    Access::setOwner(v, polyline->objectId());
    Access::copyProperties(v, polyline);
    AcDbObjectId id;
    db->addAcDbObject(id, v);
    v->close();
    vertices.push_back(id);
  }
  pending.clear();
  if (seqEnd.isNull()) {
    auto* end = new AcDbSequenceEnd();
    Access::setOwner(end, polyline->objectId());
    Access::copyProperties(end, polyline);
    db->addAcDbObject(seqEnd, end);
    end->close();
  }
}

void propagate(const AcDbEntity* polyline, const std::vector<AcDbObjectId>& vertices,
               const std::vector<AcDbEntity*>& pending, AcDbObjectId seqEnd) {
  for (const AcDbObjectId& id : vertices) {
    if (auto* v = AcDbEntity::cast(vora_host::peek(id))) Access::copyProperties(v, polyline);
  }
  for (AcDbEntity* v : pending) Access::copyProperties(v, polyline);
  if (auto* end = AcDbEntity::cast(vora_host::peek(seqEnd))) Access::copyProperties(end, polyline);
}

}  // namespace

namespace vora_host {

void appendVertex(AcDbEntity* polyline, AcDbObjectId vertex) {
  if (auto* p2 = AcDb2dPolyline::cast(polyline)) Access::vertices(p2).push_back(vertex);
  else if (auto* p3 = AcDb3dPolyline::cast(polyline)) Access::vertices(p3).push_back(vertex);
}

void setSeqEnd(AcDbEntity* polyline, AcDbObjectId end) {
  if (auto* p2 = AcDb2dPolyline::cast(polyline)) Access::seqEnd(p2) = end;
  else if (auto* p3 = AcDb3dPolyline::cast(polyline)) Access::seqEnd(p3) = end;
}

std::vector<AcDbObjectId> vertices(const AcDbEntity* polyline) {
  if (auto* p2 = AcDb2dPolyline::cast(polyline)) return Access::vertices(static_cast<const AcDb2dPolyline*>(p2));
  if (auto* p3 = AcDb3dPolyline::cast(polyline)) return Access::vertices(static_cast<const AcDb3dPolyline*>(p3));
  return {};
}

AcDbObjectId seqEnd(const AcDbEntity* polyline) {
  if (auto* p2 = AcDb2dPolyline::cast(polyline)) return Access::seqEnd(p2);
  if (auto* p3 = AcDb3dPolyline::cast(polyline)) return Access::seqEnd(p3);
  return AcDbObjectId::kNull;
}

}  // namespace vora_host

// The vertex iterator.

AcDbObjectIterator::AcDbObjectIterator(std::vector<AcDbObjectId> ids, std::vector<AcDbEntity*> pending)
    : mIds(std::move(ids)), mPending(std::move(pending)) {
  start(false);
}
AcDbObjectIterator::~AcDbObjectIterator() = default;

bool AcDbObjectIterator::done() const {
  const long n = static_cast<long>(mIds.empty() ? mPending.size() : mIds.size());
  return mPos < 0 || mPos >= n;
}

void AcDbObjectIterator::skip(bool backwards) {
  while (!mIds.empty() && !done() && mIds[static_cast<std::size_t>(mPos)].isErased()) mPos += backwards ? -1 : 1;
}

void AcDbObjectIterator::start(bool atEnd) {
  const long n = static_cast<long>(mIds.empty() ? mPending.size() : mIds.size());
  mPos = atEnd ? n - 1 : 0;
  skip(atEnd);
}

void AcDbObjectIterator::step(bool backwards, bool skipDeleted) {
  mPos += backwards ? -1 : 1;
  if (skipDeleted) skip(backwards);
}

AcDbObjectId AcDbObjectIterator::objectId() const {
  if (done() || mIds.empty()) return AcDbObjectId::kNull;
  return mIds[static_cast<std::size_t>(mPos)];
}

AcDbEntity* AcDbObjectIterator::entity() {
  if (done() || !mIds.empty()) return nullptr;
  return mPending[static_cast<std::size_t>(mPos)];
}

bool AcDbObjectIterator::seek(AcDbObjectId id) {
  for (std::size_t i = 0; i < mIds.size(); ++i) {
    if (mIds[i] == id) {
      mPos = static_cast<long>(i);
      return true;
    }
  }
  return false;
}

// 2D polylines.

ACRX_DXF_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, AcDb::kDHL_CURRENT, 0, 0, POLYLINE, ObjectDBX Classes)

AcDb2dPolyline::AcDb2dPolyline() = default;

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, AcGePoint3dArray& vertices, double elevation,
                               Adesk::Boolean closed, double defStartWidth, double defEndWidth,
                               AcGeDoubleArray* bulges)
    : mElevation(elevation), mDefStart(defStartWidth), mDefEnd(defEndWidth), mType(type), mClosed(closed) {
  for (int i = 0; i < vertices.length(); ++i) {
    const double bulge = (bulges != nullptr && i < bulges->length()) ? bulges->at(i) : 0.0;
    AcGePoint3d p = vertices[i];
    p.z = elevation;
    mPending.push_back(new AcDb2dVertex(p, bulge, defStartWidth, defEndWidth));
  }
}

AcDb2dPolyline::~AcDb2dPolyline() {
  for (AcDbEntity* v : mPending) delete v;
}

void AcDb2dPolyline::onAddedToDatabase(AcDbDatabase* db) {
  AcDbCurve::onAddedToDatabase(db);
  addChildren(this, db, mVertices, mPending, mSeqEnd);
}

void AcDb2dPolyline::propagateProperties() { propagate(this, mVertices, mPending, mSeqEnd); }

Acad::ErrorStatus AcDb2dPolyline::setPolyType(AcDb::Poly2dType type) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mType = type;
  setHostModified(true);
  return Acad::eOk;
}

void AcDb2dPolyline::setClosed(Adesk::Boolean closed) {
  if (!assertWriteEnabled()) return;
  mClosed = closed;
  setHostModified(true);
}

void AcDb2dPolyline::setElevation(double elev) {
  if (!assertWriteEnabled()) return;
  mElevation = elev;
  setHostModified(true);
}

#define VORA_SET_ES(FIELD, VALUE)                          \
  do {                                                     \
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;  \
    FIELD = VALUE;                                         \
    setHostModified(true);                                 \
    return Acad::eOk;                                      \
  } while (false)

Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& n) { VORA_SET_ES(mNormal, n); }
Acad::ErrorStatus AcDb2dPolyline::setThickness(double t) { VORA_SET_ES(mThickness, t); }
Acad::ErrorStatus AcDb2dPolyline::setDefaultStartWidth(double w) { VORA_SET_ES(mDefStart, w); }
Acad::ErrorStatus AcDb2dPolyline::setDefaultEndWidth(double w) { VORA_SET_ES(mDefEnd, w); }
Acad::ErrorStatus AcDb2dPolyline::setLinetypeGenerationOn() { VORA_SET_ES(mPlinegen, true); }
Acad::ErrorStatus AcDb2dPolyline::setLinetypeGenerationOff() { VORA_SET_ES(mPlinegen, false); }

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* pVertex) {
  AcDbObjectId id;
  return appendVertex(id, pVertex);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& objId, AcDb2dVertex* pVertex) {
  return appendTo(this, mVertices, mPending, objId, pVertex);
}

AcDbObjectIterator* AcDb2dPolyline::vertexIterator() const { return new AcDbObjectIterator(mVertices, mPending); }

Acad::ErrorStatus AcDb2dPolyline::openSequenceEnd(AcDbSequenceEnd*& pEnd, AcDb::OpenMode mode) {
  return acdbOpenObject(pEnd, mSeqEnd, mode);
}

// 3D polylines.

ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve, AcDb::kDHL_CURRENT, 0, 0, POLYLINE, ObjectDBX Classes)

AcDb3dPolyline::AcDb3dPolyline() = default;

AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, AcGePoint3dArray& vertices, Adesk::Boolean closed)
    : mType(type), mClosed(closed) {
  for (int i = 0; i < vertices.length(); ++i) mPending.push_back(new AcDb3dPolylineVertex(vertices[i]));
}

AcDb3dPolyline::~AcDb3dPolyline() {
  for (AcDbEntity* v : mPending) delete v;
}

void AcDb3dPolyline::onAddedToDatabase(AcDbDatabase* db) {
  AcDbCurve::onAddedToDatabase(db);
  addChildren(this, db, mVertices, mPending, mSeqEnd);
}

void AcDb3dPolyline::propagateProperties() { propagate(this, mVertices, mPending, mSeqEnd); }

Acad::ErrorStatus AcDb3dPolyline::setPolyType(AcDb::Poly3dType type) { VORA_SET_ES(mType, type); }

void AcDb3dPolyline::setClosed(Adesk::Boolean closed) {
  if (!assertWriteEnabled()) return;
  mClosed = closed;
  setHostModified(true);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDb3dPolylineVertex* pVertex) {
  AcDbObjectId id;
  return appendVertex(id, pVertex);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& objId, AcDb3dPolylineVertex* pVertex) {
  return appendTo(this, mVertices, mPending, objId, pVertex);
}

AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const { return new AcDbObjectIterator(mVertices, mPending); }

Acad::ErrorStatus AcDb3dPolyline::openSequenceEnd(AcDbSequenceEnd*& pEnd, AcDb::OpenMode mode) {
  return acdbOpenObject(pEnd, mSeqEnd, mode);
}
