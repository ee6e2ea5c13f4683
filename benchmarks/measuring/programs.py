"""The file engine and the programs that a user would use instead, as command lines."""

import os
import subprocess
import time

from measuring.build import BENCHMARKS, ENGINE
from measuring.items import Item


class Program:
    """A program that copies, moves or removes items. What it cannot do it has no command for."""

    # As the tables call it.
    name = ""
    # In which a few runs have to do, because each takes long.
    slow_operations = ()
    # What the program keeps of an item, as the options of rsync that compare the copy with it.
    keeps = "-aHAX"

    def copy(self, item, source, target):
        """The words of a copy of an item (see items.py) to a name that is free, or nothing."""

    def move(self, item, source, target, is_across):
        """The words of a move to a name that is free, to another file system or within one."""

    def remove(self, item, target):
        """The words of a removal."""

    def command(self, operation, item, source, target):
        """The words of "copy", "move", "across" (a move to another file system) or "remove"."""
        if operation == "remove":
            return self.remove(item, target)
        if operation == "copy":
            return self.copy(item, source, target)
        return self.move(item, source, target, operation == "across")

    def can(self, operation, item):
        """Whether there is a command for the operation."""
        return self.command(operation, item, "source", "target") is not None

    def warm_up(self):
        """Has the program and its libraries in memory: a run that does nothing."""
        item = Item("", "", lambda path: None, is_tree=False)
        words = self.command("copy", item, "source", "target")
        subprocess.run([words[0], "--version"], stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)

    def carry_out(self, operation, item, source, target):
        """Does the operation, which has to succeed; its seconds, with the program's start."""
        return run(self.command(operation, item, source, target))


class Tavrin(Program):
    name = "Tavrin"

    def __init__(self, data, workers=None):
        self._words = [ENGINE, "--data", data, *(["--workers", str(workers)] if workers else [])]

    def copy(self, item, source, target):
        return [*self._words, "copy", source, target]

    def move(self, item, source, target, is_across):
        return [*self._words, "move", source, target]

    def remove(self, item, target):
        return [*self._words, "remove", target]


class Coreutils(Program):
    name = "cp -a, mv, rm -rf"

    def copy(self, item, source, target):
        return ["cp", "-a", "--", source, target]

    def move(self, item, source, target, is_across):
        return ["mv", "--", source, target]

    def remove(self, item, target):
        return ["rm", "-rf", "--", target]


class DurableMove(Program):
    """What a user types who wants the copy on the disk before the source goes."""

    name = "cp -a, sync, rm -rf"

    def move(self, item, source, target, is_across):
        if not is_across:
            return None
        return ["sh", "-c", 'cp -a -- "$1" "$2" && sync -f "$2" && rm -rf -- "$1"', "sh", source,
                target]


class Rsync(Program):
    name = "rsync -aHAX"
    slow_operations = ("copy",)

    def copy(self, item, source, target):
        options = "-aHAXS" if item.is_sparse else "-aHAX"
        end = "/" if item.is_tree else ""
        return ["rsync", options, "--", f"{source}{end}", f"{target}{end}"]


class Gio(Program):
    """Copies and removes no folder that has something in it, and fills holes."""

    name = "gio"

    def copy(self, item, source, target):
        if item.is_tree or item.is_sparse:
            return None
        return ["gio", "copy", "-T", "--preserve", source, target]

    def move(self, item, source, target, is_across):
        if item.is_tree and is_across:
            return None
        return ["gio", "move", "-T", source, target]

    def remove(self, item, target):
        return None if item.is_tree else ["gio", "remove", target]


class PlainFilesystem(Program):
    """Copies bytes, modes and links, and fills holes."""

    name = "std::filesystem"
    slow_operations = ("copy",)
    keeps = "-rlp"

    def copy(self, item, source, target):
        if item.is_sparse:
            return None
        return [BENCHMARKS / "plain-filesystem", "copy", source, target]

    def move(self, item, source, target, is_across):
        if is_across:
            return None
        return [BENCHMARKS / "plain-filesystem", "move", source, target]

    def remove(self, item, target):
        return [BENCHMARKS / "plain-filesystem", "remove", target]


def run(words):
    """Runs a command line that has to succeed; its seconds, with the program's start."""
    start = time.perf_counter()
    done = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, check=False)
    seconds = time.perf_counter() - start
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(os.fsdecode, words))}: {done.stderr.decode().strip()}")
    return seconds
