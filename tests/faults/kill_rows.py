"""The process is killed in the middle of an operation."""

import os
import subprocess
import time

import checks_of_checks
from engine import Engine, Outcome, finish
from hiding import HidingScene
from manifest import manifest_of
from programme import Context, Result, Row
from scene import Scene, two_file_systems
from trees import build_many

WORKERS = (None, 1, 2, 4)


def kill_after(process: subprocess.Popen, seconds: float) -> Outcome:
    start = time.monotonic()
    try:
        process.wait(timeout=max(seconds, 0))
    except subprocess.TimeoutExpired:
        process.kill()
    return finish(process, start)


class KillTimes:
    """Moments between the start of the work and its end, as earlier runs took that long."""

    def __init__(self, context: Context, engine: Engine):
        self.random = context.random
        runs = sorted(engine.run("recover").seconds for _ in range(7))
        self.idle = runs[0]  # what a process takes that has nothing to do
        self.longest = 0.0

    def learn(self, outcome: Outcome) -> None:
        self.longest = max(self.longest, outcome.seconds) if self.longest else outcome.seconds

    def next(self) -> float:
        return self.random.uniform(self.idle * 0.7, max(self.longest, self.idle * 1.2))

    def was_too_late(self) -> None:
        self.longest = max(self.longest * 0.98, self.idle * 1.2)


def tries(context: Context, result: Result, once) -> None:
    """Calls `once` until so many kills have met a living process; gives up after far too many."""
    for _ in range(context.times * 5):
        if result.tried >= context.times or not context.has_time():
            return
        once()
    result.note(f"Only {result.tried} of {context.times} kills came before the end.")


def kill_during(operation: str):
    def run(context: Context, result: Result) -> None:
        with two_file_systems(context) as (near, far, engine):
            scene = Scene(near, far, engine, build_many, result)
            moments = KillTimes(context, engine)
            for _ in range(3):
                moments.learn(scene.run(operation))
                scene.stand_up()
            met = 0

            def once() -> None:
                nonlocal met
                moment, workers = moments.next(), context.random.choice(WORKERS)
                outcome = kill_after(engine.start(*scene.words(operation), workers=workers), moment)
                if not outcome.was_killed:
                    moments.was_too_late()
                met += outcome.was_killed and is_in_the_middle(scene, operation)
                result.tried += outcome.was_killed
                scene.check(operation, outcome, f"seed {context.seed}, killed after {moment:.6f} s")
                scene.stand_up()

            tries(context, result, once)
            result.note(f"{met} of the kills found the work begun and not ended.")
    return run


def is_in_the_middle(scene: Scene, operation: str) -> bool:
    """Whether something is done that is not all: by the leftovers, or by what has gone already."""
    if operation == "remove":
        return 0 < len(manifest_of(scene.source)) < len(scene.whole)
    if operation == "move" and os.path.lexists(scene.source) and os.path.lexists(scene.destination):
        return True
    return bool(scene.engine.records())


def kill_during_hide(context: Context, result: Result) -> None:
    with context.scratch() as near:
        engine = Engine(context.program("file-engine"), f"{near}/data")
        scene = HidingScene(near, engine, result, names=3000)
        moments = KillTimes(context, engine)
        for _ in range(3):
            moments.learn(scene.run("hide"))
            scene.stand_up()
        renewed = partly = 0

        def once() -> None:
            nonlocal renewed, partly
            moment = moments.next()
            outcome = kill_after(engine.start(*scene.words("hide")), moment)
            if not outcome.was_killed:
                moments.was_too_late()
            result.tried += outcome.was_killed
            partly += outcome.was_killed and bool(engine.records())
            renewed += outcome.was_killed and scene.list.read_bytes() != scene.old
            scene.check("hide", outcome, f"seed {context.seed}, killed after {moment:.6f} s")
            scene.stand_up()

        tries(context, result, once)
        result.note(f"{partly} of the kills found the list half written under its hidden name, "
                    f"{renewed} the new one in place.")


ROWS = [
    Row("SIGKILL during a copy",
        "A tree of 150 items is copied to another file system; the process is killed at a random "
        "moment, the next start clears up, and source, copy and all beside them are compared.",
        500, 12, kill_during("copy")),
    Row("SIGKILL during a move across file systems",
        "The same for a move: the tree must be whole in its old or in its new place.",
        500, 12, kill_during("move")),
    Row("SIGKILL during a removal",
        "The same for a removal: what is not yet removed must be as it was.",
        500, 12, kill_during("remove")),
    Row("SIGKILL during the hiding of 3,000 items",
        "The list .hidden must be the old or the new one, whole and with its mode.",
        500, 8, kill_during_hide),
]


SELF_TESTS = checks_of_checks.SELF_TESTS
