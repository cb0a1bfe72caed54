#include <cwchar>

#include "host/db/internal.h"
#include "vora/arx/dbsortents.h"

using vora_host::Access;

namespace vora_host {

AcDbObjectId findRecord(AcDbObjectId tableId, const ACHAR* name) {
  auto* table = AcDbSymbolTable::cast(peek(tableId));
  if (table == nullptr || name == nullptr) return AcDbObjectId::kNull;
  const std::wstring key = foldKey(name);
  for (const AcDbObjectId& id : Access::records(table)) {
    auto* rec = AcDbSymbolTableRecord::cast(peek(id));
    if (rec == nullptr || rec->isErased()) continue;
    const ACHAR* recName = nullptr;
    rec->getName(recName);
    if (foldKey(recName) == key) return id;
  }
  return AcDbObjectId::kNull;
}

void appendRecord(AcDbSymbolTable* table, AcDbObjectId record) { Access::records(table).push_back(record); }
void appendEntity(AcDbBlockTableRecord* btr, AcDbObjectId entity) { Access::entities(btr).push_back(entity); }
void setBlockBeginEnd(AcDbBlockTableRecord* btr, AcDbObjectId begin, AcDbObjectId end) {
  Access::blockBegin(btr) = begin;
  Access::blockEnd(btr) = end;
}
const std::vector<AcDbObjectId>& records(const AcDbSymbolTable* table) { return Access::records(table); }
const std::vector<AcDbObjectId>& entities(const AcDbBlockTableRecord* btr) { return Access::entities(btr); }

}  // namespace vora_host

namespace {

// The record of the table (other than self) that has the name.
AcDbObjectId otherRecordNamed(AcDbObjectId tableId, const ACHAR* name, const AcDbObject* self) {
  const AcDbObjectId found = vora_host::findRecord(tableId, name);
  if (found.isNull() || vora_host::peek(found) == self) return AcDbObjectId::kNull;
  return found;
}

}  // namespace

// Tables.

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)

AcDbSymbolTable::AcDbSymbolTable() = default;
AcDbSymbolTable::~AcDbSymbolTable() = default;

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* entryName, AcDbObjectId& recordId, bool getErasedRecord) const {
  recordId = AcDbObjectId::kNull;
  if (entryName == nullptr) return Acad::eInvalidInput;
  const std::wstring key = vora_host::foldKey(entryName);
  AcDbObjectId erasedMatch;
  for (const AcDbObjectId& id : mRecords) {
    auto* rec = AcDbSymbolTableRecord::cast(vora_host::peek(id));
    if (rec == nullptr) continue;
    const ACHAR* recName = nullptr;
    rec->getName(recName);
    if (vora_host::foldKey(recName) != key) continue;
    if (!rec->isErased()) {
      recordId = id;
      return Acad::eOk;
    }
    if (erasedMatch.isNull()) erasedMatch = id;
  }
  if (getErasedRecord && !erasedMatch.isNull()) {
    recordId = erasedMatch;
    return Acad::eOk;
  }
  return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* entryName, AcDbSymbolTableRecord*& pRec, AcDb::OpenMode openMode,
                                         bool openErasedRec) const {
  pRec = nullptr;
  AcDbObjectId id;
  const Acad::ErrorStatus es = getAt(entryName, id, openErasedRec);
  if (es != Acad::eOk) return es;
  return acdbOpenObject(pRec, id, openMode, openErasedRec);
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
  for (const AcDbObjectId& r : mRecords) {
    if (r == id) return !id.isErased();
  }
  return false;
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* pRecord) {
  AcDbObjectId id;
  return add(id, pRecord);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& recordId, AcDbSymbolTableRecord* pRecord) {
  recordId = AcDbObjectId::kNull;
  if (pRecord == nullptr) return Acad::eNullObjectPointer;
  if (database() == nullptr) return Acad::eNoDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (pRecord->database() != nullptr) return Acad::eAlreadyInDb;
  const ACHAR* name = nullptr;
  pRecord->getName(name);
  if (name == nullptr || *name == 0) return Acad::eInvalidInput;
  if (has(name)) return Acad::eDuplicateRecordName;
  vora_host::setOwner(pRecord, objectId());
  const Acad::ErrorStatus es = database()->addAcDbObject(recordId, pRecord);
  if (es != Acad::eOk) return es;
  mRecords.push_back(recordId);
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& pIterator, bool atBeginning,
                                               bool skipDeleted) const {
  pIterator = new AcDbSymbolTableIterator(mRecords);
  pIterator->start(atBeginning, skipDeleted);
  return Acad::eOk;
}

// Iterators.

AcDbSymbolTableIterator::AcDbSymbolTableIterator(std::vector<AcDbObjectId> ids) : mIds(std::move(ids)) {}
AcDbSymbolTableIterator::~AcDbSymbolTableIterator() = default;

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
  mPos = atBeginning ? 0 : static_cast<long>(mIds.size()) - 1;
  while (skipDeleted && !done() && mIds[static_cast<std::size_t>(mPos)].isErased()) mPos += atBeginning ? 1 : -1;
}

bool AcDbSymbolTableIterator::done() const { return mPos < 0 || mPos >= static_cast<long>(mIds.size()); }

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
  do {
    mPos += forward ? 1 : -1;
  } while (skipDeleted && !done() && mIds[static_cast<std::size_t>(mPos)].isErased());
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
  if (done()) return Acad::eIteratorDone;
  id = mIds[static_cast<std::size_t>(mPos)];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& pRecord, AcDb::OpenMode openMode,
                                                     bool openErasedRec) const {
  pRecord = nullptr;
  if (done()) return Acad::eIteratorDone;
  return acdbOpenObject(pRecord, mIds[static_cast<std::size_t>(mPos)], openMode, openErasedRec);
}

Acad::ErrorStatus AcDbSymbolTableIterator::seek(AcDbObjectId id) {
  for (std::size_t i = 0; i < mIds.size(); ++i) {
    if (mIds[i] == id) {
      mPos = static_cast<long>(i);
      return Acad::eOk;
    }
  }
  return Acad::eInvalidInput;
}

// Records.

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)

AcDbSymbolTableRecord::AcDbSymbolTableRecord() = default;
AcDbSymbolTableRecord::~AcDbSymbolTableRecord() = default;

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& pName) const { return acutNewString(mName.c_str(), pName); }

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& pName) const {
  pName = mName.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* pName) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (pName == nullptr || *pName == 0) return Acad::eInvalidInput;
  if (!ownerId().isNull() && !otherRecordNamed(ownerId(), pName, this).isNull()) return Acad::eDuplicateRecordName;
  mName = pName;
  setHostModified(true);
  return Acad::eOk;
}

#define VORA_DEFINE_SYMBOL_TABLE(TABLE, RECORD, ITERATOR, DXFNAME)                                           \
  ACRX_DXF_DEFINE_MEMBERS(TABLE, AcDbSymbolTable, AcDb::kDHL_CURRENT, 0, 0, DXFNAME, ObjectDBX Classes)     \
  TABLE::TABLE() = default;                                                                                 \
  TABLE::~TABLE() = default;                                                                                \
  Acad::ErrorStatus TABLE::getAt(const ACHAR* entryName, RECORD*& pRec, AcDb::OpenMode openMode,            \
                                 bool openErasedRec) const {                                                \
    pRec = nullptr;                                                                                         \
    AcDbObjectId id;                                                                                        \
    const Acad::ErrorStatus es = AcDbSymbolTable::getAt(entryName, id, openErasedRec);                     \
    return es != Acad::eOk ? es : acdbOpenObject(pRec, id, openMode, openErasedRec);                      \
  }                                                                                                         \
  Acad::ErrorStatus TABLE::add(RECORD* pRecord) { return AcDbSymbolTable::add(pRecord); }                   \
  Acad::ErrorStatus TABLE::add(AcDbObjectId& recordId, RECORD* pRecord) {                                   \
    return AcDbSymbolTable::add(recordId, pRecord);                                                         \
  }                                                                                                         \
  Acad::ErrorStatus TABLE::newIterator(ITERATOR*& pIterator, bool atBeginning, bool skipDeleted) const {    \
    pIterator = new ITERATOR(vora_host::records(this));                                                     \
    pIterator->start(atBeginning, skipDeleted);                                                             \
    return Acad::eOk;                                                                                       \
  }                                                                                                         \
  Acad::ErrorStatus ITERATOR::getRecord(RECORD*& pRecord, AcDb::OpenMode openMode, bool openErasedRec) const { \
    pRecord = nullptr;                                                                                      \
    AcDbObjectId id;                                                                                        \
    const Acad::ErrorStatus es = getRecordId(id);                                                          \
    return es != Acad::eOk ? es : acdbOpenObject(pRecord, id, openMode, openErasedRec);                   \
  }

VORA_DEFINE_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord, AcDbBlockTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord, AcDbLayerTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord, AcDbLinetypeTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord, AcDbRegAppTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord, AcDbTextStyleTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbDimStyleTable, AcDbDimStyleTableRecord, AcDbDimStyleTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbViewportTable, AcDbViewportTableRecord, AcDbViewportTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbViewTable, AcDbViewTableRecord, AcDbViewTableIterator, TABLE)
VORA_DEFINE_SYMBOL_TABLE(AcDbUCSTable, AcDbUCSTableRecord, AcDbUCSTableIterator, TABLE)

#define VORA_DEFINE_PLAIN_RECORD(RECORD, DXFNAME)                                                            \
  ACRX_DXF_DEFINE_MEMBERS(RECORD, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, DXFNAME, ObjectDBX Classes) \
  RECORD::RECORD() = default;                                                                               \
  RECORD::~RECORD() = default;

VORA_DEFINE_PLAIN_RECORD(AcDbRegAppTableRecord, APPID)
VORA_DEFINE_PLAIN_RECORD(AcDbDimStyleTableRecord, DIMSTYLE)
VORA_DEFINE_PLAIN_RECORD(AcDbViewportTableRecord, VPORT)
VORA_DEFINE_PLAIN_RECORD(AcDbViewTableRecord, VIEW)
VORA_DEFINE_PLAIN_RECORD(AcDbUCSTableRecord, UCS)

// Layers.

ACRX_DXF_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, LAYER, ObjectDBX Classes)

AcDbLayerTableRecord::AcDbLayerTableRecord() = default;
AcDbLayerTableRecord::~AcDbLayerTableRecord() = default;

#define VORA_GUARDED_SET(FIELD, VALUE)      \
  do {                                      \
    if (!assertWriteEnabled()) return;      \
    FIELD = VALUE;                          \
    setHostModified(true);                  \
  } while (false)

#define VORA_GUARDED_SET_ES(FIELD, VALUE)                      \
  do {                                                         \
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;      \
    FIELD = VALUE;                                             \
    setHostModified(true);                                     \
    return Acad::eOk;                                          \
  } while (false)

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) { VORA_GUARDED_SET_ES(mFrozen, frozen); }
void AcDbLayerTableRecord::setIsOff(bool off) { VORA_GUARDED_SET(mOff, off); }
void AcDbLayerTableRecord::setVPDFLT(bool frozen) { VORA_GUARDED_SET(mVpdflt, frozen); }
void AcDbLayerTableRecord::setIsLocked(bool locked) { VORA_GUARDED_SET(mLocked, locked); }
void AcDbLayerTableRecord::setColor(const AcCmColor& color) { VORA_GUARDED_SET(mColor, color); }
void AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId id) { VORA_GUARDED_SET(mLinetype, id); }
Acad::ErrorStatus AcDbLayerTableRecord::setMaterialId(AcDbObjectId id) { VORA_GUARDED_SET_ES(mMaterial, id); }
Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) { VORA_GUARDED_SET_ES(mPlottable, plottable); }
Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) { VORA_GUARDED_SET_ES(mLineWeight, weight); }

// Linetypes.

ACRX_DXF_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, LTYPE, ObjectDBX Classes)

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() = default;
AcDbLinetypeTableRecord::~AcDbLinetypeTableRecord() = default;

Acad::ErrorStatus AcDbLinetypeTableRecord::comments(const ACHAR*& pString) const {
  pString = mComments.c_str();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* pString) {
  VORA_GUARDED_SET_ES(mComments, std::wstring(pString != nullptr ? pString : L""));
}
void AcDbLinetypeTableRecord::setPatternLength(double length) { VORA_GUARDED_SET(mPatternLength, length); }
void AcDbLinetypeTableRecord::setNumDashes(int count) {
  if (!assertWriteEnabled()) return;
  mDashes.resize(count > 0 ? static_cast<std::size_t>(count) : 0, 0.0);
  setHostModified(true);
}
double AcDbLinetypeTableRecord::dashLengthAt(int index) const {
  return (index >= 0 && index < numDashes()) ? mDashes[static_cast<std::size_t>(index)] : 0.0;
}
void AcDbLinetypeTableRecord::setDashLengthAt(int index, double value) {
  if (index < 0 || index >= numDashes()) return;
  VORA_GUARDED_SET(mDashes[static_cast<std::size_t>(index)], value);
}

// Text styles.

ACRX_DXF_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, STYLE, ObjectDBX Classes)

AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() = default;
AcDbTextStyleTableRecord::~AcDbTextStyleTableRecord() = default;
Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) { VORA_GUARDED_SET_ES(mTextSize, size); }
Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double scale) { VORA_GUARDED_SET_ES(mXScale, scale); }
Acad::ErrorStatus AcDbTextStyleTableRecord::setPriorSize(double size) { VORA_GUARDED_SET_ES(mPriorSize, size); }
Acad::ErrorStatus AcDbTextStyleTableRecord::fileName(const ACHAR*& fontFile) const {
  fontFile = mFileName.c_str();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR* fontFile) {
  VORA_GUARDED_SET_ES(mFileName, std::wstring(fontFile != nullptr ? fontFile : L""));
}

// Blocks.

ACRX_DXF_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, BLOCK_RECORD,
                        ObjectDBX Classes)

AcDbBlockTableRecord::AcDbBlockTableRecord() = default;
AcDbBlockTableRecord::~AcDbBlockTableRecord() = default;

void AcDbBlockTableRecord::onAddedToDatabase(AcDbDatabase* db) {
  // A new block gets the BLOCK and ENDBLK entities every block has in a file.
  auto addMarker = [this, db](AcDbEntity* marker) {
    vora_host::setOwner(marker, objectId());
    AcDbObjectId id;
    db->addAcDbObject(id, marker);
    marker->setLayer(db->layerZero(), false);
    marker->close();
    return id;
  };
  if (mBlockBegin.isNull()) mBlockBegin = addMarker(new AcDbBlockBegin());
  if (mBlockEnd.isNull()) mBlockEnd = addMarker(new AcDbBlockEnd());
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* pEntity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, pEntity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& pOutputId, AcDbEntity* pEntity) {
  pOutputId = AcDbObjectId::kNull;
  if (pEntity == nullptr) return Acad::eNullEntityPointer;
  if (database() == nullptr) return Acad::eNotInDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (pEntity->database() != nullptr) return Acad::eAlreadyInDb;
  vora_host::setOwner(pEntity, objectId());
  const Acad::ErrorStatus es = database()->addAcDbObject(pOutputId, pEntity);
  if (es != Acad::eOk) {
    vora_host::setOwner(pEntity, AcDbObjectId::kNull);
    return es;
  }
  mEntities.push_back(pOutputId);
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& pIterator, bool atBeginning,
                                                    bool skipDeleted) const {
  pIterator = new AcDbBlockTableRecordIterator(mEntities);
  pIterator->start(atBeginning, skipDeleted);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& pt) { VORA_GUARDED_SET_ES(mOrigin, pt); }
Acad::ErrorStatus AcDbBlockTableRecord::setLayoutId(AcDbObjectId id) { VORA_GUARDED_SET_ES(mLayoutId, id); }

bool AcDbBlockTableRecord::isLayout() const {
  const ACHAR* name = nullptr;
  getName(name);
  const std::wstring key = vora_host::foldKey(name);
  return !mLayoutId.isNull() || key == L"*MODEL_SPACE" || key.rfind(L"*PAPER_SPACE", 0) == 0;
}

bool AcDbBlockTableRecord::isAnonymous() const {
  const ACHAR* name = nullptr;
  getName(name);
  return name != nullptr && name[0] == L'*' && !isLayout();
}

Acad::ErrorStatus AcDbBlockTableRecord::getSortentsTable(AcDbSortentsTable*& pSortents, AcDb::OpenMode openMode,
                                                         bool createIfNecessary) {
  pSortents = nullptr;
  if (database() == nullptr) return Acad::eNotInDatabase;
  AcDbObjectId id = vora_host::findEntry(extensionDictionary(), L"ACAD_SORTENTS");
  if (id.isNull()) {
    if (!createIfNecessary) return Acad::eKeyNotFound;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (extensionDictionary().isNull()) {
      const Acad::ErrorStatus es = createExtensionDictionary();
      if (es != Acad::eOk) return es;
    }
    AcDbDictionary* ext = nullptr;
    Acad::ErrorStatus es = acdbOpenObject(ext, extensionDictionary(), AcDb::kForWrite);
    if (es != Acad::eOk) return es;
    auto* table = new AcDbSortentsTable();
    table->setBlockId(objectId());
    es = ext->setAt(L"ACAD_SORTENTS", table, id);
    ext->close();
    if (es != Acad::eOk) {
      delete table;
      return es;
    }
    table->close();
  }
  return acdbOpenObject(pSortents, id, openMode);
}

Acad::ErrorStatus AcDbBlockTableRecord::openBlockBegin(AcDbBlockBegin*& pBlockBegin, AcDb::OpenMode openMode) {
  return acdbOpenObject(pBlockBegin, mBlockBegin, openMode);
}

Acad::ErrorStatus AcDbBlockTableRecord::openBlockEnd(AcDbBlockEnd*& pBlockEnd, AcDb::OpenMode openMode) {
  return acdbOpenObject(pBlockEnd, mBlockEnd, openMode);
}

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(std::vector<AcDbObjectId> ids) : mIds(std::move(ids)) {}
AcDbBlockTableRecordIterator::~AcDbBlockTableRecordIterator() = default;

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  mPos = atBeginning ? 0 : static_cast<long>(mIds.size()) - 1;
  while (skipDeleted && !done() && mIds[static_cast<std::size_t>(mPos)].isErased()) mPos += atBeginning ? 1 : -1;
}

bool AcDbBlockTableRecordIterator::done() const { return mPos < 0 || mPos >= static_cast<long>(mIds.size()); }

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  do {
    mPos += forward ? 1 : -1;
  } while (skipDeleted && !done() && mIds[static_cast<std::size_t>(mPos)].isErased());
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& entityId) const {
  if (done()) return Acad::eIteratorDone;
  entityId = mIds[static_cast<std::size_t>(mPos)];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& pEntity, AcDb::OpenMode openMode,
                                                          bool openErasedEntity) const {
  pEntity = nullptr;
  if (done()) return Acad::eIteratorDone;
  return acdbOpenAcDbEntity(pEntity, mIds[static_cast<std::size_t>(mPos)], openMode, openErasedEntity);
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::seek(AcDbObjectId id) {
  for (std::size_t i = 0; i < mIds.size(); ++i) {
    if (mIds[i] == id) {
      mPos = static_cast<long>(i);
      return Acad::eOk;
    }
  }
  return Acad::eInvalidInput;
}
