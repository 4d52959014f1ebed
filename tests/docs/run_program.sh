#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# run_program.sh DOCUMENT PREFIX WORK_DIR EXPECTED: builds the first program of a document against the copy installed in PREFIX,
# and runs it as the examples are run (tests/examples/run_example.sh), on the recordings that are installed there.
set -euo pipefail
here=$(realpath "$(dirname "$0")")
document=$1
prefix=$2
work_dir=$3
expected=$4

rm -rf "$work_dir"
mkdir -p "$work_dir/blocks" "$work_dir/project"
awk -v into="$work_dir/blocks" -f "$here/split_blocks.awk" "$document"
program=$(grep --files-with-matches 'int main' "$work_dir"/blocks/*.body | head -n 1)
cp "$program" "$work_dir/project/main.cpp"
{
  echo "cmake_minimum_required(VERSION 3.25)"
  echo "project(application LANGUAGES CXX)"
  echo "add_executable(application main.cpp)"
  cat "$here/application.cmake"
} >"$work_dir/project/CMakeLists.txt"

cd "$work_dir"
{
  cmake -S project -B build -G Ninja -DCMAKE_CXX_COMPILER="${CXX:-c++}" -DCMAKE_PREFIX_PATH="$prefix"
  cmake --build build
} >output 2>&1 || { cat output >&2; exit 1; }
exec "$here/../examples/run_example.sh" build/application "$expected"
