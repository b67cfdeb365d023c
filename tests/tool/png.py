"""Just enough PNG to look at pixels: 8-bit RGB or RGBA, not interlaced."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"


class Image:
    def __init__(self, path):
        data = path.read_bytes()
        assert data[:8] == SIGNATURE
        parts = dict.fromkeys([b"IHDR", b"IDAT"], b"")
        at = 8
        while at < len(data):
            size, kind = struct.unpack(">I4s", data[at : at + 8])
            body = data[at + 8 : at + 8 + size]
            assert struct.unpack(">I", data[at + 8 + size :][:4])[0] == zlib.crc32(kind + body)
            parts[kind] = parts.get(kind, b"") + body
            at += 12 + size
        self.width, self.height, depth, colours, *_, interlace = struct.unpack(
            ">IIBBBBB", parts[b"IHDR"]
        )
        assert depth == 8 and interlace == 0
        self.channels = {2: 3, 6: 4}[colours]
        self.rows = self._unfiltered(zlib.decompress(parts[b"IDAT"]))

    def _unfiltered(self, raw):
        stride, step = self.width * self.channels, self.channels
        rows, above = [], bytes(stride)
        for y in range(self.height):
            kind = raw[y * (stride + 1)]
            row = bytearray(raw[y * (stride + 1) + 1 : (y + 1) * (stride + 1)])
            for k in range(stride):
                left = row[k - step] if k >= step else 0
                corner = above[k - step] if k >= step else 0
                row[k] = (row[k] + _predicted(kind, left, above[k], corner)) & 255
            rows.append(bytes(row))
            above = rows[-1]
        return rows

    def pixel(self, x, y):
        base = x * self.channels
        return tuple(self.rows[y][base : base + 3])


def _predicted(kind, left, up, corner):
    if kind == 4:  # Paeth
        guess = left + up - corner
        return min((left, up, corner), key=lambda v: abs(guess - v))
    return (0, left, up, (left + up) // 2)[kind]
