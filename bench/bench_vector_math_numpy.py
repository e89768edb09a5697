#!/usr/bin/python3
"""numpy's side of the vector-kernel benchmark: the dot product and the complex product of the
same 4 M floats that bench_vector_math builds, and a copy of one array.

Prints CSV rows  workload,tool,threads,median_ms,min_ms,max_ms,result  on stdout, the workload
names matching those of bench_vector_math. Each operation: one warm-up call, then REPEATS timed
calls of the call alone; array results go into an output made beforehand (out=), as ours do.
numpy runs on one thread here (its dot product goes to BLAS, held to one thread by
run_vector_math.sh).
"""
import statistics
import time

import numpy as np

COUNT = 4 << 20
REPEATS = 15


def inputs():
    """a = (i * 7919 mod 1000) * 0.001 + 0.5, b = (i * 104729 mod 2000) * 0.001 - 1, in float32."""
    i = np.arange(COUNT, dtype=np.uint64)
    a = ((i * 7919) % 1000).astype(np.float32) * np.float32(0.001) + np.float32(0.5)
    b = ((i * 104729) % 2000).astype(np.float32) * np.float32(0.001) - np.float32(1.0)
    return a, b


def bench(fn):
    out = fn()
    times = []
    for _ in range(REPEATS):
        t0 = time.perf_counter()
        out = fn()
        times.append((time.perf_counter() - t0) * 1e3)
    return out, times


def row(workload, tool, times, result):
    print(f"{workload},{tool},1,{statistics.median(times):.6f},{min(times):.6f},"
          f"{max(times):.6f},{result}", flush=True)


def main():
    a, b = inputs()
    out = np.empty_like(a)

    _, times = bench(lambda: np.copyto(out, a))
    row("V copy 4M floats", "numpy np.copyto", times, f"arrays=2 check={out.astype(np.float64).sum():.7g}")

    value, times = bench(lambda: np.dot(a, b))
    row("V VectorDotProduct 4M floats", "numpy np.dot", times, f"arrays=2 check={float(value):.7g}")

    ac, bc, oc = a.view(np.complex64), b.view(np.complex64), out.view(np.complex64)
    _, times = bench(lambda: np.multiply(ac, bc, out=oc))
    row("V VectorComplexMultiply 4M floats", "numpy multiply out=", times,
        f"arrays=3 check={out.astype(np.float64).sum():.7g}")


if __name__ == "__main__":
    main()
