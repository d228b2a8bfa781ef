"""Texts of exceptions: each names what was called, once, and the argument."""

import unittest

import kv_scenepane as kv


class Messages(unittest.TestCase):
    def setUp(self) -> None:
        self.pane = kv.ScenePane.no_picture()
        self.addCleanup(self.pane.close)

    def text_of(self, call) -> str:
        with self.assertRaises(Exception) as caught:
            call()
        return str(caught.exception)

    def test_NameAMethodOnce(self) -> None:
        for name, call in (
            ("reparent", lambda: self.pane.reparent(5)),
            ("picture", self.pane.picture),
            ("graphics_info", self.pane.graphics_info),
            ("load_properties", lambda: self.pane.load_properties(b"nothing")),
            ("SetClipPlaneEnabled", self.without_registry),
        ):
            with self.subTest(name=name):
                text = self.text_of(call)
                self.assertTrue(text.startswith(f"{name}(): "), text)
                self.assertNotIn("kv_", text)
                self.assertNotRegex(text[len(name) :], rf"{name}(\(|:)")

    def without_registry(self) -> None:
        raise kv.Error("SetClipPlaneEnabled: the plane is gone", "SetClipPlaneEnabled")

    def test_APropertyHasNoParentheses(self) -> None:
        for value, reason in (("flat", "must be an int, not str"), (40000, "is 40000")):
            text = self.text_of(lambda value=value: setattr(self.pane, "DrawMode", value))
            self.assertTrue(text.startswith("DrawMode: the value " + reason), text)

    def test_APairThatIsNoneSaysWhatAPairIs(self) -> None:
        with self.assertRaisesRegex(TypeError, r"pair 0 must be .*\(moving, fixed\)"):
            self.pane.align([1])

    def test_ATextThatCannotBeEncodedNamesItsArgument(self) -> None:
        for call in (
            lambda: self.pane.SetHpsSourceApp("a", "b\ud800"),
            lambda: self.pane.SetHpsSourceApp(appName="a", appVersion="\ud800"),
        ):
            with self.assertRaisesRegex(ValueError, r"SetHpsSourceApp\(\): appVersion .*surrogate"):
                call()
        with self.assertRaisesRegex(ValueError, r"ImportMesh\(\): path .*surrogate"):
            self.pane.ImportMesh("\ud800.ply")

    def test_OfAnErrorKeepItsReason(self) -> None:
        error = kv.Error("kv_reparent: 5 is no window", "reparent")
        self.assertEqual(error.reason, "5 is no window")
        self.assertEqual(str(error), "reparent(): 5 is no window")
        self.assertEqual(str(kv.ImportFailed("", "ImportMesh")), "ImportMesh(): nothing was added")


if __name__ == "__main__":
    unittest.main()
