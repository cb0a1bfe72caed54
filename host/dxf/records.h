// Grouping of a tagged DXF file into sections and records (one 0-group and
// the tags up to the next), with what every record says about itself: type,
// handle, owner, reactors, extension dictionary, where its extended data and
// its subclasses begin.
#ifndef VORA_HOST_DXF_RECORDS_H
#define VORA_HOST_DXF_RECORDS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/dxf/tags.h"

namespace vora_host::dxf {

struct Record {
  std::uint32_t first = 0;  // index of the 0 tag
  std::uint32_t end = 0;    // one past the last tag
  std::uint32_t xdata = 0;  // index of the first 1001 tag of extended data, end when none
  std::int32_t handleTag = -1;  // index of the handle tag (5, or 105 for DIMSTYLE), -1 when none
  std::int32_t ownerTag = -1;   // index of the first 330 outside 102 groups, -1 when none
  std::uint64_t handle = 0;     // 0 when the record has none or it is empty or not hexadecimal
  std::uint64_t owner = 0;
  std::uint64_t xdictionary = 0;
  std::vector<std::uint64_t> reactors;
};

struct Section {
  std::string name;
  std::uint32_t first = 0;  // index of 0/SECTION
  std::uint32_t end = 0;    // one past 0/ENDSEC
  std::vector<Record> records;  // the records between the name and ENDSEC
};

struct Layout {
  std::vector<Section> sections;
  std::uint32_t eofTag = 0;       // index of 0/EOF
  std::string acadver;            // empty when the file has no $ACADVER
  std::string codepage;           // $DWGCODEPAGE, empty when absent
  std::int32_t handseedTag = -1;  // index of the value tag of $HANDSEED
  std::uint64_t handseed = 0;
  bool handling = true;           // $HANDLING (R12): handles present
  const Section* find(std::string_view name) const;
};

// Splits a tagged file (see tagize) into sections and records and reads the
// header variables the loader needs. Throws DxfError for a record whose
// structure is broken (an unclosed 102 group).
VORA_HOST_API Layout layoutOf(const TagFile& file);

// The record's type: the value of its 0 tag.
inline std::string_view recordType(const TagFile& f, const Record& r) { return f.value(r.first); }

// What a record says about itself, from its own tags (tags[0] is its 0 tag;
// indices in the result are relative to tags).
VORA_HOST_API Record describeRecord(std::string_view bytes, const std::vector<Tag>& tags);

// Walks an already validated file (see tagize) one record at a time without
// keeping the tags of the whole file: tags() holds the current record's tags,
// offsets into bytes.
class VORA_HOST_API RecordCursor {
public:
  RecordCursor(std::string_view bytes, std::size_t start) : bytes_(bytes), pos_(start) {}
  // Advances to the next record; false after the last one.
  bool next();
  const std::vector<Tag>& tags() const { return tags_; }
  std::string_view value(std::size_t i) const { return bytes_.substr(tags_[i].offset, tags_[i].length); }
  std::string_view type() const { return value(0); }
  std::size_t begin() const { return begin_; }  // first byte of the record (its 0 line)
  std::size_t end() const { return end_; }      // one past its last byte
  std::size_t line() const { return line_; }    // 1-based line of its 0 tag

private:
  bool readTag(Tag& t);
  std::string_view bytes_;
  std::size_t pos_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t line_ = 0;
  std::size_t pendingLine_ = 0;
  std::size_t nextLine_ = 1;
  std::vector<Tag> tags_;
  bool pending_ = false;
  Tag pendingTag_{};
  std::size_t pendingBegin_ = 0;
};

// Versions as numbers: "AC1009" -> 1009; 0 when absent or unknown.
VORA_HOST_API int versionNumber(std::string_view acadver);

}  // namespace vora_host::dxf

#endif
