"""The alignment by pairs of points."""

from __future__ import annotations

import json
import unittest

import numpy as np

from example_runs import SCENEPANE, ExampleCase, Grid, example, info, run


def rotation(axis: tuple[float, float, float], degrees: float) -> np.ndarray:
    """The matrix of a rotation about an axis, by Rodrigues' formula."""
    x, y, z = np.array(axis) / np.linalg.norm(axis)
    cross = np.array([[0, -z, y], [z, 0, -x], [-y, x, 0]])
    angle = np.radians(degrees)
    return np.eye(3) + np.sin(angle) * cross + (1 - np.cos(angle)) * cross @ cross


class AlignByPairs(ExampleCase):
    simulation = ("--scans", "2")
    turn, shift = rotation((1, 2, -1), 20), np.array([4.0, -7.0, 2.5])

    def setUp(self) -> None:
        super().setUp()
        self.moving, self.fixed = self.copies("moving scan.pcm", "fixed.pcm")

    def align(self, pairs, *arguments: object):
        return example("align_by_pairs.py", "--moving", self.moving, "--fixed", self.fixed,
                       "--pairs", pairs, *arguments)

    def reference(self, pairs, *arguments: object):
        return run(SCENEPANE, "--align", pairs, "--json", *arguments,
                   "--moving", self.moving, "--fixed", self.fixed)

    def pairs_of_the_motion(self, noise: float = 0.0) -> str:
        """Points of the moving scan, and where the known motion puts them."""
        grid = Grid(self.moving)
        chosen = grid.world()[grid.valid()][::400]
        self.assertGreater(len(chosen), 5)
        errors = np.random.default_rng(1).normal(scale=noise, size=chosen.shape)
        moved = chosen @ self.turn.T + self.shift + errors
        lines = [" ".join(f"{value:.9g}" for value in row) for row in np.hstack([chosen, moved])]
        return "# moving, fixed\n" + "\n".join(lines) + "\n"

    @staticmethod
    def transform_of(printed: str) -> np.ndarray:
        """The printed 4 x 4 matrix."""
        rows = printed.splitlines()[1:5]
        return np.array([[float(word) for word in row.split()] for row in rows])

    def test_exact_pairs_give_the_motion_back(self) -> None:
        done = self.align(self.write("pairs.txt", self.pairs_of_the_motion()))
        self.assert_good(done)
        transform = self.transform_of(done.out)
        np.testing.assert_allclose(transform[:3, :3], self.turn, atol=1e-5)
        np.testing.assert_allclose(transform[:3, 3], self.shift, atol=1e-3)
        np.testing.assert_array_equal(transform[3], [0, 0, 0, 1])
        residuals = [float(line.split()[-1]) for line in done.out.splitlines()[5:]]
        self.assertLess(max(residuals), 1e-4)

    def test_transform_and_residuals_are_those_of_scenepane(self) -> None:
        normals = "1 2 3  0 0 2  4 5 6  0 1 1"
        for text in (self.pairs_of_the_motion(noise=0.3), normals, f"{normals}\n{normals[::-1]}\n"):
            with self.subTest(text=text[:40]):
                pairs = self.write("pairs.txt", text)
                done, expected = self.align(pairs), json.loads(self.reference(pairs).out)
                self.assert_good(done)
                transform = np.array(expected["transform"]).reshape(4, 4)
                lines = done.out.splitlines()
                self.assertEqual(lines[1:5], ["  " + " ".join(f"{v:14.8f}" for v in row)
                                              for row in transform])
                printed = [line.split()[-1] for line in lines[5:]]
                self.assertEqual(printed, [f"{v:.6f}" for v in expected["residuals"]]
                                 + [f"{expected['rms']:.6f}"])

    def test_saved_transforms_are_those_of_scenepane_and_move_the_scan(self) -> None:
        pairs = self.write("pairs.txt", self.pairs_of_the_motion())
        ours, theirs = self.folder / "ours.json", self.folder / "theirs.json"
        self.assert_good(self.align(pairs, "--save-transforms", ours))
        self.assertEqual(self.reference(pairs, "--save-transforms", theirs).status, 0)
        self.assertEqual(json.loads(ours.read_text()), json.loads(theirs.read_text()))
        before = np.array(info(self.moving)["objects"][0]["transform"]).reshape(4, 4)
        after, stayed = info("--transforms", ours, self.moving, self.fixed)["objects"]
        expected = np.vstack([np.hstack([self.turn, self.shift[:, None]]), [0, 0, 0, 1]]) @ before
        np.testing.assert_allclose(np.array(after["transform"]).reshape(4, 4), expected, atol=0.01)
        self.assertEqual(stayed["transform"], info(self.fixed)["objects"][0]["transform"])
        self.assertEqual([path.name for path in self.folder.glob("*.part")], [])

    def test_a_name_that_is_not_utf_8_is_saved_so_that_scenepane_finds_it(self) -> None:
        self.moving = self.moving.rename(self.folder / "r\udce4um.pcm")
        pairs, saved = self.write("pairs.txt", self.pairs_of_the_motion()), self.folder / "t.json"
        self.assert_good(self.align(pairs, "--save-transforms", saved))
        self.assertIn(r'"r\udce4um.pcm"', saved.read_text())
        done = run(SCENEPANE, "--info", "--transforms", saved, self.moving)
        self.assertEqual((done.status, done.err), (0, ""))

    def test_pairs_are_written_in_many_ways(self) -> None:
        plain = self.write("plain.txt", "1 0 0 2 1 0\n0 1 0 1 2 0\n0 0 1 1 1 1\n")
        other = self.write("other.txt", b"\xef\xbb\xbf# caf\xe9\r\n+1, 0;0\t2 , 1.0 0;\r\n\r\n"
                           b"0 1e0 0 1 .2e1 0 # second\r\n0 0 1. 1 1 1,")
        self.assertEqual(self.reference(other).out, self.reference(plain).out)
        done = self.align(other)
        self.assert_good(done)
        self.assertEqual(done.out, self.align(plain).out)

    def test_wrong_pairs_are_refused_as_by_scenepane(self) -> None:
        good = "1 2 3 4 5 6\n"
        for text, reason in (
            ("", "no pairs"), ("# nothing\n\n", "no pairs"), (good, "twelve numbers"),
            (good + "1 2 3 4 5\n", "line 2: 5 numbers"), (good + "1 2 3 4 5 x\n", 'line 2: "x"'),
            (good + "1 2 3,,4 5 6\n", "line 2: a number is missing"),
            (good + "1 2 3 4 5 nan\n", "line 2"), (good + "1 2 3 4 5 1e39\n", "line 2"),
            (good + "1 2 3 4 5 6 1 2 3 4 5 6\n", "line 2: 12 numbers"),
            ("1 2 3 0 0 0 4 5 6 0 0 1\n", "normals"), (good + good, "no transform was found"),
            (good + "1_0 2 3 4 5 6\n", 'line 2: "1_0"'), (",1 2 3 4 5 6\n", "line 1"),
        ):
            with self.subTest(text=text):
                pairs, saved = self.write("pairs.txt", text), self.folder / "saved.json"
                self.assertEqual(self.reference(pairs).status, 1, "scenepane accepts this")
                self.assert_refused(self.align(pairs, "--save-transforms", saved), reason)
                self.assertFalse(saved.exists())


if __name__ == "__main__":
    unittest.main()
