// Kernel conventions, tolerances and the smallest predicates.
#ifndef VORA_GEOMETRY_H
#define VORA_GEOMETRY_H

#include "vora/arx.h"

// Sets the two process-wide tolerances read by every kernel and polyline
// function: tolValue bounds computed quantities (cross products,
// determinants, zero bulges), tolPoint bounds lengths and coordinate
// differences. Both start at 1e-07. Values are stored as given, without
// validation: a zero tolerance makes every strict below-tolerance test false.
VORA_API void vora_initeps(double tolValue, double tolPoint);

// Signed doubled area of the triangle a, b, c in plan: positive when c lies
// to the left of a->b (counter-clockwise turn), negative to the right, zero
// when collinear. No tolerance.
VORA_API double vora_orientation2D(const double* a, const double* b, const double* c);

// 1 if a, b, c are collinear in space or two of them coincide, else 0. Points
// coincide when every coordinate differs by less than tolPoint; collinearity
// compares each component of the unnormalised cross product (b-a) x (c-a)
// with tolValue, so the test depends on the scale of the coordinates.
VORA_API int vora_collin3D(const double* a, const double* b, const double* c);

// Converts an angle or slope between units: 0 run per unit rise (1 in n),
// 1 ratio rise/run, 2 percent, 3 degrees, 4 radians (any other code is read
// as radians). Goes through radians even when both codes are equal. For unit
// 0 a value or angle within tolValue of zero gives 0.0.
VORA_API double vora_convertAngle(double value, int fromUnit, int toUnit);

// Elevation at a plan station along the polyline through points (stations
// are the running sum of plan segment lengths from the first point),
// interpolated linearly on the segment that ends at or beyond the station.
// At or before 0: first z; beyond the end: last z; empty array: 0.0.
// Segments of no plan length are passed over.
VORA_API double vora_zpt(const AcGePoint3dArray* points, double station);

#endif
