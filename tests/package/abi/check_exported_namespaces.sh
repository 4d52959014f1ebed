#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_exported_namespaces.sh LIBRARY: fails when the library exports anything but what belongs to the namespaces tarn::VOD
# and VOD. The functions that Protocol Buffers specialise for a message count as the message's: they return it.
set -euo pipefail
ours='^((vtable|typeinfo|typeinfo name) for )?(tarn::)?VOD::'

symbols=$("$(dirname "$0")/../../../scripts/list-exported-symbols" "$1")
if [[ -z $symbols ]]; then
  echo "$1 exports nothing" >&2
  exit 1
fi
if grep -Ev "$ours" <<<"$symbols"; then
  echo "$1 exports the names above, which are not part of its interface" >&2
  exit 1
fi
