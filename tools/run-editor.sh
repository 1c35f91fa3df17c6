#!/usr/bin/env bash
# Installs what is missing, builds, and starts the editor on the bundled manifests.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/install-deps.sh
cmake --preset dev >/dev/null
cmake --build --preset dev --target quorlin-profile-editor
exec build/dev/bin/quorlin-profile-editor "$@"
