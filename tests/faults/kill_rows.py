"""The process is killed in the middle of an operation."""

import contextlib
import os
import pathlib
import subprocess
import time

from engine import Engine, Outcome, finish
from manifest import manifest_of
from programme import Context, NotHere, Result, Row, SelfTest
from scene import OTHER_FILE_SYSTEM, Scene
from trees import build_many, build_one_of_each, write

WORKERS = (None, 1, 2, 4)


@contextlib.contextmanager
def two_file_systems(context: Context):
    """A folder each on two file systems, and the engine with its records on the first."""
    with context.scratch() as near, context.scratch(OTHER_FILE_SYSTEM) as far:
        if os.stat(near).st_dev == os.stat(far).st_dev:
            raise NotHere(f"{near} and {OTHER_FILE_SYSTEM} are one file system")
        os.makedirs(f"{near}/work")
        yield f"{near}/work", far, Engine(context.program("file-engine"), f"{near}/data")


def kill_after(process: subprocess.Popen, seconds: float) -> Outcome:
    start = time.monotonic()
    try:
        process.wait(timeout=max(seconds, 0))
    except subprocess.TimeoutExpired:
        process.kill()
    return finish(process, start)


class KillTimes:
    """Moments between the start of the work and its end, as earlier runs took that long."""

    def __init__(self, context: Context, engine: Engine):
        self.random = context.random
        runs = sorted(engine.run("recover").seconds for _ in range(7))
        self.idle = runs[0]  # what a process takes that has nothing to do
        self.longest = 0.0

    def learn(self, outcome: Outcome) -> None:
        self.longest = max(self.longest, outcome.seconds) if self.longest else outcome.seconds

    def next(self) -> float:
        return self.random.uniform(self.idle * 0.7, max(self.longest, self.idle * 1.2))

    def was_too_late(self) -> None:
        self.longest = max(self.longest * 0.98, self.idle * 1.2)


def tries(context: Context, result: Result, once) -> None:
    """Calls `once` until so many kills have met a living process; gives up after far too many."""
    for _ in range(context.times * 5):
        if result.tried >= context.times:
            return
        once()
    result.note(f"Only {result.tried} of {context.times} kills came before the end.")


def kill_during(operation: str):
    def run(context: Context, result: Result) -> None:
        with two_file_systems(context) as (near, far, engine):
            scene = Scene(near, far, engine, build_many, result)
            moments = KillTimes(context, engine)
            for _ in range(3):
                moments.learn(scene.run(operation))
                scene.stand_up()
            met = 0

            def once() -> None:
                nonlocal met
                moment, workers = moments.next(), context.random.choice(WORKERS)
                outcome = kill_after(engine.start(*scene.words(operation), workers=workers), moment)
                if not outcome.was_killed:
                    moments.was_too_late()
                met += outcome.was_killed and is_in_the_middle(scene, operation)
                result.tried += outcome.was_killed
                scene.check(operation, outcome, f"seed {context.seed}, killed after {moment:.6f} s")
                scene.stand_up()

            tries(context, result, once)
            result.note(f"{met} of the kills found the work begun and not ended.")
    return run


def is_in_the_middle(scene: Scene, operation: str) -> bool:
    """Whether something is done that is not all: by the leftovers, or by what has gone already."""
    if operation == "remove":
        return 0 < len(manifest_of(scene.source)) < len(scene.whole)
    if operation == "move" and os.path.lexists(scene.source) and os.path.lexists(scene.destination):
        return True
    return bool(scene.engine.records())


OLD_LIST = "an old line\n\ngone long ago\nfile 7\n"


class HidingScene:
    """A folder whose items are hidden, with a list that names some already."""

    def __init__(self, folder: str, engine: Engine, result: Result, names: int):
        self.folder, self.engine, self.result = folder, engine, result
        self.list = pathlib.Path(folder, ".hidden")
        for number in range(names):
            write(f"{folder}/file {number}", b"")
        self.stand_up()
        self.old = self.list.read_bytes()
        engine.run("hide", folder)
        self.new_lines = sorted(self.list.read_bytes().splitlines())
        self.stand_up()

    def stand_up(self) -> None:
        write(str(self.list), OLD_LIST.encode(), 0o640)

    def check(self, outcome: Outcome, about: str) -> None:
        if outcome.is_blocked or outcome.has_crashed:
            self.result.damage("blocked", f"{about}: it ended with {outcome.code}")
        if not outcome.is_done and not self.engine.recover().is_done:
            self.result.damage("half_named", f"{about}: leftovers are not cleared")
        left = [name for name in os.listdir(self.folder) if name.startswith(".tavrin-")]
        if left or self.engine.records():
            self.result.damage("half_named", f"{about}: {left} is left")
        if not self.list.exists():
            self.result.damage("lost", f"{about}: there is no list")
            return
        found = self.list.read_bytes()
        is_new = found.startswith(self.old) and sorted(found.splitlines()) == self.new_lines
        if not is_new and (found != self.old or outcome.is_done):
            self.result.damage("half_named", f"{about}: the list has {len(found)} bytes")
        if self.list.stat().st_mode & 0o777 != 0o640:
            self.result.damage("half_named", f"{about}: the list has lost its mode")


def kill_during_hide(context: Context, result: Result) -> None:
    with context.scratch() as near:
        os.mkdir(f"{near}/folder")
        engine = Engine(context.program("file-engine"), f"{near}/data")
        scene = HidingScene(f"{near}/folder", engine, result, names=3000)
        moments = KillTimes(context, engine)
        for _ in range(3):
            moments.learn(engine.run("hide", scene.folder))
            scene.stand_up()
        renewed = partly = 0

        def once() -> None:
            nonlocal renewed, partly
            moment = moments.next()
            outcome = kill_after(engine.start("hide", scene.folder), moment)
            if not outcome.was_killed:
                moments.was_too_late()
            result.tried += outcome.was_killed
            partly += outcome.was_killed and bool(engine.records())
            renewed += outcome.was_killed and scene.list.read_bytes() != scene.old
            scene.check(outcome, f"seed {context.seed}, killed after {moment:.6f} s")
            scene.stand_up()

        tries(context, result, once)
        result.note(f"{partly} of the kills found the list half written under its hidden name, "
                    f"{renewed} the new one in place.")


ROWS = [
    Row("SIGKILL during a copy",
        "A tree of 150 items is copied to another file system; the process is killed at a random "
        "moment, the next start clears up, and source, copy and all beside them are compared.",
        500, 12, kill_during("copy")),
    Row("SIGKILL during a move across file systems",
        "The same for a move: the tree must be whole in its old or in its new place.",
        500, 12, kill_during("move")),
    Row("SIGKILL during a removal",
        "The same for a removal: what is not yet removed must be as it was.",
        500, 12, kill_during("remove")),
    Row("SIGKILL during the hiding of 3,000 items",
        "The list .hidden must be the old or the new one, whole and with its mode.",
        500, 8, kill_during_hide),
]


def with_scene(plant, operation: str, outcome: Outcome, kind: str):
    """A self-test: `plant` does damage to a scene in which an operation has ended so."""
    def run(context: Context) -> None:
        result = Result("planted", "")
        with two_file_systems(context) as (near, far, engine):
            scene = Scene(near, far, engine, build_one_of_each, result)
            scene.check(operation, Outcome(1, "", 0), "before the damage")
            assert result.damages == 0, "damage where none was planted"
            plant(scene)
            scene.check(operation, outcome, "planted")
        assert getattr(result, kind) > 0, f"not counted as {kind}"
    return run


KILLED, DONE = Outcome(-9, "", 0), Outcome(0, "", 0)


def copy_whole(scene: Scene) -> None:
    subprocess.run(["cp", "-a", scene.master, scene.destination], check=True)


def change_byte(path: str) -> None:
    """Alters a file and nothing that a listing would show."""
    status = os.stat(path)
    with open(path, "r+b") as file:
        file.seek(status.st_size // 2)
        byte = file.read(1)
        file.seek(status.st_size // 2)
        file.write(bytes([byte[0] ^ 1]))
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


def plant_in_copy(change):
    def plant(scene: Scene) -> None:
        copy_whole(scene)
        change(scene.destination)
    return plant


def separate_twins(path: str) -> None:
    subprocess.run(["cp", "-p", f"{path}/file", f"{path}/other"], check=True)
    os.rename(f"{path}/other", f"{path}/file")
    status = os.stat(f"{path}/folder")
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


def leave_record(scene: Scene) -> None:
    write(f"{scene.engine.data_folder}/.tavrin-0123456789abcdef.record", b"torn")


def move_half(scene: Scene) -> None:
    copy_whole(scene)
    os.unlink(f"{scene.destination}/folder/larger")
    os.unlink(f"{scene.source}/folder/larger")


SELF_TESTS = [
    SelfTest("a byte of the source that changed",
             with_scene(lambda scene: change_byte(f"{scene.source}/folder/larger"), "copy", KILLED,
                        "lost")),
    SelfTest("a byte of the copy that is another one",
             with_scene(plant_in_copy(lambda path: change_byte(f"{path}/folder/larger")), "copy",
                        KILLED, "half_named")),
    SelfTest("a file that the copy has not",
             with_scene(plant_in_copy(lambda path: os.unlink(f"{path}/nothing")), "copy", KILLED,
                        "half_named")),
    SelfTest("a mode that the copy has not",
             with_scene(plant_in_copy(lambda path: os.chmod(f"{path}/empty", 0o700)), "copy",
                        KILLED, "half_named")),
    SelfTest("a time that the copy has not",
             with_scene(plant_in_copy(lambda path: os.utime(f"{path}/pipe")), "copy", KILLED,
                        "half_named")),
    SelfTest("an attribute that the copy has not",
             with_scene(plant_in_copy(lambda path: os.removexattr(f"{path}/file", "user.note")),
                        "copy", KILLED, "half_named")),
    SelfTest("a hard link that the copy has not",
             with_scene(plant_in_copy(separate_twins), "copy", KILLED, "half_named")),
    SelfTest("a copy that is said to be done and is not there",
             with_scene(lambda scene: None, "copy", DONE, "lost")),
    SelfTest("a leftover in the destination's folder",
             with_scene(lambda scene: write(f"{scene.far}/.tavrin-0.partial", b""), "copy", KILLED,
                        "half_named")),
    SelfTest("a record that cannot be cleared",
             with_scene(leave_record, "copy", KILLED, "half_named")),
    SelfTest("a file that a move left in neither place",
             with_scene(move_half, "move", KILLED, "lost")),
    SelfTest("a removal that changed what it left",
             with_scene(lambda scene: os.truncate(f"{scene.source}/file", 3), "remove", KILLED,
                        "lost")),
    SelfTest("something beside the tree that went",
             with_scene(lambda scene: os.unlink(f"{scene.near}/bystander/file"), "remove", DONE,
                        "escaped")),
    SelfTest("a process that did not end",
             with_scene(lambda scene: None, "remove", Outcome(None, "", 60), "blocked")),
]
