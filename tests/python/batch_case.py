"""What the tests of both batches share: a folder of scans, a lasso, and a batch that waits."""

from __future__ import annotations

import csv
import json
import os
import signal
import subprocess
import sys
import time
from pathlib import Path

from example_runs import ExampleCase, Run, example

LASSO = {"mode": "inside", "points": [[0.35, 0.3], [0.65, 0.35], [0.5, 0.75]], "view": 4}
SIZE = ("--size", "160x120")
LIMIT = 120  # seconds that a test waits for a condition


class BatchCase(ExampleCase):
    """A batch over simulated scans, in the folder "scans" of the test; the results are in "out"."""

    program = ""
    simulation = ("--scans", "4")

    def setUp(self) -> None:
        super().setUp()
        self.input, self.out = self.folder / "scans", self.folder / "the results"
        self.input.mkdir()
        for scan in self.copies():
            scan.rename(self.input / scan.name)
        self.lasso = self.write("lasso.json", json.dumps(LASSO))

    def arguments(self, *more: object) -> list[object]:
        return [self.input, "--lasso", self.lasso, "--out", self.out, *SIZE, *more]

    def run_batch(self, *more: object, program: str = "") -> Run:
        return example(program or self.program, *self.arguments(*more))

    def rows(self) -> list[dict[str, str]]:
        """The table of the results."""
        with open(self.out / "table.csv", encoding="utf-8", errors="surrogateescape",
                  newline="") as file:
            return list(csv.DictReader(file))

    def results(self) -> dict[str, bytes]:
        """All files of the results."""
        return {path.name: path.read_bytes() for path in self.out.iterdir()}

    def add_unusual_files(self) -> None:
        """A scan with an unusual name, files that cannot be read, and one that is no scan."""
        whole = self.scans[0].read_bytes()
        (self.input / "r\udce4um 1, \"a\".PCM").write_bytes(whole)
        (self.input / "a bad.pcm").write_bytes(whole[:1000])
        (self.input / "empty.xdt").write_bytes(b"")
        (self.input / "notes.txt").write_bytes(b"no scan")
        (self.input / "folder.pcm").mkdir()

    # ---- a batch that waits before one scan, see batch_gate.py

    def start_gated(self, scan: str, *more: object, **environment: str) -> subprocess.Popen:
        """Starts the batch in a process group of its own."""
        self.gate = self.folder / "gate"
        self.gate.mkdir()
        tests = os.path.dirname(__file__)
        code = f"import sys; sys.path.insert(0, {tests!r}); import batch_gate; " \
               f"sys.argv[0] = {self.program!r}; batch_gate.main({self.program!r}, sys.argv[1:])"
        batch = subprocess.Popen(
            [sys.executable, "-c", code, *map(str, self.arguments(*more))],
            env={**os.environ, "KV_GATE": str(self.gate), "KV_GATE_SCAN": scan, **environment},
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            start_new_session=True,
            # ctest may ignore the signal, and programs inherit that.
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
        )
        self.addCleanup(self._end_group, batch)
        return batch

    @staticmethod
    def _end_group(batch: subprocess.Popen) -> None:
        if batch.returncode is None:
            os.killpg(batch.pid, signal.SIGKILL)
            batch.communicate()

    def wait_until(self, condition, what: str) -> None:
        """Waits for a condition, with a long limit."""
        end = time.monotonic() + LIMIT
        while not condition():
            self.assertLess(time.monotonic(), end, f"{what} did not happen")
            time.sleep(0.01)

    def process_at_gate(self) -> int:
        """The id of the worker that waits."""
        self.wait_until((self.gate / "reached").exists, "the scan at the gate")
        return int((self.gate / "reached").read_text())

    def done_by(self, scan: str) -> list[int]:
        """The ids of the processes that have done a scan."""
        return [int(path.suffix[1:]) for path in self.gate.glob(f"{scan}.*")]

    def finished(self, batch: subprocess.Popen) -> Run:
        """Waits for the end of the batch."""
        out, err = batch.communicate(timeout=LIMIT)
        return Run(batch.returncode, out, err)

    def assert_no_process_is_left(self, batch: subprocess.Popen) -> None:
        """The group of the batch has no process any more, but for some that are about to end."""
        self.wait_until(lambda: not _living(batch.pid), "the end of all processes")

    def assert_interrupted(self, batch: subprocess.Popen) -> None:
        """Ctrl+C, as a terminal sends it: to all processes of the program."""
        os.killpg(batch.pid, signal.SIGINT)
        (self.gate / "open").touch()
        done = self.finished(batch)
        self.assertEqual(done.status, 130, repr(done))
        self.assertIn(f"{self.program}: interrupted\n", done.err)
        # Dask may log about connections that end; no process may end by the signal itself.
        self.assertNotIn("KeyboardInterrupt", done.err)
        self.assert_no_process_is_left(batch)
        names = sorted(path.name for path in self.out.iterdir())
        self.assertNotIn("table.csv", names)
        self.assertTrue(all(name.endswith(".pcm.png") for name in names), names)


def _living(group: int) -> list[str]:
    """The processes of a group that are not only waited for."""
    found = []
    for status in Path("/proc").glob("[0-9]*/stat"):
        try:
            state, _, its_group = status.read_text().rpartition(")")[2].split()[:3]
        except (FileNotFoundError, ProcessLookupError):
            continue
        if int(its_group) == group and state != "Z":
            found.append(status.parent.name)
    return found
