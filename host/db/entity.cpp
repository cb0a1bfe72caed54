#include "host/db/internal.h"
#include "vora/arx/dbmaterial.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)

AcDbEntity::AcDbEntity() = default;
AcDbEntity::~AcDbEntity() = default;

void AcDbEntity::propagateProperties() {}

AcDbDatabase* AcDbEntity::lookupDatabase() const {
  return database() != nullptr ? database() : acdbHostApplicationServices()->workingDatabase();
}

void AcDbEntity::onAddedToDatabase(AcDbDatabase* db) {
  // An entity that nobody gave properties takes the drawing's current ones.
  if (mLayer.isNull()) mLayer = db->clayer();
  if (mLinetype.isNull()) mLinetype = db->celtype();
  if (mMaterial.isNull()) mMaterial = db->cmaterial();
}

namespace {

ACHAR* recordName(AcDbObjectId id) {
  auto* rec = AcDbSymbolTableRecord::cast(vora_host::peek(id));
  if (rec == nullptr) return nullptr;
  ACHAR* out = nullptr;
  rec->getName(out);
  return out;
}

}  // namespace

ACHAR* AcDbEntity::layer() const { return recordName(mLayer); }
ACHAR* AcDbEntity::linetype() const { return recordName(mLinetype); }

ACHAR* AcDbEntity::material() const {
  auto* mat = AcDbMaterial::cast(vora_host::peek(mMaterial));
  if (mat == nullptr) return nullptr;
  ACHAR* out = nullptr;
  acutNewString(mat->name(), out);
  return out;
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* newVal, Adesk::Boolean doSubents, bool allowHiddenLayer) {
  AcDbDatabase* db = lookupDatabase();
  if (db == nullptr) return Acad::eNoDatabase;
  const AcDbObjectId id = vora_host::findRecord(db->layerTableId(), newVal);
  if (id.isNull()) return Acad::eKeyNotFound;
  return setLayer(id, doSubents, allowHiddenLayer);
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId newVal, Adesk::Boolean doSubents, bool) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (newVal.isNull()) return Acad::eNullObjectId;
  mLayer = newVal;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

AcCmColor AcDbEntity::color() const {
  AcCmColor c;
  c.setColorIndex(mColorIndex);
  return c;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, Adesk::Boolean doSubents) {
  return setColorIndex(color.colorIndex(), doSubents);
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 color, Adesk::Boolean doSubents) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (color > 256) return Acad::eInvalidInput;
  mColorIndex = color;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* newVal, Adesk::Boolean doSubents) {
  AcDbDatabase* db = lookupDatabase();
  if (db == nullptr) return Acad::eNoDatabase;
  const AcDbObjectId id = vora_host::findRecord(db->linetypeTableId(), newVal);
  if (id.isNull()) return Acad::eKeyNotFound;
  return setLinetype(id, doSubents);
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId newVal, Adesk::Boolean doSubents) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (newVal.isNull()) return Acad::eNullObjectId;
  mLinetype = newVal;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setMaterial(const ACHAR* newVal, Adesk::Boolean doSubents) {
  AcDbDatabase* db = lookupDatabase();
  if (db == nullptr) return Acad::eNoDatabase;
  const AcDbObjectId dict = db->materialDictionaryId();
  AcDbObjectId id;
  // Material entries are keyed by the material's name.
  auto* d = AcDbDictionary::cast(vora_host::peek(dict));
  if (d != nullptr) d->getAt(newVal, id);
  if (id.isNull()) return Acad::eKeyNotFound;
  return setMaterial(id, doSubents);
}

Acad::ErrorStatus AcDbEntity::setMaterial(AcDbObjectId newVal, Adesk::Boolean doSubents) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (newVal.isNull()) return Acad::eNullObjectId;
  mMaterial = newVal;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double newval, Adesk::Boolean doSubents) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  if (!(newval > 0.0)) return Acad::eInvalidInput;
  mLinetypeScale = newval;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight newVal, Adesk::Boolean doSubents) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mLineWeight = newVal;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility newVal, Adesk::Boolean doSubents) {
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mVisibility = newVal;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* pEntity, Adesk::Boolean doSubents) {
  if (pEntity == nullptr) return Acad::eNullEntityPointer;
  if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
  mLayer = pEntity->mLayer;
  mLinetype = pEntity->mLinetype;
  mMaterial = pEntity->mMaterial;
  mColorIndex = pEntity->mColorIndex;
  mLinetypeScale = pEntity->mLinetypeScale;
  mLineWeight = pEntity->mLineWeight;
  mVisibility = pEntity->mVisibility;
  setHostModified(true);
  if (doSubents) propagateProperties();
  return Acad::eOk;
}

void AcDbEntity::recordGraphicsModified(Adesk::Boolean setModifiedFlag) {
  if (!assertWriteEnabled()) return;
  if (setModifiedFlag) setHostModified(true);
}

void AcDbEntity::setDatabaseDefaults() { setDatabaseDefaults(nullptr); }

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* pDb) {
  AcDbDatabase* db = pDb != nullptr ? pDb : lookupDatabase();
  if (db == nullptr || !assertWriteEnabled()) return;
  mLayer = db->clayer();
  mLinetype = db->celtype();
  mMaterial = db->cmaterial();
  mColorIndex = db->cecolorIndex();
  mLinetypeScale = db->celtscale();
  mLineWeight = db->celweight();
  setHostModified(true);
  propagateProperties();
}

void vora_host::Access::copyProperties(AcDbEntity* to, const AcDbEntity* from) {
  to->mLayer = from->mLayer;
  to->mLinetype = from->mLinetype;
  to->mMaterial = from->mMaterial;
  to->mColorIndex = from->mColorIndex;
  to->mLinetypeScale = from->mLinetypeScale;
  to->mLineWeight = from->mLineWeight;
  to->mVisibility = from->mVisibility;
  to->setHostModified(true);
}

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

AcDbCurve::AcDbCurve() = default;
AcDbCurve::~AcDbCurve() = default;
