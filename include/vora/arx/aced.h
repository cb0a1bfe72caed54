// Editor services the module calls. The host has no screen: display requests
// are counted (vorahost.h) so tools and tests can see that they were made.
#ifndef VORA_ARX_ACED_H
#define VORA_ARX_ACED_H

#include "vora/export.h"

// Brings the display up to date with the drawing (after changes that the
// editor would otherwise show only at the next regeneration, such as a new
// draw order).
VORA_HOST_API void acedUpdateDisplay();

#endif
