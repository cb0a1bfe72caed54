// AcDbXrecord: an object holding a list of typed values (resbuf items with
// DXF group codes), usually stored in a dictionary.
#ifndef VORA_ARX_DBXRECRD_H
#define VORA_ARX_DBXRECRD_H

#include "vora/arx/db.h"

class VORA_HOST_API AcDbXrecord : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbXrecord);
  AcDbXrecord();
  ~AcDbXrecord() override;

  // A copy of the data list at *ppRb (null when empty); the caller releases
  // it with acutRelRb.
  Acad::ErrorStatus rbChain(resbuf** ppRb, AcDbDatabase* auxDb = nullptr) const;
  // Replaces the data with a copy of the list that starts at pRb.
  Acad::ErrorStatus setFromRbChain(const resbuf& pRb, AcDbDatabase* auxDb = nullptr);
  // Appends a copy of the list that starts at pRb.
  Acad::ErrorStatus appendRbChain(const resbuf& pRb);
  bool isXlateReferences() const { return mXlate; }
  void setXlateReferences(bool translate);

private:
  resbuf* mpData = nullptr;
  bool mXlate = true;
};

#endif
