// The one place where exceptions of feature-line code become a printed
// message and a result code.
#ifndef VORA_FEATURELINE_GUARD_H
#define VORA_FEATURELINE_GUARD_H

#include "featureline/errors.h"

// To be called inside a catch block: prints the message for the exception
// being handled and returns the code an exported function answers with it:
// the thrown vora_featureline_result_enum, -100 for a FeaturelineError, -1000
// for an Acad::ErrorStatus, -100000 for anything else.
int reportCurrentException() noexcept;

// Runs body and answers 0, or reports what it threw.
template <class Body>
int guarded(Body&& body) noexcept {
  try {
    body();
    return 0;
  } catch (...) {
    return reportCurrentException();
  }
}

#endif
