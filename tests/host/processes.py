"""Ends processes, however they have got into the world."""

import contextlib
import ctypes
import os
import signal
import subprocess

_libc = ctypes.CDLL(None)


def end_with_parent():
    """Lets a killed test take its programs with it."""
    set_parent_death_signal = 1
    _libc.prctl(set_parent_death_signal, signal.SIGKILL)


def end_process(process):
    """Ends a process that is no child; true when it was still there."""
    with contextlib.suppress(ProcessLookupError):
        os.kill(process, signal.SIGKILL)
        return True
    return False


def end_program(program):
    """Ends a program in an orderly way, and in the other way when that does not help."""
    if program.poll() is None:
        program.terminate()
        try:
            program.wait(10)
        except subprocess.TimeoutExpired:
            program.kill()
    program.wait(10)
