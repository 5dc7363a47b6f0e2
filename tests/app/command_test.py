"""The command: command_test.py CATALOGCORE MAN-PAGE COMPLETION [unittest arguments]"""
import contextlib
import csv
import fcntl
import functools
import io
import itertools
import json
import os
import pathlib
import plistlib
import pty
import re
import shutil
import signal
import subprocess
import sys
import termios
import unicodedata
import unittest

import pictures
from pictures import OTHER, OTHER_PHOTOGRAPHS, PAGES

COMMAND, MAN_PAGE, COMPLETION = sys.argv[1:4]
PAGE, PHOTOGRAPH = pictures.page(), pictures.photograph()


def bucket(path):
    """The bucket of the library's table; the path is ASCII."""
    return functools.reduce(lambda value, byte: (value * 137 + byte) % 2**32, os.fsencode(path), 0) % 1987


class CommandTest(pictures.CommandCase):
    program = COMMAND

    def setUp(self):
        super().setUp()
        self.page, = self.write({"scans/page.png": PAGE})

    def listed(self, *arguments):
        return [json.loads(line) for line in self.run_command("ls", "--json", *arguments)[0].splitlines()]

    def sort(self, *arguments, status=0):
        return json.loads(self.run_command("sort", "--json", *arguments, status=status)[0])

    def test_pictures_are_filed_by_what_they_show(self):
        beach, page = str(self.beach), str(self.page)
        lines = self.run_command("sort", "--dry-run", self.pictures)[0].splitlines()
        self.assertEqual(lines[:2], [beach + ": Other photographs (1090000)", page + ": Pages (2030000)"])
        self.assertEqual(lines[2], "Would file 2 pictures:")
        self.assertEqual([(f["file"], f["preset"]) for f in self.sort("--dry-run", self.pictures)["files"]],
                         [(beach, OTHER_PHOTOGRAPHS), (page, PAGES)])
        self.assertFalse(self.catalog.exists())
        self.assertRegex(self.run_command("sort", self.pictures)[0],
                         r"Filed 2 pictures:\n +1090000 +Other photographs +1\n +2030000 +Pages +1\n")
        self.assertEqual(self.sort(self.pictures)["already"], 2)
        self.assertEqual(self.run_command("ls")[0].splitlines(), [beach, page])
        folder = ("--folder", self.pictures / "scans")
        for query in (("pages",), ("2/3",), ("2030000",), ("Documents/Pages",), ("Documents",), folder):
            self.assertEqual(self.run_command("ls", *query)[0], page + "\n", query)
        counts = {node["index"]: node["below"] for node in json.loads(self.run_command("tree", "--json")[0])}
        self.assertEqual([counts[n] for n in (1000000, 2000000, PAGES, OTHER)], [1, 1, 1, 0])
        exported = json.loads(self.run_command("export", "--format", "json")[0])
        rows = list(csv.DictReader(io.StringIO(self.run_command("export", "--format", "csv")[0])))
        self.assertEqual([(row["file"], row["index"]) for row in rows], [(beach, "1090000"), (page, "2030000")])
        self.assertEqual([image["folder"] for image in exported], [str(self.pictures), str(self.page.parent)])
        self.run_command("mv", beach, "Other")
        self.assertEqual(self.sort("--again", self.pictures)["filed"], 2)
        self.assertEqual([image["index"] for image in self.listed()], [OTHER_PHOTOGRAPHS, PAGES])
        self.run_command("gallery", self.pictures / "gallery")
        self.assertEqual(self.sort(self.pictures)["filed"], 0)  # no thumbnails

    def test_classify_says_what_a_picture_is(self):
        self.write({"notes.png": b"no picture"})
        done, err = self.run_command("classify", "--json", self.pictures, self.root / "absent", status=1)
        lines = [json.loads(line) for line in done.splitlines()]
        self.assertEqual([(line["class"], line["preset"], line["name"], line["status"]) for line in lines],
                         [(None, -1, None, "No such file or directory"), ("photograph", 1090000, "Other photographs", "ok"),
                          (None, -1, None, "not an image file"), ("document", 2030000, "Pages", "ok")])
        self.assertIn("notes.png: not an image file (skipped)", err)
        self.assertFalse(self.catalog.exists())

    def test_what_cannot_be_filed_is_named_and_the_rest_goes_on(self):
        self.write({
            "line\nfeed.png": PHOTOGRAPH, os.fsdecode(b"\xff.png"): PHOTOGRAPH, ".hidden.png": PHOTOGRAPH,
            "cut.png": PHOTOGRAPH[:9999], "../far/cut/far.png": PHOTOGRAPH[:999], "../far/page.png": PAGE,
            "gif.png": b"GIF89a" + bytes(20), "bmp.png": b"BM" + bytes(20), "text.png": b"BM is no bitmap",
            "fake.jpg": b"no picture", "readme.txt": b"passed over", "b.TXT": b"passed over", "x.a b": b""})
        for link, target in (("scans/up", "."), ("same", "scans"), ("link", "../far"), ("gone.png", "nowhere")):
            (self.pictures / link).symlink_to((self.root / "pictures" / target).resolve())
        err = self.run_command("sort", "--dry-run", self.pictures, status=1)[1]
        for link, target in (("gone.png", "pictures/nowhere"), ("link/cut/far.png", "far/cut/far.png")):
            self.assertIn(f"{self.pictures / link} -> {self.root / target}: ", err)
        result = self.sort(self.pictures, self.root / "absent", status=1)
        reasons = {pathlib.Path(skip["file"]).name: skip["reason"] for skip in result["skipped"]}
        self.assertEqual((len(reasons), result["passedOver"]), (11, {"TXT": 2, "": 1}))
        for name, reason in (("cut.png", "cut short"), ("fake.jpg", "not an image"), ("text.png", "not an image"),
                             ("gif.png", "GIF is not"), ("bmp.png", "BMP is not"), ("up", "leads back"),
                             ("line\nfeed.png", "line feed"), ("gone.png", "nothing"), ("absent", "No such file")):
            self.assertIn(reason, reasons[name])
        self.assertEqual(result["filed"], 3)
        self.assertIn(str(self.root / "far" / "page.png"), [image["file"] for image in self.listed()])
        self.run_command("rm", self.pictures / "link" / "page.png")
        shutil.move(self.pictures / "scans", self.root / "moved")
        (self.pictures / "scans").symlink_to(self.root / "moved")
        self.run_command("rm", self.page)

    def test_names_that_differ_in_case_alone(self):
        buckets = {}  # the library compares names in any letter case within a bucket
        for letters in itertools.product(*zip("abcdefghij", "ABCDEFGHIJ")):
            name = "".join(letters) + ".png"
            buckets.setdefault(bucket(self.pictures / name), []).append(name)
        first, name = next(names for names in buckets.values() if len(names) > 1)[:2]
        other = next(names[0] for names in buckets.values() if first not in names)
        self.write(dict.fromkeys((first, name, other), PHOTOGRAPH))
        result = self.sort(self.pictures, status=1)
        self.assertEqual((result["filed"], len(result["skipped"])), (4, 1))
        self.assertIn("letter case", result["skipped"][0]["reason"])
        self.assertEqual(len(self.sort("--dry-run", self.pictures, status=1)["skipped"]), 1)
        self.run_command("rm", result["skipped"][0]["file"], status=1)
        self.assertEqual(len(self.listed()), 4)

    def test_images_whose_file_is_gone_stay_until_they_are_forgotten(self):
        self.run_command("sort", self.pictures)
        self.run_command("index", "add", "Photographs", "Holiday")
        self.run_command("mv", self.page, "Holiday")
        self.run_command("protect", self.page, "--no-move")
        shutil.move(self.pictures / "scans", self.root / "unplugged")
        self.write({"new.png": PHOTOGRAPH})
        self.run_command("sort", self.pictures)
        gone = [image for image in self.listed() if image["missing"]]
        self.assertEqual([(i["file"], i["index"], i["attribute"]) for i in gone], [(str(self.page), 1100000, 1)])
        self.assertIn(f"missing: {self.page}", self.run_command("check", status=1)[0])
        self.run_command("check", "--forget")
        self.assertEqual(len(self.listed()), 2)
        shutil.move(self.root / "unplugged", self.pictures / "scans")
        self.run_command("check")

    def test_a_catalogue_that_cannot_be_read_is_left_alone(self):
        self.run_command("sort", self.pictures)
        self.run_command("index", "add", ".", "Work")
        whole = (self.catalog / "images.plist").read_bytes()

        def item(*records, **tag):
            return pictures.catalogue_file("IDXImage", *records, Other=1, **tag)

        record = f"1/9,0,{self.beach}"
        for content in (whole[:300], b"", item(tag="CatalogCoreVer9"),
                        item(record, "1/9,0"), item(record, "1/9,0,no-folder")):
            (self.catalog / "images.plist").write_bytes(content)
            self.assertIn("nothing was changed", self.run_command("sort", self.pictures, status=3)[1])
            self.run_command("mv", self.beach, "Pages", status=3)
            self.assertEqual((self.catalog / "images.plist").read_bytes(), content)
        self.run_command("check", "--forget")  # drops the record without a folder, and keeps what is not ours
        self.assertEqual(plistlib.loads((self.catalog / "images.plist").read_bytes().rstrip(b"\0"))["Other"], 1)
        self.run_command("sort", self.pictures)
        (self.catalog / "index.plist").unlink()
        (self.catalog / "images.plist").write_bytes(item(record.replace("1/9", "10")))
        self.assertIn('now in "Other"', self.run_command("ls")[1])
        self.assertEqual(self.listed()[0]["index"], OTHER)
        self.run_command("check", status=1)

    def test_one_command_at_a_time_changes_a_catalogue(self):
        self.run_command("sort", self.pictures)
        with open(self.catalog / "lock", "r+") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            err = self.run_command("rm", self.beach, status=3)[1]
            self.assertRegex(err, r"is being changed by process \d+ \(catalogcore sort\).*--wait")
            self.assertEqual(len(self.listed()), 2)
            waiting = subprocess.Popen(self.command("--wait", "rm", self.beach), stderr=subprocess.PIPE, text=True)
            self.assertRegex(waiting.stderr.readline(), r"process \d+ \(catalogcore sort\); waiting for it\n")
            self.assertEqual(len(self.listed()), 2)
        waiting.communicate()
        self.assertEqual(waiting.returncode, 0)
        self.assertEqual(len(self.listed()), 1)

    def test_indexes(self):
        self.assertEqual(self.run_command("index", "add", "Photographs", "Été, nord", "--no-remove")[0], "1100000\n")
        self.run_command("index", "rename", "Été, nord", "Summer")
        self.run_command("index", "add", "Documents", "1010000")
        self.run_command("ls", "1010000")  # the preset of that number
        for arguments, reason in (
                (("add", "Photographs", "Summer"), "of that name exists already"), (("add", "Photographs", ""), "not empty"),
                (("add", "Nowhere", "x"), "no index \"Nowhere\""), (("rename", "People", "x"), "is a preset"),
                (("add", "Photographs", "x", "--no-move", "--no-remove", "--no-rename"), "omit one"),
                (("protect", "Summer", "--no-move", "--no-rename"), "omit one"),
                (("protect", "Summer"), "no protection given"),
                (("rm", "Summer"), "--force"), (("rm", "1000000"), "is a preset")):
            self.assertIn(reason, self.run_command("index", *arguments, status=2)[1], arguments)
        self.run_command("sort", self.pictures)
        self.run_command("mv", self.beach, "Summer")
        self.run_command("protect", self.beach, "--no-move")
        self.run_command("mv", self.beach, "Other", status=1)
        self.run_command("mv", "--force", self.beach, "Summer")
        self.run_command("protect", self.page, "--no-move")
        self.assertEqual(self.sort("--again", "--dry-run", self.pictures, status=1)["filed"], 1)
        names = b"".join(os.fsencode(self.pictures / name) + b"\0" for name in ("absent", "scans/page.png"))
        for index, options, listed, status in (("Other", ["--to", "Other", "-0"], names, 1),
                                               ("Pages", ["Pages"], names[:-1].replace(b"\0", b"\n\n"), 1),
                                               ("Pages", ["-t", "Other"], names, 2),
                                               ("Pages", ["-t", "", "Other", "-0"], names, 2)):
            done = subprocess.run(self.command("mv", "--force", "--files-from", "-", *options), input=listed,
                                  capture_output=True)
            self.assertNotIn(b"cannot move :", done.stderr)
            self.assertEqual(done.returncode, status, (options, done.stderr))
            self.assertIn(str(self.page), self.run_command("ls", index)[0], options)
        self.assertIn("no remove", self.run_command("tree")[0])
        self.run_command("index", "protect", "Summer", "--none")
        self.assertNotIn("no remove", self.run_command("tree")[0])
        self.assertIn("1 image would be removed", self.run_command("index", "rm", "Summer", status=2)[1])
        self.run_command("index", "rm", "--force", "Summer")
        self.assertEqual([image["index"] for image in self.listed()], [PAGES])
        for number in range(20):
            self.run_command("index", "add", ".", f"top {number}")
        self.assertIn("no number is left", self.run_command("index", "add", ".", "one more", status=2)[1])

    def test_a_sort_that_is_stopped_keeps_what_it_has_and_jobs_change_nothing(self):
        self.write({f"{number:02}.png": PAGE for number in range(40)})
        self.write({"!.jpg": b"no picture: named as soon as the work has begun"})

        def begun(*command):
            process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
            self.addCleanup(process.stderr.close)
            self.assertIn(b"!.jpg", process.stderr.readline())
            return process
        process = begun(*self.command("sort", "--jobs", "3", self.pictures))
        process.send_signal(signal.SIGINT)
        self.assertIn(b"again to stop without saving", process.stderr.readline())
        self.assertEqual(process.wait(120), 130)
        self.run_command("check")
        first = [image["file"] for image in self.listed()]
        self.assertEqual(first, sorted(map(str, self.pictures.rglob("*.png")))[:len(first)])
        shutil.rmtree(self.catalog)
        ignoring = begun("sh", "-c", 'trap "" HUP; exec "$0" "$@"', *self.command("sort", self.pictures))
        ignoring.send_signal(signal.SIGHUP)
        self.assertEqual(ignoring.wait(120), 1)
        (self.pictures / "!.jpg").unlink()
        written = []
        for jobs in (1, 4):
            shutil.rmtree(self.catalog, ignore_errors=True)
            self.run_command("sort", "--jobs", jobs, self.pictures)
            written.append((self.catalog / "images.plist").read_bytes())
        self.assertEqual(*written)

    def test_a_sort_with_a_closed_output_files_everything(self):
        self.write({"a.png": b"no picture"})
        for outputs in (">&- 2>&-", "2>&1 | true"):
            shutil.rmtree(self.catalog, ignore_errors=True)
            subprocess.run(["sh", "-c", f'"$0" "$@" {outputs}', *self.command("sort", self.pictures)])
            self.assertEqual(len(self.listed()), 2, outputs)
            self.assertRegex((self.catalog / "lock").read_text(), r"^process \d+ \(catalogcore sort\)\n$")

    def test_a_terminal_gets_lines_that_fit_and_no_control_characters(self):
        names = "a\x1b[31m.png", "b\x9b31m.png", "c\u202egnp\\.png", "写真" * 12 + ".png"
        self.write(dict.fromkeys(names, PHOTOGRAPH))
        self.run_command("sort", self.pictures)
        self.run_command("index", "add", ".", '=1+"2"')
        self.run_command("mv", self.beach, '=1+"2"')
        self.assertIn(',10000000,"\'=1+""2""",', self.run_command("export", "--format", "csv")[0])
        self.assertIn("c\u202egnp\\.png\n", self.run_command("ls")[0])
        self.assertIn("c\\u202Egnp\\\\.png", self.run_command("ls", "--json")[0])
        exports = [("export", "--format", form) for form in ("csv", "json")]
        for arguments in (("ls",), *exports, ("classify", self.pictures)):
            process, terminal = pty.fork()
            if process == 0:
                termios.tcsetwinsize(0, (24, 40))
                os.execve(COMMAND, self.command(*arguments), dict(os.environ, TERM="xterm"))
            out = b""
            with contextlib.suppress(OSError):  # the end
                while chunk := os.read(terminal, 4096):
                    out += chunk
            os.close(terminal)
            self.assertEqual(os.waitpid(process, 0)[1], 0)
            out = out.decode()
            self.assertNotRegex(out, "\x1b\\[31m|\x9b|\u202e")
            self.assertRegex(out, r"a\\(x1B|u001b)\[31m.*\s.*b\\u009B31m.*\s.*c\\u202Egnp\\\\.png")
            lines = re.findall("\r([^\r\n]+)\x1b\\[K", out)
            self.assertEqual(len(lines), 6 if arguments[0] == "classify" else 0)
            for line in lines:
                self.assertRegex(line, r"^\d of 6, ")
                self.assertLess(sum(2 if unicodedata.east_asian_width(c) == "W" else 1 for c in line), 40, line)

    def test_help_man_page_and_completion_tell_of_every_option(self):
        pages = [pathlib.Path(MAN_PAGE).read_text().replace("\\-", "-"), pathlib.Path(COMPLETION).read_text()]

        def look(*command):
            out, _ = self.run_command(*command, "--help")
            self.assertRegex(out, "Examples?:|COMMAND --help")
            for option in set(re.findall(r"--[a-z-]+", out.split("Options:")[1])):
                for page in pages:
                    self.assertIn(option, page)
            for name in re.findall(r"^  ([a-z]+) ", out.partition("Subcommands:\n")[2].split("\n\n")[0], re.M):
                look(*command, name)
        look()
        self.assertEqual(self.run_command("help", "index", "add"), self.run_command("index", "add", "--help"))
        for wrong, reason in (((), "command is missing"), (("sort",), "PATH is required"), (("srot",), 'mean "sort"?'),
                              (("sl",), 'mean "ls"?'),
                              (("",), 'no command ""'), (("help", "index", "ad"), 'mean "add"?'),
                              (("nonsense\x1b",), r'no command "nonsense\x1B" ('),
                              (("--nonsense",), "no option --nonsense"),
                              (("mv", "Other"), "no files given"), (("mv", "-0", "a", "Other"), "needs --files-from"),
                              (("sort", "--jobs", "0", "."), "--jobs"), (("export", "--format", "xml"), "xml not in")):
            self.assertIn(reason, self.run_command(*wrong, status=2)[1])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
