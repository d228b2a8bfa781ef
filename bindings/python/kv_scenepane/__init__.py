"""KV_ScenePane for Python: a viewer of 3D scans and meshes.

    import kv_scenepane as kv

    with kv.ScenePane.offscreen(1024, 768) as pane:
        pane.ImportMesh("scan.ply")
        pane.CenterView()
        kv.save_png("scan.png", pane.picture())

docs/python.md is the manual; help(kv.ScenePane) lists all methods.
"""
from enum import IntEnum as _IntEnum

from . import _checks  # noqa: F401  (completes the methods)
from ._debug import on_debug_output
from ._errors import Error, ImportFailed
from ._events import Connection, EventIterator
from ._library import library as _functions
from ._mesh import Mesh
from ._pane import ANY_GPU, SOFTWARE, ScenePane
from ._parallel import ParallelImport
from ._picture import png, save_png
from ._records import (
    Alignment,
    AlignmentPair,
    ClipHeight,
    CutMask,
    CutOutcome,
    CutSaveEntry,
    Event,
    EventType,
    SurfacePoint,
)
from ._scene import FrameStatistics, GraphicsInfo
from ._surface import (
    EVENTS,
    METHODS,
    PROPERTIES,
    DrawMode,
    PickMode,
    RotationMode,
    SegmentationMode,
    ViewMode,
)

__all__ = [
    "ANY_GPU",
    "SOFTWARE",
    "EVENTS",
    "METHODS",
    "MOUSE_CTRL",
    "MOUSE_LEFT",
    "MOUSE_MIDDLE",
    "MOUSE_RIGHT",
    "MOUSE_SHIFT",
    "PROPERTIES",
    "Alignment",
    "AlignmentPair",
    "ClipHeight",
    "Connection",
    "CutMask",
    "CutOutcome",
    "CutSaveEntry",
    "DrawMode",
    "Error",
    "Event",
    "EventIterator",
    "EventType",
    "FrameStatistics",
    "GraphicsInfo",
    "ImportFailed",
    "Mesh",
    "MouseKind",
    "ParallelImport",
    "PickMode",
    "RotationMode",
    "ScenePane",
    "SegmentationMode",
    "SurfacePoint",
    "ViewMode",
    "on_debug_output",
    "png",
    "save_png",
]
__version__: str = _functions.kv_version().decode()


class MouseKind(_IntEnum):
    """Kinds of mouse input of send_mouse()."""

    MOVE = 0
    LEFT_DOWN = 1
    LEFT_UP = 2
    MIDDLE_DOWN = 3
    MIDDLE_UP = 4
    RIGHT_DOWN = 5
    RIGHT_UP = 6
    DOUBLE_CLICK = 7
    WHEEL = 8


MOUSE_LEFT = 0x01
MOUSE_RIGHT = 0x02
MOUSE_SHIFT = 0x04
MOUSE_CTRL = 0x08
MOUSE_MIDDLE = 0x10

# In tracebacks and texts the names are those that a program writes.
for _name in __all__:
    if getattr(globals()[_name], "__module__", "").startswith(f"{__name__}."):
        globals()[_name].__module__ = __name__
del _name
