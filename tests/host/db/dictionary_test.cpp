#include <gtest/gtest.h>

#include <string>

#include "host/db/test_db.h"

namespace {

AcDbObjectId addXrecord(AcDbDictionary* dict, const ACHAR* key, int value) {
  auto* xr = new AcDbXrecord();
  resbuf* rb = acutBuildList(90, value, 0);
  xr->setFromRbChain(*rb);
  acutRelRb(rb);
  AcDbObjectId id;
  EXPECT_EQ(dict->setAt(key, xr, id), Acad::eOk);
  xr->close();
  return id;
}

std::wstring keys(const AcDbDictionary* dict) {
  std::wstring out;
  AcDbDictionaryIterator* it = dict->newIterator();
  for (; !it->done(); it->next()) {
    out += it->name();
    out += L";";
  }
  delete it;
  return out;
}

TEST(Dictionary, KeysIgnoreCaseKeepOrderAndSetAtReplaces) {
  WorkingDatabase db;
  AcDbDictionary* nod = nullptr;
  ASSERT_EQ(db->getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
  auto* dict = new AcDbDictionary();
  AcDbObjectId dictId;
  ASSERT_EQ(nod->setAt(L"VORA_TEST", dict, dictId), Acad::eOk);
  nod->close();
  EXPECT_EQ(dict->ownerId(), db->namedObjectsDictionaryId());
  EXPECT_TRUE(dict->hasPersistentReactor(db->namedObjectsDictionaryId()));

  const AcDbObjectId zebra = addXrecord(dict, L"Zebra", 1);
  const AcDbObjectId apple = addXrecord(dict, L"apple", 2);
  EXPECT_EQ(keys(dict), L"Zebra;apple;");
  AcDbObjectId got;
  ASSERT_EQ(dict->getAt(L"ZEBRA", got), Acad::eOk);
  EXPECT_EQ(got, zebra);

  const AcDbObjectId zebra2 = addXrecord(dict, L"zebra", 3);
  EXPECT_EQ(dict->numEntries(), 2u);
  EXPECT_EQ(keys(dict), L"zebra;apple;");
  EXPECT_TRUE(zebra.isErased());
  AcDbXrecord* xr = nullptr;
  ASSERT_EQ(dict->getAt(L"Zebra", xr), Acad::eOk);
  EXPECT_EQ(xr->objectId(), zebra2);
  resbuf* data = nullptr;
  ASSERT_EQ(xr->rbChain(&data), Acad::eOk);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->restype, 90);
  EXPECT_EQ(data->resval.rlong, 3);
  acutRelRb(data);
  xr->close();

  // Removing detaches the entry: not erased, no longer owned.
  AcDbObjectId removed;
  ASSERT_EQ(dict->remove(L"APPLE", removed), Acad::eOk);
  EXPECT_EQ(removed, apple);
  EXPECT_FALSE(apple.isErased());
  ASSERT_EQ(acdbOpenObject(xr, apple, AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(xr->ownerId().isNull());
  EXPECT_FALSE(xr->hasPersistentReactor(dictId));
  xr->close();
  EXPECT_EQ(dict->remove(L"apple"), Acad::eKeyNotFound);
  EXPECT_EQ(dict->remove(zebra2), Acad::eOk);
  EXPECT_EQ(dict->numEntries(), 0u);

  // An erased entry is skipped by lookups until it is unerased.
  const AcDbObjectId pear = addXrecord(dict, L"pear", 4);
  ASSERT_EQ(acdbOpenObject(xr, pear, AcDb::kForWrite), Acad::eOk);
  xr->erase();
  EXPECT_FALSE(dict->has(L"pear"));
  EXPECT_EQ(keys(dict), L"");
  xr->erase(false);
  xr->close();
  EXPECT_TRUE(dict->has(L"PEAR"));

  ASSERT_EQ(dict->downgradeOpen(), Acad::eOk);
  EXPECT_EQ(dict->remove(L"pear"), Acad::eNotOpenForWrite);
  auto* orphan = new AcDbXrecord();
  AcDbObjectId unused;
  EXPECT_EQ(dict->setAt(L"x", orphan, unused), Acad::eNotOpenForWrite);
  delete orphan;
  dict->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(Dictionary, AnonymousKeysAreNumbered) {
  WorkingDatabase db;
  AcDbDictionary* nod = nullptr;
  ASSERT_EQ(db->getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
  addXrecord(nod, L"*", 1);
  addXrecord(nod, L"*", 2);
  ACHAR* name = nullptr;
  AcDbObjectId id;
  ASSERT_EQ(nod->getAt(L"*A2", id), Acad::eOk);
  ASSERT_EQ(nod->nameAt(id, name), Acad::eOk);
  EXPECT_STREQ(name, L"*A2");
  acutDelString(name);
  nod->close();
}

TEST(Dictionary, ExtensionDictionaryHoldsTheBlockSortTable) {
  WorkingDatabase db;
  AcDbObjectId ids[3];
  for (AcDbObjectId& id : ids) id = addToModelSpace(db.get(), new AcDbLine());
  AcDbBlockTableRecord* ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  AcDbSortentsTable* sort = nullptr;
  EXPECT_EQ(ms->getSortentsTable(sort, AcDb::kForWrite), Acad::eKeyNotFound);
  ASSERT_EQ(ms->getSortentsTable(sort, AcDb::kForWrite, true), Acad::eOk);
  EXPECT_FALSE(ms->extensionDictionary().isNull());
  ms->close();

  AcDbObjectIdArray first;
  first.append(ids[0]);
  ASSERT_EQ(sort->moveToTop(first), Acad::eOk);
  AcDbObjectIdArray order;
  sort->getFullDrawOrder(order);
  ASSERT_EQ(order.length(), 3);
  EXPECT_EQ(order[0], ids[1]);
  EXPECT_EQ(order[1], ids[2]);
  EXPECT_EQ(order[2], ids[0]);

  AcDbObjectIdArray last;
  last.append(ids[2]);
  ASSERT_EQ(sort->moveToBottom(last), Acad::eOk);
  sort->getFullDrawOrder(order);
  EXPECT_EQ(order[0], ids[2]);
  EXPECT_EQ(order[1], ids[1]);
  EXPECT_EQ(order[2], ids[0]);
  // The sort handles are the entities' own handles dealt out again.
  AcDbHandleArray handles;
  sort->getSortHandles(order, handles);
  EXPECT_EQ(handles[0], ids[0].handle());
  EXPECT_EQ(handles[1], ids[1].handle());
  EXPECT_EQ(handles[2], ids[2].handle());

  AcDbObjectIdArray stranger;
  stranger.append(db->layerZero());
  EXPECT_EQ(sort->moveToTop(stranger), Acad::eInvalidInput);
  sort->close();
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

}  // namespace
