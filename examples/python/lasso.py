"""Lassos as text and as JSON: a mode, and corners as fractions of the picture, y downward."""

from __future__ import annotations

import json
import math
from dataclasses import dataclass

import kv_scenepane as kv

# What is removed.
MODES = {
    "outside": kv.SegmentationMode.PolygonOutside,
    "inside": kv.SegmentationMode.PolygonInside,
    "visible": kv.SegmentationMode.PolygonVisible,
    "freehand-outside": kv.SegmentationMode.FreehandOutside,
    "freehand-inside": kv.SegmentationMode.FreehandInside,
    "freehand-visible": kv.SegmentationMode.FreehandVisible,
}
FROM_ABOVE = int(kv.ViewMode.ViewFromPlusZYUp)


@dataclass(frozen=True)
class Lasso:
    """A cut that can be repeated: in the same view and picture size it removes the same."""

    mode: kv.SegmentationMode
    points: tuple[tuple[float, float], ...]
    view: int = FROM_ABOVE


def make(mode: object, points: object, view: object = FROM_ABOVE) -> Lasso:
    """Checks the parts of a lasso. Raises ValueError with the reason."""
    if not isinstance(mode, str) or mode not in MODES:
        raise ValueError(f"the mode of a lasso is one of {', '.join(MODES)}")
    if isinstance(view, bool) or not isinstance(view, int) or not 0 <= view <= 7:
        raise ValueError("the view of a lasso is a whole number from 0 to 7")
    if not isinstance(points, list):
        raise ValueError("the points of a lasso are a list of pairs")
    corners = []
    for place, point in enumerate(points, start=1):
        is_pair = isinstance(point, list) and len(point) == 2
        if not is_pair or not all(map(_is_finite, point)):
            raise ValueError(f"point {place} of the lasso is not a pair of finite numbers")
        corners.append((float(point[0]), float(point[1])))
    if len(corners) < 2:
        raise ValueError("a lasso needs at least two points")
    return Lasso(MODES[mode], tuple(corners), view)


def from_text(mode: str, text: str, view: int = FROM_ABOVE) -> Lasso:
    """A lasso of "x,y;x,y;...", as on the command line."""
    points = []
    for place, corner in enumerate(text.split(";"), start=1):
        try:
            points.append([float(part) for part in corner.split(",")])
        except ValueError:
            raise ValueError(f'point {place} of the lasso is "{corner}" and not X,Y') from None
    return make(mode, points, view)


def from_file(path: str) -> Lasso:
    """Reads {"mode": "inside", "points": [[x, y], ...], "view": 4}; the view may be left out."""
    try:
        with open(path, encoding="utf-8-sig") as file:
            content = json.load(file)
        if not isinstance(content, dict):
            raise ValueError("a lasso is a JSON object")
        return make(content.get("mode"), content.get("points"), content.get("view", FROM_ABOVE))
    except (ValueError, RecursionError) as error:  # also text that is not UTF-8 or not JSON
        raise ValueError(f"{path}: {error}") from None


def _is_finite(value: object) -> bool:
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        return False
    try:
        return math.isfinite(value)
    except OverflowError:  # a whole number beyond the range of floats
        return False
