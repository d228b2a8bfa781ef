"""The names that users read: in tracebacks, reasons, help(), dir(); records and connections."""

import os
import pickle
import pydoc
import re
import tempfile
import unittest

import kv_scenepane as kv


class TheModule(unittest.TestCase):
    def test_IsTheModuleOfAllItsNames(self) -> None:
        for name in kv.__all__:
            value = getattr(kv, name)
            if hasattr(value, "__module__"):
                self.assertEqual((name, value.__module__), (name, "kv_scenepane"))

    def test_ListsNothingOfOthers(self) -> None:
        visible = {name for name in dir(kv) if not name.startswith("_")}
        self.assertEqual(visible - {"qt"}, set(kv.__all__))

    def test_GivesItsRecordsNamesThatCanBePickled(self) -> None:
        for record in (kv.CutOutcome.WRITTEN, kv.ClipHeight(True, 1.0, 2), kv.Error("a", "b")):
            self.assertEqual(repr(pickle.loads(pickle.dumps(record))), repr(record))


class APane(unittest.TestCase):
    def test_IsNotMadeByItsClass(self) -> None:
        with self.assertRaises(TypeError) as caught:
            kv.ScenePane()
        for maker in ("offscreen()", "no_picture()", "child()", "top_level()"):
            self.assertIn(maker, str(caught.exception))

    def test_BeginsItsHelpWithItsMakers(self) -> None:
        text = re.sub("\b|\\w\b", "", pydoc.plain(pydoc.render_doc(kv.ScenePane)))
        start = text[: text.index("Method resolution order")]
        self.assertNotIn("request", start)
        for maker in ("offscreen()", "no_picture()", "child()", "top_level()"):
            self.assertIn(maker, start)

    def test_IsNamedWhereArgumentsAreMissingOrTooMany(self) -> None:
        with kv.ScenePane.no_picture() as pane:
            for arguments in ((), (1, 2, 3)):
                with self.assertRaisesRegex(TypeError, r"^(ScenePane\.)?SetPickMode\(\)"):
                    pane.SetPickMode(*arguments)


class ReasonsOfImports(unittest.TestCase):
    def test_HaveNoNamesOfFunctions(self) -> None:
        rows = [
            ("ImportScan", "short.pcm", b"KVPC\n"),
            ("ImportScan", "none.pcm", None),
            ("ImportMesh", "none.ply", None),
            ("ImportMesh", "text.stl", b"solid"),
            ("ImportMesh", "other.xyz", b"1"),
        ]
        with tempfile.TemporaryDirectory() as folder, kv.ScenePane.no_picture() as pane:
            for method, name, data in rows:
                path = os.path.join(folder, name)
                if data is not None:
                    with open(path, "wb") as stream:
                        stream.write(data)
                arguments = (path,) if method == "ImportMesh" else (path, 0)
                with self.subTest(name=name), self.assertRaises(kv.ImportFailed) as caught:
                    getattr(pane, method)(*arguments)
                error = caught.exception
                self.assertTrue(error.reason.startswith(f"{path}: "), error.reason)
                self.assertNotIn("\n", error.reason)
                self.assertEqual(str(error), f"{method}(): {error.reason}")


class Events(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)

    def needle_event(self, number: int) -> kv.Event:
        events = self.pane.events(timeout=0)
        self.pane.CreateNeedle(number, 0, 0, 0, 0, 0, 1)
        return next(event for event in events if event.name == "NeedleCreated")

    def test_ListNoNameTwice(self) -> None:
        names = dir(self.needle_event(1))
        self.assertEqual(len(names), len(set(names)))
        self.assertIn("id", names)

    def test_AreEqualByTypeAndArguments(self) -> None:
        first = self.needle_event(1)
        copy = pickle.loads(pickle.dumps(first))
        self.assertEqual((copy, hash(copy), repr(copy)), (first, hash(first), repr(first)))
        self.assertNotEqual(first, self.needle_event(2))
        self.assertNotEqual(first, (1,))

    def test_EndWithTheContextOfTheirConnection(self) -> None:
        numbers = []
        with self.pane.on("NeedleCreated", numbers.append) as connection:
            self.pane.CreateNeedle(1, 0, 0, 0, 0, 0, 1)
            self.assertTrue(connection.connected)
        self.pane.CreateNeedle(2, 0, 0, 0, 0, 0, 1)
        self.assertEqual((numbers, connection.connected), ([1], False))


if __name__ == "__main__":
    unittest.main()
