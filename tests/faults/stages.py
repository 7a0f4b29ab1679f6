"""Helpers of the scripts in this directory: a temporary directory, and the scenes' stand-in for
clearprompt."""

import collections
import contextlib
import os
import re
import shutil
import signal
import sys
import tempfile

# Answers of an operator, as fields of the ScriptedAnswer of tests/scenes/journal.h.
YES = {"status": 0}
NO = {"status": 1}
CANCEL = {"status": 2}

# Names in a stage's directory that the stand-in and its script use.
FILES = {"bin", "script", "journal", "lock"}


def text(entered):
    """The text typed, the entry picked or the file chosen."""
    return {"outfile": entered}


def write(path, text):
    with open(path, "w") as file:
        file.write(text)


def read(path):
    """The text of a file with its line ends; empty if it does not exist."""
    with contextlib.suppress(FileNotFoundError), open(
            path, newline="", errors="surrogateescape") as file:
        return file.read()
    return ""


def install_stand_in(stage, stand_in, answers):
    """Creates the stage's directory "bin", with a clearprompt that gives these answers, one per
    dialog; "{stage}" in them is replaced by the stage's path. Boxes with one button need no answer;
    all other dialogs without an answer are aborted."""
    os.makedirs(os.path.join(stage, "bin"))
    clearprompt = os.path.join(stage, "bin", "clearprompt")
    try:
        os.link(stand_in, clearprompt)
    except OSError:
        shutil.copy(stand_in, clearprompt)
    script = os.path.join(stage, "script", "clearprompt")
    os.makedirs(script)
    for number, answer in enumerate(answers):
        fields = ((name, str(value).replace("{stage}", stage)) for name, value in answer.items())
        lines = ["%s %s\n" % (name, value.replace("\\", r"\\").replace("\n", r"\n"))
                 for name, value in fields]
        write(os.path.join(script, "%06d" % number), "".join(lines) + "\n")


def recorded_calls(stage):
    """All dialogs so far, each as the values of the fields of a RecordedCall."""
    calls = []
    for record in read(os.path.join(stage, "journal")).split("\n\n")[:-1]:
        calls.append(collections.defaultdict(list))
        for line in record.split("\n"):
            name, value = line.split(" ", 1)
            value = re.sub(r"\\(.)", lambda found: "\n" if found[1] == "n" else found[1], value)
            calls[-1][name].append(value)
    return calls


@contextlib.contextmanager
def scratch_directory():
    """A directory of mode 0777 for all temporary files of this process. It is also removed when the
    script fails or gets SIGTERM."""
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit("ended by SIGTERM"))
    with tempfile.TemporaryDirectory(prefix="gatescope_faults_",
                                     ignore_cleanup_errors=True) as directory:
        os.chmod(directory, 0o777)
        tempfile.tempdir = directory
        yield directory
