"""The parts that are programs with tables of their own: their output is their report."""

import subprocess
from pathlib import Path

from measuring.build import BENCHMARKS, build

HERE = Path(__file__).resolve().parents[1]

# Title, words of the command line, and what is built for those that do not build it themselves.
PARTS = {
    "items": ("Commands on many items, beside bare system calls", [HERE / "many-items"], ()),
    "icons": ("Icon sets, beside ImageMagick and libvips", [HERE / "icon-set"], ()),
    "host": ("Start, requests and idle host, beside bare programs", [HERE / "host"], ()),
    "window": ("The preferences window", [HERE / "preferences-window"], ()),
    "settings": ("A switch in a long list of settings, in ms", [BENCHMARKS / "settings-writes"],
                 ("settings-writes",)),
    "menu": ("The menu in a file manager's process, in ms", [BENCHMARKS / "menu-building"],
             ("menu-building",)),
}


def measure(part, report):
    """Runs a part's program; what it prints goes to the terminal and to the report.
    Returns whether it could measure everything.
    """
    _, words, targets = PARTS[part]
    if targets:
        build(*targets)
    program = subprocess.Popen(words, stdout=subprocess.PIPE, text=True)
    try:
        with open(report / f"{part}.txt", "w", encoding="utf-8") as kept:
            for line in program.stdout:
                print(line, end="", flush=True)
                kept.write(line)
    finally:
        program.terminate()
        status = program.wait()
    if status != 0:
        print(f"{part}: FAILED: {words[0]} ended with {status}", flush=True)
    return status == 0


def words(report):
    """The parts of the report that were measured, in their order."""
    for part, (title, *_) in PARTS.items():
        kept = report / f"{part}.txt"
        if kept.exists():
            yield f"## {title}\n\n```\n{kept.read_text()}```\n"
