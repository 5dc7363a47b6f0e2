"""What the trainings of both networks share: arguments, pictures, and the rate of learning."""

import argparse
import pathlib

import cv2
import torch

from . import pictures, samples

LEARNING_RATE = 3e-3
WARM_UP = 200  # steps until the full rate


def start(description, steps):
    """Reads the command line, and seeds and limits torch accordingly."""
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("pictures", type=pathlib.Path)
    parser.add_argument("work", type=pathlib.Path)
    parser.add_argument("--steps", type=int, default=steps)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--threads", type=int, default=1)
    options = parser.parse_args()
    torch.manual_seed(options.seed)
    torch.set_num_threads(options.threads)
    cv2.setNumThreads(1)
    options.work.mkdir(parents=True, exist_ok=True)
    return options


def read(folder):
    """The photographs to train on, those to choose with, and the sampler of the former."""
    photographs = pictures.read_photographs(folder, pictures.TRAINING)
    sampler = samples.Sampler(photographs, pictures.read_close_ups(folder),
                              pictures.read_documents(folder, pictures.TRAINING))
    return photographs, pictures.read_photographs(folder, pictures.CHOICE), sampler


def set_rate(optimizer, step, steps):
    """The rate rises to its full value, then falls to a hundredth at the last step."""
    for group in optimizer.param_groups:
        group["lr"] = LEARNING_RATE * min(1, (step + 1) / WARM_UP) * max(0.01, 1 - step / steps)


def to_network(patches):
    """A batch of patches with values 0 to 255, in the form that the networks train fastest on."""
    return ((patches[:, None] - 128) / 64).contiguous(memory_format=torch.channels_last)
