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

TEST(DxfIo, LineweightsOutsideTheirSetAreNotTaken) {
  const auto line = [](const char* handle, const char* weight) {
    return std::string("0\nLINE\n5\n") + handle + "\n100\nAcDbEntity\n8\n0\n370\n" + weight +
           "\n100\nAcDbLine\n10\n0\n20\n0\n30\n0\n11\n1\n21\n1\n31\n0\n";
  };
  const std::string text = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$CELWEIGHT\n370\n77\n0\nENDSEC\n"
                           "0\nSECTION\n2\nENTITIES\n" +
                           line("A0", "710") + line("A1", "50") + line("A2", "-2") + "0\nENDSEC\n0\nEOF\n";
  AcDbDatabase db(false, true);
  ASSERT_EQ(dxf::loadDxf(&db, text, "weights"), Acad::eOk) << dxf::lastErrorMessage();
  const auto weightOf = [&](Adesk::UInt64 handle) {
    AcDbObjectId id;
    AcDbEntity* e = nullptr;
    EXPECT_EQ(db.getAcDbObjectId(id, false, AcDbHandle(handle)), Acad::eOk);
    EXPECT_EQ(acdbOpenObject(e, id, AcDb::kForRead), Acad::eOk);
    const AcDb::LineWeight w = e->lineWeight();
    e->close();
    return w;
  };
  EXPECT_EQ(weightOf(0xA0), AcDb::kLnWtByLayer);
  EXPECT_EQ(weightOf(0xA1), AcDb::kLnWt050);
  EXPECT_EQ(weightOf(0xA2), AcDb::kLnWtByBlock);
  EXPECT_EQ(db.celweight(), AcDb::kLnWtByLayer);
  // The number the file holds is still what a save writes.
  EXPECT_NE(dxf::saveDxfToString(&db).find("370\n710\n"), std::string::npos);
}

TEST(DxfIo, CurrentSettingsComeFromTheHeader) {
  const auto nameOf = [](AcDbObjectId id) {
    AcDbSymbolTableRecord* rec = nullptr;
    std::wstring name;
    if (acdbOpenObject(rec, id, AcDb::kForRead) != Acad::eOk) return name;
    const ACHAR* n = nullptr;
    rec->getName(n);
    name = n;
    rec->close();
    return name;
  };
  const std::string corpus = std::string(VORA_TEST_DATA_DIR) + "/corpus/";
  auto db = load(corpus + "r2007-acad-example.dxf");
  ASSERT_TRUE(db);
  EXPECT_EQ(nameOf(db->clayer()), L"Tavolo 3");
  EXPECT_EQ(nameOf(db->celtype()), L"ByLayer");
  EXPECT_EQ(db->cecolorIndex(), 256);
  EXPECT_FALSE(db->cmaterial().isNull());

  db = load(corpus + "r2013-qcadpro-flange.dxf");
  ASSERT_TRUE(db);
  EXPECT_EQ(nameOf(db->clayer()), L"defpoints");
  EXPECT_EQ(db->cecolorIndex(), 178);
  db = load(corpus + "r2010-teigha-line.dxf");
  ASSERT_TRUE(db);
  EXPECT_EQ(nameOf(db->celtype()), L"ByBlock");

  // No header at all: what a new drawing uses.
  db = load(corpus + "r12-entities-only-3dfaces.dxf");
  ASSERT_TRUE(db);
  EXPECT_EQ(nameOf(db->clayer()), L"0");
}

}  // namespace

namespace {

// Makes db the working database for the scope (acdbRegApp works on it).
struct WorkingDatabase {
  AcDbDatabase* old;
  explicit WorkingDatabase(AcDbDatabase* db) : old(acdbHostApplicationServices()->workingDatabase()) {
    acdbHostApplicationServices()->setWorkingDatabase(db);
  }
  ~WorkingDatabase() { acdbHostApplicationServices()->setWorkingDatabase(old); }
};

// The shared checkers (dxfcheck.py, dxfdiff.py): $VORA_SHARED_DIR/tools, or
// ../shared/tools next to the repository; empty when neither exists.
std::string sharedTools() {
  const char* env = std::getenv("VORA_SHARED_DIR");
  for (const std::string& dir : {env ? std::string(env) : std::string(),
                                 std::string(VORA_TEST_DATA_DIR) + "/../../../shared"}) {
    if (!dir.empty() && fs::exists(dir + "/tools/dxfdiff.py")) return dir + "/tools/";
  }
  return std::string();
}

bool haveEzdxf() { return std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") == 0; }

std::string sourceDir() { return std::string(VORA_TEST_DATA_DIR) + "/../host/dxf/"; }

AcDbObjectId addLayer(AcDbDatabase* db, const ACHAR* name, Adesk::UInt16 color) {
  AcDbLayerTable* table = nullptr;
  EXPECT_EQ(db->getLayerTable(table, AcDb::kForWrite), Acad::eOk);
  auto* rec = new AcDbLayerTableRecord;
  rec->setName(name);
  AcCmColor c;
  c.setColorIndex(color);
  rec->setColor(c);
  AcDbObjectId id;
  EXPECT_EQ(table->add(id, rec), Acad::eOk);
  rec->close();
  table->close();
  return id;
}

AcDbObjectId addEntity(AcDbDatabase* db, AcDbEntity* e) {
  AcDbBlockTableRecord* ms = nullptr;
  EXPECT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(ms->appendAcDbEntity(id, e), Acad::eOk);
  ms->close();
  return id;
}

// Two 3D polylines with vertices (i + k/2, 2i, i/10) and extended data, the
// second closed, on layer "survey".
void addPolylines(AcDbDatabase* db, AcDbObjectId layer) {
  WorkingDatabase working(db);
  acdbRegApp(L"VORA_TEST");
  for (int k = 0; k < 2; ++k) {
    auto* p = new AcDb3dPolyline;
    p->setLayer(layer);
    if (k == 1) p->setClosed(true);
    const AcDbObjectId pid = addEntity(db, p);
    for (int i = 0; i < 4; ++i) {
      auto* v = new AcDb3dPolylineVertex(AcGePoint3d(i + 0.5 * k, 2.0 * i, 0.1 * i));
      EXPECT_EQ(p->appendVertex(v), Acad::eOk);
      v->close();
    }
    std::wstring text = L"line " + std::to_wstring(k);
    resbuf* xd = acutBuildList(AcDb::kDxfRegAppName, L"VORA_TEST", AcDb::kDxfXdAsciiString, text.c_str(),
                               AcDb::kDxfXdInteger16, k, AcDb::kDxfXdReal, 2.5, 0);
    EXPECT_EQ(p->setXData(xd), Acad::eOk);
    acutRelRb(xd);
    p->close();
    (void)pid;
  }
}

TEST(DxfIo, BuiltDrawingReadsBackHereAndInEzdxf) {
  TempDir tmp;
  const std::string out = tmp.file("built.dxf");
  {
    AcDbDatabase db(true, true);
    const AcDbObjectId survey = addLayer(&db, L"survey", 3);
    const AcDbObjectId design = addLayer(&db, L"design \u00e4\u20ac", 5);
    addPolylines(&db, survey);
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0.1, 0));
    line->setLayer(design);
    addEntity(&db, line);
    line->close();
    AcDbDictionary* nod = nullptr;
    ASSERT_EQ(db.getNamedObjectsDictionary(nod, AcDb::kForWrite), Acad::eOk);
    auto* dict = new AcDbDictionary;
    AcDbObjectId dictId, xId;
    ASSERT_EQ(nod->setAt(L"VORA_DATA", dict, dictId), Acad::eOk);
    nod->close();
    auto* x = new AcDbXrecord;
    resbuf* data = acutBuildList(1, L"tolerance", 40, 0.001, 70, 3, 0);
    x->setFromRbChain(*data);
    acutRelRb(data);
    ASSERT_EQ(dict->setAt(L"settings", x, xId), Acad::eOk);
    x->close();
    dict->close();
    ASSERT_EQ(db.dxfOut(wide(out).c_str()), Acad::eOk) << dxf::lastErrorMessage();
    EXPECT_EQ(vorahost::openObjectCount(&db), 0u);
  }
  // Our own reader.
  auto db = load(out);
  ASSERT_TRUE(db);
  EXPECT_EQ(dxf::drawingVersion(db.get()), "AC1032");
  AcDbBlockTableRecord* ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead), Acad::eOk);
  AcDbBlockTableRecordIterator* it = nullptr;
  ms->newIterator(it);
  int plines = 0;
  for (; !it->done(); it->step()) {
    AcDbEntity* e = nullptr;
    ASSERT_EQ(it->getEntity(e, AcDb::kForRead), Acad::eOk);
    if (auto* p = AcDb3dPolyline::cast(e)) {
      AcDbObjectIterator* vi = p->vertexIterator();
      int i = 0;
      for (; !vi->done(); vi->step(), ++i) {
        AcDb3dPolylineVertex* v = nullptr;
        ASSERT_EQ(acdbOpenObject(v, vi->objectId(), AcDb::kForRead), Acad::eOk);
        EXPECT_EQ(v->position(), AcGePoint3d(i + 0.5 * plines, 2.0 * i, 0.1 * i));
        v->close();
      }
      delete vi;
      EXPECT_EQ(i, 4);
      EXPECT_EQ(p->isClosed(), plines == 1);
      resbuf* xd = p->xData(L"VORA_TEST");
      ASSERT_NE(xd, nullptr);
      ASSERT_NE(xd->rbnext, nullptr);
      EXPECT_EQ(std::wstring(xd->rbnext->resval.rstring), L"line " + std::to_wstring(plines));
      acutRelRb(xd);
      ++plines;
    }
    e->close();
  }
  delete it;
  ms->close();
  EXPECT_EQ(plines, 2);
  if (!haveEzdxf()) GTEST_SKIP() << "ezdxf (Debian python3-ezdxf) is not installed";
  const std::string cmd = "/usr/bin/python3 " + sourceDir() + "ezdxf_built_check.py " + out;
  EXPECT_EQ(std::system(cmd.c_str()), 0) << cmd;
}

// Edits to a loaded drawing: a changed entity is written from its fields, the
// rest stays as read, new objects follow the file's version.
void editAndCheck(const std::string& name, const char* lineHandle) {
  TempDir tmp;
  const std::string in = std::string(VORA_TEST_DATA_DIR) + "/corpus/" + name;
  const std::string out = tmp.file("edited.dxf");
  {
    auto db = load(in);
    ASSERT_TRUE(db);
    AcDbObjectId lineId;
    ASSERT_EQ(db->getAcDbObjectId(lineId, false, AcDbHandle(lineHandle)), Acad::eOk);
    AcDbLine* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, lineId, AcDb::kForWrite), Acad::eOk);
    line->setEndPoint(AcGePoint3d(1.25, -2.5, 0.125));
    line->close();
    const AcDbObjectId layer = addLayer(db.get(), L"survey", 3);
    addPolylines(db.get(), layer);
    ASSERT_EQ(db->dxfOut(wide(out).c_str()), Acad::eOk) << dxf::lastErrorMessage();
  }
  auto db = load(out);
  ASSERT_TRUE(db);
  AcDbObjectId lineId;
  ASSERT_EQ(db->getAcDbObjectId(lineId, false, AcDbHandle(lineHandle)), Acad::eOk);
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, lineId, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->endPoint(), AcGePoint3d(1.25, -2.5, 0.125));
  line->close();
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(db->getLayerTable(layers, AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(layers->has(L"survey"));
  layers->close();
  const std::string tools = sharedTools();
  if (!tools.empty()) {
    const std::string cmd = "/usr/bin/python3 " + tools + "dxfdiff.py --quiet --allow-added --expect-changed " + lineHandle +
                            ",$HANDSEED " + in + " " + out;
    EXPECT_EQ(std::system(cmd.c_str()), 0) << cmd;
  }
  if (!haveEzdxf()) GTEST_SKIP() << "ezdxf (Debian python3-ezdxf) is not installed";
  const std::string cmd = "/usr/bin/python3 " + sourceDir() + "ezdxf_edit_check.py " + in + " " + out;
  EXPECT_EQ(std::system(cmd.c_str()), 0) << cmd;
}

TEST(DxfIo, EditedR12DrawingKeepsItsFormat) { editAndCheck("r12-acad-example-3dpoly.dxf", "8B"); }
TEST(DxfIo, EditedR2018DrawingKeepsItsFormat) { editAndCheck("r2004-ezdxf-text-alignments.dxf", "30"); }

}  // namespace
