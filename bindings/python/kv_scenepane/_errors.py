"""The exceptions of the package."""
from __future__ import annotations


class Error(RuntimeError):
    """A call failed in the viewer.

    reason: what the viewer reported; method: what was called, or empty
    """

    def __init__(self, reason: str, method: str = "") -> None:
        # The reasons of the viewer often start with the name of the method themselves.
        has_name = not method or reason.startswith(f"{method}()")
        super().__init__(reason if has_name else f"{method}(): {reason}")
        self.reason = reason
        self.method = method

    def __reduce__(self):
        return type(self), (self.reason, self.method)


class ImportFailed(Error):
    """An import added no object.

    reason: what the viewer reported, without the line break at its end; may be empty.
    """

    def __init__(self, reason: str, method: str = "") -> None:
        super().__init__(reason or "nothing was added", method)
        self.reason = reason
