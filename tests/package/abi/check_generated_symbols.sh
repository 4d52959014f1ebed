#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_generated_symbols.sh LIBRARY OBJECT: fails when the library keeps back a function or an object that the compiled
# message classes define, or when it exports anything else in their namespace. Inline functions, which are weak, need not be
# exported: each application has its own copy.
set -euo pipefail
export LC_ALL=C
library=$1
object=$2

names() {
  c++filt | grep -E '^((vtable|typeinfo|typeinfo name) for )?VOD::' | sort -u || true
}
defined=$(nm --defined-only --extern-only --format=posix "$object" | awk '{ print $1 }' | names)
generated=$(nm --defined-only --extern-only --format=posix "$object" | awk '$2 != "W" { print $1 }' | names)
exported=$(nm --defined-only --extern-only --format=posix --dynamic "$library" | awk '{ print $1 }' | names)
if [[ -z $generated ]]; then
  echo "$object defines nothing of namespace VOD" >&2
  exit 1
fi
missing=$(comm -23 <(echo "$generated") <(echo "$exported"))
if [[ -n $missing ]]; then
  printf '%s\n' "$missing" "$library does not export the names above" >&2
  exit 1
fi
added=$(comm -13 <(echo "$defined") <(echo "$exported"))
if [[ -n $added ]]; then
  printf '%s\n' "$added" "$library exports the names above, which are not generated for the messages" >&2
  exit 1
fi
