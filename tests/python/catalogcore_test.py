"""The Python package: catalogcore_test.py LIBRARY CF-LIBRARY [unittest arguments], with the environment
variable CATALOGCORE_LIBRARY and the package on Python's path."""
import concurrent.futures
import ctypes
import importlib.util
import os
import pathlib
import pickle
import re
import shutil
import subprocess
import sys
import sysconfig
import tempfile
import time
import unittest
from unittest import mock

import numpy

import catalogcore
from catalogcore import Catalogue, Kind, Preset, Status, _library, _pixels

PROJECT = pathlib.Path(__file__).parents[2]
sys.path.append(str(PROJECT / "tests" / "app"))
import pictures  # noqa: E402

LIBRARIES = sys.argv[1:3]
PAGE = numpy.array([[pictures.page_tone(x, y) for x in range(620)] for y in range(877)], numpy.uint8)
HILLS = numpy.array([[pictures.hills_tone(x, y) for x in range(300)] for y in range(200)], numpy.uint8)


class HeaderTest(unittest.TestCase):
    def test_constants_are_the_headers(self):
        header = (PROJECT / "include" / "catalogcore.h").read_text()
        of_header = {name: int(value) for name, value in re.findall(r"\b(IDX\w+) = (-?\d+)", header)}
        of_package = {"IDX_OK": Status.OK, "IDX_ROOT": catalogcore.ROOT}
        of_package.update({f"IDXERR_{status.name}": status for status in Status if status})
        of_package.update({f"IDXPRESET_{preset.name}": preset for preset in Preset})
        of_package.update({f"IDXATTR_{bit.name.replace('_', '')}": bit for bit in catalogcore.Protection})
        of_package.update({f"IDX{name}": value for name, value in vars(_library).items()
                           if name.startswith(("OP_", "MASK_", "STATE_"))})
        self.assertEqual(of_package, of_header)


class CatalogueTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp()).resolve()
        self.addCleanup(shutil.rmtree, self.folder)
        self.catalogue = Catalogue(self.folder)
        self.addCleanup(lambda: self.catalogue.close())
        self.beach, self.letter = self.folder / "Reise ä.jpg", self.folder / "sub" / "letter.png"
        self.letter.parent.mkdir()
        self.beach.touch(), self.letter.touch()

    def paths(self, *arguments):
        return [image.path for image in self.catalogue.images(*arguments)]

    def test_images_and_indexes_are_filed_found_and_walked(self):
        catalogue, beach, letter = self.catalogue, self.beach, self.letter
        holidays = catalogue.add_index("Ferien", Preset.PHOTO)
        self.assertEqual(catalogue.add_index("Ferien", Preset.PHOTO, exist_ok=True), holidays)
        catalogue.add(beach, holidays, 128 | catalogcore.Protection.NO_MOVE)
        catalogue.move(str(letter), Preset.OTHER)  # adds the image
        self.assertEqual(catalogue.image(beach), catalogcore.Image(str(beach), holidays, 129))
        self.assertEqual((self.paths(holidays), self.paths(-1, letter.parent)), ([str(beach)], [str(letter)]))
        catalogue.move(beach, Preset.PHOTO_FACES, force=True)
        catalogue.set_attribute(beach, 0)
        self.assertEqual(list(catalogue.images(Preset.PHOTO)), [catalogcore.Image(str(beach), Preset.PHOTO_FACES, 0)])
        catalogue.remove(letter)
        self.assertEqual([path in catalogue for path in (beach, letter, "", "/\udcff")], [True] + [False] * 3)
        self.assertEqual(len(catalogue), 1)
        catalogue.name_presets({Preset.PHOTO: "Fotos"})
        catalogue.rename_index(holidays, "Sommer")
        catalogue.set_index_attribute(holidays, 2)
        self.assertEqual(sorted(index.name for index in catalogue.indexes(Preset.PHOTO))[:2], ["Fotos", "Sommer"])
        self.assertEqual(catalogue.index(holidays), catalogcore.Index(holidays, "Sommer", 2))
        catalogue.remove_index(holidays, force=True)
        self.assertEqual(len(list(catalogue.indexes())), len(Preset))

    def test_failures_say_what_and_what_to_do(self):
        catalogue, beach = self.catalogue, self.beach
        catalogue.add(beach, Preset.OTHER)
        (self.folder / catalogcore.INDEX_FILE).write_text("none")
        cases = [
            (lambda: catalogue.add(beach, 1000000), catalogcore.ExistsError, Status.IMAGEEXISTS, f"add {beach}: .*; "),
            (lambda: catalogue.indexes(5), ValueError, Status.PARAM, "cannot walk"),  # before the first step
            (lambda: catalogue.move(beach, -1), catalogcore.InvalidError, Status.PARAM, "root"),
            (lambda: catalogue.add("/a", 2**32 + 1000000), catalogcore.InvalidError, Status.PARAM, "out of range"),
            (lambda: catalogue.add("/a\0b", 1000000), catalogcore.InvalidError, Status.PARAM, "zero byte"),
            (lambda: catalogue.add("/\udcff", 1000000), catalogcore.InvalidError, Status.FAILED, "not valid UTF-8"),
            (catalogue.load_images, catalogcore.NoDataError, Status.NODATA, "images.plist: .*missing_ok"),
            (catalogue.load, catalogcore.FileError, Status.FAILED, "index.plist: .*not a catalogue file"),
            (Catalogue, catalogcore.ClosedError, Status.FAILED, "one already")]
        for number, (call, kind, status, words) in enumerate(cases):
            with self.subTest(number), self.assertRaisesRegex(kind, words) as raised:
                call()
            again = pickle.loads(pickle.dumps(raised.exception))  # as from another process
            self.assertEqual((str(again), again.status), (str(raised.exception), status))
        self.assertRaisesRegex(TypeError, "type bytes; pass a str .*fsdecode", catalogue.add, b"/a/b", 1000000)
        self.assertRaisesRegex(TypeError, "'Ferien' is of type str; pass its number", catalogue.remove_index, "Ferien")
        _library.library.IDXUninitialize()  # by another part of the process
        self.assertRaisesRegex(catalogcore.ClosedError, "another part of this process closed", catalogue.images)

    def test_files_bring_the_catalogue_back(self):
        with self.catalogue as catalogue:
            catalogue.load(missing_ok=True)
            catalogue.add(self.beach, catalogue.add_index("Ferien"))
            catalogue.add(self.letter, Preset.OTHER, 5)
            catalogue.save()
            before = list(catalogue.images()), list(catalogue.indexes())
        self.assertEqual(repr(self.catalogue), f"<Catalogue in {str(self.folder)!r}, closed>")
        self.assertRaises(catalogcore.ClosedError, self.catalogue.images)
        with Catalogue() as catalogue:
            catalogue.load_indexes(self.folder / catalogcore.INDEX_FILE)
            catalogue.load_images(self.folder / catalogcore.IMAGE_FILE)
            self.assertEqual((list(catalogue.images()), list(catalogue.indexes())), before)

    def test_walks_close_their_handles(self):
        opened, closed = [], []
        first, close = _library.library.IDXFindFirstImage, _library.library.IDXCloseFind
        self.catalogue.add("/a/1", Preset.OTHER)
        with mock.patch.multiple(_library.library,
                                 IDXFindFirstImage=lambda *arguments: opened.append(first(*arguments)) or opened[-1],
                                 IDXCloseFind=lambda find: closed.append(find) or close(find)):
            for image in self.catalogue.images():
                self.catalogue.remove(image.path)  # a walk stays open across changes
            self.catalogue.add("/a/0", Preset.OTHER)
            left = self.catalogue.images()
            self.catalogue.close()
            self.catalogue = Catalogue()
            self.catalogue.add("/b/other", Preset.OTHER)
            self.assertEqual(len(list(left)), 1)  # the entry that was read before the catalogue was closed
            self.assertEqual(sorted(filter(None, opened)), sorted(filter(None, closed)))
            self.assertEqual(len(opened), 2)

    def test_pixels_are_read_where_they_lie_if_they_can_be(self):
        colour = numpy.arange(60 * 70 * 3, dtype=numpy.uint32).astype(numpy.uint8).reshape(60, 70, 3)
        deep = numpy.arange(60 * 70, dtype=numpy.uint16).reshape(60, 70) * 13
        cases = [  # the pixels, whether they are read where they lie, the bits of a pixel
            (colour[..., 0].copy()[..., None], True, 8), (numpy.dstack([deep] * 3), True, 48),
            (colour[:, :50][:59], True, 24), (deep[7:8, 9:30], True, 16), (colour[:, 20:], False, 24),
            (memoryview(colour.tobytes()).cast("B", colour.shape), True, 24), (colour[::-1], False, 24),
            (colour[:, ::-1], False, 24), (colour[..., ::-1], False, 24), (deep.T, False, 16),
            (numpy.broadcast_to(deep[0], (60, 70)), False, 16)]
        for number, (pixels, in_place, bits) in enumerate(cases):
            with self.subTest(number):
                picture, array = _library.Picture(), numpy.asarray(pixels)
                kept = _pixels.describe(pixels, picture)
                self.assertEqual(picture.pixels == array.ctypes.data, in_place)
                self.assertEqual((picture.height, picture.width, picture.bitsPerPixel), (*array.shape[:2], bits))
                read = ctypes.string_at(picture.pixels, picture.rowBytes * picture.height)
                rows = numpy.frombuffer(read, numpy.uint8).reshape(picture.height, picture.rowBytes)
                self.assertEqual(rows[:, :picture.width * bits // 8].tobytes(), array.tobytes())
                del kept
        for pixels in b"bytes", colour[..., :2], colour[:0], deep.astype(">u2"), colour.view(numpy.int8):
            self.assertRaises(catalogcore.InvalidError, self.catalogue.classify, pixels)

    def test_pictures_are_classified(self):
        self.assertTrue(self.catalogue.recognizes)
        for pixels, options, preset in [
                (PAGE, {"dpi": 75}, Preset.DOCUMENT_PAGE), (HILLS.astype(numpy.uint16) * 257, {}, Preset.PHOTO_OTHER),
                (HILLS, {"kind": Kind.DECLARED_DOCUMENT}, Preset.DOCUMENT_FIXED), (PAGE, {"kind": Kind.PHOTO}, 1090000)]:
            self.assertEqual(self.catalogue.classify(pixels, **options), preset, options)

    def test_threads_work_until_another_closes_the_catalogue(self):
        filed = [0] * 4

        def work(thread):
            while True:
                self.catalogue.add(f"/{thread}/{filed[thread]}", Preset.OTHER)
                next(self.catalogue.images(folder=f"/{thread}"))
                filed[thread] += 1
                if thread == 0:
                    self.catalogue.classify(HILLS)

        with concurrent.futures.ThreadPoolExecutor(len(filed)) as pool:
            workers = [pool.submit(work, thread) for thread in range(len(filed))]
            while min(filed) < 5 and not any(worker.done() for worker in workers):
                time.sleep(0.01)
            self.catalogue.close()
        self.assertEqual({type(worker.exception()) for worker in workers}, {catalogcore.ClosedError})


class InstallationTest(unittest.TestCase):
    def setUp(self):
        self.prefix = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.prefix)
        self.packages = self.prefix / "lib/python3/dist-packages"

    def python(self, *arguments, **environment):
        variables = {name: value for name, value in os.environ.items() if name != "CATALOGCORE_LIBRARY"}
        variables.update({"PYTHONPATH": str(self.packages), **environment})
        return subprocess.run([sys.executable, *arguments], env=variables, capture_output=True, text=True)

    def test_the_library_is_found_in_the_prefix_of_the_package(self):
        shutil.copytree(PROJECT / "python/catalogcore", self.packages / "catalogcore")
        code = "import catalogcore; walk = catalogcore.Catalogue().indexes(); print(next(walk).number)"
        for folder in self.prefix / "lib" / sysconfig.get_config_var("MULTIARCH"), self.prefix / "lib":
            folder.mkdir(exist_ok=True)
            for library, name in zip(LIBRARIES, ("libcatalogcore.so.1", "libcatalogcore-cf.so.1")):
                shutil.copy(library, folder / name)
            done = self.python("-c", code, LD_LIBRARY_PATH=str(folder))
            self.assertEqual((done.stdout, done.stderr), ("1000000\n", ""))  # although the walk is still open
            (folder / "libcatalogcore.so.1").unlink()
        done = self.python("-c", code, CATALOGCORE_LIBRARY="/nowhere")
        self.assertRegex(done.stderr, "ImportError: cannot load .*/nowhere.*CATALOGCORE_LIBRARY")

    @unittest.skipUnless(importlib.util.find_spec("PIL"), "python3-pil is not installed")
    def test_the_example_sorts_a_folder(self):
        (self.prefix / "page.png").write_bytes(pictures.page())
        (self.prefix / "none.png").write_text("no picture")
        environment = {name: os.environ[name] for name in ("CATALOGCORE_LIBRARY", "PYTHONPATH")}
        for printed in "^2030000 .*/page.png\n$", "^$":  # in the second run all images are filed already
            done = self.python(PROJECT / "examples/sort_folder.py", self.prefix, self.prefix, **environment)
            self.assertRegex(done.stdout, printed, done.stderr)
            self.assertRegex(done.stderr, r"^sort_folder: cannot read .*/none.png: .*\(skipped\)\n$")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
