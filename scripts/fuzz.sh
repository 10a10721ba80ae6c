#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (fuzz/, a project of its own) and runs
# one for the given number of seconds (default 60) from the given seed corpus:
# load_xml (default) and load_fi (Fast Infoset documents) drive the document
# loader, bind drives binding into bound classes, schema drives the schema
# loader and binding through the classes of the loaded schema, stream compares
# binding while parsing with binding a loaded tree.
# New corpus entries go to the build directory; the seed corpus stays as it is.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
seeds=${2:-load_xml}
build=${FUZZ_BUILD_DIR:-$root/build-fuzz}
CC=clang CXX=clang++ cmake -S "$root/fuzz" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
target=load_xml_fuzzer
[ "$seeds" = bind ] && target=bind_fuzzer
[ "$seeds" = schema ] && target=schema_fuzzer
[ "$seeds" = stream ] && target=stream_fuzzer
cmake --build "$build" -j "$(nproc)" --target "$target"
corpus="$build/corpus/$seeds"
mkdir -p "$corpus"
cd "$build"
"$build/$target" "$corpus" "$root/fuzz/corpus/$seeds" \
  -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=4096 -print_final_stats=1
