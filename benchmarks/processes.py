# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Programs that run while something is measured: how they are started, awaited and ended, and what of the memory they have."""
import contextlib
import os
import socket
import subprocess
import time

PATH = os.environ["PATH"] + ":/usr/sbin"  # where Debian has the broker


class Processes(contextlib.ExitStack):
    """What was started; ended in the reverse order."""

    def start(self, arguments, output=subprocess.DEVNULL, errors=subprocess.DEVNULL, environment=None, **more):
        process = subprocess.Popen([str(each) for each in arguments], stdout=output, stderr=errors,
                                   env={**os.environ, "PATH": PATH, **(environment or {})}, **more)
        self.callback(self.end, process)
        return process

    @staticmethod
    def end(process):
        if process.poll() is None:
            process.terminate()
        process.wait()


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as listener:
        return listener.getsockname()[1]


def is_listening(port):
    with socket.socket() as connection:
        return connection.connect_ex(("127.0.0.1", port)) == 0


def wait_until(condition, what, seconds=60):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise SystemExit(f"timed out waiting for {what}")
        time.sleep(0.1)


def memory_of(process, kind):
    """In kB: `VmRSS` is all that is resident, `RssAnon` what of it is not of files."""
    with open(f"/proc/{process.pid}/status", encoding="utf-8") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(kind + ":"))
