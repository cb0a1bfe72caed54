// vora: the headless console of the host. Opens a drawing, lists it or saves
// it. Messages go to standard output, errors to standard error with a
// non-zero exit status.
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/console/options.h"
#include "host/dxf/dxfio.h"
#include "host/dxf/encoding.h"
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

}  // namespace vora_console

namespace {

const char* kUsage =
    "usage: vora -i IN.dxf [-o OUT.dxf] [--list]\n"
    "\n"
    "Opens the drawing IN.dxf (ASCII DXF, R12 to R2018).\n"
    "  -i, --input FILE    the drawing to open\n"
    "  -o, --output FILE   save the drawing to FILE, in its own DXF version\n"
    "  --list              print one line per model-space entity: handle, DXF type, layer\n"
    "  -h, --help          show this text\n";

void printUsage(std::FILE* to) {
  std::fputs(kUsage, to);
  for (const auto& o : vora_console::registeredOptions())
    std::fprintf(to, "  %s %s\n", o.name, o.help);
}

std::wstring widen(const std::string& s) {
  const vora_host::dxf::TextCodec utf8("AC1032", "");
  return utf8.decode(s);
}

std::string narrow(const ACHAR* s) {
  const vora_host::dxf::TextCodec utf8("AC1032", "");
  return s ? utf8.encode(s) : std::string();
}

int fail(const std::string& message) {
  std::fprintf(stderr, "vora: %s\n", message.c_str());
  return 1;
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
    ACHAR handle[AcDbHandle::kStrSiz];
    e->handle().getIntoAsciiBuffer(handle, AcDbHandle::kStrSiz);
    ACHAR* layer = e->layer();
    out += narrow(handle) + "\t" + vora_host::dxf::dxfTypeOf(e) + "\t" + narrow(layer) + "\n";
    acutDelString(layer);
    e->close();
  }
  delete it;
  ms->close();
  std::fputs(out.c_str(), stdout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
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
      actions.emplace_back(extra, extra->takesValue ? argv[++i] : "");
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
  std::unique_ptr<AcDbDatabase> db(new AcDbDatabase(false, true));
  if (db->dxfIn(widen(input).c_str()) != Acad::eOk) return fail(vora_host::dxf::lastErrorMessage());
  acdbHostApplicationServices()->setWorkingDatabase(db.get());
  int status = 0;
  if (list) status = listModelSpace(db.get());
  for (const auto& [option, value] : actions) {
    if (status != 0) break;
    status = option->run(db.get(), value);
  }
  if (status == 0 && !output.empty() && db->dxfOut(widen(output).c_str()) != Acad::eOk)
    status = fail(vora_host::dxf::lastErrorMessage());
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  return status;
}
