// Drawing utilities and the key/value stores.
//
// Every function here works on the host's working database
// (acdbHostApplicationServices()->workingDatabase()) and its model space
// ("*Model_Space"). None of them throws; failure is a null object id or a
// zero count. Every object a function opens is closed again before it
// returns, except where a function is handed an object that the caller has
// open, whose open mode it gives back unchanged.
//
// Colour indexes: 0-255 are set on the new entity (0 by block, 1-255 an
// index colour); 256 or more, and negative values, leave the entity's colour
// by layer. Layers are made on demand with linetype "CONTINUOUS".
#ifndef VORA_DATABASE_H
#define VORA_DATABASE_H

#include <string>
#include <vector>

#include "vora/arx.h"
#include "vora/export.h"

// ---------------------------------------------------------------------------
// Creating entities and layers
// ---------------------------------------------------------------------------

// A triangular 3D face through p1, p2, p3 (the fourth corner repeats the
// third), all edges visible, on layer (made when missing) with colour.
// Null id when a point is null or the entity cannot be added.
VORA_API AcDbObjectId vora_create3DFace(const AcGePoint3d* p1, const AcGePoint3d* p2, const AcGePoint3d* p3,
                                        const ACHAR* layer, int colour);

// A simple 3D polyline through the points of pts, closed when closed is
// true. Null id when pts is null or the entity cannot be added.
VORA_API AcDbObjectId vora_create3DPolyline(const AcGePoint3dArray* pts, const ACHAR* layer, int colour, bool closed);

// As vora_create3DPolyline, for the points of a vector. Null id when pts is
// null.
VORA_API AcDbObjectId vora_create3DPolylinev(const std::vector<AcGePoint3d>* pts, const ACHAR* layer, int colour,
                                             bool closed);

// A line from start to end.
VORA_API AcDbObjectId vora_createLine(const AcGePoint3d* start, const AcGePoint3d* end, const ACHAR* layer,
                                      int colour);

// Adds entity, which the caller created and which is in no database yet, to
// model space on layer (made when missing; a null or empty name leaves the
// entity's layer as it is). On success the entity is closed and its id
// returned; on failure the id is null and the entity still belongs to the
// caller, who deletes it.
VORA_API AcDbObjectId vora_createEntity(AcDbEntity* entity, const ACHAR* layer);

// Makes the layer name, thawed, on, unlocked, with colour (256 or more, or
// negative: 7) and linetype "CONTINUOUS" when the drawing has it. Returns the
// new layer's id; null when a layer of that name exists already (it is left
// unchanged) or on any failure.
VORA_API AcDbObjectId vora_createLayer(const ACHAR* name, int colour);

// ---------------------------------------------------------------------------
// Queries
// ---------------------------------------------------------------------------

// Counts the non-erased entities of model space, in drawing order, that pass
// every filter given, and appends their ids to outIds when it is not null.
// A null or empty filter is off.
// - classNames: the entity's DXF class name (L"LINE", L"3DFACE", ...), not
//   its run-time class name, equals one of them, case ignored.
// - layerNames: the entity's layer name equals one of them, case ignored.
// - appNames: every listed name heads a group of the entity's extended data,
//   case ignored. An entity without any extended data passes this filter too.
// Returns 0 when model space cannot be read.
VORA_API int vora_getEntities(const std::vector<std::wstring>* classNames, const std::vector<std::wstring>* layerNames,
                              const std::vector<std::wstring>* appNames, AcDbObjectIdArray* outIds);

// Counts the entities of model space whose run-time class is exactly one of
// classes (no derived classes), or every entity when classes is null or
// empty, and appends their ids to outIds when it is not null.
VORA_API int vora_getEntitiesByClass(const AcArray<AcRxClass*>* classes, AcDbObjectIdArray* outIds);

// The id of the first material of the material dictionary whose name equals
// name, case ignored; null for a null or empty name or when none matches.
VORA_API AcDbObjectId vora_getMaterial(const ACHAR* name);

// Appends the name of every material of the material dictionary to outNames
// (when not null) and returns their number.
VORA_API int vora_getMaterials(std::vector<std::wstring>* outNames);

// ---------------------------------------------------------------------------
// Rewriting a 3D polyline
// ---------------------------------------------------------------------------

// Gives polyline, an open simple AcDb3dPolyline of a database, the vertices
// of points: existing vertex k moves to points[k], vertices beyond the points
// are erased, points beyond the vertices are appended; then the polyline is
// closed or opened as closed says. A polyline open for read is upgraded for
// the change and downgraded again. Returns the polyline's id; null when
// points or polyline is null, polyline is not exactly an AcDb3dPolyline (it is
// then untouched), or it cannot be upgraded.
VORA_API AcDbObjectId vora_redraw3DPolylinep(const AcGePoint3dArray* points, AcDbEntity* polyline, bool closed);

// vora_redraw3DPolylinep on the object of id, opened for write here (or, when
// the caller has it open for read, upgraded and downgraded again). Careful:
// an object of another class that this function opens itself is ERASED, and
// null is returned; one the caller has open is left alone. Null id: null.
VORA_API AcDbObjectId vora_redraw3DPolyline(const AcGePoint3dArray* points, AcDbObjectId id, bool closed);

// ---------------------------------------------------------------------------
// Outlines
// ---------------------------------------------------------------------------

// Reads the outline of entity as vertices, the bulge of the segment that
// starts at each vertex, and a closed flag:
// - AcDbLine: its two end points, bulges 0, open.
// - AcDbArc: its first and second point in the direction of travel, the
//   first with the arc's bulge, the second with 0, open; z is the centre's.
// - AcDbCircle: four points, the quarter points at angles 0, pi/2, pi and
//   3pi/2 from the centre in order of travel, each with the bulge of a quarter
//   circle (negative when the circle's normal points down, the points then
//   going clockwise from pi/2), closed; z is the centre's.
// - AcDbPolyline: its vertices in its own plane at its elevation, with its
//   bulges, closed as it is.
// - AcDb2dPolyline of simple type: its vertices' positions and bulges,
//   closed as it is; curve- and spline-fit 2D polylines give nothing.
// - AcDb3dPolyline of simple type: its vertices, bulges 0, closed as it is;
//   spline-fit ones give nothing.
// - AcDbFace: its distinct corners (three for a triangle), bulges 0, closed.
// - any other entity gives nothing.
// When the last of at least two points equals the first within tolPoint in
// every coordinate, that last point and its bulge are dropped and the outline
// is closed. Returns the number of vertices read. Points and bulges (when not
// null) are replaced by the outline and *closed (when not null) is set, also
// when nothing could be read (empty arrays, open); only a null entity leaves
// the outputs untouched.
VORA_API int vora_ent2ptsp(const AcDbEntity* entity, AcGePoint3dArray* points, AcGeDoubleArray* bulges,
                           bool* closed);

// vora_ent2ptsp on the entity of id, opened for read here; 0 when it cannot be
// opened.
VORA_API int vora_ent2pts(AcDbObjectId id, AcGePoint3dArray* points, AcGeDoubleArray* bulges, bool* closed);

// ---------------------------------------------------------------------------
// Draw order
// ---------------------------------------------------------------------------

// Moves the entities of ids (all in model space) to the top (toFront) or the
// bottom of the draw order of model space, keeping their order among
// themselves. Uses the draw-order table of model space, which is not made
// when the drawing has none. Returns 1 on success; 0 when ids is null, model
// space has no draw-order table or the move is refused (an id that is not an
// entity of model space). Whenever model space could be opened, the display
// is brought up to date afterwards (the moved entities queued for
// regeneration, then acedUpdateDisplay).
VORA_API int vora_sendFrontBack(const AcDbObjectIdArray* ids, bool toFront);

// ---------------------------------------------------------------------------
// VoraXdata: typed values in an object's extended data
// ---------------------------------------------------------------------------
//
// A key is a registered application name; the values stored under it are the
// items of that application's extended data, one item per value, with these
// group codes: string 1000, short 1070, int 1071, double 1040, handle 1005
// (its hexadecimal text), point 1010. An array is a run of items of one code
// with nothing around it, so reading an array returns the leading run of
// items of its code. Several values of different types can follow each
// other under one key (AddValue); single values are read by position.
// Keys are shared with every other user of extended data.
//
// The instance binds to an open object (never closed by it; upgraded to
// write for a write and downgraded again) or to an id (opened and closed
// within each call). Results: 1 success, 0 failure or not found, -1 nothing
// bound, -2 the object cannot be opened or upgraded; readers of arrays and
// keys return counts.
class VORA_CLASS_API VoraXdata {
public:
  VoraXdata() = default;
  VoraXdata(const VoraXdata&) = default;
  VoraXdata& operator=(const VoraXdata&) = default;
  ~VoraXdata();

  // Bind without any check; return 1.
  int Open(AcDbObject* object);
  int Open(AcDbObjectId id);
  // Unbinds (a bound object stays open); returns 1.
  int Close();

  // Stores values (the caller's list, not released) as the key's items,
  // registering the key as an application first. A null list removes the
  // key. 1 stored, 0 refused by the object (such as an item code outside the
  // extended-data set), -1 unbound, -2 cannot write.
  int SetValue(const ACHAR* key, resbuf* values);
  // Replace every value of key with one value.
  int SetValue(const ACHAR* key, const ACHAR* value);
  int SetValue(const ACHAR* key, short value);
  int SetValue(const ACHAR* key, int value);
  int SetValue(const ACHAR* key, double value);
  int SetValue(const ACHAR* key, const AcDbHandle& value);
  int SetValue(const ACHAR* key, const AcGePoint3d& value);
  // Replace every value of key with one item per element; an empty or null
  // array leaves the key without values, which removes it.
  int SetValue(const ACHAR* key, const AcArray<int>* values);
  int SetValue(const ACHAR* key, const AcArray<double>* values);
  int SetValue(const ACHAR* key, const AcArray<AcGePoint3d>* values);
  int SetValue(const ACHAR* key, const std::vector<std::wstring>* values);

  // Append one value after the key's current values (a key without values
  // gets it as its only value). When the object cannot be read, this falls
  // back to replacing.
  int AddValue(const ACHAR* key, const ACHAR* value);
  int AddValue(const ACHAR* key, short value);
  int AddValue(const ACHAR* key, int value);
  int AddValue(const ACHAR* key, double value);
  int AddValue(const ACHAR* key, const AcDbHandle& value);
  int AddValue(const ACHAR* key, const AcGePoint3d& value);

  // Drops the key's extended data.
  int RemoveKey(const ACHAR* key);

  // The value at position index (0: the first value). 1 and *out written
  // (when out is not null) when that item exists and has the type's code;
  // otherwise 0 and *out untouched.
  int GetValue(const ACHAR* key, short* out, int index = 0);
  int GetValue(const ACHAR* key, int* out, int index = 0);
  int GetValue(const ACHAR* key, double* out, int index = 0);
  int GetValue(const ACHAR* key, std::wstring* out, int index = 0);
  int GetValue(const ACHAR* key, AcDbHandle* out, int index = 0);
  int GetValue(const ACHAR* key, AcGePoint3d* out, int index = 0);
  // Append the leading run of items of the type's code to *out (when not
  // null; its elements are kept) and return the run's length.
  int GetValue(const ACHAR* key, AcArray<int>* out);
  int GetValue(const ACHAR* key, AcArray<double>* out);
  int GetValue(const ACHAR* key, AcArray<AcGePoint3d>* out);
  int GetValue(const ACHAR* key, std::vector<std::wstring>* out);
  // The key's items without their 1001 head in *out (when not null); the
  // caller releases them with acutRelRb. 1 when the key has extended data, 0
  // when not, -1 unbound, -2 cannot read.
  int GetValue(const ACHAR* key, resbuf** out);

  // Pushes every application name of the object's extended data, in stored
  // order, onto *keys (when not null) and returns their number.
  int GetKeys(std::vector<std::wstring>* keys);

private:
  AcDbObjectId mObjectId;
  AcDbObject* mObject = nullptr;
};

// ---------------------------------------------------------------------------
// VoraXrecord: typed values in xrecords under named dictionaries
// ---------------------------------------------------------------------------
//
// Values live in the named objects dictionary of the working database, in a
// tree of dictionaries addressed by a path, one xrecord per key, one item
// per value: string 1000, short 70, int 90, double 40, handle 5 (its
// hexadecimal text), point 10. Arrays are the leading run of items of their
// code, single values are read by position, as with VoraXdata.
//
// Path text: components separated by backslashes. A trailing backslash adds
// nothing; but a leading backslash, or an empty component (two backslashes
// in a row), makes all the rest of the text, backslashes included, one last
// component: "\A\B" is the single name "\A\B", "A\\B" is "A" then "\B".
//
// The instance holds a current path. Key operations append the key (itself
// parsed as a path, so it may reach into deeper dictionaries) to the current
// path for the call only; they return 0 at once when the current path is
// empty. The overloads taking a dictionary path and a key first make that
// path the current one, and leave it so.
//
// Results of the operations that walk the path: 1 success; 0 nothing to do or
// not an xrecord (empty path, no working database, a final entry of another
// class); -1 the named objects dictionary cannot be opened, a dictionary or
// entry is missing (when not creating), or the host refuses a change; -2 a
// component that must be a dictionary names an object of another class.
// Typed single-value readers answer 1 or 0 like VoraXdata's, and pass a
// negative result of the walk on; array readers return the run's length or
// that negative result.
class VORA_CLASS_API VoraXrecord {
public:
  VoraXrecord() = default;
  VoraXrecord(const VoraXrecord&) = default;
  VoraXrecord& operator=(const VoraXrecord&) = default;
  ~VoraXrecord() = default;

  // Makes path the current path; returns 0.
  int Open(const ACHAR* path);
  // Clears the current path; returns 0.
  int Close();

  // Writes values (the caller's list, not released) as the xrecord at the
  // current path, making the missing dictionaries on the way; an entry of
  // that name is detached from its dictionary first (not erased). With null,
  // only detaches the entry, creating nothing.
  int SetValue(resbuf* values);
  // The data list of the xrecord at the current path in *out (when not
  // null); the caller releases it with acutRelRb.
  int GetValue(resbuf** out);

  int SetValue(const ACHAR* key, resbuf* values);
  int SetValue(const ACHAR* key, const ACHAR* value);
  int SetValue(const ACHAR* key, short value);
  int SetValue(const ACHAR* key, int value);
  int SetValue(const ACHAR* key, double value);
  int SetValue(const ACHAR* key, const AcDbHandle& value);
  int SetValue(const ACHAR* key, const AcGePoint3d& value);
  int SetValue(const ACHAR* key, const AcArray<int>* values);
  int SetValue(const ACHAR* key, const AcArray<double>* values);
  int SetValue(const ACHAR* key, const AcArray<AcGePoint3d>* values);
  int SetValue(const ACHAR* key, const std::vector<std::wstring>* values);

  int AddValue(const ACHAR* key, const ACHAR* value);
  int AddValue(const ACHAR* key, short value);
  int AddValue(const ACHAR* key, int value);
  int AddValue(const ACHAR* key, double value);
  int AddValue(const ACHAR* key, const AcDbHandle& value);
  int AddValue(const ACHAR* key, const AcGePoint3d& value);

  // Detaches the key's entry; -1 (and nothing created) when a dictionary on
  // the way is missing.
  int RemoveKey(const ACHAR* key);

  int GetValue(const ACHAR* key, short* out, int index = 0);
  int GetValue(const ACHAR* key, int* out, int index = 0);
  int GetValue(const ACHAR* key, double* out, int index = 0);
  int GetValue(const ACHAR* key, std::wstring* out, int index = 0);
  int GetValue(const ACHAR* key, AcDbHandle* out, int index = 0);
  int GetValue(const ACHAR* key, AcGePoint3d* out, int index = 0);
  int GetValue(const ACHAR* key, AcArray<int>* out);
  int GetValue(const ACHAR* key, AcArray<double>* out);
  int GetValue(const ACHAR* key, AcArray<AcGePoint3d>* out);
  int GetValue(const ACHAR* key, std::vector<std::wstring>* out);
  int GetValue(const ACHAR* key, resbuf** out);

  // Pushes the entry names of the dictionary at the current path (the named
  // objects dictionary itself for an empty path), in its order, onto *keys
  // (when not null) and returns their number; 0 without a working database,
  // -1 or -2 as for a walk.
  int GetKeys(std::vector<std::wstring>* keys);

  // The same operations on dictionary path dict and key. SetValue, GetValue
  // and RemoveKey return the key operation's result; AddValue always returns
  // 0, whether or not the value was stored.
  int SetValue(const ACHAR* dict, const ACHAR* key, resbuf* values);
  int SetValue(const ACHAR* dict, const ACHAR* key, const ACHAR* value);
  int SetValue(const ACHAR* dict, const ACHAR* key, short value);
  int SetValue(const ACHAR* dict, const ACHAR* key, int value);
  int SetValue(const ACHAR* dict, const ACHAR* key, double value);
  int SetValue(const ACHAR* dict, const ACHAR* key, const AcDbHandle& value);
  int SetValue(const ACHAR* dict, const ACHAR* key, const AcGePoint3d& value);
  int SetValue(const ACHAR* dict, const ACHAR* key, const AcArray<int>* values);
  int SetValue(const ACHAR* dict, const ACHAR* key, const AcArray<double>* values);
  int SetValue(const ACHAR* dict, const ACHAR* key, const AcArray<AcGePoint3d>* values);
  int SetValue(const ACHAR* dict, const ACHAR* key, const std::vector<std::wstring>* values);
  int AddValue(const ACHAR* dict, const ACHAR* key, const ACHAR* value);
  int AddValue(const ACHAR* dict, const ACHAR* key, short value);
  int AddValue(const ACHAR* dict, const ACHAR* key, int value);
  int AddValue(const ACHAR* dict, const ACHAR* key, double value);
  int AddValue(const ACHAR* dict, const ACHAR* key, const AcDbHandle& value);
  int AddValue(const ACHAR* dict, const ACHAR* key, const AcGePoint3d& value);
  int GetValue(const ACHAR* dict, const ACHAR* key, short* out, int index = 0);
  int GetValue(const ACHAR* dict, const ACHAR* key, int* out, int index = 0);
  int GetValue(const ACHAR* dict, const ACHAR* key, double* out, int index = 0);
  int GetValue(const ACHAR* dict, const ACHAR* key, std::wstring* out, int index = 0);
  int GetValue(const ACHAR* dict, const ACHAR* key, AcDbHandle* out, int index = 0);
  int GetValue(const ACHAR* dict, const ACHAR* key, AcGePoint3d* out, int index = 0);
  int GetValue(const ACHAR* dict, const ACHAR* key, AcArray<int>* out);
  int GetValue(const ACHAR* dict, const ACHAR* key, AcArray<double>* out);
  int GetValue(const ACHAR* dict, const ACHAR* key, AcArray<AcGePoint3d>* out);
  int GetValue(const ACHAR* dict, const ACHAR* key, std::vector<std::wstring>* out);
  int GetValue(const ACHAR* dict, const ACHAR* key, resbuf** out);
  int RemoveKey(const ACHAR* dict, const ACHAR* key);
  int GetKeys(const ACHAR* path, std::vector<std::wstring>* keys);

  // Detaches the entry that path names (normally a dictionary) from its
  // parent; path becomes the current path.
  int RemoveDict(const ACHAR* path);

private:
  VORA_HIDDEN int parsePath(const ACHAR* text);
  template <class F>
  VORA_HIDDEN int withKey(const ACHAR* key, F&& op);
  template <class T>
  VORA_HIDDEN int addOne(const ACHAR* key, const T& value);

#if defined(_MSC_VER)
#  pragma warning(suppress : 4251)
#endif
  std::vector<std::wstring> mPath;
};

#endif
