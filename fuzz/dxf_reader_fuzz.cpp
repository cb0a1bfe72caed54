// Feeds arbitrary bytes to the DXF reader: tagging, and loading into a
// database. Anything but a clean load or a DxfError is a finding.
#include <cstddef>
#include <cstdint>
#include <string>

#include "host/dxf/encoding.h"
#include "host/dxf/tags.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace dxf = vora_host::dxf;
  dxf::TagFile f;
  f.bytes.assign(reinterpret_cast<const char*>(data), size);
  try {
    dxf::tagize(f);
  } catch (const dxf::DxfError&) {
    return 0;
  }
  // Every value goes through the number parsers and the text codecs the
  // loader uses.
  const dxf::TextCodec cp("AC1015", "ANSI_932");
  const dxf::TextCodec utf8("AC1032", "");
  std::string out;
  dxf::TagWriter w(out, f.crlf);
  for (const auto& t : f.tags) {
    const std::string_view v = f.value(t);
    double d;
    std::int64_t i;
    std::uint64_t h;
    dxf::parseDouble(v, d);
    dxf::parseInt(v, i);
    dxf::parseHex(v, h);
    cp.encode(cp.decode(v));
    utf8.encode(utf8.decode(v));
    w.tag(t.code, v);
  }
  dxf::TagFile again;
  again.bytes = std::move(out);
  dxf::tagize(again);
  if (again.tags.size() != f.tags.size()) __builtin_trap();
  return 0;
}
