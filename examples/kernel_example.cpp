// A road's vertical profile: the elevation at chainages along a surveyed
// centreline, and its grades in the units a road designer reads. Then, in
// plan: where a surveyed manhole sits relative to the centreline, and where a
// side road, a straight running into a curve, crosses it.
#include <cmath>
#include <cstdio>
#include <vector>

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

  // Chainage where each leg starts, to turn a leg's parameter into a chainage.
  std::vector<double> legStart(centreline.length(), 0.0);
  for (int i = 0; i + 1 < centreline.length(); ++i)
    legStart[i + 1] = legStart[i] + centreline[i].convert2d().distanceTo(centreline[i + 1].convert2d());
  const auto chainageOn = [&](int leg, const double* p) {
    double t = 0.0;
    vora_distpointline(&centreline[leg].x, &centreline[leg + 1].x, p, nullptr, &t);
    return legStart[leg] + t * (legStart[leg + 1] - legStart[leg]);
  };

  // The manhole's offset: from the nearest leg whose foot falls on the leg.
  const AcGePoint3d manhole(512452.840, 6843176.315, 103.900);
  int best = -1;
  double offset = 0.0, foot[3];
  for (int i = 0; i + 1 < centreline.length(); ++i) {
    double f[3], t;
    const double d = vora_distpointlinesigned(&centreline[i].x, &centreline[i + 1].x, &manhole.x, f, &t);
    if (t < 0.0 || t > 1.0 || (best >= 0 && std::fabs(d) >= std::fabs(offset))) continue;
    best = i;
    offset = d;
    foot[0] = f[0];
    foot[1] = f[1];
  }
  if (best >= 0)
    std::printf("\nmanhole: chainage %.3f, %.3f m %s of the centreline (foot %.3f, %.3f)\n",
                chainageOn(best, &manhole.x), std::fabs(offset), offset > 0.0 ? "right" : "left", foot[0], foot[1]);

  // The side road: a straight from the south-east into a curve of radius 60
  // that turns left through north (its angles run through 0).
  const double curveCentre[3] = {512430.0, 6843120.0, 0.0};
  const double radius = 60.0;
  const double curveStart = vora_convertAngle(330.0, 3, 4), curveEnd = vora_convertAngle(120.0, 3, 4);
  const double straightFrom[3] = {512540.0, 6843040.0, 0.0};
  const double straightTo[3] = {curveCentre[0] + radius * std::cos(curveStart),
                                curveCentre[1] + radius * std::sin(curveStart), 0.0};
  std::printf("\nside road crossings\n");
  for (int i = 0; i + 1 < centreline.length(); ++i) {
    const double* a = &centreline[i].x;
    const double* b = &centreline[i + 1].x;
    double x[3], y[3];
    if (vora_intlineline(a, b, straightFrom, straightTo, x, 0, 0) == 1)
      std::printf("straight crosses at %.3f, %.3f (chainage %.3f)\n", x[0], x[1], chainageOn(i, x));
    const int n = vora_intlinearc(a, b, curveCentre, radius, curveStart, curveEnd, x, y, 0, 0);
    if (n >= 1) std::printf("curve crosses at %.3f, %.3f (chainage %.3f)\n", x[0], x[1], chainageOn(i, x));
    if (n == 2) std::printf("curve crosses at %.3f, %.3f (chainage %.3f)\n", y[0], y[1], chainageOn(i, y));
  }
  return 0;
}
