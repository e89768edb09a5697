#!/usr/bin/env bash
# W8 in one session: the 8-bit stack B8 (512x512x64) resampled to 384x384x48, by our
# XVolumeResampleTool (bench_resample, one thread) and by the peers: ITK's ResampleImageFilter on
# one thread and on ITK's default (the number of cores), scipy.ndimage.zoom(order=1) and
# scikit-image's resize, all on the same bytes. Ours and the peers' run in turn, ROUNDS times;
# the script prints every row as one CSV table (the result column ends with the round), then
# the ratios of each round.
#
# Usage: bench/run_resample_bench.sh [WORK_DIR] [ROUNDS]
#   WORK_DIR  the peers' build, the data and the CSVs (default: build/resample-bench)
#   ROUNDS    rounds of the peers' then ours (default 2)
# Environment:
#   BENCH_PEERS   the peers' folder (default: shared/bench-peers beside the project, or beside
#                 the folder of worktrees that holds it)
# The peers need Debian's libinsighttoolkit5-dev (with libfftw3-dev for its headers),
# python3-scipy and python3-skimage: they are installed here with apt-get when missing. The library's build and tests never need them.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
peers="${BENCH_PEERS:-}"
if [ -z "$peers" ]; then
    peers="$top/../shared/bench-peers"
    [ -d "$peers" ] || peers="$top/../../shared/bench-peers"
fi
python=/usr/bin/python3
work="${1:-$top/build/resample-bench}"
rounds="${2:-2}"

# Debian's packages of the peers, installed when missing; ITK's headers include FFTW's.
missing=()
for package in libinsighttoolkit5-dev libfftw3-dev python3-numpy python3-scipy python3-skimage; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" || missing+=("$package")
done
install_packages() {
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -q >/dev/null
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "$@" >/dev/null
}
[ ${#missing[@]} -eq 0 ] || install_packages "${missing[@]}"

export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build}"
"$top/scripts/build.sh" >/dev/null
mkdir -p "$work"
csv="$work/w8.csv"
echo "workload,tool,threads,median_ms,min_ms,max_ms,result" > "$csv"
for round in $(seq 1 "$rounds"); do
    # The peers' first round also makes the data in WORK_DIR/data.
    if ! PEERS_ONLY=W8 PYTHON="$python" CSV_OUT="$work/peers-$round.csv" "$peers/run_all.sh" "$work" \
        > "$work/peers-$round.log" 2>&1; then
        cat "$work/peers-$round.log" >&2
        exit 1
    fi
    grep '^W8' "$work/peers-$round.csv" | sed "s/\$/;round=$round/" >> "$csv"
    BRINDLE_BENCH_DATA="$work/data" "$BRINDLE_BUILD_DIR/bench/bench_resample" | grep '^W8' |
        sed "s/\$/;round=$round/" >> "$csv"
done
cat "$csv"
"$python" - "$csv" <<'PYTHON'
import csv
import sys

rows = list(csv.DictReader(open(sys.argv[1])))
for round_ in sorted({r["result"].rsplit("round=", 1)[1] for r in rows}):
    here = [r for r in rows if r["result"].endswith("round=" + round_) and r["workload"].endswith("linear")]
    ours = next(r for r in here if r["tool"] == "brindle XVolumeResampleTool triangle")
    itk = sorted((r for r in here if r["tool"].startswith("itk")), key=lambda r: int(r["threads"]))
    zoom = [r for r in here if r["tool"].startswith("scipy.ndimage.zoom")]
    ratios = [f"{r['tool']} on {r['threads']} thread(s) / ours: "
              f"{float(r['median_ms']) / float(ours['median_ms']):.2f}x" for r in itk + zoom]
    print(f"round {round_}: ours {float(ours['median_ms']):.1f} ms; " + "; ".join(ratios))
PYTHON
