// Basic types of the ObjectARX API: Adesk integers, ACHAR and literal macros.
#ifndef VORA_ARX_ADESK_H
#define VORA_ARX_ADESK_H

#include <cstddef>
#include <cstdint>

#include "vora/export.h"

struct Adesk {
  using Int8 = std::int8_t;
  using Int16 = std::int16_t;
  using Int32 = std::int32_t;
  using Int64 = std::int64_t;
  using UInt8 = std::uint8_t;
  using UInt16 = std::uint16_t;
  using UInt32 = std::uint32_t;
  using UInt64 = std::uint64_t;
  using IntPtr = std::intptr_t;
  using UIntPtr = std::uintptr_t;
  using LongPtr = std::intptr_t;
  using ULongPtr = std::uintptr_t;
  using IntDbId = std::intptr_t;
  using GsMarker = std::intptr_t;
  using Boolean = bool;
  using Bool = bool;
  static constexpr Boolean kFalse = false;
  static constexpr Boolean kTrue = true;
};

// Characters of the API are wide, as in the SDK. On Linux wchar_t holds 32
// bits where Windows has 16; sources that build on both stay within the
// literal macros below and never rely on the size.
using ACHAR = wchar_t;
#ifndef ACRX_T
#  define ACRX_T(x) L##x
#endif
#ifndef _T
#  define _T(x) L##x
#endif

#endif
