// vora: the headless console of the host. Opens a drawing, lists it, hands
// it to the options of the other files here (some of which load VoraCLib) and
// saves it. Messages go to standard output, errors to standard error with a
// non-zero exit status.
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/console/common.h"
#include "host/console/module.h"
#include "host/console/options.h"
#include "host/dxf/dxfio.h"
#include "vora/arx.h"

namespace vora_console {

std::vector<Option>& optionList() {
  static std::vector<Option> options;
  return options;
}

bool registerOption(const Option& option) {
  optionList().push_back(option);
  return true;
}

const std::vector<Option>& registeredOptions() { return optionList(); }

std::vector<int (*)()>& checkList() {
  static std::vector<int (*)()> checks;
  return checks;
}

bool registerCheck(int (*check)()) {
  checkList().push_back(check);
  return true;
}

const std::vector<int (*)()>& registeredChecks() { return checkList(); }

}  // namespace vora_console

namespace {

using vora_console::fail;
using vora_console::narrow;
using vora_console::widen;

const char* kUsage =
    "usage: vora -i IN.dxf [-o OUT.dxf] [--list [--layer NAME] [--class NAME] [--app NAME]] [OPTION...]\n"
    "\n"
    "Opens the drawing IN.dxf (ASCII DXF, R12 to R2018). Options that need VoraCLib load it then.\n"
    "  -i, --input FILE    the drawing to open\n"
    "  -o, --output FILE   save the drawing to FILE, in its own DXF version\n"
    "  --list              print one line per model-space entity: handle, DXF type, layer\n"
    "  -h, --help          show this text\n";

void printUsage(std::FILE* to) {
  std::fputs(kUsage, to);
  // A value option's help starts with the value's name, two spaces apart
  // from the text.
  for (const auto& o : vora_console::registeredOptions()) {
    std::string left = o.name;
    std::string text = o.help;
    const std::size_t gap = text.find("  ");
    if (o.takesValue && gap != std::string::npos) {
      left += ' ';
      left.append(text, 0, gap);
      text = text.substr(gap + 2);
    }
    std::fprintf(to, "  %-18s  %s\n", left.c_str(), text.c_str());
  }
}

std::string listLine(AcDbEntity* e) {
  ACHAR* layer = e->layer();
  std::string line = vora_console::handleOf(e) + "\t" + vora_host::dxf::dxfTypeOf(e) + "\t" + narrow(layer) + "\n";
  acutDelString(layer);
  return line;
}

int listModelSpace(AcDbDatabase* db) {
  AcDbBlockTableRecord* ms = nullptr;
  if (acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForRead) != Acad::eOk) return fail("the drawing has no model space");
  AcDbBlockTableRecordIterator* it = nullptr;
  ms->newIterator(it);
  std::string out;
  for (; it && !it->done(); it->step()) {
    AcDbEntity* e = nullptr;
    if (it->getEntity(e, AcDb::kForRead) != Acad::eOk) continue;
    out += listLine(e);
    e->close();
  }
  delete it;
  ms->close();
  std::fputs(out.c_str(), stdout);
  return 0;
}

int listFiltered() {
  std::vector<AcDbObjectId> ids;
  if (const int status = vora_console::filteredEntities(ids); status != 0) return status;
  std::string out;
  for (const AcDbObjectId& id : ids) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) continue;
    out += listLine(e);
    e->close();
  }
  std::fputs(out.c_str(), stdout);
  return 0;
}

int run(int argc, char** argv) {
  std::string input, output;
  bool list = false;
  std::vector<std::pair<const vora_console::Option*, std::string>> actions;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "-h" || a == "--help") {
      printUsage(stdout);
      return 0;
    }
    const vora_console::Option* extra = nullptr;
    for (const auto& o : vora_console::registeredOptions())
      if (a == o.name) extra = &o;
    if (extra != nullptr) {
      if (extra->takesValue && i + 1 >= argc) {
        printUsage(stderr);
        return fail("option '" + a + "' needs a value");
      }
      const std::string value = extra->takesValue ? argv[++i] : "";
      if (extra->parse != nullptr)
        if (const int status = extra->parse(value); status != 0) return status;
      if (extra->run != nullptr) actions.emplace_back(extra, value);
      continue;
    }
    if ((a == "-i" || a == "--input" || a == "-o" || a == "--output") && i + 1 < argc) {
      (a == "-i" || a == "--input" ? input : output) = argv[++i];
    } else if (a == "--list") {
      list = true;
    } else {
      printUsage(stderr);
      return fail("unknown or incomplete option '" + a + "'");
    }
  }
  if (input.empty()) {
    printUsage(stderr);
    return fail("no drawing given (-i IN.dxf)");
  }
  if (!list && vora_console::listFilterGiven()) return fail("--layer, --class and --app select what --list prints");
  for (const auto check : vora_console::registeredChecks())
    if (const int status = check(); status != 0) return status;
  std::unique_ptr<AcDbDatabase> db(new AcDbDatabase(false, true));
  if (db->dxfIn(widen(input).c_str()) != Acad::eOk) return fail(vora_host::dxf::lastErrorMessage());
  acdbHostApplicationServices()->setWorkingDatabase(db.get());
  int status = 0;
  if (list) status = vora_console::listFilterGiven() ? listFiltered() : listModelSpace(db.get());
  for (const auto& [option, value] : actions) {
    if (status != 0) break;
    status = option->run(db.get(), value);
  }
  if (status == 0 && !output.empty() && db->dxfOut(widen(output).c_str()) != Acad::eOk)
    status = fail(vora_host::dxf::lastErrorMessage());
  // The module goes while the drawing is still open, as when the CAD program
  // unloads an application.
  vora_console::unloadModule();
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  return status;
}

}  // namespace

int main(int argc, char** argv) { return run(argc, argv); }
