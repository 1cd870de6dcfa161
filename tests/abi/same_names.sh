# Compares two sorted lists of names, given as files with a word for each.
# usage: same_names LIST WHAT LIST WHAT
same_names() {
  local only_first only_second
  only_first=$(LC_ALL=C comm -23 "$1" "$3")
  only_second=$(LC_ALL=C comm -13 "$1" "$3")
  [ -z "$only_first" ] || printf '%s, but not %s:\n%s\n' "$2" "$4" "$only_first" >&2
  [ -z "$only_second" ] || printf '%s, but not %s:\n%s\n' "$4" "$2" "$only_second" >&2
  [ -z "$only_first$only_second" ]
}
