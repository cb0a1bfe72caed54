#include <gtest/gtest.h>

#include "host/db/test_db.h"
#include "vora/vora.h"

namespace {

// The id of the entry at the names under the named objects dictionary, or
// null when some part is missing.
AcDbObjectId entryAt(AcDbDatabase* db, std::initializer_list<const ACHAR*> names) {
  AcDbObjectId id = db->namedObjectsDictionaryId();
  for (const ACHAR* name : names) {
    AcDbDictionary* dict = nullptr;
    if (acdbOpenObject(dict, id, AcDb::kForRead) != Acad::eOk) return AcDbObjectId::kNull;
    AcDbObjectId next;
    const Acad::ErrorStatus es = dict->getAt(name, next);
    dict->close();
    if (es != Acad::eOk) return AcDbObjectId::kNull;
    id = next;
  }
  return id;
}

std::vector<std::pair<int, double>> itemsOf(AcDbObjectId id) {
  std::vector<std::pair<int, double>> out;
  AcDbXrecord* rec = nullptr;
  if (acdbOpenObject(rec, id, AcDb::kForRead) != Acad::eOk) return out;
  resbuf* list = nullptr;
  rec->rbChain(&list);
  rec->close();
  for (const resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
    double v = 0.0;
    if (rb->restype == 90) v = rb->resval.rlong;
    if (rb->restype == 70) v = rb->resval.rint;
    if (rb->restype == 40) v = rb->resval.rreal;
    if (rb->restype == 10) v = rb->resval.rpoint[0];
    out.emplace_back(rb->restype, v);
  }
  if (list != nullptr) acutRelRb(list);
  return out;
}

std::vector<std::wstring> pathOf(VoraXrecord& x) {
  // The current path shows in what GetKeys lists after a write under it.
  std::vector<std::wstring> keys;
  x.GetKeys(&keys);
  return keys;
}

}  // namespace

TEST(VoraXrecord, PathSyntaxKeepsLeadingAndDoubleBackslashes) {
  WorkingDatabase db;
  VoraXrecord x;
  const struct {
    const ACHAR* path;
    std::initializer_list<const ACHAR*> stored;
  } cases[] = {
      {L"Project\\Settings\\Units", {L"Project", L"Settings", L"Units", L"K"}},
      {L"A\\", {L"A", L"K"}},
      {L"\\A\\B", {L"\\A\\B", L"K"}},
      {L"C\\\\D", {L"C", L"\\D", L"K"}},
      {L"E\\F\\\\", {L"E", L"F", L"\\", L"K"}},
  };
  for (const auto& c : cases) {
    x.Open(c.path);
    EXPECT_EQ(x.SetValue(L"K", 1), 1) << "path " << testing::PrintToString(std::wstring(c.path));
    EXPECT_FALSE(entryAt(db.get(), c.stored).isNull()) << testing::PrintToString(std::wstring(c.path));
  }
  // The key is a path too: it reaches into deeper dictionaries, and the
  // current path comes back unchanged.
  x.Open(L"Top");
  EXPECT_EQ(x.SetValue(L"Mid\\Leaf", 2), 1);
  EXPECT_FALSE(entryAt(db.get(), {L"Top", L"Mid", L"Leaf"}).isNull());
  EXPECT_EQ(pathOf(x), std::vector<std::wstring>{L"Mid"});
  EXPECT_EQ(x.SetValue(L"K", 3), 1);
  EXPECT_EQ(pathOf(x), (std::vector<std::wstring>{L"Mid", L"K"}));
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(VoraXrecord, NestedWriteReadAndAppend) {
  WorkingDatabase db;
  VoraXrecord x;
  EXPECT_EQ(x.Open(L"A\\B"), 0);
  EXPECT_EQ(x.SetValue(L"K", 3), 1);
  const AcDbObjectId k = entryAt(db.get(), {L"A", L"B", L"K"});
  ASSERT_FALSE(k.isNull());
  EXPECT_EQ(itemsOf(k), (std::vector<std::pair<int, double>>{{90, 3.0}}));
  int i = 0;
  EXPECT_EQ(x.GetValue(L"K", &i, 0), 1);
  EXPECT_EQ(i, 3);
  EXPECT_EQ(x.GetValue(L"k", &i, 0), 1);  // dictionary keys ignore case

  EXPECT_EQ(x.AddValue(L"K", 2.5), 1);
  EXPECT_EQ(x.AddValue(L"K", static_cast<short>(7)), 1);
  EXPECT_EQ(x.AddValue(L"K", AcGePoint3d(4, 5, 6)), 1);
  const AcDbObjectId k2 = entryAt(db.get(), {L"A", L"B", L"K"});
  EXPECT_EQ(itemsOf(k2), (std::vector<std::pair<int, double>>{{90, 3.0}, {40, 2.5}, {70, 7.0}, {10, 4.0}}));
  // The rewritten record replaced the old one, which was only detached.
  EXPECT_NE(k2, k);
  EXPECT_FALSE(k.isErased());

  double d = -1;
  short s = 0;
  AcGePoint3d p;
  EXPECT_EQ(x.GetValue(L"K", &d, 1), 1);
  EXPECT_EQ(d, 2.5);
  EXPECT_EQ(x.GetValue(L"K", &s, 2), 1);
  EXPECT_EQ(s, 7);
  EXPECT_EQ(x.GetValue(L"K", &p, 3), 1);
  EXPECT_EQ(p.z, 6.0);
  d = -1;
  EXPECT_EQ(x.GetValue(L"K", &d, 4), 0);
  EXPECT_EQ(x.GetValue(L"K", &d, 0), 0);
  EXPECT_EQ(d, -1.0);
  AcArray<int> ints;
  AcArray<double> reals;
  EXPECT_EQ(x.GetValue(L"K", &ints), 1);
  EXPECT_EQ(x.GetValue(L"K", &reals), 0);

  // Setting replaces.
  EXPECT_EQ(x.SetValue(L"K", L"text"), 1);
  std::wstring str;
  EXPECT_EQ(x.GetValue(L"K", &str, 0), 1);
  EXPECT_EQ(str, L"text");
  EXPECT_EQ(x.GetValue(L"K", &str, 1), 0);

  // Handles and arrays.
  const AcDbHandle h = db->modelSpaceId().handle();
  EXPECT_EQ(x.SetValue(L"H", h), 1);
  AcDbHandle back;
  EXPECT_EQ(x.GetValue(L"H", &back, 0), 1);
  EXPECT_EQ(back, h);
  EXPECT_EQ(itemsOf(entryAt(db.get(), {L"A", L"B", L"H"}))[0].first, 5);
  std::vector<std::wstring> words{L"a", L"b"};
  AcArray<AcGePoint3d> pts;
  pts.append(AcGePoint3d(1, 2, 3));
  pts.append(AcGePoint3d(-1, 0, 0));
  EXPECT_EQ(x.SetValue(L"W", &words), 1);
  EXPECT_EQ(x.SetValue(L"P", &pts), 1);
  std::vector<std::wstring> w2;
  AcArray<AcGePoint3d> p2;
  EXPECT_EQ(x.GetValue(L"W", &w2), 2);
  EXPECT_EQ(w2, words);
  EXPECT_EQ(x.GetValue(L"P", &p2), 2);
  EXPECT_EQ(p2[1].x, -1.0);

  std::vector<std::wstring> keys;
  EXPECT_EQ(x.GetKeys(&keys), 4);
  EXPECT_EQ(keys, (std::vector<std::wstring>{L"K", L"H", L"W", L"P"}));
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(VoraXrecord, EmptyPathMissingDictionariesAndWrongClasses) {
  WorkingDatabase db;
  VoraXrecord fresh;
  EXPECT_EQ(fresh.SetValue(L"K", 1), 0);
  EXPECT_EQ(fresh.AddValue(L"K", 1), 0);
  EXPECT_EQ(fresh.SetValue(static_cast<resbuf*>(nullptr)), 0);
  int i = 0;
  EXPECT_EQ(fresh.GetValue(L"K", &i, 0), 0);
  EXPECT_TRUE(entryAt(db.get(), {L"K"}).isNull());
  // With an empty path, the keys of the named objects dictionary.
  std::vector<std::wstring> keys;
  EXPECT_GE(fresh.GetKeys(&keys), 7);
  EXPECT_EQ(keys[0], L"ACAD_COLOR");

  // Removing under dictionaries that do not exist: -1, and nothing made.
  VoraXrecord x;
  x.Open(L"Nope\\Deeper");
  EXPECT_EQ(x.RemoveKey(L"K"), -1);
  EXPECT_TRUE(entryAt(db.get(), {L"Nope"}).isNull());
  EXPECT_EQ(x.GetValue(L"K", &i, 0), -1);
  EXPECT_EQ(x.GetKeys(nullptr), -1);
  EXPECT_EQ(x.RemoveKey(L"Nope", L"K"), -1);
  EXPECT_TRUE(entryAt(db.get(), {L"Nope"}).isNull());
  // Removing a missing key from an existing dictionary is done: 1.
  EXPECT_EQ(x.SetValue(L"Have", L"K", 1), 1);
  EXPECT_EQ(x.RemoveKey(L"Have", L"Other"), 1);
  EXPECT_EQ(x.RemoveKey(L"Have", L"K"), 1);
  EXPECT_EQ(x.GetValue(L"Have", L"K", &i, 0), -1);

  // A path through an xrecord: -2 for writes, reads and listings.
  x.Open(L"A");
  ASSERT_EQ(x.SetValue(L"X", 1), 1);
  x.Open(L"A\\X");
  EXPECT_EQ(x.SetValue(L"K", 2), -2);
  EXPECT_EQ(x.GetValue(L"K", &i, 0), -2);
  AcArray<int> ints;
  EXPECT_EQ(x.GetValue(L"K", &ints), -2);
  EXPECT_EQ(x.GetKeys(nullptr), -2);
  // Naming an xrecord as a dictionary to list: -2; a dictionary as a value: 0.
  EXPECT_EQ(x.GetKeys(L"A\\X", nullptr), -2);
  resbuf* rb = nullptr;
  x.Open(L"A");
  EXPECT_EQ(x.GetValue(&rb), 0);
  EXPECT_EQ(rb, nullptr);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(VoraXrecord, TwoStringFormsAndRemoveDict) {
  WorkingDatabase db;
  VoraXrecord x;
  // AddValue answers 0 even though the value is stored.
  EXPECT_EQ(x.AddValue(L"A", L"K", L"first"), 0);
  EXPECT_EQ(x.AddValue(L"A", L"K", L"second"), 0);
  std::vector<std::wstring> words;
  EXPECT_EQ(x.GetValue(L"A", L"K", &words), 2);
  EXPECT_EQ(words, (std::vector<std::wstring>{L"first", L"second"}));
  // The instance is left on the dictionary.
  EXPECT_EQ(x.SetValue(L"L", 4), 1);
  std::vector<std::wstring> keys;
  EXPECT_EQ(x.GetKeys(L"A", &keys), 2);

  EXPECT_EQ(x.SetValue(L"A\\B", L"K", 1.5), 1);
  double d = 0;
  EXPECT_EQ(x.GetValue(L"A\\B", L"K", &d, 0), 1);
  EXPECT_EQ(d, 1.5);
  const AcDbObjectId b = entryAt(db.get(), {L"A", L"B"});
  EXPECT_EQ(x.RemoveDict(L"A\\B"), 1);
  EXPECT_TRUE(entryAt(db.get(), {L"A", L"B"}).isNull());
  EXPECT_FALSE(b.isErased());  // detached, not erased
  EXPECT_EQ(x.GetValue(L"A\\B", L"K", &d, 0), -1);
  EXPECT_EQ(x.RemoveDict(L"Missing\\B"), -1);
  EXPECT_EQ(x.RemoveDict(L""), 0);

  // resbuf forms, with a list of the caller's own.
  resbuf* mine = acutBuildList(1, L"t", 62, 3, 0);
  EXPECT_EQ(x.SetValue(L"R", L"K", mine), 1);
  EXPECT_EQ(mine->restype, 1);
  acutRelRb(mine);
  resbuf* rb = nullptr;
  EXPECT_EQ(x.GetValue(L"R", L"K", &rb), 1);
  ASSERT_NE(rb, nullptr);
  EXPECT_EQ(rb->rbnext->restype, 62);
  acutRelRb(rb);
  EXPECT_EQ(x.Close(), 0);
  EXPECT_EQ(x.SetValue(L"K", 1), 0);

  // Without a working database: 0.
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  EXPECT_EQ(x.SetValue(L"A", L"K", 1), 0);
  EXPECT_EQ(x.GetKeys(nullptr), 0);
  acdbHostApplicationServices()->setWorkingDatabase(db.get());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}
