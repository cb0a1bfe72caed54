// Entities of the drawing database.
#ifndef VORA_ARX_DBENTS_H
#define VORA_ARX_DBENTS_H

#include "vora/arx/acarray.h"

#endif
