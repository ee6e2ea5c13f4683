"""Each system call of an operation fails in turn."""

import contextlib

from hiding import HidingScene
from injection import Call, Injector, ensure_strace
from programme import Context, Result, Row, SelfTest
from scene import Scene, two_file_systems
from trees import build_many, build_one_of_each

OPERATIONS = ("copy", "move", "remove", "hide")
WRITING = {"write", "pwrite64", "writev", "pwritev", "copy_file_range", "sendfile", "splice",
           "fallocate", "ftruncate", "open", "openat", "openat2", "mkdir", "mkdirat", "link",
           "linkat", "symlinkat", "mknodat", "rename", "renameat", "renameat2", "fsetxattr", "lsetxattr",
           "setxattr", "fsync", "fdatasync", "syncfs", "close", "ioctl", "fchown", "fchownat"}


@contextlib.contextmanager
def scene_of(operation: str, context: Context, result: Result, build=build_one_of_each):
    with two_file_systems(context) as (near, far, engine):
        if operation == "hide":
            yield HidingScene(near, engine, result, names=5)
        else:
            yield Scene(near, far, engine, build, result)


def sample_of(calls: list[Call], context: Context) -> list[Call]:
    """All calls when there is time for them, else some of them, at random."""
    share = max(context.times // len(OPERATIONS), 1)
    return calls if len(calls) <= share else context.random.sample(calls, share)


def fail_each(fault: str, is_asked):
    """Tries the fault at each call whose name `is_asked`, in an engine with one thread."""
    def run(context: Context, result: Result) -> None:
        ensure_strace()
        done = met = 0
        failing: set[str] = set()
        for operation in OPERATIONS:
            with scene_of(operation, context, result) as scene:
                injector = Injector(scene, operation, workers=1)
                injector.learn_names()
                scene.stand_up()
                calls = injector.calls([name for name in injector.names if is_asked(name)])
                scene.stand_up()
                for call in sample_of(calls, context):
                    was_met, was_done = try_call(scene, injector, operation, call, fault)
                    met += was_met
                    done += was_met and was_done
                    failing |= {call.name} if was_met and not was_done else set()
        result.tried += met
        if fault == "error=EINTR":
            result.note("It ended the operation at: " + ", ".join(sorted(failing)) + ".")
        if not fault.startswith("signal="):
            result.note(f"{done} of the operations came to their end nevertheless.")
    return run


def try_call(scene, injector: Injector, operation: str, call: Call, fault: str):
    outcome, was_met = injector.inject(call, fault)
    about = f"{operation}, {fault} at {call.name} {call.number}"
    scene.check(operation, outcome, about, may_be_left=True)
    scene.stand_up()
    return was_met, outcome.is_done


def fail_at_random(context: Context, result: Result) -> None:
    """With several threads the numbers of calls are never twice the same."""
    ensure_strace()
    for operation in ("copy", "move", "remove"):
        with scene_of(operation, context, result, build_many) as scene:
            injector = Injector(scene, operation, workers=4)
            injector.learn_names()
            scene.stand_up()
            # A thread's first calls have the numbers of those that start the process.
            calls = [call for call in injector.calls(injector.names)
                     if call.number > injector.before[call.name]]
            scene.stand_up()
            for turn in range(context.times // 3):
                if turn and not context.has_time():
                    break
                fault = context.random.choice(["error=EIO", "error=EINTR", "error=ENOSPC",
                                               "error=EMFILE", "signal=KILL"])
                call = context.random.choice(calls)
                was_met, _ = try_call(scene, injector, operation, call, fault)
                result.tried += was_met


def fail_to_start_threads(context: Context, result: Result) -> None:
    ensure_strace()
    for operation in ("copy", "move", "remove"):
        with scene_of(operation, context, result, build_many) as scene:
            injector = Injector(scene, operation, workers=4)
            for number in range(1, context.times // 3 + 1):
                result.tried += try_call(scene, injector, operation, Call(number, "clone3"),
                                         "error=EAGAIN")[0]
    if result.tried == 0:
        result.note("No operation started a thread.")


def is_any(_: str) -> bool:
    return True


def is_writing(name: str) -> bool:
    return name in WRITING


ALL = 100_000
ROWS = [
    Row("EIO at each system call",
        "A copy and a move to another file system, a removal and a hiding, of a tree with an item "
        "of each kind: one call after the other fails with EIO, by strace.",
        ALL, 16, fail_each("error=EIO", is_any), False),
    Row("EINTR at each system call", "The same with EINTR: the operation ends well or fails whole.",
        ALL, 16, fail_each("error=EINTR", is_any), False),
    Row("ENOSPC at each writing call", "The same with ENOSPC, at the calls that take space.",
        ALL, 8, fail_each("error=ENOSPC", is_writing), False),
    Row("EDQUOT at each writing call", "The same with EDQUOT.",
        ALL, 8, fail_each("error=EDQUOT", is_writing), False),
    Row("SIGKILL at each system call", "The same, killed as it makes the call.",
        ALL, 16, fail_each("signal=KILL", is_any), False),
    Row("Any of these at random, with four threads",
        "EIO, EINTR, ENOSPC, EMFILE and SIGKILL at random calls of a tree of 150 items.",
        900, 12, fail_at_random, False),
    Row("No thread to be had", "Starting one thread after the other fails with EAGAIN.",
        12, 3, fail_to_start_threads, False),
]


def injected_is_seen(context: Context) -> None:
    """The faults are real: a program that reads a file fails where it is told to."""
    ensure_strace()
    result = Result("planted", "")
    with scene_of("copy", context, result) as scene:
        injector = Injector(scene, "copy", workers=1)
        injector.learn_names()
        scene.stand_up()
        calls = injector.calls(["mkdirat"])
        scene.stand_up()
        outcome, was_met = injector.inject(calls[0], "error=EIO")
        assert was_met and outcome.code == 1, f"{outcome} came of it"
        outcome, was_met = injector.inject(Call(60_000, "mkdirat"), "error=EIO")
        assert not was_met and outcome.is_done, f"{outcome} came of nothing"


def lie_is_seen(context: Context) -> None:
    """Calls that say they are done and have done nothing must show in the copy."""
    ensure_strace()
    result = Result("planted", "")
    with scene_of("copy", context, result) as scene:
        injector = Injector(scene, "copy", workers=1)
        for number in range(1, 100):
            outcome, was_met = injector.inject(Call(number, "fchmod"), "retval=0")
            if not was_met or result.half_named:
                break
            scene.check("copy", outcome, "planted")
            scene.stand_up()
    assert result.half_named, "calls that did nothing left no trace"


SELF_TESTS = [
    SelfTest("a call that fails by injection", injected_is_seen),
    SelfTest("a call that lies about its success", lie_is_seen),
]
