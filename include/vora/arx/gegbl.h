// Geometry tolerances: AcGeTol and the global context holding the default one.
#ifndef VORA_ARX_GEGBL_H
#define VORA_ARX_GEGBL_H

#include "vora/arx/adesk.h"

class VORA_HOST_API AcGeTol {
public:
  // The host defaults, 1e-10 for points and 1e-12 for vectors, are the values
  // the CAD program reports for its global tolerance.
  AcGeTol();
  double equalPoint() const { return mEqualPoint; }
  double equalVector() const { return mEqualVector; }
  void setEqualPoint(double val) { mEqualPoint = val; }
  void setEqualVector(double val) { mEqualVector = val; }

private:
  double mEqualPoint;
  double mEqualVector;
};

struct VORA_HOST_API AcGeContext {
  static AcGeTol gTol;
};

#endif
