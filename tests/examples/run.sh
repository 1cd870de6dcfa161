#!/bin/bash
# An example prints what is expected of it, each figure within its bounds, and no more.
# usage: run.sh EXPECTATIONS NAME COMMAND...
set -euo pipefail
expectations=$1 name=$2
shift 2
printed=$("$@")
printf '%s\n' "$printed"
awk -v name="$name" '
  function fail(reason) { print reason > "/dev/stderr"; failed = 1 }
  NR == FNR {
    if ($1 != name) next
    low = $(NF - 1); high = $NF; label = $2
    for (i = 3; i < NF - 1; ++i) label = label " " $i
    lowest[label] = low; highest[label] = high
    next
  }
  {
    label = $0; sub(/: [^:]*$/, "", label)
    value = $0; sub(/.*: /, "", value)
    if (!(label in lowest)) { fail("not expected: " $0); next }
    if (value !~ /^-?[0-9.]+(e[-+]?[0-9]+)?$/ || value + 0 < lowest[label] + 0 || value + 0 > highest[label] + 0)
      fail("outside " lowest[label] " to " highest[label] ": " $0)
    seen[label] = 1
  }
  END {
    for (label in lowest) if (!(label in seen)) fail("not printed: " label)
    if (!length(lowest)) fail("nothing is expected of " name)
    exit failed
  }' "$expectations" - <<<"$printed"
