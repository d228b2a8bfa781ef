"""The few functions of Xlib that a test of windows needs, through ctypes."""

import ctypes
import struct

_x11 = ctypes.CDLL("libX11.so.6")
_Display, _Window = ctypes.c_void_p, ctypes.c_ulong


def _declare(name: str, result: object, *arguments: object):
    function = getattr(_x11, name)
    function.restype, function.argtypes = result, arguments
    return function


_int, _unsigned, _ulong = ctypes.c_int, ctypes.c_uint, ctypes.c_ulong
_open = _declare("XOpenDisplay", _Display, ctypes.c_char_p)
_close = _declare("XCloseDisplay", _int, _Display)
_root = _declare("XDefaultRootWindow", _Window, _Display)
_create = _declare(
    *("XCreateSimpleWindow", _Window, _Display, _Window, _int, _int, _unsigned, _unsigned),
    *(_unsigned, _ulong, _ulong),
)
_map = _declare("XMapWindow", _int, _Display, _Window)
_destroy = _declare("XDestroyWindow", _int, _Display, _Window)
_resize = _declare("XResizeWindow", _int, _Display, _Window, _unsigned, _unsigned)
_sync = _declare("XSync", _int, _Display, _int)
_free = _declare("XFree", _int, ctypes.c_void_p)
_get_image = _declare(
    *("XGetImage", ctypes.c_void_p, _Display, ctypes.c_ulong, _int, _int, _unsigned, _unsigned),
    *(_ulong, _int),
)
_get_pixel = _declare("XGetPixel", _ulong, ctypes.c_void_p, _int, _int)
_destroy_image = _declare("XDestroyImage", _int, ctypes.c_void_p)
_query_tree = _declare(
    "XQueryTree", _int, _Display, _Window, ctypes.POINTER(_Window), ctypes.POINTER(_Window),
    ctypes.POINTER(ctypes.POINTER(_Window)), ctypes.POINTER(_unsigned),
)
_get_protocols = _declare(
    "XGetWMProtocols", _int, _Display, _Window, ctypes.POINTER(ctypes.POINTER(_ulong)),
    ctypes.POINTER(_int),
)
_intern = _declare("XInternAtom", _ulong, _Display, ctypes.c_char_p, _int)
_send = _declare("XSendEvent", _int, _Display, _Window, _int, ctypes.c_long, ctypes.c_char_p)


class X11Client:
    """A connection of the test itself. Use it in a with statement."""

    def __init__(self, name: str) -> None:
        self._display = _open(name.encode())
        if not self._display:
            raise RuntimeError(f"there is no display {name}")

    def __enter__(self) -> "X11Client":
        return self

    def __exit__(self, *_: object) -> None:
        _close(self._display)

    def make_window(self, x: int, y: int, width: int, height: int) -> int:
        """A window that is shown, with a black background."""
        window = _create(self._display, _root(self._display), x, y, width, height, 0, 0, 0)
        _map(self._display, window)
        _sync(self._display, 0)
        return window

    def destroy_window(self, window: int) -> None:
        _destroy(self._display, window)
        _sync(self._display, 0)

    def resize_window(self, window: int, width: int, height: int) -> None:
        _resize(self._display, window, width, height)
        _sync(self._display, 0)

    def ask_to_close(self, window: int) -> None:
        """As the close button of a window manager does."""
        client_message = 33
        protocols, close = (
            _intern(self._display, name, 0) for name in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW")
        )
        # An XClientMessageEvent in the place of an XEvent.
        head = client_message, 0, 1, self._display, window, protocols, 32
        event = struct.pack("iLiPLLi5l192x", *head, close, 0, 0, 0, 0)
        _send(self._display, window, 0, 0, event)
        _sync(self._display, 0)

    def closable_windows(self) -> list:
        """The windows on the screen that ask_to_close() ends."""
        close = _intern(self._display, b"WM_DELETE_WINDOW", 0)
        return [w for w in self.children(_root(self._display)) if close in self._protocols(w)]

    def _protocols(self, window: int) -> list:
        atoms, count = ctypes.POINTER(_ulong)(), _int()
        if not _get_protocols(self._display, window, atoms, count):
            return []
        found = atoms[: count.value]
        _free(atoms)
        return found

    def children(self, window: int) -> list:
        root, parent, count = _Window(), _Window(), _unsigned()
        windows = ctypes.POINTER(_Window)()
        _query_tree(self._display, window, root, parent, windows, count)
        found = windows[: count.value]
        if windows:
            _free(windows)
        return found

    def screen_color(self, x: int, y: int) -> tuple:
        """Red, green and blue of a pixel of the screen."""
        all_planes, z_pixmap = 0xFFFFFFFF, 2
        image = _get_image(self._display, _root(self._display), x, y, 1, 1, all_planes, z_pixmap)
        pixel = _get_pixel(image, 0, 0)
        _destroy_image(image)
        return pixel >> 16 & 0xFF, pixel >> 8 & 0xFF, pixel & 0xFF
