#include "host/dxf/encoding.h"

#include <iconv.h>

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "host/common/utf8.h"

namespace vora_host::dxf {

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

struct CodePageName {
  const char* dxf;
  const char* iconv;
};

// $DWGCODEPAGE values as AutoCAD and other writers spell them.
constexpr CodePageName kCodePages[] = {
    {"ANSI_874", "CP874"},     {"ANSI_932", "CP932"},     {"ANSI_936", "GBK"},
    {"ANSI_949", "CP949"},     {"ANSI_950", "CP950"},     {"ANSI_1250", "CP1250"},
    {"ANSI_1251", "CP1251"},   {"ANSI_1252", "CP1252"},   {"ANSI_1253", "CP1253"},
    {"ANSI_1254", "CP1254"},   {"ANSI_1255", "CP1255"},   {"ANSI_1256", "CP1256"},
    {"ANSI_1257", "CP1257"},   {"ANSI_1258", "CP1258"},   {"ANSI_1361", "JOHAB"},
    {"ISO8859-1", "ISO-8859-1"}, {"ISO8859-2", "ISO-8859-2"}, {"ISO8859-3", "ISO-8859-3"},
    {"ISO8859-4", "ISO-8859-4"}, {"ISO8859-5", "ISO-8859-5"}, {"ISO8859-6", "ISO-8859-6"},
    {"ISO8859-7", "ISO-8859-7"}, {"ISO8859-8", "ISO-8859-8"}, {"ISO8859-9", "ISO-8859-9"},
    {"DOS437", "CP437"},       {"DOS850", "CP850"},       {"DOS852", "CP852"},
    {"DOS855", "CP855"},       {"DOS857", "CP857"},       {"DOS860", "CP860"},
    {"DOS861", "CP861"},       {"DOS863", "CP863"},       {"DOS864", "CP864"},
    {"DOS865", "CP865"},       {"DOS866", "CP866"},       {"DOS869", "CP869"},
    {"DOS932", "CP932"},       {"MACINTOSH", "MACINTOSH"}, {"MAC-ROMAN", "MACINTOSH"},
    {"BIG5", "BIG5"},          {"KSC5601", "CP949"},      {"JOHAB", "JOHAB"},
    {"GB2312", "GB2312"},      {"ASCII", "CP1252"},       {"UTF-8", "UTF-8"},
    {"UTF8", "UTF-8"},
};

bool equalsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
      return false;
  return true;
}

void decodeUtf8(std::string_view s, std::wstring& out) {
  const auto* p = reinterpret_cast<const unsigned char*>(s.data());
  const auto* e = p + s.size();
  while (p < e) {
    const unsigned char c = *p;
    if (c < 0x80) {
      out += static_cast<wchar_t>(c);
      ++p;
      continue;
    }
    int n = c >= 0xF0 && c < 0xF5 ? 3 : c >= 0xE0 ? 2 : c >= 0xC2 && c < 0xE0 ? 1 : -1;
    if (c >= 0xF5) n = -1;
    if (n < 0 || e - p <= n) {
      out += kReplacement;
      ++p;
      continue;
    }
    char32_t v = c & (0x3F >> n);
    bool ok = true;
    for (int i = 1; i <= n; ++i) {
      if ((p[i] & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      v = (v << 6) | (p[i] & 0x3F);
    }
    const char32_t minimum = n == 1 ? 0x80 : n == 2 ? 0x800 : 0x10000;
    if (!ok || v < minimum || v > 0x10FFFF || (v >= 0xD800 && v <= 0xDFFF)) {
      out += kReplacement;
      ++p;
      continue;
    }
    out += static_cast<wchar_t>(v);
    p += n + 1;
  }
}

int hexValue(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

std::wstring unescapeUnicode(std::wstring s) {
  const std::size_t first = s.find(L"\\U+");
  if (first == std::wstring::npos) return s;
  std::wstring out(s, 0, first);
  for (std::size_t i = first; i < s.size();) {
    if (s[i] == L'\\' && i + 7 <= s.size() && s[i + 1] == L'U' && s[i + 2] == L'+') {
      int v = 0;
      bool ok = true;
      for (std::size_t k = 3; k < 7; ++k) {
        const int h = hexValue(s[i + k]);
        if (h < 0) {
          ok = false;
          break;
        }
        v = v * 16 + h;
      }
      if (ok) {
        out += static_cast<wchar_t>(v);
        i += 7;
        continue;
      }
    }
    out += s[i++];
  }
  return out;
}

void appendEscape(std::string& out, unsigned v) {
  char buf[12];
  std::snprintf(buf, sizeof buf, "\\U+%04X", v & 0xFFFFu);
  out += buf;
}

}  // namespace

struct TextCodec::Impl {
  iconv_t toWide = reinterpret_cast<iconv_t>(-1);
  iconv_t fromWide = reinterpret_cast<iconv_t>(-1);
  ~Impl() {
    if (toWide != reinterpret_cast<iconv_t>(-1)) iconv_close(toWide);
    if (fromWide != reinterpret_cast<iconv_t>(-1)) iconv_close(fromWide);
  }
};

std::string iconvNameOfCodePage(std::string_view name) {
  while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
  while (!name.empty() && name.front() == ' ') name.remove_prefix(1);
  for (const auto& cp : kCodePages)
    if (equalsNoCase(name, cp.dxf)) return cp.iconv;
  return "CP1252";
}

bool isUtf8Version(std::string_view v) {
  // "AC1021" and later compare greater as text: the numbers have four digits.
  return v.size() == 6 && v.substr(0, 2) == "AC" && v >= std::string_view("AC1021");
}

TextCodec::TextCodec(std::string_view acadver, std::string_view codepage) : impl_(std::make_unique<Impl>()) {
  utf8_ = isUtf8Version(acadver);
  charset_ = utf8_ ? "UTF-8" : iconvNameOfCodePage(codepage);
  if (charset_ == "UTF-8") {
    utf8_ = true;
    return;
  }
  impl_->toWide = iconv_open("WCHAR_T", charset_.c_str());
  impl_->fromWide = iconv_open(charset_.c_str(), "WCHAR_T");
  if (impl_->toWide == reinterpret_cast<iconv_t>(-1) || impl_->fromWide == reinterpret_cast<iconv_t>(-1)) {
    // The C library lacks this code page; CP1252 is what readers assume then.
    impl_ = std::make_unique<Impl>();
    charset_ = "CP1252";
    impl_->toWide = iconv_open("WCHAR_T", "CP1252");
    impl_->fromWide = iconv_open("CP1252", "WCHAR_T");
  }
}

TextCodec::~TextCodec() = default;

std::wstring TextCodec::decode(std::string_view bytes) const {
  std::wstring out;
  out.reserve(bytes.size());
  bool ascii = true;
  for (char c : bytes)
    if (static_cast<unsigned char>(c) >= 0x80) {
      ascii = false;
      break;
    }
  if (ascii) {
    for (char c : bytes) out += static_cast<wchar_t>(c);
  } else if (utf8_) {
    decodeUtf8(bytes, out);
  } else {
    iconv(impl_->toWide, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(bytes.data());
    std::size_t inLeft = bytes.size();
    while (inLeft > 0) {
      wchar_t buf[256];
      char* o = reinterpret_cast<char*>(buf);
      std::size_t oLeft = sizeof buf;
      const std::size_t r = iconv(impl_->toWide, &in, &inLeft, &o, &oLeft);
      out.append(buf, static_cast<std::size_t>(reinterpret_cast<wchar_t*>(o) - buf));
      if (r == static_cast<std::size_t>(-1) && errno != E2BIG) {
        // Undecodable or cut-off multibyte sequence: one replacement per byte.
        out += kReplacement;
        ++in;
        --inLeft;
        iconv(impl_->toWide, nullptr, nullptr, nullptr, nullptr);
      }
    }
  }
  if (!utf8_) return unescapeUnicode(std::move(out));
  return out;
}

std::string TextCodec::encode(std::wstring_view text) const {
  std::string out;
  out.reserve(text.size());
  for (wchar_t wc : text) {
    const auto c = static_cast<char32_t>(wc);
    if (c < 0x80) {
      out += static_cast<char>(c);
      continue;
    }
    if (utf8_) {
      appendUtf8(out, c > 0x10FFFF ? kReplacement : c);
      continue;
    }
    iconv(impl_->fromWide, nullptr, nullptr, nullptr, nullptr);
    wchar_t one = wc;
    char* in = reinterpret_cast<char*>(&one);
    std::size_t inLeft = sizeof one;
    char buf[16];
    char* o = buf;
    std::size_t oLeft = sizeof buf;
    const std::size_t r = iconv(impl_->fromWide, &in, &inLeft, &o, &oLeft);
    if (r == static_cast<std::size_t>(-1) || r > 0) {
      // Not in the code page (r > 0 means iconv substituted something).
      if (c > 0xFFFF) {
        const char32_t v = c - 0x10000;
        appendEscape(out, 0xD800 + static_cast<unsigned>(v >> 10));
        appendEscape(out, 0xDC00 + static_cast<unsigned>(v & 0x3FF));
      } else {
        appendEscape(out, static_cast<unsigned>(c));
      }
      continue;
    }
    out.append(buf, static_cast<std::size_t>(o - buf));
  }
  return out;
}

}  // namespace vora_host::dxf
