#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# build_with_pkg_config.sh PKG_CONFIG COMPILER LIBDIR BINARY_DIR: builds the application with only the flags of the
# pkg-config module in LIBDIR, and runs it.
set -euo pipefail
pkg_config=$1
compiler=$2
libdir=$3
binary_dir=$4

export PKG_CONFIG_PATH=$libdir/pkgconfig
mkdir -p "$binary_dir"
read -ra flags <<<"$("$pkg_config" --cflags --libs tarnvod)"
"$compiler" -std=c++17 "$(dirname "$0")/application/main.cpp" -o "$binary_dir/application" "${flags[@]}"
cd "$binary_dir"
LD_LIBRARY_PATH=$libdir ./application
