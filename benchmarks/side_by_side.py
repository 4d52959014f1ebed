# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Compares the command on a recording with what a user would take instead: Python's Protocol Buffers, and DuckDB on the CSV export.

usage: side_by_side.py BUILD READERS DOCUMENT

BUILD holds the command and the maker of recordings, READERS the files of `foreign_readers` with the packages that npm installed for them.
All are measured in turn, in several rounds, on the same recording; the figures go between the markers of DOCUMENT. A time is the processor
time of the whole program with all of its threads and what the kernel does for it, the least of all rounds. Fails when two readers disagree.
"""
import csv
import json
import os
import resource
import struct
import subprocess
import sys
import tempfile

from report import PROJECT, load, table, write_figures

SCHEMA = os.path.join(PROJECT, "src", "video-object-detection")
PYTHON = "/usr/bin/python3"  # Debian's, as the module is Debian's
FRAMES, FEW_FRAMES, DETECTIONS = 144_000, 200, 10
ROUNDS = 3


class Readers:
    """The programs that read recordings, each as a command with its arguments."""

    def __init__(self, build, readers, folder):
        self.tarnvod = f"{build}/tools/tarnvod/tarnvod"
        self.maker = f"{build}/benchmarks/make_recording"
        self.readers = readers
        self.folder = folder
        subprocess.run(["protoc", f"--proto_path={SCHEMA}", f"--python_out={folder}", "video_object_detection.proto"], check=True)

    def make(self, name, frames):
        recording = os.path.join(self.folder, name)
        subprocess.run([self.maker, recording, str(frames), str(DETECTIONS)], check=True)
        return recording

    def inspect(self, recording):
        return [self.tarnvod, "inspect", recording]

    def export(self, recording, output):
        return [self.tarnvod, "export", recording, "--format", "csv", "--output", output]

    def protobuf(self, task, *arguments):
        return ["env", f"PYTHONPATH={self.folder}", PYTHON, f"{self.readers}/read_with_protobuf.py", task, *arguments]

    def duckdb(self, file):
        return ["node", f"{self.readers}/query_with_duckdb.mjs", file]


def run(command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout


def processor_time(command):
    """In seconds. What ran before it has been awaited, so the difference is this program's."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    run(command)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def same_field(field, other, is_coordinate):
    """Coordinates have as many digits as either writer wants, and read back as the same float."""
    if is_coordinate and field and other:
        return struct.pack("f", float(field)) == struct.pack("f", float(other))
    return field == other


def rows_of(path):
    with open(path, encoding="utf-8", newline="") as file:
        return list(csv.reader(file))


def same_csv(path, other):
    ours, theirs = rows_of(path), rows_of(other)
    coordinates = [name.startswith("coord") for name in ours[0]]
    return len(ours) == len(theirs) and ours[0] == theirs[0] and all(
        same_field(*fields) for row in zip(ours[1:], theirs[1:]) for fields in zip(*row, coordinates))


def require_same_csv(readers, recording):
    ours, theirs = f"{recording}.csv", f"{recording}.protobuf.csv"
    run(readers.export(recording, ours))
    run(readers.protobuf("csv", recording, theirs))
    if not same_csv(ours, theirs):
        sys.exit("the two CSV files differ")


def require_same_counts(readers, recording):
    ours = f"{recording}.csv"
    run(readers.export(recording, ours))
    if json.loads(run(readers.duckdb(ours))) != json.loads(run(readers.protobuf("query", recording))):
        sys.exit("the two queries differ")


def tasks(readers, recording):
    """By task: the commands to be compared. The first is the one that the others are related to."""
    output, exported = f"{recording}.written", f"{recording}.csv"
    return {
        "read and parse all scenes": {
            "`tarnvod inspect`, with all checksums": readers.inspect(recording),
            "Python's Protocol Buffers": readers.protobuf("parse", recording)},
        "write them as CSV": {
            "`tarnvod export`, with all checksums": readers.export(recording, output),
            "Python's Protocol Buffers": readers.protobuf("csv", recording, output)},
        "count detections by class and minute": {
            "DuckDB, of the CSV file": readers.duckdb(exported),
            "Python's Protocol Buffers, of the recording": readers.protobuf("query", recording)}}


def measure(compared):
    """The least time of each, in turn, so that other work on the machine meets all of them."""
    least = {}
    for _ in range(ROUNDS):
        for name, command in compared.items():
            least[name] = min(processor_time(command), least.get(name, float("inf")))
    return least


def rows(measured):
    for task, times in measured.items():
        first = next(iter(times.values()))
        for name, seconds in times.items():
            yield task, name, f"{seconds:.2f}", f"{seconds / first:.2f}"


def implementation():
    """Of Python's Protocol Buffers: Debian's is the one in C++."""
    return run([PYTHON, "-c", "from google.protobuf.internal import api_implementation; print(api_implementation.Type())"]).decode().strip()


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    build, foreign, document = (os.path.abspath(path) for path in sys.argv[1:])
    with tempfile.TemporaryDirectory() as folder:
        readers = Readers(build, foreign, folder)
        require_same_csv(readers, readers.make("few", FEW_FRAMES))
        require_same_counts(readers, recording := readers.make("many", FRAMES))
        measured = {task: measure(compared) for task, compared in tasks(readers, recording).items()}
    head = [f"{FRAMES:,} frames of {DETECTIONS} detections", "with", "processor time, s", "to the first"]
    text = "\n".join(table(head, rows(measured)))
    note = f"Python's Protocol Buffers: the implementation `{implementation()}`. {load('after')}"
    print(text)
    write_figures(document, "scripts/benchmark, side by side", f"{text}\n{note}")


if __name__ == "__main__":
    main()
