#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job on the bundled example.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/deps.sh" build
QMXML_BUILD_TESTS=OFF bash "$root/scripts/build.sh"
"${BUILD_DIR:-$root/build}/examples/qmxml_orders"
