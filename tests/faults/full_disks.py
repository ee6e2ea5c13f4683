"""The disks of the host's own files, or of the user's, are full or cannot be written."""

import contextlib
import os
import shutil
import signal
import subprocess
import time

from host_work import Copying, Hiding, Moving, build_tree
from host_world import tools
from programme import Row, SelfTest
from session_disks import PLACES, expect_full, full, mount, read_only, small_world, unmount

# What no block that is half in use has room for.
MUCH = "x" * 300_000
LAST_PUBLISHED = "enableAllOfCreateNewFiles"
# Of the two domains, by the host and by the tools that ask for its grants.
MOST_OPENINGS = 4


class Faults:
    """Each tries one disk; what was there before has to be there afterwards."""

    def __init__(self, world):
        self.world = world
        self.session = world.session
        self.config, self.data, self.runtime = (self.session.folder / name for name in PLACES)

    def expect(self, condition, message, kind="blocked"):
        if not condition:
            self.world.damage(kind, message)

    def lines_of(self, send):
        """What the host writes to its log about a request that fails; the request is a file."""
        before = len(self.session.log_lines())
        send()
        self.world.wait_for(lambda: len(self.session.log_lines()) > before, "a line in the log")
        time.sleep(0.3)
        lines = self.session.log_lines()[before:]
        self.expect(len(lines) == 1, f"a failure has {len(lines)} lines in the log: {lines[:3]}")
        return lines

    def open_request(self, action, **values):
        """Sends a request without a sender's file."""
        self.session.open_with_host(self.session.write_request({"Action": action, **values}))

    def expect_alive(self, process):
        self.expect(self.world.host() == process, "the host has ended")

    def restart(self):
        self.world.end_host(signal.SIGKILL)
        self.world.start()

    def expect_kept(self, before, after):
        """The host may have published its own values since, and changes none that is there."""
        changed = sorted(key for key in before if after.get(key) != before[key])
        self.expect(not changed, f"settings are not what they were: {changed}", "lost")

    def start_afresh(self):
        """Starts the host and waits until it has published its settings, which it does once."""
        self.world.end_host()
        if LAST_PUBLISHED in self.session.export_domain("standard"):
            self.session.defaults("delete", "standard", LAST_PUBLISHED)
        self.world.start()
        self.world.wait_for(lambda: LAST_PUBLISHED in self.session.export_domain("standard"),
                            "the host to publish its settings")

    def settings(self):
        """Neither the tool nor the host changes anything, and both keep what was there."""
        self.start_afresh()
        self.session.defaults("write", "group", "filesUrlOfCutting", "-string", "file:///before")
        before = [self.session.export_domain(name) for name in ("standard", "group")]
        process = self.world.host()
        with full(self.config):
            written = subprocess.run(
                [tools().BUILD_DIR / "bin" / "tavrin-defaults", "write", "standard", "much",
                 "-plist", "-"], env=self.session.environment, capture_output=True, check=False,
                input=tools().plistlib.dumps(MUCH))
            self.expect(written.returncode == 1 and written.stderr.count(b"\n") == 1,
                        f"the tool says {written.returncode}, {written.stderr}")
            self.lines_of(lambda: self.open_request("cutSelectedFiles",
                                                    SelectedFilesUrl="file:///" + MUCH))
            self.expect_alive(process)
            self.world.serves()
            self.restart()
            self.world.serves()
        for name, values in zip(("standard", "group"), before):
            self.expect_kept(values, self.session.export_domain(name))
        self.session.defaults("write", "standard", "written", "-bool", "true")
        self.expect(self.session.export_domain("standard").get("written"), "nothing is written")
        aside = [name for name in os.listdir(self.config / tools().APPLICATION_ID)
                 if "corrupt" in name]
        self.expect(not aside, f"a database was set aside: {aside}", "lost")

    def own_data(self):
        """No record of a copy in the making and no icon can be kept."""
        folder = self.world.files / "data"
        copying = Copying(build_tree(folder / "tree", 20, 3_000, self.world.random),
                          self.world.other / "data there")
        moving = Moving(build_tree(folder / "moved", 20, 3_000, self.world.random),
                        self.world.other / "data there")
        icons = [{"enable": True, "icon": self.picture(color)} for color in ("red", "lime")]
        self.session.import_domain("standard", {"arrOfCustomIcon": icons})
        self.set_icon(copying.source, 1)
        self.world.serves()
        icon = (copying.source / ".directory").read_text()
        copying = Copying(copying.source, copying.folder)
        process = self.world.host()
        with full(self.data):
            for work in (copying, moving):
                self.lines_of(lambda work=work: self.open_request(
                    work.action, ToPath=str(work.folder),
                    SelectedFilesUrl=tools().selection(work.source)))
                work.check(self.world.damage)
            self.lines_of(lambda: self.set_icon(moving.source, 2))
            self.expect(not (moving.source / ".directory").exists(), "an icon of no image")
            self.expect_alive(process)
            self.restart()
        self.restart()
        self.world.serves()
        self.world.expect_cleared()
        self.expect((copying.source / ".directory").read_text() == icon,
                    "an icon is not what it was", "lost")
        image = icon.partition("Icon=")[2].strip()
        self.expect(os.path.getsize(image) > 0, "the image of an icon is gone", "lost")
        shutil.rmtree(folder)

    def set_icon(self, item, tag):
        self.world.wait_for_senders([self.world.send("customIcon", item, Tag=tag)])

    def picture(self, color):
        """An image that does not become small."""
        return subprocess.run(["convert", "-size", "200x200", "-seed", "7", f"xc:{color}", "+noise",
                               "Random", "png:-"], stdout=subprocess.PIPE, check=True).stdout

    def runtime_folder(self):
        """No request can be written, and no pasteboard."""
        source = self.world.files / "runtime.png"
        source.write_bytes(self.picture("red"))
        process = self.world.host()
        with full(self.runtime):
            sender = subprocess.run(
                [tools().BUILD_DIR / "bin" / "tavrin-request", "copyFilesTo", f"ToPath={MUCH[:9]}",
                 source], env=self.session.environment, capture_output=True, check=False)
            self.expect(sender.returncode == 1 and sender.stderr.count(b"\n") == 1,
                        f"a sender says {sender.returncode}, {sender.stderr}")
            self.expect(not self.world.request_files(), "a request file stays", "half_named")
            self.lines_of(lambda: self.open_request("pinbySnapvane",
                                                    SelectedFilesUrl=tools().selection(source)))
            parts = list(self.runtime.glob("*/pasteboards/.tavrin-*"))
            self.expect(not parts, f"half a pasteboard stays: {parts}", "half_named")
            self.expect_alive(process)
        self.world.serves()

    def the_users_disk(self):
        """Where the copies, moves, hidden lists and new files of the user go."""
        place = self.world.files / "small"
        place.mkdir()
        mount(place)
        try:
            self.try_users_disk(place)
        finally:
            unmount(place)
            place.rmdir()

    def try_users_disk(self, place):
        source = build_tree(self.world.files / "users", 40, 9_000, self.world.random)
        works = [Copying(source, place / "there"), Moving(source, place / "there"),
                 Hiding(build_tree(place / "hidden", 400, 30, self.world.random), place / "unused")]
        process = self.world.host()
        with full(place):
            for work in works:
                values = ({"Path": str(work.source)} if isinstance(work, Hiding) else
                          {"ToPath": str(work.folder),
                           "SelectedFilesUrl": tools().selection(work.source)})
                self.lines_of(lambda work=work, values=values: self.open_request(work.action,
                                                                                 **values))
                for each in works:
                    each.check(self.world.damage)
            self.expect(not works[0].is_done() and not works[2].is_done(), "it was not full")
            self.expect_alive(process)
        self.world.expect_cleared()
        self.world.wait_for_senders([works[1].send(self.world), works[2].send(self.world)])
        self.world.serves()
        for work in works[1:]:
            self.expect(work.is_done(), f"{work.action} fails with room enough")
            work.check(self.world.damage)

    def all_full(self):
        """The host starts and serves, whatever of its own is full."""
        before = self.session.export_domain("standard")
        with contextlib.ExitStack() as stack:
            for place in (self.config, self.data):
                stack.enter_context(full(place))
            self.restart()
            self.expect(self.world.host() is not None, "no host starts")
        self.restart()
        self.world.serves()
        self.expect_kept(before, self.session.export_domain("standard"))

    def read_only_home(self):
        """Nothing of the host's own can be changed."""
        before = self.session.export_domain("standard")
        self.world.end_host()
        logged = len(self.session.log_lines())
        with read_only([self.config, self.data, self.runtime]):
            self.world.start()
            process = self.world.host()
            self.expect(process is not None, "no host starts")
            self.expect(self.session.grants() == before.get("cachedBookmarks", {}),
                        "grants cannot be read", "lost")
            lines = [line for line in self.session.log_lines()[logged:] if "not stored" in line]
            self.expect(len(lines) <= MOST_OPENINGS, f"{len(lines)} lines in the log: {lines}")
            self.world.end_host()
        self.world.start()
        self.world.serves()
        self.expect_kept(before, self.session.export_domain("standard"))


def full_disks(context, result):
    with small_world(context, result) as world:
        faults = Faults(world)
        parts = (faults.settings, faults.own_data, faults.runtime_folder, faults.the_users_disk,
                 faults.all_full, faults.read_only_home)
        while result.tried < context.times and result.damages < 20:
            part = parts[result.tried % len(parts)]
            before = result.damages
            part()
            result.tried += 1
            if result.damages > before:
                result.note(f"Damage by {part.__name__}.")


ROWS = [
    Row("Full and read-only disks of the host",
        "The folders of the settings, of the host's data, of the session and of the user are full "
        "to the last byte, or read-only; old settings, icons, lists and files stay as they were, "
        "nothing is half-named, a failure is one line in the log, the host lives on, starts, and "
        "works when there is room again.", 18, 0, full_disks, is_for_sanitizers=False),
]
SELF_TESTS = [SelfTest("disks: full and read-only ones are", expect_full)]
