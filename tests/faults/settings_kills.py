"""Processes that are killed while they write settings."""

import contextlib
import os
import signal
import sqlite3
import subprocess
import time

from programme import NotHere, Row, SelfTest
from settings_steps import (PATIENCE, complaints_about, export, kind_of_damage, step_of, values_of)

VICTIMS = ("first", "second")
SURVIVOR = "survivor"
LONGEST_LIFE = 0.15
# Sizes of the files that three writers of a few icons stay below, in bytes.
LARGEST_FILES = {"defaults.sqlite": 12 << 20, "defaults.sqlite-wal": 16 << 20}


class Domain:
    """A standard domain of its own."""

    def __init__(self, context, folder):
        self.program = context.program("tavrin-settings-writer")
        if not (context.build / "bin" / "tavrin-defaults").exists():
            raise NotHere("tavrin-defaults is not built")
        self.build = context.build
        self.folder = folder
        self.files = os.path.join(folder, "app.tavrin.Tavrin")
        self.environment = {"PATH": os.environ["PATH"], "HOME": folder, "XDG_CONFIG_HOME": folder}

    def values(self):
        return export(self.build, self.environment)

    def sizes(self):
        """The sizes of files that have grown too large, by name."""
        found = {}
        for name, largest in LARGEST_FILES.items():
            with contextlib.suppress(FileNotFoundError):
                size = os.path.getsize(os.path.join(self.files, name))
                if size > largest:
                    found[name] = size
        return found


class Writer:
    """A process that writes for ever behind a step."""

    def __init__(self, domain, name, step):
        self._step = step
        self._text = b""
        self._errors = os.path.join(domain.folder, name + ".errors")
        self._output, end = os.pipe()
        with open(self._errors, "wb") as errors:
            self.process = subprocess.Popen(
                [domain.program, name, str(step)], env=domain.environment,
                stdin=subprocess.DEVNULL, stdout=end, stderr=errors)
        os.close(end)
        os.set_blocking(self._output, False)

    def step(self):
        """The last step that it has said to have made."""
        with contextlib.suppress(BlockingIOError):
            while chunk := os.read(self._output, 65536):
                self._text += chunk
        *lines, self._text = self._text.split(b"\n")
        self._step = max([self._step, *(int(line) for line in lines if line.isdigit())])
        return self._step

    def kill(self):
        """Returns the last step that it had said to have made, and what it complained about."""
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        step = self.step()
        os.close(self._output)
        with open(self._errors, errors="replace") as errors:
            return step, errors.read()

    def has_gone_on(self):
        """Whether it comes to another step in time."""
        before = self.step()
        end = time.monotonic() + PATIENCE
        while self.step() == before:
            if time.monotonic() > end or self.process.poll() is not None:
                return False
            time.sleep(0.001)
        return True


def judge(result, domain, acknowledged, seed):
    """Compares what there is with what was acknowledged; returns the writers' steps."""
    try:
        values = domain.values()
    except (ValueError, subprocess.TimeoutExpired) as error:
        result.damage("blocked", f"{error} (seed {seed})")
        return acknowledged
    steps = {}
    for name, step in acknowledged.items():
        found = values_of(values, name)
        steps[name] = step_of(found, name, step)
        if steps[name] is None:
            result.damage(kind_of_damage(found, name, step),
                          f"{name} is not as step {step} or {step + 1} left it (seed {seed})")
            steps[name] = step
    for complaint in complaints_about(domain.files):
        result.damage("half_named", f"{complaint} (seed {seed})")
    for name, size in domain.sizes().items():
        result.damage("half_named", f"{name} has grown to {size:,} bytes (seed {seed})")
    return steps


def kill_round(context, result, domain, steps):
    """Lets victims write, kills each at a moment of its own; returns the steps found."""
    ends = sorted((context.random.uniform(0, LONGEST_LIFE), name) for name in steps)
    start = time.monotonic()
    writers = {name: Writer(domain, name, step) for name, step in steps.items()}
    acknowledged = {}
    for end, name in ends:
        time.sleep(max(0, start + end - time.monotonic()))
        has_failed = writers[name].process.poll() is not None
        acknowledged[name], errors = writers[name].kill()
        result.tried += 1
        if has_failed or errors:
            result.damage("blocked", f"{name} ended by itself: {errors} (seed {context.seed})")
    return judge(result, domain, acknowledged, context.seed)


def killed_writers(context, result):
    with context.scratch() as folder:
        domain = Domain(context, folder)
        survivor = Writer(domain, SURVIVOR, -1)
        try:
            steps = dict.fromkeys(VICTIMS, -1)
            while result.tried < context.times and result.damages < 20:
                if not survivor.has_gone_on():
                    result.damage("blocked", f"another writer stands still (seed {context.seed})")
                steps = kill_round(context, result, domain, steps)
        finally:
            last, errors = survivor.kill()
        if errors:
            result.damage("blocked", f"another writer complained: {errors}")
        judge(result, domain, {SURVIVOR: last}, context.seed)
    commits = sum(step + 1 for step in steps.values())
    result.note(f"The killed had made {commits:,} commits, the one that lived {last + 1:,}.")


# What the checks have to see.

def change(domain, statement):
    with sqlite3.connect(os.path.join(domain.files, "defaults.sqlite")) as connection:
        connection.execute(statement)
    connection.close()


def other_list(domain):
    """The whole list is there, and is not the one that was acknowledged."""
    change(domain, "UPDATE setting SET value=(SELECT value FROM setting WHERE key=CAST("
                   "'first.left' AS BLOB)) WHERE key=CAST('first.list' AS BLOB)")


PLANTED = {
    "an icon of a list is another": lambda domain: change(
        domain, "UPDATE large_data SET bytes=zeroblob(5000)"),
    "an icon of a list is gone": lambda domain: change(
        domain, "DELETE FROM large_data WHERE id=(SELECT max(id) FROM large_data)"),
    "an icon that nothing uses stays": lambda domain: change(
        domain, "INSERT INTO large_data(hash, bytes) VALUES(x'00', x'00')"),
    "a value is gone": lambda domain: change(
        domain, "DELETE FROM setting WHERE key=CAST('first.left' AS BLOB)"),
    "a value is an other's": other_list,
    "a database set aside": lambda domain: open(
        os.path.join(domain.files, "defaults.sqlite.corrupt-1"), "w").close(),
    "a damaged database": lambda domain: os.truncate(
        os.path.join(domain.files, "defaults.sqlite"), 8192),
}


class Count:
    """A result that says nothing."""

    def __init__(self):
        self.damages = 0

    def damage(self, _kind, _message):
        self.damages += 1


def expect_seen(context, plant):
    with context.scratch() as folder:
        domain = Domain(context, folder)
        writer = Writer(domain, "first", -1)
        while writer.step() < 30:
            time.sleep(0.01)
        step, _ = writer.kill()
        # The next to open it writes the log into the database, at its end.
        domain.values()
        clean = Count()
        step = judge(clean, domain, {"first": step}, 0)["first"]
        assert clean.damages == 0, "damage without a cause"
        plant(domain)
        seen = Count()
        judge(seen, domain, {"first": step}, 0)
        assert seen.damages > 0, "it counts as whole"


def expect_old_seen(context):
    """Values of a former step have been lost, whole as they are."""
    with context.scratch() as folder:
        domain = Domain(context, folder)
        writer = Writer(domain, "first", -1)
        while writer.step() < 10:
            time.sleep(0.01)
        step, _ = writer.kill()
        seen = Count()
        judge(seen, domain, {"first": step + 2}, 0)
        assert seen.damages > 0, "it counts as whole"


ROWS = [
    Row("SIGKILL during writes of settings",
        "Processes that write lists with icons, pairs of values and deletions into one domain are "
        "killed at random moments; a new process must read what their last acknowledged commit "
        "left, or the next one whole, with every icon and none left over; a writer beside them "
        "goes on.", 500, 30, killed_writers),
]
SELF_TESTS = [SelfTest(f"settings: {name}", lambda context, plant=plant:
                       expect_seen(context, plant)) for name, plant in PLANTED.items()]
SELF_TESTS.append(SelfTest("settings: a commit is lost", expect_old_seen))
