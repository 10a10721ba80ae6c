#!/usr/bin/env bash
# Configures and builds into BUILD_DIR (default build/). QMXML_SANITIZE=1 builds
# with AddressSanitizer and UBSan.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build}
sanitize=${QMXML_SANITIZE:-0}
[ "$sanitize" = 1 ] && sanitize=ON || sanitize=OFF
# QMXML_BUILD_TESTS=OFF builds only the library, the tool and the examples
# (what scripts/deps.sh build installs is enough for that).
tests=${QMXML_BUILD_TESTS:-ON}
cmake -S "$root" -B "$build" -DQMXML_SANITIZE="$sanitize" -DQMXML_BUILD_TESTS="$tests" -DQMXML_BUILD_BENCHMARKS="$tests" >/dev/null
cmake --build "$build" -j "$(nproc)"
