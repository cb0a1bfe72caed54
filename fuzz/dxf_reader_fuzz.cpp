// Feeds arbitrary bytes to the DXF reader: the tagger, then a full load into
// a database and a save of what was loaded, which must load again. Anything
// but a clean result or a refusal with a message is a finding.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "host/dxf/dxfio.h"
#include "host/dxf/encoding.h"
#include "host/dxf/tags.h"
#include "vora/arx.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace dxf = vora_host::dxf;
  std::string bytes(reinterpret_cast<const char*>(data), size);
  dxf::TagFile f;
  f.bytes = bytes;
  try {
    dxf::tagize(f);
  } catch (const dxf::DxfError&) {
    return 0;
  }
  // The text codecs the loader uses, on every value.
  const dxf::TextCodec cp("AC1015", "ANSI_932");
  for (const auto& t : f.tags) cp.encode(cp.decode(f.value(t)));

  auto db = std::make_unique<AcDbDatabase>(false, true);
  if (dxf::loadDxf(db.get(), bytes, "fuzz") != Acad::eOk) {
    if (dxf::lastErrorMessage().empty()) __builtin_trap();
    return 0;
  }
  const std::string saved = dxf::saveDxfToString(db.get());
  auto again = std::make_unique<AcDbDatabase>(false, true);
  if (dxf::loadDxf(again.get(), saved, "saved") != Acad::eOk) __builtin_trap();
  return 0;
}
