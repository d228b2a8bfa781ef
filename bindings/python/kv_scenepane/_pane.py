"""The viewer as a Python object: its life, its window, and what the automation surface does not
return.
"""
from __future__ import annotations

import inspect
import types
from typing import Any, Callable, Optional, Union, overload

import numpy as np

from . import _events, _library, _life
from ._debug import Capture
from ._events import Connection, EventIterator, Function
from ._library import library
from ._parallel import ParallelImport
from ._request import make_request, number_of, optional_text, scale_of, window_number
from ._scene import Scene, text_of
from ._surface import METHODS, Surface
from ._values import check_int

ANY_GPU = -1
SOFTWARE = -2

_BY_NAME = {method.name: method for method in METHODS}
_BY_ID = {method.id: method for method in METHODS}


class ScenePane(Scene):
    """A viewer of scans and meshes, made by ScenePane.offscreen(), no_picture(), child() or
    top_level().

    All calls on the thread that made it. A context manager closes it at the end.
    """

    __signature__ = inspect.Signature()  # what __init__() gets is made by the methods above

    __slots__ = (
        "_finalizer",
        "_receivers",
        "_overlay_count",
        "_parallel",
        "_message",
        "_about",
    )

    _finalizer: Any
    _receivers: _events.Receivers
    _overlay_count: int
    _parallel: Optional[_life.Running]

    def __init__(
        self,
        request: Optional[_library.WindowRequest] = None,
        *,
        on_message: Optional[Callable[[str], object]] = None,
        on_about: Optional[Callable[[str, str], object]] = None,
    ) -> None:
        if not isinstance(request, _library.WindowRequest):
            raise TypeError(
                "a pane is made by ScenePane.offscreen(), no_picture(), child() or top_level()"
            )
        for name, hook in (("on_message", on_message), ("on_about", on_about)):
            if hook is not None and not callable(hook):
                raise TypeError(f"{name} must be callable, not {type(hook).__name__}")
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
    def offscreen(
        cls,
        width: int = 640,
        height: int = 480,
        *,
        samples: int = 0,
        gpu: int = ANY_GPU,
        scale: float = 1.0,
        on_message: Optional[Callable[[str], object]] = None,
        on_about: Optional[Callable[[str, str], object]] = None,
    ) -> "ScenePane":
        """A viewer without a display.

        width, height: of its pictures, pixels, 1 to 16384, and 2 ** 27 pixels in all. SetSize()
            beyond leaves the pictures as they are
        samples: per pixel, that smooth the edges; 0 for none. A driver that does not offer exactly
            this number draws with none
        gpu: ANY_GPU, SOFTWARE, or the number of a graphics device from 0
        scale: factor of text, lines and points, above 0; limited to 0.25 to 8
        on_message: gets a text that the user must read
        on_about: gets title and line of AboutBox()
        """
        request = make_request(_library.OFF_SCREEN, width, height, samples, scale)
        request.gpu = check_int("offscreen", "gpu", gpu)
        return cls(request, on_message=on_message, on_about=on_about)

    @classmethod
    def no_picture(cls) -> "ScenePane":
        """A viewer that draws nothing and needs no OpenGL: imports, exports and their results."""
        return cls(make_request(_library.NO_PICTURE, 640, 480, 0, 1.0))

    @classmethod
    def child(
        cls,
        window_id: int,
        width: int,
        height: int,
        *,
        x: int = 0,
        y: int = 0,
        display: Optional[str] = None,
        samples: int = 0,
        scale: float = 1.0,
        on_message: Optional[Callable[[str], object]] = None,
        on_about: Optional[Callable[[str, str], object]] = None,
    ) -> "ScenePane":
        """A viewer in an X11 window of the program.

        window_id: the X11 window that it becomes a child of
        x, y: position in it, pixels
        display: name of the X display; None for $DISPLAY
        """
        request = make_request(_library.CHILD, width, height, samples, scale)
        request.parent = window_number("child", window_id)
        request.x = check_int("child", "x", x)
        request.y = check_int("child", "y", y)
        request.display = optional_text("child", "display", display)
        return cls(request, on_message=on_message, on_about=on_about)

    @classmethod
    def top_level(
        cls,
        width: int,
        height: int,
        *,
        title: Optional[str] = None,
        display: Optional[str] = None,
        samples: int = 0,
        scale: float = 1.0,
        on_message: Optional[Callable[[str], object]] = None,
        on_about: Optional[Callable[[str, str], object]] = None,
    ) -> "ScenePane":
        """A viewer in an X11 window of its own."""
        request = make_request(_library.TOP_LEVEL, width, height, samples, scale)
        request.title = optional_text("top_level", "title", title)
        request.display = optional_text("top_level", "display", display)
        return cls(request, on_message=on_message, on_about=on_about)

    # ---- life

    @property
    def closed(self) -> bool:
        """Whether the pane was closed."""
        return not self._handle

    def close(self) -> None:
        """Closes the pane. May be called twice, and in a callback."""
        _life.close(self)

    def __enter__(self) -> "ScenePane":
        self._live()
        return self

    def __exit__(self, *_exception: Any) -> None:
        self.close()

    def __reduce_ex__(self, _protocol: Any) -> Any:
        raise TypeError("a pane cannot be copied or pickled: it is a window, not a value")

    _live = _life.check_usable

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

    @overload
    def on(self, event: Union[str, int]) -> Callable[[Function], Connection[Function]]: ...

    @overload
    def on(self, event: Union[str, int], function: Function) -> Connection[Function]: ...

    def on(self, event: Union[str, int], function: Any = None) -> Any:
        """Connects a function to an event, by the name or the number of the event.

        The function gets the arguments of the event by position. It may call every method,
        disconnect itself and close the pane. What it raises is raised by the call that caused the
        event. Without a function, on() is a decorator. Returns a Connection.
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
        iterator = EventIterator(
            self, None if timeout is None else number_of("events", "timeout", timeout)
        )
        self._receivers.add_iterator(iterator)
        return iterator

    def process_events(self) -> None:
        """Handles pending input, timers and repaints. Never blocks."""
        self._live()
        _life.close_orphans()
        self._check(library.kv_process_events(self._handle), "process_events")

    def fileno(self) -> int:
        """A descriptor that is readable when process_events() has work. It must not be read or
        closed.
        """
        return self._ask(library.kv_event_descriptor)

    @property
    def has_window(self) -> bool:
        """False once the window is gone: the program destroyed it, or a new context was refused."""
        return self._ask(library.kv_has_window) != 0

    @property
    def native_window(self) -> int:
        """The X11 window id; 0 without one."""
        return self._ask(library.kv_native_window)

    def reparent(self, window_id: int, x: int = 0, y: int = 0) -> None:
        """Moves a child() into another X11 window, to x, y in its pixels."""
        window, left, top = (
            window_number("reparent", window_id),
            check_int("reparent", "x", x),
            check_int("reparent", "y", y),
        )
        self._live()
        self._check(library.kv_reparent(self._handle, window, left, top), "reparent")

    def resize(self, width: int, height: int) -> None:
        """SetSize under another name."""
        self.SetSize(width, height)

    def set_scale(self, scale: float) -> None:
        """Sets the factor of text, lines and points, and queues a repaint.

        scale: above 0; limited to 0.25 to 8
        """
        factor = scale_of("set_scale", scale)
        self._live()
        self._check(library.kv_set_scale(self._handle, factor), "set_scale")

    def send_mouse(self, kind: int, x: int, y: int, flags: int = 0, delta: int = 0) -> None:
        """Handles one mouse event as if the window had received it.

        kind: a MouseKind; x, y: pixels, y downward; flags: MOUSE_LEFT and so on, what is held;
        delta: of the wheel, 120 per notch
        """
        numbers = [
            check_int("send_mouse", name, value)
            for name, value in (
                ("kind", kind),
                ("flags", flags),
                ("x", x),
                ("y", y),
                ("delta", delta),
            )
        ]
        if not 0 <= numbers[0] <= 8:
            raise ValueError(f"send_mouse(): kind is {numbers[0]}, not 0 to 8")
        if numbers[1] < 0:
            raise ValueError(f"send_mouse(): flags is {numbers[1]}")
        self._live()
        self._check(library.kv_send_mouse(self._handle, *numbers), "send_mouse")

    def send_key(self, code: int, is_down: bool = True, count: int = 1, flags: int = 0) -> None:
        """Handles one key event; letters have the codes of their upper-case characters."""
        numbers = [
            check_int("send_key", name, value)
            for name, value in (("code", code), ("count", count), ("flags", flags))
        ]
        down = int(bool(is_down))
        self._live()
        self._check(library.kv_send_key(self._handle, down, *numbers), "send_key")

    def _on_message(self, text: str) -> None:
        if self._message is not None:
            self._message(text)

    def _on_about(self, title: str, line: str) -> None:
        if self._about is not None:
            self._about(title, line)

    # ---- persisted properties

    def save_properties(self, binary: bool = False) -> bytes:
        """A store of DrawMosaic, DrawMode and MoveReduced; modified is False afterwards."""
        form = int(bool(binary))
        return text_of(
            "save_properties",
            lambda *buffer: self._ask(library.kv_save_properties, form, *buffer),
        )

    def load_properties(self, store: Union[bytes, bytearray, memoryview, str]) -> None:
        """Sets the properties from a store; after an Error they have their defaults."""
        if not isinstance(store, (bytes, bytearray, memoryview, str)):
            raise TypeError(f"load_properties(): store must be bytes, not {type(store).__name__}")
        data = store.encode("utf-8", "surrogateescape") if isinstance(store, str) else bytes(store)
        self._live()
        with Capture() as capture:
            status = library.kv_load_properties(self._handle, data, len(data))
        if not status:  # else the text is the reason of the exception
            capture.pass_on()
        self._check(status, "load_properties")

    @property
    def modified(self) -> bool:
        """Whether a persisted property was changed since it was last saved or loaded."""
        return self._ask(library.kv_is_modified) != 0

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
        running = self._parallel
        if running is not None:
            running.end()
            self._parallel = None


# Python's own texts about missing and surplus arguments name the class that programs know.
for _function in vars(Surface).values():
    if isinstance(_function, types.FunctionType):
        _function.__qualname__ = f"ScenePane.{_function.__name__}"
del _function
