#include <cwchar>
#include <string>

#include "host/db/internal.h"

using vora_host::Access;
using vora_host::DictEntry;

namespace {

// The live entry of the key, or null.
const DictEntry* findLive(const std::vector<DictEntry>& entries, const ACHAR* key) {
  if (key == nullptr) return nullptr;
  const std::wstring folded = vora_host::foldKey(key);
  for (const DictEntry& e : entries) {
    if (!e.id.isErased() && vora_host::foldKey(e.key.c_str()) == folded) return &e;
  }
  return nullptr;
}

}  // namespace

namespace vora_host {

AcDbObjectId findEntry(AcDbObjectId dictId, const ACHAR* key) {
  auto* dict = AcDbDictionary::cast(peek(dictId));
  if (dict == nullptr) return AcDbObjectId::kNull;
  const DictEntry* e = findLive(Access::entries(dict), key);
  return e != nullptr ? e->id : AcDbObjectId::kNull;
}

void appendDictEntry(AcDbDictionary* dict, const ACHAR* key, AcDbObjectId entry) {
  Access::entries(dict).push_back(DictEntry{key != nullptr ? key : L"", entry});
}

const std::vector<DictEntry>& entries(const AcDbDictionary* dict) { return Access::entries(dict); }

}  // namespace vora_host

ACRX_DXF_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, DICTIONARY, ObjectDBX Classes)

AcDbDictionary::AcDbDictionary() = default;
AcDbDictionary::~AcDbDictionary() = default;

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* entryName, AcDbObjectId& entryObj) const {
  entryObj = AcDbObjectId::kNull;
  const DictEntry* e = findLive(mEntries, entryName);
  if (e == nullptr) return Acad::eKeyNotFound;
  entryObj = e->id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* entryName, AcDbObject*& entryObj, AcDb::OpenMode mode) const {
  entryObj = nullptr;
  AcDbObjectId id;
  const Acad::ErrorStatus es = getAt(entryName, id);
  return es != Acad::eOk ? es : acdbOpenObject(entryObj, id, mode);
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId objId, ACHAR*& name) const {
  name = nullptr;
  for (const DictEntry& e : mEntries) {
    if (e.id == objId && !e.id.isErased()) return acutNewString(e.key.c_str(), name);
  }
  return Acad::eKeyNotFound;
}

bool AcDbDictionary::has(const ACHAR* entryName) const { return findLive(mEntries, entryName) != nullptr; }

bool AcDbDictionary::has(AcDbObjectId objId) const {
  for (const DictEntry& e : mEntries) {
    if (e.id == objId) return !e.id.isErased();
  }
  return false;
}

Adesk::UInt32 AcDbDictionary::numEntries() const {
  Adesk::UInt32 n = 0;
  for (const DictEntry& e : mEntries) n += e.id.isErased() ? 0 : 1;
  return n;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key) {
  AcDbObjectId id;
  return remove(key, id);
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key, AcDbObjectId& returnId) {
  returnId = AcDbObjectId::kNull;
  const DictEntry* e = findLive(mEntries, key);
  if (e == nullptr) return Acad::eKeyNotFound;
  const AcDbObjectId id = e->id;
  const Acad::ErrorStatus es = remove(id);
  if (es == Acad::eOk) returnId = id;
  return es;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId objId) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  for (auto it = mEntries.begin(); it != mEntries.end(); ++it) {
    if (it->id != objId || objId.isErased()) continue;
    mEntries.erase(it);
    if (AcDbObject* obj = vora_host::peek(objId)) {
      if (obj->ownerId() == objectId()) Access::setOwner(obj, AcDbObjectId::kNull);
      if (obj->hasPersistentReactor(objectId())) {
        // The entry is detached behind its back: its own open state is not
        // the caller's concern here.
        Access::removeReactor(obj, objectId());
      }
      obj->setHostModified(true);
    }
    setHostModified(true);
    return Acad::eOk;
  }
  return Acad::eKeyNotFound;
}

bool AcDbDictionary::setName(const ACHAR* oldName, const ACHAR* newName) {
  if (!isWriteEnabled() || newName == nullptr || *newName == 0) return false;
  const DictEntry* e = findLive(mEntries, oldName);
  if (e == nullptr) return false;
  const DictEntry* clash = findLive(mEntries, newName);
  if (clash != nullptr && clash != e) return false;
  const_cast<DictEntry*>(e)->key = newName;
  setHostModified(true);
  return true;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* srchKey, AcDbObject* newValue, AcDbObjectId& retObjId) {
  retObjId = AcDbObjectId::kNull;
  if (srchKey == nullptr || *srchKey == 0) return Acad::eInvalidKey;
  if (newValue == nullptr) return Acad::eNullObjectPointer;
  if (database() == nullptr) return Acad::eNoDatabase;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (newValue->database() != nullptr && newValue->database() != database()) return Acad::eWrongDatabase;
  std::wstring key = srchKey;
  if (key[0] == L'*') {
    // Anonymous entries are numbered after the highest number in use.
    long next = 1;
    for (const DictEntry& e : mEntries) {
      if (e.key.size() > 2 && e.key[0] == L'*' && (e.key[1] == L'A' || e.key[1] == L'a')) {
        const long n = std::wcstol(e.key.c_str() + 2, nullptr, 10);
        if (n >= next) next = n + 1;
      }
    }
    key = L"*A" + std::to_wstring(next);
  }
  if (newValue->database() == nullptr) {
    Access::setOwner(newValue, objectId());
    const Acad::ErrorStatus es = database()->addAcDbObject(retObjId, newValue);
    if (es != Acad::eOk) {
      Access::setOwner(newValue, AcDbObjectId::kNull);
      return es;
    }
  } else {
    retObjId = newValue->objectId();
    Access::setOwner(newValue, objectId());
    newValue->setHostModified(true);
  }
  Access::addReactor(newValue, objectId());

  const std::wstring folded = vora_host::foldKey(key.c_str());
  for (DictEntry& e : mEntries) {
    if (e.id.isErased() || vora_host::foldKey(e.key.c_str()) != folded) continue;
    // The replaced object goes the way of an erased entry.
    if (AcDbObject* old = vora_host::peek(e.id); old != nullptr && old != newValue) {
      Access::setErased(old, true);
      old->setHostModified(true);
    }
    e.key = key;
    e.id = retObjId;
    setHostModified(true);
    return Acad::eOk;
  }
  mEntries.push_back(DictEntry{key, retObjId});
  setHostModified(true);
  return Acad::eOk;
}

void AcDbDictionary::setTreatElementsAsHard(bool doIt) {
  if (!assertWriteEnabled()) return;
  mHard = doIt;
  setHostModified(true);
}

AcDbDictionaryIterator* AcDbDictionary::newIterator() const { return new AcDbDictionaryIterator(mEntries); }

AcDbDictionaryIterator::AcDbDictionaryIterator(std::vector<DictEntry> entries) : mEntries(std::move(entries)) {
  skipErased();
}
AcDbDictionaryIterator::~AcDbDictionaryIterator() = default;

void AcDbDictionaryIterator::skipErased() {
  while (mPos < mEntries.size() && mEntries[mPos].id.isErased()) ++mPos;
}

const ACHAR* AcDbDictionaryIterator::name() const { return done() ? nullptr : mEntries[mPos].key.c_str(); }
AcDbObjectId AcDbDictionaryIterator::objectId() const { return done() ? AcDbObjectId::kNull : mEntries[mPos].id; }
bool AcDbDictionaryIterator::done() const { return mPos >= mEntries.size(); }

bool AcDbDictionaryIterator::next() {
  if (done()) return false;
  ++mPos;
  skipErased();
  return !done();
}

bool AcDbDictionaryIterator::setPosition(AcDbObjectId objId) {
  for (std::size_t i = 0; i < mEntries.size(); ++i) {
    if (mEntries[i].id == objId) {
      mPos = i;
      return true;
    }
  }
  return false;
}

Acad::ErrorStatus AcDbDictionaryIterator::getObject(AcDbObject*& pObject, AcDb::OpenMode mode) {
  pObject = nullptr;
  if (done()) return Acad::eIteratorDone;
  return acdbOpenObject(pObject, objectId(), mode);
}
