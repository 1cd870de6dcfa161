#!/bin/bash
# The documentation site is made without a warning, tells of every exported name and of
# nothing that is only a means to declare them, and its links lead somewhere.
# usage: site.sh DOXYGEN DOXYFILE EXPORTS
set -euo pipefail
doxygen=$1 doxyfile=$2 exports=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

printf '%s\n' "@INCLUDE = $doxyfile" "OUTPUT_DIRECTORY = $scratch" "GENERATE_TAGFILE = $scratch/names" |
  "$doxygen" - >"$scratch/log" 2>&1 || { cat "$scratch/log" >&2 && exit 1; }

names=$(grep -oP '<name>\K[^<]+' "$scratch/names" | LC_ALL=C sort -u)
missing=$(LC_ALL=C comm -23 <(LC_ALL=C sort "$exports") - <<<"$names")
[ -z "$missing" ] || { echo "not on the site: $missing" >&2 && exit 1; }
if grep -E '_DECLARE_' <<<"$names" >&2; then
  echo 'means of declaring names are on the site' >&2
  exit 1
fi

cd "$scratch/html"
# Each local link and picture as file and anchor.
grep -ohP '(?<= )(href|src|data)="\K[^":]+(?=")' ./*.html | LC_ALL=C sort -u >"$scratch/links"
while IFS='#' read -r file anchor; do
  [ -f "$file" ] || { echo "no page $file" >&2 && exit 1; }
  [ -z "$anchor" ] || grep -q -e "id=\"$anchor\"" -e "name=\"$anchor\"" "$file" ||
    { echo "no place $anchor in $file" >&2 && exit 1; }
done < <(grep -v '^#' "$scratch/links")
