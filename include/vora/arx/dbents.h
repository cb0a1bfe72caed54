// Entities of the drawing database.
//
// Setters that return nothing change a database-resident entity only while
// it is open for write; otherwise they change nothing and the refusal is
// counted (vorahost::writeViolations). Setters that return a status answer
// eNotOpenForWrite instead.
#ifndef VORA_ARX_DBENTS_H
#define VORA_ARX_DBENTS_H

#include <vector>

#include "vora/arx/db.h"
#include "vora/arx/dbcolor.h"

class AcDbObjectIterator;
class AcDbSequenceEnd;

class VORA_HOST_API AcDbEntity : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbEntity);
  ~AcDbEntity() override;

  AcDbObjectId blockId() const { return ownerId(); }

  // Names are looked up in the entity's database, or in the working database
  // for an entity not yet in one (eKeyNotFound when missing, eNoDatabase
  // when there is neither). The name getters return a copy that the caller
  // releases with acutDelString; null when the property is unset.
  ACHAR* layer() const;
  AcDbObjectId layerId() const { return mLayer; }
  Acad::ErrorStatus setLayer(const ACHAR* newVal, Adesk::Boolean doSubents = true, bool allowHiddenLayer = false);
  Acad::ErrorStatus setLayer(AcDbObjectId newVal, Adesk::Boolean doSubents = true, bool allowHiddenLayer = false);

  AcCmColor color() const;
  Acad::ErrorStatus setColor(const AcCmColor& color, Adesk::Boolean doSubents = true);
  Adesk::UInt16 colorIndex() const { return mColorIndex; }
  // 0 by block, 1-255 an index colour, 256 by layer (eInvalidInput above).
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 color, Adesk::Boolean doSubents = true);

  ACHAR* linetype() const;
  AcDbObjectId linetypeId() const { return mLinetype; }
  Acad::ErrorStatus setLinetype(const ACHAR* newVal, Adesk::Boolean doSubents = true);
  Acad::ErrorStatus setLinetype(AcDbObjectId newVal, Adesk::Boolean doSubents = true);

  ACHAR* material() const;
  AcDbObjectId materialId() const { return mMaterial; }
  Acad::ErrorStatus setMaterial(const ACHAR* newVal, Adesk::Boolean doSubents = true);
  Acad::ErrorStatus setMaterial(AcDbObjectId newVal, Adesk::Boolean doSubents = true);

  double linetypeScale() const { return mLinetypeScale; }
  Acad::ErrorStatus setLinetypeScale(double newval, Adesk::Boolean doSubents = true);
  AcDb::LineWeight lineWeight() const { return mLineWeight; }
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight newVal, Adesk::Boolean doSubents = true);
  AcDb::Visibility visibility() const { return mVisibility; }
  Acad::ErrorStatus setVisibility(AcDb::Visibility newVal, Adesk::Boolean doSubents = true);

  // Copies layer, colour, linetype, linetype scale, line weight, material and
  // visibility from pEntity.
  Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* pEntity, Adesk::Boolean doSubents = true);
  // Takes the current layer, colour, linetype, scale, weight and material of
  // pDb (the entity's own database, or the working database, when null).
  void setDatabaseDefaults();
  void setDatabaseDefaults(AcDbDatabase* pDb);
  // Marks the entity's geometry changed (its modified flag here).
  void recordGraphicsModified(Adesk::Boolean setModifiedFlag = true);

protected:
  AcDbEntity();
  void onAddedToDatabase(AcDbDatabase* db) override;
  // Hands the entity's properties on to its sub-entities (polyline vertices).
  virtual void propagateProperties();

private:
  friend struct vora_host::Access;
  AcDbDatabase* lookupDatabase() const;

  AcDbObjectId mLayer;
  AcDbObjectId mLinetype;
  AcDbObjectId mMaterial;
  double mLinetypeScale = 1.0;
  AcDb::LineWeight mLineWeight = AcDb::kLnWtByLayer;
  Adesk::UInt16 mColorIndex = 256;
  AcDb::Visibility mVisibility = AcDb::kVisible;
};

class VORA_HOST_API AcDbCurve : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbCurve);
  ~AcDbCurve() override;
  virtual bool isClosed() const { return false; }

protected:
  AcDbCurve();
};

class VORA_HOST_API AcDbLine : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbLine);
  AcDbLine();
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end);
  ~AcDbLine() override;

  AcGePoint3d startPoint() const { return mStart; }
  Acad::ErrorStatus setStartPoint(const AcGePoint3d& pt);
  AcGePoint3d endPoint() const { return mEnd; }
  Acad::ErrorStatus setEndPoint(const AcGePoint3d& pt);
  double thickness() const { return mThickness; }
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const { return mNormal; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);

private:
  AcGePoint3d mStart;
  AcGePoint3d mEnd;
  AcGeVector3d mNormal{0.0, 0.0, 1.0};
  double mThickness = 0.0;
};

class VORA_HOST_API AcDbCircle : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbCircle);
  AcDbCircle();
  AcDbCircle(const AcGePoint3d& cntr, const AcGeVector3d& nrm, double radius);
  ~AcDbCircle() override;
  bool isClosed() const override { return true; }

  AcGePoint3d center() const { return mCenter; }
  Acad::ErrorStatus setCenter(const AcGePoint3d& pt);
  double radius() const { return mRadius; }
  Acad::ErrorStatus setRadius(double r);
  AcGeVector3d normal() const { return mNormal; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double thickness() const { return mThickness; }
  Acad::ErrorStatus setThickness(double t);

private:
  AcGePoint3d mCenter;
  AcGeVector3d mNormal{0.0, 0.0, 1.0};
  double mRadius = 0.0;
  double mThickness = 0.0;
};

class VORA_HOST_API AcDbArc : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbArc);
  AcDbArc();
  AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle);
  AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle, double endAngle);
  ~AcDbArc() override;

  AcGePoint3d center() const { return mCenter; }
  Acad::ErrorStatus setCenter(const AcGePoint3d& pt);
  double radius() const { return mRadius; }
  Acad::ErrorStatus setRadius(double r);
  double startAngle() const { return mStartAngle; }
  Acad::ErrorStatus setStartAngle(double angle);
  double endAngle() const { return mEndAngle; }
  Acad::ErrorStatus setEndAngle(double angle);
  AcGeVector3d normal() const { return mNormal; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double thickness() const { return mThickness; }
  Acad::ErrorStatus setThickness(double t);

private:
  AcGePoint3d mCenter;
  AcGeVector3d mNormal{0.0, 0.0, 1.0};
  double mRadius = 0.0;
  double mStartAngle = 0.0;
  double mEndAngle = 0.0;
  double mThickness = 0.0;
};

// The light-weight polyline (LWPOLYLINE): 2D vertices in the plane of its
// normal at its elevation, with a bulge and start/end widths per vertex.
class VORA_HOST_API AcDbPolyline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbPolyline);
  AcDbPolyline();
  explicit AcDbPolyline(unsigned int num_verts);
  ~AcDbPolyline() override;

  unsigned int numVerts() const { return static_cast<unsigned int>(mVerts.size()); }
  // Inserts before index (index == numVerts appends); eInvalidIndex beyond.
  // A negative width means 0.
  Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& pt, double bulge = 0.0,
                                double startWidth = -1.0, double endWidth = -1.0, Adesk::Int32 vertexIdentifier = 0);
  Acad::ErrorStatus removeVertexAt(unsigned int index);
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& pt) const;
  // The vertex in world coordinates: (x, y, elevation) in the plane of the
  // normal.
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& pt) const;
  Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& pt);
  Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
  Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
  Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
  Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
  Acad::ErrorStatus getVertexIdentifierAt(unsigned int index, Adesk::Int32& id) const;
  Acad::ErrorStatus setVertexIdentifierAt(unsigned int index, Adesk::Int32 id);
  // eInvalidInput when the widths are not all the same.
  Acad::ErrorStatus getConstantWidth(double& width) const;
  Acad::ErrorStatus setConstantWidth(double width);
  bool hasWidth() const;
  bool hasBulges() const;
  bool isOnlyLines() const { return !hasBulges(); }

  bool isClosed() const override { return mClosed; }
  void setClosed(Adesk::Boolean closed);
  bool hasPlinegen() const { return mPlinegen; }
  void setPlinegen(Adesk::Boolean plinegen);
  double elevation() const { return mElevation; }
  void setElevation(double elev);
  AcGeVector3d normal() const { return mNormal; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double thickness() const { return mThickness; }
  Acad::ErrorStatus setThickness(double t);

private:
  struct Vertex {
    AcGePoint2d pt;
    double bulge = 0.0;
    double startWidth = 0.0;
    double endWidth = 0.0;
    Adesk::Int32 id = 0;
  };
  std::vector<Vertex> mVerts;
  AcGeVector3d mNormal{0.0, 0.0, 1.0};
  double mElevation = 0.0;
  double mThickness = 0.0;
  bool mClosed = false;
  bool mPlinegen = false;
};

class VORA_HOST_API AcDbVertex : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbVertex);
  ~AcDbVertex() override;

protected:
  AcDbVertex();
};

class VORA_HOST_API AcDb2dVertex : public AcDbVertex {
public:
  ACRX_DECLARE_MEMBERS(AcDb2dVertex);
  AcDb2dVertex();
  AcDb2dVertex(const AcGePoint3d& position, double bulge = 0.0, double startWidth = 0.0, double endWidth = 0.0,
               double tangent = 0.0, Adesk::Int32 vertexIdentifier = 0);
  ~AcDb2dVertex() override;

  AcDb::Vertex2dType vertexType() const { return mType; }
  // Host extension: the type a loaded vertex has.
  void setVertexType(AcDb::Vertex2dType type);
  // In the polyline's coordinate system.
  AcGePoint3d position() const { return mPosition; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& pt);
  double bulge() const { return mBulge; }
  Acad::ErrorStatus setBulge(double newVal);
  double startWidth() const { return mStartWidth; }
  Acad::ErrorStatus setStartWidth(double newVal);
  double endWidth() const { return mEndWidth; }
  Acad::ErrorStatus setEndWidth(double newVal);
  bool isTangentUsed() const { return mTangentUsed; }
  void useTangent();
  void ignoreTangent();
  double tangent() const { return mTangent; }
  Acad::ErrorStatus setTangent(double newVal);
  Adesk::Int32 vertexIdentifier() const { return mIdentifier; }
  Acad::ErrorStatus setVertexIdentifier(Adesk::Int32 id);

private:
  AcGePoint3d mPosition;
  double mBulge = 0.0;
  double mStartWidth = 0.0;
  double mEndWidth = 0.0;
  double mTangent = 0.0;
  Adesk::Int32 mIdentifier = 0;
  AcDb::Vertex2dType mType = AcDb::k2dVertex;
  bool mTangentUsed = false;
};

class VORA_HOST_API AcDb3dPolylineVertex : public AcDbVertex {
public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);
  AcDb3dPolylineVertex();
  explicit AcDb3dPolylineVertex(const AcGePoint3d& pt);
  ~AcDb3dPolylineVertex() override;

  AcDb::Vertex3dType vertexType() const { return mType; }
  // Host extension: the type a loaded vertex has.
  void setVertexType(AcDb::Vertex3dType type);
  AcGePoint3d position() const { return mPosition; }
  Acad::ErrorStatus setPosition(const AcGePoint3d& pt);

private:
  AcGePoint3d mPosition;
  AcDb::Vertex3dType mType = AcDb::k3dSimpleVertex;
};

class VORA_HOST_API AcDbSequenceEnd : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbSequenceEnd);
  AcDbSequenceEnd();
  ~AcDbSequenceEnd() override;
};

// Iterates the vertices of a polyline in order, skipping erased ones. Made
// by vertexIterator(); the caller deletes it.
class VORA_HOST_API AcDbObjectIterator {
public:
  ~AcDbObjectIterator();
  bool done() const;
  void step(bool backwards = false, bool skipDeleted = true);
  void start(bool atEnd = false);
  AcDbObjectId objectId() const;
  // For a polyline not in a database: its vertex objects themselves.
  AcDbEntity* entity();
  bool seek(AcDbObjectId id);

private:
  friend class AcDb2dPolyline;
  friend class AcDb3dPolyline;
  AcDbObjectIterator(std::vector<AcDbObjectId> ids, std::vector<AcDbEntity*> pending);
  void skip(bool backwards);
  std::vector<AcDbObjectId> mIds;
  std::vector<AcDbEntity*> mPending;
  long mPos = 0;
};

class VORA_HOST_API AcDb2dPolyline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDb2dPolyline);
  AcDb2dPolyline();
  AcDb2dPolyline(AcDb::Poly2dType type, AcGePoint3dArray& vertices, double elevation = 0.0,
                 Adesk::Boolean closed = Adesk::kFalse, double defStartWidth = 0.0, double defEndWidth = 0.0,
                 AcGeDoubleArray* bulges = nullptr);
  ~AcDb2dPolyline() override;

  AcDb::Poly2dType polyType() const { return mType; }
  Acad::ErrorStatus setPolyType(AcDb::Poly2dType type);
  bool isClosed() const override { return mClosed; }
  void setClosed(Adesk::Boolean closed);
  void makeClosed() { setClosed(true); }
  void makeOpen() { setClosed(false); }
  double elevation() const { return mElevation; }
  void setElevation(double elev);
  AcGeVector3d normal() const { return mNormal; }
  Acad::ErrorStatus setNormal(const AcGeVector3d& n);
  double thickness() const { return mThickness; }
  Acad::ErrorStatus setThickness(double t);
  double defaultStartWidth() const { return mDefStart; }
  Acad::ErrorStatus setDefaultStartWidth(double w);
  double defaultEndWidth() const { return mDefEnd; }
  Acad::ErrorStatus setDefaultEndWidth(double w);
  bool isLinetypeGenerationOn() const { return mPlinegen; }
  Acad::ErrorStatus setLinetypeGenerationOn();
  Acad::ErrorStatus setLinetypeGenerationOff();

  // Appends a new vertex after the last one; in a database the vertex is
  // added to it and stays open for write. eNotOpenForWrite,
  // eNullObjectPointer, eAlreadyInDb.
  Acad::ErrorStatus appendVertex(AcDb2dVertex* pVertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId& objId, AcDb2dVertex* pVertex);
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pEnd, AcDb::OpenMode mode);

private:
  friend struct vora_host::Access;
  void onAddedToDatabase(AcDbDatabase* db) override;
  void propagateProperties() override;
  std::vector<AcDbObjectId> mVertices;
  std::vector<AcDbEntity*> mPending;
  AcDbObjectId mSeqEnd;
  AcGeVector3d mNormal{0.0, 0.0, 1.0};
  double mElevation = 0.0;
  double mThickness = 0.0;
  double mDefStart = 0.0;
  double mDefEnd = 0.0;
  AcDb::Poly2dType mType = AcDb::k2dSimplePoly;
  bool mClosed = false;
  bool mPlinegen = false;
};

class VORA_HOST_API AcDb3dPolyline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolyline);
  AcDb3dPolyline();
  AcDb3dPolyline(AcDb::Poly3dType type, AcGePoint3dArray& vertices, Adesk::Boolean closed = Adesk::kFalse);
  ~AcDb3dPolyline() override;

  AcDb::Poly3dType polyType() const { return mType; }
  Acad::ErrorStatus setPolyType(AcDb::Poly3dType type);
  bool isClosed() const override { return mClosed; }
  void setClosed(Adesk::Boolean closed);
  void makeClosed() { setClosed(true); }
  void makeOpen() { setClosed(false); }

  // As AcDb2dPolyline::appendVertex.
  Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex* pVertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId& objId, AcDb3dPolylineVertex* pVertex);
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openSequenceEnd(AcDbSequenceEnd*& pEnd, AcDb::OpenMode mode);

private:
  friend struct vora_host::Access;
  void onAddedToDatabase(AcDbDatabase* db) override;
  void propagateProperties() override;
  std::vector<AcDbObjectId> mVertices;
  std::vector<AcDbEntity*> mPending;
  AcDbObjectId mSeqEnd;
  AcDb::Poly3dType mType = AcDb::k3dSimplePoly;
  bool mClosed = false;
};

// A 3D face: three or four corners, each edge visible or not.
class VORA_HOST_API AcDbFace : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbFace);
  AcDbFace();
  AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2, const AcGePoint3d& pt3,
           Adesk::Boolean e0vis = Adesk::kTrue, Adesk::Boolean e1vis = Adesk::kTrue,
           Adesk::Boolean e2vis = Adesk::kTrue, Adesk::Boolean e3vis = Adesk::kTrue);
  // A triangle: the fourth corner is the third.
  AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2,
           Adesk::Boolean e0vis = Adesk::kTrue, Adesk::Boolean e1vis = Adesk::kTrue,
           Adesk::Boolean e2vis = Adesk::kTrue, Adesk::Boolean e3vis = Adesk::kTrue);
  ~AcDbFace() override;

  // eInvalidIndex beyond corner 3.
  Acad::ErrorStatus getVertexAt(Adesk::UInt16 index, AcGePoint3d& pt) const;
  Acad::ErrorStatus setVertexAt(Adesk::UInt16 index, const AcGePoint3d& pt);
  Acad::ErrorStatus isEdgeVisibleAt(Adesk::UInt16 index, Adesk::Boolean& visible) const;
  Acad::ErrorStatus makeEdgeVisibleAt(Adesk::UInt16 index);
  Acad::ErrorStatus makeEdgeInvisibleAt(Adesk::UInt16 index);

private:
  AcGePoint3d mPts[4];
  bool mVisible[4] = {true, true, true, true};
};

// The BLOCK and ENDBLK entities that open and close a block's definition.
class VORA_HOST_API AcDbBlockBegin : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbBlockBegin);
  AcDbBlockBegin();
  ~AcDbBlockBegin() override;
};

class VORA_HOST_API AcDbBlockEnd : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbBlockEnd);
  AcDbBlockEnd();
  ~AcDbBlockEnd() override;
};

#endif
