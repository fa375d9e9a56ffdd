#!/usr/bin/env bash
# Installs what is missing, builds everything with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake -S . -B build-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTAVELLE_SANITIZE=ON >/dev/null
cmake --build build-test

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
# Checks that skip where a tool is missing must run here.
export TAVELLE_CI=1
ctest --test-dir build-test --output-on-failure --timeout 300 -j2

# The litmus WebDAV suite against `tavelle serve`; every result must match
# tests/server/litmus/expected.txt.
bash tests/server/litmus/run.sh build-test/bin/tavelle

# The server's parsers and a whole connection, the readers of imported files
# and the Markdown conversions under libFuzzer, for a bounded time; crashes
# found become regression tests.
bash tests/server/fuzz/run.sh "${TAVELLE_FUZZ_SECONDS:-20}"
