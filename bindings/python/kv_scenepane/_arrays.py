"""Arrays and texts as arguments: checks of type, shape and layout, and their addresses. No array is
copied.
"""
from __future__ import annotations

import ctypes
import struct
from typing import Any, Optional

import numpy as np

from ._values import REQUIRED, TAGS, check_int, flag, path_bytes, refusal, text_bytes

_PATHS = {"path", "filename"}
_DTYPES = {name: np.dtype(name) for name in ("int32", "float32", "uint8", "uint32")}
# Arrays that may be None: their lengths are then given.
_OPTIONAL = {
    ("AddOverlayData", "argbU8DataPtrHack"),
    ("CreateLine3D", "XYZs"),
    ("ImportPoints", "xyz"),
    ("ImportPoints", "colors"),
}
_C_CONTIGUOUS_AND_ALIGNED = 0x101  # bits of numpy's flags
_from_buffer = ctypes.c_char.from_buffer
_addressof = ctypes.addressof
_ndarray = np.ndarray


def address(array: np.ndarray) -> int:
    """Where the elements of an array are."""
    if array.size and array.flags.writeable:
        return _addressof(_from_buffer(array))  # several times as fast
    return array.__array_interface__["data"][0]


def checked_array(
    method: str, argument: str, value: Any, element: str, dimensions: int
) -> np.ndarray:
    """The array itself, after checks of its type, number of dimensions and layout."""
    if not isinstance(value, np.ndarray):
        raise TypeError(f"{method}(): {argument} must be a numpy array, not {type(value).__name__}")
    # A derived class may return anything as its shape.
    array = value if type(value) is np.ndarray else np.asarray(value)
    if array.dtype != _DTYPES[element]:
        raise TypeError(f"{method}(): {argument} must hold {element}, not {array.dtype}")
    if array.ndim != dimensions:
        raise ValueError(
            f"{method}(): {argument} must have {dimensions} dimensions, not {array.ndim}"
        )
    if array.flags.num & _C_CONTIGUOUS_AND_ALIGNED != _C_CONTIGUOUS_AND_ALIGNED:
        raise ValueError(
            f"{method}(): {argument} must be C-contiguous and aligned; "
            "numpy.ascontiguousarray() makes a copy that is"
        )
    return array


class _Array:
    """An array argument: its place, and its dimensions as numbers or names of arguments."""

    __slots__ = ("place", "name", "element", "shape", "dimensions", "dtype", "rank", "is_optional")

    def __init__(self, method: str, place: int, record: tuple) -> None:
        self.place = place
        self.name, _, self.element, self.shape = record
        self.dimensions = tuple(
            int(part) if part.isdigit() else part for part in self.shape.split(" x ")
        )
        self.dtype = _DTYPES[self.element]
        self.rank = len(self.dimensions)
        self.is_optional = (method, self.name) in _OPTIONAL


class Packer:
    """Packs the arguments of one method that has arrays or texts."""

    def __init__(self, method: Any) -> None:
        self._method = method.name
        self._inputs = method.inputs
        self._pack = method.pack
        self._template = [word for record in method.inputs for word in (TAGS[record[1]], None)]
        records = list(enumerate(method.inputs))
        self._arrays = [
            _Array(method.name, place, record) for place, record in records if len(record) == 4
        ]
        names = {
            part for array in self._arrays for part in array.dimensions if isinstance(part, str)
        }
        self._lengths = [(place, record[0]) for place, record in records if record[0] in names]
        self._others = [
            (place, record[0], "mesh" if record[1] == "p" else record[1])
            for place, record in records
            if len(record) < 4 and record[1] in "wbp"
        ]

    def pack(self, values: tuple, keep: dict[Any, Any]) -> bytes:
        """The packed arguments.

        keep: receives by name what must live until the call returns
        """
        packed = self._template.copy()
        packed[1::2] = values
        sizes: dict[str, int] = {}
        for place, name in self._lengths:
            value = values[place]
            if value is not None:
                sizes[name] = value if type(value) is int else self._length(name, value)
        for array in self._arrays:
            packed[2 * array.place + 1] = self._array(array, values[array.place], sizes, keep)
        for place, name, code in self._others:
            packed[2 * place + 1] = self._other(name, code, values[place], keep)
        for place, name in self._lengths:
            if name not in sizes:
                raise ValueError(f"{self._method}(): {name} is needed without an array")
            packed[2 * place + 1] = sizes[name]
        try:
            return self._pack(*packed)
        except (struct.error, OverflowError, TypeError):
            raise self._refusal(packed[1::2]) from None

    def _array(self, array: _Array, value: Any, sizes: dict[str, int], keep: dict[Any, Any]) -> int:
        # What is nearly always so is asked first, and without a call.
        if (
            type(value) is not _ndarray
            or value.dtype is not array.dtype
            or len(value.shape) != array.rank
            or value.flags.num & _C_CONTIGUOUS_AND_ALIGNED != _C_CONTIGUOUS_AND_ALIGNED
        ):
            if value is None and array.is_optional:
                return 0
            if value is REQUIRED:
                raise self._missing(array.name)
            value = checked_array(self._method, array.name, value, array.element, array.rank)
        for part, length in zip(array.dimensions, value.shape):
            if length != (part if part.__class__ is int else sizes.setdefault(part, length)):
                raise self._shape_error(array, value, sizes)
        keep[array.name] = value
        try:
            # Several times as fast as address(), but only for arrays that can be written and are
            # not empty.
            buffer = keep[array.place] = _from_buffer(value)
            return _addressof(buffer)
        except (TypeError, ValueError):
            return address(value)

    def _other(self, name: str, code: str, value: Any, keep: dict[Any, Any]) -> Any:
        if value is REQUIRED:
            raise self._missing(name)
        if code == "b":
            return flag(value)
        if code == "mesh":
            return _mesh_address(self._method, value, keep)
        if value is None and name == "filename":
            return 0
        convert = path_bytes if name in _PATHS else text_bytes
        keep[name] = ctypes.c_char_p(convert(self._method, name, value))
        return ctypes.cast(keep[name], ctypes.c_void_p).value

    def _length(self, name: str, value: Any) -> int:
        return check_int(self._method, name, value)

    def _missing(self, name: str) -> TypeError:
        return TypeError(f"{self._method}() missing a required argument: '{name}'")

    def _shape_error(self, array: _Array, value: np.ndarray, sizes: dict[str, int]) -> ValueError:
        expected = " x ".join(str(sizes.get(part, part)) for part in array.dimensions)
        return ValueError(
            f"{self._method}(): {array.name} has the shape {value.shape}, "
            f"but must have {expected} ({array.shape})"
        )

    def _refusal(self, values: list) -> Exception:
        for record, value in zip(self._inputs, values):
            if value is REQUIRED:
                return self._missing(record[0])
            error: Optional[Exception] = None
            if record[1] in "sbif":
                error = refusal(self._method, record[0], record[1], value)
            if error is not None:
                return error
        return TypeError(f"{self._method}(): an argument changed while it was read")


def _mesh_address(method: str, value: Any, keep: dict[Any, Any]) -> int:
    from ._mesh import Mesh, MeshHandle

    if not isinstance(value, Mesh) or not hasattr(value, "_records"):
        raise TypeError(f"{method}(): mesh must be a kv.Mesh, not {type(value).__name__}")
    mesh = keep["mesh"] = MeshHandle(value)
    return mesh.value
