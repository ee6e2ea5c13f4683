"""Handing the selected images to the screenshot tool, read back as that tool would read them."""

import os
import subprocess
from urllib.parse import unquote_to_bytes

from session import ACCESS_PANEL, APPLICATION_ID, BUILD_DIR, HostTest, file_url, main, wait_until

NOTIFICATION = "PinFromPasteboardByTavrin"


class PinImage(HostTest):
    def setUp(self):
        super().setUp()
        self.host = self.session.start_waiting_host()
        self.pasteboard = self.session.runtime / APPLICATION_ID / "pasteboards" / "drag"
        self.session.start_program(
            ["dbus-monitor", "--session", f"type='signal',member='{NOTIFICATION}'"],
            log_name="notifications.log")
        wait_until(lambda: "NameAcquired" in self.session.log_of("notifications.log"),
                   "the monitor to listen")

    def notifications(self):
        return self.session.log_of("notifications.log").count("member=" + NOTIFICATION)

    def wait_for_notification(self, count):
        wait_until(lambda: self.notifications() >= count, f"notification {count}")
        self.assertEqual(self.notifications(), count)

    def selection(self, target="text/uri-list"):
        """What another program of the X server gets; nothing when nobody has it."""
        done = subprocess.run([BUILD_DIR / "tests" / "tavrin-selection-reader", "XdndSelection",
                               target], env=self.session.environment, stdout=subprocess.PIPE,
                              timeout=30, check=False)
        return done.stdout if done.returncode == 0 else None

    def pin(self, *paths):
        self.session.send("pinbySnapvane", SelectedFilesUrl="|".join(map(file_url, paths)))

    def uri_list(self, *paths):
        return "".join(file_url(path) + "\r\n" for path in paths).encode()

    def paths_on_pasteboard(self):
        lines = self.pasteboard.read_bytes().split(b"\r\n")
        self.assertEqual(lines.pop(), b"")
        return [unquote_to_bytes(line.removeprefix(b"file://")) for line in lines]

    def test_images_are_handed_over_in_the_order_of_the_selection(self):
        paths = [self.make_file(name) for name in ("a b.png", "notes.txt", "photo", "b.JPG")]
        other = self.make_file("elsewhere/c.webp")
        self.pin(*paths, other)
        window = self.session.wait_for_window(ACCESS_PANEL)
        self.assertFalse(self.pasteboard.exists())
        self.session.key("Return")
        wait_until(lambda: window not in self.session.windows(ACCESS_PANEL), "the panel to close")
        self.wait_for_notification(1)
        expected = self.uri_list(paths[0], paths[3], other)
        self.assertEqual(self.pasteboard.read_bytes(), expected)
        self.assertEqual(self.pasteboard.parent.stat().st_mode & 0o777, 0o700)
        self.assertEqual(self.selection(), expected)
        self.assertIsNone(self.selection("text/plain"))
        # Access was granted to the first item alone.
        self.assertEqual(set(self.session.grants()), {str(paths[0])})

        self.pin(paths[0])
        self.wait_for_notification(2)
        self.assertEqual(self.pasteboard.read_bytes(), self.uri_list(paths[0]))
        self.assertEqual(self.selection(), self.uri_list(paths[0]))
        self.assertIn("path=/app/tavrin/DistributedNotification; "
                      f"interface=app.tavrin.DistributedNotification; member={NOTIFICATION}",
                      self.session.log_of("notifications.log"))
        self.assert_alive(self.host)

    def test_a_selection_without_images_empties_the_pasteboard(self):
        image = self.make_file("a.png")
        text = self.make_file("a.txt")
        self.session.grant(self.session.files)
        self.pin(image)
        self.wait_for_notification(1)
        self.pin(text)
        self.wait_for_notification(2)
        self.assertEqual(self.pasteboard.read_bytes(), b"")
        self.assertEqual(self.selection(), b"")

    def test_odd_names_and_pieces_that_are_no_urls(self):
        self.session.grant(self.session.files)
        odd = os.path.join(os.fsencode(self.session.files), b"-\xff\n%'\"$#?.png")
        with open(odd, "wb"):
            pass
        self.session.send("pinbySnapvane",
                          SelectedFilesUrl=f"no url.png|{file_url(odd)}|file:///broken%zz.png|")
        self.wait_for_notification(1)
        self.assertEqual(self.paths_on_pasteboard(), [odd])
        complaints = [line for line in self.session.log_lines() if "no file URL" in line]
        self.assertEqual(len(complaints), 3, complaints)

    def test_refused_access_leaves_the_pasteboard_as_it_was(self):
        granted = self.make_file("a.png")
        refused = self.make_file("b.png")
        self.pin(granted)
        self.session.authorize()
        self.wait_for_notification(1)
        self.pin(refused, granted)
        self.session.cancel()
        self.session.grant(self.session.files)
        self.assertEqual(self.pasteboard.read_bytes(), self.uri_list(granted))
        self.assertEqual(self.selection(), self.uri_list(granted))
        self.assertEqual(self.notifications(), 1)

    def test_a_pasteboard_that_takes_nothing_is_told_of_in_the_log_alone(self):
        self.session.grant(self.session.files)
        self.pasteboard.parent.parent.mkdir(parents=True, exist_ok=True)
        self.pasteboard.parent.write_text("no folder")
        self.pin(self.make_file("a.png"))
        wait_until(lambda: any(line.startswith("tavrin: pinbySnapvane: ")
                               for line in self.session.log_lines()), "the cause in the log")
        self.pasteboard.parent.unlink()
        self.pin(self.make_file("b.png"))
        self.wait_for_notification(1)
        self.assertEqual(self.pasteboard.read_bytes(),
                         self.uri_list(self.session.files / "b.png"))

    def test_many_images_at_once(self):
        self.session.grant(self.session.files)
        paths = [self.session.files / f"{number} {'x' * 100}.png" for number in range(5000)]
        self.pin(*paths)
        self.wait_for_notification(1)
        self.assertEqual(self.pasteboard.read_bytes(), self.uri_list(*paths))
        self.assertEqual(self.selection(), self.uri_list(*paths))


main()
