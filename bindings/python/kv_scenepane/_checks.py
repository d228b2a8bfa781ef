"""What the viewer leaves to its callers: indices, sizes and orders of calls, and the methods that
return arrays.
"""
from __future__ import annotations

import ctypes
from typing import Any

import numpy as np

from . import _surface
from ._arrays import address
from ._calls import Still
from ._picture import rgba
from ._records import read_cut_mask

_METHODS = {method.name: method for method in _surface.METHODS}
_UINT32 = np.dtype(np.uint32)
_SIDE = 2048  # of CaptureScreenShot()


def _object_index(name: str):
    def check(pane: Any, index: int, *_rest: Any) -> None:
        count = pane._object_count()
        if not 0 <= index < count:
            raise IndexError(f"{name}(): object {index} of {count}")

    return check


def _sphere_id(name: str):
    def check(pane: Any, number: int, *_rest: Any) -> None:
        count = pane._long_from(12)  # GetNumberOfPickPointSpheres
        if not 0 <= number < count:
            raise IndexError(f"{name}(): pick-point sphere {number} of {count}")

    return check


def _overlay_index(pane: Any, index: int, _enable: int) -> None:
    if not 0 <= index < pane._overlay_count:
        raise IndexError(f"SetOverlayVisibility(): overlay {index} of {pane._overlay_count}")


def _grid_size(_pane: Any, width: int, height: int, *_rest: Any) -> None:
    if not (1 <= width <= 32767 and 1 <= height <= 32767):
        raise ValueError(
            f"ImportMeasurementFromMemory(): a grid of {width} x {height} is not 1 to 32767 each"
        )


def _import_setting(name: str):
    def check(pane: Any, *_values: Any) -> None:
        if pane._is_staging():
            raise RuntimeError(
                f"{name}(): settings of imports must not change before EndParallelImport()"
            )

    return check


def _triangle_indices(arrays: dict[str, np.ndarray]) -> None:
    triangles, count = arrays["triangles"], len(arrays["vertices"])
    # As unsigned numbers those below zero are the largest.
    words = triangles.view(_UINT32)
    if triangles.size and words.item(words.argmax()) >= count:
        bad = triangles[(triangles < 0) | (triangles >= count)][0]
        raise IndexError(
            f"ImportMeshFromMemory(): triangles hold the index {bad}, "
            f"but there are {count} vertices"
        )


def _points_count(method: Any, argument: str):
    names = [record[0] for record in method.inputs]
    number_at = names.index(argument)
    arrays_at = [place for place, record in enumerate(method.inputs) if record[1] == "p"]

    def check(_pane: Any, *values: Any) -> None:
        number = values[number_at]
        if number < 0:
            raise ValueError(f"{method.name}(): {argument} is {number}")
        for place in arrays_at:
            if number and not values[place]:
                raise ValueError(
                    f"{method.name}(): {names[place]} is None, but {argument} is {number}"
                )

    return check


def _end_parallel_import(pane: Any) -> None:
    if not pane._is_staging():
        raise RuntimeError("EndParallelImport(): there is no BeginParallelImport() before it")
    pane._end_staging()


def _get_needles(pane: Any, method: Any) -> tuple:
    with Still(pane):  # the viewer writes as many as there are
        count = pane._long_from(113)  # GetNumberOfNeedles
        numbers = np.empty(count, np.int32)
        pins, heads = np.empty((count, 3), np.float32), np.empty((count, 3), np.float32)
        if count:
            places = method.pack(6, address(numbers), 6, address(pins), 6, address(heads))
            pane._invoke(method, places)
    return method.tuple(numbers, pins, heads)


def _capture_screen_shot(pane: Any, method: Any) -> np.ndarray:
    words = np.zeros((_SIDE, _SIDE), np.uint32)
    pane._invoke(method, method.pack(6, address(words)))
    return rgba(words)


def _begin_parallel_import(pane: Any, method: Any) -> tuple:
    slots = (ctypes.c_size_t * 2)()
    start = ctypes.addressof(slots)
    pane._begin_staging()
    pane._invoke(method, method.pack(6, start, 6, start + ctypes.sizeof(ctypes.c_size_t)))
    return method.tuple(*slots)


def _get_cut_masks(pane: Any, method: Any) -> list:
    with Still(pane):  # the masks are those of the viewer
        count = ctypes.c_int32()
        pane._invoke(method, method.pack(6, ctypes.addressof(count), 6, 0))
        slots = (ctypes.c_size_t * count.value)()
        pane._invoke(method, method.pack(6, ctypes.addressof(count), 6, ctypes.addressof(slots)))
        return [read_cut_mask(slot) for slot in slots]


def _note_overlay(pane: Any, index: int) -> None:
    pane._overlay_count = max(pane._overlay_count, index + 1)


def _install() -> None:
    for name in ("GetMeshDataSize", "ExportMesh"):
        _METHODS[name].check = _object_index(name)
    for name in ("RemovePickPointSphere", "GetPickPointSphereCoords", "MovePickPointSphere"):
        _METHODS[name].check = _sphere_id(name)
    for name in ("SetConfidenceFilter", "SetScanSkipVal", "SetAllowEmptyObjects"):
        _METHODS[name].check = _import_setting(name)
    for name, argument in (("CreateLine3D", "numberOfXYZs"), ("ImportPoints", "numPoints")):
        _METHODS[name].check = _points_count(_METHODS[name], argument)
    _METHODS["SetOverlayVisibility"].check = _overlay_index
    _METHODS["ImportMeasurementFromMemory"].check = _grid_size
    _METHODS["EndParallelImport"].check = _end_parallel_import
    _METHODS["ImportMeshFromMemory"].check_arrays = _triangle_indices
    _METHODS["AddOverlayData"].after = _note_overlay
    _METHODS["GetNeedles"].call = _get_needles
    _METHODS["CaptureScreenShot"].call = _capture_screen_shot
    _METHODS["BeginParallelImport"].call = _begin_parallel_import
    _METHODS["GetCutMasks"].call = _get_cut_masks
    for name in ("ImportMesh", "ImportScan", "ImportMeasurementFromMemory"):
        _METHODS[name].is_import = _METHODS[name].can_add_nothing = True
    for name in ("ImportMeshFromMemory", "ImportMeshedMeasurement"):
        _METHODS[name].is_import = True
    _METHODS["ExportMesh"].is_export = True


_install()
