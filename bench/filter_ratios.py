#!/usr/bin/env python3
"""Puts our filter rows beside the peers' W1, W2 and W3, and checks the results.

Usage: filter_ratios.py DATA_DIR PEERS.csv BRINDLE.csv [BRINDLE.csv ...]

Prints one table of the CSVs, then for each workload how many times faster our row is than each
peer's (by median and by min), against the goals; with several runs of ours (before and after the
peers, on a machine whose load moves) the slowest of them counts: W1 at least 15 times ITK's MedianImageFilter
on its default threads, W2 at least 3 times scipy's uniform_filter, W3 at least 4 times scipy's
grey_dilation. Then the results: W3's sum must equal the peers'; for W1 and W2, whose edges
differ by design (the peers repeat the edge voxels, ours leave the outside out), the sum or mean
over the interior (one voxel away from every face) is compared with scipy's, computed here.
"""
import csv
import json
import os
import sys

import numpy as np
from scipy import ndimage as ndi

GOALS = {  # workload: (peer tool, its threads or None for any, least ratio)
    "W1 median 3x3x3 A u16": ("itk MedianImageFilter", "2", 15.0),
    "W2 mean 3x3x3 A f32": ("scipy.ndimage.uniform_filter", None, 3.0),
    "W3 dilate 3x3x3 A u16": ("scipy.ndimage.grey_dilation", None, 4.0),
}
OURS = {
    "W1 median 3x3x3 A u16": "brindle XMedianFilterVolumeTool",
    "W2 mean 3x3x3 A f32": "brindle XSpatialFilterVolumeTool",
    "W3 dilate 3x3x3 A u16": "brindle XDilateFilterVolumeTool box",
}


def read(path):
    with open(path, newline="") as f:
        return [r for r in csv.DictReader(f) if r["workload"][:2] in ("W1", "W2", "W3")]


def result(row, key):
    for item in row["result"].split(";"):
        k, _, v = item.partition("=")
        if k == key:
            return v
    return None


def load_a(data_dir):
    with open(os.path.join(data_dir, "A.json")) as f:
        meta = json.load(f)
    a = np.fromfile(os.path.join(data_dir, "A.raw"), dtype=np.dtype("<u2"))
    return a.reshape(meta["nz"], meta["ny"], meta["nx"]).astype(np.uint16)


def slowest(runs):
    """Our rows with, for each workload and tool, the largest median and min of the runs."""
    rows = {}
    for row in (r for run in runs for r in run):
        key = (row["workload"], row["tool"])
        if key not in rows:
            rows[key] = dict(row)
        else:
            for column in ("median_ms", "min_ms"):
                rows[key][column] = str(max(float(rows[key][column]), float(row[column])))
    return list(rows.values())


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    peers = read(sys.argv[2])
    runs = [read(path) for path in sys.argv[3:]]
    ours = slowest(runs)
    rows = sorted([r for run in runs for r in run] + peers, key=lambda r: r["workload"][:2])
    columns = list(rows[0])
    widths = [max([len(c)] + [len(r[c]) for r in rows]) for c in columns]
    for r in [dict(zip(columns, columns))] + rows:
        print("  ".join(r[c].ljust(w) for c, w in zip(columns, widths)).rstrip())

    print("\nSpeed (peer time / our time; median and min of each):")
    failed = False
    for workload, (peer_tool, peer_threads, goal) in GOALS.items():
        mine = [r for r in ours if r["workload"] == workload and r["tool"] == OURS[workload]]
        for peer in (r for r in peers if r["workload"] == workload):
            if not mine:
                continue
            by_median = float(peer["median_ms"]) / float(mine[0]["median_ms"])
            by_min = float(peer["min_ms"]) / float(mine[0]["min_ms"])
            target = peer["tool"] == peer_tool and (peer_threads is None or peer["threads"] == peer_threads)
            verdict = ""
            if target:
                verdict = f"  goal {goal:g}x: " + ("met" if by_median >= goal else "NOT MET")
                failed |= by_median < goal
            print(f"  {workload}: {peer['tool']} [{peer['threads']}t] {by_median:.1f}x (min {by_min:.1f}x){verdict}")

    print("\nResults:")
    a = load_a(sys.argv[1])
    inner = (slice(1, -1),) * 3
    median = ndi.median_filter(a, size=3, mode="nearest")
    mean = ndi.uniform_filter(a.astype(np.float32), size=3, mode="nearest")
    checks = [
        ("W1 median 3x3x3 A u16", "interior_sum", str(int(median[inner].sum(dtype=np.uint64)))),
        ("W2 mean 3x3x3 A f32", "interior_mean", f"{mean[inner].mean(dtype=np.float64):.4f}"),
    ]
    for row in (r for r in peers if r["workload"] == "W3 dilate 3x3x3 A u16" and r["tool"].startswith("scipy")):
        checks.append(("W3 dilate 3x3x3 A u16", "sum", result(row, "sum")))
    for workload, key, theirs in checks:
        mine = [r for r in ours if r["workload"] == workload and r["tool"].startswith(OURS[workload])]
        for row in mine:
            same = result(row, key) == theirs
            failed |= not same
            print(f"  {workload} {row['tool']}: {key}={result(row, key)}, scipy {theirs}: "
                  + ("same" if same else "DIFFERENT"))
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
