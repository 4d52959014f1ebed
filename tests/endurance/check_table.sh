#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_table.sh SCRIPTS SCRIPT REPORT PROGRAM [OPTION...]: fails if the table that a script writes into docs/testing.md cannot be made
# of what its program prints. That is left in REPORT.
set -euo pipefail
scripts=$1 script=$2 report=$3

"${@:4}" >"$report"
exec "$scripts/lib/endurance-figures" "$script" "$report"
