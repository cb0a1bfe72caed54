// AcDbDictionary: named entries of database objects.
//
// Keys are compared without regard to case and kept in the order the entries
// were loaded or added. The dictionary owns its entries: setAt makes it the
// owner and attaches it as a persistent reactor. Erased entries are skipped
// by lookups and iterators, as if removed, until they are unerased.
#ifndef VORA_ARX_DBDICT_H
#define VORA_ARX_DBDICT_H

#include <string>
#include <vector>

#include "vora/arx/db.h"

namespace vora_host {
struct DictEntry {
  std::wstring key;
  AcDbObjectId id;
};
}  // namespace vora_host

class AcDbDictionaryIterator;

class VORA_HOST_API AcDbDictionary : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbDictionary);
  AcDbDictionary();
  ~AcDbDictionary() override;

  // eKeyNotFound when no entry has the key.
  Acad::ErrorStatus getAt(const ACHAR* entryName, AcDbObjectId& entryObj) const;
  Acad::ErrorStatus getAt(const ACHAR* entryName, AcDbObject*& entryObj, AcDb::OpenMode mode = AcDb::kForRead) const;
  template <class T>
  Acad::ErrorStatus getAt(const ACHAR* entryName, T*& entryObj, AcDb::OpenMode mode = AcDb::kForRead) const {
    entryObj = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus es = getAt(entryName, id);
    return es != Acad::eOk ? es : acdbOpenObject(entryObj, id, mode);
  }
  Acad::ErrorStatus nameAt(AcDbObjectId objId, ACHAR*& name) const;
  bool has(const ACHAR* entryName) const;
  bool has(AcDbObjectId objId) const;
  Adesk::UInt32 numEntries() const;

  // Removes the entry; its object is not erased but loses this dictionary as
  // owner and reactor. eKeyNotFound when absent.
  Acad::ErrorStatus remove(const ACHAR* key);
  Acad::ErrorStatus remove(const ACHAR* key, AcDbObjectId& returnId);
  Acad::ErrorStatus remove(AcDbObjectId objId);
  bool setName(const ACHAR* oldName, const ACHAR* newName);

  // Adds newValue under srchKey, to the database as well when it is new (it
  // then stays open for write). An entry with the same key is replaced and
  // its object erased. A key starting with '*' is made unique ("*A<n>").
  Acad::ErrorStatus setAt(const ACHAR* srchKey, AcDbObject* newValue, AcDbObjectId& retObjId);

  bool isTreatElementsAsHard() const { return mHard; }
  void setTreatElementsAsHard(bool doIt);

  // The caller deletes the iterator.
  AcDbDictionaryIterator* newIterator() const;

private:
  friend struct vora_host::Access;
  std::vector<vora_host::DictEntry> mEntries;
  bool mHard = false;
};

class VORA_HOST_API AcDbDictionaryIterator {
public:
  ~AcDbDictionaryIterator();
  const ACHAR* name() const;
  AcDbObjectId objectId() const;
  bool done() const;
  bool next();
  bool setPosition(AcDbObjectId objId);
  Acad::ErrorStatus getObject(AcDbObject*& pObject, AcDb::OpenMode mode = AcDb::kForRead);
  template <class T>
  Acad::ErrorStatus getObject(T*& pObject, AcDb::OpenMode mode = AcDb::kForRead) {
    pObject = nullptr;
    return done() ? Acad::eIteratorDone : acdbOpenObject(pObject, objectId(), mode);
  }

private:
  friend class AcDbDictionary;
  explicit AcDbDictionaryIterator(std::vector<vora_host::DictEntry> entries);
  void skipErased();
  std::vector<vora_host::DictEntry> mEntries;
  std::size_t mPos = 0;
};

#endif
