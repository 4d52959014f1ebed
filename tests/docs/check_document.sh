#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_document.sh DOCUMENT SOURCE_DIR BUILD_DIR PREFIX WORK_DIR: follows a document as a reader would. Its code blocks are
# compiled and run from top to bottom, in WORK_DIR; commands begin in a folder `tarnvod`, which looks like SOURCE_DIR with
# BUILD_DIR as its build/release, and keep their folder and environment from block to block. The language of a block decides how it
# is checked:
#
#   sh      commands, which must succeed
#   cpp     a program, or the statements of a function, which must compile against the copy installed in PREFIX
#   cmake   the part of a CMakeLists.txt that makes the program `application` use tarnvod
#   text    not checked
#
# A comment before the block can change that:
#
#   <!-- test: file NAME -->        the block is the file NAME, to be written where the reader is
#   <!-- test: prints -->           the commands before it printed these lines, in this order; "..." stands for any
#   <!-- test: instead: COMMAND --> takes too long here; this command, with the same result, is run instead
#   <!-- test: not run: REASON -->  cannot be run here
#
# not-run.txt has the number of blocks of each document that are not run.
set -euo pipefail
document=$(realpath "$1")
source_dir=$2
build_dir=$3
prefix=$4
work_dir=$5
here=$(realpath "$(dirname "$0")")
name=${document#"$source_dir"/}
compiler=${CXX:-c++}

fail() {
  echo "$name:$line: $*" >&2
  exit 1
}

look_like_a_fresh_copy() {
  rm -rf "$work_dir"
  mkdir -p "$work_dir/blocks" "$work_dir/tarnvod/build"
  local item
  for item in "$source_dir"/*; do
    [[ $(basename "$item") == build ]] || ln -s "$item" "$work_dir/tarnvod/"
  done
  ln -s "$build_dir" "$work_dir/tarnvod/build/release"
  echo "export HOME='$work_dir'" >"$work_dir/environment"
  echo "$work_dir/tarnvod" >"$work_dir/folder"
}

run_commands() {
  local result=0
  env --chdir="$(<"$work_dir/folder")" WORK_DIR="$work_dir" bash -euo pipefail -c '
    source "$WORK_DIR/environment"
    source "$1"
    export -p >"$WORK_DIR/environment"
    pwd >"$WORK_DIR/folder"' bash "$1" </dev/null >"$work_dir/output" 2>&1 || result=$?
  if [[ $result -ne 0 ]]; then
    cat "$work_dir/output" >&2
    fail "the commands failed with $result"
  fi
}

write_file() {
  local target
  target=$(<"$work_dir/folder")/$2
  mkdir -p "$(dirname "$target")"
  cp "$1" "$target"
}

compare_output() {
  local expected actual
  exec {output}<"$work_dir/output"
  while IFS= read -r expected; do
    [[ $expected != ... ]] || continue
    while :; do
      IFS= read -r -u "$output" actual || { cat "$work_dir/output" >&2; fail "the commands did not print: $expected"; }
      [[ $actual != "$expected" ]] || break
    done
  done <"$1"
  exec {output}<&-
}

build_project() {
  cmake -S "$1" -B "$1/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$prefix" \
    >"$work_dir/output" 2>&1 && cmake --build "$1/build" >>"$work_dir/output" 2>&1 || {
    cat "$work_dir/output" >&2
    fail "does not build"
  }
}

# compile PROGRAM_FILE CMAKE_FILE: a project of both.
compile() {
  local project=$work_dir/project-$number
  mkdir -p "$project"
  cp "$1" "$project/main.cpp"
  {
    echo "cmake_minimum_required(VERSION 3.25)"
    echo "project(application LANGUAGES CXX)"
    echo "add_executable(application main.cpp)"
    cat "$2"
  } >"$project/CMakeLists.txt"
  build_project "$project"
}

# Statements become a function in a program that includes what the documents speak of.
as_program() {
  if grep -q 'int main' "$1"; then
    cat "$1"
  else
    cat "$here/fragment_prologue.txt"
    cat "$1"
    echo "}"
  fi
}

look_like_a_fresh_copy
line=0
awk -v into="$work_dir/blocks" -f "$here/split_blocks.awk" "$document"

not_run=0
blocks=0
for body in "$work_dir"/blocks/*.body; do
  [[ -e $body ]] || break
  number=$(basename "$body" .body)
  line=$(<"${body%.body}.line")
  language=$(<"${body%.body}.language")
  directive=$(<"${body%.body}.directive")
  blocks=$((blocks + 1))
  case $directive in
    "not run: "?*) not_run=$((not_run + 1)) ;;
    "instead: "?*)
      not_run=$((not_run + 1))
      echo "${directive#instead: }" >"$work_dir/instead"
      run_commands "$work_dir/instead"
      ;;
    "file "?*) write_file "$body" "${directive#file }" ;;
    prints) compare_output "$body" ;;
    "")
      case $language in
        sh) run_commands "$body" ;;
        cpp)
          as_program "$body" >"$work_dir/$number.cpp"
          compile "$work_dir/$number.cpp" "$here/application.cmake"
          ;;
        cmake) compile "$here/application.cpp" "$body" ;;
        text) ;;
        *) fail "a block of the language \"$language\", which cannot be checked; mark it" ;;
      esac
      ;;
    *) fail "unknown directive: $directive" ;;
  esac
done

line=1
allowed=$(awk -v name="$name" '$1 == name { print $2 }' "$here/not-run.txt")
[[ $not_run -eq ${allowed:-0} ]] || fail "$not_run blocks are not run, and not-run.txt says ${allowed:-0}"
echo "$name: $blocks blocks, $not_run of them not run"
