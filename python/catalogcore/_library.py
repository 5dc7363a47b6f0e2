"""The C library: its location, records, functions and strings."""
from __future__ import annotations

import ctypes
import operator
import os
import pathlib
import sysconfig
from ctypes import POINTER, c_char_p, c_int32, c_long, c_ubyte, c_uint8, c_uint16, c_uint32, c_void_p

from catalogcore.errors import InvalidError, OutOfMemoryError, Status

_NAME = "libcatalogcore.so.1"
_UTF8 = 0x08000100

OP_GETINFO, OP_CONDITION = 1, 2
MASK_NAME, MASK_PATH, MASK_INDEX, MASK_ATTRIBUTE = 1, 2, 4, 8
STATE_FORCE = 1


class Item(ctypes.Structure):
    """IDXITEM."""

    _fields_ = [("operation", c_uint8), ("name", POINTER(c_void_p)), ("path", POINTER(c_void_p)), ("index", c_int32),
                ("attribute", c_uint8), ("mask", c_uint32), ("state", c_uint8)]


class Picture(ctypes.Structure):
    """IDXDSDATA."""

    _fields_ = [("pixels", c_void_p), ("width", c_int32), ("height", c_int32), ("rowBytes", c_int32),
                ("bitsPerPixel", c_int32), ("resolution", c_int32), ("fixedScene", c_int32), ("typeHint", c_int32),
                ("photoHint", c_uint16), ("photoKind", c_uint16), ("presetIndex", c_int32)]


_STRING, _ITEM, _STATUS = POINTER(c_void_p), POINTER(Item), POINTER(c_uint32)

PROTOTYPES: dict[str, tuple[object, list[object]]] = {
    "IDXInitialize": (c_uint32, []),
    "IDXUninitialize": (c_uint32, []),
    "IDXSetFilePath": (c_uint32, [_STRING]),
    "IDXAddImage": (c_uint32, [_ITEM]),
    "IDXChangeImage": (c_uint32, [_ITEM]),
    "IDXRemoveImage": (c_uint32, [_ITEM]),
    "IDXSearchImage": (c_uint32, [_ITEM]),
    "IDXFindFirstImage": (c_void_p, [_ITEM, _STATUS]),
    "IDXFindNextImage": (c_uint32, [c_void_p, _ITEM]),
    "IDXCloseFind": (c_uint32, [c_void_p]),
    "IDXAddIndex": (c_uint32, [_ITEM]),
    "IDXChangeIndex": (c_uint32, [_ITEM]),
    "IDXRemoveIndex": (c_uint32, [_ITEM]),
    "IDXSearchIndex": (c_uint32, [_ITEM]),
    "IDXFindFirstIndex": (c_void_p, [_ITEM, _STATUS]),
    "IDXFindNextIndex": (c_uint32, [c_void_p, _ITEM]),
    "IDXSetPresetIndexName": (c_uint32, [POINTER(_STRING), POINTER(c_int32), c_int32]),
    "IDXLoadIndexFile": (c_uint32, [_STRING]),
    "IDXLoadImageFile": (c_uint32, [_STRING]),
    "IDXWriteIndexFile": (c_uint32, [_STRING]),
    "IDXWriteImageFile": (c_uint32, [_STRING]),
    "IDXDetectScene": (c_uint32, [POINTER(Picture)]),
    # Functions of libcatalogcore-cf, which libcatalogcore loads.
    "CFStringCreateWithCString": (c_void_p, [c_void_p, c_char_p, c_uint32]),
    "CFStringGetLength": (c_long, [c_void_p]),
    "CFStringGetMaximumSizeForEncoding": (c_long, [c_long, c_uint32]),
    "CFStringGetCString": (c_ubyte, [c_void_p, c_char_p, c_long, c_uint32]),
    "CFRelease": (None, [c_void_p]),
}


def _candidates() -> list[str]:
    """The files to try, in this order."""
    named = os.environ.get("CATALOGCORE_LIBRARY")
    if named:
        return [named]
    package = pathlib.Path(__file__).resolve().parent
    beside: list[str] = []
    if package.parent.name in ("dist-packages", "site-packages"):
        libraries = package.parents[2]
        folders = (libraries, libraries / (sysconfig.get_config_var("MULTIARCH") or "."), libraries.parent / "lib64")
        beside = [str(folder / _NAME) for folder in folders if (folder / _NAME).exists()]
    return [*beside, _NAME]


def _load() -> ctypes.CDLL:
    failures = []
    for candidate in _candidates():
        try:
            library = ctypes.CDLL(candidate)
        except OSError as failure:
            failures.append(str(failure))
            continue
        for name, (result, arguments) in PROTOTYPES.items():
            function = getattr(library, name)
            function.restype, function.argtypes = result, arguments
        return library
    raise ImportError(f"cannot load {_NAME} ({'; '.join(failures)}); install it, or set the environment variable "
                      "CATALOGCORE_LIBRARY to the library of a build")


library = _load()


class String:
    """A string variable for calls of the library. It owns the string in it."""

    def __init__(self, text: str | None = None, what: str = "text") -> None:
        self.variable = c_void_p()
        if text is not None:
            self._set(text, what)

    def _set(self, text: str, what: str) -> None:
        if not isinstance(text, str):
            raise TypeError(f"the {what} {text!r} is of type {type(text).__name__}; pass a str (os.fsdecode converts "
                            "bytes)")
        try:
            encoded = text.encode()
        except UnicodeEncodeError:
            raise InvalidError(f"the {what} {text!r} is not valid UTF-8; rename it") from None
        if not encoded or b"\0" in encoded:
            raise InvalidError(f"the {what} {text!r} is empty or has a zero byte; pass another", Status.PARAM)
        self.variable.value = library.CFStringCreateWithCString(None, encoded, _UTF8)
        if not self.variable:
            raise OutOfMemoryError(f"out of memory for the {what} {text!r}; free some and try again",
                                   Status.MEMORY)

    def pointer(self) -> ctypes._Pointer[c_void_p]:
        """The pointer for a field or an argument. It keeps the variable alive, but not the string in it."""
        return ctypes.pointer(self.variable)

    def take(self) -> str:
        """The text that the library stored, or an empty text. Releases the string."""
        if not self.variable:
            return ""
        try:
            length = library.CFStringGetLength(self.variable)
            buffer = ctypes.create_string_buffer(library.CFStringGetMaximumSizeForEncoding(length, _UTF8) + 1)
            library.CFStringGetCString(self.variable, buffer, len(buffer), _UTF8)
            return buffer.value.decode()
        finally:
            self._release()

    def _release(self) -> None:
        if self.variable:
            library.CFRelease(self.variable)
            self.variable.value = None

    def __del__(self) -> None:
        self._release()


def _checked(value: int, low: int, high: int, what: str) -> int:
    try:
        number = operator.index(value)
    except TypeError:
        raise TypeError(f"the {what} {value!r} is of type {type(value).__name__}; pass its number, an int") from None
    # ctypes would truncate the number silently.
    if not low <= number <= high:
        raise InvalidError(f"the {what} {number} is out of range; pass a number from {low} to {high}", Status.PARAM)
    return number


def item_of(*, name: String | None = None, path: String | None = None, index: int | None = None,
            attribute: int | None = None, operation: int = 0, state: int = 0) -> Item:
    """A record in which the given fields are set and marked. The strings must live as long as the record is used."""
    item = Item(operation=operation, state=state)
    if name is not None:
        item.name, item.mask = name.pointer(), item.mask | MASK_NAME
    if path is not None:
        item.path, item.mask = path.pointer(), item.mask | MASK_PATH
    if index is not None:
        item.index, item.mask = _checked(index, -1, 99999999, "index"), item.mask | MASK_INDEX
    if attribute is not None:
        item.attribute, item.mask = _checked(attribute, 0, 255, "attribute"), item.mask | MASK_ATTRIBUTE
    return item
