// A second, plain implementation of the polygon union/intersection around the
// clipping library: grid conversion, the calls made, and the way result
// vertices are matched back to input vertices or placed on reference lines.
// Written without looking at geometry/, for the cross-check test.
#ifndef VORA_TESTS_REFERENCE_BOOLEAN_REFERENCE_H
#define VORA_TESTS_REFERENCE_BOOLEAN_REFERENCE_H

#include <polyclipping/clipper.hpp>

#include <cmath>

#include "geometry/tolerance.h"
#include "vora/vora.h"

namespace vora::ref {

inline int polygonOperation(int flags, const AcArray<AcGePoint3dArray>* subjects, const void* /*reserved*/,
                            const AcArray<AcGePoint3dArray>* clips, AcArray<AcGePoint3dArray>* result) {
  if ((flags & 0x10) == 0) return 0;
  const double x0 = (*subjects)[0][0].x, y0 = (*subjects)[0][0].y;
  ClipperLib::Clipper clipper;
  const AcArray<AcGePoint3dArray>* sets[2] = {subjects, clips};
  for (int k = 0; k < 2; ++k) {
    for (int i = 0; i < sets[k]->length(); ++i) {
      const AcGePoint3dArray& poly = (*sets[k])[i];
      ClipperLib::Path path;
      for (int j = 0; j < poly.length(); ++j)
        path.push_back(ClipperLib::IntPoint(static_cast<ClipperLib::cInt>((poly[j].x - x0) / 1e-9),
                                            static_cast<ClipperLib::cInt>((poly[j].y - y0) / 1e-9)));
      clipper.AddPath(path, k == 0 ? ClipperLib::ptSubject : ClipperLib::ptClip, true);
    }
  }
  ClipperLib::Paths solution;
  const ClipperLib::ClipType type = (flags & 3) == 0 ? ClipperLib::ctUnion : ClipperLib::ctIntersection;
  if (!clipper.Execute(type, solution, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd) || solution.empty()) return 0;

  for (const ClipperLib::Path& path : solution) {
    AcGePoint3dArray out;
    for (const ClipperLib::IntPoint& ip : path) {
      const double x = static_cast<double>(ip.X) * 1e-9 + x0;
      const double y = static_cast<double>(ip.Y) * 1e-9 + y0;
      bool matched = false;
      for (int k = 0; k < 2 && !matched; ++k)
        for (int i = 0; i < sets[k]->length() && !matched; ++i)
          for (int j = 0; j < (*sets[k])[i].length() && !matched; ++j) {
            const AcGePoint3d& v = (*sets[k])[i][j];
            if (std::fabs(v.x - x) < 1e-8 && std::fabs(v.y - y) < 1e-8) {
              out.append(v);
              matched = true;
            }
          }
      if (matched) continue;
      // The candidate point (cx, cy) is carried from line to line; a
      // zero-length line keeps the last one. It starts at the clipped vertex
      // itself, so such a line winning first leaves the vertex where it is.
      double cx = x, cy = y, fx = x, fy = y, best = 0.0, bestZ = -1.0;
      bool any = false;
      for (int k = 0; k < 2; ++k) {
        const int ia = sets[k]->length() - 1;
        for (int i = 0; i < sets[k]->length(); ++i) {
          const AcGePoint3dArray& poly = (*sets[k])[i];
          // Too short a polygon has no vertex at the reference index: no line.
          if (poly.length() == 0 || ia >= poly.length()) continue;
          const AcGePoint3d& a = poly[ia];
          const double dx = poly[0].x - a.x, dy = poly[0].y - a.y;
          const double L = std::sqrt(dx * dx + dy * dy);
          double dist;
          if (L > tolPoint()) {
            double foot[3];
            const double p[3] = {x, y, 0.0};
            const double aa[3] = {a.x, a.y, 0.0}, bb[3] = {poly[0].x, poly[0].y, 0.0};
            vora_distpointlinesigned(aa, bb, p, foot, nullptr);
            cx = foot[0];
            cy = foot[1];
            dist = std::fabs((a.y - y) * dx - (a.x - x) * dy) / L;
          } else {
            dist = std::sqrt((x - a.x) * (x - a.x) + (y - a.y) * (y - a.y));
          }
          if (!any || dist < best) {
            any = true;
            best = dist;
            fx = cx;
            fy = cy;
            bestZ = a.z;
          }
        }
      }
      if (bestZ > -0.5)
        out.append(AcGePoint3d(fx, fy, bestZ));
      else
        out.append(AcGePoint3d(x, y, 0.0));
    }
    if (out.length() > 0 && result != nullptr) result->append(out);
  }
  return 1;
}

}  // namespace vora::ref

#endif
