// A feature line saved to DXF and loaded again is the same polyline with the
// same marker, for our host and for ezdxf.
#include <gtest/gtest.h>

#include <charconv>
#include <cstdlib>
#include <string>

#include "drawing_fixture.h"

namespace {

using vora::test::arcVertices;
using vora::test::kDeg;

std::string shortest(double v) {
  char buf[32];
  const auto r = std::to_chars(buf, buf + sizeof buf, v);
  return std::string(buf, r.ptr);
}

class FeaturelineDxf : public vora::test::DrawingFixture {};

TEST_F(FeaturelineDxf, SavedAndReloadedFeaturelineIsTheSamePolyline) {
  const AcGePoint3d c(612500.0, 5410300.0, 0.0);
  std::vector<AcGePoint3d> v;
  v.emplace_back(c.x + 220.0, c.y - 300.0, 140.0);
  auto arc = arcVertices(c, 220.0, 0.0, 5 * kDeg, 19, 141.5, 0.015);
  v.insert(v.end(), arc.begin(), arc.end());
  v.emplace_back(c.x - 200.0, c.y + 300.0, 146.0);
  const AcDbObjectId id = addFeatureline(v, 0.01);
  ASSERT_EQ(vora_featureline_insert_elevpt(id, 300.0 + 220.0 * 30 * kDeg, 144.0), 0);
  const std::vector<AcGePoint3d> written = verticesOf(id);
  ACHAR handle[AcDbHandle::kStrSiz];
  id.handle().getIntoAsciiBuffer(handle, AcDbHandle::kStrSiz);

  const std::string file = std::string(VORA_BINARY_DIR) + "/featureline_roundtrip.dxf";
  const std::wstring wfile(file.begin(), file.end());
  ASSERT_EQ(db_->dxfOut(wfile.c_str()), Acad::eOk);

  // Our host: same vertices bit for bit, same model.
  {
    auto loaded = std::make_unique<AcDbDatabase>(false, true);
    ASSERT_EQ(loaded->dxfIn(wfile.c_str()), Acad::eOk);
    acdbHostApplicationServices()->setWorkingDatabase(loaded.get());
    AcDbObjectId again;
    ASSERT_EQ(loaded->getAcDbObjectId(again, false, AcDbHandle(handle)), Acad::eOk);
    const std::vector<AcGePoint3d> reread = verticesOf(again);
    ASSERT_EQ(reread.size(), written.size());
    for (std::size_t k = 0; k < written.size(); ++k) {
      EXPECT_EQ(reread[k].x, written[k].x);
      EXPECT_EQ(reread[k].y, written[k].y);
      EXPECT_EQ(reread[k].z, written[k].z);
    }
    double* before = nullptr;
    double* after = nullptr;
    int* types = nullptr;
    int nb = 0, na = 0, nt = 0;
    acdbHostApplicationServices()->setWorkingDatabase(db_.get());
    ASSERT_EQ(vora_featureline_get_elevpts(id, &before, &nb, &types, &nt), 0);
    vora_free(types);
    acdbHostApplicationServices()->setWorkingDatabase(loaded.get());
    ASSERT_EQ(vora_featureline_get_elevpts(again, &after, &na, &types, &nt), 0);
    vora_free(types);
    ASSERT_EQ(na, nb);
    for (int k = 0; k < na; ++k) EXPECT_EQ(after[k], before[k]) << k;
    vora_free(before);
    vora_free(after);
    double d = 0.0;
    EXPECT_EQ(vora_featureline_get_mid_ordinate_dist(again, &d), 0);
    EXPECT_EQ(d, 0.01);
    AcDb3dPolyline* pl = nullptr;
    ASSERT_EQ(acdbOpenObject(pl, again, AcDb::kForRead), Acad::eOk);
    EXPECT_TRUE(isFeatureline(pl));
    pl->close();
    EXPECT_EQ(vorahost::openObjectCount(), 0u);
    acdbHostApplicationServices()->setWorkingDatabase(db_.get());
  }

  if (std::system("/usr/bin/python3 -c 'import ezdxf' >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "ezdxf (Debian python3-ezdxf) is not installed";
  const AcGePoint3d& a = written.front();
  const AcGePoint3d& b = written.back();
  const std::string narrowHandle(handle, handle + std::wcslen(handle));
  const std::string cmd = "/usr/bin/python3 " + std::string(VORA_TEST_DATA_DIR) +
                          "/../featureline/ezdxf_featureline_check.py " + file + " " + narrowHandle + " " +
                          std::to_string(written.size()) + " 0.01 " + shortest(a.x) + " " + shortest(a.y) + " " +
                          shortest(a.z) + " " + shortest(b.x) + " " + shortest(b.y) + " " + shortest(b.z);
  EXPECT_EQ(std::system(cmd.c_str()), 0) << cmd;
}

}  // namespace
