"""What a call from Python costs: the method of the package, and the same call without the package.

    PYTHONPATH=build/release/python python3 bench/python_calls.py

"bare" passes the same packed arguments to kv_invoke() by ctypes, "empty" calls a method that does
nothing in the same way. Bare minus empty is what the method costs in C; the last column is what
Python adds to that.
"""

import struct
import sys
import time

import numpy as np

import kv_scenepane as kv
from kv_scenepane import _library

ROUNDS = 60  # short ones, so that some are not disturbed on a machine that has other work


def best(call, count: int, prepare=lambda: None) -> float:
    """The fastest of several rounds, microseconds per call."""
    times = []
    for _ in range(ROUNDS):
        prepare()
        start = time.perf_counter()
        for _ in range(count):
            call()
        times.append((time.perf_counter() - start) / count)
    return min(times) * 1e6


def packed(*values) -> bytes:
    """kv_values from pairs of a letter and a value."""
    formats = {"s": (1, "h6x"), "i": (2, "i4x"), "f": (3, "f4x"), "p": (6, "Q")}
    return b"".join(
        struct.pack("=i4x" + formats[c][1], formats[c][0], v)
        for c, v in zip(values[::2], values[1::2])
    )


def main() -> int:
    invoke = _library.library.kv_invoke
    outputs = np.zeros(10, np.float32)
    vertices = np.array([[0, 0, 0], [1, 0, 0], [0, 1, 0]], np.float32)
    triangles = np.array([[0, 1, 2]], np.int32)
    matrix = [1.0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]
    with kv.ScenePane.no_picture() as pane:
        handle, result = pane._handle, (_library.c.c_char * 16)()
        address = _library.c.addressof(result)
        pointers = [word for i in range(10) for word in ("p", outputs.ctypes.data + 4 * i)]
        arrays = ("i", 3, "i", 1, "p", vertices.ctypes.data, "p", triangles.ctypes.data)
        trafo = [word for value in matrix for word in ("f", value)]
        rows = [
            ("GetNumObjects", pane.GetNumObjects, 23, b""),
            ("SetArrowAngle", lambda: pane.SetArrowAngle(30), 47, packed("s", 30)),
            (
                "SetTrafoOfScan",
                lambda: pane.SetTrafoOfScan(-1, *matrix),
                66,
                packed("s", -1, *trafo),
            ),
            ("GetViewParams", pane.GetViewParams, 67, packed(*pointers)),
            (
                "ImportMeshFromMemory",
                lambda: pane.ImportMeshFromMemory(3, 1, vertices, triangles),
                117,
                packed(*arrays),
            ),
        ]
        floor = best(lambda: invoke(handle, 80, b"", 0, address), 2000)
        print(f"{'microseconds':22}{'Python':>8}{'bare':>8}{'empty':>8}{'added':>8}")
        for name, call, number, arguments in rows:
            count = 200 if name.startswith("Import") else 2000
            full = best(call, count, pane.ClearData)
            length = len(arguments) // 16
            bare = best(
                lambda: invoke(handle, number, arguments, length, address), count, pane.ClearData
            )
            print(f"{name:22}{full:8.2f}{bare:8.2f}{floor:8.2f}{full - bare + floor:8.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
