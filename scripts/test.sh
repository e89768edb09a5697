#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
# BRINDLE_SANITIZE=1 builds into build-sanitize/ with AddressSanitizer and UBSan instead.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

if [ "${BRINDLE_SANITIZE:-0}" = "1" ]; then
    export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build-sanitize}"
    "$top/scripts/build.sh" -DBRINDLE_SANITIZE=ON -DBRINDLE_BUILD_BENCH=OFF
else
    export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build}"
    "$top/scripts/build.sh"
fi
ctest --test-dir "$BRINDLE_BUILD_DIR" --output-on-failure -j "$(nproc)" --timeout 600
