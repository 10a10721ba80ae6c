#!/usr/bin/env bash
# Holds generated classes against the dynamic classes on the W3C XML Schema
# test suite: for each test group with instance tests (every STEP-th one),
# `qmxml generate` writes the classes of its schema, they are compiled with a
# small driver, and every instance must give the dynamic classes' verdict,
# message chain and written document. Prints one line per disagreeing
# instance or refused group, then the totals.
#
#   scripts/generated_w3c.sh [SUITE_DIR] [STEP | GROUP_FILE]
#
# SUITE_DIR defaults to ../shared/w3c-xsdtests beside the project, STEP to 10;
# a GROUP_FILE names the groups to run instead, one per line. With
# SAMPLE_OUT=FILE, each group whose instances all agree is appended to FILE
# as a line of the CTest sample (tests/codegen/w3c/sample_groups.txt);
# the build directory is build/ (BUILD_DIR overrides it), the scratch
# directory WORK_DIR (default: a temporary one, removed at the end).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
suite=${1:-$root/../shared/w3c-xsdtests}
step=${2:-10}
build=${BUILD_DIR:-$root/build}
if [ ! -d "$suite/msMeta" ]; then
  echo "no W3C suite at $suite" >&2
  exit 2
fi
suite=$(cd "$suite" && pwd)
cmake --build "$build" --target qmxml_tool qmxml_schema -j 2 >/dev/null
work=${WORK_DIR:-$(mktemp -d /tmp/qmxml_generated_w3c.XXXXXX)}
[ -n "${WORK_DIR:-}" ] || trap 'rm -rf "$work"' EXIT
mkdir -p "$work"
cxx=${CXX:-c++}
flags=(-std=c++17 -O0 -w -I"$root/include" -L"$build/src" -Wl,-rpath,"$build/src")
"$cxx" "${flags[@]}" "$root/tests/codegen/w3c/dynamic_driver.cpp" -lqmxml_schema -lqmxml -o "$work/dynamic"

# The groups: schema documents expected valid, with their instance tests;
# every STEP-th one, or those a file names (one group name per line).
if [ -f "$step" ]; then
  python3 "$root/scripts/w3c_groups.py" "$suite" | awk -F'\t' 'NR==FNR{if ($1 !~ /^#/ && $1 != "") want[$1]=1; next} ($1 in want)' "$step" - > "$work/groups.txt"
else
  python3 "$root/scripts/w3c_groups.py" "$suite" "$step" > "$work/groups.txt"
fi
groups=0; refused=0; unloaded=0; failed_build=0; instances=0; agree=0; disagree=0
while IFS=$'\t' read -r name schema files; do
  groups=$((groups + 1))
  dir="$work/$groups"
  mkdir -p "$dir/gen"
  read -r -a docs <<< "$files"
  if ! "$work/dynamic" "$schema" "${docs[@]}" > "$dir/dynamic.txt" 2>&1; then
    unloaded=$((unloaded + 1))
    continue
  fi
  if ! "$build/tools/qmxml" generate "$schema" -o "$dir/gen" > "$dir/generate.txt" 2>&1; then
    refused=$((refused + 1))
    echo "refused $name: $(head -1 "$dir/generate.txt")"
    continue
  fi
  header=$(ls "$dir/gen" | grep -v '_classes\.' | grep '\.h$')
  namespace=$(grep -m1 -o '^namespace [A-Za-z0-9_]*' "$dir/gen/$header" | cut -d' ' -f2)
  if ! "$cxx" "${flags[@]}" -I"$dir/gen" -DQMXML_SET_HEADER="\"$header\"" -DQMXML_SET_NAMESPACE="$namespace" \
       "$root/tests/codegen/w3c/generated_driver.cpp" "$dir"/gen/*.cpp -lqmxml -o "$dir/generated" > "$dir/build.txt" 2>&1; then
    failed_build=$((failed_build + 1))
    echo "does not compile $name: $(grep -m1 error "$dir/build.txt")"
    continue
  fi
  "$dir/generated" "${docs[@]}" > "$dir/generated.txt" 2>&1 || true
  group_agrees=1
  for doc in "${docs[@]}"; do
    instances=$((instances + 1))
    a=$(awk -v d="== $doc" '$0==d{p=1;next} /^== /{p=0} p' "$dir/dynamic.txt")
    b=$(awk -v d="== $doc" '$0==d{p=1;next} /^== /{p=0} p' "$dir/generated.txt")
    if [ "$a" == "$b" ]; then
      agree=$((agree + 1))
    else
      disagree=$((disagree + 1))
      group_agrees=0
      echo "disagree $name $(basename "$doc"): dynamic $(echo "$a" | head -1), generated $(echo "$b" | head -1)"
    fi
  done
  if [ -n "${SAMPLE_OUT:-}" ] && [ "$group_agrees" -eq 1 ]; then
    # name, schema, set header, set namespace, generated files, instances;
    # paths relative to the suite.
    printf '%s\t%s\t%s\t%s\t%s\t%s\n' "$name" "${schema#"$suite"/}" "$header" "$namespace" \
      "$(ls "$dir/gen" | tr '\n' ' ' | sed 's/ $//')" "$(printf '%s\n' "${docs[@]}" | sed "s|^$suite/||" | tr '\n' ' ' | sed 's/ $//')" \
      >> "$SAMPLE_OUT"
  fi
done < "$work/groups.txt"

echo "groups: $groups ($( [ -f "$step" ] && echo "named in $step" || echo "every ${step}th with instance tests")), schema not loaded: $unloaded, refused by the generator: $refused, generated code not compiling: $failed_build"
echo "instances compared: $instances, same verdict, messages and output: $agree, different: $disagree"
[ "$failed_build" -eq 0 ] && [ "$disagree" -eq 0 ]
