#include <atomic>
#include <cwctype>
#include <string>
#include <vector>

#include "host/ads/rbkind.h"
#include "host/db/internal.h"
#include "vora/arx/dbdict.h"
#include "vora/arx/vorahost.h"

using vora_host::Access;

namespace {

// The CAD program's limit on readers of one object.
constexpr Adesk::UInt16 kMaxReaders = 256;

std::atomic<std::size_t> gWriteViolations{0};

bool isXdataCode(int code) {
  switch (code) {
    case 1000: case 1001: case 1002: case 1003: case 1004: case 1005:
    case 1010: case 1011: case 1012: case 1013:
    case 1040: case 1041: case 1042:
    case 1070: case 1071:
      return true;
    default:
      return false;
  }
}

bool sameKey(const ACHAR* a, const ACHAR* b) {
  return vora_host::foldKey(a) == vora_host::foldKey(b);
}

void trackOpen(AcDbObject* obj) {
  AcDbStub* stub = Access::stub(obj);
  if (stub != nullptr) Access::state(stub->db).open.insert(stub);
}

}  // namespace

// Extended data, one group per application, each group a list that starts
// with its 1001 item, kept in the order the groups were first set.
struct AcDbObject::XdataStore {
  struct Group {
    std::wstring app;
    resbuf* items = nullptr;
  };
  std::vector<Group> groups;

  XdataStore() = default;
  XdataStore(const XdataStore&) = delete;
  XdataStore& operator=(const XdataStore&) = delete;
  ~XdataStore() {
    for (Group& g : groups) acutRelRb(g.items);
  }

  // Replaces (or adds, or with only the head removes) the group whose head is
  // first; takes ownership of the list.
  void put(resbuf* first) {
    const ACHAR* app = first->resval.rstring != nullptr ? first->resval.rstring : L"";
    for (auto it = groups.begin(); it != groups.end(); ++it) {
      if (sameKey(it->app.c_str(), app)) {
        acutRelRb(it->items);
        if (first->rbnext == nullptr) {
          acutRelRb(first);
          groups.erase(it);
        } else {
          it->items = first;
        }
        return;
      }
    }
    if (first->rbnext == nullptr) {
      acutRelRb(first);
      return;
    }
    groups.push_back(Group{app, first});
  }
};

namespace vora_host {

std::wstring foldKey(const ACHAR* key) {
  std::wstring out;
  if (key == nullptr) return out;
  for (const ACHAR* p = key; *p != 0; ++p) {
    const ACHAR c = *p;
    out += (c >= L'a' && c <= L'z') ? static_cast<ACHAR>(c - L'a' + L'A')
                                    : (c < 0x80 ? c : static_cast<ACHAR>(std::towupper(static_cast<wint_t>(c))));
  }
  return out;
}

void countWriteViolation() { ++gWriteViolations; }

void Access::addReactor(AcDbObject* obj, AcDbObjectId reactor) {
  if (!obj->mpReactors) obj->mpReactors = std::make_unique<AcArray<AcDbObjectId>>();
  if (!obj->mpReactors->contains(reactor)) obj->mpReactors->append(reactor);
}

std::vector<AcDbObjectId> Access::reactors(const AcDbObject* obj) {
  std::vector<AcDbObjectId> out;
  if (obj->mpReactors) {
    for (int i = 0; i < obj->mpReactors->length(); ++i) out.push_back(obj->mpReactors->at(i));
  }
  return out;
}

void Access::markOpenForWrite(AcDbObject* obj) {
  obj->mWriter = true;
  obj->mReaders = 0;
  obj->mModified = true;
  trackOpen(obj);
}

AcDbObject* peek(AcDbObjectId id) {
  const AcDbStub* stub = id;
  return stub == nullptr ? nullptr : stub->obj;
}

void setOwner(AcDbObject* obj, AcDbObjectId owner) { Access::setOwner(obj, owner); }
void setExtensionDictionary(AcDbObject* obj, AcDbObjectId dict) { Access::setExtensionDictionary(obj, dict); }
void addReactor(AcDbObject* obj, AcDbObjectId reactor) { Access::addReactor(obj, reactor); }
std::vector<AcDbObjectId> reactorIds(const AcDbObject* obj) { return Access::reactors(obj); }

void setXDataRaw(AcDbObject* obj, const resbuf* xdata) { Access::setXDataRaw(obj, xdata); }

void Access::setXDataRaw(AcDbObject* obj, const resbuf* xdata) {
  if (xdata == nullptr) return;
  if (!obj->mpXdata) obj->mpXdata = std::make_unique<AcDbObject::XdataStore>();
  const resbuf* rb = xdata;
  while (rb != nullptr) {
    if (rb->restype != 1001) {
      rb = rb->rbnext;
      continue;
    }
    resbuf* head = rbCopyOne(rb);
    resbuf* tail = head;
    for (rb = rb->rbnext; rb != nullptr && rb->restype != 1001; rb = rb->rbnext) {
      tail->rbnext = rbCopyOne(rb);
      tail = tail->rbnext;
    }
    obj->mpXdata->put(head);
  }
}

}  // namespace vora_host

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcRxObject)

AcDbObject::AcDbObject() = default;
AcDbObject::~AcDbObject() = default;

void AcDbObject::onAddedToDatabase(AcDbDatabase*) {}

AcDbObjectId AcDbObject::objectId() const { return AcDbObjectId(mpStub); }

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId objId) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mOwnerId = objId;
  return Acad::eOk;
}

void AcDbObject::getAcDbHandle(AcDbHandle& h) const { h = handle(); }
AcDbHandle AcDbObject::handle() const { return mpStub != nullptr ? AcDbHandle(mpStub->handle) : AcDbHandle(); }
AcDbDatabase* AcDbObject::database() const { return mpStub != nullptr ? mpStub->db : nullptr; }

bool AcDbObject::isReadEnabled() const { return mpStub == nullptr || mWriter || mReaders > 0; }
bool AcDbObject::isWriteEnabled() const { return mpStub == nullptr || mWriter; }

bool AcDbObject::assertWriteEnabled() const {
  if (isWriteEnabled()) return true;
  vora_host::countWriteViolation();
  return false;
}

void AcDbObject::setHostExtra(std::unique_ptr<vora_host::ObjectExtra> extra) { mpExtra = std::move(extra); }

Acad::ErrorStatus AcDbObject::close() {
  // An object outside a database belongs to whoever made it: there is no
  // opening to end.
  if (mpStub == nullptr) return Acad::eNotInDatabase;
  if (mWriter) {
    mWriter = false;
  } else if (mReaders > 0) {
    --mReaders;
  } else {
    return Acad::eInvalidOpenState;
  }
  if (!mWriter && mReaders == 0) Access::state(mpStub->db).open.erase(mpStub);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  if (mpStub == nullptr || mWriter) return Acad::eWasOpenForWrite;
  if (mReaders == 0) return Acad::eNotOpenForRead;
  if (mReaders > 1) return Acad::eHadMultipleReaders;
  mReaders = 0;
  mWriter = true;
  mModified = true;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (mpStub == nullptr || !mWriter) return Acad::eNotOpenForWrite;
  mWriter = false;
  mReaders = 1;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(Adesk::Boolean erasing) {
  if (mpStub == nullptr) return Acad::eNotInDatabase;
  if (!mWriter) return Acad::eNotOpenForWrite;
  if (erasing && mErased) return Acad::eWasErased;
  if (!erasing && !mErased) return Acad::eWasNotErased;
  mErased = erasing;
  mModified = true;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
  if (mpStub == nullptr) return Acad::eNotInDatabase;
  if (!mWriter) return Acad::eNotOpenForWrite;
  // An existing dictionary is kept; the status tells the caller so.
  if (!mExtDictId.isNull() && vora_host::peek(mExtDictId) != nullptr) return Acad::eAlreadyInDb;
  auto* dict = new AcDbDictionary();
  AcDbObjectId id;
  const Acad::ErrorStatus es = mpStub->db->addAcDbObject(id, dict);
  if (es != Acad::eOk) {
    delete dict;
    return es;
  }
  Access::setOwner(dict, objectId());
  Access::addReactor(dict, objectId());
  dict->close();
  mExtDictId = id;
  mModified = true;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
  if (mpStub == nullptr) return Acad::eNotInDatabase;
  if (!mWriter) return Acad::eNotOpenForWrite;
  auto* dict = AcDbDictionary::cast(vora_host::peek(mExtDictId));
  if (dict == nullptr) return Acad::eKeyNotFound;
  if (dict->numEntries() != 0) return Acad::eContainerNotEmpty;
  if (Access::isOpen(dict)) return Access::isOpenForWrite(dict) ? Acad::eWasOpenForWrite : Acad::eWasOpenForRead;
  Access::setErased(dict, true);
  dict->setHostModified(true);
  mExtDictId = AcDbObjectId::kNull;
  mModified = true;
  return Acad::eOk;
}

resbuf* AcDbObject::xData(const ACHAR* regappName) const {
  if (!mpXdata) return nullptr;
  resbuf* head = nullptr;
  resbuf* tail = nullptr;
  for (const XdataStore::Group& g : mpXdata->groups) {
    if (regappName != nullptr && !sameKey(g.app.c_str(), regappName)) continue;
    for (const resbuf* rb = g.items; rb != nullptr; rb = rb->rbnext) {
      resbuf* copy = vora_host::rbCopyOne(rb);
      if (head == nullptr) head = copy; else tail->rbnext = copy;
      tail = copy;
    }
    if (regappName != nullptr) break;
  }
  return head;
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* xdata) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (xdata == nullptr) return Acad::eOk;
  if (xdata->restype != AcDb::kDxfRegAppName) return Acad::eBadDxfSequence;
  AcDbDatabase* db = database() != nullptr ? database() : acdbHostApplicationServices()->workingDatabase();
  for (const resbuf* rb = xdata; rb != nullptr; rb = rb->rbnext) {
    if (!isXdataCode(rb->restype)) return Acad::eInvalidDxfCode;
    if (rb->restype == AcDb::kDxfRegAppName) {
      const ACHAR* app = rb->resval.rstring;
      if (app == nullptr || *app == 0 || db == nullptr) return Acad::eRegappIdNotFound;
      if (vora_host::findRecord(db->regAppTableId(), app).isNull()) return Acad::eRegappIdNotFound;
    }
  }
  vora_host::setXDataRaw(this, xdata);
  if (mpXdata && mpXdata->groups.empty()) mpXdata.reset();
  mModified = true;
  return Acad::eOk;
}

void AcDbObject::addPersistentReactor(AcDbObjectId objId) {
  if (objId.isNull() || !assertWriteEnabled()) return;
  Access::addReactor(this, objId);
  mModified = true;
}

Acad::ErrorStatus AcDbObject::removePersistentReactor(AcDbObjectId objId) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!mpReactors || !mpReactors->remove(objId)) return Acad::eKeyNotFound;
  if (mpReactors->isEmpty()) mpReactors.reset();
  mModified = true;
  return Acad::eOk;
}

bool AcDbObject::hasPersistentReactor(AcDbObjectId objId) const {
  return mpReactors && mpReactors->contains(objId);
}

AcDbVoidPtrArray* AcDbObject::reactors() const {
  if (!mpReactors) return nullptr;
  auto* out = new AcDbVoidPtrArray();
  for (int i = 0; i < mpReactors->length(); ++i) {
    out->append(reinterpret_cast<void*>(mpReactors->at(i).asOldId()));
  }
  return out;
}

// Ids.

const AcDbObjectId AcDbObjectId::kNull;

bool AcDbObjectId::isValid() const { return mId != nullptr && mId->obj != nullptr; }
bool AcDbObjectId::isErased() const { return mId != nullptr && mId->obj != nullptr && mId->obj->isErased(); }
AcDbDatabase* AcDbObjectId::database() const { return mId != nullptr ? mId->db : nullptr; }
AcDbHandle AcDbObjectId::handle() const { return mId != nullptr ? AcDbHandle(mId->handle) : AcDbHandle(); }
AcRxClass* AcDbObjectId::objectClass() const {
  return (mId != nullptr && mId->obj != nullptr) ? mId->obj->isA() : nullptr;
}

// Opening.

Acad::ErrorStatus acdbOpenObject(AcDbObject*& pObj, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
  pObj = nullptr;
  const AcDbStub* stub = id;
  if (stub == nullptr) return Acad::eNullObjectId;
  // An id made for a handle that nothing was ever loaded or added under has
  // no object to open.
  AcDbObject* obj = stub->obj;
  if (obj == nullptr) return Acad::ePermanentlyErased;
  if (obj->isErased() && !openErased) return Acad::eWasErased;
  switch (mode) {
    case AcDb::kForRead: {
      const Acad::ErrorStatus es = vora_host::Access::openForRead(obj, kMaxReaders);
      if (es != Acad::eOk) return es;
      break;
    }
    case AcDb::kForWrite: {
      const Acad::ErrorStatus es = vora_host::Access::openForWrite(obj);
      if (es != Acad::eOk) return es;
      break;
    }
    default:
      // Notification is not part of this host: nothing here sends it.
      return Acad::eNotImplementedYet;
  }
  trackOpen(obj);
  pObj = obj;
  return Acad::eOk;
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& pObj, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
  return acdbOpenObject(pObj, id, mode, openErased);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& pEnt, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
  pEnt = nullptr;
  AcDbObject* obj = nullptr;
  const Acad::ErrorStatus es = acdbOpenObject(obj, id, mode, openErased);
  if (es != Acad::eOk) return es;
  pEnt = AcDbEntity::cast(obj);
  if (pEnt == nullptr) {
    obj->close();
    return Acad::eNotAnEntity;
  }
  return Acad::eOk;
}

namespace vorahost {

std::size_t writeViolations() { return gWriteViolations.load(); }
void resetWriteViolations() { gWriteViolations = 0; }

}  // namespace vorahost
