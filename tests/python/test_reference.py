"""The introduction of docs/automation.md: its examples run, and what it names exists."""

import ast
import contextlib
import inspect
import io
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import kv_scenepane as kv
from kv_scenepane import _arrays

SOURCE = Path(os.environ["KV_SOURCE_DIR"])
TEXT = (SOURCE / "docs" / "automation.md").read_text(encoding="utf-8")
INTRODUCTION = TEXT[: TEXT.index("\n## Contents\n")]


def block(language: str) -> str:
    """The only block of code in a language."""
    blocks = re.findall(rf"```{language}\n(.*?)```", INTRODUCTION, re.DOTALL)
    if len(blocks) != 1:
        raise AssertionError(f"{len(blocks)} blocks of {language}")
    return blocks[0]


class Examples(unittest.TestCase):
    def test_the_python_example_prints_what_its_comment_says(self) -> None:
        code = block("python")
        expected = re.findall(r"print\(.*\)  # (.*)", code)
        self.assertEqual(len(expected), 1)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(code, "automation.md", "exec"), {"kv": kv})
        self.assertEqual(printed.getvalue().splitlines(), expected)

    @unittest.skipUnless(shutil.which("cc"), "no compiler for C")
    def test_the_c_example_compiles_and_sets_the_size(self) -> None:
        program = (
            "#include <stdio.h>\n"
            "#include <KV_ScenePane/kv_scenepane.h>\n"
            "int main(void) {\n"
            "kv_window_request request;\n"
            "kv_pane* pane;\n"
            "kv_window_request_init(&request);\n"
            "request.kind = KV_NO_PICTURE;\n"
            "pane = kv_create(&request);\n"
            "if (!pane) return 2;\n"
            "{\n" + block("c") + "}\n"
            "puts(kv_last_error());\n"
            "kv_destroy(pane);\n"
            "return 0;\n"
            "}\n"
        )
        library = next(Path(kv.__file__).parent.glob("libKV_ScenePane.so.*"))
        with tempfile.TemporaryDirectory() as folder:
            source, binary = Path(folder, "example.c"), Path(folder, "example")
            source.write_text(program, encoding="utf-8")
            subprocess.run(
                ["cc", "-Wall", "-Werror", f"-I{SOURCE / 'include'}", str(source), str(library),
                 f"-Wl,-rpath,{library.parent}", f"-Wl,-rpath-link,{library.parent}",
                 "-o", str(binary)],
                check=True,
            )
            run = subprocess.run([str(binary)], capture_output=True, text=True, check=True)
        self.assertEqual(run.stdout, "\n", "no call has failed")


class Names(unittest.TestCase):
    def test_every_name_of_python_exists(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            roots = {"pane": pane, "kv": kv}
            names = set(re.findall(r"\b((?:kv|pane)(?:\.\w+)+)", INTRODUCTION))
            self.assertGreater(len(names), 15)
            for name in sorted(names):
                with self.subTest(name):
                    value = roots[name.split(".")[0]]
                    for part in name.split(".")[1:]:
                        self.assertTrue(hasattr(value, part), part)
                        value = getattr(value, part)

    def test_every_name_of_c_is_in_a_header(self) -> None:
        headers = "".join(
            (SOURCE / "include" / "KV_ScenePane" / name).read_text(encoding="utf-8")
            for name in ("kv_scenepane.h", "kv_scenepane_ids.h")
        )
        names = set(re.findall(r"\bkv_\w+|\bKV_(?!ScenePane\b|SCENEPANELib\b)\w+", INTRODUCTION))
        names -= {"kv_scenepane"}
        self.assertGreater(len(names), 20)
        for name in sorted(names):
            with self.subTest(name):
                self.assertRegex(headers, rf"\b{name}\b")

    def test_every_header_and_document_exists(self) -> None:
        headers = set(re.findall(r"`(KV_ScenePane/\w+\.h)`", INTRODUCTION))
        self.assertGreater(len(headers), 2)
        for header in headers:
            self.assertTrue((SOURCE / "include" / header).is_file(), header)
        for document, anchor in re.findall(r"\]\((\w+\.md)(?:#([\w-]+))?\)", INTRODUCTION):
            text = (SOURCE / "docs" / document).read_text(encoding="utf-8")
            anchors = [re.sub(r"[^\w -]", "", h).lower().replace(" ", "-")
                       for h in re.findall(r"^#+ (.*)$", text, re.MULTILINE)]
            if anchor:
                self.assertIn(anchor, anchors)


class Stubs(unittest.TestCase):
    def test_arrays_may_be_none_where_the_package_accepts_it(self) -> None:
        text = Path(kv.__file__).with_name("_surface.pyi").read_text(encoding="utf-8")
        optional = {
            (method.name, argument.arg)
            for method in ast.walk(ast.parse(text))
            if isinstance(method, ast.FunctionDef)
            for argument in method.args.args + method.args.kwonlyargs
            if argument.annotation and re.match("NDArray.* None", ast.unparse(argument.annotation))
        }
        self.assertEqual(optional, _arrays._OPTIONAL)

    def test_help_marks_what_is_required(self) -> None:
        signature = str(inspect.signature(kv.ScenePane.ImportMeshFromMemory))
        self.assertIn("= <required>", signature)
        with kv.ScenePane.no_picture() as pane:
            with self.assertRaisesRegex(TypeError, "missing a required argument: 'vertices'"):
                pane.ImportMeshFromMemory()


if __name__ == "__main__":
    unittest.main()
