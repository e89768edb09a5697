#!/usr/bin/env bash
# Installs what is missing, builds, and runs the brindle tool on its built-in sample data.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build}"
"$top/scripts/build.sh" > "$BRINDLE_BUILD_DIR.build.log" 2>&1 || {
    cat "$BRINDLE_BUILD_DIR.build.log"
    exit 1
}
"$BRINDLE_BUILD_DIR/apps/brindle/brindle" "$@"
