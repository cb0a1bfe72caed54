// Planar intersections of lines, segments, circles and arcs.
#ifndef VORA_INTERSECT_H
#define VORA_INTERSECT_H

#include "vora/arx.h"

#endif
