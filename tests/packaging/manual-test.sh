#!/usr/bin/env bash
# manual-test.sh BUILD-DIR: the manual pages name exactly the commands and options that the programs'
# own help names, and are well-formed.
set -euo pipefail
build=$1
pages=$(dirname "$0")/../../packaging/man
export LC_ALL=C.UTF-8
failed=0

# same WHAT FROM-HELP FROM-PAGE
same() {
  [ -n "$2" ] || { echo "$1: the help names nothing" >&2; failed=1; }
  diff <(sort <<<"$2") <(sort <<<"$3") >&2 ||
    { echo "$1: differs (<: help, >: manual page)" >&2; failed=1; }
}

# The lines after .TP define options; texts and examples name others.
options_of_page() {
  sed -n "/^\.SH $2\$/,/^\.SH /p" "$pages/$1.1.in" | grep -A1 '^\.TP' | tr -d '\134' |
    grep -oE -- '--[a-z0-9-]+'
}
options_of_help() { sed -nE 's/^  (-[a-z],)?(--[a-z0-9-]+).*/\2/p'; }

# check_options SECTION PROGRAM [COMMAND]
check_options() {
  local section=$1 program=$2 help
  help=$("$build/$program" "${@:3}" --help | options_of_help)
  # Every command has --help; the page says so once.
  [ $# -eq 2 ] || help=$(grep -vx -- --help <<<"$help")
  same "${*:2}" "$help" "$(options_of_page "$program" "$section")"
}

check_options OPTIONS endpin
check_options OPTIONS endpin-cli
commands=$("$build/endpin-cli" --help | sed -nE '/^Subcommands:/,$s/^  ([a-z-]+) .*/\1/p')
same "endpin-cli: its commands" "$commands" \
  "$(sed -n '/^\.SH SYNOPSIS/,/^\.SH D/{/^\.B endpin/{n;s/^\.B //p}}' "$pages/endpin-cli.1.in")"
for command in $commands; do
  check_options "${command^^}" endpin-cli "$command"
done

for page in endpin endpin-cli; do
  complaints=$(groff -man -Tutf8 -ww -z "$pages/$page.1.in" 2>&1)
  [ -z "$complaints" ] || { echo "$page.1: $complaints" >&2; failed=1; }
done
exit $failed
