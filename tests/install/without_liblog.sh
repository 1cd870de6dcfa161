#!/bin/bash
# A build on a machine without liblog says so, and the library then writes its log
# to standard error.
# usage: without_liblog.sh SOURCE-FOLDER CC PLATFORM-FOLDER
set -euo pipefail
source=$1 cc=$2 platform=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$1" >&2
  cat "$scratch/log" >&2
  exit 1
}

cmake -S "$source" -B "$scratch/build" -DMVK_TESTS=OFF -DMVK_TOOLS=OFF -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_IGNORE_PATH="$platform;${platform#/usr}" >"$scratch/log" 2>&1 || fail 'configuring failed'
tr '\n' ' ' <"$scratch/log" | tr -s ' ' | grep -q "liblog isn't installed (on Debian: apt-get install android-liblog-dev)" ||
  fail 'no warning of the missing liblog'
cmake --build "$scratch/build" >"$scratch/log" 2>&1 || fail 'building failed'

cat >"$scratch/unknown.c" <<'END'
#include <acli.h>
int main(void) {
  void *channel;
  orvane_stream_desc unknown = {1, 1, 99, &channel};
  return acli_set_channel_ptrs(&unknown, &unknown, 0);
}
END
"$cc" -std=c11 -I "$source/include" "$scratch/unknown.c" -o "$scratch/unknown" \
  "$scratch/build/libmavokresampler.so" -Wl,-rpath,"$scratch/build"
"$scratch/unknown" 2>"$scratch/log"
[ "$(cat "$scratch/log")" = '6/: ERROR: datatype not supported' ] || fail 'the log is not as expected:'
