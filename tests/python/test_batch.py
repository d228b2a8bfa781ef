"""The batch over a folder, with a pool of processes."""

from __future__ import annotations

import os
import pty
import signal
import subprocess
import sys
import unittest

import numpy as np

from batch_case import LASSO, SIZE, BatchCase
from example_runs import EXAMPLES, SCENEPANE, Grid, example, info, read_png, run

CUT = LASSO["mode"] + ":" + ";".join(f"{x},{y}" for x, y in LASSO["points"])
BOX = ("x_min", "x_max", "y_min", "y_max", "z_min", "z_max")
CENTER = ("center_x", "center_y", "center_z")


class Batch(BatchCase):
    program = "batch.py"

    def test_the_numbers_are_those_of_scenepane(self) -> None:
        done = self.run_batch("--jobs", "2")
        self.assertEqual(done.status, 0, done)
        rows = self.rows()
        self.assertEqual([row["file"] for row in rows], [scan.name for scan in self.scans])
        changed = 0
        for row, scan in zip(rows, self.scans):
            (before,) = info(scan)["objects"]
            (after,) = info(scan, "--cut", CUT, *SIZE)["objects"]
            self.assertEqual(int(row["vertices_before"]), before["vertices"])
            self.assertEqual(int(row["triangles_before"]), before["triangles"])
            self.assertEqual(int(row["vertices_after"]), after["vertices"])
            self.assertEqual(int(row["triangles_after"]), after["triangles"])
            self.assertEqual([float(row[name]) for name in BOX], after["box"])
            self.assertEqual([float(row[name]) for name in CENTER], after["center"])
            self.assertEqual(row["error"], "")
            changed += after["triangles"] < before["triangles"]
        self.assertEqual(changed, len(self.scans))

    def test_box_and_counts_follow_from_the_grid_of_the_scan(self) -> None:
        self.lasso = self.write("beside.json",
                                '{"mode": "inside", "points": [[0, 0], [0.01, 0], [0, 0.01]]}')
        self.assertEqual(self.run_batch().status, 0)
        for row, grid in zip(self.rows(), map(Grid, self.scans)):
            points = grid.world()[grid.valid()]
            # A point without a neighbour is no vertex.
            self.assertLessEqual(int(row["vertices_before"]), len(points))
            self.assertGreater(int(row["vertices_before"]), 0.99 * len(points))
            self.assertEqual(row["vertices_after"], row["vertices_before"])
            box = np.array([float(row[name]) for name in BOX]).reshape(3, 2)
            np.testing.assert_allclose(box[:, 0], points.min(axis=0), atol=0.5)
            np.testing.assert_allclose(box[:, 1], points.max(axis=0), atol=0.5)
            center = [float(row[name]) for name in CENTER]
            np.testing.assert_allclose(center, points.mean(axis=0), atol=0.5)

    def test_the_pictures_are_those_of_scenepane(self) -> None:
        self.assertEqual(self.run_batch().status, 0)
        expected = self.folder / "expected.png"
        for row, scan in zip(self.rows(), self.scans):
            done = run(SCENEPANE, "--screenshot", expected, "--cut", CUT, *SIZE, scan)
            self.assertEqual(done.status, 0, done)
            picture = read_png(self.out / row["picture"])
            np.testing.assert_array_equal(picture, read_png(expected))

    def test_any_number_of_processes_gives_the_same_results(self) -> None:
        self.add_unusual_files()
        self.assertEqual(self.run_batch("--jobs", "1").status, 1)
        alone = self.results()
        self.assertEqual(len(alone), 6)  # table and five pictures
        self.out = self.folder / "other"
        self.assertEqual(self.run_batch("--jobs", "3").status, 1)
        self.assertEqual(self.results(), alone)

    def test_a_bad_file_is_a_row_with_its_reason(self) -> None:
        self.add_unusual_files()
        done = self.run_batch("--jobs", "2")
        self.assertEqual(done.status, 1, done)
        rows = self.rows()
        names = [row["file"] for row in rows]
        self.assertEqual(names, sorted(names, key=os.fsencode))
        self.assertEqual(len(rows), len(self.scans) + 4)
        self.assertNotIn("notes.txt", names)
        reasons = {row["file"]: row["error"] for row in rows if row["error"]}
        self.assertEqual(set(reasons), {"a bad.pcm", "empty.xdt", "folder.pcm"})
        self.assertIn("length", reasons["a bad.pcm"])
        self.assertIn("directory", reasons["folder.pcm"])
        for row in rows:
            picture = self.out / row["file"]
            if row["error"]:
                self.assertEqual(row["vertices_before"] + row["picture"], "")
                self.assertIn(f" {row['file']}: {row['error']}\n", done.err)
            else:
                picture = self.out / row["picture"]
                self.assertEqual(read_png(picture).shape, (120, 160, 4))
        self.assertIn(b'"r\xe4um 1, ""a"".PCM",', (self.out / "table.csv").read_bytes())
        self.assertIn(f"{len(rows)} scans, 3 failed", done.out)

    def test_a_scan_of_which_nothing_is_left_has_no_box(self) -> None:
        self.lasso = self.write("all.json", '{"mode": "inside", "points": '
                                "[[0, 0], [0.999, 0], [0.999, 0.999], [0, 0.999]]}")
        self.assertEqual(self.run_batch().status, 0)
        for row in self.rows():
            self.assertEqual((row["vertices_after"], row["triangles_after"]), ("0", "0"))
            self.assertEqual({row[name] for name in BOX + CENTER}, {""})
            self.assertTrue((self.out / row["picture"]).exists())

    def test_what_cannot_be_a_batch_is_refused(self) -> None:
        whole = self.lasso
        for lasso, reason in (
            ("{", "lasso.json: "), ("[1]", "JSON object"), ('{"points": [[0, 0], [1, 1]]}', "mode"),
            ('{"mode": "inside"}', "list of pairs"),
            ('{"mode": "inside", "points": [[0, 0]]}', "at least two points"),
            ('{"mode": "inside", "points": [[0, 0], [1]]}', "point 2"),
            ('{"mode": "inside", "points": [[0, 0], [1, true]]}', "point 2"),
            ('{"mode": "inside", "points": [[0, 0], [1, 1e999]]}', "point 2"),
            ('{"mode": "inside", "points": [[0, 0], [1, 1]], "view": 8}', "0 to 7"),
            (b"\xff", "lasso.json: "), ("[" * 100000, "lasso.json: "),
        ):
            with self.subTest(lasso=lasso[:40]):
                self.write("lasso.json", lasso)
                self.assert_refused(self.run_batch(), reason)
        self.lasso = self.folder / "none.json"
        self.assert_refused(self.run_batch(), "none.json: No such file")
        self.lasso, self.input = whole, self.folder / "no folder"
        self.write("lasso.json", '{"mode": "inside", "points": [[0, 0], [1, 1]]}')
        self.assert_refused(self.run_batch(), "no folder: No such file")
        self.input.mkdir()
        self.assert_refused(self.run_batch(), "no folder: no scans (.pcm, .pax, .xdt)")
        for jobs in ("0", "-1"):
            self.assert_refused(self.run_batch(f"--jobs={jobs}"), "error: --jobs must be at least 1",
                                status=2)
        self.assert_refused(self.run_batch("--jobs=two"), "argument --jobs: invalid int value",
                            status=2)
        self.assertFalse(self.out.exists())

    def test_a_log_has_one_line_per_scan(self) -> None:
        done = self.run_batch()
        count = len(self.scans)
        lines = done.err.splitlines()
        self.assertEqual([line.split()[0] for line in lines],
                         [f"{place}/{count}" for place in range(1, count + 1)])
        self.assertEqual({line.split(maxsplit=1)[1] for line in lines},
                         {f"{scan.name}: done" for scan in self.scans})

    def test_a_terminal_shows_a_bar_and_the_failures_above_it(self) -> None:
        (self.input / "bad.pcm").write_bytes(b"")
        ours, theirs = pty.openpty()
        words = [sys.executable, EXAMPLES / self.program, *self.arguments()]
        batch = subprocess.Popen(list(map(str, words)), stdout=subprocess.DEVNULL, stderr=theirs)
        os.close(theirs)
        shown = b""
        try:
            while part := os.read(ours, 4096):
                shown += part
        except OSError:  # the program has closed its end
            pass
        os.close(ours)
        self.assertEqual(batch.wait(), 1)
        count = len(self.scans) + 1
        text = shown.decode()
        self.assertTrue(text.endswith(f"\r\x1b[K[{'#' * 40}] {count}/{count}\r\n"), repr(text))
        self.assertIn(f"[{'#' * 8}{'.' * 32}] 1/{count}", text)
        self.assertEqual(text.count("\n"), 2)  # after the failure, and at the end
        self.assertRegex(text, r"\r\x1b\[Kbad\.pcm: [^\n]+\r\n\[")

    def test_an_interrupted_batch_ends_cleanly(self) -> None:
        batch = self.start_gated(self.scans[1].name, "--jobs", "2")
        self.process_at_gate()
        others = [scan.name for scan in self.scans if scan != self.scans[1]]
        self.wait_until(lambda: all(map(self.done_by, others)), "the other scans")
        self.assert_interrupted(batch)  # one process works, and one waits for work

    def test_an_interrupted_batch_leaves_out_the_scans_that_wait(self) -> None:
        batch = self.start_gated(self.scans[0].name, "--jobs", "1")
        self.process_at_gate()
        self.assert_interrupted(batch)
        self.assertTrue(self.done_by(self.scans[0].name))
        self.assertEqual(self.done_by(self.scans[-1].name), [])

    def test_a_lost_process_is_reported_and_ends_the_batch(self) -> None:
        batch = self.start_gated(self.scans[1].name, "--jobs", "2")
        worker = self.process_at_gate()
        others = [scan.name for scan in self.scans if scan != self.scans[1]]
        self.wait_until(lambda: all(map(self.done_by, others)), "the other scans")
        os.kill(worker, signal.SIGKILL)
        done = self.finished(batch)
        self.assertEqual(done.status, 1, done)
        reasons = {row["file"]: row["error"] for row in self.rows()}
        self.assertIn("terminated abruptly", reasons.pop(self.scans[1].name))
        self.assertEqual(list(reasons), others)
        self.assert_no_process_is_left(batch)

    def test_results_replace_older_ones(self) -> None:
        self.out.mkdir()
        (self.out / "table.csv").write_text("old")
        self.assertEqual(self.run_batch().status, 0)
        self.assertEqual(len(self.rows()), len(self.scans))
        self.assertEqual([name for name in self.results() if name.startswith(".")], [])
        self.assertEqual(example(self.program, "--help").status, 0)


if __name__ == "__main__":
    unittest.main()
