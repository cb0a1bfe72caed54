// Feature lines: the exported C API.
//
// A feature line is a simple 3D polyline of the drawing that carries the
// extended data of the application "VORA_XPLINE_APPN" (its mid ordinate
// distance). Its vertices are read as a model of feature points (vertices of
// the plan alignment, possibly joined by arcs) and elevation points (grade
// breaks inside arcs), with a station per point; edits re-tessellate the arcs
// into vertices.
#ifndef VORA_FEATURELINE_H
#define VORA_FEATURELINE_H

#include "vora/arx.h"

// Result codes of the feature-line functions. Every function returns 0 on
// success. When an error is caught, a message is printed on the command line
// and the function returns the thrown code, -100 for a feature-line error,
// -1000 for a host error status or -100000 for anything else.
enum vora_featureline_result_enum : int {
  VORA_FEATURELINE_OK = 0,
  VORA_FEATURELINE_UPDATE_FAILED = -1,      // some point updates failed (after a roll-back where stated)
  VORA_FEATURELINE_ERASE_FAILED = -2,       // some erase failed
  VORA_FEATURELINE_NOT_ELEVATION_POINT = -3,
  VORA_FEATURELINE_INSERT_REFUSED = -4,
  VORA_FEATURELINE_NULL_ID = -10,           // no polyline id was given
  VORA_FEATURELINE_OPEN_FAILED = -11,       // the feature line could not be opened (the cause was printed)
  VORA_FEATURELINE_NO_POINTS = -12,
  VORA_FEATURELINE_CANNOT_OPEN = -13,       // the polyline cannot be opened
  VORA_FEATURELINE_ALREADY_FEATURELINE = -14,
  VORA_FEATURELINE_NOT_SIMPLE_3DPOLY = -15,
  VORA_FEATURELINE_INDEX_OUT_OF_RANGE = -16,
  VORA_FEATURELINE_SELECTION_INCOMPLETE = -17,
  VORA_FEATURELINE_FALSE = -100,            // the operation answered false, or a feature-line error was caught
  VORA_FEATURELINE_BAD_DISTANCE = -200,     // a mid ordinate distance within +-1e-10
  VORA_FEATURELINE_HOST_ERROR = -1000,
  VORA_FEATURELINE_UNKNOWN_ERROR = -100000,
};

// Ids are the session's AcDbObjectId values, passed by value. Functions that
// take an id open the feature line themselves (for read in the queries, for
// write in the edits) and close the polyline and its vertices before they
// return, whatever happened; a null id prints the error message and gives
// VORA_FEATURELINE_NULL_ID. Arrays they return are allocated with malloc and
// released by the caller with vora_free.

// Releases an array returned by a feature-line function (null is accepted).
VORA_API void vora_free(void* p);

// Makes a plain 3D polyline a feature line by writing its marker with the
// given mid ordinate distance (a negative one is stored as given). Neither
// the poly type nor the vertices are looked at. -10 for a null id (without a
// message), -13 when it cannot be opened for write as a 3D polyline, -14 when
// it is a feature line already, -200 for a distance within +-1e-10.
VORA_API int vora_featureline_convert_to(AcDbObjectId polylineId, double midOrdinateDistance);

// Erases the elevation points at the given indices (copied and sorted; the
// caller's array is left alone), from the largest index down. -16 when an
// index is not below the number of points, -3 when one denotes a feature
// point (nothing is erased in both cases), -2 when an erase answered false
// (the others are still erased).
VORA_API int vora_featureline_erase_elevpt(AcDbObjectId polylineId, const int* indices, int count);

// Erases the points at the given indices as vora_featureline_erase_elevpt,
// feature points included: a feature point goes with the grade breaks of the
// arc it starts; the last one leaves the line ending straight at the feature
// point before it. -16, -2 as above.
VORA_API int vora_featureline_erase_feature_point(AcDbObjectId polylineId, const int* indices, int count);

// Every point in order: x, y, z and station into *coords (4 doubles a point,
// *coordCount = 4 * points) and its type (0 feature point, 1 elevation point)
// into *types (*typeCount = points). Both arrays are for vora_free; they are
// null when the line has no points.
VORA_API int vora_featureline_get_elevpts(AcDbObjectId polylineId, double** coords, int* coordCount, int** types,
                                          int* typeCount);

// The feature line's mid ordinate distance: the stored one, or the default in
// force when it was opened.
VORA_API int vora_featureline_get_mid_ordinate_dist(AcDbObjectId polylineId, double* distance);

// The process-wide default mid ordinate distance (0.015 at load). The setter
// takes any value; both always return 0.
VORA_API int vora_featureline_get_default_mid_ordinate_dist(double* distance);
VORA_API int vora_featureline_set_default_mid_ordinate_dist(double distance);

// Inserts an elevation point at a station: on a straight segment it becomes
// a feature point of its own; inside an arc an elevation point on the arc.
// -4 when refused (a negative station or one past the end).
VORA_API int vora_featureline_insert_elevpt(AcDbObjectId polylineId, double station, double elevation);

// Inserts the feature point (x, y, z) with the bulge of the segment it starts
// before the first point whose station is not below the given one. -4 when
// refused (a collapsing segment, a negative station, a bulge at the end).
VORA_API int vora_featureline_insert_feature_point(AcDbObjectId polylineId, double x, double y, double z,
                                                   double station, double bulge);

// Sorts the caller's indices (count >= 1) in place and gives each listed
// point the elevation interpolated by station from z0 at the first to z1 at
// the last. -1 when some point could not be updated, -12 without points.
// Every index must be below the number of points.
VORA_API int vora_featureline_interpolate(AcDbObjectId polylineId, double z0, double z1, int* indices, int count);

// Sets the elevation of each listed point in turn. -16 (nothing changed)
// when an index is not below the number of points; -1 when an update failed,
// after the points already changed were set back; -12 without points.
VORA_API int vora_featureline_set_elevpt(AcDbObjectId polylineId, const int* indices, const double* elevations,
                                         int count);

// Stores a new mid ordinate distance and, with recalculate, re-tessellates.
// -100 when refused (NaN, or not above the line's point tolerance).
VORA_API int vora_featureline_set_mid_ordinate_dist(AcDbObjectId polylineId, unsigned char recalculate,
                                                    double distance);

// ---------------------------------------------------------------------------
// Diagnostics for tools and other modules
// ---------------------------------------------------------------------------

// One point of a feature line's model: its position, its station, the bulge
// of the segment it starts (feature points only), its plan distance along the
// enclosing arc (elevation points only) and its type (0 feature point, 1
// elevation point).
typedef struct vora_featureline_point_info {
  double x, y, z, station, bulge, arcDistance;
  int type;
} vora_featureline_point_info;

// Opens the feature line of id for read, copies its model out and closes it
// again; nothing is printed. On 0, *points is an array of *count points for
// vora_free (null when the model has no points) and *midOrdinateDistance the
// line's mid ordinate distance. Otherwise the outputs are left alone, except
// *errorName for the last three codes:
//   1       the object carries no feature-line marker;
//   -10     null id;
//   -100    the model could not be built: *errorName is the feature-line
//           error's name ("eNonCompatible3dPoly", ...);
//   -1000   a host error: *errorName is the status's name ("eWasErased", ...);
//   -100000 anything else: *errorName is "unknown error".
// Error names are static text; errorName may be null. The polyline and its
// vertices are closed again in every case.
VORA_API int vora_featureline_get_model(AcDbObjectId id, vora_featureline_point_info** points, int* count,
                                        double* midOrdinateDistance, const char** errorName);

// Prints the model of the feature line of id on the command line: the number
// of points and the mid ordinate distance, then one line per point with its
// position, type, station, bulge, and the length and grade of the segment to
// the next point. Errors are reported as by the other feature-line functions
// (message printed, code returned); 0 on success.
VORA_API int vora_featureline_dump(AcDbObjectId id);

#endif
