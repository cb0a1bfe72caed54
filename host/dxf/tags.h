// The tag layer of the DXF reader and writer: a file's bytes split into
// (group code, value) pairs, the value kinds of the group codes, numbers as
// shortest round-trip text, and the writer that puts tags back on lines.
//
// Tags never copy their text: a value is an (offset, length) view into the
// bytes of the file, which the caller keeps alive. Every tag takes exactly two
// lines, so the group code of tag i sits on line 2 * i + 1 of the file.
#ifndef VORA_HOST_DXF_TAGS_H
#define VORA_HOST_DXF_TAGS_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "vora/export.h"

namespace vora_host::dxf {

// A file that cannot be read as DXF. line() is 1-based (0 when the problem is
// not tied to a line, e.g. a missing file); reason() is the bare reason and
// what() reads "line N: reason".
class VORA_HOST_API DxfError : public std::runtime_error {
public:
  DxfError(std::size_t line, const std::string& reason);
  std::size_t line() const { return line_; }
  const std::string& reason() const { return reason_; }

private:
  std::size_t line_;
  std::string reason_;
};

enum class ValueKind : std::uint8_t {
  kString, kDouble, kInt16, kInt32, kInt64, kBool, kHandle, kBinary, kUndefined
};

// The value kind of a group code per the DXF reference's table of group code
// types; codes outside 0..1071 are kUndefined.
VORA_HOST_API ValueKind valueKind(int code);

struct Tag {
  std::int32_t code;
  std::uint32_t offset;  // of the value's first byte in the buffer
  std::uint32_t length;  // of the value, line end excluded
};

// The tags of one file. The value of a tag is buffer[offset, offset + length).
struct TagFile {
  std::string bytes;
  std::vector<Tag> tags;
  bool crlf = false;     // the first line ends with CR LF
  bool bom = false;      // a UTF-8 byte order mark precedes the first line
  std::uint64_t maxHandle = 0;  // the largest hexadecimal value of a 5 or 105 group (filled by tagize)

  std::string_view value(const Tag& t) const { return {bytes.data() + t.offset, t.length}; }
  std::string_view value(std::size_t i) const { return value(tags[i]); }
  // 1-based line of the group code of tag i.
  static std::size_t lineOf(std::size_t i) { return 2 * i + 1; }
};

// Reads the whole file. Throws DxfError (line 0) when it cannot be opened or
// read.
VORA_HOST_API std::string readFileBytes(const std::string& path);

// Splits bytes into tags, strictly: every group code line an integer in
// 0..1071, every group code followed by a value line, numbers well formed for
// their code (a decimal comma is named as such), sections opened with a name
// and closed, the file ended by 0/EOF. Binary DXF is refused. Lines end with
// LF or CR LF. Throws DxfError naming the first offending line.
// With keepTags false the file is only checked (and maxHandle found): tags
// stays empty.
VORA_HOST_API void tagize(TagFile& file, bool keepTags = true);

// Convenience: readFileBytes + tagize.
VORA_HOST_API TagFile readTagFile(const std::string& path);

// Numbers. parse* accept surrounding blanks and return false on anything else
// (including a decimal comma); format* give the shortest text that reads back
// to the same value, with ".0" added to integral doubles as DXF writers do.
VORA_HOST_API bool parseDouble(std::string_view text, double& out);
VORA_HOST_API bool parseInt(std::string_view text, std::int64_t& out);
VORA_HOST_API bool parseHex(std::string_view text, std::uint64_t& out);
VORA_HOST_API void appendDouble(std::string& out, double v);
VORA_HOST_API std::string formatDouble(double v);

// Appends tags as DXF lines: the group code right-aligned in three columns,
// the value as given, each line ended by LF or CR LF.
class VORA_HOST_API TagWriter {
public:
  explicit TagWriter(std::string& out, bool crlf = false) : out_(out), eol_(crlf ? "\r\n" : "\n") {}
  void tag(int code, std::string_view value);
  void tag(int code, double value);
  void tagInt(int code, std::int64_t value);
  void tagHex(int code, std::uint64_t value);
  void point(int code, double x, double y, double z);
  std::string& out() { return out_; }
  bool crlf() const { return eol_.size() == 2; }

private:
  void code(int c);
  std::string& out_;
  std::string_view eol_;
};

// Writes bytes to path atomically: a temporary file in the same directory is
// written, flushed to disk and renamed over path. On any failure the
// temporary file is removed, path is left as it was, and DxfError (line 0) is
// thrown.
VORA_HOST_API void writeFileAtomically(const std::string& path, std::string_view bytes);

// The same, in pieces: write() as often as needed, then commit(). Destroyed
// without commit(), the temporary file is removed and path left as it was.
class VORA_HOST_API AtomicFile {
public:
  explicit AtomicFile(std::string path);  // throws DxfError when no temporary file can be made
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  void write(std::string_view bytes);  // throws DxfError
  void commit();                       // throws DxfError

private:
  [[noreturn]] void fail(const char* what);
  std::string path_;
  std::string tmp_;
  int fd_ = -1;
};

}  // namespace vora_host::dxf

#endif
