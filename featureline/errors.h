// What feature-line code throws, and the names of those values.
#ifndef VORA_FEATURELINE_ERRORS_H
#define VORA_FEATURELINE_ERRORS_H

#include "vora/featureline.h"

// Thrown as a plain value by the model, its persistence, geometry and edits.
// The values 1, 2, 5 and 7 are named but nothing raises them.
enum class FeaturelineError : int {
  eInvalidInputPoint = 0,
  eNumberOfPointsMismatch = 1,
  eInvalidElevationPoint = 2,
  eDataError = 3,
  eOutOfBounds = 4,
  eAlreadyOpenFor = 5,
  eNonCompatible3dPoly = 6,
  eParsingError = 7,
};

// The enumerator's name, or "NOT FOUND" for any other value.
const char* featurelineErrorName(FeaturelineError e);

#endif
