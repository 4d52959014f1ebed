#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_options.sh COMMAND MANUAL COMPLETION: checks that the manual's synopsis and the completion have exactly the
# subcommands and options that --help lists.
set -euo pipefail
command=$1 manual=$2 completion=$3

failed=0

# expect WHERE WHAT WANTED ACTUAL: compares two lists of words, whatever their order.
expect() {
  local differences
  if ! differences=$(diff <(tr -s ' \n' '\n' <<<"$3" | sed '/^$/d' | sort -u) <(tr -s ' \n' '\n' <<<"$4" | sed '/^$/d' | sort -u)); then
    echo "$1: $2 differ from those of --help (<: missing, >: unknown):"
    grep '^[<>]' <<<"$differences"
    failed=1
  fi
}

# The long options in a text.
options_in() {
  grep -oE -- '(^|[^[:alnum:]-])--[a-z][a-z0-9-]*' | grep -oE -- '--[a-z][a-z0-9-]*' || true
}

subcommands_of_help() {
  "$command" --help | sed -n '/^Subcommands:/,$p' | awk 'NR > 1 && /^  [a-z]/ { print $1 }'
}

# options_of_help SUBCOMMAND: those that have a line of their own; others are mentioned in descriptions.
options_of_help() {
  "$command" "$1" --help | grep -E '^  -' | sed 's/^\(  [^ ]*\) .*/\1/' | options_in
}

synopsis() {
  sed -n '/^\.SH SYNOPSIS/,/^\.SH DESCRIPTION/p' "$manual" | sed 's/\\-/-/g; s/\\f.//g'
}

# synopsis_of SUBCOMMAND: the lines from its first to the next subcommand.
synopsis_of() {
  synopsis | awk -v name="$1" '/^tarnvod / { inside = $2 == name } inside'
}

complete() { :; } # only registers the function with an interactive shell
# shellcheck source=/dev/null
source "$completion"

# completions WORD...: what the completion offers for the last word.
completions() {
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  _tarnvod
  printf '%s\n' "${COMPREPLY[@]}"
}

subcommands=$(subcommands_of_help)
[[ -n $subcommands ]] || { echo "--help lists no subcommands"; exit 1; }
expect "$completion" subcommands "$subcommands --help --version" "$(completions tarnvod '')"
expect "$manual" subcommands "$subcommands" "$(synopsis | awk '/^tarnvod [a-z]/ { print $2 }')"
for subcommand in $subcommands; do
  options=$(options_of_help "$subcommand")
  [[ -n $options ]] || { echo "'$subcommand --help' lists no options"; exit 1; }
  expect "$completion" "the options of '$subcommand'" "$options" "$(completions tarnvod "$subcommand" --)"
  expect "$manual" "the options of '$subcommand'" "$options" "$(synopsis_of "$subcommand" | options_in) --help"
done
exit $failed
