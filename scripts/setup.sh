#!/usr/bin/env bash
# Installs every Debian package Tavelle needs to build, test and run.
# Idempotent: packages already present are left alone. Works as root or via sudo.
# Then fetches the web scripts the rendered pages load (diagrams, formulas)
# from the npm registry into third_party/web, which the build copies among
# the program's resources; nothing is fetched when the program runs. The
# JavaScript peers of the benchmarks go to third_party/bench.
set -euo pipefail

# Pinned versions of the page scripts and of the benchmarks' peers.
web_packages=(mermaid@10.9.6 mathjax@3.2.2)
bench_packages=(fountain-js@1.2.4)
third_party="$(cd "$(dirname "$0")/.." && pwd)/third_party"
web_dir="$third_party/web"
bench_dir="$third_party/bench"

# fetch_npm_tarballs DIR SPEC...: each package's own tarball only, unpacked
# into DIR/NAME: the pages need a prebuilt bundle and the peers have no
# dependencies, so no dependency tree is installed.
fetch_npm_tarballs() {
  local dir="$1"
  shift
  mkdir -p "$dir"
  local work
  work="$(mktemp -d)"
  for spec in "$@"; do
    local name="${spec%@*}"
    if [ -f "$dir/$name/.version" ] && [ "$(cat "$dir/$name/.version")" = "$spec" ]; then
      continue
    fi
    echo "setup: fetching $spec"
    (cd "$work" && npm pack --silent "$spec" >/dev/null)
    rm -rf "${dir:?}/$name"
    mkdir -p "$dir/$name"
    tar -xzf "$work"/"$name"-*.tgz -C "$dir/$name" --strip-components=1
    echo "$spec" > "$dir/$name/.version"
  done
  rm -rf "$work"
}

install_web_scripts() {
  command -v npm >/dev/null || { echo "setup: npm not found; pages will render without diagrams and formulas, and the benchmarks skip their JavaScript peers" >&2; return 0; }
  fetch_npm_tarballs "$web_dir" "${web_packages[@]}"
  fetch_npm_tarballs "$bench_dir" "${bench_packages[@]}"
}

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
  litmus cadaver discount libnginx-mod-http-dav-ext
  # the search benchmark measures index building against ripgrep scanning the same folder
  ripgrep
  # the mail walker runs over the test messages of Python's own test suite
  libpython3.11-testsuite
  # the desktop program: widgets, formatted view, PDF view, and a display for its tests
  qt6-webengine-dev qt6-webchannel-dev qt6-pdf-dev qt6-svg-dev xvfb xauth
  # a private message bus for the reminders' notification tests
  dbus-daemon
  # peers of the converters, and the Debian package of the program
  pandoc dpkg-dev fakeroot
  # checks of the e-books and PDFs the publishing makes, and reading them back
  epubcheck poppler-utils unzip
  # transcripts of recordings: the recogniser, its English models and test recordings, and
  # ffmpeg's libraries to decode phone memos (AAC) as well as MP3, FLAC and WAV
  libpocketsphinx-dev pocketsphinx-en-us pocketsphinx-testdata
  libavformat-dev libavcodec-dev libswresample-dev
  # the position for inserted locations (GeoClue on the desktop)
  qt6-positioning-dev
  # text in images and PDFs: the recogniser and its English data
  libtesseract-dev tesseract-ocr-eng
)

# The recogniser's data for the locale's language as well, where Debian has
# it: the locale's definition names the language's three-letter codes.
locale_name="${LC_ALL:-${LANG:-}}"
locale_file="/usr/share/i18n/locales/${locale_name%%.*}"
if [ -f "$locale_file" ]; then
  for code in $(sed -n 's/^lang_\(term\|lib\)[[:space:]]*"\([a-z]*\)".*/\2/p' "$locale_file"); do
    if [ "$code" != eng ] && apt-cache show "tesseract-ocr-$code" >/dev/null 2>&1; then
      packages+=("tesseract-ocr-$code")
      break
    fi
  done
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#packages[@]} packages present"
  install_web_scripts
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
install_web_scripts
