"""What stands in a tree, item by item, and how two trees differ. Knows nothing of the engine."""

import contextlib
import dataclasses
import hashlib
import os
import stat
from collections.abc import Iterator

LONGEST_KEY = 4096


@dataclasses.dataclass(frozen=True)
class Item:
    """All of an item that a copy has to keep."""

    mode: int
    owner: tuple[int, int]
    modified: int  # nanoseconds
    size: int  # bytes of a file, else 0
    device: int
    contents: bytes  # the hash of a file's, the target of a link
    attributes: tuple[tuple[str, bytes], ...]  # with the access control lists
    twin: bytes  # the first path of the same file, for one with several names; else b""

    @property
    def is_folder(self) -> bool:
        return stat.S_ISDIR(self.mode)


Manifest = dict[bytes, Item]  # by path relative to the tree, b"" for itself


def key_of(folder: bytes, name: bytes) -> bytes:
    """The path of an item; of a very deep one its hash, since its length would grow without end."""
    key = folder + b"/" + name
    return key if len(key) <= LONGEST_KEY else b"~" + hashlib.sha1(key).hexdigest().encode()


def attributes_of(path: str) -> tuple[tuple[str, bytes], ...]:
    names = sorted(os.listxattr(path, follow_symlinks=False))
    return tuple((name, os.getxattr(path, name, follow_symlinks=False)) for name in names)


def contents_of(folder: int, name: bytes, mode: int) -> bytes:
    if stat.S_ISLNK(mode):
        return os.readlink(name, dir_fd=folder)
    if not stat.S_ISREG(mode):
        return b""
    digest = hashlib.blake2b(digest_size=16)
    with open(os.open(name, os.O_RDONLY | os.O_NOFOLLOW, dir_fd=folder), "rb") as file:
        while block := file.read(1 << 20):
            digest.update(block)
    return digest.digest()


class Walk:
    """Goes through a tree by handles, so that no depth and no name is too much."""

    def __init__(self):
        self.items: Manifest = {}
        self.first_names: dict[tuple[int, int], bytes] = {}

    def take(self, root: bytes) -> Manifest:
        parent, name = os.path.split(root)
        folder = os.open(parent or b".", os.O_RDONLY | os.O_DIRECTORY)
        try:
            is_folder = self.describe(folder, name, b"")
        except FileNotFoundError:
            return {}
        if not is_folder:
            os.close(folder)
            return self.items
        levels = [(b"", [name], folder)]
        while levels:
            path, waiting, folder = levels[-1]
            if not waiting:
                os.close(levels.pop()[2])
                continue
            self.enter(levels, path, waiting.pop(), folder)
        return self.items

    def enter(self, levels: list, path: bytes, name: bytes, folder: int) -> None:
        is_root = len(self.items) == 1
        inner = os.open(name, os.O_RDONLY | os.O_DIRECTORY | os.O_NOFOLLOW, dir_fd=folder)
        if not levels[-1][1]:  # a chain of folders takes one handle alone
            os.close(levels.pop()[2])
        key = b"" if is_root else key_of(path, name)
        names = sorted(os.fsencode(entry) for entry in os.listdir(inner))
        waiting = [entry for entry in names if self.describe(inner, entry, key_of(key, entry))]
        levels.append((key, waiting, inner))

    def describe(self, folder: int, name: bytes, key: bytes) -> bool:
        """True for a folder."""
        status = os.stat(name, dir_fd=folder, follow_symlinks=False)
        twin = b""
        if status.st_nlink > 1 and not stat.S_ISDIR(status.st_mode):
            twin = self.first_names.setdefault((status.st_dev, status.st_ino), key)
        self.items[key] = Item(
            mode=status.st_mode,
            owner=(status.st_uid, status.st_gid),
            modified=status.st_mtime_ns,
            size=status.st_size if stat.S_ISREG(status.st_mode) else 0,
            device=status.st_rdev,
            contents=contents_of(folder, name, status.st_mode),
            attributes=attributes_of(f"/proc/self/fd/{folder}/{os.fsdecode(name)}"),
            twin=twin)
        return stat.S_ISDIR(status.st_mode)


def manifest_of(path: str | bytes) -> Manifest:
    """What stands at a path; empty when nothing does."""
    return Walk().take(os.fsencode(path))


def with_lonely_twins_single(items: Manifest) -> Manifest:
    """A file whose other names lie outside of the tree is, in the tree, one with a single name."""
    counts: dict[bytes, int] = {}
    for item in items.values():
        counts[item.twin] = counts.get(item.twin, 0) + 1
    return {key: dataclasses.replace(item, twin=b"") if counts[item.twin] == 1 else item
            for key, item in items.items()}


def differences(expected: Manifest, found: Manifest) -> list[str]:
    """How one tree is not the other: nothing when a copy is whole."""
    expected, found = with_lonely_twins_single(expected), with_lonely_twins_single(found)
    lines = [f"{key!r} is missing" for key in expected.keys() - found.keys()]
    lines += [f"{key!r} is too much" for key in found.keys() - expected.keys()]
    for key in expected.keys() & found.keys():
        lines += fields_that_differ(key, expected[key], found[key])
    return sorted(lines)


def fields_that_differ(key: bytes, expected: Item, found: Item) -> Iterator[str]:
    for field in dataclasses.fields(Item):
        one, other = getattr(expected, field.name), getattr(found, field.name)
        if one != other:
            yield f"{key!r} has {field.name} {other!r} instead of {one!r}"


def damage_in_rest(expected: Manifest, rest: Manifest) -> list[str]:
    """What is wrong with what a broken-off removal has left: what is there must be as it was.

    The time of a folder out of which something went is another one by right.
    """
    lines = [f"{key!r} has come" for key in rest.keys() - expected.keys()]
    for key in rest.keys() & expected.keys():
        found = dataclasses.replace(rest[key], twin=expected[key].twin)
        if found.is_folder:
            found = dataclasses.replace(found, modified=expected[key].modified)
        lines += fields_that_differ(key, expected[key], found)
    return sorted(lines)


def leftovers_in(folder: str) -> list[str]:
    """Names that only a copy in the making has, at any depth that programs go by paths."""
    found = []
    for path, folders, files in os.walk(folder):
        found += [os.path.join(path, name) for name in folders + files
                  if name.startswith(".tavrin-")]
    return found


@contextlib.contextmanager
def unchanged(path: str, result, what: str) -> Iterator[None]:
    """Counts it as escaped when what stands at the path is another thing afterwards."""
    before = manifest_of(path)
    yield
    if changes := differences(before, manifest_of(path)):
        result.damage("escaped", f"{what}: {'; '.join(changes[:3])}")
