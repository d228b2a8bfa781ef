"""Methods and properties: names, types, results, and what is refused."""

import ast
import decimal
import fractions
import inspect
import math
import unittest
from pathlib import Path

import numpy as np

import kv_scenepane as kv
from kv_scenepane import _library

METHOD, PROPERTY, EVENT = range(3)


class ArgumentInfo(_library.c.Structure):
    _fields_ = [
        ("name", _library.c.c_char_p),
        ("type", _library.c.c_char_p),
        ("value", _library.c.c_int32),
        ("output", _library.c.c_int32),
        ("element", _library.c.c_char_p),
        ("shape", _library.c.c_char_p),
    ]


class MemberInfo(_library.c.Structure):
    _fields_ = [
        ("kind", _library.c.c_int32),
        ("id", _library.c.c_int32),
        ("name", _library.c.c_char_p),
        ("type", _library.c.c_char_p),
        ("value", _library.c.c_int32),
        ("writable", _library.c.c_int32),
        ("argument_count", _library.c.c_size_t),
        ("arguments", _library.c.POINTER(ArgumentInfo)),
    ]


def table(kind: int) -> list:
    """The members of a kind as the library lists them: (id, name, inputs, outputs)."""
    library = _library.c.CDLL(_library.library._name)
    library.kv_member_count.restype = _library.c.c_size_t
    library.kv_member_at.restype = _library.c.POINTER(MemberInfo)
    library.kv_member_at.argtypes = [_library.c.c_int32, _library.c.c_size_t]
    rows = []
    for place in range(library.kv_member_count(kind)):
        member = library.kv_member_at(kind, place).contents
        arguments = member.arguments[: member.argument_count]
        names = [
            [a.name.decode() for a in arguments if bool(a.output) is output]
            for output in (False, True)
        ]
        rows.append((member.id, member.name.decode(), names[0], names[1]))
    return rows


class TheSurface(unittest.TestCase):
    def test_HasTheMethodsOfTheLibraryWithTheirArgumentNames(self) -> None:
        rows = table(METHOD)
        self.assertEqual(len(rows), 120)
        for number, name, inputs, outputs in rows:
            with self.subTest(method=name):
                function = getattr(kv.ScenePane, name)
                self.assertEqual(list(inspect.signature(function).parameters), ["self", *inputs])
                data = next(m for m in kv.METHODS if m.id == number)
                self.assertEqual((data.name, [a[0] for a in data.outputs]), (name, outputs))
                if data.tuple is not None:
                    result = [] if data.result == "v" else ["result"]
                    self.assertEqual(list(data.tuple._fields), result + outputs)
        self.assertEqual([m.id for m in kv.METHODS], [row[0] for row in rows])

    def test_HasThePropertiesAndEventsOfTheLibrary(self) -> None:
        self.assertEqual(
            [(p.id, p.name) for p in kv.PROPERTIES], [row[:2] for row in table(PROPERTY)]
        )
        self.assertEqual(
            [(e.id, e.name, list(e.fields)) for e in kv.EVENTS], [row[:3] for row in table(EVENT)]
        )
        self.assertEqual(len(kv.EVENTS), 13)

    def test_EveryMethodHasATextThatNamesNothingOfCpp(self) -> None:
        for method in kv.METHODS:
            text = getattr(kv.ScenePane, method.name).__doc__
            self.assertGreater(len(text), 10, method.name)
            for word in ("std::", "nullptr", " null", "VARIANT", "uint8_t", "false ", "true "):
                self.assertNotIn(word, text, method.name)

    def test_StubsHaveTheSameMembersAndArguments(self) -> None:
        folder = Path(kv.__file__).parent
        self.assertTrue((folder / "py.typed").exists())

        def members(file: str) -> dict:
            tree = ast.parse((folder / file).read_text())
            surface = next(
                n for n in tree.body if isinstance(n, ast.ClassDef) and n.name == "Surface"
            )
            forms: dict = {}
            for n in surface.body:
                if isinstance(n, ast.FunctionDef):
                    kinds = {ast.unparse(d) for d in n.decorator_list} - {"overload"}
                    key = (n.name, *kinds)
                    names = [a.arg for a in n.args.args + n.args.kwonlyargs]
                    forms.setdefault(key, []).append((names, ast.unparse(n.returns)))
            for name, (first, *others) in forms.items():
                self.assertTrue(all(other == first for other in others), name)
            return {name: first for name, (first, *_) in forms.items()}

        stub = members("_surface.pyi")
        self.assertEqual(stub, members("_surface.py"))
        self.assertGreaterEqual(len(stub), 124)

    def test_ModesAreNumbers(self) -> None:
        self.assertEqual(kv.DrawMode.DrawModeGouraud, 3)
        self.assertEqual(
            [
                len(m)
                for m in (
                    kv.DrawMode,
                    kv.ViewMode,
                    kv.RotationMode,
                    kv.PickMode,
                    kv.SegmentationMode,
                )
            ],
            [8, 8, 4, 6, 6],
        )


class Calls(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)

    def add_triangle(self) -> None:
        corners = np.array([[0, 0, 0], [3, 0, 0], [0, 6, 0]], np.float32)
        self.pane.ImportMeshFromMemory(vertices=corners, triangles=np.array([[0, 1, 2]], np.int32))

    def test_ArgumentsByPositionAndByName(self) -> None:
        self.pane.SetViewParams(1, 0, 0, 0, 1, 0, 5, 6, 7, zoom=2, freezeBBox=0)
        self.assertEqual(self.pane.GetViewParams(), (1, 0, 0, 0, 1, 0, 5, 6, 7, 2))
        self.assertEqual(self.pane.GetViewParams().zoom, 2)

    def test_ResultAndOutputsAreANamedTuple(self) -> None:
        self.add_triangle()
        center = self.pane.GetObjectCenter(objectIdx=0)
        self.assertIs(center.result, True)
        self.assertEqual((center.x, center.y, center.z), (1, 2, 0))
        self.assertEqual(self.pane.GetMeshDataSize(0), (3, 1))
        self.assertEqual(self.pane.GetMeshDataSize(0)._fields, ("numP", "numT"))
        trafo = self.pane.GetTrafoOfScan(0)
        self.assertEqual(
            (trafo.result, trafo[1:]), (0, (1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1))
        )
        self.assertEqual(self.pane.GetScreenShotResolution(), (2048, 2048))

    def test_ABadIndexThatTheViewerAnswersIsAnAnswer(self) -> None:
        self.assertEqual(self.pane.GetObjectColor(0), -1)
        self.assertEqual(self.pane.GetTrafoOfScan(7), (-1,) + (0,) * 16)
        self.assertEqual(self.pane.GetObjectCenter(-1), (False, 0, 0, 0))
        self.assertEqual(self.pane.GetObjectBoundingBox(3).x_min, 1)

    def test_SetTrafoOfScanPassesSeventeenArgumentsInOrder(self) -> None:
        self.add_triangle()
        matrix = [0, -1, 0, 4, 1, 0, 0, 5, 0, 0, 1, 6, 0, 0, 0, 1]
        self.assertEqual(self.pane.SetTrafoOfScan(0, *matrix), 0)
        np.testing.assert_allclose(self.pane.GetTrafoOfScan(0)[1:], matrix, atol=1e-6)
        np.testing.assert_allclose(self.pane.GetObjectCenter(0)[1:], (2, 6, 6), atol=1e-5)

    def test_VariantBoolsAreBools(self) -> None:
        self.assertIs(self.pane.GetLine3DDrawingMode(), False)
        for value in (True, np.bool_(True), 1, -1, 5):
            self.pane.SetLine3DDrawingMode(False)
            self.pane.SetLine3DDrawingMode(value)
            self.assertIs(self.pane.GetLine3DDrawingMode(), True)
        self.pane.SetLine3DDrawingMode(np.bool_(False))
        self.assertIs(self.pane.GetLine3DDrawingMode(), False)

    def test_NumbersOfAllKindsAreNumbers(self) -> None:
        for value in (
            2,
            2.0,
            np.float32(2),
            np.float64(2),
            np.int8(2),
            fractions.Fraction(2),
            decimal.Decimal(2),
            True + 1,
        ):
            self.pane.SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, value, 0)
            self.assertEqual(self.pane.GetViewParams().zoom, 2)
        for value in (7, np.int16(7), np.uint64(7)):
            self.pane.SetScanSkipVal(value)
            self.assertEqual(self.pane.GetScanSkipVal(), 7)

    def test_NumbersThatAreNotFiniteAreAccepted(self) -> None:
        self.assertIs(self.pane.CreateNeedle(1, math.nan, math.inf, -math.inf, 0, 0, 0), True)
        needle = self.pane.GetNeedle(1)
        self.assertTrue(math.isnan(needle.pinPosX))
        self.assertEqual(needle.pinPosY, math.inf)

    def test_Properties(self) -> None:
        self.assertEqual(
            (self.pane.DrawMode, self.pane.DrawMosaic, self.pane.MoveReduced), (3, False, False)
        )
        self.pane.DrawMode = kv.DrawMode.DrawModeFlat
        self.pane.MoveReduced = True
        self.assertEqual(self.pane.DrawMode, 2)
        self.assertIs(self.pane.MoveReduced, True)
        with self.assertRaises(AttributeError):
            self.pane.ReadyState = 3
        with self.assertRaises(AttributeError):
            self.pane.Drawmode = 3
        with self.assertRaisesRegex(TypeError, "DrawMode"):
            self.pane.DrawMode = "flat"
        with self.assertRaisesRegex(OverflowError, "DrawMode"):
            self.pane.DrawMode = 40000
        with self.assertRaisesRegex(TypeError, "DrawMosaic"):
            self.pane.DrawMosaic = None
        self.assertEqual(self.pane.DrawMode, 2)

    def test_InvokeByIdAndByName(self) -> None:
        self.pane.invoke("SetPickMode", 5)
        self.assertEqual(self.pane.invoke(19), 5)
        self.assertEqual(self.pane.invoke(18, mode=2), None)
        self.assertEqual(self.pane.invoke(np.int32(19)), 2)
        self.assertEqual(self.pane.invoke("GetViewParams").zoom, 1)
        for method in (999, 0, -525, "getPickMode", "close", "_live"):
            with self.assertRaisesRegex(ValueError, "no method"):
                self.pane.invoke(method)
        for method in (None, 19.0, True, b"GetPickMode"):
            with self.assertRaises(TypeError):
                self.pane.invoke(method)

    def test_WrongArgumentsNameMethodAndArgument(self) -> None:
        rows = [
            (TypeError, "SetArrowAngle.*angle.*str", lambda: self.pane.SetArrowAngle("30")),
            (TypeError, "SetArrowAngle.*angle.*float", lambda: self.pane.SetArrowAngle(30.0)),
            (TypeError, "SetArrowAngle.*angle.*None", lambda: self.pane.SetArrowAngle(None)),
            (OverflowError, "SetArrowAngle.*angle.*32768", lambda: self.pane.SetArrowAngle(32768)),
            (
                OverflowError,
                "SetCrossColor.*color.*2147483648",
                lambda: self.pane.SetCrossColor(2**31),
            ),
            (OverflowError, "SetPickRadius.*r ", lambda: self.pane.SetPickRadius(1e39)),
            (OverflowError, "SetPickRadius.*r ", lambda: self.pane.SetPickRadius(10**400)),
            (TypeError, "SetPickRadius.*r .*str", lambda: self.pane.SetPickRadius("1")),
            (TypeError, "SetPickRadius.*r .*complex", lambda: self.pane.SetPickRadius(1j)),
            (
                TypeError,
                "SetLine3DDrawingMode.*enable.*bool",
                lambda: self.pane.SetLine3DDrawingMode("yes"),
            ),
            (
                TypeError,
                "SetLine3DDrawingMode.*enable.*bool",
                lambda: self.pane.SetLine3DDrawingMode(1.0),
            ),
            (
                TypeError,
                "SetViewParams.*cx",
                lambda: self.pane.SetViewParams(1, 0, 0, 0, 1, 0, [], 0, 0, 1, 0),
            ),
            (TypeError, "ImportMesh.*path.*int", lambda: self.pane.ImportMesh(5)),
            (ValueError, "ImportMesh.*path.*zero", lambda: self.pane.ImportMesh("a\0b.stl")),
            (TypeError, "SetHpsSourceApp.*appName", lambda: self.pane.SetHpsSourceApp(b"x", "1")),
            (TypeError, "missing.*'angle'", lambda: self.pane.SetArrowAngle()),
            (TypeError, "unexpected.*'angel'", lambda: self.pane.SetArrowAngle(angel=3)),
            (TypeError, "SetArrowAngle.*takes 2", lambda: self.pane.SetArrowAngle(1, 2)),
            (TypeError, "missing.*'XYZs'", lambda: self.pane.CreateLine3D(1, 3)),
        ]
        for kind, text, call in rows:
            with self.subTest(text=text), self.assertRaisesRegex(kind, text):
                call()
        self.assertEqual(self.pane.GetViewParams(), (1, 0, 0, 0, 1, 0, 0, 0, 0, 1))

    def test_IndicesThatTheViewerLeavesUncheckedRaiseIndexError(self) -> None:
        self.add_triangle()
        self.pane.AddPickPointSphere(1, 2, 3, 0)
        overlay = self.pane.AddOverlayData(
            np.zeros((2, 3, 4), np.uint8), None, None, 0, 0, 0, 0, 0, 0
        )
        self.assertEqual(overlay, 0)
        for bad in (-1, 1, 32767):
            for call in (
                self.pane.GetMeshDataSize,
                lambda i: self.pane.ExportMesh(i, "/tmp/never-written.stl"),
                self.pane.RemovePickPointSphere,
                self.pane.GetPickPointSphereCoords,
                lambda i: self.pane.MovePickPointSphere(i, 0, 0, 0),
                lambda i: self.pane.SetOverlayVisibility(i, 1),
                self.pane.object_name,
                self.pane.object_has_colors,
            ):
                with self.assertRaises(IndexError):
                    call(bad)
        self.assertEqual(self.pane.GetPickPointSphereCoords(0), (1, 2, 3))
        self.pane.SetOverlayVisibility(0, 0)
        self.assertEqual(self.pane.GetMeshDataSize(0), (3, 1))
        self.assertFalse(self.pane.object_has_colors(0))

    def test_SizesAndModesAreChecked(self) -> None:
        for call in (
            lambda: self.pane.send_mouse(9, 0, 0),
            lambda: self.pane.send_mouse(-1, 0, 0),
            lambda: self.pane.cut(6, [(0, 0), (1, 0), (1, 1)]),
            lambda: self.pane.cut(-1, [(0, 0), (1, 0), (1, 1)]),
            lambda: self.pane.cut(0, [(0, 0)]),
            lambda: self.pane.cut(0, [0, 1, 2]),
            lambda: self.pane.cut(kv.SegmentationMode.FreehandInside, np.zeros((0, 2))),
            lambda: self.pane.align([((0, 0), (1, 1, 1))]),
            lambda: kv.ScenePane.offscreen(0, 10),
            lambda: kv.ScenePane.offscreen(10, 32768),
            lambda: kv.ScenePane.offscreen(10, 10, samples=-1),
        ):
            with self.assertRaises(ValueError):
                call()

    def test_AFreehandLassoOfOnePointCutsWhatIsUnderIt(self) -> None:
        # The pane of the other tests has no picture: there a lasso changes nothing.
        with kv.ScenePane.offscreen(64, 48, gpu=kv.SOFTWARE) as pane:
            vertices = np.array([[0, 0, 0], [10, 0, 0], [5, 10, 0]], np.float32)
            pane.ImportMeshFromMemory(vertices=vertices, triangles=np.array([[0, 1, 2]], np.int32))
            pane.CenterView()
            modes = kv.SegmentationMode
            with self.assertRaises(ValueError):
                pane.cut(modes.PolygonInside, [(0.5, 0.5)])
            self.assertIs(pane.cut(modes.FreehandOutside, [(0.5, 0.5)]), True)
            self.assertEqual(pane.GetMeshDataSize(0), (0, 0))

    def test_WhatChangesWhileItIsReadCannotLeadBeyondTheList(self) -> None:
        class Index:
            calls = 0

            def __index__(self) -> int:
                self.calls += 1
                return 0 if self.calls == 1 else 1000

        self.add_triangle()
        index = Index()
        self.assertEqual(self.pane.GetMeshDataSize(index), (3, 1))
        self.assertEqual(index.calls, 1)

    def test_AnArgumentThatClosesThePaneIsARuntimeError(self) -> None:
        pane = kv.ScenePane.no_picture()

        class Closes:
            def __index__(self) -> int:
                pane.close()
                return 0

        with self.assertRaisesRegex(RuntimeError, "closed"):
            pane.SetArrowAngle(Closes())

    def test_PersistedProperties(self) -> None:
        self.pane.DrawMode = 1
        self.assertTrue(self.pane.modified)
        text, binary = self.pane.save_properties(), self.pane.save_properties(binary=True)
        self.assertFalse(self.pane.modified)
        for store in (text, text.decode(), binary, bytearray(binary)):
            with kv.ScenePane.no_picture() as other:
                other.load_properties(store)
                self.assertEqual(other.DrawMode, 1)
                with self.assertRaises(kv.Error) as caught:
                    other.load_properties(b"\0damaged")
                self.assertGreater(len(caught.exception.reason), 10)
                self.assertEqual(other.DrawMode, 3)

    def test_AlignmentMovesTheVariableObjects(self) -> None:
        self.add_triangle()
        self.pane.AddVariableObject(0)
        moving = np.array([[0, 0, 0], [3, 0, 0], [0, 6, 0]], float)
        found = self.pane.align([kv.AlignmentPair(p, p + (10, 20, 30)) for p in moving])
        self.assertTrue(found.is_found)
        np.testing.assert_allclose(found.transform[:3, 3], (10, 20, 30), atol=1e-9)
        self.assertEqual(len(found.pairs), 3)
        np.testing.assert_allclose(found.residuals, np.zeros(3), atol=1e-6)
        self.assertEqual(self.pane.GetObjectCenter(0)[1:], (11, 22, 30))
        nothing = self.pane.align([(moving[0], moving[1]), (moving[0], moving[1])])
        self.assertFalse(nothing.is_found)

    def test_WithoutAPictureThereIsNone(self) -> None:
        for call in (self.pane.picture, self.pane.graphics_info):
            with self.assertRaises(kv.Error):
                call()
        self.assertIsNone(self.pane._repr_png_())
        self.assertEqual(self.pane.native_window, 0)
        self.assertIsNone(self.pane.pick(3, 3))


if __name__ == "__main__":
    unittest.main()
