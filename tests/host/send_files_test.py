"""Copying and moving the selection into a folder, as requests ask for it."""

import os
import pwd
import shutil
import subprocess
import tempfile
from pathlib import Path

from session import (ACCESS_PANEL, APPLICATION_ID, OPEN_PANEL, HostTest, file_url, main, selection,
                     wait_until)

DONE = "Volume Mount"
FAILED = "Funk"


class SendFiles(HostTest):
    def setUp(self):
        super().setUp()
        self.host = self.session.start_waiting_host()
        self.there = self.make_folder("there")

    def grant_all(self):
        """Grants the folder of all files, by a request that fails otherwise."""
        self.session.grant(self.session.files)

    def assert_same(self, source, copy):
        """Nothing that rsync knows of differs."""
        done = subprocess.run(["rsync", "-aHAX", "--checksum", "--itemize-changes", "--dry-run",
                               "--delete", f"{source}/", f"{copy}/"], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        self.assertEqual((done.returncode, done.stdout.decode()), (0, ""))


class Killed(SendFiles):
    def test_the_next_start_clears_what_a_killed_copy_left(self):
        self.grant_all()
        source = self.make_folder("many")
        for number in range(4000):
            (source / f"{number}.txt").write_text(str(number))

        def partials():
            return [item for item in self.there.iterdir() if item.name.startswith(".tavrin-")]

        self.session.copy_files([source], self.there)
        wait_until(partials, "the copy to begin")
        self.host.kill()
        self.host.wait()
        self.session.hosts.remove(self.host)
        self.assertEqual(len(list(source.iterdir())), 4000)
        self.assertTrue(partials(), "the copy was over before the kill")
        self.assertFalse((self.there / "many").exists())

        self.session.start_waiting_host()
        wait_until(lambda: not partials(), "the leftovers to go")
        records = self.session.data / APPLICATION_ID / "partials"
        wait_until(lambda: not list(records.iterdir()), "the records to go")
        self.assertEqual(len(list(source.iterdir())), 4000)


class ConfiguredDestination(SendFiles):
    def setUp(self):
        super().setUp()
        self.grant_all()

    def test_copies_get_free_names_and_replace_nothing(self):
        (self.there / "a.txt").write_text("was here")
        (self.there / "archive.tar.gz").write_text("was here")
        sources = [self.make_file(name, f"new {name}") for name in ("a.txt", "archive.tar.gz")]
        self.session.copy_files(sources, self.there)
        self.session.wait_for_next_sound(DONE)
        self.session.copy_files(sources[:1], self.there)
        self.session.wait_for_next_sound(DONE)
        contents = {name: (self.there / name).read_text() for name in self.names_in(self.there)}
        self.assertEqual(contents, {
            "a.txt": "was here", "a 2.txt": "new a.txt", "a 3.txt": "new a.txt",
            "archive.tar.gz": "was here", "archive.tar 2.gz": "new archive.tar.gz"})
        self.assertTrue(all(source.exists() for source in sources))

    def test_a_moved_folder_gets_name_2(self):
        (self.there / "notes").mkdir()
        self.make_file("notes/inside.txt", "mine")
        self.session.move_files([self.session.files / "notes"], self.there)
        self.session.wait_for_next_sound(DONE)
        self.assertEqual(self.names_in(self.there), ["notes", "notes 2"])
        self.assertEqual(self.names_in(self.there / "notes"), [])
        self.assertEqual((self.there / "notes 2" / "inside.txt").read_text(), "mine")
        self.assertFalse((self.session.files / "notes").exists())

    def test_a_copy_into_its_own_folder_stands_beside_it(self):
        source = self.make_file("here/a.txt", "twice")
        self.session.copy_files([source], source.parent)
        self.session.wait_for_next_sound(DONE)
        self.assertEqual(self.names_in(source.parent), ["a 2.txt", "a.txt"])
        self.assertEqual((source.parent / "a 2.txt").read_text(), "twice")

    def test_a_folder_does_not_go_into_itself(self):
        folder = self.make_file("outer/inner/a.txt").parent.parent
        for send in (self.session.copy_files, self.session.move_files):
            send([folder], folder / "inner")
            self.session.wait_for_next_sound(FAILED)
            self.assertEqual(self.names_in(folder / "inner"), ["a.txt"])

    def test_a_tree_arrives_as_it_was(self):
        tree = self.make_folder("tree")
        file = self.make_file("tree/sub/data.bin", "x" * 100_000)
        os.link(file, tree / "the same")
        (tree / "link").symlink_to("sub/nothing here")
        os.mkfifo(tree / "pipe")
        with open(tree / "holes", "wb") as holes:
            holes.truncate(50_000_000)
            holes.write(b"begin")
        file.chmod(0o4710)
        os.setxattr(file, "user.comment", b"\0 any bytes")
        os.utime(file, ns=(1_000_000_000_123_456_789, 1_100_000_000_987_654_321))
        (tree / "sub").chmod(0o500)
        self.session.copy_files([tree], self.there)
        self.session.wait_for_next_sound(DONE)
        self.assert_same(tree, self.there / "tree")
        self.assertEqual((self.there / "tree" / "holes").stat().st_blocks,
                         (tree / "holes").stat().st_blocks)

    def test_hostile_names_arrive(self):
        names = [b"-rf", b"two\nlines", b"'quotes\"", b"no \xff UTF-8", b" ", b"%41", b"a" * 255,
                 "ümlaut".encode()]
        for name in names:
            (self.session.files / os.fsdecode(name)).write_bytes(name)
        sources = [self.session.files / os.fsdecode(name) for name in names]
        for request in (self.session.copy_files, self.session.move_files):
            target = self.make_folder(request.__name__)
            request(sources, target)
            self.session.wait_for_next_sound(DONE)
            self.assertEqual(sorted(os.listdir(os.fsencode(target))), sorted(names))

    def test_two_of_three_arrive_and_it_sounds_like_a_failure(self):
        for send in (self.session.copy_files, self.session.move_files):
            sources = [self.make_file("1.txt"), self.session.files / "gone.txt",
                       self.make_file("3.txt")]
            target = self.make_folder(send.__name__)
            send(sources, target)
            self.session.wait_for_next_sound(FAILED)
            self.assertEqual(self.names_in(target), ["1.txt", "3.txt"])

    def test_pieces_that_are_no_file_urls_are_passed_over(self):
        good = file_url(self.make_file("good.txt"))
        bad = ["file:///with a blank", "file:///broken%2", "file:///broken%zz", ""]
        for piece in bad:
            with self.subTest(piece):
                self.session.send("copyFilesTo", SelectedFilesUrl=f"{piece}|{good}",
                                  ToPath=str(self.there))
                self.session.wait_for_next_sound(FAILED)
        self.assertEqual(len(self.names_in(self.there)), len(bad))
        self.assertEqual(self.session.windows(ACCESS_PANEL), [])

    def test_unreadable_and_vanished_destinations_fail(self):
        source = self.make_file("a.txt")
        plain_file = self.make_file("no folder")
        for destination in (self.session.files / "missing", plain_file):
            self.session.copy_files([source], destination)
            self.session.wait_for_next_sound(FAILED)
        self.assertEqual(plain_file.read_text(), "content")
        self.assertFalse((self.session.files / "missing").exists())

    def test_no_selection_is_done_at_once(self):
        self.session.send("copyFilesTo", ToPath=str(self.there))
        self.session.wait_for_next_sound(DONE)
        self.session.send("moveFilesTo", ToPath="/nowhere")
        self.session.wait_for_next_sound(DONE)
        self.assertEqual(self.session.windows(ACCESS_PANEL), [])

    def test_no_destination_fails(self):
        self.session.send("moveFilesTo", SelectedFilesUrl=selection(self.make_file("a.txt")))
        self.session.wait_for_next_sound(FAILED)
        self.assertTrue((self.session.files / "a.txt").exists())

    def test_tilde_is_the_home_of_the_account(self):
        home = Path(pwd.getpwuid(os.getuid()).pw_dir)
        folder = Path(tempfile.mkdtemp(prefix="tavrin-test-", dir=home))
        self.addCleanup(shutil.rmtree, folder)
        self.session.copy_files([self.make_file("a.txt")], "~/" + folder.name)
        self.session.authorize()
        self.session.wait_for_next_sound(DONE)
        self.assertEqual(self.names_in(folder), ["a.txt"])
        self.assertIn(str(folder.resolve()), self.session.grants())
        self.assertEqual(os.listdir(self.session.folder / "home"), [])


class RefusedAccess(SendFiles):
    def test_cancelled_for_the_source(self):
        self.session.move_files([self.make_file("here/a.txt")], self.there)
        self.session.cancel()
        self.session.wait_for_sounds(FAILED)
        self.assert_nothing_happened()

    def test_cancelled_for_the_destination(self):
        source = self.make_file("here/a.txt")
        self.session.move_files([source], self.there)
        self.session.authorize()
        self.session.cancel()
        self.session.wait_for_sounds(FAILED)
        self.assert_nothing_happened(grants={str(source.parent)})

    def test_each_item_asks_for_its_own_folder(self):
        sources = [self.make_file(f"{name}/{name}.txt") for name in ("one", "two")]
        self.session.copy_files(sources, self.there)
        self.session.cancel()
        self.session.authorize()
        self.session.authorize()
        self.session.wait_for_sounds(FAILED)
        self.assertEqual(self.names_in(self.there), ["two.txt"])

    def assert_nothing_happened(self, grants=frozenset()):
        self.assertEqual(self.names_in(self.there), [])
        self.assertTrue((self.session.files / "here" / "a.txt").exists())
        self.assertEqual(set(self.session.grants()), set(grants))
        self.assert_alive(self.host)


class ChosenDestination(SendFiles):
    def choose(self, folder):
        self.session.wait_for_window(OPEN_PANEL)
        self.session.type_line(str(folder))
        self.session.screenshot("folder-chooser")
        self.session.key("Return")
        self.session.wait_for_no_window(OPEN_PANEL)

    def test_copies_and_moves_into_the_chosen_folder(self):
        source = self.make_file("here/a.txt", "mine")
        self.session.send("copyFilesToCustom", SelectedFilesUrl=selection(source))
        self.choose(self.there)
        self.session.authorize()
        self.session.wait_for_sounds(DONE)
        self.session.send("moveFilesToCustom", SelectedFilesUrl=selection(source))
        self.choose(self.there)
        self.session.wait_for_sounds(DONE, DONE)
        self.assertEqual(self.names_in(self.there), ["a 2.txt", "a.txt"])
        self.assertFalse(source.exists())
        # The choice grants this run alone; only the source's folder is remembered.
        self.assertEqual(set(self.session.grants()), {str(source.parent)})

    def test_cancelled_does_nothing_and_makes_no_sound(self):
        source = self.make_file("a.txt")
        for action in ("copyFilesToCustom", "moveFilesToCustom"):
            self.session.send(action, SelectedFilesUrl=selection(source))
            self.session.cancel(OPEN_PANEL)
        self.session.send("copyFilesTo", ToPath="/")
        self.session.wait_for_sounds(DONE)
        self.assertEqual(self.names_in(self.there), [])
        self.assertTrue(source.exists())
        self.assertEqual(self.session.grants(), {})

    def test_a_file_cannot_be_chosen(self):
        file = self.make_file("target.txt")
        self.session.send("copyFilesToCustom", SelectedFilesUrl=selection(file))
        self.session.wait_for_window(OPEN_PANEL)
        self.session.type_line(str(file))
        self.session.key("Return")
        self.assertNotEqual(self.session.windows(OPEN_PANEL), [])
        self.session.cancel(OPEN_PANEL)


main()
