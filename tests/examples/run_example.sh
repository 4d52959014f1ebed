#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# run_example.sh PROGRAM EXPECTED: runs an example and compares what it prints, line by line, with the file EXPECTED, whose
# lines are regular expressions. At the line "== enter" the user presses Enter; at "== SIGTERM" the program gets that signal.
# It must then end by itself, with success.
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

while IFS= read -r pattern; do
  case $pattern in
    "== enter") exec {input}>&- ;;
    "== SIGTERM") kill -TERM "$process" ;;
    *)
      IFS= read -r -t 60 -u "$output" line || fail "ended, or said nothing for a minute, before: $pattern"
      [[ $line =~ ^$pattern$ ]] || fail "printed \"$line\" instead of: $pattern"
      ;;
  esac
done <"$expected"

if IFS= read -r -t 60 -u "$output" line; then
  fail "printed more than expected: $line"
fi
wait "$process" || fail "ended with $?"
trap - EXIT
