"""Runs the road-edge example and reads its drawing back through the console.

The example prints the model it built (station, easting, northing, level,
type per point); the console's JSON for the saved drawing must hold the same
points, the marker's mid ordinate distance and the two design levels exactly.
With python3-ezdxf present, the saved polyline must also carry the marker as
any DXF reader sees it.
"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path


def main(example, vora):
    with tempfile.TemporaryDirectory() as tmp:
        dxf = str(Path(tmp) / "road_edge.dxf")
        run = subprocess.run([example, dxf], capture_output=True, text=True, check=True)
        rows = [line.split() for line in run.stdout.splitlines() if line[:1] == " " and line.split()[0][0].isdigit()]
        printed = [(float(r[0]), float(r[1]), float(r[2]), float(r[3]), 0 if r[4] == "feature" else 1) for r in rows]
        assert printed, run.stdout

        report = json.loads(subprocess.run([vora, "-i", dxf, "--featurelines", "--json"], capture_output=True,
                                           text=True, check=True).stdout)
        lines = report["featurelines"]
        assert len(lines) == 1, lines
        line = lines[0]
        assert line["layer"] == "ROAD EDGE", line
        assert line["midOrdinateDistance"] == 0.01, line
        points = line["points"]
        assert len(points) == len(printed), (len(points), len(printed))
        for p, (station, x, y, z, kind) in zip(points, printed):
            # The example prints millimetres; the model must agree to them.
            assert p["type"] == kind, (p, kind)
            for got, want in ((p["station"], station), (p["x"], x), (p["y"], y), (p["z"], z)):
                assert abs(got - want) <= 0.0005, (p, station)
        assert line["length"] == points[-1]["station"], line
        # Both design levels are in the model as given.
        levels = {round(p["station"], 6): p["z"] for p in points}
        assert levels[60.0] == 103.6 and levels[430.0] == 103.65, levels
        # A straight start, arcs that come back as arcs, grade breaks inside them.
        assert points[0]["bulge"] == 0.0 and sum(1 for p in points if p["bulge"] != 0.0) == 2, points
        assert sum(1 for p in points if p["type"] == 1) >= 3, points

        dump = subprocess.run([vora, "-i", dxf, "--dump", line["handle"]], capture_output=True, text=True,
                              check=True).stdout
        assert dump.startswith("Featureline: \nNumber of feature points: %d, mid ordinate distance: 0.010000\n"
                               % len(points)), dump

        try:
            import ezdxf
        except ImportError:
            return 0
        doc = ezdxf.readfile(dxf)
        polylines = [e for e in doc.modelspace() if e.dxftype() == "POLYLINE"]
        assert len(polylines) == 1 and polylines[0].is_3d_polyline
        tags = [(t.code, t.value) for t in polylines[0].get_xdata("VORA_XPLINE_APPN")]
        assert tags == [(1040, 0.01)], tags
        assert len(polylines[0].vertices) == line["vertices"]
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
