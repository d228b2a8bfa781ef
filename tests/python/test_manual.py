"""The examples of docs/python.md run as they are written there, one after the other, and so does the
program in C of docs/hosting.md.
"""

import contextlib
import io
import os
import re
import shutil
import subprocess
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


class TheManualOfHosts(unittest.TestCase):
    def setUp(self) -> None:
        self.text = (ROOT / "docs" / "hosting.md").read_text(encoding="utf-8")

    @unittest.skipUnless(shutil.which("cc"), "no compiler for C")
    def test_TheProgramInCRuns(self) -> None:
        blocks = re.findall(r"```c\n(.*?)```", self.text, re.S)
        self.assertEqual(len(blocks), 1)
        library = next(Path(kv.__file__).parent.glob("libKV_ScenePane.so.*"))
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "host.c").write_text(blocks[0], encoding="utf-8")
            (folder / "part.ply").write_text(PLY, encoding="ascii")
            subprocess.run(
                ["cc", "-std=c89", "-pedantic", "-Wall", "-Wextra", "-Werror",
                 f"-I{ROOT / 'include'}", "host.c", str(library), f"-Wl,-rpath,{library.parent}",
                 f"-Wl,-rpath-link,{library.parent}", "-o", "host"],
                cwd=folder,
                check=True,
            )
            runs = [
                subprocess.run([folder / "host", *arguments], cwd=folder, capture_output=True,
                               text=True)
                for arguments in (["part.ply"], ["missing.ply"], [])
            ]
        self.assertEqual([run.returncode for run in runs], [0, 1, 2])
        self.assertEqual(runs[0].stdout.splitlines(), ["spheres: 0", "objects: 1"])
        self.assertEqual(runs[0].stderr, "")
        self.assertIn("missing.ply: cannot be opened: No such file", runs[1].stderr)

    def test_NamesOfCAreInAHeader(self) -> None:
        headers = "".join(
            (ROOT / "include" / "KV_ScenePane" / name).read_text(encoding="utf-8")
            for name in ("kv_scenepane.h", "kv_scenepane_ids.h")
        )
        names = set(re.findall(r"\bkv_\w+", self.text)) - {"kv_scenepane"}
        self.assertGreater(len(names), 12)
        for name in sorted(names):
            self.assertRegex(headers, rf"\b{name}\b")


if __name__ == "__main__":
    unittest.main()
