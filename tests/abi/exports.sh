#!/bin/bash
# The library exports the names of exports.txt and no others.
# usage: exports.sh NM LIBRARY
set -euo pipefail
here=$(dirname "$0")
. "$here/same_names.sh"

"$1" -D --defined-only "$2" | awk '{ print $3 }' | LC_ALL=C sort >"$2.exported"
same_names "$2.exported" exported "$here/exports.txt" 'in exports.txt'
