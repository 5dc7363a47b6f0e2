"""The exceptions: one family, each with the status of the library's call."""
from __future__ import annotations

import enum


class Status(enum.IntEnum):
    """What the library's calls return."""

    OK = 0
    FAILED = 1
    PARAM = 2
    NODATA = 3
    EMPTY = 4
    VERSION = 6
    NOIMAGE = 7
    NOINDEX = 8
    IMAGEEXISTS = 9
    INDEXEXISTS = 10
    INDEXFULL = 11
    MEMORY = 12
    NOTEMPTY = 13
    PROTECTED = 14
    DETECTOR = 16
    IMAGESIZE = 18
    RECOGNIZER = 256  # plus the recognizer's own code, 1 to 255
    FACES = 512  # plus the face detector's own code, 1 to 255


class CatalogueError(Exception):
    """A call that failed. `status` is what the library returned, or would have."""

    def __init__(self, message: str, status: int = Status.FAILED) -> None:
        super().__init__(message, status)
        self.status = status

    def __str__(self) -> str:
        return str(self.args[0])


class ClosedError(CatalogueError):
    """The catalogue is closed; or another one is open already."""


class InvalidError(CatalogueError, ValueError):
    """A path, a name, a number or a buffer of pixels is none that can be."""


class NotFoundError(CatalogueError, LookupError):
    """No such image, or no such index."""


class ExistsError(CatalogueError):
    """The image is in the catalogue already, or the parent has an index of that name."""


class FullError(CatalogueError):
    """The parent has no number left for another index."""


class NotEmptyError(CatalogueError):
    """The index still has indexes below it."""


class ProtectedError(CatalogueError):
    """The entry's attribute forbids it."""


class FileError(CatalogueError):
    """A catalogue file cannot be read or written, or is none."""


class NoDataError(FileError):
    """The catalogue file is missing, or holds nothing of the kind."""


class SceneError(CatalogueError):
    """The picture cannot be classified."""


class OutOfMemoryError(CatalogueError, MemoryError):
    """The library had no memory for it."""


_MEANINGS: dict[int, tuple[type[CatalogueError], str]] = {
    # Texts are checked before a call, so that only memory is left. Calls on files have a meaning of their own.
    Status.FAILED: (OutOfMemoryError, "there is no memory for its text; free some and try again"),
    Status.PARAM: (
        InvalidError,
        "the catalogue cannot hold that; paths are full ones of at most 4096 bytes, and indexes are numbered from "
        "1000000 to 99999999, on four levels"),
    Status.NODATA: (
        NoDataError,
        "the file is not there, or holds nothing of the kind; save it first, or allow for that with missing_ok"),
    Status.EMPTY: (FileError, "its text is empty; bring the file back from a backup"),
    Status.VERSION: (FileError, "it was written by another version of the library; load it with that one"),
    Status.NOIMAGE: (NotFoundError, "the image is not in the catalogue; add it first"),
    Status.NOINDEX: (NotFoundError, "there is no such index; indexes() lists those that are there"),
    Status.IMAGEEXISTS: (ExistsError, "the image is in the catalogue already; move() files it elsewhere"),
    Status.INDEXEXISTS: (ExistsError, "there is an index of that name; use it (exist_ok), or choose another name"),
    Status.INDEXFULL: (FullError, "an index takes 20 others and has them; add it below another one"),
    Status.MEMORY: (OutOfMemoryError, "there is no memory for it; free some and try again"),
    Status.NOTEMPTY: (NotEmptyError, "there are indexes below it; remove those first"),
    Status.PROTECTED: (ProtectedError, "it is protected; force it, or change its attribute first"),
    Status.DETECTOR: (
        SceneError,
        "the recognizer's parameters (brennparam.dat) are not where the library looks for them; install them, or say "
        "what kind of picture it is"),
    Status.IMAGESIZE: (SceneError, "it has more than 4096 pixels on a side; reduce it, and its dpi with it"),
}


def error_of(status: int, action: str) -> CatalogueError:
    """The exception for a call that was to do `action` and returned `status`."""
    kind, meaning = _MEANINGS.get(status, (CatalogueError, f"the library fails with status {status}; please report it"))
    for engine, base in (("face detector", Status.FACES), ("recognizer", Status.RECOGNIZER)):
        if status > base:
            kind, meaning = SceneError, f"the {engine} fails with code {status - base}; say what kind of picture it is"
            break
    return kind(f"cannot {action}: {meaning}", status)


def file_error_of(status: int, action: str) -> CatalogueError:
    """The same for a call on a file, whose commonest failure has another meaning."""
    if status != Status.FAILED:
        return error_of(status, action)
    return FileError(f"cannot {action}: it is no catalogue file, or may not be read or written; look at the file and "
                     "its permissions", status)
