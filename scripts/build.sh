#!/usr/bin/env bash
# Configures and builds into BUILD_DIR (default build/). QMXML_SANITIZE=1 builds
# with AddressSanitizer and UBSan.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
sanitize=${QMXML_SANITIZE:-0}
[ "$sanitize" = 1 ] && sanitize=ON || sanitize=OFF
cmake -S "$root" -B "$build" -DQMXML_SANITIZE="$sanitize" -DQMXML_BUILD_BENCHMARKS=ON >/dev/null
cmake --build "$build" -j "$(nproc)"
