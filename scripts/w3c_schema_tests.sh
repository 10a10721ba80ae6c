#!/usr/bin/env bash
# Runs the W3C XML Schema test suite's schema tests (Microsoft and Boeing
# sets) against the schema loader and prints the figures per area and the
# remaining disagreements by cause.
#
#   scripts/w3c_schema_tests.sh [SUITE_DIR] [--list N]
#
# SUITE_DIR defaults to ../shared/w3c-xsdtests beside the project; the build
# directory to build/ (BUILD_DIR overrides it).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
suite=${1:-$root/../shared/w3c-xsdtests}
shift $(( $# > 0 ? 1 : 0 ))
build=${BUILD_DIR:-$root/build}
if [ ! -d "$suite/msMeta" ]; then
  echo "no W3C suite at $suite" >&2
  exit 2
fi
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S "$root" -B "$build" >/dev/null
fi
cmake --build "$build" --target w3c_schema_runner -j 2 >/dev/null
exec "$build/tests/w3c_schema_runner" "$suite" "$@"
