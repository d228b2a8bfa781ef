"""The life of panes: each belongs to one thread, and is closed there.

A pane that nothing refers to any more is closed at once when that happens on its own thread. On
another thread it cannot be closed; its thread closes it when it makes a pane, closes one or
processes events, and a ResourceWarning says so. The same thread does so with a pane that was closed
while a call of it began. At the end of the interpreter the panes of the main thread are closed.
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

from . import _debug, _events
from ._errors import Error, raised, take_raised
from ._library import NO_PICTURE, last_error, library


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
_drawing_process = 0  # the first that made a pane with a picture, this one or one that forked it


class Running:
    """The threads that run an import."""

    __slots__ = ("_changed", "_threads", "_ended")

    def __init__(self) -> None:
        self._changed = threading.Condition()
        self._threads: list[int] = []
        self._ended = False

    def __enter__(self) -> "Running":
        with self._changed:
            if self._ended:
                raise RuntimeError("the parallel import has ended")
            self._threads.append(threading.get_ident())
        return self

    def __exit__(self, *_exception: Any) -> None:
        with self._changed:
            self._threads.remove(threading.get_ident())
            self._changed.notify_all()

    def end(self) -> None:
        """Lets no other thread in and waits for those that run."""
        with self._changed:
            # Inside add(), or while the others wait until they may write, it would wait for itself.
            if self._threads and (
                threading.get_ident() in self._threads or _debug.is_receiving()
            ):
                raise RuntimeError(
                    "a parallel import cannot end inside add() or inside the debugger output"
                )
            self._ended = True
            self._changed.wait_for(lambda: not self._threads)


def start(pane: Any, request: Any) -> None:
    """Makes the viewer of a pane; the calling thread becomes its owner."""
    _note_drawing(request.kind)
    close_orphans()
    pane._owner = _here.token
    pane._number = next(_numbers)
    handle = pane._handle = ctypes.c_void_p()
    request.user = pane._number
    pane._finalizer = weakref.finalize(
        pane, _destroy, handle, pane._number, pane._owner, os.getpid()
    )
    # _end() closes what is open then: a destructor that runs later must find the pane closed.
    pane._finalizer.atexit = False
    _events.register(pane._number, pane)
    handle.value = library.kv_create(ctypes.byref(request))
    error = take_raised(pane._number)
    if error is None and handle:
        library.kv_connect(handle, _events.on_event, pane._number)
        error = take_raised(pane._number)
    if error is None and not handle:
        error = Error(last_error())
    if error is not None:
        pane._finalizer()
        raise error


def _note_drawing(kind: int) -> None:
    global _drawing_process
    if kind == NO_PICTURE:
        return
    # Without the threads of the graphics driver a new context would wait for ever.
    if _drawing_process not in (0, os.getpid()):
        raise Error(
            "a pane with a picture was made before the fork, and the threads of the graphics "
            "driver end with a fork: use the start method spawn or forkserver, or no_picture()"
        )
    _drawing_process = os.getpid()


def check_usable(pane: Any) -> None:
    """RuntimeError on another thread than the pane's, and for a closed one."""
    if _here.token is pane._owner and pane._handle:
        return
    if pane._owner is None:
        raise RuntimeError("the pane is being read, and can be neither called nor closed meanwhile")
    if _here.token is not pane._owner:
        raise RuntimeError("a pane belongs to the thread that made it, and this is another one")
    if _is_ending and threading.current_thread() is not threading.main_thread():
        raise SystemExit  # which ends a thread without a word
    raise RuntimeError("the pane is closed")


def close(pane: Any) -> None:
    """Closes a pane on its thread; a closed one stays closed."""
    if not pane._handle:
        if pane._owner is _here.token:
            close_orphans()
        return
    check_usable(pane)
    pane._end_staging()
    if not pane._handle:
        return
    pane._receivers.clear()
    if _is_starting_call():
        _, _, arguments, _ = pane._finalizer.detach()
        _end_later(*arguments[:3])
        return
    pane._finalizer()
    close_orphans()


def _is_starting_call() -> bool:
    """Whether a destructor or a signal handler runs while a call of a pane is being prepared: the
    call may have read the address of its viewer. Inside a callback, the library itself frees the
    viewer after the call.
    """
    frame = sys._getframe(2).f_back
    while frame is not None:
        code = frame.f_code
        if code in _events.CALLBACK_CODES:
            return False
        if (
            code.co_filename.startswith(_FOLDER)
            and code.co_name not in ("close", "__exit__", "__init__")
            and hasattr(type(frame.f_locals.get("self")), "_live")  # a deleted widget itself raises
        ):
            return True
        frame = frame.f_back
    return False


def _end_later(pointer: ctypes.c_void_p, number: int, owner: _Token) -> None:
    _events.unregister(number)
    raised.pop(number, None)
    handle, pointer.value = pointer.value, None
    if handle is not None:
        owner.orphans.append(handle)


def close_orphans() -> None:
    """Closes the panes of this thread that were dropped on others."""
    orphans = _here.token.orphans
    while orphans and not _is_starting_call():
        library.kv_destroy(orphans.popleft())


def _destroy(pointer: ctypes.c_void_p, number: int, owner: _Token, process: int) -> None:
    _events.unregister(number)
    raised.pop(number, None)
    handle, pointer.value = pointer.value, None
    if handle is None or os.getpid() != process:
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
            pane._handle.value = None  # a thread that goes on ends at its next call
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
            pane._handle.value = None
            pane._finalizer.detach()
        _events.unregister(number)
    _here.token.orphans.clear()


atexit.register(_end)
os.register_at_fork(after_in_child=_after_fork)
