"""The same batch on Dask, with two workers as separate processes."""

from __future__ import annotations

import os
import signal
import unittest
from pathlib import Path

from batch_case import BatchCase
from example_runs import example

try:
    import distributed  # noqa: F401  (the example needs it)
except ImportError as error:
    raise unittest.SkipTest(f"there is no {error.name}") from error

LOOPBACK = "0100007F"
LISTEN = "0A"


def listening_addresses(processes: list[int]) -> set[str]:
    """The addresses at which processes wait for connections, as /proc/net prints them."""
    sockets = set()
    for process in processes:
        for file in Path(f"/proc/{process}/fd").iterdir():
            target = os.readlink(file)
            if target.startswith("socket:["):
                sockets.add(target[8:-1])
    found = set()
    for table in ("/proc/net/tcp", "/proc/net/tcp6"):
        for line in Path(table).read_text().splitlines()[1:]:
            words = line.split()
            if words[3] == LISTEN and words[9] in sockets:
                found.add(words[1].partition(":")[0])
    return found


class BatchOnDask(BatchCase):
    program = "batch_dask.py"

    def run_pool(self) -> dict[str, bytes]:
        """The results of the same batch with a pool of processes."""
        ours, self.out = self.out, self.folder / "pool"
        self.run_batch(program="batch.py")
        results, self.out = self.results(), ours
        return results

    def test_table_and_pictures_are_those_of_the_pool(self) -> None:
        self.add_unusual_files()
        done = self.run_batch()
        self.assertEqual(done.status, 1, done)  # three files are bad
        self.assertEqual(len(self.rows()), len(self.scans) + 4)
        self.assertEqual(self.results(), self.run_pool())
        self.assertNotIn("Traceback", done.err)
        self.assertEqual(len(done.err.splitlines()), len(self.scans) + 4)

    def test_the_scans_of_a_lost_worker_are_done_by_the_other(self) -> None:
        gated = self.scans[0].name
        batch = self.start_gated(gated)
        lost = self.process_at_gate()
        names = [scan.name for scan in self.scans[1:]]
        self.wait_until(lambda: all(map(self.done_by, names)), "all other scans")
        (other,) = {worker for name in names for worker in self.done_by(name)}
        self.assertNotEqual(other, lost)
        os.kill(lost, signal.SIGKILL)
        done = self.finished(batch)
        self.assertEqual(done.status, 0, done)
        self.assertEqual(self.done_by(gated), [other])
        self.assertFalse((self.gate / "open").exists())
        self.assertEqual(self.results(), self.run_pool())
        self.assert_no_process_is_left(batch)

    def test_a_scan_that_ends_every_worker_is_a_row_with_its_reason(self) -> None:
        batch = self.start_gated(self.scans[1].name, KV_GATE_CRASH="1")
        done = self.finished(batch)
        self.assertEqual(done.status, 1, done)
        reasons = {row["file"]: row["error"] for row in self.rows()}
        self.assertIn("workers died", reasons.pop(self.scans[1].name))
        self.assertEqual(set(reasons.values()), {""})
        self.assertEqual(len(reasons), len(self.scans) - 1)
        self.assert_no_process_is_left(batch)

    def test_it_listens_on_the_loopback_device_only(self) -> None:
        batch = self.start_gated(self.scans[0].name)
        worker = self.process_at_gate()
        addresses = listening_addresses([batch.pid, worker])
        (self.gate / "open").touch()
        self.assertEqual(self.finished(batch).status, 0)
        self.assertEqual(addresses, {LOOPBACK})

    def test_an_interrupted_batch_ends_cleanly(self) -> None:
        batch = self.start_gated(self.scans[1].name)
        self.process_at_gate()
        self.assert_interrupted(batch)

    def test_wrong_arguments_are_refused(self) -> None:
        self.assertEqual(example(self.program, "--help").status, 0)
        self.assert_refused(self.run_batch("--workers", "0"),
                            "error: --workers must be at least 1", status=2)
        self.input = self.folder / "none"
        self.assert_refused(self.run_batch(), "none: No such file")


if __name__ == "__main__":
    unittest.main()
