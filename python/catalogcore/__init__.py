"""CatalogCore: a catalogue of image files in memory, and a classifier of pictures.

    with catalogcore.Catalogue("/srv/catalogue") as catalogue:
        catalogue.load(missing_ok=True)
        preset = catalogue.classify(pixels, dpi=300)
        catalogue.add("/srv/pictures/page.png", preset or catalogcore.Preset.OTHER)
        catalogue.save()

A process has one catalogue at a time, which any thread may use. Calls run one at a time; a classification runs at the
same time as other calls. A call does not block other Python threads. A walk belongs to one thread at a time, and the
catalogue may change between its steps.

The package loads the library that the environment variable CATALOGCORE_LIBRARY names. Without the variable, it loads
libcatalogcore.so.1 from its own installation prefix, or else from where the dynamic linker finds it.
"""
from catalogcore.catalogue import INDEX_FILE, IMAGE_FILE, ROOT, Catalogue, Image, Index, Kind, Preset, Protection
from catalogcore.errors import (CatalogueError, ClosedError, ExistsError, FileError, FullError, InvalidError,
                                NoDataError, NotEmptyError, NotFoundError, OutOfMemoryError, ProtectedError,
                                SceneError, Status)

__all__ = ["INDEX_FILE", "IMAGE_FILE", "ROOT", "Catalogue", "CatalogueError", "ClosedError", "ExistsError", "FileError",
           "FullError", "Image", "Index", "InvalidError", "Kind", "NoDataError", "NotEmptyError", "NotFoundError",
           "OutOfMemoryError", "Preset", "ProtectedError", "Protection", "SceneError", "Status"]
