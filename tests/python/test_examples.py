"""What the examples have in common: help, wrong arguments, unreadable files, unusual names."""

from __future__ import annotations

import ast
import os
import sys
import unittest

from example_runs import EXAMPLES, ExampleCase, example, read_png

# Arguments with which each program works on FILE.
PROGRAMS = {
    "contact_sheet.py": ("{file}", "--out", "{folder}/out.png", "--size", "80x60"),
    "cut_by_lasso.py": ("{file}", "--lasso", "0.1,0.1;0.9,0.1;0.5,0.9", "--dry-run"),
    "align_by_pairs.py": ("--moving", "{file}", "--fixed", "{file}", "--pairs", "{folder}/pairs"),
    "clip_at_data.py": ("{file}", "--out", "{folder}/out.png", "--size", "80x60"),
    "batch.py": ("{folder}", "--lasso", "{folder}/lasso", "--out", "{folder}/out",
                 "--size", "80x60"),
}
PICTURES = ("contact_sheet.py", "clip_at_data.py")
BATCHES = ("batch.py", "batch_dask.py")
SHARED_MODULES = {"scene", "lasso", "batch", "batch_task", "interrupts"}


class Examples(ExampleCase):
    simulation = ("--scans", "1")

    def run_on(self, name: str, file: object):
        """The program on a file, which need not be in the folder of the test."""
        self.write("pairs", "1 0 0 1 0 0\n0 1 0 0 1 0\n0 0 1 0 0 1\n")
        self.write("lasso", '{"mode": "inside", "points": [[0.1, 0.1], [0.9, 0.1], [0.5, 0.9]]}')
        words = PROGRAMS[name]
        return example(name, *(word.format(file=file, folder=self.folder) for word in words))

    def test_each_prints_its_help(self) -> None:
        for name in PROGRAMS:
            with self.subTest(program=name):
                done = example(name, "--help")
                self.assert_good(done)
                self.assertTrue(done.out.startswith(f"usage: {name}"), done.out)
                self.assertIn(f"    {name} ", done.out)  # the command line of its docstring

    def test_each_refuses_wrong_arguments_with_status_2(self) -> None:
        for name in PROGRAMS:
            with self.subTest(program=name):
                self.assert_refused(example(name), "required", status=2)
                self.assert_refused(example(name, "--unknown"), "usage:", status=2)
        size = ("a.pcm", "--out", "a.png", "--size")
        for text in ("80", "0x60", "80x60x3", "80xa", "99999x1"):
            with self.subTest(size=text):
                self.assert_refused(example("contact_sheet.py", *size, text), "--size", status=2)

    def test_each_names_a_missing_file(self) -> None:
        for name in PROGRAMS.keys() - set(BATCHES):
            with self.subTest(program=name):
                self.assert_refused(self.run_on(name, self.folder / "none.pcm"),
                                    f"{name}: {self.folder}/none.pcm: No such file or directory")

    def test_each_says_what_is_wrong_with_a_damaged_file(self) -> None:
        whole = self.scans[0].read_bytes()
        cut = self.write("cut short.pcm", whole[:len(whole) // 2])
        flipped = self.write("flipped.pcm", whole[:-1] + bytes([whole[-1] ^ 1]))
        empty = self.write("empty.ply", b"")
        other = self.write("notes.txt", b"a text")
        for name in PROGRAMS.keys() - set(BATCHES):
            for file, reason in ((cut, "length"), (flipped, "damaged"), (empty, "empty.ply"),
                                 (other, "unknown file type")):
                with self.subTest(program=name, file=file.name):
                    done = self.run_on(name, file)
                    self.assert_refused(done, str(file))
                    self.assertIn(reason, done.err)
                    self.assertEqual(done.err.count("\n"), 1, done.err)
                    self.assertFalse((self.folder / "out.png").exists())

    def test_each_opens_names_with_spaces_and_with_bytes_that_are_not_utf_8(self) -> None:
        for name in PROGRAMS:
            for file in self.copies("a scan; with 'marks'.pcm", "r\udce4um\n.pcm"):
                with self.subTest(program=name, file=os.fsencode(file)):
                    self.assert_good_run(name, file)

    def assert_good_run(self, name: str, file: object) -> None:
        done = self.run_on(name, file)
        self.assertEqual(done.status, 0, done)
        if name in PICTURES:
            self.assertEqual(read_png(self.folder / "out.png").shape[2], 4)
            os.unlink(self.folder / "out.png")
        if name == "cut_by_lasso.py":
            self.assertEqual(done.out, f"{file}: to be written\n")

    def test_they_need_only_numpy_and_the_standard_library(self) -> None:
        known = set(sys.stdlib_module_names) | SHARED_MODULES | {"numpy", "kv_scenepane"}
        programs = sorted(EXAMPLES.glob("*.py"))
        self.assertGreater(len(programs), 8)
        for path in programs:
            if path.name in ("qt_host.py", "x11_host.py"):
                continue  # these need a toolkit and a display
            allowed = known | ({"distributed"} if path.name == "batch_dask.py" else set())
            for node in ast.walk(ast.parse(path.read_text())):
                names = [node.module] if isinstance(node, ast.ImportFrom) else []
                if isinstance(node, ast.Import):
                    names = [alias.name for alias in node.names]
                for imported in names:
                    self.assertIn(imported.partition(".")[0], allowed, path)


if __name__ == "__main__":
    unittest.main()
