#!/usr/bin/python3
"""Reads, with ezdxf, the drawing that dxf_roundtrip_test.cpp saves and checks
that the feature line is a plain 3D polyline carrying the marker.
Arguments: the file, the polyline's handle, its vertex count, the mid ordinate
distance, and x y z of its first and of its last vertex (as written by the
test, shortest round-trip text). Exit status 0 when everything matches."""
import sys

import ezdxf


def fail(msg):
    print("ezdxf_featureline_check:", msg)
    sys.exit(1)


def main(path, handle, count, distance, *coords):
    doc = ezdxf.readfile(path)
    auditor = doc.audit()
    if auditor.errors:
        fail(f"audit errors: {[str(e.message) for e in auditor.errors]}")
    if "VORA_XPLINE_APPN" not in doc.appids:
        fail("application VORA_XPLINE_APPN not registered")
    pl = doc.entitydb.get(handle)
    if pl is None or pl.dxftype() != "POLYLINE" or not pl.is_3d_polyline:
        fail(f"{handle} is no 3D polyline")
    if pl.get_mode() != "AcDb3dPolyline" or pl.dxf.flags & 6:
        fail("not a simple 3D polyline")
    xdata = pl.get_xdata("VORA_XPLINE_APPN")
    if len(xdata) != 1 or xdata[0].code != 1040 or xdata[0].value != float(distance):
        fail(f"marker {list(xdata)}")
    points = [v.dxf.location for v in pl.vertices]
    if len(points) != int(count):
        fail(f"{len(points)} vertices")
    first = tuple(float(c) for c in coords[:3])
    last = tuple(float(c) for c in coords[3:])
    if tuple(points[0]) != first or tuple(points[-1]) != last:
        fail(f"ends {tuple(points[0])} {tuple(points[-1])}")


if __name__ == "__main__":
    main(*sys.argv[1:])
