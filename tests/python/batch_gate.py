"""A batch that can be stopped at one scan: the task of the examples, with a gate before it.

In the folder KV_GATE, each process leaves NAME.PID for each scan that it has done. The first one
that reaches the scan KV_GATE_SCAN leaves its id in "reached" and waits until there is a file
"open"; a second one goes through. With KV_GATE_CRASH each process ends itself there.
"""

from __future__ import annotations

import os
import signal
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(os.environ["KV_SOURCE_DIR"]) / "examples" / "python"))

import batch  # noqa: E402  (the path is set above)
import batch_dask  # noqa: E402
import batch_task  # noqa: E402
import scene  # noqa: E402

LIMIT = 120  # seconds until a process gives up waiting


def wait_for(path: Path) -> None:
    """Returns when the file is there."""
    end = time.monotonic() + LIMIT
    while not path.exists():
        if time.monotonic() > end:
            raise TimeoutError(path)
        time.sleep(0.01)


def process_scan(job: batch_task.Job) -> dict[str, str]:
    """The task of the examples; waits at the gate before the scan that the environment names."""
    folder, scan = Path(os.environ["KV_GATE"]), os.environ["KV_GATE_SCAN"]
    name = os.path.basename(job.scan)
    if name == scan and "KV_GATE_CRASH" in os.environ:
        os.kill(os.getpid(), signal.SIGKILL)
    if name == scan and not (folder / "reached").exists():
        (folder / "reached.part").write_text(str(os.getpid()))
        (folder / "reached.part").rename(folder / "reached")
        wait_for(folder / "open")
    row = batch_task.process_scan(job)
    (folder / f"{name}.{os.getpid()}").touch()
    return row


def main(program: str, arguments: list[str]) -> None:
    """Runs batch.py or batch_dask.py with the gate."""
    module = {"batch.py": batch, "batch_dask.py": batch_dask}[program]
    scene.run(lambda: module.main(arguments, process_scan))
