"""The part "files": copies, moves and removals on several file systems, beside other programs."""

import subprocess
import tempfile
from pathlib import Path

from measuring import pairs, plot, results
from measuring.build import build
from measuring.file_rows import (ACROSS_ROWS, COLD_ROW, HOST_FILE_SYSTEM, HOST_ROW, ROWS,
                                 ROWS_OF_ONE, FileRows, Scale)
from measuring.host_program import HostProgram
from measuring.places import (FILE_SYSTEMS, describe_machine, file_system, plain_folder,
                              reason_to_skip)
from measuring.programs import Tavrin

ACROSS = ("ext4", "xfs")
ALL_ROWS = (*ROWS, *ACROSS_ROWS, HOST_ROW)


class Files:
    """Measures what is chosen, and keeps the rows that there are after each of them."""

    def __init__(self, options, report):
        self._options = options
        self._path = report / "files.json"
        self._plot = report / "files.png"
        self._rows, _ = results.load(self._path)
        self._about = {}
        self._scale = Scale(options.quick)
        self._runs = pairs.Runs(options.pairs, options.slow_runs)
        self._judged = set()
        self._failed = []

    def measure(self):
        """All places that are chosen and can be had; says which cannot, and why. Returns whether
        everything could be measured there.
        """
        chosen = self._options.only or FILE_SYSTEMS
        build("file-engine", "plain-filesystem")
        if HOST_FILE_SYSTEM in chosen and self._wants(HOST_ROW):
            build()
        base = Path(self._options.folder)
        self._about = {"machine": describe_machine(base)}
        skipped = {name: reason for name in chosen if (reason := reason_to_skip(name))}
        for name in chosen:
            self._say_skipped(name, skipped.get(name))
            if name not in skipped:
                with file_system(name, base, self._scale.image) as place:
                    self._measure_place(place)
        if skipped and len(skipped) == len(chosen):
            for key in filter(self._wants, (COLD_ROW, HOST_ROW)):
                self._say_skipped(key, "measured on a file system of its own only")
            with plain_folder(base) as place:
                self._measure_place(place)
        self._measure_across(base, skipped)
        results.save(self._path, self._rows, self._about)
        return not self._failed

    def _say_skipped(self, name, reason):
        if reason:
            self._about[name] = f"skipped: {reason}"
            print(f"{name:<6} skipped: {reason}", flush=True)

    def _wants(self, key):
        return not self._options.rows or key in self._options.rows

    def _wants_at(self, key, place):
        """A row that takes long is measured on one file system, unless it is asked for."""
        if key in ROWS_OF_ONE and place.name != ROWS_OF_ONE[key]:
            return bool(self._options.rows) and key in self._options.rows and key != COLD_ROW
        return self._wants(key)

    def _measure_place(self, place):
        with tempfile.TemporaryDirectory() as data:
            rows = self._rows_at(place, data)
            for key in ROWS:
                if self._wants_at(key, place):
                    self._keep(place, key, rows.measure, key)
            if place.name == HOST_FILE_SYSTEM and self._wants(HOST_ROW):
                with HostProgram() as host:
                    self._keep(place, HOST_ROW, rows.measure_host, host)

    def _rows_at(self, place, data):
        ours = Tavrin(data, self._options.workers)
        return FileRows(place, self._scale, ours, self._runs, self._judged)

    def _measure_across(self, base, skipped):
        keys = [key for key in ACROSS_ROWS if self._wants(key)]
        chosen = self._options.only or ACROSS
        if not keys or not set(ACROSS) <= set(chosen):
            return
        reason = "; ".join(f"{name}: {skipped[name]}" for name in ACROSS if name in skipped)
        self._say_skipped("across", reason)
        if reason:
            return
        with file_system(ACROSS[0], base, self._scale.image) as here, \
                file_system(ACROSS[1], base, self._scale.image) as there, \
                tempfile.TemporaryDirectory() as data:
            rows = self._rows_at(here, data)
            for key in keys:
                self._keep(here, key, rows.measure_across, key, there)

    def _keep(self, place, key, measure, *arguments):
        """Measures a row and keeps it. One that fails does not keep others from being measured."""
        try:
            row = measure(*arguments)
        except (OSError, RuntimeError, subprocess.CalledProcessError) as error:
            self._failed.append((place.name, key))
            print(f"{place.name:<6} {key}: FAILED: {error}", flush=True)
            return
        print(results.line(row) + (f"; {row.note}" if row.note else ""), flush=True)
        self._rows = results.merged(self._rows, [row])
        results.save(self._path, self._rows, self._about)
        plot.draw(self._rows, self._plot)


def words(report):
    """The part of the report, from what was measured last; nothing when there is none."""
    rows, about = results.load(report / "files.json")
    if not rows:
        return ""
    notes = "".join(f"- {row.place}, {row.title}: {row.note}\n" for row in rows if row.note)
    skipped = "".join(f"- {name}: {text}\n" for name, text in about.items()
                      if text.startswith("skipped"))
    return f"""## Files

{about['machine']}.
Medians, with the number of runs where there were fewer than of Tavrin. The share is ours of
`cp -a`, `mv` or `rm -rf`. Before each run all is written to the disk (`sync`); copies are removed
outside of the timing, each is compared once with its source. Cold: nothing of the file system is
in memory, but the programs are.

![times as shares](files.png)

{results.markdown(rows)}
{notes}{skipped}"""
