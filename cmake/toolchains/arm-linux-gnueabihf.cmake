# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Builds for 32-bit ARM with hardware floating point, and runs what it builds (tests, say) under emulation. The libraries come
# from the folder that scripts/make-armhf-sysroot fills, or from another given as TARNVOD_SYSROOT, an option or an environment
# variable; protoc is this machine's own.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)  # what changed in gcc 7 for some parameters concerns no compiler that builds this

if(DEFINED ENV{TARNVOD_SYSROOT})
  set(default_sysroot "$ENV{TARNVOD_SYSROOT}")
else()
  get_filename_component(default_sysroot "${CMAKE_CURRENT_LIST_DIR}/../../build/armhf/sysroot" ABSOLUTE)
endif()
set(TARNVOD_SYSROOT "${default_sysroot}" CACHE PATH "Folder that holds the device's libraries and headers")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARNVOD_SYSROOT)
if(NOT IS_DIRECTORY "${TARNVOD_SYSROOT}/usr/include")
  message(FATAL_ERROR "There is no sysroot in ${TARNVOD_SYSROOT}: make one with scripts/make-armhf-sysroot")
endif()

set(CMAKE_SYSROOT "${TARNVOD_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH})  # what is named there is found too, an installed copy of tarnvod for one
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_SYSROOT_DIR} "${TARNVOD_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
  "${TARNVOD_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${TARNVOD_SYSROOT}/usr/share/pkgconfig")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static -L "${TARNVOD_SYSROOT}")
