"""The exceptions of the package, and those that callbacks have raised."""
from __future__ import annotations

import ctypes
import re
from threading import get_ident
from typing import Optional

# What callbacks raised and no call has raised again yet: by the number of the pane, or by the
# negative number of the thread where the pane is not known. Callbacks add to it without a call,
# which could raise another exception.
raised: dict[Optional[int], BaseException] = {}


def take_raised(number: Optional[int] = None) -> Optional[BaseException]:
    """What a callback of a pane, or one on this thread, has raised."""
    for key in (number, -get_ident(), None):
        error = raised.pop(key, None)
        if isinstance(error, ctypes.ArgumentError) and "RecursionError" in str(error):
            # ctypes gives the exceptions in its conversions another type.
            return RecursionError("maximum recursion depth exceeded")
        if error is not None:
            return error
    return None


class Error(RuntimeError):
    """A call failed in the viewer.

    reason: what the viewer reported; method: what was called, or empty
    """

    def __init__(self, reason: str, method: str = "") -> None:
        # The reasons of the viewer often start with the name of the method or of its function in C.
        names = r"kv_\w+: |" + re.escape(method) + r"(\(\):?|:) "
        reason = re.sub(f"^({names})", "", reason)
        super().__init__(f"{method}(): {reason}" if method else reason)
        self.reason = reason
        self.method = method

    def __reduce__(self):
        return type(self), (self.reason, self.method)


def _import_reason(text: str) -> str:
    """What the debugger output says to users: without names of functions, and without the lines
    that only say that such a function returned nothing.
    """
    lines = [line for line in text.split("\n") if not line.endswith("returned nullptr")]
    return "\n".join(re.sub(r"^(\w+\(\): )+", "", line) for line in lines)


class ImportFailed(Error):
    """An import added no object.

    reason: what the viewer reported, without the line break at its end; may be empty.
    """

    def __init__(self, reason: str, method: str = "") -> None:
        reason = _import_reason(reason)
        super().__init__(reason or "nothing was added", method)
        if not reason:
            self.reason = reason
