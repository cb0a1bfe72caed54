// UTF-8 encoding of one code point, shared by the DXF writer and the
// console output of acutPrintf. A value beyond Unicode becomes U+FFFD.
#ifndef VORA_HOST_COMMON_UTF8_H
#define VORA_HOST_COMMON_UTF8_H

#include <string>

namespace vora_host {

inline void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x110000) {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += "\xEF\xBF\xBD";
  }
}

}  // namespace vora_host

#endif
