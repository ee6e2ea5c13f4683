"""Access to folders: what the panel lets the user pick, and what stored grants are worth."""

import os
import subprocess

from session import ACCESS_PANEL, HostTest, main, wait_until

DONE = "Volume Mount"
FAILED = "Funk"


class Access(HostTest):
    def setUp(self):
        super().setUp()
        self.host = self.session.start_waiting_host()
        self.there = self.make_folder("there")
        self.source = self.make_file("here/a.txt", "mine")

    def copy(self):
        self.session.copy_files([self.source], self.there)

    def restart(self, change=lambda: None):
        """A new host, which knows the stored grants only."""
        self.host.terminate()
        self.wait_for_end(self.host, 0)
        change()
        self.host = self.session.start_waiting_host()

    def change_grants(self, change):
        values = self.session.export_domain("standard")
        change(values["cachedBookmarks"])
        self.session.import_domain("standard", values)


class Grants(Access):
    def test_the_panel_is_asked_once_for_each_folder(self):
        self.copy()
        self.session.wait_for_window(ACCESS_PANEL)
        self.session.screenshot("access-panel")
        self.session.authorize()
        self.session.authorize()
        self.session.wait_for_sounds(DONE)
        self.assertEqual(set(self.session.grants()), {str(self.source.parent), str(self.there)})
        self.copy()
        self.session.wait_for_sounds(DONE, DONE)
        self.restart()
        self.copy()
        self.session.wait_for_sounds(DONE, DONE, DONE)
        self.assertEqual(self.names_in(self.there), ["a 2.txt", "a 3.txt", "a.txt"])

    def test_an_ancestors_grant_is_enough(self):
        self.session.grant(self.session.files)
        self.restart()
        self.copy()
        self.session.wait_for_sounds(FAILED, DONE)
        self.assertEqual(self.names_in(self.there), ["a.txt"])
        self.assertEqual(set(self.session.grants()), {str(self.session.files)})

    def test_the_roots_grant_is_enough_for_all(self):
        self.copy()
        self.session.wait_for_window(ACCESS_PANEL)
        self.session.type_line("/")
        self.session.authorize()
        self.session.wait_for_sounds(DONE)
        self.assertEqual(set(self.session.grants()), {"/"})
        self.restart()
        self.copy()
        self.session.wait_for_sounds(DONE, DONE)
        self.assertEqual(self.names_in(self.there), ["a 2.txt", "a.txt"])

    def test_storing_an_ancestor_drops_the_grants_below_it(self):
        self.copy()
        self.session.authorize()
        self.session.wait_for_window(ACCESS_PANEL)
        self.session.key("alt+Up")
        self.session.authorize()
        self.session.wait_for_sounds(DONE)
        self.assertEqual(set(self.session.grants()), {str(self.session.files)})

    def test_a_link_leads_to_its_real_folder(self):
        (self.session.files / "link").symlink_to(self.there)
        self.session.copy_files([self.source], self.session.files / "link")
        self.session.authorize()
        self.session.authorize()
        self.session.wait_for_sounds(DONE)
        self.assertEqual(self.names_in(self.there), ["a.txt"])
        self.assertEqual(set(self.session.grants()), {str(self.source.parent), str(self.there)})

    def test_a_replaced_folder_is_granted_anew_without_asking(self):
        self.session.grant(self.session.files)
        old = self.session.grants()[str(self.session.files)]

        def replace():
            moved = self.session.files.rename(self.session.folder / "moved away")
            self.session.files.mkdir()
            for folder in moved.iterdir():
                folder.rename(self.session.files / folder.name)

        self.restart(replace)
        self.copy()
        self.session.wait_for_sounds(FAILED, DONE)
        fresh = self.session.grants()[str(self.session.files)]
        self.assertNotEqual(fresh, old)

    def test_forged_grants_are_asked_for_again(self):
        """Each forgery must lead to a panel; refused, nothing happens."""
        self.session.grant(self.session.files)
        granted = str(self.session.files)
        genuine = self.session.grants()[granted]
        forgeries = {
            "the first byte": bytes([genuine[0] ^ 1]) + genuine[1:],
            "a byte in the middle": genuine[:len(genuine) // 2]
                                    + bytes([genuine[len(genuine) // 2] ^ 1])
                                    + genuine[len(genuine) // 2 + 1:],
            "the last byte": genuine[:-1] + bytes([genuine[-1] ^ 1]),
            "cut short": genuine[:-1],
            "longer": genuine + b"\0",
            "empty": b"",
            "another path": genuine.replace(os.fsencode(granted), os.fsencode(granted)[:-1] + b"x"),
        }
        heard = [FAILED]
        for name, forged in forgeries.items():
            with self.subTest(name):
                self.restart(lambda data=forged: self.change_grants(
                    lambda grants: grants.update({granted: data})))
                self.copy()
                self.session.cancel()
                heard.append(FAILED)
                self.session.wait_for_sounds(*heard)
                self.assertEqual(self.names_in(self.there), [])
        self.restart(lambda: self.change_grants(lambda grants: grants.update({granted: genuine})))
        self.copy()
        self.session.wait_for_sounds(*heard, DONE)

    def test_the_grant_of_one_folder_opens_no_other(self):
        self.session.grant(self.there)

        def relabel(grants):
            grants[str(self.session.files)] = grants.pop(str(self.there))

        self.restart(lambda: self.change_grants(relabel))
        self.copy()
        self.session.wait_for_sounds(FAILED, FAILED)
        self.assertEqual(self.names_in(self.there), [])


class ReplacedWhileShown(Access):
    """A link takes the place of the folder while its panel is up."""

    def test_the_link_is_not_followed(self):
        here = self.source.parent
        outside = self.make_file("outside/a.txt", "not mine").parent
        self.copy()
        window = self.session.wait_for_window(ACCESS_PANEL)
        moved = here.rename(self.session.files / "moved")
        here.symlink_to(outside.name)
        self.session.key("Return", "Return")
        self.session.screenshot("replaced-folder")
        self.assertEqual(self.session.windows(ACCESS_PANEL), [window])
        self.session.cancel()
        self.session.wait_for_sounds(FAILED)
        self.assertEqual(self.session.grants(), {})
        self.assertEqual(self.names_in(self.there), [])

        here.unlink()
        moved.rename(here)
        self.copy()
        self.session.authorize()
        self.session.authorize()
        self.session.wait_for_sounds(FAILED, DONE)
        self.assertEqual((self.there / "a.txt").read_text(), "mine")
        self.assertEqual(set(self.session.grants()), {str(here), str(self.there)})
        self.restart()
        self.copy()
        self.session.wait_for_sounds(FAILED, DONE, DONE)


class Panel(Access):
    """Children of the folder asked for, and its siblings, cannot be picked by any way."""

    def setUp(self):
        super().setUp()
        for name in ("a sibling", "here/child 1", "here/child 2", "zz sibling"):
            self.make_folder(name)
        self.copy()
        self.window = self.session.wait_for_window(ACCESS_PANEL)

    def double_click_rows(self):
        """Double-clicks all over the list of files."""
        width, height = self.session.geometry(self.window)
        for y in range(int(height * 0.25), int(height * 0.7), 12):
            self.session.click(self.window, int(width * 0.4), y, count=2)

    def assert_first_grant(self, folder):
        """What confirming picks, and with it what the panel shows or has selected."""
        self.session.authorize()
        wait_until(lambda: self.session.grants(), "a grant")
        self.assertEqual(set(self.session.grants()), {str(folder)})

    def test_mouse(self):
        self.double_click_rows()
        self.assertEqual(self.session.windows(ACCESS_PANEL), [self.window])
        self.assert_first_grant(self.source.parent)

    def test_mouse_reaches_what_is_allowed(self):
        """The clicks do find rows: from the parent they lead back to the folder asked for."""
        self.session.key("alt+Up")
        self.double_click_rows()
        self.session.screenshot("greyed-rows")
        self.assertEqual(self.session.windows(ACCESS_PANEL), [self.window])
        self.assert_first_grant(self.source.parent)

    def test_keyboard_cannot_select_a_child(self):
        self.session.key("Home", "Down", "space", "End", "space", "Up", "space", "ctrl+a")
        self.assert_first_grant(self.source.parent)

    def test_keyboard_cannot_select_a_sibling(self):
        """The one row that the keyboard reaches is the folder asked for, which Return enters."""
        self.session.key("alt+Up", "Home", "End", "z", "z", "space", "Return")
        self.assert_first_grant(self.source.parent)

    def test_keyboard_selects_the_folder_asked_for(self):
        self.session.key("alt+Up", "alt+Up", "space", "Return", "Home", "Return")
        self.assert_first_grant(self.source.parent)

    def test_typed_paths(self):
        files = self.session.files
        for path in (files / "a sibling", files / "here" / "child 1", self.source, "/etc",
                     files / "here" / "child 1" / ".." / ".." / "zz sibling", files / "missing"):
            with self.subTest(path):
                self.session.type_line(str(path))
                self.session.key("Return", "Return")
                self.assertEqual(self.session.windows(ACCESS_PANEL), [self.window])
                self.assertEqual(self.session.grants(), {})
                self.session.key("ctrl+a", "BackSpace")
        self.session.screenshot("typed-path")
        self.session.cancel()
        self.session.wait_for_sounds(FAILED)
        self.assertEqual(self.session.grants(), {})


class UnusualPaths(Access):
    def test_a_missing_folder_is_asked_for_at_its_nearest_folder(self):
        self.session.grant(self.source.parent)
        self.session.copy_files([self.source], self.there / "not yet" / "there")
        self.session.authorize()
        self.session.wait_for_sounds(FAILED, FAILED)
        self.assertEqual(set(self.session.grants()), {str(self.source.parent), str(self.there)})
        self.assertEqual(self.names_in(self.there), [])

    def test_a_url_as_destination_is_a_path_below_the_root(self):
        self.session.grant(self.session.files)
        self.session.copy_files([self.source], "file://" + str(self.there))
        window = self.session.wait_for_window(ACCESS_PANEL)
        self.session.type_line(str(self.there))
        self.session.key("Return")
        self.assertEqual(self.session.windows(ACCESS_PANEL), [window])
        self.assertEqual(set(self.session.grants()), {str(self.session.files)})
        self.session.key("ctrl+a")
        self.session.type_line("/")
        self.session.wait_for_no_window(ACCESS_PANEL)
        self.session.wait_for_sounds(FAILED, FAILED)
        self.assertEqual(set(self.session.grants()), {"/"})
        self.assertEqual(self.names_in(self.there), [])


class FullDisk(Access):
    def test_a_copy_to_a_full_disk_leaves_nothing(self):
        done = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1m", "tavrin-test", self.there],
                              stderr=subprocess.PIPE, check=False)
        if done.returncode != 0:
            self.skipTest("only root can make a small disk: " + done.stderr.decode().strip())
        self.addCleanup(subprocess.run, ["umount", self.there], check=True)
        large = self.make_file("here/large.bin", "x" * 3_000_000)
        self.make_file("here/tree/small.txt")
        self.make_file("here/tree/large.bin", "x" * 3_000_000)
        self.session.grant(self.session.files)
        for send in (self.session.copy_files, self.session.move_files):
            send([large, large.parent / "tree", self.source], self.there)
        self.session.wait_for_sounds(FAILED, FAILED, FAILED)
        self.assertEqual(self.names_in(self.there), ["a 2.txt", "a.txt"])
        self.assertEqual(self.names_in(large.parent), ["large.bin", "tree"])
        self.assertEqual(self.names_in(large.parent / "tree"), ["large.bin", "small.txt"])
        self.session.copy_files([large.parent / "tree" / "small.txt"], self.there)
        self.session.wait_for_sounds(FAILED, FAILED, FAILED, DONE)


main()
