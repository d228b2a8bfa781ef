"""What the automation surface does not return: pictures, picks, objects, cuts, alignments."""
from __future__ import annotations

import ctypes
import os
from typing import Any, Callable, NamedTuple, Optional, Sequence

import numpy as np
from numpy.typing import NDArray

from . import _library
from ._arrays import address
from ._calls import Still
from ._debug import Capture
from ._errors import Error, ImportFailed, raised
from ._library import FAILED, last_error, library
from ._picture import png, rgba
from ._records import (
    Alignment,
    AlignmentPair,
    ClipHeight,
    CutMask,
    CutOutcome,
    CutSaveEntry,
    SurfacePoint,
    read_cut_mask,
)
from ._request import number_of
from ._surface import SegmentationMode, Surface
from ._values import PathLike, check_int, path_bytes


class GraphicsInfo(NamedTuple):
    """What draws a viewer."""

    device: str
    renderer: str
    vendor: str
    version: str


class FrameStatistics(NamedTuple):
    """The frames of a viewer.

    count: frames so far, without the pictures of CaptureScreenShot()
    seconds: duration of the last one, until it was passed to the window system
    """

    count: int
    seconds: float


class Scene(Surface):
    """The scene of a pane."""

    __slots__ = ()
    _receivers: Any

    def _check(self, status: int, name: str) -> None:
        if status or raised:
            self._fail(status, name)

    # ---- pictures

    def picture(self) -> NDArray[np.uint8]:
        """Draws a frame: uint8, height x width x 4 (r, g, b, a), top row first.

        Error without a window, for no_picture() and while painting is blocked.
        """
        self._live()
        width, height = ctypes.c_int32(), ctypes.c_int32()
        sizes = ctypes.byref(width), ctypes.byref(height)
        self._check(library.kv_capture_picture(self._handle, None, 0, *sizes), "picture")
        shape = height.value, width.value
        words = np.empty(shape, np.uint32)
        place = address(words)
        status = library.kv_capture_picture(self._handle, place, words.size, *sizes)
        self._check(status, "picture")
        if shape != (height.value, width.value):
            raise Error("the size of the drawing area changed meanwhile", "picture")
        return rgba(words)

    def _repr_png_(self) -> Optional[bytes]:
        # A notebook shows the pane; one that cannot be drawn shows as text.
        try:
            return png(self.picture())
        except RuntimeError:
            return None

    def pick(self, x: int, y: int) -> Optional[SurfacePoint]:
        """The nearest surface of the visible objects under a pixel, or None."""
        column, row = check_int("pick", "x", x), check_int("pick", "y", y)
        hit = _library.SurfacePoint()
        self._live()
        place = ctypes.byref(hit)
        self._check(library.kv_pick_surface(self._handle, column, row, place), "pick")
        if hit.object < 0:
            return None
        point = (hit.point[0], hit.point[1], hit.point[2])
        return SurfacePoint(hit.object, hit.triangle, point, hit.distance)

    def graphics_info(self) -> GraphicsInfo:
        """What draws the pane. Error without a window."""
        text = text_of(
            "graphics_info", lambda *buffer: self._ask(library.kv_graphics_info, *buffer)
        )
        lines = text.decode("utf-8", "replace").split("\n")
        return GraphicsInfo(*(lines + [""] * 4)[:4])

    @property
    def frame_statistics(self) -> FrameStatistics:
        """How many frames were drawn, also by picture(), and how long the last one took."""
        self._live()
        raw = _library.FrameStatistics()
        status = library.kv_frame_statistics_result(self._handle, ctypes.byref(raw))
        self._check(status, "frame_statistics")
        return FrameStatistics(raw.count, raw.seconds)

    # ---- files

    def import_file(
        self, path: PathLike, *, skip: int = 1, confidence: float = 0.0, color: int = 0xC8D4DC
    ) -> None:
        """Imports a file by the method that its extension names: ImportMesh for stl, ply, hps, ois
        and msh, ImportScan for pcm, pax and xdt. ImportFailed with the reason when it adds nothing.

        skip: scans are thinned to one point per skip x skip points
        confidence: points of scans with a lower one are left out
        color: 0x00BBGGRR, of scans without colours
        """
        file = path_bytes("import_file", "path", path)
        step = check_int("import_file", "skip", skip, "s")
        tint = check_int("import_file", "color", color)
        limit = number_of("import_file", "confidence", confidence)
        if step < 1:
            raise ValueError(f"import_file(): skip is {step}, not 1 to 32767")
        self._live()
        with Capture() as capture:
            status = library.kv_import_file(self._handle, file, step, limit, tint)
        if status == FAILED and not raised:
            raise ImportFailed(capture.text() or last_error(), "import_file")
        capture.pass_on()
        self._check(status, "import_file")

    # ---- objects

    def object_name(self, index: int) -> str:
        """Path or name of an object, as os.fsdecode() makes it."""
        number = self._object_index("object_name", index)
        return os.fsdecode(
            text_of(
                "object_name",
                lambda *buffer: self._ask(library.kv_object_name, number, *buffer),
            )
        )

    def object_has_colors(self, index: int) -> bool:
        """Whether the vertices of an object have colours."""
        number = self._object_index("object_has_colors", index)
        return self._ask(library.kv_object_has_colors, number) != 0

    def _object_index(self, name: str, index: Any) -> int:
        number, count = check_int(name, "index", index), self.GetNumObjects()
        if not 0 <= number < count:
            raise IndexError(f"{name}(): object {number} of {count}")
        return number

    # ---- cuts

    def cut(self, mode: int, points: Any) -> bool:
        """Cuts all visible objects by a lasso, as if an operator had drawn it.

        mode: a SegmentationMode
        points: n x 2 numbers, fractions of the drawing area from 0 to below 1, y downward; at least
        two of a polygon, at least one of a freehand lasso
        Returns whether an object has changed. ValueError for points that are not finite, or that
        are all outside of the drawing area.
        """
        if not hasattr(mode, "__index__"):
            raise TypeError(f"cut(): mode must be a kv.SegmentationMode, not {type(mode).__name__}")
        number = check_int("cut", "mode", mode)
        if not 0 <= number <= 5:
            raise ValueError(f"cut(): mode is {number}, not 0 to 5")
        corners = np.array(points, np.float64, order="C")
        least = 1 if number >= SegmentationMode.FreehandOutside else 2
        if corners.ndim != 2 or corners.shape[1] != 2 or len(corners) < least:
            raise ValueError(
                f"cut(): points has the shape {corners.shape}, "
                f"but must have n x 2, n of at least {least}"
            )
        _check_lasso(corners)
        changed = ctypes.c_int32()
        self._live()
        status = library.kv_cut_with_lasso(
            self._handle, number, address(corners), len(corners), ctypes.byref(changed)
        )
        self._check(status, "cut")
        return changed.value != 0

    def cut_mask(self, address: int) -> CutMask:
        """A copy of a mask: the one of the CutMaskApplied that is handled now, or one of
        GetCutMasks().
        """
        number = check_int("cut_mask", "address", address, "l")
        self._live()
        # That the event is handled keeps its mask alive, whatever happens to the pane meanwhile.
        if number in self._receivers.masks:
            return read_cut_mask(number)
        for mask in self.GetCutMasks():
            if mask.address == number:
                return mask
        raise ValueError(f"cut_mask(): no cut mask is at {number:#x}")

    @property
    def undo_steps(self) -> int:
        """Number of cuts that PerformUndo() can take back."""
        return self._ask(library.kv_undo_step_count)

    def cut_save_entries(self, planned: bool = False) -> list[CutSaveEntry]:
        """One entry per object: what the last SaveCuttingToPcms() did, or with planned what it
        would do.
        """
        flag = int(bool(planned))
        count = self._ask(library.kv_cut_save_entries, flag, None, 0)
        raw = (_library.CutSaveEntry * count)()
        with Still(self):  # the texts are those of the viewer
            count = min(count, library.kv_cut_save_entries(self._handle, flag, raw, count))
            return [_cut_save_entry(entry) for entry in raw[:count]]

    # ---- alignment and the clip plane

    def align(self, pairs: Sequence[Any]) -> Alignment:
        """Moves the variable objects so that the moving points come to the fixed points.

        pairs: AlignmentPair, or (moving, fixed) of three numbers each, world frame. A single pair
        needs both normals, else ValueError. is_found of the result is False when nothing was moved.
        """
        made = [_alignment_pair(place, pair) for place, pair in enumerate(pairs)]
        # The viewer would turn the objects by half a turn about any axis.
        if len(made) == 1 and not (any(made[0].moving_normal) and any(made[0].fixed_normal)):
            raise ValueError(
                "align(): a single pair needs moving_normal and fixed_normal, which decide the "
                "rotation"
            )
        raw = (_library.AlignmentPair * len(made))(*made)
        self._live()
        self._check(library.kv_align_by_pairs(self._handle, raw, len(made), None), "align")
        return self.alignment

    @property
    def alignment(self) -> Alignment:
        """What the last alignment by points found, by align() or by the operator."""
        self._live()
        raw = _library.Alignment()
        place = ctypes.byref(raw)
        self._check(
            library.kv_alignment_result(self._handle, place, None, None, 0), "alignment"
        )
        pairs = (_library.AlignmentPair * raw.pair_count)()
        residuals = np.zeros(raw.pair_count, np.float64)
        status = library.kv_alignment_result(
            self._handle, place, pairs, address(residuals), len(residuals)
        )
        self._check(status, "alignment")
        made = [
            AlignmentPair(
                tuple(p.moving), tuple(p.fixed), tuple(p.moving_normal), tuple(p.fixed_normal)
            )
            for p in pairs
        ]
        transform = np.array(raw.transform).reshape(4, 4)
        return Alignment(
            raw.is_found != 0,
            transform,
            raw.rms,
            made,
            residuals if raw.is_found else residuals[:0],
        )

    @property
    def clip_height(self) -> ClipHeight:
        """What the last placement of the clip plane at the data found."""
        self._live()
        raw = _library.ClipHeight()
        status = library.kv_clip_height_result(self._handle, ctypes.byref(raw))
        self._check(status, "clip_height")
        return ClipHeight(raw.found != 0, raw.height, raw.kind)


def text_of(name: str, function: Callable) -> bytes:
    """The whole text of a text function, whatever its length. Error of the method name."""
    capacity = 512
    while True:
        buffer = ctypes.create_string_buffer(capacity)
        size = function(buffer, capacity)
        if size == _library.NO_TEXT:
            raise Error(last_error(), name)
        if size < capacity:
            return buffer.raw[:size]
        capacity = size + 1


def _cut_save_entry(raw: _library.CutSaveEntry) -> CutSaveEntry:
    return CutSaveEntry(
        raw.object,
        CutOutcome(raw.outcome),
        os.fsdecode(raw.file or b""),
        (raw.reason or b"").decode("utf-8", "replace"),
        raw.cut_count,
        raw.is_moved != 0,
        raw.is_cut_while_moved != 0,
        raw.is_nothing_left != 0,
    )


def _check_lasso(corners: np.ndarray) -> None:
    if not np.isfinite(corners).all():
        raise ValueError("cut(): points must be finite")
    if not ((corners >= 0) & (corners < 1)).all(axis=1).any():
        raise ValueError(
            "cut(): points are fractions of the drawing area from 0 to below 1, "
            "but all of these are outside of it"
        )


def _alignment_pair(place: int, pair: Any) -> _library.AlignmentPair:
    try:
        made = pair if isinstance(pair, AlignmentPair) else AlignmentPair(*pair)
    except TypeError:
        raise TypeError(
            f"align(): pair {place} must be an AlignmentPair or (moving, fixed) of three numbers "
            f"each, not {pair!r:.60}"
        ) from None
    raw = _library.AlignmentPair()
    for name in AlignmentPair._fields:
        values = np.array(getattr(made, name), np.float64)
        if values.shape != (3,):
            raise ValueError(
                f"align(): {name} of pair {place} has the shape {values.shape}, "
                "but must have three numbers"
            )
        if not np.isfinite(values).all():
            raise ValueError(f"align(): {name} of pair {place} must be finite")
        setattr(raw, name, tuple(values))
    return raw
