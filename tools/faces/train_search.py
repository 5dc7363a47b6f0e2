"""Trains the search network: `train_search.py PICTURES WORK [--steps N]`.

WORK keeps the checkpoint, from which a training that was stopped goes on.
"""

import multiprocessing
import time

import cv2
import numpy
import torch

from . import networks, training

BATCH = 64
LOOK_EVERY = 1500  # steps from one search for false alarms to the next


def _batches(sampler, seed, first, hard, queue):
    cv2.setNumThreads(1)
    step = first
    while True:
        while not hard.empty():
            places = hard.get()
            sampler.hard = [(sampler.empty[i], *place) for i, *place in places]
        generator = numpy.random.default_rng((seed, step))
        drawn = [sampler.search_sample(generator) for _ in range(BATCH)]
        queue.put([numpy.stack(part).astype(numpy.float32) for part in zip(*drawn)])
        step += 1


def loss_of(out, answers, weights):
    """Focal loss of the face answer; absolute error of place and size; cross entropy of the orientation."""
    right = torch.nn.functional.binary_cross_entropy_with_logits(out[:, 0], answers[:, 0], reduction="none")
    focal = right * (1 - torch.exp(-right)) ** 1.5 * weights[:, 0] * (1 + 5 * answers[:, 0])
    near = weights[:, 1] > 0
    place = torch.nn.functional.smooth_l1_loss(out[:, 1:4].transpose(0, 1)[:, near], answers[:, 1:4].transpose(0, 1)[:, near],
                                               beta=0.1)
    turned = torch.nn.functional.cross_entropy(out[:, 4:].permute(0, 2, 3, 1)[near], answers[:, 4][near].long())
    return focal.sum() / len(out), place, turned


def false_alarms(network, empty, most=6):
    """Places of pictures without faces that the network likes best: (picture, x, y, size, score)."""
    places = []
    for index, picture in enumerate(empty):
        levels, scale = networks.pyramid(picture.levels[0])
        for score, x, y, size, *_ in networks.proposals(networks.search(network, levels), most, 0.2):
            if score > -3:
                places.append((index, x / scale, y / scale, size / scale, score))
    return places


def measure(network, photographs):
    """Share of faces among the 16 best proposals, and of pictures with a face at 1 and 5 % false alarms."""
    hits, clear, best, empty = 0, 0, [], []
    for picture in photographs:
        levels, scale = networks.pyramid(picture.levels[0])
        found = networks.proposals(networks.search(network, levels), networks.MOST_PROPOSALS)
        if not picture.faces:
            empty.append(found[0, 0])
            continue
        large = [face for face in picture.faces if face.clear and face.height * 20 >= max(picture.levels[0].shape)]
        near = [[cell for cell in found if numpy.hypot(*(cell[1:3] / scale - face.centre)) < 0.4 * face.size
                 and 0.6 < cell[3] / scale / face.size < 1.6] for face in large]
        hits, clear = hits + sum(bool(cells) for cells in near), clear + len(large)
        if large:
            best.append(max((cell[0] for cells in near for cell in cells), default=-9))
    limits = [numpy.sort(empty)[::-1][int(share * len(empty))] for share in (0.01, 0.05)]
    return hits / max(1, clear), [float((numpy.array(best) > limit).mean()) for limit in limits], len(best), len(empty)


def main():
    options = training.start(__doc__, steps=14000)
    checkpoint = options.work / "search.pt"

    photographs, choice, sampler = training.read(options.pictures)
    network = networks.search_network().to(memory_format=torch.channels_last)
    optimizer = torch.optim.AdamW(network.parameters(), training.LEARNING_RATE, weight_decay=1e-4)
    first, places = 0, []
    if checkpoint.exists():
        saved = torch.load(checkpoint)
        network.load_state_dict(saved["network"])
        optimizer.load_state_dict(saved["optimizer"])
        first, places = saved["step"], saved["places"]
    print(len(photographs), "photographs,", len(sampler.faces), "faces,", len(sampler.empty), "without;",
          sum(part.numel() for part in network.parameters()), "weights; from step", first, flush=True)

    queue, hard = multiprocessing.Queue(8), multiprocessing.Queue()
    hard.put(places)
    multiprocessing.Process(target=_batches, args=(sampler, options.seed, first, hard, queue), daemon=True).start()
    started, sums = time.time(), numpy.zeros(3)
    for step in range(first, options.steps):
        training.set_rate(optimizer, step, options.steps)
        patches, answers, weights = (torch.from_numpy(part) for part in queue.get())
        losses = loss_of(network(training.to_network(patches)), answers, weights)
        optimizer.zero_grad()
        (losses[0] + losses[1] + 0.3 * losses[2]).backward()
        optimizer.step()
        sums += [part.item() for part in losses]
        if (step + 1) % 100 == 0:
            print(step + 1, round(time.time() - started), (sums / 100).round(3), flush=True)
            sums[:] = 0
        if (step + 1) % LOOK_EVERY == 0 or step + 1 == options.steps:
            network.eval()
            places = false_alarms(network, sampler.empty)
            print("measured", measure(network, choice), len(places), "false places", round(time.time() - started), flush=True)
            network.train()
            hard.put([place[:4] for place in places])
            torch.save({"network": network.state_dict(), "optimizer": optimizer.state_dict(), "step": step + 1,
                        "places": [place[:4] for place in places]}, checkpoint)


if __name__ == "__main__":
    main()
