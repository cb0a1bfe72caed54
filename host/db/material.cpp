#include "host/db/internal.h"
#include "vora/arx/dbmaterial.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbMaterial, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, MATERIAL, ObjectDBX Classes)

AcDbMaterial::AcDbMaterial() = default;
AcDbMaterial::~AcDbMaterial() = default;

Acad::ErrorStatus AcDbMaterial::setName(const ACHAR* pName) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (pName == nullptr || *pName == 0) return Acad::eInvalidInput;
  mName = pName;
  setHostModified(true);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMaterial::setDescription(const ACHAR* pDescription) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mDescription = pDescription != nullptr ? pDescription : L"";
  setHostModified(true);
  return Acad::eOk;
}
