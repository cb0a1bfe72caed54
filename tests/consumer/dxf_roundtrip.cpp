// The drawing database as an outside program uses it: build, save as DXF,
// load into an empty database, find an entity by handle, open it, save again.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <vora/arx.h>

int dxfRoundTrip() {
  const char* tmp = std::getenv("TMPDIR");
  const std::string dir = tmp ? tmp : "/tmp";
  const std::wstring first(dir.begin(), dir.end()), path = first + L"/vora_consumer_a.dxf",
      again = first + L"/vora_consumer_b.dxf";
  AcDbHandle handle;
  {
    AcDbDatabase db(true, true);
    AcDbBlockTableRecord* ms = nullptr;
    if (acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite) != Acad::eOk) return 1;
    auto* line = new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
    AcDbObjectId id;
    ms->appendAcDbEntity(id, line);
    handle = line->handle();
    line->close();
    ms->close();
    if (db.dxfOut(path.c_str()) != Acad::eOk) return 2;
  }
  auto* db = new AcDbDatabase(false, true);
  if (db->dxfIn(path.c_str()) != Acad::eOk) return 3;
  acdbHostApplicationServices()->setWorkingDatabase(db);
  ACHAR text[AcDbHandle::kStrSiz];
  handle.getIntoAsciiBuffer(text, AcDbHandle::kStrSiz);
  AcDbObjectId id;
  if (db->getAcDbObjectId(id, false, AcDbHandle(text)) != Acad::eOk) return 4;
  AcDbLine* line = nullptr;
  if (acdbOpenObject(line, id, AcDb::kForRead) != Acad::eOk) return 5;
  const bool same = line->endPoint() == AcGePoint3d(4, 5, 6);
  line->close();
  const bool saved = db->dxfOut(again.c_str(), 16, AcDb::kDHL_CURRENT) == Acad::eOk;
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  delete db;
  std::printf("dxf round trip: line %ls %s\n", text, same && saved ? "ok" : "wrong");
  return same && saved ? 0 : 6;
}
