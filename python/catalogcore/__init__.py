"""CatalogCore: a catalogue of image files in memory, and what a picture shows.

    with catalogcore.Catalogue("/srv/catalogue") as catalogue:
        catalogue.load(missing_ok=True)
        preset = catalogue.classify(pixels, dpi=300)
        catalogue.add("/srv/pictures/page.png", preset or catalogcore.Preset.OTHER)
        catalogue.save()

A process has one catalogue at a time. Any thread may use it: its calls take turns, a classification runs beside them,
and other threads of Python run meanwhile. A walk belongs to one thread at a time, and the catalogue may change between
its steps.

The library is the one that the environment variable CATALOGCORE_LIBRARY names; else libcatalogcore.so.1 of the prefix
that this package is installed under; else the one that the system's linker finds.
"""
from catalogcore.catalogue import INDEX_FILE, IMAGE_FILE, ROOT, Catalogue, Image, Index, Kind, Preset, Protection
from catalogcore.errors import (CatalogueError, ClosedError, ExistsError, FileError, FullError, InvalidError,
                                NoDataError, NotEmptyError, NotFoundError, OutOfMemoryError, ProtectedError,
                                SceneError, Status)

__all__ = ["INDEX_FILE", "IMAGE_FILE", "ROOT", "Catalogue", "CatalogueError", "ClosedError", "ExistsError", "FileError",
           "FullError", "Image", "Index", "InvalidError", "Kind", "NoDataError", "NotEmptyError", "NotFoundError",
           "OutOfMemoryError", "Preset", "ProtectedError", "Protection", "SceneError", "Status"]
