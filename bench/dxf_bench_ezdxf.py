#!/usr/bin/python3
"""ezdxf's load and save times on the files dxf_bench writes, for the
comparison in docs/PERFORMANCE.md.

    /usr/bin/python3 bench/dxf_bench_ezdxf.py FILE.dxf [FILE.dxf ...]

Prints, per file: size, ezdxf.readfile and doc.saveas times, wall clock and
CPU, and MB/s of CPU time (best of --repeat runs, default 1). CPU time is
what compares on a shared machine.
"""
import os
import sys
import tempfile
import time

import ezdxf


def best(fn, repeat):
    """Best wall and CPU (process) time of repeat runs, and the last result."""
    walls, cpus = [], []
    result = None
    for _ in range(repeat):
        w0, c0 = time.perf_counter(), time.process_time()
        result = fn()
        walls.append(time.perf_counter() - w0)
        cpus.append(time.process_time() - c0)
    return (min(walls), min(cpus)), result


def main(argv):
    repeat = 1
    if argv and argv[0].startswith("--repeat="):
        repeat = int(argv[0].split("=", 1)[1])
        argv = argv[1:]
    for path in argv:
        size = os.path.getsize(path) / 1e6
        load, doc = best(lambda: ezdxf.readfile(path), repeat)
        with tempfile.TemporaryDirectory() as tmp:
            out = os.path.join(tmp, "out.dxf")
            save, _ = best(lambda: doc.saveas(out), repeat)
        print(f"{os.path.basename(path)}\t{size:.1f} MB"
              f"\tezdxf load {load[0]:.2f} s wall, {load[1]:.2f} s CPU ({size / load[1]:.2f} MB/s CPU)"
              f"\tsave {save[0]:.2f} s wall, {save[1]:.2f} s CPU ({size / save[1]:.2f} MB/s CPU)")


if __name__ == "__main__":
    main(sys.argv[1:])
