// Extensions of this host beyond the ObjectARX API, for tests and tools:
// which objects are open right now, refused writes, and where acutPrintf
// writes.
#ifndef VORA_ARX_VORAHOST_H
#define VORA_ARX_VORAHOST_H

#include <cstddef>
#include <functional>
#include <vector>

#include "vora/arx/db.h"

namespace vorahost {

struct OpenObject {
  AcDbObjectId id;
  AcDbHandle handle;
  const ACHAR* className;  // the run-time class name, e.g. L"AcDbLine"
  bool forWrite;
  int readers;
};

// Objects open now in db, or in every database alive when db is null.
VORA_HOST_API std::size_t openObjectCount(const AcDbDatabase* db = nullptr);
VORA_HOST_API std::vector<OpenObject> openObjects(const AcDbDatabase* db = nullptr);

// How many changes were refused since the last reset because the object was
// in a database but not open for write.
VORA_HOST_API std::size_t writeViolations();
VORA_HOST_API void resetWriteViolations();

// Where acutPrintf's text goes; the default writes UTF-8 to standard output.
// Returns the previous sink; an empty sink restores the default.
using PrintSink = std::function<void(const ACHAR* text)>;
VORA_HOST_API PrintSink setPrintSink(PrintSink sink);

// The host draws nothing, but it keeps the display requests it was given:
// the ids queued with acdbQueueForRegen (in call order) and the number of
// acedUpdateDisplay calls since the last reset.
VORA_HOST_API std::vector<AcDbObjectId> queuedForRegen();
VORA_HOST_API std::size_t displayUpdates();
VORA_HOST_API void resetDisplayRequests();

}  // namespace vorahost

#endif
