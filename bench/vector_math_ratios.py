#!/usr/bin/python3
"""Ratios of the vector-kernel benchmark, from the CSV rows of bench_vector_math and
bench_vector_math_numpy.py (files given as arguments).

For each kernel: the SSE2 implementation against the memory-bandwidth limit, that is a memcpy
of one array scaled to the arrays the kernel streams (time of the copy * arrays / 2; at least
0.7 is the aim), and against the portable implementation (at least 2 is the aim where the
kernel is bound by arithmetic, not memory; the rows on 16 K floats in the cache show the
arithmetic alone). Then numpy's time over ours where both ran.
"""
import csv
import sys

FIELDS = ["workload", "tool", "threads", "median_ms", "min_ms", "max_ms", "result"]


def read(paths):
    rows = {}
    for path in paths:
        with open(path) as f:
            for r in csv.DictReader((line for line in f if "," in line), fieldnames=FIELDS):
                if r["workload"] != "workload":
                    rows[(r["workload"], r["tool"])] = r
    return rows


def arrays(row):
    for part in row["result"].split():
        if part.startswith("arrays="):
            return int(part[len("arrays="):])
    return 0


def main():
    rows = read(sys.argv[1:])
    copy = float(rows[("V copy 4M floats", "memcpy")]["median_ms"])
    print(f"\nmemcpy of one 16 MiB array: {copy:.3f} ms")
    print(f"{'kernel':40s} {'SSE2 ms':>9s} {'portable':>9s} {'of limit':>9s} {'vs portable':>12s}")
    for (workload, tool), row in rows.items():
        if tool != "brindle SSE2":
            continue
        portable = rows.get((workload, "brindle portable"))
        sse2 = float(row["median_ms"])
        in_cache = "16K floats" in workload
        limit = f"{copy * arrays(row) / 2 / sse2:9.2f}" if not in_cache else f"{'-':>9s}"
        name = workload.replace("V ", "", 1).replace(" 4M floats", "")
        slow = float(portable["median_ms"]) if portable else float("nan")
        print(f"{name:40s} {sse2:9.3f} {slow:9.3f} {limit} {slow / sse2:12.2f}")
    print("\nnumpy time / our SSE2 time (above 1: ours faster)")
    for (workload, tool), row in rows.items():
        if not tool.startswith("numpy"):
            continue
        ours = rows.get((workload, "brindle SSE2")) or rows.get((workload, "memcpy"))
        if ours:
            print(f"{workload:40s} {tool:22s} {float(row['median_ms']) / float(ours['median_ms']):6.2f}")


if __name__ == "__main__":
    main()
