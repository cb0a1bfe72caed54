// The drawing database: ids, handles, objects, open and close, the database
// itself and the application services that hold the working database.
//
// Open/close follows the CAD program: an object of a database is reached
// through its id with acdbOpenObject, by up to 256 readers at once or by one
// writer, and closed again by each opener. A new object (not yet in a
// database) counts as open for write; adding it to a database leaves it open
// for write, and the caller closes it. Misuse answers with the program's
// statuses: kForWrite on an object open for read gives eWasOpenForRead, any
// open of an object open for write gives eWasOpenForWrite, an erased object
// gives eWasErased unless openErased is set, a null id eNullObjectId, the
// 257th reader eAtMaxReaders.
#ifndef VORA_ARX_DB_H
#define VORA_ARX_DB_H

#include <cstddef>
#include <memory>

#include "vora/arx/acadstrc.h"
#include "vora/arx/acarray.h"
#include "vora/arx/ads.h"
#include "vora/arx/rx.h"

class AcDbDatabase;
class AcDbObject;
class AcDbEntity;
class AcDbDictionary;
class AcDbBlockTable;
class AcDbLayerTable;
class AcDbLinetypeTable;
class AcDbRegAppTable;
class AcDbTextStyleTable;
class AcDbDimStyleTable;
class AcDbViewportTable;
class AcDbViewTable;
class AcDbUCSTable;
class AcDbSymbolTable;
struct AcDbStub;

namespace vora_host {
// Per-object (and per-database) data of the DXF layer, opaque to the core.
struct ObjectExtra {
  virtual ~ObjectExtra() = default;
};
// Host-internal access to the private parts of the database classes.
struct Access;
}  // namespace vora_host

struct AcDb {
  enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };
  enum AcDbDwgVersion {
    kDHL_MC0_0 = 0,
    kDHL_AC1_2 = 1,
    kDHL_AC1_40 = 2,
    kDHL_AC1_50 = 3,
    kDHL_AC2_20 = 4,
    kDHL_AC2_10 = 5,
    kDHL_AC2_21 = 6,
    kDHL_AC2_22 = 7,
    kDHL_1001 = 8,
    kDHL_1002 = 9,
    kDHL_1003 = 10,
    kDHL_1004 = 11,
    kDHL_1005 = 12,
    kDHL_1006 = 13,
    kDHL_1007 = 14,
    kDHL_1008 = 15,
    kDHL_1009 = 16,
    kDHL_1010 = 17,
    kDHL_1011 = 18,
    kDHL_1012 = 19,
    kDHL_1013 = 20,
    kDHL_1014 = 21,
    kDHL_1500 = 22,
    kDHL_1015 = 23,
    kDHL_1800a = 24,
    kDHL_1800 = 25,
    kDHL_2100a = 26,
    kDHL_1021 = 27,
    kDHL_2400a = 28,
    kDHL_1024 = 29,
    kDHL_2700a = 30,
    kDHL_1027 = 31,
    kDHL_3200a = 32,
    kDHL_1032 = 33,
    kDHL_Newest = kDHL_1032,
    kDHL_CURRENT = kDHL_Newest,
    kDHL_Unknown = 254,
    kDHL_Max = 255
  };
  enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly = 1, k2dQuadSplinePoly = 2, k2dCubicSplinePoly = 3 };
  enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
  enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex = 1, k2dSplineFitVertex = 2, k2dCurveFitVertex = 3 };
  enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };
  enum Visibility { kVisible = 0, kInvisible = 1 };
  enum LineWeight {
    kLnWt000 = 0, kLnWt005 = 5, kLnWt009 = 9, kLnWt013 = 13, kLnWt015 = 15, kLnWt018 = 18, kLnWt020 = 20,
    kLnWt025 = 25, kLnWt030 = 30, kLnWt035 = 35, kLnWt040 = 40, kLnWt050 = 50, kLnWt053 = 53, kLnWt060 = 60,
    kLnWt070 = 70, kLnWt080 = 80, kLnWt090 = 90, kLnWt100 = 100, kLnWt106 = 106, kLnWt120 = 120,
    kLnWt140 = 140, kLnWt158 = 158, kLnWt200 = 200, kLnWt211 = 211,
    kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3
  };
  enum DxfCode {
    kDxfXdAsciiString = 1000,
    kDxfRegAppName = 1001,
    kDxfXdControlString = 1002,
    kDxfXdLayerName = 1003,
    kDxfXdBinaryChunk = 1004,
    kDxfXdHandle = 1005,
    kDxfXdXCoord = 1010,
    kDxfXdYCoord = 1020,
    kDxfXdZCoord = 1030,
    kDxfXdWorldXCoord = 1011,
    kDxfXdWorldYCoord = 1021,
    kDxfXdWorldZCoord = 1031,
    kDxfXdWorldXDisp = 1012,
    kDxfXdWorldYDisp = 1022,
    kDxfXdWorldZDisp = 1032,
    kDxfXdWorldXDir = 1013,
    kDxfXdWorldYDir = 1023,
    kDxfXdWorldZDir = 1033,
    kDxfXdReal = 1040,
    kDxfXdDist = 1041,
    kDxfXdScale = 1042,
    kDxfXdInteger16 = 1070,
    kDxfXdInteger32 = 1071,
    kDxfXdMax = kDxfXdInteger32
  };
};

// The persistent name of an object: a 64-bit number, written as upper-case
// hexadecimal without leading zeros.
class VORA_HOST_API AcDbHandle {
public:
  AcDbHandle() = default;
  AcDbHandle(int lo, int hi) : mLow(static_cast<Adesk::UInt32>(lo)), mHigh(static_cast<Adesk::UInt32>(hi)) {}
  AcDbHandle(Adesk::UInt64 value) : mLow(static_cast<Adesk::UInt32>(value)), mHigh(static_cast<Adesk::UInt32>(value >> 32)) {}
  // Reads hexadecimal digits (either case); text that is not a handle gives
  // the null handle.
  explicit AcDbHandle(const ACHAR* hexString);
  explicit AcDbHandle(const char* hexString);

  AcDbHandle& operator=(Adesk::UInt64 value) { return *this = AcDbHandle(value); }
  operator Adesk::UInt64() const { return (static_cast<Adesk::UInt64>(mHigh) << 32) | mLow; }
  bool isNull() const { return mLow == 0 && mHigh == 0; }
  void setNull() { mLow = mHigh = 0; }
  Adesk::UInt32 low() const { return mLow; }
  Adesk::UInt32 high() const { return mHigh; }
  void setLow(Adesk::UInt32 low) { mLow = low; }
  void setHigh(Adesk::UInt32 high) { mHigh = high; }
  void increment() { *this = AcDbHandle(static_cast<Adesk::UInt64>(*this) + 1); }
  void decrement() { *this = AcDbHandle(static_cast<Adesk::UInt64>(*this) - 1); }
  AcDbHandle& operator++() { increment(); return *this; }
  AcDbHandle operator++(int) { AcDbHandle old = *this; increment(); return old; }
  AcDbHandle operator+(const AcDbHandle& h) const {
    return AcDbHandle(static_cast<Adesk::UInt64>(*this) + static_cast<Adesk::UInt64>(h));
  }
  bool operator==(const AcDbHandle& h) const { return mLow == h.mLow && mHigh == h.mHigh; }
  bool operator!=(const AcDbHandle& h) const { return !(*this == h); }
  bool operator<(const AcDbHandle& h) const { return static_cast<Adesk::UInt64>(*this) < static_cast<Adesk::UInt64>(h); }
  bool operator>(const AcDbHandle& h) const { return h < *this; }

  // Writes the hexadecimal text (at most 16 digits and the terminator, so 17
  // characters) into pBuf.
  void getIntoAsciiBuffer(ACHAR* pBuf) const;
  // The same, into a buffer of nBufLen characters; false when it is too small.
  bool getIntoAsciiBuffer(ACHAR* pBuf, std::size_t nBufLen) const;
  static constexpr std::size_t kStrSiz = 17;

private:
  Adesk::UInt32 mLow = 0;
  Adesk::UInt32 mHigh = 0;
};

// The session identity of an object: one pointer to the object's stub, which
// lives as long as the database. Ids compare by that pointer.
class VORA_HOST_API AcDbObjectId {
public:
  AcDbObjectId() = default;
  AcDbObjectId(const AcDbStub* pStub) : mId(const_cast<AcDbStub*>(pStub)) {}

  static const AcDbObjectId kNull;

  bool isNull() const { return mId == nullptr; }
  void setNull() { mId = nullptr; }
  // Not null and its object exists (possibly erased).
  bool isValid() const;
  bool isErased() const;
  bool isEffectivelyErased() const { return isErased(); }
  bool isResident() const { return isValid(); }
  AcDbDatabase* database() const;
  AcDbDatabase* originalDatabase() const { return database(); }
  AcDbHandle handle() const;
  AcDbHandle nonForwardedHandle() const { return handle(); }
  AcRxClass* objectClass() const;

  Adesk::IntDbId asOldId() const { return reinterpret_cast<Adesk::IntDbId>(mId); }
  AcDbObjectId& setFromOldId(Adesk::IntDbId oldId) {
    mId = reinterpret_cast<AcDbStub*>(oldId);
    return *this;
  }

  bool operator==(const AcDbObjectId& id) const { return mId == id.mId; }
  bool operator!=(const AcDbObjectId& id) const { return mId != id.mId; }
  bool operator<(const AcDbObjectId& id) const { return mId < id.mId; }
  bool operator>(const AcDbObjectId& id) const { return mId > id.mId; }
  bool operator<=(const AcDbObjectId& id) const { return mId <= id.mId; }
  bool operator>=(const AcDbObjectId& id) const { return mId >= id.mId; }
  operator AcDbStub*() const { return mId; }

protected:
  AcDbStub* mId = nullptr;
};

using AcDbObjectIdArray = AcArray<AcDbObjectId>;
using AcDbHandleArray = AcArray<AcDbHandle>;
using AcDbIntArray = AcArray<int>;
using AcDbVoidPtrArray = AcArray<void*>;

// A database-resident object.
class VORA_HOST_API AcDbObject : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbObject);

  ~AcDbObject() override;
  AcDbObject(const AcDbObject&) = delete;
  AcDbObject& operator=(const AcDbObject&) = delete;

  AcDbObjectId objectId() const;
  AcDbObjectId ownerId() const { return mOwnerId; }
  // Only for an object that is open for write (or not yet in a database).
  virtual Acad::ErrorStatus setOwnerId(AcDbObjectId objId);
  void getAcDbHandle(AcDbHandle& handle) const;
  AcDbHandle handle() const;
  // The object's database; null until it is added to one.
  AcDbDatabase* database() const;

  Acad::ErrorStatus createExtensionDictionary();
  AcDbObjectId extensionDictionary() const { return mExtDictId; }
  // Removes an empty extension dictionary (eContainerNotEmpty otherwise).
  Acad::ErrorStatus releaseExtensionDictionary();

  // Closes one opening: the writer, or one of the readers.
  Acad::ErrorStatus close();
  // Read to write: eHadMultipleReaders when other readers have it open (the
  // open state is then unchanged), eWasOpenForWrite when it already is.
  Acad::ErrorStatus upgradeOpen();
  // Write to read: eNotOpenForWrite when it is not open for write.
  Acad::ErrorStatus downgradeOpen();
  // Marks the object erased (or unerased with false). Needs the object open
  // for write; erasing an erased object gives eWasErased, unerasing one that
  // is not erased eWasNotErased.
  Acad::ErrorStatus erase(Adesk::Boolean erasing = true);

  bool isReadEnabled() const;
  bool isWriteEnabled() const;
  bool isNotifyEnabled() const { return false; }
  bool isErased() const { return mErased; }
  bool isNewObject() const { return mpStub == nullptr; }
  bool isDBRO() const { return mpStub != nullptr; }
  // True when a change through a setter is allowed; counts a refused change
  // (vorahost::writeViolations) otherwise.
  bool assertWriteEnabled() const;
  void assertReadEnabled() const {}

  // A copy of the object's extended data: the group of regappName (its 1001
  // item first), or every group when regappName is null. Null when there is
  // none. The caller releases the list with acutRelRb.
  virtual resbuf* xData(const ACHAR* regappName = nullptr) const;
  // Sets extended data: each 1001 item starts the group of a registered
  // application (eRegappIdNotFound otherwise) and replaces that application's
  // group; a group holding only its 1001 item removes it. Items must have
  // codes 1000-1071 of the extended-data set (eInvalidDxfCode otherwise) and
  // the list must start with 1001 (eBadDxfSequence otherwise). Nothing is
  // changed when the list is refused.
  virtual Acad::ErrorStatus setXData(const resbuf* xdata);

  void addPersistentReactor(AcDbObjectId objId);
  Acad::ErrorStatus removePersistentReactor(AcDbObjectId objId);
  bool hasPersistentReactor(AcDbObjectId objId) const;
  // The persistent reactors' ids, as the ids' old-id values (the caller
  // deletes the array); null when there are none.
  AcDbVoidPtrArray* reactors() const;

  // Host extension: the DXF layer's own data, and whether the object changed
  // since it was loaded (new, opened for write, upgraded, erased or unerased).
  vora_host::ObjectExtra* hostExtra() const { return mpExtra.get(); }
  void setHostExtra(std::unique_ptr<vora_host::ObjectExtra> extra);
  bool hostModified() const { return mModified; }
  void setHostModified(bool modified) { mModified = modified; }

protected:
  AcDbObject();
  // Called when the object enters a database through addAcDbObject (not when
  // loaded): containers add their pending children there.
  virtual void onAddedToDatabase(AcDbDatabase* db);

private:
  friend struct vora_host::Access;
  struct XdataStore;

  AcDbStub* mpStub = nullptr;
  AcDbObjectId mOwnerId;
  AcDbObjectId mExtDictId;
  std::unique_ptr<XdataStore> mpXdata;
  std::unique_ptr<AcArray<AcDbObjectId>> mpReactors;
  std::unique_ptr<vora_host::ObjectExtra> mpExtra;
  Adesk::UInt16 mReaders = 0;
  bool mWriter = false;
  bool mErased = false;
  bool mModified = true;
};

// Opens the object of id. The template form also checks the class: an object
// that is not a T is closed again and eNotThatKindOfClass returned. pObj is
// null on any failure.
VORA_HOST_API Acad::ErrorStatus acdbOpenObject(AcDbObject*& pObj, AcDbObjectId id, AcDb::OpenMode mode,
                                               bool openErased = false);
VORA_HOST_API Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& pObj, AcDbObjectId id, AcDb::OpenMode mode,
                                                   bool openErased = false);
VORA_HOST_API Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& pEnt, AcDbObjectId id, AcDb::OpenMode mode,
                                                   bool openErased = false);

template <class T>
Acad::ErrorStatus acdbOpenObject(T*& pObj, AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                                 bool openErased = false) {
  pObj = nullptr;
  AcDbObject* p = nullptr;
  const Acad::ErrorStatus es = acdbOpenObject(p, id, mode, openErased);
  if (es != Acad::eOk) return es;
  T* typed = T::cast(p);
  if (typed == nullptr) {
    p->close();
    return Acad::eNotThatKindOfClass;
  }
  pObj = typed;
  return Acad::eOk;
}

// Queues the entities for regeneration, so the display shows their new state
// at the next update. nNumIds ids are read from pIdArray; pDb is accepted for
// the SDK's signature (the ids name their database). eInvalidInput for a
// negative count or a missing array with a positive count, eNullObjectId when
// one of the ids is null; nothing is queued then.
VORA_HOST_API Acad::ErrorStatus acdbQueueForRegen(const AcDbObjectId* pIdArray, int nNumIds,
                                                  AcDbDatabase* pDb = nullptr);

// Registers appName in the working database's registered-application table.
// RTNORM when it was added; RTERROR when it was there already, the name is
// empty, or there is no working database.
VORA_HOST_API int acdbRegApp(const ACHAR* appName);

class VORA_HOST_API AcDbDatabase : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbDatabase);

  // With buildDefaultDrawing, the database holds what a new drawing of the CAD
  // program holds: layer "0"; linetypes ByBlock, ByLayer and "Continuous";
  // text and dimension style "Standard"; viewport "*Active"; registered
  // application "ACAD"; model and paper space; the named objects dictionary
  // with ACAD_COLOR, ACAD_GROUP, ACAD_LAYOUT, ACAD_MATERIAL (materials
  // ByBlock, ByLayer, Global), ACAD_MLINESTYLE, ACAD_PLOTSETTINGS and
  // ACAD_PLOTSTYLENAME. Without it, the database is empty for dxfIn.
  explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
  ~AcDbDatabase() override;
  AcDbDatabase(const AcDbDatabase&) = delete;
  AcDbDatabase& operator=(const AcDbDatabase&) = delete;

  // Implemented by the DXF layer.
  Acad::ErrorStatus dxfIn(const ACHAR* fileName, const ACHAR* logFilename = nullptr);
  Acad::ErrorStatus dxfOut(const ACHAR* fileName, int precision = 16, AcDb::AcDbDwgVersion dwgVer = AcDb::kDHL_CURRENT,
                           bool saveThumbnailImage = false);

  // Adds a new object (it stays open for write; the caller closes it).
  Acad::ErrorStatus addAcDbObject(AcDbObject* pObj);
  Acad::ErrorStatus addAcDbObject(AcDbObjectId& objId, AcDbObject* pObj);

  // The id of handle; with createIfNotFound, an id for a handle not yet used
  // is made, which an object added later under that handle takes.
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& retId, bool createIfNotFound, const AcDbHandle& objHandle,
                                    Adesk::UInt32 xRefId = 0);

  AcDbHandle handseed() const;
  // The next handle to give; refused (eInvalidInput) when not above every
  // handle in use.
  Acad::ErrorStatus setHandseed(const AcDbHandle& handle);

  Acad::ErrorStatus getBlockTable(AcDbBlockTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLayerTable(AcDbLayerTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getDimStyleTable(AcDbDimStyleTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getViewportTable(AcDbViewportTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getViewTable(AcDbViewTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getUCSTable(AcDbUCSTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead) { return getBlockTable(pTable, mode); }
  Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead) { return getLayerTable(pTable, mode); }
  Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead) { return getLinetypeTable(pTable, mode); }
  Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& pTable, AcDb::OpenMode mode = AcDb::kForRead) { return getRegAppTable(pTable, mode); }
  AcDbObjectId blockTableId() const;
  AcDbObjectId layerTableId() const;
  AcDbObjectId linetypeTableId() const;
  AcDbObjectId regAppTableId() const;
  AcDbObjectId textStyleTableId() const;
  AcDbObjectId dimStyleTableId() const;
  AcDbObjectId viewportTableId() const;
  AcDbObjectId viewTableId() const;
  AcDbObjectId UCSTableId() const;

  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& pDict, AcDb::OpenMode mode = AcDb::kForRead);
  AcDbObjectId namedObjectsDictionaryId() const;
  // Entries of the named objects dictionary (null id when missing).
  Acad::ErrorStatus getMaterialDictionary(AcDbDictionary*& pDict, AcDb::OpenMode mode = AcDb::kForRead);
  AcDbObjectId materialDictionaryId() const;
  Acad::ErrorStatus getGroupDictionary(AcDbDictionary*& pDict, AcDb::OpenMode mode = AcDb::kForRead);
  AcDbObjectId groupDictionaryId() const;
  Acad::ErrorStatus getLayoutDictionary(AcDbDictionary*& pDict, AcDb::OpenMode mode = AcDb::kForRead);
  AcDbObjectId layoutDictionaryId() const;
  AcDbObjectId mLStyleDictionaryId() const;
  AcDbObjectId colorDictionaryId() const;
  AcDbObjectId plotSettingsDictionaryId() const;
  AcDbObjectId plotStyleNameDictionaryId() const;

  // Current properties that new entities take (setDatabaseDefaults).
  AcDbObjectId clayer() const;
  Acad::ErrorStatus setClayer(AcDbObjectId layerId);
  AcDbObjectId celtype() const;
  Acad::ErrorStatus setCeltype(AcDbObjectId linetypeId);
  AcDbObjectId cmaterial() const;
  Acad::ErrorStatus setCmaterial(AcDbObjectId materialId);
  double celtscale() const;
  Acad::ErrorStatus setCeltscale(double scale);
  AcDb::LineWeight celweight() const;
  Acad::ErrorStatus setCelweight(AcDb::LineWeight weight);
  Adesk::UInt16 cecolorIndex() const;
  Acad::ErrorStatus setCecolorIndex(Adesk::UInt16 colorIndex);

  AcDbObjectId byLayerLinetype() const;
  AcDbObjectId byBlockLinetype() const;
  AcDbObjectId continuousLinetype() const;
  AcDbObjectId byLayerMaterial() const;
  AcDbObjectId byBlockMaterial() const;
  AcDbObjectId globalMaterial() const;
  AcDbObjectId layerZero() const;
  AcDbObjectId currentSpaceId() const;
  AcDbObjectId modelSpaceId() const;
  AcDbObjectId paperSpaceId() const;

  // The version of the file the drawing came from (kDHL_CURRENT for a new
  // drawing); kept by the DXF layer.
  AcDb::AcDbDwgVersion originalFileVersion() const;
  void setOriginalFileVersion(AcDb::AcDbDwgVersion version);
  const ACHAR* getFilename() const;

  // Host extension: the DXF layer's own data for the whole drawing.
  vora_host::ObjectExtra* hostExtra() const;
  void setHostExtra(std::unique_ptr<vora_host::ObjectExtra> extra);

private:
  friend struct vora_host::Access;
  struct Impl;
  Impl* mpImpl;
};

class VORA_HOST_API AcDbHostApplicationServices : public AcRxObject {
public:
  AcDbHostApplicationServices() = default;
  // The database that operations without a database argument use; null when
  // none is set. Deleting that database clears it.
  AcDbDatabase* workingDatabase() const { return mpWorkingDatabase; }
  void setWorkingDatabase(AcDbDatabase* pDatabase) { mpWorkingDatabase = pDatabase; }

private:
  AcDbDatabase* mpWorkingDatabase = nullptr;
};

VORA_HOST_API AcDbHostApplicationServices* acdbHostApplicationServices();

#endif
