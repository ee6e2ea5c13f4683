"""A click for which there is no host: the file manager goes on, and its user is told."""

import os
import signal
import time

from menu_test_case import PROMPT, MenuTest, main
from session import APPLICATION_ID, wait_until


class NoHost(MenuTest):
    def choose_and_go_on(self):
        """Clicks on an item that needs the host; the file manager answers to the next clicks."""
        self.manager.open_menu("alpha.txt")
        self.manager.choose("Copy to Folder", "Archive")
        started = time.monotonic()
        self.manager.open_menu("beta.txt")
        self.assertLess(time.monotonic() - started, PROMPT)
        self.manager.close_menu()
        self.manager.key("F2")
        self.manager.key("Escape")

    def test_one_that_cannot_be_started(self):
        (self.session.services / f"{APPLICATION_ID}.service").unlink()
        bus = "org.freedesktop.DBus"
        self.session.call_bus("/org/freedesktop/DBus", bus + ".ReloadConfig", destination=bus)
        self.start_manager()
        self.choose_and_go_on()
        wait_until(lambda: self.desktop.messages, "a message")
        self.assertEqual(self.desktop.messages, [
            "Tavrin cannot be started. The command has not been carried out."])

    def test_one_that_does_not_answer(self):
        host = self.session.start_waiting_host()
        self.start_manager()
        before = len(self.session.log_lines())
        os.kill(host.pid, signal.SIGSTOP)
        try:
            self.choose_and_go_on()
            self.assertEqual(self.desktop.messages, [])
            wait_until(lambda: self.desktop.messages, "a message")
        finally:
            os.kill(host.pid, signal.SIGCONT)
        self.assertEqual(self.desktop.messages, [
            "Tavrin does not answer. The command has not been carried out."])
        wait_until(lambda: any("ignored" in line for line in self.session.log_lines()[before:]),
                   "the late request to be ignored")
        self.assertEqual(self.names_in(self.archive), [])


main()
