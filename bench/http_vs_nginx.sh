#!/usr/bin/env bash
# The HTTP engine against nginx on loopback, in one run, on the same folder:
# small (4 KiB) GETs per second and the throughput of 1 GiB GETs, both driven
# by wrk, and the engine's memory growth while it sends the large file.
#
#   bench/http_vs_nginx.sh
#
# Environment:
#   SMALL_SECONDS   length of each small-GET run (default 8)
#   LARGE_SECONDS   length of each large-GET run (default 8)
#   ROUNDS          runs per server, taken in turn; the best of each counts (default 2)
#   WRK_THREADS, WRK_CONNECTIONS   wrk's load for small GETs (default 1 and 16)
#   NGINX_WORKERS   nginx worker processes (default 1: the engine answers all
#                   connections on one queue, so one worker is the like peer)
#   TAVELLE_HTTP_SERVE  the engine's server binary; else build/bin/tavelle_http_serve,
#                   else it is compiled here with g++
# Floors: small >= 0.5x nginx, large >= 0.7x nginx, growth <= 8 MiB.
# Exit status 1 when a floor is missed. Everything listens on 127.0.0.1 only.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/.." && pwd)
small_seconds=${SMALL_SECONDS:-8}
large_seconds=${LARGE_SECONDS:-8}
rounds=${ROUNDS:-2}
wrk_threads=${WRK_THREADS:-1}
wrk_connections=${WRK_CONNECTIONS:-16}
nginx_workers=${NGINX_WORKERS:-1}

for tool in wrk nginx curl; do
  command -v "$tool" >/dev/null || { echo "bench: $tool not found (Debian: wrk nginx-light curl)" >&2; exit 2; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/tavelle-http-bench.XXXXXX")
chmod 755 "$work"
engine_pid=""
nginx_pid=""
cleanup() {
  [ -n "$engine_pid" ] && kill "$engine_pid" 2>/dev/null && wait "$engine_pid" 2>/dev/null || true
  [ -n "$nginx_pid" ] && kill "$nginx_pid" 2>/dev/null && wait "$nginx_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# ---- the server binary ----
serve=${TAVELLE_HTTP_SERVE:-}
[ -z "$serve" ] && [ -x "$top/build/bin/tavelle_http_serve" ] && serve="$top/build/bin/tavelle_http_serve"
if [ -z "$serve" ]; then
  echo "bench: compiling the engine's server (set TAVELLE_HTTP_SERVE to skip)"
  mkdir -p "$work/obj"
  objects=()
  for src in "$top"/src/server/core/*.cpp "$top"/src/server/core/responses/*.cpp "$here/http_serve.cpp"; do
    obj="$work/obj/$(basename "${src%.cpp}").o"
    g++ -std=c++20 -O2 -DNDEBUG -fPIC -I"$top/src" -DASIO_STANDALONE -DQT_NO_KEYWORDS \
        $(pkg-config --cflags Qt6Core spdlog) -c "$src" -o "$obj" &
    objects+=("$obj")
  done
  wait
  g++ "${objects[@]}" $(pkg-config --libs Qt6Core spdlog fmt) -pthread -o "$work/tavelle_http_serve"
  serve="$work/tavelle_http_serve"
fi

# ---- the folder ----
root="$work/root"
mkdir -p "$root"
head -c 4096 /dev/urandom > "$root/small.bin"
dd if=/dev/zero of="$root/big.bin" bs=1M count=1024 status=none
chmod 755 "$root"; chmod 644 "$root"/*

# ---- the engine ----
"$serve" "$root" 0 > "$work/engine.out" 2> "$work/engine.err" &
engine_pid=$!
for _ in $(seq 100); do grep -q '^port ' "$work/engine.out" 2>/dev/null && break; sleep 0.05; done
engine_port=$(awk '/^port /{print $2}' "$work/engine.out")
[ -n "$engine_port" ] || { echo "bench: the engine did not start" >&2; cat "$work/engine.err" >&2; exit 1; }

# ---- nginx ----
mkdir -p "$work/nginx/logs"
nginx_port=""
for _ in 1 2 3 4 5; do
  port=$((20000 + RANDOM % 40000))
  user_line=""
  [ "$(id -u)" = 0 ] && user_line="user $(id -un);"
  cat > "$work/nginx/nginx.conf" <<CONF
$user_line
worker_processes $nginx_workers;
daemon off;
pid $work/nginx/nginx.pid;
error_log $work/nginx/logs/error.log;
events { worker_connections 4096; }
http {
  access_log off;
  sendfile on;
  tcp_nopush on;
  tcp_nodelay on;
  keepalive_requests 100000000;
  client_body_temp_path $work/nginx/body;
  proxy_temp_path $work/nginx/proxy;
  fastcgi_temp_path $work/nginx/fastcgi;
  uwsgi_temp_path $work/nginx/uwsgi;
  scgi_temp_path $work/nginx/scgi;
  server { listen 127.0.0.1:$port; root $root; }
}
CONF
  nginx -p "$work/nginx" -c "$work/nginx/nginx.conf" -e "$work/nginx/logs/error.log" 2>>"$work/nginx/logs/start.log" &
  nginx_pid=$!
  for _ in $(seq 40); do
    curl -s -o /dev/null "http://127.0.0.1:$port/small.bin" && { nginx_port=$port; break; }
    sleep 0.05
  done
  [ -n "$nginx_port" ] && break
  kill "$nginx_pid" 2>/dev/null || true; wait "$nginx_pid" 2>/dev/null || true; nginx_pid=""
done
[ -n "$nginx_port" ] || { echo "bench: nginx did not start" >&2; cat "$work/nginx/logs/"* >&2; exit 1; }

# Both must serve the same bytes.
for port in "$engine_port" "$nginx_port"; do
  got=$(curl -s "http://127.0.0.1:$port/small.bin" | md5sum | cut -d' ' -f1)
  [ "$got" = "$(md5sum < "$root/small.bin" | cut -d' ' -f1)" ] || { echo "bench: wrong bytes on port $port" >&2; exit 1; }
done

# ---- measuring ----
# wrk's rate and transfer figures, in requests and bytes per second.
requests_per_second() { awk '/^Requests\/sec:/{print $2}'; }
bytes_per_second() {
  awk '/^Transfer\/sec:/{
    v=$2; u=v; sub(/[0-9.]+/, "", u); sub(/[A-Za-z]+$/, "", v);
    m=1; if (u=="KB") m=1024; else if (u=="MB") m=1048576; else if (u=="GB") m=1073741824;
    printf "%.0f\n", v*m }'
}
small_run() {
  timeout $((small_seconds + 30)) wrk -t"$wrk_threads" -c"$wrk_connections" -d"${1}s" "http://127.0.0.1:$2/small.bin"
}
large_run() {
  timeout $((large_seconds + 120)) wrk -t1 -c1 -d"${1}s" --timeout 60s "http://127.0.0.1:$2/big.bin"
}
kib() { awk -v k="$2" '$1==k":"{print $2}' "/proc/$1/status"; }

echo "bench: warming up"
small_run 2 "$engine_port" > /dev/null; small_run 2 "$nginx_port" > /dev/null
large_run 2 "$nginx_port" > /dev/null

# Runs alternate between the two servers so that a slow spell of the machine
# falls on both; the best run of each counts.
best() { awk -v a="$1" -v b="$2" 'BEGIN { print (a + 0 > b + 0 ? a : b) }'; }

echo "bench: small GETs, $rounds x ${small_seconds}s each, wrk -t$wrk_threads -c$wrk_connections"
engine_small=0; nginx_small=0
for _ in $(seq "$rounds"); do
  engine_small=$(best "$engine_small" "$(small_run "$small_seconds" "$engine_port" | requests_per_second)")
  nginx_small=$(best "$nginx_small" "$(small_run "$small_seconds" "$nginx_port" | requests_per_second)")
done

echo "bench: 1 GiB GETs, $rounds x ${large_seconds}s each, one connection"
# Growth counts from before the engine's first large GET.
rss_before=$(kib "$engine_pid" VmRSS)
peak_file="$work/peak"
echo "$rss_before" > "$peak_file"
( while kill -0 "$engine_pid" 2>/dev/null; do
    now=$(kib "$engine_pid" VmRSS); [ -n "$now" ] && [ "$now" -gt "$(cat "$peak_file")" ] && echo "$now" > "$peak_file"
    sleep 0.01
  done ) &
sampler=$!
large_run 2 "$engine_port" > /dev/null
engine_large=0; nginx_large=0
for _ in $(seq "$rounds"); do
  engine_large=$(best "$engine_large" "$(large_run "$large_seconds" "$engine_port" | bytes_per_second)")
  nginx_large=$(best "$nginx_large" "$(large_run "$large_seconds" "$nginx_port" | bytes_per_second)")
done
kill "$sampler" 2>/dev/null || true; wait "$sampler" 2>/dev/null || true
rss_peak=$(cat "$peak_file")

# ---- report ----
awk -v es="$engine_small" -v ns="$nginx_small" -v el="$engine_large" -v nl="$nginx_large" \
    -v before="$rss_before" -v peak="$rss_peak" -v workers="$nginx_workers" '
BEGIN {
  small = es / ns; large = el / nl; growth = (peak - before) / 1024;
  printf "small 4 KiB GETs/s:    engine %10.0f   nginx (%d worker) %10.0f   ratio %.2f  (floor 0.50)\n", es, workers, ns, small;
  printf "1 GiB GET throughput:  engine %7.0f MiB/s  nginx %7.0f MiB/s            ratio %.2f  (floor 0.70)\n", el/1048576, nl/1048576, large;
  printf "engine memory while sending 1 GiB: %d KiB before, %d KiB peak, growth %.1f MiB  (limit 8)\n", before, peak, growth;
  ok = small >= 0.5 && large >= 0.7 && growth <= 8;
  print (ok ? "bench: PASS" : "bench: FAIL");
  exit ok ? 0 : 1
}'
