"""The viewer in a program of Qt: qt_host.py FILE..."""

import os
import sys

# The viewer needs windows of X11, also on a Wayland desktop.
os.environ.setdefault("QT_QPA_PLATFORM", "xcb")

from PyQt6.QtWidgets import QApplication, QMainWindow  # pylint: disable=wrong-import-position

from kv_scenepane.qt import ScenePaneWidget  # pylint: disable=wrong-import-position


def main(paths: list) -> int:
    application = QApplication(sys.argv)
    window = QMainWindow()
    window.setWindowTitle("qt_host")
    viewer = ScenePaneWidget(window)
    window.setCentralWidget(viewer)
    window.resize(800, 600)

    pane = viewer.pane
    for path in paths:
        pane.ImportScan(path, 0xC8D4DC)
    pane.CenterView()

    @pane.on("SelectObjCoords")
    def show_point(index, x, y, z, *_):
        window.statusBar().showMessage(f"{pane.object_name(index)}: {x:.3f} {y:.3f} {z:.3f}")

    pane.SetPickMode(5)  # a double click on an object picks a point
    window.show()
    return application.exec()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
