#!/usr/bin/env python3
"""Puts the eight fixed views of scans and meshes side by side into one PNG file.

    contact_sheet.py bust_*.pcm --out sheet.png
"""

from __future__ import annotations

import numpy as np

import kv_scenepane as kv
import scene

GAP = 4  # pixels between two views


def contact_sheet(views: list[np.ndarray], columns: int) -> np.ndarray:
    """Puts pictures of one size into rows on a white ground."""
    height, width = views[0].shape[:2]
    rows = len(views) // columns
    sheet = np.full((rows * (height + GAP) - GAP, columns * (width + GAP) - GAP, 4), 255, np.uint8)
    for place, view in enumerate(views):
        top, left = (height + GAP) * (place // columns), (width + GAP) * (place % columns)
        sheet[top:top + height, left:left + width] = view
    return sheet


def main() -> None:
    parser = scene.parser(__doc__)
    parser.add_argument("files", nargs="+", metavar="FILE", help="scans and meshes, shown together")
    parser.add_argument("--out", required=True, metavar="PNG", help="the picture to write")
    parser.add_argument("--size", type=scene.size, default=(320, 240), metavar="WxH",
                        help="pixels of one view (320x240)")
    parser.add_argument("--columns", type=int, choices=(2, 4), default=4,
                        help="views in a row (4)")
    options = parser.parse_args()

    with kv.ScenePane.offscreen(*options.size) as pane, scene.components(pane):
        for file in options.files:
            scene.import_file(pane, file)
        views = []
        for view in kv.ViewMode:
            scene.show_view(pane, view)
            views.append(pane.picture())
    kv.save_png(options.out, contact_sheet(views, options.columns))


if __name__ == "__main__":
    scene.run(main)
