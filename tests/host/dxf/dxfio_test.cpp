#include "host/dxf/dxfio.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <memory>
#include <unistd.h>

#include "host/db/internal.h"
#include "host/dxf/corpus.h"
#include "host/dxf/encoding.h"
#include "host/dxf/records.h"
#include "host/dxf/tags.h"
#include "vora/arx.h"
#include "vora/arx/vorahost.h"

namespace dxf = vora_host::dxf;
namespace fs = std::filesystem;
using vora_test::CorpusFile;

namespace {

std::wstring wide(const std::string& s) { return std::wstring(s.begin(), s.end()); }

struct TempDir {
  fs::path path;
  TempDir() {
    path = fs::temp_directory_path() / ("vora_dxfio_" + std::to_string(::getpid()) + "_" +
                                        std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    fs::create_directories(path);
  }
  ~TempDir() { fs::remove_all(path); }
  std::string file(const std::string& name) const { return (path / name).string(); }
};

std::unique_ptr<AcDbDatabase> load(const std::string& path) {
  auto db = std::make_unique<AcDbDatabase>(false, true);
  const Acad::ErrorStatus es = db->dxfIn(wide(path).c_str());
  EXPECT_EQ(es, Acad::eOk) << dxf::lastErrorMessage();
  return es == Acad::eOk ? std::move(db) : nullptr;
}

// Handle -> DXF type of every object that the database would write.
std::map<Adesk::UInt64, std::string> objectsOf(AcDbDatabase* db) {
  std::map<Adesk::UInt64, std::string> out;
  for (const AcDbObjectId& id : vora_host::objectsInOrder(db)) {
    AcDbObject* o = vora_host::peek(id);
    if (o == nullptr || o->isErased() || dxf::isSyntheticObject(o)) continue;
    out[id.handle()] = dxf::dxfTypeOf(o);
  }
  return out;
}

// The tags of a file, with $HANDSEED's value blanked.
std::vector<std::pair<int, std::string>> tagsWithoutHandseed(const std::string& path) {
  const dxf::TagFile f = dxf::readTagFile(path);
  std::vector<std::pair<int, std::string>> out;
  bool seed = false;
  for (std::size_t i = 0; i < f.tags.size(); ++i) {
    const auto v = f.value(i);
    out.emplace_back(f.tags[i].code, seed ? std::string() : std::string(v));
    seed = f.tags[i].code == 9 && v == "$HANDSEED";
  }
  return out;
}

class CorpusRoundTrip : public testing::TestWithParam<CorpusFile> {};

TEST_P(CorpusRoundTrip, SavedWithoutEditsIsTheOriginalApartFromHandseedAndReloadsTheSameObjects) {
  const CorpusFile& c = GetParam();
  TempDir tmp;
  auto db = load(c.path());
  ASSERT_TRUE(db);
  const std::string out = tmp.file("out.dxf");
  ASSERT_EQ(db->dxfOut(wide(out).c_str()), Acad::eOk) << dxf::lastErrorMessage();
  const auto a = tagsWithoutHandseed(c.path());
  const auto b = tagsWithoutHandseed(out);
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) ASSERT_EQ(a[i], b[i]) << "line " << dxf::TagFile::lineOf(i);
  // The handle seed may only grow, and stays above every handle.
  const auto la = dxf::layoutOf(dxf::readTagFile(c.path()));
  const auto lb = dxf::layoutOf(dxf::readTagFile(out));
  EXPECT_GE(lb.handseed, la.handseed);
  auto again = load(out);
  ASSERT_TRUE(again);
  // Objects under the file's own handles keep them; records without one get
  // handles from the seed, which the save moved on, so for those only the
  // types are compared.
  std::uint64_t maxHandle = 0;
  for (const auto& s : la.sections)
    for (const auto& r : s.records) maxHandle = std::max(maxHandle, r.handle);
  auto before = objectsOf(db.get()), after = objectsOf(again.get());
  std::multiset<std::string> typesBefore, typesAfter;
  for (auto* m : {&before, &after}) {
    for (auto it = m->begin(); it != m->end();) {
      (m == &before ? typesBefore : typesAfter).insert(it->second);
      it = it->first > maxHandle ? m->erase(it) : std::next(it);
    }
  }
  EXPECT_EQ(before, after);
  EXPECT_EQ(typesBefore, typesAfter);
  EXPECT_EQ(dxf::drawingVersion(again.get()), dxf::drawingVersion(db.get()));
  if (c.version.rfind("AC", 0) == 0) {
    EXPECT_EQ(dxf::drawingVersion(db.get()), c.version);
  }
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusRoundTrip, testing::ValuesIn(vora_test::goodCorpusFiles()),
                         [](const auto& info) { return vora_test::corpusTestName(info.param.name); });

TEST(DxfIo, MalformedAndBinaryFilesAreRefusedWithLineAndReason) {
  for (const auto& c : vora_test::corpusFiles()) {
    if (c.good()) continue;
    AcDbDatabase db(false, true);
    EXPECT_NE(db.dxfIn(wide(c.path()).c_str()), Acad::eOk) << c.name;
    const std::string& msg = dxf::lastErrorMessage();
    EXPECT_EQ(msg.rfind(c.path() + ": ", 0), 0u) << msg;
    if (c.defectLine) {
      EXPECT_NE(msg.find(": line " + std::to_string(c.defectLine) + ": "), std::string::npos) << msg;
    } else {
      EXPECT_NE(msg.find("binary DXF"), std::string::npos) << msg;
    }
  }
  AcDbDatabase db(false, true);
  EXPECT_EQ(db.dxfIn(L"/nonexistent/x.dxf"), Acad::eFileNotFound);
  // A database with a default drawing is not loaded into.
  AcDbDatabase full(true, true);
  EXPECT_EQ(full.dxfIn(wide(vora_test::goodCorpusFiles().front().path()).c_str()), Acad::eNotApplicable);
}

TEST(DxfIo, FailedSaveLeavesTheOldFile) {
  TempDir tmp;
  auto db = load(std::string(VORA_TEST_DATA_DIR) + "/corpus/r2018-acad-3dfaces.dxf");
  ASSERT_TRUE(db);
  const std::string out = tmp.file("keep.dxf");
  dxf::writeFileAtomically(out, "old");
  // Another version than the drawing's own is refused before anything is written.
  EXPECT_EQ(db->dxfOut(wide(out).c_str(), 16, AcDb::kDHL_1015), Acad::eNotImplementedYet);
  EXPECT_EQ(dxf::readFileBytes(out), "old");
  EXPECT_EQ(db->dxfOut(wide(tmp.file("no/such/dir.dxf")).c_str()), Acad::eFileAccessErr);
  EXPECT_EQ(db->dxfOut(wide(out).c_str(), 16, AcDb::kDHL_1032), Acad::eOk);
  EXPECT_NE(dxf::readFileBytes(out), "old");
}

}  // namespace
