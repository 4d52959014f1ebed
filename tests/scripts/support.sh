# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced with SCRIPTS FOLDER OUTCOME: sets `scripts`, `folder` and `outcome`, and makes FOLDER, in which the check goes on. Has expect.
scripts=$1 folder=$2 outcome=$3

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"

# expect STATUS OUTPUT COMMAND...: the status and all that the command prints.
expect() {
  local status=0 output
  output=$("${@:3}" 2>&1) || status=$?
  [[ $status == "$1" && $output == "$2" ]] || { echo "status $status: $output" >&2; exit 1; }
}
