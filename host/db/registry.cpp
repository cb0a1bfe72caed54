#include "host/db/internal.h"
#include "host/rx/rxinternal.h"
#include "vora/arx/dbmaterial.h"
#include "vora/arx/dbxrecrd.h"

namespace vora_host {

void registerHostClasses() {
  newAcRxClass(L"AcRxObject", nullptr);
  newAcRxClass(L"AcRxClass", L"AcRxObject");
  newAcRxClass(L"AcRxDictionary", L"AcRxObject");
  AcDbObject::rxInit();
  AcDbDatabase::rxInit();
  AcDbSymbolTable::rxInit();
  AcDbBlockTable::rxInit();
  AcDbLayerTable::rxInit();
  AcDbLinetypeTable::rxInit();
  AcDbRegAppTable::rxInit();
  AcDbTextStyleTable::rxInit();
  AcDbDimStyleTable::rxInit();
  AcDbViewportTable::rxInit();
  AcDbViewTable::rxInit();
  AcDbUCSTable::rxInit();
  AcDbSymbolTableRecord::rxInit();
  AcDbBlockTableRecord::rxInit();
  AcDbLayerTableRecord::rxInit();
  AcDbLinetypeTableRecord::rxInit();
  AcDbRegAppTableRecord::rxInit();
  AcDbTextStyleTableRecord::rxInit();
  AcDbDimStyleTableRecord::rxInit();
  AcDbViewportTableRecord::rxInit();
  AcDbViewTableRecord::rxInit();
  AcDbUCSTableRecord::rxInit();
  AcDbDictionary::rxInit();
  AcDbXrecord::rxInit();
  AcDbMaterial::rxInit();
  AcDbSortentsTable::rxInit();
  AcDbEntity::rxInit();
  AcDbCurve::rxInit();
  AcDbLine::rxInit();
  AcDbCircle::rxInit();
  AcDbArc::rxInit();
  AcDbPolyline::rxInit();
  AcDbVertex::rxInit();
  AcDb2dVertex::rxInit();
  AcDb3dPolylineVertex::rxInit();
  AcDbSequenceEnd::rxInit();
  AcDb2dPolyline::rxInit();
  AcDb3dPolyline::rxInit();
  AcDbFace::rxInit();
  AcDbBlockBegin::rxInit();
  AcDbBlockEnd::rxInit();
}

}  // namespace vora_host
