"""How requests get to the host: the tool that sends them, and what it leaves behind."""

import os
import shutil
import stat
import subprocess
import time

from session import ACCESS_PANEL, APPLICATION_ID, BUILD_DIR, HostTest, main, wait_until

MANY = 100_000


class RequestTool(HostTest):
    def setUp(self):
        super().setUp()
        self.request_folder = self.session.runtime / APPLICATION_ID / "requests"

    def run_tool(self, *words, status=0, folder=None, names=b"", environment=None):
        """Runs the tool; returns its standard output and error as text."""
        done = subprocess.run(
            [BUILD_DIR / "bin" / "tavrin-request", *words], cwd=folder or self.session.files,
            env=environment or self.session.environment, input=names, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE, timeout=90, check=False)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout.decode(), done.stderr.decode()

    def grant_files(self):
        self.session.start_waiting_host()
        self.session.grant(self.session.files)

    def test_starts_the_host_and_leaves_no_file(self):
        self.grant_files()
        host = self.session.hosts[0]
        host.terminate()
        self.wait_for_end(host, 0)
        self.make_file("a.txt")
        there = self.make_folder("there")
        self.run_tool("copyFilesTo", f"ToPath={there}", "a.txt")
        wait_until((there / "a.txt").exists, "the copy")
        self.assertEqual(os.listdir(self.request_folder), [])
        self.assertEqual(stat.S_IMODE(self.request_folder.stat().st_mode), 0o700)

    def test_the_host_keeps_a_request_whose_file_is_gone_while_it_waits(self):
        self.session.start_waiting_host()
        there = self.make_folder("there")
        for name in ("first", "second"):
            self.make_file(name)
            start = time.monotonic()
            self.run_tool("copyFilesTo", f"ToPath={there}", name)
            self.assertLess(time.monotonic() - start, 5, "the tool waited for the panel")
            self.session.wait_for_window(ACCESS_PANEL)
        self.assertEqual(os.listdir(self.request_folder), [])
        self.session.authorize()
        wait_until((there / "second").exists, "the copy of the request that waited")
        self.assertTrue((there / "first").exists())

    def test_names_of_all_kinds_from_all_places(self):
        self.grant_files()
        there = self.make_folder("there")
        here = self.make_folder("here/below")
        names = [b" a b", b"-n", b"Tag=1", b"new\nline", b"\xff\xfe%41", b"'\"$x;#?&", b"n" * 255]
        for name in names:
            with open(os.path.join(os.fsencode(here), name), "wb"):
                pass
        self.run_tool("copyFilesTo", f"ToPath={there}", "--", *names[:4], folder=here)
        self.run_tool("copyFilesTo", f"ToPath={there}", "-", folder=here / "..",
                      names=b"\0".join(b"below/" + name for name in names[4:6]))
        list_file = self.session.folder / "names"
        list_file.write_bytes(b"./../below//" + names[6] + b"\0")
        self.run_tool("copyFilesTo", f"--files0-from={list_file}", f"ToPath={there}", folder=here)
        wait_until(lambda: len(os.listdir(there)) == len(names), "the copies")
        self.assertEqual(sorted(os.listdir(os.fsencode(there))), sorted(names))

    def test_parent_steps_follow_the_disk(self):
        self.grant_files()
        there = self.make_folder("there")
        self.make_file("real/a.txt", "right")
        self.make_file("a.txt", "wrong")
        self.make_folder("real/inner")
        (self.session.files / "link").symlink_to(self.session.files / "real" / "inner")
        self.run_tool("copyFilesTo", f"ToPath={there}", "link/../a.txt")
        wait_until((there / "a.txt").exists, "the copy")
        self.assertEqual((there / "a.txt").read_text(), "right")

    def test_a_hundred_thousand_names(self):
        self.grant_files()
        there = self.make_folder("there")
        last = self.make_file("last.txt")
        # Only the last name is an item, so that the request itself is what is large.
        missing = [f"{self.session.files}/missing-{number}" for number in range(MANY - 1)]
        self.run_tool("copyFilesTo", f"ToPath={there}", "-",
                      names=b"".join(os.fsencode(name) + b"\0" for name in (*missing, last)))
        wait_until((there / "last.txt").exists, "the copy of the last item", seconds=120)

    def test_a_host_that_cannot_be_reached(self):
        for name in os.listdir(self.session.services):
            os.remove(self.session.services / name)
        self.session.call_bus("/org/freedesktop/DBus", "org.freedesktop.DBus.ReloadConfig",
                              destination="org.freedesktop.DBus")
        _, complaint = self.run_tool("openCommonPath", "Path=/", status=1)
        self.assertEqual(complaint.count("\n"), 1, complaint)
        self.assertIn(APPLICATION_ID, complaint)
        self.assertEqual(os.listdir(self.request_folder), [])
        shutil.rmtree(self.request_folder)
        self.request_folder.symlink_to(self.session.files)
        _, complaint = self.run_tool("openCommonPath", "Path=/", status=1)
        self.assertIn("requests", complaint)
        self.assertEqual(os.listdir(self.session.files), [])

    def test_wrong_usage_sends_nothing(self):
        _, complaint = self.run_tool("unhiddenSelectedFiles", "a", status=2)
        self.assertIn("  unHiddenSelectedFiles\n", complaint)
        for words in ((), ("copyFilesTo", "a|b"), ("copyFilesTo", "--no"), ("copyFilesTo", ""),
                      ("customIcon", "a", "b"), ("customIcon", "Tag=x"), ("customIcon", "Tag="),
                      ("customIcon", "Tag=99999999999999999999"), ("copyFilesTo", "Tpath=/"),
                      ("copyFilesTo", "Action=x"), ("copyFilesTo", "ToPath=/", "ToPath=/"),
                      ("copyFilesTo", "SelectedFilesUrl=file:///a", "a"),
                      ("copyFilesTo", "-", "--files0-from=-"), ("copyFilesTo", "--files0-from="),
                      ("copyFilesTo", "--files0-from=missing")):
            with self.subTest(words):
                output, complaint = self.run_tool(*words, status=2)
                self.assertEqual((output, complaint.count("\n")), ("", 1), complaint)
        self.assertIsNone(self.session.owner_of(APPLICATION_ID))
        self.assertIn("Exit status", self.run_tool("--help")[0])
        self.assertRegex(self.run_tool("--version")[0], r"^tavrin-request \d+\.\d+\.\d+\n$")


main()
