"""The part "memory": what the engine's process grows by over trees of a million entries."""

import json
import os
import subprocess
import tempfile
from pathlib import Path

from measuring.build import ENGINE, build
from measuring.places import file_system, plain_folder, reason_to_skip

TARGET = 64 << 20
OPERATIONS = ("copy", "move across", "remove")
# A file in memory needs about a kibibyte and a half, and there are two of each.
ROOM = 8 << 30


def _make_files(folder, count):
    handle = os.open(folder, os.O_RDONLY)
    for number in range(count):
        os.close(os.open(f"a file of number {number:07}", os.O_CREAT | os.O_WRONLY, dir_fd=handle))
    os.close(handle)


def make_wide(path, count):
    """As many folders as files in each."""
    side = round(count ** 0.5)
    for number in range(side):
        folder = path / f"folder {number:04}"
        folder.mkdir(parents=True)
        _make_files(folder, side)


def make_flat(path, count):
    """One folder of files."""
    path.mkdir()
    _make_files(path, count)


def make_many_folders(path, count):
    """One folder of empty folders."""
    path.mkdir()
    for number in range(count):
        os.mkdir(path / f"a folder of number {number:07}")


def make_linked_pairs(path, count):
    """Files with two names each, in two folders far from each other."""
    side = round((count / 2) ** 0.5)
    for number in range(side):
        for half in ("one", "other"):
            (path / half / f"folder {number:04}").mkdir(parents=True)
        _make_files(path / "one" / f"folder {number:04}", side)
        for name in os.listdir(path / "one" / f"folder {number:04}"):
            os.link(path / "one" / f"folder {number:04}" / name,
                    path / "other" / f"folder {number:04}" / name)


def make_deep(path, count):
    """Folders in each other, each with a file and a folder beside: as deep as paths never are."""
    depth = min(count // 3, 20_000)
    path.mkdir()
    handle = os.open(path, os.O_RDONLY)
    for _ in range(depth):
        os.close(os.open("file", os.O_CREAT | os.O_WRONLY, dir_fd=handle))
        os.mkdir("beside", dir_fd=handle)
        os.mkdir("down", dir_fd=handle)
        deeper = os.open("down", os.O_RDONLY, dir_fd=handle)
        os.close(handle)
        handle = deeper
    os.close(handle)


SHAPES = {
    "folders of as many files as there are folders": make_wide,
    "one folder of files": make_flat,
    "one folder of folders": make_many_folders,
    "pairs of hard links": make_linked_pairs,
    "folders in each other, at most 20,000 deep": make_deep,
}


class Memory:
    """Copies, moves and removes trees of each shape, and keeps the peaks."""

    def __init__(self, options, report):
        self._count = 20_000 if options.quick else 1_000_000
        self._base = options.folder
        self._path = report / "memory.json"
        self._growth = {}
        # The engine's folder of records.
        self._data = None

    def measure(self):
        """All shapes: in memory where that can be mounted, else in a folder of the disk. Returns
        whether all could be measured.
        """
        build("file-engine")
        with tempfile.TemporaryDirectory() as data:
            self._data = data
            idle = min(self._peak("recover") for _ in range(3))
            print(f"idle {idle / 2**20:.1f} MiB; targets {TARGET / 2**20:.0f} MiB more at most")
            for title, make in SHAPES.items():
                self._keep(title, make, idle)
        return len(self._growth) == len(SHAPES)

    def _keep(self, title, make, idle):
        """Measures a shape. One that fails does not keep others from being measured."""
        try:
            with self._places() as here, self._places() as there:
                peaks = self._measure_shape(make, here.folder, there.folder)
        except (OSError, subprocess.CalledProcessError) as error:
            print(f"{title}: FAILED: {error}", flush=True)
            return
        self._growth[title] = {name: peak - idle for name, peak in peaks.items()}
        print(f"{title}: {_growth_in_words(self._growth[title])}", flush=True)
        self._path.write_text(json.dumps(
            {"count": self._count, "idle": idle, "growth": self._growth}, indent=1) + "\n")

    def _places(self):
        if reason_to_skip("tmpfs") is None:
            return file_system("tmpfs", self._base, ROOM)
        return plain_folder(self._base)

    def _measure_shape(self, make, here, there):
        """The peaks of each operation, in bytes. The moves need two file systems."""
        make(here / "tree", self._count)
        peaks = {"copy": self._peak("copy", here / "tree", here / "copy")}
        peaks["remove"] = self._peak("remove", here / "copy")
        if os.stat(here).st_dev != os.stat(there).st_dev:
            peaks["move across"] = self._peak("move", here / "tree", there / "tree")
        return peaks

    def _peak(self, *words):
        done = subprocess.run([ENGINE, "--data", self._data, "--peak", *words],
                              stdout=subprocess.PIPE, check=True)
        return int(done.stdout) * 1024


def _growth_in_words(growth):
    return ", ".join(f"{name} {_cell(growth, name)}" for name in OPERATIONS)


def _cell(growth, name):
    if name not in growth:
        return "not measured: no second file system"
    verdict = "met" if growth[name] <= TARGET else "missed"
    return f"{growth[name] / 2**20:.1f} MiB ({verdict})"


def words(report):
    """The part of the report, from what was measured last; nothing when there is none."""
    path = Path(report) / "memory.json"
    if not path.exists():
        return ""
    content = json.loads(path.read_text())
    rows = "\n".join(f"| {title} | " + " | ".join(_cell(growth, name) for name in OPERATIONS) + " |"
                     for title, growth in content["growth"].items())
    return f"""## Memory

What the peak of the engine's process is above that of an idle one, which is
{content['idle'] / 2**20:.1f} MiB, for {content['count']:,} entries.
The target is {TARGET / 2**20:.0f} MiB.

| tree | {' | '.join(OPERATIONS)} |
|---|--:|--:|--:|
{rows}
"""
