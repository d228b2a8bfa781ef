"""Panes belong to the thread that made them; where they may be dropped, and closed ones."""

import copy
import gc
import inspect
import os
import pickle
import threading
import unittest
import unittest.mock
import warnings
import weakref

import numpy as np

import kv_scenepane as kv
from kv_scenepane import _life


def on_another_thread(function):
    """Runs a function on a new thread and returns what it returned or raised."""
    outcome = []

    def run() -> None:
        try:
            outcome.append(function())
        except BaseException as error:
            outcome.append(error)

    thread = threading.Thread(target=run)
    thread.start()
    thread.join()
    return outcome[0]


# Every method and function of a pane, with arguments that would be right.
CALLS = {
    "cut": (0, [(0, 0), (0.5, 0), (0.5, 0.5)]),
    "align": ([],),
    "pick": (0, 0),
    "on": ("NeedleCreated", print),
    "send_mouse": (0, 0, 0),
    "send_key": (65,),
    "set_scale": (1,),
    "reparent": (1,),
    "resize": (5, 5),
    "object_name": (0,),
    "object_has_colors": (0,),
    "cut_mask": (5,),
    "invoke": ("GetPickMode",),
    "load_properties": (b"",),
    "import_file": ("a.stl",),
}
NOT_CALLS = {"offscreen", "no_picture", "child", "top_level", "closed", "parallel_import", "close"}


def calls_of(pane: kv.ScenePane) -> dict:
    """A function without arguments for every member of a pane."""
    methods = {m.name: m for m in kv.METHODS}
    found = {}
    for name, member in inspect.getmembers(type(pane)):
        if name.startswith("_") or name in NOT_CALLS:
            continue
        if isinstance(member, property):
            found[name] = lambda name=name: getattr(pane, name)
            continue
        arguments = CALLS.get(name, ())
        if name in methods and not any(a[1] in "wp" for a in methods[name].inputs):
            arguments = [0] * len(methods[name].inputs)
        elif name in methods:
            arguments = [None] * len(methods[name].inputs)
        found[name] = lambda name=name, arguments=arguments: getattr(pane, name)(*arguments)
    return found


class OnOtherThreads(unittest.TestCase):
    def test_EveryCallIsARuntimeError(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            calls = calls_of(pane)
            self.assertGreater(len(calls), 150)
            for name, call in calls.items():
                outcome = on_another_thread(call)
                self.assertIsInstance(outcome, RuntimeError, name)
                self.assertRegex(str(outcome), "thread", name)
            for prop in ("DrawMode", "DrawMosaic"):
                self.assertIsInstance(
                    on_another_thread(lambda: setattr(pane, prop, 0)), RuntimeError
                )
            self.assertIsInstance(on_another_thread(pane.close), RuntimeError)
            self.assertFalse(pane.closed)
            self.assertEqual(pane.GetNumObjects(), 0)

    def test_APaneOfAnotherThreadWorksThere(self) -> None:
        def work() -> int:
            with kv.ScenePane.offscreen(20, 10) as pane:
                return pane.picture().shape

        self.assertEqual(on_another_thread(work), (10, 20, 4))

    def test_AThreadWithTheSameNumberIsAnotherThread(self) -> None:
        kept = []

        def make() -> int:
            kept.append(kv.ScenePane.no_picture())
            return threading.get_ident()

        first = on_another_thread(make)
        for _ in range(50):  # numbers of threads are used again, often at once
            number, outcome = on_another_thread(
                lambda: (threading.get_ident(), self.refusal(kept[0]))
            )
            self.assertIn("thread", outcome)
            if number == first:
                break
        with warnings.catch_warnings():
            warnings.simplefilter("ignore", ResourceWarning)
            kept.clear()

    def refusal(self, pane: kv.ScenePane) -> str:
        try:
            pane.GetNumObjects()
        except RuntimeError as error:
            return str(error)
        return ""


class ClosedPanes(unittest.TestCase):
    def test_EveryCallIsARuntimeError(self) -> None:
        pane = kv.ScenePane.no_picture()
        pane.close()
        pane.close()
        self.assertTrue(pane.closed)
        for name, call in calls_of(pane).items():
            with self.assertRaisesRegex(RuntimeError, "closed", msg=name):
                call()
        with self.assertRaises(RuntimeError):
            pane.DrawMode = 1
        with self.assertRaises(RuntimeError):
            pane.__enter__()
        self.assertEqual(repr(pane), "<kv.ScenePane, closed>")

    def test_TheContextManagerClosesAlsoAfterAnException(self) -> None:
        with self.assertRaises(KeyError), kv.ScenePane.no_picture() as pane:
            raise KeyError
        self.assertTrue(pane.closed)

    def test_ARefusedWindowIsAnErrorWithItsReason(self) -> None:
        for make in (
            lambda: kv.ScenePane.child(1, 10, 10, display=":54321"),
            lambda: kv.ScenePane.top_level(10, 10, display=":54321"),
        ):
            with self.assertRaises(kv.Error) as caught:
                make()
            self.assertIn(":54321", str(caught.exception))

    def test_APaneIsNotMadeByItsClass(self) -> None:
        with self.assertRaises(TypeError):
            kv.ScenePane()
        with self.assertRaises(TypeError):
            kv.ScenePane("offscreen")


class Copies(unittest.TestCase):
    def test_AreRefused(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            for make in (copy.copy, copy.deepcopy, pickle.dumps):
                with self.assertRaisesRegex(TypeError, "cannot be copied or pickled"):
                    make(pane)


class Leaks(unittest.TestCase):
    def test_ManyPanesLeaveNeitherMemoryNorDescriptors(self) -> None:
        ids = np.arange(100, dtype=np.int32)
        points = np.zeros((100, 3), np.float32)

        def use() -> None:
            pane = kv.ScenePane.no_picture()
            pane.on("NeedleCreated", lambda number: pane.GetNeedle(number))
            pane.CreateNeedles(id=ids, pinPosXYZ=points, headPosXYZ=points)
            pane.GetNeedles()
            pane.ImportMeshedMeasurement(kv.Mesh(points), "cloud", 0)
            pane.close()

        def resident() -> int:
            with open("/proc/self/statm", encoding="ascii") as stream:
                return int(stream.read().split()[1]) * os.sysconf("SC_PAGESIZE")

        for _ in range(200):
            use()
        gc.collect()
        descriptors, start = len(os.listdir("/proc/self/fd")), resident()
        for _ in range(2000):
            use()
        gc.collect()
        self.assertEqual(len(os.listdir("/proc/self/fd")), descriptors)
        self.assertLess(resident() - start, 8_000_000)  # 4 KB per pane


class DroppedPanes(unittest.TestCase):
    def setUp(self) -> None:
        self.closed = []
        real = _life.library.kv_destroy
        patch = unittest.mock.patch.object(
            _life.library, "kv_destroy", lambda handle: (self.closed.append(handle), real(handle))
        )
        patch.start()
        self.addCleanup(patch.stop)

    def test_AreClosedAtOnce(self) -> None:
        gc.disable()
        self.addCleanup(gc.enable)
        pane = kv.ScenePane.no_picture()
        handle = pane._handle.value
        pane.on("NeedleCreated", print)
        del pane
        self.assertEqual(self.closed, [handle])

    def test_InACycleAreClosedByTheCollector(self) -> None:
        pane = kv.ScenePane.no_picture()
        handle, reference = pane._handle.value, weakref.ref(pane)
        pane.on("NeedleCreated", lambda number: pane.GetNeedle(number))
        pane = None
        gc.collect()
        self.assertIsNone(reference())
        self.assertEqual(self.closed, [handle])

    def test_OnAnotherThreadAreClosedByTheirOwnLater(self) -> None:
        holder = [kv.ScenePane.no_picture()]
        handle = holder[0]._handle.value
        caught = []

        def drop() -> None:
            with warnings.catch_warnings(record=True) as records:
                warnings.simplefilter("always")
                holder.clear()
                caught.extend(records)

        on_another_thread(drop)
        self.assertEqual([record.category for record in caught], [ResourceWarning])
        self.assertEqual(self.closed, [])
        with kv.ScenePane.no_picture() as other:
            self.assertEqual(self.closed, [handle])
            last = other._handle.value  # may have the same address
        self.assertEqual(self.closed, [handle, last])

    def test_AForkedProcessDoesNotTouchThem(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            process = os.fork()
            if process == 0:
                closed = pane.closed
                try:
                    pane.GetNumObjects()
                    os._exit(1)
                except RuntimeError:
                    os._exit(0 if closed and not self.closed else 2)
            self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]), 0)
            self.assertEqual(pane.GetNumObjects(), 0)


if __name__ == "__main__":
    unittest.main()
