#include "host/console/common.h"

#include <cstdio>

#include "host/dxf/encoding.h"

namespace vora_console {

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

bool findByHandle(AcDbDatabase* db, const std::string& handleText, AcDbObjectId& id) {
  if (handleText.empty() || handleText.size() > 16 ||
      handleText.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
    return false;
  const AcDbHandle handle(handleText.c_str());
  AcDbObjectId found;
  if (handle.isNull() || db->getAcDbObjectId(found, false, handle) != Acad::eOk || found.isNull()) return false;
  id = found;
  return true;
}

std::string handleOf(const AcDbObject* object) {
  ACHAR text[AcDbHandle::kStrSiz];
  object->handle().getIntoAsciiBuffer(text, AcDbHandle::kStrSiz);
  return narrow(text);
}

}  // namespace vora_console
