"""brindle import against libtiff's tiffcp on one 16-bit TIFF stack.

Usage: tiff_import_bench.py BRINDLE DATA_DIR [REPETITIONS]

Writes DATA_DIR/stack-512x512x64.tif (when missing) as ImageJ writes stacks: uncompressed,
little-endian, one strip a page, 16-bit grey, with resolution tags and an ImageJ description.
Then times, alternately, `tiffcp` copying it to another TIFF and `brindle import` making a .bvol
of it, and prints one CSV row per tool and the ratio of the speeds (tiffcp's time over ours).
"""

import os
import random
import statistics
import struct
import subprocess
import sys
import time

WIDTH, HEIGHT, DEPTH = 512, 512, 64
WORKLOAD = "tiff-import-512x512x64-u16"


def write_stack(path, width=WIDTH, height=HEIGHT, depth=DEPTH, layout=None):
    """layout: the description's lines of channels, slices and frames (default: depth slices)."""
    page_bytes = width * height * 2
    layout = layout or f"slices={depth}\n"
    description = (f"ImageJ=1.54f\nimages={depth}\n{layout}unit=micron\n"
                   f"spacing=0.5\nloop=false\n").encode() + b"\0"
    data_start = 8 + len(description)
    data_start += data_start % 2
    ifd_start = data_start + page_bytes * depth
    entries = 14
    ifd_size = 2 + entries * 12 + 4 + 16  # the entries, the next offset, two rationals
    with open(path + ".part", "wb") as out:
        out.write(b"II*\0" + struct.pack("<I", ifd_start))
        out.write(description)
        out.write(b"\0" * (data_start - 8 - len(description)))
        pixels = random.Random(8).randbytes(page_bytes)
        for _ in range(depth):
            out.write(pixels)
            pixels = pixels[2 * width:] + pixels[:2 * width]  # each page rolled by a row
        for page in range(depth):
            here = ifd_start + page * ifd_size
            rationals = here + 2 + entries * 12 + 4
            tags = [
                (254, 4, 1, 0),
                (256, 4, 1, width),
                (257, 4, 1, height),
                (258, 3, 1, 16),
                (259, 3, 1, 1),
                (262, 3, 1, 1),
                (270, 2, len(description), 8) if page == 0 else (270, 2, 1, 0),
                (273, 4, 1, data_start + page * page_bytes),
                (277, 3, 1, 1),
                (278, 4, 1, height),
                (279, 4, 1, page_bytes),
                (282, 5, 1, rationals),
                (283, 5, 1, rationals + 8),
                (296, 3, 1, 1),  # no unit: ImageJ's own, micrometres
            ]
            out.write(struct.pack("<H", entries))
            for tag, kind, count, value in tags:
                packed = struct.pack("<H", value) + b"\0\0" if kind == 3 else struct.pack("<I", value)
                out.write(struct.pack("<HHI", tag, kind, count) + packed)
            following = here + ifd_size if page + 1 < depth else 0
            out.write(struct.pack("<I", following))
            out.write(struct.pack("<IIII", 5, 1, 5, 1))  # 5 pixels a micrometre
    os.replace(path + ".part", path)


def timed(command):
    start = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return (time.perf_counter() - start) * 1e3


def main():
    brindle, data = sys.argv[1], sys.argv[2]
    repetitions = int(sys.argv[3]) if len(sys.argv) > 3 else 9
    os.makedirs(data, exist_ok=True)
    stack = os.path.join(data, f"stack-{WIDTH}x{HEIGHT}x{DEPTH}.tif")
    if not os.path.exists(stack):
        write_stack(stack)
    commands = {
        "tiffcp": ["tiffcp", stack, os.path.join(data, "copy.tif")],
        "brindle": [brindle, "--quiet", "import", stack, os.path.join(data, "stack.bvol")],
    }
    times = {tool: [] for tool in commands}
    for tool, command in commands.items():  # one run each to warm the caches
        timed(command)
    for _ in range(repetitions):
        for tool, command in commands.items():
            times[tool].append(timed(command))
    print("workload,tool,threads,median_ms,min_ms,max_ms,result")
    for tool, values in times.items():
        print(f"{WORKLOAD},{tool},1,{statistics.median(values):.2f},{min(values):.2f},{max(values):.2f},"
              f"{os.path.getsize(stack)} bytes")
    ratio = statistics.median(times["tiffcp"]) / statistics.median(times["brindle"])
    print(f"# speed of brindle import relative to tiffcp (tiffcp's median time over brindle's): {ratio:.2f}")


if __name__ == "__main__":
    main()
