// Host-internal access to the drawing database, for the DXF layer and the
// core's own files. Nothing here checks or changes open states, and nothing
// touches an object's modified flag unless it says so.
#ifndef VORA_HOST_DB_INTERNAL_H
#define VORA_HOST_DB_INTERNAL_H

#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "vora/arx/db.h"
#include "vora/arx/dbdict.h"
#include "vora/arx/dbents.h"
#include "vora/arx/dbsortents.h"
#include "vora/arx/dbsymtb.h"

// An id points at its stub. The stub outlives its object only when the object
// was never bound (a forward reference made by getAcDbObjectId).
struct AcDbStub {
  AcDbDatabase* db = nullptr;
  AcDbObject* obj = nullptr;
  Adesk::UInt64 handle = 0;
};

namespace vora_host {

// The fixed roots of a database, as the header of a DXF file names them.
enum class Root {
  BlockTable,
  LayerTable,
  LinetypeTable,
  RegAppTable,
  TextStyleTable,
  DimStyleTable,
  ViewportTable,
  ViewTable,
  UCSTable,
  NamedObjects,
  Count
};

struct DatabaseState {
  std::deque<AcDbStub> stubs;
  std::unordered_map<Adesk::UInt64, AcDbStub*> byHandle;
  // Objects in the order they were loaded or added.
  std::vector<AcDbStub*> order;
  std::unordered_set<AcDbStub*> open;
  Adesk::UInt64 handseed = 1;
  Adesk::UInt64 maxHandle = 0;
  AcDbObjectId roots[static_cast<int>(Root::Count)];
  AcDbObjectId clayer, celtype, cmaterial;
  double celtscale = 1.0;
  AcDb::LineWeight celweight = AcDb::kLnWtByLayer;
  Adesk::UInt16 cecolor = 256;
  AcDb::AcDbDwgVersion version = AcDb::kDHL_CURRENT;
  std::wstring filename;
  std::unique_ptr<ObjectExtra> extra;
};

// Everything below may be called by host code only.
struct Access {
  // Database.
  static DatabaseState& state(const AcDbDatabase* db);
  static AcDbStub* stub(const AcDbObject* obj) { return obj->mpStub; }

  // Objects.
  static void setOwner(AcDbObject* obj, AcDbObjectId owner) { obj->mOwnerId = owner; }
  static void setExtensionDictionary(AcDbObject* obj, AcDbObjectId dict) { obj->mExtDictId = dict; }
  static void setErased(AcDbObject* obj, bool erased) { obj->mErased = erased; }
  static void addReactor(AcDbObject* obj, AcDbObjectId reactor);
  static std::vector<AcDbObjectId> reactors(const AcDbObject* obj);
  static void removeReactor(AcDbObject* obj, AcDbObjectId reactor) {
    if (obj->mpReactors) {
      obj->mpReactors->remove(reactor);
      if (obj->mpReactors->isEmpty()) obj->mpReactors.reset();
    }
  }
  static void notifyAdded(AcDbObject* obj, AcDbDatabase* db) { obj->onAddedToDatabase(db); }
  static void markOpenForWrite(AcDbObject* obj);
  static Acad::ErrorStatus openForRead(AcDbObject* obj, Adesk::UInt16 maxReaders) {
    if (obj->mWriter) return Acad::eWasOpenForWrite;
    if (obj->mReaders >= maxReaders) return Acad::eAtMaxReaders;
    ++obj->mReaders;
    return Acad::eOk;
  }
  static Acad::ErrorStatus openForWrite(AcDbObject* obj) {
    if (obj->mWriter) return Acad::eWasOpenForWrite;
    if (obj->mReaders > 0) return Acad::eWasOpenForRead;
    obj->mWriter = true;
    obj->mModified = true;
    return Acad::eOk;
  }
  static bool isOpen(const AcDbObject* obj) { return obj->mWriter || obj->mReaders > 0; }
  static bool isOpenForWrite(const AcDbObject* obj) { return obj->mWriter; }
  static int readers(const AcDbObject* obj) { return obj->mReaders; }
  static void setStub(AcDbObject* obj, AcDbStub* stub) { obj->mpStub = stub; }
  // Gives to an entity the properties of another (for sub-entities, whatever
  // their open state).
  static void copyProperties(AcDbEntity* to, const AcDbEntity* from);
  static void setXDataRaw(AcDbObject* obj, const resbuf* xdata);

  // Containers.
  static std::vector<AcDbObjectId>& records(AcDbSymbolTable* table) { return table->mRecords; }
  static const std::vector<AcDbObjectId>& records(const AcDbSymbolTable* table) { return table->mRecords; }
  static std::vector<AcDbObjectId>& entities(AcDbBlockTableRecord* btr) { return btr->mEntities; }
  static const std::vector<AcDbObjectId>& entities(const AcDbBlockTableRecord* btr) { return btr->mEntities; }
  static AcDbObjectId& blockBegin(AcDbBlockTableRecord* btr) { return btr->mBlockBegin; }
  static AcDbObjectId& blockEnd(AcDbBlockTableRecord* btr) { return btr->mBlockEnd; }
  static std::vector<DictEntry>& entries(AcDbDictionary* dict) { return dict->mEntries; }
  static const std::vector<DictEntry>& entries(const AcDbDictionary* dict) { return dict->mEntries; }
  static std::vector<AcDbObjectId>& vertices(AcDb2dPolyline* pl) { return pl->mVertices; }
  static std::vector<AcDbObjectId>& vertices(AcDb3dPolyline* pl) { return pl->mVertices; }
  static const std::vector<AcDbObjectId>& vertices(const AcDb2dPolyline* pl) { return pl->mVertices; }
  static const std::vector<AcDbObjectId>& vertices(const AcDb3dPolyline* pl) { return pl->mVertices; }
  static AcDbObjectId& seqEnd(AcDb2dPolyline* pl) { return pl->mSeqEnd; }
  static AcDbObjectId& seqEnd(AcDb3dPolyline* pl) { return pl->mSeqEnd; }
  static std::vector<std::pair<AcDbObjectId, AcDbHandle>>& sortHandles(AcDbSortentsTable* t) { return t->mPairs; }
  static const std::vector<std::pair<AcDbObjectId, AcDbHandle>>& sortHandles(const AcDbSortentsTable* t) {
    return t->mPairs;
  }
};

// The object of id without opening it; null for a null id or a forward
// reference that nothing was loaded under.
VORA_HOST_API AcDbObject* peek(AcDbObjectId id);

// Loading: adds obj under handle h, closed. A forward id made earlier for h
// is bound to it. eHandleExists when another object has h, eNullHandle for
// the null handle, eAlreadyInDb when obj is in a database.
VORA_HOST_API Acad::ErrorStatus addObjectWithHandle(AcDbDatabase* db, AcDbObject* obj, AcDbHandle h,
                                                    AcDbObjectId& id);
// Every object of db, in load and creation order (objects created after
// loading come after the loaded ones), erased ones included.
VORA_HOST_API std::vector<AcDbObjectId> objectsInOrder(const AcDbDatabase* db);
VORA_HOST_API void setRoot(AcDbDatabase* db, Root which, AcDbObjectId id);
VORA_HOST_API AcDbObjectId root(const AcDbDatabase* db, Root which);

// Adds to db whatever a new drawing has that db lacks (tables, layer "0",
// the standard linetypes, styles, model and paper space, the named objects
// dictionary with its standard entries and materials...), with new handles,
// and points the current layer, linetype and material at them when unset.
VORA_HOST_API void ensureDefaults(AcDbDatabase* db);

// Fill functions for loading.
VORA_HOST_API void setOwner(AcDbObject* obj, AcDbObjectId owner);
VORA_HOST_API void setExtensionDictionary(AcDbObject* obj, AcDbObjectId dict);
VORA_HOST_API void addReactor(AcDbObject* obj, AcDbObjectId reactor);
VORA_HOST_API std::vector<AcDbObjectId> reactorIds(const AcDbObject* obj);
// Sets the extended data as given, without the registered-name and group
// code checks of setXData (a file may carry names its APPID table lacks).
VORA_HOST_API void setXDataRaw(AcDbObject* obj, const resbuf* xdata);
VORA_HOST_API void appendRecord(AcDbSymbolTable* table, AcDbObjectId record);
VORA_HOST_API void appendEntity(AcDbBlockTableRecord* btr, AcDbObjectId entity);
VORA_HOST_API void appendDictEntry(AcDbDictionary* dict, const ACHAR* key, AcDbObjectId entry);
VORA_HOST_API void appendVertex(AcDbEntity* polyline, AcDbObjectId vertex);
VORA_HOST_API void setSeqEnd(AcDbEntity* polyline, AcDbObjectId seqEnd);
VORA_HOST_API void setBlockBeginEnd(AcDbBlockTableRecord* btr, AcDbObjectId begin, AcDbObjectId end);

// Enumeration for writing.
VORA_HOST_API const std::vector<AcDbObjectId>& records(const AcDbSymbolTable* table);
VORA_HOST_API const std::vector<AcDbObjectId>& entities(const AcDbBlockTableRecord* btr);
VORA_HOST_API const std::vector<DictEntry>& entries(const AcDbDictionary* dict);
// The vertices of a 2D or 3D polyline (empty for other entities).
VORA_HOST_API std::vector<AcDbObjectId> vertices(const AcDbEntity* polyline);
VORA_HOST_API AcDbObjectId seqEnd(const AcDbEntity* polyline);

// Symbol table lookup by name (case-insensitive), erased records skipped.
VORA_HOST_API AcDbObjectId findRecord(AcDbObjectId tableId, const ACHAR* name);
// Dictionary lookup by key (case-insensitive), erased entries skipped.
VORA_HOST_API AcDbObjectId findEntry(AcDbObjectId dictId, const ACHAR* key);
// Upper-cases a key for case-insensitive comparison.
VORA_HOST_API std::wstring foldKey(const ACHAR* key);

// Counts a change refused because the object was not open for write.
void countWriteViolation();

}  // namespace vora_host

#endif
