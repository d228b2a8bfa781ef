"""Calls of the automation surface by id: arguments are packed in one step, which checks their types
and ranges.

The generated methods of Surface pass on their arguments, each after the tag of its type.
"""
from __future__ import annotations

import ctypes
import os
import struct
from typing import Any, Callable, Optional

from ._arrays import Packer
from ._debug import Capture
from ._errors import Error, ImportFailed, raised, take_raised
from ._library import (
    BAD_ARGUMENTS,
    FAILED,
    HANDLER_FAILED,
    LongValue,
    ShortValue,
    last_error,
    library,
)
from ._values import FORMATS, REQUIRED, TAGS, flag, refusal

__all__ = ["Calls", "Method", "Property", "REQUIRED", "flag"]

_invoke = library.kv_invoke
_get_property, _put_property = library.kv_get_property, library.kv_put_property
_address = ctypes.addressof
_RESULTS = {"s": ShortValue, "b": ShortValue, "i": LongValue}


class Method:
    """One method of the surface as data.

    inputs, outputs: (name, code), arrays (name, code, element, shape)
    is_import: it adds an object, or fails; can_add_nothing: it reports only in the debugger output
    that it failed
    is_export: it writes a file, or reports only in the debugger output that it failed
    check: called with the pane and the packed values, for what the viewer itself does not check
    """

    __slots__ = (
        "id",
        "name",
        "result",
        "inputs",
        "outputs",
        "tuple",
        "count",
        "pack",
        "unpack",
        "result_type",
        "read_outputs",
        "output_type",
        "output_tags",
        "check",
        "check_arrays",
        "after",
        "is_import",
        "can_add_nothing",
        "is_export",
        "call",
        "pack_all",
    )

    def __init__(
        self,
        number: int,
        name: str,
        result: str,
        inputs: tuple,
        outputs: tuple,
        result_class: Optional[type] = None,
    ) -> None:
        self.id = number
        self.name = name
        self.result = result
        self.inputs = inputs
        self.outputs = outputs
        self.tuple = result_class
        self.count = len(inputs) + len(outputs)
        layout = struct.Struct("=" + "".join(FORMATS[argument[1]] for argument in inputs + outputs))
        self.pack = layout.pack
        self.unpack = layout.unpack
        self.result_type: Any = _RESULTS.get(result)
        codes = "".join(
            "f" if argument[2] == "float32" else "i" for argument in outputs if len(argument) == 3
        )
        self.read_outputs = struct.Struct("=" + codes).unpack
        self.output_type = ctypes.c_char * (4 * len(codes))
        self.output_tags = range(0, 4 * len(codes), 4)
        self.check: Optional[Callable] = None
        self.check_arrays: Optional[Callable] = None
        self.after: Optional[Callable] = None
        self.is_import = False
        self.can_add_nothing = False
        self.is_export = False
        self.call: Any = None
        has_arrays = any(argument[1] in "wp" for argument in inputs)
        self.pack_all: Any = Packer(self).pack if has_arrays else None

    def refusal(self, values: tuple) -> Exception:
        """The reason why values, each after its tag, cannot be packed."""
        for argument, value in zip(self.inputs, values[1::2]):
            error = refusal(self.name, argument[0], argument[1], value)
            if error is not None:
                return error
        return TypeError(f"{self.name}(): an argument changed while it was read")

    def __repr__(self) -> str:
        return f"<method {self.id} {self.name}>"


def _file_state(path: bytes) -> Optional[tuple]:
    """What changes when a file is replaced; None when there is none."""
    try:
        state = os.stat(path)
    except OSError:
        return None
    return state.st_dev, state.st_ino, state.st_size, state.st_mtime_ns, state.st_ctime_ns


class Property:
    """One property of the surface as data."""

    __slots__ = ("id", "name", "code", "pack", "result_type")

    def __init__(self, number: int, name: str, code: str) -> None:
        self.id = number
        self.name = name
        self.code = code
        self.pack = struct.Struct("=" + FORMATS[code]).pack
        self.result_type: Any = _RESULTS[code]


class Still:
    """Lets no call of Python in while it is entered, such as one of a destructor or a signal
    handler: what was counted or listed stays as it is. No event may be fired meanwhile.
    """

    __slots__ = ("_pane", "_owner")

    def __init__(self, pane: "Calls") -> None:
        self._pane = pane
        self._owner = pane._owner

    def __enter__(self) -> None:
        self._pane._owner = None

    def __exit__(self, *_exception: Any) -> None:
        self._pane._owner = self._owner


def _need_frames(count: int) -> None:
    # Near the limit of recursion a callback cannot even begin, and so this raises RecursionError.
    if count:
        _need_frames(count - 1)


class Calls:
    """Calls on the viewer of a pane.

    Between any two steps of Python a destructor or a signal handler may run and close the pane.
    Then _handle becomes null, which the library refuses; a viewer whose call was about to begin is
    freed later (_life.close). For the same reason no pointer into a viewer outlasts the call that
    returned it, except inside Still().
    """

    __slots__ = ("_handle", "_number", "_owner", "_count", "__weakref__")
    _handle: ctypes.c_void_p
    _number: int  # by which callbacks find the pane
    _owner: Any  # its thread; None while Still() is entered
    _count: ShortValue

    def _live(self) -> None:
        """RuntimeError on another thread and for a closed pane."""
        raise NotImplementedError

    def _call(self, method: Method, *values: Any) -> Any:
        """Calls a method of plain values."""
        self._live()
        try:
            arguments = method.pack(*values)
        except (struct.error, OverflowError, TypeError):
            raise method.refusal(values) from None
        return self._invoke(method, arguments)

    def _read(self, method: Method, *values: Any) -> Any:
        """Calls a method of plain values that has outputs."""
        self._live()
        outputs = method.output_type()
        start = _address(outputs)
        pointers: list[int] = []
        for offset in method.output_tags:
            pointers += (6, start + offset)
        try:
            arguments = method.pack(*values, *pointers)
        except (struct.error, OverflowError, TypeError):
            raise method.refusal(values) from None
        result = self._invoke(method, arguments)
        values = method.read_outputs(outputs)
        if method.tuple is None:
            return values[0]
        return (
            method.tuple(*values) if method.result_type is None else method.tuple(result, *values)
        )

    def _invoke(self, method: Method, arguments: bytes) -> Any:
        result_type = method.result_type
        if result_type is None:
            if method.check is not None:
                self._check_values(method, arguments)
            if (
                status := _invoke(self._handle, method.id, arguments, method.count, None)
            ) or raised:
                self._fail(status, method.name)
            return None
        result = result_type()
        place = _address(result)
        if method.check is not None:
            self._check_values(method, arguments)
        if (status := _invoke(self._handle, method.id, arguments, method.count, place)) or raised:
            self._fail(status, method.name)
        return result.value if method.result != "b" else result.value != 0

    def _check_values(self, method: Method, arguments: bytes) -> None:
        values = method.unpack(arguments)[1::2]
        with Still(self):
            if self._handle:  # else the library refuses the call
                method.check(self, *values)

    def _fail(self, status: int, name: str) -> None:
        """Raises what a callback of a call has raised, or why the call failed."""
        error = take_raised(self._number)
        if error is not None:
            raise error
        if status == BAD_ARGUMENTS and not self._handle:
            self._live()
        if status == HANDLER_FAILED:
            _need_frames(20)
            raise Error("an exception ended a callback where it could not be kept", name)
        if status:
            raise Error(last_error(), name)

    def _ask(self, function: Callable, *arguments: Any) -> Any:
        """Calls a function of the library whose result is no status."""
        self._live()
        value = function(self._handle, *arguments)
        if raised:
            self._fail(0, function.__name__)
        if not self._handle:
            self._live()
        return value

    def _long_from(self, method_id: int) -> int:
        """The long result of a method without arguments that fires no event. For Still()."""
        result = LongValue()
        _invoke(self._handle, method_id, None, 0, _address(result))
        return result.value

    def _import(self, method: Method, arguments: bytes) -> None:
        """Calls a method that adds one object, or reports in the debugger output why not."""
        if method.check is not None:
            self._check_values(method, arguments)
        is_counted = method.can_add_nothing and not self._is_staging()
        before = self._object_count() if is_counted else 0
        with Capture() as capture:
            status = _invoke(self._handle, method.id, arguments, method.count, None)
        if raised or status == HANDLER_FAILED:
            capture.pass_on()
            self._fail(status, method.name)
        if status == FAILED:
            raise ImportFailed(capture.text() or last_error(), method.name)
        if is_counted and not status and self._handle and self._object_count() == before:
            raise ImportFailed(capture.text(), method.name)
        capture.pass_on()
        if status:
            self._fail(status, method.name)

    def _export(self, method: Method, arguments: bytes, path: bytes) -> None:
        """Calls a method that replaces a file by a new one: that the file on disk is another one
        is what says that it worked.
        """
        before = _file_state(path)
        with Capture() as capture:
            if method.check is not None:
                self._check_values(method, arguments)
            status = _invoke(self._handle, method.id, arguments, method.count, None)
        is_missing = not status and _file_state(path) in (None, before)
        if not is_missing:
            capture.pass_on()
        if status or raised:
            self._fail(status, method.name)
        if is_missing:
            name = os.fsdecode(path)
            raise Error(
                capture.text() or f"no file was written: '{name}' has no extension of a mesh file",
                method.name,
            )

    def _is_staging(self) -> bool:
        """Whether imports wait for EndParallelImport()."""
        raise NotImplementedError

    def _object_count(self) -> int:
        # GetNumObjects without its checks; it fires no event, so that one place for the result is
        # enough.
        count = self._count
        _invoke(self._handle, 23, None, 0, _address(count))
        return count.value

    def _pass(self, method: Method, *values: Any) -> Any:
        """Calls a method of arrays or texts."""
        self._live()
        keep: dict[Any, Any] = {}
        packed = method.pack_all(values, keep)
        if method.check_arrays is not None:
            method.check_arrays(keep)
        if method.is_import:
            return self._import(method, packed)
        if method.is_export:
            return self._export(method, packed, keep["path"].value)
        result = self._invoke(method, packed)
        if method.after is not None:
            method.after(self, result)
        return result

    def _call_by_name(self, method: Method, *values: Any) -> Any:
        """Calls a method whose outputs are arrays or addresses."""
        self._live()
        return method.call(self, method, *values)

    def _get(self, prop: Property) -> Any:
        self._live()
        value = prop.result_type()
        place = _address(value)
        if (status := _get_property(self._handle, prop.id, place)) or raised:
            self._fail(status, prop.name)
        return value.value != 0 if prop.code == "b" else value.value

    def _put(self, prop: Property, value: Any) -> None:
        self._live()
        try:
            data = prop.pack(TAGS[prop.code], flag(value) if prop.code == "b" else value)
        except (struct.error, OverflowError, TypeError):
            error = refusal(prop.name, "", prop.code, value)
            raise error or TypeError(f"{prop.name}: the value changed while it was read") from None
        if (status := _put_property(self._handle, prop.id, data)) or raised:
            self._fail(status, prop.name)
