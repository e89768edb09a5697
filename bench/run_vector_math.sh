#!/usr/bin/env bash
# The vector-kernel benchmark with numpy beside it, in one session: runs bench_vector_math from
# the build folder ($BRINDLE_BUILD_DIR, default build/), then numpy on the same data with
# Debian's own python3 (installing python3-numpy with apt-get when it is missing), prints the
# CSV rows of both and then the ratios. numpy and its BLAS are held to one thread, as ours is.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${BRINDLE_BUILD_DIR:-$top/build}"
python=/usr/bin/python3

if ! "$python" -c "import numpy" 2>/dev/null; then
    echo "Installing python3-numpy for $python" >&2
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -q >&2
    $sudo apt-get install -y -q --no-install-recommends python3-numpy >&2
fi

if [ ! -x "$build/bench/bench_vector_math" ]; then
    cmake --build "$build" --target bench_vector_math >&2
fi

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
"$build/bench/bench_vector_math" > "$work/brindle.csv"
OMP_NUM_THREADS=1 OPENBLAS_NUM_THREADS=1 MKL_NUM_THREADS=1 \
    "$python" "$top/bench/bench_vector_math_numpy.py" > "$work/numpy.csv"
cat "$work/brindle.csv"
cat "$work/numpy.csv"
"$python" "$top/bench/vector_math_ratios.py" "$work/brindle.csv" "$work/numpy.csv"
