"""The viewer as a widget of PyQt6, on an X server of the test, with real pointer and keys."""

import gc
import os
import subprocess
import sys
import tempfile
import time
import unittest
import weakref
from pathlib import Path
from unittest import mock

import numpy as np
from x11_client import X11Client
from x11_server import X11Server, wait_until

try:
    from PyQt6.QtCore import QEventLoop, QPoint, Qt, QTimer
    from PyQt6.QtWidgets import QApplication, QHBoxLayout, QMainWindow, QMessageBox, QWidget
except ImportError:
    QApplication = None

import kv_scenepane as kv

if QApplication is not None:
    from kv_scenepane.qt import ScenePaneWidget

RED, GREEN, BLUE = (0xFF, 0, 0), (0, 0xFF, 0), (0, 0, 0xFF)


def packed(color: tuple) -> int:
    red, green, blue = color
    return red | green << 8 | blue << 16


def setUpModule() -> None:
    if QApplication is None:
        raise unittest.SkipTest("there is no PyQt6")
    global server, app
    server = X11Server()
    folder = tempfile.TemporaryDirectory(prefix="kv_qt_")
    unittest.addModuleCleanup(folder.cleanup)
    os.environ.update(
        DISPLAY=server.name,
        QT_QPA_PLATFORM="xcb",
        QT_LOGGING_RULES="qt.qpa.*=false",
        XDG_RUNTIME_DIR=folder.name,
    )
    app = QApplication(["test_qt"])
    app.setQuitOnLastWindowClosed(False)


def tearDownModule() -> None:
    global app
    if QApplication is not None:
        del app
        server.close()


def becomes_true(condition, seconds: float = 60) -> bool:
    """Runs the event loop until the condition is true."""
    limit = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > limit:
            return False
        app.processEvents(QEventLoop.ProcessEventsFlag.AllEvents, 20)
        time.sleep(0.002)
    return True


def screen_color(x: int, y: int) -> tuple:
    color = app.primaryScreen().grabWindow(0, x, y, 1, 1).toImage().pixelColor(0, 0)
    return color.red(), color.green(), color.blue()


def shows(widget: QWidget, x: int, y: int, color: tuple) -> bool:
    place = widget.mapToGlobal(QPoint(x, y))
    return becomes_true(lambda: screen_color(place.x(), place.y()) == color)


def add_square(pane: kv.ScenePane, half: float = 1) -> None:
    """A square across the viewing direction of the view from +Z."""
    corners = np.array([[-1, -1, 0], [1, -1, 0], [1, 1, 0], [-1, 1, 0]], dtype=np.float32) * half
    triangles = np.array([[0, 1, 2], [0, 2, 3]], dtype=np.int32)
    pane.ImportMeshFromMemory(vertices=corners, triangles=triangles)


def make_widget(parent=None, background: tuple = BLUE, **options) -> "ScenePaneWidget":
    widget = ScenePaneWidget(parent, **options)
    widget.pane.SetBackgroundColors(packed(background), packed(background))
    return widget


def show(widget: QWidget, width: int = 400, height: int = 300) -> None:
    widget.setGeometry(10, 20, width, height)
    widget.show()


class WidgetTest(unittest.TestCase):
    def setUp(self) -> None:
        self.widgets = []
        self.hook_calls = []
        hook = mock.patch.object(sys, "excepthook", lambda *error: self.hook_calls.append(error))
        hook.start()
        self.addCleanup(hook.stop)

    def tearDown(self) -> None:
        for widget in self.widgets:
            delete(widget)

    def make(self, *args, **options):
        widget = make_widget(*args, **options)
        if widget.parent() is None:
            self.widgets.append(widget)
        return widget


def delete(widget: QWidget) -> None:
    widget.deleteLater()
    # The loop of a test has no level of its own, so that such events wait for an explicit request.
    app.sendPostedEvents(widget, 52)  # QEvent::DeferredDelete


class Pictures(WidgetTest):
    def test_shows_the_frame_of_the_viewer_with_its_colours(self) -> None:
        widget = self.make()
        add_square(widget.pane)
        widget.pane.SetObjectColor(0, packed(RED))
        widget.pane.CenterView()
        show(widget)
        self.assertTrue(shows(widget, 2, 2, BLUE))
        self.assertTrue(shows(widget, 397, 297, BLUE))
        picture = widget.pane.picture()
        self.assertEqual(picture.shape, (300, 400, 4))
        center = tuple(int(value) for value in picture[150, 200, :3])
        self.assertGreater(center[0], 100)
        self.assertLess(max(center[1:]), center[0] // 2)
        self.assertTrue(shows(widget, 200, 150, center))

    def test_follows_a_change_of_its_size(self) -> None:
        widget = self.make()
        show(widget)
        self.assertTrue(shows(widget, 399, 299, BLUE))
        widget.resize(500, 200)
        self.assertTrue(shows(widget, 499, 199, BLUE))
        self.assertEqual(widget.pane.picture().shape, (200, 500, 4))
        self.assertNotEqual(screen_color(100, 20 + 250), BLUE)

    def test_two_widgets_side_by_side_show_scenes_of_their_own(self) -> None:
        window = QWidget()
        self.widgets.append(window)
        layout = QHBoxLayout(window)
        layout.setContentsMargins(0, 0, 0, 0)
        layout.setSpacing(0)
        left, right = make_widget(background=GREEN), make_widget(background=RED)
        layout.addWidget(left)
        layout.addWidget(right)
        add_square(left.pane)
        show(window, 600, 300)
        self.assertTrue(shows(left, 5, 5, GREEN))
        self.assertTrue(shows(right, 5, 5, RED))
        self.assertEqual((left.width(), right.width()), (300, 300))
        self.assertEqual((left.pane.GetNumObjects(), right.pane.GetNumObjects()), (1, 0))
        self.assertTrue(shows(window, 298, 5, GREEN) and shows(window, 302, 5, RED))


class Windows(WidgetTest):
    def test_keeps_its_scene_when_the_window_around_it_is_closed_and_shown(self) -> None:
        window = QMainWindow()
        self.widgets.append(window)
        widget = make_widget(window)
        window.setCentralWidget(widget)
        add_square(widget.pane)
        for _ in range(3):
            show(window)
            self.assertTrue(shows(widget, 5, 5, BLUE))
            window.close()
            self.assertTrue(becomes_true(lambda: screen_color(15, 25) != BLUE))
        self.assertFalse(widget.pane.closed)
        self.assertEqual(widget.pane.GetNumObjects(), 1)

    def test_moves_into_another_window_and_out_of_it(self) -> None:
        widget = make_widget()
        add_square(widget.pane)
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        window = QMainWindow()
        self.widgets.append(window)
        window.setCentralWidget(widget)
        show(window, 300, 200)
        self.assertTrue(shows(widget, 5, 5, BLUE) and shows(widget, 295, 195, BLUE))
        self.assertFalse(widget.pane.closed)
        other = QMainWindow()
        self.widgets.append(other)
        other.setCentralWidget(widget)
        window.hide()
        show(other, 320, 240)
        self.assertTrue(shows(widget, 315, 235, BLUE))
        widget.setParent(None)
        other.hide()
        self.widgets.append(widget)
        show(widget, 350, 250)
        self.assertTrue(shows(widget, 345, 245, BLUE))
        self.assertEqual(widget.pane.GetNumObjects(), 1)
        self.assertEqual(self.hook_calls, [])

    def test_keeps_its_scene_through_fifty_times_of_closing_and_showing(self) -> None:
        widget = self.make()
        add_square(widget.pane)
        for _ in range(50):
            show(widget)
            self.assertTrue(shows(widget, 5, 5, BLUE))
            self.assertTrue(widget.close())
            self.assertTrue(becomes_true(lambda: screen_color(15, 25) != BLUE))
        self.assertEqual(widget.pane.GetNumObjects(), 1)

    def test_fifty_widgets_one_after_the_other_leave_no_connection(self) -> None:
        self.show_and_delete()  # what the first one opens in Qt and in the driver stays
        before = server.client_count()
        descriptors = len(os.listdir("/proc/self/fd"))
        for _ in range(50):
            self.show_and_delete()
        self.assertTrue(becomes_true(lambda: server.client_count() == before))
        self.assertLessEqual(len(os.listdir("/proc/self/fd")), descriptors)

    def show_and_delete(self) -> None:
        widget = make_widget()
        pane = widget.pane
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        delete(widget)
        self.assertTrue(pane.closed)
        self.assertTrue(becomes_true(lambda: screen_color(15, 25) != BLUE))

    def test_the_viewer_ends_with_the_parent_of_the_widget(self) -> None:
        window = QWidget()
        widget = make_widget(window)
        pane = widget.pane
        show(window)
        delete(window)
        self.assertTrue(pane.closed)

    def test_the_viewer_ends_with_the_last_reference_to_the_widget(self) -> None:
        widget = make_widget()
        pane = widget.pane
        trace = weakref.ref(widget)
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        del widget
        gc.collect()
        self.assertIsNone(trace())
        self.assertTrue(pane.closed)

    def test_a_cycle_of_widget_and_callback_is_collected(self) -> None:
        widget = make_widget()
        widget.pane.on("NeedleCreated", lambda number: widget.update())
        trace = weakref.ref(widget)
        pane = weakref.ref(widget.pane)
        del widget
        gc.collect()
        self.assertIsNone(trace())
        # Qt deletes what is connected to a widget in the next turn of the loop.
        self.assertTrue(becomes_true(lambda: app.sendPostedEvents(None, 52) or pane() is None))

    def test_reports_that_another_program_destroyed_the_window(self) -> None:
        widget = self.make()
        lost = []
        widget.lost.connect(lambda: lost.append(True))
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        server.xdotool("windowclose", widget.pane.native_window)
        self.assertTrue(becomes_true(lambda: lost))
        self.assertTrue(widget.pane.closed)
        widget.resize(200, 100)  # nothing is left that could fail
        self.assertEqual(self.hook_calls, [])


class Input(WidgetTest):
    def test_a_drag_turns_the_view(self) -> None:
        widget = self.make()
        add_square(widget.pane)
        directions = []
        widget.pane.TracingMode(1)
        widget.pane.on("ViewDirectionChanged", lambda *direction: directions.append(direction))
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        before = widget.pane.GetViewParams()
        server.xdotool("mousemove", 200, 150, "mousedown", 1)
        for x in range(205, 280, 5):
            server.xdotool("mousemove", x, 160)
        server.xdotool("mouseup", 1)
        self.assertTrue(becomes_true(lambda: directions))
        self.assertTrue(becomes_true(lambda: widget.pane.GetViewParams()[:6] != before[:6]))
        self.assertEqual(self.hook_calls, [])

    def test_keys_reach_the_viewer_after_a_click_and_with_the_focus_of_the_widget(self) -> None:
        widget = self.make()
        keys = []
        widget.pane.on("CustomKeyDown", lambda code, count, flags: keys.append(code))
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        server.xdotool("mousemove", 100, 100, "click", 1)
        app.processEvents()
        self.assertTrue(becomes_true(lambda: server.xdotool("key", "q") or ord("Q") in keys))
        keys.clear()
        widget.setFocus()
        widget.activateWindow()
        self.assertTrue(becomes_true(widget.hasFocus))
        self.assertTrue(becomes_true(lambda: server.xdotool("key", "F5") or 116 in keys))

    def test_an_exception_of_a_callback_in_the_loop_goes_to_the_hook(self) -> None:
        widget = self.make()
        widget.pane.TracingMode(1)
        add_square(widget.pane)
        calls = []

        def fail(*_: float) -> None:
            calls.append(True)
            raise ValueError("of the callback")

        connection = widget.pane.on("ViewDirectionChanged", fail)
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        server.xdotool("mousemove", 200, 150, "mousedown", 1)
        server.xdotool("mousemove", 230, 150, "mousemove", 260, 150, "mouseup", 1)
        self.assertTrue(becomes_true(lambda: self.hook_calls))
        kind, value, traceback = self.hook_calls[0]
        self.assertIs(kind, ValueError)
        self.assertEqual(str(value), "of the callback")
        connection.disconnect()
        # The viewer goes on.
        widget.pane.SetBackgroundColors(packed(GREEN), packed(GREEN))
        self.assertTrue(shows(widget, 5, 5, GREEN))

    def test_a_callback_may_delete_the_widget(self) -> None:
        widget = make_widget()
        pane = widget.pane
        pane.on("CustomKeyDown", lambda *_: widget.deleteLater())
        show(widget)
        self.assertTrue(shows(widget, 5, 5, BLUE))
        server.xdotool("mousemove", 100, 100, "click", 1)
        app.processEvents()

        def is_closed() -> bool:
            server.xdotool("key", "q")
            app.sendPostedEvents(None, 52)
            return pane.closed

        self.assertTrue(becomes_true(is_closed))
        self.assertEqual(self.hook_calls, [])


class Boxes(WidgetTest):
    def test_the_about_box_is_one_of_qt(self) -> None:
        widget = self.make()
        show(widget)
        seen, room = [], []

        def close_box() -> None:
            box = app.activeModalWidget()
            if isinstance(box, QMessageBox):
                seen.append((box.windowTitle(), box.text(), box.icon()))
                title = box.fontMetrics().horizontalAdvance(box.windowTitle())
                room.append(box.width() - title)
                box.accept()

        timer = QTimer()
        timer.timeout.connect(close_box)
        timer.start(20)
        widget.pane.AboutBox()
        timer.stop()
        texts = "About KV_ScenePane Control", "KV_ScenePane Control, Version 5.5"
        self.assertEqual(seen, [(*texts, QMessageBox.Icon.Information)])
        self.assertGreater(room[0], 120, "the buttons of the title bar would cover the title")

    def test_a_widget_can_be_deleted_behind_the_about_box(self) -> None:
        widget = self.make()
        self.widgets.remove(widget)
        show(widget)
        seen = []

        def delete_widget() -> None:
            if isinstance(app.activeModalWidget(), QMessageBox):
                timer.stop()
                seen.append(True)
                delete(widget)

        timer = QTimer()
        timer.timeout.connect(delete_widget)
        timer.start(20)
        widget.pane.AboutBox()
        self.assertEqual(seen, [True])
        self.assertIsNone(app.activeModalWidget())


class Scripts(unittest.TestCase):
    """Cases that need a process of their own."""

    KEY_HANDLER = """
import subprocess, sys
from PyQt6.QtCore import QTimer
from PyQt6.QtWidgets import QApplication
app = QApplication([])
from kv_scenepane.qt import ScenePaneWidget
widget = ScenePaneWidget()
widget.move(0, 0)
calls = []
@widget.pane.on("CustomKeyDown")
def fail(*_):
    calls.append(True)
    raise {error}
def press():
    words = ["xdotool", "mousemove", "50", "50", "click", "1", "key", "q"]
    app.quit() if calls else subprocess.run(words, check=True)
timer = QTimer()
timer.timeout.connect(press)
timer.start(100)
widget.show()
app.exec()
print("end")
"""

    def run_script(self, script: str, **environment: str) -> subprocess.CompletedProcess:
        return subprocess.run(
            [sys.executable, "-c", script],
            env={**os.environ, **environment},
            capture_output=True,
            text=True,
            timeout=120,
            check=False,
        )

    def test_without_windows_of_x11_the_reason_is_raised(self) -> None:
        script = (
            "from PyQt6.QtWidgets import QApplication\n"
            "app = QApplication([])\n"
            "from kv_scenepane.qt import ScenePaneWidget\n"
            "try:\n    ScenePaneWidget()\n"
            "except RuntimeError as error:\n    print(error)\n"
        )
        outcome = self.run_script(script, QT_QPA_PLATFORM="offscreen")
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        self.assertIn("the platform of Qt is 'offscreen': set QT_QPA_PLATFORM=xcb", outcome.stdout)

    def test_without_an_application_the_reason_is_raised(self) -> None:
        script = (
            "from kv_scenepane.qt import ScenePaneWidget\n"
            "try:\n    ScenePaneWidget()\n"
            "except RuntimeError as error:\n    print(error)\n"
        )
        outcome = self.run_script(script)
        self.assertEqual(outcome.returncode, 0, outcome.stderr)
        self.assertIn("needs a QApplication", outcome.stdout)

    def test_an_exception_of_a_callback_in_the_loop_does_not_end_the_process(self) -> None:
        outcome = self.run_script(self.KEY_HANDLER.format(error="ValueError('of the callback')"))
        self.assertEqual((outcome.returncode, outcome.stdout), (0, "end\n"), outcome.stderr)
        self.assertIn("ValueError: of the callback", outcome.stderr)

    def test_an_exit_in_a_callback_in_the_loop_ends_the_process(self) -> None:
        outcome = self.run_script(self.KEY_HANDLER.format(error="SystemExit(3)"))
        self.assertEqual((outcome.returncode, outcome.stdout, outcome.stderr), (3, "", ""))

    def test_the_example_shows_a_viewer_until_its_window_is_closed(self) -> None:
        example = Path(os.environ["KV_SOURCE_DIR"]) / "examples/python/qt_host.py"
        with X11Server() as own, X11Client(own.name) as client:
            program = subprocess.Popen(
                [sys.executable, str(example)],
                env={**os.environ, "DISPLAY": own.name},
                stderr=subprocess.PIPE,
                text=True,
            )
            self.addCleanup(program.kill)
            # The start value of the background.
            self.assertTrue(wait_until(lambda: client.screen_color(50, 50) == (0x19, 0x19, 0x32)))
            window = own.xdotool("search", "--onlyvisible", "--name", "^qt_host$").split()[0]
            client.ask_to_close(int(window))
            _, errors = program.communicate(timeout=60)
        self.assertEqual((program.returncode, errors), (0, ""))

    def test_the_process_ends_cleanly_with_a_widget_that_is_shown(self) -> None:
        script = (
            "from PyQt6.QtWidgets import QApplication\n"
            "from PyQt6.QtCore import QTimer\n"
            "app = QApplication([])\n"
            "from kv_scenepane.qt import ScenePaneWidget\n"
            "widget = ScenePaneWidget()\n"
            "widget.show()\n"
            "QTimer.singleShot(200, app.quit)\n"
            "app.exec()\n"
            "print('end')\n"
        )
        outcome = self.run_script(script)
        self.assertEqual((outcome.returncode, outcome.stdout, outcome.stderr), (0, "end\n", ""))


if __name__ == "__main__":
    unittest.main()
