"""Viewers in a process that was forked from one that drew: the threads of graphics drivers end."""

import subprocess
import sys
import unittest

CHILD = """
import os
import kv_scenepane as kv

{parent}
child = os.fork()
if child == 0:
    try:
        with kv.ScenePane.{maker} as pane:
            print("made", pane.GetNumObjects(), flush=True)
    except kv.Error as error:
        print(error.reason, flush=True)
    os._exit(0)
os.waitpid(child, 0)
"""
OPEN = "pane = kv.ScenePane.offscreen(32, 32)"
CLOSED = "kv.ScenePane.offscreen(32, 32).close()"


class AFork(unittest.TestCase):
    def output(self, parent: str, maker: str) -> str:
        code = CHILD.format(parent=parent, maker=maker)
        done = subprocess.run(
            [sys.executable, "-c", code], capture_output=True, text=True, timeout=60
        )
        self.assertEqual((done.stderr, done.returncode), ("", 0))
        return done.stdout

    def test_AfterADrawingViewerRefusesAnotherOne(self) -> None:
        for parent in (OPEN, CLOSED):
            for maker in ("offscreen(32, 32)", "top_level(32, 32)", "child(1, 32, 32)"):
                with self.subTest(parent=parent, maker=maker):
                    text = self.output(parent, maker)
                    self.assertIn("was made before the fork", text)
                    self.assertIn("spawn or forkserver", text)

    def test_AfterADrawingViewerAllowsOneWithoutPictures(self) -> None:
        self.assertEqual(self.output(OPEN, "no_picture()"), "made 0\n")

    def test_BeforeTheFirstDrawingViewerAllowsAny(self) -> None:
        for parent in ("", "pane = kv.ScenePane.no_picture()"):
            with self.subTest(parent=parent):
                self.assertEqual(self.output(parent, "offscreen(32, 32)"), "made 0\n")


if __name__ == "__main__":
    unittest.main()
