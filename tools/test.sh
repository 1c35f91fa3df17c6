#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite: first in
# the dev build, then again under the address and undefined-behaviour
# sanitizers (skip that second pass with QUORLIN_SKIP_ASAN=1).
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh

jobs=$(nproc)
run_suite() {
    local preset=$1
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs"
}

run_suite dev
if [[ "${QUORLIN_SKIP_ASAN:-0}" != "1" ]]; then
    run_suite asan
fi
