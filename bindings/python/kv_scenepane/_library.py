"""The functions and structs of kv_scenepane.h, declared for ctypes."""
from __future__ import annotations

import ctypes as c
from pathlib import Path

from ._soname import LIBRARY

DONE, UNKNOWN_ID, BAD_ARGUMENTS, FAILED, HANDLER_FAILED = range(5)
NO_TEXT = c.c_size_t(-1).value
CHILD, TOP_LEVEL, OFF_SCREEN, NO_PICTURE = range(4)

EventFunction = c.CFUNCTYPE(c.c_int32, c.c_void_p, c.c_int32, c.c_void_p, c.c_size_t)
MessageFunction = c.CFUNCTYPE(c.c_int32, c.c_void_p, c.c_char_p)
AboutFunction = c.CFUNCTYPE(c.c_int32, c.c_void_p, c.c_char_p, c.c_char_p)
DebugFunction = c.CFUNCTYPE(None, c.c_void_p, c.c_void_p, c.c_size_t)


class WindowRequest(c.Structure):
    """kv_window_request."""

    _fields_ = [
        ("size", c.c_size_t),
        ("kind", c.c_int32),
        ("x", c.c_int32),
        ("y", c.c_int32),
        ("width", c.c_int32),
        ("height", c.c_int32),
        ("gl_major", c.c_int32),
        ("gl_minor", c.c_int32),
        ("samples", c.c_int32),
        ("gpu", c.c_int32),
        ("parent", c.c_size_t),
        ("display", c.c_char_p),
        ("title", c.c_char_p),
        ("scale", c.c_double),
        ("show_message", MessageFunction),
        ("show_about", AboutFunction),
        ("user", c.c_void_p),
    ]


class ShortValue(c.Structure):
    """A kv_value that holds KV_SHORT."""

    _fields_ = [
        ("type", c.c_int32),
        ("_pad", c.c_int32),
        ("value", c.c_int16),
        ("_rest", c.c_int16 * 3),
    ]


class LongValue(c.Structure):
    """A kv_value that holds KV_LONG."""

    _fields_ = [
        ("type", c.c_int32),
        ("_pad", c.c_int32),
        ("value", c.c_int32),
        ("_rest", c.c_int32),
    ]


class SurfacePoint(c.Structure):
    """kv_surface_point."""

    _fields_ = [
        ("object", c.c_int32),
        ("triangle", c.c_int32),
        ("point", c.c_float * 3),
        ("distance", c.c_float),
    ]


class CutSaveEntry(c.Structure):
    """kv_cut_save_entry."""

    _fields_ = [
        ("object", c.c_int32),
        ("outcome", c.c_int32),
        ("cut_count", c.c_int32),
        ("is_moved", c.c_int32),
        ("is_cut_while_moved", c.c_int32),
        ("is_nothing_left", c.c_int32),
        ("file", c.c_char_p),
        ("reason", c.c_char_p),
    ]


class CutMask(c.Structure):
    """kv_cut_mask."""

    _fields_ = [
        ("kind", c.c_uint32),
        ("projection", c.c_double * 16),
        ("model_view", c.c_double * 16),
        ("viewport", c.c_int32 * 4),
        ("bounds", c.c_int32 * 4),
        ("bits", c.c_void_p),
        ("bit_count", c.c_size_t),
        ("depth", c.c_void_p),
        ("depth_count", c.c_size_t),
    ]


class AlignmentPair(c.Structure):
    """kv_alignment_pair."""

    _fields_ = [
        ("moving", c.c_float * 3),
        ("moving_normal", c.c_float * 3),
        ("fixed", c.c_float * 3),
        ("fixed_normal", c.c_float * 3),
    ]


class Alignment(c.Structure):
    """kv_alignment."""

    _fields_ = [
        ("is_found", c.c_int32),
        ("transform", c.c_double * 16),
        ("rms", c.c_double),
        ("pair_count", c.c_size_t),
    ]


class ClipHeight(c.Structure):
    """kv_clip_height."""

    _fields_ = [("found", c.c_int32), ("height", c.c_float), ("kind", c.c_int32)]


class FrameStatistics(c.Structure):
    """kv_frame_statistics."""

    _fields_ = [("count", c.c_uint64), ("seconds", c.c_double)]


_POINTER, _SIZE, _INT = c.c_void_p, c.c_size_t, c.c_int32

# Result and arguments of each function.
_FUNCTIONS = {
    "kv_window_request_init": (None, [c.POINTER(WindowRequest)]),
    "kv_create": (_POINTER, [c.POINTER(WindowRequest)]),
    "kv_destroy": (None, [_POINTER]),
    "kv_version": (c.c_char_p, []),
    "kv_last_error": (c.c_char_p, []),
    "kv_event_descriptor": (c.c_int, [_POINTER]),
    "kv_process_events": (_INT, [_POINTER]),
    "kv_has_window": (_INT, [_POINTER]),
    "kv_native_window": (c.c_size_t, [_POINTER]),
    "kv_reparent": (_INT, [_POINTER, c.c_size_t, _INT, _INT]),
    "kv_set_scale": (_INT, [_POINTER, c.c_double]),
    "kv_send_mouse": (_INT, [_POINTER, _INT, c.c_uint32, _INT, _INT, _INT]),
    "kv_send_key": (_INT, [_POINTER, _INT, _INT, _INT, _INT]),
    "kv_invoke": (_INT, [_POINTER, _INT, c.c_char_p, _SIZE, _POINTER]),
    "kv_get_property": (_INT, [_POINTER, _INT, _POINTER]),
    "kv_put_property": (_INT, [_POINTER, _INT, c.c_char_p]),
    "kv_connect": (_INT, [_POINTER, EventFunction, _POINTER]),
    "kv_capture_picture": (_INT, [_POINTER, _POINTER, _SIZE, c.POINTER(_INT), c.POINTER(_INT)]),
    "kv_pick_surface": (_INT, [_POINTER, _INT, _INT, c.POINTER(SurfacePoint)]),
    "kv_object_name": (_SIZE, [_POINTER, _INT, _POINTER, _SIZE]),
    "kv_object_has_colors": (_INT, [_POINTER, _INT]),
    "kv_graphics_info": (_SIZE, [_POINTER, _POINTER, _SIZE]),
    "kv_cut_with_lasso": (_INT, [_POINTER, _INT, _POINTER, _SIZE, c.POINTER(_INT)]),
    "kv_undo_step_count": (_INT, [_POINTER]),
    "kv_cut_save_entries": (_SIZE, [_POINTER, _INT, c.POINTER(CutSaveEntry), _SIZE]),
    "kv_cut_mask_read": (None, [_POINTER, c.POINTER(CutMask)]),
    "kv_align_by_pairs": (_INT, [_POINTER, c.POINTER(AlignmentPair), _SIZE, c.POINTER(Alignment)]),
    "kv_alignment_result": (
        _INT,
        [_POINTER, c.POINTER(Alignment), c.POINTER(AlignmentPair), _POINTER, _SIZE],
    ),
    "kv_clip_height_result": (_INT, [_POINTER, c.POINTER(ClipHeight)]),
    "kv_frame_statistics_result": (_INT, [_POINTER, c.POINTER(FrameStatistics)]),
    "kv_mesh_create": (_POINTER, [_POINTER, _SIZE, _POINTER, _SIZE, _INT]),
    "kv_mesh_destroy": (None, [_POINTER]),
    "kv_save_properties": (_SIZE, [_POINTER, _INT, _POINTER, _SIZE]),
    "kv_load_properties": (_INT, [_POINTER, c.c_char_p, _SIZE]),
    "kv_is_modified": (_INT, [_POINTER]),
    "kv_import_file": (_INT, [_POINTER, c.c_char_p, _INT, c.c_float, _INT]),
    "kv_set_debug_output": (None, [DebugFunction, _POINTER]),
}


def _load() -> c.CDLL:
    file = Path(__file__).parent / LIBRARY
    if not file.exists():
        raise ImportError(f"there is no {file}: it is made by the build of the project")
    library = c.CDLL(str(file))
    for name, (result, arguments) in _FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library


library = _load()


def last_error() -> str:
    """Why the last call on this thread failed."""
    return library.kv_last_error().decode("utf-8", "replace")
