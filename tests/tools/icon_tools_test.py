"""Runs the real sips and iconutil; the folder they are in and a program that shows what Qt reads
are the arguments. Other programs make the images and judge the results."""

import os
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

QT_READER = sys.argv.pop()
TOOLS = Path(sys.argv.pop()).resolve()

RED, GREEN, BLUE, WHITE = (255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 255)
MEBIBYTE = 1 << 20

# Names in the folder of a set, types in the container, and widths.
BITMAPS = [("icon_16x16.png", b"icp4", 16), ("icon_32x32.png", b"icp5", 32),
           ("icon_16x16@2x.png", b"ic11", 32), ("icon_32x32@2x.png", b"ic12", 64),
           ("icon_128x128.png", b"ic07", 128), ("icon_128x128@2x.png", b"ic13", 256),
           ("icon_256x256.png", b"ic08", 256), ("icon_256x256@2x.png", b"ic14", 512),
           ("icon_512x512.png", b"ic09", 512), ("icon_512x512@2x.png", b"ic10", 1024)]


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout


def png_chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png_claiming(width, height):
    """A PNG file of a few bytes whose header claims a size."""
    return (b"\x89PNG\r\n\x1a\n"
            + png_chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
            + png_chunk(b"IDAT", zlib.compress(bytes(1000))) + png_chunk(b"IEND", b""))


def bmp_claiming(width, height):
    return (b"BM" + struct.pack("<IHHI", 1054, 0, 0, 54)
            + struct.pack("<IiiHHIIiiII", 40, width, height, 1, 32, 0, 0, 0, 0, 0, 0) + bytes(1000))


def gif_claiming(width, height):
    return (b"GIF89a" + struct.pack("<HHBBB", width, height, 0x80, 0, 0) + bytes(6)
            + b"," + struct.pack("<HHHHB", 0, 0, width, height, 0) + b"\x02\x02\x4c\x01\x00;")


def tiff_claiming(width, height):
    entries = [(256, 4, width), (257, 4, height), (258, 3, 8), (259, 3, 1), (262, 3, 1),
               (273, 4, 8), (277, 3, 1), (278, 4, height), (279, 4, 1000)]
    directory = b"".join(struct.pack("<HHII", tag, kind, 1, value) for tag, kind, value in entries)
    return (b"II*\0" + struct.pack("<I", 1008) + bytes(1000)
            + struct.pack("<H", len(entries)) + directory + bytes(4))


def svg_claiming(width, height):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}">'
            "<rect width='9' height='9'/></svg>").encode()


def elements_of(container):
    """The types and data of an icon file, read independently."""
    magic, length = struct.unpack_from(">4sI", container)
    assert (magic, length) == (b"icns", len(container))
    elements, position = [], 8
    while position < length:
        kind, size = struct.unpack_from(">4sI", container, position)
        elements.append((kind, container[position + 8:position + size]))
        position += size
    return elements


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))

    def path(self, name):
        return self.folder / name

    def convert(self, *words):
        output_of("convert", *map(str, words))

    def make_quadrants(self, name, size="200x100"):
        """Red and green above, blue and white below."""
        width, height = map(int, size.split("x"))
        self.convert("-size", f"{width // 2}x{height // 2}", "(", "xc:red", "xc:lime", "+append",
                     ")", "(", "xc:blue", "xc:white", "+append", ")", "-append", "-quality", "95",
                     self.path(name))
        return self.path(name)

    def run_tool(self, tool, *words, status=0, **options):
        """Runs a tool; returns what it wrote to standard error, which is at most its own lines."""
        done = subprocess.run([TOOLS / tool, *words], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=120, check=False, **options)
        complaint = done.stderr.decode(errors="replace")
        self.assertEqual(done.returncode, status, (words, complaint))
        self.assertEqual(bool(complaint), status != 0, (words, complaint))
        for line in complaint.splitlines():
            self.assertTrue(line.startswith(tool + ": "), complaint)
        return complaint

    def sips(self, height, width, image, output, status=0, **options):
        return self.run_tool("sips", "-z", str(height), str(width), image, "-o", output,
                             status=status, **options)

    def size_of(self, path):
        data = Path(path).read_bytes()
        self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
        return struct.unpack_from(">II", data, 16)

    def pixels(self, path):
        """Rows of (red, green, blue, alpha)."""
        width, _ = self.size_of(path)
        data = output_of("convert", path, "-depth", "8", "rgba:-")
        pixels = [tuple(data[i:i + 4]) for i in range(0, len(data), 4)]
        return [pixels[i:i + width] for i in range(0, len(pixels), width)]

    def assert_colour(self, pixel, colour, tolerance=12):
        self.assertLessEqual(max(abs(a - b) for a, b in zip(pixel, colour)), tolerance,
                             f"{pixel} is not {colour}")

    def assert_quadrants(self, path, colours=(RED, GREEN, BLUE, WHITE)):
        rows = self.pixels(path)
        height, width = len(rows), len(rows[0])
        places = [(height // 4, width // 4), (height // 4, 3 * width // 4),
                  (3 * height // 4, width // 4), (3 * height // 4, 3 * width // 4)]
        for (row, column), colour in zip(places, colours):
            self.assert_colour(rows[row][column], colour)


class Sips(ToolTest):
    def test_every_kind_of_image_becomes_a_png_of_exactly_the_size(self):
        quadrants = self.make_quadrants("a.png")
        self.convert(quadrants, "-define", "bmp:format=bmp3", self.path("old.bmp"))
        self.convert(quadrants, "-alpha", "set", self.path("a.bmp"))
        self.convert(quadrants, "-interlace", "PNG", self.path("interlaced.png"))
        self.convert(quadrants, "-colors", "4", "png8:" + str(self.path("palette.png")))
        self.convert(quadrants, "-depth", "16", self.path("deep.png"))
        self.convert(quadrants, "-interlace", "JPEG", "-quality", "95", self.path("stepwise.jpg"))
        self.convert(quadrants, "(", "-size", "200x100", "xc:black", ")", self.path("two.gif"))
        for name in ("a.jpg", "a.tiff", "a.gif"):
            self.make_quadrants(name)
        self.convert(quadrants, "-define", "webp:lossless=true", self.path("a.webp"))
        output_of("vips", "copy", quadrants, self.path("a.heic"))
        self.path("a.svg").write_text(
            '<svg xmlns="http://www.w3.org/2000/svg" width="200" height="100">'
            '<rect width="100" height="50" fill="red"/>'
            '<rect x="100" width="100" height="50" fill="lime"/>'
            '<rect y="50" width="100" height="50" fill="blue"/>'
            '<rect x="100" y="50" width="100" height="50" fill="white"/></svg>')
        images = sorted(path for path in self.folder.iterdir())
        self.assertEqual(len(images), 14)
        for image in images:
            for height, width in ((16, 16), (300, 90)):
                with self.subTest(image=image.name, size=(height, width)):
                    before = image.read_bytes()
                    self.sips(height, width, image, self.path("out.jpg"))
                    self.assertEqual(self.size_of(self.path("out.jpg")), (width, height))
                    self.assert_quadrants(self.path("out.jpg"))
                    self.assertEqual(image.read_bytes(), before)

    def test_an_icon_file_gives_its_largest_picture(self):
        small, large = self.make_quadrants("s.png", "16x16"), self.make_quadrants("l.png", "64x64")
        self.convert("-size", "16x16", "xc:black", small)
        body = b"".join(kind + struct.pack(">I", len(data) + 8) + data for kind, data in (
            (b"icp4", small.read_bytes()), (b"TOC ", b"whatever"), (b"ic12", large.read_bytes()),
            (b"ic08", b"\0\0\0\x0cjP  no picture of ours")))
        self.path("a.icns").write_bytes(b"icns" + struct.pack(">I", len(body) + 8) + body)
        self.sips(32, 32, self.path("a.icns"), self.path("out.png"))
        self.assert_quadrants(self.path("out.png"))

    def test_colours_count_by_their_opacity(self):
        self.convert("-size", "64x64", "xc:rgba(0,255,0,0)", "-fill", "rgba(255,0,0,1)", "-draw",
                     "rectangle 0,0 31,63", self.path("a.png"))
        self.sips(5, 5, self.path("a.png"), self.path("out.png"))
        rows = self.pixels(self.path("out.png"))
        self.assertTrue(any(0 < pixel[3] < 255 for pixel in rows[2]), rows[2])
        for row in rows:
            for red, green, blue, alpha in row:
                if alpha > 8:
                    self.assert_colour((red, green, blue), RED, 3)
            self.assert_colour((row[0][3], row[4][3]), (255, 0), 5)

    def test_the_colour_profile_stays_and_cmyk_becomes_rgb(self):
        quadrants = self.make_quadrants("a.png")
        output_of("vips", "icc_transform", quadrants, self.path("wide.png"), "p3")
        self.sips(10, 20, self.path("wide.png"), self.path("out.png"))
        profiles = [output_of("convert", path, "icc:-")
                    for path in (self.path("wide.png"), self.path("out.png"))]
        self.assertEqual(profiles[0], profiles[1])
        self.assertGreater(len(profiles[0]), 128)
        self.convert(quadrants, "-colorspace", "CMYK", self.path("print.jpg"))
        self.sips(20, 20, self.path("print.jpg"), self.path("out.png"))
        self.assertEqual(output_of("identify", "-format", "%[colorspace]", self.path("out.png")),
                         b"sRGB")

    def test_the_orientation_is_applied_and_notes_go(self):
        jpeg = self.make_quadrants("a.jpg").read_bytes()
        expected = {1: (RED, GREEN, BLUE, WHITE), 3: (WHITE, BLUE, GREEN, RED),
                    6: (BLUE, RED, WHITE, GREEN), 8: (GREEN, WHITE, RED, BLUE),
                    2: (GREEN, RED, WHITE, BLUE), 5: (RED, BLUE, GREEN, WHITE)}
        for orientation, colours in expected.items():
            exif = (b"Exif\0\0MM\0*" + struct.pack(">IHHHIHHI", 8, 1, 0x0112, 3, 1, orientation, 0, 0)
                    + b"somewhere")
            self.path("turned.jpg").write_bytes(
                jpeg[:2] + b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif + jpeg[2:])
            with self.subTest(orientation=orientation):
                self.sips(40, 80, self.path("turned.jpg"), self.path("out.png"))
                self.assertEqual(self.size_of(self.path("out.png")), (80, 40))
                self.assert_quadrants(self.path("out.png"), colours)
                self.assertNotIn(b"eXIf", self.path("out.png").read_bytes())

    def test_the_result_is_close_to_a_lanczos_reduction(self):
        self.convert("-seed", "7", "-size", "1300x1300", "plasma:tomato-steelblue", "-alpha", "off",
                     self.path("a.png"))
        for size in (16, 87, 256, 512, 1024):
            self.sips(size, size, self.path("a.png"), self.path("out.png"))
            self.convert(self.path("a.png"), "-filter", "Lanczos", "-resize", f"{size}x{size}!",
                         "-depth", "8", self.path("judge.png"))
            ours, judge = (output_of("convert", self.path(name), "-depth", "8", "rgb:-")
                           for name in ("out.png", "judge.png"))
            self.assertEqual(len(ours), len(judge))
            for channel in range(3):
                difference = sum(abs(a - b) for a, b in zip(ours[channel::3], judge[channel::3]))
                self.assertLess(difference / (size * size), 2, (size, channel))

    def test_claims_beyond_the_bound_are_refused_before_memory_is_taken(self):
        for make in (png_claiming, bmp_claiming, gif_claiming, tiff_claiming, svg_claiming):
            image = self.path("claim")
            image.write_bytes(make(60_000, 60_000))
            with self.subTest(make.__name__):
                tool = subprocess.Popen([TOOLS / "sips", "-z", "16", "16", image, "-o",
                                         self.path("out.png")], stderr=subprocess.PIPE)
                with tool.stderr:
                    complaint = tool.stderr.read().decode()
                _, status, usage = os.wait4(tool.pid, 0)
                tool.returncode = os.waitstatus_to_exitcode(status)
                self.assertEqual(tool.returncode, 1, complaint)
                self.assertIn("60000 x 60000 pixels are more than 268435456", complaint)
                self.assertLess(usage.ru_maxrss * 1024, 100 * MEBIBYTE)
                self.assertFalse(self.path("out.png").exists())

    def test_a_drawing_that_would_take_for_ever_is_given_up(self):
        self.path("a.svg").write_text(
            '<svg xmlns="http://www.w3.org/2000/svg" width="500" height="500"><filter id="f">'
            '<feTurbulence numOctaves="1000000000"/></filter>'
            '<rect width="500" height="500" filter="url(#f)"/></svg>')

        def allow_a_second():
            resource.setrlimit(resource.RLIMIT_CPU, (1, resource.RLIM_INFINITY))

        complaint = self.sips(16, 16, self.path("a.svg"), self.path("out.png"), status=1,
                              preexec_fn=allow_a_second)
        self.assertIn("takes too long", complaint)
        self.assertEqual(os.listdir(self.folder), ["a.svg"])

    def test_what_is_no_sound_image_leaves_everything_as_it_was(self):
        png = self.make_quadrants("good.png", "600x600").read_bytes()
        jpeg = self.make_quadrants("good.jpg", "600x600").read_bytes()
        damaged = {"empty.png": b"", "text.png": b"no image\n" * 100, "short": b"B",
                   "cut.png": png[:len(png) * 2 // 3], "cut.jpg": jpeg[:len(jpeg) // 2],
                   "header.png": png[:33], "noise.png": png[:60] + os.urandom(len(png) - 60),
                   "cut.bmp": bmp_claiming(100, 100), "length.icns": b"icns\0\0\xff\xffic07",
                   "none.icns": b"icns" + struct.pack(">I4sI", 16, b"ic07", 8),
                   "loop.icns": b"icns" + struct.pack(">I4sI", 16, b"ic07", 0),
                   "a.pdf": b"%PDF-1.4\n", "a.csv": b"1,2\n3,4\n", "a.heic": b"\0\0\0\x18ftypheic"}
        for name, content in damaged.items():
            self.path(name).write_bytes(content)
        os.mkfifo(self.path("pipe"))
        self.path("folder").mkdir()
        self.path("out.png").write_bytes(b"was here")
        before = sorted(os.listdir(self.folder))
        for name in [*damaged, "pipe", "folder", "missing"]:
            with self.subTest(name):
                complaint = self.sips(16, 16, self.path(name), self.path("out.png"), status=1)
                self.assertEqual(complaint.count("\n"), 1, complaint)
                self.assertIn(name, complaint)
                self.assertEqual(sorted(os.listdir(self.folder)), before)
                self.assertEqual(self.path("out.png").read_bytes(), b"was here")

    def test_a_place_that_cannot_be_written_keeps_what_it_has(self):
        image = self.make_quadrants("a.png")
        self.path("out.png").write_bytes(b"was here")
        self.sips(900, 900, image, self.path("no/such/folder.png"), status=1)

        def full():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))

        complaint = self.sips(900, 900, image, self.path("out.png"), status=1,
                              restore_signals=False, preexec_fn=full)
        self.assertIn("File too large", complaint)
        self.assertEqual(self.path("out.png").read_bytes(), b"was here")
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.png", "out.png"])

    def test_a_folder_takes_the_result_under_the_name_of_the_image(self):
        image = self.make_quadrants("a.jpg")
        self.path("out").mkdir()
        self.sips(10, 10, image, self.path("out"))
        self.sips(12, 12, image, str(self.path("out")) + "/")
        self.assertEqual(self.size_of(self.path("out/a.jpg")), (12, 12))
        before = image.read_bytes()
        self.path("link.jpg").symlink_to("a.jpg")
        for place in (self.folder, image, self.path("link.jpg")):
            self.sips(10, 10, image, place, status=1)
        self.assertEqual(image.read_bytes(), before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["a.jpg", "link.jpg", "out"])

    def test_names_are_bytes(self):
        content = self.make_quadrants("a.png").read_bytes()
        for name in (b"page=2[n=-1].png", b"new\nline.png", b"\xff\xfe.png", b"a b'\"$;.png"):
            image = os.path.join(os.fsencode(self.folder), name)
            with open(image, "wb") as file:
                file.write(content)
            output = image + b".out"
            self.sips(8, 8, image, output)
            self.assertEqual(self.size_of(os.fsdecode(output)), (8, 8))
        self.run_tool("sips", "-z", "8", "8", "-o", "out.png", "--", "-a.png", status=1,
                      cwd=self.folder)
        self.path("-a.png").write_bytes(content)
        self.run_tool("sips", "-z", "8", "8", "-o", "out.png", "--", "-a.png", cwd=self.folder)

    def test_wrong_words_are_refused(self):
        image = self.make_quadrants("a.png")
        out = str(self.path("out.png"))
        for words in ([], ["-z"], ["-z", "16", image, "-o", out], ["-z", "0", "16", image, "-o", out],
                      ["-z", "16", "16385", image, "-o", out], ["-z", "16", "-1", image, "-o", out],
                      ["-z", "16", "16x", image, "-o", out], ["-z", "16", "16", image],
                      ["-z", "16", "16", "-o", out], ["-z", "16", "16", image, image, "-o", out],
                      ["-z", "16", "16", image, "-o"], ["-z", "16", "16", "", "-o", out],
                      ["-x", "-z", "16", "16", image, "-o", out], [image, "-o", out]):
            self.run_tool("sips", *words, status=2)
        self.assertEqual(os.listdir(self.folder), ["a.png"])
        for tool in ("sips", "iconutil"):
            self.assertIn(b"-o", output_of(TOOLS / tool, "--help"))
            self.assertRegex(output_of(TOOLS / tool, "--version").decode(),
                             rf"^{tool} \d+\.\d+\.\d+\n$")


class IconUtil(ToolTest):
    def make_set(self, name="app.iconset"):
        folder = self.path(name)
        folder.mkdir()
        image = self.path("image.png")
        self.convert("-size", "64x64", "plasma:", image)
        for file, _, pixels in BITMAPS:
            self.sips(pixels, pixels, image, folder / file)
        image.unlink()
        return folder

    def iconutil(self, *words, **options):
        return self.run_tool("iconutil", *words, **options)

    def test_ten_bitmaps_make_a_file_that_others_read(self):
        folder = self.make_set("my (app).iconset")
        self.iconutil("-c", "icns", folder)
        packed = self.path("my (app).icns")
        self.assertEqual(sorted(os.listdir(self.folder)), [packed.name, folder.name])
        self.assertEqual(elements_of(packed.read_bytes()),
                         [(kind, (folder / file).read_bytes()) for file, kind, _ in BITMAPS])
        listed = subprocess.run(["icns2png", "--list", packed], stdout=subprocess.PIPE, check=True,
                                stderr=subprocess.DEVNULL).stdout.decode()
        for _, kind, _ in BITMAPS:
            self.assertIn(kind.decode(), listed)
        sizes = [f"{pixels}x{pixels}" for _, _, pixels in BITMAPS]
        self.assertEqual(sorted(output_of(QT_READER, packed).decode().split()), sorted(sizes))

    def test_a_file_comes_apart_into_the_same_bitmaps(self):
        folder = self.make_set()
        self.iconutil("--convert", "icns", str(folder) + "/", "--output", self.path("other.icns"))
        self.iconutil("-c", "iconset", self.path("other.icns"))
        again = self.path("other.iconset")
        self.assertEqual({path.name: path.read_bytes() for path in again.iterdir()},
                         {path.name: path.read_bytes() for path in folder.iterdir()})
        self.iconutil("-c", "iconset", self.path("other.icns"), status=1)
        self.iconutil("-c", "iconset", self.path("other.icns"), "-o", self.path("third"))
        self.assertEqual(len(os.listdir(self.path("third"))), 10)

    def test_missing_bitmaps_are_left_out_and_told(self):
        folder = self.make_set()
        (folder / "icon_16x16.png").unlink()
        (folder / ".DS_Store").write_bytes(b"hidden")
        done = subprocess.run([TOOLS / "iconutil", "-c", "icns", folder], stderr=subprocess.PIPE,
                              check=True)
        self.assertIn(b"1 bitmaps are missing", done.stderr)
        self.assertEqual([kind for kind, _ in elements_of(self.path("app.icns").read_bytes())],
                         [kind for _, kind, _ in BITMAPS[1:]])

    def test_a_set_with_anything_wrong_leaves_the_old_file(self):
        good = self.make_set()
        self.path("app.icns").write_bytes(b"was here")
        png = (good / "icon_32x32.png").read_bytes()
        wrong = {"icon_16x16.png": [png, b"", png[:-12], b"GIF89a"],
                 "icon_48x48.png": [png], "notes.txt": [b"notes"], "icon_16x16@3x.png": [png]}
        for name, contents in wrong.items():
            for content in contents:
                with self.subTest(name=name, size=len(content)):
                    kept = (good / name).read_bytes() if (good / name).exists() else None
                    (good / name).write_bytes(content)
                    self.assertIn(name, self.iconutil("-c", "icns", good, status=1))
                    (good / name).unlink()
                    if kept:
                        (good / name).write_bytes(kept)
        shutil.rmtree(good)
        self.iconutil("-c", "icns", good, status=1)
        good.mkdir()
        self.assertIn("no bitmap", self.iconutil("-c", "icns", good, status=1))
        self.assertEqual(self.path("app.icns").read_bytes(), b"was here")
        self.assertEqual(sorted(os.listdir(self.folder)), ["app.icns", "app.iconset"])

    def test_what_is_no_icon_file_leaves_nothing(self):
        for content in (b"", b"icns", b"icns\0\0\0\x08", b"icns\0\0\0\x20ic07\0\0\0\x08",
                        b"icns\0\0\0\x10ic07\0\0\0\x00", b"icns\0\0\0\x10ic07\xff\xff\xff\xff",
                        b"icns\0\0\0\x14ic07\0\0\0\x0cjunk", b"\x89PNG\r\n\x1a\n"):
            self.path("a.icns").write_bytes(content)
            self.iconutil("-c", "iconset", self.path("a.icns"), status=1)
            self.assertEqual(os.listdir(self.folder), ["a.icns"])

    def test_wrong_words_are_refused(self):
        folder = self.make_set()
        plain = self.path("plain")
        plain.mkdir()
        for words in ([], ["-c", "icns"], ["-c"], ["-c", "png", folder], [folder],
                      ["-c", "icns", plain], ["-c", "iconset", folder],
                      ["-c", "icns", folder, plain], ["-c", "icns", folder, "-o"],
                      ["-x", "-c", "icns", folder]):
            self.iconutil(*words, status=2)
        self.assertEqual(sorted(os.listdir(self.folder)), ["app.iconset", "plain"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
