#!/usr/bin/env python3
"""Makes two edits of one gatebits file at the same time, and tests that none is lost.

    edits_at_once.py GATESCOPE STAND_IN [--pairs N] [--jobs N] [--hard-links | --history]

Each run waits at its last question until the other run has reached its own; then both are answered.
The effect of an edit is taken from an undisturbed run. Afterwards the file must have the effects of
the edits that were not refused, and no other change. An edit may be refused only if the other one
changes what its operator was shown.

With --history all pairs edit one file, one after the other, and are recorded: the text saved with
each record must become the next record's text by the recorded change.
"""

import argparse
import collections
import concurrent.futures
import itertools
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile

import stages
from stages import CANCEL, NO, YES, text

GATEBITS = """\
#!gatescope_unix_gatewarden_check=/bin/true
#!gatescope_windows_gatewarden_check=
#!gatescope_unix_browser=/bin/true
#!gatescope_windows_browser=
#!gatescope_relocated_logging_dir_unix=
#!gatescope_relocated_logging_dir_windows=
#!gatescope_relocated_results_dir_unix=
#!gatescope_relocated_results_dir_windows=
#!gatewarden_alias one (a)
#!gatewarden_alias two (b)
#!gatewarden_alias three (c)
#!gatewarden_alias four (d)
gatewarden;;;east;
W:depot;/depot;O;
W:parent;;
;;
; ~one ;
; (root) ;
;old message;;
D;000000000000000000000000;
changed_0;R; ;0;
changed_1;R; ;0;
refers;R;~two ;0;
deleted_3;R; ;0;
deleted_4;R; ;0;
"""
FIELDS_UP_TO_LINE = 8

REFUSED = "nothing was written"

# The two runs wait for each other before they are answered.
MEET = """
: > here
pauses=0
while [ -n "$OTHER" ] && [ ! -e "$OTHER/here" ] && [ $pauses -lt 2000 ]; do
    pauses=$((pauses + 1))
    sleep 0.01
done
"""


def meet(answer):
    return {**answer, "meanwhile": MEET}


# The action and the answers of the two runs.
EDITS = {
    "field": [(13, [text("first message"), meet(YES)]), (12, [text("(second)"), meet(YES)])],
    "other field": [(14, [text("(first)"), meet(YES)]), (11, [text("(second)"), meet(YES)])],
    "same field": [(15, [text("A - "), meet(YES)]), (15, [text("B - "), meet(YES)])],
    "bits": [(16, [text("03 - "), meet(YES)]), (8, [text("S - "), meet(YES)])],
    "several fields": [(4, [text(""), meet(YES)]), (4, [text("W:other"), meet(YES)])],
    "changed key": [(21, [text("000 "), YES, text("new_0;"), meet(YES), CANCEL]),
                    (21, [text("001 "), YES, text("new_1;"), meet(YES), CANCEL])],
    "deleted key": [(21, [text("004 "), NO, meet(YES), CANCEL]),
                    (21, [text("003 "), NO, meet(YES), CANCEL])],
    "added key": [(22, [text(""), text("added_first;"), meet(YES), CANCEL]),
                  (22, [text(""), text("added_second;"), meet(YES), CANCEL])],
    "added alias": [(17, [text("five"), text("(e)"), meet(YES)]),
                    (17, [text("six"), text("(f)"), meet(YES)])],
    "changed alias": [
        (20, [text("#!gatewarden_alias two (b)"), text("(bb)"), meet(YES)]),
        (20, [text("#!gatewarden_alias three (c)"), text("(cc)"), meet(YES)])],
    "deleted alias": [(18, [text("#!gatewarden_alias three (c)"), meet(NO)]),
                      (18, [text("#!gatewarden_alias four (d)"), meet(NO)])],
    "removed references": [(19, [text("~two"), meet(YES)]), (19, [text("~one"), meet(YES)])],
    "setting": [(24, [text("03 "), text("W:browser"), meet(YES)]),
                (24, [text("05 "), text("W:logs"), meet(YES)])],
}
# Pairs of which one changes what the other's operator was shown.
CONFLICTS = {("same field", "same field"), ("several fields", "several fields"),
             ("deleted key", "deleted key"), ("deleted alias", "changed alias")}


def contents(gatebits):
    """A gatebits file as a multiset: fields with their places, and all other lines, whose order does
    not matter."""
    found = collections.Counter()
    number = 0
    for line in filter(None, gatebits.split("\n")):
        number += not line.startswith("#")
        if line.startswith("#") or number > FIELDS_UP_TO_LINE:
            found[line] += 1
        else:
            found.update((number, place, value) for place, value in enumerate(line.split(";")))
    return found


class Stage:
    """One gatebits file; each side has a stage of its own in it."""

    def __init__(self, programs, directory, hard_link=False):
        self.gatescope, self.stand_in = programs
        self.directory = directory
        self.policy = self.path("gatebits.txt")
        stages.write(self.policy, GATEBITS)
        if hard_link:
            os.link(self.policy, self.policy + ".link")

    def path(self, name):
        return os.path.join(self.directory, name)

    def start(self, edit, side, other=None):
        action, answers = edit
        stages.install_stand_in(self.path(side), self.stand_in, answers)
        environment = {"PATH": self.path(side + "/bin") + ":/usr/bin:/bin", "tmp": self.path(side),
                       "CLEARCASE_USER": "operator", "OTHER": self.path(other) if other else "",
                       "ZUL_GATESCOPE_GATEBITS_FILE": self.policy}
        if os.path.exists(self.path("history")):
            environment["ZUL_GATESCOPE_HISTORY"] = self.path("history")
        return subprocess.Popen([self.gatescope, "A=%d" % action, "R=n"], env=environment,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def contents(self):
        return contents(stages.read(self.policy))

    def is_refused(self, side):
        return any(REFUSED in argument for call in stages.recorded_calls(self.path(side))
                   for argument in call["argument"])

    def mismatches(self, side):
        """Errors of dialogs that do not match their answers."""
        return [call["error"] for call in stages.recorded_calls(self.path(side))
                if any(call["error"])]


def effect_of(programs, edit):
    """What an undisturbed run of the edit removes and adds."""
    with tempfile.TemporaryDirectory() as directory:
        stage = Stage(programs, directory)
        before = stage.contents()
        status = stage.start(edit, "first").wait()
        after = stage.contents()
        if status != 110 or before == after:
            sys.exit("undisturbed, %r changes nothing and ends with %d" % (edit, status))
        if stage.mismatches("first"):
            sys.exit("undisturbed, %r asks other questions: %s" % (edit, stage.mismatches("first")))
        return before - after, after - before


def fault_of(programs, pair, effects, hard_link):
    """Makes the two edits at once. Returns a fault, or None."""
    with tempfile.TemporaryDirectory() as directory:
        stage = Stage(programs, directory, hard_link)
        expected = stage.contents()
        runs = [stage.start(EDITS[pair[0]][0], "first", "second"),
                stage.start(EDITS[pair[1]][1], "second", "first")]
        statuses = [run.wait() for run in runs]
        if statuses != [110, 110]:
            return "they ended with %r" % statuses
        refused = [stage.is_refused("first"), stage.is_refused("second")]
        if all(refused) or (any(refused) and pair not in CONFLICTS):
            return "refused: %r" % refused
        for number in (0, 1):
            if not refused[number]:
                removed, added = effects[pair[number], number]
                expected = expected - removed + added
        found = stage.contents()
        if found != expected:
            return "lost %r, in its place %r" % (dict(expected - found), dict(found - expected))
        return None


def numbered_edit(kind, number):
    """An edit that can be repeated, with another result for each number."""
    word = "number_%d" % number
    return [(13, [text(word), meet(YES)]),
            (12, [text("(%s)" % word), meet(YES)]),
            (22, [text(""), text(word + ";"), meet(YES), CANCEL]),
            (17, [text(word), text("(e)"), meet(YES)]),
            (24, [text("03 "), text(word), meet(YES)])][kind]


def fault_of_link(record, before, after):
    """The fault if the record's change does not turn `before` into `after`, or None."""
    removed, added = contents(before) - contents(after), contents(after) - contents(before)
    values = [[part[-1].strip() if isinstance(part, tuple) else part for part in parts.elements()]
              for parts in (removed, added)]
    said = [[] if record[member] is None else [record[member].strip()] for member in ("from", "to")]
    return None if values == said else "%s: it made %s of %s" % (record, values[1], values[0])


def fault_of_history(programs, pairs):
    """Makes pairs of changes of one file. Returns a fault of their records, or None."""
    with tempfile.TemporaryDirectory() as directory:
        stage = Stage(programs, directory)
        os.mkdir(stage.path("history"))
        # Kinds that change different parts, so that none is refused.
        kinds = itertools.cycle(itertools.permutations(range(5), 2))
        for number, (first, second) in enumerate(itertools.islice(kinds, pairs)):
            for side in ("first", "second"):
                shutil.rmtree(stage.path(side), ignore_errors=True)
            runs = [stage.start(numbered_edit(first, 2 * number), "first", "second"),
                    stage.start(numbered_edit(second, 2 * number + 1), "second", "first")]
            if [run.wait() for run in runs] != [110, 110]:
                return "a pair of the kinds %d and %d ended otherwise" % (first, second)
        with open(stage.path("history/changes.jsonl")) as lines:
            records = [json.loads(line) for line in lines]
        texts = [stages.read(stage.path("history/" + record["saved"])) for record in records]
        if len(records) != 2 * pairs or texts[0] != GATEBITS:
            return "%d records, the first of %r" % (len(records), texts[0])
        links = zip(records, texts, texts[1:] + [stages.read(stage.policy)])
        return next(filter(None, itertools.starmap(fault_of_link, links)), None)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("gatescope")
    parser.add_argument("stand_in")
    parser.add_argument("--pairs", type=int, default=300)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--hard-links", action="store_true",
                        help="give the gatebits file a second name, so that it is rewritten in place")
    parser.add_argument("--history", action="store_true", help="record pairs of changes of one file")
    options = parser.parse_args()
    programs = options.gatescope, options.stand_in
    if options.history:
        fault = fault_of_history(programs, options.pairs)
        print(fault or "%d pairs of changes, and all of their records fit" % options.pairs)
        return 1 if fault else 0
    # All pairs of kinds, in an order that is the same in every run.
    kinds = list(itertools.product(EDITS, EDITS))
    random.Random(1).shuffle(kinds)
    pairs = list(itertools.islice(itertools.cycle(kinds), options.pairs))
    faults = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        sides = [(name, side) for name in EDITS for side in (0, 1)]
        learnt = pool.map(lambda at: effect_of(programs, EDITS[at[0]][at[1]]), sides)
        effects = dict(zip(sides, learnt))
        results = pool.map(
            lambda pair: fault_of(programs, pair, effects, options.hard_links), pairs)
        for pair, fault in zip(pairs, results):
            if fault:
                faults += 1
                print("%s beside %s: %s" % (pair[0], pair[1], fault), flush=True)
    print("%d pairs of edits, %d with a fault" % (len(pairs), faults))
    return 1 if faults else 0


if __name__ == "__main__":
    with stages.scratch_directory():
        sys.exit(main())
