#!/usr/bin/env bash
# Configures and builds the project into build/ (or $BRINDLE_BUILD_DIR).
# Extra arguments go to CMake's configure step, e.g. -DBRINDLE_SANITIZE=ON. Warnings are errors
# here (and so in the tests and CI), unlike in a plain CMake build.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${BRINDLE_BUILD_DIR:-$top/build}"
jobs="${BRINDLE_JOBS:-$(nproc)}"

"$top/scripts/install-deps.sh"
cmake -S "$top" -B "$build" -G Ninja -DBRINDLE_WARNINGS_AS_ERRORS=ON "$@" > "$build.configure.log" 2>&1 || {
    cat "$build.configure.log"
    exit 1
}
cmake --build "$build" -j "$jobs"
