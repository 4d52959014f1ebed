# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Installs BUILD_DIR to a folder and moves the result to PREFIX, where it must work as well.
set(first_prefix "${PREFIX}-before-the-move")
file(REMOVE_RECURSE "${PREFIX}" "${first_prefix}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${first_prefix}"
  OUTPUT_QUIET
  COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${first_prefix}" "${PREFIX}")
