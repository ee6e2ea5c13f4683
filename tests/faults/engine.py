"""The file engine as a program, to be killed and given trouble."""

import dataclasses
import os
import subprocess
import time

LONGEST = 60.0  # seconds after which an operation counts as blocked; all here take less than one


@dataclasses.dataclass(frozen=True)
class Outcome:
    """How an operation ended."""

    code: int | None  # of the process, negative for a signal; None when it had to be ended
    errors: str
    seconds: float

    @property
    def is_done(self) -> bool:
        return self.code == 0

    @property
    def was_killed(self) -> bool:
        return self.code == -9

    @property
    def is_blocked(self) -> bool:
        return self.code is None

    @property
    def has_crashed(self) -> bool:
        """Whether it ended in a way of its own that no failure has."""
        return self.code is not None and self.code not in (0, 1, -9)


class Engine:
    def __init__(self, program: str, data_folder: str):
        self.program = program
        self.data_folder = data_folder
        os.makedirs(data_folder, exist_ok=True)

    def command(self, *words: str, workers: int | None = None) -> list[str]:
        few = ["--workers", str(workers)] if workers else []
        return [self.program, "--data", self.data_folder, *few, *words]

    def start(self, *words: str, workers: int | None = None) -> subprocess.Popen:
        command = self.command(*words, workers=workers)
        return subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def run(self, *words: str, workers: int | None = None, under: tuple[str, ...] = ()) -> Outcome:
        """Runs an operation to its end; `under` is a program that runs it, with its arguments."""
        start = time.monotonic()
        process = subprocess.Popen([*under, *self.command(*words, workers=workers)],
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        return finish(process, start)

    def recover(self) -> Outcome:
        return self.run("recover")

    def records(self) -> list[str]:
        """The files that tell of unfinished operations."""
        return [os.path.join(path, name) for path, _, files in os.walk(self.data_folder)
                for name in files if name.endswith(".record")]


def finish(process: subprocess.Popen, start: float) -> Outcome:
    """Waits for the end of a process, and ends it when it does not come."""
    try:
        _, errors = process.communicate(timeout=LONGEST)
        code = process.returncode
    except subprocess.TimeoutExpired:
        process.kill()
        _, errors = process.communicate()
        code = None
    return Outcome(code, errors.decode(errors="replace").strip(), time.monotonic() - start)
