"""What a batch does with one scan: import, cut by a stored lasso, picture, numbers.

batch.py and batch_dask.py run it in processes of their own. It depends on nothing but its argument,
so that any process gives the same result.
"""

from __future__ import annotations

import os
from dataclasses import dataclass

import kv_scenepane as kv
import scene
from lasso import Lasso

COLUMNS = (
    "file", "vertices_before", "triangles_before", "vertices_after", "triangles_after",
    "x_min", "x_max", "y_min", "y_max", "z_min", "z_max", "center_x", "center_y", "center_z",
    "picture", "error",
)


@dataclass(frozen=True)
class Job:
    """One scan of a batch."""

    scan: str
    lasso: Lasso
    picture: str  # path of the PNG file to write
    size: tuple[int, int]  # of the picture, in which the lasso lies


def process_scan(job: Job) -> dict[str, str]:
    """The row of one scan. What is wrong with it is in the column "error"; it raises nothing."""
    row = dict.fromkeys(COLUMNS, "")
    row["file"] = os.path.basename(job.scan)
    try:
        row.update(_measure(job))
    except (kv.Error, OSError, ValueError, MemoryError) as error:
        row["error"] = scene.reason(error)
    return row


def _measure(job: Job) -> dict[str, str]:
    # A pane per scan: it is used on the thread that made it, and no scan can change the next one.
    with kv.ScenePane.offscreen(*job.size) as pane:
        index = scene.import_file(pane, job.scan)
        before = pane.GetMeshDataSize(index)
        scene.show_view(pane, job.lasso.view)
        pane.cut(job.lasso.mode, job.lasso.points)
        after = pane.GetMeshDataSize(index)
        row = {
            "vertices_before": str(before.numP), "triangles_before": str(before.numT),
            "vertices_after": str(after.numP), "triangles_after": str(after.numT),
        }
        if after.numP > 0:  # of nothing there is no box
            box, center = pane.GetObjectBoundingBox(index), pane.GetObjectCenter(index)
            row |= {name: scene.number(getattr(box, name)) for name in box._fields}
            row |= {f"center_{axis}": scene.number(getattr(center, axis)) for axis in "xyz"}
        kv.save_png(job.picture, pane.picture())  # whole or not at all, whenever the process ends
    row["picture"] = os.path.basename(job.picture)
    return row
