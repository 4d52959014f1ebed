#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_run_example.sh FOLDER OUTCOME: checks one outcome of run_example.sh, with a program that prints three lines and waits for
# Enter before the last one.
set -euo pipefail
run_example=$(realpath "$(dirname "$0")/run_example.sh")
rm -rf "$1"
mkdir -p "$1"
cd "$1"

# program STATUS: the program, which ends with this status.
program() {
  printf '%s\n' '#!/bin/bash' 'echo first' 'echo second 2' 'read -r' 'echo last' "exit $1" >program
  chmod +x program
}

# expect RESULT MESSAGE LINE...: what comes of these expected lines.
expect() {
  local result=accepted
  printf '%s\n' "${@:3}" >expected
  "$run_example" ./program expected 2>errors || result=refused
  [[ $result == "$1" && $(<errors) == "$2" ]] || { echo "$result: $(<errors)" >&2; exit 1; }
}

program 0
case $2 in
  AcceptsTheExpectedLines) expect accepted "" first 'second [0-9]' '== enter' last ;;
  SkipsLinesAtAnEllipsis)
    expect accepted "" ... 'second .*' '== enter' last
    expect accepted "" first ... '== enter' last
    expect accepted "" first '== enter' ... ;;
  RefusesAnotherLine) expect refused 'program: printed "second 2" instead of: third' first third ;;
  RefusesAMissingLine)
    expect refused 'program: ended, or printed nothing for a minute, before: third; the last line was "last"' \
      first 'second 2' '== enter' ... third ;;
  RefusesAFurtherLine) expect refused 'program: printed more than expected: last' first 'second 2' '== enter' ;;
  RefusesAFailure)
    program 3
    expect refused 'program: ended with 3' first 'second 2' '== enter' last ;;
  *) echo "unknown outcome: $2" >&2; exit 2 ;;
esac
