// AcDbSortentsTable: the draw order of the entities of one block.
//
// Each entity draws in the order of its sort handle, which is its own handle
// unless the table gives it another; entities with equal sort handles draw in
// the order of their own handles. Moving entities reassigns the sort handles
// already in use, so the set of sort handles never changes.
#ifndef VORA_ARX_DBSORTENTS_H
#define VORA_ARX_DBSORTENTS_H

#include <utility>
#include <vector>

#include "vora/arx/db.h"

class VORA_HOST_API AcDbSortentsTable : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbSortentsTable);
  AcDbSortentsTable();
  ~AcDbSortentsTable() override;

  AcDbObjectId blockId() const { return mBlockId; }
  Acad::ErrorStatus setBlockId(AcDbObjectId id);

  // Draw the entities last (first), keeping their order among themselves.
  // eInvalidInput when an id is not an entity of the block.
  Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& ar);
  Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& ar);
  Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& ar, AcDbObjectId target);
  Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& ar, AcDbObjectId target);
  Acad::ErrorStatus swapOrder(AcDbObjectId id1, AcDbObjectId id2);
  // Every (non-erased) entity of the block in draw order.
  Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& ents, Adesk::UInt8 honorSortentsMask = 0) const;
  // The sort handle of each of ents.
  Acad::ErrorStatus getSortHandles(const AcDbObjectIdArray& ents, AcDbHandleArray& handles) const;

private:
  friend struct vora_host::Access;
  Acad::ErrorStatus reorder(const AcDbObjectIdArray& ar, int where, AcDbObjectId target);
  AcDbHandle sortHandleOf(AcDbObjectId id) const;
  AcDbObjectId mBlockId;
  // Entities whose sort handle is not their own handle, in file order.
  std::vector<std::pair<AcDbObjectId, AcDbHandle>> mPairs;
};

#endif
