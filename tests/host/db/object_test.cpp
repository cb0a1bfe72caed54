#include <gtest/gtest.h>

#include "host/db/test_db.h"

namespace {

AcDbObjectId newLine(AcDbDatabase* db) {
  return addToModelSpace(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 2, 3)));
}

TEST(OpenClose, ReadersAndOneWriterFollowTheProgramsRules) {
  WorkingDatabase db;
  const AcDbObjectId id = newLine(db.get());
  ASSERT_FALSE(id.isNull());
  ASSERT_EQ(vorahost::openObjectCount(db.get()), 0u);

  AcDbLine* r1 = nullptr;
  AcDbLine* r2 = nullptr;
  ASSERT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(acdbOpenObject(r2, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(r1, r2);
  EXPECT_TRUE(r1->isReadEnabled());
  EXPECT_FALSE(r1->isWriteEnabled());

  AcDbLine* w = nullptr;
  EXPECT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eWasOpenForRead);
  EXPECT_EQ(w, nullptr);
  EXPECT_EQ(r1->upgradeOpen(), Acad::eHadMultipleReaders);
  EXPECT_FALSE(r1->isWriteEnabled());

  ASSERT_EQ(r2->close(), Acad::eOk);
  ASSERT_EQ(r1->upgradeOpen(), Acad::eOk);
  EXPECT_TRUE(r1->isWriteEnabled());
  EXPECT_EQ(r1->upgradeOpen(), Acad::eWasOpenForWrite);
  AcDbObject* any = nullptr;
  EXPECT_EQ(acdbOpenObject(any, id, AcDb::kForRead), Acad::eWasOpenForWrite);
  EXPECT_EQ(acdbOpenObject(any, id, AcDb::kForWrite), Acad::eWasOpenForWrite);

  const auto open = vorahost::openObjects(db.get());
  ASSERT_EQ(open.size(), 1u);
  EXPECT_EQ(open[0].id, id);
  EXPECT_TRUE(open[0].forWrite);
  EXPECT_STREQ(open[0].className, L"AcDbLine");

  ASSERT_EQ(r1->downgradeOpen(), Acad::eOk);
  EXPECT_EQ(r1->downgradeOpen(), Acad::eNotOpenForWrite);
  EXPECT_TRUE(r1->isReadEnabled());
  ASSERT_EQ(r1->close(), Acad::eOk);
  EXPECT_EQ(r1->close(), Acad::eInvalidOpenState);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(OpenClose, BadIdsAndWrongClassesAreRefused) {
  WorkingDatabase db;
  AcDbObject* obj = reinterpret_cast<AcDbObject*>(1);
  EXPECT_EQ(acdbOpenObject(obj, AcDbObjectId::kNull, AcDb::kForRead), Acad::eNullObjectId);
  EXPECT_EQ(obj, nullptr);

  const AcDbObjectId id = newLine(db.get());
  AcDbCircle* circle = nullptr;
  EXPECT_EQ(acdbOpenObject(circle, id, AcDb::kForRead), Acad::eNotThatKindOfClass);
  AcDbCurve* curve = nullptr;
  ASSERT_EQ(acdbOpenObject(curve, id, AcDb::kForRead), Acad::eOk);
  curve->close();

  AcDbEntity* ent = nullptr;
  EXPECT_EQ(acdbOpenAcDbEntity(ent, db->layerTableId(), AcDb::kForRead), Acad::eNotAnEntity);

  // An id made for a handle under which nothing exists has nothing to open.
  AcDbObjectId forward;
  ASSERT_EQ(db->getAcDbObjectId(forward, true, AcDbHandle(L"FFFF0")), Acad::eOk);
  EXPECT_EQ(acdbOpenObject(obj, forward, AcDb::kForRead), Acad::ePermanentlyErased);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(OpenClose, ReadersStopAtTheLimit) {
  WorkingDatabase db;
  const AcDbObjectId id = newLine(db.get());
  AcDbObject* obj = nullptr;
  for (int i = 0; i < 256; ++i) ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForRead), Acad::eOk) << i;
  AcDbObject* extra = nullptr;
  EXPECT_EQ(acdbOpenObject(extra, id, AcDb::kForRead), Acad::eAtMaxReaders);
  EXPECT_EQ(vorahost::openObjects(db.get())[0].readers, 256);
  for (int i = 0; i < 256; ++i) ASSERT_EQ(obj->close(), Acad::eOk);
  EXPECT_EQ(vorahost::openObjectCount(), 0u);
}

TEST(OpenClose, EraseNeedsWriteAndHidesTheObject) {
  WorkingDatabase db;
  const AcDbObjectId id = newLine(db.get());
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->erase(), Acad::eNotOpenForWrite);
  ASSERT_EQ(line->upgradeOpen(), Acad::eOk);
  EXPECT_EQ(line->erase(false), Acad::eWasNotErased);
  ASSERT_EQ(line->erase(), Acad::eOk);
  EXPECT_EQ(line->erase(), Acad::eWasErased);
  EXPECT_TRUE(line->isErased());
  line->close();
  EXPECT_TRUE(id.isErased());

  EXPECT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eWasErased);
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite, true), Acad::eOk);
  ASSERT_EQ(line->erase(false), Acad::eOk);
  line->close();
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  line->close();

  AcDbBlockTableRecord* ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead), Acad::eOk);
  AcDbBlockTableRecordIterator* it = nullptr;
  ms->newIterator(it);
  int n = 0;
  for (; !it->done(); it->step()) ++n;
  delete it;
  ms->close();
  EXPECT_EQ(n, 1);
}

TEST(OpenClose, NewObjectsAreWriteEnabledUntilAddedThenOpenForWrite) {
  WorkingDatabase db;
  auto* line = new AcDbLine();
  EXPECT_TRUE(line->isWriteEnabled());
  EXPECT_TRUE(line->objectId().isNull());
  EXPECT_EQ(line->close(), Acad::eNotInDatabase);

  AcDbBlockTableRecord* ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(ms->appendAcDbEntity(line), Acad::eNotOpenForWrite);
  ASSERT_EQ(ms->upgradeOpen(), Acad::eOk);
  AcDbObjectId id;
  ASSERT_EQ(ms->appendAcDbEntity(id, line), Acad::eOk);
  EXPECT_EQ(ms->appendAcDbEntity(line), Acad::eAlreadyInDb);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 2u);
  EXPECT_EQ(line->ownerId(), db->modelSpaceId());
  EXPECT_EQ(line->layerId(), db->layerZero());
  EXPECT_EQ(line->colorIndex(), 256);
  EXPECT_EQ(line->database(), db.get());
  line->close();
  ms->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  // A closed object refuses changes and the refusal is counted.
  vorahost::resetWriteViolations();
  AcDbPolyline* pl = nullptr;
  EXPECT_EQ(acdbOpenObject(pl, id, AcDb::kForRead), Acad::eNotThatKindOfClass);
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->setStartPoint(AcGePoint3d(5, 5, 5)), Acad::eNotOpenForWrite);
  line->addPersistentReactor(db->modelSpaceId());
  EXPECT_EQ(vorahost::writeViolations(), 1u);
  line->close();
}

TEST(OpenClose, ModifiedFlagFollowsWrites) {
  WorkingDatabase db;
  const AcDbObjectId id = newLine(db.get());
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(line->hostModified());
  line->setHostModified(false);
  line->close();
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_FALSE(line->hostModified());
  ASSERT_EQ(line->upgradeOpen(), Acad::eOk);
  EXPECT_TRUE(line->hostModified());
  line->close();
}

}  // namespace
