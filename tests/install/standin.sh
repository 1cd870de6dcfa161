#!/bin/bash
# A library without liblog writes its log to standard error.
# usage: standin.sh INCLUDE-FOLDER CC LIBRARY
set -euo pipefail
include=$1 cc=$2 library=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cat >"$scratch/unknown.c" <<'END'
#include <acli.h>
int main(void) {
  void *channel;
  orvane_stream_desc unknown = {1, 1, 99, &channel};
  return acli_set_channel_ptrs(&unknown, &unknown, 0);
}
END
"$cc" -std=c11 -I "$include" "$scratch/unknown.c" -o "$scratch/unknown" "$library" \
  -Wl,-rpath,"$(dirname "$library")"
"$scratch/unknown" 2>"$scratch/log"
[ "$(cat "$scratch/log")" = '6/: ERROR: datatype not supported' ] || {
  echo 'the log is not as expected:' >&2
  cat "$scratch/log" >&2
  exit 1
}
