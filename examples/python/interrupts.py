"""Ctrl+C in a program with worker processes."""

from __future__ import annotations

import contextlib
import signal
from collections.abc import Iterator
from multiprocessing import resource_tracker


@contextlib.contextmanager
def blocked() -> Iterator[None]:
    """Processes and threads that are started inside never receive Ctrl+C.

    A terminal sends it to all processes of the program, and each worker would end with a traceback
    of its own. The thread that runs the block receives it at the end of the block.
    """
    resource_tracker.ensure_running()  # its start inside the block would let Ctrl+C through again
    former = signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGINT})
    try:
        yield
    finally:
        signal.pthread_sigmask(signal.SIG_SETMASK, former)
