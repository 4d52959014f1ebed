# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# What makes the shipped library small without making a frame slow; docs/device.md says what each saves.

if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT TARNVOD_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # The objects hold machine code as well, for tools that read them without the compiler's help.
  set(TARNVOD_OPTIMISED_TOGETHER -fno-semantic-interposition -flto=auto -ffat-lto-objects)
endif()

# tarnvod_footprint(OBJECTS SOURCE...): optimises objects of the library for size, but for speed these that run with each frame; -O3
# copies short names without a call.
function(tarnvod_footprint objects)
  if(TARNVOD_OPTIMISED_TOGETHER)
    target_compile_options(${objects} PRIVATE -Os ${TARNVOD_OPTIMISED_TOGETHER})
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -O3)
  endif()
endfunction()

# tarnvod_link_footprint(LIBRARY): optimises the objects together. What the library calls of itself it calls directly, not through
# the table by which a program could put its own functions in between.
function(tarnvod_link_footprint library)
  if(TARNVOD_OPTIMISED_TOGETHER)
    target_link_options(${library} PRIVATE -Os -flto=auto -flto-partition=none -fno-ipa-sra -fuse-linker-plugin
      LINKER:--gc-sections LINKER:-Bsymbolic-functions)
  endif()
endfunction()

# tarnvod_messages_footprint(OBJECTS): optimises the generated classes for size, but for speed what runs with each frame.
function(tarnvod_messages_footprint objects)
  if(TARNVOD_OPTIMISED_TOGETHER)
    target_compile_options(${objects} PRIVATE -Os ${TARNVOD_OPTIMISED_TOGETHER}
      "-DTARNVOD_EACH_FRAME=__attribute__((optimize(\"O2\")))")
  else()
    target_compile_definitions(${objects} PRIVATE TARNVOD_EACH_FRAME=)
  endif()
endfunction()
