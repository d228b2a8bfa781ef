/* Scenarios of callbacks in plain C: nothing but the public header is used. */
#include "control/CCallbacks.h"

#include <stdlib.h>
#include <string.h>

#define WIDTH 60
#define HEIGHT 40
#define SCREEN_SHOT_WORDS (2048 * 2048)

typedef struct host {
    kv_pane* pane;
    int32_t event, action;
    int acts; /* the callback acts at the next arrival */
    int destroyed;
    const char* path;
    uint32_t* buffer;
    kv_mesh* mesh;
    callback_report* report;
} host;

static kv_value short_value(int16_t number) {
    kv_value value;
    memset(&value, 0, sizeof value);
    value.type = KV_SHORT;
    value.as.i16 = number;
    return value;
}

static kv_value long_value(int32_t number) {
    kv_value value;
    memset(&value, 0, sizeof value);
    value.type = KV_LONG;
    value.as.i32 = number;
    return value;
}

static kv_value float_value(float number) {
    kv_value value;
    memset(&value, 0, sizeof value);
    value.type = KV_FLOAT;
    value.as.f32 = number;
    return value;
}

static kv_value pointer_value(void* pointer) {
    kv_value value;
    memset(&value, 0, sizeof value);
    value.type = KV_POINTER;
    value.as.pointer = pointer;
    return value;
}

static void note(host* self, const char* what, const char* why) {
    if (self->report->problem[0] != 0) return;
    strncpy(self->report->problem, what, 100);
    strcat(self->report->problem, ": ");
    strncat(self->report->problem, why, 150);
}

static int32_t number_from(host* self, int32_t id) {
    kv_value result;
    memset(&result, 0, sizeof result);
    if (kv_invoke(self->pane, id, NULL, 0, &result) != KV_DONE) return 0;
    return result.type == KV_SHORT ? result.as.i16 : result.as.i32;
}

/* An argument by its name and type: indices and ids 0, other numbers 1, arrays of zeros that are long enough. */
static kv_value argument_of(host* self, const kv_argument_info* argument) {
    const int is_index = strcmp(argument->name, "idx") == 0 || strcmp(argument->name, "objIdx") == 0 ||
                         strcmp(argument->name, "objectIdx") == 0 || strcmp(argument->name, "id") == 0 ||
                         strcmp(argument->name, "index") == 0;
    kv_value text;
    switch (argument->value) {
        case KV_SHORT:
            return short_value((int16_t)(is_index ? 0 : 1));
        case KV_LONG:
            return long_value(is_index ? 0 : 1);
        case KV_FLOAT:
            return float_value(0.5f);
        case KV_STRING:
            memset(&text, 0, sizeof text);
            text.type = KV_UTF8;
            text.as.utf8 = self->path;
            return text;
        default:
            return pointer_value(strcmp(argument->element, "mesh") == 0 ? (void*)self->mesh : (void*)self->buffer);
    }
}

/* Whether the index 0 that a method does not check is one. */
static int has_what_it_names(host* self, int32_t id) {
    switch (id) {
        case KV_GetMeshDataSize:
        case KV_ExportMesh:
            return number_from(self, KV_GetNumObjects) > 0;
        case KV_RemovePickPointSphere:
        case KV_GetPickPointSphereCoords:
        case KV_MovePickPointSphere:
            return number_from(self, KV_GetNumberOfPickPointSpheres) > 0;
        default:
            return 1;
    }
}

/* Calls a method by what the table says of it. */
static kv_status call_by_table(host* self, const kv_member_info* method) {
    kv_value arguments[32];
    size_t i;
    for (i = 0; i < method->argument_count; ++i) arguments[i] = argument_of(self, &method->arguments[i]);
    if (method->id == KV_RecreateOpenglContext) arguments[0] = arguments[1] = long_value(3);
    if (method->id == KV_RecreateOpenglContext) arguments[2] = long_value(0);
    if (method->id == KV_SetSize) arguments[0] = short_value(WIDTH);
    if (method->id == KV_SetSize) arguments[1] = short_value(HEIGHT);
    if (method->id == KV_SetClipPlaneEnabled) arguments[0] = long_value(0);
    memset(self->buffer, 0, SCREEN_SHOT_WORDS * sizeof *self->buffer);
    return kv_invoke(self->pane, method->id, arguments, method->argument_count, NULL);
}

/* In the order of the table, which empties the scene first and fills it later. */
static void call_every_method(host* self) {
    const size_t count = kv_member_count(KV_METHOD);
    size_t i;
    for (i = 0; i < count; ++i) {
        const kv_member_info* method = kv_member_at(KV_METHOD, i);
        if (!has_what_it_names(self, method->id)) continue;
        ++self->report->calls;
        if (call_by_table(self, method) != KV_DONE) note(self, method->name, kv_last_error());
    }
    if (kv_process_events(self->pane) != KV_DONE) note(self, "kv_process_events", kv_last_error());
}

static int32_t on_event(void* user, int32_t id, const kv_value* arguments, size_t count) {
    host* self = (host*)user;
    const kv_member_info* event = kv_member_by_id(KV_EVENT, id);
    size_t i;
    if (self->destroyed) {
        ++self->report->events_after_end;
        return 0;
    }
    if (event == NULL || event->argument_count != count) note(self, "event", "another number of arguments");
    for (i = 0; event != NULL && i < count; ++i)
        if (arguments[i].type != event->arguments[i].value) note(self, event->name, "an argument of another type");
    if (id != self->event) return 0;
    ++self->report->arrivals;
    if (!self->acts) return 0;
    self->acts = 0;
    if (self->action == RETURN_ONE) return 1;
    if (self->action == CALL_EVERY_METHOD) {
        call_every_method(self);
        return 0;
    }
    kv_destroy(self->pane);
    self->destroyed = 1;
    return 0;
}

/* ---- how each event is made to fire */

static kv_status invoke(host* self, int32_t id, const kv_value* arguments, size_t count) {
    return kv_invoke(self->pane, id, arguments, count, NULL);
}

static kv_status invoke_with_long(host* self, int32_t id, int32_t number) {
    const kv_value argument = long_value(number);
    return invoke(self, id, &argument, 1);
}

static kv_status invoke_with_short(host* self, int32_t id, int16_t number) {
    const kv_value argument = short_value(number);
    return invoke(self, id, &argument, 1);
}

/* A triangle that fills the window, and nothing else. */
static void set_scene(host* self) {
    static const float corners[9] = {-90, -90, 0, 90, -90, 0, 0, 120, 0};
    static const int32_t triangle[3] = {0, 1, 2};
    kv_value arguments[4];
    invoke(self, KV_BlockPaintEvents, (arguments[0] = short_value(0), arguments), 1);
    invoke(self, KV_FinishInteraction, NULL, 0);
    invoke(self, KV_EndParallelImport, NULL, 0);
    invoke(self, KV_ClearData, NULL, 0);
    invoke(self, KV_DeleteNeedles, NULL, 0);
    invoke_with_long(self, KV_SetMaxNumberOfNeedles, 8);
    arguments[0] = long_value(3);
    arguments[1] = long_value(1);
    arguments[2] = pointer_value((void*)corners);
    arguments[3] = pointer_value((void*)triangle);
    invoke(self, KV_ImportMeshFromMemory, arguments, 4);
    invoke(self, KV_CenterView, NULL, 0);
    invoke(self, KV_PerformRefresh, NULL, 0);
}

static kv_status create_needle(host* self) {
    kv_value arguments[7];
    size_t i;
    arguments[0] = long_value(3);
    for (i = 1; i < 7; ++i) arguments[i] = float_value((float)i);
    return invoke(self, KV_CreateNeedle, arguments, 7);
}

static kv_status pick_object(host* self) {
    invoke_with_short(self, KV_SetIGDRotation, 0);
    invoke_with_short(self, KV_FlipMouseButtons, 0);
    invoke_with_short(self, KV_SetNeedlePickingMode, 0);
    invoke_with_short(self, KV_SetPickMode, 2);
    return kv_send_mouse(self->pane, KV_MOUSE_DOUBLE_CLICK, KV_MOUSE_LEFT, WIDTH / 2, HEIGHT / 2, 0);
}

static kv_status set_view(host* self) {
    kv_value arguments[11];
    size_t i;
    for (i = 0; i < 10; ++i) arguments[i] = float_value(0);
    arguments[0] = arguments[4] = arguments[9] = float_value(1);
    arguments[10] = short_value(0);
    invoke_with_short(self, KV_TracingMode, 1);
    return invoke(self, KV_SetViewParams, arguments, 11);
}

static kv_status add_sphere(host* self) {
    kv_value arguments[4];
    arguments[0] = arguments[1] = arguments[2] = float_value(1);
    arguments[3] = long_value(255);
    return invoke(self, KV_AddPickPointSphere, arguments, 4);
}

/* To a context that no driver has, or back: both change the ready state. */
static kv_status change_ready_state(host* self) {
    kv_value arguments[3];
    arguments[0] = arguments[1] = long_value(kv_has_window(self->pane) ? 99 : 3);
    arguments[2] = long_value(0);
    return invoke(self, KV_RecreateOpenglContext, arguments, 3);
}

static kv_status cut(host* self) {
    static const double lasso[6] = {0.1, 0.1, 0.9, 0.1, 0.5, 0.15};
    return kv_cut_with_lasso(self->pane, 0, lasso, 3, NULL); /* what lies outside */
}

/* @return of the call that fires the event */
static kv_status fire(host* self) {
    set_scene(self);
    switch (self->event) {
        case KV_EVENT_ReadyStateChange:
            return change_ready_state(self);
        case KV_EVENT_SelectObjCoords:
            return pick_object(self);
        case KV_EVENT_SegmentationDone:
            invoke_with_short(self, KV_StartSegmentation, 0);
            return invoke(self, KV_EndSegmentation, NULL, 0);
        case KV_EVENT_ViewDirectionChanged:
            return set_view(self);
        case KV_EVENT_AlignmentDone:
            invoke(self, KV_AlignInteractive, NULL, 0);
            return invoke(self, KV_FinishInteraction, NULL, 0);
        case KV_EVENT_NeedleCreated:
            return create_needle(self);
        case KV_EVENT_NeedleSelected:
            create_needle(self);
            return invoke_with_long(self, KV_SelectNeedle, 3);
        case KV_EVENT_NeedleDeleted:
            create_needle(self);
            return invoke_with_long(self, KV_DeleteNeedle, 3);
        case KV_EVENT_NeedleDeselected:
            create_needle(self);
            invoke_with_long(self, KV_SelectNeedle, 3);
            return invoke_with_long(self, KV_DeselectNeedle, 3);
        case KV_EVENT_CustomKeyDown:
            return kv_send_key(self->pane, 1, 'A', 1, 0);
        case KV_EVENT_PickPointCountChanged:
            return add_sphere(self);
        case KV_EVENT_CutMaskApplied:
            return cut(self);
        default:
            return KV_UNKNOWN_ID;
    }
}

/* The viewer still has its window, draws, and fires the event once more. */
static int is_whole(host* self) {
    uint32_t pixels[WIDTH * HEIGHT];
    int32_t width = 0, height = 0;
    int32_t arrivals = self->report->arrivals;
    if (self->event == KV_EVENT_ReadyStateChange && kv_has_window(self->pane)) {
        if (fire(self) != KV_DONE) return note(self, "once more", kv_last_error()), 0;
        if (self->report->arrivals <= arrivals) return note(self, "once more", "no event"), 0;
        arrivals = self->report->arrivals;
    }
    if (fire(self) != KV_DONE) return note(self, "once more", kv_last_error()), 0;
    if (self->report->arrivals <= arrivals) return note(self, "once more", "no event"), 0;
    if (self->event == KV_EVENT_ReadyStateChange) set_scene(self);
    if (!kv_has_window(self->pane)) return note(self, "window", "gone"), 0;
    if (kv_capture_picture(self->pane, pixels, WIDTH * HEIGHT, &width, &height) != KV_DONE)
        return note(self, "picture", kv_last_error()), 0;
    if (width != WIDTH || height != HEIGHT) return note(self, "picture", "of another size"), 0;
    if (number_from(self, KV_GetNumObjects) != 1) return note(self, "objects", "another number"), 0;
    return 1;
}

int run_callback(int32_t event, int32_t action, const char* scratch_path, callback_report* report) {
    kv_window_request request;
    kv_vertex vertex;
    host self;
    memset(report, 0, sizeof *report);
    memset(&self, 0, sizeof self);
    memset(&vertex, 0, sizeof vertex);
    self.event = event;
    self.action = action;
    self.path = scratch_path;
    self.report = report;
    self.buffer = (uint32_t*)calloc(SCREEN_SHOT_WORDS, sizeof *self.buffer);
    self.mesh = kv_mesh_create(&vertex, 1, NULL, 0, 0);
    kv_window_request_init(&request);
    request.width = WIDTH;
    request.height = HEIGHT;
    request.gpu = KV_SOFTWARE;
    self.pane = kv_create(&request);
    if (self.pane != NULL) {
        set_scene(&self);
        kv_connect(self.pane, on_event, &self);
        self.acts = 1;
        report->status = fire(&self);
        strncpy(report->error, kv_last_error(), sizeof report->error - 1);
        if (!self.destroyed) report->is_whole = is_whole(&self);
        if (!self.destroyed) kv_destroy(self.pane);
    }
    kv_mesh_destroy(self.mesh);
    free(self.buffer);
    return self.pane != NULL;
}
