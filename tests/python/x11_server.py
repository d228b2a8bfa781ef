"""An X server without a monitor, for tests with windows, and real input for them."""

import os
import subprocess
import time
from typing import Callable


def wait_until(condition: Callable[[], object], seconds: float = 60) -> bool:
    """Whether the condition becomes true; the limit is long, because machines may be busy."""
    limit = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > limit:
            return False
        time.sleep(0.01)
    return True


def plain_environment() -> dict:
    """Without what is meant for the process under test: its driver and its sanitizer."""
    meant_for_tests = ("LD_PRELOAD", "GALLIUM_DRIVER", "MESA_LOADER_DRIVER_OVERRIDE")
    return {name: value for name, value in os.environ.items() if name not in meant_for_tests}


class X11Server:
    """Starts Xvfb on a free display; name is in the form of $DISPLAY."""

    def __init__(self, size: str = "1280x1024") -> None:
        reader, writer = os.pipe()
        with os.fdopen(reader) as numbers:
            self._process = subprocess.Popen(
                ["Xvfb", "-displayfd", str(writer), "-screen", "0", f"{size}x24"]
                + ["+extension", "GLX", "-nolisten", "tcp", "-noreset"],
                pass_fds=[writer],
                env=plain_environment(),
                stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL,
            )
            os.close(writer)
            number = numbers.readline().strip()
        if not number:
            self.close()
            raise RuntimeError("Xvfb does not start; is it installed?")
        self.name = f":{number}"
        self._own_sockets = self._socket_count()

    def __enter__(self) -> "X11Server":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        self._process.terminate()
        self._process.wait()

    def client_count(self) -> int:
        """Number of connected clients, by the open sockets of the server."""
        return self._socket_count() - self._own_sockets

    def _socket_count(self) -> int:
        folder = f"/proc/{self._process.pid}/fd"
        count = 0
        for entry in os.listdir(folder):
            try:
                count += os.readlink(f"{folder}/{entry}").startswith("socket:")
            except FileNotFoundError:
                pass  # closed in the meantime
        return count

    def xdotool(self, *words: object) -> str:
        """Moves the pointer, presses buttons and keys, as a user does; returns what it prints."""
        return subprocess.run(
            ["xdotool", *map(str, words)],
            check=True,
            env={**plain_environment(), "DISPLAY": self.name},
            stdout=subprocess.PIPE,
            text=True,
        ).stdout
