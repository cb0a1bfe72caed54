// Result buffers, result-type codes and the acut utilities.
#ifndef VORA_ARX_ADS_H
#define VORA_ARX_ADS_H

#include "vora/arx/acarray.h"

#endif
