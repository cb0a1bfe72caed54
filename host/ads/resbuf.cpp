#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "host/ads/rbkind.h"

namespace vora_host {

RbKind rbKind(int t) {
  switch (t) {
    case RTNONE: case RTVOID: case RTLB: case RTLE: case RTDOTE: case RTNIL: case RTT: case RTRESBUF:
      return RbKind::None;
    case RTREAL: case RTANG: case RTORINT: return RbKind::Real;
    case RTPOINT: case RT3DPOINT: return RbKind::Point;
    case RTSHORT: return RbKind::Short;
    case RTLONG: return RbKind::Long;
    case RTSTR: case RTDXF0: return RbKind::String;
    case RTENAME: case RTPICKS: return RbKind::Name;
    case RTLONG_PTR: return RbKind::LongPtr;
    case RTINT64: return RbKind::Int64;
    default: break;
  }
  if (t == -3) return RbKind::None;
  if (t == -1 || t == -2) return RbKind::Name;
  if (t == -4 || t == -5) return RbKind::String;
  if (t >= 0 && t <= 9) return RbKind::String;
  if (t >= 10 && t <= 39) return RbKind::Point;
  if (t >= 40 && t <= 59) return RbKind::Real;
  if (t >= 60 && t <= 79) return RbKind::Short;
  if (t >= 90 && t <= 99) return RbKind::Long;
  if (t == 100 || t == 101 || t == 102 || t == 105) return RbKind::String;
  if (t >= 110 && t <= 139) return RbKind::Point;
  if (t >= 140 && t <= 149) return RbKind::Real;
  if (t >= 160 && t <= 169) return RbKind::Int64;
  if (t >= 170 && t <= 179) return RbKind::Short;
  if (t >= 210 && t <= 239) return RbKind::Point;
  if (t >= 270 && t <= 299) return RbKind::Short;
  if (t >= 300 && t <= 309) return RbKind::String;
  if (t >= 310 && t <= 319) return RbKind::Binary;
  if (t >= 320 && t <= 329) return RbKind::String;
  if (t >= 330 && t <= 369) return RbKind::Name;
  if (t >= 370 && t <= 389) return RbKind::Short;
  if (t >= 390 && t <= 399) return RbKind::Name;
  if (t >= 400 && t <= 409) return RbKind::Short;
  if (t >= 410 && t <= 419) return RbKind::String;
  if (t >= 420 && t <= 429) return RbKind::Long;
  if (t >= 430 && t <= 439) return RbKind::String;
  if (t >= 440 && t <= 459) return RbKind::Long;
  if (t >= 460 && t <= 469) return RbKind::Real;
  if (t >= 470 && t <= 479) return RbKind::String;
  if (t == 480 || t == 481) return RbKind::Name;
  if (t == 999) return RbKind::String;
  if (t == 1004) return RbKind::Binary;
  if (t >= 1000 && t <= 1009) return RbKind::String;
  if (t >= 1010 && t <= 1039) return RbKind::Point;
  if (t >= 1040 && t <= 1059) return RbKind::Real;
  if (t >= 1060 && t <= 1070) return RbKind::Short;
  if (t == 1071) return RbKind::Long;
  return RbKind::Unknown;
}

namespace {

ACHAR* dupString(const ACHAR* s) {
  if (s == nullptr) return nullptr;
  const std::size_t n = std::wcslen(s) + 1;
  auto* out = static_cast<ACHAR*>(std::malloc(n * sizeof(ACHAR)));
  if (out != nullptr) std::wmemcpy(out, s, n);
  return out;
}

char* dupBytes(const char* p, short n) {
  if (p == nullptr || n <= 0) return nullptr;
  auto* out = static_cast<char*>(std::malloc(static_cast<std::size_t>(n)));
  if (out != nullptr) std::memcpy(out, p, static_cast<std::size_t>(n));
  return out;
}

}  // namespace

resbuf* rbCopyOne(const resbuf* rb) {
  resbuf* out = acutNewRb(rb->restype);
  if (out == nullptr) return nullptr;
  out->resval = rb->resval;
  switch (rbKind(rb->restype)) {
    case RbKind::String: out->resval.rstring = dupString(rb->resval.rstring); break;
    case RbKind::Binary:
      out->resval.rbinary.buf = dupBytes(rb->resval.rbinary.buf, rb->resval.rbinary.clen);
      if (out->resval.rbinary.buf == nullptr) out->resval.rbinary.clen = 0;
      break;
    default: break;
  }
  return out;
}

}  // namespace vora_host

using vora_host::RbKind;
using vora_host::rbKind;

resbuf* acutNewRb(int v) {
  auto* rb = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
  if (rb != nullptr) rb->restype = static_cast<short>(v);
  return rb;
}

int acutRelRb(resbuf* rb) {
  if (rb == nullptr) return RTERROR;
  while (rb != nullptr) {
    resbuf* next = rb->rbnext;
    switch (rbKind(rb->restype)) {
      case RbKind::String: std::free(rb->resval.rstring); break;
      case RbKind::Binary: std::free(rb->resval.rbinary.buf); break;
      default: break;
    }
    std::free(rb);
    rb = next;
  }
  return RTNORM;
}

resbuf* acutBuildList(int rtype, ...) {
  va_list ap;
  va_start(ap, rtype);
  resbuf* head = nullptr;
  resbuf* tail = nullptr;
  bool bad = false;
  for (int code = rtype; code != 0 && code != RTNONE; code = va_arg(ap, int)) {
    const int stored = code == RTDXF0 ? 0 : code;
    resbuf* rb = acutNewRb(stored);
    if (rb == nullptr) { bad = true; break; }
    switch (code == RTDXF0 ? RbKind::String : rbKind(code)) {
      case RbKind::None: break;
      case RbKind::Real: rb->resval.rreal = va_arg(ap, double); break;
      case RbKind::Point: {
        const double* p = va_arg(ap, const double*);
        if (p != nullptr) {
          rb->resval.rpoint[0] = p[0];
          rb->resval.rpoint[1] = p[1];
          rb->resval.rpoint[2] = p[2];
        }
        break;
      }
      case RbKind::Short: rb->resval.rint = static_cast<short>(va_arg(ap, int)); break;
      case RbKind::Long: rb->resval.rlong = static_cast<std::int32_t>(va_arg(ap, int)); break;
      case RbKind::Int64: rb->resval.mnInt64 = va_arg(ap, std::int64_t); break;
      case RbKind::LongPtr: rb->resval.mnLongPtr = va_arg(ap, std::int64_t); break;
      case RbKind::String: {
        const ACHAR* s = va_arg(ap, const ACHAR*);
        rb->resval.rstring = vora_host::dupString(s);
        break;
      }
      case RbKind::Name: {
        const std::int64_t* n = va_arg(ap, const std::int64_t*);
        if (n != nullptr) {
          rb->resval.rlname[0] = n[0];
          rb->resval.rlname[1] = n[1];
        }
        break;
      }
      case RbKind::Binary: {
        const ads_binary* b = va_arg(ap, const ads_binary*);
        if (b != nullptr) {
          rb->resval.rbinary.buf = vora_host::dupBytes(b->buf, b->clen);
          rb->resval.rbinary.clen = rb->resval.rbinary.buf != nullptr ? b->clen : 0;
        }
        break;
      }
      case RbKind::Unknown: bad = true; break;
    }
    if (head == nullptr) head = rb; else tail->rbnext = rb;
    tail = rb;
    if (bad) break;
  }
  va_end(ap);
  if (bad) {
    acutRelRb(head);
    return nullptr;
  }
  return head;
}

int acutRbDup(const resbuf* src, resbuf** result) {
  if (result == nullptr) return RTERROR;
  *result = nullptr;
  resbuf* tail = nullptr;
  for (const resbuf* rb = src; rb != nullptr; rb = rb->rbnext) {
    resbuf* copy = vora_host::rbCopyOne(rb);
    if (copy == nullptr) {
      acutRelRb(*result);
      *result = nullptr;
      return RTERROR;
    }
    if (*result == nullptr) *result = copy; else tail->rbnext = copy;
    tail = copy;
  }
  return RTNORM;
}

Acad::ErrorStatus acutNewString(const ACHAR* pInput, ACHAR*& pOutput) {
  pOutput = nullptr;
  if (pInput == nullptr) return Acad::eInvalidInput;
  pOutput = vora_host::dupString(pInput);
  return pOutput != nullptr ? Acad::eOk : Acad::eOutOfMemory;
}

void acutDelString(ACHAR*& pString) {
  std::free(pString);
  pString = nullptr;
}
