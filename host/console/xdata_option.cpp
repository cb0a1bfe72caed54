// --xdata HANDLE: prints the extended data of one object of the drawing, one
// line per application name, then one indented line per item: its group code
// and value.
#include <cstdio>
#include <string>

#include "host/console/common.h"
#include "host/console/options.h"

namespace {

std::string real(double v) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

std::string valueOf(const resbuf* rb) {
  const int c = rb->restype;
  if (c >= 1010 && c <= 1039) {
    return real(rb->resval.rpoint[0]) + " " + real(rb->resval.rpoint[1]) + " " + real(rb->resval.rpoint[2]);
  }
  if (c >= 1040 && c <= 1042) return real(rb->resval.rreal);
  if (c == 1070) return std::to_string(rb->resval.rint);
  if (c == 1071) return std::to_string(rb->resval.rlong);
  if (c == 1004) {
    std::string bytes = std::to_string(rb->resval.rbinary.clen);
    bytes += " bytes";
    return bytes;
  }
  return vora_console::narrow(rb->resval.rstring);
}

int printXdata(AcDbDatabase* db, const std::string& handleText) {
  AcDbObjectId id;
  AcDbObject* obj = nullptr;
  if (!vora_console::findByHandle(db, handleText, id) || acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) {
    std::fprintf(stderr, "vora: no object with handle '%s'\n", handleText.c_str());
    return 1;
  }
  resbuf* all = obj->xData(nullptr);
  obj->close();
  std::string out;
  for (const resbuf* rb = all; rb != nullptr; rb = rb->rbnext) {
    if (rb->restype == AcDb::kDxfRegAppName) {
      out += vora_console::narrow(rb->resval.rstring);
    } else {
      out += "  ";
      out += std::to_string(rb->restype);
      out += ' ';
      out += valueOf(rb);
    }
    out += '\n';
  }
  if (all != nullptr) acutRelRb(all);
  std::fputs(out.c_str(), stdout);
  return 0;
}

const bool registered = vora_console::registerOption(
    {"--xdata", true, "HANDLE  print the extended data of an object: each application, then its items (code value)",
     nullptr, &printXdata});

}  // namespace
