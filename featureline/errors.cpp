#include "featureline/errors.h"

namespace {

constexpr const char* kNames[] = {
    "eInvalidInputPoint", "eNumberOfPointsMismatch", "eInvalidElevationPoint", "eDataError",
    "eOutOfBounds",       "eAlreadyOpenFor",         "eNonCompatible3dPoly",   "eParsingError",
};

}  // namespace

const char* featurelineErrorName(FeaturelineError e) {
  const int v = static_cast<int>(e);
  if (v < 0 || v >= static_cast<int>(sizeof kNames / sizeof kNames[0])) return "NOT FOUND";
  return kNames[v];
}
