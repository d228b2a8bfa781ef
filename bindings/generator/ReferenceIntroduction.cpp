// How the members of the surface are called in C++, C and Python.
#include "ReferenceIntroduction.h"

namespace bindings {

const std::string_view kReferenceHead =
    R"(<!-- Made by generate-bindings from the automation table and the headers of include/KV_ScenePane: do not edit. -->
# The automation surface

Everything that a host does with a viewer, apart from creating it and giving it a window, goes through one table of
120 methods, 4 properties and 13 events. Each has a number, its id, a name, and arguments with names and types. They are
the same in every language and do not change between versions: a program that was built against an older version finds
every id where it was.

This page lists them all. How to create a viewer, run its event loop and use its parts together is in
[hosting.md](hosting.md).

## In C++, C and Python

| | C++ | C | Python |
|---|---|---|---|
| Declared in | `KV_ScenePane/ScenePane.h` | `KV_ScenePane/kv_scenepane.h` | `import kv_scenepane as kv` |
| Method | `viewer->Methods().SetSize(800, 600)` | `kv_invoke(pane, KV_SetSize, arguments, 2, NULL)` | `pane.SetSize(800, 600)` |
| Method by id or name | | `kv_invoke(pane, 4, arguments, 2, NULL)` | `pane.invoke(4, 800, 600)`, `pane.invoke("SetSize", 800, 600)` |
| Property | `SetDrawMode(1)`, `GetDrawMode()` | `kv_put_property(pane, KV_PROPERTY_DrawMode, &value)`, `kv_get_property()` | `pane.DrawMode = 1` |
| Event | `NeedleCreated()` of a class derived from `_DKV_ScenePaneEvents`; `viewer->Connect(&events)` | `kv_connect(pane, function, user)`; the id is `KV_EVENT_NeedleCreated` | `pane.on("NeedleCreated", function)` |
| Failure | an exception | a status other than `KV_DONE`; `kv_last_error()` has the reason | an exception |

In C the arguments are an array of `kv_value`, each with its type and its value; the table itself can be read by
`kv_member_by_name()` and its like:

```c
kv_value size[2];
size[0].type = KV_SHORT;
size[0].as.i16 = 800;
size[1].type = KV_SHORT;
size[1].as.i16 = 600;
if (kv_invoke(pane, KV_SetSize, size, 2, NULL) != KV_DONE) puts(kv_last_error());
```

In Python every method has its own name and the names of its arguments, by position or by keyword. What a method writes
through pointers is returned: alone when it is one value and the method has no result, else as a named tuple, with
`result` first when there is one. An argument that only says how long an array is may be left out.

```python
with kv.ScenePane.offscreen(800, 600) as pane:
    pane.CreateNeedle(id=7, pinPosX=0, pinPosY=0, pinPosZ=0, headPosX=0, headPosY=0, headPosZ=10)
    needle = pane.GetNeedle(7)
    print(needle.result, needle.headPosZ)  # True 10.0
```

## Types

| Declared | C++ | C: `type`, member of `as` | Python |
|---|---|---|---|
| `short` | `std::int16_t` | `KV_SHORT`, `i16` | `int` |
| `VARIANT_BOOL` | `VARIANT_BOOL`: 0 is false, -1 is true | `KV_SHORT`, `i16` | `bool` |
| `long`, `int` | `std::int32_t` | `KV_LONG`, `i32` | `int` |
| `float` | `float` | `KV_FLOAT`, `f32` | `float` |
| `BSTR` | `const wchar_t*`; paths by `WidePath()` | `KV_UTF8`, `utf8`, or `KV_STRING`, `wide` | `str`; paths also `bytes` and `os.PathLike` |
| `float*`, `long*`, `int*` | a pointer to where the output is written | `KV_POINTER`, `pointer` | a return value |
| `VARIANT*` in | a pointer to the array of the host | `KV_POINTER`, `pointer` | a numpy array, or what the text says |
| `VARIANT*` out | a pointer to memory of the host | `KV_POINTER`, `pointer` | a return value, a new numpy array |
| `int64` | `std::int64_t` | `KV_INT64`, `i64` | `int` |

An array is described by its number of elements in each dimension, slowest first, and the type of an element:
`array number x 3 of float32` is three floats for the first point, three for the second, and so on, without gaps.
Numbers that are words are other arguments of the method, or a method that returns the number.

A null pointer, an array that is too short, or an index that the text calls not checked is an error of the caller that
C++ and C do not find: the process can crash. Python checks types, sizes and indices before the call and raises
`TypeError`, `ValueError` or `IndexError`.

## Conventions
)";

const std::string_view kReferenceBeforeEvents = R"(
More about the three strengths of repainting is in [hosting.md](hosting.md#three-strengths-of-repainting).

All calls are made on the thread that created the viewer. In Python a call on another thread raises `RuntimeError`.

Of the events:
)";

const std::string_view kReferenceEnd = R"(
In C and Python a handler may do the same. A handler in C that returns another value than 0 ends the call that caused
the event with `KV_HANDLER_FAILED`; an exception of a handler in Python reaches the caller of the method. The viewer
goes on working in both cases.

The texts are those of the headers of C++. What they name outside of the table has these names in C and Python:

| In the texts | C | Python |
|---|---|---|
| `ProcessEvents()` | `kv_process_events()` | `pane.process_events()` |
| `HasWindow()` | `kv_has_window()` | `pane.has_window` |
| `ScenePane::Connect()` | `kv_connect()` | `pane.on()`, `pane.events()` |
| `ScenePane::GetCutSaveResults()` | `kv_cut_save_entries()` | `pane.cut_save_entries()` |
| `showMessage`, `showAbout` | `show_message`, `show_about` of `kv_window_request` | `on_message`, `on_about` of the functions that create a pane |
| the debugger output | `kv_set_debug_output()` | `kv.on_debug_output()` |
| a mesh of the host | `kv_mesh_create()` | `kv.Mesh` |
| `ACAD::CutMask` | `kv_cut_mask_read()` | `kv.CutMask` |
| mouse flags, `KeyInput` (Input.h) | `kv_send_mouse()`, `kv_send_key()` | `pane.send_mouse()`, `pane.send_key()` |
| `DrawModePoints` and the other values of modes | `KV_DrawModePoints` | `kv.DrawMode.DrawModePoints` |
| null | `NULL` | `None` |
| `std::exception` and other exceptions | `KV_FAILED` | `kv.Error` |
)";

}  // namespace bindings
