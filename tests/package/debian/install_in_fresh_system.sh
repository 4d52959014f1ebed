#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# install_in_fresh_system.sh PACKAGES amd64|armhf: installs the packages of that folder (scripts/make-packages made them) in a
# fresh Debian system and uses them: the command shows what the host platform's service sees, and on amd64 an application is
# built from the development package and run. Packages for armhf run under emulation. Needs root.
set -euo pipefail
project=$(cd "$(dirname "$0")/../../.." && pwd)
source "$project/scripts/lib/packages.sh"

if [[ $# -ne 2 || ($2 != amd64 && $2 != armhf) ]]; then
  echo "usage: $0 PACKAGES amd64|armhf" >&2
  exit 2
fi
packages=$(cd "$1" && pwd)
architecture=$2

require_packages mmdebstrap
run=()
if [[ $architecture == armhf ]]; then
  require_packages qemu-user-static
  run=("$project/scripts/lib/in-armhf-namespace")
fi

# A system of the same release and from the same mirror as this machine's.
folder=$project/build/packaging
base=$folder/$architecture.tar
root=$folder/$architecture
mirror=$(debian_mirror)
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
mkdir -p "$folder"
if [[ ! -f $base ]]; then
  "${run[@]}" mmdebstrap --mode=root --variant=apt --format=tar --architectures="$architecture" "$release" "$base.part" "$mirror"
  mv "$base.part" "$base"
fi
rm -rf "$root"
mkdir "$root"
tar --extract --file "$base" --directory "$root"
cp /etc/resolv.conf "$root/etc/resolv.conf"

in_root() {
  "${run[@]}" chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@"
}

mkdir "$root/packages"
cp "$packages"/*_"$architecture".deb "$root/packages/"
in_root apt-get -q update
# apt follows the dependencies that the packages name, and finds none that they forgot.
in_root sh -c 'apt-get -q -y --no-install-recommends install /packages/libtarnvod0_*.deb /packages/tarnvod-tools_*.deb \
  /packages/tarnvod-host-platform_*.deb'

in_root tarnvod --version
in_root tarnvod info
in_root sh -c 'dpkg --print-architecture && ldd /usr/bin/tarnvod | grep libtarnvod'

if [[ $architecture == amd64 ]]; then
  in_root sh -c 'apt-get -q -y --no-install-recommends install /packages/libtarnvod-dev_*.deb cmake g++ make'
  cp -r "$project/tests/package/consumer/application" "$root/application"
  in_root cmake -S /application -B /application/build
  in_root cmake --build /application/build
  in_root sh -c 'cd /tmp && /application/build/application'
fi

in_root sh -c 'apt-get -q -y purge libtarnvod0 tarnvod-host-platform && ! ls -d /usr/share/tarnvod /usr/share/doc/libtarnvod0'
echo "the $architecture packages install, work and leave nothing behind"
