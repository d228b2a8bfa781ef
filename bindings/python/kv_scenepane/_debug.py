"""The debugger output: text for a function of the user, for an exception, or for standard error."""
from __future__ import annotations

import atexit
import ctypes
import sys
import threading
from threading import get_ident
from typing import Callable, Optional

from ._errors import raised
from ._library import DebugFunction, library

_function: Optional[Callable[[str], object]] = None


class _Thread(threading.local):
    def __init__(self) -> None:
        # Texts of the imports that run on this thread, innermost last.
        self.captures: list[list[str]] = []
        self.receiving = 0  # how many texts are being received, one inside a call of the other


_thread = _Thread()


def on_debug_output(function: Optional[Callable[[str], object]]) -> None:
    """Redirects the debugger output of the whole process: reasons and warnings of all viewers.

    function receives one piece of text, usually whole lines. It may be called on any thread that
    imports; what it raises is raised by the call that wrote the text, once that is done. None
    writes to sys.stderr again. Without a function, the text of an import that fails is the text of
    its exception only.
    """
    global _function
    if function is not None and not callable(function):
        raise TypeError(
            f"on_debug_output(): function must be callable, not {type(function).__name__}"
        )
    _function = function


def _write(text: str) -> None:
    stream = sys.stderr
    if stream is not None:
        stream.write(text)
        stream.flush()


def receive(_user, text, size):
    """kv_debug_function. What is raised is kept, and raised by the call that is running."""
    here = None
    try:
        here = -get_ident()
        _thread.receiving += 1
        try:
            _receive(ctypes.string_at(text, size).decode("utf-8", "replace") if size else "")
        finally:
            _thread.receiving -= 1
    except BaseException as error:
        raised[here] = error


def _receive(words: str) -> None:
    captures = _thread.captures
    if captures:
        captures[-1].append(words)
    function = _function
    if function is not None:
        function(words)
    elif not captures:
        _write(words)


def is_receiving() -> bool:
    """Whether this thread is inside the debugger output."""
    return _thread.receiving > 0


_callback = DebugFunction(receive)


class Capture:
    """Collects the debugger output of this thread while it is entered."""

    __slots__ = ("_texts",)

    def __enter__(self) -> "Capture":
        self._texts: list[str] = []
        _thread.captures.append(self._texts)
        return self

    def __exit__(self, *_exception) -> None:
        _thread.captures.pop()

    def text(self) -> str:
        """What was written, without the line break at its end."""
        return "".join(self._texts).rstrip("\n")

    def pass_on(self) -> None:
        """Writes what no exception has, unless a function of the user has it."""
        if self._texts and _function is None:
            _write("".join(self._texts))


def _restore() -> None:
    library.kv_set_debug_output(DebugFunction(0), None)


library.kv_set_debug_output(_callback, None)
# After the end of the interpreter no text may reach it.
atexit.register(_restore)
