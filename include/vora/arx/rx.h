// Run-time classes, the system registry and application messages.
#ifndef VORA_ARX_RX_H
#define VORA_ARX_RX_H

#include "vora/arx/acarray.h"

#endif
