"""The examples of docs/python.md run as they are written there, one after the other."""

import contextlib
import io
import os
import re
import tempfile
import unittest
from pathlib import Path

import kv_scenepane as kv

ROOT = Path(os.environ.get("KV_SOURCE_DIR", Path(__file__).resolve().parents[2]))
PLY = """ply
format ascii 1.0
element vertex 3
property float x
property float y
property float z
element face 1
property list uchar int vertex_indices
end_header
0 0 0
10 0 0
0 10 0
3 0 1 2
"""


class TheManual(unittest.TestCase):
    def setUp(self) -> None:
        self.text = (ROOT / "docs" / "python.md").read_text(encoding="utf-8")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        Path("part.ply").write_text(PLY, encoding="ascii")

    def test_ExamplesRunInOrder(self) -> None:
        # Those of widgets need a display; test_qt.py has their like.
        blocks = [
            b
            for b in re.findall(r"```python\n(.*?)```", self.text, re.S)
            if "Qt" not in b and "child(" not in b
        ]
        self.assertGreaterEqual(len(blocks), 8)
        names: dict = {}
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            for block in blocks:
                exec(compile(block, "docs/python.md", "exec"), names)
                if "parallel_import" in block:
                    objects = names["pane"].GetNumObjects()
        self.assertEqual(objects, 3 + 4)
        self.assertEqual(names["shot"].shape, (2048, 2048, 4))
        self.assertTrue(Path("part.png").read_bytes().startswith(b"\x89PNG"))
        for line in ("needle 8", "1 points", "NeedleCreated 6 (9,)", "needle 9"):
            self.assertIn(line + "\n", output.getvalue())
        self.assertIn("missing.pcm", output.getvalue())
        self.assertNotIn("needle 7", output.getvalue())

    def test_NamesOfThePackageExist(self) -> None:
        for name in re.findall(r"`kv\.(\w+)", self.text):
            self.assertTrue(hasattr(kv, name), name)
        for name in re.findall(r"`pane\.(\w+)", self.text):
            self.assertTrue(hasattr(kv.ScenePane, name), name)


if __name__ == "__main__":
    unittest.main()
