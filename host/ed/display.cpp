// Display requests. A headless host has nothing to redraw; it records what
// was asked so that a caller can check that a change was made visible.
#include <mutex>
#include <vector>

#include "vora/arx.h"
#include "vora/arx/vorahost.h"

namespace {

struct DisplayRequests {
  std::mutex mutex;
  std::vector<AcDbObjectId> regen;
  std::size_t updates = 0;
};

DisplayRequests& requests() {
  static DisplayRequests r;
  return r;
}

}  // namespace

Acad::ErrorStatus acdbQueueForRegen(const AcDbObjectId* pIdArray, int nNumIds, AcDbDatabase* /*pDb*/) {
  if (nNumIds < 0 || (pIdArray == nullptr && nNumIds > 0)) return Acad::eInvalidInput;
  for (int i = 0; i < nNumIds; ++i)
    if (pIdArray[i].isNull()) return Acad::eNullObjectId;
  DisplayRequests& r = requests();
  const std::lock_guard<std::mutex> lock(r.mutex);
  r.regen.insert(r.regen.end(), pIdArray, pIdArray + nNumIds);
  return Acad::eOk;
}

void acedUpdateDisplay() {
  DisplayRequests& r = requests();
  const std::lock_guard<std::mutex> lock(r.mutex);
  ++r.updates;
}

namespace vorahost {

std::vector<AcDbObjectId> queuedForRegen() {
  DisplayRequests& r = requests();
  const std::lock_guard<std::mutex> lock(r.mutex);
  return r.regen;
}

std::size_t displayUpdates() {
  DisplayRequests& r = requests();
  const std::lock_guard<std::mutex> lock(r.mutex);
  return r.updates;
}

void resetDisplayRequests() {
  DisplayRequests& r = requests();
  const std::lock_guard<std::mutex> lock(r.mutex);
  r.regen.clear();
  r.updates = 0;
}

}  // namespace vorahost
