"""Classifies and files the pictures of a folder: sort_folder.py FOLDER CATALOGUE-FOLDER. Needs python3-pil."""
import pathlib
import sys

import PIL.Image

import catalogcore

folder, files = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
with catalogcore.Catalogue(files) as catalogue:
    catalogue.load(missing_ok=True)
    for path in sorted(folder.rglob("*")):
        if path.suffix.lower() not in (".jpg", ".jpeg", ".png", ".tif", ".tiff") or path in catalogue:
            continue
        try:
            picture = PIL.Image.open(path).convert("RGB")
        except OSError as failure:
            print(f"sort_folder: cannot read {path}: {failure} (skipped)", file=sys.stderr)
            continue
        width, dpi = picture.width, picture.info.get("dpi", (0,))[0]
        picture.thumbnail((4096, 4096))  # the limit of classify()
        pixels = memoryview(picture.tobytes()).cast("B", (picture.height, picture.width, 3))
        preset = catalogue.classify(pixels, dpi=dpi * picture.width / width) or catalogcore.Preset.OTHER
        catalogue.add(path, preset)
        print(int(preset), path)
    catalogue.save()
