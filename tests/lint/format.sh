#!/bin/bash
# The sources are formatted as .clang-format says.
# usage: format.sh CLANG-FORMAT ROOT
set -euo pipefail
cd "$2"
find include core component kernels limiter fft dct filterbanks services tools examples tests fuzz bench -name '*.h' -o -name '*.c' -o -name '*.cpp' |
  xargs "$1" --dry-run -Werror
