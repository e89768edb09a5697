#!/usr/bin/env bash
# Our neighbourhood filters beside the peers' W1, W2 and W3 (median, mean and dilation 3x3x3 of
# stack A), in one session: bench_filters, the peers' run_all.sh limited to those three workloads
# (ITK on one thread and on its default threads, scipy), bench_filters again, then the table, the
# speed ratios against the goals (the slower of our two runs counting) and the check of the
# results (bench/filter_ratios.py).
#
# Usage: bench/run_filter_bench.sh [WORK_DIR]
#   WORK_DIR   holds data/ (the peers' inputs, made with their gen_data.py when missing), the
#              peers' build/, and the CSVs and reports (default: build/filter-bench)
# Environment:
#   BENCH_PEERS     the peers' folder (default: ../shared/bench-peers beside the project)
#   BENCH_REPEATS   timed runs of each row (default 5)
# The peers need Debian's python3-scipy, python3-skimage and libinsighttoolkit5-dev; they are
# installed with apt-get when missing, for this benchmark only.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${BRINDLE_BUILD_DIR:-$top/build}"
peers="${BENCH_PEERS:-$top/../shared/bench-peers}"
python=/usr/bin/python3
if [ ! -x "$peers/run_all.sh" ]; then
    echo "no peers' benchmarks in $peers (set BENCH_PEERS)" >&2
    exit 1
fi

missing=()
"$python" -c "import numpy, scipy, skimage" 2>/dev/null || missing+=(python3-numpy python3-scipy python3-skimage)
dpkg-query -W -f='${Status}' libinsighttoolkit5-dev 2>/dev/null | grep -q "ok installed" ||
    missing+=(libinsighttoolkit5-dev)
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing ${missing[*]} for the peers" >&2
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -q >&2
    $sudo apt-get install -y -q --no-install-recommends "${missing[@]}" >&2
fi

work="${1:-$top/build/filter-bench}"
mkdir -p "$work"
work="$(cd "$work" && pwd)"
if [ ! -f "$work/data/manifest.json" ]; then
    "$python" "$peers/gen_data.py" "$work/data" >/dev/null
fi
cmake --build "$build" --target bench_filters >&2

echo "== ours" >&2
BRINDLE_BENCH_DATA="$work/data" "$build/bench/bench_filters" > "$work/brindle-before.csv"
echo "== peers" >&2
CSV_OUT="$work/peers.csv" PEERS_ONLY=W1,W2,W3 PYTHON="$python" "$peers/run_all.sh" "$work" > "$work/peers-run.txt"
echo "== ours again" >&2
BRINDLE_BENCH_DATA="$work/data" "$build/bench/bench_filters" > "$work/brindle-after.csv"
grep -E "^(cpu|simd|during|WARNING)" "$work/peers-run.txt" || true
echo "load average after: $(cut -d' ' -f1-3 /proc/loadavg)"
echo
"$python" "$top/bench/filter_ratios.py" "$work/data" "$work/peers.csv" "$work/brindle-before.csv" \
    "$work/brindle-after.csv"
