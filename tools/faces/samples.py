"""Training samples: patches of photographs with faces turned, scaled, pasted and spoilt in many ways.

Everything random comes from the generator that is passed in, so that a training that is resumed sees the same samples.
"""

import cv2
import numpy

from . import networks

PATCH = 96  # pixels a side of a sample of the search network
CELLS = PATCH // networks.STRIDE


def turn(angle, scale, source, target):
    """The matrix that turns by `angle` degrees and scales, and takes the point `source` to `target`."""
    radians = numpy.deg2rad(angle)
    cosine, sine = scale * numpy.cos(radians), scale * numpy.sin(radians)
    linear = numpy.array([[cosine, -sine], [sine, cosine]])
    return numpy.hstack([linear, (numpy.asarray(target) - linear @ numpy.asarray(source))[:, None]])


def _ellipse(height, width, box, grow):
    """Weights of 1 within the ellipse of `box`, soft towards 0 outside."""
    x, y, w, h = box
    rows, columns = numpy.mgrid[:height, :width]
    radius = numpy.hypot((columns + 0.5 - x - w / 2) / (w / 2 * grow), (rows + 0.5 - y - h / 2) / (h / 2 * grow))
    return numpy.clip((1 - radius) / 0.15 + 0.5, 0, 1).astype(numpy.float32)


def _similar(source, target):
    """The turned and scaled mapping that takes the points `source` nearest to `target`."""
    matrix, _ = cv2.estimateAffinePartial2D(source.astype(numpy.float32), target.astype(numpy.float32), method=cv2.LMEDS)
    return matrix


def exchange(patch, matrix, face, other, generator):
    """Puts the face of the close-up `other` in the place of `face`, which `matrix` takes into `patch`."""
    target = face.points @ matrix[:, :2].T + matrix[:, 2]
    there = _similar(other.faces[0].points, target)
    if there is None or not numpy.isfinite(there).all():
        return patch
    return _blend(patch, other, there, 0.95, generator)


def _blend(patch, other, there, grow, generator):
    size, box = len(patch), other.faces[0]
    weights = _ellipse(*other.levels[0].shape, (box.x, box.y, box.width, box.height), grow)
    weights[[0, -1], :] = weights[:, [0, -1]] = 0
    mask = cv2.warpAffine(weights, there, (size, size), flags=cv2.INTER_LINEAR)
    pasted = other.warp(there, size).astype(numpy.float32)
    total = mask.sum()
    if total > 20 and generator.random() < 0.8:  # the light of the place
        old, new = (mask * patch).sum() / total, (mask * pasted).sum() / total
        pasted += (old - new) * generator.uniform(0.5, 1.0)
    return numpy.clip(patch + (pasted - patch) * mask, 0, 255).astype(numpy.uint8)


def spoil(patch, generator):
    """Light, contrast, blur, grain and compression as bad pictures have them."""
    size = len(patch)
    if generator.random() < 0.12:
        side = int(size * generator.uniform(0.35, 0.8))
        patch = cv2.resize(cv2.resize(patch, (side, side), interpolation=cv2.INTER_AREA), (size, size),
                           interpolation=cv2.INTER_LINEAR)
    if generator.random() < 0.15:
        quality = int(generator.integers(15, 80))
        patch = cv2.imdecode(cv2.imencode(".jpg", patch, [cv2.IMWRITE_JPEG_QUALITY, quality])[1], cv2.IMREAD_GRAYSCALE)
    patch = patch.astype(numpy.float32)
    if generator.random() < 0.3:
        patch = 255 * (patch / 255) ** numpy.exp(generator.uniform(-0.7, 0.7))
    if generator.random() < 0.5:
        patch = (patch - 128) * generator.uniform(0.4, 1.4) + 128 + generator.uniform(-50, 50)
    if generator.random() < 0.2:
        patch = cv2.GaussianBlur(patch, (0, 0), generator.uniform(0.4, 1.2))
    if generator.random() < 0.25:
        patch = patch + generator.normal(0, generator.uniform(1, 10), patch.shape)
    return numpy.clip(patch, 0, 255)


class Sampler:
    """Draws samples from photographs and close-ups."""

    def __init__(self, photographs, close_ups, documents):
        self.close_ups = close_ups
        self.empty = [picture for picture in photographs if not picture.faces]
        self.animals = [picture for picture in self.empty if picture.name.startswith("pets")]
        self.documents = documents
        self.faces = [(picture, face) for picture in photographs for face in picture.faces if face.clear]
        self.hard = []  # (picture, x, y, size, quarter): places that a network took for faces, worst first
        self.hardness = 1.0

    def background(self, generator, size):
        """A patch without a face, and nothing to mark on it."""
        kind = generator.random()
        if self.hard and kind < 0.5:
            picture, x, y, face, _ = self.hard[generator.integers(len(self.hard))]
            scale = self.face_size(generator) / face
            target = size / 2 + generator.uniform(-0.3, 0.3, 2) * size
            matrix = turn(self.angle(generator), scale, (x, y), target)
        else:
            some = self.documents if kind > 0.97 else self.animals if kind > 0.8 else self.empty
            picture = some[generator.integers(len(some))]
            height, width = picture.levels[0].shape
            side = min(height, width) * numpy.exp(generator.uniform(numpy.log(0.15), numpy.log(1.1)))
            centre = generator.uniform(0.15, 0.85, 2) * (width, height)
            matrix = turn(self.angle(generator), size / max(side, 24), centre, (size / 2, size / 2))
        return picture.warp(matrix, size)

    @staticmethod
    def angle(generator):
        return 90 * generator.integers(4) + generator.uniform(-25, 25)

    @staticmethod
    def face_size(generator):
        return numpy.exp(generator.uniform(numpy.log(networks.LEAST_SIZE), numpy.log(networks.MOST_SIZE)))

    def marked_faces(self, picture, matrix):
        """(centre, size, clear) of the faces of `picture` in a patch."""
        scale = numpy.sqrt(abs(numpy.linalg.det(matrix[:, :2])))
        return [(matrix[:, :2] @ (face.centre - 0.5) + matrix[:, 2], face.size * scale, face.clear)
                for face in picture.faces]

    def search_sample(self, generator):
        """A patch, the answers wanted from each cell (SEARCH_OUTPUTS - 3) and their weights."""
        kind = generator.random()
        faces, quarter = [], 0
        if kind < 0.45:
            patch = self.background(generator, PATCH)
            if generator.random() < 0.15:
                patch = self._paste_nothing(patch, generator)
        else:
            quarter = int(generator.integers(4))
            angle = 90 * quarter + generator.uniform(-25, 25)
            size, target = self.face_size(generator), generator.uniform(0.25, 0.75, 2) * PATCH
            if kind < 0.62:  # a close-up on any background
                close_up = self.close_ups[generator.integers(len(self.close_ups))]
                face = close_up.faces[0]
                patch = self.background(generator, PATCH)
                matrix = turn(angle, size / face.size, face.centre - 0.5, target)
                patch = _blend(patch, close_up, matrix, generator.uniform(0.95, 1.15), generator)
                faces = [(target, size, True)]
            else:
                picture, face = self.faces[generator.integers(len(self.faces))]
                matrix = turn(angle, size / face.size, face.centre - 0.5, target)
                patch = picture.warp(matrix, PATCH)
                faces = self.marked_faces(picture, matrix)
                if kind < 0.84 and face.points is not None:
                    close_up = self.close_ups[generator.integers(len(self.close_ups))]
                    patch = exchange(patch, matrix, face, close_up, generator)
        answers, weights = self._answers(faces, quarter)
        if generator.random() < 0.5:
            patch, answers, weights = _mirror(patch, answers, weights)
        return spoil(patch, generator), answers, weights

    def check_sample(self, generator):
        """A patch of the check network, whether it shows a face, and the face's place and sides in it."""
        side, kind = networks.PATCH_SIDE, generator.random()
        if kind < 0.62:
            return spoil(self._refused(generator, kind), generator), 0.0, numpy.zeros(4)
        size = networks.PATCH_FACE * numpy.exp(generator.uniform(-0.3, 0.3))
        target = (side - 1) / 2 + generator.uniform(-0.2, 0.2, 2) * size
        angle = generator.uniform(-30, 30)
        if kind < 0.7:
            close_up = self.close_ups[generator.integers(len(self.close_ups))]
            face = close_up.faces[0]
            matrix = turn(angle, size / face.size, face.centre - 0.5, target)
            patch = _blend(self.background(generator, side), close_up, matrix, generator.uniform(0.95, 1.2), generator)
        else:
            picture, face = self.faces[generator.integers(len(self.faces))]
            matrix = turn(angle, size / face.size, face.centre - 0.5, target)
            patch = picture.warp(matrix, side)
            if kind < 0.85 and face.points is not None:
                close_up = self.close_ups[generator.integers(len(self.close_ups))]
                patch = exchange(patch, matrix, face, close_up, generator)
        ratio = 0.5 * numpy.log(face.height / face.width)
        larger = numpy.log(size / networks.PATCH_FACE)
        place = numpy.array([*((target - (side - 1) / 2) / networks.PATCH_FACE), larger - ratio, larger + ratio])
        if generator.random() < 0.5:
            patch, place[0] = patch[:, ::-1], -place[0]
        return spoil(patch, generator), 1.0, place

    def _refused(self, generator, kind):
        """A patch around something else than a face, upright as a proposal would be, or not."""
        side = networks.PATCH_SIDE
        if kind < 0.05:  # part of a face, or one much smaller or larger
            picture, face = self.faces[generator.integers(len(self.faces))]
            size = networks.PATCH_FACE
            if generator.random() < 0.5:
                size *= numpy.exp(generator.choice([-1, 1]) * generator.uniform(0.8, 1.4))
                target = numpy.full(2, (side - 1) / 2)
            else:
                away = generator.uniform(0, 2 * numpy.pi)
                target = (side - 1) / 2 + generator.uniform(0.6, 1.0) * size * numpy.array([numpy.cos(away), numpy.sin(away)])
            return picture.warp(turn(generator.uniform(-30, 30), size / face.size, face.centre - 0.5, target), side)
        if kind < 0.12 or not self.hard:
            hard, self.hard = self.hard, []
            patch = self.background(generator, side)
            self.hard = hard
            return patch
        picture, x, y, face, quarter = self.hard[int(len(self.hard) * generator.random() ** self.hardness)]
        angle = -90 * quarter + generator.uniform(-20, 20) + 90 * (generator.integers(4) if generator.random() < 0.3 else 0)
        target = (side - 1) / 2 + generator.uniform(-0.2, 0.2, 2) * networks.PATCH_FACE
        scale = networks.PATCH_FACE / face * numpy.exp(generator.uniform(-0.3, 0.3))
        patch = picture.warp(turn(angle, scale, (x, y), target), side)
        return patch[:, ::-1] if generator.random() < 0.5 else patch

    def _paste_nothing(self, patch, generator):
        """An ellipse of something else, so that the seam of a pasted face says nothing."""
        other = self.background(generator, PATCH)
        side = int(self.face_size(generator))
        x, y = generator.integers(0, PATCH - side, 2)
        mask = _ellipse(PATCH, PATCH, (x, y, side, side * 1.2), 1.0)
        return (patch + (other.astype(numpy.float32) - patch) * mask).astype(numpy.uint8)

    @staticmethod
    def _answers(faces, quarter):
        """Rows of answers: face, dx, dy, log size, orientation. Weights: of the face answer, of the others."""
        answers = numpy.zeros((5, CELLS, CELLS), numpy.float32)
        weights = numpy.zeros((2, CELLS, CELLS), numpy.float32)
        weights[0] = 1
        rows, columns = numpy.mgrid[:CELLS, :CELLS] * networks.STRIDE
        for (x, y), size, clear in faces:
            distance = numpy.hypot(columns - x, rows - y)
            weights[0][distance < max(9.0, 0.6 * size)] = 0
        for (x, y), size, clear in faces:
            if not clear or not networks.LEAST_SIZE * 0.93 <= size <= networks.MOST_SIZE * 1.07:
                continue
            near = numpy.hypot(columns - x, rows - y) <= max(5.7, 0.2 * size)
            values = [1.0, (x - columns) / networks.STRIDE, (y - rows) / networks.STRIDE,
                      numpy.log(size / networks.MIDDLE_SIZE), quarter]
            for answer, value in zip(answers, values):
                answer[near] = value[near] if isinstance(value, numpy.ndarray) else value
            weights[:, near] = 1
        return answers, weights


def _mirror(patch, answers, weights):
    """Mirrored about the middle of cell columns: cell i lies on pixel 8 i, so the patch moves by one column of cells."""
    flipped = cv2.warpAffine(patch, numpy.array([[-1.0, 0, PATCH - networks.STRIDE], [0, 1, 0]]), (PATCH, PATCH),
                             borderMode=cv2.BORDER_REFLECT_101)
    answers, weights = answers[:, :, ::-1].copy(), weights[:, :, ::-1].copy()
    answers[1] *= -1
    answers[4] = numpy.where(answers[4] % 2 == 1, 4 - answers[4], answers[4])
    return flipped, answers, weights
