#!/usr/bin/env python3
"""Lets every allocation of a run fail, in one run each, alone and with all later ones.

    every_allocation.py GATESCOPE STAND_IN FAILING_MALLOC [--sample N]

In each case the run ends normally, or with the status of an error and a message; the policy file has
the whole old or the whole new text; no temporary file stays; a history has the new file's record and
old text; and no record of a log is lost: a log that was not pruned is reported, and the next run
prunes it.
"""

import argparse
import concurrent.futures
import glob
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

import stages

OLD = "gatewarden;;;east;\nW:%s/depot;%s/depot;O;\n;;\n;;\n; ;\n; ;\n;old;;\nD;;\n"
NEW = OLD.replace(";O;", ";S;")
NOW = int(time.time())
KEPT = "%d:S:ann[2]-<->\n" % NOW
PRUNED = "%d:S:bob[2]-<->\n" % (NOW - 400 * 86400)

# A pick, and yes to all questions after it.
ANSWERS = [stages.text("S - 'S'ucessful attempts only logged")] + 5 * [stages.YES]

KINDS = {
    "field": ["A=8", "R=n"],
    "field_in_place": ["A=8", "R=n"],
    "query": ["Q=1", "C=*", "U=*", "D=n", "R=n"],
    "prune": ["A=1", "D=n", "R=n"],
    "field_recorded": ["A=8", "R=n"],
    "restored": ["restore", "1"],
}


class Stage:
    def __init__(self, kind, stand_in):
        self.kind = kind
        self.path = tempfile.mkdtemp()
        for folder in ("tmp", "depot/log", "depot/query_results"):
            os.makedirs(self.at(folder))
        self.old, self.new = (text % (self.path, self.path) for text in (OLD, NEW))
        self.done, self.error = (0, 2) if kind == "restored" else (110, 99)
        self.program = "-history" if kind == "restored" else ""
        if kind in ("field_recorded", "restored"):
            os.mkdir(self.at("history"))
        if kind == "restored":
            self.old, self.new = self.new, self.old
            self.write("history/first.txt", self.new)
            self.write("history/changes.jsonl", '{"file":"%s","saved":"first.txt"}\n'
                       % os.path.realpath(self.at("gatebits.txt")))
        self.write("gatebits.txt", self.old)
        self.write("depot/log/logging_0.txt", PRUNED + KEPT)
        stages.install_stand_in(self.path, stand_in, ANSWERS)
        os.symlink("/bin/true", self.at("bin/gatewarden"))
        if kind == "field_in_place":
            os.link(self.at("gatebits.txt"), self.at("other_name.txt"))

    def at(self, name):
        return os.path.join(self.path, name)

    def write(self, name, text):
        stages.write(self.at(name), text)

    def read(self, name):
        return stages.read(self.at(name))

    def run(self, gatescope, library, failing):
        environment = {"PATH": self.at("bin") + ":/usr/bin:/bin", "tmp": self.at("tmp"),
                       "CLEARCASE_USER": "op", "LD_PRELOAD": library,
                       "ALLOCATIONS": self.at("allocations"),
                       "ZUL_GATESCOPE_GATEBITS_FILE": self.at("gatebits.txt")}
        if not self.kind.startswith("field"):
            environment["ZUL_PREFER_NO_GUI"] = "yes"
        if os.path.exists(self.at("history")):
            environment["ZUL_GATESCOPE_HISTORY"] = self.at("history")
        if failing:
            environment["FAIL_ALLOCATION"] = failing
        return subprocess.run([gatescope + self.program] + KINDS[self.kind], env=environment, timeout=60,
                              stdin=subprocess.DEVNULL, capture_output=True, cwd=self.path)

    def faults(self, ended):
        if ended.returncode not in (self.done, self.error):
            yield "ended with %d" % ended.returncode
        policy = self.read("gatebits.txt")
        if policy not in (self.old, self.new):
            yield "a torn policy file"
        is_edit = self.kind.startswith("field") or self.kind == "restored"
        if ended.returncode == self.done and is_edit and policy != self.new:
            yield "an edit was lost"
        if os.path.exists(self.at("history")):
            yield from self.faults_of_the_history(policy)
        if os.listdir(self.at("tmp")):
            yield "left in tmp: %s" % os.listdir(self.at("tmp"))
        left = [name for name in glob.glob(self.at("**/.*"), recursive=True)]
        if left:
            yield "left behind: %s" % left
        if self.kind == "prune":
            yield from self.faults_of_the_log(ended)

    def faults_of_the_history(self, policy):
        records = [json.loads(line) for line in self.read("history/changes.jsonl").splitlines()]
        saved = [record["saved"] for record in records]
        if policy == self.new and self.read("history/" + (saved or [""])[-1]) != self.old:
            yield "the new file's record or the old text is missing: %s" % records
        left = set(os.listdir(self.at("history"))) - {"changes.jsonl", *saved}
        if left:
            yield "left in the history: %s" % left

    def faults_of_the_log(self, ended):
        log = self.read("depot/log/logging_0.txt")
        if log not in (PRUNED + KEPT, KEPT):
            yield "the log holds %r" % log
        named = b"was left as it is: Cannot allocate memory" in ended.stdout
        if ended.returncode == 110 and log != KEPT and not named:
            yield "a log that was not pruned was not named"
        if os.path.exists(self.at("depot/log/logging_pruning_token.txt")):
            yield "the token is still up"

    def faults_of_the_next_run(self):
        if self.read("depot/log/logging_0.txt") != KEPT:
            yield "the next run leaves the log %r" % self.read("depot/log/logging_0.txt")
        left = set(os.listdir(self.at("depot/log"))) - {
            "logging_%d.txt" % number for number in range(10)}
        if left:
            yield "the next run leaves %s" % left


def try_allocation(gatescope, stand_in, library, kind, failing):
    stage = Stage(kind, stand_in)
    ended = stage.run(gatescope, library, failing)
    faults = list(stage.faults(ended))
    if kind == "prune" and failing:
        stage.run(gatescope, library, None)
        faults += stage.faults_of_the_next_run()
    if faults:
        faults.append((ended.stdout + ended.stderr).decode()[-300:])
    count = int(stage.read("allocations")) if failing is None else 0
    shutil.rmtree(stage.path)
    return kind, failing, count, ended.returncode, stage, faults


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("gatescope")
    parser.add_argument("stand_in")
    parser.add_argument("failing_malloc")
    parser.add_argument("--sample", type=int)
    options = parser.parse_args()
    programs = [os.path.abspath(program) for program in
                (options.gatescope, options.stand_in, options.failing_malloc)]
    tries = []
    for kind in KINDS:
        _, _, count, status, stage, faults = try_allocation(*programs, kind, None)
        assert status == stage.done and not faults and count > 0, (kind, status, count, faults)
        print("%s: %d allocations" % (kind, count))
        tries += [(kind, "%d%s" % (number, after)) for number in range(1, count + 1)
                  for after in ("", "+")]
    if options.sample and options.sample < len(tries):
        seed = random.randrange(10**6)
        print("a sample of %d of %d, seed %d" % (options.sample, len(tries), seed))
        tries = random.Random(seed).sample(tries, options.sample)
    wrong = errors = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for kind, failing, _, status, stage, faults in pool.map(
                lambda one: try_allocation(*programs, *one), tries):
            errors += status == stage.error
            if faults:
                wrong += 1
                print("%s, allocation %s: %s" % (kind, failing, "; ".join(faults)))
    print("%d runs, %d of them ended with an error, %d wrong" % (len(tries), errors, wrong))
    return 1 if wrong or not errors else 0


if __name__ == "__main__":
    with stages.scratch_directory():
        sys.exit(main())
