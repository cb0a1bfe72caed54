// Restores the kernel tolerances when a test that changes them ends.
#ifndef VORA_TESTS_TOLERANCE_GUARD_H
#define VORA_TESTS_TOLERANCE_GUARD_H

#include "geometry/tolerance.h"
#include "vora/geometry.h"

namespace vora::test {

class ToleranceGuard {
public:
  ToleranceGuard() : saved_(g_tolerances) {}
  ToleranceGuard(double value, double point) : saved_(g_tolerances) { vora_initeps(value, point); }
  ~ToleranceGuard() { g_tolerances = saved_; }
  ToleranceGuard(const ToleranceGuard&) = delete;
  ToleranceGuard& operator=(const ToleranceGuard&) = delete;

private:
  KernelTolerances saved_;
};

}  // namespace vora::test

#endif
