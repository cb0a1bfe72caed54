#!/usr/bin/python3
"""Reads a DXF file with ezdxf and prints what the database tests compare.

  dxf_dump.py drawing FILE PREFIX
      layers with colours; model-space entities with their points, extended
      data items and sort handles; the dictionaries and xrecords under the
      named objects dictionary entries whose names start with PREFIX.
  dxf_dump.py corpus FILE
      model-space counts by DXF type, by layer and by application (entities
      without extended data counted for every application), and the outlines
      of lines, arcs, circles and polylines in the world plane; the names
      of the materials.
Numbers are printed with %.17g, so equal doubles print the same text.
"""
import math
import sys
from collections import Counter, OrderedDict

import ezdxf

TOL_POINT = 1e-7


def num(v):
    if isinstance(v, float):
        return "%.17g" % v
    if isinstance(v, int):
        return str(v)
    if isinstance(v, str):
        return v
    return " ".join("%.17g" % float(c) for c in v)


def items(tags):
    return ["ITEM %d %s" % (t.code, num(t.value)) for t in tags]


def dump_drawing(doc, prefix, path):
    out = []
    # ezdxf makes the layer "Defpoints" up when a file has none.
    with open(path, encoding="utf-8", errors="replace") as f:
        has_defpoints = "\nDefpoints\n" in f.read()
    for layer in doc.layers:
        if layer.dxf.name == "Defpoints" and not has_defpoints:
            continue
        out.append("LAYER %s %d" % (layer.dxf.name, layer.dxf.color))
    msp = doc.modelspace()
    sort = dict(msp.get_redraw_order())
    for e in msp:
        out.append("ENT %s %s %s %d" % (e.dxf.handle, e.dxftype(), e.dxf.layer, e.dxf.color))
        if e.dxftype() == "LINE":
            out.append("PT " + num(e.dxf.start))
            out.append("PT " + num(e.dxf.end))
        elif e.dxftype() == "3DFACE":
            for i in range(4):
                out.append("PT " + num(e.dxf.get("vtx%d" % i)))
        elif e.dxftype() == "POLYLINE":
            out.append("CLOSED %d" % (1 if e.is_closed else 0))
            for v in e.vertices:
                out.append("PT " + num(v.dxf.location))
        if e.xdata is not None:
            for app, tags in e.xdata.data.items():
                out.append("XDATA %s" % app)
                out.extend(items(list(tags)[1:]))
        out.append("SORT %s" % sort.get(e.dxf.handle, e.dxf.handle))

    def walk(path, entry):
        if entry.dxftype() == "DICTIONARY":
            out.append("DICT %s" % path)
            for key, child in entry.items():
                walk(path + "\\" + key, child)
        elif entry.dxftype() == "XRECORD":
            out.append("XREC %s" % path)
            out.extend(items(entry.tags))
        else:
            out.append("OTHER %s %s" % (path, entry.dxftype()))

    for key, entry in doc.rootdict.items():
        if key.startswith(prefix):
            walk(key, entry)
    return out


def closing(points):
    closed = False
    if len(points) >= 2 and all(abs(a - b) < TOL_POINT for a, b in zip(points[-1][:3], points[0][:3])):
        points = points[:-1]
        closed = True
    return points, closed


def world_plane(e):
    ext = e.dxf.get("extrusion", (0.0, 0.0, 1.0))
    return tuple(ext) == (0.0, 0.0, 1.0)


def outline(e):
    t = e.dxftype()
    if t == "LINE":
        s, f = e.dxf.start, e.dxf.end
        return [(s.x, s.y, s.z, 0.0), (f.x, f.y, f.z, 0.0)], False
    if t not in ("ARC", "CIRCLE", "LWPOLYLINE", "POLYLINE") or not world_plane(e):
        return None
    if t == "ARC":
        c, r = e.dxf.center, e.dxf.radius
        a0, a1 = math.radians(e.dxf.start_angle), math.radians(e.dxf.end_angle)
        sweep = (a1 - a0) % (2 * math.pi)
        if sweep == 0.0:
            return None
        b = math.tan(sweep / 4)
        return [(c.x + r * math.cos(a0), c.y + r * math.sin(a0), c.z, b),
                (c.x + r * math.cos(a1), c.y + r * math.sin(a1), c.z, 0.0)], False
    if t == "CIRCLE":
        c, r = e.dxf.center, e.dxf.radius
        b = math.tan(math.pi / 8)
        return [(c.x + r, c.y, c.z, b), (c.x, c.y + r, c.z, b), (c.x - r, c.y, c.z, b),
                (c.x, c.y - r, c.z, b)], True
    if t == "LWPOLYLINE":
        z = e.dxf.elevation
        return [(x, y, z, b) for x, y, b in e.get_points("xyb")], e.closed
    if t == "POLYLINE":
        flags = e.dxf.flags
        if e.is_2d_polyline and not flags & 6:
            return [(v.dxf.location.x, v.dxf.location.y, v.dxf.location.z, v.dxf.bulge) for v in e.vertices], e.is_closed
        if e.is_3d_polyline and not flags & 4:
            return [(v.dxf.location.x, v.dxf.location.y, v.dxf.location.z, 0.0) for v in e.vertices], e.is_closed
    return None


def layer_of(e):
    try:
        return e.dxf.get("layer", "0")
    except ezdxf.DXFAttributeError:
        # Entities ezdxf does not model keep their tags.
        return e.xtags.get_subclass("AcDbEntity").get_first_value(8, "0")


def dump_corpus(doc):
    out = []
    msp = doc.modelspace()
    ents = list(msp)
    out.append("TOTAL %d" % len(ents))
    for t, n in sorted(Counter(e.dxftype() for e in ents).items()):
        out.append("CLASS %s %d" % (t, n))
    layers = OrderedDict()
    for e in ents:
        layers.setdefault(layer_of(e).lower(), [layer_of(e), 0])[1] += 1
    for name, n in layers.values():
        out.append("LAYER %s %d" % (name, n))
    apps = OrderedDict()
    for e in ents:
        if e.xdata is not None:
            for app in e.xdata.data:
                apps.setdefault(app.lower(), app)
    for key, app in apps.items():
        n = sum(1 for e in ents if e.xdata is None or len(e.xdata.data) == 0
                or any(a.lower() == key for a in e.xdata.data))
        out.append("APP %s %d" % (app, n))
    # Older files have no materials; ezdxf would make the defaults up.
    if doc.dxfversion >= "AC1018" and doc.materials is not None:
        for _, m in doc.materials:
            out.append("MATERIAL %s" % m.dxf.name)
    # Entities are named by their place in model space: ezdxf gives new
    # handles to files that have none.
    for index, e in enumerate(ents):
        got = outline(e)
        if got is None:
            continue
        points, closed = got
        points, dropped = closing(points)
        out.append("OUTLINE %d %d %d" % (index, len(points), 1 if (closed or dropped) else 0))
        for p in points:
            out.append("V %s" % num(p))
    return out


def main():
    mode, path = sys.argv[1], sys.argv[2]
    doc = ezdxf.readfile(path)
    lines = dump_drawing(doc, sys.argv[3], path) if mode == "drawing" else dump_corpus(doc)
    sys.stdout.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
