"""property_list_peers_test.py LIBRARY PLISTUTIL: random property lists pass through the library (which reads and writes
them), Python's plistlib and libplist's plistutil, in every direction, and must not change."""

import ctypes
import datetime
import plistlib
import random
import subprocess
import sys

LIBRARY, PLISTUTIL = ctypes.CDLL(sys.argv[1]), sys.argv[2]
for call in "CFDataCreate", "CFPropertyListCreateFromXMLData", "CFPropertyListCreateXMLData", "CFDataGetBytePtr":
    getattr(LIBRARY, call).restype = ctypes.c_void_p
LISTS = 40


def random_text(rng):
    alphabet = ["a", "Z", "0", " ", "<", ">", "&", "'", '"', "]]>", "\t", "\n", "\u00e4", "\u4e2d", "\U0001f4f7"]
    return "x" + "".join(rng.choices(alphabet, k=rng.randrange(12))) + "x"


def random_value(rng, levels):
    kinds = ["text", "data", "integer", "real", "boolean", "date"] + ["array", "dict"] * 2 * (levels > 0)
    kind = rng.choice(kinds)
    if kind == "array":
        return [random_value(rng, levels - 1) for _ in range(rng.randrange(5))]
    if kind == "dict":
        return {random_text(rng): random_value(rng, levels - 1) for _ in range(rng.randrange(5))}
    return {
        "text": lambda: random_text(rng),
        "data": lambda: rng.randbytes(rng.randrange(300)),
        "integer": lambda: rng.choice([0, -1, 2**63 - 1, -(2**63), rng.randrange(10**6)]),
        "real": lambda: rng.choice([0.0, -1.5, 1e22, 3.0, 0.1, 1.5e-7]),
        "boolean": lambda: rng.random() < 0.5,
        "date": lambda: datetime.datetime(rng.randrange(1970, 2030), 2, 28, 23, 59, rng.randrange(60)),
    }[kind]()


def rewritten(xml):
    data = ctypes.c_void_p(LIBRARY.CFDataCreate(None, xml, ctypes.c_long(len(xml))))
    parsed = ctypes.c_void_p(LIBRARY.CFPropertyListCreateFromXMLData(None, data, 0, None))
    written = ctypes.c_void_p(LIBRARY.CFPropertyListCreateXMLData(None, parsed))
    return ctypes.string_at(LIBRARY.CFDataGetBytePtr(written), LIBRARY.CFDataGetLength(written))


def converted(content, form):
    command = [PLISTUTIL, "-i", "-", "-o", "-", "-f", form]
    return subprocess.run(command, input=content, stdout=subprocess.PIPE, check=True).stdout


random_generator = random.Random(1)
for _ in range(LISTS):
    value = {random_text(random_generator): random_value(random_generator, 6) for _ in range(4)}
    theirs = plistlib.dumps(value, sort_keys=False)
    for _ in range(2):  # what plistlib wrote, then what plistutil wrote
        ours = rewritten(theirs)
        assert rewritten(ours) == ours
        assert repr(plistlib.loads(ours)) == repr(value), (value, ours)
        binary = converted(ours, "bin")
        assert plistlib.loads(binary) == value, (value, ours)
        theirs = converted(binary, "xml")
