#!/bin/sh
# Writes the same order book with this tree's library and with an earlier
# revision's, and compares: the written bytes (must be identical), the heap
# blocks per written order, and COrders::ToXml's speed as a ratio new/old.
# Two versions of libqmxml cannot share one process, so both are built from
# scratch with the same settings in a temporary directory, the current
# bench/write_orders_bench.cpp (and bench_support.h) is built against each, and
# the two programs take turns on the same book.
#
# usage: bench/compare_previous.sh [REV [ROUNDS]]
#   REV     the earlier revision (default 0f2b3f3)
#   ROUNDS  old/new turns (default 3; each turn is the best of 3 writes)
# QMXML_BENCH_MB sets the book's size (default 50). QMXML_COMPARE_DIR keeps
# the builds in that directory (reused on the next run) instead of a fresh one.
set -eu

rev=${1:-0f2b3f3}
rounds=${2:-3}
megabytes=${QMXML_BENCH_MB:-50}
tree=$(cd "$(dirname "$0")/.." && pwd)
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-/work}

if [ -n "${QMXML_COMPARE_DIR:-}" ]; then
    work=$QMXML_COMPARE_DIR
    mkdir -p "$work"
else
    work=$(mktemp -d /tmp/qmxml_compare_XXXXXX)
    trap 'rm -rf "$work"' EXIT
fi

launcher=
if command -v ccache >/dev/null 2>&1; then launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache; fi

# Builds the library, the order classes and write_orders_bench of the tree in $1/src.
build() {
    dir=$1
    # The benchmark source is the current one, whatever the revision had.
    cp "$tree/bench/write_orders_bench.cpp" "$tree/bench/bench_support.h" "$tree/bench/gen_orders.py" "$dir/src/bench/"
    if ! grep -q write_orders_bench "$dir/src/bench/CMakeLists.txt"; then
        cat >>"$dir/src/bench/CMakeLists.txt" <<'EOF'
if(TARGET write_orders_bench AND TARGET qmxml_orders_lib)
  target_link_libraries(write_orders_bench PRIVATE qmxml_orders_lib)
endif()
EOF
    fi
    cmake -S "$dir/src" -B "$dir/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQMXML_BUILD_TESTS=OFF \
        -DQMXML_BUILD_EXAMPLES=ON -DQMXML_BUILD_BENCHMARKS=ON $launcher >/dev/null
    cmake --build "$dir/build" -j2 --target write_orders_bench >"$dir/build.log" 2>&1 || {
        echo "building $dir failed; the end of $dir/build.log:" >&2
        tail -20 "$dir/build.log" >&2
        exit 1
    }
}

# The earlier revision as committed; this tree as it is, uncommitted changes included.
mkdir -p "$work/old/src" "$work/new/src"
git -C "$tree" archive "$rev" | tar -x -C "$work/old/src"
(cd "$tree" && git ls-files -co --exclude-standard -z | xargs -0 tar -cf - 2>/dev/null) | tar -x -C "$work/new/src"
echo "building $rev and this tree in $work ..."
build "$work/old"
build "$work/new"

orders=$(python3 -c "print(max(1, int($megabytes * 1e6 / 1086)))")
book=$work/book.xml
python3 "$tree/bench/gen_orders.py" "$orders" "$book"
echo "book: $(wc -c <"$book") bytes, $orders orders"

run() {  # $1 old|new, $2 round: prints "MB/s allocations-per-order bytes"
    "$work/$1/build/bench/write_orders_bench" 3 "$book" "$work/$1.out" | awk '/^result/ {print $2, $3, $4}'
}

old_best=0
new_best=0
for round in $(seq 1 "$rounds"); do
    set -- $(run old "$round"); old_speed=$1; old_allocs=$2
    set -- $(run new "$round"); new_speed=$1; new_allocs=$2
    echo "round $round: old $old_speed MB/s, new $new_speed MB/s, ratio new/old $(echo "$new_speed $old_speed" | awk '{printf "%.2f", $1 / $2}')"
    old_best=$(echo "$old_best $old_speed" | awk '{print ($2 > $1) ? $2 : $1}')
    new_best=$(echo "$new_best $new_speed" | awk '{print ($2 > $1) ? $2 : $1}')
done

old_hash=$(sha256sum <"$work/old.out" | cut -d' ' -f1)
new_hash=$(sha256sum <"$work/new.out" | cut -d' ' -f1)
echo "heap blocks per written order: old $old_allocs, new $new_allocs"
echo "ToXml best: old $old_best MB/s, new $new_best MB/s, ratio new/old $(echo "$new_best $old_best" | awk '{printf "%.2f", $1 / $2}')"
if [ "$old_hash" = "$new_hash" ]; then
    echo "output: identical ($(wc -c <"$work/new.out") bytes, sha256 $new_hash)"
else
    echo "output: DIFFERENT (old sha256 $old_hash, new sha256 $new_hash)"
    exit 1
fi
