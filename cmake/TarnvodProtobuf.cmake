# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# Finds Protocol Buffers: by its own CMake package where there is one (the versions that build on Abseil need it), else
# by CMake's module. Both give protobuf::libprotobuf-lite and protobuf::protoc. The installed package uses this file too;
# its includer checks Protobuf_FOUND.
find_package(Protobuf CONFIG QUIET)
if(NOT Protobuf_FOUND)
  find_package(Protobuf MODULE QUIET)
endif()
