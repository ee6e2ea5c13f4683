"""Sources that cannot be changed, and sources that somebody else changes meanwhile."""

import os
import pathlib
import random
import subprocess
import time

from disks import ensure_root, mounted, run as run_program
from engine import Engine, Outcome, finish
from manifest import differences, leftovers_in, manifest_of
from programme import Context, Result, Row, SelfTest
from scene import Scene, two_file_systems
from shifting import ShiftingTree, found_in
from trees import build_odd


def read_only(context: Context, result: Result) -> None:
    ensure_root()
    with context.scratch() as near:
        with mounted(f"{near}/disk", "-t", "tmpfs", "tmpfs") as disk, context.scratch() as other:
            engine = Engine(context.program("file-engine"), f"{near}/data")
            scene = Scene(disk, other, engine, build_odd, result)
            run_program("mount", "-o", "remount,ro", disk)
            for operation in ("copy", "move", "remove"):
                outcome = scene.run(operation)
                result.tried += 1
                if outcome.is_done != (operation == "copy"):
                    result.damage("blocked", f"{operation}: {outcome.errors or 'done'}")
                if differences(scene.whole, manifest_of(scene.source)):
                    result.damage("lost", f"{operation} changed what is read-only")
                scene.check(operation, outcome, f"{operation} from a read-only disk")
                subprocess.run(["rm", "-rf", scene.destination], check=True)
            check_read_only_target(engine, other, disk, result)
            run_program("mount", "-o", "remount,rw", disk)


def check_read_only_target(engine: Engine, other: str, disk: str, result: Result) -> None:
    """Into it, nothing comes, and what should have come stays."""
    file = pathlib.Path(other, "to go")
    file.write_text("stays", encoding="utf-8")
    before = manifest_of(other)
    for words in (["copy", file, f"{disk}/new"], ["move", file, f"{disk}/new"],
                  ["create", f"{disk}/new", "10"], ["hide", disk], ["remove", f"{disk}/tree"]):
        outcome = engine.run(*map(str, words))
        result.tried += 1
        if outcome.code != 1:
            result.damage("blocked", f"{words[0]} to a read-only disk ended with {outcome.code}")
        if differences(before, manifest_of(other)):
            result.damage("lost", f"{words[0]} to a read-only disk changed its source")
        for record in engine.records():
            result.damage("half_named", f"{words[0]} to a read-only disk left {record}")
            os.unlink(record)


def shift_during(operation: str):
    def run(context: Context, result: Result) -> None:
        strikes = done = turn = 0
        with two_file_systems(context) as (near, far, engine):
            while result.tried < context.times and context.has_time():
                turn += 1
                chance = random.Random(f"{context.seed} {turn}")
                tree = ShiftingTree(f"{near}/tree", chance)
                words = [f"{near}/tree", *([f"{far}/tree"] if operation != "remove" else [])]
                outcome = strike_during(engine, tree, operation, words, chance)
                strikes += tree.strikes
                done += outcome.is_done
                result.tried += tree.strikes > 0
                about = f"{operation}, turn {turn} of seed {context.seed}"
                check(result, outcome, tree, operation, (near, far, engine), about)
                subprocess.run(["rm", "-rf", f"{near}/tree", f"{far}/tree"], check=True)
        result.note(f"{strikes:,} changes; {done:,} of the operations came to their end.")
    return run


def strike_during(engine: Engine, tree: ShiftingTree, operation: str, words: list[str],
                  chance: random.Random) -> Outcome:
    """Changes the tree for as long as the operation goes on, not too fast for it to get on."""
    start = time.monotonic()
    process = engine.start(operation, *words, workers=chance.choice((None, 1, 4)))
    time.sleep(chance.uniform(0, 0.006))
    pause = chance.choice((0, 0.0001, 0.001))
    while process.poll() is None and time.monotonic() - start < 30:
        tree.strike()
        time.sleep(pause)
    return finish(process, start)


def check(result: Result, outcome: Outcome, tree: ShiftingTree, operation: str, places,
          about: str) -> None:
    near, far, engine = places
    if outcome.is_blocked or outcome.has_crashed:
        result.damage("blocked", f"{about}: it ended with {outcome.code} {outcome.errors}")
    old, wrong = found_in(f"{near}/tree")
    new, torn = found_in(f"{far}/tree")
    if wrong:
        result.damage("lost", f"{about}: {wrong[0]}")
    if torn:
        result.damage("half_named", f"{about}: {torn[0]} holds what never was")
    if left := leftovers_in(near) + leftovers_in(far) + engine.records():
        result.damage("half_named", f"{about}: {left[0]} is left")
    if operation == "remove":
        return
    for file in [*tree.files, *tree.left_alone]:
        sizes = old.get(file.identity, set()) | new.get(file.identity, set())
        if operation == "copy" and not file.is_among(old.get(file.identity, set())):
            result.damage("lost", f"{about}: {file} is not in the source")
        elif not file.is_among(sizes):
            result.damage("lost", f"{about}: {file} has only {sizes}")


ROWS = [
    Row("Read-only disks",
        "A copy, a move, a removal, a hiding and a creation, from a read-only disk and to one: a "
        "copy from it succeeds, all else fails and changes nothing.", 8, 8, read_only),
    Row("A source that changes during a copy",
        "Files are deleted, renamed, shortened and made longer as fast as it goes; what is in a "
        "file tells where it is from. A copy holds nothing that was never there.",
        2000, 20, shift_during("copy")),
    Row("A source that changes during a move",
        "The same for a move to another file system: each file that was not deleted stands with "
        "its last length in the old or the new place.", 2000, 20, shift_during("move")),
    Row("A tree that changes during its removal", "The same for a removal: what is left is whole.",
        1000, 10, shift_during("remove")),
]


def planted(plant, operation: str, kind: str):
    def run(context: Context) -> None:
        result = Result("planted", "")
        with two_file_systems(context) as (near, far, engine):
            tree = ShiftingTree(f"{near}/tree", random.Random(7))
            for _ in range(20):
                tree.strike()
            subprocess.run(["cp", "-a", f"{near}/tree", f"{far}/tree"], check=True)
            places = (near, far, engine)
            check(result, Outcome(0, "", 0), tree, operation, places, "before")
            assert result.damages == 0, "damage where none was planted"
            plant(tree, near, far)
            check(result, Outcome(0, "", 0), tree, operation, places, "planted")
        assert getattr(result, kind) > 0, f"not counted as {kind}"
    return run


def add_zeros(tree: ShiftingTree, _: str, far: str) -> None:
    path = f"{far}/tree/{tree.files[0].path}"
    os.truncate(path, os.path.getsize(path) + 100)


def forget_growth(tree: ShiftingTree, near: str, far: str) -> None:
    file = tree.files[0]
    os.unlink(f"{near}/tree/{file.path}")
    os.truncate(f"{far}/tree/{file.path}", file.size - 1)


def change_source(tree: ShiftingTree, near: str, _: str) -> None:
    with open(f"{near}/tree/{tree.files[0].path}", "r+b") as file:
        file.seek(3)
        file.write(b"?")


SELF_TESTS = [
    SelfTest("a copy with bytes that never were", planted(add_zeros, "copy", "half_named")),
    SelfTest("a move that lost the last change", planted(forget_growth, "move", "lost")),
    SelfTest("a source that was written to", planted(change_source, "copy", "lost")),
]
