"""Pictures for the tests, written without a library: PNG files, some with a resolution."""
import math
import struct
import zlib


def _chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def png(width, height, tone, dots_per_inch=0):
    """A grey PNG file; tone(x, y) is 0 to 255."""
    rows = b"".join(b"\0" + bytes(tone(x, y) for x in range(width)) for y in range(height))
    resolution = b""
    if dots_per_inch:
        per_metre = round(dots_per_inch / 0.0254)
        resolution = _chunk(b"pHYs", struct.pack(">IIB", per_metre, per_metre, 1))
    header = _chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
    return b"\x89PNG\r\n\x1a\n" + header + resolution + _chunk(b"IDAT", zlib.compress(rows, 1)) + _chunk(b"IEND", b"")


def page_tone(x, y):
    written = 75 < x < 545 and 75 < y < 800 and y % 14 < 7 and x // 6 % 7 != 0
    return 40 if written and (x * 7 // 2 + y // 14 * 3) % 11 < 4 else 245


def hills_tone(x, y):
    tone = 120 - 0.06 * y + (x * 31 + y * 17) % 9
    size = 95
    while size > 3:
        tone += size / 2.5 * math.sin(x / size + 6 * size) * math.cos(y / size * 1.3 + math.sin(x / size / 2))
        size *= 0.6
    return int(min(max(tone, 0), 255))


def page(dots_per_inch=75):
    """A4 at 75 dots per inch."""
    return png(620, 877, page_tone, dots_per_inch)


def photograph():
    return png(300, 200, hills_tone)
