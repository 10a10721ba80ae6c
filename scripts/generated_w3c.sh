#!/usr/bin/env bash
# Holds generated classes against the dynamic classes on the W3C XML Schema
# test suite: for each test group with instance tests (every STEP-th one),
# `qmxml generate` writes the classes of its schema, they are compiled with a
# small driver, and every instance must give the dynamic classes' verdict,
# message chain and written document. Prints one line per disagreeing
# instance or refused group, then the totals.
#
#   scripts/generated_w3c.sh [SUITE_DIR] [STEP]
#
# SUITE_DIR defaults to ../shared/w3c-xsdtests beside the project, STEP to 10;
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
cmake --build "$build" --target qmxml_tool qmxml_schema -j 2 >/dev/null
work=${WORK_DIR:-$(mktemp -d /tmp/qmxml_generated_w3c.XXXXXX)}
[ -n "${WORK_DIR:-}" ] || trap 'rm -rf "$work"' EXIT
mkdir -p "$work"
cxx=${CXX:-c++}
flags=(-std=c++17 -O0 -w -I"$root/include" -L"$build/src" -Wl,-rpath,"$build/src")
"$cxx" "${flags[@]}" "$root/tests/codegen/w3c/dynamic_driver.cpp" -lqmxml_schema -lqmxml -o "$work/dynamic"

# The groups: schema documents expected valid, with their instance tests.
python3 - "$suite" "$step" > "$work/groups.txt" <<'PY'
import os, sys, xml.etree.ElementTree as ET
suite, step = sys.argv[1], int(sys.argv[2])
ns = {'t': 'http://www.w3.org/XML/2004/xml-schema-test-suite/', 'x': 'http://www.w3.org/1999/xlink'}
href = '{http://www.w3.org/1999/xlink}href'
sets = sorted(os.path.join(suite, 'msMeta', f) for f in os.listdir(os.path.join(suite, 'msMeta')) if f.endswith('_w3c.xml'))
sets.append(os.path.join(suite, 'boeingMeta', 'BoeingXSDTestSet.testSet'))
index = 0
for path in sets:
    base = os.path.dirname(path)
    for group in ET.parse(path).getroot().findall('t:testGroup', ns):
        schema = group.find('t:schemaTest', ns)
        instances = group.findall('t:instanceTest', ns)
        if schema is None or not instances:
            continue
        if schema.find('t:expected', ns).get('validity') != 'valid':
            continue
        index += 1
        if index % step:
            continue
        documents = [os.path.normpath(os.path.join(base, d.get(href))) for d in schema.findall('t:schemaDocument', ns)]
        files = [os.path.normpath(os.path.join(base, i.find('t:instanceDocument', ns).get(href))) for i in instances]
        print('\t'.join([group.get('name'), documents[0]] + files))
PY

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
  for doc in "${docs[@]}"; do
    instances=$((instances + 1))
    a=$(awk -v d="== $doc" '$0==d{p=1;next} /^== /{p=0} p' "$dir/dynamic.txt")
    b=$(awk -v d="== $doc" '$0==d{p=1;next} /^== /{p=0} p' "$dir/generated.txt")
    if [ "$a" == "$b" ]; then
      agree=$((agree + 1))
    else
      disagree=$((disagree + 1))
      echo "disagree $name $(basename "$doc"): dynamic $(echo "$a" | head -1), generated $(echo "$b" | head -1)"
    fi
  done
done < "$work/groups.txt"

echo "groups: $groups (every ${step}th with instance tests), schema not loaded: $unloaded, refused by the generator: $refused, generated code not compiling: $failed_build"
echo "instances compared: $instances, same verdict, messages and output: $agree, different: $disagree"
[ "$failed_build" -eq 0 ] && [ "$disagree" -eq 0 ]
