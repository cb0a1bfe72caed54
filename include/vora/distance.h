// Distances from points to lines, arcs and planes.
#ifndef VORA_DISTANCE_H
#define VORA_DISTANCE_H

#include "vora/arx.h"

#endif
