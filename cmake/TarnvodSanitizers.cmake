# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# A sanitizer covers the whole build, so that library, host platform and tests agree.
set(TARNVOD_SANITIZE "" CACHE STRING "Sanitizers for the whole build, e.g. address,undefined or thread")
if(TARNVOD_SANITIZE)
  add_compile_options(-fsanitize=${TARNVOD_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TARNVOD_SANITIZE})
endif()
