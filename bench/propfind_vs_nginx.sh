#!/usr/bin/env bash
# Times PROPFIND with Depth 1 on a book of 10,000 documents: `tavelle serve`
# against nginx serving the same folder, in one run, and prints the ratio.
# The target is at most 1.5 times nginx's time.
#
# nginx answers PROPFIND only with its dav-ext module (Debian package
# libnginx-mod-http-dav-ext). Without it, its XML directory index of the same
# folder stands in as the peer, and the script says so.
#
#   bench/propfind_vs_nginx.sh [TAVELLE_BINARY] [REQUESTS]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
tavelle="${1:-${TAVELLE_CLI:-$here/../build/bin/tavelle}}"
requests="${2:-30}"
documents=10000

command -v nginx >/dev/null || { echo "propfind bench: nginx not installed; skipped"; exit 0; }
[ -x "$tavelle" ] || { echo "propfind bench: no tavelle binary at $tavelle" >&2; exit 1; }

work="$(mktemp -d)"
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill -TERM "$pid" 2>/dev/null || true; wait "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

mkdir -p "$work/home/tmp" "$work/library/Book" "$work/nginx/logs"
# nginx's workers run as another user and must read the library.
chmod 755 "$work"
(cd "$work/library/Book" && seq -f "Document %g.md" 1 "$documents" | while read -r name; do
  printf '# %s\n\nSome text.\n' "$name" >"$name"
done)

export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_DATA_HOME="$work/home/.local/share"
export XDG_CACHE_HOME="$work/home/.cache" TMPDIR="$work/home/tmp"
"$tavelle" --library "$work/library" serve --port 8670 --password bench --interface 127.0.0.1 \
  >"$work/serve.out" 2>"$work/serve.err" &
pids+=($!)
for _ in $(seq 100); do grep -q '^Password: ' "$work/serve.out" 2>/dev/null && break; sleep 0.1; done
tavelle_port="$(sed -n 's|^http://[^:]*:\([0-9]*\)$|\1|p' "$work/serve.out" | head -n 1)"
[ -n "$tavelle_port" ] || { echo "propfind bench: tavelle serve did not start" >&2; cat "$work/serve.err" >&2; exit 1; }

module=/usr/lib/nginx/modules/ngx_http_dav_ext_module.so
nginx_port=$((tavelle_port + 1000))
if [ -f "$module" ]; then
  peer="nginx with dav and dav-ext, PROPFIND Depth 1"
  load="load_module $module;"
  location="dav_methods PUT DELETE MKCOL COPY MOVE; dav_ext_methods PROPFIND OPTIONS;"
  nginx_request=(--request PROPFIND --header "Depth: 1")
else
  peer="nginx XML directory index (no dav-ext module: install libnginx-mod-http-dav-ext for PROPFIND)"
  load=""
  location="autoindex on; autoindex_format xml;"
  nginx_request=()
fi
cat >"$work/nginx/nginx.conf" <<CONF
$load
worker_processes 1;
daemon off;
pid $work/nginx/nginx.pid;
error_log $work/nginx/logs/error.log;
events { worker_connections 64; }
http {
  access_log off;
  client_body_temp_path $work/nginx/body;
  server {
    listen 127.0.0.1:$nginx_port;
    root $work/library;
    location / { $location }
  }
}
CONF
nginx -p "$work/nginx" -c "$work/nginx/nginx.conf" &
pids+=($!)
for _ in $(seq 100); do curl -s -o /dev/null "http://127.0.0.1:$nginx_port/" && break; sleep 0.1; done

# The median of the per-request times of one curl run over the same URL.
median_time() {
  local url="$1"; shift
  local urls=()
  for _ in $(seq "$requests"); do urls+=(--output /dev/null "$url"); done
  curl --silent --write-out '%{time_total}\n' "$@" "${urls[@]}" |
    sort -g | awk '{ t[NR] = $1 } END { print t[int((NR + 1) / 2)] }'
}

# Both answer the same listing: 10,000 entries and the book itself.
tavelle_entries="$(curl -s --digest -u Tavelle:bench --request PROPFIND --header 'Depth: 1' \
  "http://127.0.0.1:$tavelle_port/Book" | grep -o '<D:response>' | wc -l)"
[ "$tavelle_entries" -eq $((documents + 1)) ] || { echo "propfind bench: tavelle listed $tavelle_entries" >&2; exit 1; }

tavelle_time="$(median_time "http://127.0.0.1:$tavelle_port/Book" --digest -u Tavelle:bench \
  --request PROPFIND --header 'Depth: 1')"
nginx_time="$(median_time "http://127.0.0.1:$nginx_port/Book/" "${nginx_request[@]}")"

echo "PROPFIND Depth 1, $documents documents, median of $requests requests"
echo "  tavelle serve: ${tavelle_time}s"
echo "  peer:          ${nginx_time}s  ($peer)"
awk -v a="$tavelle_time" -v b="$nginx_time" 'BEGIN {
  if (a <= 0 || b <= 0) { print "  ratio: not measured"; exit 1 }
  r = a / b; printf "  ratio:         %.2fx (target at most 1.50x) %s\n", r, (r <= 1.5 ? "ok" : "OVER TARGET") }'
