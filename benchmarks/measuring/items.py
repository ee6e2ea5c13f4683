"""What is copied, moved and removed: trees and files, made the same for every file system."""

import contextlib
import os
import re
import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

from measuring.build import SOURCE_DIR

FILES_IN_A_FOLDER = 100
SMALL = 4096
BLOCK = 1 << 20
# Where the sources are kept from one run to the next, uncompressed.
KEPT_SOURCES = SOURCE_DIR / "build" / "benchmark-data" / "sources.tar"


@dataclass
class Item:
    """`make(path)` makes it at a path that is free."""

    key: str
    title: str
    make: Callable[[Path], None]
    is_tree: bool = True
    is_sparse: bool = False


def small_files(count):
    """A tree of files of 4 KiB, a hundred in each folder."""

    def make(path):
        path.mkdir()
        bytes_of_all = os.urandom(SMALL)
        for number in range(count // FILES_IN_A_FOLDER):
            folder = path / f"folder {number:04}"
            folder.mkdir()
            handle = os.open(folder, os.O_RDONLY)
            for file_number in range(FILES_IN_A_FOLDER):
                file = os.open(f"file {file_number:02}.txt", os.O_CREAT | os.O_WRONLY, 0o644,
                               dir_fd=handle)
                os.write(file, b"%d %d " % (number, file_number) + bytes_of_all[12:])
                os.close(file)
            os.close(handle)

    return Item("small", f"{count:,} files of about 4 KiB", make)


def big_file(size):
    """A file of random bytes that repeat after a mebibyte."""

    def make(path):
        block = os.urandom(BLOCK)
        with open(path, "wb") as file:
            for _ in range(size // BLOCK):
                file.write(block)

    return Item("big", f"a file of {_size(size)}", make, is_tree=False)


def sparse_file(size):
    """A file of holes, with 64 KiB of data in 64 places."""
    places, piece = 64, 1 << 16

    def make(path):
        with open(path, "wb") as file:
            file.truncate(size)
            for place in range(places):
                file.seek(size // places * place)
                file.write(os.urandom(piece))

    return Item("sparse", f"a sparse file of {_size(size)}, {_size(places * piece)} of data", make,
                is_tree=False, is_sparse=True)


def program_sources(part):
    """The sources of a large program, or a folder of them: Linux's from Debian's package, else what
    is installed of headers and shared data.
    """
    if _sources():
        def make(path):
            path.mkdir()
            members = ["--wildcards", f"*/{part}/*"] if part else []
            subprocess.run(["tar", "-xf", KEPT_SOURCES, "-C", path, *members], check=True)
        title = f"the sources of Linux{' in ' + part if part else ''}"
    else:
        def make(path):
            path.mkdir()
            for folder in ("/usr/include", *([] if part else ["/usr/share"])):
                subprocess.run(["cp", "-a", folder, path], check=True)
        title = "/usr/include" + ("" if part else " and /usr/share")
    return Item("sources", title, make)


def _sources():
    """True when the archive is there, or could be fetched now."""
    if KEPT_SOURCES.exists():
        return True
    if not shutil.which("apt-get") or not shutil.which("xz"):
        return False
    KEPT_SOURCES.parent.mkdir(parents=True, exist_ok=True)
    with contextlib.suppress(subprocess.CalledProcessError), \
            tempfile.TemporaryDirectory(dir=KEPT_SOURCES.parent) as folder:
        return _fetch_sources(Path(folder))
    return False


def _fetch_sources(folder):
    found = subprocess.run(["apt-cache", "search", "--names-only", r"^linux-source-[0-9.]+$"],
                           stdout=subprocess.PIPE, check=True).stdout.decode()
    packages = re.findall(r"^(linux-source-[0-9.]+) ", found, re.MULTILINE)
    if not packages:
        return False
    subprocess.run(["apt-get", "download", "-q", packages[-1]], cwd=folder,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    subprocess.run(["dpkg-deb", "-x", next(folder.glob("*.deb")), folder], check=True)
    archive = next(folder.glob("usr/src/*.tar.*"))
    with open(folder / "sources.tar", "wb") as unpacked:
        subprocess.run(["xz", "-dc", archive], stdout=unpacked, check=True)
    (folder / "sources.tar").rename(KEPT_SOURCES)
    return True


def _size(size):
    for unit, name in ((1 << 30, "GiB"), (1 << 20, "MiB"), (1 << 10, "KiB")):
        if size >= unit:
            return f"{size // unit} {name}"
    return f"{size} bytes"
