"""Folders change into links to what is not granted, while the engine works in them."""

import dataclasses
import json
import os
import subprocess

from manifest import Manifest, differences, manifest_of
from programme import Context, NotHere, Result, Row, SelfTest
from scene import OTHER_FILE_SYSTEM

LONGEST = 1800.0


def without_folder_times(items: Manifest) -> Manifest:
    """The attack itself puts folders into one of those outside and takes them back."""
    return {key: dataclasses.replace(item, modified=0) if item.is_folder else item
            for key, item in items.items()}


def attack(context: Context, *options: str) -> tuple[dict, list[str]]:
    """Runs the attack; what it did, and how the place outside has changed."""
    program = context.program("swap-attack")
    with context.scratch() as near, context.scratch(OTHER_FILE_SYSTEM) as far:
        if os.stat(near).st_dev == os.stat(far).st_dev:
            raise NotHere(f"{near} and {OTHER_FILE_SYSTEM} are one file system")
        # What stands outside is made by a first attack that swaps nothing.
        subprocess.run([program, near, far, "0"], check=True, stdout=subprocess.DEVNULL)
        before = without_folder_times(manifest_of(f"{near}/outside"))
        done = subprocess.run([program, *options, near, far, str(context.times)], check=True,
                              stdout=subprocess.PIPE, timeout=LONGEST)
        after = without_folder_times(manifest_of(f"{near}/outside"))
        return json.loads(done.stdout), differences(before, after)


def swap(context: Context, result: Result) -> None:
    numbers, changes = attack(context)
    result.tried = numbers["swaps"]
    if numbers["secrets"]:
        result.damage("escaped", f"{numbers['secrets']} copied files hold what stands outside")
    if changes:
        result.damage("escaped", "; ".join(changes[:3]))
    if numbers["done"] == 0 or numbers["refused"] == 0:
        result.damage("blocked", f"the attack was none: {numbers}")
    result.note(f"Meanwhile {numbers['done']:,} operations were carried out and "
                f"{numbers['refused']:,} refused.")


ROWS = [
    Row("Links swapped for folders",
        "Three threads exchange folders for links to a place that is not granted, and move folders "
        "out of the grant and back, while there is copied from them, into them, moved, removed and "
        "created; tried are the swaps. The place outside must be as it was, and no copy may hold "
        "anything of it.", 1_000_000, 12_000, swap),
]


def naive_is_seen(context: Context) -> None:
    """The attack is one: a copy by paths is led outside."""
    context.times = 20_000
    numbers, _ = attack(context, "--naive")
    assert numbers["secrets"] > 0, f"{numbers} for a copy by paths"


def change_is_seen(context: Context) -> None:
    with context.scratch() as folder:
        for name in ("file", "other"):
            with open(f"{folder}/{name}", "w", encoding="utf-8") as file:
                file.write(name)
        before = without_folder_times(manifest_of(folder))
        os.unlink(f"{folder}/other")
        assert differences(before, without_folder_times(manifest_of(folder)))


SELF_TESTS = [
    SelfTest("a program that links lead outside", naive_is_seen),
    SelfTest("something outside that went", change_is_seen),
]
