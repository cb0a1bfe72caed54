// The drawing database: status codes, ids, handles, objects, open and close.
#ifndef VORA_ARX_DB_H
#define VORA_ARX_DB_H

#include "vora/arx/acarray.h"

#endif
