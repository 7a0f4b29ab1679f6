#!/usr/bin/env python3
"""Kills the program at, or fails, every system call of whole edits and prunes, and checks the files.

    every_system_call.py GATESCOPE STAND_IN [--sample RUNS] [--only EDIT] [--jobs N]

Each edit first runs undisturbed, for its system calls and its result. Then there are runs for each
call: one is killed at it, one gets a signal with a handler, and for calls on files there is one for
each error that they can return. A prune is also paused at each call, for a late writer. With --sample
there are only about RUNS runs, evenly spread.
"""

import argparse
import collections
import concurrent.futures
import contextlib
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

import stages
from stages import CANCEL, YES, text

# The errors that a call can return.
DISK = ["ENOSPC", "EIO", "EINTR"]
REFUSED = ["EACCES", "EIO", "EINTR"]
ERRORS = {
    "write": DISK, "pwrite64": DISK, "fsync": DISK, "fdatasync": DISK, "close": DISK,
    "ftruncate": DISK, "lseek": ["EIO"], "read": ["EIO", "EINTR"], "copy_file_range": DISK,
    "openat": ["ENOSPC", "EACCES", "EMFILE", "EINTR"], "open": ["ENOSPC", "EACCES", "EINTR"],
    "rename": REFUSED, "renameat2": REFUSED, "link": REFUSED, "unlink": REFUSED,
    "renameat": REFUSED, "linkat": REFUSED, "unlinkat": REFUSED, "getdents64": ["EIO"],
    "fchown": ["EPERM", "EIO"], "fchmod": ["EPERM", "EIO"], "fsetxattr": ["EPERM", "ENOSPC"],
    "fgetxattr": ["EIO"], "flistxattr": ["EIO", "ENOTSUP"], "fremovexattr": ["EPERM"],
    "utimensat": ["EPERM", "EIO"], "newfstatat": ["EIO"], "chmod": ["EPERM", "EIO"],
    "readlink": ["EIO"], "flock": ["EIO", "EINTR", "ENOLCK"],
}

STATUS_OF_A_DONE_EDIT = 110
# Kinds of disturbances.
KILL, SIGNAL, FAIL, PAUSE = "kill", "signal", "fail", "pause"
# The exit status that ctest takes as skipped.
SKIPPED = 77

BLOCK = """\
#!gatescope_unix_gatewarden_check=/bin/true
#!gatescope_relocated_logging_dir_unix={stage}/logs
#!gatescope_relocated_results_dir_unix={stage}/results
# a comment
#!gatewarden_alias adm (root)
gatewarden;;;east;
;{stage}/depot;O;
;;
;;
; (a) ~adm ;
; ;
;old message;;
D;000000000000000000000000;
pre_checkin;R; ;0;
post_checkin;S; ~adm ;
"""


class Edit:
    """One kind of edit: its arguments, the operator's answers, and the file that it changes."""

    # Whether it has so many calls that those with the same effect are left out.
    long = False
    # The user id of the run; None: the user of this script.
    user = None
    # The exit status after success.
    status = STATUS_OF_A_DONE_EDIT
    # Additional variables of its environment.
    environment = {}

    def __init__(self, arguments, answers, result="gatebits.txt", shows="", always=None):
        self.arguments = arguments
        self.answers = answers
        self.result = result
        self.shows = shows
        # An injection for all runs, the undisturbed one included.
        self.always = always
        # The dialogs of the undisturbed run.
        self.asked = ""

    def furnish(self, stage):
        pass

    def command(self, gatescope, stage):
        return [gatescope, "F=" + os.path.join(stage, "gatebits.txt")] + self.arguments

    def state(self, stage):
        """The bytes of the edit's file, or None if it does not exist."""
        return bytes_of(os.path.join(stage, self.result))

    def fault_after_kill(self, stage, old, new, gatescope):
        state = self.state(stage)
        if state not in (old, new):
            return "killed: the file is neither the old nor the new one, but %r" % state
        return self.fault_of_the_rest(stage, old)

    def fault_after_signal(self, stage, old, new, gatescope):
        return self.fault_after_kill(stage, old, new, gatescope)

    def fault_after_error(self, stage, old, new, run, gatescope):
        state = self.state(stage)
        if state not in (old, new):
            return "the file is neither the old nor the new one, but %r" % state
        if state == old and not run.told():
            return "nothing was written and nothing was reported (status %d)" % run.status
        return self.fault_of_the_rest(stage, old)

    def fault_of_the_rest(self, stage, old):
        """The gatebits file in use must be whole, even if the edit is of another file."""
        if self.result == "gatebits.txt":
            return None
        if bytes_of(os.path.join(stage, "gatebits.txt")) != BLOCK.format(stage=stage).encode():
            return "another file was changed"
        return None

    def leftovers(self, stage):
        names = ["tmp/" + name for name in os.listdir(os.path.join(stage, "tmp"))]
        known = {"tmp", "logs", "depot", "gatebits.txt", os.path.basename(self.result),
                 *stages.FILES}
        return names + [name for name in os.listdir(stage) if name not in known]


NOW = int(time.time())
DAY = 86400


class Prune(Edit):
    """A prune of several logs, with companions. Its state is the sorted records of each file."""

    long = True
    KEPT = 40
    DROPPED = 30
    # Written by a writer that checked for the token just before it was created.
    LATE = "%d:S:kept_late[2]-<->" % NOW

    def __init__(self, logs=(0, 7, 20), hard_links=(), user=None, owner=None, always=None):
        super().__init__(["A=1", "D=n", "R=n"], [], result="logs", shows="retained", always=always)
        self.logs = logs
        self.hard_links = hard_links
        self.user = user
        self.owner = owner

    def furnish(self, stage):
        logs = os.path.join(stage, "logs")
        for number in self.logs:
            with open(os.path.join(logs, "logging_%d.txt" % number), "w") as log:
                for i in range(self.KEPT):
                    log.write("%d:S:kept%d_%d[2]-<->\n" % (NOW - i * DAY, number, i))
                    if i < self.DROPPED:
                        log.write("%d:S:old%d_%d[2]-<->\n" % (NOW - (200 + i) * DAY, number, i))
        # Companions that writers created during an earlier prune; number 12 has no log.
        for number in (7, 12):
            with open(os.path.join(logs, "logging__%d.txt" % number), "w") as companion:
                companion.write("%d:D:kept_beside_%d[3]K<4>\n" % (NOW, number))
                companion.write("%d:D:old_beside_%d[3]K<4>\n" % (NOW - 300 * DAY, number))
        for number in self.hard_links:
            os.link(os.path.join(logs, "logging_%d.txt" % number),
                    os.path.join(stage, "depot", "twin_%d" % number))
        if self.user is None:
            return
        for path, _, names in os.walk(stage):
            for name in [path] + [os.path.join(path, name) for name in names]:
                os.lchown(name, self.user, self.user)
        for number in self.logs:
            os.chown(os.path.join(logs, "logging_%d.txt" % number), self.owner, self.owner)

    def state(self, stage):
        logs = os.path.join(stage, "logs")
        # Without the order of the records in a file.
        files = {name: b"".join(sorted((bytes_of(os.path.join(logs, name)) or b"").splitlines(True)))
                 for name in sorted(os.listdir(logs))}
        files["depot"] = " ".join(sorted(os.listdir(os.path.join(stage, "depot")))).encode()
        return files

    def fault_after_pause(self, stage, new, run, gatescope):
        # By its output: the exit status of strace is unreliable after its child was continued.
        if self.shows not in run.said:
            return "it did not continue"
        if run.seen:
            return run.seen
        return self.fault_of_the_next_run(stage, new, gatescope)

    def fault_of_records(self, stage, new, gatescope):
        """The fault after a late write and one more run, or None."""
        self.write_late(stage)
        return self.fault_of_the_next_run(stage, new, gatescope)

    def fault_of_the_next_run(self, stage, new, gatescope):
        again = Run(gatescope, self, stage)
        if again.status != STATUS_OF_A_DONE_EDIT:
            return "the next run ended with %d: %s" % (again.status, again.said)
        state = self.state(stage)
        for name in self.log_names():
            if state.get(name, b"").split().count(self.LATE.encode()) != 1:
                return "the next run lost or duplicated the late record in %s" % name
            state[name] = state[name].replace(self.LATE.encode() + b"\n", b"")
        if state != new:
            return "the next run left wrong files: %s" % difference(state, new)
        return None

    def fault_of_a_query(self, stage):
        """The fault that a query would show now, or None: at any time a log has each retained record
        once."""
        for number in self.logs:
            words = collections.Counter(
                re.findall(rb"kept%d_\d+" % number,
                           bytes_of(os.path.join(stage, "logs", "logging_%d.txt" % number)) or b""))
            if len(words) != self.KEPT or set(words.values()) != {1}:
                return "a query finds %d records in log %d: %s" % (
                    sum(words.values()), number, words.most_common(1))
        return None

    def fault_of_the_programs_query(self, stage, gatescope):
        """The same, by the numbers of a query's page. It compares the allowed requests, which are in
        the logs; companions have denied ones only."""
        results = os.path.join(stage, "results")
        os.mkdir(results)
        os.chmod(results, 0o777)
        query = Edit(["Q=1", "C=*", "U=*", "D=n", "R=n"], [])
        query.user = self.user
        run = Run(gatescope, query, stage)
        days = [line.split(b",") for name in os.listdir(results) if name.endswith(".csv")
                for line in bytes_of(os.path.join(results, name)).splitlines()[1:]]
        shutil.rmtree(results)
        allowed = sum(int(day[1]) for day in days)
        if allowed != self.KEPT * len(self.logs):
            return "the program's query counts %d allowed (status %d)" % (allowed, run.status)
        return None

    def log_names(self):
        return ["logging_%d.txt" % number for number in self.logs]

    def write_late(self, stage):
        for name in self.log_names():
            with open(os.path.join(stage, "logs", name), "a") as log:
                log.write(self.LATE + "\n")

    def fault_after_kill(self, stage, old, new, gatescope):
        return (self.fault_of_a_query(stage) or self.fault_of_the_programs_query(stage, gatescope) or
                self.fault_of_records(stage, new, gatescope))

    def fault_after_signal(self, stage, old, new, gatescope):
        left = [name for folder in ("logs", "depot") for name in os.listdir(os.path.join(stage, folder))
                if "pruning_" in name]
        if left:
            return "a signal left %s" % left
        return self.fault_after_kill(stage, old, new, gatescope)

    def fault_after_error(self, stage, old, new, run, gatescope):
        told = run.told() or "was left as it is" in run.said or "The next pruning adds" in run.said
        if not told and self.state(stage) != new:
            return "the prune failed and reported nothing (status %d)" % run.status
        seen = self.fault_of_a_query(stage)
        if seen:
            return seen
        return self.fault_of_records(stage, new, gatescope)

    def leftovers(self, stage):
        return []


def difference(one, other):
    return ", ".join("%s: %r instead of %r" % (name, one.get(name), other.get(name))
                     for name in sorted(set(one) | set(other)) if one.get(name) != other.get(name))


class PruneAfterKill(Prune):
    """One log has the left-over files of a run that was killed after its commit."""

    def furnish(self, stage):
        super().furnish(stage)
        path = os.path.join(stage, "logs", "logging_7.txt")
        log = bytes_of(path)
        taken = b"%d:D:kept_taken[3]K<4>\n" % NOW
        kept = b"".join(line for line in log.splitlines(True) if b":kept" in line)
        stages.write(path + ".taken_0", taken.decode())
        stages.write("%s.ready_%d_%d" % (path, len(log), fingerprint(log)), (kept + taken).decode())
        # Written since the kill.
        with open(path, "a") as file:
            file.write("%d:D:kept_since[3]K<4>\n" % NOW)


def fingerprint(data):
    value = 0xcbf29ce484222325
    for byte in data[:8192] + data[-8192:]:
        value = (value ^ byte) * 0x100000001b3 % (1 << 64)
    return value


class InPlace(Edit):
    """A field of a hard-linked file, which is rewritten in place. Between the old and the new text
    blank lines may be at its end; a failed write names the copy with the whole text."""

    def furnish(self, stage):
        os.link(os.path.join(stage, "gatebits.txt"), os.path.join(stage, "depot", "other"))

    def state(self, stage):
        return super().state(stage).rstrip(b"\n") + b"\n"

    def fault_after_error(self, stage, old, new, run, gatescope):
        copy = re.search(r"Its complete new text is in \((.*?)\)", run.said)
        if copy and bytes_of(copy.group(1)) == new:
            os.unlink(copy.group(1))
            return None
        return super().fault_after_error(stage, old, new, run, gatescope)


class Page(Edit):
    """A query's page and its CSV file, which are named after the time of the query."""

    def __init__(self, always=None):
        super().__init__(["Q=1", "C=*", "U=*", "D=n", "R=n"], [], result="results",
                         shows="query completed", always=always)

    def furnish(self, stage):
        os.mkdir(os.path.join(stage, "results"))
        with open(os.path.join(stage, "logs", "logging_0.txt"), "w") as log:
            log.write("%d:S:op[2]-<->\n" % NOW)

    def state(self, stage):
        results = os.path.join(stage, "results")
        return {re.sub(r"^[\d_]+", "", name): bytes_of(os.path.join(results, name))
                for name in os.listdir(results)}

    def fault_of_files(self, state, new, allowed):
        """Existing files must be whole, or allowed."""
        wrong = ["%s (%d bytes)" % (name, len(text)) for name, text in state.items()
                 if text != new.get(name) and not allowed(name, text)]
        return "not whole: %s" % wrong if wrong else None

    def fault_after_kill(self, stage, old, new, gatescope):
        # The page may be empty, and the CSV file may still have its temporary name.
        return self.fault_of_files(self.state(stage), new, lambda name, text: not text or name not in new)

    def fault_after_signal(self, stage, old, new, gatescope):
        return self.fault_of_files(self.state(stage), new, lambda name, text: False)

    def fault_after_error(self, stage, old, new, run, gatescope):
        state = self.state(stage)
        # A log that cannot be read is named, and the page counts the others.
        if "logging_0.txt" in run.noted and state.keys() == new.keys():
            return None
        if state != new and not run.told():
            return "there is only %s, and nothing was reported (status %d)" % (list(state), run.status)
        # Without a lock the program cannot know which process wrote bytes after the old ones, or
        # created an empty page.
        if self.always and "is incomplete" in run.said:
            return None
        return self.fault_of_files(state, new, lambda name, text: self.always and not text)


class Recorded(Edit):
    """An edit with a history: if the file has the new text, the record and the old text exist, and
    each line is JSON."""

    environment = {"ZUL_GATESCOPE_HISTORY": "{stage}/history"}

    def furnish(self, stage):
        super().furnish(stage)
        os.mkdir(os.path.join(stage, "history"))

    def records(self, stage):
        lines = bytes_of(os.path.join(stage, "history", "changes.jsonl")) or b""
        return [json.loads(line) for line in lines.split(b"\n")[:-1]]

    def fault_of_history(self, stage, old):
        lines = bytes_of(os.path.join(stage, "history", "changes.jsonl")) or b""
        if lines and not lines.endswith(b"\n"):
            return "a line has no newline: %r" % lines
        records = self.records(stage)
        saved = {record["saved"]: bytes_of(os.path.join(stage, "history", record["saved"]))
                 for record in records if record["saved"]}
        if None in saved.values():
            return "texts of records are missing: %s" % saved
        if self.state(stage) != old:
            last = records[-1] if records else None
            path = os.path.realpath(os.path.join(stage, self.result))
            if not last or last["file"] != path or saved.get(last["saved"]) != old:
                return "the file is new, and its last record is %s" % last
        return None

    def fault_after_kill(self, stage, old, new, gatescope):
        return (super().fault_after_kill(stage, old, new, gatescope) or
                self.fault_of_history(stage, old))

    def fault_after_error(self, stage, old, new, run, gatescope):
        seen = (super().fault_after_error(stage, old, new, run, gatescope) or
                self.fault_of_history(stage, old))
        # The record of a change that was not made is removed, unless its removal failed.
        may_stay = run.disturbed.startswith("ftruncate") or "may be damaged" in run.said
        if not seen and self.state(stage) == old and not may_stay:
            left = self.records(stage)[self.earlier:]
            return "a change that was not made stays in the history: %s" % left if left else None
        return seen

    # The number of records before the run.
    earlier = 0

    def leftovers(self, stage):
        named = {record["saved"] for record in self.records(stage)}
        others = [name for name in os.listdir(os.path.join(stage, "history"))
                  if name != "changes.jsonl" and name not in named]
        return others + [name for name in super().leftovers(stage) if name != "history"]


class RecordedInPlace(Recorded, InPlace):
    pass


class Restored(Recorded):
    """A text that gatescope-history restores."""

    status = 0
    earlier = 1

    def furnish(self, stage):
        super().furnish(stage)
        history = os.path.join(stage, "history")
        with open(os.path.join(history, "first.txt"), "w") as saved:
            saved.write(BLOCK.format(stage=stage).replace("old message", "first message"))
        record = dict.fromkeys(("time", "operator", "host", "action", "item", "from", "to"), "x")
        record.update(file=os.path.realpath(os.path.join(stage, "gatebits.txt")), uid=0,
                      saved="first.txt")
        with open(os.path.join(history, "changes.jsonl"), "w") as lines:
            lines.write(json.dumps(record, separators=(",", ":")) + "\n")

    def command(self, gatescope, stage):
        return [gatescope + "-history", "restore", "1"]


EDITS = {
    "field": Edit(["A=13", "R=n"], [text("new (message) ~adm"), YES],
                  shows=";new (message) ~adm ;"),
    "field_without_locks": Edit(["A=13", "R=n"], [text("new (message) ~adm"), YES],
                                shows=";new (message) ~adm ;", always="flock:error=ENOLCK"),
    "field_in_place": InPlace(["A=13", "R=n"], [text("new (message) ~adm and more of it"), YES],
                              shows=";new (message) ~adm and more of it;"),
    "key_changed": Edit(["A=21", "R=n"], [text("000 pre_checkin;R; ;0;"), YES,
                                          text("changed;R;"), YES, CANCEL], shows="changed;R;"),
    "key_added": Edit(["A=22", "R=n"], [text("000 pre_checkin;R; ;0;"), text("added;R;"), YES,
                                        CANCEL], shows="added;R;"),
    "alias_added": Edit(["A=17", "R=n"], [text("dev"), text("(new)"), YES, CANCEL],
                        shows="#!gatewarden_alias dev (new)"),
    "alias_deleted": Edit(["A=18", "R=n"], [text("#!gatewarden_alias adm (root)"), YES],
                          shows="; (a) ;"),
    "references_cut": Edit(["A=19", "R=n"], [text("~adm"), YES], shows="; (a) ;"),
    "alias_changed": Edit(["A=20", "R=n"], [text("#!gatewarden_alias adm (root)"), text("(new)"),
                                            YES],
                          shows="#!gatewarden_alias adm (new)"),
    "variable": Edit(["A=24", "R=n"], [text("02 gatescope_unix_browser="), text("/usr/bin/browser"),
                                       YES],
                     shows="browser=/usr/bin/browser"),
    "create": Edit(["A=26", "R=n"], [text("{stage}/new.txt"), CANCEL], result="new.txt",
                   shows="{region Name}"),
    "copy": Edit(["A=27", "R=n"], [text("{stage}/gatebits.txt"), text("{stage}/copy.txt")],
                 result="copy.txt", shows="old message"),
    "field_recorded": Recorded(["A=13", "R=n"], [text("new (message) ~adm"), YES],
                               shows=";new (message) ~adm ;"),
    "field_in_place_recorded": RecordedInPlace(
        ["A=13", "R=n"], [text("new (message) ~adm and more of it"), YES],
        shows=";new (message) ~adm and more of it;"),
    "alias_deleted_recorded": Recorded(
        ["A=18", "R=n"], [text("#!gatewarden_alias adm (root)"), YES], shows="; (a) ;"),
    "create_recorded": Recorded(["A=26", "R=n"], [text("{stage}/new.txt"), CANCEL],
                                result="new.txt", shows="{region Name}"),
    "restored": Restored([], [], shows="first message"),
    "page": Page(),
    "page_without_locks": Page(always="flock:error=ENOLCK"),
    "prune": Prune(),
    "prune_hard_links": Prune(logs=(7,), hard_links=(7,)),
    "prune_after_kill": PruneAfterKill(logs=(7, 20)),
}

if os.geteuid() == 0:
    # The administrator is not root, and the logs belong to other users. Leases of their files are
    # unavailable, so each run waits for the whole timeout.
    EDITS["prune_of_others"] = Prune(logs=(7, 20), user=12345, owner=12346)


def bytes_of(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except (FileNotFoundError, ProcessLookupError):
        return None


def only_child(pid):
    children = bytes_of("/proc/%d/task/%d/children" % (pid, pid))
    return int(children.split()[0]) if children else None


def is_stopped(pid):
    status = bytes_of("/proc/%d/stat" % pid)
    return status and status.split()[2] in (b"T", b"t")


class Run:
    """One run of the program on a stage, with one call disturbed by `injection`."""

    def __init__(self, gatescope, edit, stage, injection=None, trace=None, meanwhile=None):
        self.seen = None
        injections = [one for one in (injection, edit.always) if one]
        command = edit.command(gatescope, stage)
        self.done = edit.status
        if injections or trace:
            # Without -f, so that children are not traced.
            strace = ["strace", "-qq", "-o", trace or "/dev/null"]
            if injection:
                strace += ["-e", "trace=" + ",".join(one.split(":")[0] for one in injections)]
            for one in injections:
                strace += ["-e", "inject=" + one]
            command = strace + command
        environment = {
            "PATH": os.path.join(stage, "bin") + ":/usr/bin:/bin", "tmp": os.path.join(stage, "tmp"),
            "CLEARCASE_USER": "op", "ZUL_PREFER_NO_GUI": "yes", "HOME": stage,
            "ZUL_GATESCOPE_CSV": "yes",
        }
        environment |= {name: value.replace("{stage}", stage)
                        for name, value in edit.environment.items()}
        process = subprocess.Popen(command, env=environment, cwd=stage, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   user=edit.user, group=edit.user, extra_groups=[] if edit.user else None)
        if meanwhile:
            self.while_paused(process, meanwhile)
        said, noted = process.communicate(timeout=60)
        self.said = said.decode(errors="replace")
        self.noted = noted.decode(errors="replace")
        self.status = process.returncode
        calls = stages.recorded_calls(stage)
        self.mismatches = [call["error"] for call in calls if any(call["error"])]
        # Questions, prompts and lists, without the stage and the process id.
        asked = "".join(" ".join(call["argument"]) + "\n" for call in calls
                        if call["queue"] != ["box"])
        self.asked = re.sub(r"_\d+_", "_", asked.replace(stage, ""))
        self.asks_other_questions = not edit.asked.startswith(self.asked)

    def while_paused(self, strace, meanwhile):
        """Starts `meanwhile` when the program has stopped, and soon continues the program, even if
        `meanwhile` is not done: it may wait for a lock of the program."""
        times_stopped = 0
        while times_stopped < 3 and strace.poll() is None:
            # At first the child is one by which strace tests its abilities.
            child = only_child(strace.pid)
            times_stopped = times_stopped + 1 if child and is_stopped(child) else 0
            time.sleep(0.002)
        work = threading.Thread(target=meanwhile)
        work.start()
        work.join(0.03)
        while strace.poll() is None:
            # Repeated, in case that the program is paused only now.
            with contextlib.suppress(ProcessLookupError):
                child = only_child(strace.pid)
                if child and is_stopped(child):
                    os.kill(child, signal.SIGCONT)
            time.sleep(0.002)
        work.join()

    def told(self):
        """Whether the operator learns that it failed: by an error or by another question."""
        return self.status != self.done or self.asks_other_questions


def set_the_stage(stage, stand_in, edit):
    shutil.rmtree(stage, ignore_errors=True)
    for folder in ("tmp", "logs", "depot"):
        os.makedirs(os.path.join(stage, folder))
    stages.write(os.path.join(stage, "gatebits.txt"), BLOCK.format(stage=stage))
    stages.install_stand_in(stage, stand_in, edit.answers)
    edit.furnish(stage)


def calls_of(trace):
    """The calls of a run as (name, number among the calls of that name, line of the trace)."""
    count = collections.Counter()
    calls = []
    with open(trace) as file:
        for line in file:
            match = re.match(r"(\w+)\(", line)
            if not match or match.group(1) in ("exit_group", "execve", "rt_sigreturn"):
                continue
            count[match.group(1)] += 1
            calls.append((match.group(1), count[match.group(1)], line.rstrip()))
    return calls


READING = {"newfstatat", "read", "pread64", "lseek", "getdents64", "access", "readlink", "fcntl",
           "mmap", "munmap", "mprotect", "brk", "close", "rt_sigprocmask", "rt_sigaction", "getpid",
           "flistxattr", "fgetxattr", "clock_nanosleep", "geteuid"}


def changes_something(name, line):
    """Whether the call has an effect that another process can see."""
    if name == "openat":
        return "O_CREAT" in line or "O_TRUNC" in line
    return name not in READING


def disturbances(calls, long):
    """All disturbances of single calls, as (injection, kind, line of the trace)."""
    loaded = 0
    changed = True
    for at, (name, number, line) in enumerate(calls):
        # Ends between the same two changing calls have the same effect.
        if changed or not long:
            yield "%s:signal=SIGKILL:when=%d" % (name, number), KILL, line
            handled = ("SIGTERM", "SIGINT", "SIGHUP")[at % 3]
            yield "%s:signal=%s:when=%d" % (name, handled, number), SIGNAL, line
        changed = changes_something(name, line)
        # The program pauses after the call, so that its result may then be out of date.
        has_read = name in ("newfstatat", "read", "pread64") and "ENOENT" not in line
        if long and loaded >= 2 and (changed or has_read):
            yield "%s:signal=SIGSTOP:when=%d" % (name, number), PAUSE, line
        # For a file that does not exist another error makes no difference.
        if long and "ENOENT" in line:
            continue
        # Before the gatebits file is loaded an error leads to the question which file to use. The
        # messages are written to descriptor 1.
        loaded += "gatebits.txt" in line
        # A checker whose stat fails counts as missing, and another one is used.
        if loaded < 2 or line.startswith("write(1,") or '"/bin/true"' in line:
            continue
        for error in ERRORS.get(name, []):
            yield "%s:error=%s:when=%d" % (name, error, number), FAIL, line


def disturbed(gatescope, stand_in, name, edit, expected, free, injection, kind, line):
    """The fault after one disturbed run, or None."""
    stage = free.pop()
    try:
        set_the_stage(stage, stand_in, edit)
        old = edit.state(stage)
        new = expected(stage)
        seen = []

        def late():
            seen.append(edit.fault_of_a_query(stage))
            edit.write_late(stage)

        run = Run(gatescope, edit, stage, injection, meanwhile=late if kind == PAUSE else None)
        if kind == PAUSE:
            run.seen = seen and seen[0]
            fault = edit.fault_after_pause(stage, new, run, gatescope)
        elif run.status < 0 and kind == FAIL:
            fault = "it ended by signal %d" % -run.status
        elif kind == FAIL:
            run.disturbed = line
            fault = edit.fault_after_error(stage, old, new, run, gatescope)
        elif run.status < 0:
            after = edit.fault_after_signal if kind == SIGNAL else edit.fault_after_kill
            fault = after(stage, old, new, gatescope)
        else:
            # The signal came too late, or a call was not repeated exactly.
            fault = None if run.status == edit.status else "it did not end by the signal"
        # A killed run leaves files behind, and so does a failing unlink.
        left = edit.leftovers(stage)
        if not fault and left and kind != KILL and not injection.startswith("unlink:error"):
            fault = "left behind: %s" % left
        if fault:
            return "%s, %s at %s\n    %s\n    status %d, said %r" % (
                name, injection, line, fault, run.status, run.said)
        return None
    finally:
        free.append(stage)


def run_undisturbed(gatescope, stand_in, name, edit, stage, root):
    """The calls of an undisturbed run, and its result as a function of the stage."""
    set_the_stage(stage, stand_in, edit)
    old = edit.state(stage)
    # One file for each kind, since kinds may run as different users.
    trace = os.path.join(root, "trace_of_" + name)
    run = Run(gatescope, edit, stage, trace=trace)
    edit.asked = run.asked
    new = edit.state(stage)
    if run.status != edit.status or new == old or edit.shows not in repr(new) + run.said:
        sys.exit("%s, undisturbed, ended with %d, said %r and left %r" %
                 (name, run.status, run.said, new))
    if run.mismatches:
        sys.exit("%s, undisturbed, asks other questions: %s" % (name, run.mismatches))
    if edit.leftovers(stage):
        sys.exit("%s, undisturbed, left %s behind" % (name, edit.leftovers(stage)))

    def expected(other):
        if isinstance(new, dict):
            return new
        return new.replace(stage.encode(), other.encode())

    return calls_of(trace), expected


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument("gatescope")
    options.add_argument("stand_in")
    options.add_argument("--sample", type=int, default=0)
    options.add_argument("--only")
    options.add_argument("--jobs", type=int, default=os.cpu_count())
    options = options.parse_args()
    programs = os.path.abspath(options.gatescope), os.path.abspath(options.stand_in)
    if not shutil.which("strace") or subprocess.run(["strace", "-o", "/dev/null", "true"]).returncode:
        print("needs strace and the right to trace")
        return SKIPPED

    with stages.scratch_directory() as root:
        free = [os.path.join(root, "stage_%d" % i) for i in range(options.jobs)]
        work = []
        for name, edit in EDITS.items():
            if options.only and name != options.only:
                continue
            calls, expected = run_undisturbed(*programs, name, edit, free[0], root)
            ways = [(name, edit, expected) + way for way in disturbances(calls, edit.long)]
            print("%-15s %4d system calls, %4d ways to disturb them" % (name, len(calls), len(ways)))
            # Each run as another user waits for seconds.
            work += ways[::10] if options.sample and edit.user else ways
        if options.sample:
            step = max(1, len(work) // options.sample)
            work = work[step // 2::step]

        def do(item):
            name, edit, expected, injection, kind, line = item
            return disturbed(*programs, name, edit, expected, free, injection, kind, line)

        begin = time.time()
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            faults = [fault for fault in pool.map(do, work) if fault]
        print("%d runs in %d seconds, %d faults" % (len(work), time.time() - begin, len(faults)))
        print("\n".join(faults))
        return 1 if faults or not work else 0


if __name__ == "__main__":
    sys.exit(main())
