// Shared plumbing of the drawing utilities and key/value stores.
#ifndef VORA_DATABASE_DBCOMMON_H
#define VORA_DATABASE_DBCOMMON_H

#include <string>
#include <type_traits>
#include <vector>

#include "vora/arx.h"

namespace vora::db {

// The working database of the host, or null when there is none.
AcDbDatabase* workingDatabase();

// Compares two names without regard to case: A-Z are folded directly, every
// other character through the C library's wide lower-casing.
bool equalNoCase(const ACHAR* a, const ACHAR* b);
inline bool equalNoCase(const std::wstring& a, const ACHAR* b) { return equalNoCase(a.c_str(), b); }

// Opens model space of the working database through its block table (closed
// again here). Null when either cannot be opened.
AcDbBlockTableRecord* openModelSpace(AcDb::OpenMode mode);

// One new result-buffer item of the given code holding a value. Handles are
// stored as their hexadecimal text; strings are copied.
resbuf* newItem(int code, const ACHAR* value);
resbuf* newItem(int code, short value);
resbuf* newItem(int code, int value);
resbuf* newItem(int code, double value);
resbuf* newItem(int code, const AcDbHandle& value);
resbuf* newItem(int code, const AcGePoint3d& value);
inline resbuf* newItem(int code, const std::wstring& value) { return newItem(code, value.c_str()); }

// Reads an item into a value of the matching type; the item's code is
// checked by the caller.
void readItem(const resbuf* rb, short* out);
void readItem(const resbuf* rb, int* out);
void readItem(const resbuf* rb, double* out);
void readItem(const resbuf* rb, std::wstring* out);
void readItem(const resbuf* rb, AcDbHandle* out);
void readItem(const resbuf* rb, AcGePoint3d* out);

// Builds a list of one item per element (null for an empty array).
template <class Seq>
resbuf* listOf(int code, const Seq& values) {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (const auto& v : values) {
    *tail = newItem(code, v);
    if (*tail == nullptr) break;
    tail = &(*tail)->rbnext;
  }
  return head;
}

// The group codes under which a store keeps each value type (extended data
// and xrecords use different ones), and the typed reads of a value list.
template <int String, int Short, int Int, int Real, int Handle, int Point>
struct GroupCodes {
  template <class T>
  static constexpr int of() {
    if constexpr (std::is_same_v<T, short>) return Short;
    else if constexpr (std::is_same_v<T, int>) return Int;
    else if constexpr (std::is_same_v<T, double>) return Real;
    else if constexpr (std::is_same_v<T, AcDbHandle>) return Handle;
    else if constexpr (std::is_same_v<T, AcGePoint3d>) return Point;
    else {
      static_assert(std::is_same_v<T, std::wstring> || std::is_same_v<T, const ACHAR*>);
      return String;
    }
  }

  // The item at position index, when it holds a T: 1 and *out set (when out
  // is given); 0 for a position past the end or an item of another type.
  template <class T>
  static int readAt(const resbuf* list, T* out, int index) {
    if (index < 0) return 0;
    const resbuf* rb = list;
    for (int i = 0; rb != nullptr && i < index; ++i) rb = rb->rbnext;
    if (rb == nullptr || rb->restype != of<T>()) return 0;
    if (out != nullptr) readItem(rb, out);
    return 1;
  }

  // The leading run of T items, appended to out (when given); their count.
  template <class T, class Seq>
  static int readRun(const resbuf* list, Seq* out) {
    int n = 0;
    for (const resbuf* rb = list; rb != nullptr && rb->restype == of<T>(); rb = rb->rbnext, ++n) {
      if (out != nullptr) {
        T value{};
        readItem(rb, &value);
        out->push_back(value);
      }
    }
    return n;
  }
};

// Lets readRun fill an AcArray as it fills a std::vector.
template <class T>
struct AppendTo {
  AcArray<T>* array;
  void push_back(const T& v) { array->append(v); }
};

}  // namespace vora::db

#endif
