#!/bin/bash
# The library is what a loader expects: its name, what it needs and where that
# is found, nothing to relocate in its text, and read-only relocations.
# usage: elf.sh READELF LIBRARY platform=[FOLDER] NEEDED...
set -euo pipefail
dynamic=$("$1" -dW "$2")
segments=$("$1" -lW "$2")
platform_dir=${3#platform=}
shift 3

expect() {
  grep -qE -- "$2" <<<"$1" || { echo "not found: $2" >&2 && printf '%s\n' "$1" >&2 && exit 1; }
}

expect "$dynamic" 'SONAME.*\[libmavokresampler\.so\]'
for library in "$@"; do expect "$dynamic" "NEEDED.*\[lib$library\.so(\.[0-9]+)?\]"; done
[ -z "$platform_dir" ] || expect "$dynamic" "RUNPATH.*\[$platform_dir\]"
expect "$dynamic" 'FLAGS.*BIND_NOW'
expect "$segments" 'GNU_RELRO'
if grep -q TEXTREL <<<"$dynamic"; then
  echo 'the library relocates its text' >&2
  exit 1
fi
