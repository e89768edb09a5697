"""Peak memory of brindle import, measured with /usr/bin/time -v.

Usage: import_memory_bench.py BRINDLE DATA_DIR

Writes (when missing) a 2048 x 2048 x 128 16-bit TIFF stack, 1 GiB of voxels, as ImageJ writes
it, and the same pages as a hyperstack of two channels. Runs `brindle import` of the first into
one volume and `brindle import --all-channels` of the second, each once, and prints one CSV row
for each: the wall time, and in the result the peak resident memory and its ratio to the
volume that the command holds (the whole stack, or one channel).
"""

import os
import re
import subprocess
import sys
import time

from tiff_import_bench import write_stack

WIDTH, HEIGHT, DEPTH = 2048, 2048, 128
VOLUME_BYTES = WIDTH * HEIGHT * DEPTH * 2


def peak_rss_bytes(command):
    """Runs the command under /usr/bin/time -v; its peak resident set in bytes and the wall time."""
    start = time.perf_counter()
    done = subprocess.run(["/usr/bin/time", "-v"] + command, check=True, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True)
    elapsed = (time.perf_counter() - start) * 1e3
    kilobytes = int(re.search(r"Maximum resident set size \(kbytes\): (\d+)", done.stderr).group(1))
    return kilobytes * 1024, elapsed


def main():
    brindle, data = sys.argv[1], sys.argv[2]
    os.makedirs(data, exist_ok=True)
    stack = os.path.join(data, f"stack-{WIDTH}x{HEIGHT}x{DEPTH}.tif")
    hyper = os.path.join(data, f"hyper-2x{WIDTH}x{HEIGHT}x{DEPTH // 2}.tif")
    if not os.path.exists(stack):
        write_stack(stack, WIDTH, HEIGHT, DEPTH)
    if not os.path.exists(hyper):
        write_stack(hyper, WIDTH, HEIGHT, DEPTH, f"channels=2\nslices={DEPTH // 2}\nhyperstack=true\n")
    runs = [
        ("tiff-import-peak-rss-2048x2048x128-u16", [brindle, "--quiet", "import", stack,
                                                    os.path.join(data, "stack.bvol")], VOLUME_BYTES),
        ("tiff-import-all-channels-peak-rss-2x2048x2048x64-u16",
         [brindle, "--quiet", "import", hyper, os.path.join(data, "hyper.bvol"), "--all-channels"], VOLUME_BYTES // 2),
    ]
    print("workload,tool,threads,median_ms,min_ms,max_ms,result")
    for workload, command, held in runs:
        peak, elapsed = peak_rss_bytes(command)
        print(f"{workload},brindle,1,{elapsed:.0f},{elapsed:.0f},{elapsed:.0f},"
              f"peak {peak / 2**20:.0f} MiB = {peak / held:.3f} x the volume of {held / 2**20:.0f} MiB")


if __name__ == "__main__":
    main()
