"""Trains the check network on what the search network proposes: `train_check.py PICTURES WORK [--steps N]`.

WORK holds the checkpoint of the search network; it keeps the proposals and the checkpoint of this training, from which a
training that was stopped goes on.
"""

import multiprocessing
import time

import cv2
import numpy
import torch

from . import networks, samples, training

BATCH = 192
RATE_EVERY = 4000  # steps from one rating of the places to the next
RATED_HARDNESS = 2.5  # how much more often the worst places are drawn once they are rated
RESERVOIR = 8  # proposals of one picture


def load(network, path):
    network.load_state_dict(torch.load(path)["network"])
    return network.eval()


def variants(grey):
    """The picture as it is, mirrored, turned, darker, and smaller: (name of the matrix, grey, picture to variant)."""
    height, width = grey.shape
    yield grey, numpy.array([[1.0, 0, 0], [0, 1, 0]]), 0
    yield numpy.rot90(grey, -1).copy(), numpy.array([[0.0, -1, height], [1, 0, 0]]), 1
    yield numpy.rot90(grey, 2).copy(), numpy.array([[-1.0, 0, width], [0, -1, height]]), 2
    yield numpy.rot90(grey, -3).copy(), numpy.array([[0.0, 1, 0], [-1, 0, width]]), 3
    small = cv2.resize(grey, None, fx=0.72, fy=0.72, interpolation=cv2.INTER_AREA)
    yield small, numpy.array([[small.shape[1] / width, 0, 0], [0, small.shape[0] / height, 0]]), 0
    yield cv2.convertScaleAbs(grey, alpha=0.6), numpy.array([[1.0, 0, 0], [0, 1, 0]]), 0
    yield cv2.convertScaleAbs(grey, alpha=1.3, beta=10), numpy.array([[1.0, 0, 0], [0, 1, 0]]), 0


def mine(network, photographs, report):
    """Places that are proposed and are no face: (index of the picture, x, y, size, quarter turns)."""
    places = []
    for index, picture in enumerate(photographs):
        for grey, matrix, turned in variants(picture.levels[0]):
            levels, scale = networks.pyramid(grey)
            back = cv2.invertAffineTransform(matrix)
            for cell in networks.proposals(networks.search(network, levels), RESERVOIR):
                x, y = back[:, :2] @ (cell[1:3] / scale) + back[:, 2]
                size = cell[3] / scale * numpy.sqrt(abs(numpy.linalg.det(back[:, :2])))
                if any(numpy.hypot(*(face.centre - (x, y))) < 0.8 * max(face.size, size) for face in picture.faces):
                    continue
                places.append((index, x - 0.5, y - 0.5, size, (networks.quarter_of(cell) - turned) % 4))
        if index % 200 == 0:
            report(index, len(places))
    return places


def rate(network, photographs, places):
    """The check network's answer for each place."""
    scores = []
    for first in range(0, len(places), 512):
        patches = []
        for index, x, y, size, quarter in places[first : first + 512]:
            middle = (networks.PATCH_SIDE - 1) / 2
            matrix = samples.turn(-90 * quarter, networks.PATCH_FACE / size, (x, y), (middle, middle))
            patches.append(photographs[index].warp(matrix, networks.PATCH_SIDE))
        with torch.no_grad():
            scores.append(network(networks.as_input(numpy.stack(patches))[:, None])[:, 0, 0, 0].numpy())
    return numpy.concatenate(scores)


def _batches(sampler, photographs, seed, first, orders, queue):
    cv2.setNumThreads(1)
    step = first
    while True:
        while step == first or not orders.empty():
            places, sampler.hardness = orders.get()
            sampler.hard = _Places(photographs, places)
            if step == first:
                break
        generator = numpy.random.default_rng((seed, 2, step))
        drawn = [sampler.check_sample(generator) for _ in range(BATCH)]
        queue.put([numpy.stack(part).astype(numpy.float32) for part in zip(*drawn)])
        step += 1


class _Places:
    def __init__(self, photographs, places):
        self._photographs, self._places = photographs, places

    def __len__(self):
        return len(self._places)

    def __getitem__(self, at):
        index, *place = self._places[at]
        return (self._photographs[index], *place)


def measure(search, check, photographs):
    """Scores of the pictures with a large clear face, and of those without a face."""
    found, empty = [], []
    for picture in photographs:
        levels, _ = networks.pyramid(picture.levels[0])
        cells = networks.proposals(networks.search(search, levels), networks.MOST_PROPOSALS)
        best = networks.check(check, levels, cells)[:, 0].max()
        if not picture.faces:
            empty.append(best)
        elif any(face.clear and face.height * 20 >= max(picture.levels[0].shape) for face in picture.faces):
            found.append(best)
    found, empty = numpy.array(found), numpy.sort(empty)[::-1]
    return {share: (round(float((found > empty[int(share * len(empty))]).mean()), 4),
                    round(float(empty[int(share * len(empty))]), 2)) for share in (0.003, 0.01, 0.02, 0.05)}


def main():
    options = training.start(__doc__, steps=18000)
    checkpoint, mined = options.work / "check.pt", options.work / "places.npy"

    search = load(networks.search_network(), options.work / "search.pt").to(memory_format=torch.channels_last)
    photographs, choice, sampler = training.read(options.pictures)
    if not mined.exists():
        found = mine(search, photographs, lambda *text: print("mined", *text, flush=True))
        numpy.save(mined, numpy.array(found, dtype=numpy.float64))
    places = [(int(index), x, y, size, int(quarter)) for index, x, y, size, quarter in numpy.load(mined)]
    network = networks.check_network().to(memory_format=torch.channels_last)
    optimizer = torch.optim.AdamW(network.parameters(), training.LEARNING_RATE, weight_decay=3e-4)
    first = 0
    if checkpoint.exists():
        saved = torch.load(checkpoint)
        network.load_state_dict(saved["network"])
        optimizer.load_state_dict(saved["optimizer"])
        first, places = saved["step"], saved["places"]
    print(len(places), "places;", sum(part.numel() for part in network.parameters()), "weights; from step", first, flush=True)

    queue, orders = multiprocessing.Queue(8), multiprocessing.Queue()
    orders.put((places, RATED_HARDNESS if first else 1.0))
    multiprocessing.Process(target=_batches, args=(sampler, photographs, options.seed, first, orders, queue), daemon=True).start()
    started, sums = time.time(), numpy.zeros(2)
    for step in range(first, options.steps):
        training.set_rate(optimizer, step, options.steps)
        patches, faces, boxes = (torch.from_numpy(part) for part in queue.get())
        out = network(training.to_network(patches))[:, :, 0, 0]
        right = torch.nn.functional.binary_cross_entropy_with_logits(out[:, 0], faces, reduction="none")
        right = (right * (1 - torch.exp(-right))).sum() / BATCH
        place = torch.nn.functional.smooth_l1_loss(out[faces > 0, 1:], boxes[faces > 0], beta=0.05)
        optimizer.zero_grad()
        (right + 0.5 * place).backward()
        optimizer.step()
        sums += [right.item(), place.item()]
        if (step + 1) % 200 == 0:
            print(step + 1, round(time.time() - started), (sums / 200).round(4), flush=True)
            sums[:] = 0
        if (step + 1) % RATE_EVERY == 0 or step + 1 == options.steps:
            network.eval()
            order = numpy.argsort(-rate(network, photographs, places))
            places = [places[index] for index in order]
            orders.put((places, RATED_HARDNESS))
            print("measured", measure(search, network, choice), round(time.time() - started), flush=True)
            network.train()
            torch.save({"network": network.state_dict(), "optimizer": optimizer.state_dict(), "step": step + 1,
                        "places": places}, checkpoint)


if __name__ == "__main__":
    main()
