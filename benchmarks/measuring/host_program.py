"""The whole host as a program that copies: a request over the bus, on a private desktop."""

import contextlib
import os
import sys
import time

from measuring.build import SOURCE_DIR
from measuring.programs import Program
from measuring.results import OURS

sys.path.insert(0, str(SOURCE_DIR / "tests" / "host"))

from session import Session, selection  # noqa: E402

PATIENCE = 600


class HostProgram(Program, contextlib.ExitStack):
    """Use as a context manager: the host runs meanwhile, and the disk is granted to it."""

    name = OURS

    def __enter__(self):
        super().__enter__()
        with contextlib.ExitStack() as started:
            self._session = started.enter_context(Session())
            self._session.start_waiting_host()
            self._session.grant("/")
            self.push(started.pop_all())
        return self

    def can(self, operation, item):
        return operation == "copy"

    def carry_out(self, operation, item, source, target):
        """The seconds from the sending of the request until the copy has its name."""
        request = self._session.write_request({
            "Action": "copyFilesTo", "SelectedFilesUrl": selection(source),
            "ToPath": str(target.parent)})
        start = time.perf_counter()
        self._session.open_with_host(request)
        while not os.path.lexists(target):
            time.sleep(0.001)
            if time.perf_counter() > start + PATIENCE:
                raise RuntimeError("the host does not finish: " + self._session.whole_log())
        seconds = time.perf_counter() - start
        request.unlink()
        return seconds
