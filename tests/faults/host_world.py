"""A private desktop in which the host runs, is sent requests, and comes to harm."""

import contextlib
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import programme
from manifest import leftovers_in

sys.path.insert(0, str(programme.ROOT / "tests" / "host"))

NEEDED = ("Xvfb", "openbox", "xdotool", "xprop", "dbus-daemon", "gdbus")
OTHER_FILE_SYSTEM = "/dev/shm"
PATIENCE = 30.0


def tools():
    """The module of the tests of the host, which takes its build folder at its import."""
    import session  # pylint: disable=import-outside-toplevel
    return session


class World:
    """Use as a context manager. The host may work everywhere: the whole disk is granted."""

    def __init__(self, context, result, session=None):
        missing = [name for name in NEEDED if shutil.which(name) is None]
        if missing:
            raise programme.NotHere(f"{', '.join(missing)} is not installed")
        if not (context.build / "bin" / "tavrin").exists():
            raise programme.NotHere("the host is not built")
        os.environ["TAVRIN_BUILD_DIR"] = str(context.build)
        self.result = result
        self.seed = context.seed
        self.random = context.random
        self._cleanup = contextlib.ExitStack()
        self._make_session = session or (lambda: tools().Session())
        self._served = 0

    def __enter__(self):
        with contextlib.ExitStack() as started:
            self.session = started.enter_context(self._make_session())
            self.files = self.session.files
            self.other = Path(tempfile.mkdtemp(prefix="tavrin-faults-", dir=OTHER_FILE_SYSTEM))
            started.callback(programme.remove_whole, str(self.other))
            if os.stat(self.other).st_dev == os.stat(self.files).st_dev:
                raise programme.NotHere("there is no second file system")
            self.start()
            self.session.defaults("write", "standard", "enableDirectDeleteFiles", "-bool", "true")
            self.session.grant("/")
            self._cleanup = started.pop_all()
        return self

    def __exit__(self, *_):
        self._cleanup.close()

    # The host

    def start(self):
        """Starts the host, unless the bus has, and waits until it serves requests."""
        self.session.start_waiting_host()

    def host(self):
        """The process of the host that has the name on the bus; nothing when there is none."""
        return self.session.owner_of(tools().APPLICATION_ID)

    def is_running(self, process):
        """Whether a process has not ended, whoever has started it."""
        for host in self.session.hosts:
            if host.pid == process:
                return host.poll() is None
        with contextlib.suppress(OSError):
            return Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()[0] != "Z"
        return False

    def wait_for_end(self, process, seconds=PATIENCE):
        """Whether a process ends in time."""
        end = time.monotonic() + seconds
        while self.is_running(process):
            if time.monotonic() > end:
                return False
            time.sleep(0.005)
        return True

    def end_host(self, number=signal.SIGTERM):
        """Sends the host a signal, and waits for its end."""
        process = self.host()
        if process is None:
            return
        os.kill(process, number)
        if not self.wait_for_end(process):
            self.damage("blocked", f"the host does not end on {signal.Signals(number).name}")
            os.kill(process, signal.SIGKILL)
            self.wait_for_end(process)

    def processor_time(self, process):
        """What a process has used, in clock ticks."""
        fields = Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
        return int(fields[11]) + int(fields[12])

    # Requests

    def send(self, action, *items, **values):
        """Starts a process that sends a request; returns it."""
        words = [f"{key}={value}" for key, value in values.items()]
        return subprocess.Popen(
            [tools().BUILD_DIR / "bin" / "tavrin-request", action, *words, "--", *items],
            env=self.session.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def wait_for_senders(self, senders):
        """Waits until they have ended, as they do soon whatever happens to the host."""
        end = time.monotonic() + PATIENCE
        for sender in senders:
            try:
                sender.wait(max(0.1, end - time.monotonic()))
            except subprocess.TimeoutExpired:
                self.damage("blocked", "a sender waits without end")
                sender.kill()
                sender.wait()
        return [sender.returncode for sender in senders]

    def wait_for(self, condition, what, kind="blocked", seconds=PATIENCE):
        """Whether the condition comes true in time; else that is a damage."""
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                self.damage(kind, f"waited {seconds:.0f} s in vain for {what}")
                return False
            time.sleep(0.01)
        return True

    def serves(self):
        """Whether the host carries out a request, and so has those before it."""
        self._served += 1
        source = self.files / "served" / f"{self._served}.txt"
        arrived = self.files / "served" / "there" / source.name
        arrived.parent.mkdir(parents=True, exist_ok=True)
        source.write_text("served")
        sender = self.send("copyFilesTo", source, ToPath=arrived.parent)
        if self.wait_for_senders([sender]) != [0]:
            self.damage("blocked", "the host accepts no request")
            return False
        return self.wait_for(arrived.exists, "a request to be carried out")

    # What is left

    def records(self):
        """Records of items in the making."""
        folder = self.session.data / tools().APPLICATION_ID / "partials"
        return list(folder.iterdir()) if folder.exists() else []

    def request_files(self):
        folder = self.session.runtime / tools().APPLICATION_ID / "requests"
        return list(folder.iterdir()) if folder.exists() else []

    def leftovers(self):
        return [*self.records(), *leftovers_in(str(self.files)), *leftovers_in(str(self.other))]

    def expect_cleared(self):
        """The host clears what former ones have left, some time after its start."""
        self.wait_for(lambda: not self.leftovers(), "leftovers to be cleared", "half_named")

    def damage(self, kind, message):
        self.result.damage(kind, f"{message} (seed {self.seed})")
