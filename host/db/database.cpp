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

AcDbObjectId addDictionary(AcDbDictionary* parent, const ACHAR* key) {
  auto* dict = new AcDbDictionary();
  AcDbObjectId id;
  parent->setAt(key, dict, id);
  dict->close();
  return id;
}

template <class Table, class Record>
AcDbObjectId addRecord(Table* table, Record* rec, const ACHAR* name) {
  rec->setName(name);
  AcDbObjectId id;
  table->add(id, rec);
  rec->close();
  return id;
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
  if (!buildDefaultDrawing) return;

  auto addRoot = [this](Root which, AcDbObject* obj) {
    AcDbObjectId id;
    addAcDbObject(id, obj);
    vora_host::setRoot(this, which, id);
    return obj;
  };
  auto* blocks = static_cast<AcDbBlockTable*>(addRoot(Root::BlockTable, new AcDbBlockTable()));
  auto* layers = static_cast<AcDbLayerTable*>(addRoot(Root::LayerTable, new AcDbLayerTable()));
  auto* styles = static_cast<AcDbTextStyleTable*>(addRoot(Root::TextStyleTable, new AcDbTextStyleTable()));
  auto* linetypes = static_cast<AcDbLinetypeTable*>(addRoot(Root::LinetypeTable, new AcDbLinetypeTable()));
  auto* views = addRoot(Root::ViewTable, new AcDbViewTable());
  auto* ucss = addRoot(Root::UCSTable, new AcDbUCSTable());
  auto* vports = static_cast<AcDbViewportTable*>(addRoot(Root::ViewportTable, new AcDbViewportTable()));
  auto* apps = static_cast<AcDbRegAppTable*>(addRoot(Root::RegAppTable, new AcDbRegAppTable()));
  auto* dimstyles = static_cast<AcDbDimStyleTable*>(addRoot(Root::DimStyleTable, new AcDbDimStyleTable()));
  auto* nod = static_cast<AcDbDictionary*>(addRoot(Root::NamedObjects, new AcDbDictionary()));

  addDictionary(nod, L"ACAD_COLOR");
  addDictionary(nod, L"ACAD_GROUP");
  addDictionary(nod, L"ACAD_LAYOUT");
  const AcDbObjectId materialsId = addDictionary(nod, L"ACAD_MATERIAL");
  addDictionary(nod, L"ACAD_MLINESTYLE");
  addDictionary(nod, L"ACAD_PLOTSETTINGS");
  addDictionary(nod, L"ACAD_PLOTSTYLENAME");
  auto* materials = static_cast<AcDbDictionary*>(vora_host::peek(materialsId));
  Access::markOpenForWrite(materials);
  AcDbObjectId byLayerMaterial;
  for (const ACHAR* name : {L"ByBlock", L"ByLayer", L"Global"}) {
    auto* mat = new AcDbMaterial();
    mat->setName(name);
    AcDbObjectId id;
    materials->setAt(name, mat, id);
    mat->close();
    if (std::wstring(name) == L"ByLayer") byLayerMaterial = id;
  }
  materials->close();

  addRecord(linetypes, new AcDbLinetypeTableRecord(), L"ByBlock");
  const AcDbObjectId byLayerLinetype = addRecord(linetypes, new AcDbLinetypeTableRecord(), L"ByLayer");
  auto* continuous = new AcDbLinetypeTableRecord();
  continuous->setComments(L"Solid line");
  const AcDbObjectId continuousId = addRecord(linetypes, continuous, L"Continuous");

  auto* zero = new AcDbLayerTableRecord();
  AcCmColor white;
  white.setColorIndex(7);
  zero->setColor(white);
  zero->setLinetypeObjectId(continuousId);
  const AcDbObjectId zeroId = addRecord(layers, zero, L"0");

  auto* standard = new AcDbTextStyleTableRecord();
  standard->setFileName(L"txt");
  addRecord(styles, standard, L"Standard");
  addRecord(dimstyles, new AcDbDimStyleTableRecord(), L"Standard");
  addRecord(vports, new AcDbViewportTableRecord(), L"*Active");
  addRecord(apps, new AcDbRegAppTableRecord(), L"ACAD");
  addRecord(blocks, new AcDbBlockTableRecord(), ACDB_MODEL_SPACE);
  addRecord(blocks, new AcDbBlockTableRecord(), ACDB_PAPER_SPACE);

  for (AcDbObject* table : {static_cast<AcDbObject*>(blocks), static_cast<AcDbObject*>(layers),
                            static_cast<AcDbObject*>(styles), static_cast<AcDbObject*>(linetypes), views, ucss,
                            static_cast<AcDbObject*>(vports), static_cast<AcDbObject*>(apps),
                            static_cast<AcDbObject*>(dimstyles), static_cast<AcDbObject*>(nod)}) {
    table->close();
  }
  mpImpl->clayer = zeroId;
  mpImpl->celtype = byLayerLinetype;
  mpImpl->cmaterial = byLayerMaterial;
}

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
