#!/usr/bin/env python3
"""Pack the parts of an office document into one file.

    pack-document.py <folder of the parts> <document>

The same parts give the same bytes everywhere: no compression, no times, an order that depends on
the names alone. "mimetype" comes first, where the OpenDocument package format wants it, then
"[Content_Types].xml", where other programs put it.
"""

import sys
import zipfile
from pathlib import Path

FIRST = ("mimetype", "[Content_Types].xml")
EARLIEST_TIME = (1980, 1, 1, 0, 0, 0)
PLAIN_FILE = 0o100644 << 16
UNIX = 3


def order(name):
    return (FIRST.index(name) if name in FIRST else len(FIRST), name)


def pack(folder, document):
    names = [part.relative_to(folder).as_posix() for part in folder.rglob("*") if part.is_file()]
    with zipfile.ZipFile(document, "w", zipfile.ZIP_STORED) as archive:
        for name in sorted(names, key=order):
            entry = zipfile.ZipInfo(name, EARLIEST_TIME)
            entry.external_attr = PLAIN_FILE
            entry.create_system = UNIX
            archive.writestr(entry, (folder / name).read_bytes())


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    pack(Path(sys.argv[1]), Path(sys.argv[2]))


if __name__ == "__main__":
    main()
