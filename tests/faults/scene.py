"""Where an operation takes place, and what must hold there afterwards whatever happened."""

import contextlib
import os
import pathlib
import subprocess

from engine import Engine, Outcome
from manifest import damage_in_rest, differences, leftovers_in, manifest_of
from programme import Context, NotHere
from trees import copy_of

OTHER_FILE_SYSTEM = "/dev/shm"


@contextlib.contextmanager
def two_file_systems(context: Context):
    """A folder each on two file systems, and the engine with its records on the first."""
    with context.scratch() as near, context.scratch(OTHER_FILE_SYSTEM) as far:
        if os.stat(near).st_dev == os.stat(far).st_dev:
            raise NotHere(f"{near} and {OTHER_FILE_SYSTEM} are one file system")
        os.makedirs(f"{near}/work")
        yield f"{near}/work", far, Engine(context.program("file-engine"), f"{near}/data")


class Scene:
    """A tree at near/tree, its destination far/tree, and things beside both that stay as they are.

    `near` and `far` are existing, empty folders; `build` makes a tree at a path.
    """

    def __init__(self, near: str, far: str, engine: Engine, build, result):
        self.source, self.destination = f"{near}/tree", f"{far}/tree"
        self.near, self.far, self.engine, self.result = near, far, engine, result
        self.master = f"{near}/master"
        build(self.master)
        for folder in (near, far):
            os.mkdir(f"{folder}/bystander")
            pathlib.Path(f"{folder}/bystander/file").write_text("stays")
        self.bystanders = self.take_bystanders()
        self.stand_up()
        self.whole = manifest_of(self.source)

    def stand_up(self) -> None:
        """Puts the tree where an operation finds it, and away what the last one has left."""
        if os.path.lexists(self.destination):
            subprocess.run(["rm", "-rf", self.destination], check=True)
        if os.path.lexists(self.source):
            subprocess.run(["rm", "-rf", self.source], check=True)
        copy_of(self.master, self.source)

    def take_bystanders(self) -> list:
        return [manifest_of(f"{folder}/bystander") for folder in (self.near, self.far)]

    def damage(self, kind: str, what: str, lines: list[str]) -> None:
        more = f" and {len(lines) - 2} more" if len(lines) > 2 else ""
        self.result.damage(kind, f"{what}: {'; '.join(lines[:2])}{more}")

    def run(self, operation: str, **options) -> Outcome:
        """Runs the operation on the tree."""
        return self.engine.run(*self.words(operation), **options)

    def words(self, operation: str) -> list[str]:
        places = {"copy": [self.source, self.destination], "move": [self.source, self.destination],
                  "remove": [self.source]}
        return [operation, *places[operation]]

    def check(self, operation: str, outcome: Outcome, about: str,
              may_be_left: bool = False) -> None:
        """Looks at everything. `about` says which fault it was; `may_be_left`, that a part of a
        copy may stand until the next start clears it."""
        if outcome.is_blocked or outcome.has_crashed:
            self.damage("blocked", about, [f"it ended with {outcome.code}", outcome.errors])
        if may_be_left or outcome.was_killed or outcome.is_blocked:
            self.recover(about)
        self.check_leftovers(about)
        {"copy": self.check_copy, "move": self.check_move,
         "remove": self.check_removal}[operation](outcome, about)
        for before, after in zip(self.bystanders, self.take_bystanders()):
            if changes := differences(before, after):
                self.damage("escaped", about, changes)

    def recover(self, about: str) -> None:
        outcome = self.engine.recover()
        if not outcome.is_done:
            self.damage("half_named", about, ["leftovers are not cleared", outcome.errors])

    def check_leftovers(self, about: str) -> None:
        left = leftovers_in(self.near) + leftovers_in(self.far) + self.engine.records()
        if left:
            self.damage("half_named", about, [f"{path} is left" for path in left])

    def check_copy(self, outcome: Outcome, about: str) -> None:
        if changes := differences(self.whole, manifest_of(self.source)):
            self.damage("lost", f"{about}: the source", changes)
        copy = manifest_of(self.destination)
        if copy and (changes := differences(self.whole, copy)):
            self.damage("half_named", about, changes)
        elif outcome.is_done and not copy:
            self.damage("lost", about, ["it is said to be copied, and is not there"])
        elif copy and outcome.code == 1:
            self.damage("half_named", about, ["it is said to have failed, and has its name"])

    def check_move(self, outcome: Outcome, about: str) -> None:
        old, new = manifest_of(self.source), manifest_of(self.destination)
        missing = differences(self.whole, new)
        if new and missing:
            self.damage("half_named", about, missing)
        if missing and (changes := differences(self.whole, old)):
            self.damage("lost", about, changes)
        elif not missing and old and (changes := damage_in_rest(self.whole, old)):
            self.damage("lost", f"{about}: the rest of the source", changes)
        if outcome.is_done and (old or not new):
            self.damage("half_named", about, ["it is said to be moved, and is not"])

    def check_removal(self, outcome: Outcome, about: str) -> None:
        rest = manifest_of(self.source)
        if changes := damage_in_rest(self.whole, rest):
            self.damage("lost", about, changes)
        if outcome.is_done and rest:
            self.damage("half_named", about, ["it is said to be removed, and is not"])
