#!/usr/bin/env bash
# Installs the Debian 12 packages the project builds, tests and benchmarks with,
# and only those that are missing, so a machine that has them all is untouched.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev libgl-dev
    libpugixml-dev libssl-dev openssl
    googletest libgtest-dev libbenchmark-dev
    libplist-dev python3
    clang libclang-rt-14-dev
    lld gcovr
)

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "Installing missing packages: ${missing[*]}"
sudo=""
[[ $(id -u) -ne 0 ]] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
