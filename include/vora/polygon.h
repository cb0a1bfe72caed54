// Polygons: properties, bounding boxes, simplification, boolean operations.
#ifndef VORA_POLYGON_H
#define VORA_POLYGON_H

#include "vora/arx.h"

#endif
