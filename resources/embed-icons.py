#!/usr/bin/env python3
"""Build the default settings: put the images into the rows that name them.

    embed-icons.py SETTINGS IMAGES RESULT

SETTINGS is the property list of the sources, in which the "icon" of a row of "arrOfCustomIcon" is
the name of a PNG image of the folder IMAGES, as rsvg-convert writes them (RGBA, 8 bits a sample,
not interlaced). RESULT, a binary property list, has the images themselves there, as TIFF files
without loss. The same input always gives the same bytes.
"""

import plistlib
import struct
import sys
import zlib
from pathlib import Path

BYTES_PER_PIXEL = 4
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"
RGBA = 6


def chunks(png):
    """The type and the content of each chunk (PNG, section 5.3)."""
    position = len(PNG_SIGNATURE)
    while position < len(png):
        length, kind = struct.unpack_from(">I4s", png, position)
        yield kind, png[position + 8 : position + 8 + length]
        position += length + 12


def paeth(left, above, corner):
    """The neighbour nearest to left + above - corner (PNG, section 9.4)."""
    to_left, to_above = abs(above - corner), abs(left - corner)
    to_corner = abs(left + above - 2 * corner)
    if to_left <= to_above and to_left <= to_corner:
        return left
    return above if to_above <= to_corner else corner


def unfiltered(kind, line, before):
    """The bytes of a line that was filtered in the way `kind`, below the line `before`."""
    result = bytearray(line)
    for i, byte in enumerate(line):
        left = result[i - BYTES_PER_PIXEL] if i >= BYTES_PER_PIXEL else 0
        corner = before[i - BYTES_PER_PIXEL] if i >= BYTES_PER_PIXEL else 0
        guess = (0, left, before[i], (left + before[i]) // 2, paeth(left, before[i], corner))[kind]
        result[i] = (byte + guess) & 0xFF
    return bytes(result)


def read_png(path):
    """The width in pixels and the lines of a PNG image."""
    png = path.read_bytes()
    if not png.startswith(PNG_SIGNATURE):
        sys.exit(f"{path} is no PNG image")
    parts = list(chunks(png))
    width, height, *form = struct.unpack(">IIBBBBB", parts[0][1])
    if form != [8, RGBA, 0, 0, 0]:
        sys.exit(f"{path} is no plain RGBA image of 8 bits a sample")
    data = zlib.decompress(b"".join(content for kind, content in parts if kind == b"IDAT"))
    stride = width * BYTES_PER_PIXEL
    lines = [bytes(stride)]
    for start in range(0, height * (stride + 1), stride + 1):
        lines.append(unfiltered(data[start], data[start + 1 : start + 1 + stride], lines[-1]))
    return width, lines[1:]


def differenced(line):
    """Each sample less the one of the pixel before it (TIFF 6.0, section 14)."""
    head, tail = line[:BYTES_PER_PIXEL], line[BYTES_PER_PIXEL:]
    return head + bytes((now - before) & 0xFF for now, before in zip(tail, line))


def tiff(width, lines):
    """A TIFF file of one strip, deflated after horizontal differencing."""
    image = zlib.compress(b"".join(differenced(line) for line in lines), 9)
    short, long, rational = 3, 4, 5
    entry_count = 15
    values_offset = 8 + 2 + 12 * entry_count + 4
    bits_offset, resolution_offset = values_offset, values_offset + 8
    image_offset = resolution_offset + 8
    entries = [
        (256, long, 1, width),
        (257, long, 1, len(lines)),
        (258, short, 4, bits_offset),
        (259, short, 1, 8),  # compression: deflate
        (262, short, 1, 2),  # RGB
        (273, long, 1, image_offset),
        (274, short, 1, 1),  # the first row is the top
        (277, short, 1, 4),
        (278, long, 1, len(lines)),
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
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    settings_path, images, result = (Path(argument) for argument in sys.argv[1:])
    settings = plistlib.loads(settings_path.read_bytes())
    for row in settings["arrOfCustomIcon"]:
        row["icon"] = tiff(*read_png(images / f"{row['icon']}.png"))
    result.write_bytes(plistlib.dumps(settings, fmt=plistlib.FMT_BINARY, sort_keys=False))


if __name__ == "__main__":
    main()
