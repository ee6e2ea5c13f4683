"""The rows of the files' table at one place: how each is measured, and what is expected of it."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

from measuring import pairs
from measuring.items import big_file, program_sources, small_files, sparse_file
from measuring.judges import expect_equal
from measuring.programs import Coreutils, DurableMove, Gio, PlainFilesystem, Rsync
from measuring.results import Row

# Shares of the reference's time that are to be had: by file system and row.
SHARES = {
    ("ext4", "copy-small"): 0.42, ("ext4", "copy-small-cold"): 0.40, ("ext4", "delete-small"): 0.55,
    ("xfs", "copy-small"): 0.48, ("xfs", "delete-small"): 0.80,
    ("btrfs", "copy-small"): 0.72, ("btrfs", "delete-small"): 1.0,
    ("tmpfs", "copy-small"): 0.40,
}
OF_FASTEST_FOR_BIG = 1.05
REFLINK_MILLISECONDS = 50

# In the order in which they are measured: rows of one item follow each other.
ROWS = ("copy-small", "copy-small-cold", "delete-small", "move-small", "copy-sources",
        "delete-sources", "copy-big", "copy-sparse")
ACROSS_ROWS = ("across-small", "across-big")
HOST_ROW = "copy-small-host"
HOST_FILE_SYSTEM = "ext4"
COLD_ROW = "copy-small-cold"
# The only file systems of rows that take long.
ROWS_OF_ONE = {COLD_ROW: "ext4", "delete-sources": "ext4"}


class Scale:
    """How much is measured: all of it, or little that shows that everything can be measured."""

    def __init__(self, is_quick):
        self.image = (4 if is_quick else 32) << 30
        self.items = {item.key: item for item in (
            small_files(5_000 if is_quick else 100_000),
            program_sources("mm" if is_quick else ""),
            big_file((256 << 20) if is_quick else (4 << 30)),
            sparse_file((1 if is_quick else 16) << 30))}
        self.across_small = small_files(5_000 if is_quick else 25_000)
        self.across_big = big_file((128 << 20) if is_quick else (1 << 30))


class FileRows:
    """Measures rows at a place. `ours` is the engine as a program; `runs` says how often
    (see pairs.py). `judged` has the names of the rivals and rows whose copies were
    compared already: ours are at every place, theirs at the first one.
    """

    def __init__(self, place, scale, ours, runs, judged):
        self._place = place
        self._scale = scale
        self._runs = runs
        self._judged = judged
        self._ours = ours
        self._programs = [self._ours, Coreutils(), DurableMove(), Rsync(), Gio(), PlainFilesystem()]
        self._there = place.folder / "there"
        self._there.mkdir()
        self._source = None

    # The rows

    def measure(self, key):
        """One row of `ROWS`."""
        operation, item_key, *more = key.split("-")
        item = self._scale.items[item_key]
        self._make_source(item)
        if operation == "copy":
            row = self._row(key, f"copy of {item.title}{', cold' if more else ''}")
            row.seconds = self._copy(key, item, self._programs, bool(more))
        elif operation == "delete":
            row = self._row(key, f"delete of {item.title}")
            row.seconds = self._delete(item)
        else:
            row = self._row(key, f"move of {item.title} within the file system")
            row.seconds = self._move(item)
            row.note = self._count_renames()
        return row

    def measure_host(self, host):
        """The copy of small files by the running host, asked over the bus."""
        item = self._scale.items["small"]
        self._make_source(item)
        row = self._row(HOST_ROW, f"copy of {item.title}, by the host over the bus")
        row.seconds = self._copy(HOST_ROW, item, [host, Coreutils()], False)
        return row

    def measure_across(self, key, other):
        """One row of `ACROSS_ROWS`: moves to the place `other`."""
        item = self._scale.across_big if key == "across-big" else self._scale.across_small
        self._make_source(item)
        row = self._row(key, f"move of {item.title} to {other.name}")
        row.seconds = self._move_across(key, item, other)
        return row

    def _row(self, key, title):
        row = Row(self._place.name, key, title, share=SHARES.get((self._place.name, key)))
        if key == "copy-big":
            if self._place.has_reflinks:
                row.milliseconds = REFLINK_MILLISECONDS
            else:
                row.of_fastest = OF_FASTEST_FOR_BIG
        return row

    # What they have in common

    def _make_source(self, item):
        """Makes the item that rows work on in the place of the last one, and clears the ground."""
        for left in self._there.iterdir():
            discard(left)
        path = self._place.folder / item.key
        if self._source == path and path.exists():
            return
        if self._source is not None:
            discard(self._source)
            self._place.trim()
        item.make(path)
        self._source = path

    def _measure(self, operation, item, run, programs):
        contenders = [program for program in programs if program.can(operation, item)]
        slow = [program for program in contenders if operation in program.slow_operations]
        return pairs.measure(contenders, slow, self._runs, run)

    def _judge(self, key, item, program, source, target):
        name = (self._place.name if program is self._ours else program.name, key)
        if name in self._judged:
            return
        expect_equal(item, source, target, program.keeps)
        self._judged.add(name)

    # Each operation: makes its ground ready, is timed, and leaves the place as it was

    def _copy(self, key, item, programs, is_cold):
        target = self._there / self._source.name

        def run(program):
            if is_cold:
                self._place.forget_caches()
                program.warm_up()
            else:
                self._place.settle()
            seconds = program.carry_out("copy", item, self._source, target)
            self._judge(key, item, program, self._source, target)
            discard(target)
            return seconds

        return self._measure("copy", item, run, programs)

    def _delete(self, item):
        target = self._there / self._source.name

        def run(program):
            subprocess.run(["cp", "-a", "--", self._source, target], check=True)
            self._place.settle()
            seconds = program.carry_out("remove", item, None, target)
            if os.path.lexists(target):
                raise RuntimeError(f"{program.name} did not remove {target}")
            return seconds

        return self._measure("remove", item, run, self._programs)

    def _move(self, item):
        target = self._there / self._source.name

        def run(program):
            self._place.settle()
            seconds = program.carry_out("move", item, self._source, target)
            target.rename(self._source)
            return seconds

        return self._measure("move", item, run, self._programs)

    def _move_across(self, key, item, other):
        moved = self._there / self._source.name
        target = other.folder / self._source.name

        def run(program):
            subprocess.run(["cp", "-a", "--", self._source, moved], check=True)
            self._place.settle()
            other.settle()
            seconds = program.carry_out("across", item, moved, target)
            if os.path.lexists(moved):
                raise RuntimeError(f"{program.name} left {moved}")
            self._judge(key, item, program, self._source, target)
            discard(target)
            return seconds

        return self._measure("across", item, run, self._programs)

    def _count_renames(self):
        """In words, with how many renames the engine moves the source to another name."""
        if not shutil.which("strace"):
            return "renames not counted: no strace"
        target = self._there / self._source.name
        with tempfile.NamedTemporaryFile("r") as trace:
            words = self._ours.move(None, self._source, target, False)
            subprocess.run(["strace", "-f", "-qq", "-e", "trace=rename,renameat,renameat2",
                            "-o", trace.name, *words], check=True)
            renames = len(trace.readlines())
        target.rename(self._source)
        return f"{renames} rename{'' if renames == 1 else 's'}"


def discard(path):
    """Removes a tree or a file, outside of what is timed."""
    subprocess.run(["rm", "-rf", "--", Path(path)], check=True)
