#!/bin/bash
# Configuring on a machine without liblog says so, and takes the stand-in for it.
# usage: without_liblog.sh SOURCE-FOLDER PLATFORM-FOLDER
set -euo pipefail
source=$1 platform=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$1" >&2
  cat "$scratch/log" >&2
  exit 1
}

cmake -S "$source" -B "$scratch/build" -DMVK_TESTS=OFF -DMVK_TOOLS=OFF \
  -DCMAKE_IGNORE_PATH="$platform;${platform#/usr}" >"$scratch/log" 2>&1 || fail 'configuring failed'
tr '\n' ' ' <"$scratch/log" | tr -s ' ' | grep -q "liblog isn't installed (on Debian: apt-get install android-liblog-dev)" ||
  fail 'no warning of the missing liblog'
grep -q 'core/log_standin.cpp' "$scratch/build/compile_commands.json" || fail 'the stand-in is left out'
