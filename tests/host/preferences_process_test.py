"""The process that shows the preferences window: its place in the session, its start and its end."""

import os
import signal
import subprocess
from pathlib import Path

from portal import Portal
from preferences import GENERAL, TITLE, PreferencesTest
from session import APPLICATION_PATH, BUILD_DIR, SOURCE_DIR, HostTest, main, wait_until

WINDOW_OPTION = "--preferences-window"
LOGIND = "org.freedesktop.login1"


def window_processes(session):
    """The processes of a session that show its preferences."""
    found = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            words = (process / "cmdline").read_bytes().split(b"\0")
            if WINDOW_OPTION.encode() in words and os.fsencode(session.runtime) in (
                    process / "environ").read_bytes():
                found.append(int(process.name))
        except OSError:
            continue
    return found


class RestartingTheFileManager(PreferencesTest):
    opens_window = False

    def setUp(self):
        super().setUp()
        self.started = self.session.folder / "started"
        programs = self.session.folder / "programs"
        programs.mkdir()
        (programs / "dolphin").write_text(f'#!/bin/sh\necho "$@" >> "{self.started}"\n')
        (programs / "dolphin").chmod(0o700)
        self.session.environment["PATH"] = f"{programs}:{self.session.environment['PATH']}"
        self.viewer = self.session.start_program(
            ["/usr/bin/python3", SOURCE_DIR / "tests" / "platform" / "desktop" / "file-viewer.py",
             "org.kde.dolphin-PID", "--windows", "1"], log_name="viewer.log")
        wait_until(lambda: "ready" in self.session.log_of("viewer.log"), "the file manager")
        self.open_window()

    def press_restart(self):
        self.show_page(GENERAL)
        self.press_button("Restart File Manager")
        self.wait_for_state(self.find("push button", "Restart File Manager"), "focused")

    def wait_for_restart(self):
        wait_until(lambda: self.viewer.poll() is not None, "the file manager to end")
        wait_until(lambda: self.started.exists() and self.started.read_text().endswith("\n"),
                   "the file manager to be started again")
        self.assertEqual(self.started.read_text(), "--daemon\n")
        self.assertEqual(self.session.log_of("viewer.log"), "ready\nclose /dolphin/Dolphin_1\n")
        self.assertNotIn("restart file manager", self.session.whole_log())

    def test_the_button_does_it(self):
        self.press_restart()
        self.wait_for_restart()
        self.assertTrue(self.find("radio button", GENERAL).has("checked"))

    def test_a_closed_window_breaks_nothing_off(self):
        self.press_restart()
        self.close_window()
        self.wait_for_restart()
        wait_until(lambda: not window_processes(self.session), "the window's process to end")

    def test_a_window_opened_again_meanwhile_stays(self):
        process = window_processes(self.session)
        self.press_restart()
        self.close_window()
        self.open_window()
        self.wait_for_restart()
        self.show_page(GENERAL)
        self.assertEqual(window_processes(self.session), process)
        self.close_window()
        wait_until(lambda: not window_processes(self.session), "the window's process to end")


class Appearance(PreferencesTest):
    opens_window = False

    def background(self):
        """The colour of the window next to its lower right corner."""
        left, top, width, height = self.frame().extents
        picture = self.session.screenshot("appearance", self.session.folder)
        place = f"%[pixel:p{{{left + width - 8},{top + height - 8}}}]"
        return subprocess.run(["convert", picture, "-format", place, "info:"],
                              stdout=subprocess.PIPE, check=True).stdout.decode()

    def test_the_window_is_as_dark_as_the_desktop(self):
        portal = Portal(self.session.environment["DBUS_SESSION_BUS_ADDRESS"], is_dark=True)
        self.addCleanup(portal.close)
        self.open_window()
        dark, light = "srgb(28,31,33)", "srgb(255,255,255)"
        wait_until(lambda: self.background() == dark, "a dark window")
        for is_dark, colour in ((False, light), (True, dark), (False, light)):
            portal.choose(is_dark)
            wait_until(lambda wanted=colour: self.background() == wanted, f"{colour}")


class StandardInput(HostTest):
    """The process started by hand."""

    def test_one_that_has_no_other_end_is_refused(self):
        program = BUILD_DIR / "bin" / "tavrin"
        for source in ("<&-", "</dev/null", "</dev/zero", f"<{program}"):
            with self.subTest(source):
                done = subprocess.run(
                    ["sh", "-c", f'exec "$0" {WINDOW_OPTION} {source}', program],
                    env=self.session.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                    stderr=subprocess.PIPE, timeout=30, check=False)
                self.assertEqual((done.returncode, done.stdout), (2, b""))
                self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)

    def test_it_outlives_the_bus_and_ends_with_its_pipe(self):
        window = subprocess.Popen([BUILD_DIR / "bin" / "tavrin", WINDOW_OPTION],
                                  env=self.session.environment, stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE)
        self.addCleanup(window.stdout.close)
        self.addCleanup(window.kill)
        self.show(window)
        self.session.end_bus()
        shown = self.session.wait_for_window(TITLE)
        self.session.run("xdotool", "windowminimize", shown)
        self.session.wait_for_no_window(TITLE)
        self.show(window)
        window.stdin.close()
        self.assertEqual(window.wait(30), 0)

    def show(self, window):
        window.stdin.write(b"show\n")
        window.stdin.flush()
        self.assertEqual(window.stdout.readline(), b"show\n")
        self.session.wait_for_window(TITLE)


class Destroyed(PreferencesTest):
    def test_a_window_destroyed_by_another_program_can_be_opened_again(self):
        host = self.session.hosts[0]
        for _ in range(2):
            self.session.run("xdotool", "windowclose", self.window)
            wait_until(lambda: not window_processes(self.session), "the window's process to end")
            self.open_window()
            self.show_page(GENERAL)
        self.assert_alive(host)

    def test_windows_that_the_program_destroys_itself_end_nothing(self):
        self.show_page(GENERAL)
        process = window_processes(self.session)
        self.press(self.find("check box", "Authorize the whole disk"))
        self.session.cancel()
        self.show_page(GENERAL)
        self.assertEqual(window_processes(self.session), process)


class EndOfTheHost(PreferencesTest):
    """However the host ends, its window's process does."""

    opens_window = False

    def ends_with(self, end):
        host = self.open_window()
        self.assertEqual(len(window_processes(self.session)), 1)
        end(host)
        wait_until(lambda: not window_processes(self.session), "the window's process to end")
        self.assertEqual(self.session.windows(TITLE), [])
        wait_until(lambda: host.poll() is not None, "the host to end")
        return host.returncode

    def test_by_a_signal(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                self.assertEqual(self.ends_with(lambda host: host.send_signal(number)), 0)

    def test_by_force(self):
        self.assertEqual(self.ends_with(lambda host: host.kill()), -signal.SIGKILL)
        self.session.hosts.clear()

    def test_by_its_action(self):
        def quit_host(_):
            self.session.call_bus(APPLICATION_PATH, "org.freedesktop.Application.ActivateAction",
                                  "quit", "@av []", "@a{sv} {}")
            return True
        self.assertEqual(self.ends_with(quit_host), 0)

    def test_by_a_sleep(self):
        self.session.start_system_bus()
        self.session.start_program(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template",
                                    "logind"], log_name="logind.log")
        wait_until(lambda: self.announce_sleep("false"), "logind")
        self.assertEqual(self.ends_with(lambda _: self.announce_sleep("true")), 0)

    def announce_sleep(self, value):
        return self.session.run(
            "gdbus", "call", "--system", "--dest", LOGIND, "--object-path",
            "/org/freedesktop/login1", "--method", "org.freedesktop.DBus.Mock.EmitSignal",
            f"{LOGIND}.Manager", "PrepareForSleep", "b", f"[<{value}>]")


class EndOfTheBus(HostTest):
    def test_the_host_and_its_window_end(self):
        host = self.session.start_host()
        self.session.wait_for_window(TITLE)
        self.session.end_bus()
        wait_until(lambda: host.poll() is not None, "the host to end")
        wait_until(lambda: not window_processes(self.session), "the window's process to end")


main()
