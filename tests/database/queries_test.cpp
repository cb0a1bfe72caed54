#include <gtest/gtest.h>

#include <cmath>

#include "host/db/test_db.h"
#include "support/tolerance_guard.h"
#include "vora/vora.h"

namespace {

const AcGePoint3d kO(0, 0, 0), kX(1, 0, 0), kY(0, 1, 0);

void tag(AcDbObjectId id, const ACHAR* app) {
  VoraXdata x;
  x.Open(id);
  ASSERT_EQ(x.SetValue(app, 1), 1);
}

bool contains(const AcDbObjectIdArray& ids, AcDbObjectId id) {
  for (const AcDbObjectId& i : ids) {
    if (i == id) return true;
  }
  return false;
}

}  // namespace

TEST(GetEntities, FiltersOnDxfNamesLayersAndApplications) {
  WorkingDatabase db;
  const AcDbObjectId plain = vora_createLine(&kO, &kX, L"A", 256);
  const AcDbObjectId both = vora_createLine(&kO, &kY, L"B", 256);
  const AcDbObjectId onlyOne = vora_create3DFace(&kO, &kX, &kY, L"a", 256);
  tag(both, L"APP_ONE");
  tag(both, L"App_Two");
  tag(onlyOne, L"APP_ONE");
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  AcDbObjectIdArray ids;
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, nullptr, &ids), 3);
  EXPECT_EQ(ids.length(), 3);
  EXPECT_EQ(ids[0], plain);  // drawing order

  // Classes by DXF name, case ignored; run-time class names match nothing.
  const std::vector<std::wstring> line{L"line"}, runtime{L"AcDbLine"}, face{L"3DFACE", L"CIRCLE"};
  EXPECT_EQ(vora_getEntities(&line, nullptr, nullptr, nullptr), 2);
  EXPECT_EQ(vora_getEntities(&runtime, nullptr, nullptr, nullptr), 0);
  ids.removeAll();
  EXPECT_EQ(vora_getEntities(&face, nullptr, nullptr, &ids), 1);
  EXPECT_EQ(ids[0], onlyOne);

  // Layers, case ignored ("A" and "a" are one layer anyway).
  const std::vector<std::wstring> layerA{L"a"}, layerB{L"B"}, none;
  EXPECT_EQ(vora_getEntities(nullptr, &layerA, nullptr, nullptr), 2);
  EXPECT_EQ(vora_getEntities(&line, &layerB, nullptr, nullptr), 1);
  EXPECT_EQ(vora_getEntities(&none, &none, &none, nullptr), 3);  // empty filters are off

  // Applications: all listed must be there, case ignored; entities without
  // any extended data always pass.
  const std::vector<std::wstring> one{L"app_one"}, two{L"APP_ONE", L"APP_TWO"}, missing{L"NOBODY"};
  ids.removeAll();
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, &one, &ids), 3);
  ids.removeAll();
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, &two, &ids), 2);
  EXPECT_TRUE(contains(ids, plain));
  EXPECT_TRUE(contains(ids, both));
  EXPECT_FALSE(contains(ids, onlyOne));
  ids.removeAll();
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, &missing, &ids), 1);
  EXPECT_EQ(ids[0], plain);

  // Erased entities are skipped.
  AcDbObject* obj = nullptr;
  ASSERT_EQ(acdbOpenObject(obj, plain, AcDb::kForWrite), Acad::eOk);
  obj->erase();
  obj->close();
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, &missing, nullptr), 0);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(GetEntities, ByClassIsExactClassIdentity) {
  WorkingDatabase db;
  const AcDbObjectId line = vora_createLine(&kO, &kX, L"0", 256);
  auto* circle = new AcDbCircle(kO, AcGeVector3d(0, 0, 1), 2.0);
  const AcDbObjectId circleId = vora_createEntity(circle, L"0");
  AcArray<AcRxClass*> classes;
  EXPECT_EQ(vora_getEntitiesByClass(&classes, nullptr), 2);
  EXPECT_EQ(vora_getEntitiesByClass(nullptr, nullptr), 2);
  classes.append(AcDbCurve::desc());  // a parent class matches nothing
  EXPECT_EQ(vora_getEntitiesByClass(&classes, nullptr), 0);
  classes.append(AcDbCircle::desc());
  AcDbObjectIdArray ids;
  EXPECT_EQ(vora_getEntitiesByClass(&classes, &ids), 1);
  EXPECT_EQ(ids[0], circleId);
  classes.append(AcDbLine::desc());
  EXPECT_EQ(vora_getEntitiesByClass(&classes, &ids), 2);
  EXPECT_EQ(ids.length(), 3);  // appended, not replaced
  EXPECT_EQ(ids[1], line);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(Materials, ListedAndFoundIgnoringCase) {
  WorkingDatabase db;
  std::vector<std::wstring> names{L"kept"};
  const int n = vora_getMaterials(&names);
  ASSERT_EQ(n, 3);  // a new drawing has ByBlock, ByLayer and Global
  ASSERT_EQ(names.size(), 4u);
  EXPECT_EQ(names[0], L"kept");
  EXPECT_EQ(vora_getMaterial(L"GLOBAL"), db->globalMaterial());
  EXPECT_EQ(vora_getMaterial(L"bylayer"), db->byLayerMaterial());
  EXPECT_TRUE(vora_getMaterial(L"Glob").isNull());
  EXPECT_TRUE(vora_getMaterial(L"").isNull());
  EXPECT_TRUE(vora_getMaterial(nullptr).isNull());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

namespace {

AcGePoint3dArray pointsOf(std::initializer_list<AcGePoint3d> list) {
  AcGePoint3dArray a;
  for (const auto& p : list) a.append(p);
  return a;
}

int vertexCount(AcDbObjectId id) {
  AcGePoint3dArray pts;
  return vora_ent2pts(id, &pts, nullptr, nullptr);
}

}  // namespace

TEST(Redraw3DPolyline, FewerVerticesEraseMoreAppend) {
  WorkingDatabase db;
  AcGePoint3dArray four = pointsOf({{0, 0, 0}, {1, 0, 1}, {2, 0, 2}, {3, 0, 3}});
  const AcDbObjectId id = vora_create3DPolyline(&four, L"P", 256, false);

  AcGePoint3dArray two = pointsOf({{5, 5, 5}, {6, 6, 6}});
  EXPECT_EQ(vora_redraw3DPolyline(&two, id, true), id);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
  AcGePoint3dArray pts;
  bool closed = false;
  ASSERT_EQ(vora_ent2pts(id, &pts, nullptr, &closed), 2);
  EXPECT_TRUE(closed);
  EXPECT_EQ(pts[0].x, 5.0);
  EXPECT_EQ(pts[1].z, 6.0);

  AcGePoint3dArray five = pointsOf({{0, 0, 9}, {1, 0, 8}, {2, 0, 7}, {3, 0, 6}, {4, 0, 5}});
  EXPECT_EQ(vora_redraw3DPolyline(&five, id, false), id);
  ASSERT_EQ(vora_ent2pts(id, &pts, nullptr, &closed), 5);
  EXPECT_FALSE(closed);
  EXPECT_EQ(pts[4].z, 5.0);
  EXPECT_EQ(pts[2].z, 7.0);

  // A polyline the caller has open for read is upgraded and handed back
  // open for read.
  AcDbEntity* ent = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(ent, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(vora_redraw3DPolyline(&two, id, false), id);
  EXPECT_TRUE(ent->isReadEnabled());
  EXPECT_FALSE(ent->isWriteEnabled());
  EXPECT_EQ(vora_redraw3DPolylinep(&four, ent, false), id);
  EXPECT_FALSE(ent->isWriteEnabled());
  ent->close();
  EXPECT_EQ(vertexCount(id), 4);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  EXPECT_TRUE(vora_redraw3DPolyline(&two, AcDbObjectId::kNull, false).isNull());
  EXPECT_TRUE(vora_redraw3DPolylinep(nullptr, nullptr, false).isNull());
}

TEST(Redraw3DPolyline, WrongObjectByIdIsErasedButNotWhenCallerHasItOpen) {
  WorkingDatabase db;
  const AcDbObjectId line = vora_createLine(&kO, &kX, L"0", 256);
  AcGePoint3dArray two = pointsOf({{5, 5, 5}, {6, 6, 6}});

  // Open for read by the caller: left alone, open mode restored.
  AcDbEntity* ent = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(ent, line, AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(vora_redraw3DPolyline(&two, line, false).isNull());
  EXPECT_FALSE(ent->isWriteEnabled());
  EXPECT_FALSE(ent->isErased());
  // The pointer form never erases.
  EXPECT_TRUE(vora_redraw3DPolylinep(&two, ent, false).isNull());
  ent->close();
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, nullptr, nullptr), 1);

  // Opened here: erased.
  EXPECT_TRUE(vora_redraw3DPolyline(&two, line, false).isNull());
  EXPECT_TRUE(line.isErased());
  EXPECT_EQ(vora_getEntities(nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(Outlines, LinesArcsCirclesAndTheClosingRule) {
  WorkingDatabase db;
  AcGePoint3dArray pts;
  AcGeDoubleArray bulges;
  bool closed = true;

  const AcDbObjectId line = vora_createLine(&kX, &kY, L"0", 256);
  ASSERT_EQ(vora_ent2pts(line, &pts, &bulges, &closed), 2);
  EXPECT_FALSE(closed);
  EXPECT_EQ(bulges[0], 0.0);
  EXPECT_EQ(bulges[1], 0.0);

  // A quarter arc at elevation 4: bulge tan(pi/8) on the first point.
  const double quarter = std::tan(3.141592653589793 / 8.0);
  const AcDbObjectId arc =
      vora_createEntity(new AcDbArc(AcGePoint3d(10, 20, 4), 2.0, 0.0, 3.141592653589793 / 2.0), L"0");
  ASSERT_EQ(vora_ent2pts(arc, &pts, &bulges, &closed), 2);
  EXPECT_NEAR(bulges[0], quarter, 1e-15);
  EXPECT_EQ(bulges[1], 0.0);
  EXPECT_EQ(pts[0].x, 12.0);
  EXPECT_EQ(pts[0].z, 4.0);
  EXPECT_NEAR(pts[1].y, 22.0, 1e-15);
  EXPECT_FALSE(closed);

  // Circles: four quarter points, counter-clockwise from angle 0; with the
  // normal pointing down, clockwise from pi/2 with negative bulges.
  const AcDbObjectId up = vora_createEntity(new AcDbCircle(AcGePoint3d(1, 1, 3), AcGeVector3d(0, 0, 1), 1.0), L"0");
  ASSERT_EQ(vora_ent2pts(up, &pts, &bulges, &closed), 4);
  EXPECT_TRUE(closed);
  EXPECT_EQ(pts[0].x, 2.0);
  EXPECT_NEAR(pts[1].y, 2.0, 1e-15);
  EXPECT_EQ(pts[2].x, 0.0);
  EXPECT_NEAR(pts[3].y, 0.0, 1e-15);
  for (double b : bulges) EXPECT_NEAR(b, quarter, 1e-15);
  EXPECT_EQ(pts[3].z, 3.0);
  const AcDbObjectId down =
      vora_createEntity(new AcDbCircle(AcGePoint3d(1, 1, 0), AcGeVector3d(0, 0, -1), 1.0), L"0");
  ASSERT_EQ(vora_ent2pts(down, &pts, &bulges, &closed), 4);
  EXPECT_NEAR(pts[0].y, 2.0, 1e-15);
  EXPECT_EQ(pts[1].x, 2.0);
  for (double b : bulges) EXPECT_NEAR(b, -quarter, 1e-15);

  // A light-weight polyline whose last vertex repeats the first (within,
  // but not at, tolPoint) comes back closed without it.
  vora::test::ToleranceGuard guard;
  vora_initeps(1e-7, 1e-3);
  auto* lw = new AcDbPolyline();
  lw->addVertexAt(0, AcGePoint2d(0, 0), 0.5);
  lw->addVertexAt(1, AcGePoint2d(5, 0), 0.0);
  lw->addVertexAt(2, AcGePoint2d(5, 5), -0.25);
  lw->addVertexAt(3, AcGePoint2d(0.0009, -0.0009), 0.75);
  lw->setElevation(7.0);
  const AcDbObjectId lwId = vora_createEntity(lw, L"0");
  closed = false;
  ASSERT_EQ(vora_ent2pts(lwId, &pts, &bulges, &closed), 3);
  EXPECT_TRUE(closed);
  EXPECT_EQ(bulges.length(), 3);
  EXPECT_EQ(bulges[2], -0.25);
  EXPECT_EQ(pts[2].z, 7.0);
  // At exactly tolPoint apart the point stays.
  vora_initeps(1e-7, 0.0009);
  ASSERT_EQ(vora_ent2pts(lwId, &pts, &bulges, &closed), 4);
  EXPECT_FALSE(closed);
  EXPECT_EQ(bulges[3], 0.75);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(Outlines, PolylinesFacesAndEntitiesWithoutOutline) {
  WorkingDatabase db;
  AcGePoint3dArray verts = pointsOf({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}});
  AcGeDoubleArray b2d;
  b2d.append(0.0);
  b2d.append(1.0);
  b2d.append(0.0);
  const AcDbObjectId simple2d =
      vora_createEntity(new AcDb2dPolyline(AcDb::k2dSimplePoly, verts, 0.0, Adesk::kTrue, 0, 0, &b2d), L"0");
  const AcDbObjectId fitted2d =
      vora_createEntity(new AcDb2dPolyline(AcDb::k2dFitCurvePoly, verts, 0.0, Adesk::kFalse), L"0");
  const AcDbObjectId spline3d = vora_createEntity(new AcDb3dPolyline(AcDb::k3dQuadSplinePoly, verts), L"0");
  const AcDbObjectId quad = vora_createEntity(
      new AcDbFace(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(1, 1, 0), AcGePoint3d(0, 1, 0)), L"0");
  const AcDbObjectId tri = vora_create3DFace(&kO, &kX, &kY, L"0", 256);

  AcGePoint3dArray pts;
  AcGeDoubleArray bulges;
  bool closed = false;
  ASSERT_EQ(vora_ent2pts(simple2d, &pts, &bulges, &closed), 3);
  EXPECT_TRUE(closed);
  EXPECT_EQ(bulges[1], 1.0);
  EXPECT_EQ(vora_ent2pts(quad, &pts, &bulges, &closed), 4);
  EXPECT_EQ(vora_ent2pts(tri, &pts, &bulges, &closed), 3);

  // An entity without an outline still hands back what it read, nothing:
  // arrays left over from an earlier call are emptied and the outline is
  // open. Only when there is no entity at all are the outputs untouched.
  ASSERT_EQ(pts.length(), 3);
  ASSERT_TRUE(closed);
  EXPECT_EQ(vora_ent2pts(fitted2d, &pts, &bulges, &closed), 0);
  EXPECT_EQ(pts.length(), 0);
  EXPECT_EQ(bulges.length(), 0);
  EXPECT_FALSE(closed);
  ASSERT_EQ(vora_ent2pts(tri, &pts, &bulges, &closed), 3);
  EXPECT_EQ(vora_ent2pts(spline3d, &pts, &bulges, &closed), 0);
  EXPECT_EQ(pts.length(), 0);
  EXPECT_FALSE(closed);
  ASSERT_EQ(vora_ent2pts(tri, &pts, &bulges, &closed), 3);
  EXPECT_EQ(vora_ent2pts(AcDbObjectId::kNull, &pts, &bulges, &closed), 0);
  EXPECT_EQ(vora_ent2ptsp(nullptr, &pts, &bulges, &closed), 0);
  EXPECT_EQ(pts.length(), 3);
  EXPECT_TRUE(closed);
  // A one-point polyline is read as is: nothing to close.
  AcGePoint3dArray single = pointsOf({{1, 1, 1}});
  EXPECT_EQ(vora_ent2pts(vora_create3DPolyline(&single, L"0", 256, false), &pts, nullptr, &closed), 1);
  EXPECT_FALSE(closed);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(DrawOrder, FrontAndBackThroughTheExistingTable) {
  WorkingDatabase db;
  const AcDbObjectId a = vora_createLine(&kO, &kX, L"0", 256);
  const AcDbObjectId b = vora_createLine(&kO, &kY, L"0", 256);
  const AcDbObjectId c = vora_createLine(&kX, &kY, L"0", 256);
  AcDbObjectIdArray ids;
  ids.append(a);
  // No table yet: nothing is made.
  EXPECT_EQ(vora_sendFrontBack(&ids, true), 0);
  AcDbBlockTableRecord* ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead), Acad::eOk);
  AcDbSortentsTable* order = nullptr;
  EXPECT_EQ(ms->getSortentsTable(order, AcDb::kForRead, false), Acad::eKeyNotFound);
  ASSERT_EQ(ms->upgradeOpen(), Acad::eOk);
  ASSERT_EQ(ms->getSortentsTable(order, AcDb::kForWrite, true), Acad::eOk);
  order->close();
  ms->close();

  auto drawOrder = [&] {
    AcDbBlockTableRecord* space = nullptr;
    EXPECT_EQ(acdbOpenObject(space, db->modelSpaceId(), AcDb::kForRead), Acad::eOk);
    AcDbSortentsTable* table = nullptr;
    AcDbObjectIdArray all;
    EXPECT_EQ(space->getSortentsTable(table, AcDb::kForRead, false), Acad::eOk);
    table->getFullDrawOrder(all);
    table->close();
    space->close();
    return all;
  };
  vorahost::resetDisplayRequests();
  EXPECT_EQ(vora_sendFrontBack(&ids, true), 1);
  EXPECT_EQ(vorahost::displayUpdates(), 1u);
  EXPECT_EQ(vorahost::queuedForRegen(), std::vector<AcDbObjectId>{a});
  AcDbObjectIdArray all = drawOrder();
  ASSERT_EQ(all.length(), 3);
  EXPECT_EQ(all[2], a);
  ids.removeAll();
  ids.append(b);
  ids.append(c);
  EXPECT_EQ(vora_sendFrontBack(&ids, false), 1);
  all = drawOrder();
  EXPECT_EQ(all[0], b);
  EXPECT_EQ(all[1], c);
  EXPECT_EQ(all[2], a);
  EXPECT_EQ(vora_sendFrontBack(nullptr, false), 0);
  EXPECT_EQ(vorahost::displayUpdates(), 2u);
  EXPECT_EQ(vorahost::queuedForRegen(), (std::vector<AcDbObjectId>{a, b, c}));
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}
