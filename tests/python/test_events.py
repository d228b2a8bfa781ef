"""Events: callbacks, what they raise, what they may call, and the iterator."""

import gc
import math
import signal
import time
import traceback
import unittest
import weakref

import numpy as np

import kv_scenepane as kv

CORNERS = np.array([[-1, -1, 0], [1, -1, 0], [0, 1, 0]], np.float32)
FACES = np.array([[0, 1, 2]], np.int32)


class Refused(Exception):
    """What the callbacks of these tests raise."""


class WithPane(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = self.make()
        self.addCleanup(self.pane.close)

    def make(self) -> kv.ScenePane:
        return kv.ScenePane.no_picture()

    def needle(self, number: int) -> bool:
        return self.pane.CreateNeedle(number, 0, 0, 0, 0, 0, 1)


class Callbacks(WithPane):
    def test_GetTheArgumentsInOrder(self) -> None:
        got = []
        self.pane.on("NeedleCreated", lambda *values: got.append(values))
        self.pane.on(11, lambda count: got.append(count))
        self.pane.on("CustomKeyDown", lambda *values: got.append(values))
        self.pane.on("ViewDirectionChanged", lambda *values: got.append(values))
        self.needle(-7)
        self.pane.AddPickPointSphere(0, 0, 0, 0)
        self.pane.send_key(65, count=2, flags=16384)
        self.pane.TracingMode(1)
        self.pane.SetViewParams(0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0)
        self.assertEqual(got[:3], [(-7,), 1, (65, 2, 16384)])
        np.testing.assert_allclose(got[3], (1, 0, 0), atol=1e-6)
        self.assertEqual([type(v) for v in got[3]], [float] * 3)

    def test_AreCalledInTheOrderOfTheirConnections(self) -> None:
        got = []
        first = self.pane.on("NeedleCreated", lambda number: got.append(("first", number)))
        self.pane.on("NeedleCreated", lambda number: got.append(("second", number)))
        self.needle(1)
        first.disconnect()
        first.disconnect()
        self.assertFalse(first.connected)
        self.needle(2)
        self.assertEqual(got, [("first", 1), ("second", 1), ("second", 2)])

    def test_ADecoratedFunctionIsAConnection(self) -> None:
        got = []

        @self.pane.on("NeedleCreated")
        def created(number: int) -> None:
            """Keeps the number."""
            got.append(number)

        self.needle(4)
        created(5)
        created.disconnect()
        self.needle(6)
        self.assertEqual(got, [4, 5])
        self.assertEqual((created.__name__, created.__doc__), ("created", "Keeps the number."))

    def test_MayDisconnectThemselvesAndOthers(self) -> None:
        got = []

        def once(number: int) -> None:
            got.append(("once", number))
            connection.disconnect()
            other.disconnect()

        connection = self.pane.on("NeedleCreated", once)
        other = self.pane.on("NeedleCreated", lambda number: got.append(("other", number)))
        self.needle(1)
        self.needle(2)
        self.assertEqual(got, [("once", 1)])

    def test_MayCauseTheSameEvent(self) -> None:
        got = []

        @self.pane.on("NeedleCreated")
        def created(number: int) -> None:
            got.append(
                (number, self.pane.GetNumberOfNeedles(), self.pane.GetNeedle(number).headPosX)
            )
            if number < 3:
                self.pane.CreateNeedle(number + 1, 0, 0, 0, number + 1, 0, 0)

        self.assertIs(self.pane.CreateNeedle(1, 0, 0, 0, 1, 0, 0), True)
        self.assertEqual(got, [(1, 1, 1), (2, 2, 2), (3, 3, 3)])

    def test_MayCloseThePane(self) -> None:
        self.pane.on("NeedleCreated", lambda number: self.pane.close())
        self.assertIs(self.needle(1), True)
        self.assertTrue(self.pane.closed)
        with self.assertRaisesRegex(RuntimeError, "closed"):
            self.pane.GetNumberOfNeedles()

    def test_UnknownEventsAndFunctionsAreRefused(self) -> None:
        for event in ("needleCreated", 99, "SetPickMode", True):
            with self.assertRaises(ValueError):
                self.pane.on(event, print)
        with self.assertRaises(TypeError):
            self.pane.on(3.5, print)
        with self.assertRaises(TypeError):
            self.pane.on("NeedleCreated", 5)


class WhatCallbacksRaise(WithPane):
    def refuse(self, *_arguments) -> None:
        raise Refused("no")

    def test_ReachesTheCallerOfTheMethod(self) -> None:
        error = Refused("this object")

        def raises(_number: int) -> None:
            raise error

        connection = self.pane.on("NeedleCreated", raises)
        try:  # assertRaises() drops the traceback
            self.needle(1)
            self.fail("nothing was raised")
        except Refused as caught:
            self.assertIs(caught, error)
            names = [frame.name for frame in traceback.extract_tb(caught.__traceback__)]
        self.assertIn("raises", names)
        self.assertIn("needle", names)
        connection.disconnect()
        self.assertTrue(self.needle(2))
        self.assertEqual(self.pane.GetNeedles().id.tolist(), [1, 2])

    def test_EndsTheCallAfterTheFirst(self) -> None:
        for number in range(4):
            self.needle(number)
        got = []

        @self.pane.on("NeedleDeleted")
        def deleted(number: int) -> None:
            got.append(number)
            raise Refused(number)

        for expected in (0, 1):
            with self.assertRaises(Refused) as caught:
                self.pane.DeleteNeedles()
            self.assertEqual(caught.exception.args, (expected,))
        deleted.disconnect()
        self.pane.DeleteNeedles()
        self.assertEqual((got, self.pane.GetNumberOfNeedles()), ([0, 1], 0))

    def test_PassesThroughNestedCalls(self) -> None:
        got = []

        @self.pane.on("NeedleCreated")
        def created(number: int) -> None:
            if number == 3:
                raise Refused(number)
            try:
                self.needle(number + 1)
            except Refused as error:
                got.append((number, error.args))
                if number == 1:
                    return
                raise

        self.assertTrue(self.needle(1))
        self.assertEqual(got, [(2, (3,)), (1, (3,))])
        self.assertEqual(self.pane.GetNumberOfNeedles(), 3)

    def test_IsRaisedByProcessEventsAndInputToo(self) -> None:
        with kv.ScenePane.offscreen(60, 40) as pane:
            pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)
            pane.CenterView()
            pane.on("CustomKeyDown", self.refuse)
            with self.assertRaises(Refused):
                pane.send_key(65)
            pane.SetPickMode(2)
            connection = pane.on("SelectObjCoords", self.refuse)
            with self.assertRaises(Refused):
                pane.send_mouse(kv.MouseKind.DOUBLE_CLICK, 30, 20, kv.MOUSE_LEFT)
            pane.send_mouse(kv.MouseKind.LEFT_UP, 30, 20)
            # In the delayed scheme a click is handled by process_events(), after a tenth of a
            # second.
            pane.SetIGDRotation(1)
            pane.send_mouse(kv.MouseKind.LEFT_DOWN, 30, 20, kv.MOUSE_LEFT)
            pane.send_mouse(kv.MouseKind.LEFT_UP, 30, 20)
            with self.assertRaises(Refused):
                deadline = time.monotonic() + 10
                while time.monotonic() < deadline:
                    pane.process_events()
                    time.sleep(0.01)
            connection.disconnect()
            pane.process_events()
            self.assertEqual(pane.picture().shape, (40, 60, 4))

    def test_KeyboardInterruptsTooEndTheCall(self) -> None:
        def interrupt(_number: int) -> None:
            raise KeyboardInterrupt

        connection = self.pane.on("NeedleCreated", interrupt)
        with self.assertRaises(KeyboardInterrupt):
            self.needle(1)
        connection.disconnect()
        self.assertTrue(self.needle(2))

    def test_OfAClosedPaneReachesTheCallerToo(self) -> None:
        def closes(_number: int) -> None:
            self.pane.close()
            raise Refused("closed")

        self.pane.on("NeedleCreated", closes)
        with self.assertRaises(Refused):
            self.needle(1)
        self.assertTrue(self.pane.closed)

    def test_OfAnotherPaneIsRaisedByItsOwnCall(self) -> None:
        with kv.ScenePane.no_picture() as other:
            other.on("NeedleCreated", self.refuse)
            got = []

            @self.pane.on("NeedleCreated")
            def created(number: int) -> None:
                try:
                    other.CreateNeedle(number, 0, 0, 0, 0, 0, 1)
                except Refused:
                    got.append(number)

            self.assertTrue(self.needle(5))
            self.assertEqual(got, [5])

    def test_LeavesNoReferenceToThePane(self) -> None:
        pane = kv.ScenePane.no_picture()
        pane.on("NeedleCreated", self.refuse)
        with self.assertRaises(Refused):
            pane.CreateNeedle(1, 0, 0, 0, 0, 0, 1)
        reference = weakref.ref(pane)
        gc.disable()
        self.addCleanup(gc.enable)
        del pane
        self.assertIsNone(reference())


class Hooks(unittest.TestCase):
    def test_TheAboutHookGetsTitleAndLine(self) -> None:
        got = []
        with kv.ScenePane.offscreen(
            30, 20, on_about=lambda title, line: got.append((title, line))
        ) as pane:
            pane.AboutBox()
        self.assertEqual(got, [("About KV_ScenePane Control", "KV_ScenePane Control, Version 5.5")])

    def test_WhatAHookRaisesReachesTheCaller(self) -> None:
        def refuse(*_texts: str) -> None:
            raise Refused("hook")

        with kv.ScenePane.offscreen(30, 20, on_about=refuse, on_message=refuse) as pane:
            with self.assertRaises(Refused):
                pane.AboutBox()
            with self.assertRaises(Refused):
                pane.RecreateOpenglContext(9, 9, 0)

    def test_TheMessageHookGetsTheTextOfARefusedContext(self) -> None:
        got = []
        with kv.ScenePane.offscreen(30, 20, on_message=got.append) as pane:
            self.assertIs(pane.RecreateOpenglContext(9, 9, 0), True)
            self.assertFalse(pane.has_window)
        self.assertEqual(len(got), 1)
        self.assertIn("9.9", got[0])

    def test_OnlyFunctionsAreHooks(self) -> None:
        with self.assertRaises(TypeError):
            kv.ScenePane.offscreen(30, 20, on_message=5)


class TheIterator(WithPane):
    def make(self) -> kv.ScenePane:
        return kv.ScenePane.offscreen(60, 40)

    def test_YieldsWhatWasFiredSinceItWasMade(self) -> None:
        self.needle(1)
        events = self.pane.events(timeout=0)
        self.needle(2)
        self.pane.AddPickPointSphere(0, 0, 0, 0)
        got = list(events)
        self.assertEqual(
            [(e.name, e.event_id, e.arguments) for e in got],
            [("NeedleCreated", 6, (2,)), ("PickPointCountChanged", 11, (1,))],
        )
        self.assertEqual(got[0].id, 2)  # the argument id of the event
        self.assertEqual((got[1].newCount, got[1].id), (1, 11))
        self.assertEqual(repr(got[0]), "Event(NeedleCreated: id=2)")
        with self.assertRaises(AttributeError):
            got[0].newCount

    def test_WaitsForTheTimeout(self) -> None:
        start = time.monotonic()
        self.assertEqual(list(self.pane.events(timeout=0.2)), [])
        self.assertGreaterEqual(time.monotonic() - start, 0.19)

    def test_MayWaitLongerThanAnyTimer(self) -> None:
        for timeout in (math.inf, 1e9, 1e300):
            with kv.ScenePane.no_picture() as pane:
                # Another thread makes the pane's descriptor no more ready: the alarm ends the wait.
                self.assertEqual(self.interrupted(pane.events(timeout=timeout)), "woken")
        self.assertEqual(list(self.pane.events(timeout=-1)), [])
        with self.assertRaisesRegex(ValueError, "timeout is not a number"):
            self.pane.events(timeout=math.nan)
        with self.assertRaisesRegex(TypeError, "timeout must be a float"):
            self.pane.events(timeout="1")

    def interrupted(self, events: kv.EventIterator) -> str:
        """What a wait that a signal ends has raised."""

        def wake(*_arguments: object) -> None:
            raise Refused("woken")

        former = signal.signal(signal.SIGALRM, wake)
        signal.setitimer(signal.ITIMER_REAL, 0.1)
        try:
            next(events)
        except Refused as error:
            return str(error)
        finally:
            signal.signal(signal.SIGALRM, former)
        return "an event"

    def test_HandlesInputWhileItWaits(self) -> None:
        self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)
        self.pane.CenterView()
        self.pane.SetPickMode(2)
        self.pane.SetIGDRotation(1)
        events = self.pane.events(timeout=30)
        self.pane.send_mouse(kv.MouseKind.LEFT_DOWN, 30, 20, kv.MOUSE_LEFT)
        self.pane.send_mouse(kv.MouseKind.LEFT_UP, 30, 20)
        event = next(events)
        self.assertEqual((event.name, event.idx, event.mouseX), ("SelectObjCoords", 0, 30))

    def test_EndsWhenThePaneIsClosed(self) -> None:
        got = []
        for event in self.pane.events(timeout=0.01):
            got.append(event)
        events = self.pane.events()
        self.needle(1)
        for event in events:
            got.append(event.name)
            self.pane.close()
        self.assertEqual(got, ["NeedleCreated"])

    def test_RaisesWhatACallbackRaises(self) -> None:
        def refuse(*_values) -> None:
            raise Refused

        self.test_HandlesInputWhileItWaits()
        self.pane.on("SelectObjCoords", refuse)
        events = self.pane.events(timeout=30)
        self.pane.send_mouse(kv.MouseKind.LEFT_DOWN, 30, 20, kv.MOUSE_LEFT)
        self.pane.send_mouse(kv.MouseKind.LEFT_UP, 30, 20)
        with self.assertRaises(Refused):
            next(events)
        self.assertEqual(next(events).name, "SelectObjCoords")

    def test_DroppedIteratorsCollectNothing(self) -> None:
        events = self.pane.events(timeout=0)
        reference = weakref.ref(events)
        del events
        self.assertIsNone(reference())


class Cuts(WithPane):
    def make(self) -> kv.ScenePane:
        return kv.ScenePane.offscreen(200, 160)

    def test_AMaskCanBeReadInItsEventAndAfterwards(self) -> None:
        points = np.stack(np.meshgrid(np.linspace(-1, 1, 21), np.linspace(-1, 1, 21)), -1).reshape(
            -1, 2
        )
        vertices = np.c_[points, np.zeros(len(points))].astype(np.float32)
        corner = (np.arange(20)[:, None] * 21 + np.arange(20)).ravel()
        faces = np.concatenate(
            [
                np.stack([corner, corner + 1, corner + 22], 1),
                np.stack([corner, corner + 22, corner + 21], 1),
            ]
        )
        self.pane.ImportMeshFromMemory(vertices=vertices, triangles=faces.astype(np.int32))
        self.pane.CenterView()
        seen = []
        self.pane.on("CutMaskApplied", lambda address: seen.append(self.pane.cut_mask(address)))
        done = self.pane.events(timeout=0)
        left = [(0, 0), (0.5, 0), (0.5, 0.99), (0, 0.99)]
        self.assertIs(self.pane.cut(kv.SegmentationMode.PolygonInside, left), True)
        self.assertEqual([event.name for event in done], ["CutMaskApplied", "SegmentationDone"])
        self.assertEqual((self.pane.undo_steps, len(seen)), (1, 1))
        mask = seen[0]
        self.assertEqual(
            (mask.kind, mask.mask.shape, mask.viewport[2:]), (0, (160, 200), (200, 160))
        )
        self.assertTrue(mask.mask[80, 40])
        self.assertFalse(mask.mask[80, 160])
        self.assertIsNone(mask.depth)
        self.assertEqual(mask.projection.shape, (4, 4))
        self.assertEqual([m.address for m in self.pane.GetCutMasks()], [mask.address])
        np.testing.assert_array_equal(self.pane.cut_mask(mask.address).mask, mask.mask)
        entry = self.pane.cut_save_entries(planned=True)[0]
        self.assertEqual((entry.outcome, entry.cut_count), (kv.CutOutcome.NOT_FROM_PCM, 1))
        self.assertEqual(self.pane.PerformUndo(), 0)
        for address in (0, 1, mask.address + 8, -1):
            with self.assertRaisesRegex(ValueError, "cut mask"):
                self.pane.cut_mask(address)

    def test_TheMaskOfAVisibleCutHasDepths(self) -> None:
        self.pane.ImportMeshFromMemory(vertices=CORNERS, triangles=FACES)
        self.pane.CenterView()
        masks = []
        self.pane.on("CutMaskApplied", lambda address: masks.append(self.pane.cut_mask(address)))
        self.pane.cut(2, [(0, 0), (0.99, 0), (0.99, 0.99), (0, 0.99)])
        self.assertEqual(masks[0].depth.shape, (160, 200))
        # The triangle is wide at the bottom: its depth is there and the background's at the upper
        # corners.
        self.assertLess(masks[0].depth[80, 100], 1)
        self.assertEqual(masks[0].depth[0, 0], 1)


if __name__ == "__main__":
    unittest.main()
