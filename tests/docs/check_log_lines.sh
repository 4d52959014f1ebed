#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_log_lines.sh SOURCE_DIR: every message of the library, and every reason that a Camera reports, is explained in
# troubleshooting.md.
set -euo pipefail
cd "$1"

# A message is a literal that is a sentence: it begins with a capital and has a blank. Its parts may be on several lines. Numbers are
# called N in the document.
mapfile -t messages < <(find src -name '*.cpp' -exec cat {} + | sed -z 's/"\n *"//g' | grep -oE '"[A-Z][^"]* [^"]*"' |
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

# A reason begins with a small letter and has two blanks at least. Names and numbers may follow it.
mapfile -t reasons < <(grep -rhoE '"[a-z][^" ]* [^" ]+ [^"]*"' include/tarnvod/detail | sed -e 's/^"//; s/ *"$//' | sort -u)
if [[ ${#reasons[@]} -lt 5 ]]; then
  echo "only ${#reasons[@]} reasons were found in include/tarnvod/detail" >&2
  exit 1
fi
for reason in "${reasons[@]}"; do
  if ! grep -qF "\`$reason" docs/troubleshooting.md; then
    echo "docs/troubleshooting.md does not explain: $reason" >&2
    result=1
  fi
done
exit $result
