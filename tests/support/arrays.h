// Host arrays from brace lists, for writing test inputs inline.
#ifndef VORA_TESTS_ARRAYS_H
#define VORA_TESTS_ARRAYS_H

#include <initializer_list>

#include "vora/arx.h"

namespace vora::test {

inline AcGePoint3dArray points(std::initializer_list<AcGePoint3d> list) {
  AcGePoint3dArray a;
  for (const AcGePoint3d& p : list) a.append(p);
  return a;
}

inline AcGeDoubleArray doubles(std::initializer_list<double> list) {
  AcGeDoubleArray a;
  for (double d : list) a.append(d);
  return a;
}

}  // namespace vora::test

#endif
