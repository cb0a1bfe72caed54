#include "host/dxf/tags.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>

namespace vora_host::dxf {

namespace {

constexpr int kMaxCode = 1071;
constexpr std::string_view kBinarySentinel{"AutoCAD Binary DXF\r\n\x1a\0", 22};

std::string quoted(std::string_view v) {
  std::string s = "'";
  const std::size_t limit = 40;
  for (std::size_t i = 0; i < v.size() && i < limit; ++i) {
    const unsigned char c = static_cast<unsigned char>(v[i]);
    if (c < 0x20 || c == 0x7f) {
      static const char* hex = "0123456789abcdef";
      s += "\\x";
      s += hex[c >> 4];
      s += hex[c & 15];
    } else {
      s += static_cast<char>(c);
    }
  }
  if (v.size() > limit) s += "...";
  s += "'";
  return s;
}

std::array<ValueKind, kMaxCode + 1> buildKinds() {
  std::array<ValueKind, kMaxCode + 1> k{};
  k.fill(ValueKind::kUndefined);
  auto put = [&](ValueKind v, int a, int b) {
    for (int c = a; c <= b; ++c) k[static_cast<std::size_t>(c)] = v;
  };
  put(ValueKind::kString, 0, 9);
  put(ValueKind::kDouble, 10, 59);
  put(ValueKind::kInt16, 60, 79);
  put(ValueKind::kInt32, 90, 99);
  put(ValueKind::kString, 100, 102);
  put(ValueKind::kHandle, 105, 105);
  put(ValueKind::kDouble, 110, 149);
  put(ValueKind::kInt64, 160, 169);
  put(ValueKind::kInt16, 170, 179);
  put(ValueKind::kDouble, 210, 239);
  put(ValueKind::kInt16, 270, 289);
  put(ValueKind::kBool, 290, 299);
  put(ValueKind::kString, 300, 309);
  put(ValueKind::kBinary, 310, 319);
  put(ValueKind::kHandle, 320, 369);
  put(ValueKind::kInt16, 370, 389);
  put(ValueKind::kHandle, 390, 399);
  put(ValueKind::kInt16, 400, 409);
  put(ValueKind::kString, 410, 419);
  put(ValueKind::kInt32, 420, 429);
  put(ValueKind::kString, 430, 439);
  put(ValueKind::kInt32, 440, 459);
  put(ValueKind::kDouble, 460, 469);
  put(ValueKind::kString, 470, 479);
  put(ValueKind::kHandle, 480, 481);
  put(ValueKind::kString, 999, 1003);
  put(ValueKind::kBinary, 1004, 1004);
  put(ValueKind::kHandle, 1005, 1005);
  put(ValueKind::kString, 1006, 1009);
  put(ValueKind::kDouble, 1010, 1059);
  put(ValueKind::kInt16, 1060, 1070);
  put(ValueKind::kInt32, 1071, 1071);
  return k;
}

const std::array<ValueKind, kMaxCode + 1> kKinds = buildKinds();

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim(std::string_view s) {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
  return s;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Decimal floating-point syntax: [+-] (digits [. digits] | . digits) [e [+-] digits].
// from_chars alone would also take "inf", "nan" and hexadecimal forms.
bool isDecimalNumber(std::string_view s) {
  std::size_t i = 0, n = s.size();
  if (i < n && (s[i] == '+' || s[i] == '-')) ++i;
  std::size_t digits = 0;
  while (i < n && isDigit(s[i])) ++i, ++digits;
  if (i < n && s[i] == '.') {
    ++i;
    while (i < n && isDigit(s[i])) ++i, ++digits;
  }
  if (digits == 0) return false;
  if (i < n && (s[i] == 'e' || s[i] == 'E')) {
    ++i;
    if (i < n && (s[i] == '+' || s[i] == '-')) ++i;
    std::size_t e = 0;
    while (i < n && isDigit(s[i])) ++i, ++e;
    if (e == 0) return false;
  }
  return i == n;
}

bool isHexDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Group codes the reader has seen, as text, are nearly always one of a few
// dozen spellings; the fast path parses them directly.
bool parseCode(std::string_view s, int& code) {
  s = trim(s);
  if (s.empty()) return false;
  bool neg = false;
  if (s.front() == '-') {
    neg = true;
    s.remove_prefix(1);
  }
  if (s.empty() || s.size() > 6) return false;
  int v = 0;
  for (char c : s) {
    if (!isDigit(c)) return false;
    v = v * 10 + (c - '0');
  }
  code = neg ? -v : v;
  return true;
}

std::string checkValue(int code, ValueKind kind, std::string_view v) {
  switch (kind) {
    case ValueKind::kString:
    case ValueKind::kUndefined:
      return {};
    case ValueKind::kDouble: {
      const std::string_view t = trim(v);
      if (isDecimalNumber(t)) return {};
      if (t.find(',') != std::string_view::npos) {
        std::string dotted(t);
        for (char& c : dotted)
          if (c == ',') c = '.';
        if (isDecimalNumber(dotted))
          return "value of group code " + std::to_string(code) + " is not a number: " + quoted(v) +
                 " uses a decimal comma";
      }
      return "value of group code " + std::to_string(code) + " is not a number: " + quoted(v);
    }
    case ValueKind::kInt16:
    case ValueKind::kInt32:
    case ValueKind::kInt64:
    case ValueKind::kBool: {
      std::int64_t n = 0;
      const std::string_view t = trim(v);
      bool ok = !t.empty();
      if (ok) {
        std::size_t i = (t[0] == '+' || t[0] == '-') ? 1 : 0;
        ok = i < t.size();
        for (; ok && i < t.size(); ++i) ok = isDigit(t[i]);
      }
      if (!ok) return "value of group code " + std::to_string(code) + " is not an integer: " + quoted(v);
      if (kind == ValueKind::kInt64) {
        // Unsigned 64-bit values are accepted as well: some writers use them for flags.
        std::uint64_t u = 0;
        std::string_view d = t[0] == '+' || t[0] == '-' ? t.substr(1) : t;
        auto r = std::from_chars(d.data(), d.data() + d.size(), u);
        if (r.ec != std::errc() || (t[0] == '-' && u > (std::uint64_t{1} << 63)))
          return "value of group code " + std::to_string(code) + " is out of range: " + quoted(v);
        return {};
      }
      if (!parseInt(t, n))
        return "value of group code " + std::to_string(code) + " is out of range: " + quoted(v);
      // Flags and colours are written unsigned by some programs: both readings are accepted.
      const std::int64_t lo = kind == ValueKind::kInt16 ? -(1LL << 15) : kind == ValueKind::kInt32 ? -(1LL << 31) : 0;
      const std::int64_t hi = kind == ValueKind::kInt16 ? (1LL << 16) - 1 : kind == ValueKind::kInt32 ? (1LL << 32) - 1 : 1;
      if (n < lo || n > hi)
        return "value of group code " + std::to_string(code) + " is out of range: " + quoted(v);
      return {};
    }
    case ValueKind::kHandle: {
      if (v.empty() || v.size() > 16)
        return "value of group code " + std::to_string(code) + " is not a hexadecimal handle: " + quoted(v);
      for (char c : v)
        if (!isHexDigit(c))
          return "value of group code " + std::to_string(code) + " is not a hexadecimal handle: " + quoted(v);
      return {};
    }
    case ValueKind::kBinary:
      for (char c : v)
        if (!isHexDigit(c))
          return "value of group code " + std::to_string(code) + " is not hexadecimal binary data: " + quoted(v);
      return {};
  }
  return {};
}

}  // namespace

DxfError::DxfError(std::size_t line, const std::string& reason)
    : std::runtime_error(line ? "line " + std::to_string(line) + ": " + reason : reason),
      line_(line),
      reason_(reason) {}

ValueKind valueKind(int code) {
  if (code < 0 || code > kMaxCode) return ValueKind::kUndefined;
  return kKinds[static_cast<std::size_t>(code)];
}

std::string readFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw DxfError(0, "cannot open '" + path + "': " + std::strerror(errno));
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  if (size < 0) throw DxfError(0, "cannot read '" + path + "'");
  if (static_cast<std::uint64_t>(size) >= std::numeric_limits<std::uint32_t>::max())
    throw DxfError(0, "'" + path + "' is too large (4 GB or more)");
  std::string bytes(static_cast<std::size_t>(size), '\0');
  in.seekg(0, std::ios::beg);
  if (size > 0 && !in.read(bytes.data(), size)) throw DxfError(0, "cannot read '" + path + "'");
  return bytes;
}

void tagize(TagFile& f, bool keepTags) {
  f.tags.clear();
  const std::string& b = f.bytes;
  if (b.size() >= std::numeric_limits<std::uint32_t>::max())
    throw DxfError(0, "the file is too large (4 GB or more)");
  if (std::string_view(b).substr(0, kBinarySentinel.size()) == kBinarySentinel)
    throw DxfError(0, "binary DXF is not supported: save the drawing as ASCII DXF");
  if (b.size() >= 6 && (b.compare(0, 4, "AC10") == 0 || b.compare(0, 4, "AC20") == 0) && b[4] >= '0' &&
      b[4] <= '9' && b[5] >= '0' && b[5] <= '9' && b.find('\n') > 6)
    throw DxfError(0, "this is a DWG file, not DXF");
  std::size_t pos = 0;
  f.bom = b.size() >= 3 && b.compare(0, 3, "\xEF\xBB\xBF") == 0;
  if (f.bom) pos = 3;
  const std::size_t end = b.size();
  if (pos == end) throw DxfError(1, "the file is empty");
  {
    const void* nl = std::memchr(b.data() + pos, '\n', end - pos);
    f.crlf = nl && static_cast<const char*>(nl) > b.data() + pos && static_cast<const char*>(nl)[-1] == '\r';
  }
  if (keepTags) f.tags.reserve(b.size() / 12);
  f.maxHandle = 0;

  std::size_t line = 0;  // lines consumed so far
  // Returns the next line [start, len), or false at the end of the bytes.
  auto nextLine = [&](std::size_t& start, std::size_t& len) -> bool {
    if (pos >= end) return false;
    start = pos;
    const void* nl = std::memchr(b.data() + pos, '\n', end - pos);
    std::size_t stop = nl ? static_cast<std::size_t>(static_cast<const char*>(nl) - b.data()) : end;
    pos = nl ? stop + 1 : end;
    if (nl && stop > start && b[stop - 1] == '\r') --stop;
    len = stop - start;
    ++line;
    return true;
  };

  enum class State { kOutside, kSectionName, kInside };
  State state = State::kOutside;
  std::string section;
  std::size_t sectionLine = 0;
  bool eof = false;
  while (true) {
    std::size_t cs = 0, cl = 0;
    if (!nextLine(cs, cl)) break;
    const std::size_t codeLine = line;
    int code = 0;
    const std::string_view codeText(b.data() + cs, cl);
    if (!parseCode(codeText, code))
      throw DxfError(codeLine, "group code line is not an integer: " + quoted(codeText));
    if (code < 0 || code > kMaxCode)
      throw DxfError(codeLine, "group code " + std::to_string(code) + " is out of range 0..1071");
    std::size_t vs = 0, vl = 0;
    if (!nextLine(vs, vl))
      throw DxfError(codeLine, "group code " + std::to_string(code) + " has no value line: the file is truncated");
    const std::string_view v(b.data() + vs, vl);
    const ValueKind kind = kKinds[static_cast<std::size_t>(code)];
    if (kind != ValueKind::kString && kind != ValueKind::kUndefined) {
      std::string why = checkValue(code, kind, v);
      if (!why.empty()) throw DxfError(line, why);
    }
    if (keepTags) f.tags.push_back(Tag{code, static_cast<std::uint32_t>(vs), static_cast<std::uint32_t>(vl)});
    if (code == 5 || code == 105) {
      // Data groups 5 (SORTENTSTABLE, XRECORD) may count too: the value only
      // keeps new handles clear of every one in the file.
      std::uint64_t h = 0;
      if (parseHex(v, h) && h > f.maxHandle) f.maxHandle = h;
    }

    switch (state) {
      case State::kOutside:
        if (code == 999) break;
        if (code == 0 && v == "SECTION") {
          state = State::kSectionName;
          sectionLine = codeLine;
        } else if (code == 0 && v == "EOF") {
          eof = true;
        } else {
          throw DxfError(codeLine, "expected 0/SECTION or 0/EOF, found " + std::to_string(code) + "/" + quoted(v));
        }
        break;
      case State::kSectionName:
        if (code != 2) throw DxfError(codeLine, "SECTION (line " + std::to_string(sectionLine) + ") has no name");
        section.assign(v);
        state = State::kInside;
        break;
      case State::kInside:
        if (code != 0) break;
        if (v == "ENDSEC") {
          state = State::kOutside;
        } else if (v == "SECTION" || v == "EOF") {
          throw DxfError(codeLine, "section " + section + " (line " + std::to_string(sectionLine) +
                                       ") is not closed: " + std::string(v) + " before ENDSEC");
        }
        break;
    }
    if (eof) break;
  }
  if (!eof) {
    const std::size_t last = line ? line : 1;
    if (state == State::kInside || state == State::kSectionName)
      throw DxfError(last, "section " + (section.empty() ? std::string("?") : section) + " (line " +
                               std::to_string(sectionLine) + ") is not closed: the file ends without ENDSEC");
    throw DxfError(last, "the file ends without 0/EOF");
  }
}

TagFile readTagFile(const std::string& path) {
  TagFile f;
  f.bytes = readFileBytes(path);
  tagize(f);
  return f;
}

bool parseDouble(std::string_view text, double& out) {
  std::string_view t = trim(text);
  if (!isDecimalNumber(t)) return false;
  if (!t.empty() && t[0] == '+') t.remove_prefix(1);
  auto r = std::from_chars(t.data(), t.data() + t.size(), out);
  // Out-of-range magnitudes are refused rather than turned into infinities.
  return r.ec == std::errc() && r.ptr == t.data() + t.size();
}

bool parseInt(std::string_view text, std::int64_t& out) {
  std::string_view t = trim(text);
  if (!t.empty() && t[0] == '+') t.remove_prefix(1);
  if (t.empty()) return false;
  auto r = std::from_chars(t.data(), t.data() + t.size(), out);
  return r.ec == std::errc() && r.ptr == t.data() + t.size();
}

bool parseHex(std::string_view text, std::uint64_t& out) {
  std::string_view t = trim(text);
  if (t.empty() || t.size() > 16) return false;
  auto r = std::from_chars(t.data(), t.data() + t.size(), out, 16);
  return r.ec == std::errc() && r.ptr == t.data() + t.size();
}

void appendDouble(std::string& out, double v) {
  char buf[40];
  auto r = std::to_chars(buf, buf + sizeof buf, v);
  std::string_view s(buf, static_cast<std::size_t>(r.ptr - buf));
  out.append(s);
  if (std::isfinite(v) && s.find_first_of(".eE") == std::string_view::npos) out.append(".0");
}

std::string formatDouble(double v) {
  std::string s;
  appendDouble(s, v);
  return s;
}

void TagWriter::code(int c) {
  char buf[16];
  auto r = std::to_chars(buf, buf + sizeof buf, c);
  const std::size_t n = static_cast<std::size_t>(r.ptr - buf);
  if (n < 3) out_.append(3 - n, ' ');
  out_.append(buf, n);
  out_.append(eol_);
}

void TagWriter::tag(int c, std::string_view value) {
  code(c);
  out_.append(value);
  out_.append(eol_);
}

void TagWriter::tag(int c, double value) {
  code(c);
  appendDouble(out_, value);
  out_.append(eol_);
}

void TagWriter::tagInt(int c, std::int64_t value) {
  code(c);
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, value);
  out_.append(buf, static_cast<std::size_t>(r.ptr - buf));
  out_.append(eol_);
}

void TagWriter::tagHex(int c, std::uint64_t value) {
  code(c);
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, value, 16);
  for (char* p = buf; p != r.ptr; ++p)
    if (*p >= 'a' && *p <= 'f') *p = static_cast<char>(*p - 'a' + 'A');
  out_.append(buf, static_cast<std::size_t>(r.ptr - buf));
  out_.append(eol_);
}

void TagWriter::point(int c, double x, double y, double z) {
  tag(c, x);
  tag(c + 10, y);
  tag(c + 20, z);
}

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)) {
  tmp_ = path_ + ".XXXXXX";
  fd_ = ::mkstemp(tmp_.data());
  if (fd_ < 0) throw DxfError(0, "cannot create a temporary file next to '" + path_ + "': " + std::strerror(errno));
}

AtomicFile::~AtomicFile() {
  if (fd_ >= 0) {
    ::close(fd_);
    ::unlink(tmp_.c_str());
  }
}

void AtomicFile::fail(const char* what) {
  const int e = errno;
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  ::unlink(tmp_.c_str());
  throw DxfError(0, std::string("cannot save '") + path_ + "': " + what + ": " + std::strerror(e));
}

void AtomicFile::write(std::string_view bytes) {
  if (fd_ < 0) throw DxfError(0, "cannot save '" + path_ + "': the file is closed");
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd_, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      fail("write");
    }
    done += static_cast<std::size_t>(n);
  }
}

void AtomicFile::commit() {
  if (fd_ < 0) throw DxfError(0, "cannot save '" + path_ + "': the file is closed");
  // A new file would get mode 0600 from mkstemp; give it what a plain create
  // gives (0666 less the umask), or the old file's mode when there is one.
  struct stat st{};
  mode_t mode = 0;
  if (::stat(path_.c_str(), &st) == 0) {
    mode = st.st_mode & 07777;
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    mode = 0666 & ~mask;
  }
  if (::fchmod(fd_, mode) != 0) fail("chmod");
  if (::fsync(fd_) != 0) fail("fsync");
  const int fd = fd_;
  fd_ = -1;
  if (::close(fd) != 0) {
    const int e = errno;
    ::unlink(tmp_.c_str());
    throw DxfError(0, "cannot save '" + path_ + "': close: " + std::strerror(e));
  }
  if (::rename(tmp_.c_str(), path_.c_str()) != 0) {
    const int e = errno;
    ::unlink(tmp_.c_str());
    throw DxfError(0, "cannot save '" + path_ + "': rename: " + std::strerror(e));
  }
  // The rename itself reaches the disk only with the directory.
  const std::size_t slash = path_.rfind('/');
  const std::string dir = slash == std::string::npos ? "." : (slash == 0 ? "/" : path_.substr(0, slash));
  const int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY);
  if (dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
}

void writeFileAtomically(const std::string& path, std::string_view bytes) {
  AtomicFile f(path);
  f.write(bytes);
  f.commit();
}

}  // namespace vora_host::dxf
