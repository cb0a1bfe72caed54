#!/usr/bin/env python3
"""The console's options that load VoraCLib, on a drawing made by the module.

Usage: console_module_test.py VORA DRAWING_MAKER MODULE PROBE [CMAKE BUILD_DIR]

DRAWING_MAKER (make_drawing.cpp) writes the drawing and prints the handles of
its entities and, read back from the saved file, the exact models of its
readable feature lines; MODULE is the built libvoraclib.so; PROBE a plug-in
with only the entry point, which prints the messages it gets. With CMAKE and
BUILD_DIR, the build is also installed into a scratch prefix and the
installed vora must find its libraries and the module by itself.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

vora, maker, module, probe = sys.argv[1:5]
install = sys.argv[5:7]
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)
        print("FAIL:", what)


def run(*args, cwd=None, env=None):
    p = subprocess.run([vora, *args], capture_output=True, text=True, cwd=cwd, env=env)
    return p.returncode, p.stdout, p.stderr


work = tempfile.mkdtemp()
try:
    drawing = os.path.join(work, "site.dxf")
    made = subprocess.run([maker, drawing], capture_output=True, text=True, check=True).stdout.splitlines()
    handle = {}
    models = {}
    current = None
    for line in made:
        f = line.split()
        if f[0] == "model":
            current = {"vertices": int(f[2]), "mid": float(f[3]), "points": []}
            models[f[1]] = current
        elif f[0] == "point":
            current["points"].append([int(f[1])] + [float(v) for v in f[2:]])
        else:
            handle[f[0]] = f[1]
    site = 'Site "A"\\1'
    types = {"line0": "LINE", "lineRoad": "LINE", "face": "3DFACE"}
    layers = {"line0": "0", "lineRoad": "ROAD", "face": site, "plain": "ROAD", "road": "ROAD", "broken": "0",
              "short": site}
    order = ["line0", "lineRoad", "face", "plain", "road", "broken", "short"]

    def listing(names):
        return "".join(f"{handle[n]}\t{types.get(n, 'POLYLINE')}\t{layers[n]}\n" for n in names)

    code, out, err = run("--help")
    documented = re.findall(r"^  (--[a-z]+|-i, --input|-o, --output|-h, --help)\b", out, re.M)
    check(code == 0 and sorted(documented) == sorted(
        ["-i, --input", "-o, --output", "--list", "-h, --help", "--layer", "--class", "--app", "--module",
         "--featurelines", "--json", "--dump", "--xdata"]), f"--help documents: {documented}")

    # --list: unfiltered it needs no module; each filter goes through the
    # module's query, names without case, values of one option as "any".
    code, out, err = run("-i", drawing, "--list", "--module", "/nonexistent")
    check(code == 0 and out == listing(order), f"--list without filters loads nothing: {code} {err}")
    cases = [
        (["--layer", "road"], ["lineRoad", "plain", "road"]),
        (["--layer", "ROAD", "--layer", 'site "a"\\1'], ["lineRoad", "face", "plain", "road", "short"]),
        (["--class", "line"], ["line0", "lineRoad"]),
        (["--class", "3dFace", "--class", "LINE"], ["line0", "lineRoad", "face"]),
        (["--class", "AcDbLine"], ["line0", "lineRoad"]),
        (["--class", "AcDbFace", "--class", "acdbline"], ["line0", "lineRoad", "face"]),
        (["--class", "polyline", "--layer", "road"], ["plain", "road"]),
        (["--app", "survey"], ["line0", "lineRoad", "face", "plain"]),
        (["--app", "other"], ["lineRoad", "face", "plain"]),
        (["--app", "OTHER", "--app", "vora_xpline_appn"], ["lineRoad", "face", "plain", "road", "broken", "short"]),
        (["--app", "other", "--class", "polyline", "--layer", "road"], ["plain"]),
        (["--layer", "nowhere"], []),
    ]
    for args, names in cases:
        code, out, err = run("-i", drawing, "--list", *args)
        check(code == 0 and out == listing(names), f"--list {' '.join(args)}: {code} {out!r} {err}")

    # --featurelines --json: one document; the readable lines with their exact
    # models, the broken one with its error, plain polylines left out.
    code, out, err = run("-i", drawing, "--featurelines", "--json")
    check(code == 0 and err == "", f"--featurelines --json: {code} {err}")
    doc = json.loads(out)
    lines = doc["featurelines"]
    check([l["handle"] for l in lines] == [handle["road"], handle["broken"], handle["short"]],
          f"feature lines: {[l['handle'] for l in lines]}")
    check(lines[1] == {"handle": handle["broken"], "error": "eNonCompatible3dPoly"}, f"broken: {lines[1]}")
    for name, line in (("road", lines[0]), ("short", lines[2])):
        want = models[handle[name]]
        check(line["layer"] == layers[name], f"{name} layer {line['layer']!r}")
        check(line["vertices"] == want["vertices"], f"{name} vertices {line['vertices']}")
        check(line["midOrdinateDistance"] == want["mid"], f"{name} mid ordinate distance")
        got = [[p["type"], p["x"], p["y"], p["z"], p["station"], p["bulge"], p["arcDistance"]] for p in line["points"]]
        check(got == want["points"], f"{name} points differ:\n{got}\n{want['points']}")
        check(line["length"] == want["points"][-1][4], f"{name} length")
    road = models[handle["road"]]
    check(any(p[0] == 1 for p in road["points"]) and any(p[5] != 0 for p in road["points"])
          and road["vertices"] > len(road["points"]), "the road line has an arc, an elevation point and its tessellation")

    # Every real is the shortest text that reads back, integral ones as "5.0".
    def significant(text):
        mantissa = text.lstrip("-").split("e")[0].replace(".", "").lstrip("0").rstrip("0")
        return len(mantissa)

    for key, text in re.findall(r'"(x|y|z|station|bulge|arcDistance|length|midOrdinateDistance)": ([^,}\]]+)', out):
        value = float(text)
        check(significant(text) <= significant(repr(value)) and ("." in text or "e" in text),
              f"{key} written as {text}")
    check('"x": 100.0,' in out and '"length": 5.0,' in out, "integral values end in .0")

    # The table: one row per feature line, columns as wide as their cells.
    code, out, err = run("-i", drawing, "--featurelines")
    road_length = repr(road["points"][-1][4])
    rows = [["handle", "layer", "points", "elevation points", "length", "mid ordinate distance"],
            [handle["road"], "ROAD", str(len(road["points"])), "1", road_length, "0.015"],
            [handle["broken"], "0", "error: eNonCompatible3dPoly"],
            [handle["short"], site, "2", "0", "5.0", "0.25"]]
    widths = [max(len(r[c]) for r in rows if len(r) == 6) for c in range(6)]
    table = "".join("".join(cell + (" " * (widths[c] - len(cell) + 2) if c + 1 < len(r) else "")
                            for c, cell in enumerate(r)) + "\n" for r in rows)
    check(code == 0 and out == table, f"--featurelines table:\n{out}\nwanted:\n{table}")

    # --dump: the module's dump, exactly.
    code, out, err = run("-i", drawing, "--dump", handle["short"].lower())
    check(code == 0 and out == (
        "Featureline: \nNumber of feature points: 2, mid ordinate distance: 0.250000\nFeature points: \n"
        "    p0: (100.000000000, 0.000000000, 0.000000000) t:V station: 0.000000 bulge: 0.000000000"
        " length: 5.000000 grade: 0.200000 \n"
        "    p1: (103.000000000, 4.000000000, 1.000000000) t:V station: 5.000000 bulge: 0.000000000"
        " length: 0.000000 grade: 0.000000 \n"), f"--dump short: {code} {out!r} {err}")
    pts = road["points"]
    want = "Featureline: \nNumber of feature points: %d, mid ordinate distance: %f\nFeature points: \n" % (
        len(pts), road["mid"])
    for i, p in enumerate(pts):
        length = pts[i + 1][4] - p[4] if i + 1 < len(pts) else 0.0
        grade = (pts[i + 1][3] - p[3]) / length if i + 1 < len(pts) else 0.0
        want += "    p%d: (%.9f, %.9f, %.9f) t:%s station: %f bulge: %.9f length: %f grade: %f \n" % (
            i, p[1], p[2], p[3], "V" if p[0] == 0 else "E", p[4], p[5], length, grade)
    code, out, err = run("-i", drawing, "--dump", handle["road"])
    check(code == 0 and out == want, f"--dump road:\n{out}\nwanted:\n{want}")
    code, out, err = run("-i", drawing, "--dump", handle["broken"], "-o", os.path.join(work, "out.dxf"))
    check(code == 1 and out == "\nA featureline error (6) occured.\n;\nAn error (-11) occured during the execution.\n;"
          and err == f"vora: cannot read '{handle['broken']}' as a feature line (-11)\n",
          f"--dump broken: {code} {out!r} {err!r}")
    check(not os.path.exists(os.path.join(work, "out.dxf")), "a failed --dump saves nothing")

    # Bad input: errors on standard error, exit 1, nothing on standard output.
    missing = os.path.join(work, "missing.dxf")
    for args, message in [
        (["--dump", "FFFF"], "vora: no object with handle 'FFFF'\n"),
        (["--dump", "2G"], "vora: no object with handle '2G'\n"),
        (["--dump", handle["face"]], f"vora: the object '{handle['face']}' is no 3D polyline\n"),
        (["--list", "--layer", "ROAD", "--module", "/nonexistent"],
         "vora: cannot load the module /nonexistent: /nonexistent: cannot open shared object file: "
         "No such file or directory\n"),
        (["--featurelines", "--module", "/nonexistent"], None),
        (["--featurelines", "--module", drawing], None),
        (["--json"], "vora: --json is a form of --featurelines\n"),
        (["--list", "--json"], "vora: --json is a form of --featurelines\n"),
        (["--layer", "ROAD"], "vora: --layer, --class and --app select what --list prints\n"),
        (["--list", "--class"], None),
        (["--dump"], None),
    ]:
        code, out, err = run("-i", drawing, *args, "-o", missing)
        ok = code == 1 and out == "" and not os.path.exists(missing)
        ok = ok and (err == message if message is not None else "\nvora: " in "\n" + err)
        if args[-1] == "/nonexistent" or args[-1] == drawing:
            ok = ok and err.startswith(f"vora: cannot load the module {args[-1]}: ")
        check(ok, f"{' '.join(args)}: {code} {out!r} {err!r}")

    # The module is found next to vora, else in ../lib (an installed tree);
    # --module names it anywhere.
    tree = os.path.join(work, "tree")
    os.makedirs(os.path.join(tree, "bin"))
    os.makedirs(os.path.join(tree, "lib"))
    shutil.copy(vora, os.path.join(tree, "bin", "vora"))
    p = subprocess.run([os.path.join(tree, "bin", "vora"), "-i", drawing, "--featurelines"], capture_output=True,
                       text=True)
    check(p.returncode == 1 and p.stderr.startswith(f"vora: cannot load the module {tree}/bin/libvoraclib.so: "),
          f"no module beside a copied vora: {p.returncode} {p.stderr}")
    shutil.copy(module, os.path.join(tree, "lib", "libvoraclib.so"))
    p = subprocess.run([os.path.join(tree, "bin", "vora"), "-i", drawing, "--featurelines"], capture_output=True,
                       text=True)
    check(p.returncode == 0 and p.stdout == table, f"module from ../lib: {p.returncode} {p.stderr}")
    os.rename(os.path.join(tree, "lib", "libvoraclib.so"), os.path.join(tree, "renamed.so"))
    code, out, err = run("-i", drawing, "--featurelines", "--module", "renamed.so", cwd=tree)
    check(code == 0 and out == table, f"--module with a relative path: {code} {err}")

    # A plug-in's entry point gets the initialisation message when it loads
    # and the unload message when the console ends; a refusal stops loading.
    code, out, err = run("-i", drawing, "--featurelines", "--module", probe)
    check(code == 1 and out == "acrxEntryPoint 1 with id\nacrxEntryPoint 2 with id\n"
          and err == f"vora: the module {probe} has no function vora_featureline_get_model\n",
          f"probe module: {code} {out!r} {err!r}")
    code, out, err = run("-i", drawing, "--list", "--class", "LINE", "--module", probe,
                         env=dict(os.environ, VORA_PROBE_REFUSE="1"))
    check(code == 1 and out == "acrxEntryPoint 1 with id\n"
          and err == f"vora: the module {probe} refused to initialise\n", f"refusing probe: {code} {out!r} {err!r}")
    code, out, err = run("-i", drawing, "--list", "--module", probe)
    check(code == 0 and out == listing(order), f"a module no option needs is not loaded: {out!r}")

    if install:
        prefix = os.path.join(work, "prefix")
        subprocess.run([install[0], "--install", install[1], "--prefix", prefix], capture_output=True, check=True)
        p = subprocess.run([os.path.join(prefix, "bin", "vora"), "-i", drawing, "--featurelines"],
                           capture_output=True, text=True)
        check(p.returncode == 0 and p.stdout == table, f"installed vora: {p.returncode} {p.stderr}")
finally:
    shutil.rmtree(work)

print("ok" if not failures else f"{len(failures)} failures")
sys.exit(1 if failures else 0)
