"""The library runs a block as tools/networks describes it: network_block_test.py NETWORK_ANSWERS ROOT"""
import pathlib
import subprocess
import sys
import tempfile

import numpy

PROGRAM, ROOT = sys.argv[1:]
sys.path.insert(0, ROOT)
from tools.networks.block import Block, Layer


def layer(random, kernel, inputs, outputs, stride, maximum, averaged=False):
    return Layer(random.integers(-300, 300, (outputs, kernel, kernel, inputs)), random.integers(-9999, 9999, outputs),
                 stride, kernel // 2, maximum, 9, averaged)


random = numpy.random.default_rng(1)
for samples, averaged in ((1, False), (3, True)):
    block = Block([layer(random, 3, samples, 18, 2, 4095), layer(random, 4, 18, 5, 1, 999),
                   layer(random, 1, 5, 6, 1, 0, averaged)], 8)
    picture = random.integers(0, 256, (13, 17, samples), dtype=numpy.uint8)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "block").write_bytes(block.to_bytes())
        (folder / "picture").write_bytes(picture.tobytes())
        printed = subprocess.run([PROGRAM, folder / "block", folder / "picture", "13"], check=True, capture_output=True)
    shape, answers = numpy.split(numpy.array(printed.stdout.split(), int), [3])
    numpy.testing.assert_array_equal(answers.reshape(shape), block.evaluate(picture))
