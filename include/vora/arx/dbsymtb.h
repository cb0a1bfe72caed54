// Symbol tables and their records: blocks, layers, linetypes, registered
// applications, text and dimension styles, viewports, views and UCSs.
//
// Record names are compared without regard to case. A table keeps its
// records in the order they were loaded or added; iterators go in that order
// and skip erased records unless told otherwise.
#ifndef VORA_ARX_DBSYMTB_H
#define VORA_ARX_DBSYMTB_H

#include <string>
#include <vector>

#include "vora/arx/db.h"
#include "vora/arx/dbcolor.h"

class AcDbEntity;
class AcDbSortentsTable;
class AcDbBlockBegin;
class AcDbBlockEnd;
class AcDbSymbolTableRecord;
class AcDbSymbolTableIterator;

class VORA_HOST_API AcDbSymbolTable : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTable);
  AcDbSymbolTable();
  ~AcDbSymbolTable() override;

  // eKeyNotFound when no (non-erased) record has the name.
  Acad::ErrorStatus getAt(const ACHAR* entryName, AcDbObjectId& recordId, bool getErasedRecord = false) const;
  Acad::ErrorStatus getAt(const ACHAR* entryName, AcDbSymbolTableRecord*& pRec, AcDb::OpenMode openMode,
                          bool openErasedRec = false) const;
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  // Adds a new record to the table and the database; the record stays open
  // for write. eNotOpenForWrite, eAlreadyInDb, eInvalidInput (no name),
  // eDuplicateRecordName.
  Acad::ErrorStatus add(AcDbSymbolTableRecord* pRecord);
  Acad::ErrorStatus add(AcDbObjectId& recordId, AcDbSymbolTableRecord* pRecord);
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& pIterator, bool atBeginning = true,
                                bool skipDeleted = true) const;

private:
  friend struct vora_host::Access;
  std::vector<AcDbObjectId> mRecords;
};

class VORA_HOST_API AcDbSymbolTableIterator {
public:
  virtual ~AcDbSymbolTableIterator();
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& pRecord, AcDb::OpenMode openMode = AcDb::kForRead,
                              bool openErasedRec = false) const;
  Acad::ErrorStatus seek(AcDbObjectId id);

protected:
  friend class AcDbSymbolTable;
  explicit AcDbSymbolTableIterator(std::vector<AcDbObjectId> ids);
  std::vector<AcDbObjectId> mIds;
  long mPos = 0;
};

class VORA_HOST_API AcDbSymbolTableRecord : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);
  AcDbSymbolTableRecord();
  ~AcDbSymbolTableRecord() override;

  // A copy the caller releases with acutDelString.
  Acad::ErrorStatus getName(ACHAR*& pName) const;
  // The record's own text, valid while the record is open.
  Acad::ErrorStatus getName(const ACHAR*& pName) const;
  // eInvalidInput for an empty name, eDuplicateRecordName when another record
  // of the table has it.
  Acad::ErrorStatus setName(const ACHAR* pName);
  bool isDependent() const { return false; }
  bool isResolved() const { return true; }

private:
  std::wstring mName;
};

#define VORA_DECLARE_SYMBOL_TABLE(TABLE, RECORD, ITERATOR)                                                \
  class RECORD;                                                                                          \
  class VORA_HOST_API ITERATOR : public AcDbSymbolTableIterator {                                       \
  public:                                                                                                \
    using AcDbSymbolTableIterator::getRecord;                                                            \
    Acad::ErrorStatus getRecord(RECORD*& pRecord, AcDb::OpenMode openMode = AcDb::kForRead,            \
                                bool openErasedRec = false) const;                                       \
                                                                                                         \
  private:                                                                                               \
    friend class TABLE;                                                                                  \
    explicit ITERATOR(std::vector<AcDbObjectId> ids) : AcDbSymbolTableIterator(std::move(ids)) {}        \
  };                                                                                                     \
  class VORA_HOST_API TABLE : public AcDbSymbolTable {                                                  \
  public:                                                                                                \
    ACRX_DECLARE_MEMBERS(TABLE);                                                                         \
    TABLE();                                                                                             \
    ~TABLE() override;                                                                                   \
    using AcDbSymbolTable::getAt;                                                                        \
    using AcDbSymbolTable::newIterator;                                                                  \
    Acad::ErrorStatus getAt(const ACHAR* entryName, RECORD*& pRec, AcDb::OpenMode openMode,             \
                            bool openErasedRec = false) const;                                           \
    Acad::ErrorStatus add(RECORD* pRecord);                                                              \
    Acad::ErrorStatus add(AcDbObjectId& recordId, RECORD* pRecord);                                      \
    Acad::ErrorStatus newIterator(ITERATOR*& pIterator, bool atBeginning = true,                        \
                                  bool skipDeleted = true) const;                                        \
  }

VORA_DECLARE_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord, AcDbBlockTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord, AcDbLayerTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord, AcDbLinetypeTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord, AcDbRegAppTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord, AcDbTextStyleTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbDimStyleTable, AcDbDimStyleTableRecord, AcDbDimStyleTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbViewportTable, AcDbViewportTableRecord, AcDbViewportTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbViewTable, AcDbViewTableRecord, AcDbViewTableIterator);
VORA_DECLARE_SYMBOL_TABLE(AcDbUCSTable, AcDbUCSTableRecord, AcDbUCSTableIterator);

#define ACDB_MODEL_SPACE L"*Model_Space"
#define ACDB_PAPER_SPACE L"*Paper_Space"

class AcDbBlockTableRecordIterator;

class VORA_HOST_API AcDbBlockTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);
  AcDbBlockTableRecord();
  ~AcDbBlockTableRecord() override;

  // Adds a new entity to the block and the database; the entity stays open
  // for write. eNotOpenForWrite (this record), eNotInDatabase (this record),
  // eNullEntityPointer, eAlreadyInDb.
  Acad::ErrorStatus appendAcDbEntity(AcDbEntity* pEntity);
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& pOutputId, AcDbEntity* pEntity);
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& pIterator, bool atBeginning = true,
                                bool skipDeleted = true) const;

  AcGePoint3d origin() const { return mOrigin; }
  Acad::ErrorStatus setOrigin(const AcGePoint3d& pt);
  bool isLayout() const;
  AcDbObjectId getLayoutId() const { return mLayoutId; }
  Acad::ErrorStatus setLayoutId(AcDbObjectId id);
  bool isAnonymous() const;

  // The draw-order table of the block, the entry "ACAD_SORTENTS" of its
  // extension dictionary; with createIfNecessary, made when missing.
  // eKeyNotFound when missing and not made.
  Acad::ErrorStatus getSortentsTable(AcDbSortentsTable*& pSortents, AcDb::OpenMode openMode,
                                     bool createIfNecessary = false);
  Acad::ErrorStatus openBlockBegin(AcDbBlockBegin*& pBlockBegin, AcDb::OpenMode openMode = AcDb::kForRead);
  Acad::ErrorStatus openBlockEnd(AcDbBlockEnd*& pBlockEnd, AcDb::OpenMode openMode = AcDb::kForRead);

private:
  friend struct vora_host::Access;
  void onAddedToDatabase(AcDbDatabase* db) override;
  std::vector<AcDbObjectId> mEntities;
  AcDbObjectId mBlockBegin;
  AcDbObjectId mBlockEnd;
  AcDbObjectId mLayoutId;
  AcGePoint3d mOrigin;
};

class VORA_HOST_API AcDbBlockTableRecordIterator {
public:
  ~AcDbBlockTableRecordIterator();
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getEntityId(AcDbObjectId& entityId) const;
  Acad::ErrorStatus getEntity(AcDbEntity*& pEntity, AcDb::OpenMode openMode = AcDb::kForRead,
                              bool openErasedEntity = false) const;
  Acad::ErrorStatus seek(AcDbObjectId id);

private:
  friend class AcDbBlockTableRecord;
  explicit AcDbBlockTableRecordIterator(std::vector<AcDbObjectId> ids);
  std::vector<AcDbObjectId> mIds;
  long mPos = 0;
};

class VORA_HOST_API AcDbLayerTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);
  AcDbLayerTableRecord();
  ~AcDbLayerTableRecord() override;

  bool isFrozen() const { return mFrozen; }
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isOff() const { return mOff; }
  void setIsOff(bool off);
  bool VPDFLT() const { return mVpdflt; }
  void setVPDFLT(bool frozen);
  bool isLocked() const { return mLocked; }
  void setIsLocked(bool locked);
  AcCmColor color() const { return mColor; }
  void setColor(const AcCmColor& color);
  AcDbObjectId linetypeObjectId() const { return mLinetype; }
  void setLinetypeObjectId(AcDbObjectId id);
  AcDbObjectId materialId() const { return mMaterial; }
  Acad::ErrorStatus setMaterialId(AcDbObjectId id);
  bool isPlottable() const { return mPlottable; }
  Acad::ErrorStatus setIsPlottable(bool plottable);
  AcDb::LineWeight lineWeight() const { return mLineWeight; }
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);

private:
  AcCmColor mColor;
  AcDbObjectId mLinetype;
  AcDbObjectId mMaterial;
  AcDb::LineWeight mLineWeight = AcDb::kLnWtByLwDefault;
  bool mFrozen = false;
  bool mOff = false;
  bool mVpdflt = false;
  bool mLocked = false;
  bool mPlottable = true;
};

class VORA_HOST_API AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);
  AcDbLinetypeTableRecord();
  ~AcDbLinetypeTableRecord() override;

  Acad::ErrorStatus comments(const ACHAR*& pString) const;
  Acad::ErrorStatus setComments(const ACHAR* pString);
  double patternLength() const { return mPatternLength; }
  void setPatternLength(double length);
  int numDashes() const { return static_cast<int>(mDashes.size()); }
  void setNumDashes(int count);
  double dashLengthAt(int index) const;
  void setDashLengthAt(int index, double value);

private:
  std::wstring mComments;
  std::vector<double> mDashes;
  double mPatternLength = 0.0;
};

class VORA_HOST_API AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);
  AcDbRegAppTableRecord();
  ~AcDbRegAppTableRecord() override;
};

class VORA_HOST_API AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);
  AcDbTextStyleTableRecord();
  ~AcDbTextStyleTableRecord() override;
  double textSize() const { return mTextSize; }
  Acad::ErrorStatus setTextSize(double size);
  double xScale() const { return mXScale; }
  Acad::ErrorStatus setXScale(double scale);
  double priorSize() const { return mPriorSize; }
  Acad::ErrorStatus setPriorSize(double size);
  Acad::ErrorStatus fileName(const ACHAR*& fontFile) const;
  Acad::ErrorStatus setFileName(const ACHAR* fontFile);

private:
  std::wstring mFileName;
  double mTextSize = 0.0;
  double mXScale = 1.0;
  double mPriorSize = 2.5;
};

class VORA_HOST_API AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord);
  AcDbDimStyleTableRecord();
  ~AcDbDimStyleTableRecord() override;
};

class VORA_HOST_API AcDbViewportTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord);
  AcDbViewportTableRecord();
  ~AcDbViewportTableRecord() override;
};

class VORA_HOST_API AcDbViewTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewTableRecord);
  AcDbViewTableRecord();
  ~AcDbViewTableRecord() override;
};

class VORA_HOST_API AcDbUCSTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord);
  AcDbUCSTableRecord();
  ~AcDbUCSTableRecord() override;
};

#endif
