#include <map>
#include <mutex>

#include "host/dxf/objects.h"

namespace vora_host::dxf {

AcRxClass* unknownClass(const std::string& type, bool entity) {
  static std::mutex mutex;
  static std::map<std::pair<std::string, bool>, AcRxClass*> classes;
  std::lock_guard<std::mutex> lock(mutex);
  auto it = classes.find({type, entity});
  if (it != classes.end()) return it->second;
  // Class names of their own, so that a kept type never takes the place of a
  // class someone registers under the SDK's name.
  const std::wstring wtype(type.begin(), type.end());
  const std::wstring name = (entity ? L"VoraDxfEntity_" : L"VoraDxfObject_") + wtype;
  AcRxClass* cls = newAcRxClass(name.c_str(), entity ? L"AcDbEntity" : L"AcDbObject", 0, nullptr, wtype.c_str());
  classes.emplace(std::make_pair(type, entity), cls);
  return cls;
}

}  // namespace vora_host::dxf
