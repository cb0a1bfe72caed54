#include <gtest/gtest.h>

#include "host/db/test_db.h"
#include "vora/vora.h"

namespace {

AcCmColor layerColour(AcDbObjectId id) {
  AcDbLayerTableRecord* rec = nullptr;
  EXPECT_EQ(acdbOpenObject(rec, id, AcDb::kForRead), Acad::eOk);
  const AcCmColor c = rec->color();
  rec->close();
  return c;
}

AcDbObjectId layerId(AcDbDatabase* db, const ACHAR* name) {
  AcDbLayerTable* table = nullptr;
  AcDbObjectId id;
  if (db->getLayerTable(table, AcDb::kForRead) != Acad::eOk) return id;
  table->getAt(name, id);
  table->close();
  return id;
}

}  // namespace

TEST(CreateLayer, NewLayerThenExistingNameIsNullAndUntouched) {
  WorkingDatabase db;
  const AcDbObjectId id = vora_createLayer(L"Roads", 3);
  ASSERT_FALSE(id.isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
  AcDbLayerTableRecord* rec = nullptr;
  ASSERT_EQ(acdbOpenObject(rec, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(rec->color().colorIndex(), 3);
  EXPECT_FALSE(rec->isFrozen());
  EXPECT_FALSE(rec->isOff());
  EXPECT_FALSE(rec->isLocked());
  EXPECT_FALSE(rec->VPDFLT());
  EXPECT_EQ(rec->linetypeObjectId(), db->continuousLinetype());
  rec->close();

  // The same name in another case exists already: null, colour unchanged.
  EXPECT_TRUE(vora_createLayer(L"ROADS", 5).isNull());
  EXPECT_EQ(layerColour(id).colorIndex(), 3);
  // 256 and above become white.
  EXPECT_EQ(layerColour(vora_createLayer(L"ByLayerAsked", 256)).colorIndex(), 7);
  EXPECT_EQ(layerColour(vora_createLayer(L"Huge", 1000)).colorIndex(), 7);
  EXPECT_TRUE(vora_createLayer(L"", 1).isNull());
  EXPECT_TRUE(vora_createLayer(nullptr, 1).isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(CreateLayer, WithoutContinuousKeepsTheDefaultLinetype) {
  WorkingDatabase db;
  const AcDbObjectId continuous = db->continuousLinetype();
  AcDbObject* ltype = nullptr;
  ASSERT_EQ(acdbOpenObject(ltype, continuous, AcDb::kForWrite), Acad::eOk);
  ASSERT_EQ(ltype->erase(), Acad::eOk);
  ltype->close();

  const AcDbObjectId id = vora_createLayer(L"NoDash", 2);
  ASSERT_FALSE(id.isNull());
  AcDbLayerTableRecord* rec = nullptr;
  ASSERT_EQ(acdbOpenObject(rec, id, AcDb::kForRead), Acad::eOk);
  EXPECT_NE(rec->linetypeObjectId(), continuous);
  EXPECT_EQ(rec->color().colorIndex(), 2);
  rec->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(CreateEntities, LinesTakeLayerAndColourRules) {
  WorkingDatabase db;
  const AcGePoint3d a(1, 2, 3), b(4, 5, 6);
  vora_createLayer(L"Kerbs", 4);

  const AcDbObjectId byLayer = vora_createLine(&a, &b, L"Kerbs", 256);
  const AcDbObjectId red = vora_createLine(&a, &b, L"Kerbs", 1);
  const AcDbObjectId onNewLayer = vora_createLine(&a, &b, L"Fresh", 0);
  ASSERT_FALSE(byLayer.isNull());
  ASSERT_FALSE(red.isNull());
  ASSERT_FALSE(onNewLayer.isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, byLayer, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->colorIndex(), 256);
  EXPECT_EQ(line->layerId(), layerId(db.get(), L"Kerbs"));
  EXPECT_EQ(line->startPoint().x, 1.0);
  EXPECT_EQ(line->endPoint().z, 6.0);
  EXPECT_EQ(line->blockId(), db->modelSpaceId());
  line->close();
  ASSERT_EQ(acdbOpenObject(line, red, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->colorIndex(), 1);
  line->close();
  ASSERT_EQ(acdbOpenObject(line, onNewLayer, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->colorIndex(), 0);
  line->close();

  // The existing layer was not touched; the new one came by layer colour 7.
  EXPECT_EQ(layerColour(layerId(db.get(), L"Kerbs")).colorIndex(), 4);
  EXPECT_EQ(layerColour(layerId(db.get(), L"Fresh")).colorIndex(), 7);
  EXPECT_TRUE(vora_createLine(nullptr, &b, L"Kerbs", 1).isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(CreateEntities, FacesAndPolylines) {
  WorkingDatabase db;
  const AcGePoint3d p[3] = {{0, 0, 0}, {10, 0, 1}, {0, 10, 2}};
  const AcDbObjectId face = vora_create3DFace(&p[0], &p[1], &p[2], L"Tin", 30);
  ASSERT_FALSE(face.isNull());
  AcDbFace* f = nullptr;
  ASSERT_EQ(acdbOpenObject(f, face, AcDb::kForRead), Acad::eOk);
  AcGePoint3d corner;
  f->getVertexAt(3, corner);
  EXPECT_EQ(corner.z, 2.0);
  for (Adesk::UInt16 i = 0; i < 4; ++i) {
    Adesk::Boolean visible = Adesk::kFalse;
    f->isEdgeVisibleAt(i, visible);
    EXPECT_TRUE(visible);
  }
  EXPECT_EQ(f->colorIndex(), 30);
  f->close();

  AcGePoint3dArray arr;
  for (const auto& q : p) arr.append(q);
  const std::vector<AcGePoint3d> vec(p, p + 3);
  const AcDbObjectId closed = vora_create3DPolyline(&arr, L"Tin", 256, true);
  const AcDbObjectId open = vora_create3DPolylinev(&vec, L"Tin", 5, false);
  EXPECT_TRUE(vora_create3DPolyline(nullptr, L"Tin", 5, false).isNull());
  EXPECT_TRUE(vora_create3DPolylinev(nullptr, L"Tin", 5, false).isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  for (const AcDbObjectId& id : {closed, open}) {
    AcGePoint3dArray pts;
    AcGeDoubleArray bulges;
    bool isClosed = false;
    ASSERT_EQ(vora_ent2pts(id, &pts, &bulges, &isClosed), 3);
    EXPECT_EQ(isClosed, id == closed);
    EXPECT_EQ(pts[1].z, 1.0);
    EXPECT_EQ(pts[2].y, 10.0);
  }
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(CreateEntities, CallersEntityKeptWhenItCannotBeAdded) {
  WorkingDatabase db;
  auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0));
  const AcDbObjectId id = vora_createEntity(line, L"Mine");
  ASSERT_FALSE(id.isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
  AcDbEntity* ent = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(ent, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(ent->layerId(), layerId(db.get(), L"Mine"));
  // Adding it a second time is refused; it stays the database's, untouched.
  EXPECT_TRUE(vora_createEntity(ent, L"Other").isNull());
  ent->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
  EXPECT_TRUE(vora_createEntity(nullptr, L"Mine").isNull());

  // Without a working database nothing is made and the entity is the caller's.
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  auto* loose = new AcDbLine();
  EXPECT_TRUE(vora_createEntity(loose, L"Mine").isNull());
  delete loose;
  const AcGePoint3d a(0, 0, 0);
  EXPECT_TRUE(vora_createLine(&a, &a, L"Mine", 1).isNull());
  EXPECT_TRUE(vora_createLayer(L"Any", 1).isNull());
  acdbHostApplicationServices()->setWorkingDatabase(db.get());
}
