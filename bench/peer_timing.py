"""Timing and CSV rows shared by the numpy sides of our benchmarks, as in the peers' scripts:
one warm-up call, then REPEATS timed calls; median, min and max in milliseconds."""
import os
import statistics
import time

import numpy as np

REPEATS = int(os.environ.get("BENCH_REPEATS", "7"))
SHAPE = (64, 512, 512)


def load(data_dir, name, dtype):
    """A 512x512x64 raw little-endian stack of the peers' gen_data.py."""
    return np.fromfile(os.path.join(data_dir, name), dtype=np.dtype(dtype).newbyteorder("<")).reshape(SHAPE)


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
