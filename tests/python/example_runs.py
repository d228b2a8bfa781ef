"""What the tests of the examples share: runs of the programs, pictures and grids as arrays."""

from __future__ import annotations

import json
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from collections.abc import Sequence
from pathlib import Path

import numpy as np

BUILD = Path(os.environ["KV_BUILD_DIR"])
EXAMPLES = Path(os.environ["KV_SOURCE_DIR"]) / "examples" / "python"
SCENEPANE = BUILD / "bin" / "scenepane"
SIMULATE_SCANS = BUILD / "bin" / "simulate-scans"
SAMPLES = os.environ.get("KV_SAMPLES_DIR", "")

TIMEOUT = 120  # seconds: far more than any run needs, so that a hang is a failure
NO_VALID_CLASS = 240  # classes from here on are pixels without a point
CUT_CLASS = 250


# Warnings of graphics drivers, which say nothing about the program.
DRIVER_WARNING = re.compile(r"^(libEGL|MESA|WARNING: Some incorrect rendering).*\n", re.MULTILINE)


class Run:
    """A program that has ended: exit status and texts, with the bytes of file names kept."""

    def __init__(self, status: int, out: bytes, err: bytes) -> None:
        self.status = status
        self.out, self.err = os.fsdecode(out), DRIVER_WARNING.sub("", os.fsdecode(err))

    def __repr__(self) -> str:
        return f"status {self.status}\n{self.out}\n{self.err}"


def run(*command: object) -> Run:
    """Runs a program to its end."""
    words = [os.fsencode(str(word)) for word in command]
    done = subprocess.run(words, capture_output=True, stdin=subprocess.DEVNULL, timeout=TIMEOUT)
    return Run(done.returncode, done.stdout, done.stderr)


def example(name: str, *arguments: object) -> Run:
    """Runs an example with the interpreter of the tests."""
    return run(sys.executable, EXAMPLES / name, *arguments)


def info(*arguments: object) -> dict:
    """What scenepane --info reports of files, and of cuts in them."""
    done = run(SCENEPANE, "--info", "--json", *arguments)
    if done.status != 0:
        raise AssertionError(f"scenepane has failed: {done}")
    return json.loads(done.out)


class ExampleCase(unittest.TestCase):
    """A test in a folder of its own."""

    scans: list[Path] = []  # of the class, made once; a test copies what it changes
    simulation: Sequence[str] = ()

    @classmethod
    def setUpClass(cls) -> None:
        cls.shared = Path(tempfile.mkdtemp(prefix="kv examples "))
        cls.addClassCleanup(shutil.rmtree, cls.shared)
        for program in (SIMULATE_SCANS, SCENEPANE):
            if not program.exists():
                raise unittest.SkipTest(f"{program} was not built")
        if cls.simulation:
            folder = cls.shared / "simulated"
            done = run(SIMULATE_SCANS, "--out", folder, "--size", "160x120", *cls.simulation)
            if done.status != 0:
                raise AssertionError(f"no scans were simulated: {done}")
            cls.scans = sorted(folder.glob("*.pcm"))

    def setUp(self) -> None:
        self.folder = Path(tempfile.mkdtemp(prefix="case ", dir=self.shared))

    def copies(self, *names: str) -> list[Path]:
        """Copies of the simulated scans, in the folder of the test, under these or their names."""
        chosen = names or [scan.name for scan in self.scans]
        paths = [self.folder / name for name in chosen]
        return [Path(shutil.copy(scan, path)) for scan, path in zip(self.scans, paths)]

    def write(self, name: str, content: str | bytes) -> Path:
        """A file in the folder of the test."""
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def assert_good(self, done: Run) -> None:
        """The program has succeeded and has complained of nothing."""
        self.assertEqual((done.status, done.err), (0, ""), done)

    def assert_refused(self, done: Run, reason: str, status: int = 1) -> None:
        """The program has failed with a reason, not with a traceback."""
        self.assertEqual(done.status, status, done)
        self.assertIn(reason, done.err)
        self.assertNotIn("Traceback", done.err)


def read_png(path: Path | bytes) -> np.ndarray:
    """A PNG file of 8 bits per channel: height x width x 4, r, g, b, a."""
    data = path if isinstance(path, bytes) else path.read_bytes()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise AssertionError("not a PNG file")
    header, compressed, at = b"", b"", 8
    while at < len(data):
        (size,), kind = struct.unpack_from(">I", data, at), data[at + 4:at + 8]
        body = data[at + 8:at + 8 + size]
        if struct.unpack_from(">I", data, at + 8 + size)[0] != zlib.crc32(kind + body):
            raise AssertionError(f"the checksum of {kind!r} is wrong")
        header = body if kind == b"IHDR" else header
        compressed += body if kind == b"IDAT" else b""
        at += 12 + size
    width, height, depth, color, _, _, interlaced = struct.unpack(">IIBBBBB", header)
    if depth != 8 or color not in (2, 6) or interlaced:
        raise AssertionError("a kind of PNG that no program of the project writes")
    channels = 3 if color == 2 else 4
    raw = np.frombuffer(zlib.decompress(compressed), np.uint8).reshape(height, 1 + width * channels)
    rows = _unfiltered(raw, channels).reshape(height, width, channels)
    if channels == 3:
        rows = np.concatenate([rows, np.full((height, width, 1), 255, np.uint8)], axis=2)
    return rows


def _unfiltered(raw: np.ndarray, channels: int) -> np.ndarray:
    """Takes the filters of the PNG format back, row by row."""
    above = np.zeros(raw.shape[1] - 1, np.uint8)
    rows = np.empty((raw.shape[0], raw.shape[1] - 1), np.uint8)
    for place, (kind, line) in enumerate(zip(raw[:, 0], raw[:, 1:])):
        if kind == 1:
            line = np.add.accumulate(line.reshape(-1, channels), axis=0, dtype=np.uint8).reshape(-1)
        elif kind == 2:
            line = line + above
        elif kind in (3, 4):
            line = _predicted(kind, line.tolist(), above.tolist(), channels)
        rows[place] = above = np.asarray(line, np.uint8)
    return rows


def _predicted(kind: int, line: list[int], above: list[int], channels: int) -> list[int]:
    for i, value in enumerate(line):
        left = line[i - channels] if i >= channels else 0
        if kind == 3:
            guess = (left + above[i]) // 2
        else:
            corner = above[i - channels] if i >= channels else 0
            near = [abs(above[i] - corner), abs(left - corner), abs(left + above[i] - 2 * corner)]
            guess = (left, above[i], corner)[near.index(min(near))]
        line[i] = (value + guess) & 255
    return line


def object_mask(picture: np.ndarray) -> np.ndarray:
    """Where a picture differs from its background, whose colours change from row to row only."""
    return (picture != picture[:, :1]).any(axis=2)


class Grid:
    """The layers of a pcm file as docs/formats/pcm.md describes them, read without the library."""

    def __init__(self, path: Path) -> None:
        data = path.read_bytes()
        _, count, self.width, self.height, length = struct.unpack_from("<IIIIQ", data, 8)
        if data[:8] != b"KVPCM\r\n\x1a" or length != len(data):
            raise AssertionError(f"{path} is not a pcm file")
        self.sections: dict[bytes, tuple[int, bytes]] = {}
        at = 40 + 24 * count
        for place in range(count):
            name, encoding, _, size = struct.unpack_from("<4sHHQ", data, 32 + 24 * place)
            self.sections[name] = encoding, data[at:at + size]
            at += size
        self.transform = np.frombuffer(self.sections[b"TRAF"][1], "<f4").reshape(4, 4)
        self.points = self.layer(b"XYZ ", "<f4", 3)
        self.classes = self.layer(b"CLAS", "u1")

    def layer(self, name: bytes, kind: str, size: int = 1) -> np.ndarray:
        """The values of all pixels, in the order of the pixels."""
        encoding, data = self.sections[name]
        values = np.frombuffer(data, kind).reshape(-1, size)
        pixels = self.width * self.height
        if encoding == 1:
            values = np.repeat(values, pixels, axis=0)
        elif encoding == 2:
            bits = np.frombuffer(self.sections[b"COVR"][1], np.uint8)
            covered = np.unpackbits(bits, bitorder="little")[:pixels].astype(bool)
            sparse = np.repeat(values[:1], pixels, axis=0)
            sparse[covered] = values[1:]
            values = sparse
        return values if size > 1 else values[:, 0]

    def world(self) -> np.ndarray:
        """The points in the world frame, scene units: pixels x 3."""
        matrix = self.transform.astype(np.float64)
        return (self.points @ matrix[:3, :3].T + matrix[:3, 3]) / 1000

    def valid(self) -> np.ndarray:
        """Which pixels have a point."""
        return self.classes < NO_VALID_CLASS
