#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <string>
#include <utility>
#include <vector>

#include "host/common/utf8.h"
#include "vora/arx/ads.h"
#include "vora/arx/vorahost.h"

namespace {

void stdoutSink(const ACHAR* text) {
  std::string bytes;
  for (const ACHAR* p = text; *p != 0; ++p) vora_host::appendUtf8(bytes, static_cast<char32_t>(*p));
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  std::fflush(stdout);
}

vorahost::PrintSink& sink() {
  static vorahost::PrintSink s = stdoutSink;
  return s;
}

// The CAD program's wide printf reads %s and %c as wide and %hs, %S as narrow;
// the C library reads %s as narrow in a wide format. Conversions are
// rewritten to the C library's spelling so that module code prints the same
// on both.
std::wstring toCFormat(const ACHAR* fmt) {
  std::wstring out;
  for (const ACHAR* p = fmt; *p != 0; ++p) {
    out += *p;
    if (*p != L'%') continue;
    ++p;
    if (*p == L'%') { out += *p; continue; }
    while (*p != 0 && std::wcschr(L"-+ #0123456789.*'", *p) != nullptr) out += *p++;
    if (*p == 0) break;
    if ((*p == L'h' && (p[1] == L's' || p[1] == L'c'))) {
      out += p[1];
      ++p;
    } else if (*p == L's' || *p == L'c') {
      out += L'l';
      out += *p;
    } else if (*p == L'S' || *p == L'C') {
      out += static_cast<ACHAR>(*p == L'S' ? L's' : L'c');
    } else if (*p == L'I' && p[1] == L'6' && p[2] == L'4') {
      out += L"ll";
      p += 2;
    } else {
      out += *p;
    }
  }
  return out;
}

}  // namespace

namespace vorahost {

PrintSink setPrintSink(PrintSink newSink) {
  PrintSink previous = std::move(sink());
  sink() = newSink ? std::move(newSink) : PrintSink(stdoutSink);
  return previous;
}

}  // namespace vorahost

int acutPrintf(const ACHAR* format, ...) {
  if (format == nullptr) return 0;
  const std::wstring cfmt = toCFormat(format);
  std::vector<wchar_t> buf(256);
  int n = -1;
  // vswprintf reports only failure, not the length it needed: grow until the
  // text fits, with a bound so a broken format cannot eat the memory.
  while (buf.size() <= (std::size_t{1} << 24)) {
    va_list ap;
    va_start(ap, format);
    n = std::vswprintf(buf.data(), buf.size(), cfmt.c_str(), ap);
    va_end(ap);
    if (n >= 0) break;
    buf.resize(buf.size() * 4);
  }
  if (n < 0) return 0;
  sink()(buf.data());
  return n;
}
