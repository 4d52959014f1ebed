#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# run_example.sh PROGRAM EXPECTED: runs an example and compares what it prints, line by line, with the file EXPECTED, whose
# lines are regular expressions. A line "..." stands for any lines before the next one. At the line "== enter" the user presses
# Enter; at "== SIGTERM" the program receives that signal. It must then end with status 0.
set -euo pipefail
program=$1
expected=$2

fail() {
  echo "$(basename "$program"): $*" >&2
  exit 1
}

coproc example { exec "$program"; }
exec {output}<&"${example[0]}" {input}>&"${example[1]}"
eval "exec ${example[1]}>&-"
process=$example_PID
trap 'kill "$process" 2>/dev/null || true' EXIT

# expect_line PATTERN: the next line matches, or one of the next lines after "...".
expect_line() {
  local line last=nothing
  while IFS= read -r -t 60 -u "$output" line; do
    [[ ! $line =~ ^$1$ ]] || return 0
    [[ $skip == yes ]] || fail "printed \"$line\" instead of: $1"
    last=\"$line\"
  done
  fail "ended, or printed nothing for a minute, before: $1; the last line was $last"
}

skip=no
while IFS= read -r pattern; do
  case $pattern in
    ...) skip=yes ;;
    "== enter") exec {input}>&- ;;
    "== SIGTERM") kill -TERM "$process" ;;
    *)
      expect_line "$pattern"
      skip=no
      ;;
  esac
done <"$expected"

while IFS= read -r -t 60 -u "$output" line; do
  [[ $skip == yes ]] || fail "printed more than expected: $line"
done
wait "$process" || fail "ended with $?"
trap - EXIT
