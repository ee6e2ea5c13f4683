"""Cutting and pasting, hiding and showing, and deleting the selection, as requests ask for it."""

import os
import subprocess
from urllib.parse import unquote_to_bytes

from session import ACCESS_PANEL, HostTest, main, wait_until

DONE = "Volume Mount"
FAILED = "Funk"
EMPTIED = "empty trash"
ALERT = "^Tavrin$"


class Items(HostTest):
    def setUp(self):
        super().setUp()
        self.host = self.session.start_waiting_host()
        self.folder = self.make_folder("folder")
        self.other = self.make_folder("other")
        self.session.wait_for_settings()

    def make_files(self, *names):
        for name in names:
            with open(os.path.join(os.fsencode(self.folder), os.fsencode(name)), "wb") as file:
                file.write(os.fsencode(name))
        return [os.path.join(os.fsencode(self.folder), os.fsencode(name)) for name in names]

    def mount(self):
        """A folder on a file system of its own."""
        self.there = self.make_folder("there")
        done = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1m", "tavrin-test", self.there],
                              stderr=subprocess.PIPE, check=False)
        if done.returncode != 0:
            self.skipTest("no file system can be mounted here: " + done.stderr.decode())
        # The grant of the whole disk holds no handle below it once its requests are over.
        self.addCleanup(subprocess.run, ["umount", self.there], check=True)
        return self.there

    def is_hidden(self, path):
        """What GIO says in a process of its own, which has read no list before."""
        answer = subprocess.run(["gio", "info", "-a", "standard::is-hidden", path],
                                env=self.session.environment, stdout=subprocess.PIPE,
                                check=True).stdout
        return b"standard::is-hidden: TRUE" in answer

    def cut_paths(self):
        """The paths of the items that are stored as cut."""
        urls = self.session.export_domain("group")["filesUrlOfCutting"].split("|")
        return [unquote_to_bytes(url.removeprefix("file://")) for url in urls]

    def finish(self):
        """Waits until the requests so far are done: a later one is served after them."""
        self.session.copy_files([self.folder / "no such item"], self.folder)
        self.session.wait_for_next_sound(FAILED)


class CutAndPaste(Items):
    def test_a_cut_is_pasted_under_free_names_and_can_be_seen_there(self):
        self.session.grant("/")
        self.switch("enableHideWhenCutting", True)
        odd = b"-n \xff (1) %20 \xe2\x82\xac.txt"
        report, strange = self.make_files("report.txt", odd)
        (self.other / "report.txt").write_text("older")
        self.session.send("cutSelectedFiles", report, strange)
        wait_until(lambda: self.is_hidden(strange), "the cut items to be hidden")
        self.assertTrue(self.is_hidden(report))
        self.assertEqual(self.cut_paths(), [report, strange])

        self.session.send("pasteSelectedFiles", report, strange, PasteInPath=str(self.other))
        self.session.wait_for_next_sound(DONE)
        self.assertEqual((self.other / "report.txt").read_text(), "older")
        self.assertEqual((self.other / "report 2.txt").read_text(), "report.txt")
        moved = os.path.join(os.fsencode(self.other), odd)
        with open(moved, "rb") as file:
            self.assertEqual(file.read(), odd)
        self.assertFalse(self.is_hidden(moved))
        self.assertEqual(list(self.folder.iterdir()), [])
        self.assertEqual(sorted(os.listdir(self.other)),
                         sorted([os.fsdecode(odd), "report.txt", "report 2.txt"]))

        self.session.send("pasteSelectedFiles", report, strange, PasteInPath=str(self.other))
        self.session.wait_for_next_sound(FAILED)
        self.assertEqual(self.cut_paths(), [report, strange])

    def test_the_next_cut_shows_the_items_of_the_one_before(self):
        self.session.grant("/")
        self.switch("enableHideWhenCutting", True)
        first, second = self.make_files("first", "second")
        self.session.send("cutSelectedFiles", first)
        self.session.send("cutSelectedFiles", second)
        self.finish()
        self.assertFalse(self.is_hidden(first))
        self.assertTrue(self.is_hidden(second))
        self.switch("enableHideWhenCutting", False)
        self.session.send("cutSelectedFiles", first)
        self.finish()
        self.assertTrue(self.is_hidden(second))
        self.assertEqual(self.cut_paths(), [first])

    def test_a_paste_into_another_file_system_moves_whole_trees(self):
        self.session.grant("/")
        tree = self.make_folder("folder/tree")
        (tree / "deep").mkdir()
        (tree / "deep" / "file").write_text("text")
        (good,) = self.make_files("good")
        elsewhere = self.mount()
        self.session.send("pasteSelectedFiles", tree, self.folder / "gone", good,
                          PasteInPath=str(elsewhere))
        self.session.wait_for_next_sound(FAILED)
        self.assertEqual((elsewhere / "tree" / "deep" / "file").read_text(), "text")
        self.assertTrue((elsewhere / "good").exists())
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_only_the_whole_disk_covers_the_text_of_a_url(self):
        (item,) = self.make_files("item")
        self.session.send("hiddenSelectedFiles", item)
        self.session.cancel(ACCESS_PANEL)
        self.session.send("hiddenSelectedFiles", item)
        self.session.authorize(ACCESS_PANEL)
        wait_until(lambda: self.is_hidden(item), "the item to be hidden")
        self.assertEqual(list(self.session.grants()), ["/"])


class Hide(Items):
    def test_hiding_a_selection_keeps_the_other_lines_of_the_list(self):
        self.session.grant("/")
        first, second = self.make_files("first", "second")
        (self.folder / ".hidden").write_text("backup\n")
        self.session.send("hiddenSelectedFiles", first, second)
        wait_until(lambda: self.is_hidden(second), "the items to be hidden")
        self.session.send("unHiddenSelectedFiles", first)
        wait_until(lambda: not self.is_hidden(first), "the item to be shown")
        self.assertEqual((self.folder / ".hidden").read_text(), "backup\nsecond\n")

    def test_a_folder_is_hidden_and_shown_without_its_dot_names(self):
        self.session.grant("/")
        items = self.make_files("a", "b", ".git")
        inner = self.make_folder("folder/inner") / "file"
        inner.write_text("")
        self.session.send("hiddenAllFilesInPath", Path=str(self.folder))
        wait_until(lambda: self.is_hidden(items[0]), "the items to be hidden")
        self.assertEqual(sorted((self.folder / ".hidden").read_text().split()), ["a", "b", "inner"])
        self.assertFalse(self.is_hidden(inner))
        self.session.send("unhiddenAllFilesInPath", Path=str(self.folder))
        wait_until(lambda: not (self.folder / ".hidden").exists(), "the list to go")
        self.assertFalse(self.is_hidden(items[1]))

    def test_a_hidden_item_that_is_moved_or_deleted_leaves_no_line_behind(self):
        self.session.grant("/")
        self.switch("enableDirectDeleteFiles", True)
        moved, deleted = self.make_files("moved", "deleted")
        self.session.send("hiddenSelectedFiles", moved, deleted)
        self.session.move_files([self.folder / "moved"], self.other)
        self.session.wait_for_next_sound(DONE)
        self.assertTrue(self.is_hidden(self.other / "moved"))
        self.assertEqual((self.folder / ".hidden").read_text(), "deleted\n")
        self.session.send("deleteDirectlySelectedFiles", deleted)
        self.session.wait_for_next_sound(EMPTIED)
        self.assertFalse((self.folder / ".hidden").exists())

    def test_a_folder_that_cannot_be_written_is_left_and_the_log_says_why(self):
        self.session.grant("/")
        self.switch("enableDirectDeleteFiles", True)
        (self.mount() / "item").write_text("")
        subprocess.run(["mount", "-o", "remount,ro", self.there], check=True)
        self.session.send("hiddenAllFilesInPath", Path=str(self.there))
        self.session.send("deleteDirectlySelectedFiles", self.there / "item")
        self.session.wait_for_next_sound(FAILED)
        self.assertEqual(os.listdir(self.there), ["item"])
        causes = [line for line in self.session.log_lines() if "Read-only file system" in line]
        self.assertEqual(len(causes), 2, self.session.log_lines())


class Delete(Items):
    def test_asks_and_deletes_only_after_ok(self):
        self.session.grant("/")
        tree = self.make_folder("folder/tree")
        (tree / "file").write_text("")
        (item,) = self.make_files("item")
        self.session.send("deleteDirectlySelectedFiles", item, tree)
        self.session.wait_for_window(ALERT)
        self.session.screenshot("delete-alert")
        self.session.cancel(ALERT)
        self.session.send("deleteDirectlySelectedFiles", item, tree)
        self.assertTrue(os.path.exists(item))
        self.session.authorize(ALERT)
        self.session.wait_for_next_sound(EMPTIED)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_the_rest_is_deleted_when_an_item_has_gone(self):
        self.session.grant("/")
        self.switch("enableDirectDeleteFiles", True)
        kept = self.other / "kept"
        kept.write_text("text")
        first, last = self.make_files("first", "last")
        link = self.folder / "link"
        link.symlink_to(self.other)
        self.session.send("deleteDirectlySelectedFiles", first, self.folder / "gone", link, last)
        self.session.wait_for_next_sound(FAILED)
        self.assertEqual(list(self.folder.iterdir()), [])
        self.assertEqual(kept.read_text(), "text")


main()
