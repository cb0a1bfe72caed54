// Result buffers, result-type codes and the acut utilities.
//
// A resbuf list is a singly linked chain of typed values. Lists, and the
// strings and binary chunks they point to, are allocated with the C heap
// (malloc), so acutRelRb can release a list whatever built it: acutNewRb,
// acutBuildList, or code that filled a buffer with a string of its own from
// malloc or wcsdup.
#ifndef VORA_ARX_ADS_H
#define VORA_ARX_ADS_H

#include <cstdint>

#include "vora/arx/acadstrc.h"
#include "vora/arx/adesk.h"

// Result and status codes.
#define RTNONE 5000
#define RTREAL 5001
#define RTPOINT 5002
#define RTSHORT 5003
#define RTANG 5004
#define RTSTR 5005
#define RTENAME 5006
#define RTPICKS 5007
#define RTORINT 5008
#define RT3DPOINT 5009
#define RTLONG 5010
#define RTVOID 5014
#define RTLB 5016
#define RTLE 5017
#define RTDOTE 5018
#define RTNIL 5019
#define RTDXF0 5020
#define RTT 5021
#define RTRESBUF 5023
#define RTMODELESS 5027
#define RTLONG_PTR 5030
#define RTINT64 5031

#define RTNORM 5100
#define RTERROR (-5001)
#define RTCAN (-5002)
#define RTREJ (-5003)
#define RTFAIL (-5004)
#define RTKWORD (-5005)
#define RTINPUTTRUNCATED (-5008)

using ads_real = double;
using ads_point = ads_real[3];
using ads_pointp = ads_real*;
using ads_matrix = ads_real[4][4];
using ads_name = std::int64_t[2];
using ads_namep = std::int64_t*;

struct ads_binary {
  short clen;
  char* buf;
};

union ads_u_val {
  ads_real rreal;
  ads_real rpoint[3];
  short rint;
  ACHAR* rstring;
  std::int64_t rlname[2];
  std::int64_t mnLongPtr;
  std::int32_t rlong;
  std::int64_t mnInt64;
  struct ads_binary rbinary;
  unsigned char ihandle[8];
};

struct resbuf {
  struct resbuf* rbnext;
  short restype;
  union ads_u_val resval;
};

// One zeroed buffer of type v (an RT code or a DXF group code).
VORA_HOST_API struct resbuf* acutNewRb(int v);
// Releases the whole list from rb on, with the strings and binary chunks of
// its buffers. Returns RTNORM (RTERROR for a null list).
VORA_HOST_API int acutRelRb(struct resbuf* rb);
// Builds a list from (type, value) pairs ended by 0 or RTNONE. RTLB, RTLE,
// RTDOTE, RTNIL, RTT, RTVOID and -3 take no value; DXF group 0 is written
// RTDXF0. Values: strings as const ACHAR*, points as const double*, names as
// ads_name, 16-bit codes as int, 32-bit as int, 64-bit as int64, reals as
// double. Gives null for an empty list or an unknown type code.
VORA_HOST_API struct resbuf* acutBuildList(int rtype, ...);
// Copies the list src into a new list at *result.
VORA_HOST_API int acutRbDup(const struct resbuf* src, struct resbuf** result);
// Allocates a copy of pInput (acutDelString releases it).
VORA_HOST_API Acad::ErrorStatus acutNewString(const ACHAR* pInput, ACHAR*& pOutput);
VORA_HOST_API void acutDelString(ACHAR*& pString);

// Formats like wprintf with the CAD program's conventions (%s and %c take wide
// arguments, %hs a narrow string) and hands the text to the print sink, which
// writes UTF-8 to standard output unless a test replaced it
// (vora/arx/vorahost.h). Returns the number of characters printed.
VORA_HOST_API int acutPrintf(const ACHAR* format, ...);

#endif
