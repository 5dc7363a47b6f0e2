"""Pictures and catalogue files for the tests, written without the library; and test cases that run the command."""
import functools
import math
import pathlib
import plistlib
import shutil
import struct
import subprocess
import tempfile
import unittest
import zlib

PAGES, PEOPLE, OTHER_PHOTOGRAPHS, OTHER = 2030000, 1010000, 1090000, 9000000


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def png(width, height, tone, dots_per_inch=0):
    """A grey PNG file; tone is 0 to 255, or a function of x and y."""
    if isinstance(tone, int):
        rows = (b"\0" + bytes([tone]) * width) * height
    else:
        rows = b"".join(b"\0" + bytes(tone(x, y) for x in range(width)) for y in range(height))
    resolution = b""
    if dots_per_inch:
        per_metre = round(dots_per_inch / 0.0254)
        resolution = chunk(b"pHYs", struct.pack(">IIB", per_metre, per_metre, 1))
    header = chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
    return b"\x89PNG\r\n\x1a\n" + header + resolution + chunk(b"IDAT", zlib.compress(rows, 1)) + chunk(b"IEND", b"")


def tiff(width, height, samples=1, bits=8, data=b""):
    """Uncompressed samples in one strip; of 32 bits, floating-point numbers. The file may end before its pixels."""
    tags = {256: width, 257: height, 258: bits, 259: 1, 262: 1, 273: 8, 277: samples, 278: height,
            279: min(width * height * samples * bits // 8, 2**32 - 1), 339: 3 if bits == 32 else 1}
    directory = b"".join(struct.pack("<HHII", tag, 4, 1, value) for tag, value in tags.items())
    return struct.pack("<2sHI", b"II", 42, 8 + len(data)) + data + struct.pack("<H", len(tags)) + directory + bytes(4)


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


@functools.cache
def photograph():
    return png(300, 200, hills_tone)


def catalogue_file(key, *records, tag="CatalogCoreVer1.0", **others):
    payload = "\n".join([tag, *records, "\0"])
    return plistlib.dumps({key: payload.encode(), **others})


class CommandCase(unittest.TestCase):
    """Runs the command `program` in a folder of its own, with a catalogue and a folder of pictures."""
    program = None

    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp()).resolve()
        self.addCleanup(shutil.rmtree, self.root)
        self.catalog, self.pictures = self.root / "catalog", self.root / "pictures"
        self.beach, = self.write({"beach.png": photograph()})

    def write(self, files):
        """Writes files of these names, relative to the folder of pictures, and contents; returns their paths."""
        for name, content in files.items():
            (self.pictures / name).parent.mkdir(parents=True, exist_ok=True)
            (self.pictures / name).write_bytes(content)
        return [self.pictures / name for name in files]

    def command(self, *arguments):
        return [self.program, "--catalog", str(self.catalog), *map(str, arguments)]

    def run_command(self, *arguments, status=0, command=None):
        """Returns standard output and standard error. A command that hangs fails after ten minutes."""
        done = subprocess.run(command or self.command(*arguments), capture_output=True, text=True,
                              errors="surrogateescape", timeout=600)
        self.assertEqual(done.returncode, status, (arguments, done.stdout, done.stderr))
        return done.stdout, done.stderr
