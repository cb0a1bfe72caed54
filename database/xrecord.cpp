// VoraXrecord: typed values in xrecords under a tree of dictionaries in the
// named objects dictionary.
#include "vora/database.h"

#include <cwchar>

#include "database/dbcommon.h"

using vora::db::listOf;
using vora::db::newItem;
using vora::db::readItem;

namespace {

constexpr int kStringCode = 1000;
constexpr int kShortCode = 70;
constexpr int kIntCode = 90;
constexpr int kRealCode = 40;
constexpr int kHandleCode = 5;
constexpr int kPointCode = 10;

using Codes = vora::db::GroupCodes<kStringCode, kShortCode, kIntCode, kRealCode, kHandleCode, kPointCode>;
using vora::db::AppendTo;

// Walks path (all components but the last) from the named objects
// dictionary, each dictionary opened in mode and its parent closed once the
// child is open. With create, missing dictionaries are made. On success
// *dict is the open dictionary that holds the last component; otherwise the
// result is the walk's negative code (or 0 without a working database) and
// nothing is left open.
int walkToParent(const std::vector<std::wstring>& path, AcDb::OpenMode mode, bool create, AcDbDictionary*& dict) {
  dict = nullptr;
  AcDbDatabase* db = vora::db::workingDatabase();
  if (db == nullptr) return 0;
  AcDbDictionary* current = nullptr;
  if (db->getNamedObjectsDictionary(current, mode) != Acad::eOk) return -1;
  for (std::size_t i = 0; i + 1 < path.size(); ++i) {
    const ACHAR* name = path[i].c_str();
    AcDbObjectId childId;
    const Acad::ErrorStatus es = current->getAt(name, childId);
    if (es == Acad::eOk) {
      AcDbObject* child = nullptr;
      if (acdbOpenObject(child, childId, mode) != Acad::eOk) {
        current->close();
        return -1;
      }
      AcDbDictionary* childDict = AcDbDictionary::cast(child);
      if (childDict == nullptr) {
        child->close();
        current->close();
        return -2;
      }
      current->close();
      current = childDict;
    } else if (es == Acad::eKeyNotFound && create) {
      auto* childDict = new AcDbDictionary();
      AcDbObjectId newId;
      if (current->setAt(name, childDict, newId) != Acad::eOk) {
        delete childDict;
        current->close();
        return -1;
      }
      current->close();
      current = childDict;
    } else {
      current->close();
      return -1;
    }
  }
  dict = current;
  return 1;
}

// Writes values as the xrecord at path; null values only detach the entry.
int writeAt(const std::vector<std::wstring>& path, const resbuf* values) {
  if (path.empty() || vora::db::workingDatabase() == nullptr) return 0;
  AcDbDictionary* parent = nullptr;
  const int walked = walkToParent(path, AcDb::kForWrite, values != nullptr, parent);
  if (walked != 1) return walked;
  const ACHAR* name = path.back().c_str();
  AcDbObjectId oldId;
  // The old entry is only detached from the dictionary, not erased.
  if (parent->getAt(name, oldId) == Acad::eOk) parent->remove(oldId);
  int result = 1;
  if (values != nullptr) {
    auto* record = new AcDbXrecord();
    record->setFromRbChain(*values);
    AcDbObjectId newId;
    if (parent->setAt(name, record, newId) == Acad::eOk) {
      record->close();
    } else {
      delete record;
      result = -1;
    }
  }
  parent->close();
  return result;
}

// The data list of the xrecord at path in *out (null on any result but 1).
int readAt(const std::vector<std::wstring>& path, resbuf** out) {
  *out = nullptr;
  if (path.empty() || vora::db::workingDatabase() == nullptr) return 0;
  AcDbDictionary* parent = nullptr;
  const int walked = walkToParent(path, AcDb::kForRead, false, parent);
  if (walked != 1) return walked;
  AcDbObjectId id;
  const Acad::ErrorStatus es = parent->getAt(path.back().c_str(), id);
  parent->close();
  if (es != Acad::eOk) return -1;
  AcDbObject* entry = nullptr;
  if (acdbOpenObject(entry, id, AcDb::kForRead) != Acad::eOk) return -1;
  int result = 0;
  if (const AcDbXrecord* record = AcDbXrecord::cast(entry)) {
    result = record->rbChain(out) == Acad::eOk ? 1 : -1;
  }
  entry->close();
  return result;
}

}  // namespace

int VoraXrecord::parsePath(const ACHAR* text) {
  if (text == nullptr) return 0;
  std::wstring rest(text);
  int added = 0;
  while (!rest.empty()) {
    const std::size_t slash = rest.find(L'\\');
    // A separator at the very start (a leading backslash, or the second of
    // two in a row) ends the parsing: the rest, backslash included, is one
    // name. Stored paths depend on this, so it stays.
    if (slash == std::wstring::npos || slash == 0) {
      mPath.push_back(rest);
      ++added;
      break;
    }
    mPath.push_back(rest.substr(0, slash));
    ++added;
    rest.erase(0, slash + 1);
  }
  return added;
}

template <class F>
int VoraXrecord::withKey(const ACHAR* key, F&& op) {
  if (mPath.empty()) return 0;
  const int added = parsePath(key);
  const int result = op();
  mPath.resize(mPath.size() - static_cast<std::size_t>(added));
  return result;
}

int VoraXrecord::Open(const ACHAR* path) {
  mPath.clear();
  parsePath(path);
  return 0;
}

int VoraXrecord::Close() {
  mPath.clear();
  return 0;
}

int VoraXrecord::SetValue(resbuf* values) { return writeAt(mPath, values); }

int VoraXrecord::GetValue(resbuf** out) {
  resbuf* list = nullptr;
  const int result = readAt(mPath, &list);
  if (out != nullptr) {
    *out = list;
  } else if (list != nullptr) {
    acutRelRb(list);
  }
  return result;
}

int VoraXrecord::SetValue(const ACHAR* key, resbuf* values) {
  return withKey(key, [&] { return SetValue(values); });
}

namespace {

template <class Self>
int writeOwned(Self& self, const ACHAR* key, resbuf* list) {
  const int result = self.SetValue(key, list);
  if (list != nullptr) acutRelRb(list);
  return result;
}

}  // namespace

int VoraXrecord::SetValue(const ACHAR* key, const ACHAR* value) {
  return writeOwned(*this, key, newItem(kStringCode, value));
}
int VoraXrecord::SetValue(const ACHAR* key, short value) { return writeOwned(*this, key, newItem(kShortCode, value)); }
int VoraXrecord::SetValue(const ACHAR* key, int value) { return writeOwned(*this, key, newItem(kIntCode, value)); }
int VoraXrecord::SetValue(const ACHAR* key, double value) { return writeOwned(*this, key, newItem(kRealCode, value)); }
int VoraXrecord::SetValue(const ACHAR* key, const AcDbHandle& value) {
  return writeOwned(*this, key, newItem(kHandleCode, value));
}
int VoraXrecord::SetValue(const ACHAR* key, const AcGePoint3d& value) {
  return writeOwned(*this, key, newItem(kPointCode, value));
}
int VoraXrecord::SetValue(const ACHAR* key, const AcArray<int>* values) {
  return writeOwned(*this, key, values == nullptr ? nullptr : listOf(kIntCode, *values));
}
int VoraXrecord::SetValue(const ACHAR* key, const AcArray<double>* values) {
  return writeOwned(*this, key, values == nullptr ? nullptr : listOf(kRealCode, *values));
}
int VoraXrecord::SetValue(const ACHAR* key, const AcArray<AcGePoint3d>* values) {
  return writeOwned(*this, key, values == nullptr ? nullptr : listOf(kPointCode, *values));
}
int VoraXrecord::SetValue(const ACHAR* key, const std::vector<std::wstring>* values) {
  return writeOwned(*this, key, values == nullptr ? nullptr : listOf(kStringCode, *values));
}

template <class T>
int VoraXrecord::addOne(const ACHAR* key, const T& value) {
  resbuf* list = nullptr;
  withKey(key, [&] { return GetValue(&list); });
  if (list == nullptr) return SetValue(key, value);
  resbuf* last = list;
  while (last->rbnext != nullptr) last = last->rbnext;
  last->rbnext = newItem(Codes::of<T>(), value);
  const int result = withKey(key, [&] { return SetValue(list); });
  acutRelRb(list);
  return result;
}

int VoraXrecord::AddValue(const ACHAR* key, const ACHAR* value) { return addOne(key, value); }
int VoraXrecord::AddValue(const ACHAR* key, short value) { return addOne(key, value); }
int VoraXrecord::AddValue(const ACHAR* key, int value) { return addOne(key, value); }
int VoraXrecord::AddValue(const ACHAR* key, double value) { return addOne(key, value); }
int VoraXrecord::AddValue(const ACHAR* key, const AcDbHandle& value) { return addOne(key, value); }
int VoraXrecord::AddValue(const ACHAR* key, const AcGePoint3d& value) { return addOne(key, value); }

int VoraXrecord::RemoveKey(const ACHAR* key) { return SetValue(key, static_cast<resbuf*>(nullptr)); }

namespace {

// Runs read on the list of the xrecord at the current path of self; a walk
// that fails passes its negative code on.
template <class Read>
int readList(VoraXrecord& self, Read&& read) {
  resbuf* list = nullptr;
  const int found = self.GetValue(&list);
  if (found < 0) return found;
  const int result = read(list);
  if (list != nullptr) acutRelRb(list);
  return result;
}

}  // namespace

#define VORA_XRECORD_GET_ONE(TYPE)                                                     \
  int VoraXrecord::GetValue(const ACHAR* key, TYPE* out, int index) {                  \
    return withKey(key, [&] {                                                           \
      return readList(*this, [&](const resbuf* list) { return Codes::readAt(list, out, index); }); \
    });                                                                                 \
  }
VORA_XRECORD_GET_ONE(short)
VORA_XRECORD_GET_ONE(int)
VORA_XRECORD_GET_ONE(double)
VORA_XRECORD_GET_ONE(std::wstring)
VORA_XRECORD_GET_ONE(AcDbHandle)
VORA_XRECORD_GET_ONE(AcGePoint3d)
#undef VORA_XRECORD_GET_ONE

#define VORA_XRECORD_GET_RUN(TYPE)                                                    \
  int VoraXrecord::GetValue(const ACHAR* key, AcArray<TYPE>* out) {                    \
    AppendTo<TYPE> sink{out};                                                          \
    return withKey(key, [&] {                                                          \
      return readList(*this, [&](const resbuf* list) {                                 \
        return Codes::readRun<TYPE>(list, out == nullptr ? nullptr : &sink);                  \
      });                                                                              \
    });                                                                                \
  }
VORA_XRECORD_GET_RUN(int)
VORA_XRECORD_GET_RUN(double)
VORA_XRECORD_GET_RUN(AcGePoint3d)
#undef VORA_XRECORD_GET_RUN

int VoraXrecord::GetValue(const ACHAR* key, std::vector<std::wstring>* out) {
  return withKey(key, [&] {
    return readList(*this, [&](const resbuf* list) { return Codes::readRun<std::wstring>(list, out); });
  });
}

int VoraXrecord::GetValue(const ACHAR* key, resbuf** out) {
  return withKey(key, [&] { return GetValue(out); });
}

int VoraXrecord::GetKeys(std::vector<std::wstring>* keys) {
  AcDbDatabase* db = vora::db::workingDatabase();
  if (db == nullptr) return 0;
  AcDbDictionary* dict = nullptr;
  if (mPath.empty()) {
    if (db->getNamedObjectsDictionary(dict, AcDb::kForRead) != Acad::eOk) return -1;
  } else {
    AcDbDictionary* parent = nullptr;
    const int walked = walkToParent(mPath, AcDb::kForRead, false, parent);
    if (walked != 1) return walked;
    AcDbObjectId id;
    const Acad::ErrorStatus es = parent->getAt(mPath.back().c_str(), id);
    parent->close();
    if (es != Acad::eOk) return -1;
    AcDbObject* entry = nullptr;
    if (acdbOpenObject(entry, id, AcDb::kForRead) != Acad::eOk) return -1;
    dict = AcDbDictionary::cast(entry);
    if (dict == nullptr) {
      entry->close();
      return -2;
    }
  }
  int n = 0;
  AcDbDictionaryIterator* it = dict->newIterator();
  for (; it != nullptr && !it->done(); it->next()) {
    if (keys != nullptr) keys->emplace_back(it->name());
    ++n;
  }
  delete it;
  dict->close();
  return n;
}

// The two-string forms: dict becomes the current path, then the key
// operation runs on it.
#define VORA_XRECORD_SET2(TYPE)                                                   \
  int VoraXrecord::SetValue(const ACHAR* dict, const ACHAR* key, TYPE value) {    \
    Open(dict);                                                                   \
    return SetValue(key, value);                                                  \
  }
VORA_XRECORD_SET2(resbuf*)
VORA_XRECORD_SET2(const ACHAR*)
VORA_XRECORD_SET2(short)
VORA_XRECORD_SET2(int)
VORA_XRECORD_SET2(double)
VORA_XRECORD_SET2(const AcDbHandle&)
VORA_XRECORD_SET2(const AcGePoint3d&)
VORA_XRECORD_SET2(const AcArray<int>*)
VORA_XRECORD_SET2(const AcArray<double>*)
VORA_XRECORD_SET2(const AcArray<AcGePoint3d>*)
VORA_XRECORD_SET2(const std::vector<std::wstring>*)
#undef VORA_XRECORD_SET2

// Kept as it has always been: the two-string AddValue answers 0 whatever
// happened, so callers must not read anything into it.
#define VORA_XRECORD_ADD2(TYPE)                                                   \
  int VoraXrecord::AddValue(const ACHAR* dict, const ACHAR* key, TYPE value) {    \
    Open(dict);                                                                   \
    AddValue(key, value);                                                         \
    return 0;                                                                     \
  }
VORA_XRECORD_ADD2(const ACHAR*)
VORA_XRECORD_ADD2(short)
VORA_XRECORD_ADD2(int)
VORA_XRECORD_ADD2(double)
VORA_XRECORD_ADD2(const AcDbHandle&)
VORA_XRECORD_ADD2(const AcGePoint3d&)
#undef VORA_XRECORD_ADD2

#define VORA_XRECORD_GET2_ONE(TYPE)                                                          \
  int VoraXrecord::GetValue(const ACHAR* dict, const ACHAR* key, TYPE* out, int index) {     \
    Open(dict);                                                                              \
    return GetValue(key, out, index);                                                        \
  }
VORA_XRECORD_GET2_ONE(short)
VORA_XRECORD_GET2_ONE(int)
VORA_XRECORD_GET2_ONE(double)
VORA_XRECORD_GET2_ONE(std::wstring)
VORA_XRECORD_GET2_ONE(AcDbHandle)
VORA_XRECORD_GET2_ONE(AcGePoint3d)
#undef VORA_XRECORD_GET2_ONE

#define VORA_XRECORD_GET2(OUTTYPE)                                                \
  int VoraXrecord::GetValue(const ACHAR* dict, const ACHAR* key, OUTTYPE out) {   \
    Open(dict);                                                                   \
    return GetValue(key, out);                                                    \
  }
VORA_XRECORD_GET2(AcArray<int>*)
VORA_XRECORD_GET2(AcArray<double>*)
VORA_XRECORD_GET2(AcArray<AcGePoint3d>*)
VORA_XRECORD_GET2(std::vector<std::wstring>*)
VORA_XRECORD_GET2(resbuf**)
#undef VORA_XRECORD_GET2

int VoraXrecord::RemoveKey(const ACHAR* dict, const ACHAR* key) {
  Open(dict);
  return RemoveKey(key);
}

int VoraXrecord::GetKeys(const ACHAR* path, std::vector<std::wstring>* keys) {
  Open(path);
  return GetKeys(keys);
}

int VoraXrecord::RemoveDict(const ACHAR* path) {
  Open(path);
  return SetValue(static_cast<resbuf*>(nullptr));
}
