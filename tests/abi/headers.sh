#!/bin/bash
# Each public header compiles alone, twice included, without a warning.
# usage: headers.sh INCLUDE-FOLDER COMPILER OPTION...
set -euo pipefail
include=$1
shift
for header in "$include"/*.h; do
  name=${header##*/}
  printf '#include "%s"\n#include "%s"\nextern int includes_nothing_else;\n' "$name" "$name" |
    "$@" -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I "$include" -
done
