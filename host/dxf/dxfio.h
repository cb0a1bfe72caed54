// Loading a drawing database from ASCII DXF and saving it back, losslessly.
// AcDbDatabase::dxfIn and AcDbDatabase::dxfOut are defined on top of this.
#ifndef VORA_HOST_DXF_DXFIO_H
#define VORA_HOST_DXF_DXFIO_H

#include <string>

#include "vora/arx.h"

namespace vora_host::dxf {

// Why the last dxfIn or dxfOut of this thread failed, as one line:
// "PATH: line N: reason" (or "PATH: reason" when no line is concerned).
// Empty after a success.
VORA_HOST_API const std::string& lastErrorMessage();

// dxfIn from bytes in memory; name stands for the file in messages.
VORA_HOST_API Acad::ErrorStatus loadDxf(AcDbDatabase* db, std::string bytes, const std::string& name);

// dxfOut into memory.
VORA_HOST_API std::string saveDxfToString(AcDbDatabase* db);

// The DXF type of an object as it is written (e.g. "LINE", "VERTEX",
// "ACAD_PROXY_ENTITY" for a kept object of that type).
VORA_HOST_API std::string dxfTypeOf(const AcDbObject* obj);

// True for an object the loader made because the file lacks it (the block
// table of an R12 file, a layer that entities name but the file does not
// define). Such objects are never written.
VORA_HOST_API bool isSyntheticObject(const AcDbObject* obj);

// The $ACADVER of the drawing as loaded ("AC1009".."AC1032"), "AC1032" for a
// database that was not loaded from DXF.
VORA_HOST_API std::string drawingVersion(const AcDbDatabase* db);

}  // namespace vora_host::dxf

#endif
