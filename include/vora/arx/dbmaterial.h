// AcDbMaterial: a render material, kept in the material dictionary by name.
#ifndef VORA_ARX_DBMATERIAL_H
#define VORA_ARX_DBMATERIAL_H

#include <string>

#include "vora/arx/db.h"

class VORA_HOST_API AcDbMaterial : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbMaterial);
  AcDbMaterial();
  ~AcDbMaterial() override;

  const ACHAR* name() const { return mName.c_str(); }
  Acad::ErrorStatus setName(const ACHAR* pName);
  const ACHAR* description() const { return mDescription.c_str(); }
  Acad::ErrorStatus setDescription(const ACHAR* pDescription);

private:
  std::wstring mName;
  std::wstring mDescription;
};

#endif
