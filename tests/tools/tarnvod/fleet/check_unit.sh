#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_unit.sh UNIT COMMAND FOLDER OUTCOME: checks one outcome of a systemd unit, with COMMAND as its program, in FOLDER.
set -euo pipefail
unit=$1
command=$2
folder=$3
outcome=$4

rm -rf "$folder"
mkdir -p "$folder"
copy=$folder/$(basename "$unit")
sed "s#^ExecStart=tarnvod #ExecStart=$command #" "$unit" >"$copy"
grep -q "^ExecStart=$command " "$copy"

case $outcome in
  IsValid)
    # Warnings about other units of the machine are not ours.
    output=$(systemd-analyze verify --man=no "$copy" 2>&1) || { echo "$output" >&2; exit 1; }
    if grep -F "$(basename "$unit")" <<<"$output" >&2; then
      exit 1
    fi ;;
  IsHardened)
    # An exposure of at most 2.5 of 10.
    systemd-analyze security --no-pager --offline=true --threshold=25 "$copy" ;;
  *) echo "unknown outcome: $outcome" >&2; exit 2 ;;
esac
