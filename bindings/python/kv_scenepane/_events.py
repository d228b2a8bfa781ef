"""Events: the callback of the library, connections to functions, and the iterator."""
from __future__ import annotations

import atexit
import ctypes
import functools
import math
import select
import struct
import sys
import time
import weakref
from collections import deque
from threading import get_ident
from typing import Any, Callable, Generic, Iterator, Optional, TypeVar

from . import _debug
from ._errors import raised
from ._library import AboutFunction, EventFunction, MessageFunction
from ._records import Event, EventType
from ._surface import EVENTS

_FORMATS = {"s": "i4xh6x", "i": "i4xi4x", "f": "i4xf4x", "l": "i4xq"}


def _reader(event: EventType) -> Callable[[bytes], tuple]:
    return struct.Struct(
        "=" + "".join(_FORMATS[argument[1]] for argument in event.arguments)
    ).unpack


_BY_ID = {event.id: (event, _reader(event)) for event in EVENTS}
_CUT_MASK_APPLIED = 12
_BY_NAME = {event.name: event for event in EVENTS}

# The panes that can get events, by the number that the library passes to the callbacks. Weak, so
# that an open pane without any other reference is closed.
_panes: dict[int, weakref.ref] = {}


def event_type(name: Any) -> EventType:
    """The event with a name or a number."""
    event = _BY_NAME.get(name) if isinstance(name, str) else None
    if event is None and not isinstance(name, (str, bool)):
        found = _BY_ID.get(name) if isinstance(name, int) else None
        if found is None and not isinstance(name, int):
            raise TypeError(f"an event is a name or a number, not {type(name).__name__}")
        event = found[0] if found else None
    if event is None:
        raise ValueError(f"there is no event {name!r}; the events are {', '.join(_BY_NAME)}")
    return event


def register(number: int, pane: Any) -> None:
    """From here on callbacks with this number reach the pane, as long as it lives."""
    _panes[number] = weakref.ref(pane)


def unregister(number: int) -> None:
    """Ends register()."""
    _panes.pop(number, None)


def _pane_of(user: Optional[int]) -> Any:
    reference = _panes.get(user or 0)
    return reference() if reference is not None else None


# In the three callbacks all is inside try: what leaves a callback is lost, and its result is then
# any number. What is raised is kept, and raised again by the call that caused it.


def _event(user, number, arguments, count):
    """kv_event_function of all panes."""
    try:
        pane = _pane_of(user)
        if pane is not None:
            event, read = _BY_ID[number]
            values = read(ctypes.string_at(arguments, 16 * count) if count else b"")[1::2]
            pane._receivers.send(event, values)
        return 0
    except BaseException as error:
        raised[user] = error
        return 1


def _message(user, text):
    """kv_message_function of all panes."""
    try:
        pane = _pane_of(user)
        if pane is not None:
            pane._on_message(text.decode("utf-8", "replace"))
        return 0
    except BaseException as error:
        raised[user] = error
        return 1


def _about(user, title, line):
    """kv_about_function of all panes."""
    try:
        pane = _pane_of(user)
        if pane is not None:
            pane._on_about(title.decode("utf-8", "replace"), line.decode("utf-8", "replace"))
        return 0
    except BaseException as error:
        raised[user] = error
        return 1


on_event = EventFunction(_event)
on_message = MessageFunction(_message)
on_about = AboutFunction(_about)

# A signal that arrived inside the library is handled where a callback begins, before its try. What
# its handler raises there, such as KeyboardInterrupt, ctypes passes to sys.unraisablehook only.
_CALLBACKS = (_event, _message, _about, _debug.receive)
CALLBACK_CODES = {callback.__code__ for callback in _CALLBACKS}
_next_hook = sys.unraisablehook


def _keep_unraisable(unraisable: Any) -> None:
    text = unraisable.err_msg or ""
    for callback in _CALLBACKS:
        # Since Python 3.13 the function is only in the text.
        if unraisable.object is callback or repr(callback) in text:
            raised[-get_ident()] = unraisable.exc_value
            return
    _next_hook(unraisable)


def _restore_hook() -> None:
    if sys.unraisablehook is _keep_unraisable:
        sys.unraisablehook = _next_hook


sys.unraisablehook = _keep_unraisable
atexit.register(_restore_hook)


Function = TypeVar("Function", bound=Callable[..., Any])


class Connection(Generic[Function]):
    """A function that gets the events of one type. Calling the connection calls the function. A
    context manager disconnects it at the end.
    """

    def __init__(self, receivers: "Receivers", event: EventType, function: Function) -> None:
        self._receivers = receivers
        self.event = event
        self.function = function
        functools.update_wrapper(self, function, updated=())

    @property
    def connected(self) -> bool:
        """False after disconnect()."""
        return self in self._receivers.connections(self.event)

    def disconnect(self) -> None:
        """The function gets no more events. May be called in the function itself."""
        self._receivers.remove(self)

    def __enter__(self) -> "Connection[Function]":
        return self

    def __exit__(self, *_exception: Any) -> None:
        self.disconnect()

    def __call__(self, *arguments: Any, **words: Any) -> Any:
        return self.function(*arguments, **words)

    def __repr__(self) -> str:
        return f"<connection of {self.event.name} to {self.function!r}>"


class Receivers:
    """Who gets the events of a pane."""

    def __init__(self) -> None:
        self._connections: dict[int, list[Connection]] = {}
        self._iterators: weakref.WeakSet[EventIterator] = weakref.WeakSet()
        # Addresses of the masks whose CutMaskApplied is handled now.
        self.masks: list[int] = []

    def connections(self, event: EventType) -> list[Connection]:
        return self._connections.get(event.id, [])

    def add(self, event: EventType, function: Callable) -> Connection:
        if not callable(function):
            raise TypeError(f"on(): function must be callable, not {type(function).__name__}")
        connection = Connection(self, event, function)
        self._connections.setdefault(event.id, []).append(connection)
        return connection

    def remove(self, connection: Connection) -> None:
        connections = self.connections(connection.event)
        if connection in connections:
            connections.remove(connection)

    def add_iterator(self, iterator: "EventIterator") -> None:
        self._iterators.add(iterator)

    def send(self, event: EventType, values: tuple) -> None:
        """Passes an event on, in the order of the connections. The first exception ends it."""
        if event.id != _CUT_MASK_APPLIED:
            return self._send(event, values)
        self.masks.append(values[0])
        try:
            return self._send(event, values)
        finally:
            self.masks.pop()

    def _send(self, event: EventType, values: tuple) -> None:
        for iterator in tuple(self._iterators):
            iterator.put(Event(event, values))
        connections = self.connections(event)
        for connection in tuple(connections):
            if connection in connections:
                connection.function(*values)

    def clear(self) -> None:
        """Drops all receivers: a closed pane has no events."""
        self._connections.clear()


class EventIterator(Iterator[Event]):
    """The events of a pane since pane.events(). Handles window input while it waits."""

    def __init__(self, pane: Any, timeout: Optional[float]) -> None:
        if timeout is not None and math.isnan(timeout):
            raise ValueError("events(): timeout is not a number")
        self._pane = pane
        self._timeout = None if timeout is None else max(0.0, timeout)
        self._queue: deque[Event] = deque()

    def put(self, event: Event) -> None:
        self._queue.append(event)

    def __iter__(self) -> "EventIterator":
        return self

    def __next__(self) -> Event:
        if self._queue:
            return self._queue.popleft()
        deadline = None if self._timeout is None else time.monotonic() + self._timeout
        poll = select.poll()
        is_first = True
        while not self._pane.closed:
            if is_first:
                poll.register(self._pane.fileno(), select.POLLIN)
                is_first = False
            self._pane.process_events()
            if self._queue:
                return self._queue.popleft()
            remaining = None if deadline is None else deadline - time.monotonic()
            if remaining is not None and remaining <= 0:
                break
            if self._pane.closed:
                break
            # poll() has no room for more than 24 days.
            poll.poll(None if remaining is None else min(remaining, 1e6) * 1000)
        if self._queue:
            return self._queue.popleft()
        raise StopIteration
