// VoraCLib: the module's public interface.
//
// Every function exported by the module is declared by the headers included
// here, with C linkage. Geometry functions take points as three consecutive
// doubles x, y, z (the layout of AcGePoint3d); planar functions read x and y
// only and write z = 0.0 in every point they output. Outputs marked optional
// may be null; outputs that a call does not write keep what the caller had in
// them, so the result code tells which outputs are valid.
#ifndef VORA_VORA_H
#define VORA_VORA_H

#include "vora/arx.h"

// Some functions return host value types (AcGePoint3d, AcDbObjectId) by
// value from C linkage; clang warns about that in every caller, though their
// layout is that of a plain C struct.
#if defined(__clang__)
#  pragma clang diagnostic push
#  pragma clang diagnostic ignored "-Wreturn-type-c-linkage"
#endif

#include "vora/geometry.h"
#include "vora/distance.h"
#include "vora/intersect.h"
#include "vora/plane.h"
#include "vora/polyline.h"
#include "vora/polygon.h"
#include "vora/featureline.h"
#include "vora/database.h"

#if defined(__clang__)
#  pragma clang diagnostic pop
#endif

#endif
