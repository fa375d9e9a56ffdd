#!/usr/bin/env bash
# Installs what is missing, builds Tavelle and shows it at work: makes a
# demo library with `tavelle init`, lists it, and opens the window on it.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTAVELLE_TESTS=OFF >/dev/null
cmake --build build --target tavelle tavelle-desktop

library="${1:-$HOME/Tavelle Demo}"
echo
./build/bin/tavelle init "$library"
bash scripts/demo_library.sh "$library"
echo "Books:"
./build/bin/tavelle books
echo "Documents in reading order:"
./build/bin/tavelle walk
echo
echo "The command is ./build/bin/tavelle; try './build/bin/tavelle --help'."

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "Opening the window on $library ..."
  exec ./build/bin/tavelle
else
  echo "No display here. On a desktop, start the window with ./build/bin/tavelle"
  echo "(or ./build/bin/tavelle-desktop); it opens the library chosen last."
fi
