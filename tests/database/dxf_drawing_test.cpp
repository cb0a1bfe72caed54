// Drawings made and read by the drawing utilities and key/value stores,
// through DXF files, checked against ezdxf's reading of the same files.
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/common/utf8.h"
#include "host/db/test_db.h"
#include "vora/vora.h"

namespace {

const char* const kPython = "/usr/bin/python3";

std::string dumpScript() { return std::string(VORA_TEST_DATA_DIR) + "/../database/dxf_dump.py"; }

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// ezdxf's reading of a file, one line per fact (see dxf_dump.py).
std::vector<std::string> ezdxfDump(const std::string& mode, const std::string& file, const std::string& extra = "") {
  const std::string cmd = std::string(kPython) + " '" + dumpScript() + "' " + mode + " '" + file + "' " + extra;
  std::string text;
  FILE* pipe = popen(cmd.c_str(), "r");
  if (pipe == nullptr) return {};
  char buf[4096];
  for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, pipe)) > 0;) text.append(buf, n);
  EXPECT_EQ(pclose(pipe), 0) << cmd;
  return splitLines(text);
}

std::string narrow(const std::wstring& w) {
  std::string s;
  for (const wchar_t c : w) vora_host::appendUtf8(s, static_cast<char32_t>(c));
  return s;
}

std::wstring wide(const std::string& s) {
  std::wstring w;
  for (std::size_t i = 0; i < s.size();) {
    const unsigned char c = static_cast<unsigned char>(s[i]);
    const int len = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
    wchar_t v = len == 1 ? c : len == 2 ? (c & 0x1F) : len == 3 ? (c & 0x0F) : (c & 0x07);
    for (int k = 1; k < len && i + static_cast<std::size_t>(k) < s.size(); ++k) {
      v = static_cast<wchar_t>((v << 6) | (static_cast<unsigned char>(s[i + static_cast<std::size_t>(k)]) & 0x3F));
    }
    w += v;
    i += static_cast<std::size_t>(len);
  }
  return w;
}

std::string num(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

std::string point(const AcGePoint3d& p) { return num(p.x) + " " + num(p.y) + " " + num(p.z); }

std::string handleText(const AcDbHandle& h) {
  ACHAR buf[AcDbHandle::kStrSiz];
  h.getIntoAsciiBuffer(buf);
  return narrow(buf);
}

// One result-buffer item as dxf_dump.py prints it.
std::string item(const resbuf* rb) {
  const int c = rb->restype;
  std::string v;
  if ((c >= 0 && c <= 9) || (c >= 1000 && c <= 1009)) {
    v = narrow(rb->resval.rstring == nullptr ? L"" : rb->resval.rstring);
  } else if ((c >= 10 && c <= 39) || (c >= 1010 && c <= 1039)) {
    v = point(AcGePoint3d(rb->resval.rpoint[0], rb->resval.rpoint[1], rb->resval.rpoint[2]));
  } else if ((c >= 40 && c <= 59) || (c >= 1040 && c <= 1059)) {
    v = num(rb->resval.rreal);
  } else if ((c >= 60 && c <= 79) || c == 1070) {
    v = std::to_string(rb->resval.rint);
  } else {
    v = std::to_string(rb->resval.rlong);
  }
  return "ITEM " + std::to_string(c) + " " + v;
}

void appendItems(std::vector<std::string>& out, resbuf* list) {
  for (const resbuf* rb = list; rb != nullptr; rb = rb->rbnext) out.push_back(item(rb));
  if (list != nullptr) acutRelRb(list);
}

// The same facts as `dxf_dump.py drawing`, read from the working database
// with the module's own functions.
std::vector<std::string> ourDump(AcDbDatabase* db, const std::wstring& prefix) {
  std::vector<std::string> out;
  AcDbLayerTable* layers = nullptr;
  EXPECT_EQ(db->getLayerTable(layers, AcDb::kForRead), Acad::eOk);
  AcDbLayerTableIterator* lit = nullptr;
  layers->newIterator(lit);
  for (; !lit->done(); lit->step()) {
    AcDbLayerTableRecord* rec = nullptr;
    lit->getRecord(rec, AcDb::kForRead);
    const ACHAR* name = nullptr;
    rec->getName(name);
    out.push_back("LAYER " + narrow(name) + " " + std::to_string(rec->color().colorIndex()));
    rec->close();
  }
  delete lit;
  layers->close();

  AcDbObjectIdArray ids;
  vora_getEntities(nullptr, nullptr, nullptr, &ids);
  AcDbHandleArray sortHandles;
  AcDbBlockTableRecord* ms = nullptr;
  EXPECT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead), Acad::eOk);
  AcDbSortentsTable* order = nullptr;
  if (ms->getSortentsTable(order, AcDb::kForRead, false) == Acad::eOk) {
    order->getSortHandles(ids, sortHandles);
    order->close();
  }
  ms->close();

  for (int i = 0; i < ids.length(); ++i) {
    AcDbEntity* ent = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(ent, ids[i], AcDb::kForRead), Acad::eOk);
    ACHAR* layer = ent->layer();
    const std::string type = narrow(ent->isA()->dxfName());
    out.push_back("ENT " + handleText(ids[i].handle()) + " " + type + " " + narrow(layer) + " " +
                  std::to_string(ent->colorIndex()));
    acutDelString(layer);
    AcGePoint3dArray pts;
    bool closed = false;
    if (const AcDbFace* face = AcDbFace::cast(ent)) {
      for (Adesk::UInt16 k = 0; k < 4; ++k) {
        AcGePoint3d p;
        face->getVertexAt(k, p);
        out.push_back("PT " + point(p));
      }
    } else if (vora_ent2ptsp(ent, &pts, nullptr, &closed) > 0) {
      if (type == "POLYLINE") out.push_back(std::string("CLOSED ") + (closed ? "1" : "0"));
      for (const AcGePoint3d& p : pts) out.push_back("PT " + point(p));
    }
    ent->close();

    VoraXdata xdata;
    xdata.Open(ids[i]);
    std::vector<std::wstring> keys;
    xdata.GetKeys(&keys);
    for (const std::wstring& key : keys) {
      out.push_back("XDATA " + narrow(key));
      resbuf* list = nullptr;
      EXPECT_EQ(xdata.GetValue(key.c_str(), &list), 1);
      appendItems(out, list);
    }
    out.push_back("SORT " + handleText(i < sortHandles.length() ? sortHandles[i] : ids[i].handle()));
  }

  VoraXrecord xrec;
  std::vector<std::wstring> top;
  xrec.GetKeys(L"", &top);
  struct Walker {
    std::vector<std::string>& out;
    void walk(const std::wstring& path) {
      VoraXrecord x;
      std::vector<std::wstring> keys;
      const int n = x.GetKeys(path.c_str(), &keys);
      if (n >= 0) {
        out.push_back("DICT " + narrow(path));
        for (const std::wstring& k : keys) walk(path + L"\\" + k);
        return;
      }
      out.push_back("XREC " + narrow(path));
      x.Open(path.c_str());
      resbuf* list = nullptr;
      EXPECT_EQ(x.GetValue(&list), 1) << narrow(path);
      appendItems(out, list);
    }
  } walker{out};
  for (const std::wstring& k : top) {
    if (k.rfind(prefix, 0) == 0) walker.walk(k);
  }
  return out;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string s;
  for (const std::string& l : lines) s += l + "\n";
  return s;
}

// Builds the test drawing in the working database with the module's
// functions.
void buildDrawing(AcDbDatabase* db) {
  ASSERT_FALSE(vora_createLayer(L"Roads", 1).isNull());
  ASSERT_FALSE(vora_createLayer(L"Kerbs", 3).isNull());
  ASSERT_FALSE(vora_createLayer(L"Survey", 256).isNull());
  const AcGePoint3d a(0, 0, 0), b(10.5, 0.25, 1), c(10, 10, 2.75), d(-3.125, 7, 0);
  const AcDbObjectId l1 = vora_createLine(&a, &b, L"Roads", 256);
  const AcDbObjectId l2 = vora_createLine(&b, &c, L"Kerbs", 5);
  const AcDbObjectId l3 = vora_createLine(&c, &d, L"Made on demand", 0);
  const AcDbObjectId f1 = vora_create3DFace(&a, &b, &c, L"Survey", 256);
  const AcDbObjectId f2 = vora_create3DFace(&a, &c, &d, L"Survey", 42);
  AcGePoint3dArray arr;
  arr.append(a);
  arr.append(b);
  arr.append(c);
  const std::vector<AcGePoint3d> vec{d, a, c, b};
  const AcDbObjectId p1 = vora_create3DPolyline(&arr, L"Roads", 256, true);
  const AcDbObjectId p2 = vora_create3DPolylinev(&vec, L"Kerbs", 200, false);
  for (const AcDbObjectId& id : {l1, l2, l3, f1, f2, p1, p2}) ASSERT_FALSE(id.isNull());

  VoraXdata x;
  x.Open(l1);
  ASSERT_EQ(x.SetValue(L"VORA_A", 5), 1);
  ASSERT_EQ(x.AddValue(L"VORA_A", 2.5), 1);
  ASSERT_EQ(x.AddValue(L"VORA_A", L"x y"), 1);
  ASSERT_EQ(x.AddValue(L"VORA_A", static_cast<short>(-7)), 1);
  ASSERT_EQ(x.SetValue(L"VORA_B", AcGePoint3d(1e-5, -2.0 / 3.0, 1e10)), 1);
  ASSERT_EQ(x.AddValue(L"VORA_B", l2.handle()), 1);
  x.Open(f1);
  const std::vector<std::wstring> words{L"één", L"two"};
  ASSERT_EQ(x.SetValue(L"VORA_A", &words), 1);
  AcArray<int> ints;
  ints.append(1);
  ints.append(-2147483647 - 1);
  ASSERT_EQ(x.SetValue(L"VORA_C", &ints), 1);

  VoraXrecord r;
  r.Open(L"VORA_TEST\\Settings\\Units");
  ASSERT_EQ(r.SetValue(L"K", 3), 1);
  ASSERT_EQ(r.AddValue(L"K", 0.1), 1);
  ASSERT_EQ(r.AddValue(L"K", L"metres"), 1);
  ASSERT_EQ(r.AddValue(L"K", AcGePoint3d(1, 2, 3)), 1);
  ASSERT_EQ(r.AddValue(L"K", static_cast<short>(12)), 1);
  AcArray<double> reals;
  reals.append(1.0 / 3.0);
  reals.append(-0.0);
  ASSERT_EQ(r.SetValue(L"VORA_TEST\\Other", L"L", &reals), 1);
  ASSERT_EQ(r.SetValue(L"VORA_TEST", L"Top", L"value"), 1);

  AcDbBlockTableRecord* ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  AcDbSortentsTable* order = nullptr;
  ASSERT_EQ(ms->getSortentsTable(order, AcDb::kForWrite, true), Acad::eOk);
  order->close();
  ms->close();
  AcDbObjectIdArray front;
  front.append(l1);
  ASSERT_EQ(vora_sendFrontBack(&front, true), 1);
  AcDbObjectIdArray back;
  back.append(p2);
  ASSERT_EQ(vora_sendFrontBack(&back, false), 1);
}

std::string tempDxf(const char* name) {
  return (std::filesystem::temp_directory_path() / (std::string("vora_db_") + std::to_string(::getpid()) + name))
      .string();
}

}  // namespace

TEST(DrawingThroughDxf, SavedReloadedAndReadByEzdxfWithTheSameContent) {
  const std::string file = tempDxf("_drawing.dxf");
  std::vector<std::string> made;
  {
    WorkingDatabase db;
    buildDrawing(db.get());
    EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
    made = ourDump(db.get(), L"VORA_");
    ASSERT_EQ(db->dxfOut(wide(file).c_str()), Acad::eOk);
  }
  // Sanity of the dump itself: every kind of fact is there.
  const std::string text = joined(made);
  for (const char* expected : {"LAYER Roads 1\n", "LAYER Survey 7\n", "LAYER Made on demand 7\n", "ITEM 1071 5\n",
                               "ITEM 1040 2.5\n", "ITEM 1000 x y\n", "ITEM 1070 -7\n", "XDATA VORA_C\n",
                               "ITEM 1071 -2147483648\n", "DICT VORA_TEST\\Settings\n",
                               "XREC VORA_TEST\\Settings\\Units\\K\n", "ITEM 90 3\n", "ITEM 70 12\n",
                               "ITEM 10 1 2 3\n", "XREC VORA_TEST\\Top\n", "CLOSED 1\n"}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected;
  }

  EXPECT_EQ(joined(ezdxfDump("drawing", file, "VORA_")), text);

  {
    const std::unique_ptr<AcDbDatabase> loaded(new AcDbDatabase(false, true));
    ASSERT_EQ(loaded->dxfIn(wide(file).c_str()), Acad::eOk);
    AcDbDatabase* previous = acdbHostApplicationServices()->workingDatabase();
    acdbHostApplicationServices()->setWorkingDatabase(loaded.get());
    EXPECT_EQ(joined(ourDump(loaded.get(), L"VORA_")), text);
    const std::vector<std::wstring> roads{L"ROADS"}, app{L"vora_b"};
    EXPECT_EQ(vora_getEntities(nullptr, &roads, nullptr, nullptr), 2);
    EXPECT_EQ(vora_getEntities(nullptr, nullptr, &app, nullptr), 6);
    EXPECT_EQ(vorahost::openObjectCount(loaded.get()), 0u);
    acdbHostApplicationServices()->setWorkingDatabase(previous);
  }
  std::filesystem::remove(file);
}

namespace {

struct Numbers {
  std::vector<double> v;
};

Numbers numbersOf(const std::string& line, std::size_t skip) {
  std::istringstream in(line);
  std::string tok;
  Numbers n;
  for (std::size_t i = 0; in >> tok; ++i) {
    if (i >= skip) n.v.push_back(std::stod(tok));
  }
  return n;
}

// The rest of a "WORD name count" line: the name may hold spaces.
std::pair<std::string, int> nameAndCount(const std::string& line) {
  const std::size_t first = line.find(' ');
  const std::size_t last = line.rfind(' ');
  return {line.substr(first + 1, last - first - 1), std::stoi(line.substr(last + 1))};
}

}  // namespace

class CorpusDrawing : public testing::TestWithParam<const char*> {};

TEST_P(CorpusDrawing, QueriesAndOutlinesAgreeWithEzdxf) {
  const std::string file = std::string(VORA_TEST_DATA_DIR) + "/corpus/" + GetParam();
  const std::unique_ptr<AcDbDatabase> db(new AcDbDatabase(false, true));
  ASSERT_EQ(db->dxfIn(wide(file).c_str()), Acad::eOk);
  AcDbDatabase* previous = acdbHostApplicationServices()->workingDatabase();
  acdbHostApplicationServices()->setWorkingDatabase(db.get());

  const std::vector<std::string> facts = ezdxfDump("corpus", file);
  AcDbObjectIdArray all;
  vora_getEntities(nullptr, nullptr, nullptr, &all);
  ASSERT_FALSE(facts.empty());
  int outlines = 0;
  std::vector<std::wstring> materials;
  int materialCount = -1;
  for (std::size_t i = 0; i < facts.size(); ++i) {
    const std::string& line = facts[i];
    SCOPED_TRACE(line);
    if (line.rfind("TOTAL ", 0) == 0) {
      EXPECT_EQ(vora_getEntities(nullptr, nullptr, nullptr, nullptr), std::stoi(line.substr(6)));
    } else if (line.rfind("CLASS ", 0) == 0) {
      const auto [name, n] = nameAndCount(line);
      const std::vector<std::wstring> filter{wide(name)};
      EXPECT_EQ(vora_getEntities(&filter, nullptr, nullptr, nullptr), n);
    } else if (line.rfind("LAYER ", 0) == 0) {
      const auto [name, n] = nameAndCount(line);
      const std::vector<std::wstring> filter{wide(name)};
      EXPECT_EQ(vora_getEntities(nullptr, &filter, nullptr, nullptr), n);
    } else if (line.rfind("APP ", 0) == 0) {
      const auto [name, n] = nameAndCount(line);
      const std::vector<std::wstring> filter{wide(name)};
      EXPECT_EQ(vora_getEntities(nullptr, nullptr, &filter, nullptr), n);
    } else if (line.rfind("MATERIAL ", 0) == 0) {
      if (materialCount < 0) materialCount = vora_getMaterials(&materials);
      const std::wstring name = wide(line.substr(9));
      EXPECT_FALSE(vora_getMaterial(name.c_str()).isNull());
    } else if (line.rfind("OUTLINE ", 0) == 0) {
      std::istringstream in(line.substr(8));
      int index = 0, n = 0, closedFlag = 0;
      in >> index >> n >> closedFlag;
      ASSERT_LT(index, all.length());
      const AcDbObjectId id = all[index];
      AcGePoint3dArray pts;
      AcGeDoubleArray bulges;
      bool closed = false;
      ASSERT_EQ(vora_ent2pts(id, &pts, &bulges, &closed), n);
      EXPECT_EQ(closed, closedFlag == 1);
      for (int k = 0; k < n; ++k) {
        const Numbers v = numbersOf(facts[i + 1 + static_cast<std::size_t>(k)], 1);
        const AcGePoint3d& p = pts[k];
        const double scale = 1.0 + std::fabs(p.x) + std::fabs(p.y) + std::fabs(p.z);
        EXPECT_NEAR(p.x, v.v[0], 1e-12 * scale) << "vertex " << k;
        EXPECT_NEAR(p.y, v.v[1], 1e-12 * scale) << "vertex " << k;
        EXPECT_NEAR(p.z, v.v[2], 1e-12 * scale) << "vertex " << k;
        EXPECT_NEAR(bulges[k], v.v[3], 1e-12) << "vertex " << k;
      }
      ++outlines;
    }
  }
  if (materialCount >= 0) {
    int listed = 0;
    for (const std::string& line : facts) listed += line.rfind("MATERIAL ", 0) == 0 ? 1 : 0;
    EXPECT_EQ(materialCount, listed);
  }
  RecordProperty("outlines", outlines);
  EXPECT_EQ(vorahost::openObjectCount(db.get()), 0u);
  acdbHostApplicationServices()->setWorkingDatabase(previous);
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusDrawing,
                         testing::Values("r12-acad-example-3dpoly.dxf", "r12-entities-only-3dfaces.dxf",
                                         "r12-leica-disto-s910.dxf", "r12-polylines-ocs-widths.dxf",
                                         "r13-acad-cp932.dxf", "r14-oda-example-proxies.dxf",
                                         "r2000-acad-images.dxf", "r2000-acad-polyface.dxf",
                                         "r2004-acad-materials.dxf", "r2004-acadm-floorplan.dxf",
                                         "r2004-oda-macroman-polylines.dxf", "r2007-acad-example.dxf",
                                         "r2010-teigha-line.dxf"),
                         [](const testing::TestParamInfo<const char*>& info) {
                           std::string name;
                           for (const char* p = info.param; *p != '\0' && *p != '.'; ++p) {
                             name += std::isalnum(static_cast<unsigned char>(*p)) ? *p : '_';
                           }
                           return name;
                         });
