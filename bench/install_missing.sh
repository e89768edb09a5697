#!/usr/bin/env bash
# Installs the Debian packages of the programs that a benchmark needs, when they are missing.
# Usage: bench/install_missing.sh PROGRAM=PACKAGE ...   (PROGRAM a name on PATH or a full path)
set -euo pipefail
missing=()
for pair in "$@"; do
    command -v "${pair%%=*}" >/dev/null || missing+=("${pair#*=}")
done
if [ ${#missing[@]} -ne 0 ]; then
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -q >/dev/null
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}" >/dev/null
fi
