"""The types that mypy sees in a program."""

import os
import subprocess
import sys
import tempfile
import unittest

import kv_scenepane as kv

try:
    import mypy  # noqa: F401
except ImportError:
    raise unittest.SkipTest("there is no mypy") from None

PROGRAM = """
import kv_scenepane as kv
import numpy as np
from numpy.typing import NDArray


def use(pane: kv.ScenePane) -> None:
    picture: NDArray[np.uint8] = pane.picture()
    found = pane.align([])
    transform: NDArray[np.float64] = found.transform
    residuals: NDArray[np.float64] = found.residuals
    mask: NDArray[np.bool_] = pane.GetCutMasks()[0].mask

    @pane.on("NeedleCreated")
    def show(number: int) -> None:
        print(picture, transform, residuals, mask)

    show.disconnect()
    show.function(1)
    with pane.on(6, lambda number: None) as connection:
        connection.disconnect()
"""
# Each line after "use" is wrong.
WRONG = [
    'pane.on("NeedleCreated", 1)',
    'pane.on("NeedleCreated")(1)',
    'pane.on("NeedleCreated", print).nothing',
    "picture: NDArray[np.float32] = pane.picture()",
    "transform: NDArray[np.uint8] = pane.alignment.transform",
]
USE = "import kv_scenepane as kv\nimport numpy as np\nfrom numpy.typing import NDArray\n"
USE += "def use(pane: kv.ScenePane) -> None:\n"


def errors_of(program: str) -> list:
    """What mypy reports of a program."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "program.py")
        with open(path, "w", encoding="utf-8") as stream:
            stream.write(program)
        package = os.path.dirname(os.path.dirname(kv.__file__))
        done = subprocess.run(
            [sys.executable, "-m", "mypy", "--strict", "--cache-dir", folder, "program.py"],
            cwd=folder,
            env={**os.environ, "MYPYPATH": package},
            capture_output=True,
            text=True,
        )
        lines = (done.stdout + done.stderr).splitlines()
        return [line for line in lines if ": error: " in line or "Traceback" in line]


class Types(unittest.TestCase):
    def test_KeepThoseOfConnectedFunctionsAndOfArrays(self) -> None:
        self.assertEqual(errors_of(PROGRAM), [])

    def test_RefuseWhatIsWrong(self) -> None:
        lines = "".join(f"    {line}\n" for line in WRONG)
        errors = errors_of(USE + lines)
        first = USE.count("\n") + 1
        for number, line in enumerate(WRONG, first):
            with self.subTest(line=line):
                self.assertIn(f"program.py:{number}: error: ", "\n".join(errors))


if __name__ == "__main__":
    unittest.main()
