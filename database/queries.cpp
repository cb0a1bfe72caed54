// Entity queries, materials, 3D polyline rewriting, outlines and draw order.
#include "vora/database.h"

#include <cmath>

#include "database/dbcommon.h"
#include "geometry/tolerance.h"
#include "vora/polyline.h"

using vora::db::equalNoCase;

namespace {

bool nameInList(const ACHAR* name, const std::vector<std::wstring>& list) {
  if (name == nullptr) return false;
  for (const std::wstring& candidate : list) {
    if (equalNoCase(candidate, name)) return true;
  }
  return false;
}

bool isOn(const std::vector<std::wstring>* filter) { return filter != nullptr && !filter->empty(); }

bool passesClassFilter(const AcDbEntity* entity, const std::vector<std::wstring>& classNames) {
  const AcRxClass* cls = entity->isA();
  return cls != nullptr && nameInList(cls->dxfName(), classNames);
}

bool passesLayerFilter(const AcDbEntity* entity, const std::vector<std::wstring>& layerNames) {
  ACHAR* layer = entity->layer();
  const bool found = nameInList(layer, layerNames);
  if (layer != nullptr) acutDelString(layer);
  return found;
}

// Entities without any extended data pass: callers use the filter to skip
// entities that some other application has tagged differently, and count on
// plain entities coming through.
bool passesAppFilter(const AcDbEntity* entity, const std::vector<std::wstring>& appNames) {
  resbuf* xdata = entity->xData(nullptr);
  if (xdata == nullptr) return true;
  bool all = true;
  for (const std::wstring& app : appNames) {
    bool found = false;
    for (const resbuf* rb = xdata; rb != nullptr && !found; rb = rb->rbnext) {
      found = rb->restype == AcDb::kDxfRegAppName && equalNoCase(app, rb->resval.rstring);
    }
    if (!found) {
      all = false;
      break;
    }
  }
  acutRelRb(xdata);
  return all;
}

// Calls visit(entity) for every non-erased entity of model space, opened for
// read and closed after the visit. False when model space cannot be read.
template <class Visit>
bool forEachModelSpaceEntity(Visit&& visit) {
  AcDbBlockTableRecord* space = vora::db::openModelSpace(AcDb::kForRead);
  if (space == nullptr) return false;
  AcDbBlockTableRecordIterator* it = nullptr;
  if (space->newIterator(it, true, true) == Acad::eOk) {
    for (; !it->done(); it->step(true, true)) {
      AcDbEntity* entity = nullptr;
      if (it->getEntity(entity, AcDb::kForRead) != Acad::eOk) continue;
      visit(entity);
      entity->close();
    }
    delete it;
  }
  space->close();
  return true;
}

}  // namespace

VORA_API int vora_getEntities(const std::vector<std::wstring>* classNames, const std::vector<std::wstring>* layerNames,
                              const std::vector<std::wstring>* appNames, AcDbObjectIdArray* outIds) {
  int count = 0;
  forEachModelSpaceEntity([&](AcDbEntity* entity) {
    if (isOn(classNames) && !passesClassFilter(entity, *classNames)) return;
    if (isOn(layerNames) && !passesLayerFilter(entity, *layerNames)) return;
    if (isOn(appNames) && !passesAppFilter(entity, *appNames)) return;
    if (outIds != nullptr) outIds->append(entity->objectId());
    ++count;
  });
  return count;
}

VORA_API int vora_getEntitiesByClass(const AcArray<AcRxClass*>* classes, AcDbObjectIdArray* outIds) {
  int count = 0;
  forEachModelSpaceEntity([&](AcDbEntity* entity) {
    if (classes != nullptr && classes->length() > 0) {
      const AcRxClass* cls = entity->isA();
      bool match = false;
      for (const AcRxClass* wanted : *classes) match = match || (wanted != nullptr && wanted == cls);
      if (!match) return;
    }
    if (outIds != nullptr) outIds->append(entity->objectId());
    ++count;
  });
  return count;
}

namespace {

// Calls visit(id, material) for every material of the material dictionary,
// each opened for read and closed after the visit; visit returns false to
// stop.
template <class Visit>
void forEachMaterial(Visit&& visit) {
  AcDbDatabase* db = vora::db::workingDatabase();
  if (db == nullptr) return;
  AcDbDictionary* dict = nullptr;
  if (db->getMaterialDictionary(dict, AcDb::kForRead) != Acad::eOk) return;
  AcDbDictionaryIterator* it = dict->newIterator();
  bool more = true;
  for (; it != nullptr && more && !it->done(); it->next()) {
    AcDbMaterial* material = nullptr;
    if (it->getObject(material, AcDb::kForRead) != Acad::eOk) continue;
    more = visit(it->objectId(), material);
    material->close();
  }
  delete it;
  dict->close();
}

}  // namespace

VORA_API AcDbObjectId vora_getMaterial(const ACHAR* name) {
  AcDbObjectId found;
  if (name == nullptr || name[0] == L'\0') return found;
  forEachMaterial([&](AcDbObjectId id, const AcDbMaterial* material) {
    if (!equalNoCase(material->name(), name)) return true;
    found = id;
    return false;
  });
  return found;
}

VORA_API int vora_getMaterials(std::vector<std::wstring>* outNames) {
  int count = 0;
  forEachMaterial([&](AcDbObjectId, const AcDbMaterial* material) {
    if (outNames != nullptr) outNames->emplace_back(material->name());
    ++count;
    return true;
  });
  return count;
}

VORA_API AcDbObjectId vora_redraw3DPolylinep(const AcGePoint3dArray* points, AcDbEntity* polyline, bool closed) {
  if (points == nullptr || polyline == nullptr || polyline->isA() != AcDb3dPolyline::desc()) {
    return AcDbObjectId::kNull;
  }
  auto* pline = static_cast<AcDb3dPolyline*>(polyline);
  bool upgraded = false;
  if (!pline->isWriteEnabled()) {
    if (pline->upgradeOpen() != Acad::eOk) return AcDbObjectId::kNull;
    upgraded = true;
  }

  const int n = points->length();
  int k = 0;
  AcDbObjectIterator* it = pline->vertexIterator();
  for (; it != nullptr && !it->done(); it->step(), ++k) {
    AcDb3dPolylineVertex* vertex = nullptr;
    if (acdbOpenObject(vertex, it->objectId(), AcDb::kForWrite) != Acad::eOk) continue;
    if (k < n) {
      vertex->setPosition((*points)[k]);
    } else {
      vertex->erase();
    }
    vertex->close();
  }
  delete it;
  for (; k < n; ++k) {
    auto* vertex = new AcDb3dPolylineVertex((*points)[k]);
    if (pline->appendVertex(vertex) == Acad::eOk) {
      vertex->close();
    } else {
      delete vertex;
    }
  }

  pline->setClosed(closed ? Adesk::kTrue : Adesk::kFalse);
  const AcDbObjectId id = pline->objectId();
  if (upgraded) pline->downgradeOpen();
  return id;
}

VORA_API AcDbObjectId vora_redraw3DPolyline(const AcGePoint3dArray* points, AcDbObjectId id, bool closed) {
  if (id.isNull()) return AcDbObjectId::kNull;
  AcDbObject* object = nullptr;
  bool upgraded = false;
  const Acad::ErrorStatus es = acdbOpenObject(object, id, AcDb::kForWrite);
  if (es == Acad::eWasOpenForRead) {
    // The caller holds the object open for read. A second read opening gives
    // its pointer; once that opening is closed again, the caller's opening is
    // the one upgraded here and downgraded at the end.
    if (acdbOpenObject(object, id, AcDb::kForRead) != Acad::eOk) return AcDbObjectId::kNull;
    object->close();
    if (object->upgradeOpen() != Acad::eOk) return AcDbObjectId::kNull;
    upgraded = true;
  } else if (es != Acad::eOk) {
    return AcDbObjectId::kNull;
  }

  AcDbObjectId result;
  if (object->isA() != AcDb3dPolyline::desc()) {
    // Kept on purpose: whatever else is passed in by id is deleted from the
    // drawing, as callers of this function have always seen it do.
    if (!upgraded) object->erase();
  } else {
    result = vora_redraw3DPolylinep(points, AcDbEntity::cast(object), closed);
  }
  if (upgraded) {
    object->downgradeOpen();
  } else {
    object->close();
  }
  return result;
}

namespace {

struct Outline {
  AcGePoint3dArray points;
  AcGeDoubleArray bulges;
  bool closed = false;

  void add(const AcGePoint3d& p, double bulge) {
    points.append(p);
    bulges.append(bulge);
  }
};

void lineOutline(const AcDbLine* line, Outline& out) {
  out.add(line->startPoint(), 0.0);
  out.add(line->endPoint(), 0.0);
}

void arcOutline(const AcDbArc* arc, Outline& out) {
  const AcGePoint3d c = arc->center();
  const double centreRadius[3] = {c.x, c.y, arc->radius()};
  const double angles[2] = {arc->startAngle(), arc->endAngle()};
  double bulge = 0.0;
  double p1[3] = {0.0, 0.0, 0.0};
  double p2[3] = {0.0, 0.0, 0.0};
  vora_arc2bulge(centreRadius, angles, &bulge, p1, p2);
  out.add(AcGePoint3d(p1[0], p1[1], c.z), bulge);
  out.add(AcGePoint3d(p2[0], p2[1], c.z), 0.0);
}

void circleOutline(const AcDbCircle* circle, Outline& out) {
  const AcGePoint3d c = circle->center();
  const double r = circle->normal().z < 0.0 ? -circle->radius() : circle->radius();
  const double centreRadius[3] = {c.x, c.y, r};
  const double angles[2] = {0.0, vora::kPi / 2.0};
  double bulge = 0.0;
  double p1[3] = {0.0, 0.0, 0.0};
  double p2[3] = {0.0, 0.0, 0.0};
  vora_arc2bulge(centreRadius, angles, &bulge, p1, p2);
  const AcGePoint3d a(p1[0], p1[1], c.z);
  const AcGePoint3d b(p2[0], p2[1], c.z);
  out.add(a, bulge);
  out.add(b, bulge);
  out.add(AcGePoint3d(2.0 * c.x - a.x, 2.0 * c.y - a.y, c.z), bulge);
  out.add(AcGePoint3d(2.0 * c.x - b.x, 2.0 * c.y - b.y, c.z), bulge);
  out.closed = true;
}

void lwpolylineOutline(const AcDbPolyline* pline, Outline& out) {
  const double z = pline->elevation();
  for (unsigned int i = 0; i < pline->numVerts(); ++i) {
    AcGePoint2d p;
    double bulge = 0.0;
    pline->getPointAt(i, p);
    pline->getBulgeAt(i, bulge);
    out.add(AcGePoint3d(p.x, p.y, z), bulge);
  }
  out.closed = pline->isClosed();
}

template <class Vertex, class Polyline, class Read>
void vertexOutline(const Polyline* pline, Outline& out, Read&& read) {
  AcDbObjectIterator* it = pline->vertexIterator();
  for (; it != nullptr && !it->done(); it->step()) {
    Vertex* vertex = nullptr;
    if (acdbOpenObject(vertex, it->objectId(), AcDb::kForRead) != Acad::eOk) continue;
    read(vertex);
    vertex->close();
  }
  delete it;
  out.closed = pline->isClosed();
}

void faceOutline(const AcDbFace* face, Outline& out) {
  for (Adesk::UInt16 i = 0; i < 4; ++i) {
    AcGePoint3d p;
    face->getVertexAt(i, p);
    if (i == 3 && p.x == out.points[2].x && p.y == out.points[2].y && p.z == out.points[2].z) break;
    out.add(p, 0.0);
  }
  out.closed = true;
}

bool samePointWithin(const AcGePoint3d& a, const AcGePoint3d& b, double tol) {
  return std::fabs(a.x - b.x) < tol && std::fabs(a.y - b.y) < tol && std::fabs(a.z - b.z) < tol;
}

}  // namespace

VORA_API int vora_ent2ptsp(const AcDbEntity* entity, AcGePoint3dArray* points, AcGeDoubleArray* bulges,
                           bool* closed) {
  if (entity == nullptr) return 0;
  Outline out;
  const AcRxClass* cls = entity->isA();
  if (cls == AcDbLine::desc()) {
    lineOutline(static_cast<const AcDbLine*>(entity), out);
  } else if (cls == AcDbArc::desc()) {
    arcOutline(static_cast<const AcDbArc*>(entity), out);
  } else if (cls == AcDbCircle::desc()) {
    circleOutline(static_cast<const AcDbCircle*>(entity), out);
  } else if (cls == AcDbPolyline::desc()) {
    lwpolylineOutline(static_cast<const AcDbPolyline*>(entity), out);
  } else if (cls == AcDb2dPolyline::desc()) {
    const auto* pline = static_cast<const AcDb2dPolyline*>(entity);
    if (pline->polyType() == AcDb::k2dSimplePoly) {
      vertexOutline<AcDb2dVertex>(pline, out, [&](const AcDb2dVertex* v) { out.add(v->position(), v->bulge()); });
    }
  } else if (cls == AcDb3dPolyline::desc()) {
    const auto* pline = static_cast<const AcDb3dPolyline*>(entity);
    if (pline->polyType() == AcDb::k3dSimplePoly) {
      vertexOutline<AcDb3dPolylineVertex>(pline, out,
                                          [&](const AcDb3dPolylineVertex* v) { out.add(v->position(), 0.0); });
    }
  } else if (cls == AcDbFace::desc()) {
    faceOutline(static_cast<const AcDbFace*>(entity), out);
  }

  // What was read is always handed back, even nothing: the result's meaning
  // is not something callers test, so an entity without an outline must not
  // leave them looking at the points of an earlier call.
  const int n = out.points.length();
  if (n >= 2 && samePointWithin(out.points[n - 1], out.points[0], vora::tolPoint())) {
    out.points.setLogicalLength(n - 1);
    out.bulges.setLogicalLength(n - 1);
    out.closed = true;
  }
  if (points != nullptr) *points = out.points;
  if (bulges != nullptr) *bulges = out.bulges;
  if (closed != nullptr) *closed = out.closed;
  return out.points.length();
}

VORA_API int vora_ent2pts(AcDbObjectId id, AcGePoint3dArray* points, AcGeDoubleArray* bulges, bool* closed) {
  AcDbEntity* entity = nullptr;
  if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return 0;
  const int n = vora_ent2ptsp(entity, points, bulges, closed);
  entity->close();
  return n;
}

VORA_API int vora_sendFrontBack(const AcDbObjectIdArray* ids, bool toFront) {
  if (ids == nullptr) return 0;
  AcDbBlockTableRecord* space = vora::db::openModelSpace(AcDb::kForRead);
  if (space == nullptr) return 0;
  AcDbSortentsTable* order = nullptr;
  Acad::ErrorStatus es = space->getSortentsTable(order, AcDb::kForWrite, false);
  if (es == Acad::eOk) {
    es = toFront ? order->moveToTop(*ids) : order->moveToBottom(*ids);
    order->close();
  }
  space->close();
  // The moved entities are redrawn in their new order at once, not at the
  // next regeneration.
  if (es == Acad::eOk) acdbQueueForRegen(ids->asArrayPtr(), ids->length(), nullptr);
  acedUpdateDisplay();
  return es == Acad::eOk ? 1 : 0;
}
