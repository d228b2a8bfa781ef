"""Text and paths as the library reads them, and the packing of arguments."""
from __future__ import annotations

import operator
import os
from typing import Any, Union

import numpy as np

PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class _Required:
    """Marks an argument that has no default but follows one that has."""

    def __repr__(self) -> str:
        return "<required>"


REQUIRED: Any = _Required()

# Format of a kv_value in struct, with its type first, by the letter of an argument.
FORMATS = {"s": "i4xh6x", "b": "i4xh6x", "i": "i4xi4x", "f": "i4xf4x", "w": "i4xQ", "p": "i4xQ"}
TAGS = {"v": 0, "s": 1, "b": 1, "i": 2, "f": 3, "w": 5, "p": 6}
_RANGES = {"s": (-0x8000, 0x7FFF), "i": (-0x80000000, 0x7FFFFFFF), "l": (-(1 << 63), (1 << 63) - 1)}
_NAMES = {"s": "a short", "i": "a 32-bit integer", "l": "a 64-bit integer"}


def flag(value: Any) -> Any:
    """0 or -1 for a bool or an integer; anything else is returned as it is, and refused when it is
    packed.
    """
    if value is True:
        return -1
    if value is False:
        return 0
    if isinstance(value, (np.bool_, int, np.integer)):
        return -1 if value else 0
    return value


def text_bytes(method: str, argument: str, text: Any) -> bytes:
    """UTF-8 of a text, with the zero that ends it."""
    return encoded(method, argument, text) + b"\0"


def encoded(method: str, argument: str, text: Any) -> bytes:
    """UTF-8 of a text without zeros."""
    if not isinstance(text, str):
        raise TypeError(f"{method}(): {argument} must be a str, not {type(text).__name__}")
    try:
        data = text.encode("utf-8", "surrogateescape")
    except UnicodeEncodeError as error:
        raise _surrogate(method, argument, error) from None
    return _without_zero(method, argument, data)


def path_bytes(method: str, argument: str, path: Any) -> bytes:
    """The bytes of a path, with the zero that ends it."""
    try:
        data = os.fsencode(path)
    except TypeError:
        raise TypeError(
            f"{method}(): {argument} must be str, bytes or os.PathLike, not {type(path).__name__}"
        ) from None
    except UnicodeEncodeError as error:
        raise _surrogate(method, argument, error) from None
    return _without_zero(method, argument, bytes(data)) + b"\0"


def _surrogate(method: str, argument: str, error: UnicodeEncodeError) -> ValueError:
    return ValueError(f"{method}(): {argument} cannot be encoded at {error.start}: {error.reason}")


def _without_zero(method: str, argument: str, data: bytes) -> bytes:
    if 0 in data:
        raise ValueError(f"{method}(): {argument} holds a zero character")
    return data


def refusal(method: str, argument: str, code: str, value: Any) -> Exception | None:
    """Why a value cannot be packed; None when it can. A property has no argument."""
    what = f"{method}(): {argument}" if argument else f"{method}: the value"
    if code == "f":
        return _float_refusal(what, value)
    kind = "a bool" if code == "b" else "an int"
    try:
        number = operator.index(value)
    except TypeError:
        return TypeError(f"{what} must be {kind}, not {type(value).__name__}")
    if code == "b":
        return None
    low, high = _RANGES[code]
    if low <= number <= high:
        return None
    return OverflowError(f"{what} is {number}, which is not {_NAMES[code]}")


def _float_refusal(what: str, value: Any) -> Exception | None:
    try:
        number = float(value) if not isinstance(value, (str, bytes, bytearray)) else None
    except OverflowError:
        return OverflowError(f"{what} does not fit in 32 bits")
    except (TypeError, ValueError):
        number = None
    if number is None:
        return TypeError(f"{what} must be a float, not {type(value).__name__}")
    if np.isfinite(number) and abs(number) > 3.4028235e38:
        return OverflowError(f"{what} is {number}, which does not fit in 32 bits")
    return None


def check_int(method: str, argument: str, value: Any, code: str = "i") -> int:
    """The value as an int in range."""
    error = refusal(method, argument, code, value)
    if error is not None:
        raise error
    return operator.index(value)
