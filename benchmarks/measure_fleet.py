#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""measure_fleet.py COMMAND RECORDING DOCUMENT: measures a fleet of 20 cameras on this machine and writes the figures into the document.

A delay runs from the moment at which the service's callback took the frame's time to the moment at which a client of the broker
receives the collector's report that the frame is committed, by one clock. The memory is the anonymous memory of a publisher that has
no broker, which plays an hour's frames faster than real time.
"""
import collections
import csv
import json
import os
import pathlib
import pwd
import re
import shutil
import subprocess
import sys
import tempfile
import time
import urllib.request

from processes import Processes, free_port, is_listening, memory_of, wait_until
from report import write_figures

CAMERAS = 20
SECONDS = 60
HOUR = 720_000  # frames


def seconds_of_processor(process):
    fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def postgresql(processes, folder):
    """Starts a server; returns the URL of its database and how to read a query."""
    programs = sorted(pathlib.Path("/usr/lib/postgresql").glob("*/bin"), key=lambda path: float(path.parent.name))[-1]
    data = folder / "database"
    data.mkdir()
    folder.chmod(0o711)
    user = {}
    if os.geteuid() == 0:  # which PostgreSQL refuses
        shutil.chown(data, "postgres")
        account = pwd.getpwnam("postgres")
        user = {"user": account.pw_uid, "group": account.pw_gid, "extra_groups": []}
    subprocess.run([programs / "initdb", "--pgdata", data, "--username", "fleet", "--auth", "trust", "--encoding", "UTF8"],
                   check=True, stdout=subprocess.DEVNULL, cwd=data, **user)
    processes.start([programs / "postgres", "-D", data, "-k", data, "-c", "listen_addresses="], cwd=data, **user)
    wait_until(lambda: subprocess.run([programs / "pg_isready", "--quiet", "--host", data], check=False).returncode == 0, "PostgreSQL")

    def rows(query):
        return subprocess.run([programs / "psql", "--host", data, "--username", "fleet", "postgres", "--csv", "--tuples-only",
                               "--command", query], check=True, text=True, capture_output=True).stdout
    return f"postgresql:///postgres?user=fleet&host={data}", rows


def sqlite(_processes, folder):
    database = folder / "fleet.db"

    def rows(query):
        return subprocess.run([sys.executable, "-c", "import csv, sqlite3, sys\n"
                               "csv.writer(sys.stdout).writerows(sqlite3.connect(sys.argv[1]).execute(sys.argv[2]))", database, query],
                              check=True, text=True, capture_output=True).stdout
    return database, rows


def reported(lines):
    """When a frame was first reported as committed, in microseconds, by (start, camera, number)."""
    times = {}
    for line in lines:
        moment, report = line.split(" ", 1)
        for frames in json.loads(report)["frames"]:
            for number in range(frames["first"], frames["last"] + 1):
                times.setdefault((frames["start"], frames["camera"], number), round(float(moment) * 1e6))
    return times


def playing(recording, pace):
    return {"TARNVOD_HOST_RECORDINGS": ":".join([str(recording)] * CAMERAS), "TARNVOD_HOST_PACE": str(pace), "TARNVOD_HOST_LOOP": "1"}


def publishing(command, folder, more):
    return [command, "publish", "--site", "north", "--device", "gate", "--spool", folder / "spool", *more]


Delay = collections.namedtuple("Delay", "frames median most rare longest load publisher collector")


def measure_delay(command, recording, make_database):
    with tempfile.TemporaryDirectory() as name, Processes() as processes:
        folder = pathlib.Path(name)
        port = free_port()
        (folder / "broker.conf").write_text(f"listener {port} 127.0.0.1\nallow_anonymous true\nuser root\nmax_queued_messages 0\n")
        processes.start(["mosquitto", "-c", folder / "broker.conf"])
        wait_until(lambda: is_listening(port), "the broker")
        url, rows = make_database(processes, folder)
        with open(folder / "reports", "w", encoding="utf-8") as reports, open(folder / "messages", "w", encoding="utf-8") as messages:
            processes.start(["mosquitto_sub", "-p", port, "-q", "1", "-t", "tarnvod/+/+/stored", "-F", "%U %p"], output=reports)
            collector = processes.start([command, "collect", url, "--port", port], errors=messages)
            wait_until(lambda: "connected" in (folder / "messages").read_text(encoding="utf-8"), "the collector")
            publisher = processes.start(publishing(command, folder, ["--until-stored", "--port", port]), environment=playing(recording, 1))
            wait_until(lambda: (folder / "reports").stat().st_size > 0, "frames")
            time.sleep(SECONDS)
            used = seconds_of_processor(publisher), seconds_of_processor(collector)
            load = os.getloadavg()[0]
            publisher.terminate()
            publisher.wait()
        committed = reported((folder / "reports").read_text(encoding="utf-8").splitlines())
        frames = csv.reader(rows("SELECT start, camera, sequence, arrival FROM frames JOIN sources USING (source)").splitlines())
        delays = sorted(committed[start, int(camera), int(number)] - int(arrival) for start, camera, number, arrival in frames
                        if (start, int(camera), int(number)) in committed)
    if len(delays) < 0.9 * CAMERAS * 10 * SECONDS:
        raise SystemExit(f"only {len(delays)} frames were committed in {SECONDS} s")
    at = lambda share: delays[min(len(delays) - 1, int(share * len(delays)))] / 1000  # noqa: E731
    return Delay(len(delays), at(0.5), at(0.99), at(0.999), delays[-1] / 1000, load, *used)


def measure_memory(command, recording):
    """Anonymous memory in kB after a tenth of an hour's frames and after all of them, and bytes written for each frame."""
    with tempfile.TemporaryDirectory() as name, Processes() as processes:
        folder = pathlib.Path(name)
        metrics = free_port()
        publisher = processes.start(publishing(command, folder, ["--spool-size", "32M", "--port", free_port(), "--metrics", metrics]),
                                    environment=playing(recording, 8))

        def numbered():
            try:
                with urllib.request.urlopen(f"http://127.0.0.1:{metrics}/metrics") as answer:
                    text = answer.read().decode()
            except OSError:
                return 0
            return sum(int(value) for value in re.findall(r"^tarnvod_publish_frames_numbered_total\{.*\} (\d+)$", text, re.MULTILINE))

        wait_until(lambda: numbered() >= HOUR / 10, "frames", 1200)
        before = memory_of(publisher, "RssAnon")
        wait_until(lambda: numbered() >= HOUR, "frames", 3600)
        written = int(re.search(r"wchar: (\d+)", pathlib.Path(f"/proc/{publisher.pid}/io").read_text()).group(1))
        return before, memory_of(publisher, "RssAnon"), written / numbered()


def row(name, figure):
    return f"| {name} | {figure} |"


def delay_row(database, delay):
    return row(f"from the service's callback to the report of the commit in {database}, {CAMERAS} cameras at 10 frames a second, "
               f"{delay.frames:,} frames, load {delay.load:.0f}",
               f"median {delay.median:.0f} ms, 99th percentile {delay.most:.0f} ms, 99.9th {delay.rare:.0f} ms, longest {delay.longest:.0f} ms")


def processor_row(database, delay):
    return row(f"processor time of publisher and collector for these {SECONDS} s, {database}",
               f"{delay.publisher:.1f} s and {delay.collector:.1f} s")


def main():
    command, recording, document = map(pathlib.Path, sys.argv[1:])
    delays = [(name, measure_delay(command, recording, database))
              for name, database in (("SQLite", sqlite), ("PostgreSQL", postgresql))]
    before, after, written = measure_memory(command, recording)
    rows = ["| | |", "|---|---|"]
    rows += [delay_row(name, delay) for name, delay in delays]
    rows += [processor_row(name, delay) for name, delay in delays]
    rows.append(row(f"memory that a publisher without a broker has allocated, after {HOUR // 10:,} frames and after {HOUR:,}, "
                    f"an hour's", f"{before / 1000:.1f} MB and {after / 1000:.1f} MB"))
    rows.append(row("bytes written to the spool for each frame", f"{written:,.0f}"))
    text = "\n".join(rows)
    print(text)
    write_figures(document, "scripts/measure-fleet", text)


if __name__ == "__main__":
    main()
