// Text encodings of DXF files. Before AC1021 (R2007) a file's strings are in
// the code page its $DWGCODEPAGE names, and characters outside that code page
// are written as \U+XXXX escapes; from AC1021 on, strings are UTF-8.
#ifndef VORA_HOST_DXF_ENCODING_H
#define VORA_HOST_DXF_ENCODING_H

#include <memory>
#include <string>
#include <string_view>

#include "vora/export.h"

namespace vora_host::dxf {

// Converts between a file's bytes and wide strings. Thread-compatible (one
// codec per thread at a time).
class VORA_HOST_API TextCodec {
public:
  // acadver: the $ACADVER value ("AC1009".."AC1032", empty when the file has
  // none); codepage: the $DWGCODEPAGE value (e.g. "ANSI_1252", "dos932"),
  // empty for the default ANSI_1252.
  TextCodec(std::string_view acadver, std::string_view codepage);
  ~TextCodec();
  TextCodec(const TextCodec&) = delete;
  TextCodec& operator=(const TextCodec&) = delete;

  bool utf8() const { return utf8_; }
  // The iconv name of the code page in use ("UTF-8" from AC1021 on).
  const std::string& charset() const { return charset_; }

  // Bytes that cannot be decoded become U+FFFD; \U+XXXX escapes are decoded
  // before AC1021.
  std::wstring decode(std::string_view bytes) const;
  // Characters the code page lacks become \U+XXXX escapes before AC1021.
  std::string encode(std::wstring_view text) const;

private:
  struct Impl;
  bool utf8_ = true;
  std::string charset_;
  std::unique_ptr<Impl> impl_;
};

// The iconv name for a $DWGCODEPAGE value; "CP1252" for unknown names.
VORA_HOST_API std::string iconvNameOfCodePage(std::string_view dwgcodepage);

// True for "AC1021" and later.
VORA_HOST_API bool isUtf8Version(std::string_view acadver);

}  // namespace vora_host::dxf

#endif
