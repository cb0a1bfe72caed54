#!/usr/bin/python3
"""ezdxf's load and save times on the files dxf_bench writes, for the
comparison in docs/PERFORMANCE.md.

    /usr/bin/python3 bench/dxf_bench_ezdxf.py FILE.dxf [FILE.dxf ...]

Prints, per file: size, ezdxf.readfile time and MB/s, doc.saveas time and
MB/s (best of --repeat runs, default 1).
"""
import os
import sys
import tempfile
import time

import ezdxf


def best(fn, repeat):
    times = []
    result = None
    for _ in range(repeat):
        t0 = time.perf_counter()
        result = fn()
        times.append(time.perf_counter() - t0)
    return min(times), result


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
        print(f"{os.path.basename(path)}\t{size:.1f} MB\tezdxf load {load:.2f} s ({size / load:.1f} MB/s)"
              f"\tsave {save:.2f} s ({size / save:.1f} MB/s)")


if __name__ == "__main__":
    main(sys.argv[1:])
