"""Turns a trained network of PyTorch into a block of integers."""

import copy

import numpy
import torch

from .block import INPUT_MIDDLE, Block, Layer

GREATEST_ACTIVATION = 4095
ANSWER_BITS = 12
MOST_SHIFT = 30
LEAST_SHARE = 0.1  # of the layer's greatest activation that the range of a single output covers at least


class _Step:
    """A convolution with what follows it up to the next one. Batch normalisation is folded into the convolution."""

    def __init__(self, convolution):
        self.convolution, self.clamped, self.averaged = copy.deepcopy(convolution), False, False

    def fold(self, norm):
        convolution = torch.nn.utils.fusion.fuse_conv_bn_eval(self.convolution, norm)
        self.convolution = convolution

    def run(self, values):
        values = self.convolution(values)
        values = torch.relu(values) if self.clamped else values
        return values.mean((2, 3), keepdim=True) if self.averaged else values


def _as_convolution(linear):
    convolution = torch.nn.Conv2d(linear.in_features, linear.out_features, 1)
    convolution.weight.data = linear.weight.data[:, :, None, None].clone()
    convolution.bias.data = linear.bias.data.clone()
    return convolution


def _steps_of(network):
    steps = []
    for module in network.eval():
        if isinstance(module, torch.nn.Conv2d):
            steps.append(_Step(module))
        elif isinstance(module, torch.nn.Linear):
            steps.append(_Step(_as_convolution(module)))
        elif isinstance(module, torch.nn.BatchNorm2d):
            steps[-1].fold(module)
        elif isinstance(module, torch.nn.ReLU):
            steps[-1].clamped = True
        elif isinstance(module, torch.nn.AdaptiveAvgPool2d) and module.output_size in (1, (1, 1)):
            steps[-1].averaged = True
        elif not isinstance(module, (torch.nn.Flatten, torch.nn.Dropout, torch.nn.Dropout2d)):
            raise ValueError(f"a {type(module).__name__} cannot be part of a block")
    if any(step.clamped != (step is not steps[-1]) for step in steps):
        raise ValueError("every convolution except the last one must be followed by a ReLU")
    return steps


def _ranges(steps, pictures, unit):
    """The greatest activation of each output of each step for the pictures."""
    ranges = [torch.zeros(step.convolution.out_channels) for step in steps]
    with torch.no_grad():
        for picture in pictures:
            values = as_input(picture, unit)
            for step, greatest in zip(steps, ranges):
                # Before the mean, because that is where the library clamps.
                activations = step.convolution(values)
                torch.maximum(greatest, activations.amax((0, 2, 3)), out=greatest)
                values = step.run(values)
    return [torch.maximum(greatest, greatest.max() * LEAST_SHARE).double().numpy() for greatest in ranges]


def as_input(picture, unit):
    """A picture of bytes as the float network sees it."""
    samples = picture.reshape(*picture.shape[:2], -1)
    return (torch.from_numpy(numpy.ascontiguousarray(samples)).float() - INPUT_MIDDLE).permute(2, 0, 1)[None] / unit


def _integers(step, input_scale, output_scale, greatest, maximum):
    """The layer with the finest weights whose sums stay within 32 bits."""
    convolution = step.convolution
    weights = convolution.weight.detach().double().permute(0, 2, 3, 1).numpy()
    biases = convolution.bias.detach().double().numpy()
    for shift in range(MOST_SHIFT, -1, -1):
        scale = output_scale * 2.0**shift
        layer = Layer(numpy.rint(weights / input_scale * scale[:, None, None, None]).astype(numpy.int64),
                      numpy.rint(biases * scale).astype(numpy.int64), convolution.stride[0], convolution.padding[0],
                      maximum, shift, step.averaged)
        if layer.is_bounded(greatest):
            return layer
    raise ValueError("the weights of a layer are too large for 32 bits")


def quantise(network, pictures, unit=64.0):
    """The block of `network`, a Sequential whose input is (byte - 128) / unit.

    `pictures`, arrays of bytes of any sizes, show which activations occur.
    """
    steps = _steps_of(network)
    layers, scale, greatest = [], numpy.full(steps[0].convolution.in_channels, unit), INPUT_MIDDLE
    for step, limits in zip(steps, _ranges(steps, pictures, unit)):
        last = step is steps[-1]
        following = numpy.full(len(limits), 2.0**ANSWER_BITS) if last else GREATEST_ACTIVATION / limits
        layers.append(_integers(step, scale, following, greatest, 0 if last else GREATEST_ACTIVATION))
        scale, greatest = following, GREATEST_ACTIVATION
    return Block(layers, ANSWER_BITS)


def differences(network, block, pictures, unit=64.0):
    """For each output: the greatest and the mean difference between the block and the float network."""
    found = []
    for picture in pictures:
        with torch.no_grad():
            wanted = network.eval()(as_input(picture, unit))
        wanted = wanted.reshape(wanted.shape[1], -1).T.numpy()
        found.append(numpy.abs(block.evaluate(picture).reshape(wanted.shape) / 2.0**block.answer_bits - wanted))
    found = numpy.concatenate(found)
    return found.max(axis=0), found.mean(axis=0)
