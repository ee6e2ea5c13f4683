"""The host is killed while it carries out requests."""

import os
import shutil
import signal
import time
from pathlib import Path

from host_work import (Copying, Creating, Deleting, Hiding, Moving, all_kinds, build_tree)
from host_world import World, tools
from programme import Row, SelfTest


class Rounds:
    """Rounds of requests, each in folders of its own."""

    def __init__(self, world):
        self.world = world
        self.number = 0
        self.in_the_making = 0
        templates = world.session.data / tools().GROUP / "Templates" / "CreateNewFile"
        records = world.session.export_domain("standard")["arrOfCreateNewFile"]
        first = next(record for record in records if record.get("enable"))
        self.template = templates / f"{first['displayName']}.{first['extension']}"
        self.usual_time = self.undisturbed()

    def prepare(self):
        self.number += 1
        self.places = [self.world.files / str(self.number), self.world.other / str(self.number)]
        for place in self.places:
            place.mkdir()
        return all_kinds(*self.places, self.template, self.world.random)

    def send(self, works):
        return [work.send(self.world) for work in works]

    def undisturbed(self):
        """How long requests of every kind take; all are to be carried out and whole."""
        works = self.prepare()
        start = time.monotonic()
        senders = self.send(works)
        self.world.wait_for_senders(senders)
        self.world.serves()
        seconds = time.monotonic() - start
        left_undone = [work.action for work in works if not work.is_done()]
        if left_undone:
            raise RuntimeError(f"{left_undone} was not done: " + self.world.session.whole_log())
        self.check(works)
        self.clean()
        return seconds

    def check(self, works):
        for work in works:
            work.check(self.world.damage)

    def clean(self):
        for place in self.places:
            shutil.rmtree(place)

    def killed(self):
        """A round in whose middle the host is killed, and after which another one starts."""
        world = self.world
        works = self.prepare()
        process = world.host()
        senders = self.send(works)
        time.sleep(world.random.uniform(0, self.usual_time))
        os.kill(process, signal.SIGKILL)
        if not world.wait_for_end(process):
            world.damage("blocked", "the host survives SIGKILL")
        world.wait_for_senders(senders)
        if world.host() is None:
            self.in_the_making += 1 if world.leftovers() else 0
            self.check(works)
        if files := world.request_files():
            world.damage("half_named", f"request files stay: {files}")
        world.start()
        world.serves()
        world.expect_cleared()
        self.check(works)
        self.clean()


def killed_host(context, result):
    with World(context, result) as world:
        rounds = Rounds(world)
        while result.tried < context.times and result.damages < 20:
            rounds.killed()
            result.tried += 1
        result.note(f"{rounds.in_the_making} of the kills left something in the making.")


# What the checks have to see.

def truncate(path):
    os.truncate(path, 1)


def same_time(path, change):
    """Changes a file so that only its contents tell."""
    status = os.stat(path)
    change(path)
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


def copy_tree(work):
    """Does the work by other means."""
    work.result.parent.mkdir(exist_ok=True)
    os.system(f"cp -a '{work.source}' '{work.result}'")


def planted(context, make, plant, kind):
    """What a kind of request has come to must be damage of `kind`, and was none before."""
    seen = []
    with context.scratch() as folder:
        work = make(Path(folder), context.random)
        if isinstance(work, (Copying, Moving)):
            copy_tree(work)
        work.check(lambda *damage: seen.append(damage))
        assert not seen, f"damage without a cause: {seen}"
        plant(work)
        work.check(lambda *damage: seen.append(damage))
    assert kind in [found for found, _ in seen], f"it counts as whole: {seen}"


def tree_work(kind):
    return lambda folder, random: kind(build_tree(folder / "tree", 30, 3_000, random),
                                       folder / "there")


def new_file(folder, _random):
    (folder / "template.txt").write_text("template")
    return Creating(folder / "there", folder / "template.txt")


PLANTED = [
    ("a torn copy", tree_work(Copying), lambda work: truncate(work.result / "0" / "3.data"),
     "half_named"),
    ("a copy with a part missing", tree_work(Copying),
     lambda work: shutil.rmtree(work.result / "0"), "half_named"),
    ("other bytes in a copy", tree_work(Copying),
     lambda work: same_time(work.result / "0" / "5.data", lambda path: Path(path).write_bytes(
         bytes(reversed(Path(path).read_bytes())))), "half_named"),
    ("a copy carried out twice", tree_work(Copying),
     lambda work: work.result.with_name("tree 2").mkdir(), "half_named"),
    ("a changed source of a copy", tree_work(Copying),
     lambda work: os.unlink(work.source / "0" / "7.data"), "lost"),
    ("a moved item that is nowhere whole", tree_work(Moving),
     lambda work: (os.unlink(work.source / "0" / "7.data"),
                   os.unlink(work.result / "0" / "7.data")), "lost"),
    ("a torn item in a deletion", tree_work(Deleting),
     lambda work: truncate(work.source / "0" / "4.data"), "half_named"),
    ("half a list of hidden names", tree_work(Hiding),
     lambda work: work.list.write_text(Hiding.others + "0\n"), "half_named"),
    ("a list of hidden names without the lines of others", tree_work(Hiding),
     lambda work: work.list.write_text(""), "lost"),
    ("half a new file", new_file, lambda work: work.result.write_text("temp"), "half_named"),
    ("a new file made twice", new_file, lambda work: [
        (work.folder / name).write_text("template") for name in ("untitled.txt", "untitled 2.txt")
    ], "half_named"),
]

ROWS = [
    Row("SIGKILL of the host during requests",
        "The host copies, moves, pastes, deletes, hides and creates between two file systems and "
        "is killed at a random moment; everything stands whole under its old name, its new one or "
        "both, senders end, no request is carried out twice, no request file stays, and the next "
        "start clears what the killed one had in the making.", 100, 2, killed_host,
        is_for_sanitizers=False),
]
SELF_TESTS = [SelfTest(f"host: {name}", lambda context, make=make, plant=plant, kind=kind:
                       planted(context, make, plant, kind))
              for name, make, plant, kind in PLANTED]
