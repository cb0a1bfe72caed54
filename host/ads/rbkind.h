// Which member of a result buffer's value a type code uses.
#ifndef VORA_HOST_ADS_RBKIND_H
#define VORA_HOST_ADS_RBKIND_H

#include "vora/arx/ads.h"

namespace vora_host {

enum class RbKind { None, Real, Point, Short, Long, Int64, String, Name, Binary, LongPtr, Unknown };

// The kind of value carried by a buffer of type restype: an RT code or a DXF
// group code (what acutBuildList, entity lists, xdata and xrecords use).
VORA_HOST_API RbKind rbKind(int restype);

// A deep copy of one buffer (its rbnext is null).
VORA_HOST_API resbuf* rbCopyOne(const resbuf* rb);

}  // namespace vora_host

#endif
