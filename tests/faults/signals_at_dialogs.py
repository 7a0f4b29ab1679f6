#!/usr/bin/env python3
"""Ends the program by signals while a dialog is open.

    signals_at_dialogs.py GATESCOPE STAND_IN

For each signal and sender the program ends by that signal, the dialog ends too, no temporary file
stays, and the policy file is unchanged.
"""

import concurrent.futures
import os
import pty
import resource
import signal
import subprocess
import sys
import tempfile
import time

import stages

GATEBITS = "gatewarden;;;east;\n;;O;\n;;\n;;\n; ;\n; ;\n;old;;\nD;;\n"

# Dialogs that stay until a signal comes: one that it ends, and one that blocks all signals but TERM,
# INT and HUP, and still writes its answer, as a program with handlers of its own may do.
PLAIN = {"delay_milliseconds": 60000}
STUBBORN = {**PLAIN, "stubborn": 1, "outfile": "late"}

# Other signals whose default action ends a process.
OTHERS = (signal.SIGALRM, signal.SIGUSR1, signal.SIGUSR2, signal.SIGXCPU, signal.SIGVTALRM,
          signal.SIGPROF, signal.SIGIO, signal.SIGABRT, signal.SIGSYS, signal.SIGRTMIN)

WAIT = 20


def wait_for(condition, what):
    end = time.time() + WAIT
    while not condition():
        if time.time() > end:
            raise AssertionError("timeout while waiting for " + what)
        time.sleep(0.01)


def is_alive(pid):
    try:
        with open("/proc/%d/stat" % pid) as status:
            return status.read().rsplit(")", 1)[1].split()[0] != "Z"
    except FileNotFoundError:
        return False


class Stage:
    def __init__(self, programs, dialog):
        self.gatescope, stand_in = programs
        self.path = tempfile.mkdtemp()
        os.mkdir(self.path + "/tmp")
        stages.write(self.path + "/gatebits.txt", GATEBITS)
        stages.install_stand_in(self.path, stand_in, [dialog])
        self.environment = {"PATH": self.path + "/bin:/usr/bin:/bin", "tmp": self.path + "/tmp",
                            "CLEARCASE_USER": "op"}

    def command(self):
        return [self.gatescope, "F=" + self.path + "/gatebits.txt", "A=13", "R=n"]

    def dialog(self):
        """Waits until the dialog is open, and returns its process id."""
        wait_for(lambda: stages.recorded_calls(self.path), "the dialog")
        return int(stages.recorded_calls(self.path)[0]["pid"][0])

    def check(self, dialog, status, number):
        assert status == -number, "it ended with %d and not by signal %d" % (status, number)
        wait_for(lambda: not is_alive(dialog), "the end of the dialog")
        left = os.listdir(self.path + "/tmp")
        assert not left, "left behind: %s" % left
        assert stages.read(self.path + "/gatebits.txt") == GATEBITS, "the policy file was changed"


def sent_to_the_program_alone(programs, number, dialog):
    stage = Stage(programs, dialog)
    program = subprocess.Popen(stage.command(), env=stage.environment)
    shown = stage.dialog()
    program.send_signal(number)
    stage.check(shown, program.wait(WAIT), number)


def sent_to_the_whole_group(programs, number, dialog):
    stage = Stage(programs, dialog)
    program = subprocess.Popen(stage.command(), env=stage.environment,
                               start_new_session=True)
    shown = stage.dialog()
    os.killpg(program.pid, number)
    stage.check(shown, program.wait(WAIT), number)


def started_on_a_terminal(programs):
    stage = Stage(programs, PLAIN)
    command = stage.command()
    child, terminal = pty.fork()
    if child == 0:
        os.execve(command[0], command, stage.environment)
    return stage, child, terminal


def typed_at_the_terminal(programs, key, number):
    stage, child, terminal = started_on_a_terminal(programs)
    shown = stage.dialog()
    os.write(terminal, key)
    _, status = os.waitpid(child, 0)
    stage.check(shown, os.waitstatus_to_exitcode(status), number)


def closed_terminal(programs):
    stage, child, terminal = started_on_a_terminal(programs)
    shown = stage.dialog()
    os.close(terminal)
    _, status = os.waitpid(child, 0)
    stage.check(shown, os.waitstatus_to_exitcode(status), signal.SIGHUP)


def ignored_from_the_start(programs):
    """A run under nohup continues after SIGHUP."""
    stage = Stage(programs, PLAIN)
    program = subprocess.Popen(stage.command(), env=stage.environment,
                               preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
    shown = stage.dialog()
    program.send_signal(signal.SIGHUP)
    time.sleep(0.1)
    assert is_alive(shown), "the dialog is gone"
    os.kill(shown, signal.SIGTERM)
    assert program.wait(WAIT) == 110, program.returncode


def sigchld_ignored_from_the_start(programs):
    """Dialogs work when SIGCHLD is ignored from the start."""
    stage = Stage(programs, stages.CANCEL)
    finished = subprocess.run(stage.command(), env=stage.environment, timeout=WAIT,
                              preexec_fn=lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN))
    assert finished.returncode == 110, finished.returncode


def main():
    programs = [os.path.abspath(program) for program in sys.argv[1:3]]
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        for dialog in (PLAIN, STUBBORN):
            sent_to_the_program_alone(programs, number, dialog)
        sent_to_the_whole_group(programs, number, PLAIN)
    # In parallel: the program gives each of these dialogs a few seconds to end.
    with concurrent.futures.ThreadPoolExecutor(len(OTHERS)) as pool:
        list(pool.map(lambda number: sent_to_the_program_alone(programs, number, STUBBORN), OTHERS))
    typed_at_the_terminal(programs, b"\x03", signal.SIGINT)
    closed_terminal(programs)
    ignored_from_the_start(programs)
    sigchld_ignored_from_the_start(programs)
    print("23 runs, no fault")


if __name__ == "__main__":
    with stages.scratch_directory():
        main()
