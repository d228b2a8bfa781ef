"""The request for a window, and checks of its arguments."""
from __future__ import annotations

import ctypes
import math
from typing import Any, Optional

from . import _library
from ._library import library
from ._values import check_int, encoded


def make_request(
    kind: int, width: Any, height: Any, samples: Any, scale: Any
) -> _library.WindowRequest:
    request = _library.WindowRequest()
    library.kv_window_request_init(ctypes.byref(request))
    request.kind = kind
    request.width = _side("width", width)
    request.height = _side("height", height)
    request.samples = check_int("ScenePane", "samples", samples)
    if request.samples < 0:
        raise ValueError(f"ScenePane: samples is {request.samples}")
    request.scale = scale_of("ScenePane", scale)
    return request


def scale_of(method: str, value: Any) -> float:
    """A factor of text, lines and points. The viewer limits it to 0.25 to 8."""
    scale = number_of(method, "scale", value)
    if not 0 < scale < math.inf:
        raise ValueError(f"{method}(): scale is {scale}, but must be finite and above 0")
    return scale


def _side(name: str, value: Any) -> int:
    number = check_int("ScenePane", name, value)
    if not 1 <= number <= 32767:
        raise ValueError(f"ScenePane: {name} is {number}, not 1 to 32767")
    return number


def number_of(method: str, name: str, value: Any) -> float:
    if isinstance(value, (str, bytes, bytearray)):
        raise TypeError(f"{method}(): {name} must be a float, not {type(value).__name__}")
    try:
        return float(value)
    except TypeError:
        raise TypeError(f"{method}(): {name} must be a float, not {type(value).__name__}") from None


def window_number(method: str, value: Any) -> int:
    try:
        number = value.__index__()
    except AttributeError:
        raise TypeError(
            f"{method}(): window_id must be an int, not {type(value).__name__}"
        ) from None
    if not 0 <= number <= 0xFFFFFFFF:
        raise ValueError(f"{method}(): window_id is {number}, which is no X11 window")
    return number


def optional_text(method: str, name: str, value: Any) -> Optional[bytes]:
    return None if value is None else encoded(method, name, value)
