"""What the desktop shows of a command that takes long, how it is cancelled, and that nothing waits
for it.
"""

import re
import signal
import time

from session import (APPLICATION_PATH, BUILD_DIR, HostTest, main, wait_until)

WATCHER = "org.kde.StatusNotifierWatcher"
MOCK = "org.freedesktop.DBus.Mock"
LOGIND = "org.freedesktop.login1"
SLOW_FILES = BUILD_DIR / "tests" / "libtavrin-slow-files.so"

# So many that the copy takes ten seconds at least, whatever works on it at once.
FILES = 2000
# How soon the host ends in the middle of its work.
AT_ONCE = 2.0


class LongWorkTest(HostTest):
    """A desktop with a status bar and a list of jobs, and a host whose disk is slow."""

    def setUp(self):
        super().setUp()
        self.start_mock(WATCHER, "/StatusNotifierWatcher", WATCHER)
        self.mock(WATCHER, "/StatusNotifierWatcher", "AddProperty", WATCHER,
                  "IsStatusNotifierHostRegistered", "<true>")
        self.mock(WATCHER, "/StatusNotifierWatcher", "AddMethod", WATCHER,
                  "RegisterStatusNotifierItem", "s", "", "")
        self.slow = self.session.folder / "slow"

    def start_mock(self, name, path, interface):
        self.session.start_program(["/usr/bin/python3", "-m", "dbusmock", "--session", name, path,
                                    interface], log_name=f"{name}.log")
        wait_until(lambda: self.session.owner_of(name), name)

    def mock(self, name, path, method, *arguments):
        self.session.call_bus(path, f"{MOCK}.{method}", *arguments, destination=name)

    def start_job_server(self, name, interface, arguments, view_interface, methods):
        self.job_server = name
        self.view_interface = view_interface
        self.start_mock(name, "/JobViewServer", interface)
        self.mock(name, "/JobViewServer", "AddMethod", interface, "requestView", arguments, "o",
                  "ret = '/job'")
        self.mock(name, "/JobViewServer", "AddObject", "/job", view_interface, "{}",
                  "[" + ", ".join(f"('{method}', '{signature}', '', '')"
                                  for method, signature in methods.items()) + "]")

    def start_new_job_server(self):
        self.start_job_server("org.kde.JobViewServer", "org.kde.JobViewServerV2", "sia{sv}",
                              "org.kde.JobViewV3", {"update": "a{sv}", "terminate": "usa{sv}"})

    def start_old_job_server(self):
        self.start_job_server("org.kde.kuiserver", "org.kde.JobViewServer", "ssi",
                              "org.kde.JobViewV2", {"setInfoMessage": "s", "setPercent": "u",
                                                    "terminate": "s"})

    def job_calls(self):
        return self.session.log_of(f"{self.job_server}.log")

    def start_slow_host(self):
        missing = self.session.folder / "requests" / f"missing {len(self.session.hosts)}"
        host = self.session.start_host(missing, environment=self.session.environment | {
            "LD_PRELOAD": str(SLOW_FILES), "TAVRIN_SLOW_FILES": str(self.slow)})
        wait_until(lambda: str(missing) in self.session.whole_log(), "the host to serve requests")
        if not self.session.grants():
            self.session.grant("/")
        wait_until(self.tooltip, "the status item")
        return host

    # What the desktop shows

    def item(self):
        """The bus name of the status item that registered last."""
        items = re.findall('RegisterStatusNotifierItem "(.*)"',
                           self.session.log_of(f"{WATCHER}.log"))
        return items[-1] if items else None

    def tooltip(self):
        """The title of the status item's tooltip; nothing without an item."""
        try:
            answer = self.session.call_bus(
                "/StatusNotifierItem", "org.freedesktop.DBus.Properties.Get",
                "org.kde.StatusNotifierItem", "ToolTip", destination=self.item())
        except (AssertionError, TypeError):
            return None
        return re.search(r"\[\], '([^']*)', '", answer)[1]

    def menu_items(self):
        """The numbers of the menu's items by their labels, and whether they are enabled."""
        layout = self.session.call_bus("/MenuBar", "com.canonical.dbusmenu.GetLayout", "0", "3",
                                       "[]", destination=self.item())
        return {label: (int(number), "'enabled': <false>" not in properties)
                for number, properties in re.findall(r"\((\d+), \{([^{}]*)\}", layout)
                for label in re.findall("'label': <'([^']*)'>", properties)}

    def click_menu_item(self, label):
        number, enabled = self.menu_items()[label]
        self.assertTrue(enabled)
        self.session.call_bus("/MenuBar", "com.canonical.dbusmenu.Event", str(number), "clicked",
                              "<0>", "0", destination=self.item())

    # Long work

    def make_tree(self, name, files=FILES):
        folder = self.make_folder(name)
        for number in range(files):
            (folder / f"{number}.txt").write_text(f"{number}")
        return folder

    def assert_whole(self, folder, files=FILES):
        self.assertEqual(len(self.names_in(folder)), files)
        for number in (0, files // 2, files - 1):
            self.assertEqual((folder / f"{number}.txt").read_text(), f"{number}")

    def begin_copy(self):
        """A copy that goes on until the disk is quick again."""
        self.source = self.make_tree("Photos")
        self.there = self.make_folder("there")
        self.slow.touch()
        self.session.copy_files([self.source], self.there)
        wait_until(lambda: "Photos" in self.tooltip(), "the copy to be shown")

    def records(self):
        folder = self.session.data / "app.tavrin.Tavrin" / "partials"
        return self.names_in(folder) if folder.exists() else []


class Shown(LongWorkTest):
    def test_a_long_copy_is_shown_while_it_runs_and_no_longer(self):
        self.start_new_job_server()
        self.session.start_program(
            ["dbus-monitor", "--session",
             "type='signal',interface='com.canonical.Unity.LauncherEntry'"],
            log_name="launcher.log")
        self.start_slow_host()
        self.assertEqual(self.tooltip(), "Tavrin")
        usual_menu = self.menu_items()
        windows = self.session.titles()
        self.begin_copy()

        wait_until(lambda: re.fullmatch("Copying “Photos”: [0-9,]+ items · .* · [0-9]+%",
                                        self.tooltip()), "the progress in the tooltip")
        self.assertEqual(list(self.menu_items()), ["Cancel Copying", *usual_menu])
        wait_until(lambda: "percent" in self.job_calls(), "the progress of the job")
        self.assertRegex(self.job_calls(), "requestView .*app.tavrin.Tavrin")
        self.assertIn("Copying “Photos”", self.job_calls())
        self.assertNotIn("terminate", self.job_calls())
        launcher = self.session.log_of("launcher.log")
        self.assertIn("application://app.tavrin.Tavrin.desktop", launcher)
        self.assertRegex(launcher, r'progress-visible"\s+variant\s+boolean true')
        self.assertEqual(self.session.titles(), windows)

        self.slow.unlink()
        self.session.wait_for_next_sound("Volume Mount")
        self.assert_whole(self.there / "Photos")
        wait_until(lambda: self.tooltip() == "Tavrin", "the tooltip as it was")
        self.assertEqual(list(self.menu_items()), list(usual_menu))
        wait_until(lambda: "terminate 0" in self.job_calls(), "the end of the job")
        wait_until(lambda: "boolean false" in self.session.log_of("launcher.log"),
                   "the launcher as it was")

    def test_a_short_copy_is_not_shown(self):
        self.start_new_job_server()
        self.start_slow_host()
        self.serves_a_request()
        self.assertNotIn("requestView", self.job_calls())

    def test_without_a_list_of_jobs_nothing_is_missed(self):
        self.start_slow_host()
        before = len(self.session.log_lines())
        self.begin_copy()
        self.slow.unlink()
        self.session.wait_for_next_sound("Volume Mount")
        self.assertEqual(self.session.log_lines()[before:], [])

    def test_requests_are_accepted_meanwhile_and_wait_in_line(self):
        host = self.start_slow_host()
        self.begin_copy()
        late = self.make_file("late.txt")
        begun = time.monotonic()
        self.session.copy_files([late], self.there)
        self.assertLess(time.monotonic() - begun, AT_ONCE)
        self.assertEqual(self.tooltip()[:7], "Copying")
        self.slow.unlink()
        wait_until((self.there / "late.txt").exists, "the second request")
        # Only now, because each request is carried out to its end before the next one.
        self.assert_whole(self.there / "Photos")
        self.assert_alive(host)


class Cancelled(LongWorkTest):
    def assert_undone(self, host):
        """Cancelled, the copy has left nothing behind, and the host goes on."""
        wait_until(lambda: not self.menu_items().get("Cancel Copying", (0, False))[1],
                   "the cancel to be taken")
        self.slow.unlink()
        self.session.wait_for_next_sound("Funk")
        self.assertEqual(self.names_in(self.there), [])
        self.assertEqual(self.records(), [])
        self.assert_whole(self.source)
        wait_until(lambda: self.tooltip() == "Tavrin", "the tooltip as it was")
        lines = [line for line in self.session.log_lines() if "Operation canceled" in line]
        self.assertEqual(len(lines), 1, self.session.log_lines())
        self.serves_a_request()
        self.assert_alive(host)

    def test_from_the_menu_of_the_status_item(self):
        host = self.start_slow_host()
        self.begin_copy()
        self.click_menu_item("Cancel Copying")
        self.assert_undone(host)

    def cancel_by_list_of_jobs(self, end):
        host = self.start_slow_host()
        self.begin_copy()
        wait_until(lambda: "Photos" in self.job_calls(), "the job")
        self.mock(self.job_server, "/job", "EmitSignal", self.view_interface, "cancelRequested",
                  "", "[]")
        self.assert_undone(host)
        wait_until(lambda: end in self.job_calls(), "the end of the job")

    def test_from_the_list_of_jobs(self):
        self.start_new_job_server()
        self.cancel_by_list_of_jobs("terminate 1")

    def test_from_an_older_list_of_jobs(self):
        self.start_old_job_server()
        self.cancel_by_list_of_jobs('terminate ""')

    def test_many_small_items(self):
        host = self.start_slow_host()
        items = self.make_tree("items", 1000)
        self.switch("enableDirectDeleteFiles", True)
        self.slow.touch()
        self.session.send("deleteDirectlySelectedFiles", *sorted(items.iterdir()))
        wait_until(lambda: re.fullmatch("Deleting “.*”: [0-9]+ items", self.tooltip()),
                   "the removal to be shown")
        self.click_menu_item("Cancel Deleting")
        self.session.wait_for_next_sound("Funk")
        self.assertGreater(len(self.names_in(items)), 0)
        self.assertLess(len(self.names_in(items)), 1000)
        wait_until(lambda: self.tooltip() == "Tavrin", "the tooltip as it was")
        self.assert_alive(host)


class Ends(LongWorkTest):
    def quit_by_the_bus(self, _):
        self.session.call_bus(APPLICATION_PATH, "org.freedesktop.Application.ActivateAction",
                              "quit", "@av []", "@a{sv} {}")

    def go_to_sleep(self, _):
        self.session.run("gdbus", "call", "--system", "--dest", LOGIND, "--object-path",
                         "/org/freedesktop/login1", "--method", f"{MOCK}.EmitSignal",
                         f"{LOGIND}.Manager", "PrepareForSleep", "b", "[<true>]")

    def start_sleep_announcer(self):
        self.session.start_system_bus()
        self.session.start_program(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template",
                                    "logind"], log_name="logind.log")
        wait_until(lambda: "true" in self.session.run(
            "gdbus", "call", "--system", "--dest", "org.freedesktop.DBus", "--object-path",
            "/org/freedesktop/DBus", "--method", "org.freedesktop.DBus.NameHasOwner", LOGIND),
            "logind")

    def assert_ends(self, end):
        self.start_sleep_announcer()
        host = self.start_slow_host()
        self.begin_copy()
        late = self.make_file("late.txt")
        self.session.copy_files([late], self.there)
        end(host)
        begun = time.monotonic()
        self.wait_for_end(host, 0)
        self.assertLess(time.monotonic() - begun, AT_ONCE)
        self.assert_whole(self.source)
        # All that is left has a name that nobody takes for the copy.
        self.assertTrue(all(re.fullmatch(r"\.tavrin-[0-9a-f]+\.partial", name)
                            for name in self.names_in(self.there)), self.names_in(self.there))

    def assert_next_start_clears_up(self):
        self.slow.unlink()
        host = self.session.start_waiting_host()
        wait_until(lambda: self.names_in(self.there) == [] and self.records() == [],
                   "the leftovers to go")
        self.serves_a_request()
        self.assert_alive(host)

    def test_quit_by_the_bus(self):
        self.assert_ends(self.quit_by_the_bus)
        lines = [line for line in self.session.log_lines() if "the program ends" in line]
        self.assertEqual(len(lines), 2, lines)
        self.assertIn("Photos", lines[0])
        self.assert_next_start_clears_up()

    def test_quit_by_the_menu(self):
        self.assert_ends(lambda _: self.click_menu_item("Quit Tavrin"))
        self.assert_next_start_clears_up()

    def test_signal(self):
        self.assert_ends(lambda host: host.send_signal(signal.SIGTERM))
        self.assert_next_start_clears_up()

    def test_sleep(self):
        self.assert_ends(self.go_to_sleep)
        self.assert_next_start_clears_up()

    def test_end_of_the_bus(self):
        self.assert_ends(lambda _: self.session.end_bus())

    def assert_moved_items_stay_hidden(self, end):
        self.start_sleep_announcer()
        host = self.start_slow_host()
        source = self.make_tree("items", 1000)
        there = self.make_folder("there")
        names = self.names_in(source)
        (source / ".hidden").write_text("".join(f"{name}\n" for name in names))
        self.slow.touch()
        self.session.move_files([source / name for name in names], there)
        wait_until(lambda: re.fullmatch("Moving “.*”: [0-9]+ items", self.tooltip()),
                   "the move to be shown")
        end(host)
        self.wait_for_end(host, 0)
        for folder in (source, there):
            hidden = (folder / ".hidden").read_text().split()
            items = [name for name in self.names_in(folder) if not name.startswith(".")]
            self.assertEqual(sorted(hidden), items)
            self.assertGreater(len(items), 0)

    def test_what_was_moved_before_a_signal_stays_hidden(self):
        self.assert_moved_items_stay_hidden(lambda host: host.send_signal(signal.SIGTERM))

    def test_what_was_moved_before_a_sleep_stays_hidden(self):
        self.assert_moved_items_stay_hidden(self.go_to_sleep)


main()
