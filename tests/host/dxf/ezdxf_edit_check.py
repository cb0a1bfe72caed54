#!/usr/bin/python3
"""ezdxf's view of an edited drawing (dxfio_test.cpp, editAndCheck): the
saved file loads, audits with no more errors than the original, keeps every
model-space entity of the original and has the added layer and the two 3D
polylines with their extended data."""
import sys

import ezdxf


def main(original, saved):
    odoc = ezdxf.readfile(original)
    sdoc = ezdxf.readfile(saved)
    oerr, serr = len(odoc.audit().errors), len(sdoc.audit().errors)
    if serr > oerr:
        print(f"ezdxf_edit_check: {serr} audit errors, the original has {oerr}")
        return 1
    before = [(e.dxftype(), e.dxf.handle) for e in odoc.modelspace()]
    after = [(e.dxftype(), e.dxf.handle) for e in sdoc.modelspace()]
    if after[: len(before)] != before:
        print("ezdxf_edit_check: model space of the original not kept in order")
        return 1
    added = [e for e in sdoc.modelspace()][len(before):]
    if [e.dxftype() for e in added] != ["POLYLINE", "POLYLINE"] or not all(e.is_3d_polyline for e in added):
        print(f"ezdxf_edit_check: added entities {[e.dxftype() for e in added]}")
        return 1
    for k, p in enumerate(added):
        if len(list(p.vertices)) != 4 or p.dxf.layer != "survey" or not p.has_xdata("VORA_TEST"):
            print("ezdxf_edit_check: polyline content")
            return 1
    if "survey" not in sdoc.layers:
        print("ezdxf_edit_check: layer missing")
        return 1
    print("ezdxf_edit_check: ok")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
