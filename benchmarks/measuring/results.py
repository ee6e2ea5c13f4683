"""What was measured of files: rows, kept as JSON, judged by targets, and shown as a table."""

import json
from dataclasses import asdict, dataclass, field

from measuring.pairs import medians

OURS = "Tavrin"
REFERENCE = "cp -a, mv, rm -rf"
COLUMNS = (OURS, REFERENCE, "cp -a, sync, rm -rf", "rsync -aHAX", "gio", "std::filesystem")


@dataclass
class Row:
    """One operation at one place: the seconds of every run, by program.

    Met is a target when our share of the reference's median is at most `share`, our median is at
    most `milliseconds`, and our share of the fastest other's median is at most `of_fastest`.
    """

    place: str
    key: str
    title: str
    seconds: dict = field(default_factory=dict)
    share: float | None = None
    of_fastest: float = 1.0
    milliseconds: float | None = None
    note: str = ""

    def ratio(self):
        """Our median as a share of the reference's."""
        all_medians = medians(self.seconds)
        return all_medians[OURS] / all_medians[REFERENCE]

    def ratio_to_fastest(self):
        """Our median as a share of the fastest other's, and who that is."""
        all_medians = medians(self.seconds)
        ours = all_medians.pop(OURS)
        fastest = min(all_medians, key=all_medians.get)
        return ours / all_medians[fastest], fastest

    def target(self):
        """The targets in words."""
        words = []
        if self.share is not None:
            words.append(f"<= {self.share:.2f}")
        if self.milliseconds is not None:
            words.append(f"<= {self.milliseconds:.0f} ms")
        if self.of_fastest != 1.0:
            words.append(f"<= {self.of_fastest:.2f} of the fastest")
        return ", ".join(words) or "none faster"

    def verdict(self):
        """ "met", or what is missed."""
        missed = []
        if self.share is not None and self.ratio() > self.share:
            missed.append("share")
        if self.milliseconds is not None and (
                medians(self.seconds)[OURS] * 1e3 > self.milliseconds):
            missed.append("time")
        ratio, fastest = self.ratio_to_fastest()
        if ratio > self.of_fastest:
            missed.append(f"{fastest} is faster ({ratio:.2f})")
        return "missed: " + ", ".join(missed) if missed else "met"


def load(path):
    """The rows of a file that `save` wrote, and what it says about them; none without the file."""
    if not path.exists():
        return [], {}
    content = json.loads(path.read_text())
    return [Row(**row) for row in content["rows"]], content["about"]


def save(path, rows, about):
    """Keeps rows as JSON, with `about`: words on how they were measured, by place."""
    content = {"about": about, "rows": [asdict(row) for row in rows]}
    path.write_text(json.dumps(content, indent=1) + "\n")


def merged(old, new):
    """The old rows, in their order, with new ones in their places or after them."""
    by_name = {(row.place, row.key): row for row in old}
    by_name |= {(row.place, row.key): row for row in new}
    return list(by_name.values())


def time_in_words(seconds):
    """Seconds with about three digits."""
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1e3:.1f} ms"


def markdown(rows):
    """The table of rows; a cell has the median, and the number of runs where it is not Tavrin's."""
    lines = ["| file system | work | " + " | ".join(COLUMNS) + " | runs | share | target | |",
             "|---|---|" + "--:|" * (len(COLUMNS) + 2) + "---|---|"]
    for row in rows:
        cells = [_cell(row, column) for column in COLUMNS]
        cells += [str(len(row.seconds[OURS])), f"{row.ratio():.2f}", row.target(), row.verdict()]
        lines.append(f"| {row.place} | {row.title} | {' | '.join(cells)} |")
    return "\n".join(lines) + "\n"


def _cell(row, column):
    runs = row.seconds.get(column)
    if not runs:
        return "-"
    count = "" if len(runs) == len(row.seconds[OURS]) else f" ({len(runs)})"
    return time_in_words(medians(row.seconds)[column]) + count


def line(row):
    """A row for the terminal."""
    times = ", ".join(f"{name} {time_in_words(median)}"
                      for name, median in medians(row.seconds).items())
    return (f"{row.place:<6} {row.title}: {times}; share {row.ratio():.2f}, target {row.target()}: "
            f"{row.verdict()}")
