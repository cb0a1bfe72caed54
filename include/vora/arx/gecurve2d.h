// Planar curves of the geometry library: lines, segments and circular arcs.
#ifndef VORA_ARX_GECURVE2D_H
#define VORA_ARX_GECURVE2D_H

#include "vora/arx/acarray.h"

#endif
