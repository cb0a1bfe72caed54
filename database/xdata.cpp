// VoraXdata: typed values under application names in an object's extended
// data.
#include "vora/database.h"

#include "database/dbcommon.h"

using vora::db::listOf;
using vora::db::newItem;
using vora::db::readItem;

namespace {

constexpr int kStringCode = AcDb::kDxfXdAsciiString;
constexpr int kShortCode = AcDb::kDxfXdInteger16;
constexpr int kIntCode = AcDb::kDxfXdInteger32;
constexpr int kRealCode = AcDb::kDxfXdReal;
constexpr int kHandleCode = AcDb::kDxfXdHandle;
constexpr int kPointCode = AcDb::kDxfXdXCoord;

using Codes = vora::db::GroupCodes<kStringCode, kShortCode, kIntCode, kRealCode, kHandleCode, kPointCode>;
using vora::db::AppendTo;

// Why a key's items could not be read.
enum class ReadFail { None, Unbound, CannotRead };

// The key's value items (head detached and released), or null; fail tells
// whether the object could be read at all.
resbuf* readKey(AcDbObjectId objectId, AcDbObject* object, const ACHAR* key, ReadFail& fail) {
  fail = ReadFail::None;
  AcDbObject* target = object;
  bool openedHere = false;
  if (target != nullptr) {
    if (!target->isReadEnabled()) {
      fail = ReadFail::CannotRead;
      return nullptr;
    }
  } else if (objectId.isNull()) {
    fail = ReadFail::Unbound;
    return nullptr;
  } else {
    if (acdbOpenObject(target, objectId, AcDb::kForRead) != Acad::eOk) {
      fail = ReadFail::CannotRead;
      return nullptr;
    }
    openedHere = true;
  }
  resbuf* head = key == nullptr ? nullptr : target->xData(key);
  if (openedHere) target->close();
  if (head == nullptr) return nullptr;
  resbuf* values = head->rbnext;
  head->rbnext = nullptr;
  acutRelRb(head);
  return values;
}

template <class T>
int writeOwned(VoraXdata& self, const ACHAR* key, resbuf* list) {
  const int result = self.SetValue(key, list);
  if (list != nullptr) acutRelRb(list);
  return result;
}

}  // namespace

VoraXdata::~VoraXdata() { Close(); }

int VoraXdata::Open(AcDbObject* object) {
  mObject = object;
  mObjectId.setNull();
  return 1;
}

int VoraXdata::Open(AcDbObjectId id) {
  mObjectId = id;
  mObject = nullptr;
  return 1;
}

int VoraXdata::Close() {
  mObjectId.setNull();
  mObject = nullptr;
  return 1;
}

int VoraXdata::SetValue(const ACHAR* key, resbuf* values) {
  AcDbObject* target = mObject;
  bool upgraded = false;
  bool openedHere = false;
  if (target != nullptr) {
    if (!target->isWriteEnabled()) {
      if (target->upgradeOpen() != Acad::eOk) return -2;
      upgraded = true;
    }
  } else if (mObjectId.isNull()) {
    return -1;
  } else {
    if (acdbOpenObject(target, mObjectId, AcDb::kForWrite) != Acad::eOk) return -2;
    openedHere = true;
  }

  int result = 0;
  if (key != nullptr) {
    acdbRegApp(key);
    resbuf* head = newItem(AcDb::kDxfRegAppName, key);
    if (head != nullptr) {
      head->rbnext = values;
      result = target->setXData(head) == Acad::eOk ? 1 : 0;
      head->rbnext = nullptr;
      acutRelRb(head);
    }
  }

  if (upgraded) target->downgradeOpen();
  if (openedHere) target->close();
  return result;
}

int VoraXdata::SetValue(const ACHAR* key, const ACHAR* value) {
  return writeOwned<const ACHAR*>(*this, key, newItem(kStringCode, value));
}
int VoraXdata::SetValue(const ACHAR* key, short value) { return writeOwned<short>(*this, key, newItem(kShortCode, value)); }
int VoraXdata::SetValue(const ACHAR* key, int value) { return writeOwned<int>(*this, key, newItem(kIntCode, value)); }
int VoraXdata::SetValue(const ACHAR* key, double value) { return writeOwned<double>(*this, key, newItem(kRealCode, value)); }
int VoraXdata::SetValue(const ACHAR* key, const AcDbHandle& value) {
  return writeOwned<AcDbHandle>(*this, key, newItem(kHandleCode, value));
}
int VoraXdata::SetValue(const ACHAR* key, const AcGePoint3d& value) {
  return writeOwned<AcGePoint3d>(*this, key, newItem(kPointCode, value));
}
int VoraXdata::SetValue(const ACHAR* key, const AcArray<int>* values) {
  return writeOwned<int>(*this, key, values == nullptr ? nullptr : listOf(kIntCode, *values));
}
int VoraXdata::SetValue(const ACHAR* key, const AcArray<double>* values) {
  return writeOwned<double>(*this, key, values == nullptr ? nullptr : listOf(kRealCode, *values));
}
int VoraXdata::SetValue(const ACHAR* key, const AcArray<AcGePoint3d>* values) {
  return writeOwned<AcGePoint3d>(*this, key, values == nullptr ? nullptr : listOf(kPointCode, *values));
}
int VoraXdata::SetValue(const ACHAR* key, const std::vector<std::wstring>* values) {
  return writeOwned<std::wstring>(*this, key, values == nullptr ? nullptr : listOf(kStringCode, *values));
}

namespace {

template <class T>
int appendValue(VoraXdata& self, AcDbObjectId id, AcDbObject* object, const ACHAR* key, const T& value) {
  ReadFail fail = ReadFail::None;
  resbuf* list = readKey(id, object, key, fail);
  if (list == nullptr) return self.SetValue(key, value);
  resbuf* last = list;
  while (last->rbnext != nullptr) last = last->rbnext;
  last->rbnext = newItem(Codes::of<T>(), value);
  const int result = self.SetValue(key, list);
  acutRelRb(list);
  return result;
}

}  // namespace

int VoraXdata::AddValue(const ACHAR* key, const ACHAR* value) { return appendValue(*this, mObjectId, mObject, key, value); }
int VoraXdata::AddValue(const ACHAR* key, short value) { return appendValue(*this, mObjectId, mObject, key, value); }
int VoraXdata::AddValue(const ACHAR* key, int value) { return appendValue(*this, mObjectId, mObject, key, value); }
int VoraXdata::AddValue(const ACHAR* key, double value) { return appendValue(*this, mObjectId, mObject, key, value); }
int VoraXdata::AddValue(const ACHAR* key, const AcDbHandle& value) {
  return appendValue(*this, mObjectId, mObject, key, value);
}
int VoraXdata::AddValue(const ACHAR* key, const AcGePoint3d& value) {
  return appendValue(*this, mObjectId, mObject, key, value);
}

int VoraXdata::RemoveKey(const ACHAR* key) { return SetValue(key, static_cast<resbuf*>(nullptr)); }

namespace {

template <class T>
int getAt(AcDbObjectId id, AcDbObject* object, const ACHAR* key, T* out, int index) {
  ReadFail fail = ReadFail::None;
  resbuf* list = readKey(id, object, key, fail);
  const int result = Codes::readAt(list, out, index);
  if (list != nullptr) acutRelRb(list);
  return result;
}

template <class T, class Seq>
int getRun(AcDbObjectId id, AcDbObject* object, const ACHAR* key, Seq* out) {
  ReadFail fail = ReadFail::None;
  resbuf* list = readKey(id, object, key, fail);
  const int result = Codes::readRun<T>(list, out);
  if (list != nullptr) acutRelRb(list);
  return result;
}

}  // namespace

int VoraXdata::GetValue(const ACHAR* key, short* out, int index) { return getAt(mObjectId, mObject, key, out, index); }
int VoraXdata::GetValue(const ACHAR* key, int* out, int index) { return getAt(mObjectId, mObject, key, out, index); }
int VoraXdata::GetValue(const ACHAR* key, double* out, int index) { return getAt(mObjectId, mObject, key, out, index); }
int VoraXdata::GetValue(const ACHAR* key, std::wstring* out, int index) {
  return getAt(mObjectId, mObject, key, out, index);
}
int VoraXdata::GetValue(const ACHAR* key, AcDbHandle* out, int index) {
  return getAt(mObjectId, mObject, key, out, index);
}
int VoraXdata::GetValue(const ACHAR* key, AcGePoint3d* out, int index) {
  return getAt(mObjectId, mObject, key, out, index);
}

int VoraXdata::GetValue(const ACHAR* key, AcArray<int>* out) {
  AppendTo<int> sink{out};
  return getRun<int>(mObjectId, mObject, key, out == nullptr ? nullptr : &sink);
}
int VoraXdata::GetValue(const ACHAR* key, AcArray<double>* out) {
  AppendTo<double> sink{out};
  return getRun<double>(mObjectId, mObject, key, out == nullptr ? nullptr : &sink);
}
int VoraXdata::GetValue(const ACHAR* key, AcArray<AcGePoint3d>* out) {
  AppendTo<AcGePoint3d> sink{out};
  return getRun<AcGePoint3d>(mObjectId, mObject, key, out == nullptr ? nullptr : &sink);
}
int VoraXdata::GetValue(const ACHAR* key, std::vector<std::wstring>* out) {
  return getRun<std::wstring>(mObjectId, mObject, key, out);
}

int VoraXdata::GetValue(const ACHAR* key, resbuf** out) {
  ReadFail fail = ReadFail::None;
  resbuf* list = readKey(mObjectId, mObject, key, fail);
  if (fail == ReadFail::Unbound) return -1;
  if (fail == ReadFail::CannotRead) return -2;
  // A key that is present always has items: the host drops a key whose
  // extended data is its head alone.
  const int result = list != nullptr ? 1 : 0;
  if (out != nullptr) {
    *out = list;
  } else if (list != nullptr) {
    acutRelRb(list);
  }
  return result;
}

int VoraXdata::GetKeys(std::vector<std::wstring>* keys) {
  AcDbObject* target = mObject;
  bool openedHere = false;
  if (target != nullptr) {
    if (!target->isReadEnabled()) return 0;
  } else if (mObjectId.isNull()) {
    return 0;
  } else {
    if (acdbOpenObject(target, mObjectId, AcDb::kForRead) != Acad::eOk) return 0;
    openedHere = true;
  }
  resbuf* all = target->xData(nullptr);
  if (openedHere) target->close();
  int n = 0;
  for (const resbuf* rb = all; rb != nullptr; rb = rb->rbnext) {
    if (rb->restype != AcDb::kDxfRegAppName) continue;
    if (keys != nullptr) keys->emplace_back(rb->resval.rstring == nullptr ? L"" : rb->resval.rstring);
    ++n;
  }
  if (all != nullptr) acutRelRb(all);
  return n;
}
