/* The viewer for programs in C, and for every language that can call C. Usable from C89 and C++ compilers. */
#ifndef KV_SCENEPANE_H
#define KV_SCENEPANE_H

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include "KV_ScenePane/Version.h"
#include "KV_ScenePane/kv_scenepane_ids.h"

#if defined(__GNUC__)
#define KV_API __attribute__((visibility("default")))
#else
#define KV_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Every function belongs to the thread that created the viewer, unless it says otherwise. No C++ exception leaves a
   function: what one would throw is KV_FAILED, and kv_last_error() has its text. Text is UTF-8; a path may hold any
   bytes. Pointers that are passed in are read or written during the call only, unless a function says otherwise. They
   must not be null unless a function says otherwise; a null one is refused, an array of 0 elements may be null.
   Pointers inside the arguments of kv_invoke() are not checked.

   Programs run with every later library of the same major version. Functions, constants, and members of
   kv_window_request, which starts with its size, are only added; all other structs stay as they are. The libraries that
   this one needs, such as libMSRDLL.so.1, have versions of their own: a site may replace them by its own. */

/* One viewer. */
typedef struct kv_pane kv_pane;

/* Outcome of a call. */
typedef int32_t kv_status;
#define KV_DONE 0
#define KV_UNKNOWN_ID 1     /* no method or property has this id; nothing happened */
#define KV_BAD_ARGUMENTS 2  /* an argument is wrong, or the viewer is null or destroyed; nothing happened */
#define KV_FAILED 3         /* the call failed; see kv_last_error() */
#define KV_HANDLER_FAILED 4 /* a callback of the host returned a value other than 0 during the call */

/* Types of a kv_value. */
#define KV_VOID 0    /* no value */
#define KV_SHORT 1   /* as.i16: short and VARIANT_BOOL (0 is false, -1 is true) */
#define KV_LONG 2    /* as.i32: long and int */
#define KV_FLOAT 3   /* as.f32 */
#define KV_STRING 4  /* as.wide: a zero-terminated wide string, or null for the empty one */
#define KV_UTF8 5    /* as.utf8: accepted where KV_STRING is declared */
#define KV_POINTER 6 /* as.pointer: an array of the host, or where an output is written */
#define KV_INT64 7   /* as.i64: an address in an event */

/* An argument or a result, tagged with its type. */
typedef struct kv_value {
    int32_t type;
    union {
        int16_t i16;
        int32_t i32;
        float f32;
        const wchar_t* wide;
        const char* utf8;
        void* pointer;
        int64_t i64;
    } as;
} kv_value;

/* ---- callbacks. They run on the viewer's thread, inside the call that caused them, and may call all functions, also
   kv_destroy() for their own viewer. A value other than 0 ends the call that caused the callback with
   KV_HANDLER_FAILED; the viewer goes on working. */

/* Receives an event. The arguments are valid until the callback returns. */
typedef int32_t (*kv_event_function)(void* user, int32_t id, const kv_value* arguments, size_t count);
/* Receives a message that the user must read, and returns when it was read. */
typedef int32_t (*kv_message_function)(void* user, const char* text);
/* Shows the about dialog with a title, one line of text and an OK button, and returns when it is closed. */
typedef int32_t (*kv_about_function)(void* user, const char* title, const char* line);

/* ---- life of a viewer */

#define KV_CHILD 0      /* a child of the X11 window "parent" */
#define KV_TOP_LEVEL 1  /* an X11 window of its own */
#define KV_OFF_SCREEN 2 /* a surface without a display; input by kv_send_mouse() and kv_send_key() */
#define KV_NO_PICTURE 3 /* no surface and no OpenGL: imports, exports and their results only */

#define KV_ANY_GPU (-1)  /* graphics devices first, then the default display, software last */
#define KV_SOFTWARE (-2) /* the processor draws */

typedef struct kv_window_request {
    /* sizeof(kv_window_request). Members beyond a smaller size have their defaults; those beyond the struct of the
       library must be 0. */
    size_t size;
    int32_t kind;                     /* KV_CHILD to KV_NO_PICTURE */
    int32_t x, y;                     /* position in the parent, pixels */
    int32_t width, height;            /* of the drawing area, pixels */
    int32_t gl_major, gl_minor;       /* requested OpenGL version, at least 3.3 */
    int32_t samples;                  /* per pixel; 0 for none */
    int32_t gpu;                      /* of an off-screen viewer: KV_ANY_GPU, KV_SOFTWARE or a number from 0 */
    uintptr_t parent;                 /* X11 window id, for KV_CHILD */
    const char* display;              /* X display name; null for $DISPLAY */
    const char* title;                /* of a top-level window; null for the default */
    double scale;                     /* factor of text, lines and points */
    kv_message_function show_message; /* kept; null: messages go to the debugger output */
    kv_about_function show_about;     /* kept; null: AboutBox writes its line to the debugger output */
    void* user;                       /* first argument of both; kept */
} kv_window_request;

/* Sets all members to their defaults: an off-screen viewer of 640 x 480 pixels, OpenGL 3.3, no samples, any GPU,
   scale 1. Any thread. */
KV_API void kv_window_request_init(kv_window_request* request);
/* Creates a viewer; kv_destroy() ends it. Null when it was refused: kv_last_error() has the reason. */
KV_API kv_pane* kv_create(const kv_window_request* request);
/* Closes the window and frees the viewer; no callback is called any more. May be called inside a callback. Null is
   allowed. */
KV_API void kv_destroy(kv_pane* pane);
/* Version of the library, such as "5.5.0". Any thread. */
KV_API const char* kv_version(void);
/* Why the last call that failed on this thread did; empty before the first one. A call that succeeds leaves the text
   as it is: read it when a call has not returned KV_DONE, or has returned null, -1 or KV_NO_TEXT. Valid until the next
   call that fails on this thread. The kv_member functions set none when they find nothing. */
KV_API const char* kv_last_error(void);

/* ---- the window */

/* A descriptor that is readable when kv_process_events() has work. It stays the same for the life of the viewer. -1
   when the viewer is null or destroyed. */
KV_API int kv_event_descriptor(const kv_pane* pane);
/* Handles pending input, messages, timers and queued repaints. Never blocks. */
KV_API kv_status kv_process_events(kv_pane* pane);
/* 1 while there is a window, else 0. */
KV_API int32_t kv_has_window(const kv_pane* pane);
/* X11 window id; 0 without one. */
KV_API uintptr_t kv_native_window(const kv_pane* pane);
/* Moves a KV_CHILD into another X11 window, to x, y in its pixels. KV_FAILED when that is none. */
KV_API kv_status kv_reparent(kv_pane* pane, uintptr_t parent, int32_t x, int32_t y);
/* Factor of text, lines and points, limited to 0.25 to 8; 1 for one that is not a number above 0. Queues a repaint. */
KV_API kv_status kv_set_scale(kv_pane* pane, double scale);

/* Kinds of mouse input. */
#define KV_MOUSE_MOVE 0
#define KV_MOUSE_LEFT_DOWN 1
#define KV_MOUSE_LEFT_UP 2
#define KV_MOUSE_MIDDLE_DOWN 3
#define KV_MOUSE_MIDDLE_UP 4
#define KV_MOUSE_RIGHT_DOWN 5
#define KV_MOUSE_RIGHT_UP 6
#define KV_MOUSE_DOUBLE_CLICK 7
#define KV_MOUSE_WHEEL 8
/* Bits of flags: what is held. A press includes its own button, a release does not. */
#define KV_MOUSE_LEFT 0x01u
#define KV_MOUSE_RIGHT 0x02u
#define KV_MOUSE_SHIFT 0x04u
#define KV_MOUSE_CTRL 0x08u
#define KV_MOUSE_MIDDLE 0x10u
/* Handles one mouse event as if the window had received it. x, y: pixels, y downward; delta: 120 per wheel notch. */
KV_API kv_status kv_send_mouse(kv_pane* pane, int32_t kind, uint32_t flags, int32_t x, int32_t y, int32_t delta);
/* Handles one key event: is_down 0 for a release; codes, counts and flags as in the event CustomKeyDown. */
KV_API kv_status kv_send_key(kv_pane* pane, int32_t is_down, int32_t code, int32_t count, int32_t flags);

/* ---- the automation surface: ids in kv_scenepane_ids.h, what the methods do in docs/automation.md */

/* Calls a method. Types and number of the arguments must be those of the method; kv_last_error() says what is wrong.
   result  receives the result, KV_VOID for a method without one; may be null. Unchanged unless KV_DONE */
KV_API kv_status kv_invoke(kv_pane* pane, int32_t id, const kv_value* arguments, size_t count, kv_value* result);
KV_API kv_status kv_get_property(kv_pane* pane, int32_t id, kv_value* value);
KV_API kv_status kv_put_property(kv_pane* pane, int32_t id, const kv_value* value);
/* Connects the receiver of all events; replaces a former one, null disconnects. user is kept. */
KV_API kv_status kv_connect(kv_pane* pane, kv_event_function function, void* user);

/* What a member of the surface is. */
#define KV_METHOD 0
#define KV_PROPERTY 1
#define KV_EVENT 2

typedef struct kv_argument_info {
    const char* name;
    const char* type; /* as declared: "short", "VARIANT*", ... */
    int32_t value;    /* type of the kv_value, KV_SHORT to KV_INT64 */
    int32_t output;   /* 1: the method writes through the pointer */
    /* Of arrays and outputs the type of an element ("int32", "float32", "uint8", "uint32", "pointer", "mesh"), else
       empty; and the number of elements per dimension, such as "number x 3", or empty for a single value. */
    const char* element;
    const char* shape;
} kv_argument_info;

/* A method, a property or an event as data, for bindings that are made at run time. Valid for the life of the process.
 */
typedef struct kv_member_info {
    int32_t kind; /* KV_METHOD, KV_PROPERTY or KV_EVENT */
    int32_t id;
    const char* name;
    const char* type; /* of the result or the property, as declared */
    int32_t value;    /* the same as type of a kv_value */
    int32_t writable; /* of a property */
    size_t argument_count;
    const kv_argument_info* arguments;
} kv_member_info;

/* Number of members of a kind. Any thread. */
KV_API size_t kv_member_count(int32_t kind);
/* The member at a place from 0 in the order of the table; null outside it. Any thread. */
KV_API const kv_member_info* kv_member_at(int32_t kind, size_t index);
/* Finds a member by its name, case-sensitive; null when there is none. Any thread. */
KV_API const kv_member_info* kv_member_by_name(int32_t kind, const char* name);
/* Finds a member by its id; null when there is none. Any thread. */
KV_API const kv_member_info* kv_member_by_id(int32_t kind, int32_t id);

/* ---- what the surface does not return */

/* Draws a frame and copies it: width x height words 0xAARRGGBB, row by row, top row first.
   pixels    receives the words; null reads the size only, without a frame
   capacity  words that fit; KV_BAD_ARGUMENTS when there are more
   width, height  receive the size in pixels, also when the picture does not fit; each may be null
   KV_FAILED without a window, for KV_NO_PICTURE, without pixels (a width or height below 1) and, unless only the size
   is read, while painting is blocked. */
KV_API kv_status kv_capture_picture(kv_pane* pane, uint32_t* pixels, size_t capacity, int32_t* width, int32_t* height);

typedef struct kv_frame_statistics {
    uint64_t count; /* frames that were drawn, also those of kv_capture_picture(), not those of CaptureScreenShot */
    double seconds; /* of the last one, from its start until it was passed to the window system */
} kv_frame_statistics;
/* Number of frames so far, and the duration of the last one; both 0 before the first frame. */
KV_API kv_status kv_frame_statistics_result(kv_pane* pane, kv_frame_statistics* statistics);

typedef struct kv_surface_point {
    int32_t object, triangle; /* indices from 0; object is -1 when nothing was hit */
    float point[3];           /* world frame, scene units */
    float distance;           /* along the view direction */
} kv_surface_point;
/* Finds the nearest surface of the visible objects under a pixel. */
KV_API kv_status kv_pick_surface(kv_pane* pane, int32_t x, int32_t y, kv_surface_point* hit);

/* Text functions write at most capacity bytes with the zero at the end, and return the length without it. A return
   value of capacity or more means that the text was cut off. buffer may be null with capacity 0. On failure they return
   KV_NO_TEXT, and the buffer has the empty text. */
#define KV_NO_TEXT SIZE_MAX

/* The path of the scan that an object was read from, or the host's name for it; empty for objects of mesh files.
   KV_NO_TEXT for a bad index. */
KV_API size_t kv_object_name(kv_pane* pane, int32_t index, char* buffer, size_t capacity);
/* 1 when the vertices of the object have colours, else 0; also 0 for a bad index. */
KV_API int32_t kv_object_has_colors(kv_pane* pane, int32_t index);
/* Device, renderer, vendor and version of the driver, one per line; KV_NO_TEXT without a window. */
KV_API size_t kv_graphics_info(kv_pane* pane, char* buffer, size_t capacity);

/* Cuts all visible objects by a lasso.
   mode  as for StartSegmentation, 0 to 5
   points  count x 2 numbers: fractions of the drawing area, from 0 to below 1, y downward. The region does not reach
           beyond the corners that are in the drawing area
   changed  receives 1 when an object has changed, else 0; may be null */
KV_API kv_status kv_cut_with_lasso(kv_pane* pane, int32_t mode, const double* points, size_t count, int32_t* changed);
/* Number of cuts that PerformUndo can take back. */
KV_API int32_t kv_undo_step_count(const kv_pane* pane);

typedef struct kv_cut_save_entry {
    int32_t object;    /* index when the entry was made */
    int32_t outcome;   /* 0 to be written, 1 written, 2 nothing to save, 3 not from a pcm file, 4 file not read,
                          5 file not written */
    int32_t cut_count; /* cuts by lasso before the save */
    int32_t is_moved;  /* 1: the object has another transform than at its import */
    int32_t is_cut_while_moved;
    int32_t is_nothing_left; /* 1: written, and the file has no valid pixel any more */
    const char* file;        /* both valid until the next kv_cut_save_entries() of this viewer */
    const char* reason;
} kv_cut_save_entry;
/* One entry per object: with planned 1 what SaveCuttingToPcms would do now, else what the last one did.
   entries  receives at most capacity entries; null reads their number only
   Returns the number of entries that there are; 0 when the call failed. */
KV_API size_t kv_cut_save_entries(kv_pane* pane, int32_t planned, kv_cut_save_entry* entries, size_t capacity);

typedef struct kv_cut_mask {
    uint32_t kind;         /* 0 removes inside, 1 outside, 2 what is visible inside */
    double projection[16]; /* column-major, eye to clip coordinates */
    double model_view[16]; /* column-major, world to eye coordinates */
    int32_t viewport[4];   /* x, y, width, height, y upward */
    int32_t bounds[4];     /* min x, min y, max x, max y, inclusive, y downward */
    const uint32_t* bits;  /* one bit per pixel, bit y * width + x, y downward; bit i is bit i % 32 of word i / 32 */
    size_t bit_count;
    const float* depth; /* of kind 2 width x height window depths, bottom row first; else null */
    size_t depth_count;
} kv_cut_mask;
/* Reads a cut mask by its address, from CutMaskApplied or GetCutMasks. The arrays live as long as the mask. A null
   address gives a mask without bits. Any thread, while the mask lives. */
KV_API void kv_cut_mask_read(const void* address, kv_cut_mask* mask);

typedef struct kv_alignment_pair {
    float moving[3], moving_normal[3]; /* world frame; normals are 0 where they are unknown */
    float fixed[3], fixed_normal[3];
} kv_alignment_pair;
typedef struct kv_alignment {
    int32_t is_found;
    double transform[16]; /* 4 x 4, row by row: moving to fixed points, world frame */
    double rms;           /* scene units */
    size_t pair_count;
} kv_alignment;
/* Moves the variable objects so that the moving points come to the fixed points.
   result  receives what was found; may be null */
KV_API kv_status kv_align_by_pairs(kv_pane* pane, const kv_alignment_pair* pairs, size_t count, kv_alignment* result);
/* What the last alignment by points found.
   result  may be null
   pairs, residuals  receive at most capacity entries; each may be null */
KV_API kv_status kv_alignment_result(kv_pane* pane, kv_alignment* result, kv_alignment_pair* pairs, double* residuals,
                                     size_t capacity);

typedef struct kv_clip_height {
    int32_t found;
    float height; /* z of the plane, world frame */
    int32_t kind; /* 0 not decided, 1 from all points, 2 flat spot, 3 curved spot */
} kv_clip_height;
/* What the last placement of the clip plane at the data found. */
KV_API kv_status kv_clip_height_result(kv_pane* pane, kv_clip_height* height);

typedef struct kv_vertex {
    float x, y, z, nx, ny, nz; /* position and unit normal, world frame */
    uint32_t color;            /* 0xAARRGGBB */
    uint32_t grid_index;       /* (row << 16) | column of the measurement; 0 when not from a grid */
} kv_vertex;
typedef struct kv_mesh kv_mesh;
/* A mesh for the argument "mesh" of ImportMeshedMeasurement, copied from the arrays. Null with kv_last_error() set when
   an index is not one of a vertex, or memory is short. Any thread.
   triangles  triangle_count x 3 indices, counterclockwise seen from outside
   has_colors  0: the colours of the vertices are not used */
KV_API kv_mesh* kv_mesh_create(const kv_vertex* vertices, size_t vertex_count, const int32_t* triangles,
                               size_t triangle_count, int32_t has_colors);
/* Null is allowed. Any thread. */
KV_API void kv_mesh_destroy(kv_mesh* mesh);

/* ---- persisted properties: DrawMosaic, DrawMode and MoveReduced */

#define KV_PROPERTIES_TEXT 0
#define KV_PROPERTIES_BINARY 1
/* Writes a store of the persisted properties; the viewer is not marked as modified afterwards, unless the store was cut
   off. The return value is that of a text function; a binary store may hold zero bytes. KV_NO_TEXT for another format.
 */
KV_API size_t kv_save_properties(kv_pane* pane, int32_t format, char* buffer, size_t capacity);
/* Reads a store of either format. KV_FAILED for one that is damaged or of a newer major version: the properties then
   have their defaults. */
KV_API kv_status kv_load_properties(kv_pane* pane, const char* store, size_t size);
/* 1 when a persisted property was changed since the last save or load, else 0. */
KV_API int32_t kv_is_modified(const kv_pane* pane);

/* ---- the debugger output of the whole process, see DebugOutput.h */

/* Receives one piece of text, usually whole lines; on any thread that imports, one call at a time. */
typedef void (*kv_debug_function)(void* user, const char* text, size_t size);
/* Redirects the debugger output; null restores standard error. user is kept. Any thread. */
KV_API void kv_set_debug_output(kv_debug_function function, void* user);

/* ---- since 5.5 */

/* Version of the library as a number, to compare with KV_SCENEPANE_VERSION. Any thread. */
KV_API int32_t kv_version_number(void);

/* Imports one file by the method that its extension names: ImportMesh for stl, ply, hps, ois and msh, ImportScan for
   pcm, pax and xdt. KV_DONE when an object was added; else KV_FAILED, and kv_last_error() is the reason. skip scans are
   thinned to one point per skip x skip points; 1 for all confidence  points of scans with a lower one are left out; 0
   for all color       0x00BBGGRR, of scans without colours */
KV_API kv_status kv_import_file(kv_pane* pane, const char* path, int32_t skip, float confidence, int32_t color);
/* Why the last import or export of the viewer failed, by kv_import_file() or by a method; empty after one that
   succeeded. A text function. */
KV_API size_t kv_file_error(kv_pane* pane, char* buffer, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
