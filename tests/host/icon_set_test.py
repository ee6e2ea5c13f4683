"""Icon sets from images, as the running host makes them."""

import os
import socket
import stat
import struct
import subprocess

from session import HostTest, main

DONE = "Volume Mount"
FAILED = "Funk"
MAC = "imageToIconSetForMac"
IOS = "imageToIconSetForiOS"

MAC_SIZES = {"icon_16x16.png": 16, "icon_16x16@2x.png": 32, "icon_32x32.png": 32,
             "icon_32x32@2x.png": 64, "icon_128x128.png": 128, "icon_128x128@2x.png": 256,
             "icon_256x256.png": 256, "icon_256x256@2x.png": 512, "icon_512x512.png": 512,
             "icon_512x512@2x.png": 1024}
IOS_SIZES = {f"icon_{size}x{size}.png": size
             for size in (29, 40, 48, 50, 55, 57, 58, 72, 76, 80, 87, 100, 114, 120, 144, 153, 160,
                          172, 180, 196)}


class IconSets(HostTest):
    compiles = False
    folder = "My Pics"

    def setUp(self):
        super().setUp()
        self.session.import_domain("standard", {"enableImageToIconInMac": self.compiles})
        self.host = self.session.start_waiting_host()
        self.pictures = self.make_folder(self.folder)
        self.session.grant(self.session.files)

    def make_image(self, name, size="300x200"):
        image = self.pictures / name
        image.write_bytes(subprocess.run(["convert", "-size", size, "gradient:red-blue", "png:-"],
                                         stdout=subprocess.PIPE, check=True).stdout)
        return image

    def convert(self, action, image):
        self.session.send(action, File=os.fsdecode(image))
        self.session.wait_for_next_sound(DONE)
        self.assert_alive(self.host)

    def sizes_in(self, folder):
        """The width and height of each PNG file by name."""
        sizes = {}
        for path in folder.iterdir():
            header = path.read_bytes()[:24]
            self.assertEqual(header[:8], b"\x89PNG\r\n\x1a\n", path)
            sizes[path.name] = struct.unpack(">II", header[16:])
        return sizes

    def assert_set(self, folder, expected):
        self.assertEqual(self.sizes_in(folder),
                         {name: (size, size) for name, size in expected.items()})


class Folders(IconSets):
    def test_sets_get_folders_of_their_own_beside_the_image(self):
        image = self.make_image("logo (1).png")
        before = image.read_bytes()
        for action, folder, expected in ((MAC, "logo (1)(Mac)", MAC_SIZES),
                                         (MAC, "logo (1)(Mac) 2", MAC_SIZES),
                                         (IOS, "logo (1)(iOS)", IOS_SIZES),
                                         (IOS, "logo (1)(iOS) 2", IOS_SIZES)):
            self.convert(action, image)
            self.assert_set(self.pictures / folder, expected)
        self.assertEqual(self.names_in(self.pictures),
                         ["logo (1)(Mac)", "logo (1)(Mac) 2", "logo (1)(iOS)", "logo (1)(iOS) 2",
                          "logo (1).png"])
        self.assertEqual(image.read_bytes(), before)
        self.assertEqual([line for line in self.session.log_lines() if "confined" in line], [])

    def test_what_is_no_image_leaves_an_empty_folder(self):
        self.pictures.joinpath("empty.png").write_bytes(b"")
        self.pictures.joinpath("text.png").write_bytes(b"no image")
        for name in ("empty", "text", "missing"):
            self.convert(IOS, self.pictures / f"{name}.png")
            self.assertEqual(self.names_in(self.pictures / f"{name}(iOS)"), [])
        self.assertIn("sips: ", self.session.whole_log())
        self.convert(MAC, self.make_image("sound.png"))
        self.assert_set(self.pictures / "sound(Mac)", MAC_SIZES)

    def test_a_request_without_an_image_is_one_line(self):
        before = len(self.session.log_lines())
        for values in ({}, {"File": ""}, {"File": "logo.png"}, {"File": 5}, {"File": ["a"]}):
            self.session.send(MAC, **values)
        self.serves_a_request()
        self.assertEqual(len(self.session.log_lines()), before + 5)
        self.assertEqual(self.names_in(self.pictures), [])

    def test_without_access_nothing_is_made(self):
        image = self.session.folder / "tmp" / "logo.png"
        self.make_image("logo.png").rename(image)
        self.session.send(MAC, File=str(image))
        self.session.cancel()
        self.serves_a_request()
        self.assertEqual(self.names_in(image.parent), ["logo.png"])
        self.session.wait_for_sounds(FAILED, DONE)


class Compiled(IconSets):
    compiles = True

    def test_only_the_icon_file_remains(self):
        image = self.make_image("logo.png")
        self.convert(MAC, image)
        self.assertEqual(self.names_in(self.pictures), ["logo(Mac).icns", "logo.png"])
        packed = self.pictures / "logo(Mac).icns"
        listed = subprocess.run(["icns2png", "--list", packed], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, check=True).stdout.decode()
        for kind in ("icp4", "icp5", "ic07", "ic08", "ic09", "ic10", "ic11", "ic12", "ic13",
                     "ic14"):
            self.assertIn(kind, listed)
        self.convert(IOS, image)
        self.assert_set(self.pictures / "logo(iOS)", IOS_SIZES)

    def test_a_failed_set_leaves_neither_file_nor_folder(self):
        self.pictures.joinpath("text.png").write_bytes(b"no image")
        self.convert(MAC, self.pictures / "text.png")
        self.assertEqual(self.names_in(self.pictures), ["text.png"])


class HostileNames(IconSets):
    """Names run what they like, for scripts quote no more than blanks and parentheses."""

    folder = "pics"

    def setUp(self):
        super().setUp()
        self.other = self.make_folder("other")
        self.precious = self.other / "precious"
        self.precious.write_text("precious")
        self.ran = self.pictures / "ran"

    @staticmethod
    def in_name(*words):
        """Words of a command without blanks and slashes: the shell's own folder is "/"."""
        return "${IFS}".join(str(word).replace("/", "${PWD}") for word in words)

    def run_by_name(self, *words):
        """Converts an image whose name runs a command; it has been run when this returns."""
        command, proof = self.in_name(*words), self.in_name(self.ran)
        for name in (f";{command};echo>{proof};.png", f"`{command};echo>{proof}`.png"):
            self.assertLess(len(name), 240)
            image = self.make_image(name, "8x8")
            self.convert(MAC, image)
            self.assertTrue(self.ran.exists(), name)
            self.ran.unlink()

    def look_of(self, folder):
        """All that may be seen of a folder and what is in it."""
        return [(str(item), stat.filemode(status.st_mode), status.st_nlink, status.st_mtime_ns,
                 item.read_bytes() if item.is_file() else b"")
                for item in (folder, *sorted(folder.rglob("*"))) for status in [item.lstat()]]

    def test_nothing_changes_outside_the_folder_of_the_image(self):
        before = self.look_of(self.other)
        for command in (("touch", self.other / "new"), ("rm", self.precious),
                        ("rm", "-r", self.other), ("chmod", "777", self.precious),
                        ("mv", self.precious, self.pictures), ("ln", self.precious, self.ran),
                        ("cp", "/etc/passwd", self.precious)):
            with self.subTest(command[0]):
                self.run_by_name(*command)
                self.assertEqual(self.look_of(self.other), before)

    def test_nothing_is_reached_but_files(self):
        with socket.socket() as remote, socket.socket(socket.AF_UNIX) as local:
            remote.bind(("127.0.0.1", 0))
            local.bind(str(self.other / "bus"))
            for listener in (remote, local):
                listener.listen()
                listener.settimeout(0)
            port = remote.getsockname()[1]
            self.run_by_name("bash", "-c", f"':</dev/tcp/127.0.0.1/{port}'")
            self.run_by_name("dbus-send", f"--bus=unix:path={self.other}/bus", "/", "a.b")
            self.run_by_name("kill", "-9", self.host.pid)
            for listener in (remote, local):
                with self.assertRaises(BlockingIOError):
                    listener.accept()
        self.assert_alive(self.host)


main()
