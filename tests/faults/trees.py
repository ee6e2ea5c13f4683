"""Trees to work on."""

import os
import random
import socket
import stat
import subprocess

YEAR_2001 = 1_000_000_000


def age(root: str) -> None:
    """Gives everything times of the past, in nanoseconds, that a careless copy would not keep."""
    moment = YEAR_2001 * 10**9
    for path, folders, files in os.walk(root, topdown=False):
        for name in [*files, *folders]:
            moment += 1_234_567_891
            os.utime(os.path.join(path, name), ns=(moment, moment), follow_symlinks=False)
    os.utime(root, ns=(moment, moment))


def write(path: str, contents: bytes, mode: int = 0o644) -> None:
    with open(path, "wb") as file:
        file.write(contents)
    os.chmod(path, mode)


def set_attribute(path: str, name: str, value: bytes) -> None:
    """Where the file system has none, the tree has none."""
    try:
        os.setxattr(path, name, value, follow_symlinks=False)
    except OSError:
        pass


def build_many(root: str, folders: int = 8, files: int = 16, step: int = 2500) -> None:
    """A tree with files of many sizes, and a link, a hard link and a file with holes per folder."""
    os.mkdir(root)
    source = random.Random(folders * files)
    for folder in range(folders):
        inner = f"{root}/{folder}" if folder % 3 else f"{root}/{folder}/inner"
        os.makedirs(inner)
        for file in range(files):
            write(f"{inner}/{file}", source.randbytes(file * step + 1), 0o600 | file % 8)
        os.link(f"{inner}/1", f"{root}/twin {folder}")
        os.symlink("1", f"{inner}/link")
        with open(f"{inner}/holes", "wb") as holes:
            holes.seek(200_000)
            holes.write(b"after the hole")
            holes.truncate(400_000)
        set_attribute(f"{inner}/2", "user.note", b"kept")
    age(root)


def build_one_of_each(root: str) -> None:
    """A small tree with an item of every kind that the user may make, for one call at a time."""
    os.mkdir(root)
    os.makedirs(f"{root}/folder/inner")
    os.mkdir(f"{root}/empty", 0o711)
    write(f"{root}/file", b"some bytes", 0o640)
    write(f"{root}/nothing", b"")
    write(f"{root}/folder/larger", random.Random(1).randbytes(300_000))
    write(f"{root}/folder/inner/program", b"#!/bin/sh\n", 0o755)
    os.link(f"{root}/file", f"{root}/folder/twin")
    os.symlink("folder/larger", f"{root}/link")
    os.symlink("/nowhere at all", f"{root}/folder/broken link")
    os.mkfifo(f"{root}/pipe", 0o620)
    with open(f"{root}/folder/holes", "wb") as holes:
        holes.seek(100_000)
        holes.write(b"x")
        holes.truncate(300_000)
    set_attribute(f"{root}/file", "user.note", b"kept")
    set_attribute(f"{root}/folder", "user.note", b"kept too")
    subprocess.run(["setfacl", "-m", "u:1:r", f"{root}/nothing"], check=False)
    age(root)


def build_odd(root: str) -> None:
    """What is rare: sockets, device nodes as root, the longest names, names that are no text."""
    build_one_of_each(root)
    folder = os.open(root, os.O_RDONLY)  # a socket's path must be short
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(f"/proc/self/fd/{folder}/socket")
    os.close(folder)
    if os.geteuid() == 0:
        os.mknod(f"{root}/null", stat.S_IFCHR | 0o666, os.makedev(1, 3))
        os.mknod(f"{root}/disk", stat.S_IFBLK | 0o600, os.makedev(7, 250))
        os.chown(f"{root}/file", 12345, 54321)
        write(f"{root}/set-id", b"x", 0o755)
        os.chown(f"{root}/set-id", 12345, 54321)
        os.chmod(f"{root}/set-id", 0o6755)
    names = [b"n" * 255, b"\xff\xfe no text", b"line\nbreak", b" ", b"-rf", b"'\"`$(x)", b"\\",
             b"\x01\x7f", "é".encode() * 127]
    for name in names:
        os.mkdir(os.fsencode(root) + b"/" + name)
        for inner in names:
            with open(os.fsencode(root) + b"/" + name + b"/" + inner, "wb") as file:
                file.write(inner)
    age(root)


def build_deep(root: str, levels: int) -> None:
    """Folders in each other, with a file in each hundredth and in the innermost."""
    os.mkdir(root)
    folder = os.open(root, os.O_RDONLY)
    for level in range(levels):
        os.mkdir(b"down", dir_fd=folder)
        inner = os.open(b"down", os.O_RDONLY, dir_fd=folder)
        os.close(folder)
        folder = inner
        if level % 100 == 0 or level == levels - 1:
            file = os.open(b"file", os.O_WRONLY | os.O_CREAT, 0o644, dir_fd=folder)
            os.write(file, str(level).encode())
            os.close(file)
    os.close(folder)


def copy_of(master: str, destination: str) -> None:
    """Stands a tree up again as it was, by another program than the engine."""
    subprocess.run(["cp", "-a", master, destination], check=True)
