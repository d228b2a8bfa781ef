#!/usr/bin/env python3
"""Moves scans onto others by pairs of points; prints the transform and the distances that are left.

    align_by_pairs.py --moving front.pcm --fixed back.pcm --pairs pairs.txt
                      --save-transforms places.json

A line of the pairs has six numbers, moving point and fixed point, or twelve: moving point, its
normal, fixed point, its normal. docs/formats/pairs.md describes the format, and
docs/formats/transforms.md that of the saved transforms. No graphics is needed.
"""

from __future__ import annotations

import json
import os
import re

import numpy as np

import kv_scenepane as kv
import scene

SEPARATOR = re.compile(r"[ \t]*[,;][ \t]*|[ \t]+")
NUMBER = re.compile(r"[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?")


def numbers_of(line: str) -> list[float]:
    """The numbers of a line of a pair file, which may end with a comma or a semicolon."""
    words = SEPARATOR.split(line.strip(" \t"))
    if words[-1] == "":
        words.pop()  # an empty line, or the end after a separator
    for word in words:
        if not NUMBER.fullmatch(word):
            raise ValueError(f'"{word}" is not a number' if word else "a number is missing")
        if abs(float(word)) > np.finfo(np.float32).max:
            raise ValueError(f'"{word}" is outside the range of coordinates')
    return [float(word) for word in words]


def read_pairs(path: str) -> list[kv.AlignmentPair]:
    """The pairs of a file. Raises ValueError with the number of the line."""
    with open(path, encoding="utf-8-sig", errors="surrogateescape") as file:
        lines = file.read().split("\n")
    rows: list[list[float]] = []
    for number, line in enumerate(lines, start=1):
        try:
            row = numbers_of(line.rstrip("\r").partition("#")[0])
            if not row:
                continue
            if len(row) not in (6, 12) or len(row) != len((rows or [row])[0]):
                raise ValueError(f"{len(row)} numbers; all pairs have six, or all have twelve")
        except ValueError as error:
            raise ValueError(f"{path}: line {number}: {error}") from None
        rows.append(row)
    if not rows:
        raise ValueError(f"{path}: no pairs of points")
    if len(rows) == 1 and not (any(rows[0][3:6]) and any(rows[0][9:])):
        raise ValueError(f"{path}: a single pair needs twelve numbers, with normals that are not 0")
    return [pair_of(row) for row in rows]


def pair_of(row: list[float]) -> kv.AlignmentPair:
    """The pair of six or twelve numbers."""
    if len(row) == 6:
        return kv.AlignmentPair(moving=row[:3], fixed=row[3:])
    return kv.AlignmentPair(row[:3], row[6:9], moving_normal=row[3:6], fixed_normal=row[9:])


def write_transforms(path: str, files: list[str], transforms: list[list[float]]) -> None:
    """Writes where the objects are, one line each; replaces the file as a whole."""
    folder = os.path.dirname(os.path.abspath(path))
    lines = []
    for file, transform in zip(files, transforms):
        # Bytes of a name that are not UTF-8 become the escapes that the format has for them.
        entry = {"file": os.path.relpath(file, folder), "transform": [v + 0.0 for v in transform]}
        lines.append("  " + json.dumps(entry))
    with scene.replaced(path) as part, open(part, "w", encoding="utf-8") as out:
        out.write('{"version": 1, "scans": [\n' + ",\n".join(lines) + "\n]}\n")


def main() -> None:
    parser = scene.parser(__doc__)
    parser.add_argument("--moving", nargs="+", required=True, metavar="FILE", help="what moves")
    parser.add_argument("--fixed", nargs="+", required=True, metavar="FILE", help="what stays")
    parser.add_argument("--pairs", required=True, metavar="TXT", help="the pairs of points")
    parser.add_argument("--save-transforms", metavar="JSON",
                        help="write where all files are afterwards")
    options = parser.parse_args()
    pairs = read_pairs(options.pairs)
    files = options.moving + options.fixed

    with kv.ScenePane.no_picture() as pane, scene.components(pane):
        for file in files:
            scene.import_file(pane, file)
        for index in range(len(options.moving)):
            pane.AddVariableObject(index)
        found = pane.align(pairs)
        if not found.is_found:
            raise ValueError(f"{options.pairs}: no transform was found; "
                             "the points of each side must not be all the same")
        places = [list(pane.GetTrafoOfScan(index))[1:] for index in range(len(files))]

    print("transform, moving to fixed")
    for row in found.transform + 0.0:  # 0 for -0
        print("  " + " ".join(f"{value:14.8f}" for value in row))
    for number, residual in enumerate(found.residuals, start=1):
        print(f"residual of pair {number:3}  {residual:.6f}")
    print(f"root mean square      {found.rms:.6f}")
    if options.save_transforms:
        write_transforms(options.save_transforms, files, places)


if __name__ == "__main__":
    scene.run(main)
