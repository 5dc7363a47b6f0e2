"""The blocks of bytes that hold a network, and an exact reference of what the library computes with one.

src/engines/network/block.h describes the format.
"""

import dataclasses
import struct
import zlib

import numpy

TAG, VERSION = b"CATALNET", 1
INPUT_MIDDLE = 128  # a byte b enters the first layer as b - 128
GREATEST_SUM = 2**31 - 1


@dataclasses.dataclass
class Layer:
    """A convolution in integers. `weights` is output x kernel row x kernel column x input; `maximum` is 0 for the last."""

    weights: numpy.ndarray
    biases: numpy.ndarray
    stride: int
    padding: int
    maximum: int
    shift: int
    averaged: bool = False

    @property
    def half(self):
        return 2**self.shift // 2

    def is_bounded(self, greatest):
        """Whether the library accepts the layer if its inputs are at most `greatest`."""
        sums = numpy.abs(self.weights.astype(numpy.int64)).sum(axis=(1, 2, 3)) * greatest
        return abs(self.weights).max() <= 32767 and (sums + abs(self.biases + self.half)).max() <= GREATEST_SUM

    def apply(self, values):
        """The outputs for `values`, which is row x column x input."""
        kernel, stride = self.weights.shape[1], self.stride
        border = (self.padding, self.padding)
        # Sums are below 2^31, so floating-point numbers of 64 bits hold them exactly.
        padded = numpy.pad(values, (border, border, (0, 0))).astype(numpy.float64)
        rows, columns = ((side - kernel) // stride + 1 for side in padded.shape[:2])
        sums = numpy.zeros((rows, columns, len(self.weights)))
        for y in range(kernel):
            for x in range(kernel):
                under = padded[y : y + stride * rows : stride, x : x + stride * columns : stride][:rows, :columns]
                sums += under @ self.weights[:, y, x].T.astype(numpy.float64)
        outputs = (sums.astype(numpy.int64) + self.biases + self.half) >> self.shift
        if self.maximum:
            outputs = outputs.clip(0, self.maximum)
        if self.averaged:
            outputs = ((2 * outputs.sum(axis=(0, 1)) + rows * columns) // (2 * rows * columns))[None, None]
        return outputs


@dataclasses.dataclass
class Block:
    """A network in integers. An answer of 1 has the value 2**answer_bits."""

    layers: list[Layer]
    answer_bits: int

    def evaluate(self, picture):
        """The answers for a picture, row x column or row x column x sample, of bytes."""
        values = picture.reshape(*picture.shape[:2], -1).astype(numpy.int64) - INPUT_MIDDLE
        for layer in self.layers:
            values = layer.apply(values)
        return values

    def to_bytes(self):
        body = struct.pack("<4H", self.layers[0].weights.shape[3], len(self.layers), self.answer_bits, 0)
        for layer in self.layers:
            outputs, kernel = layer.weights.shape[:2]
            body += struct.pack("<4B4H", kernel, layer.stride, layer.padding, layer.averaged, outputs, layer.maximum,
                                layer.shift, 0)
            body += layer.biases.astype("<i4").tobytes() + layer.weights.astype("<i2").tobytes()
        return TAG + struct.pack("<3I", VERSION, 20 + len(body), zlib.adler32(body)) + body
