# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# tarnvod_harden(TARGET): the protections that every shipped library and tool has. Where they need an optimising compiler, or
# hide from a sanitizer what it looks for, such builds go without.
function(tarnvod_harden target)
  target_compile_options(${target} PRIVATE -fstack-protector-strong)
  if(NOT TARNVOD_SANITIZE)
    # The distribution's compiler may have chosen a level of its own.
    target_compile_options(${target} PRIVATE
      $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>)
  endif()
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "OBJECT_LIBRARY")
    target_link_options(${target} PRIVATE LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack LINKER:-z,text)
  endif()
endfunction()
