#!/usr/bin/env bash
# Installs every Debian package Tavelle needs to build, test and run.
# Idempotent: packages already present are left alone. Works as root or via sudo.
set -euo pipefail

packages=(
  # toolchain
  g++ cmake ninja-build pkg-config git clang-format
  # application framework and text
  qt6-base-dev libicu-dev libplist-dev libspdlog-dev
  # conversion, storage, server
  libmarkdown2-dev libxml2-dev libsqlite3-dev libasio-dev libzip-dev libpoppler-qt6-dev
  libavahi-client-dev
  # tests, fuzzing and benchmarks: real HTTP clients and a peer server to compare with
  libgtest-dev libgmock-dev libbenchmark-dev clang-14 libclang-rt-14-dev curl nginx-light wrk
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#packages[@]} packages present"
  exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: need root or sudo to install: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
