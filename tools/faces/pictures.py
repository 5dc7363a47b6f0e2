"""The labelled pictures that the face networks learn from, and how they are divided.

A picture's share follows from its name alone, so that it never changes: a fifth is kept apart to measure on, a tenth is
for choosing thresholds and recipes, the rest is for training.
"""

import csv
import dataclasses
import pathlib
import zlib

import cv2
import numpy

TRAINING, CHOICE, APART = "training", "choice", "apart"
LABELLED_SOURCES = ("flickr", "inet", "wider", "pets")


def share_of(name):
    """The share that the picture `name` belongs to."""
    bucket = zlib.crc32(name.encode()) % 10
    return APART if bucket < 2 else CHOICE if bucket == 2 else TRAINING


@dataclasses.dataclass(frozen=True)
class Face:
    """A face in a picture, in pixels. `points` are eyes, nose tip and corners of the mouth (5 x 2), or None."""

    x: float
    y: float
    width: float
    height: float
    clear: bool
    points: numpy.ndarray | None

    @property
    def centre(self):
        return numpy.array([self.x + self.width / 2, self.y + self.height / 2])

    @property
    def size(self):
        """The side of the square of the same area."""
        return float(numpy.sqrt(self.width * self.height))


class Picture:
    """A grey picture with its faces. `levels[k]` is the picture halved k times."""

    def __init__(self, name, grey, faces):
        self.name, self.faces, self.levels = name, faces, [grey]
        while min(self.levels[-1].shape) >= 48:
            height, width = self.levels[-1].shape
            even = self.levels[-1][: height // 2 * 2, : width // 2 * 2]
            self.levels.append(cv2.resize(even, None, fx=0.5, fy=0.5, interpolation=cv2.INTER_AREA))

    def warp(self, matrix, size):
        """`size` x `size` pixels seen through `matrix` (2 x 3, picture to patch), without aliasing."""
        scale = float(numpy.sqrt(abs(numpy.linalg.det(matrix[:, :2]))))
        level = int(numpy.clip(numpy.floor(-numpy.log2(max(scale, 1e-6))), 0, len(self.levels) - 1))
        step = 2.0**level
        # The centre of pixel i of the level lies at (i + 0.5) * step - 0.5 of the picture.
        shift = matrix[:, :2] @ numpy.full(2, step / 2 - 0.5)
        levelled = numpy.hstack([matrix[:, :2] * step, (matrix[:, 2] + shift)[:, None]])
        return cv2.warpAffine(self.levels[level], levelled, (size, size), flags=cv2.INTER_LINEAR,
                              borderMode=cv2.BORDER_CONSTANT, borderValue=128)


def read_grey(path):
    """The grey values that the detector sees: the same whichever way round the samples of a pixel are."""
    first, second, third = (cv2.imread(str(path))[:, :, sample].astype(numpy.uint16) for sample in range(3))
    return ((first + 2 * second + third + 2) // 4).astype(numpy.uint8)


def _points(row):
    names = ("eye1", "eye2", "nose", "mouth1", "mouth2")
    if not row.get("eye1x"):
        return None
    return numpy.array([[float(row[f"{name}x"]), float(row[f"{name}y"])] for name in names])


def _face(row, clear):
    return Face(*(float(row[key]) for key in ("x", "y", "width", "height")), clear, _points(row))


def read_photographs(folder, share):
    """The photographs of `share` whose faces are labelled."""
    folder = pathlib.Path(folder)
    faces = {}
    with open(folder / "face_boxes.csv", newline="") as rows:
        for row in csv.DictReader(rows):
            faces.setdefault(row["file"], []).append(_face(row, row["kind"] == "face"))
    names = sorted(path.name for path in (folder / "photos").iterdir())
    return [Picture(name, read_grey(folder / "photos" / name), faces.get(name, []))
            for name in names if name.split("_")[0] in LABELLED_SOURCES and share_of(name) == share]


def read_documents(folder, share):
    """Document pages of `share`: pictures without a face."""
    folder = pathlib.Path(folder) / "documents"
    return [Picture(path.name, cv2.imread(str(path), cv2.IMREAD_GRAYSCALE), [])
            for path in sorted(folder.iterdir()) if share_of(path.name) == share]


def read_close_ups(folder):
    """Grey close-ups of one face each, all of them for training."""
    folder = pathlib.Path(folder)
    with open(folder / "crops.csv", newline="") as rows:
        return [Picture(row["file"], cv2.imread(str(folder / "crops" / row["file"]), cv2.IMREAD_GRAYSCALE),
                        [_face(row, True)]) for row in csv.DictReader(rows)]
