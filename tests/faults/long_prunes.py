#!/usr/bin/env python3
"""Ends long prunes in several ways, while they read a sparse log of 1 TiB.

    long_prunes.py GATESCOPE

A long prune shows its progress on a terminal. The progress line is wiped before any other output and
at the end.
"""

import os
import pty
import re
import resource
import select
import signal
import subprocess
import sys
import tempfile
import time

import stages
from long_queries import WAIT, region_in

LINE = re.compile(rb"\r(\d+) of 1099511 MB, \d+ s left *\r")


class Pruning:
    """A prune whose standard output and error are a terminal."""

    def __init__(self, gatescope, directory):
        self.logs = directory + "/log"
        self.screen, terminal = pty.openpty()
        self.program = subprocess.Popen(
            [gatescope, "F=" + region_in(directory), "A=1", "D=n", "R=n"],
            env={**os.environ, "ZUL_PREFER_NO_GUI": "yes"},
            stdin=subprocess.DEVNULL, stdout=terminal, stderr=terminal)
        os.close(terminal)
        self.shown = b""

    def read_screen(self):
        if select.select([self.screen], [], [], 0.1)[0]:
            try:
                self.shown += os.read(self.screen, 4096)
            except OSError:
                # No process has the terminal open.
                pass

    def megabytes_done(self):
        until = time.monotonic() + WAIT
        while not LINE.search(self.shown):
            assert time.monotonic() < until, f"no progress in {self.shown!r}"
            self.read_screen()
        return int(LINE.findall(self.shown)[-1])

    def end(self):
        """The exit status, and the output after the last progress line."""
        until = time.monotonic() + WAIT
        while self.program.poll() is None:
            assert time.monotonic() < until, f"the prune does not end: {self.shown!r}"
            self.read_screen()
        self.read_screen()
        os.close(self.screen)
        return self.program.returncode, self.shown[list(LINE.finditer(self.shown))[-1].end():]


def completes(pruning):
    """The log is truncated while it is read; the next one is a FIFO, which is reported."""
    os.mkfifo(pruning.logs + "/logging_1.txt")
    pruning.megabytes_done()
    os.truncate(pruning.logs + "/logging_0.txt", 0)
    status, shown = pruning.end()
    assert status == 110, (status, shown)
    assert re.match(rb"\r +\rgatescope: The log file \(", shown), shown
    assert b": Not a regular file." in shown, shown
    assert b" log entries were removed" in shown, shown


def skips_the_log(pruning):
    """The file size limit is 0 when the prune reaches the first retained record."""
    done = pruning.megabytes_done()
    resource.prlimit(pruning.program.pid, resource.RLIMIT_FSIZE, (0, 0))
    with open(pruning.logs + "/logging_0.txt", "r+b") as log:
        for distance in (1 << power for power in range(20)):
            log.seek((done + distance) * 1000000)
            log.write(b"\n%d:S:kept\n" % time.time())
    status, shown = pruning.end()
    assert status == 110, (status, shown)
    assert re.match(rb"\r +\rgatescope: The log file \(", shown), shown
    assert b"pruning_.txt: File too large." in shown, shown


def ends_by_signal(pruning):
    pruning.megabytes_done()
    pruning.program.send_signal(signal.SIGTERM)
    status, _ = pruning.end()
    assert status == -signal.SIGTERM, status
    assert os.listdir(pruning.logs) == ["logging_0.txt"], os.listdir(pruning.logs)


def main():
    gatescope = os.path.abspath(sys.argv[1])
    for way in (completes, skips_the_log, ends_by_signal):
        with tempfile.TemporaryDirectory() as directory:
            way(Pruning(gatescope, directory))
    print("ok")


if __name__ == "__main__":
    with stages.scratch_directory():
        main()
