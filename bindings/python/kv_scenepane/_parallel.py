"""Import of measurements on threads of the program."""
from __future__ import annotations

import ctypes as c
from typing import Any, Optional

import numpy as np

from ._arrays import address, checked_array
from ._debug import Capture
from ._errors import ImportFailed, raised, take_raised
from ._values import check_int

_Entry = c.CFUNCTYPE(
    c.c_bool,
    c.c_void_p,
    c.c_wchar_p,
    c.c_int32,
    c.c_int32,
    c.c_void_p,
    c.c_void_p,
    c.c_void_p,
    c.c_void_p,
    c.c_void_p,
    c.c_uint32,
    c.c_int32,
)


class ParallelImport:
    """Adds measurements from several threads; the objects join the list at the end, by their index.

    with pane.parallel_import() as importer, ThreadPoolExecutor() as pool:
        for index, scan in enumerate(scans):
            pool.submit(importer.add, index, scan.points, scan.confidence, scan.trafo)

    Objects with the same index follow one another in any order. Objects of ImportScan(),
    ImportMeasurementFromMemory() and ImportMeshedMeasurement() of the pane meanwhile also wait for
    the end, and join before those of add(); ImportScan() then raises no ImportFailed. Other imports
    add their object at once.
    """

    def __init__(self, pane: Any) -> None:
        self._pane = pane
        self._running: Any = None

    def __enter__(self) -> "ParallelImport":
        if self._pane._is_staging():
            raise RuntimeError("parallel_import(): another parallel import has not ended")
        control, entry = self._pane.BeginParallelImport()
        self._control = control
        self._entry = _Entry(entry)
        self._running = self._pane._parallel
        return self

    def __exit__(self, *_exception: Any) -> None:
        # Waits for the threads that run add().
        if self._pane._parallel is self._running and not self._pane.closed:
            self._pane.EndParallelImport()

    def add(
        self,
        index: int,
        points: np.ndarray,
        confidence: np.ndarray,
        trafo: np.ndarray,
        *,
        classification: Optional[np.ndarray] = None,
        colors: Optional[np.ndarray] = None,
        color: int = 0xFFFFFF,
        name: str = "",
    ) -> None:
        """Makes an object of one measured grid. Any thread; ImportFailed when the grid is refused.

        index: place of the object among those of this import, from 0
        points: float32, height x width x 3, sensor frame, micrometres; the scene is in millimetres
        confidence: float32, height x width
        trafo: float32, 4 x 4, sensor to world, its translation in micrometres
        classification: uint8, height x width; 240 and above is skipped. None: nothing is skipped
        colors: uint32, height x width, 0xAARRGGBB
        color: 0x00BBGGRR, for a grid without colours
        """
        if self._running is None:
            raise RuntimeError("add(): the import has not begun")
        place = check_int("add", "index", index)
        if place < 0:
            raise ValueError(f"add(): index is {place}")
        tint = check_int("add", "color", color)
        if not isinstance(name, str):
            raise TypeError(f"add(): name must be a str, not {type(name).__name__}")
        grid = checked_array("add", "points", points, "float32", 3)
        height, width, _ = grid.shape
        if grid.shape[2] != 3 or not (1 <= width <= 32767 and 1 <= height <= 32767):
            raise ValueError(
                f"add(): points has the shape {grid.shape}, "
                "but must have 1 to 32767 x 1 to 32767 x 3"
            )
        if classification is None:
            classification = np.zeros((height, width), np.uint8)
        arrays = [
            _like("confidence", confidence, "float32", (height, width)),
            _like("trafo", trafo, "float32", (4, 4)),
            _like("classification", classification, "uint8", (height, width)),
        ]
        words = None if colors is None else _like("colors", colors, "uint32", (height, width))
        with self._running, Capture() as capture:
            made = self._entry(
                self._control,
                name,
                width,
                height,
                address(grid),
                *map(address, arrays),
                None if words is None else address(words),
                tint & 0xFFFFFFFF,
                place,
            )
        error = take_raised() if raised else None
        if error is not None:
            raise error
        if not made:
            raise ImportFailed(capture.text(), "add")
        capture.pass_on()


def _like(name: str, value: Any, element: str, shape: tuple) -> np.ndarray:
    array = checked_array("add", name, value, element, len(shape))
    if array.shape != shape:
        raise ValueError(f"add(): {name} has the shape {array.shape}, but must have {shape}")
    return array
