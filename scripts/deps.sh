#!/usr/bin/env bash
# Installs the Debian packages that are missing: with "build", only what
# building the library, the tool (whose command line CLI11 parses) and the
# examples needs; with "test" (the default), also what the tests, fuzz targets
# and benchmarks need (GoogleTest, Google Benchmark, GMP, libxml2, clang's
# fuzzer runtime, the Java Fast Infoset reference implementation, gSOAP).
set -euo pipefail
mode=${1:-test}
packages=(g++ cmake make pkg-config libexpat1-dev libpcre2-dev zlib1g-dev libcli11-dev)
case "$mode" in
  build) ;;
  test)
    packages+=(clang libgtest-dev libgmock-dev libbenchmark-dev libxml2-dev libxml2-utils libclang-rt-14-dev libgmp-dev
               python3 libfastinfoset-java openjdk-17-jdk-headless gsoap libgsoap-dev) ;;
  *) echo "usage: deps.sh [build|test]" >&2; exit 2 ;;
esac
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  echo "installing: ${missing[*]}"
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${missing[@]}" >/dev/null
fi
