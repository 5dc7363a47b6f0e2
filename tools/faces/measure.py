"""Measures the built-in face detector: `python3 -m tools.faces.measure FIND_FACES PICTURES [--share choice]`.

FIND_FACES is the tool of that name. A picture counts as found if any face is found in it. Only clear faces count whose
height is at least 1/20 of the picture's longer side; pictures with smaller or unclear faces alone count for neither side.
"""

import argparse
import collections
import csv
import pathlib
import subprocess

import numpy

from . import pictures

LEAST_SHARE = 1 / 20  # of a face that counts, of the longer side
SAME = 0.5  # intersection over union from which on two rectangles show one face


def find(tool, files, turns, least):
    """The faces (score, left, top, width, height) in each file."""
    command = [str(tool), "--turn", str(turns), "--least", str(least), *map(str, files)]
    found = {str(file): [] for file in files}
    for line in subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines():
        file, *values = line.split("\t")
        if values:
            found[file].append([float(value) for value in values])
    return [found[str(file)] for file in files]


def best(faces):
    return max((face[0] for face in faces), default=-numpy.inf)


def overlap(a, b):
    across = min(a[0] + a[2], b[0] + b[2]) - max(a[0], b[0])
    down = min(a[1] + a[3], b[1] + b[3]) - max(a[1], b[1])
    shared = max(0, across) * max(0, down)
    return shared / (a[2] * a[3] + b[2] * b[3] - shared)


def is_large(face, longer_side):
    return face.clear and face.height >= LEAST_SHARE * longer_side


def print_shares(title, with_faces, without, threshold, names):
    hits, false = (numpy.array(scores) >= threshold for scores in (with_faces, without))
    print(f"{title}: found in {hits.sum()} of {len(hits)} ({hits.mean():.3f}), "
          f"in {false.sum()} of {len(false)} without ({false.mean():.4f})")
    print("  taken for faces:", *(name for name, isFalse in zip(names, false) if isFalse))
    order = numpy.sort(without)[::-1]
    for share in (0.005, 0.01, 0.02):
        limit = order[int(share * len(order))]
        print(f"  at {share:.3f} false: {(numpy.array(with_faces) > limit).mean():.3f} found, threshold {limit:.2f}")


def print_boxes(photographs, found, threshold):
    """Recall by the size of the face; precision over all boxes, unclear faces aside."""
    sizes, right, wrong = collections.defaultdict(lambda: [0, 0]), 0, 0
    for picture, faces in zip(photographs, found):
        faces = [face[1:] for face in faces if face[0] >= threshold]
        longer = max(picture.levels[0].shape)
        for face in picture.faces:
            box = (face.x, face.y, face.width, face.height)
            matches = [index for index, other in enumerate(faces) if overlap(box, other) >= SAME]
            if face.clear:
                sizes[min(4, int(numpy.log2(max(face.height / longer * 40, 1))))][0] += 1
                sizes[min(4, int(numpy.log2(max(face.height / longer * 40, 1))))][1] += bool(matches)
        for other in faces:
            overlaps = [(overlap((face.x, face.y, face.width, face.height), other), face.clear) for face in picture.faces]
            value, clear = max(overlaps, default=(0, True))
            right += value >= SAME and clear
            wrong += value < 0.3
    for size, (count, hits) in sorted(sizes.items()):
        print(f"  faces from 1/{40 / 2**size:g} of the longer side: {hits} of {count}")
    print(f"  precision: {right} of {right + wrong}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("tool", type=pathlib.Path)
    parser.add_argument("pictures", type=pathlib.Path)
    parser.add_argument("--share", default=pictures.APART, choices=[pictures.TRAINING, pictures.CHOICE, pictures.APART])
    parser.add_argument("--threshold", type=float, default=0.0)
    parser.add_argument("--turns", type=int, nargs="*", default=[0])
    options = parser.parse_args()
    photographs = pictures.read_photographs(options.pictures, options.share)
    files = [options.pictures / "photos" / picture.name for picture in photographs]
    kinds = ["with" if any(is_large(face, max(picture.levels[0].shape)) for face in picture.faces)
             else "without" if not picture.faces else "" for picture in photographs]
    for turn in options.turns:
        found = find(options.tool, files, turn, -3)
        scores = {kind: [best(faces) for faces, k in zip(found, kinds) if k == kind] for kind in ("with", "without")}
        names = [picture.name for picture, kind in zip(photographs, kinds) if kind == "without"]
        print_shares(f"{options.share}, turned by {90 * turn}", scores["with"], scores["without"], options.threshold, names)
        if turn == 0:
            print_boxes(photographs, found, options.threshold)
    with open(options.pictures / "faces.csv", newline="") as rows:
        labels = [(row["file"], row["face"] == "1") for row in csv.DictReader(rows)]
    found = find(options.tool, [options.pictures / "photos" / name for name, _ in labels], 0, -3)
    scores = [[best(faces) for faces, (_, face) in zip(found, labels) if face == kind] for kind in (True, False)]
    print_shares("faces.csv", *scores, options.threshold, [name for name, face in labels if not face])


if __name__ == "__main__":
    main()
