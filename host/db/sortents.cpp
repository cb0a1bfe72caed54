#include <algorithm>

#include "host/db/internal.h"

using vora_host::Access;

ACRX_DXF_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, SORTENTSTABLE, ObjectDBX Classes)

AcDbSortentsTable::AcDbSortentsTable() = default;
AcDbSortentsTable::~AcDbSortentsTable() = default;

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId id) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mBlockId = id;
  setHostModified(true);
  return Acad::eOk;
}

AcDbHandle AcDbSortentsTable::sortHandleOf(AcDbObjectId id) const {
  for (const auto& p : mPairs) {
    if (p.first == id) return p.second;
  }
  return id.handle();
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ents, Adesk::UInt8) const {
  ents.removeAll();
  auto* btr = AcDbBlockTableRecord::cast(vora_host::peek(mBlockId));
  if (btr == nullptr) return Acad::eInvalidInput;
  struct Item {
    AcDbObjectId id;
    Adesk::UInt64 sort;
    Adesk::UInt64 own;
  };
  std::vector<Item> items;
  for (const AcDbObjectId& id : Access::entities(btr)) {
    if (id.isErased()) continue;
    items.push_back(Item{id, sortHandleOf(id), id.handle()});
  }
  std::stable_sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
    return a.sort != b.sort ? a.sort < b.sort : a.own < b.own;
  });
  for (const Item& it : items) ents.append(it.id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getSortHandles(const AcDbObjectIdArray& ents, AcDbHandleArray& handles) const {
  handles.removeAll();
  for (int i = 0; i < ents.length(); ++i) handles.append(sortHandleOf(ents[i]));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& ar) { return reorder(ar, 0, AcDbObjectId::kNull); }
Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& ar) { return reorder(ar, 1, AcDbObjectId::kNull); }
Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& ar, AcDbObjectId target) { return reorder(ar, 2, target); }
Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& ar, AcDbObjectId target) { return reorder(ar, 3, target); }

Acad::ErrorStatus AcDbSortentsTable::reorder(const AcDbObjectIdArray& ar, int where, AcDbObjectId target) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  AcDbObjectIdArray order;
  const Acad::ErrorStatus es = getFullDrawOrder(order);
  if (es != Acad::eOk) return es;
  for (int i = 0; i < ar.length(); ++i) {
    if (!order.contains(ar[i])) return Acad::eInvalidInput;
  }
  std::vector<AcDbObjectId> moved, rest;
  for (int i = 0; i < order.length(); ++i) (ar.contains(order[i]) ? moved : rest).push_back(order[i]);
  std::vector<AcDbObjectId> next;
  if (where == 0) {
    next = rest;
    next.insert(next.end(), moved.begin(), moved.end());
  } else if (where == 1) {
    next = moved;
    next.insert(next.end(), rest.begin(), rest.end());
  } else {
    auto at = std::find(rest.begin(), rest.end(), target);
    if (at == rest.end()) return Acad::eInvalidInput;
    if (where == 2) ++at;
    next.assign(rest.begin(), at);
    next.insert(next.end(), moved.begin(), moved.end());
    next.insert(next.end(), at, rest.end());
  }
  // The sort handles in use are dealt out again in the new order.
  std::vector<Adesk::UInt64> handles;
  for (int i = 0; i < order.length(); ++i) handles.push_back(sortHandleOf(order[i]));
  std::sort(handles.begin(), handles.end());
  std::vector<std::pair<AcDbObjectId, AcDbHandle>> pairs;
  for (const auto& p : mPairs) {
    if (!order.contains(p.first)) pairs.push_back(p);
  }
  for (std::size_t i = 0; i < next.size(); ++i) {
    if (static_cast<Adesk::UInt64>(next[i].handle()) != handles[i]) pairs.emplace_back(next[i], AcDbHandle(handles[i]));
  }
  mPairs = std::move(pairs);
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::swapOrder(AcDbObjectId id1, AcDbObjectId id2) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  AcDbObjectIdArray order;
  getFullDrawOrder(order);
  if (!order.contains(id1) || !order.contains(id2)) return Acad::eInvalidInput;
  const AcDbHandle h1 = sortHandleOf(id1), h2 = sortHandleOf(id2);
  std::vector<std::pair<AcDbObjectId, AcDbHandle>> pairs;
  for (const auto& p : mPairs) {
    if (p.first != id1 && p.first != id2) pairs.push_back(p);
  }
  if (id1.handle() != h2) pairs.emplace_back(id1, h2);
  if (id2.handle() != h1) pairs.emplace_back(id2, h1);
  mPairs = std::move(pairs);
  setHostModified(true);
  return Acad::eOk;
}
