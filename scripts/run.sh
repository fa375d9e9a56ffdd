#!/usr/bin/env bash
# Installs what is missing, builds Tavelle and shows it at work: makes a
# demo library with `tavelle init` and lists it.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAVELLE_TESTS=OFF >/dev/null
cmake --build build --target tavelle

library="${1:-$HOME/Tavelle Demo}"
echo
./build/bin/tavelle init "$library"
echo "Books:"
./build/bin/tavelle books
echo "Documents in reading order:"
./build/bin/tavelle walk
echo
echo "The command is ./build/bin/tavelle; try './build/bin/tavelle --help'."
