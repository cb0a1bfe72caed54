// Creating entities in model space, and layers on demand.
#include "vora/database.h"

#include "database/dbcommon.h"

namespace {

constexpr int kByLayerColour = 256;
// A new layer without a colour of its own gets white/black, the host's
// foreground colour.
constexpr Adesk::UInt16 kNewLayerDefaultColour = 7;

// A negative index names no colour of the host; it is taken like 256 and
// above (left by layer on an entity, white on a new layer) rather than
// wrapped round into an unsigned index the host would refuse.
bool isEntityColour(int colour) { return colour >= 0 && colour < kByLayerColour; }

// Puts a new entity into model space on layer with colour (when given).
// makeEntity runs only once model space is open, so nothing is built for a
// drawing that cannot take it. With deleteOnFailure false the entity stays
// the caller's when it cannot be added.
template <class Make>
AcDbObjectId addToModelSpace(Make&& makeEntity, const ACHAR* layer, const int* colour, bool deleteOnFailure) {
  AcDbObjectId id;
  AcDbBlockTableRecord* space = vora::db::openModelSpace(AcDb::kForWrite);
  if (space == nullptr) return id;
  AcDbEntity* entity = makeEntity();
  if (entity != nullptr) {
    if (layer != nullptr && layer[0] != L'\0') {
      vora_createLayer(layer, kByLayerColour);
      entity->setLayer(layer, Adesk::kTrue, false);
    }
    if (colour != nullptr && isEntityColour(*colour)) entity->setColorIndex(static_cast<Adesk::UInt16>(*colour));
    if (space->appendAcDbEntity(id, entity) == Acad::eOk) {
      entity->close();
    } else {
      id.setNull();
      if (deleteOnFailure) delete entity;
    }
  }
  space->close();
  return id;
}

AcDbObjectId add3DPolyline(AcGePoint3dArray& pts, const ACHAR* layer, int colour, bool closed) {
  return addToModelSpace(
      [&]() -> AcDbEntity* {
        auto* pline = new AcDb3dPolyline(AcDb::k3dSimplePoly, pts, Adesk::kFalse);
        if (closed) pline->setClosed(Adesk::kTrue);
        return pline;
      },
      layer, &colour, true);
}

}  // namespace

VORA_API AcDbObjectId vora_create3DFace(const AcGePoint3d* p1, const AcGePoint3d* p2, const AcGePoint3d* p3,
                                        const ACHAR* layer, int colour) {
  if (p1 == nullptr || p2 == nullptr || p3 == nullptr) return AcDbObjectId::kNull;
  return addToModelSpace([&]() -> AcDbEntity* { return new AcDbFace(*p1, *p2, *p3); }, layer, &colour, true);
}

VORA_API AcDbObjectId vora_create3DPolyline(const AcGePoint3dArray* pts, const ACHAR* layer, int colour, bool closed) {
  if (pts == nullptr) return AcDbObjectId::kNull;
  AcGePoint3dArray copy(*pts);
  return add3DPolyline(copy, layer, colour, closed);
}

VORA_API AcDbObjectId vora_create3DPolylinev(const std::vector<AcGePoint3d>* pts, const ACHAR* layer, int colour,
                                             bool closed) {
  if (pts == nullptr) return AcDbObjectId::kNull;
  AcGePoint3dArray copy;
  for (const AcGePoint3d& p : *pts) copy.append(p);
  return add3DPolyline(copy, layer, colour, closed);
}

VORA_API AcDbObjectId vora_createLine(const AcGePoint3d* start, const AcGePoint3d* end, const ACHAR* layer,
                                      int colour) {
  if (start == nullptr || end == nullptr) return AcDbObjectId::kNull;
  return addToModelSpace([&]() -> AcDbEntity* { return new AcDbLine(*start, *end); }, layer, &colour, true);
}

VORA_API AcDbObjectId vora_createEntity(AcDbEntity* entity, const ACHAR* layer) {
  if (entity == nullptr) return AcDbObjectId::kNull;
  return addToModelSpace([&]() { return entity; }, layer, nullptr, false);
}

VORA_API AcDbObjectId vora_createLayer(const ACHAR* name, int colour) {
  AcDbObjectId id;
  AcDbDatabase* db = vora::db::workingDatabase();
  if (db == nullptr || name == nullptr || name[0] == L'\0') return id;
  AcDbLayerTable* layers = nullptr;
  if (db->getLayerTable(layers, AcDb::kForWrite) != Acad::eOk) return id;
  if (layers->has(name)) {
    layers->close();
    return id;
  }
  auto* record = new AcDbLayerTableRecord();
  if (record->setName(name) != Acad::eOk) {
    delete record;
    layers->close();
    return id;
  }
  record->setIsFrozen(false);
  record->setIsOff(false);
  record->setVPDFLT(false);
  record->setIsLocked(false);
  AcCmColor colourValue;
  colourValue.setColorIndex(isEntityColour(colour) ? static_cast<Adesk::UInt16>(colour) : kNewLayerDefaultColour);
  record->setColor(colourValue);

  AcDbLinetypeTable* linetypes = nullptr;
  if (db->getLinetypeTable(linetypes, AcDb::kForRead) == Acad::eOk) {
    AcDbObjectId continuous;
    if (linetypes->getAt(L"CONTINUOUS", continuous) == Acad::eOk) record->setLinetypeObjectId(continuous);
    linetypes->close();
  }

  if (layers->add(record) == Acad::eOk) {
    layers->getAt(name, id);
    record->close();
  } else {
    delete record;
  }
  layers->close();
  return id;
}
