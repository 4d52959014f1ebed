#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_hardening.sh BINARY optimised|unoptimised: fails when a library or program lacks a protection, naming it. Reads any
# architecture's binaries.
set -euo pipefail
export LC_ALL=C
binary=$1
build=$2

failed=0
lacks() {
  echo "$binary: $1" >&2
  failed=1
}

header=$(readelf --file-header --wide "$binary")
segments=$(readelf --program-headers --wide "$binary")
dynamic=$(readelf --dynamic --wide "$binary")
symbols=$(readelf --dyn-syms --wide "$binary")

grep -q 'DYN (' <<<"$header" || lacks "is not position-independent"
grep -q 'GNU_RELRO' <<<"$segments" || lacks "has no segment that becomes read-only after relocation"
grep -Eq '\((BIND_NOW|FLAGS)\).*BIND_NOW|\(FLAGS_1\).*NOW' <<<"$dynamic" || lacks "resolves functions lazily"
grep -Eq 'GNU_STACK.* RW +0x' <<<"$segments" || lacks "has an executable stack, or does not say that it has none"
grep -Eq ' LOAD .* (RWE|WE) ' <<<"$segments" && lacks "has a segment that is both writable and executable"
grep -Eq '\(TEXTREL\)|TEXTREL' <<<"$dynamic" && lacks "has relocations in its text"
grep -q '__stack_chk_fail' <<<"$symbols" || lacks "does not check its stack"
if [[ $build == optimised ]]; then
  grep -Eq '__[a-z]+_chk(@|$)' <<<"$symbols" || lacks "does not use the checked functions of the C library"
fi
exit "$failed"
