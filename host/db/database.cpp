#include <set>
#include <string>

#include "host/db/internal.h"
#include "vora/arx/dbmaterial.h"
#include "vora/arx/vorahost.h"

using vora_host::Access;
using vora_host::Root;

struct AcDbDatabase::Impl : vora_host::DatabaseState {};

namespace {

std::set<AcDbDatabase*>& liveDatabases() {
  static std::set<AcDbDatabase*> live;
  return live;
}

}  // namespace

namespace vora_host {

DatabaseState& Access::state(const AcDbDatabase* db) { return *db->mpImpl; }

Acad::ErrorStatus addObjectWithHandle(AcDbDatabase* db, AcDbObject* obj, AcDbHandle h, AcDbObjectId& id) {
  id = AcDbObjectId::kNull;
  if (db == nullptr) return Acad::eNoDatabase;
  if (obj == nullptr) return Acad::eNullObjectPointer;
  if (Access::stub(obj) != nullptr) return Acad::eAlreadyInDb;
  if (h.isNull()) return Acad::eNullHandle;
  DatabaseState& st = Access::state(db);
  const Adesk::UInt64 value = h;
  AcDbStub* stub = nullptr;
  auto it = st.byHandle.find(value);
  if (it != st.byHandle.end()) {
    if (it->second->obj != nullptr) return Acad::eHandleExists;
    stub = it->second;
  } else {
    stub = &st.stubs.emplace_back();
    stub->db = db;
    stub->handle = value;
    st.byHandle.emplace(value, stub);
    if (value > st.maxHandle) st.maxHandle = value;
  }
  stub->obj = obj;
  Access::setStub(obj, stub);
  st.order.push_back(stub);
  if (st.handseed <= value) st.handseed = value + 1;
  id = AcDbObjectId(stub);
  return Acad::eOk;
}

std::vector<AcDbObjectId> objectsInOrder(const AcDbDatabase* db) {
  std::vector<AcDbObjectId> out;
  const DatabaseState& st = Access::state(db);
  out.reserve(st.order.size());
  for (AcDbStub* s : st.order) out.emplace_back(s);
  return out;
}

void setRoot(AcDbDatabase* db, Root which, AcDbObjectId id) { Access::state(db).roots[static_cast<int>(which)] = id; }
AcDbObjectId root(const AcDbDatabase* db, Root which) { return Access::state(db).roots[static_cast<int>(which)]; }

}  // namespace vora_host

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabase, AcRxObject)

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool) : mpImpl(new Impl) {
  liveDatabases().insert(this);
  if (buildDefaultDrawing) vora_host::ensureDefaults(this);
}

namespace {

// The root of the given kind, made (and closed) when missing.
template <class T>
AcDbObjectId ensureRoot(AcDbDatabase* db, Root which) {
  AcDbObjectId id = vora_host::root(db, which);
  if (T::cast(vora_host::peek(id)) != nullptr) return id;
  auto* obj = new T();
  db->addAcDbObject(id, obj);
  obj->close();
  vora_host::setRoot(db, which, id);
  return id;
}

// The record named name of the table tableId, made when missing; prepare
// sets up a new record before it is added.
template <class Table, class Record, class Prepare>
AcDbObjectId ensureRecord(AcDbObjectId tableId, const ACHAR* name, Prepare prepare) {
  AcDbObjectId id = vora_host::findRecord(tableId, name);
  if (!id.isNull()) return id;
  Table* table = nullptr;
  if (acdbOpenObject(table, tableId, AcDb::kForWrite) != Acad::eOk) return id;
  auto* rec = new Record();
  rec->setName(name);
  prepare(rec);
  if (table->add(id, rec) == Acad::eOk) rec->close(); else delete rec;
  table->close();
  return id;
}

template <class Table, class Record>
AcDbObjectId ensureRecord(AcDbObjectId tableId, const ACHAR* name) {
  return ensureRecord<Table, Record>(tableId, name, [](Record*) {});
}

template <class T>
AcDbObjectId ensureEntry(AcDbObjectId dictId, const ACHAR* key, void (*prepare)(T*, const ACHAR*) = nullptr) {
  AcDbObjectId id = vora_host::findEntry(dictId, key);
  if (!id.isNull()) return id;
  AcDbDictionary* dict = nullptr;
  if (acdbOpenObject(dict, dictId, AcDb::kForWrite) != Acad::eOk) return id;
  auto* obj = new T();
  if (prepare != nullptr) prepare(obj, key);
  if (dict->setAt(key, obj, id) == Acad::eOk) obj->close(); else delete obj;
  dict->close();
  return id;
}

void nameMaterial(AcDbMaterial* mat, const ACHAR* name) { mat->setName(name); }

}  // namespace

namespace vora_host {

void ensureDefaults(AcDbDatabase* db) {
  const AcDbObjectId blocks = ensureRoot<AcDbBlockTable>(db, Root::BlockTable);
  const AcDbObjectId layers = ensureRoot<AcDbLayerTable>(db, Root::LayerTable);
  const AcDbObjectId styles = ensureRoot<AcDbTextStyleTable>(db, Root::TextStyleTable);
  const AcDbObjectId linetypes = ensureRoot<AcDbLinetypeTable>(db, Root::LinetypeTable);
  ensureRoot<AcDbViewTable>(db, Root::ViewTable);
  ensureRoot<AcDbUCSTable>(db, Root::UCSTable);
  const AcDbObjectId vports = ensureRoot<AcDbViewportTable>(db, Root::ViewportTable);
  const AcDbObjectId apps = ensureRoot<AcDbRegAppTable>(db, Root::RegAppTable);
  const AcDbObjectId dimstyles = ensureRoot<AcDbDimStyleTable>(db, Root::DimStyleTable);
  const AcDbObjectId nod = ensureRoot<AcDbDictionary>(db, Root::NamedObjects);

  for (const ACHAR* key : {L"ACAD_COLOR", L"ACAD_GROUP", L"ACAD_LAYOUT", L"ACAD_MATERIAL", L"ACAD_MLINESTYLE",
                           L"ACAD_PLOTSETTINGS", L"ACAD_PLOTSTYLENAME"}) {
    ensureEntry<AcDbDictionary>(nod, key);
  }
  const AcDbObjectId materials = db->materialDictionaryId();
  ensureEntry<AcDbMaterial>(materials, L"ByBlock", nameMaterial);
  const AcDbObjectId byLayerMaterial = ensureEntry<AcDbMaterial>(materials, L"ByLayer", nameMaterial);
  ensureEntry<AcDbMaterial>(materials, L"Global", nameMaterial);

  ensureRecord<AcDbLinetypeTable, AcDbLinetypeTableRecord>(linetypes, L"ByBlock");
  const AcDbObjectId byLayerLinetype = ensureRecord<AcDbLinetypeTable, AcDbLinetypeTableRecord>(linetypes, L"ByLayer");
  const AcDbObjectId continuous = ensureRecord<AcDbLinetypeTable, AcDbLinetypeTableRecord>(
      linetypes, L"Continuous", [](AcDbLinetypeTableRecord* r) { r->setComments(L"Solid line"); });
  const AcDbObjectId zero = ensureRecord<AcDbLayerTable, AcDbLayerTableRecord>(
      layers, L"0", [continuous](AcDbLayerTableRecord* r) {
        AcCmColor white;
        white.setColorIndex(7);
        r->setColor(white);
        r->setLinetypeObjectId(continuous);
      });
  ensureRecord<AcDbTextStyleTable, AcDbTextStyleTableRecord>(styles, L"Standard",
                                                             [](AcDbTextStyleTableRecord* r) { r->setFileName(L"txt"); });
  ensureRecord<AcDbDimStyleTable, AcDbDimStyleTableRecord>(dimstyles, L"Standard");
  ensureRecord<AcDbViewportTable, AcDbViewportTableRecord>(vports, L"*Active");
  ensureRecord<AcDbRegAppTable, AcDbRegAppTableRecord>(apps, L"ACAD");
  ensureRecord<AcDbBlockTable, AcDbBlockTableRecord>(blocks, ACDB_MODEL_SPACE);
  ensureRecord<AcDbBlockTable, AcDbBlockTableRecord>(blocks, ACDB_PAPER_SPACE);

  DatabaseState& st = Access::state(db);
  if (AcDbLayerTableRecord::cast(peek(st.clayer)) == nullptr) st.clayer = zero;
  if (AcDbLinetypeTableRecord::cast(peek(st.celtype)) == nullptr) st.celtype = byLayerLinetype;
  if (AcDbMaterial::cast(peek(st.cmaterial)) == nullptr) st.cmaterial = byLayerMaterial;
}

}  // namespace vora_host

AcDbDatabase::~AcDbDatabase() {
  liveDatabases().erase(this);
  if (acdbHostApplicationServices()->workingDatabase() == this) {
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  }
  for (AcDbStub& stub : mpImpl->stubs) {
    delete stub.obj;
    stub.obj = nullptr;
  }
  delete mpImpl;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObject* pObj) {
  AcDbObjectId id;
  return addAcDbObject(id, pObj);
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& objId, AcDbObject* pObj) {
  objId = AcDbObjectId::kNull;
  if (pObj == nullptr) return Acad::eNullObjectPointer;
  if (Access::stub(pObj) != nullptr) return Acad::eAlreadyInDb;
  Impl& st = *mpImpl;
  // Handles given out to forward references are never reused.
  while (st.byHandle.count(st.handseed) != 0) ++st.handseed;
  AcDbStub& stub = st.stubs.emplace_back();
  stub.db = this;
  stub.obj = pObj;
  stub.handle = st.handseed++;
  st.byHandle.emplace(stub.handle, &stub);
  if (stub.handle > st.maxHandle) st.maxHandle = stub.handle;
  st.order.push_back(&stub);
  Access::setStub(pObj, &stub);
  Access::markOpenForWrite(pObj);
  objId = AcDbObjectId(&stub);
  Access::notifyAdded(pObj, this);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& retId, bool createIfNotFound, const AcDbHandle& objHandle,
                                                Adesk::UInt32) {
  retId = AcDbObjectId::kNull;
  if (objHandle.isNull()) return Acad::eNullHandle;
  Impl& st = *mpImpl;
  const Adesk::UInt64 value = objHandle;
  auto it = st.byHandle.find(value);
  if (it != st.byHandle.end()) {
    if (it->second->obj == nullptr && !createIfNotFound) return Acad::eUnknownHandle;
    retId = AcDbObjectId(it->second);
    return Acad::eOk;
  }
  if (!createIfNotFound) return Acad::eUnknownHandle;
  AcDbStub& stub = st.stubs.emplace_back();
  stub.db = this;
  stub.handle = value;
  st.byHandle.emplace(value, &stub);
  if (value > st.maxHandle) st.maxHandle = value;
  retId = AcDbObjectId(&stub);
  return Acad::eOk;
}

AcDbHandle AcDbDatabase::handseed() const { return AcDbHandle(mpImpl->handseed); }

Acad::ErrorStatus AcDbDatabase::setHandseed(const AcDbHandle& handle) {
  const Adesk::UInt64 value = handle;
  if (value <= mpImpl->maxHandle) return Acad::eInvalidInput;
  mpImpl->handseed = value;
  return Acad::eOk;
}

namespace {

template <class T>
Acad::ErrorStatus openRoot(const AcDbDatabase* db, Root which, T*& out, AcDb::OpenMode mode) {
  out = nullptr;
  const AcDbObjectId id = vora_host::root(db, which);
  if (id.isNull()) return Acad::eNullObjectId;
  return acdbOpenObject(out, id, mode);
}

template <class T>
Acad::ErrorStatus openNodEntry(AcDbDatabase* db, const ACHAR* key, T*& out, AcDb::OpenMode mode) {
  out = nullptr;
  const AcDbObjectId id = vora_host::findEntry(db->namedObjectsDictionaryId(), key);
  if (id.isNull()) return Acad::eKeyNotFound;
  return acdbOpenObject(out, id, mode);
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::BlockTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::LayerTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::LinetypeTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::RegAppTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getTextStyleTable(AcDbTextStyleTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::TextStyleTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getDimStyleTable(AcDbDimStyleTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::DimStyleTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getViewportTable(AcDbViewportTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::ViewportTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getViewTable(AcDbViewTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::ViewTable, t, m); }
Acad::ErrorStatus AcDbDatabase::getUCSTable(AcDbUCSTable*& t, AcDb::OpenMode m) { return openRoot(this, Root::UCSTable, t, m); }
AcDbObjectId AcDbDatabase::blockTableId() const { return vora_host::root(this, Root::BlockTable); }
AcDbObjectId AcDbDatabase::layerTableId() const { return vora_host::root(this, Root::LayerTable); }
AcDbObjectId AcDbDatabase::linetypeTableId() const { return vora_host::root(this, Root::LinetypeTable); }
AcDbObjectId AcDbDatabase::regAppTableId() const { return vora_host::root(this, Root::RegAppTable); }
AcDbObjectId AcDbDatabase::textStyleTableId() const { return vora_host::root(this, Root::TextStyleTable); }
AcDbObjectId AcDbDatabase::dimStyleTableId() const { return vora_host::root(this, Root::DimStyleTable); }
AcDbObjectId AcDbDatabase::viewportTableId() const { return vora_host::root(this, Root::ViewportTable); }
AcDbObjectId AcDbDatabase::viewTableId() const { return vora_host::root(this, Root::ViewTable); }
AcDbObjectId AcDbDatabase::UCSTableId() const { return vora_host::root(this, Root::UCSTable); }

Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openRoot(this, Root::NamedObjects, d, m);
}
AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const { return vora_host::root(this, Root::NamedObjects); }
Acad::ErrorStatus AcDbDatabase::getMaterialDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openNodEntry(this, L"ACAD_MATERIAL", d, m);
}
AcDbObjectId AcDbDatabase::materialDictionaryId() const {
  return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_MATERIAL");
}
Acad::ErrorStatus AcDbDatabase::getGroupDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openNodEntry(this, L"ACAD_GROUP", d, m);
}
AcDbObjectId AcDbDatabase::groupDictionaryId() const { return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_GROUP"); }
Acad::ErrorStatus AcDbDatabase::getLayoutDictionary(AcDbDictionary*& d, AcDb::OpenMode m) {
  return openNodEntry(this, L"ACAD_LAYOUT", d, m);
}
AcDbObjectId AcDbDatabase::layoutDictionaryId() const { return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_LAYOUT"); }
AcDbObjectId AcDbDatabase::mLStyleDictionaryId() const {
  return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_MLINESTYLE");
}
AcDbObjectId AcDbDatabase::colorDictionaryId() const { return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_COLOR"); }
AcDbObjectId AcDbDatabase::plotSettingsDictionaryId() const {
  return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_PLOTSETTINGS");
}
AcDbObjectId AcDbDatabase::plotStyleNameDictionaryId() const {
  return vora_host::findEntry(namedObjectsDictionaryId(), L"ACAD_PLOTSTYLENAME");
}

AcDbObjectId AcDbDatabase::clayer() const { return mpImpl->clayer; }
Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId id) {
  if (!AcDbLayerTableRecord::cast(vora_host::peek(id))) return Acad::eInvalidInput;
  mpImpl->clayer = id;
  return Acad::eOk;
}
AcDbObjectId AcDbDatabase::celtype() const { return mpImpl->celtype; }
Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId id) {
  if (!AcDbLinetypeTableRecord::cast(vora_host::peek(id))) return Acad::eInvalidInput;
  mpImpl->celtype = id;
  return Acad::eOk;
}
AcDbObjectId AcDbDatabase::cmaterial() const { return mpImpl->cmaterial; }
Acad::ErrorStatus AcDbDatabase::setCmaterial(AcDbObjectId id) {
  if (!AcDbMaterial::cast(vora_host::peek(id))) return Acad::eInvalidInput;
  mpImpl->cmaterial = id;
  return Acad::eOk;
}
double AcDbDatabase::celtscale() const { return mpImpl->celtscale; }
Acad::ErrorStatus AcDbDatabase::setCeltscale(double scale) {
  if (!(scale > 0.0)) return Acad::eInvalidInput;
  mpImpl->celtscale = scale;
  return Acad::eOk;
}
AcDb::LineWeight AcDbDatabase::celweight() const { return mpImpl->celweight; }
Acad::ErrorStatus AcDbDatabase::setCelweight(AcDb::LineWeight weight) {
  mpImpl->celweight = weight;
  return Acad::eOk;
}
Adesk::UInt16 AcDbDatabase::cecolorIndex() const { return mpImpl->cecolor; }
Acad::ErrorStatus AcDbDatabase::setCecolorIndex(Adesk::UInt16 colorIndex) {
  if (colorIndex > 256) return Acad::eInvalidInput;
  mpImpl->cecolor = colorIndex;
  return Acad::eOk;
}

AcDbObjectId AcDbDatabase::byLayerLinetype() const { return vora_host::findRecord(linetypeTableId(), L"ByLayer"); }
AcDbObjectId AcDbDatabase::byBlockLinetype() const { return vora_host::findRecord(linetypeTableId(), L"ByBlock"); }
AcDbObjectId AcDbDatabase::continuousLinetype() const { return vora_host::findRecord(linetypeTableId(), L"Continuous"); }
AcDbObjectId AcDbDatabase::byLayerMaterial() const { return vora_host::findEntry(materialDictionaryId(), L"ByLayer"); }
AcDbObjectId AcDbDatabase::byBlockMaterial() const { return vora_host::findEntry(materialDictionaryId(), L"ByBlock"); }
AcDbObjectId AcDbDatabase::globalMaterial() const { return vora_host::findEntry(materialDictionaryId(), L"Global"); }
AcDbObjectId AcDbDatabase::layerZero() const { return vora_host::findRecord(layerTableId(), L"0"); }
AcDbObjectId AcDbDatabase::currentSpaceId() const { return modelSpaceId(); }
AcDbObjectId AcDbDatabase::modelSpaceId() const { return vora_host::findRecord(blockTableId(), ACDB_MODEL_SPACE); }
AcDbObjectId AcDbDatabase::paperSpaceId() const { return vora_host::findRecord(blockTableId(), ACDB_PAPER_SPACE); }

AcDb::AcDbDwgVersion AcDbDatabase::originalFileVersion() const { return mpImpl->version; }
void AcDbDatabase::setOriginalFileVersion(AcDb::AcDbDwgVersion version) { mpImpl->version = version; }
const ACHAR* AcDbDatabase::getFilename() const { return mpImpl->filename.c_str(); }

vora_host::ObjectExtra* AcDbDatabase::hostExtra() const { return mpImpl->extra.get(); }
void AcDbDatabase::setHostExtra(std::unique_ptr<vora_host::ObjectExtra> extra) { mpImpl->extra = std::move(extra); }

AcDbHostApplicationServices* acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}

int acdbRegApp(const ACHAR* appName) {
  if (appName == nullptr || *appName == 0) return RTERROR;
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  if (db == nullptr) return RTERROR;
  AcDbRegAppTable* table = nullptr;
  if (db->getRegAppTable(table, AcDb::kForWrite) != Acad::eOk) return RTERROR;
  int result = RTERROR;
  if (!table->has(appName)) {
    auto* rec = new AcDbRegAppTableRecord();
    if (rec->setName(appName) == Acad::eOk && table->add(rec) == Acad::eOk) {
      rec->close();
      result = RTNORM;
    } else {
      delete rec;
    }
  }
  table->close();
  return result;
}

namespace vorahost {

std::vector<OpenObject> openObjects(const AcDbDatabase* db) {
  std::vector<OpenObject> out;
  for (AcDbDatabase* d : liveDatabases()) {
    if (db != nullptr && d != db) continue;
    for (AcDbStub* stub : Access::state(d).open) {
      AcDbObject* obj = stub->obj;
      if (obj == nullptr) continue;
      AcRxClass* cls = obj->isA();
      out.push_back(OpenObject{AcDbObjectId(stub), AcDbHandle(stub->handle), cls != nullptr ? cls->name() : L"",
                               Access::isOpenForWrite(obj), Access::readers(obj)});
    }
  }
  return out;
}

std::size_t openObjectCount(const AcDbDatabase* db) {
  std::size_t n = 0;
  for (AcDbDatabase* d : liveDatabases()) {
    if (db == nullptr || d == db) n += Access::state(d).open.size();
  }
  return n;
}

}  // namespace vorahost
