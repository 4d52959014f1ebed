# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Measures the memory of `tarnvod publish` with eight cameras on 32-bit ARM, under emulation.

usage: arm_memory.py FOLDER DOCUMENT

FOLDER holds what scripts/build-armhf makes: build and sysroot. The figures go between the markers of DOCUMENT. The emulator maps
the program's files and memory where it is asked to, and nothing of its own; the kernel says which pages there are resident.
"""
import os
import re
import sys
import tempfile
import time

from processes import Processes
from report import table, write_figures
from start import SECONDS, start_publisher

FIRST, SIZE = 1 << 32, 1 << 32  # the program's addresses, in those of the emulator
NOT_OF_FILES = "not of files"
OTHERS = "files of other libraries"
FILES = {
    "files of the command and of the library": ("tarnvod", "libtarnvod."),
    "files of the C and C++ libraries": ("libc.", "libstdc++.", "libm.", "libgcc_s.", "ld-linux-"),
    "files of libraries for TLS": ("libgnutls.", "libcrypto.", "libssl.", "libp11-kit.", "libnettle.", "libhogweed.", "libgmp.",
                                   "libtasn1.", "libidn2.", "libunistring.", "libffi."),
    "files of the host platform": ("libvideo_object_detection_subscriber.",)}


def group_of(path):
    name = os.path.basename(path)
    return next((group for group, starts in FILES.items() if name.startswith(starts)), OTHERS)


def resident(areas):
    """The kB of each group in the text of /proc/PID/smaps, of the program alone. A page of a file that was written to is not of files."""
    found = dict.fromkeys((NOT_OF_FILES, *FILES, OTHERS), 0)
    for area in re.split(r"^(?=[0-9a-f]+-[0-9a-f]+ )", areas, flags=re.MULTILINE)[1:]:
        head, *fields = area.splitlines()
        first, path = int(head.split("-")[0], 16), " ".join(head.split()[5:])
        size = {field.split(":")[0]: int(field.split()[1]) for field in fields if field.endswith(" kB")}
        if FIRST <= first < FIRST + SIZE:
            found[NOT_OF_FILES] += size["Anonymous"]
            found[group_of(path)] += size["Rss"] - size["Anonymous"]
    return found


def measure(folder):
    emulated = ["qemu-arm-static", "-B", str(FIRST), f"{folder}/build/tools/tarnvod/tarnvod"]
    with tempfile.TemporaryDirectory() as spool, Processes() as processes:
        publisher = start_publisher(processes, emulated, spool, {"QEMU_LD_PREFIX": f"{folder}/sysroot"})
        time.sleep(SECONDS)
        if publisher.poll() is not None:
            sys.exit(f"the publisher ended with {publisher.returncode}")
        with open(f"/proc/{publisher.pid}/smaps", encoding="utf-8") as areas:
            return resident(areas.read())


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    found = measure(os.path.abspath(sys.argv[1]))
    rows = [("resident memory", sum(found.values())), *found.items()]
    text = "\n".join(table(["`tarnvod publish` of eight cameras on 32-bit ARM", "kB"], [(name, f"{kilobytes:,}") for name, kilobytes in rows]))
    print(text)
    write_figures(sys.argv[2], "benchmarks/arm_memory.py", text)


if __name__ == "__main__":
    main()
