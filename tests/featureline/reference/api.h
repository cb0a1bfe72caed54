// The exported feature-line functions over the plain model of model.h: each
// opens the line from its stored vertices, does its job inside the same guard
// the module promises, and leaves the vertices as the polyline would hold them.
#ifndef VORA_TESTS_FEATURELINE_REFERENCE_API_H
#define VORA_TESTS_FEATURELINE_REFERENCE_API_H

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "model.h"

namespace vora::flref {

// A 3D polyline of the drawing as the functions see it.
struct Line {
  std::vector<AcGePoint3d> vertices;
  bool marked = true;
  double stored = 0.015;  // the marker's distance
  // Of the last call that wrote the vertices: its distance and sampled arcs.
  double mod = 0.0;
  std::vector<ArcRun> runs;
};

inline std::string format(const char* fmt, int v) {
  char buf[128];
  std::snprintf(buf, sizeof buf, fmt, v);
  return buf;
}

// The message for the exception being handled, and the code it answers with.
inline int report(std::string& out) {
  try {
    throw;
  } catch (const ResultError& r) {
    out += format("\nAn error (%d) occured during the execution.\n;", r.value);
    return r.value;
  } catch (const FlError& e) {
    out += format("\nA featureline error (%d) occured.\n;", e.value);
    return -100;
  } catch (const HostError& s) {
    const ACHAR* text = acadErrorStatusText(static_cast<Acad::ErrorStatus>(s.value));
    out += "\nAn error (" + std::string(text, text + std::char_traits<ACHAR>::length(text)) +
           ") occured during the execution.\n;";
    return -1000;
  } catch (...) {
    out += "\nAn error occured during the execution of the command\n;";
    return -100000;
  }
}

// Opens line (the model keeps its vertices), runs body(model) -> code inside
// the guard, and stores the model's vertices back, also after a failure
// midway through a write-back.
template <class Body>
int call(Line& line, double defaultDistance, std::string& out, Body&& body) {
  Model m;
  bool opened = false;
  int code = 0;
  try {
    try {
      m.load(line.vertices, line.marked ? line.stored : defaultDistance);
    } catch (...) {
      report(out);
      throw ResultError{-11};
    }
    opened = true;
    code = body(m);
  } catch (...) {
    code = report(out);
  }
  line.runs.clear();
  if (opened) {
    line.vertices = m.vertices;
    line.runs = m.runs;
    line.mod = m.mod;
  }
  return code;
}

inline int insertElevpt(Line& l, double def, std::string& out, double station, double z) {
  return call(l, def, out, [&](Model& m) { return m.insertElevationPoint(station, z) ? 0 : -4; });
}

inline int insertFeaturePoint(Line& l, double def, std::string& out, const AcGePoint3d& p, double station,
                              double bulge) {
  return call(l, def, out, [&](Model& m) { return m.insertFeaturePointAtStation(p, station, bulge) ? 0 : -4; });
}

inline int erase(Line& l, double def, std::string& out, std::vector<int> idx, bool elevationOnly) {
  return call(l, def, out, [&](Model& m) {
    std::sort(idx.begin(), idx.end());
    for (auto it = idx.rbegin(); it != idx.rend(); ++it) {
      if (static_cast<std::size_t>(*it) >= m.points.size()) return -16;
      if (elevationOnly && m.points[static_cast<std::size_t>(*it)].isFeature()) return -3;
    }
    bool ok = true;
    for (auto it = idx.rbegin(); it != idx.rend(); ++it) {
      const auto k = static_cast<std::size_t>(*it);
      if (!(elevationOnly ? m.eraseElevationPoint(k) : m.eraseFeaturePoint(k))) ok = false;
    }
    return ok ? 0 : -2;
  });
}

inline int setElevpt(Line& l, double def, std::string& out, const std::vector<int>& idx,
                     const std::vector<double>& z) {
  return call(l, def, out, [&](Model& m) {
    if (m.points.empty()) return -12;
    for (int i : idx)
      if (static_cast<std::size_t>(i) >= m.points.size()) return -16;
    std::vector<AcGePoint3d> before;
    for (std::size_t n = 0; n < idx.size(); ++n) {
      const auto k = static_cast<std::size_t>(idx[n]);
      const AcGePoint3d was = m.points[k].pos;
      if (!m.setPointPosition(k, AcGePoint3d(was.x, was.y, z[n]))) {
        for (std::size_t r = 0; r < before.size(); ++r) m.setPointPosition(static_cast<std::size_t>(idx[r]), before[r]);
        return -1;
      }
      before.push_back(was);
    }
    return 0;
  });
}

inline int interpolate(Line& l, double def, std::string& out, std::vector<int>& idx, double z0, double z1) {
  return call(l, def, out, [&](Model& m) {
    if (m.points.empty()) return -12;
    return m.interpolate(idx, z0, z1) ? 0 : -1;
  });
}

inline int setMidOrdinate(Line& l, double def, std::string& out, bool recalculate, double distance) {
  return call(l, def, out, [&](Model& m) {
    const bool ok = m.setMidOrdinateDistance(distance, recalculate);
    if (!std::isnan(distance) && distance - m.tol.equalPoint() > kNearZero) {
      l.marked = true;
      l.stored = distance;
    }
    return ok ? 0 : -100;
  });
}

// The model as the diagnostic dump prints it.
inline std::string dump(const Model& m) {
  char buf[512];
  std::snprintf(buf, sizeof buf, "Featureline: \nNumber of feature points: %d, mid ordinate distance: %f\nFeature points: \n",
                static_cast<int>(m.points.size()), m.mod);
  std::string out = buf;
  for (std::size_t i = 0; i < m.points.size(); ++i) {
    const AcGePoint3d& p = m.points[i].pos;
    double length = 0.0, grade = 0.0;
    if (i + 1 < m.points.size()) {
      length = m.stations[i + 1] - m.stations[i];
      grade = (m.points[i + 1].pos.z - p.z) / length;
    }
    std::snprintf(buf, sizeof buf, "    p%d: (%.9f, %.9f, %.9f) t:%s station: %f bulge: %.9f length: %f grade: %f \n",
                  static_cast<int>(i), p.x, p.y, p.z, m.points[i].isFeature() ? "V" : "E", m.stations[i],
                  m.points[i].bulge, length, grade);
    out += buf;
  }
  return out;
}

}  // namespace vora::flref

#endif
