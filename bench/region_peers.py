#!/usr/bin/env python3
"""numpy doing what bench_regions measures: &, | and & ~ of the boolean arrays B > 1000 and
B > 600, and the count of a mask, as CSV rows.

Usage: region_peers.py DATA_DIR   (B.raw of the peers' gen_data.py)
"""
import sys

import numpy as np

from peer_timing import bench, load, row


def main():
    b = load(sys.argv[1], "B.raw", np.uint16)
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
