"""The notebook of the examples runs to its end and shows its pictures."""

from __future__ import annotations

import base64
import json
import math
import os
import sys
import unittest

from example_runs import EXAMPLES, ExampleCase, object_mask, read_png

try:
    import nbclient
    import nbformat
    from jupyter_client.manager import AsyncKernelManager
    import ipykernel  # noqa: F401  (the kernel that is started)
except ImportError as error:
    raise unittest.SkipTest(f"there is no {error.name}") from error

SECONDS_PER_CELL = 60


class Notebook(ExampleCase):
    notebook = EXAMPLES / "tour.ipynb"

    @classmethod
    def setUpClass(cls) -> None:
        super().setUpClass()
        # Everything that a kernel and its client write or look for is in the folder of the test.
        for name in ("JUPYTER_PATH", "JUPYTER_CONFIG_DIR", "JUPYTER_DATA_DIR",
                     "JUPYTER_RUNTIME_DIR", "IPYTHONDIR"):
            os.environ[name] = str(cls.shared / name.lower())
        kernel = cls.shared / "jupyter_path" / "kernels" / "tested"
        kernel.mkdir(parents=True)
        (cls.shared / "jupyter_runtime_dir").mkdir()
        command = [sys.executable, "-Xfrozen_modules=off", "-m", "ipykernel_launcher",
                   "-f", "{connection_file}"]
        (kernel / "kernel.json").write_text(json.dumps(
            {"argv": command, "display_name": "the interpreter of the tests", "language": "python"}
        ))
        cls.executed = nbformat.read(cls.notebook, as_version=4)
        client = nbclient.NotebookClient(
            cls.executed, timeout=SECONDS_PER_CELL, kernel_manager_class=AsyncKernelManager,
            kernel_name="tested", resources={"metadata": {"path": str(cls.shared)}},
        )
        client.execute()  # raises for a cell that fails
        cls.cells = [cell for cell in cls.executed.cells if cell.cell_type == "code"]

    def outputs(self, kind: str) -> list[str]:
        """All rich outputs of a kind, in the order of the cells."""
        outputs = (output for cell in self.cells for output in cell.outputs)
        return [output.data[kind] for output in outputs if kind in output.get("data", {})]

    def printed(self, word: str) -> str:
        """What the cell printed that has a word in its code."""
        (cell,) = (cell for cell in self.cells if word in cell.source)
        return "".join(output.text for output in cell.outputs if output.output_type == "stream")

    def test_it_is_checked_in_without_outputs(self) -> None:
        for cell in nbformat.read(self.notebook, as_version=4).cells:
            if cell.cell_type == "code":
                self.assertEqual(cell.outputs, [])
                self.assertIsNone(cell.execution_count)

    def test_every_cell_is_executed_without_an_error(self) -> None:
        self.assertGreater(len(self.cells), 5)
        for cell in self.cells:
            self.assertIsNotNone(cell.execution_count, cell.source)
            kinds = [output.output_type for output in cell.outputs]
            self.assertNotIn("error", kinds, cell.source)
            texts = [output.text for output in cell.outputs if output.get("name") == "stderr"]
            self.assertEqual(texts, [], cell.source)

    def test_the_pane_is_shown_as_pictures_that_are_not_blank(self) -> None:
        pictures = [read_png(base64.b64decode(data)) for data in self.outputs("image/png")]
        self.assertEqual(len(pictures), 3)
        for picture in pictures:
            self.assertEqual(picture.shape, (480, 640, 4))
            self.assertGreater(object_mask(picture).mean(), 0.05)
        above, oblique, cut = (object_mask(picture) for picture in pictures)
        self.assertFalse((above == oblique).all())
        # The plate has one hole from the start, and a second one, in its middle, after the cut.
        self.assertTrue(above[240, 320])
        self.assertFalse(cut[240, 320])

    def test_picks_print_the_heights_of_the_hill(self) -> None:
        rows = self.printed("pane.pick").splitlines()[1:]
        self.assertEqual(len(rows), 13)
        for row in rows:
            x, z = (float(word) for word in row.split()[1:3])
            # The triangles are 0.4 mm wide: their chords differ from the hill by less than this.
            self.assertAlmostEqual(z, 20 * math.exp(-x**2 / 128), delta=0.02, msg=row)

    def test_the_cut_removes_the_top_of_the_hill(self) -> None:
        event, _, *table = self.printed("cut(").splitlines()
        self.assertEqual(event, "SegmentationDone: [1]")
        rows = {line[:10].strip(): line[10:].split() for line in table}
        vertices = [int(count) for count in rows["vertices"]]
        heights = [float(height) for height in rows["z max"]]
        self.assertLess(vertices[1], vertices[0])
        self.assertAlmostEqual(heights[0], 20, delta=0.05)
        self.assertLess(heights[1], 19)
        self.assertGreater(heights[1], 12)

    def test_the_pane_is_closed_at_the_end(self) -> None:
        self.assertIn("closed", self.cells[-1].outputs[0].data["text/plain"])


if __name__ == "__main__":
    unittest.main()
