"""Whether a copy is one: compared by another program, outside of what is timed."""

import errno
import os
import subprocess


def expect_equal(item, source, target, keeps):
    """Fails when a copy does not have what its program keeps (options of rsync, see programs.py)
    of the source, or more.
    """
    if item.is_sparse:
        _expect_equal_extents(source, target)
        return
    if not item.is_tree:
        subprocess.run(["cmp", "--", source, target], check=True)
    end = "/" if item.is_tree else ""
    contents = ["--checksum", "--delete"] if item.is_tree else ["--size-only"]
    differences = subprocess.run(
        ["rsync", keeps, "--dry-run", "--itemize-changes", *contents, "--", f"{source}{end}",
         f"{target}{end}"], stdout=subprocess.PIPE, check=True).stdout
    if differences:
        raise RuntimeError(f"{target} is no copy of {source}:\n{differences.decode()[:2000]}")


def _extents(file):
    """Where a file has data: pairs of its first byte and the one after its last."""
    end = 0
    while True:
        try:
            start = os.lseek(file, end, os.SEEK_DATA)
        except OSError as error:
            if error.errno == errno.ENXIO:
                return
            raise
        end = os.lseek(file, start, os.SEEK_HOLE)
        yield start, end


def _expect_equal_extents(source, target):
    """The same bytes, wherever one of both has data, and about as little room on the disk."""
    with open(source, "rb") as one, open(target, "rb") as other:
        sizes = [os.fstat(file.fileno()) for file in (one, other)]
        is_equal = sizes[0].st_size == sizes[1].st_size
        is_equal &= sizes[1].st_blocks <= 2 * sizes[0].st_blocks
        for start, end in [*_extents(one.fileno()), *_extents(other.fileno())]:
            length = end - start
            is_equal &= (os.pread(one.fileno(), length, start)
                         == os.pread(other.fileno(), length, start))
    if not is_equal:
        raise RuntimeError(f"{target} is no copy of {source}")
