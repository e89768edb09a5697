#!/usr/bin/env bash
# Installs the Debian packages that the project needs; does nothing when they are all there.
set -euo pipefail

packages=(
    build-essential
    cmake
    ninja-build
    libgtest-dev
    libbenchmark-dev
    zlib1g-dev
    libtiff-dev
    libpng-dev
    libexpat1-dev
    pkg-config
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
