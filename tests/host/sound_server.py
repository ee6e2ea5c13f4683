"""A sound server that plays nothing and remembers what it was given.

It speaks as much of PulseAudio's native protocol, in an old version of it, as a client needs that
plays one sound after the other.
"""

import socket
import struct
import threading
from pathlib import Path

PROTOCOL_VERSION = 8
CONTROL_CHANNEL = 0xFFFFFFFF
BUFFER_BYTES = 1 << 22

REPLY = 2
CREATE_PLAYBACK_STREAM = 3
AUTH = 8
GET_PLAYBACK_LATENCY = 14

INTEGER_LITTLE_ENDIAN = 3
FLOAT_LITTLE_ENDIAN = 5


def _word(value):
    return b"L" + struct.pack(">I", value)


class _Connection(threading.Thread):
    def __init__(self, server, connection):
        super().__init__(daemon=True)
        self._server = server
        self._socket = connection
        self._format = None
        self._played = bytearray()

    def run(self):
        try:
            while True:
                length, channel = struct.unpack(">II", self._read(20)[:8])
                body = self._read(length)
                if channel == CONTROL_CHANNEL:
                    self._answer(body)
                else:
                    self._played += body
        except (EOFError, OSError):
            pass
        finally:
            self._socket.close()
            if self._played:
                self._server.played_stream(bytes(self._played), self._format)

    def _read(self, count):
        data = bytearray()
        while len(data) < count:
            piece = self._socket.recv(count - len(data))
            if not piece:
                raise EOFError
            data += piece
        return bytes(data)

    def _answer(self, body):
        command, tag = struct.unpack(">xIxI", body[:10])
        answer = b""
        if command == AUTH:
            answer = _word(PROTOCOL_VERSION)
        elif command == CREATE_PLAYBACK_STREAM:
            after_name = body.index(b"\0", 10) + 1
            self._format = body[after_name + 1]
            answer = _word(0) + _word(0) + _word(BUFFER_BYTES)
        elif command == GET_PLAYBACK_LATENCY:
            no_time = b"U" + bytes(8)
            asked = body[-9:]
            position = b"r" + struct.pack(">q", len(self._played))
            answer = no_time + no_time + b"1" + asked + asked + position + position
        packet = _word(REPLY) + _word(tag) + answer
        header = struct.pack(">IIIII", len(packet), CONTROL_CHANNEL, 0, 0, 0)
        self._socket.sendall(header + packet)


class SoundServer:
    """Listens at `path`; `played` holds the name of each sound whose stream has ended."""

    def __init__(self, path, sound_files):
        self._sounds = {file.stem: _samples_of(file) for file in map(Path, sound_files)}
        self._lock = threading.Lock()
        self._played = []
        self._listener = socket.socket(socket.AF_UNIX)
        self._listener.bind(str(path))
        self._listener.listen()
        self._thread = threading.Thread(target=self._accept, daemon=True)
        self._thread.start()

    @property
    def played(self):
        with self._lock:
            return list(self._played)

    def played_stream(self, stream, sample_format):
        name = self._name_of(_samples(stream, sample_format))
        with self._lock:
            self._played.append(name)

    def close(self):
        self._listener.shutdown(socket.SHUT_RDWR)
        self._listener.close()
        self._thread.join(5)

    def _accept(self):
        while True:
            try:
                connection, _ = self._listener.accept()
            except OSError:
                return
            _Connection(self, connection).start()

    def _name_of(self, samples):
        for name, expected in self._sounds.items():
            if len(samples) == len(expected) and all(
                    abs(one - other) <= 1 for one, other in zip(samples, expected)):
                return name
        return f"an unknown sound of {len(samples)} samples"


def _samples(stream, sample_format):
    """A stream's samples as 16 bit integers."""
    if sample_format == FLOAT_LITTLE_ENDIAN:
        return [round(sample * 32768) for sample in struct.unpack(f"<{len(stream) // 4}f", stream)]
    if sample_format == INTEGER_LITTLE_ENDIAN:
        return struct.unpack(f"<{len(stream) // 2}h", stream)
    return []


def _samples_of(path):
    """The samples of an AIFF file of 16 bit integers."""
    data = path.read_bytes()
    chunk = data.index(b"SSND")
    length = struct.unpack(">I", data[chunk + 4:chunk + 8])[0] - 8
    return struct.unpack(f">{length // 2}h", data[chunk + 16:chunk + 16 + length])
