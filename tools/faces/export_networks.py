"""Writes the trained networks into the files that the library embeds: `export_networks PICTURES WORK RESOURCES`.

WORK has the checkpoints search.pt and check.pt; a network whose checkpoint is missing is left out. Run with
`python3 -m tools.faces.export_networks` in the root of the sources.
"""

import argparse
import pathlib

import numpy
import torch

from tools.networks.quantise import differences, quantise

from . import networks, pictures

MOST_PICTURES = 150  # that show which activations occur


def _load(network, checkpoint):
    network.load_state_dict(torch.load(checkpoint, map_location="cpu")["network"])
    return network.eval()


def _write(name, network, samples, folder):
    block = quantise(network, samples)
    greatest, mean = differences(network, block, samples[: len(samples) // 4])
    (folder / f"faces_{name}.net").write_bytes(block.to_bytes())
    weights = sum(layer.weights.size for layer in block.layers)
    print(f"faces_{name}.net: {weights} weights, shifts {[layer.shift for layer in block.layers]}")
    print("  greatest difference from the float network:", greatest.round(4))
    print("  mean difference:", mean.round(5))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("pictures", type=pathlib.Path)
    parser.add_argument("work", type=pathlib.Path)
    parser.add_argument("resources", type=pathlib.Path)
    options = parser.parse_args()
    torch.set_num_threads(1)
    search = _load(networks.search_network(), options.work / "search.pt")
    # Every second picture has a face, so that the activations of faces occur.
    photographs = sorted(pictures.read_photographs(options.pictures, pictures.TRAINING), key=lambda p: p.name[::-1])
    with_faces = [picture for picture in photographs if picture.faces][: MOST_PICTURES // 2]
    chosen = with_faces + [picture for picture in photographs if not picture.faces][: MOST_PICTURES // 2]
    chosen = [chosen[i] for i in numpy.random.default_rng(1).permutation(len(chosen))]
    pyramids = [networks.pyramid(picture.levels[0])[0] for picture in chosen]
    _write("search", search, [level for levels in pyramids for level in levels], options.resources)
    if (options.work / "check.pt").exists():
        check = _load(networks.check_network(), options.work / "check.pt")
        patches = [networks.upright(levels, cell, networks.quarter_of(cell)) for levels in pyramids
                   for cell in networks.proposals(networks.search(search, levels), networks.MOST_PROPOSALS)]
        _write("check", check, patches, options.resources)


if __name__ == "__main__":
    main()
