#!/usr/bin/env python3
"""Clips scans and meshes at a height estimated from their points; takes a picture of what is above.

    clip_at_data.py bust_*.pcm --out picture.png
"""

from __future__ import annotations

import kv_scenepane as kv
import scene

RULES = ("none, no height was found", "all points", "flat spot", "curved spot")


def main() -> None:
    parser = scene.parser(__doc__)
    parser.add_argument("files", nargs="+", metavar="FILE", help="scans and meshes, shown together")
    parser.add_argument("--out", required=True, metavar="PNG", help="the picture to write")
    parser.add_argument("--size", type=scene.size, default=(1024, 768), metavar="WxH",
                        help="of the picture (1024x768)")
    parser.add_argument("--view", type=int, choices=range(8), metavar="0..7",
                        default=kv.ViewMode.ViewObliqueZUp, help="view of the picture (6, oblique)")
    options = parser.parse_args()

    with kv.ScenePane.offscreen(*options.size) as pane:
        for file in options.files:
            scene.import_file(pane, file)
        scene.show_view(pane, options.view)
        # Of the plane, its handles and its outline, 0x00BBGGRR: all are black at first.
        pane.SetClipPlaneColor(0xE0C080, 0x00A0FF, 0xFFFFFF)
        pane.InitializeKVReg()  # the estimate is an object of the component library
        try:
            pane.SetClipPlaneEnabled(1)  # raises kv.Error where the points have no extent in height
        finally:
            pane.FinalizeKVReg()
        height = pane.clip_height
        plane = pane.GetClipPlane()
        picture = pane.picture()

    print(f"height  {scene.number(height.height)}")
    print(f"rule    {RULES[height.kind]}")
    print("center  " + " ".join(map(scene.number, plane[:3])))
    print("normal  " + " ".join(map(scene.number, plane[3:])))
    if not height.found:
        raise ValueError("no height was found; no picture is written")
    kv.save_png(options.out, picture)


if __name__ == "__main__":
    scene.run(main)
