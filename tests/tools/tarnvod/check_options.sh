#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_options.sh COMMAND MANUAL COMPLETION: checks that the manual's synopsis and the completion have exactly the
# subcommands and options that --help lists, and that the manual describes each option.
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

# options_of_help [SUBCOMMAND]: those that have a line of their own; others are mentioned in descriptions.
options_of_help() {
  "$command" "$@" --help | grep -E '^  -' | sed 's/^\(  [^ ]*\) .*/\1/' | options_in
}

# manual FIRST LAST: the manual from one heading to another, without its typesetting.
manual() {
  sed -n "/^\.SH $1/,/^\.SH $2/p" "$manual" | sed 's/\\-/-/g; s/\\f.//g'
}

synopsis() {
  manual SYNOPSIS DESCRIPTION
}

# synopsis_of SUBCOMMAND: the lines from its first to the next subcommand.
synopsis_of() {
  synopsis | awk -v name="$1" '/^tarnvod / { inside = $2 == name } inside'
}

# expect_described OPTION...: that the text of the manual has them. The synopsis says enough about --help and --version.
expect_described() {
  local option
  for option in "$@"; do
    if [[ ! $option =~ ^--(help|version)$ ]] && ! grep --quiet --line-regexp -- "$option" <<<"$described"; then
      echo "$manual: does not describe $option"
      failed=1
    fi
  done
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
described=$(manual DESCRIPTION EXAMPLES | options_in)
expect "$completion" "subcommands and options" "$subcommands $(options_of_help)" "$(completions tarnvod '')"
expect "$manual" options "$(options_of_help)" "$(synopsis | awk '/^tarnvod [^a-z]/' | options_in)"
expect "$manual" subcommands "$subcommands" "$(synopsis | awk '/^tarnvod [a-z]/ { print $2 }')"
for subcommand in $subcommands; do
  options=$(options_of_help "$subcommand")
  [[ -n $options ]] || { echo "'$subcommand --help' lists no options"; exit 1; }
  expect "$completion" "the options of '$subcommand'" "$options" "$(completions tarnvod "$subcommand" --)"
  # shellcheck disable=SC2086 # words
  expect_described $options
  expect "$manual" "the options of '$subcommand'" "$options" "$(synopsis_of "$subcommand" | options_in) --help"
done
exit $failed
