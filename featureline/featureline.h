// The opened model of one feature line: its points and stations, rebuilt
// from the 3D polyline's vertices, and the open host objects it works on.
#ifndef VORA_FEATURELINE_FEATURELINE_H
#define VORA_FEATURELINE_FEATURELINE_H

#include <cstddef>
#include <memory>
#include <vector>

#include "featureline/errors.h"
#include "featureline/point.h"
#include "vora/arx.h"

// The registered application whose extended data marks a feature line.
inline constexpr const ACHAR* kFeaturelineAppName = ACRX_T("VORA_XPLINE_APPN");

// The process-wide mid ordinate distance of feature lines without a stored
// one; any value is accepted.
double defaultMidOrdinateDistance();
void setDefaultMidOrdinateDistance(double distance);

class Featureline {
public:
  // Opens the polyline in openMode (any failure throws eDataError), reads its
  // mid ordinate distance and builds the model. Throws eNonCompatible3dPoly
  // when fewer than 2 vertices open. Objects opened before a failure are
  // closed again.
  Featureline(AcDbObjectId polylineId, AcDb::OpenMode openMode);
  // Works on a polyline the caller opened: null throws eDataError, a poly
  // type other than simple eNonCompatible3dPoly. From then on the model owns
  // the polyline's opening as it owns its own: release() closes it too.
  Featureline(AcDb3dPolyline* polyline, AcDb::OpenMode openMode);
  // Releases what release() has not.
  ~Featureline();
  Featureline(const Featureline&) = delete;
  Featureline& operator=(const Featureline&) = delete;

  // Closes the polyline (when it is in a database) and every vertex object;
  // throws the first failing close status, after closing the rest.
  void release();

  std::size_t numPoints() const { return mPoints.size(); }
  const std::vector<FeaturelinePoint>& points() const { return mPoints; }
  std::vector<FeaturelinePoint> copyPoints() const { return mPoints; }
  const std::vector<double>& stations() const { return mStations; }
  // Throws eOutOfBounds when i is not below the number of stations.
  double station(std::size_t i) const;
  // The last station; 0 without points, eOutOfBounds with fewer stations than points.
  double length() const;
  double midOrdinateDistance() const { return mMidOrdinateDistance; }
  double maxArcStepAngle() const { return mMaxArcStepAngle; }
  AcDbObjectId polylineId() const { return mPolylineId; }
  AcDb3dPolyline* polyline() const { return mPolyline; }
  const AcGeTol& tolerance() const { return mTolerance; }
  std::size_t numVertexObjects() const { return mVertices.size(); }

  // Prints the model on the command line.
  void dump() const;

  // Persistence.
  bool setMidOrdinateDistance(double distance, bool recalculate);

  // Writing the model back to the polyline's vertices, then the stations.
  // The polyline must be open for write.
  void writeBack();
  // Upgrades the polyline to write when it is not; false when that fails.
  bool upgradeToWrite();

  // Editing. Indices out of range throw eOutOfBounds in canMove, movePoint
  // and setPointPosition; the insert and erase operations answer false.
  std::size_t findNeighbour(std::size_t i, std::uint32_t type, bool backwards) const;
  bool segmentIsValid(const FeaturelinePoint& a, const FeaturelinePoint& b) const;
  bool canMove(std::size_t i, const AcGeVector3d& d) const;
  bool movePoint(std::size_t i, const AcGeVector3d& d);
  bool setPointPosition(std::size_t i, const AcGePoint3d& p);
  bool insertFeaturePoint(const AcGePoint3d& p, std::size_t k, double bulge);
  bool insertFeaturePointAtStation(const AcGePoint3d& p, double station, double bulge);
  bool insertElevationPoint(double station, double elevation);
  bool eraseElevationPoint(std::size_t i);
  bool eraseFeaturePoint(std::size_t i);
  // Sorts the indices ascending and sets each listed point to the elevation
  // interpolated by station between the first (z0) and the last (z1).
  bool interpolate(std::vector<int>& indices, double z0, double z1);

private:
  void load(AcDb::OpenMode openMode);
  void loadVertices(AcDb::OpenMode openMode);
  void rebuild();
  bool commit();
  void closeAll(bool throwOnFailure);

  std::vector<FeaturelinePoint> mPoints;
  std::vector<double> mStations;
  std::vector<AcDb3dPolylineVertex*> mVertices;
  AcDbObjectId mPolylineId;
  AcDb3dPolyline* mPolyline = nullptr;
  double mMaxArcStepAngle;
  double mMidOrdinateDistance;
  AcGeTol mTolerance;
  bool mReleased = false;
};

// Reads the marker: false for a null polyline or one without it; otherwise
// stores the distance (when outDistance is given and the marker holds one).
bool readFeaturelineXdata(const AcDbObject* polyline, double* outDistance);
// Writes the marker, upgrading the polyline to write first; false for null.
bool writeFeaturelineXdata(AcDbObject* polyline, double distance);
// Exactly an AcDb3dPolyline (no derived class), simple, marked, with at
// least 2 vertices.
bool isFeatureline(const AcDbObject* object);

// The model of polylineId on the heap, for the caller. A null id throws
// VORA_FEATURELINE_NULL_ID; any failure while opening is first reported on the
// command line and then thrown as VORA_FEATURELINE_OPEN_FAILED.
std::unique_ptr<Featureline> openFeatureline(AcDbObjectId polylineId, AcDb::OpenMode openMode);

#endif
