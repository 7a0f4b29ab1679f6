#!/usr/bin/env python3
"""Prunes beside writers at full speed, and kills every other prune at a random moment.

    prune_beside_writer.py GATESCOPE [--prunes N] [--seed N] [--ordinary-user]

The writers follow the token rule: while the token exists they write to the companion of the log,
else to the log. With --ordinary-user, which needs root, an ordinary user prunes, and the logs belong
to the writers, who are different users. In the end the logs must have every retained record once, and
no other record.
"""

import argparse
import collections
import multiprocessing
import os
import random
import signal
import subprocess
import sys
import time

import stages

LOGS = (0, 7, 20)
WRITERS = 2
NOW = int(time.time())
OLD = NOW - 300 * 86400
ORDINARY_USER = 12345
SKIPPED = 77

GATEBITS = ("#!gatescope_relocated_logging_dir_unix={stage}/logs\n"
            "gatewarden;;;east;\n;;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;;\n")


def write_records(stage, writer, stop, written, user):
    """Writes records one by one; every fourth is older than the cut-off."""
    os.umask(0)
    if user:
        os.setuid(user + 1 + writer)
    logs = os.path.join(stage, "logs")
    token = os.path.join(logs, "logging_pruning_token.txt")
    count = 0
    while not stop.is_set():
        number = LOGS[count % len(LOGS)]
        pattern = "logging__%d.txt" if os.path.exists(token) else "logging_%d.txt"
        time_of_record, word = (OLD, "old") if count % 4 == 3 else (NOW, "kept")
        record = "%d:S:%s_%d_%d[2]-<->\n" % (time_of_record, word, writer, count)
        file = os.open(os.path.join(logs, pattern % number), os.O_WRONLY | os.O_CREAT | os.O_APPEND,
                       0o666)
        os.write(file, record.encode())
        os.close(file)
        count += 1
        if user:
            # Each of these prunes waits for seconds; fewer records keep the final count short.
            time.sleep(0.0005)
    written[writer] = count


def prune(gatescope, stage, kill_after, user):
    command = [gatescope, "F=" + stage + "/gatebits.txt", "A=1", "D=n", "R=n"]
    environment = {"PATH": "/usr/bin:/bin", "tmp": stage + "/tmp", "CLEARCASE_USER": "op",
                   "ZUL_PREFER_NO_GUI": "yes"}
    program = subprocess.Popen(command, env=environment, stdout=subprocess.PIPE, user=user)
    if kill_after is not None:
        time.sleep(kill_after)
        program.send_signal(signal.SIGKILL)
    said = program.communicate(timeout=120)[0].decode()
    if program.returncode not in (110, -signal.SIGKILL):
        sys.exit("a prune ended with %d and printed %r" % (program.returncode, said))
    return program.returncode


def records_in(stage):
    count = collections.Counter()
    for name in os.listdir(stage + "/logs"):
        with open(stage + "/logs/" + name) as file:
            count.update(file.read().split())
    return count


def records_to_keep(written):
    return collections.Counter("%d:S:kept_%d_%d[2]-<->" % (NOW, writer, count)
                               for writer in range(WRITERS) for count in range(written[writer])
                               if count % 4 != 3)


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("gatescope")
    options.add_argument("--prunes", type=int, default=20)
    options.add_argument("--seed", type=int, default=int(time.time()))
    options.add_argument("--ordinary-user", action="store_true")
    options = options.parse_args()
    user = ORDINARY_USER if options.ordinary_user else None
    if user and os.geteuid() != 0:
        print("needs root, to prune as an ordinary user")
        return SKIPPED
    chance = random.Random(options.seed)
    gatescope = os.path.abspath(options.gatescope)

    with stages.scratch_directory() as stage:
        for folder in ("logs", "tmp"):
            os.mkdir(stage + "/" + folder)
        stages.write(stage + "/gatebits.txt", GATEBITS.format(stage=stage))
        if user:
            for path in (stage, stage + "/logs", stage + "/tmp"):
                os.chown(path, user, user)
                os.chmod(path, 0o777)
        stop = multiprocessing.Event()
        written = multiprocessing.Array("q", WRITERS)
        writers = [multiprocessing.Process(target=write_records, args=(stage, i, stop, written, user))
                   for i in range(WRITERS)]
        for writer in writers:
            writer.start()
        ends = collections.Counter()
        try:
            typical = 0.05
            for turn in range(100 * options.prunes):
                # On a busy machine all of them may have ended before they were killed.
                if turn >= options.prunes and ends[-signal.SIGKILL]:
                    break
                begin = time.time()
                kill_after = chance.uniform(0, typical) if turn % 2 else None
                ends[prune(gatescope, stage, kill_after, user)] += 1
                if kill_after is None:
                    typical = time.time() - begin
        finally:
            stop.set()
            for writer in writers:
                writer.join()
        # Merges the companions that remain.
        prune(gatescope, stage, None, user)
        found, expected = records_in(stage), records_to_keep(written)
        lost, surplus = expected - found, found - expected
        print("seed %d: %d prunes, %d of them killed, beside %d records: %d lost, %d surplus" %
              (options.seed, options.prunes, ends[-signal.SIGKILL], sum(written),
               sum(lost.values()), sum(surplus.values())))
        left = [name for name in os.listdir(stage + "/logs")
                if name not in ["logging_%d.txt" % number for number in LOGS]]
        if lost or surplus or left:
            sys.exit("lost %s\nsurplus %s\nleft behind %s" %
                     (lost.most_common(5), surplus.most_common(5), left))
        if not all(written) or not ends[-signal.SIGKILL]:
            sys.exit("nothing was written, or no prune was killed")


if __name__ == "__main__":
    sys.exit(main())
