"""A folder whose items are hidden, and what must hold of its list whatever happened."""

import os
import pathlib

from engine import Engine, Outcome
from trees import write

OLD_LIST = b"an old line\n\ngone long ago\nfile 00003\n"
MODE = 0o640


class HidingScene:
    """`near` is an existing folder, in which one named "folder" is made with so many items."""

    def __init__(self, near: str, engine: Engine, result, names: int):
        self.near, self.source, self.engine, self.result = near, f"{near}/folder", engine, result
        self.list = pathlib.Path(self.source, ".hidden")
        os.mkdir(self.source)
        for number in range(names):
            write(f"{self.source}/file {number:05}", b"")
        self.stand_up()
        self.old = self.list.read_bytes()
        self.run("hide")
        self.new_lines = sorted(self.list.read_bytes().splitlines())
        self.stand_up()

    def stand_up(self) -> None:
        self.list.unlink(missing_ok=True)
        write(str(self.list), OLD_LIST, MODE)

    def words(self, operation: str) -> list[str]:
        return [operation, self.source]

    def run(self, operation: str, **options) -> Outcome:
        return self.engine.run(*self.words(operation), **options)

    def check(self, _: str, outcome: Outcome, about: str, may_be_left: bool = False) -> None:
        """See Scene.check."""
        if outcome.is_blocked or outcome.has_crashed:
            self.result.damage("blocked", f"{about}: it ended with {outcome.code}")
        if may_be_left or outcome.was_killed or outcome.is_blocked:
            if not self.engine.recover().is_done:
                self.result.damage("half_named", f"{about}: leftovers are not cleared")
        left = [name for name in os.listdir(self.source) if name.startswith(".tavrin-")]
        if left or self.engine.records():
            self.result.damage("half_named", f"{about}: {left or 'a record'} is left")
        if self.list.exists():
            self.check_list(outcome, about)
        else:
            self.result.damage("lost", f"{about}: there is no list")

    def is_new_list(self, found: bytes, outcome: Outcome) -> bool:
        """An operation that failed at an item may have hidden those before it."""
        if not found.startswith(self.old) or not found.endswith(b"\n"):
            return False
        lines = sorted(found.splitlines())
        return lines == self.new_lines or (outcome.code == 1 and set(lines) <= set(self.new_lines))

    def check_list(self, outcome: Outcome, about: str) -> None:
        found = self.list.read_bytes()
        if not self.is_new_list(found, outcome) and (found != self.old or outcome.is_done):
            self.result.damage("half_named", f"{about}: the list has {len(found)} bytes")
        if self.list.stat().st_mode & 0o777 != MODE:
            self.result.damage("half_named", f"{about}: the list has lost its mode")
