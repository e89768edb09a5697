#!/usr/bin/env bash
# brindle import of a 512 x 512 x 64 16-bit TIFF stack against libtiff's tiffcp copying it.
#
# Usage: bench/run_import_bench.sh [DATA_DIR] [REPETITIONS]
#   DATA_DIR      where the stack and the copies go (default: build/bench-data)
#   REPETITIONS   timed runs of each tool (default 9)
# Installs Debian's libtiff-tools (tiffcp) and python3 when missing, builds the project, and
# prints one CSV row for each tool and the ratio of their speeds.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
python=/usr/bin/python3

"$top/bench/install_missing.sh" tiffcp=libtiff-tools "$python=python3"

export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build}"
"$top/scripts/build.sh" >/dev/null
"$python" "$top/bench/tiff_import_bench.py" "$BRINDLE_BUILD_DIR/apps/brindle/brindle" \
    "${1:-$BRINDLE_BUILD_DIR/bench-data}" "${2:-9}"
