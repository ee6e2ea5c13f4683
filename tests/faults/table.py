"""The table of the fault programme in docs/reliability.md, between two markers."""

import dataclasses
import pathlib

BEGIN = "<!-- written by tests/faults/run: begin -->"
END = "<!-- written by tests/faults/run: end -->"
HEAD = ["fault", "tried", "lost", "half-named", "escaped", "blocked", "when"]


@dataclasses.dataclass
class Line:
    """One row as it stands in the document."""

    cells: list[str]
    description: str

    @property
    def name(self) -> str:
        return self.cells[0]


def line_of(result, when: str) -> Line:
    """The line for a programme.Result; `when` says the day and the commit."""
    description = " ".join([result.what, *result.notes])
    if result.skipped:
        return Line([result.name, f"not run: {result.skipped}", "", "", "", "", when], description)
    numbers = [result.tried, result.lost, result.half_named, result.escaped, result.blocked]
    return Line([result.name, *(f"{number:,}" for number in numbers), when], description)


def parse(text: str) -> list[Line]:
    """The lines that a document has between its markers."""
    written = text.partition(BEGIN)[2].partition(END)[0]
    rows = [row.strip().strip("|").split("|") for row in written.splitlines() if row[:1] == "|"]
    descriptions = {}
    for row in written.splitlines():
        if row.startswith("- **"):
            name, _, description = row[4:].partition("**: ")
            descriptions[name] = description
    lines = [Line([cell.strip() for cell in row], "") for row in rows[2:]]
    for line in lines:
        line.description = descriptions.get(line.name, "")
    return lines


def merged(old: list[Line], new: list[Line], order: list[str]) -> list[Line]:
    """The new lines, and of the old ones those that were not tried again, in the given order.

    A row that no module has any more goes; one that could not be tried now keeps what it was when
    it could.
    """
    lines = {line.name: line for line in old}
    for line in new:
        was_tried = line.name in lines and not lines[line.name].cells[1].startswith("not run")
        if not (was_tried and line.cells[1].startswith("not run")):
            lines[line.name] = line
    return [lines[name] for name in order if name in lines]


def written(lines: list[Line], machine: str) -> str:
    """The text between the markers."""
    rows = ["| " + " | ".join(cells) + " |" for cells in [HEAD, *(line.cells for line in lines)]]
    rows.insert(1, "|---|---:|---:|---:|---:|---:|---|")
    descriptions = [f"- **{line.name}**: {line.description}" for line in lines]
    return "\n".join([BEGIN, *rows, "", machine, "", *descriptions, END])


def update(path: pathlib.Path, new: list[Line], order: list[str], machine: str) -> None:
    """Writes the lines into the document; what stands around the markers stays."""
    text = path.read_text() if path.exists() else f"# Reliability\n\n{BEGIN}\n{END}\n"
    before, found, rest = text.partition(BEGIN)
    _, closed, after = rest.partition(END)
    if not found or not closed:
        raise SystemExit(f"{path} has no place for the table")
    path.write_text(before + written(merged(parse(text), new, order), machine) + after)
