"""The viewer as a Python object: its life, its window, and what the automation surface does not return."""
from __future__ import annotations

import ctypes
import os
from typing import Any, Callable, NamedTuple, Optional, Sequence, Union

import numpy as np

from . import _checks, _events, _library, _life
from ._arrays import address
from ._errors import Error
from ._events import Connection, EventIterator
from ._library import last_error, library
from ._picture import png, rgba
from ._records import (
    Alignment, AlignmentPair, ClipHeight, CutMask, CutOutcome, CutSaveEntry, SurfacePoint, read_cut_mask,
)
from ._surface import METHODS, Surface
from ._values import check_int

ANY_GPU = -1
SOFTWARE = -2

_BY_NAME = {method.name: method for method in METHODS}
_BY_ID = {method.id: method for method in METHODS}


class GraphicsInfo(NamedTuple):
    """What draws a viewer."""

    device: str
    renderer: str
    vendor: str
    version: str


class ScenePane(Surface):
    """A viewer of scans and meshes.

    Made by offscreen(), no_picture(), child() or top_level(); all calls on the thread that made it.
    A context manager closes it at the end.
    """

    __slots__ = ("_number", "_finalizer", "_receivers", "_overlay_count", "_parallel", "_message", "_about")

    def __init__(self, request: _library.WindowRequest, *, on_message: Optional[Callable[[str], object]] = None,
                 on_about: Optional[Callable[[str, str], object]] = None) -> None:
        if not isinstance(request, _library.WindowRequest):
            raise TypeError("a pane is made by offscreen(), no_picture(), child() or top_level()")
        for name, hook in (("on_message", on_message), ("on_about", on_about)):
            if hook is not None and not callable(hook):
                raise TypeError(f"{name} must be callable, not {type(hook).__name__}")
        self._handle = None
        self._pending: list[BaseException] = []
        self._count = _library.ShortValue()
        self._receivers = _events.Receivers()
        self._overlay_count = 0
        self._parallel = None
        self._message = on_message
        self._about = on_about
        if on_message is not None:
            request.show_message = _events.on_message
        if on_about is not None:
            request.show_about = _events.on_about
        _life.start(self, request)

    @classmethod
    def offscreen(cls, width: int = 640, height: int = 480, *, samples: int = 0, gpu: int = ANY_GPU,
                  scale: float = 1.0, on_message: Optional[Callable[[str], object]] = None,
                  on_about: Optional[Callable[[str, str], object]] = None) -> "ScenePane":
        """A viewer without a display.

        width, height: of its pictures, pixels, 1 to 32767
        samples: per pixel, that smooth the edges; 0 for none
        gpu: ANY_GPU, SOFTWARE, or the number of a graphics device from 0
        scale: factor of text, lines and points
        on_message: gets a text that the user must read
        on_about: gets title and line of AboutBox()
        """
        request = _request(_library.OFF_SCREEN, width, height, samples, scale)
        request.gpu = check_int("offscreen", "gpu", gpu)
        return cls(request, on_message=on_message, on_about=on_about)

    @classmethod
    def no_picture(cls) -> "ScenePane":
        """A viewer that draws nothing and needs no OpenGL: imports, exports and their results."""
        return cls(_request(_library.NO_PICTURE, 640, 480, 0, 1.0))

    @classmethod
    def child(cls, window_id: int, width: int, height: int, *, x: int = 0, y: int = 0,
              display: Optional[str] = None, samples: int = 0, scale: float = 1.0,
              on_message: Optional[Callable[[str], object]] = None,
              on_about: Optional[Callable[[str, str], object]] = None) -> "ScenePane":
        """A viewer in an X11 window of the program.

        window_id: the X11 window that it becomes a child of
        x, y: position in it, pixels
        display: name of the X display; None for $DISPLAY
        """
        request = _request(_library.CHILD, width, height, samples, scale)
        request.parent = _window_id("child", window_id)
        request.x = check_int("child", "x", x)
        request.y = check_int("child", "y", y)
        request.display = _optional_text("child", "display", display)
        return cls(request, on_message=on_message, on_about=on_about)

    @classmethod
    def top_level(cls, width: int, height: int, *, title: Optional[str] = None, display: Optional[str] = None,
                  samples: int = 0, scale: float = 1.0,
                  on_message: Optional[Callable[[str], object]] = None,
                  on_about: Optional[Callable[[str, str], object]] = None) -> "ScenePane":
        """A viewer in an X11 window of its own."""
        request = _request(_library.TOP_LEVEL, width, height, samples, scale)
        request.title = _optional_text("top_level", "title", title)
        request.display = _optional_text("top_level", "display", display)
        return cls(request, on_message=on_message, on_about=on_about)

    # ---- life

    @property
    def closed(self) -> bool:
        """Whether the pane was closed."""
        return self._handle is None

    def close(self) -> None:
        """Closes the pane. May be called twice, and in a callback."""
        _life.close(self)

    def __enter__(self) -> "ScenePane":
        self._live()
        return self

    def __exit__(self, *_exception: Any) -> None:
        self.close()

    def _live(self) -> int:
        return _life.handle_of(self)

    def __repr__(self) -> str:
        return "<kv.ScenePane, closed>" if self.closed else f"<kv.ScenePane {self._number}>"

    # ---- calls by id or name

    def invoke(self, method: Union[int, str], *arguments: Any, **words: Any) -> Any:
        """Calls a method by its id or its name with the arguments of the method of that name."""
        if isinstance(method, (bool, float)) or not isinstance(method, (int, np.integer, str)):
            raise TypeError(f"invoke(): a method is an id or a name, not {type(method).__name__}")
        found = _BY_NAME.get(method) if isinstance(method, str) else _BY_ID.get(int(method))
        if found is None:
            raise ValueError(f"invoke(): there is no method {method!r}")
        return getattr(Surface, found.name)(self, *arguments, **words)

    # ---- events and the window

    def on(self, event: Union[str, int], function: Optional[Callable] = None) -> Any:
        """Connects a function to an event, by the name or the number of the event.

        The function gets the arguments of the event by position. It may call every method, disconnect
        itself and close the pane. What it raises is raised by the call that caused the event. Without
        a function, on() is a decorator. Returns a Connection.
        """
        kind = _events.event_type(event)
        self._live()
        if function is None:
            return lambda decorated: self._receivers.add(kind, decorated)
        return self._receivers.add(kind, function)

    def events(self, timeout: Optional[float] = None) -> EventIterator:
        """Iterates over the events from now on, and handles window input while it waits.

        timeout: seconds without an event after which it ends; None waits until the pane is closed
        """
        self._live()
        iterator = EventIterator(self, None if timeout is None else max(0.0, float(timeout)))
        self._receivers.add_iterator(iterator)
        return iterator

    def process_events(self) -> None:
        """Handles pending input, timers and repaints. Never blocks."""
        handle = self._live()
        _life.close_orphans()
        self._check(library.kv_process_events(handle), "process_events")

    def fileno(self) -> int:
        """A descriptor that is readable when process_events() has work. It must not be read or closed."""
        return library.kv_event_descriptor(self._live())

    @property
    def has_window(self) -> bool:
        """False once the window is gone: the program destroyed it, or a new context was refused."""
        return library.kv_has_window(self._live()) != 0

    @property
    def native_window(self) -> int:
        """The X11 window id; 0 without one."""
        return library.kv_native_window(self._live())

    def reparent(self, window_id: int, x: int = 0, y: int = 0) -> None:
        """Moves a child() into another X11 window, to x, y in its pixels."""
        window, left, top = _window_id("reparent", window_id), check_int("reparent", "x", x), check_int("reparent", "y", y)
        self._check(library.kv_reparent(self._live(), window, left, top), "reparent")

    def resize(self, width: int, height: int) -> None:
        """SetSize under another name."""
        self.SetSize(width, height)

    def set_scale(self, scale: float) -> None:
        """Sets the factor of text, lines and points, 0.25 to 8, and queues a repaint."""
        factor = _number("set_scale", "scale", scale)
        self._check(library.kv_set_scale(self._live(), factor), "set_scale")

    def send_mouse(self, kind: int, x: int, y: int, flags: int = 0, delta: int = 0) -> None:
        """Handles one mouse event as if the window had received it.

        kind: a MouseKind; x, y: pixels, y downward; flags: MOUSE_LEFT and so on, what is held; delta:
        of the wheel, 120 per notch
        """
        numbers = [check_int("send_mouse", name, value) for name, value in
                   (("kind", kind), ("flags", flags), ("x", x), ("y", y), ("delta", delta))]
        if not 0 <= numbers[0] <= 8:
            raise ValueError(f"send_mouse(): kind is {numbers[0]}, not 0 to 8")
        if numbers[1] < 0:
            raise ValueError(f"send_mouse(): flags is {numbers[1]}")
        self._check(library.kv_send_mouse(self._live(), *numbers), "send_mouse")

    def send_key(self, code: int, is_down: bool = True, count: int = 1, flags: int = 0) -> None:
        """Handles one key event; letters and digits have the codes of their upper-case characters."""
        numbers = [check_int("send_key", name, value) for name, value in
                   (("code", code), ("count", count), ("flags", flags))]
        down = int(bool(is_down))
        self._check(library.kv_send_key(self._live(), down, *numbers), "send_key")

    def _check(self, status: int, name: str) -> None:
        if status:
            self._fail(status, name)

    def _on_message(self, text: str) -> None:
        if self._message is not None:
            self._message(text)

    def _on_about(self, title: str, line: str) -> None:
        if self._about is not None:
            self._about(title, line)

    # ---- pictures

    def picture(self) -> np.ndarray:
        """Draws a frame: uint8, height x width x 4 (r, g, b, a), top row first.

        Error without a window, for no_picture() and while painting is blocked.
        """
        handle = self._live()
        width, height = ctypes.c_int32(), ctypes.c_int32()
        sizes = ctypes.byref(width), ctypes.byref(height)
        self._check(library.kv_capture_picture(handle, None, 0, *sizes), "picture")
        words = np.empty((height.value, width.value), np.uint32)
        self._check(library.kv_capture_picture(handle, address(words), words.size, *sizes), "picture")
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
        self._check(library.kv_pick_surface(self._live(), column, row, ctypes.byref(hit)), "pick")
        if hit.object < 0:
            return None
        return SurfacePoint(hit.object, hit.triangle, tuple(hit.point), hit.distance)

    def graphics_info(self) -> GraphicsInfo:
        """What draws the pane. Error without a window."""
        text = _text(lambda *buffer: library.kv_graphics_info(self._live(), *buffer))
        if not text:
            raise Error(last_error(), "graphics_info")
        lines = text.decode("utf-8", "replace").split("\n")
        return GraphicsInfo(*(lines + [""] * 4)[:4])

    # ---- objects

    def object_name(self, index: int) -> str:
        """Path or name of an object, as os.fsdecode() makes it."""
        number = self._object_index("object_name", index)
        return os.fsdecode(_text(lambda *buffer: library.kv_object_name(self._live(), number, *buffer)))

    def object_has_colors(self, index: int) -> bool:
        """Whether the vertices of an object have colours."""
        number = self._object_index("object_has_colors", index)
        return library.kv_object_has_colors(self._live(), number) != 0

    def _object_index(self, name: str, index: Any) -> int:
        number, count = check_int(name, "index", index), self.GetNumObjects()
        if not 0 <= number < count:
            raise IndexError(f"{name}(): object {number} of {count}")
        return number

    # ---- cuts

    def cut(self, mode: int, points: Any) -> bool:
        """Cuts all visible objects by a lasso, as if an operator had drawn it.

        mode: a SegmentationMode
        points: n x 2 numbers, at least two points: fractions 0 to 1 of the drawing area, y downward
        Returns whether an object has changed.
        """
        number = check_int("cut", "mode", mode)
        if not 0 <= number <= 5:
            raise ValueError(f"cut(): mode is {number}, not 0 to 5")
        corners = np.array(points, np.float64, order="C")
        if corners.ndim != 2 or corners.shape[1] != 2 or len(corners) < 2:
            raise ValueError(f"cut(): points has the shape {corners.shape}, but must have n x 2 with n of at least 2")
        changed = ctypes.c_int32()
        status = library.kv_cut_with_lasso(self._live(), number, address(corners), len(corners), ctypes.byref(changed))
        self._check(status, "cut")
        return changed.value != 0

    def cut_mask(self, address: int) -> CutMask:
        """A copy of a mask: the one of the CutMaskApplied that is handled now, or one of GetCutMasks()."""
        number = check_int("cut_mask", "address", address, "l")
        self._live()
        if number not in self._receivers.masks:
            for mask in self.GetCutMasks():
                if mask.address == number:
                    return mask
            raise ValueError(f"cut_mask(): no cut mask is at {number:#x}")
        return read_cut_mask(number)

    @property
    def undo_steps(self) -> int:
        """Number of cuts that PerformUndo() can take back."""
        return library.kv_undo_step_count(self._live())

    def cut_save_entries(self, planned: bool = False) -> list[CutSaveEntry]:
        """One entry per object: what the last SaveCuttingToPcms() did, or with planned what it would do."""
        flag = int(bool(planned))
        count = library.kv_cut_save_entries(self._live(), flag, None, 0)
        raw = (_library.CutSaveEntry * count)()
        count = min(count, library.kv_cut_save_entries(self._live(), flag, raw, count))
        return [_cut_save_entry(entry) for entry in raw[:count]]

    # ---- alignment and the clip plane

    def align(self, pairs: Sequence[Any]) -> Alignment:
        """Moves the variable objects so that the moving points come to the fixed points.

        pairs: AlignmentPair, or (moving, fixed) of three numbers each, world frame. A single pair
        needs both normals. is_found of the result is False when nothing was moved.
        """
        made = [_alignment_pair(place, pair) for place, pair in enumerate(pairs)]
        raw = (_library.AlignmentPair * len(made))(*made)
        self._check(library.kv_align_by_pairs(self._live(), raw, len(made), None), "align")
        return self.alignment

    @property
    def alignment(self) -> Alignment:
        """What the last alignment by points found, by align() or by the operator."""
        raw = _library.Alignment()
        self._check(library.kv_alignment_result(self._live(), ctypes.byref(raw), None, None, 0), "alignment")
        pairs = (_library.AlignmentPair * raw.pair_count)()
        residuals = np.zeros(raw.pair_count, np.float64)
        status = library.kv_alignment_result(
            self._live(), ctypes.byref(raw), pairs, address(residuals), raw.pair_count)
        self._check(status, "alignment")
        made = [AlignmentPair(tuple(p.moving), tuple(p.fixed), tuple(p.moving_normal), tuple(p.fixed_normal))
                for p in pairs]
        transform = np.array(raw.transform).reshape(4, 4)
        return Alignment(raw.is_found != 0, transform, raw.rms, made, residuals if raw.is_found else residuals[:0])

    @property
    def clip_height(self) -> ClipHeight:
        """What the last placement of the clip plane at the data found."""
        raw = _library.ClipHeight()
        self._check(library.kv_clip_height_result(self._live(), ctypes.byref(raw)), "clip_height")
        return ClipHeight(raw.found != 0, raw.height, raw.kind)

    # ---- persisted properties

    def save_properties(self, binary: bool = False) -> bytes:
        """A store of DrawMosaic, DrawMode and MoveReduced; modified is False afterwards."""
        form = int(bool(binary))
        return _text(lambda *buffer: library.kv_save_properties(self._live(), form, *buffer))

    def load_properties(self, store: Union[bytes, bytearray, memoryview, str]) -> None:
        """Sets the properties from a store. Error for a damaged one: they then have their defaults."""
        if not isinstance(store, (bytes, bytearray, memoryview, str)):
            raise TypeError(f"load_properties(): store must be bytes, not {type(store).__name__}")
        data = store.encode("utf-8", "surrogateescape") if isinstance(store, str) else bytes(store)
        self._check(library.kv_load_properties(self._live(), data, len(data)), "load_properties")

    @property
    def modified(self) -> bool:
        """Whether a persisted property was changed since it was last saved or loaded."""
        return library.kv_is_modified(self._live()) != 0

    # ---- parallel import

    def parallel_import(self) -> "ParallelImport":
        """A context in which worker threads add measurements: see ParallelImport."""
        return ParallelImport(self)

    def _is_staging(self) -> bool:
        return self._parallel is not None

    def _begin_staging(self) -> None:
        if self._parallel is None:
            self._parallel = _life.Running()

    def _end_staging(self) -> None:
        running, self._parallel = self._parallel, None
        if running is not None:
            running.end()


def _request(kind: int, width: Any, height: Any, samples: Any, scale: Any) -> _library.WindowRequest:
    request = _library.WindowRequest()
    library.kv_window_request_init(ctypes.byref(request))
    request.kind = kind
    request.width = _side("width", width)
    request.height = _side("height", height)
    request.samples = check_int("ScenePane", "samples", samples)
    if request.samples < 0:
        raise ValueError(f"ScenePane: samples is {request.samples}")
    request.scale = _number("ScenePane", "scale", scale)
    return request


def _side(name: str, value: Any) -> int:
    number = check_int("ScenePane", name, value)
    if not 1 <= number <= 32767:
        raise ValueError(f"ScenePane: {name} is {number}, not 1 to 32767")
    return number


def _number(method: str, name: str, value: Any) -> float:
    if isinstance(value, (str, bytes, bytearray)):
        raise TypeError(f"{method}(): {name} must be a float, not {type(value).__name__}")
    try:
        return float(value)
    except TypeError:
        raise TypeError(f"{method}(): {name} must be a float, not {type(value).__name__}") from None


def _window_id(method: str, value: Any) -> int:
    try:
        number = value.__index__()
    except AttributeError:
        raise TypeError(f"{method}(): window_id must be an int, not {type(value).__name__}") from None
    if not 0 <= number <= 0xFFFFFFFF:
        raise ValueError(f"{method}(): window_id is {number}, which is no X11 window")
    return number


def _optional_text(method: str, name: str, value: Any) -> Optional[bytes]:
    if value is None:
        return None
    if not isinstance(value, str):
        raise TypeError(f"{method}(): {name} must be a str, not {type(value).__name__}")
    if "\0" in value:
        raise ValueError(f"{method}(): {name} holds a zero character")
    return value.encode("utf-8", "surrogateescape")


def _text(function: Callable) -> bytes:
    """The whole text of a text function, which is called again when the first buffer is too short."""
    capacity = 512
    while True:
        buffer = ctypes.create_string_buffer(capacity)
        size = function(buffer, capacity)
        if size < capacity:
            return buffer.raw[:size]
        capacity = size + 1


def _cut_save_entry(raw: _library.CutSaveEntry) -> CutSaveEntry:
    return CutSaveEntry(
        raw.object, CutOutcome(raw.outcome), os.fsdecode(raw.file or b""), (raw.reason or b"").decode("utf-8", "replace"),
        raw.cut_count, raw.is_moved != 0, raw.is_cut_while_moved != 0, raw.is_nothing_left != 0)


def _alignment_pair(place: int, pair: Any) -> _library.AlignmentPair:
    made = pair if isinstance(pair, AlignmentPair) else AlignmentPair(*pair)
    raw = _library.AlignmentPair()
    for name in AlignmentPair._fields:
        values = np.array(getattr(made, name), np.float64)
        if values.shape != (3,):
            raise ValueError(f"align(): {name} of pair {place} has the shape {values.shape}, but must have three numbers")
        setattr(raw, name, tuple(values))
    return raw


from ._parallel import ParallelImport  # noqa: E402  (a type of this module's annotations)
