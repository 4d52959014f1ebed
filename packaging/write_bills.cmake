# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Run by CPack on the files that it is about to pack: each package gets its bill of materials.
if(NOT CPACK_TARNVOD_PYTHON)
  message(FATAL_ERROR "Packages need Python 3, which writes their bills of materials: install it and configure the build again.")
endif()
set(packages "")
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER "${component}" key)
  list(APPEND packages
    "${CPACK_DEBIAN_${key}_PACKAGE_NAME}=${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}=${CPACK_TARNVOD_${key}_COMPILED_IN}")
endforeach()
execute_process(
  COMMAND "${CPACK_TARNVOD_PYTHON}" "${CMAKE_CURRENT_LIST_DIR}/bill_of_materials.py" --version "${CPACK_PACKAGE_VERSION}"
    --architecture "${CPACK_DEBIAN_PACKAGE_ARCHITECTURE}" --objdump "${CPACK_TARNVOD_OBJDUMP}" ${packages}
  COMMAND_ERROR_IS_FATAL ANY)
