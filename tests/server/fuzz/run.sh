#!/usr/bin/env bash
# Builds the fuzz targets (the server's, and the reader of saved web pages)
# with clang and libFuzzer and runs each one for a bounded time.
#
#   tests/server/fuzz/run.sh [SECONDS]      (default 60 per target)
#
# Environment: FUZZ_BUILD_DIR (default: a folder below ${TMPDIR:-/tmp}),
# FUZZ_TARGETS (default: all), CXX (default: clang++-14).
# New corpus entries stay in the build folder; the seeds here are read only.
# A crash stops with the failing input's path; turn it into a regression test
# in the gtest suite (tests/server/fuzz_regression_test.cpp, and for web
# archives tests/importers/webarchive_fuzz_regression_test.cpp).
set -euo pipefail

seconds=${1:-60}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../../.." && pwd)
build=${FUZZ_BUILD_DIR:-${TMPDIR:-/tmp}/tavelle-server-fuzz}
cxx=${CXX:-clang++-14}
targets=${FUZZ_TARGETS:-"request_parser range authorization connection webarchive plist_xml"}
jobs=$(nproc 2>/dev/null || echo 2)

command -v "$cxx" >/dev/null || { echo "fuzz: $cxx not found (Debian: clang-14 libclang-rt-14-dev)" >&2; exit 2; }
mkdir -p "$build/obj" "$build/artifacts" "$build/home"
# Settings and folders of a home of the run's own: no library, so no log file.
export HOME="$build/home" XDG_CONFIG_HOME="$build/home/.config" XDG_DATA_HOME="$build/home/.local/share"
export XDG_CACHE_HOME="$build/home/.cache"

sanitize=(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
cxxflags=(-std=c++20 -O1 -g -fPIC "${sanitize[@]}" -I"$top/src" -DASIO_STANDALONE -DQT_NO_KEYWORDS
          $(pkg-config --cflags Qt6Core spdlog icu-uc icu-i18n libplist-2.0))
libs=($(pkg-config --libs Qt6Core spdlog fmt icu-uc icu-i18n libplist-2.0) -pthread)

# The engine's sources and the foundation, once, with coverage for libFuzzer;
# with them the plain log line and the library root it finds its file by, and
# the web archive reader.
sources=$( (find "$top/src/server/core" "$top/src/foundation" -name '*.cpp';
            printf '%s\n' "$top"/src/platform/{folders,settings}.cpp "$top"/src/store/{log,library_root}.cpp \
                   "$top"/src/importers/webarchive_reader.cpp) | sort)
compile() {
  local src=$1 obj=$2
  if [ ! -f "$obj" ] || [ "$src" -nt "$obj" ] || [ -n "$(find "$top/src" -name '*.h' -newer "$obj" -print -quit)" ]; then
    "$cxx" "${cxxflags[@]}" -fsanitize=fuzzer-no-link -c "$src" -o "$obj"
  fi
}
objects=()
pids=()
for src in $sources; do
  obj="$build/obj/$(basename "$(dirname "$src")")_$(basename "${src%.cpp}").o"
  objects+=("$obj")
  compile "$src" "$obj" &
  pids+=($!)
  if [ ${#pids[@]} -ge "$jobs" ]; then wait "${pids[0]}"; pids=("${pids[@]:1}"); fi
done
for pid in "${pids[@]}"; do wait "$pid"; done

# An archive, so that a target takes only the objects it needs (the
# foundation's scheduler, say, would want Qt's meta-object code).
rm -f "$build/engine.a"
ar rcs "$build/engine.a" "${objects[@]}"

failed=()
for target in $targets; do
  binary="$build/fuzz_$target"
  "$cxx" "${cxxflags[@]}" -fsanitize=fuzzer "$here/fuzz_$target.cc" "$build/engine.a" "${libs[@]}" -o "$binary"
  corpus="$build/corpus/$target"
  mkdir -p "$corpus"
  echo "fuzz: $target for ${seconds}s"
  # Recent nonces outlive an input on purpose, which makes libFuzzer check every
  # connection input for leaks; check those at exit only.
  leaks_per_input=1
  [ "$target" = connection ] && leaks_per_input=0
  if ! ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1 \
       "$binary" "$corpus" "$here/corpus/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
       -max_len=65536 -detect_leaks="$leaks_per_input" -print_final_stats=1 -artifact_prefix="$build/artifacts/$target-" \
       > "$build/$target.log" 2>&1; then
    failed+=("$target")
    grep -E "ERROR|runtime error|Test unit written" "$build/$target.log" | head -5 >&2 || true
  fi
  grep -E "stat::number_of_executed_units|cov: " "$build/$target.log" | tail -2 || true
done

if [ ${#failed[@]} -gt 0 ]; then
  echo "fuzz: failures in ${failed[*]}; inputs in $build/artifacts, logs in $build" >&2
  exit 1
fi
echo "fuzz: all targets ran ${seconds}s without a failure"
