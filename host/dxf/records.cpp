#include "host/dxf/records.h"

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

Record recordAt(const TagFile& f, std::uint32_t first, std::uint32_t end) {
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
  std::size_t groupLine = 0;
  for (std::uint32_t i = first + 1; i < end; ++i) {
    const Tag& t = f.tags[i];
    const std::string_view v = f.value(t);
    // XRECORD data may hold 102 tags of its own ("{ATTRRECORD" ... "ATTRRECORD}").
    if (t.code == 102 && !(xrecord && seenMarker)) {
      if (!depth && !v.empty() && v.front() == '{') {
        depth = 1;
        group = v;
        groupLine = TagFile::lineOf(i);
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
  if (depth) throw DxfError(groupLine, "102 group " + std::string(group) + " is not closed");
  return r;
}

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
      if (s.name != "HEADER") s.records.push_back(recordAt(f, j, k));
      j = k;
    }
    i = s.end;
    out.sections.push_back(std::move(s));
  }
  return out;
}

}  // namespace vora_host::dxf
