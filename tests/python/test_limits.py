"""Values that no viewer can use: of lassos, pairs of points, scales, and paths of pictures."""

import math
import os
import tempfile
import unittest

import numpy as np

import kv_scenepane as kv

INSIDE = kv.SegmentationMode.PolygonInside
X, Y = (1.0, 0.0, 0.0), (0.0, 1.0, 0.0)
NOT_FINITE = (math.nan, math.inf, -math.inf)


def add_square(pane: kv.ScenePane) -> None:
    vertices = np.array([(0, 0, 0), (10, 0, 0), (10, 10, 0), (0, 10, 0)], np.float32)
    pane.ImportMeshFromMemory(
        vertices=vertices, triangles=np.array([(0, 1, 2), (0, 2, 3)], np.int32)
    )


class Lassos(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)

    def test_MustBeFinite(self) -> None:
        for bad in NOT_FINITE:
            with self.subTest(bad=bad), self.assertRaisesRegex(ValueError, "finite"):
                self.pane.cut(INSIDE, [(bad, 0.3), (0.4, 0.5), (0.3, 0.6)])

    def test_InPixelsAreRefused(self) -> None:
        for points in ([(100, 100), (200, 100), (150, 200)], [(-1, 0), (0, -1), (1, 0.5)]):
            with self.subTest(points=points), self.assertRaisesRegex(ValueError, "0 to below 1"):
                self.pane.cut(INSIDE, points)

    def test_MayLeaveTheDrawingArea(self) -> None:
        with kv.ScenePane.offscreen(64, 64) as pane:
            add_square(pane)
            pane.CenterView()
            lasso = [(0, 0), (1.5, 0), (1.5, 1.5), (0, 1.5)]
            self.assertIs(pane.cut(kv.SegmentationMode.PolygonOutside, lasso), True)

    def test_NeedAModeThatIsANumber(self) -> None:
        for mode in ("inside", None, 1.0):
            with self.subTest(mode=mode), self.assertRaisesRegex(TypeError, "kv.SegmentationMode"):
                self.pane.cut(mode, [(0.1, 0.1), (0.5, 0.1), (0.5, 0.5)])


class PairsOfPoints(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)
        add_square(self.pane)
        self.pane.AddVariableObject(0)
        self.before = self.pane.GetTrafoOfScan(0)

    def test_OfOneNeedBothNormals(self) -> None:
        for normals in ((), (X,), ((0, 0, 0), Y)):
            with self.subTest(normals=normals), self.assertRaisesRegex(ValueError, "fixed_normal"):
                self.pane.align([kv.AlignmentPair((0, 0, 0), X, *normals)])
        self.assertEqual(self.pane.GetTrafoOfScan(0), self.before)

    def test_OfOneWithBothNormalsMoveTheObject(self) -> None:
        self.assertTrue(self.pane.align([kv.AlignmentPair((0, 0, 0), X, Y, Y)]).is_found)
        self.assertNotEqual(self.pane.GetTrafoOfScan(0), self.before)

    def test_OfTwoAndMoreNeedNone(self) -> None:
        found = self.pane.align([(X, Y), (Y, X), ((0, 0, 0), (0, 0, 0))])
        self.assertTrue(found.is_found)

    def test_MustBeFinite(self) -> None:
        for bad in NOT_FINITE:
            for pair in (((bad, 0, 0), X, Y, Y), (X, (0, bad, 0), Y, Y), (X, X, Y, (0, 0, bad))):
                with self.subTest(pair=pair), self.assertRaisesRegex(ValueError, "finite"):
                    self.pane.align([kv.AlignmentPair(*pair)])
        self.assertEqual(self.pane.GetTrafoOfScan(0), self.before)


class Scales(unittest.TestCase):
    def test_MustBeFiniteAndAboveZero(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            for bad in (0, -1, *NOT_FINITE):
                makers = (
                    pane.set_scale,
                    lambda value: kv.ScenePane.offscreen(8, 8, scale=value),
                    lambda value: kv.ScenePane.top_level(8, 8, scale=value),
                )
                for call in makers:
                    with self.subTest(bad=bad), self.assertRaisesRegex(ValueError, "above 0"):
                        call(bad)

    def test_BeyondTheLimitsAreLimited(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            for scale in (0.01, 1, 100):
                pane.set_scale(scale)


class PicturesThatCannotBeWritten(unittest.TestCase):
    def test_NameTheFileThatWasAskedFor(self) -> None:
        picture = np.zeros((2, 2, 4), np.uint8)
        with tempfile.TemporaryDirectory() as folder:
            missing = os.path.join(folder, "missing", "a.png")
            rows = [(missing, FileNotFoundError), (os.fsencode(missing), FileNotFoundError)]
            rows.append((folder, IsADirectoryError))
            for path, kind in rows:
                with self.subTest(path=path), self.assertRaises(kind) as caught:
                    kv.save_png(path, picture)
                error = caught.exception
                self.assertEqual((error.filename, error.filename2), (path, None))
            self.assertEqual(os.listdir(folder), [])


if __name__ == "__main__":
    unittest.main()
