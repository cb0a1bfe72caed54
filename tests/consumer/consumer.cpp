// Uses the installed headers and libraries as any caller of the module would.
#include <cstdio>

#include <vora/arx.h>
#include <vora/vora.h>

int dxfRoundTrip();

int main() {
  AcGePoint3dArray pts;
  pts.append(AcGePoint3d(0, 0, 10));
  pts.append(AcGePoint3d(3, 4, 20));
  const double z = vora_zpt(&pts, 2.5);
  const double a[3] = {0, 0, 0}, b[3] = {1, 0, 0}, c[3] = {0, 1, 0};
  const double turn = vora_orientation2D(a, b, c);
  std::printf("zpt %.17g orientation %.17g\n", z, turn);
  if (z != 15.0 || turn != 1.0) return 1;
  return dxfRoundTrip() == 0 ? 0 : 1;
}
