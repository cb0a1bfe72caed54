// Drawing utilities and the key/value stores.
#ifndef VORA_DATABASE_H
#define VORA_DATABASE_H

#include "vora/arx.h"

#endif
