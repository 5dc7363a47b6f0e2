"""Files that others plant for the command: command_test.py CATALOGCORE PICTURES [unittest arguments]

PICTURES is the folder of pictures.py. The command never changes files that it did not create, and never waits for them.
"""
import os
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

COMMAND = sys.argv[1]
sys.path.insert(0, sys.argv[2])
import pictures
from pictures import catalogue_file


def mode(file):
    return oct(file.stat().st_mode & 0o777)


class HostileTest(pictures.CommandCase):
    program = COMMAND

    def setUp(self):
        super().setUp()
        self.gallery, self.victim = self.root / "gallery", self.root / "victim"
        self.victim.write_text("mine")
        os.umask(0o022)
        self.catalog.mkdir()
        self.write_images(self.beach)

    def write_images(self, *files):
        (self.catalog / "images.plist").write_bytes(catalogue_file("IDXImage", *(f"1/9,0,{file}" for file in files)))

    def run_command(self, *arguments, status=0, before=""):
        """`before` runs in a shell that then becomes the command, so that $$ is the command's process."""
        result = super().run_command(*arguments, status=status,
                                     command=["sh", "-c", before + '\nexec "$0" "$@"', *self.command(*arguments)])
        self.assertEqual(self.victim.read_text(), "mine", arguments)
        return result

    def copies(self, kind="thumbs"):
        return sorted((self.gallery / kind).glob("*/*.jpg"))

    def test_a_gallery_removes_nothing_but_its_own_copies(self):
        self.run_command("gallery", self.gallery)
        own = self.copies()[0]
        elsewhere = self.root / "elsewhere"
        theirs = [elsewhere / name for name in (own.name, f"{own.parent.name}/{own.name}", f"ab/{0:016}.jpg", "notes")]
        theirs += [self.gallery / name for name in ("thumbs/notes", "thumbs/ab/mine.jpg", "thumbs/ab/abc.jpg",
                                                    f"thumbs/ab/{0:016}.jpg", "previews/abcdef0123456789.jpg",
                                                    "assets/mine.css")]
        self.write(dict.fromkeys(theirs, b"mine"))
        self.run_command("rm", self.beach)
        for name in ("thumbs", "previews", "assets", "thumbs/ab"):
            shutil.move(self.gallery / name, self.root / "moved")
            (self.gallery / name).symlink_to(elsewhere)
            self.run_command("gallery", self.gallery, status=3 if "/" not in name else 0)
            (self.gallery / name).unlink()
            shutil.move(self.root / "moved", self.gallery / name)
            for file in theirs:
                self.assertEqual(file.read_text(), "mine", (name, file))
        ours = [self.gallery / "thumbs/ab" / name for name in (f"ab{0:014}.jpg", ".catalogcore-1-1")]
        self.write(dict.fromkeys(ours, b"ours"))
        self.run_command("gallery", self.gallery)
        self.assertEqual([file for file in (own, *ours) if file.exists()], [])
        for file in theirs:
            self.assertEqual(file.read_text(), "mine", file)

    def test_a_gallery_writes_nothing_through_a_planted_name(self):
        self.run_command("gallery", self.gallery)
        own = self.copies()[0]
        for file in (self.gallery / "data.js", self.gallery / "index.html", own):
            file.unlink()
            file.symlink_to(self.victim)
        self.run_command("gallery", self.gallery, before=f"""for n in 1 2 3 4 5 6; do
            for folder in {self.gallery} {own.parent}; do ln -s {self.victim} $folder/.catalogcore-$$-$n; done; done""")
        self.assertIn("JSON.parse", (self.gallery / "data.js").read_text())
        self.assertTrue(own.is_file() and not own.is_symlink())

    def test_copies_are_no_more_readable_than_their_pictures(self):
        self.run_command("gallery", self.gallery)
        texts = [self.gallery / "data.js", self.gallery / "catalogcore-gallery.json"]
        self.assertEqual({mode(file) for file in texts + self.copies()}, {"0o644"})
        groups = [(os.getgid(), "0o640"), (12345, "0o600")] if os.getuid() == 0 else [(os.getgid(), "0o640")]
        for permissions, (group, made) in [(0o640, group) for group in groups] + [(0o600, (os.getgid(), "0o600"))]:
            for private in (self.beach, self.catalog / "images.plist"):
                private.chmod(permissions)
                os.chown(private, -1, group)
            for _ in range(2):  # the copies of a picture that became private, then new ones
                self.run_command("gallery", self.gallery)
                self.assertEqual({mode(file) for file in texts + self.copies()}, {made})
                self.assertEqual(mode(self.gallery / "index.html"), "0o644")
                shutil.rmtree(self.gallery)

    def test_only_a_lock_file_is_used_as_the_lock(self):
        lock = self.catalog / "lock"
        text = "process of writing (catalogcore notes)\nmore\n"
        plants = {"link": lambda: lock.symlink_to(self.victim), "hard link": lambda: os.link(self.victim, lock),
                  "pipe": lambda: os.mkfifo(lock), "text": lambda: lock.write_text(text),
                  "link to nothing": lambda: lock.symlink_to(self.root / "new")}
        if os.getuid() == 0:
            plants["another user's"] = lambda: (lock.touch(), os.chown(lock, 65534, 65534))
        for name, plant in plants.items():
            with self.subTest(name):
                plant()
                self.assertRegex(self.run_command("index", "add", ".", name, status=3)[1], f"{lock}.*: .*move it away")
                self.assertTrue(name != "text" or lock.read_text() == text)
                self.assertFalse((self.root / "new").exists())
                self.assertEqual(mode(self.victim), "0o644")
                lock.unlink()
        lock.write_text("process 1 (catalogcore sort)\n")  # of a version that let everybody open it
        lock.chmod(0o644)
        for name in ("old", "new"):
            self.run_command("index", "add", ".", name)
            self.assertEqual(mode(lock), "0o600")
            lock.unlink()

    def test_nothing_waits_for_a_pipe_or_reads_a_device(self):
        self.run_command("gallery", self.gallery)
        def link_to_device(file):
            file.symlink_to("/dev/zero")

        mark, whole = self.gallery / "catalogcore-gallery.json", self.root / "whole"
        mark.rename(whole)
        for plant in (os.mkfifo, link_to_device, lambda file: file.symlink_to(whole)):
            plant(mark)
            self.assertIn(mark.name, self.run_command("gallery", self.gallery, status=3)[1])
            mark.unlink()
        whole.rename(mark)
        for name in ("thumbs", "assets"):
            shutil.rmtree(self.gallery / name)
            os.mkfifo(self.gallery / name)
            err = self.run_command("gallery", self.gallery, status=3)[1]
            self.assertIn(f"{self.gallery / name}: a link, or no folder", err)
            (self.gallery / name).unlink()
        os.mkfifo(self.pictures / "pipe.png")
        link_to_device(self.pictures / "zero.jpg")
        err = self.run_command("sort", "--again", self.pictures, status=1)[1]
        self.assertEqual(len(re.findall(r"cannot read .*(?:pipe.png|zero): ", err)), 2, err)
        for file in (self.catalog / "images.plist", self.catalog / "index.plist"):
            for plant in (os.mkfifo, link_to_device):
                file.unlink(missing_ok=True)
                plant(file)
                self.assertIn(file.name, self.run_command("gallery", self.gallery, status=3)[1])
                self.run_command("sort", self.pictures, status=3)
            file.unlink()

    def test_a_signal_ends_a_gallery_and_keeps_what_it_has(self):
        files = [self.pictures / f"{number}.png" for number in range(3000)]  # seconds of work, of which little is done
        for file in files:
            os.link(self.beach, file)
        self.write_images(*files)
        process = subprocess.Popen(self.command("gallery", "--jobs", "1", self.gallery), stdout=subprocess.DEVNULL)
        while not self.copies() and process.poll() is None:
            time.sleep(0.001)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(600), 130)
        self.assertTrue(0 < len(self.copies()) < len(files))
        self.assertTrue((self.gallery / "index.html").exists())

    def test_an_index_that_is_its_own_parent_is_passed_over(self):
        (self.catalog / "index.plist").write_bytes(catalogue_file(
            "IDXIndex", "0/0/0/-1,0,itself", "-1/0/0/0,0,below none", "1/0/5,0,skips a level", "0,0,nothing", "1/7,0,sound"))
        out = self.run_command("tree")[0]
        self.assertRegex(out, r"Photographs +1000000 +1 .*\n(.*\n)* +sound +1070000 +0\n")
        self.assertNotRegex(out, "itself|none|skips|nothing")
        self.assertRegex(self.run_command("check", status=1)[0], r"index.plist: \d records that the library rejects")
        self.run_command("gallery", self.gallery)
        rows = re.findall(r"\[(-?\d+),(-?\d+),", (self.gallery / "data.js").read_text())
        self.assertEqual(len(rows), 11)
        self.assertTrue(all(int(parent) < at for at, (_, parent) in enumerate(rows)))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
