#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when any is missing.
set -euo pipefail
packages=(g++ clang cmake make pkg-config libexpat1-dev libpcre2-dev zlib1g-dev
          libgtest-dev libgmock-dev libbenchmark-dev libxml2-dev libclang-rt-14-dev libgmp-dev python3 libfastinfoset-java openjdk-17-jdk-headless
          gsoap libgsoap-dev)
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
