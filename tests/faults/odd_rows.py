"""Trees with what is rare: odd kinds and names, great depth, mounts, what cannot be changed."""

import contextlib
import os
import re
import subprocess

from disks import ensure_root, filled_disk, memory_disk, mounted, run as run_program
from engine import Engine, Outcome
from manifest import differences, manifest_of
from programme import Context, NotHere, Result, Row, SelfTest
from scene import Scene, two_file_systems
from trees import build_deep, build_odd, build_one_of_each

DEPTH = 10_000


def rsync_differences(one: str, other: str) -> list[str]:
    """What rsync would change to make one tree the other: nothing when they are the same."""
    command = ["rsync", "-naHAX", "--checksum", "--delete", "--itemize-changes", "--specials",
               "--devices", f"{one}/", f"{other}/"]
    try:
        done = subprocess.run(command, capture_output=True, check=False)
    except FileNotFoundError as error:
        raise NotHere("rsync is not installed") from error
    lines = done.stdout.decode(errors="replace").splitlines()
    lines = [line for line in lines if not re.match(r"^\.[dfLDS] +", line)]  # equal but for a link
    return lines or ([done.stderr.decode(errors="replace")] if done.returncode else [])


def compare_by_rsync(scene: Scene, about: str) -> None:
    if lines := rsync_differences(scene.master, scene.destination):
        scene.damage("half_named", f"{about}, by rsync", lines)


def allocated(path: str) -> int:
    """The bytes that a tree takes on its disk."""
    return sum(os.lstat(os.path.join(folder, name)).st_blocks * 512
               for folder, _, names in os.walk(path) for name in names)


def expect_done(scene: Scene, operation: str, outcome: Outcome, about: str) -> None:
    if not outcome.is_done:
        scene.damage("blocked", f"{about}: {operation} failed", [outcome.errors])
    scene.check(operation, outcome, about)


def all_three(scene: Scene, about: str, compares: bool = True) -> None:
    """Copies, moves and removes a tree that nothing is wrong with, so that all must succeed."""
    expect_done(scene, "copy", scene.run("copy"), about)
    if compares:
        compare_by_rsync(scene, about)
        if allocated(scene.destination) > allocated(scene.source) + 65536:
            scene.damage("half_named", about, ["the copy has lost its holes"])
    scene.stand_up()
    expect_done(scene, "move", scene.run("move"), about)
    if compares:
        compare_by_rsync(scene, about)
    scene.stand_up()
    expect_done(scene, "remove", scene.run("remove"), about)
    scene.result.tried += 3


def odd_items(context: Context, result: Result) -> None:
    if os.geteuid() != 0:
        result.note("Without device nodes and foreign owners, which only root may make.")
    with two_file_systems(context) as (near, far, engine):
        all_three(Scene(near, far, engine, build_odd, result), "to tmpfs")
    try:
        with filled_disk(context) as disk, context.scratch() as near:
            os.mkdir(f"{near}/work")
            engine = Engine(context.program("file-engine"), f"{near}/data")
            all_three(Scene(f"{near}/work", disk.path, engine, build_odd, result), "to ext4")
    except NotHere as reason:
        result.note(f"Not to a second ext4: {reason}.")


class DeepScene(Scene):
    """A tree that no program copies which goes by paths: it is built anew each time."""

    depth = DEPTH

    def stand_up(self) -> None:
        subprocess.run(["rm", "-rf", self.source, self.destination], check=True)
        build_deep(self.source, self.depth)
        self.whole = manifest_of(self.source)


class LessDeepScene(DeepScene):
    depth = 300


def deep(context: Context, result: Result) -> None:
    kind = LessDeepScene if context.is_quick else DeepScene
    result.note(f"{kind.depth:,} levels.")
    with two_file_systems(context) as (near, far, engine):
        all_three(kind(near, far, engine, os.mkdir, result), f"{kind.depth} levels", compares=False)


def mount_inside(context: Context, result: Result) -> None:
    """A copy holds what is mounted inside; a move and a removal leave both as they are."""
    ensure_root()
    with two_file_systems(context) as (near, far, engine):
        scene = Scene(near, far, engine, build_one_of_each, result)
        with mounted(f"{scene.source}/mounted", "-t", "tmpfs", "tmpfs") as inner:
            build_one_of_each(f"{inner}/tree")
            scene.whole = manifest_of(scene.source)
            expect_done(scene, "copy", scene.run("copy"), "a mount inside")
            subprocess.run(["rm", "-rf", scene.destination], check=True)
            result.tried += 1
            mounted_items = manifest_of(inner)
            for operation in ("move", "remove"):
                outcome = scene.run(operation)
                scene.check(operation, outcome, f"{operation} with a mount inside")
                if outcome.code != 1 or differences(mounted_items, manifest_of(inner)):
                    scene.damage("escaped", operation, [f"it ended with {outcome.code}"])
                result.tried += 1
            remove_mount_point(scene, engine, inner)


def remove_mount_point(scene: Scene, engine: Engine, inner: str) -> None:
    """A mount that is named itself is not entered either."""
    before = manifest_of(inner)
    outcome = engine.run("remove", inner)
    scene.result.tried += 1
    if outcome.code != 1 or differences(before, manifest_of(inner)):
        scene.damage("escaped", "removal of a mount", [f"ended with {outcome.code}"])


@contextlib.contextmanager
def immutable(path: str):
    run_program("chattr", "+i", path)
    try:
        yield
    finally:
        run_program("chattr", "-i", path)


def immutable_items(context: Context, result: Result) -> None:
    """A copy has them; a move and a removal fail and leave them whole."""
    ensure_root()
    with filled_disk(context) as disk, context.scratch() as far:
        engine = Engine(context.program("file-engine"), f"{far}/data")
        os.makedirs(f"{far}/work")
        scene = Scene(disk.path, f"{far}/work", engine, build_one_of_each, result)
        for name in ("file", "folder", "folder/larger", "empty"):
            for operation in ("copy", "move", "remove"):
                with immutable(f"{scene.source}/{name}"):
                    outcome = scene.run(operation)
                    scene.check(operation, outcome, f"{operation} with {name} immutable")
                    if outcome.is_done != (operation == "copy"):
                        scene.damage("blocked", name, [f"{operation} ended with {outcome.code}"])
                    if not os.path.lexists(f"{scene.source}/{name}"):
                        scene.damage("lost", name, ["it was immutable and is gone"])
                result.tried += 1
                scene.stand_up()


def no_attributes(context: Context, result: Result) -> None:
    """To a file system that has fewer attributes, all the rest goes along."""
    with memory_disk(context) as disk, context.scratch() as near:
        os.mkdir(f"{near}/work")
        engine = Engine(context.program("file-engine"), f"{near}/data")

        def build(path: str) -> None:
            build_odd(path)
            run_program("chattr", "+d", f"{path}/file")

        all_three(Scene(f"{near}/work", disk.path, engine, build, result), "with flags")


ROWS = [
    Row("Items of odd kinds and names",
        "Pipes, sockets, device nodes, foreign owners, set-id bits, access control lists, holes, "
        "names of 255 bytes, of no UTF-8, with line breaks: a copy, a move across file systems and "
        "a removal succeed, and rsync and the programme's own comparison find no difference.",
        6, 6, odd_items),
    Row("Folders in folders", "The same with as many levels as this says.", 3, 3, deep),
    Row("A mount inside of a tree",
        "A copy holds what is mounted; a move and a removal, also of the mount itself, fail and "
        "leave it whole.", 4, 4, mount_inside),
    Row("Immutable items (chattr +i)",
        "A file and folders at several places of the tree cannot be changed: a copy succeeds, a "
        "move and a removal fail, and each item is whole in one place at least.", 12, 12,
        immutable_items),
    Row("Flags that the destination has not", "Flags of files (chattr) are no hindrance.", 3, 3,
        no_attributes),
]


def rsync_sees(context: Context) -> None:
    with context.scratch() as folder:
        build_odd(f"{folder}/one")
        subprocess.run(["cp", "-a", f"{folder}/one", f"{folder}/other"], check=True)
        assert not rsync_differences(f"{folder}/one", f"{folder}/other"), "equal trees differ"
        subprocess.run(["setfacl", "-b", f"{folder}/other/nothing"], check=True)
        assert rsync_differences(f"{folder}/one", f"{folder}/other"), "a lost access control list"


def depth_is_seen(context: Context) -> None:
    with context.scratch() as folder:
        build_deep(f"{folder}/one", 400)
        build_deep(f"{folder}/other", 399)
        one, other = manifest_of(f"{folder}/one"), manifest_of(f"{folder}/other")
        assert len(one) > 400, f"only {len(one)} items"
        assert differences(one, other), "a missing level"


def lost_holes_are_seen(context: Context) -> None:
    with context.scratch() as folder:
        build_one_of_each(f"{folder}/one")
        subprocess.run(["cp", "-a", "--sparse=never", f"{folder}/one", f"{folder}/other"],
                       check=True)
        assert allocated(f"{folder}/other") > allocated(f"{folder}/one") + 65536


SELF_TESTS = [
    SelfTest("a lost access control list", rsync_sees),
    SelfTest("a level of many that is missing", depth_is_seen),
    SelfTest("holes that became zeros", lost_holes_are_seen),
]
