"""Hosts that are started at the same instant, alone and while another one ends."""

import os
import shutil
import signal

from host_world import PATIENCE, World, tools
from programme import Row, SelfTest

# Waits until somebody opens the pipe for writing, as all that wait do together.
WAITING = ["sh", "-c", ': < "$0"; exec "$@"']


def complaints_about(expected, copies, statuses, owner_is_running):
    """What is wrong with hosts that have come to rest. A status of None is a host that runs."""
    running = sum(status is None for status in statuses)
    if missing := sorted(set(expected) - set(copies)):
        yield "lost", f"requests that nobody carried out: {missing}"
    if surplus := sorted(set(copies) - set(expected)):
        yield "half_named", f"requests that were carried out twice: {surplus}"
    if failed := [status for status in statuses if status not in (None, 0)]:
        yield "blocked", f"hosts that ended with {failed}"
    if running > 1:
        yield "blocked", f"{running} hosts run"
    if not owner_is_running:
        yield "blocked", "nobody takes requests"


class Starts:
    """Rounds of starts."""

    def __init__(self, world):
        self.world = world
        self.session = world.session
        self.number = 0

    def write_requests(self, count):
        """Files of requests to copy a file each; returns them and the names of the copies."""
        self.number += 1
        self.place = self.session.files / f"round {self.number}"
        self.there = self.place / "there"
        self.there.mkdir(parents=True)
        requests, names = [], []
        for number in range(count):
            source = self.place / f"{number}.txt"
            source.write_text(str(number))
            names.append(source.name)
            requests.append(self.session.write_request({
                "Action": "copyFilesTo", "SelectedFilesUrl": tools().selection(source),
                "ToPath": str(self.there)}))
        return requests, names

    def start_together(self, requests, also):
        """Starts a host for each request; `also` is done at the same time."""
        gate = self.session.folder / f"gate {self.number}"
        os.mkfifo(gate)
        program = tools().BUILD_DIR / "bin" / "tavrin"
        hosts = [self.session.start_program([*WAITING, gate, program, request])
                 for request in requests]
        self.session.hosts += hosts
        opened = os.open(gate, os.O_RDWR)
        also()
        # The last may come to the pipe only now.
        self.world.wait_for(lambda: all(self.has_begun(host) for host in hosts), "the starts")
        os.close(opened)
        os.unlink(gate)
        return hosts

    def has_begun(self, host):
        try:
            with open(f"/proc/{host.pid}/cmdline", "rb") as words:
                return not words.read().startswith(b"sh\0")
        except OSError:
            return True

    def is_at_rest(self, hosts, names):
        copies = len(os.listdir(self.there))
        return copies >= len(names) and sum(host.poll() is None for host in hosts) <= 1

    def round(self, count, is_while_one_ends):
        requests, names = self.write_requests(count)
        former = self.world.host()
        # The bus starts one as well, when nobody has the name yet.
        sent = self.place / "sent.txt"
        sent.write_text("sent")
        senders = []

        def also():
            if former is not None and is_while_one_ends:
                os.kill(former, signal.SIGTERM)
            senders.append(self.world.send("copyFilesTo", sent, ToPath=self.there))

        if former is not None and not is_while_one_ends:
            self.world.end_host()
        hosts = self.start_together(requests, also)
        if self.world.wait_for_senders(senders) == [0]:
            names.append(sent.name)
        elif not (self.there / sent.name).exists():
            self.world.damage("blocked", "a sender failed")
        self.world.wait_for(lambda: self.is_at_rest(hosts, names), "the hosts to come to rest",
                            seconds=PATIENCE)
        self.world.serves()
        owner = self.world.host()
        for damage in complaints_about(names, os.listdir(self.there),
                                       [host.poll() for host in hosts],
                                       owner is not None and self.world.is_running(owner)):
            self.world.damage(*damage)
        shutil.rmtree(self.place)


def started_together(count, is_while_one_ends=False):
    def run(context, result):
        with World(context, result) as world:
            starts = Starts(world)
            while result.tried < context.times and result.damages < 20:
                starts.round(count, is_while_one_ends)
                result.tried += 1
    return run


# What the checks have to see.

GOOD = (["a", "b"], ["a", "b"], [0, None], True)
PLANTED = {
    "a request that nobody carried out": (["a", "b"], ["a"], [0, None], True),
    "a request carried out twice": (["a", "b"], ["a", "b", "b 2"], [0, None], True),
    "a host that fails": (["a", "b"], ["a", "b"], [1, None], True),
    "two hosts that run": (["a", "b"], ["a", "b"], [None, None], True),
    "no host that serves": (["a", "b"], ["a", "b"], [0, 0], False),
}


def expect_seen(case):
    assert not list(complaints_about(*GOOD)), "damage without a cause"
    assert list(complaints_about(*case)), "it counts as whole"


ALL_DONE = ("each request is carried out exactly once, one host remains and serves, the others end "
            "with success.")
ROWS = [
    Row("Two hosts started at once", "Two hosts with a request file each, and a request over the "
        f"bus that starts one more, come at the same instant; {ALL_DONE}", 200, 4,
        started_together(2), is_for_sanitizers=False),
    Row("Ten hosts started at once", f"As before, with ten hosts; {ALL_DONE}", 50, 0,
        started_together(10), is_for_sanitizers=False),
    Row("Two hosts started while one ends", "As before, at the moment at which the host that runs "
        f"is told to end; {ALL_DONE}", 100, 0, started_together(2, is_while_one_ends=True),
        is_for_sanitizers=False),
]
SELF_TESTS = [SelfTest(f"starts: {name}", lambda context, case=case: expect_seen(case))
              for name, case in PLANTED.items()]
