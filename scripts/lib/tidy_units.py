"""Runs clang-tidy on sources, with all sources of a folder and target joined into one file: most of
the time is for headers, which these sources share. Findings are printed with their original file and
line.

    tidy_units.py BUILD_DIRECTORY CHECKS SOURCE...

BUILD_DIRECTORY contains compile_commands.json. The exit status is 1 if there are findings."""

import bisect
import collections
import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys

CLANG_TIDY = os.environ.get("CLANG_TIDY", "clang-tidy")
HEADERS = "/(src|tests|tools)/"
# This check runs on each source alone: another source of the folder may use the name.
CHECK_OF_SINGLE_SOURCES = "misc-unused-using-decls"
USING_DECLARATION = re.compile(r"^\s*using [\w:]+;", re.MULTILINE)


def unit_of(entry):
    """The common properties of a unit's sources: folder, target, and the compiler with its options."""
    options = [word for word in shlex.split(entry["command"]) if word not in ("-c", entry["file"])]
    output = options.index("-o")
    target = options[output + 1].split(".dir/")[0]
    del options[output:output + 2]
    return os.path.dirname(entry["file"]), target, tuple(options)


class Unit:
    """A file with the text of several sources of a folder."""

    def __init__(self, path, sources):
        self.path = path
        self.sources = sources
        self.first_lines = []
        text = ""
        for source in sources:
            self.first_lines.append(text.count("\n") + 1)
            with open(source, encoding="utf-8") as file:
                text += file.read() + "\n"
        self.size = len(text)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def place(self, line):
        """The source and line of a line of the unit."""
        at = bisect.bisect_right(self.first_lines, line) - 1
        return "%s:%d" % (self.sources[at], line - self.first_lines[at] + 1)


def make_units(build, sources):
    """Writes units of all sources that are compiled, with their compile_commands.json. Returns the
    units, and the other sources."""
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = {entry["file"]: entry for entry in reversed(json.load(file))}
    groups = collections.defaultdict(list)
    for source in sources:
        if source in entries:
            groups[unit_of(entries[source])].append(source)
    folder = os.path.join(build, "units")
    os.makedirs(folder, exist_ok=True)
    units, commands = [], []
    for (folder_of_sources, _, options), members in groups.items():
        path = os.path.join(folder, "unit_%d.cpp" % len(units))
        units.append(Unit(path, members))
        commands.append({"directory": entries[members[0]]["directory"], "file": path,
                         "arguments": [*options, "-iquote", folder_of_sources, "-c", path]})
    with open(os.path.join(folder, "compile_commands.json"), "w", encoding="utf-8") as file:
        json.dump(commands, file)
    return units, [source for source in sources if source not in entries]


def tidy(database, checks, file):
    """The exit status and the output of clang-tidy for a file."""
    run = subprocess.run([CLANG_TIDY, "--quiet", "-p", database, "--checks=" + checks,
                          "--header-filter=" + HEADERS, file],
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
    # Standard error lists suppressed warnings; it is returned on failure only.
    return run.returncode, run.stdout + (run.stderr if run.returncode != 0 else "")


def tidy_unit(unit, checks):
    status, said = tidy(os.path.dirname(unit.path), checks, unit.path)
    return status, re.sub(re.escape(unit.path) + r":(\d+)",
                          lambda match: unit.place(int(match.group(1))), said)


def has_using_declaration(source):
    with open(source, encoding="utf-8") as file:
        return USING_DECLARATION.search(file.read()) is not None


def main():
    build, checks, *sources = sys.argv[1:]
    sources = [os.path.abspath(source) for source in sources]
    units, others = make_units(os.path.abspath(build), sources)
    # The longest first, so that the last ones to end are short.
    units.sort(key=lambda unit: unit.size, reverse=True)
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        runs = [pool.submit(tidy_unit, unit, checks + ",-" + CHECK_OF_SINGLE_SOURCES) for unit in units]
        runs += [pool.submit(tidy, build, checks, source) for source in others]
        runs += [pool.submit(tidy, build, "-*," + CHECK_OF_SINGLE_SOURCES, source)
                 for source in sources if source not in others and has_using_declaration(source)]
        status = 0
        for run in runs:
            failed, said = run.result()
            status = 1 if failed else status
            sys.stdout.write(said)
    sys.exit(status)


main()
