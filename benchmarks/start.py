# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Measures the way to the first frame and the memory that is needed, with the host platform and the recording of the street.

usage: start.py BUILD DOCUMENT

BUILD holds the benchmark programs, the library and the command. The figures go between the markers of DOCUMENT. Instructions and
system calls, not times; memory in kB. A message broker (Mosquitto) is started for `publish`.
"""
import os
import re
import sys
import tempfile
import time

from processes import Processes, free_port, is_listening, memory_of, wait_until
from report import STREET, instructions, output_of, table, write_figures

SECONDS = 20  # of frames before memory is read
FRAMES = 1_000_000


def system_calls(program):
    """Of all threads."""
    with tempfile.NamedTemporaryFile("r") as counts:
        output_of(["strace", "-f", "-c", "-U", "calls,name", "-o", counts.name, *program])
        return int(counts.read().splitlines()[-1].split()[0])


def relocations(library):
    """All, and those that need a look-up by name."""
    lines = output_of(["readelf", "--relocs", "--wide", library]).splitlines()
    types = [line.split()[2] for line in lines if re.match(r"[0-9a-f]{12}", line)]
    return len(types), sum(not kind.endswith("_RELATIVE") for kind in types)


def start_publisher(processes, command, spool, environment=None):
    """Of eight cameras, with a broker of its own; the command is a list, as it may run under an emulator."""
    port = free_port()
    processes.start(["mosquitto", "-p", port])
    wait_until(lambda: is_listening(port), "the broker")
    return processes.start([*command, "publish", "--site", "site", "--device", "device", "--spool", spool, "--port", port],
                           environment={"TARNVOD_HOST_RECORDINGS": ":".join([STREET] * 8), **(environment or {})})


def publisher_memory(command):
    """Resident memory, and what of it is not of files, of eight cameras that are published for some seconds."""
    with tempfile.TemporaryDirectory() as folder, Processes() as processes:
        publisher = start_publisher(processes, [command], folder)
        time.sleep(SECONDS)
        return memory_of(publisher, "VmRSS"), memory_of(publisher, "RssAnon")


def heap_per_camera(program):
    """Of one camera: bytes after its set-up, and by how much the heap of nine grows while a million frames pass."""
    one, nine = (list(map(int, output_of([program, str(cameras), str(FRAMES)]).split())) for cameras in (1, 9))
    return (nine[1] - one[1]) // 8, (nine[2] - nine[1] - (one[2] - one[1])) // 8


def figures(build):
    first_frame, command = f"{build}/benchmarks/first_frame", f"{build}/tools/tarnvod/tarnvod"
    os.environ["TARNVOD_HOST_RECORDINGS"] = STREET
    watch = [command, "watch", "1", "--json", "--frames", "1"]
    memory = dict(line.split() for line in output_of([first_frame, "memory"]).splitlines())
    everything, by_name = relocations(f"{build}/src/libtarnvod.so")
    resident, anonymous = publisher_memory(command)
    camera, growth = heap_per_camera(f"{build}/benchmarks/heap_per_camera")
    yield "small application, to its first frame and its end: instructions", f"{instructions([first_frame]):,}"
    yield "system calls", system_calls([first_frame])
    yield "resident memory, kB", memory["resident"]
    yield "of it private and written to, kB", memory["private-dirty"]
    yield "the library: relocations", f"{everything:,}"
    yield "of them looked up by name", by_name
    yield "resident memory of its file, kB", memory["library-resident"]
    yield "of it private and written to, kB", memory["library-private-dirty"]
    yield "`tarnvod watch --json --frames 1`: instructions", f"{instructions(watch):,}"
    yield "system calls", system_calls(watch)
    yield "`tarnvod publish` of eight cameras: resident memory, kB", resident
    yield "of it not of files, kB", anonymous
    yield "heap of a camera, with what the host platform and the benchmark keep for it, bytes", f"{camera:,}"
    yield "its growth in a million frames, bytes", growth


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    text = "\n".join(table(["start and size", "figure"], figures(os.path.abspath(sys.argv[1]))))
    print(text)
    write_figures(sys.argv[2], "scripts/benchmark, start", text)


if __name__ == "__main__":
    main()
