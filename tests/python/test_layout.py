"""The structs of ctypes and the formats of values have the layout of the C header; which library is
loaded.
"""

import ctypes
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from test_calls import ArgumentInfo, MemberInfo

from kv_scenepane import _library, _mesh, _values
from kv_scenepane._soname import LIBRARY

LIST = Path(os.environ["KV_SOURCE_DIR"]) / "tests" / "control" / "c_header_members.inc"
STRUCTS = {
    "kv_window_request": _library.WindowRequest,
    "kv_argument_info": ArgumentInfo,
    "kv_member_info": MemberInfo,
    "kv_surface_point": _library.SurfacePoint,
    "kv_cut_save_entry": _library.CutSaveEntry,
    "kv_cut_mask": _library.CutMask,
    "kv_alignment_pair": _library.AlignmentPair,
    "kv_alignment": _library.Alignment,
    "kv_clip_height": _library.ClipHeight,
    "kv_frame_statistics": _library.FrameStatistics,
}


def listed() -> dict:
    """Size and members with their places, by struct, as the tests in C list them."""
    found: dict = {}
    for line in LIST.read_text(encoding="utf-8").splitlines():
        size = re.fullmatch(r"KV_SIZE\((\w+), (\d+)\)", line)
        place = re.fullmatch(r"KV_PLACE\((\w+), (\w+), (\d+)\)", line)
        if size:
            found[size[1]] = (int(size[2]), {})
        elif place:
            found[place[1]][1][place[2]] = int(place[3])
    return found


class Layouts(unittest.TestCase):
    def test_OfAllStructs(self) -> None:
        for name, (size, members) in listed().items():
            if name in ("kv_value", "kv_vertex"):
                continue
            with self.subTest(struct=name):
                kind = STRUCTS[name]
                places = {field[0]: getattr(kind, field[0]).offset for field in kind._fields_}
                self.assertEqual((ctypes.sizeof(kind), places), (size, members))

    def test_NoStructIsMissing(self) -> None:
        self.assertEqual(set(listed()), set(STRUCTS) | {"kv_value", "kv_vertex"})

    def test_OfValues(self) -> None:
        size, members = listed()["kv_value"]
        self.assertEqual(members, {"type": 0, "as": 8})
        for code, layout in _values.FORMATS.items():
            data = struct.pack("=" + layout, 7, 1)
            self.assertEqual((len(data), data[:8]), (size, b"\7\0\0\0\0\0\0\0"), code)
            self.assertNotEqual(data[8:], bytes(8), code)
        for kind in (_library.ShortValue, _library.LongValue):
            places = ctypes.sizeof(kind), kind.type.offset, kind.value.offset
            self.assertEqual(places, (size, 0, 8))

    def test_OfVertices(self) -> None:
        size, members = listed()["kv_vertex"]
        fields = _mesh._VERTEX.fields
        places = [members["x"], members["nx"], members["color"], members["grid_index"]]
        names = ("position", "normal", "color", "grid")
        self.assertEqual([fields[name][1] for name in names], places)
        self.assertEqual([members[n] for n in ("y", "z", "ny", "nz")], [4, 8, 16, 20])
        self.assertEqual(_mesh._VERTEX.itemsize, size)


class TheLibrary(unittest.TestCase):
    def test_IsTheOneOfThisVersion(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            package = Path(folder) / "kv_scenepane"
            shutil.copytree(Path(_library.__file__).parent, package)
            for other in ("libKV_ScenePane.so", "libKV_ScenePane.so.4", "libKV_ScenePane.so.9"):
                (package / other).write_bytes(b"of another version")
            self.assertEqual(self.version_in(folder), _library.library.kv_version() + b"\n")
            (package / LIBRARY).unlink()
            self.assertIn(LIBRARY.encode(), self.version_in(folder))

    def version_in(self, folder: str) -> bytes:
        """The version that a package reports, or why it cannot be imported."""
        code = "import kv_scenepane as kv; print(kv.__version__)"
        done = subprocess.run(
            [sys.executable, "-c", code],
            env={**os.environ, "PYTHONPATH": folder},
            capture_output=True,
        )
        return done.stdout + done.stderr


if __name__ == "__main__":
    unittest.main()
