#include "database/dbcommon.h"

#include <cstdlib>
#include <cwchar>
#include <cwctype>

namespace vora::db {

AcDbDatabase* workingDatabase() {
  // The services object lives as long as the host; only the database it
  // points at changes, so the pointer to the services is fetched once.
  static AcDbHostApplicationServices* const services = acdbHostApplicationServices();
  return services == nullptr ? nullptr : services->workingDatabase();
}

static wchar_t foldCase(wchar_t c) {
  if (c >= L'A' && c <= L'Z') return static_cast<wchar_t>(c - L'A' + L'a');
  if (c < 0x80) return c;
  return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c)));
}

bool equalNoCase(const ACHAR* a, const ACHAR* b) {
  if (a == nullptr || b == nullptr) return a == b;
  for (;; ++a, ++b) {
    if (foldCase(*a) != foldCase(*b)) return false;
    if (*a == L'\0') return true;
  }
}

AcDbBlockTableRecord* openModelSpace(AcDb::OpenMode mode) {
  AcDbDatabase* db = workingDatabase();
  if (db == nullptr) return nullptr;
  AcDbBlockTable* table = nullptr;
  if (db->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return nullptr;
  AcDbBlockTableRecord* space = nullptr;
  if (table->getAt(ACDB_MODEL_SPACE, space, mode) != Acad::eOk) space = nullptr;
  table->close();
  return space;
}

resbuf* newItem(int code, const ACHAR* value) {
  resbuf* rb = acutNewRb(code);
  if (rb == nullptr) return nullptr;
  const ACHAR* text = value == nullptr ? L"" : value;
  const std::size_t n = std::wcslen(text) + 1;
  rb->resval.rstring = static_cast<ACHAR*>(std::malloc(n * sizeof(ACHAR)));
  if (rb->resval.rstring == nullptr) {
    acutRelRb(rb);
    return nullptr;
  }
  std::wmemcpy(rb->resval.rstring, text, n);
  return rb;
}

resbuf* newItem(int code, short value) {
  resbuf* rb = acutNewRb(code);
  if (rb != nullptr) rb->resval.rint = value;
  return rb;
}

resbuf* newItem(int code, int value) {
  resbuf* rb = acutNewRb(code);
  if (rb != nullptr) rb->resval.rlong = value;
  return rb;
}

resbuf* newItem(int code, double value) {
  resbuf* rb = acutNewRb(code);
  if (rb != nullptr) rb->resval.rreal = value;
  return rb;
}

resbuf* newItem(int code, const AcDbHandle& value) {
  // The handle's own text needs at most 17 characters; the buffer is
  // generous on purpose, as the stored form has always been written.
  ACHAR text[32] = {};
  value.getIntoAsciiBuffer(text, 32);
  return newItem(code, static_cast<const ACHAR*>(text));
}

resbuf* newItem(int code, const AcGePoint3d& value) {
  resbuf* rb = acutNewRb(code);
  if (rb != nullptr) {
    rb->resval.rpoint[0] = value.x;
    rb->resval.rpoint[1] = value.y;
    rb->resval.rpoint[2] = value.z;
  }
  return rb;
}

void readItem(const resbuf* rb, short* out) { *out = rb->resval.rint; }
void readItem(const resbuf* rb, int* out) { *out = rb->resval.rlong; }
void readItem(const resbuf* rb, double* out) { *out = rb->resval.rreal; }
void readItem(const resbuf* rb, std::wstring* out) {
  *out = rb->resval.rstring == nullptr ? std::wstring() : std::wstring(rb->resval.rstring);
}
void readItem(const resbuf* rb, AcDbHandle* out) {
  *out = AcDbHandle(static_cast<const ACHAR*>(rb->resval.rstring == nullptr ? L"" : rb->resval.rstring));
}
void readItem(const resbuf* rb, AcGePoint3d* out) {
  *out = AcGePoint3d(rb->resval.rpoint[0], rb->resval.rpoint[1], rb->resval.rpoint[2]);
}

}  // namespace vora::db
