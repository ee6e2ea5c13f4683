"""The session bus goes away, comes back, or stops answering."""

import contextlib
import os
import shutil
import signal
import time

from host_world import World, tools
from host_work import Copying, Moving, build_tree
from programme import Row

# A program that finds no answer on the bus says so within this time.
LONGEST_WAIT = 60
TREE_FILES = 1500
TREE_FILE_SIZE = 8_000


def bus_world(context, result):
    class BusSession(tools().Session):
        """A session whose bus can come to harm."""

        def bus_process(self):
            return self._bus.pid

        def kill_bus(self):
            self._bus.kill()
            self._bus.wait()

        def restart_bus(self):
            with contextlib.suppress(FileNotFoundError):
                os.unlink(self.runtime / "bus")
            self._bus = self._start_bus("bus", self.services)
            self._install_service_files()

    return World(context, result, BusSession)


class Rounds:
    def __init__(self, world):
        self.world = world
        self.number = 0
        self.in_the_making = 0
        self.slowest = 0.0

    def prepare(self):
        """Long requests in folders of the round's own."""
        self.number += 1
        self.places = [self.world.files / f"bus {self.number}",
                       self.world.other / f"bus {self.number}"]
        for place in self.places:
            place.mkdir()
        folder, other = self.places
        kind = self.world.random.choice((Copying, Moving))
        tree = build_tree(folder / "tree", TREE_FILES, TREE_FILE_SIZE, self.world.random)
        back = build_tree(other / "tree back", 200, 50_000, self.world.random)
        return [kind(tree, other / "there"), Moving(back, folder / "there")]

    def finish(self, works):
        for work in works:
            work.check(self.world.damage)
        for place in self.places:
            shutil.rmtree(place)

    def bus_goes(self, is_busy):
        """The bus is killed; the host ends with it, and works with the next one."""
        world = self.world
        process = world.host()
        works = self.prepare() if is_busy else []
        if works:
            world.wait_for_senders([work.send(world) for work in works])
            time.sleep(world.random.uniform(0, 0.4))
        world.session.kill_bus()
        if not world.wait_for_end(process):
            world.damage("blocked", "the host outlives its bus")
            os.kill(process, signal.SIGKILL)
        self.in_the_making += 1 if world.leftovers() else 0
        for work in works:
            work.check(world.damage)
        world.session.restart_bus()
        world.start()
        world.serves()
        world.expect_cleared()
        if works:
            self.finish(works)

    @contextlib.contextmanager
    def stopped_bus(self):
        """The bus neither answers nor closes its connections."""
        process = self.world.session.bus_process()
        os.kill(process, signal.SIGSTOP)
        try:
            yield
        finally:
            os.kill(process, signal.SIGCONT)

    def bus_hangs(self, has_host):
        """Hosts and senders come to an end while the bus hangs; nothing is done twice."""
        world = self.world
        if not has_host:
            world.end_host()
        works = self.prepare()
        requests = [world.session.write_request({
            "Action": work.action, "SelectedFilesUrl": tools().selection(work.source),
            "ToPath": str(work.folder)}) for work in works]
        with self.stopped_bus():
            start = time.monotonic()
            second = world.session.start_host(requests[0])
            sender = works[1].send(world)
            if not world.wait_for_end(sender.pid, LONGEST_WAIT):
                world.damage("blocked", "a sender waits for the bus without end")
            # A host that finds no bus may serve its own request, and waits for nobody.
            while not (works[0].is_done() or second.poll() is not None):
                if time.monotonic() > start + LONGEST_WAIT:
                    world.damage("blocked", "a second host waits for the bus without end")
                    break
                time.sleep(0.05)
            self.slowest = max(self.slowest, time.monotonic() - start)
        world.wait_for_senders([sender])
        if second.poll() is None and second.pid != world.host():
            second.terminate()
            world.wait_for_end(second.pid)
        world.start()
        world.serves()
        world.expect_cleared()
        self.finish(works)


def rounds_of(method, *arguments):
    def run(context, result):
        with bus_world(context, result) as world:
            rounds = Rounds(world)
            while result.tried < context.times and result.damages < 10:
                method(rounds, *arguments)
                result.tried += 1
            if rounds.in_the_making:
                result.note(f"{rounds.in_the_making} times something was in the making.")
            if rounds.slowest:
                result.note(f"The longest wait was {rounds.slowest:.0f} s.")
    return run


ROWS = [
    Row("The bus goes while the host works",
        "The session bus is killed while the host copies and moves between two file systems; the "
        "host ends, nothing is lost or half-named, and with another bus the next start clears what "
        "is left and serves.", 30, 1, rounds_of(Rounds.bus_goes, True), is_for_sanitizers=False),
    Row("The bus goes while the host is idle",
        "As before, with nothing to do.", 30, 0, rounds_of(Rounds.bus_goes, False),
        is_for_sanitizers=False),
    Row("The bus hangs while a request is handed over",
        "The session bus is stopped; a second host with a request file and a sender come to their "
        "ends in time, the first host lives, and no request is carried out twice when the bus goes "
        "on.", 3, 0, rounds_of(Rounds.bus_hangs, True), is_for_sanitizers=False),
    Row("The bus hangs while the host starts",
        "As before, with no host that runs; once the bus goes on, requests are served.", 3, 0,
        rounds_of(Rounds.bus_hangs, False), is_for_sanitizers=False),
]
SELF_TESTS = []
