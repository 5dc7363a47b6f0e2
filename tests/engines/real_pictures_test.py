"""Decisions on real pictures: real_pictures_test.py COMMAND FOLDER. `scripts/pictures FOLDER` collects the pictures."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from PIL import Image, ImageOps

COMMAND, PICTURES = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()

PEOPLE, OTHER_PHOTOGRAPH, PAGE, OTHER_DOCUMENT = 1010000, 1090000, 2030000, 2090000

EXPECTED = {
    "photographs/astronaut.png": PEOPLE,
    "photographs/brick.png": OTHER_PHOTOGRAPH,
    "photographs/chelsea.png": OTHER_PHOTOGRAPH,  # a cat's face
    "photographs/coffee.png": OTHER_PHOTOGRAPH,
    "photographs/grass.png": OTHER_PHOTOGRAPH,
    "photographs/moon.png": OTHER_PHOTOGRAPH,
    "photographs/motorcycle_left.png": OTHER_PHOTOGRAPH,
    "photographs/rocket.jpg": OTHER_PHOTOGRAPH,
    "scans/page-05.png": PAGE,
    "scans/page-12.png": PAGE,
    "scans/page.png": OTHER_DOCUMENT,
    "scans/text.png": OTHER_DOCUMENT,
}


def variants(astronaut):
    """The same face smaller, larger, mirrored, tilted, darker, and in a corner of a large picture."""
    face = astronaut.crop((140, 0, 320, 220))
    corner = Image.new("RGB", (1600, 1200), (90, 100, 80))
    corner.paste(face.resize((108, 132)), (1480, 1060))
    return {
        "half": astronaut.resize((256, 256)),
        "close": face.resize((720, 880)),
        "mirrored": ImageOps.mirror(astronaut),
        "tilted": astronaut.rotate(12, fillcolor=(128, 128, 128)),
        "dark": astronaut.point(lambda tone: tone // 3),
        "corner": corner,
    }


class RealPictures(unittest.TestCase):
    def decisions(self, files):
        output = subprocess.run([COMMAND, "classify", "--json", *files], check=True, capture_output=True, text=True)
        lines = (json.loads(line) for line in output.stdout.splitlines())
        return {line["file"]: line["preset"] for line in lines}

    def test_are_classified_as_a_person_would(self):
        files = {str(PICTURES / name): preset for name, preset in EXPECTED.items()}
        self.assertEqual(self.decisions(files), files)

    def test_a_face_is_found_in_every_size_and_pose(self):
        with tempfile.TemporaryDirectory() as folder:
            files = {}
            for name, picture in variants(Image.open(PICTURES / "photographs/astronaut.png").convert("RGB")).items():
                file = f"{folder}/{name}.png"
                picture.save(file)
                files[file] = PEOPLE
            self.assertEqual(self.decisions(files), files)


unittest.main(argv=sys.argv[:1])
