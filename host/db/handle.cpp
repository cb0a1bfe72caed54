#include "vora/arx/db.h"

namespace {

template <class Char>
AcDbHandle parseHex(const Char* s) {
  if (s == nullptr || *s == 0) return AcDbHandle();
  Adesk::UInt64 value = 0;
  int digits = 0;
  for (const Char* p = s; *p != 0; ++p) {
    const auto c = static_cast<unsigned long>(*p);
    unsigned d = 0;
    if (c >= '0' && c <= '9') d = static_cast<unsigned>(c - '0');
    else if (c >= 'a' && c <= 'f') d = static_cast<unsigned>(c - 'a' + 10);
    else if (c >= 'A' && c <= 'F') d = static_cast<unsigned>(c - 'A' + 10);
    else return AcDbHandle();
    // Leading zeros do not count against the 16 digits of a 64-bit handle.
    if (value != 0 || d != 0) ++digits;
    if (digits > 16) return AcDbHandle();
    value = (value << 4) | d;
  }
  return AcDbHandle(value);
}

}  // namespace

AcDbHandle::AcDbHandle(const ACHAR* hexString) : AcDbHandle(parseHex(hexString)) {}
AcDbHandle::AcDbHandle(const char* hexString) : AcDbHandle(parseHex(hexString)) {}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* pBuf, std::size_t nBufLen) const {
  if (pBuf == nullptr) return false;
  ACHAR digits[kStrSiz];
  std::size_t n = 0;
  Adesk::UInt64 v = *this;
  do {
    const unsigned d = static_cast<unsigned>(v & 0xF);
    digits[n++] = static_cast<ACHAR>(d < 10 ? L'0' + d : L'A' + (d - 10));
    v >>= 4;
  } while (v != 0);
  if (nBufLen < n + 1) {
    if (nBufLen > 0) pBuf[0] = 0;
    return false;
  }
  for (std::size_t i = 0; i < n; ++i) pBuf[i] = digits[n - 1 - i];
  pBuf[n] = 0;
  return true;
}

void AcDbHandle::getIntoAsciiBuffer(ACHAR* pBuf) const { getIntoAsciiBuffer(pBuf, kStrSiz); }
