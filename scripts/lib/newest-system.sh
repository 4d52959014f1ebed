# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# To be sourced after packages.sh, in the project's folder: make_newest_system, in_newest and copy_to_newest. A system of Debian
# unstable with its compilers and Protocol Buffers, in build/newest/root; delete it to start with a new one. Needs root.

readonly newest_root=$PWD/build/newest/root

# make_newest_system [PACKAGE...]: the system with what the build needs, and these packages.
make_newest_system() {
  if [[ $(id -u) -ne 0 ]]; then
    echo "$0 needs root, to create a system of its own" >&2
    return 1
  fi
  require_packages debootstrap

  local mirror
  mirror=$(debian_mirror)
  if [[ ! -e $newest_root/.complete ]]; then
    rm -rf --one-file-system "$newest_root"
    mkdir -p "$newest_root"
    debootstrap --variant=minbase unstable "$newest_root" "$mirror"
    echo "deb $mirror experimental main" >"$newest_root/etc/apt/sources.list.d/experimental.list"
    # Protocol Buffers alone come from there: they do not fit a newer Abseil than the one that they were built with.
    printf '%s\n' 'Package: src:protobuf' 'Pin: release a=experimental' 'Pin-Priority: 990' \
      >"$newest_root/etc/apt/preferences.d/protocol-buffers"
    # A mirror that lags behind is good enough here.
    echo 'Acquire::Check-Valid-Until "false";' >"$newest_root/etc/apt/apt.conf.d/lagging-mirror"
    touch "$newest_root/.complete"
  fi
  in_newest apt-get -q update
  in_newest apt-get -q -y --no-install-recommends install "${build_packages[@]}" "$@"
}

# in_newest COMMAND...: runs it there. Programs that ask the kernel about themselves need /proc, and the tests' terminals
# /dev/pts. The mounts end with the command.
in_newest() {
  unshare --mount bash -euc '
    mount -t proc proc "$0/proc"
    mount --rbind /dev "$0/dev"
    exec chroot "$0" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"' \
    "$newest_root" "$@"
}

# copy_to_newest FOLDER: the project's files as a folder there; what was built in it before stays.
copy_to_newest() {
  local target=$newest_root/$1
  mkdir -p "$target"
  find "$target" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf --one-file-system {} +
  git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents --preserve=timestamps -t "$target"
}
