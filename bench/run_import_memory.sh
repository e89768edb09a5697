#!/usr/bin/env bash
# Peak memory of brindle import on a 1 GiB 16-bit TIFF stack, and of --all-channels on the same
# pages as two channels, measured with /usr/bin/time -v (see import_memory_bench.py).
#
# Usage: bench/run_import_memory.sh [DATA_DIR]
#   DATA_DIR   where the 2 GiB of stacks and the volume files go (default: build/bench-data)
# Installs Debian's time and python3 when missing, and builds the project.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
python=/usr/bin/python3

"$top/bench/install_missing.sh" /usr/bin/time=time "$python=python3"

export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build}"
"$top/scripts/build.sh" >/dev/null
"$python" "$top/bench/import_memory_bench.py" "$BRINDLE_BUILD_DIR/apps/brindle/brindle" \
    "${1:-$BRINDLE_BUILD_DIR/bench-data}"
