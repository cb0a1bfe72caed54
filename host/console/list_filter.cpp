// --layer, --class and --app: which entities --list prints. The module's
// entity query decides, so the console lists what a caller of
// vora_getEntities gets: names compared without case, classes by DXF name
// (AcDbLine is given as LINE), and an entity without any extended data passing the
// application filter. Several values of one option mean any of them; the
// query itself wants every listed application, so several --app are asked
// one at a time and the answers joined.
#include <cwchar>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/console/common.h"
#include "host/console/module.h"
#include "host/console/options.h"

namespace vora_console {
namespace {

struct Filter {
  std::vector<std::wstring> classes, layers, apps;
};

Filter& filter() {
  static Filter f;
  return f;
}

int addLayer(const std::string& value) {
  filter().layers.push_back(widen(value));
  return 0;
}

// A run-time class name (AcDbLine, case ignored like every name here) stands
// for its DXF name (LINE), which is what the query compares; any other text
// is taken as a DXF name.
int addClass(const std::string& value) {
  std::wstring name = widen(value);
  std::unique_ptr<AcRxDictionaryIterator> it(acrxClassDictionary()->newIterator());
  for (; !it->done(); it->next()) {
    const auto* cls = AcRxClass::cast(it->object());
    if (cls != nullptr && cls->dxfName() != nullptr && *cls->dxfName() != 0 && wcscasecmp(it->key(), name.c_str()) == 0) {
      name = cls->dxfName();
      break;
    }
  }
  filter().classes.push_back(name);
  return 0;
}

int addApp(const std::string& value) {
  filter().apps.push_back(widen(value));
  return 0;
}

using GetEntities = int (*)(const std::vector<std::wstring>*, const std::vector<std::wstring>*,
                            const std::vector<std::wstring>*, AcDbObjectIdArray*);

const bool registered =
    registerOption({"--layer", true, "NAME  with --list: only entities on layer NAME (repeatable: any of them)",
                    &addLayer, nullptr}) &&
    registerOption({"--class", true,
                    "NAME  with --list: only entities of class NAME, e.g. LINE or AcDbLine (repeatable: any of them)",
                    &addClass, nullptr}) &&
    registerOption({"--app", true,
                    "NAME  with --list: only entities with extended data of application NAME, and those without "
                    "any extended data (repeatable: any of them)",
                    &addApp, nullptr});

}  // namespace

bool listFilterGiven() {
  const Filter& f = filter();
  return !f.classes.empty() || !f.layers.empty() || !f.apps.empty();
}

int filteredEntities(std::vector<AcDbObjectId>& ids) {
  const auto getEntities = moduleFunction<GetEntities>("vora_getEntities");
  if (getEntities == nullptr) return 1;
  const Filter& f = filter();
  AcDbObjectIdArray found;
  if (f.apps.size() <= 1) {
    getEntities(&f.classes, &f.layers, &f.apps, &found);
    ids.assign(found.begin(), found.end());
    return 0;
  }
  std::set<AcDbObjectId> passing;
  for (const std::wstring& app : f.apps) {
    const std::vector<std::wstring> one{app};
    AcDbObjectIdArray withApp;
    getEntities(&f.classes, &f.layers, &one, &withApp);
    passing.insert(withApp.begin(), withApp.end());
  }
  // The query without the application filter gives the drawing order.
  getEntities(&f.classes, &f.layers, nullptr, &found);
  ids.clear();
  for (const AcDbObjectId& id : found)
    if (passing.count(id) != 0) ids.push_back(id);
  return 0;
}

}  // namespace vora_console
