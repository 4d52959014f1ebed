# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced: build_release.

source scripts/lib/packages.sh

# build_release TARGET...: builds these in release, with what they need.
build_release() {
  require_packages cmake ninja-build g++ pkgconf protobuf-compiler libprotobuf-dev libgtest-dev libgmock-dev libcli11-dev \
    libcpp-httplib-dev nlohmann-json3-dev
  cmake --preset release >/dev/null
  cmake --build --preset release --target "$@"
}
