#!/usr/bin/env bash
# Builds the fuzz targets (the server's, the reader of saved web pages, the
# mail walker, the Evernote importer and the Markdown conversions) with clang
# and libFuzzer and runs each one for a bounded time.
#
#   tests/server/fuzz/run.sh [SECONDS]      (default 60 per target)
#
# Environment: FUZZ_BUILD_DIR (default: a folder below ${TMPDIR:-/tmp}),
# FUZZ_TARGETS (default: all), CXX (default: clang++-14).
# New corpus entries stay in the build folder; the seeds here are read only.
# A crash stops with the failing input's path; turn it into a regression test
# in the gtest suite (tests/server/fuzz_regression_test.cpp; for web archives
# tests/importers/webarchive_fuzz_regression_test.cpp; for mail and Evernote
# exports a case in tests/importers/mail_message_test.cpp or
# evernote_importer_test.cpp; for Markdown a case in
# tests/convert/pathological_test.cpp). The importers' targets and seeds live
# in tests/importers/fuzz, the conversions' in tests/convert/fuzz.
set -euo pipefail

seconds=${1:-60}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../../.." && pwd)
build=${FUZZ_BUILD_DIR:-${TMPDIR:-/tmp}/tavelle-server-fuzz}
cxx=${CXX:-clang++-14}
targets=${FUZZ_TARGETS:-"request_parser range authorization connection webarchive plist_xml mail enex markdown"}
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

# The sources a target needs: those reached from the given ones through the
# headers they include (a header's own .cpp beside it).
closure() {
  local -A seen=()
  local todo=("$@") file include candidate
  while [ ${#todo[@]} -gt 0 ]; do
    file=${todo[-1]}
    unset 'todo[-1]'
    [ -n "${seen[$file]:-}" ] && continue
    seen[$file]=1
    for include in $(grep -oP '^#include "\K[^"]+' "$file"); do
      for candidate in "$top/src/$include" "$top/src/${include%.h}.cpp"; do
        [ -f "$candidate" ] && [ -z "${seen[$candidate]:-}" ] && todo+=("$candidate")
      done
    done
  done
  printf '%s\n' "${!seen[@]}" | grep '\.cpp$' | sort
}

# Each source once, with coverage for libFuzzer, into an archive, so that a
# target takes only the objects it needs (the foundation's scheduler, say,
# would want Qt's meta-object code).
compile() {
  local src=$1 obj=$2
  if [ ! -f "$obj" ] || [ "$src" -nt "$obj" ] || [ -n "$(find "$top/src" -name '*.h' -newer "$obj" -print -quit)" ]; then
    "$cxx" "${cxxflags[@]}" -fsanitize=fuzzer-no-link -c "$src" -o "$obj"
  fi
}
archive() {
  local name=$1 src obj
  shift
  local objects=() pids=()
  for src in "$@"; do
    obj=$build/obj/$(echo "${src#"$top/src/"}" | tr / _)
    obj=${obj%.cpp}.o
    objects+=("$obj")
    compile "$src" "$obj" &
    pids+=($!)
    if [ ${#pids[@]} -ge "$jobs" ]; then wait "${pids[0]}"; pids=("${pids[@]:1}"); fi
  done
  for pid in "${pids[@]}"; do wait "$pid"; done
  rm -f "$build/$name.a"
  ar rcs "$build/$name.a" "${objects[@]}"
}

# The engine's sources and the foundation; with them the plain log line and
# the library root it finds its file by, and the web archive reader.
archive engine $( (find "$top/src/server/core" "$top/src/foundation" -name '*.cpp';
                   printf '%s\n' "$top"/src/platform/{folders,settings}.cpp "$top"/src/store/{log,library_root}.cpp \
                          "$top"/src/importers/webarchive_reader.cpp) | sort)

# The mail walker, the Evernote importer and the Markdown conversions, with
# the parts of the store and the contexts they stand on; the mail target also
# reads the test messages of Python's own test suite where Debian's package is
# in.
importers_here="$top/tests/importers/fuzz"
convert_here="$top/tests/convert/fuzz"
importer_targets=" mail enex markdown "
importer_modules="Qt6Gui libxml-2.0 fontconfig poppler-qt6"
python_mails=$(ls -d /usr/lib/python3*/test/test_email/data 2>/dev/null | head -1 || true)
for target in $targets; do
  if [[ "$importer_targets" == *" $target "* ]]; then
    version=$(sed -nE 's/^project\(tavelle VERSION ([0-9]+\.[0-9]+).*/\1/p' "$top/CMakeLists.txt")
    build_number=$(sed -nE 's/^set\(TAVELLE_BUILD_NUMBER ([0-9]+)\)/\1/p' "$top/CMakeLists.txt")
    cxxflags+=($(pkg-config --cflags $importer_modules) -DTAVELLE_SHORT_VERSION=\"$version\"
               -DTAVELLE_BUILD_NUMBER="$build_number")
    # Pieces whose header bears another name come in by name.
    archive importers $(closure "$importers_here"/fuzz_*.cc "$convert_here"/fuzz_*.cc \
                                "$top"/src/importers/{mail,evernote}_*.cpp \
                                "$top"/src/foundation/{plist,regex}_*.cpp "$top"/src/convert/*.cpp)
    break
  fi
done

failed=()
for target in $targets; do
  binary="$build/fuzz_$target"
  seeds=("$here/corpus/$target")
  options=()
  if [[ "$importer_targets" == *" $target "* ]]; then
    there=$importers_here
    [ "$target" = markdown ] && there=$convert_here
    seeds=("$there/corpus/$target")
    options=(-dict="$there/$target.dict")
    [ "$target" = mail ] && [ -n "$python_mails" ] && seeds+=("$python_mails")
    "$cxx" "${cxxflags[@]}" -fsanitize=fuzzer "$there/fuzz_$target.cc" "$build/importers.a" \
      "${libs[@]}" $(pkg-config --libs $importer_modules) -lmarkdown -o "$binary"
  else
    "$cxx" "${cxxflags[@]}" -fsanitize=fuzzer "$here/fuzz_$target.cc" "$build/engine.a" "${libs[@]}" -o "$binary"
  fi
  corpus="$build/corpus/$target"
  mkdir -p "$corpus"
  echo "fuzz: $target for ${seconds}s"
  # Recent nonces outlive an input on purpose, which makes libFuzzer check every
  # connection input for leaks; check those at exit only.
  leaks_per_input=1
  [ "$target" = connection ] && leaks_per_input=0
  if ! ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1 \
       "$binary" "$corpus" "${seeds[@]}" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
       -max_len=65536 -detect_leaks="$leaks_per_input" -print_final_stats=1 -artifact_prefix="$build/artifacts/$target-" "${options[@]}" \
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
