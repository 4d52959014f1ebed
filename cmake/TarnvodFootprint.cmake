# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# What makes the shipped library small without making a frame slow; docs/device.md tells what each brings.

# tarnvod_footprint(TARGET...): optimises these targets of one library together. What the library calls of itself it calls
# directly, not through the table by which a program could put its own functions in between.
function(tarnvod_footprint)
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Release" OR TARNVOD_SANITIZE OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    return()
  endif()
  foreach(target IN LISTS ARGN)
    # The objects hold machine code as well, for tools that read them without the compiler's help.
    target_compile_options(${target} PRIVATE -O2 -fno-semantic-interposition -flto=auto -ffat-lto-objects)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
      target_link_options(${target} PRIVATE -flto=auto -flto-partition=none -fno-ipa-sra -fuse-linker-plugin LINKER:--gc-sections LINKER:-Bsymbolic-functions)
    endif()
  endforeach()
endfunction()

# tarnvod_rarely_run(SOURCE...): optimises these sources for size. They run when a camera is set up, not with each frame.
function(tarnvod_rarely_run)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-Os>")
endfunction()
