#include "host/dxf/records.h"

#include <cstring>

namespace vora_host::dxf {

const Section* Layout::find(std::string_view name) const {
  for (const auto& s : sections)
    if (s.name == name) return &s;
  return nullptr;
}

int versionNumber(std::string_view v) {
  if (v.size() != 6 || v.substr(0, 2) != "AC") return 0;
  int n = 0;
  for (char c : v.substr(2)) {
    if (c < '0' || c > '9') return 0;
    n = n * 10 + (c - '0');
  }
  return n;
}

namespace {

std::uint64_t hexOf(std::string_view v) {
  std::uint64_t h = 0;
  return parseHex(v, h) ? h : 0;
}

template <class Values>
Record recordAt(const Values& f, std::uint32_t first, std::uint32_t end) {
  Record r;
  r.first = first;
  r.end = end;
  r.xdata = end;
  const bool dimstyle = f.value(first) == "DIMSTYLE";
  const bool xrecord = f.value(first) == "XRECORD";
  const int handleCode = dimstyle ? 105 : 5;
  int depth = 0;  // inside a 102 {...} group
  std::string_view group;
  bool seenMarker = false;
  std::size_t groupIndex = 0;
  for (std::uint32_t i = first + 1; i < end; ++i) {
    const Tag& t = f.tag(i);
    const std::string_view v = f.value(i);
    // XRECORD data may hold 102 tags of its own ("{ATTRRECORD" ... "ATTRRECORD}").
    if (t.code == 102 && !(xrecord && seenMarker)) {
      if (!depth && !v.empty() && v.front() == '{') {
        depth = 1;
        group = v;
        groupIndex = i;
      } else if (depth && !v.empty() && v.back() == '}') {
        depth = 0;
      }
      continue;
    }
    if (depth) {
      if (group == "{ACAD_REACTORS" && t.code == 330) r.reactors.push_back(hexOf(v));
      else if (group == "{ACAD_XDICTIONARY" && t.code == 360) r.xdictionary = hexOf(v);
      continue;
    }
    if (t.code == 100) seenMarker = true;
    if (t.code == handleCode && r.handleTag < 0) {
      r.handleTag = static_cast<std::int32_t>(i);
      r.handle = hexOf(v);
    } else if (t.code == 330 && r.ownerTag < 0 && !(xrecord && seenMarker)) {
      r.ownerTag = static_cast<std::int32_t>(i);
      r.owner = hexOf(v);
    } else if (t.code == 1001 && !xrecord && r.xdata == end) {
      r.xdata = i;
    }
  }
  if (depth) throw DxfError(f.lineOf(groupIndex), "102 group " + std::string(group) + " is not closed");
  return r;
}

struct FileValues {
  const TagFile& f;
  const Tag& tag(std::size_t i) const { return f.tags[i]; }
  std::string_view value(std::size_t i) const { return f.value(i); }
  static std::size_t lineOf(std::size_t i) { return TagFile::lineOf(i); }
};

struct LocalValues {
  std::string_view bytes;
  const std::vector<Tag>& tags;
  const Tag& tag(std::size_t i) const { return tags[i]; }
  std::string_view value(std::size_t i) const { return bytes.substr(tags[i].offset, tags[i].length); }
  static std::size_t lineOf(std::size_t i) { return 2 * i + 1; }
};

}  // namespace

Layout layoutOf(const TagFile& f) {
  Layout out;
  const auto n = static_cast<std::uint32_t>(f.tags.size());
  std::uint32_t i = 0;
  while (i < n) {
    const Tag& t = f.tags[i];
    if (t.code == 0 && f.value(t) == "EOF") {
      out.eofTag = i;
      break;
    }
    if (t.code != 0) {  // 999 comments between sections
      ++i;
      continue;
    }
    Section s;
    s.first = i;
    s.name = f.value(i + 1);
    std::uint32_t j = i + 2;
    // Tags between the name and the first record (none in well-formed files)
    // stay with the section head.
    while (j < n && f.tags[j].code != 0) ++j;
    if (s.name == "HEADER") {
      // The header is one run of variables; the loader only reads a few.
      std::string_view var;
      for (std::uint32_t k = i + 2; k < n && !(f.tags[k].code == 0 && f.value(k) == "ENDSEC"); ++k) {
        const Tag& h = f.tags[k];
        if (h.code == 9) {
          var = f.value(h);
          continue;
        }
        if (var == "$ACADVER" && h.code == 1) out.acadver = f.value(h);
        else if (var == "$DWGCODEPAGE" && h.code == 3) out.codepage = f.value(h);
        else if (var == "$HANDSEED" && h.code == 5) {
          out.handseedTag = static_cast<std::int32_t>(k);
          out.handseed = hexOf(f.value(h));
        } else if (var == "$HANDLING" && h.code == 70) {
          std::int64_t v = 1;
          parseInt(f.value(h), v);
          out.handling = v != 0;
        }
      }
    }
    while (j < n) {
      std::uint32_t k = j + 1;
      while (k < n && f.tags[k].code != 0) ++k;
      if (f.value(j) == "ENDSEC") {
        s.end = j + 1;
        break;
      }
      if (s.name != "HEADER") s.records.push_back(recordAt(FileValues{f}, j, k));
      j = k;
    }
    i = s.end;
    out.sections.push_back(std::move(s));
  }
  return out;
}

}  // namespace vora_host::dxf

namespace vora_host::dxf {

Record describeRecord(std::string_view bytes, const std::vector<Tag>& tags) {
  return recordAt(LocalValues{bytes, tags}, 0, static_cast<std::uint32_t>(tags.size()));
}

bool RecordCursor::readTag(Tag& t) {
  if (pos_ >= bytes_.size()) return false;
  auto line = [&](std::size_t& s, std::size_t& l) {
    s = pos_;
    const void* nl = std::memchr(bytes_.data() + pos_, '\n', bytes_.size() - pos_);
    std::size_t stop = nl ? static_cast<std::size_t>(static_cast<const char*>(nl) - bytes_.data()) : bytes_.size();
    pos_ = nl ? stop + 1 : bytes_.size();
    if (nl && stop > s && bytes_[stop - 1] == '\r') --stop;
    l = stop - s;
  };
  std::size_t cs, cl, vs, vl;
  line(cs, cl);
  line(vs, vl);
  int code = 0;
  std::size_t k = cs;
  while (k < cs + cl && (bytes_[k] == ' ' || bytes_[k] == '\t')) ++k;
  for (; k < cs + cl && bytes_[k] >= '0' && bytes_[k] <= '9'; ++k) code = code * 10 + (bytes_[k] - '0');
  t = Tag{code, static_cast<std::uint32_t>(vs), static_cast<std::uint32_t>(vl)};
  nextLine_ += 2;
  return true;
}

bool RecordCursor::next() {
  tags_.clear();
  if (!pending_) {
    pendingBegin_ = pos_;
    pendingLine_ = nextLine_;
    if (!readTag(pendingTag_)) return false;
  }
  pending_ = false;
  begin_ = pendingBegin_;
  line_ = pendingLine_;
  tags_.push_back(pendingTag_);
  // The EOF record ends the walk; what follows it is not DXF.
  if (pendingTag_.code == 0 && value(0) == "EOF") {
    end_ = pos_;
    pos_ = bytes_.size();
    return true;
  }
  while (true) {
    const std::size_t at = pos_;
    const std::size_t atLine = nextLine_;
    Tag t;
    if (!readTag(t)) {
      end_ = pos_;
      break;
    }
    if (t.code == 0) {
      pending_ = true;
      pendingTag_ = t;
      pendingBegin_ = at;
      pendingLine_ = atLine;
      end_ = at;
      break;
    }
    tags_.push_back(t);
  }
  return true;
}

}  // namespace vora_host::dxf
