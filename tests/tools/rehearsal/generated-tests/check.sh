#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check.sh COMMAND APPLICATION KIND PREFIX WORK_DIR: rehearses a planted application, builds the test that is written for its failure
# against the copy installed in PREFIX, and runs it twice: with the mistake it must fail, without it must pass. The planted
# application's schedule and source have its name.
set -euo pipefail
command=$1
application=$2
kind=$3
prefix=$4
work=$5
here=$(realpath "$(dirname "$0")")
mistake=$(basename "$application")
mistake=${mistake#planted_}

fail() {
  echo "$mistake: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
cd "$work"
if "$command" rehearse --schedule "$here/$mistake.schedule" --output found -- "$application" >report 2>&1; then
  fail "the rehearsal finds nothing"
fi
[[ -e found/${kind}_test.cpp ]] || { cat report >&2; fail "no test is written"; }

{
  cmake -S "$here" -B build -G Ninja -DCMAKE_CXX_COMPILER="${CXX:-c++}" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" \
    -DCMAKE_PREFIX_PATH="$prefix" -DGENERATED="$PWD/found/${kind}_test.cpp" -DMISTAKE="$mistake"
  cmake --build build
} >output 2>&1 || { cat output found/"${kind}_test.cpp" >&2; fail "the test does not build"; }

if build/with_mistake >output 2>&1; then
  cat found/"${kind}_test.cpp" >&2
  fail "the test passes with the mistake"
fi
build/without_mistake >output 2>&1 || { cat output found/"${kind}_test.cpp" >&2; fail "the test fails without the mistake"; }
