"""What the scripts of this directory share: a place that goes whatever happens, and the operator."""

import contextlib
import os
import signal
import sys
import tempfile

# An operator's clearprompt: one line of $OWN/script an answer, "status text"; boxes with a single
# button answer themselves. At a line that begins with "meet" the two runs wait for each other.
OPERATOR = """\
case "$*" in *"-mask yes -def"*|*"-mask abort -def"*)
    printf '%s\\n' "$*" >> "$OWN/boxes"
    exit 0;;
esac
printf '%s\\n' "$*" >> "$OWN/asked"
turn=0
[ -e "$OWN/turn" ] && read -r turn < "$OWN/turn"
turn=$((turn + 1))
echo $turn > "$OWN/turn"
while [ $turn -gt 0 ]; do
    IFS= read -r line || line=
    turn=$((turn - 1))
done < "$OWN/script"
[ -n "$line" ] || exit 2
if [ "${line%% *}" = meet ]; then
    line=${line#meet }
    : > "$OWN/here"
    pauses=0
    while [ -n "$OTHER" ] && [ ! -e "$OTHER/here" ] && [ $pauses -lt 2000 ]; do
        pauses=$((pauses + 1))
        sleep 0.01
    done
fi
while [ $# -gt 0 ]; do
    [ "$1" = -outfile ] && printf '%s\\n' "${line#* }" > "$2"
    shift
done
exit "${line%% *}"
"""


def write(path, text):
    with open(path, "w") as file:
        file.write(text)


def read(path):
    """All of a file; an empty text when it is not there."""
    with contextlib.suppress(FileNotFoundError), open(path) as file:
        return file.read()
    return ""


def put_clearprompt(directory, script=OPERATOR):
    """Makes the directory, and the program in it."""
    os.makedirs(directory)
    program = os.path.join(directory, "clearprompt")
    write(program, "#!/bin/sh\n" + script)
    os.chmod(program, 0o755)


@contextlib.contextmanager
def scratch_directory():
    """A directory that anybody may use, for all temporary files of this process. It goes when the
    script fails or is told to end, too."""
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit("told to end"))
    with tempfile.TemporaryDirectory(prefix="gatescope_faults_",
                                     ignore_cleanup_errors=True) as directory:
        os.chmod(directory, 0o777)
        tempfile.tempdir = directory
        yield directory
