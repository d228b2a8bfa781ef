"""The wheel: what it holds, and that it works where the project is not.

The interpreter is Debian's, whose packages the virtual environment sees; nothing is fetched from an
index.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

SOURCE = Path(os.environ["KV_SOURCE_DIR"])
BUILD = Path(os.environ["KV_BUILD_DIR"])
STAGED = BUILD / "python" / "kv_scenepane"
LIBRARIES = {
    *("libKV_Components.so.1", "libKV_ScenePane.so.5"),
    *("libKV_UtilsLantern.so.1", "libMSRDLL.so.1"),
}

# Run in the virtual environment: draws a picture, and reports the files of the project that the
# process has mapped.
SCRIPT = """
import numpy as np
import kv_scenepane as kv
print(kv.__file__)
print(kv.__version__)
with kv.ScenePane.offscreen(64, 48) as pane:
    triangle = np.array([[-1, -1, 0], [1, -1, 0], [0, 1, 0]], dtype=np.float32)
    pane.ImportMeshFromMemory(vertices=triangle, triangles=np.array([[0, 1, 2]], dtype=np.int32))
    pane.CenterView()
    print(len(np.unique(pane.picture().reshape(-1, 4), axis=0)))
    with open("/proc/self/maps") as maps:
        ours = [line.split()[-1] for line in maps if "libKV" in line or "MSRDLL" in line]
    print(*sorted(set(ours)), sep="\\n")
"""


def setUpModule() -> None:
    for module in ("pip", "setuptools", "wheel", "venv", "ensurepip"):
        if run(sys.executable, "-c", f"import {module}", check=False).returncode != 0:
            raise unittest.SkipTest(f"{sys.executable} has no {module}")


def run(*words: object, check: bool = True, **options: object) -> subprocess.CompletedProcess:
    """Without the variables of the test, so that only what is installed is found."""
    environment = {name: os.environ[name] for name in ("PATH", "HOME") if name in os.environ}
    environment.update(LANG="C.UTF-8", PIP_DISABLE_PIP_VERSION_CHECK="1")
    environment.update(options.pop("environment", {}))
    outcome = subprocess.run(
        list(map(str, words)),
        env=environment,
        capture_output=True,
        text=True,
        timeout=300,
        check=False,
        **options,
    )
    if check and outcome.returncode != 0:
        texts = outcome.stdout + outcome.stderr
        raise AssertionError(f"{words} ended with {outcome.returncode}:\n{texts}")
    return outcome


def make_wheel(out: Path, build: Path = BUILD, check: bool = True) -> subprocess.CompletedProcess:
    return run(
        *(sys.executable, "-m", "pip", "wheel", "--no-build-isolation", "--no-deps", "--no-index"),
        *("--no-cache-dir", "-w", out, SOURCE / "bindings/python"),
        check=check,
        environment={"KV_BUILD_DIR": str(build)},
    )


def files_below(folder: Path) -> list:
    found = (path for path in folder.rglob("*") if path.is_file() or path.is_symlink())
    return sorted(str(path.relative_to(folder)) for path in found)


def project_version() -> str:
    return (BUILD / "python" / "VERSION").read_text(encoding="ascii").strip()


class Wheel(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.scratch = Path(tempfile.mkdtemp(prefix="kv_wheel_"))
        cls.addClassCleanup(shutil.rmtree, cls.scratch)
        cls.sources = files_below(SOURCE / "bindings")
        make_wheel(cls.scratch / "out")
        cls.files = list((cls.scratch / "out").iterdir())
        cls.wheel = cls.files[0]

    def test_is_one_file_for_every_python_on_this_kind_of_machine(self) -> None:
        names = [file.name for file in self.files]
        tag = f"py3-none-linux_{os.uname().machine}"
        self.assertEqual(names, [f"kv_scenepane-{project_version()}-{tag}.whl"])

    def test_holds_the_package_its_libraries_and_its_records_only(self) -> None:
        with zipfile.ZipFile(self.wheel) as wheel:
            names = set(wheel.namelist())
        staged = {name for name in os.listdir(STAGED) if name != "__pycache__"}
        self.assertLess(LIBRARIES | {"__init__.py", "qt.py", "py.typed"}, staged)
        records = {name.split("/", 1)[1] for name in names if ".dist-info/" in name}
        self.assertEqual(records, {"LICENSE", "METADATA", "RECORD", "WHEEL", "top_level.txt"})
        package = {name for name in names if ".dist-info/" not in name}
        self.assertEqual(package, {f"kv_scenepane/{name}" for name in staged})

    def test_names_what_it_needs(self) -> None:
        with zipfile.ZipFile(self.wheel) as wheel:
            name = next(name for name in wheel.namelist() if name.endswith("/METADATA"))
            lines = wheel.read(name).decode().splitlines()
        for line in ("License: Apache-2.0", "Requires-Dist: numpy", "Requires-Python: >=3.9"):
            self.assertIn(line, lines)

    def test_holds_no_path_of_the_build(self) -> None:
        with zipfile.ZipFile(self.wheel) as wheel:
            for name in wheel.namelist():
                if name.endswith((".py", ".pyi")) or ".dist-info/" in name:
                    text = wheel.read(name).decode()
                    self.assertNotIn(str(SOURCE), text, name)
                    self.assertNotIn(str(BUILD), text, name)

    def test_leaves_nothing_in_the_source_tree(self) -> None:
        self.assertEqual(files_below(SOURCE / "bindings"), self.sources)

    def test_libraries_look_for_one_another_beside_themselves_only(self) -> None:
        for name in LIBRARIES:
            lines = run("readelf", "-d", STAGED / name).stdout.splitlines()
            paths = [line.split("[")[1] for line in lines if "RUNPATH" in line or "RPATH" in line]
            self.assertEqual(paths, ["$ORIGIN]"], name)

    def test_without_a_build_the_reason_is_printed(self) -> None:
        outcome = make_wheel(self.scratch / "none", self.scratch / "no-build", check=False)
        self.assertNotEqual(outcome.returncode, 0)
        self.assertIn("build the project first", outcome.stdout + outcome.stderr)
        self.assertEqual(files_below(self.scratch / "none"), [])


class InstalledWheel(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.scratch = Path(tempfile.mkdtemp(prefix="kv_venv_"))
        cls.addClassCleanup(shutil.rmtree, cls.scratch)
        make_wheel(cls.scratch)
        run(sys.executable, "-m", "venv", "--system-site-packages", cls.scratch / "venv")
        cls.python = cls.scratch / "venv/bin/python"
        cls.before = files_below(cls.scratch / "venv")
        cls.pip("install", "--no-index", *cls.scratch.glob("*.whl"))
        cls.empty = cls.scratch / "empty"
        cls.empty.mkdir()

    @classmethod
    def pip(cls, *words: object) -> None:
        run(cls.python, "-m", "pip", *words)

    def test_draws_with_the_libraries_of_the_environment(self) -> None:
        outcome = run(self.python, "-c", SCRIPT, cwd=self.empty)
        self.assertEqual(outcome.stderr, "")
        file, version, colors, *libraries = outcome.stdout.splitlines()
        package = next(self.scratch.glob("venv/lib/python3.*/site-packages/kv_scenepane")).resolve()
        self.assertEqual(Path(file).parent.resolve(), package)
        self.assertEqual(version, project_version())
        self.assertGreater(int(colors), 1)
        self.assertEqual({Path(library).parent.resolve() for library in libraries}, {package})
        self.assertEqual({Path(library).name for library in libraries}, LIBRARIES)

    def test_what_is_uninstalled_leaves_nothing(self) -> None:
        # Last in the order of the names: nothing is installed any more afterwards.
        run(self.python, "-c", "import kv_scenepane", cwd=self.empty)
        self.pip("uninstall", "--yes", "kv_scenepane")
        self.assertEqual(files_below(self.scratch / "venv"), self.before)
        outcome = run(self.python, "-c", "import kv_scenepane", cwd=self.empty, check=False)
        self.assertIn("ModuleNotFoundError", outcome.stderr)


if __name__ == "__main__":
    unittest.main()
