"""No call with any arguments of any type ends the process: every method and function with random
arguments.

KV_FUZZ_ROUNDS sets the number of calls per method, KV_FUZZ_SEED the first seed.
"""

import contextlib
import decimal
import faulthandler
import fractions
import inspect
import os
import random
import tempfile
import unittest

import numpy as np

import kv_scenepane as kv

faulthandler.enable()
ROUNDS = int(os.environ.get("KV_FUZZ_ROUNDS", "40"))
SEED = int(os.environ.get("KV_FUZZ_SEED", "1"))
# What a call may raise. MemoryError: a length that no memory has room for.
ALLOWED = (TypeError, ValueError, IndexError, OverflowError, RuntimeError, MemoryError, OSError)
# Their effects outlast the pane: the window, the program's settings, or they only wait.
LEFT_OUT = {"close", "events", "offscreen", "no_picture", "child", "top_level", "parallel_import"}


class Index:
    """Says another number each time."""

    def __index__(self) -> int:
        return random.choice((0, -1, 1, 7, 40000, 2**31 - 1))

    __int__ = __index__

    def __float__(self) -> float:
        return random.choice((0.0, 1.0, float("nan")))


class Raises:
    """Raises wherever it is asked."""

    def __index__(self) -> int:
        raise ValueError("no index")

    __float__ = __index__

    def __fspath__(self) -> str:
        raise OSError("no path")


class Lies(np.ndarray):
    """Has another shape than it says."""

    @property
    def shape(self):
        return (1000, 3)


def make_value(rng: random.Random, folder: str):
    """One value of any type."""
    numbers = (
        0,
        1,
        -1,
        2,
        3,
        5,
        255,
        2048,
        32767,
        32768,
        -32769,
        2**31 - 1,
        -(2**31),
        2**31,
        2**64,
        10**40,
    )
    makers = (
        lambda: rng.choice(numbers),
        lambda: rng.randint(-10, 10),
        lambda: rng.choice(
            (0.0, 1.5, -1e-30, 3e38, 1e300, float("inf"), float("-inf"), float("nan"))
        ),
        lambda: rng.uniform(-5, 5),
        lambda: rng.choice(
            (None, True, False, "", "name", b"bytes", b"\xff\xfe", "\udcff", "\ud800", "a\0b", 1j)
        ),
        lambda: rng.choice(
            (
                os.path.join(folder, "x.stl"),
                os.path.join(folder, "x.ply"),
                folder,
                "/",
                b"/dev/null.stl",
            )
        ),
        lambda: rng.choice(
            (
                decimal.Decimal("2"),
                fractions.Fraction(1, 3),
                np.float32(2),
                np.int16(3),
                np.bool_(True),
                np.uint64(2**63),
                np.float64("nan"),
                Index(),
                Raises(),
                object(),
                (),
                [],
                {},
                {1},
                lambda: 1,
                kv,
                kv.ScenePane,
                Ellipsis,
                slice(3),
                range(4),
                bytearray(b"12345"),
                memoryview(b"abc"),
            )
        ),
        lambda: make_array(rng),
        lambda: make_array(rng),
        lambda: make_array(rng).view(Lies),
        lambda: kv.Mesh(np.zeros((3, 3), np.float32), np.array([[0, 1, 2]], np.int32)),
        lambda: kv.Mesh.__new__(kv.Mesh),
        lambda: [make_value(rng, folder) for _ in range(rng.randint(0, 3))],
    )
    return rng.choice(makers)()


def make_array(rng: random.Random) -> np.ndarray:
    """An array of any type, shape and layout."""
    kind = rng.choice(
        (
            np.float32,
            np.float32,
            np.int32,
            np.int32,
            np.uint8,
            np.uint32,
            np.float64,
            ">f4",
            bool,
            "U3",
            object,
        )
    )
    shape = rng.choice(
        (
            (),
            (0,),
            (3,),
            (0, 3),
            (1, 3),
            (3, 3),
            (4, 4),
            (5, 3),
            (4, 2),
            (2, 3, 3),
            (2, 3),
            (2, 3, 4),
        )
    )
    array = np.zeros(shape, kind)
    if array.dtype.kind in "fiu" and array.size:
        array[...] = np.asarray(rng.choices((0, 1, 2, 3, 100), k=array.size)).reshape(shape)
        if array.dtype.kind == "f":
            array.flat[rng.randrange(array.size)] = rng.choice((np.nan, np.inf, 1e30, -1.0))
        elif array.dtype.kind == "i":
            array.flat[rng.randrange(array.size)] = rng.choice((-1, 2**31 - 1, -(2**31), 0))
    layout = rng.randrange(6)
    if layout == 0:
        return array.T
    if layout == 1 and array.ndim:
        return np.repeat(array, 2, axis=-1)[..., ::2]
    if layout == 2 and array.size and array.dtype.kind in "fiu":
        shifted = np.zeros(array.nbytes + 1, np.uint8)[1:].view(array.dtype).reshape(shape)
        shifted[...] = array
        return shifted
    if layout == 3:
        array.flags.writeable = False
    return array


def near_arguments(rng: random.Random, method, folder: str) -> dict:
    """Arguments that are nearly right: each has its type, and a bad value now and then."""
    sizes: dict = {}
    arguments = {}
    for record in method.inputs:
        if len(record) == 4:
            parts = record[3].split(" x ")
            shape = [
                int(part) if part.isdigit() else sizes.setdefault(part, rng.randint(0, 4))
                for part in parts
            ]
            array = np.zeros(shape, record[2])
            if array.size:
                array[...] = (
                    np.asarray(rng.choices((-1, 0, 1, 2, 3), k=array.size))
                    .reshape(shape)
                    .astype(array.dtype)
                )
            arguments[record[0]] = array
    for record in method.inputs:
        name, code = record[:2]
        if name in arguments:
            continue
        if name in sizes:
            arguments[name] = rng.choice((None, sizes[name], sizes[name], sizes[name] + 1))
        elif len(record) == 3:
            arguments[name] = kv.Mesh(np.zeros((3, 3), np.float32))
        elif code == "w":
            arguments[name] = os.path.join(
                folder, rng.choice(("a.stl", "a.ply", "a.hps", "a.pcm", "a", "", "b/a.stl"))
            )
        elif code == "b":
            arguments[name] = rng.random() < 0.5
        elif code == "f":
            arguments[name] = rng.choice(
                (0, 1.0, -1.0, rng.uniform(-100, 100), float("nan"), float("inf"), 1e-40, 3e38)
            )
        else:
            low, high = (-0x8000, 0x7FFF) if code == "s" else (-(2**31), 2**31 - 1)
            arguments[name] = rng.choice((0, 0, 1, 2, 3, -1, rng.randint(low, high), low, high))
    return arguments


class AnyArguments(unittest.TestCase):
    """Each case works on panes of its own, which still work at its end."""

    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        kv.on_debug_output(lambda text: None)
        self.addCleanup(kv.on_debug_output, None)
        home = os.getcwd()
        os.chdir(self.folder)  # for paths such as "name"
        self.addCleanup(os.chdir, home)

    def make_pane(self, kind: str) -> kv.ScenePane:
        pane = (
            kv.ScenePane.offscreen(64, 48, gpu=kv.SOFTWARE)
            if kind == "offscreen"
            else kv.ScenePane.no_picture()
        )
        self.addCleanup(pane.close)
        self.fill(pane)
        return pane

    def fill(self, pane: kv.ScenePane) -> None:
        vertices = np.array([[-1, -1, 0], [1, -1, 0], [0, 1, 0]], np.float32)
        pane.ImportMeshFromMemory(vertices=vertices, triangles=np.array([[0, 1, 2]], np.int32))
        pane.AddPickPointSphere(0, 0, 0, 255)
        pane.CreateNeedle(1, 0, 0, 0, 0, 0, 1)

    def assert_works(self, pane: kv.ScenePane) -> None:
        before = pane.GetNumObjects()
        self.fill(pane)
        self.assertEqual(pane.GetNumObjects(), before + 1)

    def call_all(self, kind: str, make_arguments) -> None:
        for place, method in enumerate(kv.METHODS):
            with self.subTest(method=method.name):
                rng = random.Random(SEED * 1000 + place)
                random.seed(SEED * 1000 + place)
                pane = self.make_pane(kind)
                rounds = ROUNDS
                if (
                    method.name in ("RecreateOpenglContext", "CaptureScreenShot")
                    and kind == "offscreen"
                ):
                    rounds = min(ROUNDS, 20)
                for _ in range(rounds):
                    positional, words = make_arguments(rng, method)
                    with contextlib.suppress(*ALLOWED):
                        getattr(pane, method.name)(*positional, **words)
                    if pane.GetNumObjects() > 20:
                        pane.ClearData()
                pane.process_events()
                pane.BlockPaintEvents(False)
                self.assert_works(pane)
                pane.close()

    def random_arguments(self, rng: random.Random, method):
        count = max(0, len(method.inputs) + rng.choice((-1, 0, 0, 0, 0, 0, 1)))
        return [make_value(rng, self.folder) for _ in range(count)], {}

    def mixed_arguments(self, rng: random.Random, method):
        words = near_arguments(rng, method, self.folder)
        if words and rng.random() < 0.3:
            words[rng.choice(list(words))] = make_value(rng, self.folder)
        return (), words

    def test_RandomValuesOfAllTypesWithoutPicture(self) -> None:
        self.call_all("no_picture", self.random_arguments)

    def test_RandomValuesOfAllTypesOffscreen(self) -> None:
        self.call_all("offscreen", self.random_arguments)

    def test_NearlyRightValuesWithoutPicture(self) -> None:
        self.call_all("no_picture", self.mixed_arguments)

    def test_NearlyRightValuesOffscreen(self) -> None:
        self.call_all("offscreen", self.mixed_arguments)

    def test_AllMethodsInRandomOrderOnOnePane(self) -> None:
        rng = random.Random(SEED)
        random.seed(SEED)
        pane = self.make_pane("offscreen")
        methods = [
            m for m in kv.METHODS if m.name not in ("RecreateOpenglContext", "CaptureScreenShot")
        ]
        done = 0
        for _ in range(20 * ROUNDS):
            method = rng.choice(methods)
            positional, words = self.mixed_arguments(rng, method)
            with contextlib.suppress(*ALLOWED):
                getattr(pane, method.name)(*positional, **words)
                done += 1
            if rng.random() < 0.02:
                pane.process_events()
        self.assertGreater(done, ROUNDS)
        pane.BlockPaintEvents(False)
        pane.ClearData()
        self.assert_works(pane)

    def test_WhatIsNotOfTheSurface(self) -> None:
        names = [
            name
            for name, member in inspect.getmembers(kv.ScenePane)
            if not name.startswith("_")
            and name not in LEFT_OUT
            and name not in {m.name for m in kv.METHODS}
        ]
        self.assertIn("cut", names)
        for place, name in enumerate(names):
            with self.subTest(name=name):
                rng = random.Random(SEED * 1000 + place)
                random.seed(SEED * 1000 + place)
                pane = self.make_pane("offscreen")
                for _ in range(ROUNDS):
                    arguments = [make_value(rng, self.folder) for _ in range(rng.randint(0, 4))]
                    with contextlib.suppress(*ALLOWED, AttributeError):
                        if isinstance(getattr(kv.ScenePane, name), property):
                            getattr(pane, name)
                            setattr(pane, name, arguments[0] if arguments else None)
                        else:
                            getattr(pane, name)(*arguments)
                self.assert_works(pane)
                pane.close()

    def test_FunctionsOfTheModule(self) -> None:
        rng = random.Random(SEED)
        random.seed(SEED)
        for name in ("png", "save_png", "Mesh", "AlignmentPair", "on_debug_output", "ScenePane"):
            for _ in range(ROUNDS):
                arguments = [make_value(rng, self.folder) for _ in range(rng.randint(0, 4))]
                words = rng.choice(
                    (
                        {},
                        {"normals": make_array(rng)},
                        {"colors": make_array(rng), "grid": make_array(rng)},
                    )
                )
                with contextlib.suppress(*ALLOWED):
                    getattr(kv, name)(*arguments, **(words if name == "Mesh" else {}))
        kv.on_debug_output(None)

    def test_MakersOfPanes(self) -> None:
        rng = random.Random(SEED)
        random.seed(SEED)
        for name in ("offscreen", "child", "top_level"):
            for _ in range(min(ROUNDS, 100)):
                arguments = [make_value(rng, self.folder) for _ in range(rng.randint(1, 4))]
                words = rng.choice(
                    (
                        {},
                        {"samples": make_value(rng, self.folder)},
                        {"scale": make_value(rng, self.folder)},
                        {"on_message": make_value(rng, self.folder)},
                    )
                )
                with contextlib.suppress(*ALLOWED):
                    getattr(kv.ScenePane, name)(*arguments, **words).close()


if __name__ == "__main__":
    unittest.main()
