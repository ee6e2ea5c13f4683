"""Finds the texts that translators translate, in sources, interface files and data."""

import plistlib
import subprocess
import tempfile
from pathlib import Path
from xml.etree import ElementTree

from po_file import Message, read

KEYWORDS = ("localizedString:1", "localized:1", "translate:2", "translatable:1", "translatedText:1",
            "translatedCount:1,2")
HEADER = Message("", translations=["".join((
    "Project-Id-Version: tavrin\n",
    "Language: \n",
    "MIME-Version: 1.0\n",
    "Content-Type: text/plain; charset=UTF-8\n",
    "Content-Transfer-Encoding: 8bit\n"))])
# Properties of Qt Designer whose texts nobody reads.
UNREAD_PROPERTIES = {"styleSheet", "shortcut"}


def collect(root):
    """All messages below the source folder, each text once, after the header."""
    root = Path(root)
    found = {}
    sources = sorted(path for folder in ("src", "extensions")
                     for path in (root / folder).rglob("*.cpp"))
    for message in _texts_of_sources(root, sources):
        _add(found, message)
    for path in sorted((root / "src").rglob("*.ui")):
        for text, comment in texts_of_interface(path):
            _add(found, _message(root, path, text, comment))
    for path in sorted((root / "resources").glob("*.plist")):
        for text in _display_names(plistlib.loads(path.read_bytes())):
            _add(found, _message(root, path, text, ""))
    for path in sorted((root / "packaging").glob("*.desktop.in")):
        for text in texts_of_desktop_entry(path):
            _add(found, _message(root, path, text, ""))
    return [HEADER, *found.values()]


def _add(found, message):
    known = found.setdefault(message.text, message)
    if known is message:
        return
    known.references += [name for name in message.references if name not in known.references]
    known.comments += [text for text in message.comments if text not in known.comments]
    known.plural = known.plural or message.plural


def _message(root, path, text, comment):
    comments = [comment] if comment else []
    return Message(text, references=[str(path.relative_to(root))], comments=comments)


def _texts_of_sources(root, sources):
    with tempfile.TemporaryDirectory() as folder:
        output = Path(folder, "texts.pot")
        subprocess.run(
            ["xgettext", "--language=C++", "--from-code=UTF-8", "--keyword",
             *(f"--keyword={keyword}" for keyword in KEYWORDS), "--add-location=file",
             "--no-wrap", "--add-comments=Translators:", f"--output={output}",
             *(str(path.relative_to(root)) for path in sources)],
            cwd=root, check=True)
        messages = read(output)[1:]
    for message in messages:
        # What looks like a format of C is none here: placeholders are %1, %n and %@.
        message.flags = set()
    return messages


def texts_of_interface(path):
    """The texts of a Qt Designer file, each with its comment for translators or ""."""
    for element in ElementTree.parse(path).iter("property"):
        if element.get("name") in UNREAD_PROPERTIES:
            continue
        for strings in element:
            if strings.get("notr") == "true":
                continue
            for string in strings.iter("string"):
                if string.text and string.get("notr") != "true":
                    yield string.text, string.get("extracomment") or string.get("comment") or ""


def _display_names(value):
    if isinstance(value, dict):
        if value.get("displayName"):
            yield value["displayName"]
        for item in value.values():
            yield from _display_names(item)
    elif isinstance(value, list):
        for item in value:
            yield from _display_names(item)


def texts_of_desktop_entry(path):
    """The texts of a desktop entry but for its name, which is the product's."""
    group = ""
    for line in Path(path).read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            group = line.strip("[]")
        key, _, text = line.partition("=")
        is_own_name = key == "Name" and group == "Desktop Entry"
        if key in ("Name", "GenericName", "Comment", "Keywords") and not is_own_name:
            yield text


def accelerator_groups(path):
    """The texts with an accelerator that are on the screen at once, page by page."""
    root = ElementTree.parse(path).getroot()
    pages = [page for pages in root.iter("widget")
             if pages.get("class") in ("QStackedWidget", "QTabWidget")
             for page in pages.findall("widget")]
    paged = {id(text) for page in pages for text in page.iter("string")}
    always = [text.text for text in root.iter("string") if id(text) not in paged]
    groups = [(page.get("name"), always + [text.text for text in page.iter("string")])
              for page in pages] or [("the window", always)]
    return [(name, [text for text in texts if text and accelerator_of(text)])
            for name, texts in groups]


def accelerator_of(text):
    """The letter after a single "&", in lower case; "" without one."""
    rest = text.replace("&&", "")
    at = rest.find("&")
    return rest[at + 1:at + 2].lower() if at >= 0 else ""
