"""What others plant for the command: command_test.py CATALOGCORE PICTURES [unittest arguments]

PICTURES is the folder of pictures.py. What the command did not make it neither changes nor waits for.
"""
import os
import pathlib
import plistlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

COMMAND = sys.argv[1]
sys.path.insert(0, sys.argv[2])
import pictures

PHOTOGRAPH = pictures.photograph()
HANGS = 60  # seconds; a command that waits for ever is killed then


def catalogue_file(key, *records):
    payload = "\n".join(["CatalogCoreVer1.0", *records]) + "\n\0"
    return plistlib.dumps({key: payload.encode()})


def mode(file):
    return oct(file.stat().st_mode & 0o777)


class HostileTest(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp()).resolve()
        self.addCleanup(shutil.rmtree, self.root)
        self.catalog, self.gallery = self.root / "catalog", self.root / "gallery"
        self.victim = self.root / "victim"
        self.victim.write_text("mine")
        os.umask(0o022)
        self.picture = self.root / "pictures" / "beach.png"
        self.picture.parent.mkdir()
        self.picture.write_bytes(PHOTOGRAPH)
        self.catalog.mkdir()
        self.write_images(self.picture)

    def write_images(self, *files):
        (self.catalog / "images.plist").write_bytes(catalogue_file("IDXImage", *(f"1/9,0,{file}" for file in files)))

    def run_command(self, *arguments, status=0, before=""):
        """`before` runs in a shell that then becomes the command, so that $$ is the command's process."""
        command = [COMMAND, "--catalog", str(self.catalog), *map(str, arguments)]
        if before:
            command = ["sh", "-c", before + '\nexec "$0" "$@"', *command]
        done = subprocess.run(command, capture_output=True, text=True, timeout=HANGS)
        self.assertEqual(done.returncode, status, (arguments, done.stdout, done.stderr))
        self.assertEqual(self.victim.read_text(), "mine", arguments)
        return done.stdout, done.stderr

    def copies(self, kind="thumbs"):
        return sorted((self.gallery / kind).glob("*/*.jpg"))

    def test_the_lock_is_nothing_but_the_lock(self):
        lock = self.catalog / "lock"
        plants = {"link": lambda: lock.symlink_to(self.victim), "hard link": lambda: os.link(self.victim, lock),
                  "pipe": lambda: os.mkfifo(lock), "folder": lock.mkdir,
                  "text": lambda: lock.write_text("process of writing (catalogcore notes)\nmore\n"),
                  "link to nothing": lambda: lock.symlink_to(self.root / "new")}
        if os.getuid() == 0:
            plants["another user's"] = lambda: (lock.touch(), os.chown(lock, 65534, 65534))
        for name, plant in plants.items():
            with self.subTest(name):
                plant()
                before = lock.read_text() if name == "text" else None
                err = self.run_command("index", "add", ".", name, status=3)[1]
                self.assertRegex(err, f"{lock}.*: .*move it away", name)
                self.assertEqual(before, lock.read_text() if name == "text" else None)
                self.assertFalse((self.root / "new").exists())
                self.assertEqual(mode(self.victim), "0o644")
                lock.rmdir() if name == "folder" else lock.unlink()
        lock.write_text("process 1 (catalogcore sort)\n")  # of a version that let everybody open it
        lock.chmod(0o644)
        for name in ("old", "new"):
            self.run_command("index", "add", ".", name)
            self.assertEqual(mode(lock), "0o600")
            lock.unlink()


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
