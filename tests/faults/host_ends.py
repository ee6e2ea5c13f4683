"""The host is told to end while an operation that takes long is running."""

import os
import shutil
import signal
import subprocess
import time

from host_work import Copying, Moving, build_tree
from host_world import PATIENCE, World, tools
from manifest import manifest_of
from programme import NotHere, Row

LOGIND = "org.freedesktop.login1"
FILES = 20_000
FILE_SIZE = 6_000
BIG_FILE = 512 << 20
# From the wish to the end. For the first second of a command the host does nothing else.
AT_ONCE = 2.0


class Ends:
    """The ways in which the host is told to end."""

    def __init__(self, world):
        self.world = world
        self.session = world.session
        self.can_sleep = False

    def start_logind(self):
        """Announces sleep, where the module for it is installed."""
        found = subprocess.run(["/usr/bin/python3", "-c", "import dbusmock"], check=False,
                               capture_output=True)
        if found.returncode != 0:
            raise NotHere("python3-dbusmock is not installed")
        self.session.start_system_bus()
        self.session.start_program(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template",
                                    "logind"], log_name="logind.log")
        self.world.wait_for(lambda: self.announce_sleep("false"), "logind")

    def announce_sleep(self, value="true"):
        return self.session.run(
            "gdbus", "call", "--system", "--dest", LOGIND, "--object-path",
            "/org/freedesktop/login1", "--method", "org.freedesktop.DBus.Mock.EmitSignal",
            f"{LOGIND}.Manager", "PrepareForSleep", "b", f"[<{value}>]")

    def quit(self):
        """Not waited for: the host may answer when it has ended."""
        self.session.start_program(
            ["gdbus", "call", "--session", "--dest", tools().APPLICATION_ID, "--object-path",
             tools().APPLICATION_PATH, "--method", "org.freedesktop.Application.ActivateAction",
             "quit", "@av []", "@a{sv} {}"])

    def terminate(self):
        os.kill(self.world.host(), signal.SIGTERM)


def big_file(folder):
    """One file that takes long to copy."""
    folder.mkdir()
    with open(folder / "file", "wb") as file:
        block = os.urandom(1 << 20)
        for _ in range(BIG_FILE >> 20):
            file.write(block)
    return folder


class LongWork:
    """Trees that take long, which go to and fro between the file systems."""

    def __init__(self, world):
        self.world = world
        self.places = (world.files / "long", world.other / "long")
        for place in self.places:
            place.mkdir()
        many, big = world.files / "long" / "many", world.files / "long" / "big"
        build_tree(many, FILES, FILE_SIZE, world.random)
        big_file(big)
        self.sources = [(many, manifest_of(many)), (big, manifest_of(big))]
        self.number = 0

    def next(self):
        """A copy or a move to the other file system, each tree in turn."""
        source, whole = self.sources[self.number // 2 % len(self.sources)]
        kind = (Copying, Moving)[self.number % 2]
        self.number += 1
        there = self.places[source.parent == self.places[0]]
        return kind(source, there, whole)

    def restore(self, work):
        """Leaves one whole tree, for the next round."""
        if not work.result.exists():
            return
        if isinstance(work, Copying):
            shutil.rmtree(work.result)
            return
        if work.source.exists():
            shutil.rmtree(work.source)
        self.sources = [(work.result if source == work.source else source, whole)
                        for source, whole in self.sources]


def end_in_the_middle(world, work, way):
    """Tells the host to end while it works; returns the seconds until it has, None when never."""
    process = world.host()
    world.wait_for_senders([work.send(world)])
    if world.wait_for(lambda: world.records() or work.is_done(), "the work to begin"):
        time.sleep(world.random.uniform(0, 0.5))
    start = time.monotonic()
    way()
    has_ended = world.wait_for_end(process, 4 * PATIENCE)
    return time.monotonic() - start if has_ended else None


def ended(context, result):
    with World(context, result) as world:
        ends = Ends(world)
        ends.start_logind()
        world.end_host()
        works = LongWork(world)
        slowest, done = 0.0, 0
        ways = (ends.terminate, ends.quit, ends.announce_sleep)
        while result.tried < context.times and result.damages < 20:
            world.start()
            work = works.next()
            way = ways[result.tried % len(ways)]
            seconds = end_in_the_middle(world, work, way)
            if seconds is None or seconds > AT_ONCE:
                world.damage("blocked", f"{way.__name__} took {seconds} s in {work.action}, which "
                                        f"was {'' if work.is_done() else 'not '}done then")
            slowest, done = max(slowest, seconds or 0), done + work.is_done()
            world.start()
            world.serves()
            world.expect_cleared()
            work.check(world.damage)
            world.end_host()
            works.restore(work)
            result.tried += 1
        result.note(f"The longest took {slowest:.2f} s to end; {done} of the operations were done "
                    "by then.")


ROWS = [
    Row("The host is told to end during long work",
        "While the host copies or moves 20,000 files or one of 512 MiB to another file system, it "
        "gets SIGTERM, the bus's \"quit\", or the notice that the computer goes to sleep; it ends "
        "within two seconds, everything stands whole, and the next start clears what is left.",
        24, 0, ended, is_for_sanitizers=False),
]
SELF_TESTS = []
