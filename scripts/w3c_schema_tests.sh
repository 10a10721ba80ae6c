#!/usr/bin/env bash
# Runs the W3C XML Schema test suite (Microsoft and Boeing sets): every schema
# test against the schema loader, every instance test through the dynamic
# classes with a round trip of each accepted valid instance (checked with
# xmllint when it is installed, and by comparing infosets). Prints the
# figures per area and the disagreements grouped by cause; the causes with
# an example each go to the report file it names.
#
#   scripts/w3c_schema_tests.sh [SUITE_DIR] [runner options: --list N, --timeout S,
#                                --xmllint PROGRAM|none, --schemas-only, --results FILE]
#
# SUITE_DIR defaults to ../shared/w3c-xsdtests beside the project; the build
# directory to build/ (BUILD_DIR overrides it), the report to
# BUILD_DIR/w3c_disagreements.txt (REPORT overrides it).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
suite=${1:-$root/../shared/w3c-xsdtests}
shift $(( $# > 0 ? 1 : 0 ))
build=${BUILD_DIR:-$root/build}
report=${REPORT:-$build/w3c_disagreements.txt}
if [ ! -d "$suite/msMeta" ]; then
  echo "no W3C suite at $suite" >&2
  exit 2
fi
if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S "$root" -B "$build" >/dev/null
fi
cmake --build "$build" --target w3c_schema_runner -j 2 >/dev/null
exec "$build/tests/w3c_schema_runner" "$suite" --report "$report" "$@"
