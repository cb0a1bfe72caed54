// Host-internal pieces shared by the DXF loader and writer: the per-object
// and per-drawing data the DXF layer keeps, and the classes of the objects
// the database does not model.
#ifndef VORA_HOST_DXF_OBJECTS_H
#define VORA_HOST_DXF_OBJECTS_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/dxf/encoding.h"
#include "vora/arx.h"

namespace vora_host::dxf {

// Where a loaded object's record lies in the file's bytes. An object that
// nobody changed is written back as these bytes.
struct RecordExtra final : ObjectExtra {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  bool inBlocks = false;  // an entity read from the BLOCKS section
};

// An object the loader made to complete a drawing that lacks it (the block
// table of an R12 file, a layer named by entities only). Never written.
struct SyntheticExtra final : ObjectExtra {};

// One piece of the file to write, in file order.
struct Item {
  enum Kind : std::uint8_t {
    kRaw,            // bytes [begin, end) of the loaded file
    kHeader,         // the HEADER section, with $HANDSEED brought up to date
    kObject,         // one object (with its vertices, attributes and SEQEND)
    kTableRecords,   // the records of symbol table `id`
    kBlockEntities,  // the entities of block table record `id` that live in BLOCKS
    kNewEntities,    // entities added to model space and paper space since loading
    kNewObjects,     // non-graphical objects added since loading
  };
  Kind kind = kRaw;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  AcDbObjectId id;
};

struct DrawingExtra final : ObjectExtra {
  std::string bytes;  // the loaded file (or a generated skeleton)
  bool crlf = false;
  std::string acadver;  // "AC1009" when the file has no $ACADVER
  int version = 1009;
  bool handles = true;  // the file writes handles (R12: $HANDLING)
  std::unique_ptr<TextCodec> codec;
  bool hasHandseed = false;
  std::uint32_t handseedBegin = 0;  // bytes of the $HANDSEED value
  std::uint32_t handseedEnd = 0;
  std::vector<Item> items;
  AcDbObjectId paperSpace;  // the block whose entities the ENTITIES section holds besides model space
};

// A kept object of a type the database does not model.
class VoraUnknownObject final : public AcDbObject {
public:
  VoraUnknownObject(AcRxClass* cls, std::string type) : cls_(cls), type_(std::move(type)) {}
  AcRxClass* isA() const override { return cls_; }
  const std::string& dxfType() const { return type_; }

private:
  AcRxClass* cls_;
  std::string type_;
};

// A kept entity of a type the database does not model. INSERT keeps its
// ATTRIBs and SEQEND as followers, written after it.
class VoraUnknownEntity final : public AcDbEntity {
public:
  VoraUnknownEntity(AcRxClass* cls, std::string type) : cls_(cls), type_(std::move(type)) {}
  AcRxClass* isA() const override { return cls_; }
  const std::string& dxfType() const { return type_; }
  std::vector<AcDbObjectId>& followers() { return followers_; }
  const std::vector<AcDbObjectId>& followers() const { return followers_; }

private:
  AcRxClass* cls_;
  std::string type_;
  std::vector<AcDbObjectId> followers_;
};

// The run-time class of kept objects of a DXF type: its dxfName() is the
// type, its parent AcDbEntity or AcDbObject.
AcRxClass* unknownClass(const std::string& type, bool entity);

}  // namespace vora_host::dxf

#endif
