"""The host is killed while it fills its settings at first, and while its window writes."""

import os
import shutil
import signal
import time

from host_world import World, tools
from programme import Row, SelfTest
from settings_steps import complaints_about

LONGEST_START = 1.2
KILLS = 4
LIST = "arrOfCreateNewFile"
LIST_TITLE = "^Tavrin$"


class Settings:
    """Both domains of a session, and the templates that belong to them."""

    def __init__(self, world):
        self.world = world
        self.session = world.session
        self.domains = {"standard": self.session.config / tools().APPLICATION_ID,
                        "group": self.session.config / tools().GROUP}
        share = tools().BUILD_DIR / "share" / "tavrin"
        self.defaults = tools().plistlib.loads((share / "DefaultPreferences.plist").read_bytes())
        self.share = share
        self.templates = self.session.data / tools().GROUP / "Templates" / "CreateNewFile"

    def forget(self):
        """Leaves what a user has who has never started it."""
        for folder in (*self.domains.values(), self.session.data / tools().GROUP):
            shutil.rmtree(folder, ignore_errors=True)

    def complain_about_files(self):
        for name, folder in self.domains.items():
            for complaint in complaints_about(folder):
                self.world.damage("half_named", f"{name}: {complaint}")

    def complain_about_first_values(self):
        """Whatever was killed before, a start that came to its end has made all that is needed."""
        standard, group = (self.session.export_domain(name) for name in self.domains)
        for name, values in (("standard", standard), ("group", group)):
            if missing := sorted(set(self.defaults) - set(values)):
                self.world.damage("lost", f"{name} has no {missing}")
        for record in standard.get(LIST, []):
            self.complain_about_template(f"{record['displayName']}.{record['extension']}")

    def complain_about_template(self, name):
        template, original = self.templates / name, self.share / name
        if not original.exists():
            return
        if not template.exists():
            self.world.damage("lost", f"there is no template {name}")
        elif template.read_bytes() != original.read_bytes():
            self.world.damage("half_named", f"the template {name} is not whole")


def killed_first_starts(context, result):
    with World(context, result) as world:
        settings = Settings(world)
        while result.tried < context.times and result.damages < 20:
            world.end_host()
            settings.forget()
            for _ in range(KILLS):
                host = world.session.start_host(world.session.folder / "no request")
                time.sleep(world.random.uniform(0, LONGEST_START))
                host.kill()
                host.wait()
                result.tried += 1
            world.start()
            world.session.wait_for_settings()
            world.expect_cleared()
            settings.complain_about_files()
            settings.complain_about_first_values()


class Window:
    """The preferences window, whose keys switch rows of the list that it shows."""

    def __init__(self, world):
        self.world = world
        self.session = world.session

    def open(self):
        """Opens it; returns its process."""
        before = self.children()
        self.session.start_host()
        self.session.wait_for_window(LIST_TITLE)
        return (self.children() - before).pop()

    def children(self):
        return {process for process in self.session._processes()
                if b"--preferences-window" in self.words_of(process)}

    def words_of(self, process):
        try:
            with open(f"/proc/{process}/cmdline", "rb") as words:
                return words.read()
        except OSError:
            return b""

    def type(self):
        """Begins to switch rows, one after the other; returns the process that does."""
        keys = ["space", "Down"] * 12 + ["space", "Up"] * 12
        return self.session.start_program(["xdotool", "key", "--delay", "12", *keys])

    def focus_list(self):
        """Keys go to the list after this."""
        window = self.session.wait_for_window(LIST_TITLE)
        width, height = self.session.geometry(window)
        self.session.click(window, width * 2 // 3, height // 3)


def without_switches(rows):
    return [{key: value for key, value in row.items() if key != "enable"} for row in rows]


def killed_windows(context, result):
    with World(context, result) as world:
        settings, window = Settings(world), Window(world)
        rows = without_switches(world.session.export_domain("standard")[LIST])
        switched = 0
        while result.tried < context.times and result.damages < 20:
            before = world.session.export_domain("standard")[LIST]
            host = world.host()
            process = window.open()
            window.focus_list()
            typing = window.type()
            time.sleep(world.random.uniform(0.05, 0.5))
            # By turns the window alone, and the host, whose end is that of the window.
            os.kill(process if result.tried % 2 else host, signal.SIGKILL)
            world.wait_for_end(process)
            typing.terminate()
            typing.wait()
            result.tried += 1
            world.start()
            world.serves()
            settings.complain_about_files()
            after = world.session.export_domain("standard")
            switched += after[LIST] != before
            if without_switches(after[LIST]) != rows:
                world.damage("lost", "rows of a list are not what they were")
            if world.session.grants() != after.get("cachedBookmarks"):
                world.damage("lost", "grants")
        if context.times > 4 and not switched:
            raise RuntimeError("no key has switched a row")
        result.note(f"In {switched} of the rounds rows had been switched.")


# What the checks have to see.

def expect_template_seen(context):
    seen = []
    with context.scratch() as folder:
        settings = object.__new__(Settings)
        settings.world = type("World", (), {"damage": lambda self, *found: seen.append(found)})()
        settings.share = type(context.build)(folder) / "share"
        settings.templates = type(context.build)(folder) / "templates"
        for place in (settings.share, settings.templates):
            place.mkdir()
            (place / "a.txt").write_text("template")
        settings.complain_about_template("a.txt")
        assert not seen, "damage without a cause"
        (settings.templates / "a.txt").write_text("temp")
        settings.complain_about_template("a.txt")
        (settings.templates / "a.txt").unlink()
        settings.complain_about_template("a.txt")
    assert [kind for kind, _ in seen] == ["half_named", "lost"], seen


ROWS = [
    Row("SIGKILL of the host at its first start",
        "A host that has no settings yet is killed at random moments of its start, several times "
        "in a row; the next start has every setting in both domains, whole databases and whole "
        "templates.", 120, 4, killed_first_starts, is_for_sanitizers=False),
    Row("SIGKILL while the preferences window writes",
        "Rows are switched by keys, and the window's process or the host is killed; both domains "
        "are whole, no row is lost, and the host serves.", 40, 0, killed_windows,
        is_for_sanitizers=False),
]
SELF_TESTS = [SelfTest("first start: a damaged template", expect_template_seen)]
