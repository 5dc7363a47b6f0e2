"""Passes the pixels of objects with the buffer protocol to the library, without a copy where possible."""
from __future__ import annotations

import ctypes
from typing import Any, cast

from catalogcore._library import Picture
from catalogcore.errors import InvalidError, Status

_MOST = 2**31 - 1


class _Buffer(ctypes.Structure):
    """Py_buffer. Only the first field is used."""

    _fields_ = [("buf", ctypes.c_void_p), ("obj", ctypes.c_void_p), ("len", ctypes.c_ssize_t),
                ("itemsize", ctypes.c_ssize_t), ("readonly", ctypes.c_int), ("ndim", ctypes.c_int),
                ("format", ctypes.c_char_p), ("shape", ctypes.c_void_p), ("strides", ctypes.c_void_p),
                ("suboffsets", ctypes.c_void_p), ("internal", ctypes.c_void_p)]


_RECORDS_RO = 0x1C  # PyBUF_RECORDS_RO: with format and strides, read-only
_get_buffer = ctypes.pythonapi.PyObject_GetBuffer
_get_buffer.argtypes = [ctypes.py_object, ctypes.POINTER(_Buffer), ctypes.c_int]
_release_buffer = ctypes.pythonapi.PyBuffer_Release
_release_buffer.argtypes, _release_buffer.restype = [ctypes.POINTER(_Buffer)], None


def _address(view: memoryview) -> int:
    """The address of the first sample, valid as long as the view."""
    buffer = _Buffer()
    _get_buffer(view, ctypes.byref(buffer), _RECORDS_RO)
    try:
        return buffer.buf or 0
    finally:
        _release_buffer(ctypes.byref(buffer))


def _reaches(view: memoryview, size: int) -> bool:
    """Whether `size` bytes from the first sample on are readable, because the view is part of a larger array."""
    try:
        whole = memoryview(cast(Any, view.obj).base)
    except (AttributeError, TypeError):
        return False
    first = _address(whole)
    return whole.c_contiguous and first <= _address(view) and _address(view) + size <= first + whole.nbytes


def _row_stride(view: memoryview, rows: int, columns: int, samples: int) -> int:
    """The number of bytes from one row to the next; 0 if the library cannot read this layout."""
    strides = view.strides or ()
    row_bytes = columns * samples * view.itemsize
    if (samples > 1 and strides[2] != view.itemsize) or (columns > 1 and strides[1] != samples * view.itemsize):
        return 0
    if rows == 1 or strides[0] == row_bytes:
        return row_bytes
    # The library also reads the padding of the last row, which may be missing.
    return strides[0] if row_bytes < strides[0] <= _MOST and _reaches(view, strides[0] * rows) else 0


def describe(pixels: object, picture: Picture) -> memoryview:
    """Sets the fields of the record for the pixels. The returned view must live as long as the record is used."""
    view = memoryview(cast(Any, pixels))
    shape = view.shape or ()
    if view.format.lstrip("@=") not in ("B", "H"):
        raise InvalidError(f"samples of the format {view.format!r} cannot be classified; pass uint8 or uint16 in the "
                           "machine's byte order", Status.PARAM)
    if len(shape) not in (2, 3) or 0 in shape or shape[2:] not in ((), (1,), (3,)):
        raise InvalidError(f"pixels of the shape {shape} cannot be classified; pass (rows, columns) or "
                           "(rows, columns, 3)", Status.PARAM)
    rows, columns, samples = (*shape, 1)[:3]
    picture.bitsPerPixel = 8 * samples * view.itemsize
    stride = _row_stride(view, rows, columns, samples)
    if not stride:
        stride = columns * samples * view.itemsize
        view = memoryview(view.tobytes())
    picture.pixels = _address(view)
    # The library checks width and height first, and rejects values above these bounds.
    picture.width, picture.height, picture.rowBytes = min(columns, _MOST), min(rows, _MOST), min(stride, _MOST)
    return view
