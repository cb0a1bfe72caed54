#include "host/dxf/fields.h"

#include <cstring>

namespace vora_host::dxf {

ClassDef::ClassDef(std::string_view type, std::initializer_list<SubclassDef> subs) : dxfType(type), subclasses(subs) {
  for (const auto& s : subclasses) {
    slotBase.push_back(slotCount);
    std::vector<std::uint16_t> byCode(1072, 0);
    for (std::size_t i = 0; i < s.codes.size(); ++i)
      if (s.codes[i] >= 0 && s.codes[i] < 1072 && byCode[static_cast<std::size_t>(s.codes[i])] == 0)
        byCode[static_cast<std::size_t>(s.codes[i])] = static_cast<std::uint16_t>(slotCount + i + 1);
    slotByCode.push_back(std::move(byCode));
    slotCount = static_cast<std::uint16_t>(slotCount + s.codes.size());
  }
}

int ClassDef::slotOf(std::size_t subclass, int code) const {
  if (code < 0 || code >= 1072) return -1;
  return static_cast<int>(slotByCode[subclass][static_cast<std::size_t>(code)]) - 1;
}

SplitRecord splitRecord(const ClassDef& def, std::string_view bytes, const std::vector<Tag>& tags, std::size_t end,
                        int handleCode) {
  SplitRecord r;
  const std::size_t nsub = def.subclasses.size();
  r.kept.resize(nsub + 1);
  r.slotTag.assign(def.slotCount, -1);
  r.markerSeen.assign(nsub, false);
  auto value = [&](std::size_t i) { return bytes.substr(tags[i].offset, tags[i].length); };
  bool anyMarker = false;
  for (std::size_t i = 1; i < end; ++i)
    if (tags[i].code == 100) {
      anyMarker = true;
      break;
    }
  // -1: before the first marker (the common part); nsub: an unknown marker.
  long current = anyMarker ? -1 : 0;
  bool inGroup = false, groupKept = false;
  bool handleSeen = false, ownerSeen = false;
  r.repeated.resize(nsub);
  auto take = [&](std::size_t sub, std::size_t i) -> bool {
    for (int c : def.subclasses[sub].repeated)
      if (c == tags[i].code) {
        r.repeated[sub].push_back(static_cast<std::uint32_t>(i));
        return true;
      }
    const int slot = def.slotOf(sub, tags[i].code);
    if (slot < 0 || r.slotTag[static_cast<std::size_t>(slot)] >= 0) return false;
    r.slotTag[static_cast<std::size_t>(slot)] = static_cast<std::int32_t>(i);
    return true;
  };
  for (std::size_t i = 1; i < end; ++i) {
    const int code = tags[i].code;
    // Application groups sit in the common part; after a marker, 102 tags
    // are data of the subclass (XRECORD uses them so).
    if (inGroup || (current < 0 && code == 102 && !value(i).empty() && value(i).front() == '{')) {
      // Application groups other than reactors and the extension dictionary
      // are kept with their tags; those two are rebuilt from the object.
      const std::string_view v = value(i);
      if (!inGroup) {
        inGroup = true;
        groupKept = v != "{ACAD_REACTORS" && v != "{ACAD_XDICTIONARY";
      }
      if (groupKept) r.appData.push_back(static_cast<std::uint32_t>(i));
      if (code == 102 && !v.empty() && v.back() == '}') inGroup = groupKept = false;
      continue;
    }
    if (code == 100) {
      current = static_cast<long>(nsub);
      const std::string_view m = value(i);
      for (std::size_t s = 0; s < nsub; ++s)
        if (!r.markerSeen[s] && def.subclasses[s].marker == m) {
          current = static_cast<long>(s);
          r.markerSeen[s] = true;
          break;
        }
      if (current == static_cast<long>(nsub)) r.kept[nsub].push_back(static_cast<std::uint32_t>(i));
      continue;
    }
    // The handle is usually first; one R12 writer puts a marker before it.
    if (code == handleCode && !handleSeen) {
      handleSeen = true;
      continue;
    }
    if (current < 0 || !anyMarker) {
      if (code == 330 && !ownerSeen) {
        ownerSeen = true;
        continue;
      }
    }
    if (current < 0) {
      r.head.push_back(static_cast<std::uint32_t>(i));
      continue;
    }
    if (!anyMarker) {
      bool taken = false;
      for (std::size_t s = 0; s < nsub && !taken; ++s) taken = take(s, i);
      if (!taken) r.kept[0].push_back(static_cast<std::uint32_t>(i));
      continue;
    }
    const auto sub = static_cast<std::size_t>(current);
    if (sub == nsub || !take(sub, i)) r.kept[sub].push_back(static_cast<std::uint32_t>(i));
  }
  return r;
}

void tagizeRange(std::string_view b, std::vector<Tag>& out) {
  out.clear();
  std::size_t pos = 0;
  const std::size_t end = b.size();
  auto next = [&](std::size_t& s, std::size_t& l) {
    s = pos;
    const void* nl = std::memchr(b.data() + pos, '\n', end - pos);
    std::size_t stop = nl ? static_cast<std::size_t>(static_cast<const char*>(nl) - b.data()) : end;
    pos = nl ? stop + 1 : end;
    if (nl && stop > s && b[stop - 1] == '\r') --stop;
    l = stop - s;
  };
  while (pos < end) {
    std::size_t cs, cl, vs, vl;
    next(cs, cl);
    if (pos >= end && cl == 0) break;
    next(vs, vl);
    int code = 0;
    std::size_t k = cs;
    while (k < cs + cl && (b[k] == ' ' || b[k] == '\t')) ++k;
    bool neg = k < cs + cl && b[k] == '-';
    if (neg) ++k;
    for (; k < cs + cl && b[k] >= '0' && b[k] <= '9'; ++k) code = code * 10 + (b[k] - '0');
    out.push_back(Tag{neg ? -code : code, static_cast<std::uint32_t>(vs), static_cast<std::uint32_t>(vl)});
  }
}

}  // namespace vora_host::dxf
