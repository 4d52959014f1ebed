# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced: require_packages, debian_mirror, command_packages, packaging_packages and build_packages.

# The packages to build the library, the host platform and the command; those to make packages of that; and those to build
# everything, with tests and fuzzers.
readonly command_packages=(cmake ninja-build g++ pkgconf protobuf-compiler libprotobuf-dev libcli11-dev libmicrohttpd-dev
  libfmt-dev libmosquitto-dev libpq-dev libsqlite3-dev libutfcpp-dev nlohmann-json3-dev zlib1g-dev)
readonly packaging_packages=(binutils dpkg-dev git lintian python3)
readonly build_packages=("${command_packages[@]}" git libgtest-dev libgmock-dev mosquitto openssl postgresql python3
  python3-jsonschema time)

is_installed() {
  [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# require_packages NAME...: installs those Debian packages that are missing. On systems other than Debian and its descendants it
# does nothing, and the build reports what it does not find.
require_packages() {
  command -v dpkg-query >/dev/null || return 0

  local missing=() name
  for name in "$@"; do
    is_installed "$name" || missing+=("$name")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0

  local as_root=()
  if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
      echo "missing packages, which only root can install: ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "installing ${missing[*]}"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update --quiet --quiet
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --quiet --quiet --yes --no-install-recommends "${missing[@]}"
}

# The mirror from which the packages of this machine come.
debian_mirror() {
  local mirror
  mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Identifier: Packages' 'Origin: Debian' 'Label: Debian' | head -n 1)
  if [[ -z $mirror ]]; then
    echo "apt has no lists of a Debian mirror; run apt-get update" >&2
    return 1
  fi
  echo "$mirror"
}
