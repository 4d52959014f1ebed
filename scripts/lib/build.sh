# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced: build_release, build_demo.

source scripts/lib/packages.sh

# build_release TARGET...: builds these targets in release, after installing the packages that they need.
build_release() {
  require_packages "${build_packages[@]}"
  cmake --preset release >/dev/null
  cmake --build --preset release --target "$@"
}

readonly demo_build=build/demo

# build_demo TARGET...: builds these targets in release, without tests, in $demo_build. The packages must be installed.
build_demo() {
  mkdir -p "$demo_build"
  if ! cmake -S . -B "$demo_build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTARNVOD_BUILD_TESTS=OFF >"$demo_build.log" 2>&1; then
    echo "the build cannot be configured; the reason is in $demo_build.log" >&2
    return 1
  fi
  cmake --build "$demo_build" --target "$@"
}
