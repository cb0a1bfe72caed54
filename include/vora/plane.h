// Planes and triangles: sections, intersections, point-in-triangle.
#ifndef VORA_PLANE_H
#define VORA_PLANE_H

#include "vora/arx.h"

#endif
