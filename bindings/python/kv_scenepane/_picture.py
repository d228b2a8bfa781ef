"""Pictures: from the words of the library to r, g, b, a, and PNG files."""
from __future__ import annotations

import struct
import sys
import zlib
from typing import Any

import numpy as np

from ._values import PathLike
from ._whole_file import write_whole


_BLOCK = 32768  # words that stay in the cache while they are worked on
_ALPHA_AND_GREEN, _RED_AND_BLUE, _HALF = np.uint32(0xFF00FF00), np.uint32(0x00FF00FF), np.uint32(16)


def rgba(words: np.ndarray) -> np.ndarray:
    """Turns 0xAARRGGBB words into r, g, b, a bytes, in place.

    words: uint32, height x width, C-contiguous
    """
    flat = words.reshape(-1)
    for first in range(0, flat.size, _BLOCK):
        part = flat[first : first + _BLOCK]
        swapped = part & _RED_AND_BLUE
        part &= _ALPHA_AND_GREEN
        part |= swapped << _HALF
        swapped >>= _HALF
        part |= swapped
    if sys.byteorder == "big":
        words.byteswap(inplace=True)
    return words.view(np.uint8).reshape(*words.shape, 4)


def _chunk(kind: bytes, data: bytes) -> bytes:
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(picture: Any, level: int = 6) -> bytes:
    """A PNG file of a picture: uint8, height x width x 4 (r, g, b, a), x 3, or height x width."""
    pixels = np.asarray(picture)
    if pixels.dtype != np.uint8:
        raise TypeError(f"png(): a picture holds uint8, not {pixels.dtype}")
    if pixels.ndim == 2:
        pixels = pixels[:, :, None]
    if pixels.ndim != 3 or pixels.shape[2] not in (1, 3, 4) or 0 in pixels.shape:
        raise ValueError(
            f"png(): a picture of the shape {np.shape(picture)} is not height x width x 4"
        )
    height, width, channels = pixels.shape
    rows = np.zeros((height, 1 + width * channels), np.uint8)  # the first byte of a row: no filter
    rows[:, 1:] = pixels.reshape(height, width * channels)
    kind = {1: 0, 3: 2, 4: 6}[channels]
    header = struct.pack(">IIBBBBB", width, height, 8, kind, 0, 0, 0)
    return (
        b"\x89PNG\r\n\x1a\n"
        + _chunk(b"IHDR", header)
        + _chunk(b"IDAT", zlib.compress(rows.tobytes(), level))
        + _chunk(b"IEND", b"")
    )


def save_png(path: PathLike, picture: Any) -> None:
    """Writes a PNG file. An existing one is replaced as a whole, or stays as it is: it keeps its mode, a link is followed
    and a write-protected file is refused."""
    write_whole(path, png(picture))
