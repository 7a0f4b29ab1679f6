#!/usr/bin/env python3
"""Ends long queries by signals, while they read a log of 1 TiB.

    long_queries.py GATESCOPE

A long query shows its progress on a terminal, and nowhere else. With any number of reading threads,
the first thread receives the signal and ends the program.
"""

import glob
import os
import pty
import select
import signal
import subprocess
import sys
import tempfile
import time

import stages

GATEBITS = "gatewarden;;;east;\n;{region};O;\n;;\n;;\n; ;\n; ;\n;;;\nD;{bits};\n"
ENDLESS = 1 << 40
ENDING = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT, signal.SIGPIPE)
WAIT = 30


def region_in(directory):
    os.makedirs(directory + "/log")
    os.makedirs(directory + "/query_results")
    with open(directory + "/log/logging_0.txt", "w") as log:
        log.truncate(ENDLESS)
    gatebits = directory + "/gatebits.txt"
    with open(gatebits, "w") as file:
        file.write(GATEBITS.format(region=directory, bits="0" * 24))
    return gatebits


def start(gatescope, gatebits, stderr, processors):
    os.sched_setaffinity(0, processors)
    return subprocess.Popen(
        [gatescope, "F=" + gatebits, "D=n", "R=n", "Q=1", "C=*", "U=*"],
        env={**os.environ, "ZUL_PREFER_NO_GUI": "yes"},
        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=stderr)


def end(query, number):
    query.send_signal(number)
    status = query.wait(WAIT)
    assert status == -number, f"ended with {status} and not by signal {number}"
    left = glob.glob(f"/tmp/*gatescope_{query.pid}*")
    assert not left, f"left over: {left}"


def wait_for(what, condition):
    until = time.monotonic() + WAIT
    while not condition():
        assert time.monotonic() < until, f"no {what} in {WAIT} seconds"
        time.sleep(0.01)


def held_back(task):
    with open(task + "/status") as status:
        line = next(line for line in status if line.startswith("SigBlk:"))
    return int(line.split()[1], 16)


def shows_progress_and_ends(gatescope, gatebits, one):
    """On one processor, so that the first thread reads."""
    screen, terminal = pty.openpty()
    query = start(gatescope, gatebits, terminal, one)
    shown = b""
    until = time.monotonic() + WAIT
    while b" s left" not in shown:
        assert time.monotonic() < until, f"nothing but {shown!r} was shown"
        if select.select([screen], [], [], 0.1)[0]:
            shown += os.read(screen, 4096)
    assert b" of 1099511 MB, " in shown, shown
    end(query, signal.SIGTERM)


def leaves_signals_to_the_first_thread(gatescope, gatebits, all_processors):
    for number in ENDING:
        query = start(gatescope, gatebits, subprocess.DEVNULL, all_processors)
        tasks = f"/proc/{query.pid}/task"
        wait_for("second thread", lambda: len(os.listdir(tasks)) > 1)
        for task in os.listdir(tasks):
            wanted = 0 if int(task) == query.pid else 1 << (number - 1)
            bit = 1 << (number - 1)
            wait_for("right mask", lambda: held_back(f"{tasks}/{task}") & bit == wanted)
        end(query, number)


def main():
    gatescope = os.path.abspath(sys.argv[1])
    processors = os.sched_getaffinity(0)
    with tempfile.TemporaryDirectory() as directory:
        gatebits = region_in(directory)
        shows_progress_and_ends(gatescope, gatebits, {min(processors)})
        if len(processors) > 1:
            leaves_signals_to_the_first_thread(gatescope, gatebits, processors)
    print("ok")


if __name__ == "__main__":
    with stages.scratch_directory():
        main()
