#!/bin/bash
# The public headers declare for export the names of exports.txt and no others.
# usage: declarations.sh COMPILER INCLUDE-FOLDER SCRATCH-FILE
set -euo pipefail
here=$(dirname "$0")
. "$here/same_names.sh"

# A declared name stands before the first bracket or the end of a declaration.
for header in "$2"/*.h; do printf '#include "%s"\n' "${header##*/}"; done |
  "$1" -E -P -x c -std=c11 -I "$2" -DMVK_API=EXPORTED_HERE - |
  tr '\n' ' ' |
  grep -oP 'EXPORTED_HERE[^;(\[]*?\b\w+(?=\s*[;(\[])' |
  awk '{ sub(/^.*[ *]/, ""); print }' |
  LC_ALL=C sort >"$3"
same_names "$3" declared "$here/exports.txt" 'in exports.txt'
