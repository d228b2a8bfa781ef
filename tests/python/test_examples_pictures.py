"""The contact sheet and the picture with the clip plane."""

from __future__ import annotations

import os
import unittest
from pathlib import Path

import numpy as np

from example_runs import (
    SAMPLES, SCENEPANE, ExampleCase, Grid, example, info, object_mask, read_png, run,
)

GAP = 4
SMALL = 60_000  # bytes: the meshes of which a sample is opened


def screenshot(path: Path, *arguments: object) -> np.ndarray:
    """The same picture by the C++ program."""
    # Of several scans each would have a colour that tells it from the others.
    done = run(SCENEPANE, "--screenshot", path, "--color", "DCD4C8", *arguments)
    if done.status != 0:
        raise AssertionError(f"scenepane has failed: {done}")
    return read_png(path)


class ContactSheet(ExampleCase):
    simulation = ("--scans", "2")

    def sheet(self, *arguments: object) -> np.ndarray:
        out = self.folder / "a sheet.png"
        self.assert_good(example("contact_sheet.py", *self.scans, "--out", out, *arguments))
        return read_png(out)

    def test_the_views_are_those_of_scenepane_with_white_gaps(self) -> None:
        width, height = 160, 120
        sheet = self.sheet("--size", f"{width}x{height}")
        self.assertEqual(sheet.shape, (2 * height + GAP, 4 * width + 3 * GAP, 4))
        is_gap = np.ones(sheet.shape[:2], bool)
        for view in range(8):
            top, left = (height + GAP) * (view // 4), (width + GAP) * (view % 4)
            tile = np.s_[top:top + height, left:left + width]
            is_gap[tile] = False
            expected = screenshot(self.folder / "view.png", "--size", f"{width}x{height}",
                                  "--view", view, *self.scans)
            np.testing.assert_array_equal(sheet[tile], expected, f"view {view}")
            self.assertGreater(object_mask(expected).mean(), 0.05)
        self.assertEqual(is_gap.sum(), GAP * (3 * 2 * height + sheet.shape[1]))
        self.assertTrue((sheet[is_gap] == 255).all())

    def test_a_sheet_of_two_columns_is_four_views_high(self) -> None:
        sheet = self.sheet("--size", "80x60", "--columns", "2")
        self.assertEqual(sheet.shape, (4 * 60 + 3 * GAP, 2 * 80 + GAP, 4))

    def test_the_outline_from_above_has_the_proportions_of_the_points(self) -> None:
        sheet = self.sheet("--size", "320x240")
        above = object_mask(sheet[240 + GAP:, :320])  # view 4 is the first one of the second row
        rows, columns = np.flatnonzero(above.any(axis=1)), np.flatnonzero(above.any(axis=0))
        grids = [Grid(scan) for scan in self.scans]
        points = np.concatenate([grid.world()[grid.valid()] for grid in grids])
        extent = points.max(axis=0) - points.min(axis=0)
        pixels = np.array([np.ptp(columns), np.ptp(rows)]) + 1
        self.assertGreater(pixels.min(), 60)
        scale = pixels[1] / extent[1]
        self.assertAlmostEqual(pixels[0], scale * extent[0], delta=2.5)


class ClipAtTheData(ExampleCase):
    simulation = ("--scans", "2")

    def test_height_and_plane_are_those_of_scenepane(self) -> None:
        out = self.folder / "clip.png"
        done = example("clip_at_data.py", *self.scans, "--out", out, "--size", "320x240")
        self.assert_good(done)
        clip = info("--clip-auto", *self.scans)["clip"]
        rows = dict(line.split(maxsplit=1) for line in done.out.splitlines())
        self.assertEqual(float(rows["height"]), clip["height"])
        self.assertEqual(rows["rule"], clip["rule"])
        self.assertEqual([float(word) for word in rows["center"].split()], clip["center"])
        self.assertEqual([float(word) for word in rows["normal"].split()], [0, 0, 1])
        heights = np.concatenate([g.world()[g.valid(), 2] for g in map(Grid, self.scans)])
        self.assertTrue(heights.min() < clip["height"] < heights.max())
        self.assertEqual(read_png(out).shape, (240, 320, 4))

    def test_the_picture_shows_what_is_above_the_plane_and_the_plane_around_it(self) -> None:
        out = self.folder / "clip.png"
        self.assert_good(example("clip_at_data.py", *self.scans, "--out", out, "--size", "320x240",
                                 "--view", "4"))
        shown = read_png(out)
        size = ("--size", "320x240")
        clipped = screenshot(self.folder / "clipped.png", *size, "--clip-auto", *self.scans)
        whole = screenshot(self.folder / "whole.png", *size, *self.scans)
        kept = object_mask(clipped)
        self.assertGreater(kept.sum(), 2000)
        # From above, the plane is below what is kept.
        self.assertGreater((shown == clipped).all(axis=2)[kept].mean(), 0.99)
        lost = object_mask(whole) & ~kept
        self.assertGreater(lost.sum(), 100)
        self.assertGreater((shown != whole).any(axis=2)[lost].mean(), 0.99)
        rows, columns = np.nonzero(kept)
        around = np.zeros_like(kept)
        around[rows.min():rows.max(), columns.min():columns.max()] = True
        around &= ~kept
        self.assertGreater(around.sum(), 500)
        self.assertGreater((shown != clipped).any(axis=2)[around].mean(), 0.99)

    def test_points_of_one_height_have_no_height_to_clip_at(self) -> None:
        flat = self.write("flat.ply", "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                          "property float y\nproperty float z\nelement face 1\n"
                          "property list uchar int vertex_indices\nend_header\n"
                          "0 0 5\n10 0 5\n0 10 5\n3 0 1 2\n")
        out = self.folder / "none.png"
        self.assert_refused(example("clip_at_data.py", flat, "--out", out), "SetClipPlaneEnabled")
        self.assertFalse(out.exists())


# No skipped test: a build without sample files says so when it is configured.
if SAMPLES and os.path.isdir(SAMPLES):

    class SampleMeshes(ExampleCase):
        def test_sample_meshes_that_the_viewer_reads_give_a_sheet(self) -> None:
            meshes = [path for path in sorted(Path(SAMPLES).glob("meshes/**/*"))
                      if path.suffix in (".ply", ".stl") and path.stat().st_size < SMALL]
            self.assertGreater(len(meshes), 20)
            shown = 0
            for mesh in meshes[::8]:
                with self.subTest(mesh=str(mesh)):
                    expected = run(SCENEPANE, "--info", mesh)
                    out = self.folder / f"{shown}.png"
                    done = example("contact_sheet.py", mesh, "--out", out, "--size", "80x60")
                    # scenepane also opens what the viewer itself does not read.
                    if expected.status != 0:
                        self.assertNotEqual(done.status, 0, f"{done}\n{expected}")
                    self.assertEqual(out.exists(), done.status == 0)
                    if done.status == 0:
                        self.assertEqual(read_png(out).shape, (2 * 60 + GAP, 4 * 80 + 3 * GAP, 4))
                        shown += 1
            self.assertGreater(shown, 5)


if __name__ == "__main__":
    unittest.main()
