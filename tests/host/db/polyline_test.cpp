#include <gtest/gtest.h>

#include <vector>

#include "host/db/internal.h"
#include "host/db/test_db.h"

namespace {

std::vector<AcGePoint3d> positions(AcDb3dPolyline* pl) {
  std::vector<AcGePoint3d> out;
  AcDbObjectIterator* it = pl->vertexIterator();
  for (; !it->done(); it->step()) {
    AcDb3dPolylineVertex* v = nullptr;
    EXPECT_EQ(acdbOpenObject(v, it->objectId(), AcDb::kForRead), Acad::eOk);
    out.push_back(v->position());
    v->close();
  }
  delete it;
  return out;
}

TEST(Polyline3d, VerticesAreOwnedObjectsEndedBySeqend) {
  WorkingDatabase db;
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(db->getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* rec = new AcDbLayerTableRecord();
  rec->setName(L"Survey");
  ASSERT_EQ(layers->add(rec), Acad::eOk);
  rec->close();
  layers->close();

  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(0, 0, 1));
  pts.append(AcGePoint3d(10, 0, 2));
  auto* pl = new AcDb3dPolyline(AcDb::k3dSimplePoly, pts, false);
  ASSERT_EQ(pl->setLayer(L"Survey"), Acad::eOk);
  const AcDbObjectId id = addToModelSpace(db.get(), pl);
  ASSERT_FALSE(id.isNull());

  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(pl->polyType(), AcDb::k3dSimplePoly);
  const std::vector<AcDbObjectId> verts = vora_host::vertices(pl);
  ASSERT_EQ(verts.size(), 2u);
  const AcDbObjectId seqend = vora_host::seqEnd(pl);
  ASSERT_FALSE(seqend.isNull());
  for (const AcDbObjectId& v : verts) {
    EXPECT_EQ(vora_host::peek(v)->ownerId(), id);
    EXPECT_EQ(AcDbEntity::cast(vora_host::peek(v))->layerId(), pl->layerId());
  }
  EXPECT_EQ(vora_host::peek(seqend)->ownerId(), id);
  EXPECT_EQ(AcDbSequenceEnd::cast(vora_host::peek(seqend))->layerId(), pl->layerId());

  // Appending needs the polyline open for write; the new vertex stays open.
  auto* extra = new AcDb3dPolylineVertex(AcGePoint3d(10, 10, 3));
  EXPECT_EQ(pl->appendVertex(extra), Acad::eNotOpenForWrite);
  ASSERT_EQ(pl->upgradeOpen(), Acad::eOk);
  AcDbObjectId extraId;
  ASSERT_EQ(pl->appendVertex(extraId, extra), Acad::eOk);
  EXPECT_TRUE(extra->isWriteEnabled());
  EXPECT_EQ(extra->layerId(), pl->layerId());
  extra->close();
  pl->setClosed(true);
  EXPECT_TRUE(pl->isClosed());

  // Erased vertices are skipped by the iterator.
  AcDb3dPolylineVertex* first = nullptr;
  ASSERT_EQ(acdbOpenObject(first, verts[0], AcDb::kForWrite), Acad::eOk);
  first->erase();
  first->close();
  const std::vector<AcGePoint3d> left = positions(pl);
  ASSERT_EQ(left.size(), 2u);
  EXPECT_EQ(left[0].z, 2.0);
  EXPECT_EQ(left[1].z, 3.0);
  pl->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(Polyline3d, PendingVerticesBeforeTheDatabase) {
  WorkingDatabase db;
  auto* pl = new AcDb3dPolyline();
  ASSERT_EQ(pl->appendVertex(new AcDb3dPolylineVertex(AcGePoint3d(1, 2, 3))), Acad::eOk);
  AcDbObjectIterator* it = pl->vertexIterator();
  ASSERT_FALSE(it->done());
  EXPECT_TRUE(it->objectId().isNull());
  EXPECT_EQ(AcDb3dPolylineVertex::cast(it->entity())->position().y, 2.0);
  delete it;
  const AcDbObjectId id = addToModelSpace(db.get(), pl);
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(positions(pl).size(), 1u);
  pl->close();

  // A polyline that never reaches a database frees its vertices with itself.
  auto* loose = new AcDb3dPolyline();
  loose->appendVertex(new AcDb3dPolylineVertex(AcGePoint3d(0, 0, 0)));
  delete loose;
}

TEST(Polyline2d, BulgesAndWidthsPerVertex) {
  WorkingDatabase db;
  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(0, 0, 99));
  pts.append(AcGePoint3d(4, 0, 99));
  AcGeDoubleArray bulges;
  bulges.append(1.0);
  bulges.append(0.0);
  auto* pl = new AcDb2dPolyline(AcDb::k2dSimplePoly, pts, 5.0, true, 0.5, 0.25, &bulges);
  const AcDbObjectId id = addToModelSpace(db.get(), pl);
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(pl->isClosed());
  EXPECT_EQ(pl->elevation(), 5.0);
  AcDbObjectIterator* it = pl->vertexIterator();
  AcDb2dVertex* v = nullptr;
  ASSERT_EQ(acdbOpenObject(v, it->objectId(), AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(v->bulge(), 1.0);
  EXPECT_EQ(v->startWidth(), 0.5);
  EXPECT_EQ(v->endWidth(), 0.25);
  EXPECT_EQ(v->position().z, 5.0);
  EXPECT_EQ(v->vertexType(), AcDb::k2dVertex);
  v->close();
  delete it;
  pl->close();
}

TEST(LightweightPolyline, VerticesInThePlaneOfTheNormal) {
  AcDbPolyline pl;
  ASSERT_EQ(pl.addVertexAt(0, AcGePoint2d(1, 2), 0.5), Acad::eOk);
  ASSERT_EQ(pl.addVertexAt(0, AcGePoint2d(3, 4)), Acad::eOk);
  EXPECT_EQ(pl.addVertexAt(5, AcGePoint2d(0, 0)), Acad::eInvalidIndex);
  pl.setElevation(7.0);
  AcGePoint3d p;
  ASSERT_EQ(pl.getPointAt(1, p), Acad::eOk);
  EXPECT_EQ(p.x, 1.0);
  EXPECT_EQ(p.y, 2.0);
  EXPECT_EQ(p.z, 7.0);
  double bulge = 0.0;
  ASSERT_EQ(pl.getBulgeAt(1, bulge), Acad::eOk);
  EXPECT_EQ(bulge, 0.5);
  EXPECT_EQ(pl.getBulgeAt(2, bulge), Acad::eInvalidIndex);
  EXPECT_TRUE(pl.hasBulges());
  EXPECT_FALSE(pl.hasWidth());

  // Normal -Z: the plane's x axis is world -X (arbitrary axis rule).
  ASSERT_EQ(pl.setNormal(AcGeVector3d(0, 0, -1)), Acad::eOk);
  ASSERT_EQ(pl.getPointAt(1, p), Acad::eOk);
  EXPECT_EQ(p.x, -1.0);
  EXPECT_EQ(p.y, 2.0);
  EXPECT_EQ(p.z, -7.0);
}

TEST(Face, ThreePointFormRepeatsTheLastCorner) {
  AcDbFace face(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(0, 1, 0));
  AcGePoint3d p;
  ASSERT_EQ(face.getVertexAt(3, p), Acad::eOk);
  EXPECT_EQ(p.y, 1.0);
  EXPECT_EQ(face.getVertexAt(4, p), Acad::eInvalidIndex);
  Adesk::Boolean visible = false;
  ASSERT_EQ(face.isEdgeVisibleAt(3, visible), Acad::eOk);
  EXPECT_TRUE(visible);
  ASSERT_EQ(face.makeEdgeInvisibleAt(3), Acad::eOk);
  face.isEdgeVisibleAt(3, visible);
  EXPECT_FALSE(visible);
}

}  // namespace
