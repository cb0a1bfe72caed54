#include "vora/arx/gegbl.h"

AcGeTol::AcGeTol() : mEqualPoint(1e-10), mEqualVector(1e-12) {}

AcGeTol AcGeContext::gTol;
