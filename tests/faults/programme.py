"""What the fault programme consists of: rows, what a row is given, and what it gives.

A module named *_rows.py takes part by defining

    ROWS: list[Row]             what it tries, in the order of the table
    SELF_TESTS: list[SelfTest]  damage that it plants, to show that its checks see it
"""

import contextlib
import dataclasses
import pathlib
import random
import subprocess
import tempfile
import time
from collections.abc import Callable, Iterator

ROOT = pathlib.Path(__file__).resolve().parents[2]

DAMAGES = {
    "lost": "an item stands whole neither at its old nor at its new place",
    "half_named": "a final name holds less than the whole item, or a leftover stays",
    "escaped": "something outside of what was granted was changed or read",
    "blocked": "the program did not come to its end, or failed where it had to succeed",
}


class NotHere(Exception):
    """Why a row cannot be tried on this machine."""


@dataclasses.dataclass
class Result:
    """What came of one row. Every damage is counted once, by its worst kind."""

    name: str
    what: str
    tried: int = 0
    lost: int = 0
    half_named: int = 0
    escaped: int = 0
    blocked: int = 0
    skipped: str = ""  # why it was not tried; "" when it was
    is_broken: bool = False  # whether the row itself went wrong, which is no success
    notes: list[str] = dataclasses.field(default_factory=list)  # what stands below the table

    def damage(self, kind: str, message: str) -> None:
        """Counts a damage, of a kind that DAMAGES names, and says on standard output what it is."""
        assert kind in DAMAGES, kind
        setattr(self, kind, getattr(self, kind) + 1)
        print(f"    {kind}: {message}", flush=True)

    def note(self, text: str) -> None:
        """Says something that a reader of the table has to know; a sentence, once."""
        if text not in self.notes:
            self.notes.append(text)

    @property
    def damages(self) -> int:
        return sum(getattr(self, kind) for kind in DAMAGES)


class Context:
    """What a row works with."""

    def __init__(self, build: pathlib.Path, times: int, seed: int, is_quick: bool,
                 minutes: float = 1e6):
        self.build = build  # the build folder
        self.times = times  # how often the row is to try its fault, about
        self.seed = seed  # what `random` started with, to be said with each damage
        self.is_quick = is_quick  # whether this is the part for every day
        self.random = random.Random(seed)
        self.end = time.monotonic() + 60 * minutes

    def has_time(self) -> bool:
        """Whether a row that tries its fault many times is to go on."""
        return time.monotonic() < self.end

    def program(self, name: str) -> str:
        """The path of a program of the tests, which has to be built."""
        path = self.build / "tests" / name
        if not path.exists():
            raise NotHere(f"{name} is not built")
        return str(path)

    @contextlib.contextmanager
    def scratch(self, parent: str | None = None) -> Iterator[str]:
        """A folder that goes with all that is in it, also what is immutable or has no rights."""
        folder = tempfile.mkdtemp(prefix="tavrin-faults-", dir=parent)
        try:
            yield folder
        finally:
            remove_whole(folder)


def remove_whole(folder: str) -> None:
    """Removes a folder, whatever rights it has and however deep it is."""
    if subprocess.run(["rm", "-rf", folder], stderr=subprocess.DEVNULL).returncode != 0:
        subprocess.run(["chmod", "-R", "u+rwX", folder], stderr=subprocess.DEVNULL)
        subprocess.run(["rm", "-rf", folder], check=True)


@dataclasses.dataclass(frozen=True)
class Row:
    """One line of the table."""

    name: str  # the fault: "SIGKILL during a copy"
    what: str  # one sentence: what is done and what is looked at
    full: int  # how often it is tried in the whole programme
    quick: int  # how often in the part for every day; 0: not there
    run: Callable[[Context, Result], None]  # counts in Result.tried what it really tried
    is_for_sanitizers: bool = True  # whether it makes sense with an instrumented build


@dataclasses.dataclass(frozen=True)
class SelfTest:
    """Damage that is planted. `run` raises AssertionError when the check does not see it."""

    name: str
    run: Callable[[Context], None]
