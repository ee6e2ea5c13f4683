"""The preferences window as a whole: its pages, switches, options and links, its end and return."""

import subprocess

from preferences import (COPY_TO, ENABLE_ALL, FILE_MANAGERS, GENERAL, HELP, MORE, CONTACT,
                         NEW_FILES, OTHERS, PAGES, TITLE, PreferencesTest, default_records)
from session import ACCESS_PANEL, APPLICATION_ID, MENU_MODULE, main, wait_until

MIRRORED = {
    "Copy to a folder": "enableCopyFilesTo",
    "Move to a folder": "enableMoveFilesTo",
    "Open a common folder": "enableCommonPath",
    "New files": "enableIconOfCreateNewFile",
    "Copy and move to": "enableIconOfSendFilesTo",
    "Common folders": "enableIconOfCommonPath",
    "Folder icons": "enableIconOfCustomIcon",
    "Other commands": "enableIconOfOthers",
    "Ask for name and place": "disableAutoNameOfCreateNewFile",
    "Open them at once": "enableAutoOpenAfterCreateNewFile",
    "Play a sound": "soundTipsOfNewFile",
    "Open the terminal in a new window": "enableOpenInTerminalWithWindow",
    "Open iTerm2 in a new window": "enableOpenIniTerm2WithWindow",
}
OWN = {
    "Hide cut items until they are pasted": "enableHideWhenCutting",
    "Make icons for Mac as one .icns file": "enableImageToIconInMac",
    "Hide the icon in the panel": "hiddenIconInStatusBar",
    "Start the text service": "enableTextService",
}

# In the order of their rows: what it is for, its choices with what they store, its check box on
# the general page and the choice that this one is on for.
OPTIONS = (
    ("When cutting", ("Keep visible", {"enableHideWhenCutting": False}),
     ("Hide", {"enableHideWhenCutting": True}), "Hide cut items until they are pasted", 1),
    ("Open the terminal in", ("New tab", {"enableOpenInTerminalWithWindow": False}),
     ("New window", {"enableOpenInTerminalWithWindow": True}),
     "Open the terminal in a new window", 1),
    ("Open iTerm2 in", ("New tab", {"enableOpenIniTerm2WithWindow": False}),
     ("New window", {"enableOpenIniTerm2WithWindow": True}), "Open iTerm2 in a new window", 1),
    ("When deleting directly",
     ("Ask before deleting", {"enableDirectDeleteFiles": False,
                              "deleteDirectlyRequiresConfirmation": True}),
     ("Delete without asking", {"enableDirectDeleteFiles": True,
                                "deleteDirectlyRequiresConfirmation": False}),
     "Ask before deleting directly", 0),
    ("Make icons for Mac as", ("Folder of images", {"enableImageToIconInMac": False}),
     (".icns file", {"enableImageToIconInMac": True}), "Make icons for Mac as one .icns file", 1),
)
FILE_MANAGER_NAMES = ["nautilus", "nemo", "caja", "thunar", "dolphin"]

MIRRORED_KEYS = {*MIRRORED.values(), "deleteDirectlyRequiresConfirmation"}


class Pages(PreferencesTest):
    def background(self, entries):
        """The colours at the left end of the entries' middle."""
        picture = self.session.screenshot("sidebar", self.session.folder)
        places = [(entry.extents[0] + 5, entry.middle[1]) for entry in entries]
        wanted = "\n".join(f"%[pixel:p{{{x},{y}}}]" for x, y in places)
        return subprocess.run(["convert", picture, "-format", wanted, "info:"],
                              stdout=subprocess.PIPE, check=True).stdout.decode().splitlines()

    def test_one_entry_is_highlighted(self):
        entries = [self.find("radio button", page) for page in PAGES]
        self.assertTrue(entries[0].has("checked"))
        for index in (*range(len(PAGES)), 4, 0):
            self.show_page(PAGES[index])
            self.assertEqual([entry.has("checked") for entry in entries],
                             [each == index for each in range(len(PAGES))])
            title = self.find("label", PAGES[index])
            self.assertGreater(title.extents[0], entries[0].extents[0] + entries[0].extents[2])
            # Away from the entries, which the pointer lights.
            self.session.run("xdotool", "mousemove", "5", "5")

            def only_this_stands_out(chosen=index):
                colours = self.background(entries)
                others = set(colours[:chosen] + colours[chosen + 1:])
                return len(others) == 1 and colours[chosen] not in others
            wait_until(only_this_stands_out, f"{PAGES[index]} alone to be highlighted")


class Switches(PreferencesTest):
    def test_each_stores_and_follows_its_setting(self):
        self.show_page(GENERAL)
        for name, key in (MIRRORED | OWN).items():
            with self.subTest(key):
                box = self.find("check box", name)
                before = self.stored()[key]
                self.assertEqual(box.has("checked"), before)
                in_group = self.stored("group")[key]
                for value in (not before, before):
                    self.press(box)
                    wait_until(lambda new=value: self.stored()[key] is new, f"{key} to change")
                    if key in MIRRORED_KEYS:
                        in_group = value
                    wait_until(lambda: self.stored("group")[key] is in_group, "the group")
                    self.assertEqual(box.has("checked"), value)
                for value in (not before, before):
                    self.switch(key, value)
                    self.wait_for_state(box, "checked", value)
                self.session.defaults("delete", "standard", key)
                self.wait_for_state(box, "checked", False)

    def test_enabling_all_follows_its_setting(self):
        for page, key in ENABLE_ALL.items():
            self.show_page(page)
            box = self.find("check box", "Enable all")
            records = self.records()
            for value in (not self.stored()[key], self.stored()[key]):
                self.switch(key, value)
                self.wait_for_state(box, "checked", value)
            self.wait_for_records(records)


class Options(PreferencesTest):
    def stores(self, values):
        standard, group = self.stored(), self.stored("group")
        return all(standard[key] is value and (key not in MIRRORED_KEYS or group[key] is value)
                   for key, value in values.items())

    def pop_ups(self):
        """The pop-ups of the rows, by the Tab key."""
        self.show_page(OTHERS)
        self.select(0)
        self.wait_for_focus("cell", "table")
        return [self.focus_by("Tab") for _ in OPTIONS]

    def test_pop_ups_and_check_boxes_are_twins(self):
        pop_ups = self.pop_ups()
        for pop_up, (purpose, *choices, check_box, checked_choice) in zip(pop_ups, OPTIONS):
            with self.subTest(purpose):
                self.show_page(OTHERS)
                self.assertEqual((pop_up.role, pop_up.description), ("combo box", purpose))
                titles = [title for title, _ in choices]
                before = titles.index(pop_up.name)
                self.assertTrue(self.stores(choices[before][1]))
                chosen = 1 - before
                self.press(pop_up)
                self.session.key("Down" if chosen else "Up", "Return")
                wait_until(lambda: self.stores(choices[chosen][1]), f"{titles[chosen]}")
                self.assertEqual(pop_up.name, titles[chosen])

                self.show_page(GENERAL)
                box = self.find("check box", check_box)
                self.assertEqual(box.has("checked"), chosen == checked_choice)
                self.press(box)
                wait_until(lambda: self.stores(choices[before][1]), f"{titles[before]}")
                self.assertEqual(pop_up.name, titles[before])
                for choice in (chosen, before):
                    for key, value in choices[choice][1].items():
                        self.switch(key, value)
                    wait_until(lambda now=choice: pop_up.name == titles[now], "the choice")
                    self.wait_for_state(box, "checked", choice == checked_choice)

    def test_arrow_keys_choose_and_the_wheel_does_not(self):
        pop_up = self.pop_ups()[-1]
        self.assertEqual(pop_up.name, "Folder of images")
        self.session.key("Down")
        wait_until(lambda: self.stores({"enableImageToIconInMac": True}), "the choice by key")
        self.click_at(*pop_up.middle, button=4)
        self.session.key("Up")
        wait_until(lambda: self.stores({"enableImageToIconInMac": False}), "the choice by key")
        self.click_at(*pop_up.middle, button=5)
        self.press_switch(0)
        self.wait_for_records([record | {"enable": 0} if record["Action"] == "Cut" else record
                               for record in default_records(OTHERS)])
        self.assertTrue(self.stores({"enableImageToIconInMac": False}))


class WholeDisk(PreferencesTest):
    def test_authorizing_it(self):
        self.show_page(GENERAL)
        box = self.find("check box", "Authorize the whole disk")
        self.assertFalse(box.has("checked"))
        self.press(box)
        self.session.cancel(ACCESS_PANEL)
        self.wait_for_state(box, "checked", False)
        self.assertEqual(self.session.grants(), {})
        self.press(box)
        self.session.authorize()
        wait_until(lambda: set(self.session.grants()) == {"/"}, "the grant")
        self.assertTrue(box.has("checked"))
        self.serves_a_request()
        self.press(box)
        wait_until(lambda: self.session.grants() == {}, "the grant to go")
        self.assertFalse(box.has("checked"))


class Links(PreferencesTest):
    opens_window = False
    ADDRESSES = {
        NEW_FILES: {"About templates": "help/templates"},
        HELP: {"Tutorial video": "videos", "Questions and answers": "faq",
               "About templates": "help/templates", "About text services": "help/text-services",
               "Switching services on": "help/enabling-services",
               "About permissions": "help/permissions"},
        MORE: {"Website": "", "What is new": "news", "More folder icons": "icons",
               "Translate Tavrin": "translate", "Source code": "source",
               "Write a review": "store?review=write"},
        CONTACT: {"Suggest an idea": "support", "Get support": "support",
                  "Report a problem": "support/report", "Privacy policy": "privacy",
                  "Terms of use": "terms", "License": "license"},
    }

    def setUp(self):
        super().setUp()
        self.opened = self.session.folder / "opened"
        browser = self.session.folder / "browser"
        browser.write_text(f'#!/bin/sh\necho "$@" >> "{self.opened}"\n')
        browser.chmod(0o700)
        applications = self.session.data / "applications"
        applications.mkdir()
        (applications / "browser.desktop").write_text(
            f"[Desktop Entry]\nType=Application\nName=Browser\nExec={browser} %u\n"
            "MimeType=x-scheme-handler/https;\n")
        (self.session.config / "mimeapps.list").write_text(
            "[Default Applications]\nx-scheme-handler/https=browser.desktop\n")
        self.open_window()

    def test_each_opens_its_page(self):
        opened = []
        for page, links in self.ADDRESSES.items():
            self.show_page(page)
            for name, path in links.items():
                with self.subTest(name):
                    self.press(self.find("push button", name))
                    self.wait_for_opened(opened, path)
        self.show_page(OTHERS)
        for row in (17, 18, 19):
            left, top, _, height = self.reveal(row, "Option").extents
            self.click_at(left + 14, top + height // 2)
            self.wait_for_opened(opened, "help/text-services")

    def wait_for_opened(self, opened, path):
        opened.append(f"https://tavrin.app/{path}")
        wait_until(lambda: self.opened.exists() and self.opened.read_text().splitlines() == opened,
                   f"{opened[-1]} to be opened")


class ExtensionPrompt(PreferencesTest):
    prompts_for_extension = True
    opens_window = False

    def test_it_is_shown_once(self):
        self.session.start_host()
        wait_until(lambda: len(self.session.windows(TITLE)) == 2, "the prompt")
        self.find("label", "Enable Extension")
        self.find("label", "The Tavrin Finder extension must be enabled in System Preferences")
        self.find("push button", "Open System Preferences")
        self.assertNotIn("ShownEnableExtensionAlert", self.stored())
        self.session.screenshot("extension-prompt")
        self.session.key("Return")
        wait_until(lambda: self.stored().get("ShownEnableExtensionAlert") is True, "the mark")
        self.session.wait_for_window(FILE_MANAGERS)
        self.session.key("Escape")
        self.window = self.session.wait_for_window(TITLE)
        for _ in range(2):
            self.close_window()
            self.open_window()
            # The prompt would let nothing else be pressed.
            self.show_page(GENERAL)
            self.assertEqual(len(self.session.windows(TITLE)), 1)


class FileManagers(PreferencesTest):
    """With what else is installed on the system; the stand-in is always there."""

    STATES = {True: "The menu is on", False: "The menu is off"}

    def setUp(self):
        super().setUp()
        self.show_page(GENERAL)
        self.press_button("File Managers…")
        self.session.wait_for_window(FILE_MANAGERS)

    def box(self):
        return self.find("check box", "Dolphin", "File Managers")

    def switched_off(self):
        return self.stored("group").get("disabledFileManagers", [])

    def wait_for_switch(self, on, off):
        wait_until(lambda: self.switched_off() == off, f"{off} to be off")
        self.wait_for_state(self.box(), "checked", on)
        self.assertEqual(self.box().description, self.STATES[on])

    def test_each_is_switched_by_mouse_and_keyboard_and_follows_its_setting(self):
        self.wait_for_switch(True, [])
        self.session.screenshot("file-managers")
        self.press(self.box())
        self.wait_for_switch(False, ["dolphin"])
        self.wait_for_state(self.box(), "focused")
        self.session.key("space")
        self.wait_for_switch(True, [])
        self.write("disabledFileManagers", ["nemo", "dolphin"], "group")
        self.wait_for_switch(False, ["nemo", "dolphin"])
        self.session.key("space")
        self.wait_for_switch(True, ["nemo"])

    def test_what_dolphin_says_itself_counts(self):
        own = self.session.config / "kservicemenurc"
        own.write_text(f"[Show]\nother=false\n{MENU_MODULE}=false\n")
        self.session.key("Escape")
        self.session.wait_for_no_window(FILE_MANAGERS)
        self.press_button("File Managers…")
        self.session.wait_for_window(FILE_MANAGERS)
        self.wait_for_switch(False, [])
        self.press(self.box())
        self.wait_for_switch(True, [])
        self.assertEqual(own.read_text(), f"[Show]\nother=false\n{MENU_MODULE}=true\n")

    def test_every_control_has_a_name_and_the_tab_key_reaches_it(self):
        frame = self.frames("File Managers")[0]
        controls = {each for each in frame.descendants()
                    if each.has("focusable") and each.has("enabled")}
        self.assertLessEqual({"Dolphin", "Restart File Manager", "Close"},
                             {each.name for each in controls})
        wait_until(lambda: self.focus.focused in controls, "the focus to come to the dialog")
        reached = {self.focus_by("Tab") for _ in controls}
        self.assertEqual(reached, controls)
        self.press(self.find("push button", "Close", "File Managers"))
        self.session.wait_for_no_window(FILE_MANAGERS)
        self.show_page(HELP)


class ExtensionSwitchedOff(PreferencesTest):
    opens_window = False

    def test_each_opening_prompts_and_leads_to_the_switches(self):
        self.session.import_domain("group", {"disabledFileManagers": FILE_MANAGER_NAMES})
        self.session.start_host()
        for _ in range(2):
            wait_until(lambda: len(self.session.windows(TITLE)) == 2, "the prompt")
            self.session.key("Return")
            self.session.wait_for_window(FILE_MANAGERS)
            self.assertFalse(self.find("check box", "Dolphin", "File Managers").has("checked"))
            self.session.key("Escape")
            self.window = self.session.wait_for_window(TITLE)
            self.close_window()
            self.session.start_host()


class ClosingAndOpening(PreferencesTest):
    def test_the_window_returns_with_what_is_stored(self):
        self.show_page(COPY_TO)
        self.select(0)
        self.press_switch(1)
        wait_until(lambda: self.records()[1]["enable"] == 0, "the switch")
        self.session.run("xdotool", "windowmove", self.window, "60", "50")
        self.session.run("xdotool", "windowsize", self.window, "1000", "700")
        wait_until(lambda: self.frame().extents[2:] == (1000, 700), "the size")
        place = self.frame().extents
        self.close_window()
        self.switch("enableMoveFilesTo", False)
        self.open_window()
        self.assertEqual(self.frame().extents, place)
        self.assertTrue(self.find("radio button", NEW_FILES).has("checked"))
        self.show_page(COPY_TO)
        self.assertFalse(self.cell(1, "Enabled").has("checked"))
        self.assertFalse(self.cell(0, "Name").has("selected"))
        self.assertFalse(self.find("push button", "Remove").has("enabled"))
        self.show_page(GENERAL)
        self.assertFalse(self.find("check box", "Move to a folder").has("checked"))

    def test_an_open_window_is_shown_and_not_made_again(self):
        self.show_page(GENERAL)
        self.session.run("xdotool", "windowminimize", self.window)
        self.session.wait_for_no_window(TITLE)
        self.wait_for_end(self.session.start_host(), 0)
        self.assertEqual(self.session.wait_for_window(TITLE), self.window)
        self.assertTrue(self.find("radio button", GENERAL).has("checked"))

    def test_the_host_works_on_without_its_window(self):
        host = self.session.hosts[0]
        self.close_window()
        self.session.grant(self.session.files)
        self.serves_a_request()
        self.assertEqual(self.session.owner_of(APPLICATION_ID), host.pid)
        self.switch("enableMoveFilesTo", False)
        wait_until(lambda: self.stored("group")["enableMoveFilesTo"] is False, "the mirroring")
        self.open_window()
        host.terminate()
        self.wait_for_end(host, 0)
        self.session.wait_for_no_window(TITLE)


main()
