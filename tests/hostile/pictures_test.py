"""Pictures that are expensive to decode, and workers that die: pictures_test.py CATALOGCORE SANITIZED [unittest arguments]"""
import contextlib
import json
import os
import pathlib
import signal
import struct
import subprocess
import sys
import time
import unittest
import zlib

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "app"))
import pictures
from pictures import chunk

COMMAND, SANITIZED = sys.argv[1], sys.argv[2] not in ("", "0", "OFF")


def jpeg(side, scans):
    """A plain grey picture in a scan of its brightness and `scans` - 1 further ones, each legal and empty."""
    def segment(marker, data):
        return bytes([0xFF, marker]) + struct.pack(">H", len(data) + 2) + data

    def entropy(bits):
        return int(bits + "1" * (-len(bits) % 8), 2).to_bytes((len(bits) + 7) // 8, "big").replace(b"\xFF", b"\xFF\0")

    blocks = (side // 8) ** 2
    one_code = bytes([1] + [0] * 15)
    out = [b"\xFF\xD8", segment(0xDB, b"\0" + b"\x10" * 64), segment(0xC4, b"\0" + one_code + b"\0"),
           segment(0xC4, b"\x10" + one_code + b"\xE0"), segment(0xC2, struct.pack(">BHHB", 8, side, side, 1) + b"\1\x11\0"),
           segment(0xDA, b"\1\1\0\0\0\x0D"), bytes(-(-blocks // 8))]
    empty = entropy("011111111111111" * -(-blocks // 32767))
    steps = [(at, low) for low in range(13, -1, -1) for at in range(1, 64)]
    for at, low in steps[:scans - 1]:
        out += [segment(0xDA, bytes([1, 1, 0, at, at, (0 if low == 13 else low + 1) << 4 | low])), empty]
    return b"".join(out) + b"\xFF\xD9"


SLOW = jpeg(16000, 100)  # six seconds of a processor


def workers(process):
    """The processes that a process has started, from any of its threads."""
    children = pathlib.Path(f"/proc/{process.pid}/task").glob("*/children")
    return [int(child) for file in children for child in file.read_text().split()]


def processor_seconds(stat):
    fields = stat.read_text().rsplit(")", 1)[1].split()
    if fields[0] in "ZX":
        raise OSError("it has ended")
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


class PicturesTest(pictures.CommandCase):
    program = COMMAND

    def start(self, files, *arguments, command="classify"):
        command = self.command(command, *arguments, *self.write(files))
        return subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def finish(self, process, status):
        out, err = process.communicate()
        self.assertEqual(process.returncode, status, (out, err))
        return out, err

    def busy_worker(self, process, other_than=0):
        """A worker that is decoding SLOW, recognised by its memory."""
        for _ in range(6000):
            for worker in workers(process):
                with contextlib.suppress(OSError):
                    pages = int(pathlib.Path(f"/proc/{worker}/statm").read_text().split()[1])
                    if worker != other_than and pages * os.sysconf("SC_PAGESIZE") > 400 << 20:
                        return worker
            time.sleep(0.01)
        self.fail("no worker decodes")

    def test_headers_beyond_the_limits_are_refused_before_pixels_are_decoded(self):
        interlaced = (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 16384, 16384, 16, 6, 0, 0, 1)) +
                      chunk(b"IDAT", zlib.compress(b"")) + chunk(b"IEND", b""))
        floats = pictures.tiff(32768, 32768, 1, 32)
        files = {"the image has 5000 samples a pixel, at most 5 can be decoded": pictures.tiff(1, 1, 5000),
                 "the image is too large: 4096 MB to decode, at most 2048 MB can be": floats,
                 "the image is too large: 2048 MB to hold at once, at most 1024 MB can be": interlaced,
                 "the image has more than 100 passes": jpeg(64, 101)}
        out, err = self.finish(self.start({**files, "whole.jpg": jpeg(64, 100)}), 1)
        for reason in files:  # which also names its file
            self.assertIn(f"catalogcore: cannot read {self.pictures / reason}: {reason} (skipped)\n", err)
        self.assertEqual(err.count("\n"), 4)
        self.assertIn("whole.jpg: ", out)

    @unittest.skipIf(SANITIZED, "sanitizers map too much for a limit of memory")
    def test_memory_is_shared_and_lent_to_one_that_needs_all_of_it(self):
        files = {"large.jpg": jpeg(14400, 1)}  # 395 MB of coefficients
        self.finish(self.start(files, "--jobs", "4", "--memory", "1024"), 0)
        with self.start({}, "--memory", "256", self.pictures / "large.jpg") as process:
            self.assertIn("decoding needed more than 256 MB of memory (skipped)", process.stderr.read())
            _, status, usage = os.wait4(process.pid, 0)  # of the command and its workers
            process.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(process.returncode, 1)
        self.assertLess(usage.ru_maxrss, 350 << 10)

    def test_a_picture_that_takes_too_long_is_skipped_and_the_next_one_is_not(self):
        out, err = self.finish(self.start({"a.jpg": SLOW, "b.jpg": jpeg(64, 1)}, "--time-limit", "2", "--jobs", "1"), 1)
        self.assertIn("a.jpg: decoding took longer than 2 s (skipped)", err)
        self.assertIn("b.jpg: ", out)

    def test_a_worker_that_dies_twice_costs_its_picture_only(self):
        process = self.start({"a.jpg": SLOW, "b.jpg": jpeg(64, 1)}, "--jobs", "1", "--time-limit", "600")
        first = self.busy_worker(process)
        os.kill(first, signal.SIGSEGV)
        os.kill(self.busy_worker(process, first), signal.SIGSEGV)
        out, err = self.finish(process, 1)
        self.assertIn("a.jpg: the decoder crashed (" + ("status" if SANITIZED else "Segmentation fault"), err)
        self.assertIn("b.jpg: ", out)

    def test_workers_end_with_the_command_and_hold_none_of_its_files(self):
        process = self.start({"a.jpg": SLOW}, "--jobs", "1", "--time-limit", "600", command="sort")
        worker = self.busy_worker(process)
        for file in pathlib.Path(f"/proc/{worker}/fd").iterdir():
            self.assertNotIn(str(self.root / "catalog"), os.readlink(file))
        os.kill(worker, signal.SIGINT)
        os.kill(worker, signal.SIGTERM)
        stat = pathlib.Path(f"/proc/{worker}/stat")
        begin = processor_seconds(stat)
        while processor_seconds(stat) - begin < 0.2:
            time.sleep(0.01)
        process.kill()
        process.communicate()
        with contextlib.suppress(OSError):  # the worker has ended
            begin = processor_seconds(stat)
            while processor_seconds(stat) - begin < 2:  # SLOW takes six
                time.sleep(0.1)
            os.kill(worker, signal.SIGKILL)
            self.fail("the worker outlives the command")

    def test_a_jpeg_file_without_its_end_is_filed_with_a_warning(self):
        cut, = self.write({"cut.jpg": jpeg(64, 3)[:-4]})
        link = self.pictures / "link.jpg"
        link.symlink_to(cut)
        stub = {"stub.jpg": jpeg(64, 1)[:-6]}
        self.assertIn(f"{link} -> {cut}: the image is cut short:", self.finish(self.start(stub, link), 1)[1])
        out, err = self.finish(self.start(stub, "--json", link, command="sort"), 1)
        self.assertIn(f"catalogcore: {link} -> {cut}: the image is cut short: its end is missing\n", err)
        self.assertIn("stub.jpg: the image is cut short (skipped)", err)
        self.assertEqual([warning["file"] for warning in json.loads(out)["warnings"]], [str(cut)])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
