// Feature lines: the exported C API.
#ifndef VORA_FEATURELINE_H
#define VORA_FEATURELINE_H

#include "vora/arx.h"

#endif
