"""What runs between any two steps of Python: destructors by the garbage collector, and handlers of
signals. They may close and change the pane whose call is running; what they raise is not lost.
"""

import contextlib
import gc
import signal
import sys
import unittest
from collections import Counter
from unittest import mock

import numpy as np

import kv_scenepane as kv

CORNERS = np.array([[0, 0, 0], [10, 0, 0], [0, 10, 0]], np.float32)
FACES = np.array([[0, 1, 2]], np.int32)
LASSO = [(0.1, 0.1), (0.9, 0.1), (0.9, 0.45), (0.1, 0.45)]


class Bomb:
    """Calls a function when the collector finds it."""

    def __init__(self, function) -> None:
        self.itself = self
        self.function = function

    def __del__(self) -> None:
        self.function()


@contextlib.contextmanager
def collected_after(allocations: int):
    """Runs the collector after a number of objects were made."""
    limits = gc.get_threshold()
    gc.set_threshold(allocations, 1, 1)
    gc.enable()
    try:
        yield
    finally:
        gc.set_threshold(*limits)


CALLS = {
    "GetNumObjects": kv.ScenePane.GetNumObjects,
    "ImportMeshFromMemory": lambda pane: pane.ImportMeshFromMemory(None, None, CORNERS, FACES),
    "DrawMode": lambda pane: pane.DrawMode,
    "set DrawMode": lambda pane: setattr(pane, "DrawMode", 2),
    "GetNeedles": kv.ScenePane.GetNeedles,
    "GetViewParams": kv.ScenePane.GetViewParams,
    "GetMeshDataSize": lambda pane: pane.GetMeshDataSize(0),
    "save_properties": kv.ScenePane.save_properties,
    "object_name": lambda pane: pane.object_name(0),
    "undo_steps": lambda pane: pane.undo_steps,
    "alignment": lambda pane: pane.alignment,
    "cut_save_entries": kv.ScenePane.cut_save_entries,
    "GetCutMasks": kv.ScenePane.GetCutMasks,
    "SetHpsSourceApp": lambda pane: pane.SetHpsSourceApp("a", "b"),
    "process_events": kv.ScenePane.process_events,
    "send_key": lambda pane: pane.send_key(65),
}


class Destructors(unittest.TestCase):
    def setUp(self) -> None:
        gc.disable()
        self.addCleanup(gc.enable)
        self.addCleanup(gc.collect)
        self.ignored: list = []
        patch = mock.patch.object(sys, "unraisablehook", self.ignored.append)
        patch.start()
        self.addCleanup(patch.stop)

    def test_MayCloseThePaneOfACall(self) -> None:
        for name, call in CALLS.items():
            closed = 0
            for count in range(1, 60):
                pane = kv.ScenePane.no_picture()
                pane.ImportMeshFromMemory(None, None, CORNERS, FACES)
                gc.collect()
                gc.disable()
                Bomb(pane.close)
                with collected_after(count), contextlib.suppress(RuntimeError):
                    for _ in range(5):
                        call(pane)
                closed += pane.closed
                pane.close()
            self.assertGreater(closed, 10, name)

    def test_MayNotTakeTheMasksThatAreRead(self) -> None:
        vertices = np.random.default_rng(1).random((300, 3), np.float32)
        triangles = np.arange(300, dtype=np.int32).reshape(-1, 3)
        pane = kv.ScenePane.offscreen(32, 32, gpu=kv.SOFTWARE)
        self.addCleanup(pane.close)
        for read in (pane.GetCutMasks, lambda: pane.cut_save_entries(planned=True)):
            for count in range(1, 40):
                pane.ClearData()
                pane.ImportMeshFromMemory(None, None, vertices, triangles)
                pane.CenterView()
                pane.cut(0, LASSO)
                gc.collect()
                gc.disable()
                Bomb(pane.ClearData)
                with collected_after(count):
                    for row in read():
                        self.assertIn(type(row).__name__, ("CutMask", "CutSaveEntry"))
                gc.collect()
        texts = {str(report.exc_value) for report in self.ignored}
        self.assertEqual({text.split(",")[0] for text in texts}, {"the pane is being read"})

    def test_MayNotChangeWhatAnIndexWasCheckedAgainst(self) -> None:
        pane = kv.ScenePane.no_picture()
        self.addCleanup(pane.close)
        for count in range(1, 60):
            pane.ClearData()
            pane.ImportMeshFromMemory(None, None, CORNERS, FACES)
            gc.collect()
            gc.disable()
            Bomb(pane.ClearData)
            with collected_after(count), contextlib.suppress(IndexError):
                self.assertEqual(pane.GetMeshDataSize(0), (3, 1))
            gc.collect()


class Interrupted(Exception):
    """What the handler of the signal raises."""


class Signals(unittest.TestCase):
    def setUp(self) -> None:
        self.raised = 0
        self.addCleanup(signal.signal, signal.SIGALRM, signal.getsignal(signal.SIGALRM))
        self.addCleanup(signal.setitimer, signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, self.interrupt)
        self.addCleanup(kv.on_debug_output, None)
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)
        self.pane.CreateNeedle(1, 0, 0, 0, 1, 1, 1)

    def interrupt(self, *_arguments: object) -> None:
        self.raised += 1
        raise Interrupted

    def outcomes(self, call, rounds: int) -> Counter:
        """What a call that is repeated until a signal arrives has raised."""
        found: Counter = Counter()
        for place in range(rounds):
            before = self.raised
            try:
                signal.setitimer(signal.ITIMER_REAL, 0.0003 + place % 37 * 1e-6)
                while self.raised == before:
                    call()
                found["nothing"] += 1
            except BaseException as error:
                found[type(error).__name__] += 1
        return found

    def test_AnExceptionInOrBeforeACallbackReachesTheCallerAsItself(self) -> None:
        self.pane.on("NeedleSelected", lambda number: None)
        found = self.outcomes(lambda: self.pane.SelectNeedle(1), 1000)
        self.assertEqual(found, {"Interrupted": 1000})

    def test_OneInTheDebuggerOutputToo(self) -> None:
        kv.on_debug_output(lambda text: None)
        found = self.outcomes(lambda: self.pane.GetObjectBoundingBox(5), 300)
        self.assertEqual(found, {"Interrupted": 300})

    def test_ThePaneGoesOnWorking(self) -> None:
        numbers: list = []
        self.pane.on("NeedleSelected", numbers.append)
        self.outcomes(lambda: self.pane.SelectNeedle(1), 20)
        numbers.clear()
        self.pane.SelectNeedle(1)
        self.assertEqual(numbers, [1])


class Recursion(unittest.TestCase):
    def test_ReachesTheCallerAsItselfAtAnyDepth(self) -> None:
        pane = kv.ScenePane.no_picture()
        self.addCleanup(pane.close)
        self.addCleanup(sys.setrecursionlimit, sys.getrecursionlimit())
        pane.CreateNeedle(1, 0, 0, 0, 1, 1, 1)
        pane.on("NeedleSelected", lambda number: pane.SelectNeedle(1))
        depth, frame = 0, sys._getframe()
        while frame is not None:
            depth, frame = depth + 1, frame.f_back
        found: Counter = Counter()
        with mock.patch.object(sys, "unraisablehook", lambda report: None):
            for limit in range(depth + 100, depth + 160):
                try:
                    sys.setrecursionlimit(limit)
                    pane.SelectNeedle(1)
                    found["nothing"] += 1
                except BaseException as error:
                    sys.setrecursionlimit(1000)
                    found[type(error).__name__] += 1
        sys.setrecursionlimit(1000)
        self.assertEqual(found, {"RecursionError": 60})
        self.assertEqual(pane.GetNumberOfNeedles(), 1)


if __name__ == "__main__":
    unittest.main()
