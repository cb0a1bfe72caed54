#include "host/dxf/records.h"

#include <gtest/gtest.h>

#include <set>

#include "host/dxf/corpus.h"
#include "host/dxf/fields.h"

namespace dxf = vora_host::dxf;

namespace {

dxf::TagFile tagsOf(std::string bytes) {
  dxf::TagFile f;
  f.bytes = std::move(bytes);
  dxf::tagize(f);
  return f;
}

TEST(DxfRecords, SectionsRecordsHandlesOwnersGroupsAndXdata) {
  const auto f = tagsOf(
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$HANDSEED\n5\n2A\n9\n$DWGCODEPAGE\n3\nANSI_1251\n0\nENDSEC\n"
      "999\nbetween\n"
      "0\nSECTION\n2\nOBJECTS\n"
      "0\nDICTIONARY\n5\nC\n102\n{ACAD_REACTORS\n330\n1F\n102\n}\n102\n{ACAD_XDICTIONARY\n360\n2B\n102\n}\n"
      "330\n0\n100\nAcDbDictionary\n3\nA\n350\nD\n1001\nAPP\n1000\nx\n"
      "0\nXRECORD\n5\nD\n330\nC\n100\nAcDbXrecord\n330\n77\n1001\nnot xdata\n"
      "0\nDIMSTYLE\n105\n1E\n2\nSTANDARD\n5\nnot a handle\n"
      "0\nENDSEC\n0\nEOF\n");
  const dxf::Layout l = dxf::layoutOf(f);
  ASSERT_EQ(l.sections.size(), 2u);
  EXPECT_EQ(l.acadver, "AC1015");
  EXPECT_EQ(l.codepage, "ANSI_1251");
  EXPECT_EQ(l.handseed, 0x2Au);
  EXPECT_EQ(f.value(static_cast<std::size_t>(l.handseedTag)), "2A");
  EXPECT_EQ(l.sections[0].records.size(), 0u);
  const auto& recs = l.sections[1].records;
  ASSERT_EQ(recs.size(), 3u);
  EXPECT_EQ(dxf::recordType(f, recs[0]), "DICTIONARY");
  EXPECT_EQ(recs[0].handle, 0xCu);
  EXPECT_EQ(recs[0].owner, 0u);
  EXPECT_EQ(recs[0].ownerTag, static_cast<std::int32_t>(recs[0].first + 8));
  EXPECT_EQ(recs[0].reactors, std::vector<std::uint64_t>{0x1F});
  EXPECT_EQ(recs[0].xdictionary, 0x2Bu);
  EXPECT_EQ(f.tags[recs[0].xdata].code, 1001);
  EXPECT_EQ(recs[1].owner, 0xCu);           // the 330 after the marker is data
  EXPECT_EQ(recs[1].xdata, recs[1].end);    // XRECORD data is never extended data
  EXPECT_EQ(recs[2].handle, 0x1Eu);         // DIMSTYLE: 105
  EXPECT_EQ(l.eofTag + 1, f.tags.size());
  EXPECT_EQ(dxf::versionNumber("AC1032"), 1032);
  EXPECT_EQ(dxf::versionNumber("R12"), 0);
  EXPECT_THROW(dxf::layoutOf(tagsOf("0\nSECTION\n2\nOBJECTS\n0\nX\n102\n{A\n0\nENDSEC\n0\nEOF\n")), dxf::DxfError);
}

TEST(DxfRecords, CorpusHandlesAreUniqueWhereTheFileHasThem) {
  for (const auto& c : vora_test::goodCorpusFiles()) {
    const auto f = dxf::readTagFile(c.path());
    const auto l = dxf::layoutOf(f);
    std::set<std::uint64_t> seen;
    std::size_t records = 0;
    for (const auto& s : l.sections)
      for (const auto& r : s.records) {
        ++records;
        if (r.handle == 0) {
          continue;
        }
        EXPECT_TRUE(seen.insert(r.handle).second) << c.name << " line " << dxf::TagFile::lineOf(r.first);
      }
    EXPECT_GT(records, 0u) << c.name;
    if (l.handseed != 0) {
      for (auto h : seen) {
        EXPECT_LT(h, l.handseed) << c.name;
      }
    }
  }
}

TEST(DxfFields, SplitByTableKeepsUnreadTagsInOrderPerSubclass) {
  const dxf::ClassDef line("LINE", {{"AcDbEntity", {8, 62}}, {"AcDbLine", {10, 20, 30, 11, 21, 31}}});
  // R2000 style, with an application group, an unknown marker and a repeated code.
  const std::string r13 =
      "0\nLINE\n5\n2F\n102\n{APP\n1\nkept\n102\n}\n102\n{ACAD_REACTORS\n330\n1\n102\n}\n330\n1F\n100\nAcDbEntity\n8\nwall\n"
      "370\n25\n62\n3\n100\nAcDbLine\n10\n1\n20\n2\n30\n3\n11\n4\n21\n5\n31\n6\n10\n9\n100\nAcDbOther\n1\nz\n1001\nAPP\n";
  std::vector<dxf::Tag> tags;
  dxf::tagizeRange(r13, tags);
  ASSERT_EQ(tags.size(), 24u);
  auto sr = dxf::splitRecord(line, r13, tags, 23);
  EXPECT_EQ(sr.appData, (std::vector<std::uint32_t>{2, 3, 4}));
  EXPECT_TRUE(sr.head.empty());
  EXPECT_EQ(sr.kept[0], (std::vector<std::uint32_t>{11}));      // 370
  EXPECT_EQ(sr.kept[1], (std::vector<std::uint32_t>{20}));      // the second 10
  EXPECT_EQ(sr.kept[2], (std::vector<std::uint32_t>{21, 22}));  // unknown marker and its tag
  EXPECT_EQ(sr.slotTag[line.slotOf(0, 8)], 10);
  EXPECT_EQ(sr.slotTag[line.slotOf(1, 31)], 19);
  // R12: no markers; codes go to the first subclass that reads them.
  const std::string r12 = "0\nLINE\n8\n0\n5\n1A\n10\n1\n20\n2\n11\n3\n21\n4\n39\n2.5\n";
  dxf::tagizeRange(r12, tags);
  sr = dxf::splitRecord(line, r12, tags, tags.size());
  EXPECT_EQ(sr.slotTag[line.slotOf(0, 8)], 1);
  EXPECT_EQ(sr.slotTag[line.slotOf(1, 21)], 6);
  EXPECT_EQ(sr.slotTag[line.slotOf(1, 30)], -1);
  EXPECT_EQ(sr.kept[0], (std::vector<std::uint32_t>{7}));  // 39, the handle is not kept
  // An R12 record with a marker before its handle (as a laser meter writes it).
  const std::string odd = "0\nLINE\n100\nAcDbEntity\n5\n1A\n8\n0\n";
  dxf::tagizeRange(odd, tags);
  sr = dxf::splitRecord(line, odd, tags, tags.size());
  EXPECT_TRUE(sr.kept[0].empty());
  EXPECT_EQ(sr.slotTag[line.slotOf(0, 8)], 3);
}

}  // namespace
