"""Reads and writes gettext's files of texts and translations, as far as they are used here."""

import ast
import dataclasses
from pathlib import Path


@dataclasses.dataclass
class Message:
    """One text: its English wording, what it becomes, and where it stands."""

    text: str
    plural: str = ""
    translations: list = dataclasses.field(default_factory=list)
    references: list = dataclasses.field(default_factory=list)
    comments: list = dataclasses.field(default_factory=list)
    flags: set = dataclasses.field(default_factory=set)

    def wordings(self):
        """The English wordings: one, or one for a single thing and one for many."""
        return [self.text, self.plural] if self.plural else [self.text]


def read(path):
    """The messages of a file, its header first: a message without English text."""
    messages = []
    message, field = None, None
    for line in [*Path(path).read_text(encoding="utf-8").splitlines(), ""]:
        if not line.strip():
            if message is not None and field is not None:
                messages.append(message)
            message, field = None, None
            continue
        if line.startswith("#~"):
            continue
        if message is None:
            message = Message("")
        if line.startswith("#"):
            _take_remark(message, line)
        else:
            keyword, _, quoted = line.partition('"')
            field = keyword.strip() or field
            _append(message, field, ast.literal_eval('"' + quoted))
    return messages


def _take_remark(message, line):
    kind, rest = line[:2], line[2:].strip()
    if kind == "#:":
        message.references += rest.split()
    elif kind == "#,":
        message.flags |= {flag.strip() for flag in rest.split(",")}
    elif kind == "#.":
        message.comments.append(rest)


def _append(message, field, part):
    if field == "msgid":
        message.text += part
    elif field == "msgid_plural":
        message.plural += part
    elif field.startswith("msgstr"):
        number = int(field[7:-1]) if "[" in field else 0
        while len(message.translations) <= number:
            message.translations.append("")
        message.translations[number] += part
    else:
        raise ValueError(f"unknown word in a file of texts: {field}")


def write(path, messages):
    """Writes messages in their order."""
    Path(path).write_text("\n".join(map(_lines_of, messages)), encoding="utf-8")


def _lines_of(message):
    lines = [f"#. {comment}\n" for comment in message.comments]
    lines += [f"#: {reference}\n" for reference in message.references]
    if message.flags:
        lines.append(f"#, {', '.join(sorted(message.flags))}\n")
    lines.append("msgid " + _quoted(message.text))
    if not message.plural:
        lines.append("msgstr " + _quoted("".join(message.translations[:1])))
    else:
        lines.append("msgid_plural " + _quoted(message.plural))
        for number, translation in enumerate(message.translations or ["", ""]):
            lines.append(f"msgstr[{number}] " + _quoted(translation))
    return "".join(lines)


def _quoted(text):
    """The text between quotes; a text of several lines has a line for each."""
    escaped = [part.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n").replace("\t", "\\t")
               for part in text.splitlines(keepends=True)] or [""]
    if len(escaped) > 1:
        escaped.insert(0, "")
    return "".join(f'"{part}"\n' for part in escaped)


def languages(folder):
    """The languages that the folder's LINGUAS names."""
    lines = Path(folder, "LINGUAS").read_text(encoding="utf-8").splitlines()
    return [word for line in lines if not line.startswith("#") for word in line.split()]
