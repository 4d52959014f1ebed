# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# tarnvod_warnings(TARGET): strict warnings for code that we wrote; errors with TARNVOD_STRICT. A constructor's parameter may
# be named like the member that it fills, which gcc's plain -Wshadow does not allow and clang's does.
function(tarnvod_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wundef -Wcast-align -Wcast-qual -Wformat=2
    -Wimplicit-fallthrough
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wextra-semi>
    $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety -Wthread-safety-beta>
    $<$<BOOL:${TARNVOD_STRICT}>:-Werror>)
endfunction()
