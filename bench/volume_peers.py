#!/usr/bin/env python3
"""numpy doing what bench_volumes measures, on the same 512x512x64 inputs, as CSV rows.

Usage: volume_peers.py DATA_DIR   (B.raw and B8.raw of the peers' gen_data.py)

Timing as in the peers' scripts: one warm-up call, then REPEATS timed calls; median, min, max.
Each row does the work of ours: the conversions write into an array made beforehand (out=),
as ours write into a destination volume made beforehand, and the warm-up call touches its pages.
"""
import sys

import numpy as np

from peer_timing import bench, load, row


def main():
    b = load(sys.argv[1], "B.raw", np.uint16)
    b8 = load(sys.argv[1], "B8.raw", np.uint8)
    copy = np.empty_like(b)

    def copy_b():
        np.copyto(copy, b)
        return copy
    out, t = bench(copy_b)
    row("V1 copy u16 512x512x64", "numpy copyto", t, f"bytesum={int(out.view(np.uint8).sum(dtype=np.uint64))}")
    grey8 = np.empty(b.shape, np.uint8)
    out, t = bench(lambda: np.right_shift(b, 8, out=grey8, casting="unsafe"))
    row("W12 u16->u8 (v>>8) B", "numpy right_shift(b, 8, out=uint8)", t, f"sum={int(out.sum(dtype=np.uint64))}")
    # Alpha 255 in the first byte, then red, green and blue: one little-endian 32-bit word.
    argb = np.empty(b8.shape, np.uint32)

    def to_argb():
        np.multiply(b8, np.uint32(0x01010100), out=argb, dtype=np.uint32)
        return np.bitwise_or(argb, np.uint32(0xFF), out=argb)
    out, t = bench(to_argb)
    row("V2 u8->argb32 B8", "numpy multiply 0x01010100 | 0xff (out=)", t,
        f"bytesum={int(out.view(np.uint8).sum(dtype=np.uint64))}")
    out, t = bench(lambda: (b.min(), b.max()))
    row("W6 min+max B", "numpy min+max", t, f"min={out[0]};max={out[1]}")
    out, t = bench(lambda: b.sum(dtype=np.uint64))
    row("W6 sum B", "numpy sum", t, f"sum={int(out)}")
    work = b.copy()

    def add():
        work.__iadd__(np.uint16(7))
        return work
    out, t = bench(add)
    row("V3 add value u16 B", "numpy += 7 (in place)", t, f"bytes={work.nbytes}")


if __name__ == "__main__":
    main()
