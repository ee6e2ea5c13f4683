"""Damage that is planted in a scene, to show that its checks see it."""

import os
import subprocess

from engine import Engine, Outcome
from hiding import HidingScene
from programme import Context, Result, SelfTest
from scene import Scene, two_file_systems
from trees import build_one_of_each, write


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


def with_list(plant, outcome: Outcome, kind: str):
    """The same with a folder whose items are hidden."""
    def run(context: Context) -> None:
        result = Result("planted", "")
        with context.scratch() as near:
            engine = Engine(context.program("file-engine"), f"{near}/data")
            scene = HidingScene(near, engine, result, names=20)
            scene.check("hide", Outcome(1, "", 0), "before the damage")
            assert result.damages == 0, "damage where none was planted"
            plant(scene.list)
            scene.check("hide", outcome, "planted")
        assert getattr(result, kind) > 0, f"not counted as {kind}"
    return run


SELF_TESTS += [
    SelfTest("a list of hidden names that is gone",
             with_list(lambda names: names.unlink(), KILLED, "lost")),
    SelfTest("a list of hidden names that ends in the middle",
             with_list(lambda names: os.truncate(names, 20), KILLED, "half_named")),
    SelfTest("a list of hidden names that has lost its mode",
             with_list(lambda names: names.chmod(0o600), KILLED, "half_named")),
    SelfTest("a list that is said to be written and is the old one",
             with_list(lambda names: None, DONE, "half_named")),
]
