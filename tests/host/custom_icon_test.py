"""Icons that the user gives to items, judged by what GIO and the folders' own files say."""

import os
import re
import stat
import subprocess
from pathlib import Path
from urllib.parse import unquote_to_bytes, urlsplit

from session import ACCESS_PANEL, GROUP, PATIENCE, HostTest, main, wait_until


class CustomIcons(HostTest):
    file_metadata = True

    def setUp(self):
        super().setUp()
        self.store = self.session.data / GROUP / "ItemIcons"
        entries = [{"enable": number != 2, "displayName": color, "icon": self.picture(color, kind)}
                   for number, (color, kind) in enumerate(
                       [("red", "tiff"), ("lime", "png"), ("blue", "jpg")], start=1)]
        entries += [{"enable": True, "icon": b"no picture"}, {"enable": True}]
        self.set_list(entries)
        self.host = self.session.start_waiting_host()
        self.session.grant(self.session.files)
        self.folder = self.make_folder("a folder")
        self.directory_file = self.folder / ".directory"

    def set_list(self, entries):
        self.session.import_domain("standard", {"arrOfCustomIcon": entries})

    def picture(self, color, kind):
        """An image file of one colour, made by another program."""
        return subprocess.run(["convert", "-size", "700x350", f"xc:{color}", f"{kind}:-"],
                              stdout=subprocess.PIPE, check=True, timeout=PATIENCE).stdout

    def set_icon(self, item, tag):
        """Sends the request and waits until it has been carried out."""
        self.session.send("customIcon", item, Tag=tag)
        self.serves_a_request()

    def metadata_icon(self, item):
        """The path of the image that GIO names for an item, asked by a process of its own."""
        shown = self.session.run("gio", "info", "-a", "metadata::custom-icon", item)
        self.assertIn("uri: ", shown)
        found = re.search(r"metadata::custom-icon: (.*)", shown)
        return None if found is None else Path(os.fsdecode(
            unquote_to_bytes(urlsplit(found.group(1)).path)))

    def look_of(self, image):
        """The bytes of the pixel in the middle of an image, and its width and height."""
        told = subprocess.run(["convert", image, "-format", "%w %h\n", "-write", "info:",
                               "-gravity", "center", "-crop", "1x1+0+0", "-depth", "8", "rgba:-"],
                              stdout=subprocess.PIPE, check=True, timeout=PATIENCE).stdout
        size, _, pixel = told.partition(b"\n")
        return pixel.hex(), size.decode()

    def assert_icon(self, item, color):
        image = self.metadata_icon(item)
        self.assertEqual(image.parent, self.store)
        self.assertEqual(stat.S_IMODE(self.store.parent.stat().st_mode), 0o700)
        self.assertEqual(self.look_of(image), (color, "512 512"))
        return image

    def test_a_folder_gets_replaces_and_loses_its_icon(self):
        before = self.session.log_lines()
        red = self.set_and_look(1, "ff0000ff")
        self.assertEqual(self.directory_file.read_text(), f"[Desktop Entry]\nIcon={red}\n")
        # The second entry is switched off, and counts.
        lime = self.set_and_look(2, "00ff00ff")
        self.assertNotEqual(lime, red)
        self.assertEqual(self.directory_file.read_text(), f"[Desktop Entry]\nIcon={lime}\n")
        self.set_and_look(3, "0000feff")
        self.set_icon(self.folder, 0)
        self.assertIsNone(self.metadata_icon(self.folder))
        self.assertEqual(self.names_in(self.folder), [])
        self.assertEqual(self.session.log_lines(), before)

    def set_and_look(self, tag, color):
        self.set_icon(self.folder, tag)
        return self.assert_icon(self.folder, color)

    def test_files_and_odd_names_get_icons_and_other_items_none(self):
        names = [b"file.txt", b" a b", b"\xff\n%41", b"-n"]
        for name in names:
            path = os.fsencode(self.session.files) + b"/" + name
            with open(path, "wb"):
                pass
            self.set_icon(path, 1)
            self.assert_icon(path, "ff0000ff")
            self.set_icon(path, -1)
            self.assertIsNone(self.metadata_icon(path))
        self.assertEqual(len(os.listdir(self.store)), 1)
        self.assertIsNone(self.metadata_icon(self.session.files))

    def test_what_is_no_icon_leaves_the_item_with_none(self):
        for tag in (4, 5, 6, 2**63 - 1, -2**63):
            with self.subTest(tag):
                self.set_and_look(1, "ff0000ff")
                self.set_icon(self.folder, tag)
                self.assertIsNone(self.metadata_icon(self.folder))
                self.assertEqual(self.names_in(self.folder), [])
        self.set_and_look("2", "00ff00ff")
        for odd in ({"Tag": [1], "SelectedFile": str(self.folder)}, {"Tag": 1},
                    {"Tag": 1, "SelectedFile": ""}, {"Tag": 1, "SelectedFile": 7},
                    {"Tag": 1, "SelectedFile": str(self.session.files / "missing")},
                    {"Tag": 1, "SelectedFile": str(self.session.files / ("n" * 300))}):
            before = len(self.session.log_lines())
            self.session.send("customIcon", **odd)
            self.serves_a_request()
            self.assertGreater(len(self.session.log_lines()), before, odd)
        self.assert_icon(self.folder, "00ff00ff")
        self.assert_alive(self.host)

    def test_the_list_is_read_when_the_request_arrives(self):
        self.set_list([{"icon": self.picture("blue", "png")}])
        self.set_and_look(1, "0000ffff")

    def test_a_drawing_and_an_icon_file(self):
        drawing = (b"<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'>"
                   b"<rect width='8' height='8' fill='#f00'/></svg>")
        png = self.picture("lime", "png")
        icon_file = (b"icns" + (len(png) + 16).to_bytes(4, "big")
                     + b"ic09" + (len(png) + 8).to_bytes(4, "big") + png)
        self.set_list([{"icon": drawing}, {"icon": icon_file}])
        self.set_and_look(1, "ff0000ff")
        self.set_and_look(2, "00ff00ff")

    def test_the_rest_of_the_folders_own_file_stays(self):
        kept = b"# mine\r\n[Desktop Entry]\r\nName=Photos\r\n[Dolphin]\r\nSortOrder=1"
        self.directory_file.write_bytes(kept)
        image = self.set_and_look(1, "ff0000ff")
        self.assertEqual(self.directory_file.read_bytes(), kept.replace(
            b"Entry]\r\n", b"Entry]\r\nIcon=" + os.fsencode(image) + b"\r\n"))
        self.set_icon(self.folder, 0)
        self.assertEqual(self.directory_file.read_bytes(), kept)

    def test_refused_access_changes_nothing(self):
        elsewhere = self.session.folder / "elsewhere" / "folder"
        elsewhere.mkdir(parents=True)
        self.session.send("customIcon", elsewhere, Tag=1)
        self.session.cancel(ACCESS_PANEL)
        self.serves_a_request()
        self.assertIsNone(self.metadata_icon(elsewhere))
        self.assertEqual(self.names_in(elsewhere), [])

    def test_the_host_still_ends_in_order_when_the_bus_goes(self):
        self.set_and_look(1, "ff0000ff")
        self.session.end_bus()
        self.wait_for_end(self.host, 0)


class WithoutMetadata(HostTest):
    def test_the_folders_own_file_is_written_all_the_same(self):
        self.session.import_domain("standard", {"arrOfCustomIcon": [
            {"icon": b"<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8'/>"}]})
        self.session.start_waiting_host()
        self.session.grant(self.session.files)
        folder = self.make_folder("a folder")
        before = len(self.session.log_lines())
        for _ in range(2):
            self.session.send("customIcon", folder, Tag=1)
            wait_until((folder / ".directory").exists, "the icon")
            self.session.send("customIcon", folder, Tag=0)
            self.serves_a_request()
            self.assertEqual(self.names_in(folder), [])
        told = self.session.log_lines()[before:]
        self.assertEqual(len(told), 1, told)
        self.assertIn("metadata", told[0])


main()
