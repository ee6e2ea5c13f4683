"""System calls of a process that fail on demand, by strace."""

import collections
import re
import shutil
import subprocess
import tempfile
import time

from engine import Outcome, finish
from programme import NotHere

# Not those that only map memory, and the start of the process: no file system answers to them.
NOT_ASKED = {"mmap", "munmap", "execve", "brk"}
LINE = re.compile(r"^(\d+) +(\w+)\((.*)$")
# strace numbers the calls of one name in one thread.
Call = collections.namedtuple("Call", "number name")


def ensure_strace() -> None:
    if not shutil.which("strace"):
        raise NotHere("strace is not installed")
    probe = ["strace", "-o", "/dev/null", "-e", "inject=chdir:error=EIO", "true"]
    if subprocess.run(probe, capture_output=True, check=False).returncode != 0:
        raise NotHere("processes may not be traced here")


class Injector:
    """Runs an operation of a scene with a call that fails. Calls before the first that has to do
    with the scene's folder belong to the start of the process and do not count.
    """

    def __init__(self, scene, operation: str, workers: int):
        self.engine, self.words, self.workers = scene.engine, scene.words(operation), workers
        self.marker = scene.near.lstrip("/")
        self.names: list[str] = []
        self.before: collections.Counter = collections.Counter()  # calls of the start, by name

    def is_of_operation(self, match: re.Match) -> bool:
        return self.marker in match[3] and match[2] != "execve"

    def trace(self, *options: str) -> tuple[Outcome, list[str]]:
        with tempfile.NamedTemporaryFile("r", prefix="tavrin-faults-", errors="replace") as log:
            command = ["strace", "-f", "-qq", "-o", log.name, "-e", "signal=none", *options,
                       *self.engine.command(*self.words, workers=self.workers)]
            start = time.monotonic()
            process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
            return finish(process, start), log.read().splitlines()

    def learn_names(self) -> Outcome:
        """Runs the operation to see which calls it makes."""
        outcome, lines = self.trace("-e", "trace=%file,%desc")
        found = [match for line in lines if (match := LINE.match(line))]
        first = next(index for index, match in enumerate(found) if self.is_of_operation(match))
        self.names = sorted({match[2] for match in found[first:]} - NOT_ASKED)
        return outcome

    def calls(self, names: list[str]) -> list[Call]:
        """Runs the operation; its calls of these names, after the start of the process."""
        _, lines = self.trace("-e", "trace=" + ",".join(self.names))
        counts: collections.Counter = collections.Counter()
        calls, has_begun = [], False
        for match in filter(None, map(LINE.match, lines)):
            if not has_begun and self.is_of_operation(match):
                has_begun = True
                self.before = collections.Counter({key[1]: counts[key] for key in counts})
            counts[match[1], match[2]] += 1
            if has_begun and match[2] in names:
                calls.append(Call(counts[match[1], match[2]], match[2]))
        return calls

    def inject(self, call: Call, fault: str) -> tuple[Outcome, bool]:
        """Runs the operation with the fault at that call; whether the fault was met."""
        outcome, lines = self.trace("-e", f"trace={call.name}",
                                    "-e", f"inject={call.name}:{fault}:when={call.number}")
        if fault.startswith("signal="):
            return outcome, outcome.was_killed
        return outcome, any("(INJECTED)" in line for line in lines)
