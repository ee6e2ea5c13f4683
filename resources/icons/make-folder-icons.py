#!/usr/bin/env python3
"""Draw the plain coloured folder icons of the default settings.

    make-folder-icons.py <DefaultPreferences.plist>

Gives every row of "arrOfCustomIcon" whose title is a colour below its icon, a TIFF image of
128 x 128 pixels (RGBA, deflate, horizontal differencing), and writes the file anew. The other
values stay as they are.
"""

import plistlib
import struct
import sys
import zlib

SIZE = 128
SAMPLES = 4  # a pixel's edge is smoothed over SAMPLES x SAMPLES points

COLOURS = {
    "Blue Folder": (0x3D, 0x85, 0xD8),
    "Green Folder": (0x46, 0xA8, 0x58),
    "Orange Folder": (0xE8, 0x8A, 0x2E),
    "Red Folder": (0xD6, 0x4A, 0x4A),
    "Purple Folder": (0x8E, 0x5C, 0xC8),
}


def is_in_rounded_box(x, y, left, top, right, bottom, radius):
    if not (left <= x <= right and top <= y <= bottom):
        return False
    dx = max(left + radius - x, x - (right - radius), 0)
    dy = max(top + radius - y, y - (bottom - radius), 0)
    return dx * dx + dy * dy <= radius * radius


def shade(colour, factor):
    return tuple(min(255, round(part * factor)) for part in colour)


def colour_at(x, y, colour):
    """The colour of a point, or None outside the folder."""
    if is_in_rounded_box(x, y, 8, 44, 120, 108, 7):
        return shade(colour, 1.12 if y < 47 else 1.0)
    if is_in_rounded_box(x, y, 8, 32, 120, 100, 7) or is_in_rounded_box(x, y, 8, 22, 56, 60, 7):
        return shade(colour, 0.78)
    return None


def pixel(column, row, colour):
    points = [
        colour_at(column + (i + 0.5) / SAMPLES, row + (j + 0.5) / SAMPLES, colour)
        for j in range(SAMPLES)
        for i in range(SAMPLES)
    ]
    inside = [point for point in points if point]
    if not inside:
        return bytes(4)
    mean = [round(sum(parts) / len(inside)) for parts in zip(*inside)]
    return bytes(mean + [round(255 * len(inside) / len(points))])


def differenced(line):
    """Each byte less the one of the pixel before it (TIFF 6.0, section 14)."""
    head, tail = line[:4], line[4:]
    return head + bytes((now - before) & 0xFF for now, before in zip(tail, line))


def tiff(colour):
    lines = [b"".join(pixel(x, y, colour) for x in range(SIZE)) for y in range(SIZE)]
    image = zlib.compress(b"".join(differenced(line) for line in lines), 9)
    short, long, rational = 3, 4, 5
    entry_count = 15
    values_offset = 8 + 2 + 12 * entry_count + 4
    bits_offset, resolution_offset = values_offset, values_offset + 8
    image_offset = resolution_offset + 8
    entries = [
        (256, long, 1, SIZE),
        (257, long, 1, SIZE),
        (258, short, 4, bits_offset),
        (259, short, 1, 8),  # compression: deflate
        (262, short, 1, 2),  # RGB
        (273, long, 1, image_offset),
        (274, short, 1, 1),  # the first row is the top
        (277, short, 1, 4),
        (278, long, 1, SIZE),
        (279, long, 1, len(image)),
        (282, rational, 1, resolution_offset),
        (283, rational, 1, resolution_offset),
        (296, short, 1, 2),  # pixels per inch
        (317, short, 1, 2),  # horizontal differencing
        (338, short, 1, 2),  # the fourth sample is unassociated alpha
    ]
    assert len(entries) == entry_count
    directory = struct.pack("<H", entry_count)
    directory += b"".join(struct.pack("<HHII", *entry) for entry in entries)
    directory += struct.pack("<I", 0)
    values = struct.pack("<4H", 8, 8, 8, 8) + struct.pack("<2I", 72, 1)
    return struct.pack("<2sHI", b"II", 42, 8) + directory + values + image


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    path = sys.argv[1]
    with open(path, "rb") as file:
        settings = plistlib.load(file)
    for row in settings["arrOfCustomIcon"]:
        colour = COLOURS.get(row["displayName"])
        if colour:
            row["icon"] = tiff(colour)
    with open(path, "wb") as file:
        plistlib.dump(settings, file, sort_keys=False)


if __name__ == "__main__":
    main()
