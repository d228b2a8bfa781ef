"""The viewer as a widget of Qt: PyQt6, or PySide6 where PyQt6 is not installed.

    from kv_scenepane.qt import ScenePaneWidget

    widget = ScenePaneWidget()
    widget.pane.ImportMesh("part.stl")
    widget.show()

The widget needs windows of X11; on a Wayland desktop set QT_QPA_PLATFORM=xcb.
"""

from __future__ import annotations

import contextlib
import functools
import sys
import weakref
from typing import Iterator, Optional

from . import ScenePane

try:
    from PyQt6.QtCore import QEvent, QSize, QSocketNotifier, Qt, pyqtSignal as Signal
    from PyQt6.QtGui import (
        QGuiApplication, QKeyEvent, QPaintEngine, QPlatformSurfaceEvent, QResizeEvent, QWindow,
    )
    from PyQt6.QtWidgets import QApplication, QMessageBox, QSizePolicy, QSpacerItem, QWidget
except ImportError:
    from PySide6.QtCore import QEvent, QSize, QSocketNotifier, Qt, Signal
    from PySide6.QtGui import (
        QGuiApplication, QKeyEvent, QPaintEngine, QPlatformSurfaceEvent, QResizeEvent, QWindow,
    )
    from PySide6.QtWidgets import QApplication, QMessageBox, QSizePolicy, QSpacerItem, QWidget

__all__ = ["ScenePaneWidget"]

_ABOUT_TO_BE_DESTROYED = QPlatformSurfaceEvent.SurfaceEventType.SurfaceAboutToBeDestroyed

_TITLE_BAR_BUTTONS = 160  # pixels: icon, three or four buttons and the margins of a title bar

# Codes of the viewer that differ from the number of the key in Qt. For digits and letters both are
# the same.
_CODES = {
    Qt.Key.Key_Backspace: 8,
    Qt.Key.Key_Return: 13,
    Qt.Key.Key_Enter: 13,
    Qt.Key.Key_Shift: 16,
    Qt.Key.Key_Control: 17,
    Qt.Key.Key_Alt: 18,
    Qt.Key.Key_Escape: 27,
    Qt.Key.Key_Space: 32,
    Qt.Key.Key_PageUp: 33,
    Qt.Key.Key_PageDown: 34,
    Qt.Key.Key_End: 35,
    Qt.Key.Key_Home: 36,
    Qt.Key.Key_Left: 37,
    Qt.Key.Key_Up: 38,
    Qt.Key.Key_Right: 39,
    Qt.Key.Key_Down: 40,
    Qt.Key.Key_Insert: 45,
    Qt.Key.Key_Delete: 46,
    Qt.Key.Key_Plus: 187,
    Qt.Key.Key_Comma: 188,
    Qt.Key.Key_Minus: 189,
    Qt.Key.Key_Period: 190,
}


def _code_of(key: int) -> Optional[int]:
    if 0x30 <= key <= 0x39 or 0x41 <= key <= 0x5A:
        return key
    first, last = int(Qt.Key.Key_F1), int(Qt.Key.Key_F24)
    if first <= key <= last:
        return 112 + key - first
    with contextlib.suppress(ValueError):  # a number that is no key of Qt
        return _CODES.get(Qt.Key(key))
    return None


@contextlib.contextmanager
def _reported() -> Iterator[None]:
    """Passes exceptions to sys.excepthook: PyQt6 ends the process for one that reaches Qt."""
    try:
        yield
    except SystemExit:
        raise  # ends the process in the ordinary way
    except BaseException:
        sys.excepthook(*sys.exc_info())


def _show_about(parent: QWidget, title: str, line: str) -> None:
    box = QMessageBox(parent)
    box.setAttribute(Qt.WidgetAttribute.WA_DeleteOnClose)  # also where the parent goes first
    box.setWindowTitle(title)
    box.setTextFormat(Qt.TextFormat.PlainText)
    box.setText(line)
    box.setIcon(QMessageBox.Icon.Information)
    box.setStandardButtons(QMessageBox.StandardButton.Ok)
    # A box of messages has the width of its text, and computes it anew when it is shown. A row as
    # wide as the title and the buttons of the title bar keeps the title whole.
    width = box.fontMetrics().horizontalAdvance(title) + _TITLE_BAR_BUTTONS
    grid = box.layout()
    grid.addItem(QSpacerItem(width, 0), grid.rowCount(), 0, 1, grid.columnCount())
    box.exec()


def _close(pane: ScenePane, notifier: QSocketNotifier) -> None:
    # The descriptor belongs to the viewer.
    notifier.setEnabled(False)
    pane.close()


class ScenePaneWidget(QWidget):
    """A viewer that fills the widget, is resized and moved with it, and ends with it.

    pane  the viewer, from the construction to the destruction of the widget. Closing a widget only
          hides it, as in all of Qt; the viewer is closed when the widget is deleted.
    lost  signal: another program has destroyed the window of the viewer, or the viewer could not
          follow the widget into another window. It is closed.

    Exceptions of callbacks that run inside the event loop go to sys.excepthook; those of callbacks
    inside a call of a method reach the caller of the method. A click gives the viewer the keyboard;
    the event CustomKeyDown reports keys.
    """

    lost = Signal()
    _pane: Optional[ScenePane] = None  # events arrive before the constructor has come to it
    _refuge: Optional[QWindow] = None

    def __init__(self, parent: Optional[QWidget] = None, *, samples: int = 4) -> None:
        """Creates the viewer at once.

        samples  wanted samples per pixel, which smooth the edges; 0 for none

        Raises RuntimeError without a QApplication, and where the windows of Qt are not those of
        X11; kv.Error when the viewer is refused.
        """
        if QApplication.instance() is None:
            raise RuntimeError("a ScenePaneWidget needs a QApplication: create that first")
        platform = QGuiApplication.platformName()
        if platform != "xcb":
            raise RuntimeError(
                f"a ScenePaneWidget needs windows of X11, but the platform of Qt is {platform!r}: "
                "set QT_QPA_PLATFORM=xcb, or draw without a window by ScenePane.offscreen()"
            )
        super().__init__(parent)
        # A native window for the viewer to be a child of, but none for the ancestors of the widget.
        self.setAttribute(Qt.WidgetAttribute.WA_NativeWindow)
        self.setAttribute(Qt.WidgetAttribute.WA_DontCreateNativeAncestors)
        # Qt must not paint below the viewer: it would flicker.
        self.setAttribute(Qt.WidgetAttribute.WA_PaintOnScreen)
        self.setAttribute(Qt.WidgetAttribute.WA_NoSystemBackground)
        self.setAttribute(Qt.WidgetAttribute.WA_OpaquePaintEvent)
        self.setSizePolicy(QSizePolicy.Policy.Expanding, QSizePolicy.Policy.Expanding)
        self.setMinimumSize(16, 16)
        self.setFocusPolicy(Qt.FocusPolicy.StrongFocus)
        self._pane = self._make_pane(samples)
        self._notifier = QSocketNotifier(self._pane.fileno(), QSocketNotifier.Type.Read, self)
        self._notifier.activated.connect(self._process_events)
        # Not a method of the widget: Qt calls none any more when it destroys the widget.
        self.destroyed.connect(functools.partial(_close, self._pane, self._notifier))
        self.windowHandle().screenChanged.connect(self._follow_size)

    @property
    def pane(self) -> ScenePane:
        """The viewer."""
        return self._pane

    def _make_pane(self, samples: int) -> ScenePane:
        # The viewer keeps the functions: with a strong reference neither would ever be freed.
        widget = weakref.ref(self)

        def show_message(text: str) -> None:
            target = widget()
            # Without a viewer yet, the reason of the refusal is raised.
            if target is not None and target._pane is not None:
                QMessageBox.warning(target, "KV_ScenePane", text)

        def show_about(title: str, line: str) -> None:
            target = widget()
            if target is not None:
                _show_about(target, title, line)

        size = self._device_size()
        return ScenePane.child(
            int(self.winId()),
            size.width(),
            size.height(),
            samples=samples,
            scale=self.devicePixelRatioF(),
            on_message=show_message,
            on_about=show_about,
        )

    def _process_events(self) -> None:
        if self._pane.closed:
            self._notifier.setEnabled(False)
            return
        with _reported():
            self._pane.process_events()
        if not self._pane.closed and not self._pane.has_window:
            self._end()

    def _end(self) -> None:
        _close(self._pane, self._notifier)
        self.lost.emit()

    def _leave_window(self) -> None:
        """Moves the viewer out of the window of the widget before Qt destroys that: both would go.
        Qt does so when the window is closed."""
        if self._pane is None or self._pane.closed:
            return
        if self._refuge is None:
            self._refuge = QWindow()
            self._refuge.create()
        self._move(int(self._refuge.winId()))

    def _follow_window(self) -> None:
        """Qt may have made another native window for the widget: the viewer moves into it."""
        if self._pane is None or self._pane.closed:
            return
        window = int(self.effectiveWinId() or 0)
        if window != 0:
            self._move(window)
            self._follow_size()

    def _move(self, window: int) -> None:
        try:
            self._pane.reparent(window)
        except RuntimeError:
            self._end()

    def _follow_size(self) -> None:
        if self._pane is None or self._pane.closed:
            return
        with _reported():
            size = self._device_size()
            self._pane.set_scale(self.devicePixelRatioF())
            self._pane.SetSize(size.width(), size.height())
            self._pane.PerformInvalidate()

    def _device_size(self) -> QSize:
        """The viewer counts device pixels, at most 32767, Qt its own."""

        def pixels(length: int) -> int:
            return min(max(round(length * self.devicePixelRatioF()), 1), 32767)

        return QSize(pixels(self.width()), pixels(self.height()))

    def _send_key(self, event: QKeyEvent, is_down: bool) -> None:
        code = _code_of(event.key())
        if code is None or self._pane is None or self._pane.closed:
            event.ignore()
            return
        with _reported():
            self._pane.send_key(code, is_down)

    # ---- what Qt calls

    def event(self, event: QEvent) -> bool:
        if event.type() == QEvent.Type.PlatformSurface:
            if event.surfaceEventType() == _ABOUT_TO_BE_DESTROYED:
                self._leave_window()
        elif event.type() in (QEvent.Type.WinIdChange, QEvent.Type.ParentChange):
            self._follow_window()
        return super().event(event)

    def resizeEvent(self, event: QResizeEvent) -> None:
        super().resizeEvent(event)
        self._follow_size()

    def keyPressEvent(self, event: QKeyEvent) -> None:
        self._send_key(event, True)

    def keyReleaseEvent(self, event: QKeyEvent) -> None:
        self._send_key(event, False)

    def sizeHint(self) -> QSize:
        return QSize(640, 480)

    def paintEngine(self) -> Optional[QPaintEngine]:
        return None  # as WA_PaintOnScreen requires
