// A fresh default drawing made the working database for one test, and the
// previous working database restored afterwards.
#ifndef VORA_TESTS_HOST_DB_TEST_DB_H
#define VORA_TESTS_HOST_DB_TEST_DB_H

#include <memory>

#include "vora/arx.h"
#include "vora/arx/vorahost.h"

class WorkingDatabase {
public:
  WorkingDatabase() : mPrevious(acdbHostApplicationServices()->workingDatabase()), mDb(new AcDbDatabase()) {
    acdbHostApplicationServices()->setWorkingDatabase(mDb.get());
  }
  ~WorkingDatabase() {
    acdbHostApplicationServices()->setWorkingDatabase(mPrevious);
  }
  WorkingDatabase(const WorkingDatabase&) = delete;
  WorkingDatabase& operator=(const WorkingDatabase&) = delete;
  AcDbDatabase* get() const { return mDb.get(); }
  AcDbDatabase* operator->() const { return mDb.get(); }

private:
  AcDbDatabase* mPrevious;
  std::unique_ptr<AcDbDatabase> mDb;
};

// Appends ent to model space of db; returns its id with the entity closed.
inline AcDbObjectId addToModelSpace(AcDbDatabase* db, AcDbEntity* ent) {
  AcDbBlockTableRecord* ms = nullptr;
  if (acdbOpenObject(ms, db->modelSpaceId(), AcDb::kForWrite) != Acad::eOk) return AcDbObjectId::kNull;
  AcDbObjectId id;
  if (ms->appendAcDbEntity(id, ent) == Acad::eOk) ent->close();
  ms->close();
  return id;
}

#endif
