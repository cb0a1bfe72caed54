#include <gtest/gtest.h>

#include <string>

#include "host/db/internal.h"
#include "host/db/test_db.h"

namespace {

std::wstring nameOf(AcDbObjectId id) {
  auto* rec = AcDbSymbolTableRecord::cast(vora_host::peek(id));
  const ACHAR* name = L"";
  if (rec != nullptr) rec->getName(name);
  return name;
}

TEST(Database, NewDrawingHasTheStandardContents) {
  WorkingDatabase db;
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(db->getLayerTable(layers), Acad::eOk);
  AcDbLayerTableRecord* zero = nullptr;
  ASSERT_EQ(layers->getAt(L"0", zero, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(zero->color().colorIndex(), 7);
  EXPECT_EQ(nameOf(zero->linetypeObjectId()), L"Continuous");
  EXPECT_FALSE(zero->isOff());
  EXPECT_FALSE(zero->isFrozen());
  zero->close();
  layers->close();

  for (const ACHAR* lt : {L"ByBlock", L"BYLAYER", L"continuous"}) {
    EXPECT_FALSE(vora_host::findRecord(db->linetypeTableId(), lt).isNull()) << lt;
  }
  EXPECT_FALSE(vora_host::findRecord(db->regAppTableId(), L"ACAD").isNull());
  EXPECT_EQ(nameOf(db->modelSpaceId()), L"*Model_Space");
  EXPECT_EQ(nameOf(db->paperSpaceId()), L"*Paper_Space");
  EXPECT_FALSE(vora_host::findRecord(db->textStyleTableId(), L"Standard").isNull());
  EXPECT_FALSE(vora_host::findRecord(db->viewportTableId(), L"*Active").isNull());

  AcDbDictionary* nod = nullptr;
  ASSERT_EQ(db->getNamedObjectsDictionary(nod), Acad::eOk);
  for (const ACHAR* key : {L"ACAD_COLOR", L"ACAD_GROUP", L"ACAD_LAYOUT", L"ACAD_MATERIAL", L"ACAD_MLINESTYLE",
                           L"ACAD_PLOTSETTINGS", L"ACAD_PLOTSTYLENAME"}) {
    EXPECT_TRUE(nod->has(key)) << key;
  }
  nod->close();

  AcDbDictionary* materials = nullptr;
  ASSERT_EQ(db->getMaterialDictionary(materials), Acad::eOk);
  AcDbDictionaryIterator* it = materials->newIterator();
  std::wstring names;
  for (; !it->done(); it->next()) {
    AcDbMaterial* mat = nullptr;
    ASSERT_EQ(it->getObject(mat), Acad::eOk);
    names += mat->name();
    names += L";";
    mat->close();
  }
  delete it;
  materials->close();
  EXPECT_EQ(names, L"ByBlock;ByLayer;Global;");
  EXPECT_EQ(db->clayer(), db->layerZero());
  EXPECT_EQ(db->cmaterial(), db->byLayerMaterial());

  // Model space carries its BLOCK and ENDBLK entities, owned by it.
  auto* ms = AcDbBlockTableRecord::cast(vora_host::peek(db->modelSpaceId()));
  AcDbBlockBegin* begin = nullptr;
  ASSERT_EQ(ms->openBlockBegin(begin), Acad::eOk);
  EXPECT_EQ(begin->ownerId(), db->modelSpaceId());
  begin->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(Database, HandlesComeFromTheSeedAndSkipHandlesInUse) {
  WorkingDatabase db;
  const AcDbHandle seed = db->handseed();
  auto* a = new AcDbLine();
  const AcDbObjectId ida = addToModelSpace(db.get(), a);
  EXPECT_EQ(ida.handle(), seed);
  EXPECT_EQ(db->handseed(), AcDbHandle(static_cast<Adesk::UInt64>(seed) + 1));

  // An id made for the next handle (a forward reference) keeps it from new
  // objects; an object loaded under it binds to the same id.
  AcDbObjectId forward;
  const AcDbHandle next = db->handseed();
  ASSERT_EQ(db->getAcDbObjectId(forward, true, next), Acad::eOk);
  const AcDbObjectId idb = addToModelSpace(db.get(), new AcDbLine());
  EXPECT_NE(idb.handle(), next);
  auto* loaded = new AcDbCircle();
  AcDbObjectId bound;
  ASSERT_EQ(vora_host::addObjectWithHandle(db.get(), loaded, next, bound), Acad::eOk);
  EXPECT_EQ(bound, forward);
  EXPECT_EQ(forward.objectClass(), AcDbCircle::desc());
  auto* dup = new AcDbCircle();
  AcDbObjectId unused;
  EXPECT_EQ(vora_host::addObjectWithHandle(db.get(), dup, next, unused), Acad::eHandleExists);
  delete dup;

  AcDbObjectId found;
  EXPECT_EQ(db->getAcDbObjectId(found, false, ida.handle()), Acad::eOk);
  EXPECT_EQ(found, ida);
  EXPECT_EQ(db->getAcDbObjectId(found, false, AcDbHandle(L"7FFFFFFF")), Acad::eUnknownHandle);
  EXPECT_TRUE(found.isNull());

  EXPECT_EQ(db->setHandseed(ida.handle()), Acad::eInvalidInput);
  ASSERT_EQ(db->setHandseed(AcDbHandle(L"1000")), Acad::eOk);
  EXPECT_EQ(addToModelSpace(db.get(), new AcDbLine()).handle(), AcDbHandle(0x1000ull));

  // Load order first, then creation order.
  const auto order = vora_host::objectsInOrder(db.get());
  ASSERT_GE(order.size(), 3u);
  EXPECT_EQ(order[order.size() - 2], forward);
}

TEST(Database, HandleText) {
  ACHAR buf[32];
  AcDbHandle(0x2Full).getIntoAsciiBuffer(buf);
  EXPECT_STREQ(buf, L"2F");
  AcDbHandle().getIntoAsciiBuffer(buf);
  EXPECT_STREQ(buf, L"0");
  AcDbHandle(0xFEDCBA9876543210ull).getIntoAsciiBuffer(buf);
  EXPECT_STREQ(buf, L"FEDCBA9876543210");
  EXPECT_FALSE(AcDbHandle(0x123ull).getIntoAsciiBuffer(buf, 3));
  EXPECT_EQ(static_cast<Adesk::UInt64>(AcDbHandle(L"2f")), 0x2Fu);
  EXPECT_EQ(static_cast<Adesk::UInt64>(AcDbHandle(L"00000000000000000ABC")), 0xABCu);
  EXPECT_TRUE(AcDbHandle(L"12G").isNull());
  EXPECT_TRUE(AcDbHandle(L"10000000000000000").isNull());
  const AcDbHandle h(0x1234567890ull);
  EXPECT_EQ(h.low(), 0x34567890u);
  EXPECT_EQ(h.high(), 0x12u);
}

TEST(Database, IdsArePointerSizedAndRoundTripThroughOldIds) {
  static_assert(sizeof(AcDbObjectId) == sizeof(void*));
  WorkingDatabase db;
  const AcDbObjectId id = db->layerZero();
  AcDbObjectId back;
  back.setFromOldId(id.asOldId());
  EXPECT_EQ(back, id);
  EXPECT_EQ(back.database(), db.get());
  EXPECT_TRUE(AcDbObjectId::kNull.isNull());
  EXPECT_FALSE(AcDbObjectId::kNull.isValid());
}

TEST(Database, DeletingTheWorkingDatabaseClearsIt) {
  AcDbDatabase* previous = acdbHostApplicationServices()->workingDatabase();
  auto* db = new AcDbDatabase(false, true);
  acdbHostApplicationServices()->setWorkingDatabase(db);
  EXPECT_TRUE(db->blockTableId().isNull());
  EXPECT_EQ(acdbRegApp(L"X"), RTERROR);
  delete db;
  EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), nullptr);
  acdbHostApplicationServices()->setWorkingDatabase(previous);
}

TEST(SymbolTables, NamesAreCaseInsensitiveAndUnique) {
  WorkingDatabase db;
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(db->getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* rec = new AcDbLayerTableRecord();
  rec->setName(L"Walls");
  AcDbObjectId wallsId;
  ASSERT_EQ(layers->add(wallsId, rec), Acad::eOk);
  rec->close();
  auto* dup = new AcDbLayerTableRecord();
  dup->setName(L"WALLS");
  EXPECT_EQ(layers->add(dup), Acad::eDuplicateRecordName);
  delete dup;
  auto* unnamed = new AcDbLayerTableRecord();
  EXPECT_EQ(layers->add(unnamed), Acad::eInvalidInput);
  delete unnamed;
  AcDbObjectId got;
  EXPECT_EQ(layers->getAt(L"wAlLs", got), Acad::eOk);
  EXPECT_EQ(got, wallsId);
  EXPECT_EQ(layers->getAt(L"Doors", got), Acad::eKeyNotFound);

  AcDbLayerTableIterator* it = nullptr;
  layers->newIterator(it);
  std::wstring names;
  for (; !it->done(); it->step()) {
    AcDbLayerTableRecord* r = nullptr;
    ASSERT_EQ(it->getRecord(r), Acad::eOk);
    const ACHAR* n = nullptr;
    r->getName(n);
    names += n;
    names += L";";
    r->close();
  }
  delete it;
  layers->close();
  EXPECT_EQ(names, L"0;Walls;");

  AcDbLayerTableRecord* zero = nullptr;
  ASSERT_EQ(acdbOpenObject(zero, db->layerZero(), AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(zero->setName(L"walls"), Acad::eDuplicateRecordName);
  zero->close();
}

TEST(Entities, PropertiesByNameAndFromAnotherEntity) {
  WorkingDatabase db;
  EXPECT_EQ(acdbRegApp(L"APP"), RTNORM);
  EXPECT_EQ(acdbRegApp(L"app"), RTERROR);
  auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
  EXPECT_EQ(line->setLayer(L"NoSuchLayer"), Acad::eKeyNotFound);
  ASSERT_EQ(line->setLinetype(L"CONTINUOUS"), Acad::eOk);
  ASSERT_EQ(line->setMaterial(L"Global"), Acad::eOk);
  ASSERT_EQ(line->setColorIndex(1), Acad::eOk);
  EXPECT_EQ(line->setColorIndex(257), Acad::eInvalidInput);
  const AcDbObjectId id = addToModelSpace(db.get(), line);
  AcDbLine* l = nullptr;
  ASSERT_EQ(acdbOpenObject(l, id, AcDb::kForRead), Acad::eOk);
  ACHAR* lt = l->linetype();
  EXPECT_STREQ(lt, L"Continuous");
  acutDelString(lt);
  ACHAR* mat = l->material();
  EXPECT_STREQ(mat, L"Global");
  acutDelString(mat);
  ACHAR* layer = l->layer();
  EXPECT_STREQ(layer, L"0");
  acutDelString(layer);

  auto* circle = new AcDbCircle(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis, 2.0);
  ASSERT_EQ(circle->setPropertiesFrom(l), Acad::eOk);
  l->close();
  EXPECT_EQ(circle->colorIndex(), 1);
  EXPECT_EQ(circle->materialId(), db->globalMaterial());
  delete circle;
}

}  // namespace

namespace {

TEST(Database, DefaultsAreAddedOnlyWhereMissing) {
  AcDbDatabase db(false, true);
  EXPECT_TRUE(vora_host::objectsInOrder(&db).empty());
  vora_host::ensureDefaults(&db);
  const std::size_t full = vora_host::objectsInOrder(&db).size();
  AcDbDatabase reference;
  EXPECT_EQ(full, vora_host::objectsInOrder(&reference).size());
  const AcDbHandle seed = db.handseed();
  vora_host::ensureDefaults(&db);
  EXPECT_EQ(db.handseed(), seed);
  EXPECT_EQ(db.clayer(), db.layerZero());

  // A drawing that lacks a layer "0" (as some files do) gets one.
  AcDbLayerTableRecord* zero = nullptr;
  ASSERT_EQ(acdbOpenObject(zero, db.layerZero(), AcDb::kForWrite), Acad::eOk);
  ASSERT_EQ(zero->setName(L"Renamed"), Acad::eOk);
  zero->close();
  EXPECT_TRUE(db.layerZero().isNull());
  vora_host::ensureDefaults(&db);
  EXPECT_FALSE(db.layerZero().isNull());
  EXPECT_EQ(vora_host::objectsInOrder(&db).size(), full + 1);
  EXPECT_EQ(vorahost::openObjectCount(&db), 0u);
}

}  // namespace
