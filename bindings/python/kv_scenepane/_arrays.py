"""Arrays as arguments: checks of type, shape and layout, and their addresses. Nothing is copied."""
from __future__ import annotations

import struct
from typing import Any, Optional

import numpy as np

from ._values import REQUIRED, TAGS, check_int, flag, path_bytes, refusal, text_bytes

_PATHS = {"path", "filename"}
_DTYPES = {name: np.dtype(name) for name in ("int32", "float32", "uint8", "uint32")}
# Arrays that may be left out, with the numbers then given as they are.
_OPTIONAL = {
    ("AddOverlayData", "argbU8DataPtrHack"),
    ("CreateLine3D", "XYZs"),
    ("ImportPoints", "xyz"),
    ("ImportPoints", "colors"),
}


def address(array: np.ndarray) -> int:
    """Where the elements of an array are."""
    return array.__array_interface__["data"][0]


def checked_array(method: str, argument: str, value: Any, element: str, dimensions: int) -> np.ndarray:
    """The array itself, after checks of its type, number of dimensions and layout."""
    if not isinstance(value, np.ndarray):
        raise TypeError(f"{method}(): {argument} must be a numpy array, not {type(value).__name__}")
    # A derived class may return anything as its shape.
    array = value if type(value) is np.ndarray else np.asarray(value)
    if array.dtype != _DTYPES[element]:
        raise TypeError(f"{method}(): {argument} must hold {element}, not {array.dtype}")
    if array.ndim != dimensions:
        raise ValueError(f"{method}(): {argument} must have {dimensions} dimensions, not {array.ndim}")
    flags = array.flags
    if not flags.c_contiguous or not flags.aligned:
        raise ValueError(f"{method}(): {argument} must be C-contiguous and aligned; numpy.ascontiguousarray() copies")
    return array


def _check_shape(method: Any, record: tuple, array: np.ndarray, sizes: dict[str, Optional[int]]) -> None:
    name, shape = record[0], record[3].split(" x ")
    for axis, (symbol, length) in enumerate(zip(shape, array.shape)):
        if symbol.isdigit():
            expected = int(symbol)
        else:
            if sizes.get(symbol) is None:
                sizes[symbol] = length
            expected = sizes[symbol]
        if length != expected:
            raise ValueError(
                f"{method.name}(): {name} has the shape {array.shape}, but must have "
                f"{expected} on axis {axis} ({record[3]})"
            )


def _lengths(method: Any) -> set[str]:
    return {
        symbol
        for record in method.inputs
        if len(record) > 3
        for symbol in record[3].split(" x ")
        if not symbol.isdigit()
    }


def _text(method: Any, name: str, value: Any, keep: dict) -> int:
    if value is None and name == "filename":
        return 0
    data = path_bytes(method.name, name, value) if name in _PATHS else text_bytes(method.name, name, value)
    array = np.frombuffer(data, np.uint8)
    keep[name] = array
    return address(array)


def _array_address(method: Any, record: tuple, value: Any, sizes: dict, keep: dict) -> int:
    name, element = record[0], record[2]
    if element == "mesh":
        return _mesh_address(method, value)
    if value is None and (method.name, name) in _OPTIONAL:
        return 0
    array = checked_array(method.name, name, value, element, record[3].count(" x ") + 1)
    _check_shape(method, record, array, sizes)
    keep[name] = array
    return address(array)


def _mesh_address(method: Any, value: Any) -> int:
    from ._mesh import Mesh

    handle = getattr(value, "_handle", None) if isinstance(value, Mesh) else None
    if handle is None:
        raise TypeError(f"{method.name}(): mesh must be a kv.Mesh, not {type(value).__name__}")
    return handle


def pack_all(method: Any, values: tuple, keep: dict) -> bytes:
    """Packs the arguments of a method that has arrays or texts.

    keep: receives what must live until the call returns
    """
    lengths = _lengths(method)
    sizes: dict[str, Optional[int]] = {}
    packed: list[Any] = [None] * (2 * len(values))
    for place, (record, value) in enumerate(zip(method.inputs, values)):
        if value is REQUIRED:
            raise TypeError(f"{method.name}() missing a required argument: '{record[0]}'")
        if record[0] in lengths:
            sizes[record[0]] = None if value is None else check_int(method.name, record[0], value)
    for place, (record, value) in enumerate(zip(method.inputs, values)):
        code = record[1]
        packed[2 * place] = TAGS[code]
        if code == "w":
            value = _text(method, record[0], value, keep)
        elif code == "p":
            value = _array_address(method, record, value, sizes, keep)
        elif code == "b":
            value = flag(value)
        packed[2 * place + 1] = value
    for place, record in enumerate(method.inputs):
        if record[0] in lengths:
            if sizes[record[0]] is None:
                raise ValueError(f"{method.name}(): {record[0]} is needed without an array")
            packed[2 * place + 1] = sizes[record[0]]
    try:
        return method.pack(*packed)
    except (struct.error, OverflowError, TypeError):
        for record, value in zip(method.inputs, packed[1::2]):
            error = refusal(method.name, record[0], record[1], value) if record[1] in "sbif" else None
            if error is not None:
                raise error from None
        raise TypeError(f"{method.name}(): an argument changed while it was read") from None
