# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced: build_release.

source scripts/lib/packages.sh

# build_release TARGET...: builds these in release, with what they need.
build_release() {
  require_packages "${build_packages[@]}"
  cmake --preset release >/dev/null
  cmake --build --preset release --target "$@"
}
