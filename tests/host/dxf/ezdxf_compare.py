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


def attr(e, name):
    try:
        return e.dxf.get(name)
    except Exception:  # noqa: BLE001 - types without the attribute
        return None


def file_handseed(path):
    """The $HANDSEED the file states, 0 when it has none."""
    with open(path, "rb") as f:
        lines = f.read().splitlines()
    for i, line in enumerate(lines):
        if line.strip() == b"$HANDSEED" and i + 2 < len(lines):
            try:
                return int(lines[i + 2].strip(), 16)
            except ValueError:
                return 0
    return 0


def summary(doc, seed):
    # Handles at or above the original's seed are ones ezdxf gave itself
    # (records without a handle, objects it adds); they follow the seed,
    # which a save may raise, so only their types are compared.
    def h(e):
        v = attr(e, "handle")
        return v if v and seed and int(v, 16) < seed else None

    msp = [(e.dxftype(), h(e), attr(e, "layer")) for e in doc.modelspace()]
    layers = sorted(l.dxf.name for l in doc.layers)
    objects = sorted(((o.dxftype(), h(o)) for o in doc.objects), key=lambda t: (t[0], t[1] or ""))
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
    seed = file_handseed(original)
    os_, ss = summary(odoc, seed), summary(sdoc, seed)
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
