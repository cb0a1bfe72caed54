#!/usr/bin/python3
"""Independent check of what the host writes, with ezdxf.

    ezdxf_compare.py ORIGINAL.dxf SAVED.dxf

Loads both files with ezdxf (falling back to ezdxf.recover where readfile
refuses the original, as it does for damaged exports), audits both, and
fails when the saved file has more audit errors than the original, or when
the two differ in their model-space entities (type, handle, layer), layers,
or objects. Exit status 0 on success, 1 on a difference, 2 on a load error of
the saved file.
"""
import sys

import ezdxf
from ezdxf import recover


def load(path):
    try:
        return ezdxf.readfile(path), False
    except Exception:
        doc, _auditor = recover.readfile(path)
        return doc, True


def summary(doc):
    msp = [(e.dxftype(), e.dxf.get("handle"), e.dxf.get("layer")) for e in doc.modelspace()]
    layers = sorted(l.dxf.name for l in doc.layers)
    objects = sorted((o.dxftype(), o.dxf.get("handle")) for o in doc.objects)
    return msp, layers, objects


def main():
    original, saved = sys.argv[1], sys.argv[2]
    odoc, orecovered = load(original)
    try:
        sdoc, srecovered = load(saved)
    except Exception as e:  # noqa: BLE001 - any failure to load is the finding
        print(f"{saved}: ezdxf cannot load it: {e!r}")
        return 2
    if srecovered and not orecovered:
        print(f"{saved}: ezdxf.readfile refuses it, the original loads")
        return 1
    oerr = len(odoc.audit().errors)
    serr = len(sdoc.audit().errors)
    status = 0
    if serr > oerr:
        print(f"{saved}: {serr} audit errors, the original has {oerr}")
        status = 1
    # Without handles in the file ezdxf numbers entities itself, in file order.
    os_, ss = summary(odoc), summary(sdoc)
    for what, a, b in zip(("model space", "layers", "objects"), os_, ss):
        if a != b:
            print(f"{saved}: {what} differ: {len(a)} in the original, {len(b)} saved")
            for x, y in zip(a, b):
                if x != y:
                    print(f"  first difference: {x} -> {y}")
                    break
            status = 1
    if status == 0:
        print(f"{saved}: same content as {original}; audit errors {serr} (original {oerr})")
    return status


if __name__ == "__main__":
    sys.exit(main())
