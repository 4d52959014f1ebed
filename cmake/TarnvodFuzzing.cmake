# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The fuzzers are built with libFuzzer, and the whole build is instrumented for its coverage. Without this each fuzzer is a plain
# program that replays its corpus, with any compiler.
option(TARNVOD_BUILD_FUZZERS "Build the fuzzers with libFuzzer, which needs clang" OFF)
if(TARNVOD_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "TARNVOD_BUILD_FUZZERS needs clang, but the compiler is ${CMAKE_CXX_COMPILER_ID}.")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
