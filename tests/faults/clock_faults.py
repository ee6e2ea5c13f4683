"""The clock is set while the host runs: back, far ahead, and to before 1970."""

import contextlib
import glob
import os
import shutil
import signal
import time

from host_kills import Rounds
from host_work import Copying, Moving, build_tree
from host_world import World
from programme import NotHere, Row, SelfTest

LIBRARIES = "/usr/lib/*/faketime/libfaketimeMT.so.1"
JUMPS = ("-1h", "-10y", "-60y", "+1h", "+20y", "+70y")
# Of the 100 in a second that a busy loop would use.
IDLE_SECONDS = 1.0
MOST_TICKS = 8
# Seconds since 1970 that the usual file systems can keep.
UNUSUAL_TIMES = (-2_000_000_000, -1, 0, 2**31 + 1, 2**32 + 1, 4_102_444_800)


class Clock:
    """What time it is for programs that are started with `environment`."""

    def __init__(self, folder):
        found = glob.glob(LIBRARIES)
        if not found:
            raise NotHere("libfaketime is not installed")
        self._file = os.path.join(folder, "clock")
        self.set("+0")
        self.environment = {"LD_PRELOAD": found[0], "FAKETIME_TIMESTAMP_FILE": self._file,
                            "FAKETIME_NO_CACHE": "1", "FAKETIME_DONT_FAKE_MONOTONIC": "1",
                            "NO_FAKE_STAT": "1"}

    def set(self, offset):
        with open(self._file + ".new", "w") as file:
            file.write(offset)
        os.rename(self._file + ".new", self._file)


class Jumps:
    """What has to work although the clock has jumped."""

    def __init__(self, world, clock):
        self.world = world
        self.session = world.session
        self.clock = clock
        self.rounds = Rounds(world)
        self.number = 0

    def settings_are_followed(self):
        """A running host carries a setting over to the menus at once."""
        key = "enableCopyFilesTo"
        value = not self.session.export_domain("standard")[key]
        self.session.defaults("write", "standard", key, "-bool", "true" if value else "false")
        if self.session.export_domain("standard").get(key) is not value:
            self.world.damage("lost", "a setting that was written")
        self.world.wait_for(lambda: self.session.export_domain("group").get(key) is value,
                            "the host to follow a setting")

    def requests_keep_their_order(self):
        """Each moves on what the one before has moved."""
        places = [self.world.files / f"order {self.number}" / str(place) for place in range(6)]
        for place in places:
            place.mkdir(parents=True)
        (places[0] / "item").write_text("item")
        for start, end in zip(places, places[1:]):
            self.world.wait_for_senders([self.world.send("moveFilesTo", start / "item",
                                                         ToPath=end)])
        self.world.wait_for((places[-1] / "item").exists, "requests to be done in their order")
        shutil.rmtree(places[0].parent)

    def everything_is_done(self):
        works = self.rounds.prepare()
        self.world.wait_for_senders(self.rounds.send(works))
        self.world.serves()
        self.rounds.check(works)
        if left_undone := [work.action for work in works if not work.is_done()]:
            self.world.damage("blocked", f"not done: {left_undone}")
        self.rounds.clean()

    def unusual_times_are_moved(self):
        """Between file systems, where a move compares times before it removes the source."""
        tree = build_tree(self.world.files / "times", 20, 3_000, self.world.random)
        for number, seconds in enumerate(UNUSUAL_TIMES):
            os.utime(tree / "0" / f"{number}.data", ns=(0, seconds * 1_000_000_000 + 123_456_789))
        there = Moving(tree, self.world.other / "times there")
        self.done(there)
        back = Moving(there.result, self.world.files / "times back")
        self.done(back)
        for folder in (there.folder, back.folder):
            shutil.rmtree(folder)

    def done(self, work):
        self.world.wait_for_senders([work.send(self.world)])
        self.world.wait_for(work.is_done, work.action)
        self.world.serves()
        work.check(self.world.damage)

    def waiting_requests_stay(self):
        """A request that waits for the host is not taken for one that was forgotten."""
        place = self.world.files / f"waiting {self.number}"
        waiting = Copying(build_tree(place / "tree", 3, 300, self.world.random), place / "there")
        other = Copying(build_tree(place / "other", 3, 300, self.world.random), place / "there")
        with self.stopped_host():
            self.clock.set("+0")
            senders = [waiting.send(self.world)]
            self.world.wait_for(self.world.request_files, "a request file")
            self.clock.set(self.jump)
            senders.append(other.send(self.world))
            # It looks for forgotten ones before it writes its own.
            self.world.wait_for(lambda: len(self.world.request_files()) != 1 or
                                senders[1].poll() is not None, "another request file", seconds=5)
            time.sleep(0.2)
        self.world.wait_for_senders(senders)
        self.world.serves()
        for work in (waiting, other):
            work.check(self.world.damage)
            if not work.is_done():
                self.world.damage("lost", "a request that was accepted")
        shutil.rmtree(place)

    @contextlib.contextmanager
    def stopped_host(self):
        process = self.world.host()
        os.kill(process, signal.SIGSTOP)
        try:
            yield
        finally:
            os.kill(process, signal.SIGCONT)

    def rests(self):
        process = self.world.host()
        before = self.world.processor_time(process)
        time.sleep(IDLE_SECONDS)
        used = self.world.processor_time(process) - before
        if used > MOST_TICKS:
            self.world.damage("blocked", f"an idle host used {used} clock ticks")

    def round(self, jump):
        self.number += 1
        self.jump = jump
        self.world.end_host()
        self.clock.set("+0")
        # Written when the host has begun to follow its settings.
        self.session.defaults("delete", "standard", "enableAllOfOthers")
        self.world.start()
        self.session.wait_for_settings()
        self.world.serves()
        self.clock.set(jump)
        for part in (self.settings_are_followed, self.requests_keep_their_order,
                     self.everything_is_done, self.unusual_times_are_moved,
                     self.waiting_requests_stay, self.rests, self.rounds.killed):
            before = self.world.result.damages
            part()
            if self.world.result.damages > before:
                self.world.result.note(f"With {jump}: {part.__name__}.")
        self.clock.set("+0")
        self.world.serves()


def clock_jumps(context, result):
    with World(context, result) as world:
        clock = Clock(world.session.folder)
        world.end_host()
        world.session.environment.update(clock.environment)
        world.start()
        jumps = Jumps(world, clock)
        while result.tried < context.times and result.damages < 20:
            jumps.round(JUMPS[result.tried % len(JUMPS)])
            result.tried += 1


def expect_clock_followed(context):
    """The clock of a program jumps, without which the row would try nothing."""
    with context.scratch() as folder:
        clock = Clock(folder)
        for jump, year in (("-60y", lambda now: now - 60), ("+20y", lambda now: now + 20)):
            clock.set(jump)
            with os.popen(" ".join(f"{name}={value}" for name, value in clock.environment.items())
                          + " date +%Y") as date:
                found = int(date.read())
            assert abs(found - year(time.gmtime().tm_year)) <= 1, f"{jump} is {found}"


ROWS = [
    Row("The clock jumps while the host works",
        "The clock is set back by an hour, ten and sixty years, and ahead by an hour, twenty and "
        "seventy years; settings are followed, requests are carried out in their order, moves "
        "between file systems compare times of every age, a waiting request is not taken for a "
        "forgotten one, an idle host rests, a killed one's leftovers are cleared, grants hold.",
        12, 0, clock_jumps, is_for_sanitizers=False),
]
SELF_TESTS = [SelfTest("clock: programs see the jump", expect_clock_followed)]
