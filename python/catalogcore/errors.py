"""The exceptions. Each holds the status of the library's call."""
from __future__ import annotations

import enum


class Status(enum.IntEnum):
    """The statuses that the library's calls return."""

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
    """A call failed. `status` is the status of the library for this failure."""

    def __init__(self, message: str, status: int = Status.FAILED) -> None:
        super().__init__(message, status)
        self.status = status

    def __str__(self) -> str:
        return str(self.args[0])


class ClosedError(CatalogueError):
    """The catalogue is closed, or another catalogue is open already."""


class InvalidError(CatalogueError, ValueError):
    """A path, name, number or buffer of pixels is invalid."""


class NotFoundError(CatalogueError, LookupError):
    """The image or the index does not exist."""


class ExistsError(CatalogueError):
    """The image is in the catalogue already, or the parent has a child index of that name."""


class FullError(CatalogueError):
    """The parent has no number left for another child index."""


class NotEmptyError(CatalogueError):
    """The index still has child indexes."""


class ProtectedError(CatalogueError):
    """The attribute of the entry protects it."""


class FileError(CatalogueError):
    """A file cannot be read or written, or is not a catalogue file."""


class NoDataError(FileError):
    """The catalogue file is missing, or has no list of entries of this kind."""


class SceneError(CatalogueError):
    """The picture cannot be classified."""


class OutOfMemoryError(CatalogueError, MemoryError):
    """The library could not allocate memory."""


_MEANINGS: dict[int, tuple[type[CatalogueError], str]] = {
    # The package checks text before a call, so only an allocation failure is left. file_error_of() handles file calls.
    Status.FAILED: (OutOfMemoryError, "no memory for its text; free some and try again"),
    Status.PARAM: (
        InvalidError,
        "invalid argument; pass full paths of at most 4096 bytes, and index numbers from 1000000 to 99999999 on at "
        "most four levels"),
    Status.NODATA: (
        NoDataError,
        "the file is missing or has no such entries; save it first, or pass missing_ok"),
    Status.EMPTY: (FileError, "its text is empty; restore the file from a backup"),
    Status.VERSION: (FileError, "another version of the library wrote it; load it with that version"),
    Status.NOIMAGE: (NotFoundError, "the image is not in the catalogue; add it first"),
    Status.NOINDEX: (NotFoundError, "no such index; indexes() lists all indexes"),
    Status.IMAGEEXISTS: (ExistsError, "the image is in the catalogue already; use move() to change its index"),
    Status.INDEXEXISTS: (ExistsError, "an index of that name exists; pass exist_ok, or choose another name"),
    Status.INDEXFULL: (FullError, "the parent has 20 added indexes, the maximum; choose another parent"),
    Status.MEMORY: (OutOfMemoryError, "out of memory; free some and try again"),
    Status.NOTEMPTY: (NotEmptyError, "it has child indexes; remove them first"),
    Status.PROTECTED: (ProtectedError, "it is protected; pass force, or change its attribute first"),
    Status.DETECTOR: (
        SceneError,
        "the recognizer's parameters (brennparam.dat) are missing; install them, or pass the kind of the picture"),
    Status.IMAGESIZE: (SceneError, "it has more than 4096 pixels on a side; reduce the picture and its dpi"),
}


def error_of(status: int, action: str) -> CatalogueError:
    """The exception for a call that returned `status`. `action` says what the call does."""
    kind, meaning = _MEANINGS.get(status, (CatalogueError, f"the library failed with status {status}; report it"))
    for engine, base in (("face detector", Status.FACES), ("recognizer", Status.RECOGNIZER)):
        if status > base:
            kind, meaning = SceneError, f"the {engine} failed with code {status - base}; pass the kind of the picture"
            break
    return kind(f"cannot {action}: {meaning}", status)


def file_error_of(status: int, action: str) -> CatalogueError:
    """The exception for a call on a file, where Status.FAILED has another meaning."""
    if status != Status.FAILED:
        return error_of(status, action)
    return FileError(f"cannot {action}: it is not a catalogue file, or cannot be read or written; check the file and "
                     "its permissions", status)
