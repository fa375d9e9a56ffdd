#!/usr/bin/env bash
# Runs the litmus WebDAV suite against `tavelle serve` on a temporary library
# and compares every result with expected.txt. Fails when any result differs
# from it in either direction: a new failure, or a pass where a failure is
# expected. Skipped, with a message, where litmus is not installed.
#
#   tests/server/litmus/run.sh [TAVELLE_BINARY]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
tavelle="${1:-${TAVELLE_CLI:-$here/../../../build-test/bin/tavelle}}"

if ! command -v litmus >/dev/null; then
  echo "litmus: not installed (Debian package litmus); WebDAV suite skipped"
  exit 0
fi
[ -x "$tavelle" ] || { echo "litmus: no tavelle binary at $tavelle" >&2; exit 1; }

work="$(mktemp -d)"
server_pid=""
cleanup() {
  if [ -n "$server_pid" ] && kill -0 "$server_pid" 2>/dev/null; then
    kill -TERM "$server_pid" 2>/dev/null || true
    wait "$server_pid" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap cleanup EXIT

mkdir -p "$work/home/tmp" "$work/library"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
export XDG_CACHE_HOME="$work/home/.cache" TMPDIR="$work/home/tmp"

"$tavelle" --library "$work/library" serve --port 8640 --password litmus --interface 127.0.0.1 \
  >"$work/serve.out" 2>"$work/serve.err" &
server_pid=$!
for _ in $(seq 100); do
  grep -q '^Password: ' "$work/serve.out" 2>/dev/null && break
  kill -0 "$server_pid" 2>/dev/null || break
  sleep 0.1
done
port="$(sed -n 's|^http://[^:]*:\([0-9]*\)$|\1|p' "$work/serve.out" | head -n 1)"
if [ -z "$port" ]; then
  echo "litmus: tavelle serve did not start" >&2
  cat "$work/serve.err" >&2
  exit 1
fi

# litmus answers non-zero whenever a test fails; the comparison decides.
# It runs in the work folder, where it leaves its debug.log and child.log.
(cd "$work" && timeout 600 litmus --keep-going "http://127.0.0.1:$port/" Tavelle litmus) >"$work/litmus.out" 2>&1 || true

# "suite number.name result" per test, the result pass (warnings included),
# FAIL or SKIPPED. litmus redraws each line with carriage returns, and a
# warning puts the result on a line of its own.
tr '\r' '\n' <"$work/litmus.out" | awk '
  /^-> running `/ { suite = $3; gsub(/[`'"'"':]/, "", suite); next }
  {
    line = $0
    if (match(line, /^ *[0-9]+\. [^ .]+/)) {
      test = substr(line, RSTART, RLENGTH); gsub(/ /, "", test)
      line = substr(line, RSTART + RLENGTH)
    } else if (line !~ /^ +\./) next
    sub(/^[ .]*/, "", line)
    if (test == "") next
    if (line ~ /^pass/) result = "pass"
    else if (line ~ /^FAIL/) result = "FAIL"
    else if (line ~ /^SKIPPED/) result = "SKIPPED"
    else next
    print suite, test, result; test = ""
  }
' | sort -u >"$work/actual.txt"

sed -e 's/ *#.*$//' -e '/^$/d' "$here/expected.txt" | sort -u >"$work/expected.txt"

kill -TERM "$server_pid"
serve_status=0
wait "$server_pid" || serve_status=$?
server_pid=""

if ! diff -u "$work/expected.txt" "$work/actual.txt" >"$work/diff.txt"; then
  echo "litmus: results differ from tests/server/litmus/expected.txt (- expected, + actual):"
  cat "$work/diff.txt"
  echo "--- litmus output ---"
  cat "$work/litmus.out"
  exit 1
fi
if [ "$serve_status" -ne 0 ]; then
  echo "litmus: tavelle serve ended with status $serve_status after SIGTERM" >&2
  exit 1
fi
passed="$(grep -c " pass$" "$work/actual.txt" || true)"
others="$(grep -vc " pass$" "$work/actual.txt" || true)"
echo "litmus: $passed passed, $others as expected otherwise"
