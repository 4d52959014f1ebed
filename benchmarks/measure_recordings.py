# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Measures what the command needs for an hour of four cameras: instructions, memory, bytes on the disk. Fails when one of
these is more than documented.

usage: measure_recordings.py BUILD
"""
import os
import subprocess
import sys
import tempfile

from report import instructions

DETECTIONS = "10"
FRAMES_PER_HOUR = 36000
FORMATS = ("csv", "mot", "sqlite", "mcap")
MOST_INSTRUCTIONS = {"inspect": 1.5, "csv": 3}  # in relation to those of parsing the scenes
MOST_KILOBYTES = 32 * 1024


def make(build, folder, frames):
    subprocess.run([f"{build}/benchmarks/make_recording", folder, str(frames), DETECTIONS], check=True)


def per_frame(command, few, many):
    """The difference between two recordings, so that start and end of the program do not count."""
    first, last = (instructions([word.replace("RECORDING", folder) for word in command]) for folder in (few, many))
    return (last - first) / 1000


def peak_kilobytes(command):
    """By GNU time, which is small: the figure includes the memory of the program that starts the other one."""
    subprocess.run(["/usr/bin/time", "--format", "%M", "--output", "peak"] + command, check=True, stdout=subprocess.DEVNULL)
    with open("peak", encoding="ascii") as peak:
        return int(peak.read())


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
        if count > parse * MOST_INSTRUCTIONS.get(name, float("inf")):
            sys.exit(f"{name}: more than {MOST_INSTRUCTIONS[name]} times")


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
                "inspect": [tarnvod, "inspect", "whole"],
                "compare": [tarnvod, "compare", "whole", "repaired"],
                "render": [tarnvod, "render", "whole", "--output", "picture.svg"]}
    commands.update({form: export(build, "whole", form, "out") for form in FORMATS})
    for name, command in commands.items():
        peak = peak_kilobytes(command)
        print(f"{name}: at most {peak} kB resident", flush=True)
        if peak > MOST_KILOBYTES:
            sys.exit(f"{name}: more than {MOST_KILOBYTES} kB")


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
