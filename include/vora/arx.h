// The host's umbrella header: the ObjectARX names that the module, and any
// other plug-in written for this host, is compiled against. Built against the
// real SDK, this header would include the SDK's own headers instead.
#ifndef VORA_ARX_H
#define VORA_ARX_H

#include "vora/arx/adesk.h"
#include "vora/arx/gegbl.h"
#include "vora/arx/gevec2d.h"
#include "vora/arx/gevec3d.h"
#include "vora/arx/acarray.h"
#include "vora/arx/gecurve2d.h"
#include "vora/arx/acadstrc.h"
#include "vora/arx/rx.h"
#include "vora/arx/ads.h"
#include "vora/arx/db.h"
#include "vora/arx/dbcolor.h"
#include "vora/arx/dbsymtb.h"
#include "vora/arx/dbdict.h"
#include "vora/arx/dbxrecrd.h"
#include "vora/arx/dbmaterial.h"
#include "vora/arx/dbsortents.h"
#include "vora/arx/dbents.h"
#include "vora/arx/aced.h"

#endif
