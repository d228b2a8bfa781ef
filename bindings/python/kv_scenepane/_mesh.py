"""A mesh of numpy arrays for ImportMeshedMeasurement."""
from __future__ import annotations

from typing import Any, Optional

import numpy as np

from ._arrays import address, checked_array
from ._library import last_error, library

# kv_vertex.
_VERTEX = np.dtype([("position", "f4", 3), ("normal", "f4", 3), ("color", "u4"), ("grid", "u4")])


class Mesh:
    """A mesh: a copy of the arrays. Any thread; can be copied and pickled.

    vertices: float32, n x 3, world frame
    triangles: int32, m x 3, counterclockwise seen from outside; may be left out for a point cloud
    normals: float32, n x 3, unit length; 0 when they are left out
    colors: uint8, n x 3 or n x 4: r, g, b, a; without them the object has the colour of the import
    grid: uint32, n: (row << 16) | column of the measurement
    """

    __slots__ = ("_records", "_faces", "_has_colors", "__weakref__")

    def __init__(
        self,
        vertices: np.ndarray,
        triangles: Optional[np.ndarray] = None,
        *,
        normals: Optional[np.ndarray] = None,
        colors: Optional[np.ndarray] = None,
        grid: Optional[np.ndarray] = None,
    ) -> None:
        points = _rows("vertices", vertices, "float32", (3,))
        faces = _rows(
            "triangles",
            np.empty((0, 3), np.int32) if triangles is None else triangles,
            "int32",
            (3,),
        )
        records = np.zeros(len(points), _VERTEX)
        records["position"] = points
        if normals is not None:
            records["normal"] = _rows("normals", normals, "float32", (3,), len(points))
        if colors is not None:
            records["color"] = _color_words(_rows("colors", colors, "uint8", (3, 4), len(points)))
        if grid is not None:
            words = checked_array("Mesh", "grid", grid, "uint32", 1)
            if len(words) != len(points):
                raise ValueError(
                    f"Mesh(): grid has {len(words)} entries for {len(points)} vertices"
                )
            records["grid"] = words
        faces = faces.copy()  # checked and read here, whatever another thread writes meanwhile
        if faces.size and (faces.min() < 0 or faces.max() >= len(points)):
            raise IndexError(f"Mesh(): triangles must hold indices from 0 to {len(points) - 1}")
        self._records = records
        self._faces = faces
        self._has_colors = colors is not None

    @property
    def vertex_count(self) -> int:
        """Number of vertices."""
        return len(self._records)

    @property
    def triangle_count(self) -> int:
        """Number of triangles."""
        return len(self._faces)

    def __repr__(self) -> str:
        return f"<kv.Mesh of {self.vertex_count} vertices and {self.triangle_count} triangles>"


class MeshHandle:
    """A mesh of the library, for one call."""

    __slots__ = ("value",)

    def __init__(self, mesh: Mesh) -> None:
        records, faces = mesh._records, mesh._faces
        self.value: Any = library.kv_mesh_create(
            address(records), len(records), address(faces), len(faces), int(mesh._has_colors)
        )
        if not self.value:
            raise MemoryError(f"Mesh: {last_error()}")

    def __del__(self) -> None:
        library.kv_mesh_destroy(self.value)


def _rows(
    name: str, value: Any, element: str, widths: tuple, count: Optional[int] = None
) -> np.ndarray:
    array = checked_array("Mesh", name, value, element, 2)
    if array.shape[1] not in widths or (count is not None and len(array) != count):
        rows = "n" if count is None else count
        raise ValueError(
            f"Mesh(): {name} has the shape {array.shape}, but must have {rows} x {widths[0]}"
        )
    return array


def _color_words(colors: np.ndarray) -> np.ndarray:
    words: Any = colors.astype(np.uint32)
    alpha: Any = words[:, 3] if colors.shape[1] == 4 else np.uint32(255)
    return (
        alpha << np.uint32(24)
        | words[:, 0] << np.uint32(16)
        | words[:, 1] << np.uint32(8)
        | words[:, 2]
    )
