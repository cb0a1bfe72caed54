// Feature lines: the exported C API.
//
// A feature line is a simple 3D polyline of the drawing that carries the
// extended data of the application "VORA_XPLINE_APPN" (its mid ordinate
// distance). Its vertices are read as a model of feature points (vertices of
// the plan alignment, possibly joined by arcs) and elevation points (grade
// breaks inside arcs), with a station per point; edits re-tessellate the arcs
// into vertices.
#ifndef VORA_FEATURELINE_H
#define VORA_FEATURELINE_H

#include "vora/arx.h"

// Result codes of the feature-line functions. Every function returns 0 on
// success. When an error is caught, a message is printed on the command line
// and the function returns the thrown code, -100 for a feature-line error,
// -1000 for a host error status or -100000 for anything else.
enum vora_featureline_result_enum : int {
  VORA_FEATURELINE_OK = 0,
  VORA_FEATURELINE_UPDATE_FAILED = -1,      // some point updates failed (after a roll-back where stated)
  VORA_FEATURELINE_ERASE_FAILED = -2,       // some erase failed
  VORA_FEATURELINE_NOT_ELEVATION_POINT = -3,
  VORA_FEATURELINE_INSERT_REFUSED = -4,
  VORA_FEATURELINE_NULL_ID = -10,           // no polyline id was given
  VORA_FEATURELINE_OPEN_FAILED = -11,       // the feature line could not be opened (the cause was printed)
  VORA_FEATURELINE_NO_POINTS = -12,
  VORA_FEATURELINE_CANNOT_OPEN = -13,       // the polyline cannot be opened
  VORA_FEATURELINE_ALREADY_FEATURELINE = -14,
  VORA_FEATURELINE_NOT_SIMPLE_3DPOLY = -15,
  VORA_FEATURELINE_INDEX_OUT_OF_RANGE = -16,
  VORA_FEATURELINE_SELECTION_INCOMPLETE = -17,
  VORA_FEATURELINE_FALSE = -100,            // the operation answered false, or a feature-line error was caught
  VORA_FEATURELINE_BAD_DISTANCE = -200,     // a mid ordinate distance within +-1e-10
  VORA_FEATURELINE_HOST_ERROR = -1000,
  VORA_FEATURELINE_UNKNOWN_ERROR = -100000,
};

#endif
