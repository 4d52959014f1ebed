#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_log_lines.sh SOURCE_DIR: every message of the library, as it stands in src/, is explained in troubleshooting.md.
set -euo pipefail
cd "$1"

# A message is a literal that is a sentence: it begins with a capital and has a blank. Numbers are called N in the document.
mapfile -t messages < <(grep -rhoE --include='*.cpp' '"[A-Z][^"]* [^"]*"' src |
  sed -e 's/^"//; s/"$//; s/\\n$//; s/%[a-z]/N/' | sort -u)
if [[ ${#messages[@]} -lt 10 ]]; then
  echo "only ${#messages[@]} messages were found in src/" >&2
  exit 1
fi

result=0
for message in "${messages[@]}"; do
  if ! grep -qF "\`$message\`" docs/troubleshooting.md; then
    echo "docs/troubleshooting.md does not explain: $message" >&2
    result=1
  fi
done
exit $result
