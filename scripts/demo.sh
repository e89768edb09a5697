#!/usr/bin/env bash
# Installs what is missing, builds, and runs the brindle tool with the given arguments; without
# arguments it runs the main job, `brindle demo`, which writes into ./brindle-demo.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
export BRINDLE_BUILD_DIR="${BRINDLE_BUILD_DIR:-$top/build}"
"$top/scripts/build.sh" > "$BRINDLE_BUILD_DIR.build.log" 2>&1 || {
    cat "$BRINDLE_BUILD_DIR.build.log"
    exit 1
}
if [ $# -eq 0 ]; then
    set -- demo
fi
exec "$BRINDLE_BUILD_DIR/apps/brindle/brindle" "$@"
