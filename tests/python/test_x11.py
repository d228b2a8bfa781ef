"""The viewer in an X11 window of the test: as a child by its id, and in the example host."""

import os
import subprocess
import sys
import unittest
from pathlib import Path

import numpy as np
from x11_client import X11Client
from x11_server import X11Server, wait_until

import kv_scenepane as kv

BLUE, GREEN = 0xFF0000, 0x00FF00  # 0x00BBGGRR
EXAMPLE = Path(os.environ["KV_SOURCE_DIR"]) / "examples/python/x11_host.py"


class ChildOfAWindow(unittest.TestCase):
    def setUp(self) -> None:
        self.server = X11Server()
        self.addCleanup(self.server.close)
        self.client = X11Client(self.server.name)
        self.addCleanup(self.client.__exit__)
        self.window = self.client.make_window(10, 20, 400, 300)

    def child(self, width: int = 400, height: int = 300, **options) -> kv.ScenePane:
        pane = kv.ScenePane.child(self.window, width, height, display=self.server.name, **options)
        self.addCleanup(pane.close)
        return pane

    def shows(self, pane: kv.ScenePane, x: int, y: int, color: tuple) -> bool:
        def is_shown() -> bool:
            pane.process_events()
            return self.client.screen_color(10 + x, 20 + y) == color

        return wait_until(is_shown)

    def test_fills_the_window(self) -> None:
        pane = self.child()
        pane.SetBackgroundColors(BLUE, BLUE)
        self.assertEqual(self.client.children(self.window), [pane.native_window])
        self.assertTrue(self.shows(pane, 1, 1, (0, 0, 255)))
        self.assertTrue(self.shows(pane, 398, 298, (0, 0, 255)))

    def test_has_a_place_in_the_window(self) -> None:
        pane = self.child(100, 80, x=50, y=40)
        pane.SetBackgroundColors(GREEN, GREEN)
        self.assertTrue(self.shows(pane, 51, 41, (0, 255, 0)))
        self.assertTrue(self.shows(pane, 148, 118, (0, 255, 0)))
        self.assertEqual(self.client.screen_color(10 + 48, 20 + 42), (0, 0, 0))
        self.assertEqual(self.client.screen_color(10 + 152, 20 + 42), (0, 0, 0))

    def test_moves_into_another_window(self) -> None:
        pane = self.child()
        pane.SetBackgroundColors(BLUE, BLUE)
        self.assertTrue(self.shows(pane, 1, 1, (0, 0, 255)))
        other = self.client.make_window(500, 20, 400, 300)
        pane.reparent(other, 30, 0)
        self.assertEqual(self.client.children(other), [pane.native_window])
        self.assertTrue(self.shows(pane, 490 + 31, 1, (0, 0, 255)))

    def test_a_number_that_is_no_window_is_refused_with_the_reason(self) -> None:
        with self.assertRaises(kv.Error) as caught:
            kv.ScenePane.child(0x7FFFFFF, 10, 10, display=self.server.name)
        self.assertIn("window", str(caught.exception))
        pane = self.child()
        with self.assertRaises(RuntimeError):
            pane.reparent(0x7FFFFFF)
        self.assertTrue(pane.has_window)

    def test_a_display_that_does_not_exist_is_refused_with_the_reason(self) -> None:
        with self.assertRaises(kv.Error) as caught:
            kv.ScenePane.child(self.window, 10, 10, display=":999")
        self.assertIn(":999", str(caught.exception))

    def test_loses_its_window_with_the_window_around_it(self) -> None:
        pane = self.child()
        self.assertTrue(pane.has_window)
        self.client.destroy_window(self.window)
        self.assertTrue(wait_until(lambda: pane.process_events() or not pane.has_window))
        self.assertEqual(pane.native_window, 0)
        # Calls go on to be answered.
        self.assertEqual(pane.GetNumObjects(), 0)
        pane.close()

    def test_input_comes_from_the_pointer_and_wakes_the_iterator(self) -> None:
        pane = self.child()
        triangle = np.array([[-1, -1, 0], [1, -1, 0], [0, 1, 0]], dtype=np.float32)
        indices = np.array([[0, 1, 2]], dtype=np.int32)
        pane.ImportMeshFromMemory(vertices=triangle, triangles=indices)
        pane.SetPickMode(5)
        pane.CenterView()
        pane.process_events()
        self.server.xdotool("mousemove", 210, 170, "click", 1, "click", 1)
        for event in pane.events(timeout=60):
            if event.name == "SelectObjCoords":
                self.assertEqual(event.idx, 0)
                self.assertEqual((event.mouseX, event.mouseY), (200, 150))
                break
        else:
            self.fail("no event came")


class ExampleHost(unittest.TestCase):
    def test_shows_a_viewer_until_the_window_goes(self) -> None:
        server = X11Server()
        self.addCleanup(server.close)
        with X11Client(server.name) as client:
            window = client.make_window(10, 20, 800, 600)
            program = subprocess.Popen(
                [sys.executable, str(EXAMPLE), hex(window)],
                env={**os.environ, "DISPLAY": server.name},
                stderr=subprocess.PIPE,
                text=True,
            )
            self.addCleanup(program.kill)
            # The start value of the background, all four corners alike.
            self.assertTrue(wait_until(lambda: client.screen_color(15, 25) == (0x19, 0x19, 0x32)))
            client.destroy_window(window)
            _, errors = program.communicate(timeout=60)
        self.assertEqual((program.returncode, errors), (0, ""))


if __name__ == "__main__":
    unittest.main()
