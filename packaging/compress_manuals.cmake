# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Run by CPack on the files that it is about to pack: Debian requires compressed manual pages.
file(GLOB_RECURSE manuals "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.[1-9]")
list(FILTER manuals INCLUDE REGEX "/man/man[1-9]/[^/]*$")
foreach(manual IN LISTS manuals)
  execute_process(COMMAND gzip -9 --no-name "${manual}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
