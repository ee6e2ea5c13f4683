"""A tree whose items somebody else deletes, renames, truncates and makes longer meanwhile.

What is in a file follows from its name at the start and the position, so that each piece of it
tells what it is of: a copy may hold more or less of it, and nothing that was never there.
"""

import contextlib
import dataclasses
import hashlib
import os
import random

LARGEST = 400_000
FOLDERS = ("", "a", "b", "b/c")


def stream_of(identity: int, size: int) -> bytes:
    """The first bytes of the file with that number; they begin with the number."""
    head = f"{identity:08}".encode()
    return head + hashlib.shake_128(head).digest(max(size - len(head), 0))


STREAMS: dict[int, bytes] = {}


def stream(identity: int) -> bytes:
    if identity not in STREAMS:
        STREAMS[identity] = stream_of(identity, LARGEST * 2)
    return STREAMS[identity]


@dataclasses.dataclass
class Shifting:
    """One file: where it is in the tree and how long, as far as the attacker knows."""

    identity: int
    path: str
    size: int
    other_size: int | None = None  # when it cannot be known whether the last change counts

    def is_among(self, sizes: set[int]) -> bool:
        return self.size in sizes or self.other_size in sizes


class ShiftingTree:
    """Made at a path; `strike` changes something in it."""

    def __init__(self, root: str, chance: random.Random, files: int = 24):
        self.root, self.chance = root, chance
        self.left_alone: list[Shifting] = []
        self.strikes = 0
        for folder in FOLDERS:
            os.makedirs(f"{root}/{folder}", exist_ok=True)
        self.files = []
        for identity in range(files):
            size = chance.choice((8, 5000, 70_000, LARGEST))
            file = Shifting(identity, f"{chance.choice(FOLDERS)}/file {identity}", size)
            with open(root + "/" + file.path, "wb") as output:
                output.write(stream(identity)[:size])
            self.files.append(file)

    def strike(self) -> None:
        """One change at random. An item that the operation has taken away is not there for it."""
        if not self.files:
            return
        file = self.chance.choice(self.files)
        kind = self.chance.choice((self.delete, self.rename, self.rename, self.shorten, self.grow))
        with contextlib.suppress(FileNotFoundError):
            kind(file)
            self.strikes += 1

    def delete(self, file: Shifting) -> None:
        os.unlink(f"{self.root}/{file.path}")
        self.files.remove(file)

    def rename(self, file: Shifting) -> None:
        path = f"{self.chance.choice(FOLDERS)}/file {file.identity}.{self.strikes}"
        os.rename(f"{self.root}/{file.path}", f"{self.root}/{path}")
        file.path = path

    def shorten(self, file: Shifting) -> None:
        size = max(8, file.size // 2)
        os.truncate(f"{self.root}/{file.path}", size)
        file.size = size

    def grow(self, file: Shifting) -> None:
        more = stream(file.identity)[file.size:min(file.size + 3000, LARGEST * 2)]
        descriptor = os.open(f"{self.root}/{file.path}", os.O_WRONLY | os.O_APPEND)
        try:
            os.write(descriptor, more)
            # What is written to a file that has lost its name meanwhile no program could keep.
            if os.path.exists(f"{self.root}/{file.path}"):
                file.size += len(more)
            else:
                file.other_size = file.size + len(more)
                self.files.remove(file)
                self.left_alone.append(file)
        finally:
            os.close(descriptor)


def where_wrong(identity: int | None, contents: bytes) -> str:
    """The part of a file that it never had."""
    if identity is None:
        return ""
    right = stream(identity)
    wrong = [at for at in range(len(contents)) if contents[at] != right[at]]
    kind = "zeros" if not any(contents[at] for at in wrong) else "others"
    return f", of which {wrong[0]} to {wrong[-1]} are {kind}"


def found_in(root: str) -> tuple[dict[int, set[int]], list[str]]:
    """The lengths of the pieces of each file, and the paths that hold what never was."""
    sizes: dict[int, set[int]] = {}
    wrong = []
    for folder, _, names in os.walk(root):
        for name in names:
            path = f"{folder}/{name}"
            with open(path, "rb") as file:
                contents = file.read()
            head = contents[:8]
            identity = int(head) if len(head) == 8 and head.isdigit() else None
            if identity is None or contents != stream(identity)[:len(contents)]:
                wrong.append(f"{path} ({len(contents)} bytes{where_wrong(identity, contents)})")
                continue
            sizes.setdefault(identity, set()).add(len(contents))
    return sizes, wrong
