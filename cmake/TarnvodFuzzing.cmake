# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The fuzzers are linked with an engine: by default libFuzzer, for whose coverage the whole build is instrumented. Without this each
# fuzzer is a plain program that replays its corpus, with any compiler. fuzz/build.sh builds them with an engine.
option(TARNVOD_BUILD_FUZZERS "Build the fuzzers with an engine, which needs clang" OFF)
set(TARNVOD_FUZZING_ENGINE "-fsanitize=fuzzer" CACHE STRING "The engine: libFuzzer's flag, or a library of another one")
if(TARNVOD_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "TARNVOD_BUILD_FUZZERS needs clang, but the compiler is ${CMAKE_CXX_COMPILER_ID}.")
  endif()
  if(TARNVOD_FUZZING_ENGINE STREQUAL "-fsanitize=fuzzer")
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
endif()
