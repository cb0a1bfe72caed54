// Shared plumbing of the drawing utilities and key/value stores.
#ifndef VORA_DATABASE_DBCOMMON_H
#define VORA_DATABASE_DBCOMMON_H

#include <string>
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

}  // namespace vora::db

#endif
