#include "host/dxf/dxfio.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fstream>
#include <optional>
#include <unordered_map>

#include "host/ads/rbkind.h"
#include "host/db/internal.h"
#include "host/dxf/fields.h"
#include "host/dxf/objects.h"
#include "host/dxf/records.h"
#include "host/dxf/tags.h"

namespace vora_host::dxf {

namespace {

thread_local std::string tLastError;

// ---------------------------------------------------------------------------
// Field tables: per class, per subclass marker, the group codes read into the
// object's fields. Everything else in a record is kept and written back.

const SubclassDef kEntitySub{"AcDbEntity", {67, 8, 6, 62, 370, 48, 60, 347}};

const ClassDef kEntityDef("", {kEntitySub});
const ClassDef kLineDef("LINE", {kEntitySub, {"AcDbLine", {39, 10, 20, 30, 11, 21, 31, 210, 220, 230}}});
const ClassDef kCircleDef("CIRCLE", {kEntitySub, {"AcDbCircle", {39, 10, 20, 30, 40, 210, 220, 230}}});
const ClassDef kArcDef("ARC", {kEntitySub, {"AcDbCircle", {39, 10, 20, 30, 40, 210, 220, 230}}, {"AcDbArc", {50, 51}}});
const ClassDef kLwPolylineDef("LWPOLYLINE", {kEntitySub,
                                             {"AcDbPolyline", {90, 70, 43, 38, 39, 210, 220, 230}, {10, 20, 91, 40, 41, 42}}});
const ClassDef kPolyline2dDef("POLYLINE", {kEntitySub,
                                           {"AcDb2dPolyline", {66, 10, 20, 30, 39, 70, 40, 41, 75, 210, 220, 230}}});
const ClassDef kPolyline3dDef("POLYLINE", {kEntitySub, {"AcDb3dPolyline", {66, 10, 20, 30, 70, 75}}});
const ClassDef kVertex2dDef("VERTEX", {kEntitySub, {"AcDbVertex", {}},
                                       {"AcDb2dVertex", {10, 20, 30, 40, 41, 42, 70, 50, 91}}});
const ClassDef kVertex3dDef("VERTEX", {kEntitySub, {"AcDbVertex", {}}, {"AcDb3dPolylineVertex", {10, 20, 30, 70}}});
const ClassDef kSeqendDef("SEQEND", {kEntitySub});
const ClassDef kFaceDef("3DFACE", {kEntitySub,
                                   {"AcDbFace", {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 70}}});
const ClassDef kBlockBeginDef("BLOCK", {kEntitySub, {"AcDbBlockBegin", {2}}});
const ClassDef kBlockEndDef("ENDBLK", {kEntitySub, {"AcDbBlockEnd", {}}});

const ClassDef kTableDef("TABLE", {{"AcDbSymbolTable", {70}}});
const ClassDef kLayerDef("LAYER", {{"AcDbSymbolTableRecord", {}},
                                   {"AcDbLayerTableRecord", {2, 70, 62, 6, 290, 370, 347}}});
const ClassDef kLinetypeDef("LTYPE", {{"AcDbSymbolTableRecord", {}}, {"AcDbLinetypeTableRecord", {2, 70, 3}}});
const ClassDef kRegAppDef("APPID", {{"AcDbSymbolTableRecord", {}}, {"AcDbRegAppTableRecord", {2, 70}}});
const ClassDef kBlockRecordDef("BLOCK_RECORD", {{"AcDbSymbolTableRecord", {}}, {"AcDbBlockTableRecord", {2}}});
const ClassDef kStyleDef("STYLE", {{"AcDbSymbolTableRecord", {}}, {"AcDbTextStyleTableRecord", {2}}});
const ClassDef kDimStyleDef("DIMSTYLE", {{"AcDbSymbolTableRecord", {}}, {"AcDbDimStyleTableRecord", {2}}});
const ClassDef kVportDef("VPORT", {{"AcDbSymbolTableRecord", {}}, {"AcDbViewportTableRecord", {2}}});
const ClassDef kViewDef("VIEW", {{"AcDbSymbolTableRecord", {}}, {"AcDbViewTableRecord", {2}}});
const ClassDef kUcsDef("UCS", {{"AcDbSymbolTableRecord", {}}, {"AcDbUCSTableRecord", {2}}});

const ClassDef kDictionaryDef("DICTIONARY", {{"AcDbDictionary", {280, 281}, {3, 350, 360}}});
const ClassDef kXrecordDef("XRECORD", {{"AcDbXrecord", {280}}});
const ClassDef kMaterialDef("MATERIAL", {{"AcDbMaterial", {1, 2}}});
const ClassDef kSortentsDef("SORTENTSTABLE", {{"AcDbSortentsTable", {330}, {331, 5}}});
const ClassDef kObjectDef("", {});

// Subclass indices used by the readers and writers below.
constexpr std::size_t kEnt = 0;


// ---------------------------------------------------------------------------
// Reading fields of a split record.

struct FieldReader {
  std::string_view bytes;
  const std::vector<Tag>& tags;
  const SplitRecord& sr;
  const ClassDef& def;
  const TextCodec& codec;

  std::int32_t tagOf(std::size_t sub, int code) const {
    const int slot = def.slotOf(sub, code);
    return slot < 0 ? -1 : sr.slotTag[static_cast<std::size_t>(slot)];
  }
  std::string_view value(std::size_t i) const { return bytes.substr(tags[i].offset, tags[i].length); }
  bool has(std::size_t sub, int code) const { return tagOf(sub, code) >= 0; }
  std::string_view str(std::size_t sub, int code) const {
    const auto t = tagOf(sub, code);
    return t < 0 ? std::string_view() : value(static_cast<std::size_t>(t));
  }
  std::wstring text(std::size_t sub, int code) const { return codec.decode(str(sub, code)); }
  double real(std::size_t sub, int code, double dflt = 0.0) const {
    const auto t = tagOf(sub, code);
    double v = dflt;
    if (t >= 0 && !parseDouble(value(static_cast<std::size_t>(t)), v)) v = dflt;
    return v;
  }
  std::int64_t integer(std::size_t sub, int code, std::int64_t dflt = 0) const {
    const auto t = tagOf(sub, code);
    std::int64_t v = dflt;
    if (t >= 0 && !parseInt(value(static_cast<std::size_t>(t)), v)) v = dflt;
    return v;
  }
  std::uint64_t handle(std::size_t sub, int code) const {
    std::uint64_t h = 0;
    const auto t = tagOf(sub, code);
    if (t >= 0) parseHex(value(static_cast<std::size_t>(t)), h);
    return h;
  }
  AcGePoint3d point(std::size_t sub, int code, AcGePoint3d dflt = AcGePoint3d()) const {
    if (!has(sub, code)) return dflt;
    return AcGePoint3d(real(sub, code), real(sub, code + 10), real(sub, code + 20));
  }
  AcGeVector3d normal(std::size_t sub) const {
    if (!has(sub, 210)) return AcGeVector3d(0, 0, 1);
    return AcGeVector3d(real(sub, 210), real(sub, 220), real(sub, 230, 1.0));
  }
};

// ---------------------------------------------------------------------------
// Output.

class Output {
public:
  Output(AtomicFile* file, bool crlf) : file_(file), w_(buf_, crlf) { buf_.reserve(kChunk + 4096); }
  // Into memory: everything stays in the buffer.
  explicit Output(bool crlf) : file_(nullptr), w_(buf_, crlf) {}
  std::string& buffer() { return buf_; }
  TagWriter& w() { return w_; }
  void raw(std::string_view bytes) {
    if (file_ && bytes.size() > kChunk) {
      flush();
      file_->write(bytes);
      return;
    }
    buf_.append(bytes);
    maybeFlush();
  }
  void maybeFlush() {
    if (file_ && buf_.size() >= kChunk) flush();
  }
  void flush() {
    if (!file_) return;
    file_->write(buf_);
    buf_.clear();
  }

private:
  static constexpr std::size_t kChunk = 1 << 20;
  AtomicFile* file_;
  std::string buf_;
  TagWriter w_;
};

// ---------------------------------------------------------------------------
// The loader.

struct PendingEntity {
  AcDbObjectId entity;
  AcDbObjectId block;
};

// Lineweights are a closed set of hundredths of a millimetre plus ByLayer,
// ByBlock and the default. A file may hold any number in their place; only a
// member of the set is taken (the enumeration cannot hold anything else).
bool lineWeightOf(std::int64_t value, AcDb::LineWeight& out) {
  static constexpr int kValid[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,  53, 60,
                                   70, 80, 90, 100, 106, 120, 140, 158, 200, 211, -1, -2, -3};
  for (const int v : kValid)
    if (v == value) {
      out = static_cast<AcDb::LineWeight>(v);
      return true;
    }
  return false;
}

struct Loader {
  Loader(AcDbDatabase* db, DrawingExtra& d) : db_(db), d_(d) {}
  void run();

  void header(const RecordCursor& c);
  void addObject(AcDbObject* obj, const Record& r, std::size_t begin, std::size_t end, AcDbObjectId& id);
  AcDbObject* makeEntity(const RecordCursor& c, const Record& r, AcDbObjectId& id, bool inBlocks);
  AcDbObject* makeObject(const RecordCursor& c, const Record& r, AcDbObjectId& id);
  AcDbObject* makeTableRecord(const RecordCursor& c, const Record& r, AcDbObjectId& id);
  void common(AcDbObject* obj, const Record& r, const RecordCursor& c);
  void entityFields(AcDbEntity* e, const FieldReader& f);
  AcDbObjectId idOf(std::uint64_t handle);
  AcDbObjectId layerNamed(std::string_view name);
  AcDbObjectId linetypeNamed(std::string_view name);
  AcDbObjectId recordNamed(AcDbObjectId table, std::string_view name, AcDbSymbolTableRecord* (*make)(),
                           std::unordered_map<std::string, AcDbObjectId>& cache);
  AcDbObjectId synthesize(AcDbObject* obj);
  void ensureTables();
  void ensureSpaces();
  std::uint64_t modelLayoutBlock_ = 0;
  bool spacesDone_ = false;
  AcDbObjectId blockNamed(std::string_view name);
  bool placeEntity(const RecordCursor& c, const Record& r, AcDbObject* obj, AcDbObjectId id, bool inBlocks);
  void push(Item::Kind kind, std::size_t begin, std::size_t end, AcDbObjectId id = AcDbObjectId());
  resbuf* xdataOf(const RecordCursor& c, std::size_t from);
  void applyCurrentSettings();

  AcDbDatabase* db_;
  DrawingExtra& d_;
  std::uint64_t nextHandle_ = 1;
  std::vector<AcDbObject*> loaded_;
  std::vector<PendingEntity> pending_;
  std::unordered_map<std::string, AcDbObjectId> layers_, linetypes_;
  // Sequences: the entity that VERTEX/ATTRIB/SEQEND records belong to.
  AcDbObjectId seqOwner_;
  int seqKind_ = 0;  // 0 none, 1 2D polyline, 2 3D polyline, 3 kept (INSERT, meshes)
  AcDbObjectId tableId_;
  bool tableKnown_ = false;
  AcDbObjectId blockId_;
  AcDbObjectId blockBegin_;
  // The header's current settings, applied once the tables are loaded.
  std::string clayer_, celtype_;
  std::uint64_t cmaterial_ = 0;
  std::optional<std::int64_t> cecolor_, celweight_;
  std::optional<double> celtscale_;
};

AcDbObjectId Loader::idOf(std::uint64_t handle) {
  AcDbObjectId id;
  if (handle == 0) return id;
  db_->getAcDbObjectId(id, true, AcDbHandle(static_cast<Adesk::UInt64>(handle)));
  return id;
}

void Loader::push(Item::Kind kind, std::size_t begin, std::size_t end, AcDbObjectId id) {
  if (kind == Item::kRaw && !d_.items.empty() && d_.items.back().kind == Item::kRaw &&
      d_.items.back().end == begin) {
    d_.items.back().end = static_cast<std::uint32_t>(end);
    return;
  }
  Item it;
  it.kind = kind;
  it.begin = static_cast<std::uint32_t>(begin);
  it.end = static_cast<std::uint32_t>(end);
  it.id = id;
  d_.items.push_back(it);
}

void Loader::addObject(AcDbObject* obj, const Record& r, std::size_t begin, std::size_t end, AcDbObjectId& id) {
  auto extra = std::make_unique<RecordExtra>();
  extra->begin = static_cast<std::uint32_t>(begin);
  extra->end = static_cast<std::uint32_t>(end);
  obj->setHostExtra(std::move(extra));
  Acad::ErrorStatus es = Acad::eNullHandle;
  if (r.handle != 0) es = addObjectWithHandle(db_, obj, AcDbHandle(static_cast<Adesk::UInt64>(r.handle)), id);
  // No handle, an empty one or one used before: the object gets the next
  // handle of the seed; what is written for it does not change unless it is
  // edited.
  while (es != Acad::eOk) {
    es = addObjectWithHandle(db_, obj, AcDbHandle(static_cast<Adesk::UInt64>(nextHandle_++)), id);
    if (es != Acad::eOk && es != Acad::eHandleExists) break;
  }
  loaded_.push_back(obj);
}

AcDbObjectId Loader::synthesize(AcDbObject* obj) {
  obj->setHostExtra(std::make_unique<SyntheticExtra>());
  AcDbObjectId id;
  Acad::ErrorStatus es;
  do {
    es = addObjectWithHandle(db_, obj, AcDbHandle(static_cast<Adesk::UInt64>(nextHandle_++)), id);
  } while (es == Acad::eHandleExists);
  loaded_.push_back(obj);
  return id;
}

void Loader::common(AcDbObject* obj, const Record& r, const RecordCursor& c) {
  if (r.owner) setOwner(obj, idOf(r.owner));
  if (r.xdictionary) setExtensionDictionary(obj, idOf(r.xdictionary));
  for (auto h : r.reactors)
    if (h) addReactor(obj, idOf(h));
  if (r.xdata < c.tags().size()) {
    resbuf* rb = xdataOf(c, r.xdata);
    if (rb) {
      setXDataRaw(obj, rb);
      acutRelRb(rb);
    }
  }
}

bool isSynthetic(const AcDbObject* o);

// R14 and some exporters spell the layout blocks in capitals; the database
// knows them by their usual spelling.
std::wstring canonicalName(const std::wstring& name) {
  if (foldKey(name.c_str()) == foldKey(L"*Model_Space")) return L"*Model_Space";
  if (foldKey(name.c_str()) == foldKey(L"*Paper_Space")) return L"*Paper_Space";
  return name;
}

ACHAR* newString(const std::wstring& s) {
  auto* out = static_cast<ACHAR*>(std::malloc((s.size() + 1) * sizeof(ACHAR)));
  std::wmemcpy(out, s.c_str(), s.size() + 1);
  return out;
}

// Tags [from, end of tags) as a result-buffer chain, the way xdata and
// xrecords hold them: points take their 20/30 companions, references become
// object ids.
resbuf* tagsToRb(const std::vector<Tag>& tags, std::size_t from, std::size_t to, std::string_view bytes,
                 const TextCodec& codec, Loader* loader, AcDbObjectId (*ref)(Loader*, std::uint64_t)) {
  resbuf* head = nullptr;
  resbuf* tail = nullptr;
  for (std::size_t i = from; i < to; ++i) {
    const int code = tags[i].code;
    const std::string_view v = bytes.substr(tags[i].offset, tags[i].length);
    const RbKind kind = rbKind(code);
    // Codes that carry no value a result buffer can hold (undefined ones)
    // have no place in a chain; a record that keeps them is written as read.
    if (kind == RbKind::Unknown || kind == RbKind::None || kind == RbKind::LongPtr) continue;
    resbuf* rb = acutNewRb(code);
    switch (kind) {
      case RbKind::Real: parseDouble(v, rb->resval.rreal); break;
      case RbKind::Point: {
        parseDouble(v, rb->resval.rpoint[0]);
        for (int k = 1; k <= 2; ++k)
          if (i + 1 < to && tags[i + 1].code == code + 10 * k) {
            ++i;
            parseDouble(bytes.substr(tags[i].offset, tags[i].length), rb->resval.rpoint[k]);
          }
        break;
      }
      case RbKind::Short: {
        std::int64_t n = 0;
        parseInt(v, n);
        rb->resval.rint = static_cast<short>(n);
        break;
      }
      case RbKind::Long: {
        std::int64_t n = 0;
        parseInt(v, n);
        rb->resval.rlong = static_cast<std::int32_t>(n);
        break;
      }
      case RbKind::Int64: {
        std::int64_t n = 0;
        parseInt(v, n);
        rb->resval.mnInt64 = n;
        break;
      }
      case RbKind::Name: {
        std::uint64_t h = 0;
        parseHex(v, h);
        // An ads_name holds the id, as acdbGetAdsName gives it.
        rb->resval.rlname[0] = ref(loader, h).asOldId();
        rb->resval.rlname[1] = 0;
        break;
      }
      case RbKind::Binary: {
        const std::size_t n = v.size() / 2;
        rb->resval.rbinary.clen = static_cast<short>(n);
        rb->resval.rbinary.buf = n ? static_cast<char*>(std::malloc(n)) : nullptr;
        for (std::size_t k = 0; k < n; ++k) {
          unsigned x = 0;
          for (int j = 0; j < 2; ++j) {
            const char ch = v[2 * k + static_cast<std::size_t>(j)];
            x = x * 16 + static_cast<unsigned>(ch <= '9' ? ch - '0' : (ch | 0x20) - 'a' + 10);
          }
          rb->resval.rbinary.buf[k] = static_cast<char>(x);
        }
        break;
      }
      default: rb->resval.rstring = newString(codec.decode(v)); break;
    }
    if (tail) tail->rbnext = rb;
    else head = rb;
    tail = rb;
  }
  return head;
}

AcDbObjectId refOf(Loader* l, std::uint64_t h);

resbuf* Loader::xdataOf(const RecordCursor& c, std::size_t from) {
  return tagsToRb(c.tags(), from, c.tags().size(), std::string_view(d_.bytes), *d_.codec, this, &refOf);
}

void Loader::entityFields(AcDbEntity* e, const FieldReader& f) {
  if (f.has(kEnt, 8)) e->setLayer(layerNamed(f.str(kEnt, 8)), false);
  else e->setLayer(layerNamed("0"), false);
  if (f.has(kEnt, 6)) {
    const AcDbObjectId lt = linetypeNamed(f.str(kEnt, 6));
    if (!lt.isNull()) e->setLinetype(lt, false);
  }
  if (f.has(kEnt, 62)) e->setColorIndex(static_cast<Adesk::UInt16>(f.integer(kEnt, 62, 256)), false);
  if (AcDb::LineWeight w; f.has(kEnt, 370) && lineWeightOf(f.integer(kEnt, 370, -1), w)) e->setLineWeight(w, false);
  if (f.has(kEnt, 48)) e->setLinetypeScale(f.real(kEnt, 48, 1.0), false);
  if (f.has(kEnt, 60)) e->setVisibility(f.integer(kEnt, 60) ? AcDb::kInvisible : AcDb::kVisible, false);
  if (f.has(kEnt, 347)) {
    const AcDbObjectId m = idOf(f.handle(kEnt, 347));
    if (!m.isNull()) e->setMaterial(m, false);
  }
}

AcDbObjectId Loader::recordNamed(AcDbObjectId table, std::string_view name, AcDbSymbolTableRecord* (*make)(),
                                 std::unordered_map<std::string, AcDbObjectId>& cache) {
  std::string key(name);
  auto it = cache.find(key);
  if (it != cache.end()) return it->second;
  const std::wstring wname = d_.codec->decode(name);
  AcDbObjectId id = findRecord(table, wname.c_str());
  if (id.isNull()) {
    auto* t = AcDbSymbolTable::cast(peek(table));
    if (t == nullptr) return id;
    AcDbSymbolTableRecord* rec = make();
    rec->setName(canonicalName(wname).c_str());
    id = synthesize(rec);
    setOwner(rec, table);
    appendRecord(t, id);
  }
  cache.emplace(std::move(key), id);
  return id;
}

AcDbObjectId Loader::layerNamed(std::string_view name) {
  return recordNamed(db_->layerTableId(), name, [] { return static_cast<AcDbSymbolTableRecord*>(new AcDbLayerTableRecord); },
                     layers_);
}

AcDbObjectId Loader::linetypeNamed(std::string_view name) {
  return recordNamed(db_->linetypeTableId(), name,
                     [] { return static_cast<AcDbSymbolTableRecord*>(new AcDbLinetypeTableRecord); }, linetypes_);
}

AcDbObjectId Loader::blockNamed(std::string_view name) {
  std::unordered_map<std::string, AcDbObjectId> none;
  return recordNamed(db_->blockTableId(), name,
                     [] { return static_cast<AcDbSymbolTableRecord*>(new AcDbBlockTableRecord); }, none);
}

// Symbol tables that a drawing must have and a file may lack (R12 has no
// block records, some exports have no TABLES at all).
void Loader::ensureTables() {
  struct Need {
    Root root;
    AcDbSymbolTable* (*make)();
  } needs[] = {
      {Root::BlockTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbBlockTable); }},
      {Root::LayerTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbLayerTable); }},
      {Root::LinetypeTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbLinetypeTable); }},
      {Root::RegAppTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbRegAppTable); }},
      {Root::TextStyleTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbTextStyleTable); }},
      {Root::DimStyleTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbDimStyleTable); }},
      {Root::ViewportTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbViewportTable); }},
      {Root::ViewTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbViewTable); }},
      {Root::UCSTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbUCSTable); }},
  };
  for (const auto& n : needs) {
    const AcDbObjectId id = root(db_, n.root);
    if (!id.isNull() && peek(id) != nullptr) continue;
    setRoot(db_, n.root, synthesize(n.make()));
  }
  layerNamed("0");
}

AcDbObjectId refOf(Loader* l, std::uint64_t h) { return l->idOf(h); }

// Model and paper space, once BLOCKS has been read (its BLOCK records may be
// what names them).
void Loader::ensureSpaces() {
  if (spacesDone_) return;
  spacesDone_ = true;
  if (db_->modelSpaceId().isNull()) blockNamed("*Model_Space");
  if (db_->paperSpaceId().isNull()) blockNamed("*Paper_Space");
  d_.paperSpace = db_->paperSpaceId();
}

double toRadians(double deg) { return deg * (3.14159265358979323846 / 180.0); }
double toDegrees(double rad) { return rad * (180.0 / 3.14159265358979323846); }

std::int64_t flagsOf(const RecordCursor& c) {
  for (std::size_t i = 1; i < c.tags().size(); ++i)
    if (c.tags()[i].code == 70) {
      std::int64_t v = 0;
      parseInt(c.value(i), v);
      return v;
    }
  return 0;
}

AcDbObject* Loader::makeEntity(const RecordCursor& c, const Record& r, AcDbObjectId& id, bool inBlocks) {
  const std::string_view type = c.type();
  const std::string_view bytes(d_.bytes);
  auto fieldsFor = [&](const ClassDef& def, AcDbEntity* e, auto&& fill) {
    const SplitRecord sr = splitRecord(def, bytes, c.tags(), r.xdata);
    const FieldReader f{bytes, c.tags(), sr, def, *d_.codec};
    entityFields(e, f);
    fill(f);
  };
  AcDbEntity* e = nullptr;
  int startSeq = -1;  // the sequence this record opens
  bool follower = false;
  if (type == "LINE") {
    auto* l = new AcDbLine;
    fieldsFor(kLineDef, l, [&](const FieldReader& f) {
      l->setThickness(f.real(1, 39));
      l->setStartPoint(f.point(1, 10));
      l->setEndPoint(f.point(1, 11));
      l->setNormal(f.normal(1));
    });
    e = l;
  } else if (type == "CIRCLE") {
    auto* ci = new AcDbCircle;
    fieldsFor(kCircleDef, ci, [&](const FieldReader& f) {
      ci->setThickness(f.real(1, 39));
      ci->setCenter(f.point(1, 10));
      ci->setRadius(f.real(1, 40));
      ci->setNormal(f.normal(1));
    });
    e = ci;
  } else if (type == "ARC") {
    auto* a = new AcDbArc;
    fieldsFor(kArcDef, a, [&](const FieldReader& f) {
      a->setThickness(f.real(1, 39));
      a->setCenter(f.point(1, 10));
      a->setRadius(f.real(1, 40));
      a->setNormal(f.normal(1));
      a->setStartAngle(toRadians(f.real(2, 50)));
      a->setEndAngle(toRadians(f.real(2, 51)));
    });
    e = a;
  } else if (type == "LWPOLYLINE") {
    auto* p = new AcDbPolyline;
    fieldsFor(kLwPolylineDef, p, [&](const FieldReader& f) {
      const std::int64_t flags = f.integer(1, 70);
      p->setClosed((flags & 1) != 0);
      p->setPlinegen((flags & 128) != 0);
      p->setElevation(f.real(1, 38));
      p->setThickness(f.real(1, 39));
      p->setNormal(f.normal(1));
      int n = -1;
      double x = 0;
      for (std::uint32_t t : f.sr.repeated[1]) {
        const int code = f.tags[t].code;
        double v = 0;
        if (code == 10) {
          parseDouble(f.value(t), x);
        } else if (code == 20) {
          parseDouble(f.value(t), v);
          ++n;
          p->addVertexAt(static_cast<unsigned>(n), AcGePoint2d(x, v), 0.0, 0.0, 0.0);
        } else if (n >= 0) {
          const auto u = static_cast<unsigned>(n);
          if (code == 91) {
            std::int64_t idv = 0;
            parseInt(f.value(t), idv);
            p->setVertexIdentifierAt(u, static_cast<Adesk::Int32>(idv));
            continue;
          }
          parseDouble(f.value(t), v);
          double sw = 0, ew = 0;
          p->getWidthsAt(u, sw, ew);
          if (code == 40) p->setWidthsAt(u, v, ew);
          else if (code == 41) p->setWidthsAt(u, sw, v);
          else if (code == 42) p->setBulgeAt(u, v);
        }
      }
      if (f.has(1, 43)) p->setConstantWidth(f.real(1, 43));
    });
    e = p;
  } else if (type == "3DFACE") {
    auto* fc = new AcDbFace;
    fieldsFor(kFaceDef, fc, [&](const FieldReader& f) {
      for (Adesk::UInt16 k = 0; k < 4; ++k) fc->setVertexAt(k, f.point(1, 10 + k));
      const std::int64_t inv = f.integer(1, 70);
      for (Adesk::UInt16 k = 0; k < 4; ++k)
        if (inv & (1 << k)) fc->makeEdgeInvisibleAt(k);
    });
    e = fc;
  } else if (type == "POLYLINE") {
    const std::int64_t flags = flagsOf(c);
    if (flags & 8) {
      auto* p = new AcDb3dPolyline;
      fieldsFor(kPolyline3dDef, p, [&](const FieldReader& f) {
        const std::int64_t curve = f.integer(1, 75);
        if (flags & 4) p->setPolyType(curve == 5 ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly);
        p->setClosed((flags & 1) != 0);
      });
      e = p;
      startSeq = 2;
    } else if (flags & (16 | 64)) {
      e = nullptr;  // polygon and polyface meshes are kept as they are
      startSeq = 3;
    } else {
      auto* p = new AcDb2dPolyline;
      fieldsFor(kPolyline2dDef, p, [&](const FieldReader& f) {
        const std::int64_t curve = f.integer(1, 75);
        if (flags & 4) p->setPolyType(curve == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly);
        else if (flags & 2) p->setPolyType(AcDb::k2dFitCurvePoly);
        p->setClosed((flags & 1) != 0);
        if (flags & 128) p->setLinetypeGenerationOn();
        p->setElevation(f.real(1, 30));
        p->setThickness(f.real(1, 39));
        p->setDefaultStartWidth(f.real(1, 40));
        p->setDefaultEndWidth(f.real(1, 41));
        p->setNormal(f.normal(1));
      });
      e = p;
      startSeq = 1;
    }
  } else if (type == "VERTEX" && seqKind_ == 1) {
    auto* v = new AcDb2dVertex;
    fieldsFor(kVertex2dDef, v, [&](const FieldReader& f) {
      const std::int64_t flags = f.integer(2, 70);
      v->setPosition(f.point(2, 10));
      v->setStartWidth(f.real(2, 40));
      v->setEndWidth(f.real(2, 41));
      v->setBulge(f.real(2, 42));
      if (flags & 2) {
        v->useTangent();
        v->setTangent(toRadians(f.real(2, 50)));
      }
      v->setVertexIdentifier(static_cast<Adesk::Int32>(f.integer(2, 91)));
      v->setVertexType(flags & 16 ? AcDb::k2dSplineCtlVertex
                                  : flags & 8 ? AcDb::k2dSplineFitVertex
                                              : flags & 1 ? AcDb::k2dCurveFitVertex : AcDb::k2dVertex);
    });
    e = v;
    follower = true;
  } else if (type == "VERTEX" && seqKind_ == 2) {
    auto* v = new AcDb3dPolylineVertex;
    fieldsFor(kVertex3dDef, v, [&](const FieldReader& f) {
      const std::int64_t flags = f.integer(2, 70);
      v->setPosition(f.point(2, 10));
      v->setVertexType(flags & 16 ? AcDb::k3dControlVertex : flags & 8 ? AcDb::k3dFitVertex : AcDb::k3dSimpleVertex);
    });
    e = v;
    follower = true;
  } else if (type == "SEQEND" && (seqKind_ == 1 || seqKind_ == 2)) {
    auto* s = new AcDbSequenceEnd;
    fieldsFor(kSeqendDef, s, [](const FieldReader&) {});
    e = s;
    follower = true;
  } else if (type == "BLOCK" || type == "ENDBLK") {
    AcDbEntity* b = type == "BLOCK" ? static_cast<AcDbEntity*>(new AcDbBlockBegin) : new AcDbBlockEnd;
    fieldsFor(type == "BLOCK" ? kBlockBeginDef : kBlockEndDef, b, [](const FieldReader&) {});
    e = b;
  }
  if (e == nullptr) {
    auto* u = new VoraUnknownEntity(unknownClass(std::string(type), true), std::string(type));
    fieldsFor(kEntityDef, u, [](const FieldReader&) {});
    e = u;
    if (type == "INSERT") {
      for (std::size_t i = 1; i < c.tags().size(); ++i)
        if (c.tags()[i].code == 66 && c.value(i).find('1') != std::string_view::npos) startSeq = 3;
    }
    if (seqKind_ == 3 && (type == "ATTRIB" || type == "VERTEX" || type == "SEQEND")) follower = true;
  }
  addObject(e, r, c.begin(), c.end(), id);
  common(e, r, c);
  if (inBlocks) static_cast<RecordExtra*>(e->hostExtra())->inBlocks = true;
  if (follower && !seqOwner_.isNull()) {
    if (!r.owner) setOwner(e, seqOwner_);
    AcDbObject* owner = peek(seqOwner_);
    if (seqKind_ == 3) {
      if (auto* u = dynamic_cast<VoraUnknownEntity*>(owner)) u->followers().push_back(id);
    } else if (auto* oe = AcDbEntity::cast(owner)) {
      if (type == "SEQEND") setSeqEnd(oe, id);
      else appendVertex(oe, id);
    }
    if (type == "SEQEND") {
      seqKind_ = 0;
      seqOwner_ = AcDbObjectId();
    }
    return e;
  }
  if (startSeq > 0) {
    seqKind_ = startSeq;
    seqOwner_ = id;
  } else if (type != "SEQEND") {
    seqKind_ = 0;
    seqOwner_ = AcDbObjectId();
  }
  return e;
}

bool Loader::placeEntity(const RecordCursor& c, const Record& r, AcDbObject* obj, AcDbObjectId id, bool inBlocks) {
  (void)obj;
  // Followers (vertices, attributes, SEQEND) belong to their entity, not to a block.
  const std::string_view type = c.type();
  if ((type == "VERTEX" || type == "SEQEND" || type == "ATTRIB") && !seqOwner_.isNull()) return false;
  if (type == "SEQEND") return false;
  AcDbObjectId block;
  bool paper = false;
  for (std::size_t i = 1; i < c.tags().size(); ++i)
    if (c.tags()[i].code == 67) {
      std::int64_t v = 0;
      parseInt(c.value(i), v);
      paper = v == 1;
      break;
    }
  if (inBlocks) {
    block = blockId_;
  } else if (r.owner) {
    block = idOf(r.owner);
    // ENTITIES holds model space and the active paper space only: an owner
    // of another name there is model space under a name of the writer's.
    if (!paper && block != db_->modelSpaceId() && block != db_->paperSpaceId() && modelLayoutBlock_ == 0)
      modelLayoutBlock_ = r.owner;
  } else {
    block = paper ? db_->paperSpaceId() : db_->modelSpaceId();
  }
  pending_.push_back({id, block});
  return true;
}

AcDbObject* Loader::makeTableRecord(const RecordCursor& c, const Record& r, AcDbObjectId& id) {
  const std::string_view type = c.type();
  const std::string_view bytes(d_.bytes);
  AcDbSymbolTableRecord* rec = nullptr;
  const ClassDef* def = nullptr;
  if (type == "LAYER") rec = new AcDbLayerTableRecord, def = &kLayerDef;
  else if (type == "LTYPE") rec = new AcDbLinetypeTableRecord, def = &kLinetypeDef;
  else if (type == "APPID") rec = new AcDbRegAppTableRecord, def = &kRegAppDef;
  else if (type == "BLOCK_RECORD") rec = new AcDbBlockTableRecord, def = &kBlockRecordDef;
  else if (type == "STYLE") rec = new AcDbTextStyleTableRecord, def = &kStyleDef;
  else if (type == "DIMSTYLE") rec = new AcDbDimStyleTableRecord, def = &kDimStyleDef;
  else if (type == "VPORT") rec = new AcDbViewportTableRecord, def = &kVportDef;
  else if (type == "VIEW") rec = new AcDbViewTableRecord, def = &kViewDef;
  else if (type == "UCS") rec = new AcDbUCSTableRecord, def = &kUcsDef;
  AcDbObject* obj = rec;
  if (rec != nullptr && tableKnown_) {
    const SplitRecord sr = splitRecord(*def, bytes, c.tags(), r.xdata, type == "DIMSTYLE" ? 105 : 5);
    const FieldReader f{bytes, c.tags(), sr, *def, *d_.codec};
    rec->setName(canonicalName(f.text(1, 2)).c_str());
    if (auto* l = AcDbLayerTableRecord::cast(rec)) {
      const std::int64_t flags = f.integer(1, 70);
      l->setIsFrozen((flags & 1) != 0);
      l->setVPDFLT((flags & 2) != 0);
      l->setIsLocked((flags & 4) != 0);
      const std::int64_t color = f.integer(1, 62, 7);
      AcCmColor cc;
      cc.setColorIndex(static_cast<Adesk::UInt16>(color < 0 ? -color : color));
      l->setColor(cc);
      l->setIsOff(color < 0);
      if (f.has(1, 6)) l->setLinetypeObjectId(linetypeNamed(f.str(1, 6)));
      if (f.has(1, 290)) l->setIsPlottable(f.integer(1, 290, 1) != 0);
      if (AcDb::LineWeight w; f.has(1, 370) && lineWeightOf(f.integer(1, 370, -3), w)) l->setLineWeight(w);
      if (f.has(1, 347)) l->setMaterialId(idOf(f.handle(1, 347)));
    } else if (auto* lt = AcDbLinetypeTableRecord::cast(rec)) {
      lt->setComments(f.text(1, 3).c_str());
    }
  } else {
    delete rec;
    obj = new VoraUnknownObject(unknownClass(std::string(type), false), std::string(type));
  }
  addObject(obj, r, c.begin(), c.end(), id);
  common(obj, r, c);
  if (tableKnown_) {
    if (auto* t = AcDbSymbolTable::cast(peek(tableId_))) appendRecord(t, id);
    if (!r.owner) setOwner(obj, tableId_);
  }
  return obj;
}

AcDbObject* Loader::makeObject(const RecordCursor& c, const Record& r, AcDbObjectId& id) {
  const std::string_view type = c.type();
  const std::string_view bytes(d_.bytes);
  AcDbObject* obj = nullptr;
  if (type == "DICTIONARY") {
    auto* dict = new AcDbDictionary;
    addObject(dict, r, c.begin(), c.end(), id);
    const SplitRecord sr = splitRecord(kDictionaryDef, bytes, c.tags(), r.xdata);
    const FieldReader f{bytes, c.tags(), sr, kDictionaryDef, *d_.codec};
    if (f.integer(0, 280) == 1) dict->setTreatElementsAsHard(true);
    std::wstring key;
    for (std::uint32_t t : sr.repeated[0]) {
      if (c.tags()[t].code == 3) {
        key = d_.codec->decode(c.value(t));
      } else {
        std::uint64_t h = 0;
        parseHex(c.value(t), h);
        appendDictEntry(dict, key.c_str(), idOf(h));
      }
    }
    obj = dict;
  } else if (type == "XRECORD") {
    auto* x = new AcDbXrecord;
    const SplitRecord sr = splitRecord(kXrecordDef, bytes, c.tags(), r.xdata);
    const auto& data = sr.kept[0];
    if (!data.empty()) {
      // The data of an xrecord is one run of tags after its marker and 280.
      resbuf* rb = tagsToRb(c.tags(), data.front(), data.back() + 1, bytes, *d_.codec, this, &refOf);
      if (rb) {
        x->setFromRbChain(*rb);
        acutRelRb(rb);
      }
    }
    addObject(x, r, c.begin(), c.end(), id);
    obj = x;
  } else if (type == "MATERIAL") {
    auto* m = new AcDbMaterial;
    const SplitRecord sr = splitRecord(kMaterialDef, bytes, c.tags(), r.xdata);
    const FieldReader f{bytes, c.tags(), sr, kMaterialDef, *d_.codec};
    m->setName(f.text(0, 1).c_str());
    if (f.has(0, 2)) m->setDescription(f.text(0, 2).c_str());
    addObject(m, r, c.begin(), c.end(), id);
    obj = m;
  } else if (type == "SORTENTSTABLE") {
    auto* s = new AcDbSortentsTable;
    const SplitRecord sr = splitRecord(kSortentsDef, bytes, c.tags(), r.xdata);
    const FieldReader f{bytes, c.tags(), sr, kSortentsDef, *d_.codec};
    addObject(s, r, c.begin(), c.end(), id);
    Access::setOwner(s, AcDbObjectId());
    if (f.has(0, 330)) s->setBlockId(idOf(f.handle(0, 330)));
    auto& pairs = Access::sortHandles(s);
    AcDbObjectId ent;
    for (std::uint32_t t : sr.repeated[0]) {
      std::uint64_t h = 0;
      parseHex(c.value(t), h);
      if (c.tags()[t].code == 331) ent = idOf(h);
      else pairs.emplace_back(ent, AcDbHandle(static_cast<Adesk::UInt64>(h)));
    }
    obj = s;
  } else {
    obj = new VoraUnknownObject(unknownClass(std::string(type), false), std::string(type));
    addObject(obj, r, c.begin(), c.end(), id);
    if (type == "LAYOUT") {
      // The layout named "Model" tells which block record is model space.
      bool inLayout = false;
      std::string_view name;
      std::uint64_t block = 0;
      for (std::size_t i = 1; i < c.tags().size(); ++i) {
        const int code = c.tags()[i].code;
        if (code == 100) inLayout = c.value(i) == "AcDbLayout";
        else if (inLayout && code == 1) name = c.value(i);
        else if (inLayout && code == 330 && block == 0) parseHex(c.value(i), block);
      }
      if (name == "Model" && block) modelLayoutBlock_ = block;  // the layout has the last word
    }
  }
  common(obj, r, c);
  return obj;
}

void Loader::header(const RecordCursor& c) {
  std::string_view var;
  for (std::size_t i = 2; i < c.tags().size(); ++i) {
    const int code = c.tags()[i].code;
    if (code == 9) {
      var = c.value(i);
      continue;
    }
    if (var == "$ACADVER" && code == 1) {
      d_.acadver = c.value(i);
    } else if (var == "$DWGCODEPAGE" && code == 3) {
      d_.codec = std::make_unique<TextCodec>(d_.acadver, c.value(i));
    } else if (var == "$HANDSEED" && code == 5) {
      d_.hasHandseed = true;
      d_.handseedBegin = c.tags()[i].offset;
      d_.handseedEnd = c.tags()[i].offset + c.tags()[i].length;
    } else if (var == "$CLAYER" && code == 8) {
      clayer_ = c.value(i);
    } else if (var == "$CELTYPE" && code == 6) {
      celtype_ = c.value(i);
    } else if (var == "$CMATERIAL" && code == 347) {
      parseHex(c.value(i), cmaterial_);
    } else if (std::int64_t n = 0; var == "$CECOLOR" && code == 62) {
      if (parseInt(c.value(i), n)) cecolor_ = n;
    } else if (var == "$CELWEIGHT" && code == 370) {
      if (parseInt(c.value(i), n)) celweight_ = n;
    } else if (double x = 0.0; var == "$CELTSCALE" && code == 40) {
      if (parseDouble(c.value(i), x)) celtscale_ = x;
    } else if (var == "$HANDLING" && code == 70) {
      std::int64_t v = 1;
      parseInt(c.value(i), v);
      d_.handles = v != 0;
    }
  }
}

void Loader::run() {
  std::uint64_t maxHandle = 0;
  {
    // Strict check of the whole file first; the tags are not kept, the
    // records are read again one at a time below.
    TagFile f;
    f.bytes.swap(d_.bytes);
    struct Restore {
      TagFile& f;
      std::string& b;
      ~Restore() { b.swap(f.bytes); }
    } restore{f, d_.bytes};
    tagize(f, false);
    d_.crlf = f.crlf;
    maxHandle = f.maxHandle;
  }
  const std::string_view bytes(d_.bytes);
  const std::size_t start = bytes.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
  if (start) push(Item::kRaw, 0, start);

  // The header comes first: version, code page and handle seed, before any
  // object is made. New handles stay clear of every handle in the file.
  std::uint64_t seed = 0;
  {
    RecordCursor c(bytes, start);
    while (c.next()) {
      if (c.tags()[0].code == 999) continue;
      if (c.type() == "SECTION" && c.tags().size() > 1 && c.value(1) == "HEADER") {
        header(c);
        if (d_.hasHandseed) parseHex(bytes.substr(d_.handseedBegin, d_.handseedEnd - d_.handseedBegin), seed);
      }
      break;
    }
  }
  if (d_.acadver.empty()) d_.acadver = "AC1009";
  d_.version = versionNumber(d_.acadver);
  if (d_.version == 0) d_.version = 1009;
  if (!d_.codec || (isUtf8Version(d_.acadver) != d_.codec->utf8()))
    d_.codec = std::make_unique<TextCodec>(d_.acadver, d_.codec ? std::string_view() : std::string_view());
  nextHandle_ = std::max(seed, maxHandle + 1);
  if (nextHandle_ == 0) nextHandle_ = 1;

  std::string section;
  bool tablesDone = false;
  RecordCursor c(bytes, start);
  while (c.next()) {
    const std::string_view type = c.type();
    if (c.tags()[0].code != 0) {  // comments between sections
      push(Item::kRaw, c.begin(), c.end());
      continue;
    }
    if (type == "SECTION") {
      section = c.tags().size() > 1 ? std::string(c.value(1)) : std::string();
      if (section != "HEADER" && section != "CLASSES" && section != "TABLES" && !tablesDone) {
        ensureTables();
        tablesDone = true;
      }
      if (section == "ENTITIES" || section == "OBJECTS") ensureSpaces();
      push(section == "HEADER" ? Item::kHeader : Item::kRaw, c.begin(), c.end());
      continue;
    }
    if (type == "ENDSEC") {
      if (section == "ENTITIES") push(Item::kNewEntities, 0, 0);
      if (section == "OBJECTS") push(Item::kNewObjects, 0, 0);
      push(Item::kRaw, c.begin(), c.end());
      section.clear();
      continue;
    }
    if (type == "EOF") {
      push(Item::kRaw, c.begin(), bytes.size());
      break;
    }
    const Record r = describeRecord(bytes, c.tags());
    AcDbObjectId id;
    if (section == "TABLES") {
      if (type == "TABLE") {
        const std::string_view name = c.tags().size() > 1 ? c.value(1) : std::string_view();
        struct {
          std::string_view name;
          Root root;
          AcDbSymbolTable* (*make)();
        } const tables[] = {
            {"BLOCK_RECORD", Root::BlockTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbBlockTable); }},
            {"LAYER", Root::LayerTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbLayerTable); }},
            {"LTYPE", Root::LinetypeTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbLinetypeTable); }},
            {"APPID", Root::RegAppTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbRegAppTable); }},
            {"STYLE", Root::TextStyleTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbTextStyleTable); }},
            {"DIMSTYLE", Root::DimStyleTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbDimStyleTable); }},
            {"VPORT", Root::ViewportTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbViewportTable); }},
            {"VIEW", Root::ViewTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbViewTable); }},
            {"UCS", Root::UCSTable, [] { return static_cast<AcDbSymbolTable*>(new AcDbUCSTable); }},
        };
        AcDbObject* obj = nullptr;
        tableKnown_ = false;
        for (const auto& t : tables)
          if (t.name == name && root(db_, t.root).isNull()) {
            obj = t.make();
            tableKnown_ = true;
            addObject(obj, r, c.begin(), c.end(), id);
            setRoot(db_, t.root, id);
            break;
          }
        if (obj == nullptr) {
          obj = new VoraUnknownObject(unknownClass("TABLE", false), "TABLE");
          addObject(obj, r, c.begin(), c.end(), id);
        }
        common(obj, r, c);
        tableId_ = id;
        push(Item::kObject, 0, 0, id);
      } else if (type == "ENDTAB") {
        if (tableKnown_) push(Item::kTableRecords, 0, 0, tableId_);
        push(Item::kRaw, c.begin(), c.end());
        tableKnown_ = false;
      } else {
        makeTableRecord(c, r, id);
        if (!tableKnown_) push(Item::kObject, 0, 0, id);
      }
      continue;
    }
    if (section == "BLOCKS") {
      if (type == "BLOCK") {
        AcDbObjectId btr;
        if (r.owner) btr = idOf(r.owner);
        std::string_view name;
        for (std::size_t i = 1; i < c.tags().size(); ++i)
          if (c.tags()[i].code == 2) {
            name = c.value(i);
            break;
          }
        if (btr.isNull() || peek(btr) == nullptr) {
          btr = blockNamed(name);
        } else {
          // Some writers give the layout blocks' records other names (an
          // R14 export names *MODEL_SPACE's record "*U"); the BLOCK says which
          // it is.
          const std::wstring wname = canonicalName(d_.codec->decode(name));
          AcDbSymbolTableRecord* rec = nullptr;
          if ((wname == L"*Model_Space" || wname == L"*Paper_Space") && db_->modelSpaceId() != btr &&
              db_->paperSpaceId() != btr && acdbOpenObject(rec, btr, AcDb::kForWrite) == Acad::eOk) {
            rec->setName(wname.c_str());
            rec->close();
          }
        }
        blockId_ = btr;
        AcDbObject* b = makeEntity(c, r, id, true);
        if (!r.owner) setOwner(b, btr);
        blockBegin_ = id;
        push(Item::kObject, 0, 0, id);
      } else if (type == "ENDBLK") {
        AcDbObject* b = makeEntity(c, r, id, true);
        if (!r.owner) setOwner(b, blockId_);
        if (auto* btr = AcDbBlockTableRecord::cast(peek(blockId_))) setBlockBeginEnd(btr, blockBegin_, id);
        push(Item::kBlockEntities, 0, 0, blockId_);
        push(Item::kObject, 0, 0, id);
        blockId_ = AcDbObjectId();
      } else {
        AcDbObject* e = makeEntity(c, r, id, true);
        placeEntity(c, r, e, id, true);
      }
      continue;
    }
    if (section == "ENTITIES") {
      const bool followerBefore = !seqOwner_.isNull();
      AcDbObject* e = makeEntity(c, r, id, false);
      const bool isFollower = followerBefore && (type == "VERTEX" || type == "SEQEND" || type == "ATTRIB");
      if (!isFollower && type != "SEQEND") {
        placeEntity(c, r, e, id, false);
        push(Item::kObject, 0, 0, id);
      }
      continue;
    }
    if (section == "OBJECTS") {
      AcDbObject* obj = makeObject(c, r, id);
      if (root(db_, Root::NamedObjects).isNull() && AcDbDictionary::cast(obj) != nullptr)
        setRoot(db_, Root::NamedObjects, id);
      push(Item::kObject, 0, 0, id);
      continue;
    }
    // CLASSES, THUMBNAILIMAGE, ACDSDATA and sections nobody knows: as they are.
    push(Item::kRaw, c.begin(), c.end());
  }
  if (!tablesDone) ensureTables();
  // Only now: the file's own named objects dictionary is the first
  // dictionary of OBJECTS, which comes after the tables.
  if (root(db_, Root::NamedObjects).isNull() || peek(root(db_, Root::NamedObjects)) == nullptr)
    setRoot(db_, Root::NamedObjects, synthesize(new AcDbDictionary));
  ensureSpaces();
  // An exporter that names the model space record otherwise ("*U" in an R14
  // file) still links it from the "Model" layout.
  if (modelLayoutBlock_) {
    const AcDbObjectId ms = idOf(modelLayoutBlock_);
    const AcDbObjectId current = db_->modelSpaceId();
    AcDbSymbolTableRecord* rec = nullptr;
    if (ms != current && AcDbBlockTableRecord::cast(peek(ms)) && acdbOpenObject(rec, ms, AcDb::kForWrite) == Acad::eOk) {
      if (AcDbObject* old = peek(current); old && isSynthetic(old)) Access::setErased(old, true);
      if (rec->setName(L"*Model_Space") != Acad::eOk && peek(current)) Access::setErased(peek(current), false);
      rec->close();
    }
  }
  // Second pass: entities into their blocks, now that every block is there.
  for (const auto& p : pending_) {
    AcDbObjectId block = p.block;
    auto* btr = AcDbBlockTableRecord::cast(peek(block));
    if (btr == nullptr) {
      block = db_->modelSpaceId();
      btr = AcDbBlockTableRecord::cast(peek(block));
      if (AcDbObject* e = peek(p.entity)) setOwner(e, block);
    }
    if (btr) appendEntity(btr, p.entity);
  }
  if (db_->handseed() < AcDbHandle(static_cast<Adesk::UInt64>(nextHandle_)))
    db_->setHandseed(AcDbHandle(static_cast<Adesk::UInt64>(nextHandle_)));
  applyCurrentSettings();
  for (AcDbObject* o : loaded_) o->setHostModified(false);
}

// New entities take the layer, linetype, material, colour, linetype scale and
// lineweight that the header names as current. A name the tables lack (or a
// file without the variable) leaves what a new drawing uses: layer "0",
// linetype and material ByLayer. Nothing is created for a missing name: the
// file would gain a record on its next save.
void Loader::applyCurrentSettings() {
  const auto find = [&](AcDbObjectId tableId, const std::string& name) {
    AcDbObjectId id;
    AcDbSymbolTable* table = nullptr;
    if (name.empty() || acdbOpenObject(table, tableId, AcDb::kForRead) != Acad::eOk) return id;
    if (table->getAt(d_.codec->decode(name).c_str(), id) != Acad::eOk) id = AcDbObjectId();
    table->close();
    return id;
  };
  AcDbObjectId layer = find(db_->layerTableId(), clayer_);
  if (layer.isNull()) layer = find(db_->layerTableId(), "0");
  if (!layer.isNull()) db_->setClayer(layer);
  AcDbObjectId linetype = find(db_->linetypeTableId(), celtype_);
  if (linetype.isNull()) linetype = find(db_->linetypeTableId(), "ByLayer");
  if (!linetype.isNull()) db_->setCeltype(linetype);
  AcDbObjectId material;
  if (cmaterial_ != 0) db_->getAcDbObjectId(material, false, AcDbHandle(static_cast<Adesk::UInt64>(cmaterial_)));
  if (!AcDbMaterial::cast(peek(material))) {
    AcDbDictionary* materials = nullptr;
    material = AcDbObjectId();
    if (acdbOpenObject(materials, db_->materialDictionaryId(), AcDb::kForRead) == Acad::eOk) {
      materials->getAt(L"ByLayer", material);
      materials->close();
    }
  }
  if (AcDbMaterial::cast(peek(material))) db_->setCmaterial(material);
  if (cecolor_ && *cecolor_ >= 0 && *cecolor_ <= 257) db_->setCecolorIndex(static_cast<Adesk::UInt16>(*cecolor_));
  if (AcDb::LineWeight w; celweight_ && lineWeightOf(*celweight_, w)) db_->setCelweight(w);
  if (celtscale_) db_->setCeltscale(*celtscale_);  // refuses a scale that is not positive
}

// ---------------------------------------------------------------------------
// The writer.

std::string hexOf(Adesk::UInt64 v) {
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, v, 16);
  for (char* p = buf; p != r.ptr; ++p)
    if (*p >= 'a' && *p <= 'f') *p = static_cast<char>(*p - 'a' + 'A');
  return std::string(buf, r.ptr);
}

std::wstring nameOf(AcDbObjectId id) {
  const ACHAR* n = nullptr;
  if (auto* rec = AcDbSymbolTableRecord::cast(peek(id)))
    if (rec->getName(n) == Acad::eOk && n) return n;
  return std::wstring();
}

bool sameNoCase(const std::wstring& a, const wchar_t* b) {
  return foldKey(a.c_str()) == foldKey(b);
}

bool isSynthetic(const AcDbObject* o) { return dynamic_cast<const SyntheticExtra*>(o->hostExtra()) != nullptr; }
const RecordExtra* recordExtra(const AcDbObject* o) { return dynamic_cast<const RecordExtra*>(o->hostExtra()); }

const char* tableNameOf(const AcDbObject* t) {
  if (AcDbBlockTable::cast(t)) return "BLOCK_RECORD";
  if (AcDbLayerTable::cast(t)) return "LAYER";
  if (AcDbLinetypeTable::cast(t)) return "LTYPE";
  if (AcDbRegAppTable::cast(t)) return "APPID";
  if (AcDbTextStyleTable::cast(t)) return "STYLE";
  if (AcDbDimStyleTable::cast(t)) return "DIMSTYLE";
  if (AcDbViewportTable::cast(t)) return "VPORT";
  if (AcDbViewTable::cast(t)) return "VIEW";
  if (AcDbUCSTable::cast(t)) return "UCS";
  return "";
}

// The field table and DXF type an object is written with.
const ClassDef& defOf(const AcDbObject* o, std::string& type) {
  struct Entry {
    AcRxClass* (*desc)();
    const ClassDef* def;
  };
  if (auto* u = dynamic_cast<const VoraUnknownEntity*>(o)) {
    type = u->dxfType();
    return kEntityDef;
  }
  if (auto* u = dynamic_cast<const VoraUnknownObject*>(o)) {
    type = u->dxfType();
    return kObjectDef;
  }
  if (AcDbSymbolTable::cast(o)) {
    type = "TABLE";
    return kTableDef;
  }
  static const Entry entries[] = {
      {&AcDbLine::desc, &kLineDef},
      {&AcDbArc::desc, &kArcDef},
      {&AcDbCircle::desc, &kCircleDef},
      {&AcDbPolyline::desc, &kLwPolylineDef},
      {&AcDb2dPolyline::desc, &kPolyline2dDef},
      {&AcDb3dPolyline::desc, &kPolyline3dDef},
      {&AcDb2dVertex::desc, &kVertex2dDef},
      {&AcDb3dPolylineVertex::desc, &kVertex3dDef},
      {&AcDbSequenceEnd::desc, &kSeqendDef},
      {&AcDbFace::desc, &kFaceDef},
      {&AcDbBlockBegin::desc, &kBlockBeginDef},
      {&AcDbBlockEnd::desc, &kBlockEndDef},
      {&AcDbLayerTableRecord::desc, &kLayerDef},
      {&AcDbLinetypeTableRecord::desc, &kLinetypeDef},
      {&AcDbRegAppTableRecord::desc, &kRegAppDef},
      {&AcDbBlockTableRecord::desc, &kBlockRecordDef},
      {&AcDbTextStyleTableRecord::desc, &kStyleDef},
      {&AcDbDimStyleTableRecord::desc, &kDimStyleDef},
      {&AcDbViewportTableRecord::desc, &kVportDef},
      {&AcDbViewTableRecord::desc, &kViewDef},
      {&AcDbUCSTableRecord::desc, &kUcsDef},
      {&AcDbDictionary::desc, &kDictionaryDef},
      {&AcDbXrecord::desc, &kXrecordDef},
      {&AcDbMaterial::desc, &kMaterialDef},
      {&AcDbSortentsTable::desc, &kSortentsDef},
  };
  for (const auto& e : entries)
    if (o->isA() == e.desc()) {
      type = std::string(e.def->dxfType);
      return *e.def;
    }
  type = AcDbEntity::cast(o) ? "ACAD_PROXY_ENTITY" : "ACAD_PROXY_OBJECT";
  return AcDbEntity::cast(o) ? kEntityDef : kObjectDef;
}

struct Writer {
  AcDbDatabase* db;
  DrawingExtra& d;
  Output& out;
  bool r12;
  std::string_view bytes;
  std::vector<Tag> tags;
  std::vector<AcDbObjectId> written;  // new non-graphical objects already written

  TagWriter& w() { return out.w(); }
  std::string enc(const std::wstring& s) const { return d.codec->encode(s); }

  void run();
  void item(const Item& it);
  void write(AcDbObjectId id);
  void regenerate(AcDbObject* obj);
  void entityFields(const AcDbEntity* e);
  void fields(const AcDbObject* obj, const ClassDef& def, std::size_t sub, const FieldReader* orig, bool fresh);
  void rbTags(const resbuf* rb);
  void real(int code, double v);
  void integer(int code, std::int64_t v);
  void text(int code, const std::wstring& v);
  const FieldReader* orig_ = nullptr;
  std::size_t sub_ = 0;
  bool writable(const AcDbObject* o) const { return o != nullptr && !o->isErased() && !isSynthetic(o); }
};

void Writer::write(AcDbObjectId id) {
  AcDbObject* obj = peek(id);
  if (!writable(obj)) return;
  const RecordExtra* re = recordExtra(obj);
  // The entry count of a table head is a hint that readers do not rely on:
  // a loaded head is written as read even when records were added, so that
  // adding a layer changes no record of the file.
  const bool asRead = re != nullptr && (!obj->hostModified() || AcDbSymbolTable::cast(obj) != nullptr);
  if (asRead) out.raw(bytes.substr(re->begin, re->end - re->begin));
  else regenerate(obj);
  out.maybeFlush();
  if (auto* e = AcDbEntity::cast(obj)) {
    if (AcDb2dPolyline::cast(e) || AcDb3dPolyline::cast(e)) {
      for (const AcDbObjectId& v : vertices(e)) write(v);
      const AcDbObjectId s = seqEnd(e);
      if (writable(peek(s))) {
        write(s);
      } else {
        // A sequence always ends; a polyline made without its SEQEND object
        // still gets the record, on the polyline's layer.
        w().tag(0, "SEQEND");
        if (!r12) {
          w().tag(100, "AcDbEntity");
        }
        w().tag(8, enc(nameOf(e->layerId()).empty() ? L"0" : nameOf(e->layerId())));
      }
    } else if (auto* u = dynamic_cast<VoraUnknownEntity*>(e)) {
      for (const AcDbObjectId& f : u->followers()) write(f);
    }
  }
}

void Writer::rbTags(const resbuf* rb) {
  for (; rb; rb = rb->rbnext) {
    const int code = rb->restype;
    switch (rbKind(code)) {
      case RbKind::Real: w().tag(code, rb->resval.rreal); break;
      case RbKind::Point:
        w().tag(code, rb->resval.rpoint[0]);
        w().tag(code + 10, rb->resval.rpoint[1]);
        w().tag(code + 20, rb->resval.rpoint[2]);
        break;
      case RbKind::Short: w().tagInt(code, rb->resval.rint); break;
      case RbKind::Long: w().tagInt(code, rb->resval.rlong); break;
      case RbKind::Int64: w().tagInt(code, rb->resval.mnInt64); break;
      case RbKind::Name: {
        AcDbObjectId id;
        id.setFromOldId(static_cast<Adesk::IntDbId>(rb->resval.rlname[0]));
        w().tag(code, id.isNull() ? std::string("0") : hexOf(id.handle()));
        break;
      }
      case RbKind::Binary: {
        static const char* hex = "0123456789ABCDEF";
        std::string s;
        for (short k = 0; k < rb->resval.rbinary.clen; ++k) {
          const auto b = static_cast<unsigned char>(rb->resval.rbinary.buf[k]);
          s += hex[b >> 4];
          s += hex[b & 15];
        }
        w().tag(code, s);
        break;
      }
      default: w().tag(code, enc(rb->resval.rstring ? rb->resval.rstring : L"")); break;
    }
  }
}

void Writer::entityFields(const AcDbEntity* e) {
  if (!d.paperSpace.isNull() && e->ownerId() == d.paperSpace) integer(67, 1);
  const std::wstring layer = nameOf(e->layerId());
  text(8, (layer.empty() ? L"0" : layer));
  if (!e->linetypeId().isNull()) {
    const std::wstring lt = nameOf(e->linetypeId());
    if (!lt.empty() && !sameNoCase(lt, L"ByLayer")) text(6, (lt));
  }
  if (e->colorIndex() != 256) integer(62, e->colorIndex());
  if (d.version >= 1015 && e->lineWeight() != AcDb::kLnWtByLayer) integer(370, e->lineWeight());
  if (e->linetypeScale() != 1.0) real(48, e->linetypeScale());
  if (e->visibility() == AcDb::kInvisible) integer(60, 1);
  if (d.version >= 1021 && !e->materialId().isNull()) w().tag(347, hexOf(e->materialId().handle()));
}

// A number that an edit left unchanged keeps its original text (digits,
// padding), so that a regenerated record differs only where it was changed.
void Writer::real(int code, double v) {
  if (orig_ && orig_->has(sub_, code)) {
    const std::string_view text = orig_->str(sub_, code);
    double was = 0;
    if (parseDouble(text, was) && std::memcmp(&was, &v, sizeof v) == 0) {
      w().tag(code, text);
      return;
    }
  }
  w().tag(code, v);
}

void Writer::integer(int code, std::int64_t v) {
  if (orig_ && orig_->has(sub_, code)) {
    const std::string_view text = orig_->str(sub_, code);
    std::int64_t was = 0;
    if (parseInt(text, was) && was == v) {
      w().tag(code, text);
      return;
    }
  }
  w().tagInt(code, v);
}

void Writer::text(int code, const std::wstring& v) {
  if (orig_ && orig_->has(sub_, code)) {
    const std::string_view was = orig_->str(sub_, code);
    if (d.codec->decode(was) == v) {
      w().tag(code, was);
      return;
    }
  }
  w().tag(code, enc(v));
}

void Writer::fields(const AcDbObject* obj, const ClassDef& def, std::size_t sub, const FieldReader* orig, bool fresh) {
  orig_ = orig;
  sub_ = sub;
  // The original text of a field the database keeps no value for.
  auto keep = [&](int code, std::string_view dflt) -> std::string_view {
    if (orig && orig->has(sub, code)) return orig->str(sub, code);
    return dflt;
  };
  auto pt = [&](int code, const AcGePoint3d& p) {
    real(code, p.x);
    real(code + 10, p.y);
    real(code + 20, p.z);
  };
  auto normal = [&](const AcGeVector3d& n) {
    if (n.x != 0.0 || n.y != 0.0 || n.z != 1.0) w().point(210, n.x, n.y, n.z);
  };
  const auto* e = AcDbEntity::cast(obj);
  if (e && sub == kEnt && def.subclasses.size() > 0 && def.subclasses[0].marker == "AcDbEntity") {
    entityFields(e);
    return;
  }
  if (auto* l = AcDbLine::cast(obj)) {
    if (l->thickness() != 0.0) real(39, l->thickness());
    pt(10, l->startPoint());
    pt(11, l->endPoint());
    normal(l->normal());
  } else if (auto* a = AcDbArc::cast(obj)) {
    if (sub == 1) {
      if (a->thickness() != 0.0) real(39, a->thickness());
      pt(10, a->center());
      real(40, a->radius());
      normal(a->normal());
    } else {
      real(50, toDegrees(a->startAngle()));
      real(51, toDegrees(a->endAngle()));
    }
  } else if (auto* c = AcDbCircle::cast(obj)) {
    if (c->thickness() != 0.0) real(39, c->thickness());
    pt(10, c->center());
    real(40, c->radius());
    normal(c->normal());
  } else if (auto* p = AcDbPolyline::cast(obj)) {
    const unsigned n = p->numVerts();
    integer(90, n);
    integer(70, (p->isClosed() ? 1 : 0) | (p->hasPlinegen() ? 128 : 0));
    double cw = 0;
    const bool constant = p->getConstantWidth(cw) == Acad::eOk;
    if (constant) real(43, cw);
    if (p->elevation() != 0.0) real(38, p->elevation());
    if (p->thickness() != 0.0) real(39, p->thickness());
    for (unsigned i = 0; i < n; ++i) {
      AcGePoint2d q;
      p->getPointAt(i, q);
      real(10, q.x);
      real(20, q.y);
      double sw = 0, ew = 0, b = 0;
      p->getWidthsAt(i, sw, ew);
      if (!constant && (sw != 0.0 || ew != 0.0)) {
        real(40, sw);
        real(41, ew);
      }
      p->getBulgeAt(i, b);
      if (b != 0.0) real(42, b);
    }
    normal(p->normal());
  } else if (auto* p2 = AcDb2dPolyline::cast(obj)) {
    integer(66, 1);
    w().point(10, 0.0, 0.0, p2->elevation());
    if (p2->thickness() != 0.0) real(39, p2->thickness());
    const AcDb::Poly2dType t = p2->polyType();
    integer(70, (p2->isClosed() ? 1 : 0) | (t == AcDb::k2dFitCurvePoly ? 2 : 0) |
                       (t == AcDb::k2dQuadSplinePoly || t == AcDb::k2dCubicSplinePoly ? 4 : 0) |
                       (p2->isLinetypeGenerationOn() ? 128 : 0));
    if (p2->defaultStartWidth() != 0.0) real(40, p2->defaultStartWidth());
    if (p2->defaultEndWidth() != 0.0) real(41, p2->defaultEndWidth());
    if (t == AcDb::k2dQuadSplinePoly) integer(75, 5);
    if (t == AcDb::k2dCubicSplinePoly) integer(75, 6);
    normal(p2->normal());
  } else if (auto* p3 = AcDb3dPolyline::cast(obj)) {
    integer(66, 1);
    w().point(10, 0.0, 0.0, 0.0);
    const AcDb::Poly3dType t = p3->polyType();
    integer(70, 8 | (p3->isClosed() ? 1 : 0) | (t != AcDb::k3dSimplePoly ? 4 : 0));
    if (t == AcDb::k3dQuadSplinePoly) integer(75, 5);
    if (t == AcDb::k3dCubicSplinePoly) integer(75, 6);
  } else if (auto* v2 = AcDb2dVertex::cast(obj)) {
    if (sub != 2) return;
    pt(10, v2->position());
    if (v2->startWidth() != 0.0) real(40, v2->startWidth());
    if (v2->endWidth() != 0.0) real(41, v2->endWidth());
    if (v2->bulge() != 0.0) real(42, v2->bulge());
    const AcDb::Vertex2dType t = v2->vertexType();
    integer(70, (t == AcDb::k2dCurveFitVertex ? 1 : 0) | (v2->isTangentUsed() ? 2 : 0) |
                       (t == AcDb::k2dSplineFitVertex ? 8 : 0) | (t == AcDb::k2dSplineCtlVertex ? 16 : 0));
    if (v2->isTangentUsed()) real(50, toDegrees(v2->tangent()));
    if (v2->vertexIdentifier() != 0) integer(91, v2->vertexIdentifier());
  } else if (auto* v3 = AcDb3dPolylineVertex::cast(obj)) {
    if (sub != 2) return;
    pt(10, v3->position());
    const AcDb::Vertex3dType t = v3->vertexType();
    integer(70, 32 | (t == AcDb::k3dFitVertex ? 8 : 0) | (t == AcDb::k3dControlVertex ? 16 : 0));
  } else if (auto* f = AcDbFace::cast(obj)) {
    int inv = 0;
    for (Adesk::UInt16 k = 0; k < 4; ++k) {
      AcGePoint3d q;
      f->getVertexAt(k, q);
      pt(10 + k, q);
      Adesk::Boolean vis = true;
      f->isEdgeVisibleAt(k, vis);
      if (!vis) inv |= 1 << k;
    }
    if (inv) integer(70, inv);
  } else if (AcDbBlockBegin::cast(obj)) {
    if (sub == 1) {
      const std::wstring name = nameOf(obj->ownerId());
      w().tag(2, keep(2, enc(name)));
    }
  } else if (auto* t = AcDbSymbolTable::cast(obj)) {
    std::int64_t n = 0;
    for (const AcDbObjectId& id : records(t))
      if (writable(peek(id))) ++n;
    integer(70, n);
  } else if (auto* rec = AcDbSymbolTableRecord::cast(obj)) {
    if (sub != 1) return;
    const ACHAR* name = nullptr;
    rec->getName(name);
    text(2, (name ? name : L""));
    if (auto* l = AcDbLayerTableRecord::cast(rec)) {
      std::int64_t flags = 0;
      if (orig && orig->has(1, 70)) flags = orig->integer(1, 70) & ~std::int64_t{7};
      integer(70, flags | (l->isFrozen() ? 1 : 0) | (l->VPDFLT() ? 2 : 0) | (l->isLocked() ? 4 : 0));
      const int color = l->color().colorIndex();
      integer(62, l->isOff() ? -color : color);
      const std::wstring lt = nameOf(l->linetypeObjectId());
      text(6, (lt.empty() ? L"Continuous" : lt));
      if (d.version >= 1015) {
        if (!l->isPlottable()) integer(290, 0);
        integer(370, l->lineWeight());
      }
      if (d.version >= 1021 && !l->materialId().isNull()) w().tag(347, hexOf(l->materialId().handle()));
    } else if (auto* lt = AcDbLinetypeTableRecord::cast(rec)) {
      w().tag(70, keep(70, "0"));
      const ACHAR* comments = nullptr;
      lt->comments(comments);
      text(3, (comments ? comments : L""));
      if (fresh) {
        integer(72, 65);
        integer(73, lt->numDashes());
        real(40, lt->patternLength());
        for (int k = 0; k < lt->numDashes(); ++k) {
          real(49, lt->dashLengthAt(k));
          if (d.version >= 1012) integer(74, 0);
        }
      }
    } else if (AcDbRegAppTableRecord::cast(rec)) {
      w().tag(70, keep(70, "0"));
    }
  } else if (auto* dict = AcDbDictionary::cast(obj)) {
    if (dict->isTreatElementsAsHard()) w().tag(280, keep(280, "1"));
    w().tag(281, keep(281, "1"));
    const int code = dict->isTreatElementsAsHard() ? 360 : 350;
    for (const auto& en : entries(dict)) {
      AcDbObject* target = peek(en.id);
      if (target != nullptr && target->isErased()) continue;
      text(3, (en.key));
      w().tag(code, en.id.isNull() ? std::string("0") : hexOf(en.id.handle()));
    }
  } else if (auto* x = AcDbXrecord::cast(obj)) {
    w().tag(280, keep(280, "1"));
    resbuf* rb = nullptr;
    if (x->rbChain(&rb) == Acad::eOk && rb) {
      rbTags(rb);
      acutRelRb(rb);
    }
  } else if (auto* m = AcDbMaterial::cast(obj)) {
    text(1, (m->name()));
    if (m->description() && *m->description()) text(2, (m->description()));
  } else if (auto* st = AcDbSortentsTable::cast(obj)) {
    w().tag(330, hexOf(st->blockId().handle()));
    for (const auto& pr : Access::sortHandles(st)) {
      w().tag(331, hexOf(pr.first.handle()));
      w().tag(5, hexOf(pr.second));
    }
  }
}

void Writer::regenerate(AcDbObject* obj) {
  std::string type;
  const ClassDef& def = defOf(obj, type);
  const int handleCode = type == "DIMSTYLE" ? 105 : 5;
  const RecordExtra* re = recordExtra(obj);
  std::string_view orig;
  tags.clear();
  std::size_t xdata = 0;
  if (re) {
    orig = bytes.substr(re->begin, re->end - re->begin);
    tagizeRange(orig, tags);
    xdata = tags.size();
    if (type != "XRECORD")
      for (std::size_t i = 1; i < tags.size(); ++i)
        if (tags[i].code == 1001) {
          xdata = i;
          break;
        }
  }
  SplitRecord sr;
  if (re) {
    sr = splitRecord(def, orig, tags, xdata, handleCode);
  } else {
    sr.kept.resize(def.subclasses.size() + 1);
    sr.repeated.resize(def.subclasses.size());
    sr.slotTag.assign(def.slotCount, -1);
    sr.markerSeen.assign(def.subclasses.size(), false);
  }
  const FieldReader reader{orig, tags, sr, def, *d.codec};
  const FieldReader* o = re ? &reader : nullptr;
  auto keptTags = [&](const std::vector<std::uint32_t>& list) {
    for (std::uint32_t t : list) w().tag(tags[t].code, orig.substr(tags[t].offset, tags[t].length));
  };
  w().tag(0, type);
  if (type == "TABLE") {
    if (re) keptTags(sr.head);
    else w().tag(2, tableNameOf(obj));
  }
  // R12 writes handles only where the file has them ($HANDLING, never on
  // table heads); a regenerated record keeps what its original had.
  bool handle = !r12 || (d.handles && type != "TABLE");
  if (r12 && re) {
    handle = false;
    for (std::size_t i = 1; i < tags.size() && !handle; ++i) handle = tags[i].code == handleCode;
  }
  if (handle) w().tagHex(handleCode, obj->handle());
  if (!r12) {
    keptTags(sr.appData);
    const std::vector<AcDbObjectId> reactors = reactorIds(obj);
    if (!reactors.empty()) {
      w().tag(102, "{ACAD_REACTORS");
      for (const auto& r : reactors) w().tag(330, hexOf(r.handle()));
      w().tag(102, "}");
    }
    if (!obj->extensionDictionary().isNull()) {
      w().tag(102, "{ACAD_XDICTIONARY");
      w().tag(360, hexOf(obj->extensionDictionary().handle()));
      w().tag(102, "}");
    }
    if (!obj->ownerId().isNull()) w().tag(330, hexOf(obj->ownerId().handle()));
    else if (type == "TABLE" || type == "DICTIONARY") w().tag(330, "0");
  }
  if (type != "TABLE") keptTags(sr.head);
  for (std::size_t s = 0; s < def.subclasses.size(); ++s) {
    if (!r12) {
      w().tag(100, def.subclasses[s].marker);
      // The DIMSTYLE table has a subclass of its own after the symbol table's.
    }
    fields(obj, def, s, o, re == nullptr);
    if (!(AcDbXrecord::cast(obj) && s == 0)) keptTags(sr.kept[s]);
  }
  keptTags(sr.kept[def.subclasses.size()]);
  resbuf* xd = obj->xData(nullptr);
  if (xd) {
    rbTags(xd);
    acutRelRb(xd);
  }
}

bool isNewObject(const AcDbObject* o) { return o->hostExtra() == nullptr; }

void Writer::item(const Item& it) {
  switch (it.kind) {
    case Item::kRaw: out.raw(bytes.substr(it.begin, it.end - it.begin)); break;
    case Item::kHeader:
      if (d.hasHandseed && d.handseedBegin >= it.begin && d.handseedEnd <= it.end) {
        out.raw(bytes.substr(it.begin, d.handseedBegin - it.begin));
        out.raw(hexOf(db->handseed()));
        out.raw(bytes.substr(d.handseedEnd, it.end - d.handseedEnd));
      } else {
        out.raw(bytes.substr(it.begin, it.end - it.begin));
      }
      break;
    case Item::kObject: write(it.id); break;
    case Item::kTableRecords:
      if (auto* t = AcDbSymbolTable::cast(peek(it.id)))
        for (const AcDbObjectId& r : records(t)) write(r);
      break;
    case Item::kBlockEntities: {
      auto* btr = AcDbBlockTableRecord::cast(peek(it.id));
      if (btr == nullptr) break;
      const bool space = it.id == db->modelSpaceId() || it.id == d.paperSpace;
      for (const AcDbObjectId& e : entities(btr)) {
        AcDbObject* o = peek(e);
        if (!writable(o)) continue;
        const RecordExtra* re = recordExtra(o);
        if (re ? re->inBlocks : (isNewObject(o) && !space)) write(e);
      }
      break;
    }
    case Item::kNewEntities:
      for (AcDbObjectId space : {db->modelSpaceId(), d.paperSpace}) {
        auto* btr = AcDbBlockTableRecord::cast(peek(space));
        if (btr == nullptr) continue;
        for (const AcDbObjectId& e : entities(btr)) {
          AcDbObject* o = peek(e);
          if (writable(o) && isNewObject(o)) write(e);
        }
      }
      break;
    case Item::kNewObjects:
      for (const AcDbObjectId& id : objectsInOrder(db)) {
        AcDbObject* o = peek(id);
        if (!writable(o) || !isNewObject(o)) continue;
        if (AcDbEntity::cast(o) || AcDbSymbolTable::cast(o) || AcDbSymbolTableRecord::cast(o)) continue;
        if (std::find(written.begin(), written.end(), id) != written.end()) continue;
        write(id);
      }
      break;
  }
}

void Writer::run() {
  for (const Item& it : d.items) {
    if (it.kind == Item::kObject) {
      AcDbObject* o = peek(it.id);
      if (o && isNewObject(o)) written.push_back(it.id);
    }
    item(it);
  }
  out.flush();
}

// A database made in memory gets the frame of a DXF file of the newest
// version around its objects: header, the nine symbol tables, blocks,
// entities, objects.
std::unique_ptr<DrawingExtra> skeletonOf(AcDbDatabase* db) {
  auto d = std::make_unique<DrawingExtra>();
  d->acadver = "AC1032";
  d->version = 1032;
  d->codec = std::make_unique<TextCodec>("AC1032", "ANSI_1252");
  std::string& b = d->bytes;
  TagWriter w(b);
  auto raw = [&](auto&& fn, Item::Kind kind = Item::kRaw) {
    const std::size_t begin = b.size();
    fn();
    Item it;
    it.kind = kind;
    it.begin = static_cast<std::uint32_t>(begin);
    it.end = static_cast<std::uint32_t>(b.size());
    d->items.push_back(it);
  };
  auto obj = [&](Item::Kind kind, AcDbObjectId id) {
    Item it;
    it.kind = kind;
    it.id = id;
    d->items.push_back(it);
  };
  raw(
      [&] {
        w.tag(0, "SECTION");
        w.tag(2, "HEADER");
        w.tag(9, "$ACADVER");
        w.tag(1, "AC1032");
        w.tag(9, "$DWGCODEPAGE");
        w.tag(3, "ANSI_1252");
        w.tag(9, "$HANDSEED");
        w.tag(5, "");
        d->hasHandseed = true;
        d->handseedBegin = d->handseedEnd = static_cast<std::uint32_t>(b.size() - 1);
        w.tag(0, "ENDSEC");
      },
      Item::kHeader);
  raw([&] {
    w.tag(0, "SECTION");
    w.tag(2, "TABLES");
  });
  const Root order[] = {Root::ViewportTable, Root::LinetypeTable, Root::LayerTable, Root::TextStyleTable, Root::ViewTable,
                        Root::UCSTable,      Root::RegAppTable,   Root::DimStyleTable, Root::BlockTable};
  for (Root r : order) {
    const AcDbObjectId t = root(db, r);
    if (t.isNull() || peek(t) == nullptr) continue;
    obj(Item::kObject, t);
    obj(Item::kTableRecords, t);
    raw([&] { w.tag(0, "ENDTAB"); });
  }
  raw([&] {
    w.tag(0, "ENDSEC");
    w.tag(0, "SECTION");
    w.tag(2, "BLOCKS");
  });
  if (auto* bt = AcDbBlockTable::cast(peek(db->blockTableId()))) {
    for (const AcDbObjectId& bid : records(bt)) {
      auto* btr = AcDbBlockTableRecord::cast(peek(bid));
      if (btr == nullptr || btr->isErased()) continue;
      AcDbObjectId& begin = Access::blockBegin(btr);
      AcDbObjectId& end = Access::blockEnd(btr);
      // Blocks made in memory may lack their BLOCK and ENDBLK objects.
      for (AcDbObjectId* which : {&begin, &end}) {
        if (!which->isNull() && peek(*which) != nullptr) continue;
        AcDbEntity* e = which == &begin ? static_cast<AcDbEntity*>(new AcDbBlockBegin) : new AcDbBlockEnd;
        AcDbObjectId nid;
        while (addObjectWithHandle(db, e, db->handseed(), nid) == Acad::eHandleExists) {
        }
        setOwner(e, bid);
        e->setLayer(db->layerZero(), false);
        *which = nid;
      }
      obj(Item::kObject, begin);
      obj(Item::kBlockEntities, bid);
      obj(Item::kObject, end);
    }
  }
  raw([&] {
    w.tag(0, "ENDSEC");
    w.tag(0, "SECTION");
    w.tag(2, "ENTITIES");
  });
  obj(Item::kNewEntities, AcDbObjectId());
  raw([&] {
    w.tag(0, "ENDSEC");
    w.tag(0, "SECTION");
    w.tag(2, "OBJECTS");
  });
  // Readers resolve the plot style of a layer through the entry "Normal"
  // of ACAD_PLOTSTYLENAME, as CAD programs make it in every drawing.
  if (auto* styles = AcDbDictionary::cast(peek(findEntry(db->namedObjectsDictionaryId(), L"ACAD_PLOTSTYLENAME")))) {
    if (findEntry(styles->objectId(), L"Normal").isNull()) {
      auto* normal = new VoraUnknownObject(unknownClass("ACDBPLACEHOLDER", false), "ACDBPLACEHOLDER");
      AcDbObjectId nid;
      while (addObjectWithHandle(db, normal, db->handseed(), nid) == Acad::eHandleExists) {
      }
      setOwner(normal, styles->objectId());
      appendDictEntry(styles, L"Normal", nid);
    }
  }
  obj(Item::kObject, db->namedObjectsDictionaryId());
  obj(Item::kNewObjects, AcDbObjectId());
  raw([&] {
    w.tag(0, "ENDSEC");
    w.tag(0, "EOF");
  });
  d->paperSpace = db->paperSpaceId();
  return d;
}

std::string utf8Path(const ACHAR* name) {
  static const TextCodec utf8("AC1032", "");
  return name ? utf8.encode(name) : std::string();
}

AcDb::AcDbDwgVersion dwgVersionOf(int v) {
  switch (v) {
    case 1009: return AcDb::kDHL_1009;
    case 1012: return AcDb::kDHL_1012;
    case 1014: return AcDb::kDHL_1014;
    case 1015: return AcDb::kDHL_1015;
    case 1018: return AcDb::kDHL_1800;
    case 1021: return AcDb::kDHL_1021;
    case 1024: return AcDb::kDHL_1024;
    case 1027: return AcDb::kDHL_1027;
    default: return AcDb::kDHL_1032;
  }
}

void logError(const ACHAR* logFile) {
  if (logFile == nullptr) return;
  std::ofstream log(utf8Path(logFile), std::ios::app);
  log << tLastError << '\n';
}

}  // namespace

const std::string& lastErrorMessage() { return tLastError; }

Acad::ErrorStatus loadDxf(AcDbDatabase* db, std::string bytes, const std::string& name) {
  tLastError.clear();
  auto d = std::make_unique<DrawingExtra>();
  d->bytes = std::move(bytes);
  try {
    Loader loader(db, *d);
    loader.run();
  } catch (const DxfError& e) {
    tLastError = name + ": " + e.what();
    return Acad::eInvalidDxfCode;
  } catch (const std::bad_alloc&) {
    tLastError = name + ": out of memory";
    return Acad::eOutOfMemory;
  }
  db->setOriginalFileVersion(dwgVersionOf(d->version));
  db->setHostExtra(std::move(d));
  return Acad::eOk;
}

std::string saveDxfToString(AcDbDatabase* db) {
  auto* d = dynamic_cast<DrawingExtra*>(db->hostExtra());
  std::unique_ptr<DrawingExtra> fresh;
  if (d == nullptr) {
    fresh = skeletonOf(db);
    d = fresh.get();
  }
  Output out(d->crlf);
  Writer writer{db, *d, out, d->version < 1012, std::string_view(d->bytes), {}, {}};
  writer.run();
  return std::move(out.buffer());
}

bool isSyntheticObject(const AcDbObject* obj) { return obj != nullptr && isSynthetic(obj); }

std::string dxfTypeOf(const AcDbObject* obj) {
  if (obj == nullptr) return std::string();
  std::string type;
  defOf(obj, type);
  if (type == "ACAD_PROXY_ENTITY" || type == "ACAD_PROXY_OBJECT") {
    if (const ACHAR* n = obj->isA() ? obj->isA()->dxfName() : nullptr) {
      std::string s;
      for (; *n; ++n) s += static_cast<char>(*n);
      if (!s.empty()) return s;
    }
  }
  return type;
}

std::string drawingVersion(const AcDbDatabase* db) {
  auto* d = dynamic_cast<DrawingExtra*>(db->hostExtra());
  return d ? d->acadver : std::string("AC1032");
}

}  // namespace vora_host::dxf

using namespace vora_host::dxf;

Acad::ErrorStatus AcDbDatabase::dxfIn(const ACHAR* fileName, const ACHAR* logFilename) {
  tLastError.clear();
  const std::string path = utf8Path(fileName);
  // Loading fills a database made without a default drawing; the objects of
  // a default drawing would clash with the file's handles.
  if (!vora_host::objectsInOrder(this).empty()) {
    tLastError = path + ": the database is not empty (make it with AcDbDatabase(false, ...))";
    logError(logFilename);
    return Acad::eNotApplicable;
  }
  std::string bytes;
  try {
    bytes = readFileBytes(path);
  } catch (const DxfError& e) {
    tLastError = e.what();
    logError(logFilename);
    return errno == ENOENT ? Acad::eFileNotFound : Acad::eFileAccessErr;
  }
  const Acad::ErrorStatus es = loadDxf(this, std::move(bytes), path);
  if (es != Acad::eOk) logError(logFilename);
  return es;
}

Acad::ErrorStatus AcDbDatabase::dxfOut(const ACHAR* fileName, int precision, AcDb::AcDbDwgVersion dwgVer,
                                       bool saveThumbnailImage) {
  // Numbers are always written as the shortest text that reads back to the
  // same double, which needs no precision; there is no thumbnail to save.
  (void)precision;
  (void)saveThumbnailImage;
  tLastError.clear();
  const std::string path = utf8Path(fileName);
  auto* loaded = dynamic_cast<DrawingExtra*>(hostExtra());
  std::unique_ptr<DrawingExtra> fresh;
  DrawingExtra* d = loaded;
  if (d == nullptr) {
    fresh = skeletonOf(this);
    d = fresh.get();
  }
  // A drawing is written in its own version; kDHL_CURRENT asks for that.
  if (dwgVer != AcDb::kDHL_CURRENT && dwgVer != dwgVersionOf(d->version)) {
    tLastError = path + ": a drawing is saved in its own version (" + d->acadver + ") only";
    return Acad::eNotImplementedYet;
  }
  try {
    AtomicFile file(path);
    Output out(&file, d->crlf);
    Writer writer{this, *d, out, d->version < 1012, std::string_view(d->bytes), {}, {}};
    writer.run();
    file.commit();
  } catch (const DxfError& e) {
    tLastError = e.what();
    return Acad::eFileAccessErr;
  } catch (const std::bad_alloc&) {
    tLastError = path + ": out of memory";
    return Acad::eOutOfMemory;
  }
  return Acad::eOk;
}
