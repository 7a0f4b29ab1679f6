#!/usr/bin/env python3
"""Makes two edits of one gatebits file at the same moment, and looks whether one got lost.

    edits_at_once.py GATESCOPE [--pairs N] [--jobs N] [--hard-links]

Both runs are held at their last question until the other one is there too, and are then answered
together. What an edit does is learnt from a run of its own. Afterwards the file has to show what
each edit does that was not refused, and nothing else; and an edit may be refused only when the
other one changes what its operator was shown.
"""

import argparse
import collections
import concurrent.futures
import itertools
import os
import random
import subprocess
import sys
import tempfile

import stages

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

# What the operators of the two runs do: the action, then the answers.
EDITS = {
    "field": [(13, ["0 first message", "meet 0 "]), (12, ["0 (second)", "meet 0 "])],
    "other field": [(14, ["0 (first)", "meet 0 "]), (11, ["0 (second)", "meet 0 "])],
    "same field": [(15, ["0 A - ", "meet 0 "]), (15, ["0 B - ", "meet 0 "])],
    "bits": [(16, ["0 03 - ", "meet 0 "]), (8, ["0 S - ", "meet 0 "])],
    "several fields": [(4, ["0 ", "meet 0 "]), (4, ["0 W:other", "meet 0 "])],
    "changed key": [(21, ["0 000 ", "0 ", "0 new_0;", "meet 0 ", "2 "]),
                    (21, ["0 001 ", "0 ", "0 new_1;", "meet 0 ", "2 "])],
    "deleted key": [(21, ["0 004 ", "1 ", "meet 0 ", "2 "]),
                    (21, ["0 003 ", "1 ", "meet 0 ", "2 "])],
    "added key": [(22, ["0 ", "0 added_first;", "meet 0 ", "2 "]),
                  (22, ["0 ", "0 added_second;", "meet 0 ", "2 "])],
    "added alias": [(17, ["0 five", "0 (e)", "meet 0 "]), (17, ["0 six", "0 (f)", "meet 0 "])],
    "changed alias": [(20, ["0 #!gatewarden_alias two (b)", "0 (bb)", "meet 0 "]),
                      (20, ["0 #!gatewarden_alias three (c)", "0 (cc)", "meet 0 "])],
    "deleted alias": [(18, ["0 #!gatewarden_alias three (c)", "meet 1 "]),
                      (18, ["0 #!gatewarden_alias four (d)", "meet 1 "])],
    "removed references": [(19, ["0 ~two", "meet 0 "]), (19, ["0 ~one", "meet 0 "])],
    "setting": [(24, ["0 03 ", "0 W:browser", "meet 0 "]),
                (24, ["0 05 ", "0 W:logs", "meet 0 "])],
}
# Pairs of which the second changes what the first operator was shown, or the other way round.
CONFLICTS = {("same field", "same field"), ("several fields", "several fields"),
             ("deleted key", "deleted key"), ("deleted alias", "changed alias")}


def contents(text):
    """What a gatebits file says, whatever the order of what has none: fields by their places, and
    all other lines as they are."""
    found = collections.Counter()
    number = 0
    for line in filter(None, text.split("\n")):
        number += not line.startswith("#")
        if line.startswith("#") or number > FIELDS_UP_TO_LINE:
            found[line] += 1
        else:
            found.update((number, place, value) for place, value in enumerate(line.split(";")))
    return found


class Stage:
    def __init__(self, gatescope, directory, hard_link=False):
        self.gatescope = gatescope
        self.directory = directory
        self.policy = self.path("gatebits.txt")
        stages.write(self.policy, GATEBITS)
        stages.put_clearprompt(self.path("bin"))
        if hard_link:
            os.link(self.policy, self.policy + ".link")

    def path(self, name):
        return os.path.join(self.directory, name)

    def start(self, edit, side, other=None):
        action, answers = edit
        os.mkdir(self.path(side))
        stages.write(self.path(side + "/script"), "\n".join(answers) + "\n")
        environment = {"PATH": self.path("bin") + ":/usr/bin:/bin", "tmp": self.path(side),
                       "CLEARCASE_USER": "operator", "OWN": self.path(side),
                       "OTHER": self.path(other) if other else "",
                       "ZUL_GATESCOPE_GATEBITS_FILE": self.policy}
        return subprocess.Popen([self.gatescope, "A=%d" % action, "R=n"], env=environment,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def contents(self):
        return contents(stages.read(self.policy))

    def is_refused(self, side):
        return any(REFUSED in stages.read(self.path(side + name)) for name in ("/asked", "/boxes"))


def effect_of(gatescope, edit):
    """What the edit takes away, and what it brings, when nobody disturbs it."""
    with tempfile.TemporaryDirectory() as directory:
        stage = Stage(gatescope, directory)
        before = stage.contents()
        status = stage.start(edit, "first").wait()
        after = stage.contents()
        if status != 110 or before == after:
            sys.exit("undisturbed, %r changes nothing and ends with %d" % (edit, status))
        return before - after, after - before


def fault_of(gatescope, pair, effects, hard_link):
    """Makes the two edits at once. What is wrong afterwards, or None."""
    with tempfile.TemporaryDirectory() as directory:
        stage = Stage(gatescope, directory, hard_link)
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
                gone, come = effects[pair[number], number]
                expected = expected - gone + come
        found = stage.contents()
        if found != expected:
            return "lost %r, in its place %r" % (dict(expected - found), dict(found - expected))
        return None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("gatescope")
    parser.add_argument("--pairs", type=int, default=300)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--hard-links", action="store_true",
                        help="give the gatebits file a second name, so that it is rewritten in place")
    options = parser.parse_args()
    # Each kind with each other in turn, in an order that is the same in every run.
    kinds = list(itertools.product(EDITS, EDITS))
    random.Random(1).shuffle(kinds)
    pairs = list(itertools.islice(itertools.cycle(kinds), options.pairs))
    faults = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        sides = [(name, side) for name in EDITS for side in (0, 1)]
        learnt = pool.map(lambda at: effect_of(options.gatescope, EDITS[at[0]][at[1]]), sides)
        effects = dict(zip(sides, learnt))
        results = pool.map(
            lambda pair: fault_of(options.gatescope, pair, effects, options.hard_links), pairs)
        for pair, fault in zip(pairs, results):
            if fault:
                faults += 1
                print("%s beside %s: %s" % (pair[0], pair[1], fault), flush=True)
    print("%d pairs of edits, %d with a fault" % (len(pairs), faults))
    return 1 if faults else 0


if __name__ == "__main__":
    with stages.scratch_directory():
        sys.exit(main())
