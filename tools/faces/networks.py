"""The two networks of the face detector, and how a picture passes through them.

The search network looks at every place of a pyramid of halved pictures and proposes faces of any of four orientations.
The check network looks at one proposal at a time, turned upright, and decides.
"""

import cv2
import numpy
import torch

PICTURE_SIDE = 512  # pixels of the longer side of the copy that is searched
MOST_ENLARGEMENT = 3.0
STRIDE = 8  # pixels from one cell of the search network to the next
MIDDLE_SIZE = 26.0  # size of a face, in pixels of a level, that the search network calls 1
LEAST_SIZE, MOST_SIZE = 17.0, 40.0  # of a face in its level
MOST_PROPOSALS = 32  # of one picture that are checked
PATCH_SIDE = 48  # of the check network
PATCH_FACE = 26.0  # size of a proposed face in that patch
SEARCH_OUTPUTS = 8  # face, dx, dy, log size, four orientations
CHECK_OUTPUTS = 5  # face, dx, dy, log width, log height


def _unit(inputs, outputs, stride):
    return [torch.nn.Conv2d(inputs, outputs, 3, stride, 1, bias=False), torch.nn.BatchNorm2d(outputs),
            torch.nn.ReLU(inplace=True)]


def search_network():
    layers = [(1, 16, 2), (16, 32, 2), (32, 32, 1), (32, 48, 2), (48, 48, 1), (48, 48, 1), (48, 48, 1)]
    units = [layer for shape in layers for layer in _unit(*shape)]
    network = torch.nn.Sequential(*units, torch.nn.Conv2d(48, SEARCH_OUTPUTS, 1))
    network[-1].bias.data[0] = -4.0
    return network


def check_network():
    layers = [(1, 16, 2), (16, 32, 2), (32, 32, 1), (32, 48, 2), (48, 48, 1), (48, 64, 2)]
    units = [layer for shape in layers for layer in _unit(*shape)]
    return torch.nn.Sequential(*units, torch.nn.Conv2d(64, 48, 3, bias=False), torch.nn.BatchNorm2d(48),
                               torch.nn.ReLU(inplace=True), torch.nn.Conv2d(48, CHECK_OUTPUTS, 1))


def as_input(grey):
    """Grey values 0 to 255 as the networks take them."""
    return (torch.from_numpy(numpy.ascontiguousarray(grey, dtype=numpy.float32)) - 128) / 64


def pyramid(grey):
    """The copy of `grey` that is searched, then halves of it; and the scale of the copy."""
    scale = min(MOST_ENLARGEMENT, PICTURE_SIDE / max(grey.shape))
    height, width = (max(1, round(side * scale)) for side in grey.shape)
    kind = cv2.INTER_AREA if scale < 1 else cv2.INTER_LINEAR
    levels = [cv2.resize(grey, (width, height), interpolation=kind)]
    while min(levels[-1].shape) >= 40:
        height, width = (side // 2 * 2 for side in levels[-1].shape)
        levels.append(cv2.resize(levels[-1][:height, :width], None, fx=0.5, fy=0.5, interpolation=cv2.INTER_AREA))
    return levels, scale


def search(network, levels):
    """All cells of all levels: (score, x, y, size, orientation logits x 4), in pixels of levels[0]."""
    found = []
    for index, level in enumerate(levels):
        with torch.no_grad():
            out = network(as_input(level)[None, None])[0].numpy()
        rows, columns = out.shape[1:]
        step = 2.0**index
        y, x = numpy.mgrid[:rows, :columns] * float(STRIDE)
        size = MIDDLE_SIZE * numpy.exp(numpy.clip(out[3], -1.5, 1.5))
        # Cell (0, 0) is centred on pixel (0, 0), where its kernels are centred.
        cells = [out[0], (x + out[1] * STRIDE + 0.5) * step, (y + out[2] * STRIDE + 0.5) * step, size * step, *out[4:8]]
        found.append(numpy.stack([cell.ravel() for cell in cells], 1))
    return numpy.concatenate(found)


def proposals(cells, most, overlap=0.3):
    """The `most` best cells of which no two overlap by more than `overlap` (of their union)."""
    kept = []
    for cell in cells[numpy.argsort(-cells[:, 0], kind="stable")][: 40 * most]:
        if all(_overlap(cell, other) <= overlap for other in kept):
            kept.append(cell)
            if len(kept) == most:
                break
    return numpy.array(kept)


def _overlap(a, b):
    sides = [min(a[i] + a[3] / 2, b[i] + b[3] / 2) - max(a[i] - a[3] / 2, b[i] - b[3] / 2) for i in (1, 2)]
    shared = max(0.0, sides[0]) * max(0.0, sides[1])
    return shared / (a[3] ** 2 + b[3] ** 2 - shared)


def quarter_of(cell):
    """How many quarter turns clockwise a proposal lies."""
    return int(numpy.argmax(cell[4:8]))


def upright(levels, cell, quarter):
    """The patch that the check network sees of a proposal."""
    x, y, size = cell[1:4]
    scale = PATCH_FACE / size
    index = int(numpy.clip(numpy.floor(-numpy.log2(scale)), 0, len(levels) - 1))
    step = 2.0**index
    cosine, sine = ((1, 0), (0, -1), (-1, 0), (0, 1))[quarter]
    linear = scale * step * numpy.array([[cosine, -sine], [sine, cosine]])
    centre = numpy.array([x, y]) / step - 0.5
    matrix = numpy.hstack([linear, (numpy.full(2, PATCH_SIDE / 2 - 0.5) - linear @ centre)[:, None]])
    return cv2.warpAffine(levels[index], matrix, (PATCH_SIDE, PATCH_SIDE), flags=cv2.INTER_LINEAR,
                          borderMode=cv2.BORDER_CONSTANT, borderValue=128)


def check(network, levels, cells):
    """(score, left, top, width, height) of each proposal, in pixels of levels[0]."""
    quarters = [quarter_of(cell) for cell in cells]
    patches = numpy.stack([upright(levels, cell, quarter) for cell, quarter in zip(cells, quarters)])
    with torch.no_grad():
        out, mirrored = (network(as_input(some)[:, None])[:, :, 0, 0].numpy() for some in (patches, patches[:, :, ::-1]))
    mirrored[:, 1] *= -1
    out = (out + mirrored) / 2
    found = []
    for answer, cell, quarter in zip(out, cells, quarters):
        x, y, size = cell[1:4]
        cosine, sine = ((1, 0), (0, -1), (-1, 0), (0, 1))[quarter]  # from upright to picture: the transpose
        dx, dy = answer[1] * cosine + answer[2] * sine, -answer[1] * sine + answer[2] * cosine
        width, height = size * numpy.exp(numpy.clip(answer[3:5], -1, 1))
        if quarter % 2:
            width, height = height, width
        x, y = x + dx * size, y + dy * size
        found.append([answer[0], x - width / 2, y - height / 2, width, height])
    return numpy.array(found)
