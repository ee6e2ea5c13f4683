"""Disks that are full and quotas that are used up, with a little more room each time."""

import contextlib
import pathlib

from disks import counted_disk, filled_disk, memory_disk, quota_disk
from engine import Engine, Outcome
from hiding import HidingScene
from programme import Context, Result, Row, SelfTest
from scene import Scene
from trees import build_one_of_each

FULL = ("No space left", "quota exceeded")
CREATED_SIZE = 150_000


class CreationScene:
    """A file is created: it has all its bytes, or it is not there."""

    def __init__(self, near: str, engine: Engine, result: Result):
        self.file, self.engine, self.result = pathlib.Path(near, "created"), engine, result

    def stand_up(self) -> None:
        self.file.unlink(missing_ok=True)

    def run(self, _: str) -> Outcome:
        return self.engine.run("create", str(self.file), str(CREATED_SIZE))

    def check(self, _: str, outcome: Outcome, about: str) -> None:
        if self.file.exists() != outcome.is_done:
            self.result.damage("half_named", f"{about}: it ended with {outcome.code}")
        if self.file.exists() and self.file.read_bytes() != b"x" * CREATED_SIZE:
            self.result.damage("half_named", f"{about}: {self.file.stat().st_size} bytes")
        left = [path.name for path in self.file.parent.glob(".tavrin-*")]
        if left or self.engine.records():
            self.result.damage("half_named", f"{about}: {left or 'a record'} is left")


def scene_on(disk, operation: str, context: Context, result: Result, folder: str):
    """A scene whose result goes to the disk."""
    engine = Engine(context.program("file-engine"), f"{folder}/data")
    if operation == "create":
        return CreationScene(disk.path, engine, result)
    if operation == "hide":
        return HidingScene(disk.path, engine, result, names=1500)
    return Scene(folder, disk.path, engine, build_one_of_each, result)


def step_through(disk, scene, operation: str, most: int, result: Result) -> bool:
    """Leaves more and more room until the operation is done; false when it never is."""
    for turn in range(most):
        room = turn * disk.step
        disk.make_room()
        scene.stand_up()
        disk.leave_free(room)
        outcome = scene.run(operation)
        disk.make_room()
        scene.check(operation, outcome, f"{operation} with {room} left on {disk.kind}")
        if outcome.is_done:
            return True
        if any(text in outcome.errors for text in FULL):
            result.tried += 1
        else:
            result.note(f"{operation} on {disk.kind} failed with: {outcome.errors}.")
    return False


def fill(make_disk, operations, has_records_on_disk: bool = False):
    def run(context: Context, result: Result) -> None:
        for operation in operations:
            with make_disk(context) as disk, context.scratch() as folder:
                scene = scene_on(disk, operation, context, result, folder)
                if has_records_on_disk:
                    scene.engine = Engine(scene.engine.program, f"{disk.path}/data")
                if context.is_quick:
                    disk.step *= 12
                was_done = step_through(disk, scene, operation, context.times, result)
                if not was_done and not context.is_quick:
                    result.note(f"{operation} had never room enough.")
    return run


def remove_when_full(context: Context, result: Result) -> None:
    for make_disk in (memory_disk, filled_disk, quota_disk):
        with make_disk(context) as disk, context.scratch() as far, context.scratch() as data:
            engine = Engine(context.program("file-engine"), data)
            scene = Scene(disk.path, far, engine, build_one_of_each, result)
            disk.leave_free(0)
            outcome = scene.run("remove")
            result.tried += 1
            if not outcome.is_done:
                result.damage("blocked", f"nothing goes from a full {disk.kind}: {outcome.errors}")
            disk.make_room()
            scene.check("remove", outcome, f"removal on a full {disk.kind}")


MOST = 400
ROWS = [
    Row("A full disk (tmpfs)",
        "A copy, a move, a hiding and the creation of a file, with a page more of room each time "
        "until it is enough.", MOST, 4, fill(memory_disk, ("copy", "move", "hide", "create"))),
    Row("A full disk (ext4)",
        "The same on an ext4 in a file, whose blocks another file takes.", MOST, 3,
        fill(filled_disk, ("copy", "move", "hide", "create"))),
    Row("No room for one more item", "The same by the number of items that tmpfs may hold.",
        MOST, 3, fill(counted_disk, ("copy", "move", "hide", "create"))),
    Row("A full disk that has the records too",
        "The same when the records of unfinished operations stand on the full ext4.", MOST, 0,
        fill(filled_disk, ("copy", "move", "hide"), True)),
    Row("A quota that is used up",
        "The same on btrfs with a quota, which answers EDQUOT.", MOST, 0,
        fill(quota_disk, ("copy", "move", "hide", "create"))),
    Row("A removal on a full disk", "It must succeed on tmpfs, ext4 and btrfs.", 3, 0,
        remove_when_full),
]


def disk_is_full(context: Context) -> None:
    """The disks are as full as they say: a program that ignores the end is found out."""
    for make_disk in (memory_disk, filled_disk, quota_disk):
        with make_disk(context) as disk:
            disk.leave_free(10 * disk.step)
            path = pathlib.Path(disk.path, "too much")
            with contextlib.suppress(OSError):
                with path.open("wb", buffering=0) as file:
                    for _ in range(400):
                        file.write(b"x" * 4096)
            size = path.stat().st_size if path.exists() else 0
            assert 0 < size < 300_000, f"{disk.kind} took {size} bytes"


def half_created_is_seen(context: Context) -> None:
    result = Result("planted", "")
    with context.scratch() as near:
        scene = CreationScene(near, Engine(context.program("file-engine"), f"{near}/data"), result)
        assert scene.run("create").is_done
        scene.check("create", Outcome(0, "", 0), "before the damage")
        assert result.damages == 0
        scene.file.write_bytes(b"x" * 100)
        scene.check("create", Outcome(0, "", 0), "planted")
    assert result.half_named, "a file of too few bytes was not seen"


SELF_TESTS = [
    SelfTest("a disk that is full, a quota that is used up", disk_is_full),
    SelfTest("a file that has not all its bytes", half_created_is_seen),
]
