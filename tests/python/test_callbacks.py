"""Callbacks that call back into the viewer from every event, raise in it, or close it."""

import struct
import unittest

import numpy as np

import kv_scenepane as kv
from kv_scenepane import _events

WIDTH, HEIGHT = 60, 40
CORNERS = np.array([[-90, -90, 0], [90, -90, 0], [0, 120, 0]], np.float32)
FACES = np.array([[0, 1, 2]], np.int32)
# Their index 0 must be there.
OF_OBJECTS = ("GetMeshDataSize", "ExportMesh")
OF_SPHERES = ("RemovePickPointSphere", "GetPickPointSphereCoords", "MovePickPointSphere")
OWN_ARGUMENTS = {
    "SetSize": (WIDTH, HEIGHT),
    "RecreateOpenglContext": (3, 3, 0),
    "SetClipPlaneEnabled": (0,),
}


class Refused(Exception):
    """What the callbacks of these tests raise."""


def argument_of(record: tuple) -> object:
    """An argument by its name and type: indices and ids 0, other numbers 1, arrays of zeros."""
    name, code = record[:2]
    if len(record) == 4:
        shape = [int(part) if part.isdigit() else 2 for part in record[3].split(" x ")]
        return np.zeros(shape, record[2])
    if len(record) == 3:
        return kv.Mesh(CORNERS)
    if code == "w":
        return "/nowhere/missing.stl"
    if name in ("number", "numberOfXYZs", "numPoints", "width", "height"):
        return None if code == "i" else 1
    if name in ("numberOfVertices", "numberOfTriangles"):
        return None
    return {"f": 0.5, "b": True}.get(code, 0 if "idx" in name.lower() or "id" == name else 1)


def call_every_method(pane: kv.ScenePane) -> int:
    """Calls all methods in the order of the table; returns how many."""
    done = 0
    for method in kv.METHODS:
        if method.name in OF_OBJECTS and pane.GetNumObjects() == 0:
            continue
        if method.name in OF_SPHERES and pane.GetNumberOfPickPointSpheres() == 0:
            continue
        arguments = OWN_ARGUMENTS.get(method.name)
        if arguments is None:
            arguments = tuple(argument_of(record) for record in method.inputs)
        try:
            getattr(pane, method.name)(*arguments)
        except (kv.Error, RuntimeError, IndexError) as error:
            if method.name not in EXPECTED_ERRORS:
                raise AssertionError(f"{method.name}: {error!r}") from error
        done += 1
    pane.process_events()
    return done


# What the arguments above have no file, overlay or order of calls for.
EXPECTED_ERRORS = {
    "ImportMesh",
    "ExportMesh",
    "ImportScan",
    "ImportMeasurementFromMemory",
    "SetOverlayVisibility",
    "SetConfidenceFilter",
    "SetScanSkipVal",
    "SetAllowEmptyObjects",
    "EndParallelImport",
}


def set_scene(pane: kv.ScenePane) -> None:
    """A triangle that fills the window, and nothing else."""
    pane.BlockPaintEvents(False)
    pane.FinishInteraction()
    if pane._is_staging():
        pane.EndParallelImport()
    pane.ClearData()
    pane.DeleteNeedles()
    pane.SetMaxNumberOfNeedles(8)
    pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)
    pane.CenterView()
    pane.PerformRefresh()


def create_needle(pane: kv.ScenePane) -> None:
    pane.CreateNeedle(3, 1, 2, 3, 4, 5, 6)


def pick_object(pane: kv.ScenePane) -> None:
    pane.SetIGDRotation(0)
    pane.FlipMouseButtons(0)
    pane.SetNeedlePickingMode(False)
    pane.SetPickMode(2)
    pane.send_mouse(kv.MouseKind.DOUBLE_CLICK, WIDTH // 2, HEIGHT // 2, kv.MOUSE_LEFT)


def set_view(pane: kv.ScenePane) -> None:
    pane.TracingMode(1)
    pane.SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0)


def select_needle(pane: kv.ScenePane) -> None:
    create_needle(pane)
    pane.SelectNeedle(3)


def delete_needle(pane: kv.ScenePane) -> None:
    create_needle(pane)
    pane.DeleteNeedle(3)


def deselect_needle(pane: kv.ScenePane) -> None:
    select_needle(pane)
    pane.DeselectNeedle(3)


def end_segmentation(pane: kv.ScenePane) -> None:
    pane.StartSegmentation(0)
    pane.EndSegmentation()


def end_alignment(pane: kv.ScenePane) -> None:
    pane.AlignInteractive()
    pane.FinishInteraction()


def change_ready_state(pane: kv.ScenePane) -> None:
    # To a context that no driver has, or back: both change the ready state.
    version = 99 if pane.has_window else 3
    pane.RecreateOpenglContext(version, version, 0)


FIRE = {
    "ReadyStateChange": change_ready_state,
    "SelectObjCoords": pick_object,
    "SegmentationDone": end_segmentation,
    "ViewDirectionChanged": set_view,
    "AlignmentDone": end_alignment,
    "NeedleCreated": create_needle,
    "NeedleSelected": select_needle,
    "NeedleDeleted": delete_needle,
    "NeedleDeselected": deselect_needle,
    "CustomKeyDown": lambda pane: pane.send_key(65),
    "PickPointCountChanged": lambda pane: pane.AddPickPointSphere(1, 1, 1, 255),
    "CutMaskApplied": lambda pane: pane.cut(0, [(0.1, 0.1), (0.9, 0.1), (0.5, 0.15)]),
}


class FromEveryEvent(unittest.TestCase):
    def setUp(self) -> None:
        kv.on_debug_output(lambda text: None)
        self.addCleanup(kv.on_debug_output, None)

    def make(self) -> kv.ScenePane:
        pane = kv.ScenePane.offscreen(WIDTH, HEIGHT, gpu=kv.SOFTWARE)
        self.addCleanup(pane.close)
        set_scene(pane)
        return pane

    def assert_whole(self, pane: kv.ScenePane, name: str) -> None:
        """The pane has its window, draws, and fires the event once more."""
        arrivals: list = []
        with_counter = pane.on(name, lambda *values: arrivals.append(values))
        if name == "ReadyStateChange" and not pane.has_window:
            change_ready_state(pane)
            arrivals.clear()
        set_scene(pane)
        FIRE[name](pane)
        self.assertGreater(len(arrivals), 0, name)
        if name == "ReadyStateChange":
            change_ready_state(pane)
        with_counter.disconnect()
        set_scene(pane)
        self.assertEqual(pane.picture().shape, (HEIGHT, WIDTH, 4))
        self.assertEqual(pane.GetNumObjects(), 1)

    def test_AllButOneEventCanBeFired(self) -> None:
        # SelectViewDirection is fired by no call and no input.
        self.assertEqual({e.name for e in kv.EVENTS} - set(FIRE), {"SelectViewDirection"})

    def test_TheOtherOneArrivesWithEveryNumber(self) -> None:
        pane, got = self.make(), []
        pane.on("SelectViewDirection", lambda *values: got.append(values))
        values = b"".join(struct.pack("=i4xf4x", 3, value) for value in range(6))
        _events.on_event(pane._number, 1, values, 6)
        self.assertEqual(got, [(0, 1, 2, 3, 4, 5)])

    def test_EveryMethodMayBeCalledAlsoTheOneThatFiredIt(self) -> None:
        for name, fire in FIRE.items():
            with self.subTest(event=name):
                pane, depths, calls = self.make(), [], []

                def act(*_values: object, name=name, fire=fire, pane=pane) -> None:
                    if len(depths) >= 2:
                        return
                    depths.append(name)
                    if len(depths) == 1:
                        fire(pane)
                    calls.append(call_every_method(pane))

                connection = pane.on(name, act)
                fire(pane)
                connection.disconnect()
                self.assertGreaterEqual(len(depths), 2)
                self.assertGreaterEqual(min(calls), 114)
                self.assert_whole(pane, name)

    def test_WhatTheyRaiseIsRaisedByTheCall(self) -> None:
        for name, fire in FIRE.items():
            with self.subTest(event=name):
                pane, error = self.make(), Refused(name)

                def act(*_values: object, error=error) -> None:
                    raise error

                connection = pane.on(name, act)
                with self.assertRaises(Refused) as caught:
                    fire(pane)
                self.assertIs(caught.exception, error)
                connection.disconnect()
                self.assert_whole(pane, name)

    def test_TheyMayCloseThePane(self) -> None:
        for name, fire in FIRE.items():
            with self.subTest(event=name):
                pane, arrivals = self.make(), []

                def act(*values: object, pane=pane, arrivals=arrivals) -> None:
                    arrivals.append(values)
                    pane.close()

                pane.on(name, act)
                try:
                    fire(pane)
                except RuntimeError as error:  # of a second call in it
                    self.assertIn("closed", str(error))
                self.assertEqual((len(arrivals), pane.closed), (1, True))


if __name__ == "__main__":
    unittest.main()
