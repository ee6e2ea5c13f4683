"""What the user reads and gets is in the language of the session."""

import configparser
import re
import unittest

from preferences import PreferencesTest
from session import APPLICATION_ID, BUILD_DIR, SOURCE_DIR, HostTest, main, wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
LOCALES = BUILD_DIR / "tests" / "locales"
LANGUAGES = (SOURCE_DIR / "resources/translations/LINGUAS").read_text().splitlines()[-1].split()


class German(HostTest):
    def setUp(self):
        super().setUp()
        self.session.environment |= {"LANG": "de_DE.UTF-8", "LOCPATH": str(LOCALES)}

    def test_panels_and_names_of_new_files(self):
        host = self.session.start_waiting_host()
        folder = self.make_folder("hier")
        self.session.send("createNewFile", Path=str(folder), Tag=0)
        self.session.authorize("^Zugriff erlauben$")
        wait_until((folder / "Unbenannt.txt").exists, "the new file")
        self.assertEqual(self.names_in(folder), ["Unbenannt.txt"])
        self.assert_alive(host)

    def test_the_menu_of_the_status_item(self):
        self.session.start_program(
            ["/usr/bin/python3", "-m", "dbusmock", "--session", WATCHER, "/StatusNotifierWatcher",
             WATCHER], log_name="watcher.log")
        wait_until(lambda: self.session.owner_of(WATCHER), "the panel")
        mock = "org.freedesktop.DBus.Mock."
        for method, arguments in (
                ("AddProperty", (WATCHER, "IsStatusNotifierHostRegistered", "<true>")),
                ("AddMethod", (WATCHER, "RegisterStatusNotifierItem", "s", "", ""))):
            self.session.call_bus("/StatusNotifierWatcher", mock + method, *arguments,
                                  destination=WATCHER)
        self.session.start_waiting_host()
        registered = wait_until(lambda: re.search(
            r'RegisterStatusNotifierItem "(\S+)"', self.session.log_of("watcher.log")),
            "the status item")
        item = registered.group(1)
        menu = self.session.call_bus("/MenuBar", "com.canonical.dbusmenu.GetLayout", "0", "int32 -1",
                                     "[]", destination=item)
        self.assertIn("'Einstellungen\u00a0…'", menu)
        self.assertIn("'Tavrin beenden'", menu)

    def test_a_language_before_the_one_of_the_locale(self):
        self.session.environment["LANGUAGE"] = "fr:de"
        self.session.start_waiting_host()
        folder = self.make_folder("ici")
        self.session.send("createNewFile", Path=str(folder), Tag=0)
        self.session.authorize("^Autoriser l’accès$")
        wait_until((folder / "sans titre.txt").exists, "the new file")

    def test_a_locale_that_the_system_does_not_have_leaves_english(self):
        self.session.environment["LANG"] = "xx_XX.UTF-8"
        self.session.start_waiting_host()
        folder = self.make_folder("here")
        self.session.send("createNewFile", Path=str(folder), Tag=0)
        self.session.authorize()
        wait_until((folder / "untitled.txt").exists, "the new file")


class GermanWindow(PreferencesTest):
    opens_window = False

    def test_the_window_its_lists_and_its_panels(self):
        self.session.environment |= {"LANG": "de_DE.UTF-8", "LOCPATH": str(LOCALES)}
        self.open_window()
        self.show_page("Weitere Befehle")
        self.assertEqual(self.texts("Name")[:2], ["Ausschneiden", "Einfügen"])
        self.show_page("Neue Dateien")
        self.press_button("Hinzufügen\u00a0…")
        self.session.cancel("^Öffnen$")


class DesktopEntry(unittest.TestCase):
    def test_its_texts_are_in_every_language_and_its_name_in_none(self):
        entry = configparser.ConfigParser(interpolation=None)
        entry.optionxform = str
        entry.read(BUILD_DIR / "share" / "applications" / f"{APPLICATION_ID}.desktop", "utf-8")
        texts = [("Desktop Entry", key) for key in ("GenericName", "Comment", "Keywords")]
        texts += [(group, "Name") for group in entry.sections() if group != "Desktop Entry"]
        self.assertEqual(len(texts), 5)
        for group, key in texts:
            for language in LANGUAGES:
                self.assertTrue(entry[group].get(f"{key}[{language}]"), (group, key, language))
        self.assertEqual([key for key in entry["Desktop Entry"] if key.startswith("Name")],
                         ["Name"])


if __name__ == "__main__":
    main()
