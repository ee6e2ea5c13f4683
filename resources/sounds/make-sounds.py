#!/usr/bin/python3
"""Makes the three feedback sounds beside this script; they are committed, as they rarely change.

AIFF, 16 bit PCM, 44.1 kHz, one channel.
"""

import math
import random
import struct
from pathlib import Path

RATE = 44100


def envelope(position, length, attack, release):
    """Loudness from 0 to 1: a smooth rise over `attack` seconds and an exponential fall."""
    rise = 0.5 - 0.5 * math.cos(math.pi * min(1.0, position / attack))
    fall = math.exp(-position / release)
    end = min(1.0, (length - position) / 0.02)
    return rise * fall * end


def note(length, frequency, release, slide=1.0):
    """A soft bell: a fundamental with two quiet partials; `slide` is the pitch's factor at the end."""
    samples = []
    phase = 0.0
    for index in range(round(length * RATE)):
        position = index / RATE
        phase += 2 * math.pi * frequency * slide ** (position / length) / RATE
        tone = math.sin(phase) + 0.25 * math.sin(2 * phase) + 0.08 * math.sin(3 * phase)
        samples.append(tone * envelope(position, length, 0.008, release))
    return samples


def paper(length):
    """Band-limited noise in two strokes, as of paper that is crumpled."""
    source = random.Random(7)
    samples = []
    low = band = 0.0
    for index in range(round(length * RATE)):
        position = index / RATE
        cutoff = 0.16 + 0.30 * position / length
        low += cutoff * band
        band += cutoff * (source.uniform(-1, 1) - low - 0.9 * band)
        strokes = math.sin(math.pi * position / length) * (0.55 + 0.45 * math.sin(34 * position))
        samples.append(band * strokes * min(1.0, (length - position) / 0.05))
    return samples


def mixed(*parts):
    """Sums (start in seconds, samples) pairs."""
    length = max(round(start * RATE) + len(samples) for start, samples in parts)
    result = [0.0] * length
    for start, samples in parts:
        offset = round(start * RATE)
        for index, sample in enumerate(samples):
            result[offset + index] += sample
    return result


def extended(value):
    """An integer as the 80-bit float of AIFF."""
    exponent = value.bit_length() - 1
    return struct.pack(">HQ", exponent + 16383, value << (63 - exponent))


def write_aiff(path, samples, peak):
    loudest = max(abs(sample) for sample in samples)
    words = [round(sample / loudest * peak * 32767) for sample in samples]
    data = struct.pack(f">{len(words)}h", *words)
    common = struct.pack(">hIh", 1, len(words), 16) + extended(RATE)
    sound = struct.pack(">II", 0, 0) + data
    chunks = b"".join(name + struct.pack(">I", len(body)) + body
                      for name, body in ((b"COMM", common), (b"SSND", sound)))
    path.write_bytes(b"FORM" + struct.pack(">I", 4 + len(chunks)) + b"AIFF" + chunks)


def main():
    folder = Path(__file__).resolve().parent
    success = mixed((0.0, note(0.30, 659.26, 0.12)), (0.13, note(0.42, 987.77, 0.14)))
    write_aiff(folder / "Volume Mount.aiff", success, 0.45)
    write_aiff(folder / "Funk.aiff", note(0.45, 261.63, 0.16, slide=0.72), 0.5)
    write_aiff(folder / "empty trash.aiff", paper(0.5), 0.4)


main()
