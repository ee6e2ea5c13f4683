"""The rule lists of the preferences window: rows that are added, removed, reset, enabled."""

import os
import pwd
import shutil
import struct
import subprocess
import zlib
from pathlib import Path

from preferences import (ALWAYS_ON, COMMON, COPY_TO, FILE_PANEL, ICONS, LISTS, NEW_FILES, OTHERS,
                         TITLE, PreferencesTest, changed, default_records, make_image)
from session import OPEN_PANEL, main, wait_until

# The account's, whatever the environment says.
HOME = Path(pwd.getpwuid(os.getuid()).pw_dir)


def folder_record(path):
    return {"enable": 1, "realPath": str(path), "displayName": ""}


def make_vast_image(path):
    """Makes a PNG file of 9,000 by 9,000 black pixels in little memory."""
    side = 9000
    header = struct.pack(">IIBBBBB", side, side, 1, 0, 0, 0, 0)
    rows = zlib.compress(bytes(1 + side // 8) * side)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        for kind, data in ((b"IHDR", header), (b"IDAT", rows), (b"IEND", b"")):
            file.write(struct.pack(">I", len(data)) + kind + data
                       + struct.pack(">I", zlib.crc32(kind + data)))


class Adding(PreferencesTest):
    def start_of_panel(self, title):
        """The folder that the panel which comes up starts in; cancels it."""
        text = self.panel_field(title).text
        self.session.cancel(title)
        return text

    def add(self, item, title=OPEN_PANEL):
        self.press_button("Add…")
        self.pick(item, title)

    def test_folders(self):
        """In both lists of folders: several at once, the home, one twice, none."""
        desktop = HOME / "Desktop" if (HOME / "Desktop").is_dir() else HOME
        inner = [self.make_folder(f"picked/{name}") for name in ("one", "two")]
        for page, key in ((COPY_TO, "prePathOfSendFilesTo"), (COMMON, "prePathOfCommonPath")):
            with self.subTest(page):
                self.show_page(page)
                records = self.records()
                self.press_button("Add…")
                self.assertEqual(self.start_of_panel(OPEN_PANEL), str(desktop))
                self.assertNotIn(key, self.stored())
                self.assertEqual(self.records(), records)

                self.press_button("Add…")
                self.pick_all_in(inner[0].parent)
                records += [folder_record(path) for path in inner]
                self.wait_for_records(records)
                self.assertEqual(self.stored()[key], str(inner[0].parent))
                self.press_button("Add…")
                self.assertEqual(self.start_of_panel(OPEN_PANEL), str(inner[0].parent))

                for item, path in ((HOME, "~"), (inner[0], inner[0])):
                    self.add(item)
                    records.append(folder_record(path))
                    self.wait_for_records(records)
                self.assertEqual(self.stored()[key], str(inner[0].parent))
                self.wait_for_texts("Folder", [record["realPath"] for record in records])
                self.assertEqual(self.texts("Name")[-4:], ["one", "two", HOME.name, "one"])

    def test_templates(self):
        self.show_page(NEW_FILES)
        records = self.records()
        new = self.make_file("my files/Letter.odt", "a letter")
        replacing = self.make_file("my files/Plain Text.txt", "my own text")
        self.assertTrue((self.templates / "Plain Text.txt").exists())
        for file in (new, replacing):
            self.add(file, FILE_PANEL)
            records.append({"enable": "1", "displayName": file.stem, "modified": "1",
                            "extension": file.suffix[1:]})
            self.wait_for_records(records)
            self.assertEqual((self.templates / file.name).read_text(), file.read_text())
            self.assertEqual(self.stored()["prePathOfCreateNewFile"], str(file.parent))
        self.assertEqual(self.texts("Name").count("Plain Text"), 2)

    def test_a_template_keeps_its_rights_and_a_link_is_what_it_leads_to(self):
        """A program, a secret, a link to one, and 4 GiB of holes, which take no time."""
        self.show_page(NEW_FILES)
        records = self.records()
        program = self.make_file("my files/run.sh", "#!/bin/sh\n")
        program.chmod(0o755)
        os.setxattr(program, "user.note", b"mine")
        secret = self.make_file("my files/secret.key", "secret")
        secret.chmod(0o600)
        vast = self.make_file("my files/vast.img", "the beginning")
        os.truncate(vast, 4 << 30)
        link = self.make_folder("links") / "link.sh"
        link.symlink_to("../my files/run.sh")
        picture = self.make_folder("links") / "picture.png"
        picture.symlink_to(make_image(self.make_folder("my files") / "icon.png"))
        shutil.rmtree(self.templates)
        for file in (program, secret, vast, link):
            self.add(file, FILE_PANEL)
            records.append({"enable": "1", "displayName": file.stem, "modified": "1",
                            "extension": file.suffix[1:]})
            self.wait_for_records(records)
            template, source = (self.templates / file.name).lstat(), file.stat()
            self.assertEqual(template.st_mode, source.st_mode)
            self.assertEqual(template.st_size, source.st_size)
            self.assertLess(template.st_blocks, 1000)
        self.assertEqual(os.getxattr(self.templates / "run.sh", "user.note"), b"mine")
        self.assertEqual((self.templates / "link.sh").read_text(), "#!/bin/sh\n")
        self.show_page(ICONS)
        icons = len(self.records())
        self.add(picture, FILE_PANEL)
        wait_until(lambda: len(self.records()) == icons + 1, "the icon")
        self.assertEqual(self.records()[-1]["displayName"], "picture.png")
        self.assertEqual([line for line in self.session.log_lines()
                          if "not added" in line or "picture" in line], [])

    def test_a_template_that_cannot_be_copied_is_skipped(self):
        """Three are picked at once and the name of the middle one is taken by a folder."""
        self.show_page(NEW_FILES)
        records = self.records()
        files = [self.make_file(f"some/{name}.txt", name) for name in ("a", "b", "c")]
        (self.templates / "b.txt").mkdir()
        self.press_button("Add…")
        self.pick_all_in(files[0].parent, FILE_PANEL)
        self.wait_for_records(records + [
            {"enable": "1", "displayName": name, "extension": "txt", "modified": "1"}
            for name in ("a", "c")])
        self.assertEqual((self.templates / "c.txt").read_text(), "c")
        self.assertEqual([line for line in self.session.log_lines() if "were not added" in line
                          and "1 of the picked items" in line and "b.txt" in line],
                         [line for line in self.session.log_lines() if "not added" in line])

    def test_icons(self):
        self.show_page(ICONS)
        records = self.records()
        folder = self.make_folder("images")
        broken = self.make_file("images/broken.png", "no image")
        image = make_image(folder / "icon.png", 64, 48)
        self.press_button("Add…")
        self.pick_all_in(folder, FILE_PANEL)
        wait_until(lambda: len(self.records()) == len(records) + 1, "the icon")
        added = self.records()[-1]
        data = added.pop("icon")
        self.assertEqual(added, {"enable": 1, "displayName": image.name, "modified": "1"})
        identified = subprocess.run(["identify", "-format", "%m %wx%h %[pixel:p{0,0}]", "-"],
                                    input=data, stdout=subprocess.PIPE, check=True)
        self.assertRegex(identified.stdout.decode(), r"^TIFF 64x48 (red|srgba?\(255,0,0)")
        self.wait_for_records(records + [added | {"icon": data}])
        self.assertEqual(self.texts("Size")[-1], "64 x 48")
        self.assertEqual(self.texts("Name")[-1], "icon.png")
        self.add(broken, FILE_PANEL)
        self.add(make_image(folder / "last.png"), FILE_PANEL)
        wait_until(lambda: self.texts("Name")[-2:] == ["icon.png", "last.png"], "the last icon")

    def test_why_an_icon_is_refused(self):
        """Each in one line of the log; a pipe is not waited for."""
        self.show_page(ICONS)
        records = self.records()
        folder = self.make_folder("no images")
        os.mkfifo(folder / "pipe.png")
        make_vast_image(folder / "vast.png")
        for name, text, cause in (("text.png", "no image", "format is not known"),
                                  ("empty.png", "", "it is empty"),
                                  ("pipe.png", None, "Invalid argument"),
                                  ("vast.png", None, "too many pixels")):
            if text is not None:
                self.make_file(f"no images/{name}", text)
            self.add(folder / name, FILE_PANEL)
            wait_until(lambda: any(name in line for line in self.session.log_lines()), name)
            lines = [line for line in self.session.log_lines() if name in line]
            self.assertEqual(len(lines), 1, lines)
            self.assertIn("1 of the picked items", lines[0])
            self.assertIn(cause, lines[0])
        self.wait_for_records(records)

    def test_only_images_of_the_type_can_be_picked_as_icons(self):
        self.show_page(ICONS)
        records = self.records()
        picture = make_image(self.make_folder("images") / "icon.jpg")
        self.press_button("Add…")
        field = self.panel_field(FILE_PANEL)
        self.press(field)
        self.session.key("ctrl+a")
        self.session.type_line(str(picture))
        wait_until(lambda: field.text == str(picture), "the path to be typed")
        self.assertFalse(self.find("push button", "Open", "Open").has("enabled"))
        self.session.cancel(FILE_PANEL)
        self.wait_for_records(records)
        self.assertNotIn("prePathOfCustomIcon", self.stored())


class ChoosingAFolder(PreferencesTest):
    def test_the_row_gets_the_folder(self):
        """By the button and by a double click on its folder."""
        self.show_page(COPY_TO)
        button = self.find("push button", "Choose Folder…")
        self.assertFalse(button.has("enabled"))
        self.select(4)
        self.wait_for_state(button, "enabled")
        self.press(button)
        chosen = self.make_folder("chosen")
        self.pick(chosen)
        records = changed(self.records(), 4, realPath=str(chosen), displayName="")
        self.wait_for_records(records)
        self.assertEqual(records[4]["enable"], 0)
        self.press(self.cell(0, "Folder"), count=2)
        self.pick(HOME)
        records = changed(records, 0, realPath=str(HOME), displayName="")
        self.wait_for_records(records)
        self.assertEqual(self.texts("Folder")[0], "~")
        self.assertNotIn("prePathOfSendFilesTo", self.stored())
        self.press(button)
        self.session.cancel(OPEN_PANEL)
        self.wait_for_records(records)


class Removing(PreferencesTest):
    def test_rows_go_with_their_templates(self):
        self.show_page(NEW_FILES)
        button = self.find("push button", "Remove")
        self.assertFalse(button.has("enabled"))
        records = self.records()
        self.select(3)
        self.wait_for_state(button, "enabled")
        self.press(button)
        removed = records.pop(3)
        self.wait_for_records(records)
        name = f"{removed['displayName']}.{removed['extension']}"
        wait_until(lambda: not (self.templates / name).exists(), f"{name} to go")
        self.wait_for_state(self.cell(2, "Name"), "selected")
        self.select(2)
        self.session.key("Delete")
        records.pop(2)
        self.wait_for_records(records)
        self.wait_for_state(self.cell(1, "Name"), "selected")
        for _ in range(2):
            self.press(button)
        del records[:2]
        self.wait_for_records(records)
        self.wait_for_state(self.cell(0, "Name"), "selected")
        self.assertTrue(button.has("enabled"))
        self.assertTrue((self.templates / "OpenDocument Spreadsheet.ods").exists())

    def test_the_last_row_disables_the_button(self):
        for page in (COPY_TO, COMMON, ICONS):
            with self.subTest(page):
                self.show_page(page)
                button = self.find("push button", "Remove")
                self.assertFalse(button.has("enabled"))
                self.write(LISTS[page], self.records()[:2])
                wait_until(lambda: self.table().row_count == 2, "two rows")
                self.select(1)
                for count in (1, 0):
                    self.wait_for_state(button, "enabled")
                    self.press(button)
                    self.wait_for_records(self.records()[:count])
                    wait_until(lambda left=count: self.table().row_count == left, "the rows left")
                self.wait_for_state(button, "enabled", False)

    def test_no_selection_disables_the_button(self):
        for page in (NEW_FILES, COPY_TO, COMMON, ICONS):
            with self.subTest(page):
                self.show_page(page)
                button = self.find("push button", "Remove")
                self.select(0)
                self.wait_for_state(button, "enabled")
                self.deselect(0)
                self.wait_for_state(button, "enabled", False)
                records = self.records()
                self.session.key("Delete")
                self.select(1)
                self.wait_for_state(button, "enabled")
                self.wait_for_records(records)


class Resetting(PreferencesTest):
    def test_after_confirmation(self):
        pages = (NEW_FILES, COPY_TO, COMMON, ICONS, OTHERS)
        for page in pages:
            self.write(LISTS[page], default_records(page)[:1])
        for page in pages:
            with self.subTest(page):
                self.show_page(page)
                wait_until(lambda: self.table().row_count == 1, "one row")
                self.select(0)
                for key in ("Escape", "Tab space", "Return"):
                    self.press_button("Reset…")
                    wait_until(lambda: len(self.session.windows(TITLE)) == 2, "the question")
                    self.find("label", "All setting parameters will be reseted!")
                    self.session.key(*key.split())
                    wait_until(lambda: len(self.session.windows(TITLE)) == 1, "the answer")
                    if key != "Return":
                        self.assertEqual(len(self.records()), 1)
                        self.assertTrue(page == OTHERS or self.can_remove())
                self.wait_for_records(default_records(page))
                wait_until(lambda: self.table().row_count == len(default_records(page)), "the rows")
                self.assertFalse(page != OTHERS and self.can_remove())

    def can_remove(self):
        return self.find("push button", "Remove").has("enabled")


class EnablingAll(PreferencesTest):
    def test_it_switches_every_row_and_follows_them(self):
        for page in (NEW_FILES, ICONS, OTHERS):
            with self.subTest(page):
                self.show_page(page)
                records = self.records()
                box = self.find("check box", "Enable all")
                is_all_on = all(record["enable"] for record in records)
                self.assertEqual(box.has("checked"), is_all_on)
                for on in (not is_all_on, is_all_on, True):
                    if box.has("checked") != on:
                        self.press(box)
                    records = [record | {"enable": int(on or record.get("Action") in ALWAYS_ON)}
                               for record in records]
                    self.wait_for_records(records)
                    self.wait_for_state(box, "checked", on)
                self.press_switch(1)
                self.wait_for_records(changed(records, 1, enable=0))
                self.wait_for_state(box, "checked", False)
                # So soon after the first that it is a double click, which is nothing else here.
                self.press_switch(1)
                self.wait_for_records(records)
                self.wait_for_state(box, "checked")


main()
