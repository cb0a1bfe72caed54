#include "host/ads/rbkind.h"
#include "host/db/internal.h"
#include "vora/arx/dbxrecrd.h"

namespace {

resbuf* copyList(const resbuf* src) {
  resbuf* out = nullptr;
  acutRbDup(src, &out);
  return out;
}

}  // namespace

ACRX_DXF_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, XRECORD, ObjectDBX Classes)

AcDbXrecord::AcDbXrecord() = default;
AcDbXrecord::~AcDbXrecord() { acutRelRb(mpData); }

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** ppRb, AcDbDatabase*) const {
  if (ppRb == nullptr) return Acad::eNullPtr;
  *ppRb = copyList(mpData);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& pRb, AcDbDatabase*) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  resbuf* copy = copyList(&pRb);
  if (copy == nullptr) return Acad::eOutOfMemory;
  acutRelRb(mpData);
  mpData = copy;
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::appendRbChain(const resbuf& pRb) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  resbuf* copy = copyList(&pRb);
  if (copy == nullptr) return Acad::eOutOfMemory;
  if (mpData == nullptr) {
    mpData = copy;
  } else {
    resbuf* tail = mpData;
    while (tail->rbnext != nullptr) tail = tail->rbnext;
    tail->rbnext = copy;
  }
  setHostModified(true);
  return Acad::eOk;
}

void AcDbXrecord::setXlateReferences(bool translate) {
  if (!assertWriteEnabled()) return;
  mXlate = translate;
  setHostModified(true);
}
