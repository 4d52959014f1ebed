# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Measures what the command needs for an hour of four cameras: instructions, memory, bytes on the disk. Fails when one of
these is more than it may be.

usage: measure_recordings.py BUILD [DOCUMENT]

BUILD holds the command and the benchmark programs. The figures are printed as one table, which goes between the markers of DOCUMENT.
"""
import os
import subprocess
import sys
import tempfile

from report import instructions, table, write_figures

DETECTIONS = "10"
FRAMES_PER_HOUR = 36000
INDEX_ENTRY = 32  # bytes
CAMERAS = [f"camera-{number}" for number in range(1, 5)]
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
    """Instructions of each subcommand for a frame, to those of parsing it."""
    tarnvod = f"{build}/tools/tarnvod/tarnvod"
    make(build, "few", 500)
    make(build, "many", 1500)
    parse = per_frame([f"{build}/benchmarks/parse_recording", "RECORDING"], "few", "many")
    print(f"parse: {parse:.0f} instructions a frame")
    commands = {"inspect": [tarnvod, "inspect", "RECORDING"]}
    commands.update({form: export(build, "RECORDING", form, "out") for form in FORMATS})
    ratios = {}
    for name, command in commands.items():
        count = per_frame(command, "few", "many")
        ratios[name] = count / parse
        print(f"{name}: {count:.0f} instructions a frame, {ratios[name]:.2f} times those of parse", flush=True)
        if ratios[name] > MOST_INSTRUCTIONS.get(name, float("inf")):
            sys.exit(f"{name}: more than {MOST_INSTRUCTIONS[name]} times")
    return ratios


def memory(build):
    """Peak memory of each subcommand in kB."""
    tarnvod = f"{build}/tools/tarnvod/tarnvod"
    commands = {"merge": [tarnvod, "merge", *CAMERAS, "--output", "whole"],
                "cut": [tarnvod, "cut", "whole", "--from", "100", "--to", "7000", "--output", "part"],
                "repair": [tarnvod, "repair", "whole", "--output", "repaired"],
                "inspect": [tarnvod, "inspect", "whole"],
                "compare": [tarnvod, "compare", "whole", "repaired"],
                "render": [tarnvod, "render", "whole", "--output", "picture.svg"]}
    commands.update({form: export(build, "whole", form, "out") for form in FORMATS})
    peaks = {}
    for name, command in commands.items():
        peaks[name] = peak_kilobytes(command)
        print(f"{name}: at most {peaks[name]} kB resident", flush=True)
        if peaks[name] > MOST_KILOBYTES:
            sys.exit(f"{name}: more than {MOST_KILOBYTES} kB")
    return peaks


def size_of_hour(build):
    """Makes an hour of each camera. Returns the bytes of one."""
    for camera in CAMERAS:
        make(build, camera, FRAMES_PER_HOUR)
    return sum(entry.stat().st_size for entry in os.scandir(CAMERAS[0]))


def figures(size, ratios, peaks):
    def name_of(command):
        return f"`export --format {command}`" if command in FORMATS else f"`{command}`"

    rows = [(name_of(command), f"{peak / 1000:.1f}", f"{ratios[command]:.1f}" if command in ratios else "")
            for command, peak in peaks.items()]
    lines = table(["an hour of four cameras", "peak memory, MB", "instructions of a frame, to those of its parse"], rows)
    index = INDEX_ENTRY * FRAMES_PER_HOUR
    return "\n".join(lines + [f"Each camera's hour takes {size / 1e6:.1f} MB, {size / FRAMES_PER_HOUR:.0f} bytes for a frame; of these, "
                              f"{index / 1e6:.1f} MB are the index."])


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    build, *document = map(os.path.abspath, sys.argv[1:])
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        text = figures(size_of_hour(build), speed(build), memory(build))
        os.chdir(build)
    print(text)
    if document:
        write_figures(document[0], "scripts/measure-recordings", text)


if __name__ == "__main__":
    main()
