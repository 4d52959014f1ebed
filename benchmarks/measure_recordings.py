# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Measures what the command needs for an hour of four cameras: instructions, memory, bytes on the disk.

usage: measure_recordings.py BUILD
"""
import os
import re
import subprocess
import sys
import tempfile

DETECTIONS = "10"
FRAMES_PER_HOUR = 36000
FORMATS = ("csv", "mot", "sqlite", "mcap")


def make(build, folder, frames):
    subprocess.run([f"{build}/benchmarks/make_recording", folder, str(frames), DETECTIONS], check=True)


def instructions(command):
    result = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"] + command,
                            capture_output=True, text=True, check=True)
    return int(re.search(r"Collected : (\d+)", result.stderr)[1])


def per_frame(command, few, many):
    """The difference between two recordings, so that start and end of the program do not count."""
    first, last = (instructions([word.replace("RECORDING", folder) for word in command]) for folder in (few, many))
    return (last - first) / 1000


def peak_kilobytes(command):
    """Includes what this program has before the other one is loaded into its place, some 10,000 kB."""
    child = os.fork()
    if child == 0:
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
        os.execv(command[0], command)
    _, status, usage = os.wait4(child, 0)
    if status != 0:
        sys.exit(f"{' '.join(command)} failed")
    return usage.ru_maxrss


def export(build, recording, form, output):
    return [f"{build}/tools/tarnvod/tarnvod", "export", recording, "--format", form, "--size", "1920x1080", "--output", output]


def speed(build):
    tarnvod = f"{build}/tools/tarnvod/tarnvod"
    make(build, "few", 500)
    make(build, "many", 1500)
    parse = per_frame([f"{build}/benchmarks/parse_recording", "RECORDING"], "few", "many")
    print(f"parse: {parse:.0f} instructions a frame")
    commands = {"inspect": [tarnvod, "inspect", "RECORDING"]}
    commands.update({form: export(build, "RECORDING", form, "out") for form in FORMATS})
    for name, command in commands.items():
        count = per_frame(command, "few", "many")
        print(f"{name}: {count:.0f} instructions a frame, {count / parse:.2f} times those of parse", flush=True)


def memory(build):
    tarnvod = f"{build}/tools/tarnvod/tarnvod"
    cameras = [f"camera-{number}" for number in range(1, 5)]
    for camera in cameras:
        make(build, camera, FRAMES_PER_HOUR)
    written = sum(entry.stat().st_size for entry in os.scandir(cameras[0]))
    print(f"one camera, one hour: {written} bytes")
    commands = {"merge": [tarnvod, "merge", *cameras, "--output", "whole"],
                "cut": [tarnvod, "cut", "whole", "--from", "100", "--to", "7000", "--output", "part"],
                "repair": [tarnvod, "repair", "whole", "--output", "repaired"],
                "inspect": [tarnvod, "inspect", "whole"]}
    commands.update({form: export(build, "whole", form, "out") for form in FORMATS})
    for name, command in commands.items():
        print(f"{name}: at most {peak_kilobytes(command)} kB resident", flush=True)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    build = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        speed(build)
        memory(build)
        os.chdir(build)


main()
