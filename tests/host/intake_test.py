"""How requests reach the running host, and what bad ones get."""

import os
import plistlib
import time

from session import (ACCESS_PANEL, APPLICATION_ID, PREFERENCES_WINDOW, HostTest, main, selection,
                     wait_until)

# The window would show itself 0.4 s after the start.
LONG_ENOUGH_FOR_THE_WINDOW = 1.5
DEPTH = 300_000


def nested_xml():
    return (b'<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">'
            + b"<array>" * DEPTH + b"</array>" * DEPTH + b"</plist>")


def nested_binary():
    """Each array holds the next one; the last is empty."""
    size = 4
    objects = bytearray()
    offsets = []
    for number in range(DEPTH):
        offsets.append(8 + len(objects))
        objects += b"\xa1" + (number + 1).to_bytes(size, "big")
    offsets.append(8 + len(objects))
    objects += b"\xa0"
    table = b"".join(offset.to_bytes(size, "big") for offset in offsets)
    trailer = (bytes(6) + bytes([size, size]) + len(offsets).to_bytes(8, "big")
               + (0).to_bytes(8, "big") + (8 + len(objects)).to_bytes(8, "big"))
    return b"bplist00" + bytes(objects) + table + trailer


class BadRequests(HostTest):
    def setUp(self):
        super().setUp()
        self.host = self.session.start_waiting_host()
        self.session.grant(self.session.files)

    def assert_ignored(self, path):
        """One line says why, the host lives, and the next request works."""
        before = len(self.session.log_lines())
        self.session.open_with_host(path)
        self.serves_a_request()
        self.assert_alive(self.host)
        lines = self.session.log_lines()[before:]
        self.assertEqual(len(lines), 1, lines)
        self.assertIn(path.name, lines[0])

    def test_no_file_to_read(self):
        folder = self.session.folder / "requests"
        (folder / "a folder").mkdir()
        os.mkfifo(folder / "a pipe")
        with open(folder / "zeros", "wb") as zeros:
            zeros.truncate(100_000_000)
        (folder / "a link to nothing").symlink_to(folder / "nothing")
        for name in ("missing", "a folder", "a pipe", "zeros", "a link to nothing"):
            with self.subTest(name):
                self.assert_ignored(folder / name)

    def test_no_property_list(self):
        request = {"Action": "copyFilesTo", "SelectedFilesUrl": "", "ToPath": "/"}
        contents = {
            "empty": b"",
            "text": b"copyFilesTo",
            "truncated XML": plistlib.dumps(request)[:-20],
            "truncated binary": plistlib.dumps(request, fmt=plistlib.FMT_BINARY)[:-10],
            "nested XML": nested_xml(),
            "nested binary": nested_binary(),
        }
        for name, content in contents.items():
            with self.subTest(name):
                self.assert_ignored(self.session.write_request(content))

    def test_wrong_kinds_of_values(self):
        contents = {
            "array at the root": ["copyFilesTo"],
            "string at the root": "copyFilesTo",
            "action": {"Action": 7},
            "selection": {"Action": "copyFilesTo", "SelectedFilesUrl": ["file:///a"],
                          "ToPath": "/"},
            "destination": {"Action": "copyFilesTo", "SelectedFilesUrl": "file:///a", "ToPath": 1},
            "tag": {"Action": "createNewFile", "Path": "/", "Tag": [1]},
        }
        for name, content in contents.items():
            for plist_format in (plistlib.FMT_XML, plistlib.FMT_BINARY):
                with self.subTest(name, format=plist_format):
                    self.assert_ignored(self.session.write_request(content, plist_format))

    def test_unknown_actions_are_ignored_without_a_word(self):
        before = self.session.log_lines()
        for action in ("unhiddenSelectedFiles", "UnhiddenAllFilesInPath", "CopyFilesTo", ""):
            self.session.send(action, SelectedFilesUrl="file:///a", Path="/", ToPath="/")
        self.session.open_with_host(self.session.write_request({}))
        self.serves_a_request()
        self.assertEqual(self.session.log_lines(), before)
        self.assertEqual(self.session.windows(ACCESS_PANEL), [])


class Intake(HostTest):
    def store_grant(self):
        """Leaves a stored grant of the files behind, and no host."""
        host = self.session.start_waiting_host()
        self.session.grant(self.session.files)
        host.terminate()
        self.wait_for_end(host, 0)

    def copy_request(self, name):
        """A request to copy a new file; returns its path and the path of the copy."""
        source = self.make_file(name)
        arrived = self.make_folder("there") / name
        request = self.session.write_request({
            "Action": "copyFilesTo", "SelectedFilesUrl": selection(source),
            "ToPath": str(arrived.parent)})
        return request, arrived

    def test_second_process_hands_over_relative_paths_and_exits(self):
        self.store_grant()
        first_request, first_copy = self.copy_request("first.txt")
        host = self.session.start_host(first_request.name, working_folder=first_request.parent)
        wait_until(first_copy.exists, "the copy at a cold start")
        second_request, second_copy = self.copy_request("second.txt")
        third_request, third_copy = self.copy_request("third.txt")
        content = second_request.read_bytes()
        second = self.session.start_host(f"../requests/{second_request.name}", third_request,
                                         working_folder=self.session.data)
        self.wait_for_end(second, 0)
        wait_until(third_copy.exists, "the copies of the second process")
        self.assertTrue(second_copy.exists())
        self.assert_alive(host)
        self.assertEqual(second_request.read_bytes(), content)

    def test_bus_starts_the_host_without_a_window(self):
        self.store_grant()
        request, arrived = self.copy_request("a.txt")
        self.assertIsNone(self.session.owner_of(APPLICATION_ID))
        self.session.open_with_host(request)
        wait_until(arrived.exists, "the copy")
        self.assertIsNotNone(self.session.owner_of(APPLICATION_ID))
        time.sleep(LONG_ENOUGH_FOR_THE_WINDOW)
        self.assertEqual(self.session.windows(PREFERENCES_WINDOW), [])

    def test_a_missing_request_file_counts_as_a_request(self):
        host = self.session.start_host(self.session.folder / "missing")
        wait_until(lambda: self.session.owner_of(APPLICATION_ID), "the host")
        time.sleep(LONG_ENOUGH_FOR_THE_WINDOW)
        self.assertEqual(self.session.windows(PREFERENCES_WINDOW), [])
        self.assert_alive(host)

    def test_the_user_gets_the_window(self):
        start = time.monotonic()
        host = self.session.start_host()
        window = self.session.wait_for_window(PREFERENCES_WINDOW)
        self.assertGreater(time.monotonic() - start, 0.4)
        self.session.screenshot("preferences-window")
        self.session.run("xdotool", "windowclose", window)
        self.session.wait_for_no_window(PREFERENCES_WINDOW)
        self.assert_alive(host)

    def test_the_user_gets_the_window_of_a_host_that_runs(self):
        self.session.start_waiting_host()
        second = self.session.start_host()
        self.wait_for_end(second, 0)
        self.session.wait_for_window(PREFERENCES_WINDOW)

    def test_requests_wait_in_line_behind_a_panel(self):
        self.session.start_waiting_host()
        first_request, first_copy = self.copy_request("first.txt")
        second_request, second_copy = self.copy_request("second.txt")
        self.session.open_with_host(first_request)
        self.session.wait_for_window(ACCESS_PANEL)
        start = time.monotonic()
        self.session.open_with_host(second_request)
        self.assertLess(time.monotonic() - start, 5, "the caller waited for the panel")
        self.assertEqual(len(self.session.windows(ACCESS_PANEL)), 1)
        self.session.authorize()
        wait_until(second_copy.exists, "the second copy")
        self.assertTrue(first_copy.exists())


main()
