// Field tables: for each modelled class, per subclass marker, the group codes
// the class reads into its fields. One table drives both directions, so that
// reading and writing cannot drift apart: a record is split by the table into
// the tags that fill fields and, per subclass, the tags no field consumes,
// kept in their order and written back after the fields.
#ifndef VORA_HOST_DXF_FIELDS_H
#define VORA_HOST_DXF_FIELDS_H

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "host/dxf/tags.h"

namespace vora_host::dxf {

struct SubclassDef {
  std::string_view marker;        // e.g. "AcDbEntity"
  std::vector<int> codes;         // the group codes this subclass reads once, in writing order
  std::vector<int> repeated = {}; // codes read as lists (vertices, dictionary entries), in file order
};

struct VORA_HOST_API ClassDef {
  std::string_view dxfType;
  std::vector<SubclassDef> subclasses;  // in file order
  // First slot of each subclass in the flat slot array (filled by finish()).
  std::vector<std::uint16_t> slotBase;
  std::uint16_t slotCount = 0;
  // Per subclass, slot + 1 of each group code 0..1071 (0: not read).
  std::vector<std::vector<std::uint16_t>> slotByCode;
  ClassDef(std::string_view type, std::initializer_list<SubclassDef> subs);
  int slotOf(std::size_t subclass, int code) const;
};

// A record split by a class's table. Tags are indices into a tag vector.
struct SplitRecord {
  // Per subclass of the table: tags no field consumed, in file order. Index
  // subclasses.size() collects tags under markers the table does not know
  // (with their marker tags), kept in order.
  std::vector<std::vector<std::uint32_t>> kept;
  std::vector<std::uint32_t> head;     // common tags before the first marker that are not handle/owner/102 groups
  std::vector<std::uint32_t> appData;  // 102 groups other than reactors and the extension dictionary, with their tags
  std::vector<std::int32_t> slotTag;   // per slot: the tag that filled it, -1 when absent
  std::vector<bool> markerSeen;        // per subclass: its marker was in the record
  std::vector<std::vector<std::uint32_t>> repeated;  // per subclass: tags of its repeated codes, in order
};

// Splits tags [1, end) of a record (tags[0] is its 0 tag; end is where its
// extended data begins). Without subclass markers (R12), each code goes to
// the first subclass that reads it. A code read by a subclass fills its slot
// once; a repeated code is kept. Codes of a point (10 with 20 and 30) are
// listed once, by their first code, and fill three slots.
VORA_HOST_API SplitRecord splitRecord(const ClassDef& def, std::string_view bytes, const std::vector<Tag>& tags,
                                      std::size_t end, int handleCode = 5);

// Tags a byte range of an already validated file (a record's bytes) without
// checks. Offsets are relative to bytes.data().
VORA_HOST_API void tagizeRange(std::string_view bytes, std::vector<Tag>& out);

}  // namespace vora_host::dxf

#endif
