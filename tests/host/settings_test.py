"""Settings that change while the host runs, and a database that is broken."""

import plistlib
import re

from session import (APPLICATION_ID, APPLICATION_PATH, BUILD_DIR, GROUP, PREFERENCES_WINDOW,
                     HostTest, main, wait_until)

WATCHER = "org.kde.StatusNotifierWatcher"


def yes_or_no(flag):
    return "YES" if flag else "NO"


def default_settings():
    return plistlib.loads((BUILD_DIR / "share" / "tavrin" / "DefaultPreferences.plist").read_bytes())


class Settings(HostTest):
    def group_has(self, **values):
        group = self.session.export_domain("group")
        return all(group.get(key) == value for key, value in values.items())

    def test_seeding_keeps_what_is_there(self):
        defaults = default_settings()
        changed = not defaults["enableCopyFilesTo"]
        self.session.defaults("write", "standard", "enableCopyFilesTo", "-bool", yes_or_no(changed))
        self.session.defaults("write", "group", "enableMoveFilesTo", "-string", "kept")
        self.session.start_waiting_host()
        wait_until(lambda: set(defaults) <= set(self.session.export_domain("group")), "seeding")
        standard, group = (self.session.export_domain(name) for name in ("standard", "group"))
        self.assertEqual(standard["enableCopyFilesTo"], changed)
        self.assertEqual(group["enableMoveFilesTo"], "kept")
        self.assertEqual(standard["arrOfOthers"], defaults["arrOfOthers"])
        self.assertEqual(standard["hiddenIconInStatusBar"], defaults["hiddenIconInStatusBar"])

    def test_folders_with_names_of_another_language_are_found(self):
        (self.session.config / "user-dirs.dirs").write_text('XDG_PICTURES_DIR="$HOME/Bilder"\n'
                                                            'XDG_MUSIC_DIR="$HOME/"\n')
        self.session.start_waiting_host()
        rules = self.session.export_domain("standard")["arrOfCopyFilesTo"]
        paths = [rule["realPath"] for rule in rules]
        self.assertIn("~/Bilder", paths)
        self.assertNotIn("~/Pictures", paths)
        self.assertIn("~/Music", paths)

    def test_switches_are_mirrored_at_once(self):
        self.session.start_waiting_host()
        self.session.wait_for_settings()
        for value in (True, False, True):
            # Numbers and strings arrive as the boolean that they mean.
            self.session.defaults("write", "standard", "soundTipsOfNewFile", "-bool",
                                  yes_or_no(value))
            self.session.defaults("write", "standard", "enableCommonPath", "-int", str(int(value)))
            self.session.defaults("write", "standard", "enableIconOfOthers", "-string",
                                  yes_or_no(value))
            wait_until(lambda expected=value: self.group_has(
                soundTipsOfNewFile=expected, enableCommonPath=expected,
                enableIconOfOthers=expected), f"the switches to be {value}")

    def test_switches_are_mirrored_after_the_window_was_closed(self):
        self.session.start_waiting_host()
        self.session.call_bus(APPLICATION_PATH, "org.freedesktop.Application.Activate", "{}")
        window = self.session.wait_for_window(PREFERENCES_WINDOW)
        self.session.run("wmctrl", "-i", "-c", window)
        self.session.wait_for_no_window(PREFERENCES_WINDOW)
        for value in (False, True):
            self.session.defaults("write", "standard", "soundTipsOfNewFile", "-bool",
                                  yes_or_no(value))
            wait_until(lambda value=value: self.group_has(soundTipsOfNewFile=value), "the mirror")

    def test_other_settings_are_not_mirrored(self):
        self.session.start_waiting_host()
        self.session.wait_for_settings()
        before = self.session.export_domain("group")
        changed = not before["enableTextService"]
        self.session.defaults("write", "standard", "enableTextService", "-bool", yes_or_no(changed))
        self.session.defaults("write", "standard", "soundTipsOfNewFile", "-bool",
                              yes_or_no(not before["soundTipsOfNewFile"]))
        wait_until(lambda: self.group_has(soundTipsOfNewFile=not before["soundTipsOfNewFile"]),
                   "the mirrored switch")
        self.assertTrue(self.group_has(enableTextService=before["enableTextService"]))

    def test_a_corrupt_database_is_set_aside_and_seeded_anew(self):
        for domain in (APPLICATION_ID, GROUP):
            folder = self.session.config / domain
            folder.mkdir(exist_ok=True)
            (folder / "defaults.sqlite").write_bytes(b"no database " * 1000)
        host = self.session.start_waiting_host()
        wait_until(lambda: self.group_has(
            enableCopyFilesTo=default_settings()["enableCopyFilesTo"]), "seeding")
        self.assertIn("arrOfOthers", self.session.export_domain("standard"))
        self.assert_alive(host)
        for domain in (APPLICATION_ID, GROUP):
            folder = self.session.config / domain
            kept = [file for file in folder.iterdir()
                    if file.is_file() and file.read_bytes().startswith(b"no database ")]
            self.assertEqual(len(kept), 1, list(folder.iterdir()))
            self.assertNotEqual(kept[0].name, "defaults.sqlite")
            lines = [line for line in self.session.log_lines() if f"/{domain}/" in line]
            self.assertEqual(len(lines), 1, self.session.log_lines())


class StatusItem(HostTest):
    def setUp(self):
        super().setUp()
        self.session.start_program(
            ["/usr/bin/python3", "-m", "dbusmock", "--session", WATCHER, "/StatusNotifierWatcher",
             WATCHER], log_name="watcher.log")
        wait_until(lambda: self.session.owner_of(WATCHER), "the watcher")
        self.mock("AddProperty", WATCHER, "IsStatusNotifierHostRegistered", "<true>")
        self.mock("AddMethod", WATCHER, "RegisterStatusNotifierItem", "s", "", "")

    def mock(self, method, *arguments):
        self.session.call_bus("/StatusNotifierWatcher", f"org.freedesktop.DBus.Mock.{method}",
                              *arguments, destination=WATCHER)

    def hide(self, hidden):
        self.session.defaults("write", "standard", "hiddenIconInStatusBar", "-bool",
                              yes_or_no(hidden))

    def is_shown(self):
        """Whether the item that registered last answers."""
        items = re.findall('RegisterStatusNotifierItem "(.*)"', self.session.log_of("watcher.log"))
        try:
            self.session.call_bus("/StatusNotifierItem", "org.freedesktop.DBus.Properties.Get",
                                  "org.kde.StatusNotifierItem", "Id", destination=items[-1])
        except (IndexError, AssertionError):
            return False
        return True

    def test_item_follows_its_setting_while_the_host_runs(self):
        self.hide(False)
        host = self.session.start_waiting_host()
        wait_until(self.is_shown, "the item")
        self.hide(True)
        wait_until(lambda: not self.is_shown(), "the item to hide")
        self.hide(False)
        wait_until(self.is_shown, "the item to come back")
        self.assert_alive(host)

    def test_no_item_is_made_while_it_is_hidden(self):
        self.hide(True)
        self.session.start_waiting_host()
        self.session.wait_for_settings()
        self.assertFalse(self.is_shown())
        self.hide(False)
        wait_until(self.is_shown, "the item")


main()
