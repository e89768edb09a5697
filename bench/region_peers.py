#!/usr/bin/env python3
"""numpy doing what bench_regions measures: &, | and & ~ of the boolean arrays B > 1000 and
B > 600, and the count of a mask, as CSV rows.

Usage: region_peers.py DATA_DIR   (B.raw of the peers' gen_data.py)
"""
import os
import statistics
import sys
import time

import numpy as np

REPEATS = int(os.environ.get("BENCH_REPEATS", "7"))


def bench(fn):
    out = fn()
    times = []
    for _ in range(REPEATS):
        t0 = time.perf_counter()
        out = fn()
        times.append((time.perf_counter() - t0) * 1e3)
    return out, times


def row(workload, tool, times, result):
    print(f"{workload},{tool},1,{statistics.median(times):.3f},{min(times):.3f},{max(times):.3f},{result}",
          flush=True)


def main():
    b = np.fromfile(os.path.join(sys.argv[1], "B.raw"), dtype=np.dtype(np.uint16).newbyteorder("<"))
    b = b.reshape((64, 512, 512))
    c = b > 1000
    d = b > 600
    out, t = bench(lambda: c & d)
    row("R1 region and (B>1000)&(B>600)", "numpy c & d", t, f"voxels={int(np.count_nonzero(out))}")
    out, t = bench(lambda: c | d)
    row("R2 region or (B>1000) or (B>600)", "numpy c | d", t, f"voxels={int(np.count_nonzero(out))}")
    out, t = bench(lambda: c & ~d)
    row("R3 region minus (B>1000)&~(B>600)", "numpy c & ~d", t, f"voxels={int(np.count_nonzero(out))}")
    out, t = bench(lambda: np.count_nonzero(c))
    row("R4 region count voxels B>1000", "numpy count_nonzero", t, f"voxels={int(out)}")


if __name__ == "__main__":
    main()
