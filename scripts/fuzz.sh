#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (fuzz/, a project of its own) and runs
# the document loader fuzzer for the given number of seconds (default 60).
# New corpus entries go to the build directory; the seed corpus stays as it is.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
build=${FUZZ_BUILD_DIR:-$root/build-fuzz}
CC=clang CXX=clang++ cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "$(nproc)" --target load_xml_fuzzer
corpus="$build/corpus/load_xml"
mkdir -p "$corpus"
cd "$build"
"$build/load_xml_fuzzer" "$corpus" "$root/fuzz/corpus/load_xml" \
  -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=4096 -print_final_stats=1
