// A road's vertical profile: the elevation at chainages along a surveyed
// centreline, and its grades in the units a road designer reads.
#include <cstdio>

#include "vora/vora.h"

int main() {
  // Centreline vertices at site coordinates (easting, northing, level).
  AcGePoint3dArray centreline;
  centreline.append(AcGePoint3d(512340.112, 6843120.540, 102.350));
  centreline.append(AcGePoint3d(512398.730, 6843161.205, 103.120));
  centreline.append(AcGePoint3d(512470.015, 6843190.880, 104.905));
  centreline.append(AcGePoint3d(512551.400, 6843201.010, 104.210));

  std::printf("chainage     level\n");
  for (double ch = 0.0; ch <= 240.0; ch += 40.0)
    std::printf("%8.1f  %8.3f\n", ch, vora_zpt(&centreline, ch));

  std::printf("\ngrade of each leg\n");
  for (int i = 0; i + 1 < centreline.length(); ++i) {
    const AcGePoint3d& a = centreline[i];
    const AcGePoint3d& b = centreline[i + 1];
    const double run = a.convert2d().distanceTo(b.convert2d());
    const double ratio = (b.z - a.z) / run;
    std::printf("leg %d: %7.3f %%  = 1 in %7.1f  = %6.3f deg\n", i + 1, vora_convertAngle(ratio, 1, 2),
                vora_convertAngle(ratio, 1, 0), vora_convertAngle(ratio, 1, 3));
  }
  return 0;
}
