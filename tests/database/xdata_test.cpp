#include <gtest/gtest.h>

#include "host/db/test_db.h"
#include "vora/vora.h"

namespace {

struct Item {
  int code;
  std::wstring text;
  double real;
};

// The key's items as (code, value) with the 1001 head first.
std::vector<Item> itemsOf(AcDbObjectId id, const ACHAR* key) {
  std::vector<Item> out;
  AcDbObject* obj = nullptr;
  if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return out;
  resbuf* list = obj->xData(key);
  obj->close();
  for (const resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
    Item item{rb->restype, L"", 0.0};
    if (rb->restype == 1000 || rb->restype == 1001 || rb->restype == 1005) item.text = rb->resval.rstring;
    if (rb->restype == 1040) item.real = rb->resval.rreal;
    if (rb->restype == 1071) item.real = rb->resval.rlong;
    if (rb->restype == 1070) item.real = rb->resval.rint;
    if (rb->restype == 1010) item.real = rb->resval.rpoint[2];
    out.push_back(item);
  }
  if (list != nullptr) acutRelRb(list);
  return out;
}

AcDbObjectId someLine() {
  const AcGePoint3d a(0, 0, 0), b(1, 0, 0);
  return vora_createLine(&a, &b, L"0", 256);
}

}  // namespace

TEST(VoraXdata, MixedValuesUnderOneKeyReadByPositionAndRun) {
  WorkingDatabase db;
  const AcDbObjectId id = someLine();
  VoraXdata x;
  x.Open(id);
  EXPECT_EQ(x.SetValue(L"K", 5), 1);
  EXPECT_EQ(x.AddValue(L"K", 2.5), 1);
  EXPECT_EQ(x.AddValue(L"K", L"x"), 1);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  const std::vector<Item> items = itemsOf(id, L"K");
  ASSERT_EQ(items.size(), 4u);
  EXPECT_EQ(items[0].code, 1001);
  EXPECT_EQ(items[0].text, L"K");
  EXPECT_EQ(items[1].code, 1071);
  EXPECT_EQ(items[1].real, 5.0);
  EXPECT_EQ(items[2].code, 1040);
  EXPECT_EQ(items[2].real, 2.5);
  EXPECT_EQ(items[3].code, 1000);
  EXPECT_EQ(items[3].text, L"x");

  int i = 0;
  double d = -1.0;
  std::wstring s = L"unchanged";
  EXPECT_EQ(x.GetValue(L"K", &i, 0), 1);
  EXPECT_EQ(i, 5);
  EXPECT_EQ(x.GetValue(L"K", &d, 1), 1);
  EXPECT_EQ(d, 2.5);
  d = -1.0;
  EXPECT_EQ(x.GetValue(L"K", &d, 0), 0);  // wrong code
  EXPECT_EQ(d, -1.0);
  EXPECT_EQ(x.GetValue(L"K", &s, 3), 0);  // past the end
  EXPECT_EQ(x.GetValue(L"K", &s, -1), 0);
  EXPECT_EQ(s, L"unchanged");
  EXPECT_EQ(x.GetValue(L"K", &s, 2), 1);
  EXPECT_EQ(s, L"x");
  EXPECT_EQ(x.GetValue(L"K", static_cast<short*>(nullptr), 0), 0);  // 1071 is not a short
  EXPECT_EQ(x.GetValue(L"K", static_cast<int*>(nullptr), 0), 1);

  // Arrays are the leading run: ints stop at the real, reals find none.
  AcArray<int> ints;
  ints.append(99);
  EXPECT_EQ(x.GetValue(L"K", &ints), 1);
  ASSERT_EQ(ints.length(), 2);
  EXPECT_EQ(ints[0], 99);
  EXPECT_EQ(ints[1], 5);
  AcArray<double> reals;
  EXPECT_EQ(x.GetValue(L"K", &reals), 0);
  EXPECT_EQ(reals.length(), 0);

  // Setting replaces all three items with one.
  EXPECT_EQ(x.SetValue(L"K", 7), 1);
  EXPECT_EQ(itemsOf(id, L"K").size(), 2u);
  EXPECT_EQ(x.GetValue(L"K", &i, 1), 0);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(VoraXdata, EveryTypeWithItsCodeAndArrays) {
  WorkingDatabase db;
  const AcDbObjectId id = someLine();
  VoraXdata x;
  x.Open(id);
  const AcDbHandle handle = id.handle();
  EXPECT_EQ(x.SetValue(L"S", static_cast<short>(-3)), 1);
  EXPECT_EQ(x.SetValue(L"H", handle), 1);
  EXPECT_EQ(x.SetValue(L"P", AcGePoint3d(1.5, -2, 1e10)), 1);
  EXPECT_EQ(x.AddValue(L"P", AcGePoint3d(0, 0, 4)), 1);
  EXPECT_EQ(x.AddValue(L"S", static_cast<short>(8)), 1);
  EXPECT_EQ(x.AddValue(L"H", handle), 1);
  EXPECT_EQ(x.AddValue(L"NEW", 1.25), 1);  // a key without values gets one

  EXPECT_EQ(itemsOf(id, L"S")[1].code, 1070);
  EXPECT_EQ(itemsOf(id, L"H")[1].code, 1005);
  EXPECT_EQ(itemsOf(id, L"H")[1].text, L"" + std::wstring(itemsOf(id, L"H")[2].text));
  EXPECT_EQ(itemsOf(id, L"P")[2].code, 1010);
  EXPECT_EQ(itemsOf(id, L"NEW")[1].code, 1040);

  short sh = 0;
  AcDbHandle h;
  AcGePoint3d p;
  EXPECT_EQ(x.GetValue(L"S", &sh, 1), 1);
  EXPECT_EQ(sh, 8);
  EXPECT_EQ(x.GetValue(L"H", &h, 1), 1);
  EXPECT_EQ(h, handle);
  EXPECT_EQ(x.GetValue(L"P", &p, 0), 1);
  EXPECT_EQ(p.z, 1e10);
  AcArray<AcGePoint3d> pts;
  EXPECT_EQ(x.GetValue(L"P", &pts), 2);
  EXPECT_EQ(pts[1].z, 4.0);

  AcArray<double> reals;
  reals.append(0.1);
  reals.append(-0.0);
  reals.append(3e-300);
  std::vector<std::wstring> words{L"one", L"", L"drei"};
  AcArray<int> ints;
  ints.append(-2147483647 - 1);
  EXPECT_EQ(x.SetValue(L"R", &reals), 1);
  EXPECT_EQ(x.SetValue(L"W", &words), 1);
  EXPECT_EQ(x.SetValue(L"I", &ints), 1);
  AcArray<double> r2;
  std::vector<std::wstring> w2;
  AcArray<int> i2;
  EXPECT_EQ(x.GetValue(L"R", &r2), 3);
  EXPECT_EQ(r2[2], 3e-300);
  EXPECT_EQ(x.GetValue(L"W", &w2), 3);
  EXPECT_EQ(w2, words);
  EXPECT_EQ(x.GetValue(L"I", &i2), 1);
  EXPECT_EQ(i2[0], -2147483647 - 1);
  EXPECT_EQ(x.GetValue(L"W", static_cast<std::vector<std::wstring>*>(nullptr)), 3);

  // An empty array stores no values, which drops the key.
  AcArray<int> empty;
  EXPECT_EQ(x.SetValue(L"I", &empty), 1);
  EXPECT_TRUE(itemsOf(id, L"I").empty());
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(VoraXdata, KeysRemovalAndTheResbufReader) {
  WorkingDatabase db;
  const AcDbObjectId id = someLine();
  VoraXdata x;
  x.Open(id);
  x.SetValue(L"FIRST", 1);
  x.SetValue(L"SECOND", L"two");
  std::vector<std::wstring> keys{L"kept"};
  EXPECT_EQ(x.GetKeys(&keys), 2);
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_EQ(keys[1], L"FIRST");
  EXPECT_EQ(keys[2], L"SECOND");

  resbuf* rb = nullptr;
  EXPECT_EQ(x.GetValue(L"SECOND", &rb), 1);
  ASSERT_NE(rb, nullptr);
  EXPECT_EQ(rb->restype, 1000);  // no head
  EXPECT_EQ(rb->rbnext, nullptr);
  acutRelRb(rb);

  EXPECT_EQ(x.RemoveKey(L"FIRST"), 1);
  keys.clear();
  EXPECT_EQ(x.GetKeys(&keys), 1);
  EXPECT_EQ(keys[0], L"SECOND");
  EXPECT_EQ(x.GetValue(L"FIRST", &rb), 0);
  EXPECT_EQ(x.GetValue(L"FIRST", static_cast<resbuf**>(nullptr)), 0);

  // A caller's list is stored as it stands and not released.
  resbuf* mine = acutBuildList(1000, L"a", 1070, 4, 1041, 2.0, 0);
  EXPECT_EQ(x.SetValue(L"RAW", mine), 1);
  EXPECT_EQ(mine->restype, 1000);
  acutRelRb(mine);
  EXPECT_EQ(itemsOf(id, L"RAW")[3].code, 1041);
  // A list the object refuses (a code outside extended data) gives 0.
  resbuf* bad = acutBuildList(8, L"layer", 0);
  EXPECT_EQ(x.SetValue(L"RAW", bad), 0);
  acutRelRb(bad);
  EXPECT_EQ(itemsOf(id, L"RAW").size(), 4u);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

TEST(VoraXdata, UnboundOpenObjectsAndUnopenableIds) {
  WorkingDatabase db;
  VoraXdata unbound;
  int i = 42;
  EXPECT_EQ(unbound.SetValue(L"K", 1), -1);
  EXPECT_EQ(unbound.AddValue(L"K", 1), -1);
  EXPECT_EQ(unbound.RemoveKey(L"K"), -1);
  EXPECT_EQ(unbound.GetValue(L"K", &i, 0), 0);
  EXPECT_EQ(i, 42);
  AcArray<int> ints;
  EXPECT_EQ(unbound.GetValue(L"K", &ints), 0);
  resbuf* rb = nullptr;
  EXPECT_EQ(unbound.GetValue(L"K", &rb), -1);
  EXPECT_EQ(unbound.GetKeys(nullptr), 0);
  EXPECT_EQ(unbound.Close(), 1);

  // Bound to an object the caller has open for read: upgraded for the write
  // and handed back open for read.
  const AcDbObjectId id = someLine();
  AcDbObject* obj = nullptr;
  ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForRead), Acad::eOk);
  VoraXdata bound;
  EXPECT_EQ(bound.Open(obj), 1);
  EXPECT_EQ(bound.SetValue(L"K", 3), 1);
  EXPECT_TRUE(obj->isReadEnabled());
  EXPECT_FALSE(obj->isWriteEnabled());
  EXPECT_EQ(bound.AddValue(L"K", 4), 1);
  EXPECT_FALSE(obj->isWriteEnabled());
  AcArray<int> got;
  EXPECT_EQ(bound.GetValue(L"K", &got), 2);

  // Another reader: the upgrade is refused (-2) and nothing is written; an
  // id binding cannot open it for write either, yet can read it.
  AcDbObject* second = nullptr;
  ASSERT_EQ(acdbOpenObject(second, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(bound.SetValue(L"K", 9), -2);
  EXPECT_FALSE(obj->isWriteEnabled());
  VoraXdata byId;
  byId.Open(id);
  EXPECT_EQ(byId.SetValue(L"K", 9), -2);
  EXPECT_EQ(byId.GetValue(L"K", &i, 1), 1);
  EXPECT_EQ(i, 4);
  second->close();
  obj->close();

  // Copies share the binding; Close unbinds without closing anything.
  VoraXdata copy(bound);
  copy.Close();
  EXPECT_EQ(copy.SetValue(L"K", 1), -1);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);

  // An id that cannot be opened for read: -2 from the resbuf reader, 0
  // from the others, and AddValue falls back to a write that also fails.
  ASSERT_EQ(acdbOpenObject(obj, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(byId.GetValue(L"K", &rb), -2);
  EXPECT_EQ(byId.GetValue(L"K", &i, 0), 0);
  EXPECT_EQ(byId.AddValue(L"K", 5), -2);
  EXPECT_EQ(byId.GetKeys(nullptr), 0);
  obj->close();
  EXPECT_EQ(byId.GetKeys(nullptr), 1);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}
