#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# compare_exported_symbols.sh LIBRARY WHY_NOT: fails when the library exports other names than the committed list; skips,
# with the reason, when a reason not to compare is given.
set -euo pipefail
library=$1
why_not=$2
here=$(dirname "$0")

if [[ -n $why_not ]]; then
  echo "not compared: $why_not"
  exit 77
fi
if ! diff "$here/exported_symbols.txt" <("$here/../../../scripts/list-exported-symbols" "$library"); then
  echo "the library's exported symbols differ from tests/package/abi/exported_symbols.txt; if that is intended, run" \
    "scripts/update-exported-symbols" >&2
  exit 1
fi
