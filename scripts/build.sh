#!/usr/bin/env bash
# Installs what is missing, then configures and builds VextilToolkit.
#   scripts/build.sh [BUILD_DIR] [extra cmake arguments...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
shift || true

"$root/scripts/install-deps.sh"
# The development overrides are for the project's own tests and tools; the installed library
# never reads the environment, with or without them.
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEXTIL_ENV_OVERRIDES=ON "$@" >/dev/null
cmake --build "$build" --parallel "$(nproc)"
