#!/bin/bash
# The commands, options and formats of mvk's help, its manual and its completion are the same.
# usage: options.sh MANUAL COMPLETION MVK-COMMAND...
set -euo pipefail
manual=$1 completion=$2
shift 2
failed=

# What a help has under a heading, up to the next empty line.
section() { sed -n "/^$1:\$/,/^\$/p" | tail -n +2; }

sorted() { tr -s ' ' '\n' | sed '/^$/d' | LC_ALL=C sort; }

same() {
  diff --label 'help' --label "$1" <(sorted <<<"$2") <(sorted <<<"$3") >&2 || failed=yes
}

options_of_help() { section Options | grep -oE '^ +-[-a-z0-9,]+' | tr ',' ' '; }

# The tags of the manual's list of options of a command, or before all commands.
options_of_manual() {
  sed 's/\\-/-/g; s/\\fI[^"]*//g' "$manual" |
    awk -v command="$1" '
      /^\.S[HS] / { within = ($0 == (command == "" ? ".SH OPTIONS" : ".SS " command)) }
      within && tag { print }
      { tag = /^\.TP/ }' |
    grep -oE -- '-[-a-z0-9]+'
}

# What is offered for the last of some words.
# shellcheck disable=SC1090
offered() {
  (
    source "$completion"
    COMP_WORDS=(mvk "$@") COMP_CWORD=$# COMPREPLY=()
    _mvk
    printf '%s\n' "${COMPREPLY[@]}"
  )
}

help=$("$@" --help)
commands=$(section Subcommands <<<"$help" | awk '{ print $1 }')
same 'commands of the manual' "$commands" "$(sed -n 's/^\.SS //p' "$manual")"
same 'options of the manual' "$(options_of_help <<<"$help")" "$(options_of_manual '')"
same 'commands and options of the completion' "$commands $(options_of_help <<<"$help")" "$(offered '')"

for command in $commands; do
  help=$("$@" "$command" --help)
  same "options of $command in the manual" "$(options_of_help <<<"$help")" "$(options_of_manual "$command")"
  same "options of $command in the completion" "$(options_of_help <<<"$help")" "$(offered "$command" -)"
done

help=$("$@" resample --help)
containers=$(section Containers <<<"$help" | sed '/^Sample formats:/,$d')
samples=$(section 'Sample formats' <<<"$help")
[ -n "$containers" ] && [ -n "$samples" ] || { echo 'no formats in the help' >&2 && exit 1; }
same 'formats of the manual' "$containers $samples" \
  "$(awk '/^\.S[HS]/ { within = /FORMATS/; tag = "" }
          within && /^\.I (Containers|Sample formats)/ { tag = 1; next }
          /^\./ { tag = "" } tag { print }' "$manual")"
for words in 'resample --format' 'resample -f' 'resample a b --format ='; do
  # shellcheck disable=SC2086
  same "formats after $words" "$containers $samples" "$(offered $words '')"
done
same 'samples after a container' "$samples" "$(offered limit a b --format wav :)"
same 'one of them' 's16' "$(offered limit a b --format wav : s1)"
same 'files' '' "$(offered resample sp)"
same 'window lengths after =' '32' "$(offered spectrum --length = 3)"
same 'the value of an option that is no command' '' "$(offered resample --library resa)"

if command -v groff >/dev/null; then
  warnings=$(groff -man -Tutf8 -ww -z "$manual" 2>&1)
  [ -z "$warnings" ] || { printf '%s\n' "$warnings" >&2 && failed=yes; }
fi
[ -z "$failed" ]
