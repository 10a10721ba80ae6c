#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/deps.sh" test
bash "$root/scripts/build.sh"
cd "${BUILD_DIR:-$root/build}"
ctest --output-on-failure -j "$(nproc)"
