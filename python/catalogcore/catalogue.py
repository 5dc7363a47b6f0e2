"""The catalogue of this process."""
from __future__ import annotations

import ctypes
import enum
import math
import os
import threading
import weakref
from collections.abc import Callable, Iterator, Mapping
from dataclasses import dataclass
from types import TracebackType
from typing import Any, ClassVar, Generic, TypeVar, Union

from catalogcore._library import OP_CONDITION, OP_GETINFO, STATE_FORCE, Item, Picture, String, item_of, library
from catalogcore._pixels import describe
from catalogcore.errors import CatalogueError, ClosedError, InvalidError, NoDataError, Status, error_of, file_error_of

StrPath = Union[str, "os.PathLike[str]"]

ROOT = -1
"""The root of the tree of indexes, which holds no image."""

INDEX_FILE, IMAGE_FILE = "index.plist", "images.plist"
"""The default names of the files, which the command uses too."""


class Preset(enum.IntEnum):
    """The numbers of the preset indexes, which every new catalogue has."""

    PHOTO = 1000000
    PHOTO_FACES = 1010000
    PHOTO_OTHER = 1090000
    DOCUMENT = 2000000
    DOCUMENT_CARD = 2010000
    DOCUMENT_POST = 2020000
    DOCUMENT_PAGE = 2030000
    DOCUMENT_FIXED = 2040000
    DOCUMENT_OTHER = 2090000
    OTHER = 9000000


class Protection(enum.IntFlag):
    """The protection bits of an attribute. The other bits are free for the application."""

    NO_MOVE = 1
    NO_REMOVE = 2
    NO_RENAME = 4


class Kind(enum.Enum):
    """What the application knows of a picture."""

    UNKNOWN = enum.auto()
    DOCUMENT = enum.auto()
    DECLARED_DOCUMENT = enum.auto()  # filed as Preset.DOCUMENT_FIXED, whatever its size
    PHOTO = enum.auto()
    PHOTO_WITHOUT_FACES = enum.auto()  # the face detector is not used


_HINTS: dict[Kind, dict[str, int]] = {
    Kind.UNKNOWN: {},
    Kind.DOCUMENT: {"typeHint": 1},
    Kind.DECLARED_DOCUMENT: {"fixedScene": 1},
    Kind.PHOTO: {"typeHint": 2},
    Kind.PHOTO_WITHOUT_FACES: {"photoKind": 1},
}


@dataclass(frozen=True, slots=True)
class Image:
    """An image: the full path of its file, the number of its index, its attribute. The path is empty if it is not valid
    UTF-8, which only a catalogue file can contain, or if it could not be allocated."""

    path: str
    index: int
    attribute: int


@dataclass(frozen=True, slots=True)
class Index:
    """An index: its number, its display name, its attribute."""

    number: int
    name: str
    attribute: int


# Opening and closing must not overlap any call, and two writes must not overlap, so every call holds a lock. A
# classification takes long and has a lock of its own. A thread that needs both takes _scenes first. The locks are
# reentrant, because the garbage collector may close a walk while its thread holds a lock.
_scenes = threading.RLock()
_calls = threading.RLock()


def _is_there() -> bool:
    """Whether the library has a catalogue, from this package or from another part of the process."""
    return bool(library.IDXSearchIndex(ctypes.byref(item_of(index=ROOT))) != Status.FAILED)


def _error_of(status: int, action: str, of_call: Callable[[int, str], CatalogueError] = error_of) -> CatalogueError:
    with _calls:
        is_closed = status == Status.FAILED and not _is_there()
    if is_closed:
        return ClosedError(f"cannot {action}: another part of this process closed it; open a new catalogue", status)
    return of_call(status, action)


_Entry = TypeVar("_Entry", Image, Index)


class _Walk(Iterator[_Entry], Generic[_Entry]):
    """A walk. Its handle is closed at its end or when the object is freed."""

    _find: int | None = None

    def __init__(self, first: Callable[..., Any], advance: Callable[..., int], end: int, item: Item, name: String,
                 entry: Callable[[Item, str], _Entry]) -> None:
        self._advance, self._end, self._item, self._name, self._entry = advance, end, item, name, entry
        self._is_at_first = True
        status = ctypes.c_uint32()
        self._find = first(ctypes.byref(item), ctypes.byref(status))
        if status.value not in (Status.OK, end):
            raise _error_of(status.value, "walk the catalogue")

    def __next__(self) -> _Entry:
        with _calls:
            if not self._find:
                raise StopIteration
            status = Status.OK if self._is_at_first else self._advance(self._find, ctypes.byref(self._item))
            self._is_at_first = False
            if status == Status.OK:
                return self._entry(self._item, self._name.take())
            self.close()
        if status != self._end:
            raise _error_of(status, "walk the catalogue")
        raise StopIteration

    def close(self) -> None:
        """Ends the walk. A second call does nothing."""
        with _calls:
            find, self._find = self._find, None
            library.IDXCloseFind(find)

    def __del__(self) -> None:
        self.close()


class Catalogue:
    """The catalogue of this process. It exists until close() or the end of its with statement, which save nothing.

    A new catalogue has the presets. `folder` is the folder of its files, which need not exist yet; without a folder,
    pass the full paths of the files. The path of an image is a full path in valid UTF-8. Two paths that differ only in
    the case of ASCII letters are normally two images. In about one of 2,000 such pairs they are one image. Paths and
    names must not have a line feed, because the files cannot store it.

    A second catalogue raises ClosedError, and so do calls after close(), which ends all walks. Failures raise
    CatalogueError; any call may raise InvalidError or OutOfMemoryError. An argument of a wrong type raises TypeError.

    len() counts the images, which takes as long as a walk. bool() is true while the catalogue is open, even if empty.
    """

    _open: ClassVar[weakref.ref[Catalogue] | None] = None

    def __init__(self, folder: StrPath | None = None) -> None:
        self._folder = None if folder is None else os.fspath(folder)
        base = None if self._folder is None else String(self._folder, "folder")
        with _scenes, _calls:
            if Catalogue._open and Catalogue._open() is not None:
                raise ClosedError("cannot open a catalogue: this process has one already; use it or close it first")
            if Catalogue._open is None and _is_there():
                raise ClosedError("cannot open a catalogue: another part of this process has one; use that catalogue")
            status = library.IDXInitialize()
            if status not in (Status.OK, Status.DETECTOR):
                raise error_of(status, "open a catalogue")
            if base:
                status_of_base = library.IDXSetFilePath(base.pointer())
                if status_of_base:
                    library.IDXUninitialize()
                    Catalogue._open = None
                    raise error_of(status_of_base, f"use the folder {folder}")
            Catalogue._open = weakref.ref(self)
        self._recognizes = bool(status == Status.OK)

    def close(self) -> None:
        """Drops the catalogue, after the running calls of other threads. A second call does nothing."""
        with _scenes, _calls:
            if self._is_open():
                library.IDXUninitialize()
                Catalogue._open = None

    def __enter__(self) -> Catalogue:
        return self

    def __exit__(self, kind: type[BaseException] | None, error: BaseException | None,
                 trace: TracebackType | None) -> None:
        self.close()

    @property
    def closed(self) -> bool:
        """Whether the catalogue is closed."""
        return not self._is_open()

    def __repr__(self) -> str:
        folder = "" if self._folder is None else f" in {self._folder!r}"
        return f"<Catalogue{folder}, {'closed' if self.closed else 'open'}>"

    def __bool__(self) -> bool:
        return self._is_open()

    @property
    def recognizes(self) -> bool:
        """Whether the recognizer's parameters were found. Without them, classify() needs a kind."""
        return self._recognizes

    # ---- Images

    def add(self, path: StrPath, index: int, attribute: int = 0) -> None:
        """Files an image under an index. ExistsError; NotFoundError: no such index; InvalidError: the path is invalid,
        or the index is out of range or the root."""
        name = _path(path)
        self._do(f"add {path}", library.IDXAddImage, item_of(name=name, index=index, attribute=attribute))

    def move(self, path: StrPath, index: int, *, force: bool = False) -> None:
        """Moves an image to another index, or adds it if it is not in the catalogue. NotFoundError: no such index;
        ProtectedError, unless forced."""
        if index == ROOT:  # the call would remove the image
            raise InvalidError(f"cannot move {path}: the root holds no images; pass another index", Status.PARAM)
        name = _path(path)
        self._do(f"move {path}", library.IDXChangeImage, item_of(name=name, index=index, state=_state(force)))

    def set_attribute(self, path: StrPath, attribute: int) -> None:
        """Sets the attribute of an image. NotFoundError."""
        name = _path(path)
        self._do(f"change {path}", library.IDXChangeImage, item_of(name=name, attribute=attribute))

    def remove(self, path: StrPath, *, force: bool = False) -> None:
        """Removes an image from the catalogue, but not its file. NotFoundError; ProtectedError, unless forced."""
        name = _path(path)
        self._do(f"remove {path}", library.IDXRemoveImage, item_of(name=name, state=_state(force)))

    def image(self, path: StrPath) -> Image:
        """The image with this path. NotFoundError."""
        name = _path(path)
        item = item_of(name=name, index=0, attribute=0)
        self._do(f"find {path}", library.IDXSearchImage, item)
        return Image(os.fspath(path), item.index, item.attribute)

    def __contains__(self, path: StrPath) -> bool:
        """Whether the catalogue has an image with this path. False for an invalid path."""
        try:
            name = _path(path)
        except InvalidError:
            return False
        status = self._status(library.IDXSearchImage, ctypes.byref(item_of(name=name)))
        if status not in (Status.OK, Status.NOIMAGE):
            raise _error_of(status, f"find {path}")
        return status == Status.OK

    def __len__(self) -> int:
        item, status, count = Item(), ctypes.c_uint32(), 0
        with _calls:
            self._require_open()
            find = library.IDXFindFirstImage(ctypes.byref(item), ctypes.byref(status))
            try:
                while status.value == Status.OK:
                    count += 1
                    status.value = library.IDXFindNextImage(find, ctypes.byref(item))
            finally:
                library.IDXCloseFind(find)
        if status.value != Status.NOIMAGE:
            raise _error_of(status.value, "count the images")
        return count

    def images(self, index: int = ROOT, folder: StrPath | None = None) -> Iterator[Image]:
        """Walks the images of an index and of the indexes below it that are in a folder or in the folders below it. The
        folder "/" excludes folders whose path begins with /Volumes. The walk may be empty. InvalidError: the index is
        out of range."""
        name, path = String(), None if folder is None else _path(folder)
        item = item_of(name=name, path=path, index=index, attribute=0, operation=OP_GETINFO | OP_CONDITION)
        with _calls:
            self._require_open()
            return _Walk(library.IDXFindFirstImage, library.IDXFindNextImage, Status.NOIMAGE, item, name,
                         lambda found, text: Image(text, found.index, found.attribute))

    # ---- Indexes

    def add_index(self, name: str, parent: int = ROOT, attribute: int = 0, *, exist_ok: bool = False) -> int:
        """Adds an index below another and returns its number. ExistsError: the parent has a child of this name; with
        `exist_ok` the call returns the number of this child. FullError; NotFoundError: no such parent; InvalidError:
        the parent is out of range or on the fourth level."""
        text = String(name, "name")
        item = item_of(name=text, index=parent, attribute=attribute, operation=OP_GETINFO)
        status = self._status(library.IDXAddIndex, ctypes.byref(item))
        if status != Status.OK and not (exist_ok and status == Status.INDEXEXISTS):
            raise _error_of(status, f"add the index {name!r}")
        return int(item.index)

    def rename_index(self, number: int, name: str, *, force: bool = False) -> None:
        """Changes the display name of an index. NotFoundError; ProtectedError, unless forced: presets are protected."""
        text = String(name, "name")
        item = item_of(name=text, index=number, state=_state(force))
        self._do(f"rename index {number}", library.IDXChangeIndex, item)

    def name_presets(self, names: Mapping[int, str]) -> None:
        """Sets display names of indexes, even of protected indexes. A load does not restore the names of presets.
        NotFoundError: an index does not exist. The indexes before it have been renamed."""
        for number, name in names.items():
            self.rename_index(number, name, force=True)

    def set_index_attribute(self, number: int, attribute: int) -> None:
        """Sets the attribute of an index. NotFoundError."""
        self._do(f"change index {number}", library.IDXChangeIndex, item_of(index=number, attribute=attribute))

    def remove_index(self, number: int, *, force: bool = False) -> None:
        """Removes an index, and its images from the catalogue. NotFoundError; NotEmptyError: it has child indexes;
        ProtectedError, unless forced: the index or one of its images is protected. If an image is protected, the images
        that were added to the index before this image have been removed."""
        self._do(f"remove index {number}", library.IDXRemoveIndex, item_of(index=number, state=_state(force)))

    def index(self, number: int) -> Index:
        """The index with this number. NotFoundError."""
        name = String()
        item = item_of(name=name, index=number, attribute=0)
        self._do(f"find index {number}", library.IDXSearchIndex, item)
        return Index(item.index, name.take(), item.attribute)

    def indexes(self, start: int | None = None) -> Iterator[Index]:
        """Walks all indexes except the root, or the index `start` and all indexes below it; parents before children.
        The walk may be empty. InvalidError: `start` is out of range."""
        name = String()
        item = item_of(name=name, index=ROOT if start is None else start, attribute=0, operation=OP_GETINFO)
        if start is not None:
            item.operation |= OP_CONDITION
        with _calls:
            self._require_open()
            return _Walk(library.IDXFindFirstIndex, library.IDXFindNextIndex, Status.NOINDEX, item, name,
                         lambda found, text: Index(found.index, text, found.attribute))

    # ---- Files

    def load(self, *, missing_ok: bool = False) -> None:
        """Calls load_indexes(), then load_images()."""
        self.load_indexes(missing_ok=missing_ok)
        self.load_images(missing_ok=missing_ok)

    def save(self) -> None:
        """Writes both files. Do not save after a failed load: entries that were not loaded would be lost."""
        self.save_indexes()
        self.save_images()

    def load_indexes(self, name: StrPath = INDEX_FILE, *, missing_ok: bool = False) -> None:
        """Adds the indexes of a file. Indexes that exist already do not change. FileError; NoDataError, which is a
        FileError: the file is missing or has no list of indexes. `missing_ok` suppresses NoDataError."""
        self._load(name, library.IDXLoadIndexFile, missing_ok)

    def load_images(self, name: StrPath = IMAGE_FILE, *, missing_ok: bool = False) -> None:
        """Adds the images of a file, except images whose own file or index does not exist, and images that are in the
        catalogue already. The next save loses the images that were skipped. Call load_indexes() first. Raises what
        load_indexes() raises."""
        self._load(name, library.IDXLoadImageFile, missing_ok)

    def save_indexes(self, name: StrPath = INDEX_FILE) -> None:
        """Writes the indexes to a file. They replace the indexes in the file; other values stay. After a failure the
        old file is intact, unless its folder does not allow new files: then the file is overwritten in place, and a
        failure can cut it short. Indexes whose attribute is exactly the three protections, such as the presets, are not
        written. FileError."""
        self._file(f"write {name}", library.IDXWriteIndexFile, name)

    def save_images(self, name: StrPath = IMAGE_FILE) -> None:
        """Writes the images to a file as save_indexes() writes the indexes. FileError."""
        self._file(f"write {name}", library.IDXWriteImageFile, name)

    # ---- Scenes

    def classify(self, pixels: object, *, dpi: float = 0, kind: Kind = Kind.UNKNOWN) -> Preset | None:
        """Decides what a picture shows. Returns the preset for the picture, or None if it is undecided.

        `pixels` is a numpy array, or another object with the buffer protocol, of shape (rows, columns) or (rows,
        columns, 3), the top row first, with unsigned samples of 8 or 16 bits. For bytes, pass
        memoryview(data).cast("B", (rows, columns, 3)). The pixels are read in place if the samples of a row are
        adjacent and rows run downward; otherwise they are copied. They are also copied if they are some columns of a
        larger picture and end with its last byte. They must not change during the call.

        `dpi` is the resolution, or 0 if unknown. SceneError: more than 4096 pixels on a side, or an engine failed.
        InvalidError: invalid pixels.
        """
        if not isinstance(kind, Kind):
            raise TypeError(f"the kind {kind!r} is of type {type(kind).__name__}; pass a Kind, such as Kind.DOCUMENT")
        if not math.isfinite(dpi):
            raise InvalidError(f"the dpi {dpi} is not finite; pass 0 if it is unknown", Status.PARAM)
        picture = Picture(resolution=max(0, min(round(dpi), 2**31 - 1)), **_HINTS[kind])
        view = describe(pixels, picture)
        with _scenes:
            self._require_open()
            status = library.IDXDetectScene(ctypes.byref(picture))
        del view
        if status:
            raise _error_of(status, "classify the picture")
        return None if picture.presetIndex == -1 else Preset(picture.presetIndex)

    # ---- Calls

    def _is_open(self) -> bool:
        return Catalogue._open is not None and Catalogue._open() is self

    def _require_open(self) -> None:
        if not self._is_open():
            raise ClosedError("the catalogue is closed; open a new one")

    def _status(self, function: Callable[..., int], *arguments: Any) -> int:
        with _calls:
            self._require_open()
            return function(*arguments)

    def _do(self, action: str, function: Callable[..., int], item: Item) -> None:
        status = self._status(function, ctypes.byref(item))
        if status:
            raise _error_of(status, action)

    def _file(self, action: str, function: Callable[..., int], name: StrPath) -> None:
        text = String(os.fspath(name), "file name")
        status = self._status(function, text.pointer())
        if status:
            raise _error_of(status, action, file_error_of)

    def _load(self, name: StrPath, function: Callable[..., int], missing_ok: bool) -> None:
        try:
            self._file(f"load {name}", function, name)
        except NoDataError:
            if not missing_ok:
                raise


def _path(path: StrPath) -> String:
    return String(os.fspath(path), "path")


def _state(force: bool) -> int:
    return STATE_FORCE if force else 0
