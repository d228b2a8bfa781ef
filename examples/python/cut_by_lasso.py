#!/usr/bin/env python3
"""Cuts scans by a lasso and writes the cut back into their pcm files.

    cut_by_lasso.py bust_*.pcm --mode inside --lasso "0.2,0.2;0.8,0.2;0.5,0.9" --dry-run

What is cut becomes class 250 in the file; the points stay in it, but no call restores their former
class. Corners of the lasso are fractions of the width and the height of the picture, y downward.
Quote the lasso: a shell ends a command at a semicolon.
"""

from __future__ import annotations

import kv_scenepane as kv
import lasso
import scene

OUTCOMES = {
    kv.CutOutcome.TO_BE_WRITTEN: "to be written",
    kv.CutOutcome.WRITTEN: "written",
    kv.CutOutcome.NOTHING_TO_SAVE: "skipped, nothing was cut from it",
    kv.CutOutcome.NOT_FROM_PCM: "skipped, only pcm files can hold cuts",
    kv.CutOutcome.FILE_NOT_READ: "failed, the file could not be read",
    kv.CutOutcome.FILE_NOT_WRITTEN: "failed, the file could not be written and is as before",
}
FAILED = {kv.CutOutcome.FILE_NOT_READ, kv.CutOutcome.FILE_NOT_WRITTEN}


def line_about(entry: kv.CutSaveEntry, file: str) -> str:
    """What happened to one file."""
    text = f"{file}: {OUTCOMES[entry.outcome]}"
    if entry.is_nothing_left:
        text += ", no point is left in it"
    return f"{text}: {entry.reason}" if entry.reason else text


def main() -> int:
    parser = scene.parser(__doc__)
    parser.add_argument("files", nargs="+", metavar="FILE.pcm", help="scans, cut together")
    parser.add_argument("--mode", choices=lasso.MODES, default="inside",
                        help="what is removed (inside)")
    parser.add_argument("--lasso", required=True, metavar='"X,Y;X,Y;..."', help="the corners")
    parser.add_argument("--view", type=int, choices=range(8), default=lasso.FROM_ABOVE,
                        metavar="0..7", help="the view in which the lasso lies (4, from +Z)")
    parser.add_argument("--size", type=scene.size, default=(1024, 768), metavar="WxH",
                        help="pixels of the picture in which the lasso lies (1024x768)")
    parser.add_argument("--dry-run", action="store_true",
                        help="say what would be written, and write nothing")
    options = parser.parse_args()
    cut = lasso.from_text(options.mode, options.lasso, options.view)

    with kv.ScenePane.offscreen(*options.size) as pane, scene.components(pane):
        # A file that cannot be read ends the program here, before anything is written.
        for file in options.files:
            scene.import_file(pane, file)
        scene.show_view(pane, cut.view)
        if not pane.cut(cut.mode, cut.points):
            raise ValueError("the lasso has hit nothing; no file is written")
        if not options.dry_run:
            pane.SaveCuttingToPcms()
        entries = pane.cut_save_entries(planned=options.dry_run)

    # One entry per object, and one object per file, in the order of the imports.
    for entry, file in zip(entries, options.files):
        print(line_about(entry, file))
    outcomes = [entry.outcome for entry in entries]
    good = kv.CutOutcome.TO_BE_WRITTEN if options.dry_run else kv.CutOutcome.WRITTEN
    if FAILED.intersection(outcomes):
        raise ValueError("a file could not be saved")
    if good not in outcomes:
        raise ValueError("no file was cut that can hold cuts")
    return 0


if __name__ == "__main__":
    scene.run(main)
