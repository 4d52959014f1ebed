# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Prints the processor time that `tarnvod view` takes for a frame with one and with eight browsers, and its ratio.

usage: browsers.py BUILD DOCUMENT

The figures go between the markers of DOCUMENT; fails when eight cost more than twice as much as one. The browsers are connections that
read the events. Both numbers are measured in turn within one run, so that other load on the machine changes both; the ratio is what counts.
"""
import glob
import os
import select
import socket
import subprocess
import sys

from report import STREET, table, write_figures

MOST, ROUNDS, FRAMES = 8, 3, 300


def processor_time(process):
    """Of all of its threads, in nanoseconds, with what the kernel does for them."""
    total = 0
    for path in glob.glob(f"/proc/{process.pid}/task/*/schedstat"):
        with open(path, encoding="utf-8") as file:
            total += int(file.read().split()[0])
    return total


def connect(port):
    connection = socket.create_connection(("127.0.0.1", port))
    connection.sendall(f"GET /events HTTP/1.1\r\nHost: 127.0.0.1:{port}\r\n\r\n".encode())
    return connection


def read(browsers, frames):
    """Reads from all until each has received some frames."""
    missing = {browser: frames for browser in browsers}
    while max(missing.values()) > 0:
        for ready in select.select(browsers, [], [])[0]:
            text = ready.recv(1 << 20)
            if not text:
                sys.exit("the viewer closed a connection")
            missing[ready] -= text.count(b"event: frame\n")


def cost(viewer, browsers):
    """Of some frames, with a viewer of its own, as a viewer serves eight browsers at most."""
    port = int(viewer.stdout.readline().rstrip("/\n").rsplit(":", 1)[1])
    connections = [connect(port) for _ in range(browsers)]
    read(connections, 20)
    before = processor_time(viewer)
    read(connections, FRAMES)
    return processor_time(viewer) - before


def measure(build, browsers):
    environment = {**os.environ, "TARNVOD_HOST_RECORDINGS": STREET, "TARNVOD_HOST_PACE": "20"}  # 200 frames per second
    with subprocess.Popen([f"{build}/tools/tarnvod/tarnvod", "view", "--camera", "1", "--port", "0"], env=environment,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as viewer:
        try:
            return cost(viewer, browsers)
        finally:
            viewer.terminate()


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    build = os.path.abspath(sys.argv[1])
    totals = {1: 0, MOST: 0}
    for _ in range(ROUNDS):
        for browsers in totals:
            totals[browsers] += measure(build, browsers)
    rows = [(count, f"{time / ROUNDS / FRAMES / 1000:.0f}", f"{time / totals[1]:.2f}") for count, time in totals.items()]
    text = "\n".join(table(["browsers", "processor time of a frame, µs", "to one"], rows))
    print(text)
    write_figures(sys.argv[2], "scripts/benchmark, browsers", text)
    if totals[MOST] > 2 * totals[1]:
        sys.exit(f"{MOST} browsers cost more than twice as much as one")


if __name__ == "__main__":
    main()
