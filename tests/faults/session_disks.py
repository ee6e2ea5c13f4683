"""Small file systems for the host's own folders, which can be filled or made read-only."""

import contextlib
import errno
import os
import subprocess

from host_world import World, tools
from programme import NotHere

PLACES = ("config", "data", "runtime")
SIZE = "24m"


def mount(place, options=f"size={SIZE},mode=700"):
    done = subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tavrin-faults", place],
                          capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise NotHere(f"no file system can be mounted here: {done.stderr.strip()}")


def unmount(place):
    # Programs that are ended soon may still be in it.
    subprocess.run(["umount", "-l", place], check=False)


def small_world(context, result):
    class SmallSession(tools().Session):
        """A session whose own folders are small file systems."""

        def _make_folders(self):
            super()._make_folders()
            for name in PLACES:
                mount(self.folder / name)
                self._cleanup.callback(unmount, self.folder / name)

    return World(context, result, SmallSession)


def fill(place):
    """Takes all the room of a file system, to the last byte."""
    ballast = os.path.join(place, "ballast")
    with open(ballast, "wb", buffering=0) as file:
        size = 1 << 20
        while size:
            try:
                file.write(bytes(size))
            except OSError:
                size //= 2
    return ballast


@contextlib.contextmanager
def full(place):
    ballast = fill(place)
    try:
        yield
    finally:
        os.unlink(ballast)


@contextlib.contextmanager
def read_only(places):
    """Whoever has a file open for writing loses it."""
    for place in places:
        subprocess.run(["mount", "-o", "bind", place, place], check=True)
        subprocess.run(["mount", "-o", "remount,bind,ro", place], check=True)
    try:
        yield
    finally:
        for place in places:
            unmount(place)


# What the faults have to be.

def fails_with(number, action):
    try:
        action()
    except OSError as error:
        return error.errno == number
    return False


def expect_full(context):
    with context.scratch() as folder:
        mount(folder)
        try:
            with full(folder):
                with open(os.path.join(folder, "one"), "wb", buffering=0) as file:
                    assert fails_with(errno.ENOSPC, lambda: file.write(b"1")), "there is room"
            with read_only([folder]):
                assert fails_with(errno.EROFS, lambda: os.mkdir(f"{folder}/new")), "it can change"
            os.mkdir(f"{folder}/new")
        finally:
            unmount(folder)
