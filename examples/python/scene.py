"""What the examples share: imports, views, numbers and errors as text, the frame of a program."""

from __future__ import annotations

import argparse
import contextlib
import os
import sys
from collections.abc import Callable, Iterator

import numpy as np

import kv_scenepane as kv

SCANS = (".pcm", ".pax", ".xdt")
MESHES = (".ply", ".stl", ".hps", ".ois", ".msh")

# 0x00BBGGRR, of scans without colours of their own: the same light grey as in scenepane.
SCAN_COLOR = 0xC8D4DC


def is_scan(path: str) -> bool:
    """Whether the extension is one of a measured grid."""
    return path.lower().endswith(SCANS)


def import_file(pane: kv.ScenePane, path: str) -> int:
    """Imports a scan or a mesh, chosen by the extension, and returns its index.

    Raises kv.ImportFailed with the reason when the file adds nothing, OSError when it cannot be
    opened, and ValueError for an unknown extension, before the viewer sees the file.
    """
    with open(path, "rb"):  # for a file that is missing, the reason of the system
        pass
    if is_scan(path):
        pane.ImportScan(path, SCAN_COLOR)
    elif path.lower().endswith(MESHES):
        pane.ImportMesh(path)
    else:
        raise ValueError(f"{path}: unknown file type; {', '.join(SCANS + MESHES)} are known")
    return pane.GetNumObjects() - 1


@contextlib.contextmanager
def components(pane: kv.ScenePane) -> Iterator[None]:
    """Starts the component library, which hps files and textures need, and stops it at the end."""
    pane.InitializeKVReg()
    try:
        yield
    finally:
        pane.FinalizeKVReg()


def show_view(pane: kv.ScenePane, view: int) -> None:
    """Turns to a fixed view, 0 to 7, and fits it to the objects."""
    pane.SetViewMode(view)
    pane.CenterView()


@contextlib.contextmanager
def replaced(path: str) -> Iterator[str]:
    """Gives the path of a new file, which replaces the file of this path at the end of the block.

    So there is the old file or the whole new one, also when the process ends in between.
    """
    part = os.path.join(os.path.dirname(path), f".{os.getpid()}.part")
    try:
        yield part
        os.replace(part, path)
    finally:
        with contextlib.suppress(FileNotFoundError):
            os.unlink(part)


def number(value: float) -> str:
    """The shortest text that gives the same 32-bit float again; a zero has no sign."""
    return np.format_float_positional(np.float32(value) + np.float32(0), trim="-")


def parser(text: str) -> argparse.ArgumentParser:
    """A parser whose help starts with the text of the program."""
    return argparse.ArgumentParser(
        description=text, formatter_class=argparse.RawDescriptionHelpFormatter
    )


def size(text: str) -> tuple[int, int]:
    """WIDTHxHEIGHT in pixels, for argparse."""
    width, height = (int(part) for part in text.lower().split("x"))
    if not (1 <= width <= 8192 and 1 <= height <= 8192):
        raise ValueError
    return width, height


def reason(error: BaseException) -> str:
    """An error as one line for the user."""
    if isinstance(error, OSError) and error.strerror:
        name = os.fsdecode(error.filename) + ": " if error.filename else ""
        return name + error.strerror
    text = error.reason if isinstance(error, kv.ImportFailed) else ""
    return " ".join((text or str(error)).split()) or type(error).__name__


def run(main: Callable[[], int | None]) -> None:
    """Runs a program and ends the process.

    Exit status: 0 for success, 1 with a line on standard error, 130 after Ctrl+C. Wrong arguments
    end it with 2, by argparse.
    """
    for stream in (sys.stdout, sys.stderr):
        stream.reconfigure(errors="surrogateescape")  # a file name is printed with its own bytes
    program = os.path.basename(sys.argv[0])
    try:
        status = main() or 0
        sys.stdout.flush()
    except (OSError, ValueError, kv.Error) as error:
        print(f"{program}: {reason(error)}", file=sys.stderr)
        status = 1
    except KeyboardInterrupt:
        print(f"{program}: interrupted", file=sys.stderr)
        status = 130
    sys.exit(status)
