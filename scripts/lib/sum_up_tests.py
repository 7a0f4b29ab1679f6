"""Sums up runs of ctest: sum_up_tests.py MAY_SKIP REPORT...

Lists the skipped tests with their reasons. Ends with 1 if a test failed, or if no test of a kind was
run, except for the kinds in MAY_SKIP, a list with blanks.
"""

import re
import sys
import xml.etree.ElementTree

# The labels of tests by the first part of their names; all others are units.
KINDS = {"scenes": "scene", "faults": "fault", "fuzz": "fuzz", "pages": "page",
         "packaging": "packaging", "manual": "packaging", "completion": "packaging",
         "trying": "trying"}


def kind_of(name):
    return KINDS.get(name.split(".")[0], "unit")


def reason_of(test):
    """The reason of a skipped test: the text after Google Test's mark, or a script's last line."""
    said = test.findtext("system-out", "").strip()
    marked = re.search(r": Skipped\n(.*)", said)
    if marked:
        return marked.group(1).strip() or "no reason given"
    lines = [line for line in said.splitlines() if line.strip()]
    return lines[-1].strip() if lines else "no reason given"


def main():
    may_skip = set(sys.argv[1].split())
    unknown = may_skip - set(KINDS.values()) - {"unit"}
    if unknown:
        sys.exit("no kind of tests: " + ", ".join(sorted(unknown)))
    passed, failed, skipped = [], [], []
    for report in sys.argv[2:]:
        for test in xml.etree.ElementTree.parse(report).getroot().iter("testcase"):
            name = test.get("name")
            message = "".join(left.get("message", "") for left in test.iter("skipped"))
            if test.get("status") == "run":
                passed.append(name)
            # ctest also reports a test whose program is missing as not run.
            elif message.startswith("SKIP_") or test.get("status") == "disabled":
                skipped.append(name)
                print(f"skipped: {name}: {reason_of(test)}")
            else:
                failed.append(name)
                print(f"FAILED: {name}")
    run = {kind_of(name) for name in passed + failed}
    missing = sorted({"unit", *KINDS.values()} - run - may_skip)
    for kind in missing:
        print(f"FAILED: no test of the kind '{kind}' was run (--may-skip {kind} allows it)")
    print(f"{len(passed)} passed, {len(failed)} failed, {len(skipped)} skipped")
    sys.exit(1 if failed or missing or not passed else 0)


main()
