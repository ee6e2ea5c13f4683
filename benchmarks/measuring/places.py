"""The file systems that are measured: fresh ones in image files, one in memory, or a folder."""

import contextlib
import os
import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

FILE_SYSTEMS = ("ext4", "xfs", "btrfs", "tmpfs")
MEMORY_FOR_TMPFS = 12 << 30
MAKERS = {
    "ext4": ["mkfs.ext4", "-q", "-F", "-E", "lazy_itable_init=0,lazy_journal_init=0"],
    "xfs": ["mkfs.xfs", "-q", "-f"],
    "btrfs": ["mkfs.btrfs", "-q", "-f"],
}


@dataclass
class Place:
    """A folder on a file system of its own; `has_reflinks` tells whether copies may share data."""

    name: str
    folder: Path
    has_reflinks: bool = False

    def settle(self):
        """Has all that was written so far on the disk, so that a run pays for itself alone."""
        subprocess.run(["sync", "-f", self.folder], check=True)

    def forget_caches(self):
        """Has the file systems read everything anew."""
        self.settle()
        Path("/proc/sys/vm/drop_caches").write_text("3")

    def trim(self):
        """Gives the room of what was removed back to the disk; only ever saves room."""
        subprocess.run(["fstrim", self.folder], stderr=subprocess.DEVNULL, check=False)


def reason_to_skip(name):
    """Why a file system cannot be made here; nothing when it can."""
    if os.geteuid() != 0:
        return "mounting it needs root"
    if name == "tmpfs":
        needed, there = MEMORY_FOR_TMPFS / 2**30, _available_memory() / 2**30
        return None if there > needed else f"{needed:.0f} GiB of memory have to be free"
    return None if shutil.which(MAKERS[name][0]) else f"{MAKERS[name][0]} is not installed"


def _available_memory():
    for line in Path("/proc/meminfo").read_text().splitlines():
        if line.startswith("MemAvailable:"):
            return int(line.split()[1]) * 1024
    raise RuntimeError("the system does not say how much memory is free")


def _call(*words):
    return subprocess.run(words, stdout=subprocess.PIPE, check=True).stdout.decode().strip()


def _attach(image):
    """A block device of an image, without a second cache of it where the disk can do that."""
    with contextlib.suppress(subprocess.CalledProcessError):
        return _call("losetup", "--direct-io=on", "--find", "--show", image)
    return _call("losetup", "--find", "--show", image)


@contextlib.contextmanager
def file_system(name, base, size):
    """A fresh file system of so many bytes, its image below `base`; it goes with the context."""
    with contextlib.ExitStack() as cleanup:
        folder = Path(cleanup.enter_context(tempfile.TemporaryDirectory(dir=base)))
        mounted = folder / "mounted"
        mounted.mkdir()
        if name == "tmpfs":
            _call("mount", "-t", "tmpfs", "-o", f"size={size},nr_inodes=0", "tmpfs", mounted)
        else:
            image = folder / "image"
            image.touch()
            os.truncate(image, size)
            _call(*MAKERS[name], image)
            device = _attach(image)
            cleanup.callback(_call, "losetup", "-d", device)
            _call("mount", device, mounted)
        cleanup.callback(_call, "umount", mounted)
        yield Place(name, mounted, has_reflinks(mounted))


@contextlib.contextmanager
def plain_folder(base):
    """A folder for the measurements below `base`, on whatever file system that is."""
    with tempfile.TemporaryDirectory(dir=base) as folder:
        name = _call("stat", "-f", "-c", "%T", folder)
        yield Place(f"{name.replace('/', '-')} (folder)", Path(folder), has_reflinks(Path(folder)))


def has_reflinks(folder):
    """Whether copies of files in the folder may share their data."""
    one, other = folder / "one", folder / "other"
    one.write_bytes(b"x" * 4096)
    done = subprocess.run(["cp", "--reflink=always", one, other], stderr=subprocess.DEVNULL,
                          check=False)
    one.unlink()
    other.unlink(missing_ok=True)
    return done.returncode == 0


def describe_machine(folder):
    """One line on what the numbers were measured on."""
    processor = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo", encoding="utf-8")
                      if line.startswith("model name")), os.uname().machine)
    memory = os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE") / 2**30
    return (f"{len(os.sched_getaffinity(0))} processors ({processor}), {memory:.0f} GiB of memory, "
            f"Linux {os.uname().release}, images on {_call('stat', '-f', '-c', '%T', folder)}")
