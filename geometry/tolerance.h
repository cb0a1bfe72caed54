// The kernel's two process-wide tolerances. Every function reads them at the
// time of the call; nothing caches them.
#ifndef VORA_GEOMETRY_TOLERANCE_H
#define VORA_GEOMETRY_TOLERANCE_H

namespace vora {

struct KernelTolerances {
  double value;  // bound for computed quantities (cross products, determinants, bulges)
  double point;  // bound for lengths and coordinate differences
};

// The live tolerances, as set by vora_initeps.
extern KernelTolerances g_tolerances;

inline double tolValue() { return g_tolerances.value; }
inline double tolPoint() { return g_tolerances.point; }

// Mathematical constants with the exact double values the kernel's formulas use.
inline constexpr double kPi = 3.141592653589793;
inline constexpr double kTwoPi = 6.283185307179586;

}  // namespace vora

#endif
