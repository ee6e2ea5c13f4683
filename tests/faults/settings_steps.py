"""What the steps of tavrin-settings-writer leave in a domain, and how a domain is looked at."""

import functools
import os
import plistlib
import sqlite3
import subprocess

STEPS_OF_TURN = 3
ROWS = 6
DIFFERENT_ICONS = 40
FILES = {"defaults.sqlite", "defaults.sqlite-wal", "defaults.sqlite-shm", "defaults.lock",
         "bookmark.key"}
PATIENCE = 30


@functools.cache
def icon_of(kind):
    return bytes((index * 7 + index // 256 + kind) & 0xFF for index in range(5000 + kind * 1500))


def values_after(name, step):
    """The keys of a writer behind a step; -1 is before the first."""
    values = {}
    turn = step // STEPS_OF_TURN
    if step >= 0:
        values[f"{name}.list"] = [{"turn": turn, "icon": icon_of((turn + row) % DIFFERENT_ICONS)}
                                  for row in range(ROWS)]
    paired = turn if step % STEPS_OF_TURN >= 1 else turn - 1
    if paired >= 0:
        values[f"{name}.left"] = values[f"{name}.right"] = paired
    last = turn if step % STEPS_OF_TURN == 2 else turn - 1
    if last % 2 == 1 and last >= 0:
        values[f"{name}.odd"] = last
    return values


def values_of(domain, name):
    """Those of a domain's values that a writer has made."""
    return {key: value for key, value in domain.items() if key.startswith(name + ".")}


def step_of(values, name, acknowledged):
    """The step that the values are those of: the acknowledged one, or the one in the making; None
    when they are neither's.
    """
    return next((step for step in (acknowledged, acknowledged + 1)
                 if values_after(name, step) == values), None)


def kind_of_damage(values, name, acknowledged):
    """What has become of values that are those of neither step."""
    former = range(max(-1, acknowledged - 50), acknowledged)
    lost = not values or any(values_after(name, step) == values for step in former)
    return "lost" if lost else "half_named"


def export(build, environment):
    """The whole standard domain, as a new process reads it. What it complains about fails it."""
    done = subprocess.run([build / "bin" / "tavrin-defaults", "export", "standard", "-"],
                          env=environment, capture_output=True, timeout=PATIENCE, check=False)
    if done.returncode != 0 or done.stderr:
        raise ValueError(f"the settings cannot be read: {done.stderr.decode(errors='replace')}")
    return plistlib.loads(done.stdout)


COMPLAINTS = {
    "large data that nothing uses":
        "SELECT count(*) FROM large_data WHERE id NOT IN (SELECT data FROM large_data_use)",
    "uses of large data that is gone":
        "SELECT count(*) FROM large_data_use WHERE data NOT IN (SELECT id FROM large_data)",
    "large data of settings that are gone":
        "SELECT count(*) FROM large_data_use WHERE setting NOT IN (SELECT id FROM setting)",
    "large data twice":
        "SELECT count(*) - count(DISTINCT hash) FROM large_data",
}


def complaints_about(folder):
    """What is wrong with the files of a domain, below what its values show."""
    found = [f"there is {name}" for name in sorted(set(os.listdir(folder)) - FILES)]
    connection = sqlite3.connect(f"file:{folder}/defaults.sqlite?mode=ro", uri=True)
    try:
        connection.execute("BEGIN")
        for query in ("PRAGMA integrity_check", "PRAGMA foreign_key_check"):
            found += [str(row[0]) for row in connection.execute(query) if row[0] != "ok"]
        found += [what for what, query in COMPLAINTS.items()
                  if connection.execute(query).fetchone()[0] != 0]
        left, right = (connection.execute("SELECT value FROM setting WHERE key=?",
                                          (key,)).fetchone()
                       for key in (b"survivor.left", b"survivor.right"))
        if left != right:
            found.append("half a commit can be seen")
    except sqlite3.DatabaseError as error:
        found.append(str(error))
    finally:
        connection.close()
    return found
