# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced: what scripts share that write their figures into docs/testing.md. They do so with the option --write only, so that
# scripts/check leaves the documents as they are.

# A script that cannot make a table ends, as it would elsewhere.
shopt -s inherit_errexit

# report_figures SCRIPT FIGURES [--write]: prints a table; with --write also writes it between the markers of the script.
report_figures() {
  printf '%s\n' "$2"
  if [[ ${3:-} == --write ]]; then
    scripts/lib/write-figures docs/testing.md "$1" <<<"$2"
  fi
}

# run_for_figures SCRIPT PROGRAM [--write] [OPTION...]: runs a program; with --write what it prints becomes the table of the script.
run_for_figures() {
  local script=$1 program=$2 report=build/${1##*/}.txt figures
  if [[ ${3:-} != --write ]]; then
    "$program" "${@:3}"
    return
  fi
  "$program" "${@:4}" | tee "$report"
  figures=$(scripts/lib/endurance-figures "${script##*/}" "$report")
  report_figures "$script" "$figures" --write
}
