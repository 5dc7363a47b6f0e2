"""property_list_peers_test.py REWRITE PLISTUTIL: random property lists go through REWRITE (which reads and writes one),
Python's plistlib and libplist's plistutil, in every direction, and must come out unchanged."""

import datetime
import pathlib
import plistlib
import random
import subprocess
import sys
import tempfile

REWRITE, PLISTUTIL = sys.argv[1:]
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


def run(*command):
    subprocess.run(command, check=True)


def convert(source, target, form):
    run(PLISTUTIL, "-i", source, "-o", target, "-f", form)


def check(value, folder):
    ours, theirs, binary = (folder / name for name in ("ours.plist", "theirs.plist", "binary.plist"))
    # theirs is plistlib's, then plistutil's; both must read ours as the value.
    theirs.write_bytes(plistlib.dumps(value, sort_keys=False))
    for _ in range(2):
        run(REWRITE, theirs, ours)
        assert repr(plistlib.loads(ours.read_bytes())) == repr(value), (value, ours.read_text())
        convert(ours, binary, "bin")
        assert plistlib.loads(binary.read_bytes()) == value, (value, ours.read_text())
        convert(binary, theirs, "xml")
    # What we wrote we read and write to the same bytes.
    again = folder / "again.plist"
    run(REWRITE, ours, again)
    assert again.read_bytes() == ours.read_bytes()


with tempfile.TemporaryDirectory() as name:
    random_generator = random.Random(1)
    for _ in range(LISTS):
        check({random_text(random_generator): random_value(random_generator, 6) for _ in range(4)}, pathlib.Path(name))
