"""Arrays: what is accepted, that nothing is copied, and what comes back; pictures and PNG files."""

import copy
import fcntl
import os
import pickle
import signal
import stat
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from unittest import mock

import numpy as np

import kv_scenepane as kv
from kv_scenepane import _calls

CORNERS = np.array([[-1, -1, 0], [1, -1, 0], [0, 1, 0]], np.float32)
FACES = np.array([[0, 1, 2]], np.int32)


def shifted(array: np.ndarray) -> np.ndarray:
    """The same array at an odd address."""
    room = np.zeros(array.nbytes + 1, np.uint8)[1:].view(array.dtype).reshape(array.shape)
    room[...] = array
    return room


class ArraysAsArguments(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)

    def addresses_of(self, method_id: int, call) -> list:
        """The pointers that reach the library in a call."""
        seen = []
        real = _calls._invoke

        def spy(handle, number, arguments, count, result):
            if number == method_id:
                words = struct.iter_unpack("=i4xQ", arguments)
                seen.extend(value for tag, value in words if tag == 6)
            return real(handle, number, arguments, count, result)

        with mock.patch.object(_calls, "_invoke", spy):
            call()
        return seen

    def test_TheLibraryReadsTheArraysThemselves(self) -> None:
        constant = FACES.copy()
        constant.flags.writeable = False
        for faces in (FACES, constant):
            seen = self.addresses_of(
                117, lambda: self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=faces)
            )
            self.assertEqual(seen, [CORNERS.ctypes.data, faces.ctypes.data])
        points, colors = np.ones((5, 3), np.float32), np.ones((5, 3), np.float32)
        seen = self.addresses_of(
            86, lambda: self.pane.ImportPoints(xyz=points, colors=colors, alpha=1)
        )
        self.assertEqual(seen, [points.ctypes.data, colors.ctypes.data])
        grid, confidence, trafo = (
            np.zeros((2, 2, 3), np.float32),
            np.ones((2, 2), np.float32),
            np.eye(4, dtype=np.float32),
        )
        grid[..., 0], grid[..., 1] = np.meshgrid((0, 1), (0, 1))
        seen = self.addresses_of(
            116,
            lambda: self.pane.ImportMeasurementFromMemory(
                points=grid, confidence=confidence, trafo=trafo, color=0
            ),
        )
        self.assertEqual(seen, [grid.ctypes.data, confidence.ctypes.data, trafo.ctypes.data])
        image = np.zeros((2, 3, 4), np.uint8)
        seen = self.addresses_of(
            99, lambda: self.pane.AddOverlayData(image, 3, 2, 0, 0, 0, 0, 0, 0)
        )
        self.assertEqual(seen, [image.ctypes.data])

    def test_WrongTypesShapesAndLayouts(self) -> None:
        wide = np.zeros((3, 6), np.float32)
        rows = [
            (TypeError, "vertices must be a numpy array, not list", CORNERS.tolist()),
            (TypeError, "vertices must be a numpy array, not NoneType", None),
            (TypeError, "vertices must hold float32, not float64", CORNERS.astype(float)),
            (TypeError, "vertices must hold float32, not >f4", CORNERS.astype(">f4")),
            (TypeError, "vertices must hold float32, not int32", CORNERS.astype(np.int32)),
            (ValueError, "vertices must have 2 dimensions, not 1", CORNERS.ravel()),
            (
                ValueError,
                r"vertices has the shape \(3, 2\), but must have 3 x 3",
                np.zeros((3, 2), np.float32),
            ),
            (ValueError, "vertices must be C-contiguous", wide[:, ::2]),
            (
                ValueError,
                "vertices must be C-contiguous",
                np.asfortranarray(np.zeros((4, 3), np.float32)),
            ),
            (ValueError, "aligned", shifted(CORNERS)),
        ]
        for kind, text, vertices in rows:
            with self.subTest(text=text), self.assertRaisesRegex(
                kind, "ImportMeshFromMemory.*" + text
            ):
                self.pane.ImportMeshFromMemory(vertices=vertices, triangles=FACES)
        self.assertEqual(self.pane.GetNumObjects(), 0)

    def test_LengthsFollowFromTheArraysAndAreCheckedWhenGiven(self) -> None:
        self.pane.ImportMeshFromMemory(3, 1, CORNERS, FACES)
        self.pane.ImportMeshFromMemory(None, None, CORNERS, FACES)
        self.pane.ImportMeshFromMemory(numberOfTriangles=1, vertices=CORNERS, triangles=FACES)
        self.assertEqual(self.pane.GetNumObjects(), 3)
        for lengths in ((2, 1), (4, 1), (3, 0), (-3, 1), (2**31 - 1, 1)):
            with self.assertRaisesRegex(ValueError, "shape"):
                self.pane.ImportMeshFromMemory(*lengths, CORNERS, FACES)
        with self.assertRaisesRegex(TypeError, "numberOfVertices must be an int"):
            self.pane.ImportMeshFromMemory(3.0, 1, CORNERS, FACES)
        with self.assertRaisesRegex(ValueError, "headPosXYZ has the shape"):
            self.pane.CreateNeedles(
                id=np.arange(2, dtype=np.int32),
                pinPosXYZ=np.zeros((2, 3), np.float32),
                headPosXYZ=np.zeros((3, 3), np.float32),
            )

    def test_TriangleIndicesAreThoseOfVertices(self) -> None:
        for bad in (-1, 3, 2**31 - 1, -(2**31)):
            faces = np.array([[0, 1, 2], [0, bad, 1]], np.int32)
            with self.assertRaisesRegex(IndexError, f"index {bad}, but there are 3"):
                self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=faces)
            with self.assertRaises(IndexError):
                kv.Mesh(CORNERS, faces)
        self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=np.zeros((0, 3), np.int32))
        self.assertEqual(self.pane.GetMeshDataSize(0), (3, 0))

    def test_EmptyAndLeftOutArrays(self) -> None:
        none = np.zeros((0, 3), np.float32)
        self.assertEqual(self.pane.ImportPoints(xyz=none, colors=none, alpha=1), 0)
        self.assertEqual(self.pane.ImportPoints(0, None, None, 1), 1)
        self.assertTrue(self.pane.CreateLine3D(1, 0, None))
        self.assertTrue(self.pane.CreateLine3D(2, XYZs=none))
        self.assertEqual(self.pane.AddOverlayData(None, 4, 4, 0, 0, 0, 0, 0, 0), 0)
        for call in (
            lambda: self.pane.ImportPoints(3, None, None, 1),
            lambda: self.pane.ImportPoints(-1, None, None, 1),
            lambda: self.pane.ImportPoints(None, None, None, 1),
            lambda: self.pane.ImportPoints(3, CORNERS, None, 1),
            lambda: self.pane.CreateLine3D(3, 2, None),
            lambda: self.pane.AddOverlayData(None, None, None, 0, 0, 0, 0, 0, 0),
        ):
            with self.assertRaises(ValueError):
                call()

    def test_DerivedArraysCountByTheirMemory(self) -> None:
        class Lies(np.ndarray):
            @property
            def shape(self):
                return (1000, 3)

        with self.assertRaises(IndexError):
            self.pane.ImportMeshFromMemory(
                vertices=CORNERS.view(Lies), triangles=np.array([[0, 1, 999]], np.int32)
            )
        self.pane.ImportMeshFromMemory(vertices=CORNERS.view(Lies), triangles=FACES)
        self.assertEqual(self.pane.GetMeshDataSize(0), (3, 1))

    def test_AGridHasAtMost32767PixelsPerSide(self) -> None:
        wide = 32768
        with self.assertRaisesRegex(ValueError, "32767"):
            self.pane.ImportMeasurementFromMemory(
                points=np.zeros((1, wide, 3), np.float32),
                confidence=np.zeros((1, wide), np.float32),
                trafo=np.eye(4, dtype=np.float32),
                color=0,
            )
        with self.assertRaisesRegex(ValueError, "trafo has the shape"):
            self.pane.ImportMeasurementFromMemory(
                points=np.zeros((2, 2, 3), np.float32),
                confidence=np.zeros((2, 2), np.float32),
                trafo=np.eye(3, 3, dtype=np.float32),
                color=0,
            )

    def test_NeedlesComeBackAsNewArrays(self) -> None:
        ids = np.array([7, 3], np.int32)
        pins = np.array([[1, 2, 3], [4, 5, 6]], np.float32)
        heads = pins + np.float32(10)
        self.assertIs(self.pane.CreateNeedles(id=ids, pinPosXYZ=pins, headPosXYZ=heads), True)
        first, second = self.pane.GetNeedles(), self.pane.GetNeedles()
        np.testing.assert_array_equal(first.id, ids)
        np.testing.assert_array_equal(first.pinPosXYZ, pins)
        np.testing.assert_array_equal(first.headPosXYZ, heads)
        self.assertEqual((first.id.dtype, first.pinPosXYZ.dtype), (np.int32, np.float32))
        self.assertFalse(np.shares_memory(first.pinPosXYZ, second.pinPosXYZ))
        self.pane.DeleteNeedles()
        self.assertEqual(self.pane.GetNeedles().headPosXYZ.shape, (0, 3))

    def test_AMeshCanBePassedToAnotherProcess(self) -> None:
        code = (
            "import pickle, sys, kv_scenepane as kv\n"
            "with kv.ScenePane.no_picture() as pane:\n"
            "    pane.ImportMeshedMeasurement(pickle.load(sys.stdin.buffer), 'x', 0)\n"
            "    print(tuple(pane.GetMeshDataSize(0)))\n"
        )
        data = pickle.dumps(kv.Mesh(CORNERS, FACES))
        done = subprocess.run([sys.executable, "-c", code], input=data, capture_output=True)
        self.assertEqual((done.stdout, done.returncode), (b"(3, 1)\n", 0), done.stderr)

    def test_MeshesOfArrays(self) -> None:
        colors = np.array([[255, 0, 0], [0, 255, 0], [0, 0, 255]], np.uint8)
        normals = np.tile(np.array([0, 0, 1], np.float32), (3, 1))
        mesh = kv.Mesh(CORNERS, FACES, normals=normals, colors=colors, grid=np.zeros(3, np.uint32))
        self.pane.ImportMeshedMeasurement(mesh, "the name", 0x00FF00)
        self.pane.ImportMeshedMeasurement(kv.Mesh(CORNERS, FACES), None, 0x00FF00)
        self.assertEqual([self.pane.object_has_colors(i) for i in (0, 1)], [True, False])
        self.assertEqual([self.pane.object_name(i) for i in (0, 1)], ["the name", ""])
        self.assertEqual(self.pane.GetMeshDataSize(0), (3, 1))
        self.assertEqual(self.pane.GetObjectColor(1), 0x00FF00)
        for bad in (None, CORNERS, kv.Mesh.__new__(kv.Mesh), 5):
            with self.assertRaisesRegex(TypeError, "kv.Mesh"):
                self.pane.ImportMeshedMeasurement(bad, "x", 0)
        for same in (copy.copy(mesh), copy.deepcopy(mesh), pickle.loads(pickle.dumps(mesh))):
            self.pane.ImportMeshedMeasurement(same, "copy", 0)
            self.assertEqual((same.vertex_count, same.triangle_count), (3, 1))
            self.assertEqual(repr(same), repr(mesh))
            self.assertTrue(self.pane.object_has_colors(self.pane.GetNumObjects() - 1))
        with self.assertRaisesRegex(ValueError, "normals"):
            kv.Mesh(CORNERS, FACES, normals=np.zeros((2, 3), np.float32))
        with self.assertRaisesRegex(ValueError, "colors"):
            kv.Mesh(CORNERS, FACES, colors=np.zeros((3, 2), np.uint8))


class Pictures(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.offscreen(40, 30)
        self.addCleanup(self.pane.close)
        self.pane.SetBackgroundColorsFourCorners(*([0x0000FF] * 4))  # red

    def test_APictureIsAnArrayOfItsOwn(self) -> None:
        picture = self.pane.picture()
        self.assertEqual((picture.shape, picture.dtype), ((30, 40, 4), np.uint8))
        self.assertTrue(picture.flags.c_contiguous and picture.flags.writeable)
        self.assertEqual(picture[3, 5].tolist(), [255, 0, 0, 255])
        self.assertFalse(np.shares_memory(picture, self.pane.picture()))
        self.pane.SetBackgroundColorsFourCorners(*([0xFF8000] * 4))
        self.assertEqual(picture[3, 5].tolist(), [255, 0, 0, 255])
        self.assertEqual(self.pane.picture()[3, 5].tolist(), [0, 128, 255, 255])

    def test_TheTopRowIsFirst(self) -> None:
        self.pane.SetBackgroundColors(0x00FF00, 0xFF0000)
        picture = self.pane.picture()
        self.assertGreater(picture[0, 20, 1], 200)
        self.assertGreater(picture[-1, 20, 2], 200)

    def test_AScreenShotHas2048Pixels(self) -> None:
        shot = self.pane.CaptureScreenShot()
        self.assertEqual((shot.shape, shot.dtype), ((2048, 2048, 4), np.uint8))
        self.assertEqual(shot[1000, 1000, :3].tolist(), [255, 0, 0])

    def test_AnOverlayIsInTheOrderBlueGreenRed(self) -> None:
        image = np.zeros((4, 6, 4), np.uint8)
        image[...] = (250, 100, 50, 255)
        self.pane.AddOverlayData(
            image, relPosX=0, relPosY=0, relOffsetX=0, relOffsetY=0, absOffsetX=0, absOffsetY=0
        )
        self.assertEqual(self.pane.picture()[2, 3].tolist(), [50, 100, 250, 255])

    def test_ResizeChangesThePicture(self) -> None:
        self.pane.resize(50, 20)
        self.assertEqual(self.pane.picture().shape, (20, 50, 4))

    def test_ADrawingAreaWithoutPixelsHasNone(self) -> None:
        for size in ((-1, 5), (0, 10), (10, 0)):
            self.pane.SetSize(*size)
            with self.assertRaisesRegex(kv.Error, f"{size[0]} x {size[1]} pixels"):
                self.pane.picture()
            self.assertIsNone(self.pane._repr_png_())
        self.pane.SetSize(20, 10)
        self.assertEqual(self.pane.picture().shape, (10, 20, 4))
        self.pane.close()
        self.assertIsNone(self.pane._repr_png_())

    def test_ANotebookShowsThePane(self) -> None:
        self.assertEqual(decode(self.pane._repr_png_()).tolist(), self.pane.picture().tolist())

    def test_PickFindsTheSurface(self) -> None:
        self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)
        self.pane.CenterView()
        hit = self.pane.pick(20, 15)
        self.assertEqual((hit.object, hit.triangle), (0, 0))
        np.testing.assert_allclose(hit.point, (0, 0, 0), atol=0.1)
        self.assertIsNone(self.pane.pick(0, 0))

    def test_FramesAreCountedAndTimed(self) -> None:
        before = self.pane.frame_statistics.count
        self.pane.picture()
        after = self.pane.frame_statistics
        self.assertEqual(after.count, before + 1)
        self.assertGreater(after.seconds, 0)

    def test_TheRendererIsNamed(self) -> None:
        info = self.pane.graphics_info()
        self.assertGreater(len(info.renderer), 3)
        self.assertGreater(len(info.version), 2)


def decode(data: bytes) -> np.ndarray:
    """A second, slow reader of what png() writes."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    place, chunks = 8, {}
    while place < len(data):
        (size,) = struct.unpack_from(">I", data, place)
        kind, body = data[place + 4 : place + 8], data[place + 8 : place + 8 + size]
        (sum_,) = struct.unpack_from(">I", data, place + 8 + size)
        assert sum_ == zlib.crc32(kind + body)
        chunks[kind] = body
        place += 12 + size
    width, height, depth, kind = struct.unpack_from(">IIBB", chunks[b"IHDR"])
    channels = {0: 1, 2: 3, 6: 4}[kind]
    assert depth == 8
    rows = np.frombuffer(zlib.decompress(chunks[b"IDAT"]), np.uint8).reshape(
        height, 1 + width * channels
    )
    assert not rows[:, 0].any()
    return rows[:, 1:].reshape(height, width, channels)


class PngFiles(unittest.TestCase):
    def test_APictureSurvives(self) -> None:
        rng = np.random.default_rng(1)
        for shape in ((5, 7, 4), (1, 1, 4), (4, 3, 3), (6, 2, 1)):
            picture = rng.integers(0, 256, shape, np.uint8)
            np.testing.assert_array_equal(decode(kv.png(picture)), picture)
        flat = rng.integers(0, 256, (3, 4), np.uint8)
        np.testing.assert_array_equal(decode(kv.png(flat))[..., 0], flat)
        np.testing.assert_array_equal(decode(kv.png(picture[::-1])), picture[::-1])

    def test_OtherArraysAreRefused(self) -> None:
        for bad in (
            np.zeros((3, 3, 2), np.uint8),
            np.zeros(3, np.uint8),
            np.zeros((0, 4, 4), np.uint8),
        ):
            with self.assertRaises(ValueError):
                kv.png(bad)
        with self.assertRaises(TypeError):
            kv.png(np.zeros((3, 3, 4), float))

    def test_AFileIsReplacedAsAWhole(self) -> None:
        picture = np.full((3, 3, 4), 9, np.uint8)
        with tempfile.TemporaryDirectory() as folder:
            for name in ("a.png", os.fsencode("b.png"), b"\xff.png"):
                path = os.path.join(os.fsencode(folder), os.fsencode(name))
                with open(path, "wb") as stream:
                    stream.write(b"old")
                kv.save_png(path, picture)
                with open(path, "rb") as stream:
                    self.assertEqual(stream.read(), kv.png(picture))
            self.assertEqual(len(os.listdir(folder)), 3)
            with mock.patch("os.fsync", side_effect=OSError("disk")), self.assertRaises(OSError):
                kv.save_png(path, picture[:1])
            with open(path, "rb") as stream:
                self.assertEqual(stream.read(), kv.png(picture))
            self.assertEqual(len(os.listdir(folder)), 3)

    def test_AnExistingFileKeepsItsModeAndALinkToIt(self) -> None:
        picture = np.full((3, 3, 4), 9, np.uint8)
        with tempfile.TemporaryDirectory() as folder:
            path, link = os.path.join(folder, "a.png"), os.path.join(folder, "link.png")
            with open(path, "wb"):
                pass
            os.chmod(path, 0o640)
            os.symlink("a.png", link)
            kv.save_png(link, picture)
            self.assertTrue(os.path.islink(link))
            self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o640)
            with open(path, "rb") as stream:
                self.assertEqual(stream.read(), kv.png(picture))
            os.unlink(path)
            before = os.umask(0o027)
            kv.save_png(path, picture)
            os.umask(before)
            self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o640)

    def test_AWriteProtectedFileStays(self) -> None:
        # root may write any file: the answer of the system is replaced.
        with tempfile.TemporaryDirectory() as folder, mock.patch("os.access", return_value=False):
            path = os.path.join(folder, "a.png")
            with open(path, "wb") as stream:
                stream.write(b"old")
            with self.assertRaises(PermissionError):
                kv.save_png(path, np.zeros((3, 3, 4), np.uint8))
            with open(path, "rb") as stream:
                self.assertEqual(stream.read(), b"old")
            self.assertEqual(os.listdir(folder), ["a.png"])

    def test_WhatAKilledWriteLeftIsRemovedByTheNextOne(self) -> None:
        picture = np.zeros((3, 3, 4), np.uint8)
        kill = (
            "import os, signal, sys\n"
            "from unittest import mock\n"
            "import numpy as np\n"
            "import kv_scenepane as kv\n"
            "die = lambda *_: os.kill(os.getpid(), signal.SIGKILL)\n"
            "real = os.open\n"
            "def named(path, flags, *rest, **more):\n"
            "    if flags & os.O_TMPFILE == os.O_TMPFILE:\n"
            "        raise OSError(95, 'no such files')\n"
            "    return real(path, flags, *rest, **more)\n"
            "with mock.patch('os.replace', die), mock.patch('os.open', named):\n"
            "    kv.save_png(sys.argv[1], np.zeros((3, 3, 4), np.uint8))\n"
        )
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "a.png")
            run = subprocess.run([sys.executable, "-c", kill, path])
            self.assertEqual(run.returncode, -signal.SIGKILL)
            left = os.listdir(folder)
            self.assertEqual(len(left), 1)
            kv.save_png(os.path.join(folder, "b.png"), picture)
            self.assertIn(left[0], os.listdir(folder), "the file of another target")
            with open(os.path.join(folder, left[0]), "rb+") as writer:
                fcntl.flock(writer, fcntl.LOCK_EX)
                kv.save_png(path, picture)
                self.assertIn(left[0], os.listdir(folder), "a file that is being written")
            kv.save_png(path, picture)
            self.assertEqual(sorted(os.listdir(folder)), ["a.png", "b.png"])


if __name__ == "__main__":
    unittest.main()
