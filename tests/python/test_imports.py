"""Imports: why nothing is added, the debugger output, paths, and imports on threads."""

import contextlib
import io
import os
import pickle
import struct
import sys
import tempfile
import threading
import unittest
from concurrent.futures import ThreadPoolExecutor
from unittest import mock

import numpy as np

import kv_scenepane as kv

CORNERS = np.array([[-1, -1, 0], [1, -1, 0], [0, 1, 0]], np.float32)
FACES = np.array([[0, 1, 2]], np.int32)


def stl_bytes(triangles: int = 1) -> bytes:
    facet = struct.pack("<12fH", 0, 0, 1, *CORNERS.ravel(), 0)
    return b"\0" * 80 + struct.pack("<I", triangles) + facet * triangles


PLY = b"""ply
format ascii 1.0
element vertex 3
property float x
property float y
property float z
element face 1
property list uchar int vertex_indices
end_header
0 0 0
1 0 0
0 1 0
3 0 1 2
"""


def grid(size: int = 4) -> tuple:
    points = np.zeros((size, size, 3), np.float32)
    points[..., 0], points[..., 1] = np.meshgrid(np.arange(size) * 0.01, np.arange(size) * 0.01)
    return points, np.ones((size, size), np.float32), np.eye(4, dtype=np.float32)


class WithFolder(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)
        self.addCleanup(kv.on_debug_output, None)

    def write(self, name: str, data: bytes) -> str:
        path = os.path.join(self.folder, name)
        with open(path, "wb") as stream:
            stream.write(data)
        return path


class ImportsThatAddNothing(WithFolder):
    def test_RaiseTheReason(self) -> None:
        rows = [
            ("ImportMesh", "missing.stl", None, "missing.stl.*No such file"),
            ("ImportMesh", "missing.ply", None, "missing.ply.*No such file"),
            ("ImportMesh", "bad.ply", b"ply\nformat ascii 9.0\n", "bad.ply"),
            ("ImportMesh", "short.stl", stl_bytes(3)[:150], "short.stl"),
            ("ImportMesh", "other.xyz", b"1 2 3", "other.xyz"),
            ("ImportMesh", "no-registry.hps", b"x", "no-registry.hps"),
            ("ImportScan", "missing.pcm", None, "missing.pcm"),
            ("ImportScan", "bad.xdt", b"nothing", "bad.xdt"),
        ]
        for method, name, data, text in rows:
            path = os.path.join(self.folder, name) if data is None else self.write(name, data)
            arguments = (path,) if method == "ImportMesh" else (path, 0xFFFFFF)
            errors = io.StringIO()
            with self.subTest(name=name), contextlib.redirect_stderr(errors):
                with self.assertRaisesRegex(kv.ImportFailed, text) as caught:
                    getattr(self.pane, method)(*arguments)
                self.assertEqual(caught.exception.method, method)
                self.assertFalse(caught.exception.reason.endswith("\n"))
                self.assertIsInstance(caught.exception, kv.Error)
                self.assertIsInstance(caught.exception, RuntimeError)
                self.assertEqual(errors.getvalue(), "")  # the text is in the exception
        self.assertEqual(self.pane.GetNumObjects(), 0)

    def test_RaiseTheReasonAlsoByTheirExtension(self) -> None:
        rows = [
            ("missing.stl", None, "missing.stl: cannot be opened: No such file or directory"),
            ("missing.ply", None, "missing.ply: cannot be opened: No such file or directory"),
            ("missing.pcm", None, "missing.pcm: cannot be opened: No such file or directory"),
            ("bad.xdt", b"no", "bad.xdt: ends before the size of its grid"),
            ("other.xyz", b"1 2 3", "other.xyz: unknown file type"),
        ]
        for name, data, text in rows:
            path = os.path.join(self.folder, name) if data is None else self.write(name, data)
            errors = io.StringIO()
            with self.subTest(name=name), contextlib.redirect_stderr(errors):
                with self.assertRaisesRegex(kv.ImportFailed, text) as caught:
                    self.pane.import_file(path)
                self.assertEqual(caught.exception.method, "import_file")
                self.assertEqual(errors.getvalue(), "")
        self.assertEqual(self.pane.GetNumObjects(), 0)

    def test_OfAFileByItsExtensionRefuseWrongArguments(self) -> None:
        path = self.write("one.stl", stl_bytes())
        rows = [
            (TypeError, {"skip": 1.5}), (ValueError, {"skip": 0}), (OverflowError, {"skip": 40000}),
            (TypeError, {"confidence": "1"}), (OverflowError, {"color": 1 << 31}),
        ]
        for kind, words in rows:
            with self.subTest(words=words), self.assertRaises(kind):
                self.pane.import_file(path, **words)
        with self.assertRaises(ValueError):
            self.pane.import_file(path + "\0.stl")
        with self.assertRaises(TypeError):
            self.pane.import_file(7)
        self.assertEqual(self.pane.GetNumObjects(), 0)

    def test_ByTheirExtensionAddWhatTheyHold(self) -> None:
        self.pane.import_file(self.write("one.STL", stl_bytes()))
        self.pane.import_file(self.write("one.ply", PLY))
        points = np.zeros((5, 5, 3), np.float32)
        points[..., 0], points[..., 1] = np.meshgrid(np.arange(5) * 1000, np.arange(5) * 1000)
        scan = self.write("grid.xdt", struct.pack("<hh", 5, 5) + points.tobytes())
        self.pane.import_file(scan)
        self.pane.import_file(scan, skip=2, color=0x010203)
        counts = [self.pane.GetMeshDataSize(i)[0] for i in range(4)]
        self.assertEqual(counts[:3], [3, 3, 25])
        self.assertLess(counts[3], 10)
        self.assertEqual(self.pane.GetObjectColor(2), 0xC8D4DC)
        self.assertEqual(self.pane.GetObjectColor(3), 0x010203)

    def test_OfAGridWithoutASurface(self) -> None:
        points, confidence, trafo = grid()
        confidence[...] = 0
        self.pane.SetConfidenceFilter(0.5)
        with self.assertRaisesRegex(kv.ImportFailed, "ImportMeasurementFromMemory"):
            self.pane.ImportMeasurementFromMemory(
                points=points, confidence=confidence, trafo=trafo, color=0
            )
        self.pane.SetAllowEmptyObjects(True)
        self.pane.ImportMeasurementFromMemory(
            points=points, confidence=confidence, trafo=trafo, color=0
        )
        self.assertEqual(self.pane.GetNumObjects(), 1)

    def test_CanBePassedToAnotherProcess(self) -> None:
        with self.assertRaises(kv.ImportFailed) as caught:
            self.pane.ImportMesh(os.path.join(self.folder, "none.stl"))
        copy = pickle.loads(pickle.dumps(caught.exception))
        self.assertEqual(
            (str(copy), copy.reason, copy.method),
            (str(caught.exception), caught.exception.reason, "ImportMesh"),
        )

    def test_OfAParallelImportAreNoFailure(self) -> None:
        path = self.write("a.stl", stl_bytes())
        with self.pane.parallel_import():
            points, confidence, trafo = grid()
            self.pane.ImportMeasurementFromMemory(
                points=points, confidence=confidence, trafo=trafo, color=0
            )
            self.pane.ImportMesh(path)
        self.assertEqual(self.pane.GetNumObjects(), 2)


class ExportsThatWriteNothing(WithFolder):
    def setUp(self) -> None:
        super().setUp()
        self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)

    def refused(self, path: object, text: str) -> None:
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            with self.assertRaisesRegex(kv.Error, text) as caught:
                self.pane.ExportMesh(0, path)
        self.assertEqual(caught.exception.method, "ExportMesh")
        self.assertNotIsInstance(caught.exception, kv.ImportFailed)
        self.assertEqual(errors.getvalue(), "")  # the text is in the exception

    def test_RaiseTheReason(self) -> None:
        rows = [
            ("nowhere/a.ply", r"a\.ply: cannot open the folder: No such file"),
            ("nowhere/a.stl", r"a\.stl: cannot open the folder: No such file"),
            ("no-registry.hps", "InitializeKVReg"),
            ("a.xyz", r"no file was written: '.*a\.xyz' has no extension of a mesh file"),
            ("a", "no file was written"),
            ("", "no file was written"),
        ]
        for name, text in rows:
            with self.subTest(name=name):
                self.refused(os.path.join(self.folder, name) if name else name, text)
        self.assertEqual(os.listdir(self.folder), [])

    def test_LeaveWhatIsThere(self) -> None:
        folder = os.path.join(self.folder, "folder.stl")
        os.mkdir(folder)
        self.refused(folder, "folder.stl")
        kept = self.write("kept.xyz", b"1 2 3")
        self.refused(kept, "no file was written")
        with open(kept, "rb") as stream:
            self.assertEqual(stream.read(), b"1 2 3")

    def test_AreNotThoseThatReplaceAFileByTheSameBytes(self) -> None:
        for name in ("same.ply", "same.stl"):
            path = os.path.join(self.folder, name)
            for form in (path, os.fsencode(path)) * 50:
                self.pane.ExportMesh(0, form)
            self.assertGreater(os.path.getsize(path), 80)

    def test_ReachTheFunctionOfTheUserToo(self) -> None:
        texts: list = []
        kv.on_debug_output(texts.append)
        self.refused(os.path.join(self.folder, "nowhere", "a.stl"), "No such file")
        self.assertIn("No such file", "".join(texts))


class Paths(WithFolder):
    def test_AreStrBytesOrPathLikeWithAnyBytes(self) -> None:
        from pathlib import Path

        folder = os.fsencode(self.folder)
        for name in (
            b"plain.ply",
            "\u00fcn\u00efcode \u4e2d.ply".encode(),
            b"not-utf8-\xff\xfe.ply",
            b"\xed\xa0\x80.ply",
        ):
            path = os.path.join(folder, name)
            with open(path, "wb") as stream:
                stream.write(PLY)
            for form in (path, os.fsdecode(path), Path(os.fsdecode(path))):
                self.pane.ImportMesh(form)
                last = self.pane.GetNumObjects() - 1
                self.pane.ImportMeshedMeasurement(kv.Mesh(CORNERS), form, 0)
                self.assertEqual(os.fsencode(self.pane.object_name(last + 1)), path)
            copy = os.path.join(folder, b"copy-" + name)
            self.pane.ExportMesh(last, copy)
            self.assertGreater(os.path.getsize(copy), 80)
        self.assertEqual(self.pane.GetNumObjects(), 24)


class TheDebuggerOutput(WithFolder):
    def not_finite(self) -> None:
        corners = CORNERS.copy()
        corners[0, 0] = np.nan
        self.pane.ImportMeshFromMemory(vertices=corners, triangles=FACES)

    def test_OfAnImportThatWorksIsWrittenToStandardError(self) -> None:
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            self.not_finite()
        self.assertIn("1 coordinates are not finite\n", errors.getvalue())

    def test_OfOtherMethodsToo(self) -> None:
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            self.pane.GetObjectBoundingBox(5)
        self.assertEqual(len(errors.getvalue().splitlines()), 3)

    def test_ReachesTheFunctionOfTheUserAlsoWhenTheImportFails(self) -> None:
        texts, errors = [], io.StringIO()
        kv.on_debug_output(texts.append)
        with contextlib.redirect_stderr(errors):
            self.not_finite()
            with self.assertRaisesRegex(kv.ImportFailed, "No such file"):
                self.pane.ImportMesh(os.path.join(self.folder, "none.stl"))
        self.assertEqual(errors.getvalue(), "")
        self.assertIn("not finite", "".join(texts))
        self.assertIn("No such file", "".join(texts))
        kv.on_debug_output(None)
        texts.clear()
        with contextlib.redirect_stderr(errors):
            self.not_finite()
        self.assertEqual(texts, [])
        self.assertIn("not finite", errors.getvalue())

    def test_WhatTheFunctionRaisesReachesTheCallerOnceTheCallIsDone(self) -> None:
        error = KeyError("refused")

        def refuse(_text: str) -> None:
            raise error

        kv.on_debug_output(refuse)
        reported = []
        with mock.patch.object(sys, "unraisablehook", reported.append):
            for count in (1, 2):
                with self.assertRaises(KeyError) as caught:
                    self.not_finite()
                self.assertIs(caught.exception, error)
                self.assertEqual(self.pane.GetNumObjects(), count)
            for call in (
                lambda: self.pane.GetObjectBoundingBox(5),
                lambda: self.pane.ImportMesh(os.path.join(self.folder, "none.stl")),
                lambda: self.pane.load_properties(b"\0damaged"),
            ):
                with self.assertRaises(KeyError):
                    call()
        self.assertEqual(reported, [])

    def test_TheFunctionMayCallThePane(self) -> None:
        counts = []
        kv.on_debug_output(lambda text: counts.append(self.pane.GetNumObjects()))
        self.not_finite()
        self.assertEqual(len(counts), 1)

    def test_OnlyFunctionsAreAccepted(self) -> None:
        with self.assertRaises(TypeError):
            kv.on_debug_output("file")


class OnSeveralThreads(WithFolder):
    def test_ObjectsJoinTheListInTheOrderOfTheirIndices(self) -> None:
        sizes = [4, 7, 5, 9, 3, 8, 6, 10] * 4
        with ThreadPoolExecutor(4) as pool, self.pane.parallel_import() as importer:
            futures = [
                pool.submit(importer.add, index, *grid(size), name=f"scan {index}")
                for index, size in enumerate(sizes)
            ]
            for future in futures:
                future.result()
            self.assertEqual(self.pane.GetNumObjects(), 0)
        self.assertEqual(
            [self.pane.GetMeshDataSize(i).numP for i in range(len(sizes))], [s * s for s in sizes]
        )
        self.assertEqual(self.pane.object_name(3), "scan 3")

    def test_ImportsOfThePaneMeanwhileAddAtOnceOrBeforeAllOthers(self) -> None:
        points, confidence, trafo = grid(3)
        with self.pane.parallel_import() as importer:
            for size in (5, 5):
                importer.add(0, *grid(size))
            self.pane.ImportMeasurementFromMemory(
                points=points, confidence=confidence, trafo=trafo, color=0
            )
            with contextlib.redirect_stderr(io.StringIO()) as errors:
                self.pane.ImportScan(os.path.join(self.folder, "none.pcm"), 0)
            self.assertIn("none.pcm: cannot be opened", errors.getvalue())
            self.assertEqual(self.pane.GetNumObjects(), 0)
            self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)
            self.assertEqual(self.pane.GetNumObjects(), 1)
        sizes = [self.pane.GetMeshDataSize(i).numP for i in range(self.pane.GetNumObjects())]
        self.assertEqual(sizes, [3, 9, 25, 25])

    def test_CoordinatesAreMicrometres(self) -> None:
        points, confidence, trafo = grid()
        with self.pane.parallel_import() as importer:
            importer.add(
                0,
                points * np.float32(1000),
                confidence,
                trafo,
                classification=np.zeros((4, 4), np.uint8),
                colors=np.full((4, 4), 0xFF102030, np.uint32),
            )
        self.assertAlmostEqual(self.pane.GetObjectBoundingBox(0).x_max, 0.03, places=6)
        self.assertTrue(self.pane.object_has_colors(0))

    def test_ARefusedGridRaisesItsReasonOnItsThread(self) -> None:
        points, confidence, trafo = grid()
        with ThreadPoolExecutor(2) as pool, self.pane.parallel_import() as importer:
            bad = pool.submit(
                importer.add,
                0,
                points,
                confidence,
                trafo,
                classification=np.full((4, 4), 255, np.uint8),
                name="all masked",
            )
            good = pool.submit(importer.add, 1, points, confidence, trafo)
            with self.assertRaisesRegex(kv.ImportFailed, "add"):
                bad.result()
            good.result()
        self.assertEqual(self.pane.GetNumObjects(), 1)

    def test_WrongArgumentsAreRefused(self) -> None:
        points, confidence, trafo = grid()
        with self.pane.parallel_import() as importer:
            for kind, arguments, words in (
                (ValueError, (-1, points, confidence, trafo), {}),
                (ValueError, (0, points[..., :2].copy(), confidence, trafo), {}),
                (ValueError, (0, points, confidence[:2], trafo), {}),
                (ValueError, (0, points, confidence, trafo[:3]), {}),
                (TypeError, (0, points.astype(float), confidence, trafo), {}),
                (TypeError, (0, points, confidence, trafo), {"colors": np.zeros((4, 4), np.int32)}),
                (TypeError, (0, points, confidence, trafo), {"name": 5}),
                (TypeError, ("0", points, confidence, trafo), {}),
            ):
                with self.assertRaises(kind):
                    importer.add(*arguments, **words)
        self.assertEqual(self.pane.GetNumObjects(), 0)

    def test_BeginAndEndBelongTogether(self) -> None:
        with self.assertRaisesRegex(RuntimeError, "BeginParallelImport"):
            self.pane.EndParallelImport()
        entry = self.pane.BeginParallelImport()
        self.assertNotEqual(entry.p_this, 0)
        self.assertNotEqual(entry.p_fn, 0)
        for call in (
            lambda: self.pane.SetConfidenceFilter(0.5),
            lambda: self.pane.SetScanSkipVal(2),
            lambda: self.pane.SetAllowEmptyObjects(True),
            lambda: self.pane.parallel_import().__enter__(),
        ):
            with self.assertRaises(RuntimeError):
                call()
        self.pane.EndParallelImport()
        self.pane.SetScanSkipVal(2)
        with self.pane.parallel_import() as importer:
            pass
        with self.assertRaisesRegex(RuntimeError, "ended"):
            importer.add(0, *grid())
        with self.assertRaisesRegex(RuntimeError, "begun"):
            self.pane.parallel_import().add(0, *grid())

    def test_NoneEndsInsideItself(self) -> None:
        points, confidence, trafo = grid()
        points[...] = np.nan
        for end in (self.pane.close, self.pane.EndParallelImport):
            kv.on_debug_output(lambda text, end=end: end())
            with self.pane.parallel_import() as importer:
                with self.assertRaisesRegex(RuntimeError, "inside add"):
                    importer.add(0, points, confidence, trafo)
                kv.on_debug_output(None)
                importer.add(1, *grid())
            self.assertEqual(self.pane.GetNumObjects(), 2)
            self.pane.ClearData()

    def test_ClosingThePaneWaitsForTheThreads(self) -> None:
        points, confidence, trafo = grid(1000)
        outcomes = []

        def work() -> None:
            started.wait()
            for index in range(100):
                try:
                    importer.add(index, points, confidence, trafo)
                    outcomes.append("added")
                except RuntimeError as error:
                    outcomes.append(str(error))
                    return

        started = threading.Event()
        importer = self.pane.parallel_import().__enter__()
        threads = [threading.Thread(target=work) for _ in range(3)]
        for thread in threads:
            thread.start()
        started.set()
        while "added" not in outcomes:
            threads[0].join(0.001)
        self.pane.close()
        for thread in threads:
            thread.join()
        self.assertEqual(outcomes.count("the parallel import has ended"), 3)


if __name__ == "__main__":
    unittest.main()
