#!/usr/bin/env bash
# Our benchmarks beside numpy and the memory limits, in one run, on the peers' inputs (B, B8).
#
# Usage: bench/run_peer_bench.sh [DATA_DIR]
#   DATA_DIR   folder with B.raw and B8.raw; made with the peers' gen_data.py when missing
#              (default: build/bench-data)
# Environment:
#   BENCH_PEERS   the peers' folder (default: ../shared/bench-peers beside the project)
#   BENCH_REPEATS timed repetitions of numpy's rows and of our region rows (default 7)
# Installs Debian's python3-numpy when Debian's python3 lacks it, builds the project, and prints
# one CSV table: the volume and region rows of ours, then numpy's for the same workloads.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
peers="${BENCH_PEERS:-$top/../shared/bench-peers}"
python=/usr/bin/python3

if ! "$python" -c "import numpy" 2>/dev/null; then
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -q >/dev/null
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends python3-numpy >/dev/null
fi

data="${1:-$top/build/bench-data}"
if [ ! -f "$data/B.raw" ] || [ ! -f "$data/B8.raw" ]; then
    mkdir -p "$data"
    "$python" "$peers/gen_data.py" "$data" >/dev/null
fi

"$top/scripts/build.sh" >/dev/null
echo "workload,tool,threads,median_ms,min_ms,max_ms,result"
for program in bench_volumes bench_regions; do
    BRINDLE_BENCH_DATA="$data" "$top/build/bench/$program" | tail -n +2
done
"$python" "$top/bench/volume_peers.py" "$data"
"$python" "$top/bench/region_peers.py" "$data"
