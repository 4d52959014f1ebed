#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_generated_symbols.sh LIBRARY OBJECT: fails when the library keeps back a function or an object that the compiled
# message classes define. Inline functions, which are weak, do not count: each application has its own copy.
set -euo pipefail
export LC_ALL=C
library=$1
object=$2

symbols() {
  nm --defined-only --extern-only --format=posix "$@" | awk '$2 != "W" { print $1 }' | c++filt | sort -u
}
generated=$(symbols "$object" | grep -E '^((vtable|typeinfo|typeinfo name) for )?VOD::' || true)
if [[ -z $generated ]]; then
  echo "$object defines nothing of namespace VOD" >&2
  exit 1
fi
missing=$(comm -23 <(echo "$generated") <(symbols --dynamic "$library"))
if [[ -n $missing ]]; then
  printf '%s\n' "$missing" "$library does not export the names above" >&2
  exit 1
fi
