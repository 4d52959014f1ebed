# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Run by CPack on what it has installed to pack it: Debian has manual pages compressed.
file(GLOB_RECURSE manuals "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/tarnvod.1")
foreach(manual IN LISTS manuals)
  execute_process(COMMAND gzip -9 --no-name "${manual}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
