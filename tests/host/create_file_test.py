"""Creating new files from templates, and of a format and name chosen in the save panel."""

import os
import plistlib
import pwd
import re
import signal
import subprocess
from pathlib import Path

from session import BUILD_DIR, GROUP, HostTest, file_url, main, wait_until

DONE = "Volume Mount"
FAILED = "Funk"
SAVE_PANEL = "^Create New File$"
QUESTION = "^Tavrin$"
FILE_MANAGER = "org.freedesktop.FileManager1"
RESOURCES = BUILD_DIR / "share" / "tavrin"
RULES = plistlib.loads((RESOURCES / "DefaultPreferences.plist").read_bytes())["arrOfCreateNewFile"]
# Notes the parent, the session and whether it leads it, and the arguments, each ended by a NUL.
RECORDER = """#!/bin/sh
notes=$1; shift
{ printf '%s\\0' "$PPID" "$$" "$(cut -d' ' -f6 /proc/$$/stat)" "$@"; } > "$notes.part"
mv "$notes.part" "$notes.$$"
"""


def tag_of(extension, rules=None):
    """The position of a rule among the enabled ones."""
    enabled = [rule["extension"] for rule in rules or RULES if rule["enable"]]
    return enabled.index(extension)


class CreateFile(HostTest):
    def setUp(self):
        super().setUp()
        self.session.start_program(
            ["/usr/bin/python3", "-m", "dbusmock", "--session", FILE_MANAGER,
             "/" + FILE_MANAGER.replace(".", "/"), FILE_MANAGER], log_name="file-manager.log")
        wait_until(lambda: self.session.owner_of(FILE_MANAGER), "the file manager")
        for method in ("ShowItems", "ShowFolders"):
            self.session.call_bus("/" + FILE_MANAGER.replace(".", "/"),
                                  "org.freedesktop.DBus.Mock.AddMethod", FILE_MANAGER, method,
                                  "ass", "", "", destination=FILE_MANAGER)
        self.host = self.session.start_waiting_host()
        self.templates = self.session.data / GROUP / "Templates" / "CreateNewFile"
        wait_until((self.templates / "Comma Separated Values.csv").exists, "the templates")
        self.folder = self.make_folder("here")

    def create(self, tag, folder=None):
        self.session.send("createNewFile", Path=os.fspath(folder or self.folder), Tag=tag)

    def create_and_wait(self, tag, folder=None):
        self.create(tag, folder)
        self.session.wait_for_next_sound(DONE)

    def shown(self):
        """The URLs that the file manager was to show, in order, each with the method."""
        calls = []
        for line in self.session.log_of("file-manager.log").splitlines():
            words = line.split(maxsplit=2)
            if len(words) == 3 and words[1] in ("ShowItems", "ShowFolders"):
                calls.append((words[1], words[2].split('"')[1::2][:-1]))
        return calls

    def wait_for_shown(self, *files):
        wanted = [("ShowItems", [file_url(file)]) for file in files]
        wait_until(lambda: len(self.shown()) >= len(wanted), f"{wanted} to be shown")
        self.assertEqual(self.shown(), wanted)

    def assert_files(self, **templates):
        """The folder holds these files, each equal to its template."""
        contents = {name: (self.folder / name).read_bytes() for name in self.names_in(self.folder)}
        self.assertEqual(contents, {name: (RESOURCES / template).read_bytes()
                                    for name, template in templates.items()})


class FromATemplate(CreateFile):
    def test_gets_free_names_and_is_revealed_each_time(self):
        self.session.grant(self.folder)
        self.create_and_wait(tag_of("md"))
        self.create_and_wait(str(tag_of("md")))
        self.create_and_wait(tag_of("docx"))
        self.assert_files(**{"untitled.md": "Markdown.md", "untitled 2.md": "Markdown.md",
                             "untitled.docx": "Word Document.docx"})
        self.wait_for_shown(*[self.folder / name for name in
                              ("untitled.md", "untitled 2.md", "untitled.docx")])

    def test_every_default_rule_makes_its_template_byte_for_byte(self):
        self.session.grant(self.folder)
        rules = [rule | {"enable": 1} for rule in RULES if rule["extension"]]
        self.session.import_domain("standard", {"arrOfCreateNewFile": rules})
        for tag, _ in enumerate(rules):
            self.create_and_wait(tag)
        self.assertGreaterEqual(len(rules), 16)
        self.assert_files(**{f"untitled.{rule['extension']}":
                             f"{rule['displayName']}.{rule['extension']}" for rule in rules})
        for rule in rules:
            self.assertTrue((self.templates / f"{rule['extension']}.png").exists(), rule)

    def test_a_tag_without_a_rule_makes_an_empty_file(self):
        self.session.grant(self.folder)
        for tag in (-1, 2**62, "999999999999999999999"):
            self.create_and_wait(tag)
        self.assertEqual(self.names_in(self.folder),
                         ["untitled 2.(null)", "untitled 3.(null)", "untitled.(null)"])
        self.assertEqual((self.folder / "untitled.(null)").stat().st_size, 0)

    def test_the_desktop_is_not_revealed(self):
        desktop = Path(pwd.getpwuid(os.getuid()).pw_dir) / "Desktop"
        if not desktop.exists():
            desktop.mkdir()
            self.addCleanup(desktop.rmdir)
        before = set(desktop.iterdir())
        self.addCleanup(lambda: [file.unlink() for file in set(desktop.iterdir()) - before])
        self.session.grant(desktop)
        self.session.grant(self.folder)
        self.create_and_wait(tag_of("csv"), desktop)
        self.create_and_wait(tag_of("csv"))
        created = set(desktop.iterdir()) - before
        self.assertEqual([file.read_bytes() for file in created],
                         [(RESOURCES / "Comma Separated Values.csv").read_bytes()])
        # Requests are served in order: what is not shown by now never is.
        self.wait_for_shown(self.folder / "untitled.csv")

    def test_is_opened_by_the_default_application(self):
        recorder = self.session.folder / "recorder"
        recorder.write_text(RECORDER)
        recorder.chmod(0o755)
        notes = self.session.folder / "notes"
        notes.mkdir()
        applications = self.session.data / "applications"
        applications.mkdir()
        (applications / "recorder.desktop").write_text(
            "[Desktop Entry]\nType=Application\nName=Recorder\n"
            f"Exec={recorder} {notes}/start %U\nMimeType=text/markdown;\n")
        # What is installed here must not open the other file.
        document = "application/vnd.oasis.opendocument.text"
        installed = set(re.findall(r"\S+\.desktop", self.session.run("gio", "mime", document)))
        (self.session.config / "mimeapps.list").write_text(
            "[Default Applications]\ntext/markdown=recorder.desktop\n"
            f"[Removed Associations]\n{document}={';'.join(installed)};\n")
        folder = self.make_folder("with blank & 'quote'")
        self.session.grant(folder)
        self.create_and_wait(tag_of("md"), folder)
        self.switch("enableAutoOpenAfterCreateNewFile", True)
        self.create_and_wait(tag_of("md"), folder)
        start = wait_until(lambda: list(notes.glob("start.[0-9]*")), "the application")[0]
        parent, process, session, *arguments = start.read_bytes().split(b"\0")[:-1]
        self.assertNotEqual(int(parent), self.host.pid)
        self.assertEqual(process, session)
        self.assertEqual(arguments, [os.fsencode(folder / "untitled 2.md")])
        self.assertEqual(len(list(notes.iterdir())), 1)

        self.create_and_wait(tag_of("odt"), folder)
        wait_until(lambda: any("find an application" in line and "untitled.odt" in line
                               for line in self.session.log_lines()), "a line about the file")

    def test_without_sound_and_without_its_template(self):
        self.session.grant(self.folder)
        (self.templates / "Markdown.md").unlink()
        self.create_and_wait(tag_of("md"))
        self.assertEqual((self.folder / "untitled.md").read_bytes(), b"")
        (self.templates / "Markdown.md").mkdir()
        self.create_and_wait(tag_of("md"))
        wait_until(lambda: any("Markdown.md: Is a directory" in line
                               for line in self.session.log_lines()), "a line about the template")
        self.switch("soundTipsOfNewFile", False)
        self.create(tag_of("html"))
        wait_until((self.folder / "untitled.html").exists, "the file")
        self.session.expect_no_other_sound()

    def test_asks_for_access_and_does_nothing_without_it(self):
        self.create(tag_of("md"))
        self.session.cancel()
        self.create(tag_of("html"))
        self.session.authorize()
        self.session.wait_for_next_sound(DONE)
        self.assert_files(**{"untitled.html": "Web Page.html"})
        self.assertEqual(set(self.session.grants()), {str(self.folder)})

    def test_what_cannot_be_created_sounds_and_is_logged(self):
        self.session.grant(self.session.files)
        file = self.make_file("a file")
        readonly = self.make_folder("readonly")
        for command in (["mount", "-t", "tmpfs", "tavrin-test", readonly],
                        ["mount", "-o", "remount,ro", readonly]):
            if subprocess.run(command, stderr=subprocess.PIPE, check=False).returncode != 0:
                self.skipTest("no file system can be mounted here")
            if "remount,ro" not in command:
                self.addCleanup(subprocess.run, ["umount", readonly], check=True)
        for folder, cause in ((file, "Not a directory"), (readonly, "Read-only file system"),
                              (self.session.files / "gone", "No such file")):
            self.create(tag_of("txt"), folder)
            self.session.wait_for_next_sound(FAILED)
            wait_until(lambda: any("createNewFile:" in line and cause in line
                                   for line in self.session.log_lines()), cause)
        self.session.send("createNewFile", Tag=0)
        self.session.wait_for_next_sound(FAILED)
        self.create_and_wait(tag_of("md"))
        self.assertEqual(file.read_text(), "content")


class OfAChosenFormat(CreateFile):
    def ask(self, folder=None):
        """Brings the save panel up; returns its window."""
        self.create(tag_of(""), folder)
        return self.session.wait_for_window(SAVE_PANEL)

    def choose_format(self, window, downs):
        """Opens the pop-up with the mouse and goes down in it."""
        width, height = self.session.geometry(window)
        self.session.click(window, width // 2, height - 58)
        self.session.key(*["Down"] * downs, "Return")
        wait_until(lambda: self.session.run("xdotool", "getactivewindow").strip() == window,
                   "the pop-up to close")

    def save(self):
        self.session.key("Return")
        self.session.wait_for_no_window(SAVE_PANEL)

    def test_the_name_and_the_format_are_the_users(self):
        self.session.grant(self.folder)
        window = self.ask()
        self.session.screenshot("save-panel")
        self.choose_format(window, 1)
        self.session.click(window, 300, 26)
        self.session.key("ctrl+a")
        self.session.type_text("notes")
        self.session.screenshot("save-panel-format")
        self.save()
        self.session.wait_for_next_sound(DONE)
        self.assert_files(**{"notes.md": "Markdown.md"})
        self.wait_for_shown(self.folder / "notes.md")

    def test_the_selected_name_is_typed_over_and_the_mouse_saves(self):
        self.session.grant(self.folder)
        window = self.ask()
        self.session.type_text("notes")
        width, height = self.session.geometry(window)
        self.session.click(window, width - 140, height - 26)
        self.session.wait_for_next_sound(DONE)
        self.session.wait_for_no_window(SAVE_PANEL)
        self.assert_files(**{"notes.txt": "Plain Text.txt"})

    def test_offers_the_formats_of_disabled_rules(self):
        self.session.grant(self.folder)
        extensions = [rule["extension"] for rule in RULES]
        self.assertFalse(RULES[extensions.index("rtf")]["enable"])
        self.choose_format(self.ask(), extensions.index("rtf"))
        self.save()
        self.session.wait_for_next_sound(DONE)
        self.assert_files(**{"untitled.rtf": "Rich Text.rtf"})

    def test_replaces_only_when_told(self):
        self.session.grant(self.folder)
        mine = self.make_file("here/untitled.txt", "mine")
        before = mine.stat().st_ino
        self.ask()
        self.session.key("Return")
        self.session.wait_for_window(QUESTION)
        self.session.screenshot("save-panel-replace")
        self.session.key("Return")
        self.session.wait_for_no_window(QUESTION)
        self.assertEqual(mine.read_text(), "mine")
        self.session.wait_for_window(SAVE_PANEL)
        self.session.key("Return")
        self.session.wait_for_window(QUESTION)
        self.session.key("shift+Tab", "space")
        self.session.wait_for_next_sound(DONE)
        self.assert_files(**{"untitled.txt": "Plain Text.txt"})
        self.assertNotEqual(mine.stat().st_ino, before)

    def test_cancelled_makes_no_file_and_no_sound(self):
        self.session.grant(self.folder)
        self.ask()
        self.session.type_text("notes")
        self.session.cancel(SAVE_PANEL)
        self.create_and_wait(tag_of("csv"))
        self.assert_files(**{"untitled.csv": "Comma Separated Values.csv"})
        self.wait_for_shown(self.folder / "untitled.csv")

    def test_another_folder_is_granted_for_the_one_file(self):
        inner = self.make_folder("here/inner")
        self.session.grant(inner)
        self.ask(inner)
        self.session.key("alt+Up")
        self.session.type_text("beside")
        self.save()
        self.session.wait_for_next_sound(DONE)
        self.assertEqual(self.names_in(self.folder), ["beside.txt", "inner"])
        self.assertEqual(self.names_in(inner), [])
        self.wait_for_shown(self.folder / "beside.txt")
        self.assertEqual(set(self.session.grants()), {str(inner)})
        self.create(tag_of("md"))
        self.session.cancel()
        self.assertEqual(self.names_in(self.folder), ["beside.txt", "inner"])

    def test_refused_access_to_the_requests_folder_makes_nothing(self):
        self.ask()
        self.save()
        self.session.cancel()
        self.ask()
        self.save()
        self.session.authorize()
        self.session.wait_for_next_sound(DONE)
        self.assert_files(**{"untitled.txt": "Plain Text.txt"})

    def test_bad_names_stay_in_the_panel(self):
        self.session.grant(self.folder)
        window = self.ask()
        for name in ("../up", "/", "x" * 252):
            self.session.key("ctrl+a")
            self.session.type_text(name)
            self.session.key("Return")
            self.assertEqual(self.session.windows(SAVE_PANEL), [window])
        self.session.key("ctrl+a", "BackSpace", "Return")
        self.assertEqual(self.session.windows(SAVE_PANEL), [window])
        self.session.type_text("good")
        self.save()
        self.session.wait_for_next_sound(DONE)
        self.assertEqual(self.names_in(self.folder), ["good.txt"])

    def test_the_panel_ends_with_the_host(self):
        self.session.grant(self.folder)
        self.make_file("here/untitled.txt", "mine")
        self.ask()
        self.session.key("Return")
        self.session.wait_for_window(QUESTION)
        self.host.send_signal(signal.SIGTERM)
        self.wait_for_end(self.host, 0)
        self.assertEqual((self.folder / "untitled.txt").read_text(), "mine")


if __name__ == "__main__":
    main()
