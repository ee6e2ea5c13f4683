"""Small file systems that are full, or whose user has no more to use. They need root."""

import contextlib
import os
import re
import subprocess
from collections.abc import Iterator

from programme import Context, NotHere


def ensure_root() -> None:
    if os.geteuid() != 0:
        raise NotHere("needs root, to mount")


def run(*command: str) -> str:
    """Runs a program of the system; NotHere when it is not there or cannot do it."""
    try:
        done = subprocess.run(command, capture_output=True, text=True, check=True)
    except FileNotFoundError as error:
        raise NotHere(f"{command[0]} is not installed") from error
    except subprocess.CalledProcessError as error:
        cause = (error.stderr or error.stdout).strip().splitlines()
        raise NotHere(f"{' '.join(command[:3])}...: {cause[0] if cause else error}") from error
    return done.stdout


@contextlib.contextmanager
def mounted(folder: str, *options: str) -> Iterator[str]:
    """Mounts something on a new folder."""
    ensure_root()
    os.mkdir(folder)
    run("mount", *options, folder)
    try:
        yield folder
    finally:
        subprocess.run(["umount", "-l", folder], check=True)


@contextlib.contextmanager
def image(context: Context, size: str, *make: str) -> Iterator[str]:
    """A file system in a file, mounted."""
    ensure_root()
    with context.scratch() as folder:
        run("truncate", "-s", size, f"{folder}/image")
        run(*make, f"{folder}/image")
        with mounted(f"{folder}/disk", "-o", "loop", f"{folder}/image") as path:
            yield path


class MemoryDisk:
    """tmpfs, made as small as it has to be."""

    kind = "tmpfs"
    step = 4096

    def __init__(self, path: str):
        self.path = path

    def leave_free(self, size: int) -> None:
        status = os.statvfs(self.path)
        used = (status.f_blocks - status.f_bfree) * status.f_frsize
        run("mount", "-o", f"remount,size={used + size}", self.path)

    def make_room(self) -> None:
        run("mount", "-o", "remount,size=256m", self.path)


class CountedDisk(MemoryDisk):
    """tmpfs that has room for so many items; here a size is their number."""

    kind = "tmpfs, by the number of items"
    step = 1

    def leave_free(self, size: int) -> None:
        status = os.statvfs(self.path)
        used = status.f_files - status.f_ffree
        run("mount", "-o", f"remount,nr_inodes={used + size}", self.path)

    def make_room(self) -> None:
        run("mount", "-o", "remount,nr_inodes=100000", self.path)


class FilledDisk:
    """A file system with a file that takes all the room but so much."""

    kind = "ext4"
    step = 4096

    def __init__(self, path: str):
        self.path, self.filler = path, f"{path}/filler"

    def leave_free(self, size: int) -> None:
        self.make_room()
        os.sync()
        status = os.statvfs(self.path)
        room = status.f_bavail * status.f_frsize - size
        descriptor = os.open(self.filler, os.O_WRONLY | os.O_CREAT, 0o600)
        while room > 0:
            try:
                os.posix_fallocate(descriptor, 0, room)
                break
            except OSError:  # what describes the file takes some room too
                room -= status.f_frsize
        os.close(descriptor)

    def make_room(self) -> None:
        with contextlib.suppress(FileNotFoundError):
            os.unlink(self.filler)


class QuotaDisk:
    """A subvolume of btrfs with a quota."""

    kind = "btrfs with a quota"
    step = 16384

    def __init__(self, top: str):
        self.top, self.path = top, f"{top}/volume"
        run("btrfs", "quota", "enable", top)
        run("btrfs", "subvolume", "create", self.path)
        self.group = "0/" + run("btrfs", "inspect-internal", "rootid", self.path).strip()

    def used(self) -> int:
        run("sync", "-f", self.top)
        shown = run("btrfs", "qgroup", "show", "--raw", self.top)
        found = re.search(rf"^{self.group}\s+(\d+)", shown, re.MULTILINE)
        if not found:
            raise NotHere("btrfs shows no quota")
        return int(found[1])

    def leave_free(self, size: int) -> None:
        run("btrfs", "qgroup", "limit", str(self.used() + size), self.group, self.top)

    def make_room(self) -> None:
        run("btrfs", "qgroup", "limit", "none", self.group, self.top)


@contextlib.contextmanager
def memory_disk(context: Context, kind=MemoryDisk) -> Iterator[MemoryDisk]:
    with context.scratch() as folder:
        with mounted(f"{folder}/disk", "-t", "tmpfs", "-o", "size=256m", "tmpfs") as path:
            with open(f"{path}/first", "wb") as file:  # no room at all would mean no end of it
                file.write(b"x")
            yield kind(path)


def counted_disk(context: Context):
    return memory_disk(context, CountedDisk)


@contextlib.contextmanager
def filled_disk(context: Context) -> Iterator[FilledDisk]:
    with image(context, "12M", "mkfs.ext4", "-q", "-m", "0", "-b", "1024", "-N", "4096") as path:
        yield FilledDisk(path)


@contextlib.contextmanager
def quota_disk(context: Context) -> Iterator[QuotaDisk]:
    with image(context, "160M", "mkfs.btrfs", "-q") as path:
        yield QuotaDisk(path)
