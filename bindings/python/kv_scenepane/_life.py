"""The life of panes: each belongs to one thread, and is closed there.

A pane that nothing refers to any more is closed at once when that happens on its own thread. On
another thread it cannot be closed; its thread closes it when it makes a pane, closes one or
processes events, and a ResourceWarning says so. At the end of the interpreter the panes of the main
thread are closed.
"""
from __future__ import annotations

import atexit
import ctypes
import itertools
import os
import sys
import threading
import time
import warnings
import weakref
from collections import deque
from typing import Any

from . import _events
from ._errors import Error
from ._library import last_error, library


class _Owner(threading.local):
    # An object per thread: numbers of threads are used again.
    def __init__(self) -> None:
        self.token = _Token()


class _Token:
    """A thread, and the panes that it must close."""

    __slots__ = ("orphans",)

    def __init__(self) -> None:
        self.orphans: deque[int] = deque()


_here = _Owner()
_numbers = itertools.count(1)


class Running:
    """Counts the threads that run an import."""

    __slots__ = ("_changed", "_count", "_ended")

    def __init__(self) -> None:
        self._changed = threading.Condition()
        self._count = 0
        self._ended = False

    def __enter__(self) -> "Running":
        with self._changed:
            if self._ended:
                raise RuntimeError("the parallel import has ended")
            self._count += 1
        return self

    def __exit__(self, *_exception: Any) -> None:
        with self._changed:
            self._count -= 1
            self._changed.notify_all()

    def end(self) -> None:
        """Lets no other thread in and waits for those that run."""
        with self._changed:
            self._ended = True
            self._changed.wait_for(lambda: self._count == 0)


def start(pane: Any, request: Any) -> None:
    """Makes the viewer of a pane; the calling thread becomes its owner."""
    close_orphans()
    pane._owner = _here.token
    pane._number = next(_numbers)
    request.user = pane._number
    _events.register(pane._number, pane)
    handle = library.kv_create(ctypes.byref(request))
    if not handle:
        _events.unregister(pane._number)
        if pane._pending:
            raise pane._pending.pop()
        raise Error(last_error())
    pane._handle = handle
    pane._finalizer = weakref.finalize(
        pane, _destroy, handle, pane._number, pane._owner, os.getpid()
    )
    # _end() closes what is open then: a destructor that runs later must find the pane closed.
    pane._finalizer.atexit = False
    library.kv_connect(handle, _events.on_event, pane._number)


def handle_of(pane: Any) -> int:
    """The handle of an open pane, on its thread."""
    if _here.token is not pane._owner:
        raise RuntimeError("a pane belongs to the thread that made it, and this is another one")
    handle = pane._handle
    if handle is None:
        if _is_ending and threading.current_thread() is not threading.main_thread():
            raise SystemExit  # which ends a thread without a word
        raise RuntimeError("the pane is closed")
    return handle


def close(pane: Any) -> None:
    """Closes a pane on its thread; a closed one stays closed."""
    if pane._handle is None:
        return
    handle_of(pane)
    pane._end_staging()
    if pane._handle is None:
        return
    pane._handle = None
    pane._receivers.clear()
    pane._finalizer()
    close_orphans()


def close_orphans() -> None:
    """Closes the panes of this thread that were dropped on others."""
    orphans = _here.token.orphans
    while orphans:
        library.kv_destroy(orphans.popleft())


def _destroy(handle: int, number: int, owner: _Token, process: int) -> None:
    _events.unregister(number)
    if os.getpid() != process:
        return  # a copy of the process has no right to the window
    if _here.token is owner:
        library.kv_destroy(handle)
        return
    owner.orphans.append(handle)
    if not _is_ending:
        warnings.warn(
            "a pane was dropped on another thread than its own, which closes it later",
            ResourceWarning,
            stacklevel=2,
        )


_is_ending = False


def _end() -> None:
    global _is_ending
    _is_ending = True
    panes = [reference() for reference in list(_events._panes.values())]
    for pane in panes:
        if pane is None:
            continue
        if pane._owner is _here.token:
            close(pane)
        else:
            pane._handle = None  # a thread that goes on ends at its next call
    close_orphans()
    _wait_for_calls()


def _wait_for_calls() -> None:
    """Waits until no thread is inside a call. The interpreter ends threads that go on where they
    enter Python next; in a callback, below functions of the library, that would end the process
    with a crash.
    """
    limit = time.monotonic() + 2
    while any(map(_is_in_call, _other_frames())) and time.monotonic() < limit:
        time.sleep(0.001)


def _other_frames() -> list[Any]:
    return [
        frame for thread, frame in sys._current_frames().items() if thread != threading.get_ident()
    ]


def _is_in_call(frame: Any) -> bool:
    if frame.f_code is _events.EventIterator.__next__.__code__:
        return False  # it waits for a descriptor
    while frame is not None:
        if frame.f_code.co_filename.startswith(_FOLDER):
            return True
        frame = frame.f_back
    return False


_FOLDER = os.path.dirname(__file__) + os.sep


def _after_fork() -> None:
    for number, reference in list(_events._panes.items()):
        pane = reference()
        if pane is not None:
            pane._handle = None
            pane._finalizer.detach()
        _events.unregister(number)
    _here.token.orphans.clear()


atexit.register(_end)
os.register_at_fork(after_in_child=_after_fork)
