"""The cut by a lasso that is written back into the scans."""

from __future__ import annotations

import json
import re
import unittest

import numpy as np

from example_runs import CUT_CLASS, SCENEPANE, ExampleCase, Grid, example, info, run

WIDTH, HEIGHT = 320, 240
SIZE = ("--size", f"{WIDTH}x{HEIGHT}")
TRIANGLE = ((0.35, 0.3), (0.62, 0.35), (0.5, 0.75))
LASSO = ";".join(f"{x},{y}" for x, y in TRIANGLE)


def edge_distances(pixels: np.ndarray) -> np.ndarray:
    """Signed distances to the lines of the triangle, pixels x 3; all of one sign inside it."""
    corners = np.array(TRIANGLE) * (WIDTH, HEIGHT)
    distances = []
    for start, end in zip(corners, np.roll(corners, -1, axis=0)):
        along = (end - start) / np.linalg.norm(end - start)
        offset = pixels - start
        distances.append(along[0] * offset[:, 1] - along[1] * offset[:, 0])
    return np.stack(distances, axis=1)


class CutByLasso(ExampleCase):
    simulation = ("--scans", "2", "--colors")

    def cut(self, *arguments: object, lasso: str = LASSO):
        return example("cut_by_lasso.py", *arguments, "--lasso", lasso, *SIZE)

    def pixels_of(self, points: np.ndarray) -> np.ndarray:
        """Where points are in the picture: the scale is read off two picks of scenepane."""
        picks = []
        for x, y in ((150, 110), (175, 130)):
            done = run(SCENEPANE, "--pick", f"{x},{y}", "--json", *SIZE, *self.scans)
            numbers = json.loads(re.search(r'"point":(\[[^]]*\])', done.out)[1])
            picks.append((np.array([x, y]) + 0.5, np.array(numbers[:2])))
        (pixel, world), (other_pixel, other_world) = picks
        scale = (other_pixel - pixel) / (other_world - world)  # y: negative
        return pixel + (points[:, :2] - world) * scale

    def test_the_pixels_inside_the_lasso_are_removed_and_no_others(self) -> None:
        files = self.copies()
        done = self.cut(*files)
        self.assert_good(done)
        self.assertEqual(done.out.splitlines(), [f"{file}: written" for file in files])
        total = 0
        for scan, file in zip(self.scans, files):
            before, after = Grid(scan), Grid(file)
            removed = before.classes != after.classes
            self.assertTrue((after.classes[removed] == CUT_CLASS).all())
            self.assertTrue(before.valid()[removed].all())
            distances = edge_distances(self.pixels_of(before.world()))
            inside = (distances > 0).all(axis=1) | (distances < 0).all(axis=1)
            # The lasso is filled pixel by pixel: within two pixels of its edge both are right.
            is_clear = (np.abs(distances) > 2).all(axis=1) & before.valid()
            np.testing.assert_array_equal(removed[is_clear], inside[is_clear])
            total += removed[is_clear].sum()
        self.assertGreater(total, 1000)

    def test_all_other_layers_of_the_files_stay(self) -> None:
        files = self.copies()
        self.assert_good(self.cut(*files))
        for scan, file in zip(self.scans, files):
            before, after = Grid(scan), Grid(file)
            self.assertEqual(before.transform.tobytes(), after.transform.tobytes())
            for name, kind, size in ((b"XYZ ", "<f4", 3), (b"CONF", "<f4", 1), (b"COLR", "<u4", 1)):
                self.assertIn(name, before.sections)
                self.assertEqual(before.layer(name, kind, size).tobytes(),
                                 after.layer(name, kind, size).tobytes(), name)

    def test_the_files_are_those_that_scenepane_writes(self) -> None:
        for mode in ("inside", "outside", "visible", "freehand-inside"):
            with self.subTest(mode=mode):
                ours, theirs = self.copies("1.pcm", "2.pcm"), self.copies("3.pcm", "4.pcm")
                self.assert_good(self.cut(*ours, "--mode", mode, "--view", "6"))
                done = run(SCENEPANE, "--cut", f"{mode}:{LASSO}", "--save-cuts", "--view", "6",
                           *SIZE, *theirs)
                self.assertEqual(done.status, 0, done)
                for our, their, scan in zip(ours, theirs, self.scans):
                    self.assertEqual(our.read_bytes(), their.read_bytes())
                    self.assertNotEqual(our.read_bytes(), scan.read_bytes())

    def test_a_cut_scan_opens_with_fewer_points(self) -> None:
        files = self.copies()
        self.assert_good(self.cut(*files))
        for before, after in zip(info(*self.scans)["objects"], info(*files)["objects"]):
            self.assertLess(after["vertices"], before["vertices"])
            self.assertEqual(after["transform"], before["transform"])

    def test_a_dry_run_writes_nothing(self) -> None:
        files = self.copies()
        done = self.cut(*files, "--dry-run")
        self.assert_good(done)
        self.assertEqual(done.out.splitlines(), [f"{file}: to be written" for file in files])
        for scan, file in zip(self.scans, files):
            self.assertEqual(scan.read_bytes(), file.read_bytes())

    def test_a_lasso_beside_the_scans_writes_nothing(self) -> None:
        files = self.copies()
        self.assert_refused(self.cut(*files, lasso="0,0;0.02,0;0,0.02"), "has hit nothing")
        self.assertEqual(self.scans[0].read_bytes(), files[0].read_bytes())

    def test_a_lasso_in_pixels_is_explained(self) -> None:
        files = self.copies()
        self.assert_refused(self.cut(*files, lasso="200,200;800,200;500,700"),
                            "points are fractions of the drawing area from 0 to below 1")
        self.assertEqual(self.scans[0].read_bytes(), files[0].read_bytes())

    def test_nothing_is_written_when_one_of_the_files_cannot_be_read(self) -> None:
        (good, *_), bad = self.copies(), self.write("bad.pcm", b"no scan")
        for other, reason in ((bad, "header is cut short"), (self.folder / "none.pcm", "No such")):
            self.assert_refused(self.cut(good, other), reason)
            self.assertEqual(self.scans[0].read_bytes(), good.read_bytes())

    def test_a_mesh_is_cut_but_cannot_hold_the_cut(self) -> None:
        file, mesh = self.copies("a.pcm")[0], self.folder / "b.ply"
        self.assertEqual(run(SCENEPANE, "--convert", self.scans[0], mesh).status, 0)
        content = mesh.read_bytes()
        done = self.cut(file, mesh)
        self.assert_good(done)
        self.assertEqual(done.out.splitlines()[0], f"{file}: written")
        self.assertIn(f"{mesh}: skipped, only pcm files", done.out.splitlines()[1])
        self.assertEqual(mesh.read_bytes(), content)
        self.assert_refused(self.cut(mesh), "no file was cut that can hold cuts")

    def test_a_scan_of_which_nothing_is_left_is_named(self) -> None:
        (file,) = self.copies("all.pcm")
        done = self.cut(file, lasso="0,0;0.999,0;0.999,0.999;0,0.999")
        self.assert_good(done)
        self.assertEqual(done.out, f"{file}: written, no point is left in it\n")
        self.assertFalse(Grid(file).valid().any())

    def test_wrong_lassos_are_refused(self) -> None:
        (file,) = self.copies("a.pcm")
        for lasso, reason in (
            ("0,0", "at least two points"), ("0,0;x,1", 'point 2 of the lasso is "x,1"'),
            ("0,0;1", "point 2 of the lasso is not a pair"), ("", "point 1"),
            ("0,0;1,nan", "point 2 of the lasso is not a pair of finite"),
            ("0,0;1,1;", 'point 3 of the lasso is ""'),
        ):
            with self.subTest(lasso=lasso):
                self.assert_refused(self.cut(file, lasso=lasso), reason)
        self.assertEqual(self.scans[0].read_bytes(), file.read_bytes())


if __name__ == "__main__":
    unittest.main()
