#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/db/test_db.h"

namespace {

// The list as "code:value" items, for comparing whole lists at once.
std::wstring describe(const resbuf* rb) {
  std::wstring out;
  for (; rb != nullptr; rb = rb->rbnext) {
    out += std::to_wstring(rb->restype) + L":";
    switch (rb->restype) {
      case 1000: case 1001: case 1002: case 1003: case 1005: out += rb->resval.rstring; break;
      case 1040: case 1041: case 1042: out += std::to_wstring(rb->resval.rreal); break;
      case 1070: out += std::to_wstring(rb->resval.rint); break;
      case 1071: out += std::to_wstring(rb->resval.rlong); break;
      case 1010: out += std::to_wstring(rb->resval.rpoint[2]); break;
      default: break;
    }
    out += L" ";
  }
  return out;
}

class Xdata : public ::testing::Test {
protected:
  void SetUp() override {
    acdbRegApp(L"APP_A");
    acdbRegApp(L"APP_B");
    id = addToModelSpace(db.get(), new AcDbLine());
    ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  }
  void TearDown() override {
    line->close();
    EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
  }
  WorkingDatabase db;
  AcDbObjectId id;
  AcDbLine* line = nullptr;
};

TEST_F(Xdata, GroupsAreReplacedPerApplicationAndRemovedByALoneHead) {
  resbuf* a = acutBuildList(1001, L"APP_A", 1071, 5, 1040, 2.5, 0);
  resbuf* b = acutBuildList(1001, L"APP_B", 1000, L"x", 0);
  ASSERT_EQ(line->setXData(a), Acad::eOk);
  ASSERT_EQ(line->setXData(b), Acad::eOk);
  acutRelRb(a);
  acutRelRb(b);
  resbuf* all = line->xData();
  EXPECT_EQ(describe(all), L"1001:APP_A 1071:5 1040:2.500000 1001:APP_B 1000:x ");
  acutRelRb(all);

  resbuf* a2 = acutBuildList(1001, L"app_a", 1070, 7, 0);
  ASSERT_EQ(line->setXData(a2), Acad::eOk);
  acutRelRb(a2);
  resbuf* onlyA = line->xData(L"APP_A");
  EXPECT_EQ(describe(onlyA), L"1001:app_a 1070:7 ");
  acutRelRb(onlyA);

  resbuf* head = acutBuildList(1001, L"APP_A", 0);
  ASSERT_EQ(line->setXData(head), Acad::eOk);
  acutRelRb(head);
  EXPECT_EQ(line->xData(L"APP_A"), nullptr);
  all = line->xData();
  EXPECT_EQ(describe(all), L"1001:APP_B 1000:x ");
  acutRelRb(all);
}

TEST_F(Xdata, HeadNamesAndCodesAreChecked) {
  resbuf* unknown = acutBuildList(1001, L"NOT_REGISTERED", 1000, L"v", 0);
  EXPECT_EQ(line->setXData(unknown), Acad::eRegappIdNotFound);
  acutRelRb(unknown);
  resbuf* noHead = acutBuildList(1000, L"v", 0);
  EXPECT_EQ(line->setXData(noHead), Acad::eBadDxfSequence);
  acutRelRb(noHead);
  for (int code : {1, 999, 1006, 1020, 1043, 1072}) {
    resbuf* bad = acutBuildList(1001, L"APP_A", 1000, L"ok", 0);
    bad->rbnext->rbnext = acutNewRb(code);
    EXPECT_EQ(line->setXData(bad), Acad::eInvalidDxfCode) << code;
    acutRelRb(bad);
  }
  // A refused list changes nothing, even a valid group in front of the bad one.
  resbuf* mixed = acutBuildList(1001, L"APP_A", 1000, L"a", 1001, L"NOPE", 0);
  EXPECT_EQ(line->setXData(mixed), Acad::eRegappIdNotFound);
  acutRelRb(mixed);
  EXPECT_EQ(line->xData(), nullptr);

  const double pt[3] = {1, 2, 3};
  resbuf* good = acutBuildList(1001, L"APP_A", 1002, L"{", 1003, L"0", 1005, L"2F", 1010, pt, 1011, pt, 1012, pt,
                               1013, pt, 1041, 1.0, 1042, 2.0, 1002, L"}", 0);
  EXPECT_EQ(line->setXData(good), Acad::eOk);
  acutRelRb(good);
}

TEST_F(Xdata, WritingNeedsTheObjectOpenForWrite) {
  ASSERT_EQ(line->downgradeOpen(), Acad::eOk);
  resbuf* a = acutBuildList(1001, L"APP_A", 1000, L"v", 0);
  EXPECT_EQ(line->setXData(a), Acad::eNotOpenForWrite);
  acutRelRb(a);
}

}  // namespace
