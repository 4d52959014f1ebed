#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# build.sh [FUZZER...]: builds the fuzzers (default: all) in the way of OSS-Fuzz: with the compilers $CC and $CXX, the flags $CFLAGS and
# $CXXFLAGS, which carry the instrumentation, and the engine $LIB_FUZZING_ENGINE, in the folder $WORK. For each of them $OUT then holds
# the program, fuzz_NAME, its inputs, fuzz_NAME_seed_corpus.zip, and its options, fuzz_NAME.options; and in lib/ the shared libraries
# that they load, so that $OUT can be moved to a machine without them. scripts/fuzz builds the fuzzers with it too.
set -euo pipefail
sources=$(cd "$(dirname "$0")/.." && pwd)
: "${CC:?}" "${CXX:?}" "${CFLAGS:?}" "${CXXFLAGS:?}" "${LIB_FUZZING_ENGINE:?}" "${OUT:?}" "${WORK:?}"

fuzzers=("$@")
if [[ $# -eq 0 ]]; then
  mapfile -t fuzzers < <(ls "$sources/fuzz/corpus")
fi

# No type of build, so that no flags are added. The programs and our own libraries look for others in lib/ next to the program, and so
# do the libraries of others, on behalf of the program (--disable-new-dtags).
cmake -S "$sources" -B "$WORK" -G Ninja -DCMAKE_BUILD_TYPE= -DTARNVOD_BUILD_FUZZERS=ON \
  -DTARNVOD_FUZZING_ENGINE="$LIB_FUZZING_ENGINE" -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
  -DCMAKE_C_FLAGS="$CFLAGS" -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_BUILD_RPATH='$ORIGIN/lib;$ORIGIN' \
  -DCMAKE_EXE_LINKER_FLAGS=-Wl,--disable-new-dtags
cmake --build "$WORK" --target "${fuzzers[@]/#/fuzz_}"

# loaded_by PROGRAM: the shared libraries that it loads, but for the C library's.
loaded_by() {
  ldd "$1" | sed -n 's/^.* => \(\/.*\) (.*$/\1/p' | grep --invert-match --extended-regexp '/lib(c|m|dl|rt|pthread|resolv)\.so'
}

mkdir -p "$OUT/lib"
for fuzzer in "${fuzzers[@]}"; do
  program=fuzz_$fuzzer
  cp "$WORK/fuzz/$program" "$OUT/"
  cp "$sources/fuzz/fuzzer.options" "$OUT/$program.options"
  loaded_by "$WORK/fuzz/$program" | xargs cp --dereference --target-directory="$OUT/lib"
  (cd "$sources/fuzz/corpus/$fuzzer" && cmake -E tar cf "$OUT/${program}_seed_corpus.zip" --format=zip -- *)
done
