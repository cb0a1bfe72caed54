#!/usr/bin/python3
"""Reads, with ezdxf, the drawing that dxfio_test.cpp builds through the API
(BuiltDrawingReadsBackInEzdxf) and checks its content; it must also audit
without errors. Exit status 0 when everything is found as built."""
import sys

import ezdxf


def fail(msg):
    print("ezdxf_built_check:", msg)
    sys.exit(1)


def main(path):
    doc = ezdxf.readfile(path)
    if doc.dxfversion != "AC1032":
        fail(f"version {doc.dxfversion}")
    auditor = doc.audit()
    if auditor.errors:
        fail(f"audit errors: {[str(e.message) for e in auditor.errors]}")
    for name, color in (("survey", 3), ("design \u00e4\u20ac", 5)):
        if name not in doc.layers:
            fail(f"layer {name!r} missing")
        if doc.layers.get(name).dxf.color != color:
            fail(f"layer {name!r} colour {doc.layers.get(name).dxf.color}")
    msp = doc.modelspace()
    plines = msp.query("POLYLINE")
    if len(plines) != 2:
        fail(f"{len(plines)} polylines")
    for k, p in enumerate(plines):
        if not p.is_3d_polyline:
            fail("not a 3D polyline")
        pts = [tuple(v.dxf.location) for v in p.vertices]
        want = [(i + 0.5 * k, 2.0 * i, 0.1 * i) for i in range(4)]
        if pts != want:
            fail(f"vertices {pts} != {want}")
        if p.dxf.layer != "survey":
            fail(f"layer {p.dxf.layer}")
        if p.is_closed != (k == 1):
            fail("closed flag")
        xd = p.get_xdata("VORA_TEST")
        if [(t.code, t.value) for t in xd] != [(1000, f"line {k}"), (1070, k), (1040, 2.5)]:
            fail(f"xdata {list(xd)}")
    lines = msp.query("LINE")
    if len(lines) != 1 or tuple(lines[0].dxf.end) != (10.0, 0.1, 0.0) or lines[0].dxf.layer != "design \u00e4\u20ac":
        fail("LINE")
    root = doc.rootdict
    if "VORA_DATA" not in root:
        fail("dictionary VORA_DATA missing")
    d = root["VORA_DATA"]
    x = d["settings"]
    if x.dxftype() != "XRECORD":
        fail("xrecord missing")
    tags = [(t.code, t.value) for t in x.tags]
    if tags != [(1, "tolerance"), (40, 0.001), (70, 3)]:
        fail(f"xrecord tags {tags}")
    print("ezdxf_built_check: ok")


if __name__ == "__main__":
    main(sys.argv[1])
