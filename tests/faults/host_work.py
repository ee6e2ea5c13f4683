"""Requests to the host, each with what may stand on the disk before, during and after it."""

import os
from pathlib import Path
from urllib.parse import quote_from_bytes

from manifest import damage_in_rest, differences, manifest_of

TWINS = 12


def build_tree(folder, files, size, random):
    """A folder of files up to `size` bytes, with links and hard links among them."""
    folder.mkdir(parents=True)
    for number in range(files):
        part = folder / str(number // 40)
        part.mkdir(exist_ok=True)
        (part / f"{number}.data").write_bytes(random.randbytes(random.randrange(size)))
    for number in range(min(TWINS, files)):
        os.link(folder / "0" / f"{number}.data", folder / f"twin {number}")
        (folder / f"link {number}").symlink_to(f"0/{number}.data")
    os.setxattr(folder / "0", "user.tavrin", b"kept")
    return folder


def names_like(path):
    """The names in a path's folder that its name or a free name made of it has."""
    return [name for name in os.listdir(path.parent) if name.startswith(path.stem)]


class Work:
    """One request. `complain(kind, message)` is called for each damage."""

    action = ""

    def __init__(self, source, folder, whole=None):
        self.source = source
        self.folder = folder
        self.result = folder / source.name
        self.whole = whole or manifest_of(source)
        folder.mkdir(parents=True, exist_ok=True)

    def send(self, world):
        return world.send(self.action, self.source, ToPath=self.folder)

    def is_done(self):
        """Whether it has been carried out."""
        return self.result.exists()

    def check(self, complain):
        """Looks at what there is, at any moment at which nobody works on it."""
        made = manifest_of(self.result)
        if made and (wrong := differences(self.whole, made)):
            complain("half_named", f"{self.action} to {self.result}: {'; '.join(wrong[:3])}")
        if len(names := names_like(self.result)) > 1:
            complain("half_named", f"{self.action} was carried out twice: {names}")


class Copying(Work):
    action = "copyFilesTo"

    def check(self, complain):
        super().check(complain)
        if wrong := differences(self.whole, manifest_of(self.source)):
            complain("lost", f"the source of a copy, {self.source}: {'; '.join(wrong[:3])}")


class Moving(Work):
    action = "moveFilesTo"

    def is_done(self):
        return self.result.exists() and not self.source.exists()

    def check(self, complain):
        super().check(complain)
        left, made = manifest_of(self.source), manifest_of(self.result)
        if differences(self.whole, left) and differences(self.whole, made):
            complain("lost", f"{self.action}: {self.source} is nowhere whole")
        if wrong := damage_in_rest(self.whole, left):
            complain("half_named", f"the source of {self.action}: {'; '.join(wrong[:3])}")


class Pasting(Moving):
    action = "pasteSelectedFiles"

    def send(self, world):
        url = "file://" + quote_from_bytes(os.fsencode(self.source))
        return world.send(self.action, CuttingFilesURL=url, PasteInPath=self.folder)


class Deleting(Work):
    action = "deleteDirectlySelectedFiles"

    def send(self, world):
        return world.send(self.action, self.source)

    def is_done(self):
        return not self.source.exists()

    def check(self, complain):
        if wrong := damage_in_rest(self.whole, manifest_of(self.source)):
            complain("half_named", f"the rest of a deletion: {'; '.join(wrong[:3])}")


class Hiding(Work):
    """Hides what is in a folder whose list has lines of others."""

    action = "hiddenAllFilesInPath"
    others = "of another program\n\n"

    def __init__(self, source, folder):
        self.list = source / ".hidden"
        self.list.write_text(self.others)
        self.names = sorted(name for name in os.listdir(source) if name != ".hidden")
        super().__init__(source, folder)

    def send(self, world):
        return world.send(self.action, Path=self.source)

    def is_done(self):
        return self.list.exists() and self.list.read_text() != self.others

    def check(self, complain):
        found = manifest_of(self.source)
        list_item = found.pop(b"/.hidden", None)
        whole = {key: item for key, item in self.whole.items() if key != b"/.hidden"}
        # A new list is a change of the folder.
        if wrong := damage_in_rest(whole, found) or sorted(whole.keys() - found.keys()):
            complain("lost", f"hidden items: {wrong[:3]}")
        lines = self.list.read_text() if list_item else ""
        rest = lines.removeprefix(self.others)
        is_whole = lines.startswith(self.others) and (
            not rest or sorted(rest.splitlines()) == self.names)
        if not is_whole:
            complain("lost" if not lines.startswith(self.others) else "half_named",
                     f"the list of hidden names in {self.source}")


class Creating(Work):
    """Makes a new file of the first template."""

    action = "createNewFile"

    def __init__(self, folder, template):
        super().__init__(template, folder)
        self.result = folder / f"untitled{template.suffix}"

    def send(self, world):
        return world.send(self.action, Path=self.folder, Tag=0)

    def check(self, complain):
        if self.result.exists() and self.result.read_bytes() != self.source.read_bytes():
            complain("half_named", f"a new file, {self.result}")
        if len(names := os.listdir(self.folder)) > 1:
            complain("half_named", f"a file was made twice: {names}")


def all_kinds(folder, other, template, random):
    """A request of every kind, in any order, between two file systems."""
    works = [
        Copying(build_tree(folder / "copied", 120, 30_000, random), other / "copies"),
        Copying(build_tree(other / "copied back", 120, 30_000, random), folder / "copies"),
        Moving(build_tree(folder / "moved", 120, 30_000, random), other / "moves"),
        Moving(build_tree(other / "moved back", 60, 200_000, random), folder / "moves"),
        Pasting(build_tree(folder / "pasted", 120, 30_000, random), other / "pastes"),
        Deleting(build_tree(folder / "deleted", 200, 3_000, random), folder / "unused"),
        Hiding(build_tree(folder / "hidden", 100, 3_000, random), folder / "unused"),
        Creating(Path(folder / "created"), template),
    ]
    random.shuffle(works)
    return works
