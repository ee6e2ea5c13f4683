"""How the host starts, and how it ends."""

import signal
import subprocess

from session import (ACCESS_PANEL, APPLICATION_ID, APPLICATION_PATH, BUILD_DIR, PREFERENCES_WINDOW, HostTest, main, selection,
                     wait_until)

ALERT = "^Tavrin$"
LOGIND = "org.freedesktop.login1"


class Lifecycle(HostTest):
    def test_without_a_display_it_says_so_and_fails(self):
        for display in ({}, {"DISPLAY": ":9999"}):
            environment = {name: value for name, value in self.session.environment.items()
                           if name not in ("DISPLAY", "QT_QPA_PLATFORM")} | display
            done = subprocess.run([BUILD_DIR / "bin" / "tavrin"], env=environment, timeout=30,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
            with self.subTest(display=display):
                self.assertGreater(done.returncode, 0)
                lines = done.stderr.decode().splitlines()
                self.assertEqual(len(lines), 1, lines)
                self.assertIn("display", lines[0])

    def test_a_signal_ends_it_and_the_exit_is_announced(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                monitor = self.session.start_program(
                    ["dbus-monitor", "--session", "type='signal',member='ExitService'"],
                    log_name=f"monitor-{number}.log")
                host = self.session.start_waiting_host()
                wait_until(lambda n=number: "NameAcquired" in self.session.log_of(
                    f"monitor-{n}.log"), "the monitor")
                host.send_signal(number)
                self.wait_for_end(host, 0)
                wait_until(lambda n=number: "member=ExitService" in self.session.log_of(
                    f"monitor-{n}.log"), "the notification")
                monitor.terminate()
                self.assertIsNone(self.session.owner_of(APPLICATION_ID))

    def test_at_its_end_it_asks_nothing_more(self):
        for end in ("signal", "quit"):
            with self.subTest(end):
                source = self.session.files / end
                source.mkdir()
                (source / "a.txt").write_text("a")
                destination = self.session.files / f"{end} elsewhere"
                destination.mkdir()
                host = self.session.start_waiting_host()
                self.session.move_files([source / "a.txt"], destination)
                self.session.wait_for_window(ACCESS_PANEL)
                self.session.move_files([source / "a.txt"], destination)
                if end == "signal":
                    host.send_signal(signal.SIGTERM)
                else:
                    self.session.call_bus(APPLICATION_PATH,
                                          "org.freedesktop.Application.ActivateAction",
                                          "quit", "@av []", "@a{sv} {}")
                self.wait_for_end(host, 0)
                self.assertEqual((source / "a.txt").read_text(), "a")
                self.assertEqual(list(destination.iterdir()), [])

    def test_sleep_ends_it(self):
        self.session.start_system_bus()
        self.session.start_program(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template",
                                    "logind"], log_name="logind.log")
        host = self.session.start_waiting_host()

        def announce(value):
            return self.session.run(
                "gdbus", "call", "--system", "--dest", LOGIND, "--object-path",
                "/org/freedesktop/login1", "--method", "org.freedesktop.DBus.Mock.EmitSignal",
                f"{LOGIND}.Manager", "PrepareForSleep", "b", f"[<{value}>]")

        wait_until(lambda: announce("false"), "logind")
        # The host may not listen yet; the end of a sleep must never end it.
        wait_until(lambda: announce("true") and host.poll() is not None, "the host to end")
        self.assertEqual(host.returncode, 0)

    def test_waking_up_does_not_end_it(self):
        self.session.start_system_bus()
        self.session.start_program(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template",
                                    "logind"], log_name="logind.log")
        host = self.session.start_waiting_host()
        self.session.grant(self.session.files)
        for _ in range(5):
            self.session.run(
                "gdbus", "call", "--system", "--dest", LOGIND, "--object-path",
                "/org/freedesktop/login1", "--method", "org.freedesktop.DBus.Mock.EmitSignal",
                f"{LOGIND}.Manager", "PrepareForSleep", "b", "[<false>]")
        self.serves_a_request()
        self.assert_alive(host)

    def test_of_two_started_at_once_one_remains_and_serves_both(self):
        host = self.session.start_waiting_host()
        self.session.grant(self.session.files)
        host.terminate()
        self.wait_for_end(host, 0)
        folder = self.make_folder("there")
        for turn in range(8):
            sources = [self.make_file(f"{turn}-{name}.txt") for name in ("a", "b")]
            requests = [self.session.write_request({
                "Action": "copyFilesTo", "SelectedFilesUrl": selection(source),
                "ToPath": str(folder)}) for source in sources]
            hosts = [self.session.start_host(request) for request in requests]
            for source in sources:
                wait_until((folder / source.name).exists, f"the copy of {source.name}")
            wait_until(lambda both=hosts: any(each.poll() is not None for each in both),
                       "one of two to end")
            ended = [each for each in hosts if each.poll() is not None]
            self.assertEqual([each.returncode for each in ended], [0])
            remaining = next(each for each in hosts if each.poll() is None)
            self.assertEqual(self.session.owner_of(APPLICATION_ID), remaining.pid)
            remaining.terminate()
            self.wait_for_end(remaining, 0)
        self.assertEqual(len(self.names_in(folder)), 16)

    def test_the_end_of_the_session_bus_ends_it(self):
        host = self.session.start_waiting_host()
        self.session.end_bus()
        wait_until(lambda: host.poll() is not None, "the host to end with its session")


class LoginItem(HostTest):
    def setUp(self):
        super().setUp()
        self.entry = self.session.config / "autostart" / "my.desktop"
        self.entry.parent.mkdir()
        self.entry.write_text(f"[Desktop Entry]\nType=Application\nName=Mine\n"
                              f"Exec={BUILD_DIR / 'bin' / 'tavrin'}\n")

    def answer_alert(self, key):
        host = self.session.start_host()
        alert = self.session.wait_for_window(ALERT)
        self.session.screenshot("login-item-alert")
        self.session.key(key)
        wait_until(lambda: alert not in self.session.windows(ALERT), "the alert to close")
        self.session.wait_for_window(PREFERENCES_WINDOW)
        self.assert_alive(host)

    def test_ok_removes_it(self):
        self.answer_alert("Return")
        self.assertFalse(self.entry.exists())

    def test_cancel_keeps_it(self):
        self.answer_alert("Escape")
        self.assertTrue(self.entry.exists())


main()
