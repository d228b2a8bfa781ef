"""What the viewer returns besides numbers: events, points, cuts, alignments."""
from __future__ import annotations

import ctypes
import enum
from dataclasses import dataclass
from typing import Any, NamedTuple, Optional, Sequence

import numpy as np
from numpy.typing import NDArray

from . import _library
from ._library import library


class EventType:
    """One event of the surface as data.

    fields: names of its arguments; text: when it is fired
    """

    __slots__ = ("id", "name", "arguments", "fields", "text")

    def __init__(self, number: int, name: str, arguments: tuple, text: str) -> None:
        self.id = number
        self.name = name
        self.arguments = arguments
        self.fields = tuple(argument[0] for argument in arguments)
        self.text = text

    def __eq__(self, other: Any) -> bool:
        if not isinstance(other, EventType):
            return NotImplemented
        return (self.id, self.name) == (other.id, other.name)

    def __hash__(self) -> int:
        return hash((self.id, self.name))

    def __repr__(self) -> str:
        return f"<event {self.id} {self.name}({', '.join(self.fields)})>"


class Event:
    """An event that was fired.

    name: of the event; event_id: its number; arguments: their values in order. Each argument is an
    attribute under its own name. id is the argument id of the events of needles, else event_id.
    """

    __slots__ = ("_type", "arguments")

    def __init__(self, event_type: EventType, arguments: tuple) -> None:
        self._type = event_type
        self.arguments = arguments

    @property
    def name(self) -> str:
        return self._type.name

    @property
    def event_id(self) -> int:
        return self._type.id

    def __getattr__(self, name: str) -> Any:
        fields = object.__getattribute__(self, "_type").fields
        if name in fields:
            return self.arguments[fields.index(name)]
        if name == "id":
            return self.event_id
        raise AttributeError(f"the event {self.name} has no {name}")

    def __dir__(self) -> list[str]:
        return sorted({"name", "event_id", "id", "arguments", *self._type.fields})

    def __eq__(self, other: Any) -> bool:
        if not isinstance(other, Event):
            return NotImplemented
        return (self._type, self.arguments) == (other._type, other.arguments)

    def __hash__(self) -> int:
        return hash((self._type, self.arguments))

    def __repr__(self) -> str:
        words = ", ".join(
            f"{field}={value}" for field, value in zip(self._type.fields, self.arguments)
        )
        return f"Event({self.name}: {words})" if words else f"Event({self.name})"


class SurfacePoint(NamedTuple):
    """The nearest surface under a pixel: point in the world frame, distance along the view."""

    object: int
    triangle: int
    point: tuple[float, float, float]
    distance: float


class CutOutcome(enum.IntEnum):
    """What a save of cuts does with an object."""

    TO_BE_WRITTEN = 0
    WRITTEN = 1
    NOTHING_TO_SAVE = 2
    NOT_FROM_PCM = 3
    FILE_NOT_READ = 4
    FILE_NOT_WRITTEN = 5


class CutSaveEntry(NamedTuple):
    """One object in a save of cuts. file: a path; reason: why it was not read or not written."""

    object: int
    outcome: CutOutcome
    file: str
    reason: str
    cut_count: int
    is_moved: bool
    is_cut_while_moved: bool
    is_nothing_left: bool


class AlignmentPair(NamedTuple):
    """Two points that belong together, world frame. Normals are 0 where they are unknown."""

    moving: Sequence[float]
    fixed: Sequence[float]
    moving_normal: Sequence[float] = (0.0, 0.0, 0.0)
    fixed_normal: Sequence[float] = (0.0, 0.0, 0.0)


class Alignment(NamedTuple):
    """What an alignment by points found.

    transform: 4 x 4 float64, moving to fixed points; residuals: one distance per pair; rms in scene
    units
    """

    is_found: bool
    transform: NDArray[np.float64]
    rms: float
    pairs: list[AlignmentPair]
    residuals: NDArray[np.float64]


class ClipHeight(NamedTuple):
    """What the last placement of the clip plane at the data found.

    kind: 0 not decided, 1 from all points, 2 flat spot, 3 curved spot
    """

    found: bool
    height: float
    kind: int


@dataclass(frozen=True)
class CutMask:
    """The region of one finished cut with its camera; a copy.

    kind: 0 removes inside, 1 outside, 2 what is visible inside
    projection, model_view: 4 x 4, as matrices for column vectors
    viewport: x, y, width, height; bounds: min x, min y, max x, max y, inclusive, y downward
    mask: bool, height x width, top row first: the region
    depth: of kind 2 window depths, height x width, top row first; else None
    """

    address: int
    kind: int
    projection: NDArray[np.float64]
    model_view: NDArray[np.float64]
    viewport: tuple[int, int, int, int]
    bounds: tuple[int, int, int, int]
    mask: NDArray[np.bool_]
    depth: Optional[NDArray[np.float32]]


def _words(pointer: Optional[int], count: int, kind: Any) -> Any:
    if not pointer or not count:
        return np.empty(0, kind)
    return np.ctypeslib.as_array((kind * count).from_address(pointer)).copy()


def read_cut_mask(address: int) -> CutMask:
    """Copies a mask that is alive."""
    raw = _library.CutMask()
    library.kv_cut_mask_read(address, ctypes.byref(raw))
    _, _, width, height = raw.viewport
    words = _words(raw.bits, (raw.bit_count + 31) // 32, ctypes.c_uint32)
    bits = np.unpackbits(words.astype("<u4").view(np.uint8), bitorder="little")[: raw.bit_count]
    depth = _words(raw.depth, raw.depth_count, ctypes.c_float)
    return CutMask(
        address=address,
        kind=raw.kind,
        projection=np.array(raw.projection).reshape(4, 4).T.copy(),
        model_view=np.array(raw.model_view).reshape(4, 4).T.copy(),
        viewport=(raw.viewport[0], raw.viewport[1], width, height),
        bounds=(raw.bounds[0], raw.bounds[1], raw.bounds[2], raw.bounds[3]),
        mask=bits.astype(bool).reshape(height, width)
        if bits.size == width * height
        else bits.astype(bool),
        depth=depth.reshape(height, width)[::-1].copy()
        if depth.size and depth.size == width * height
        else None,
    )
