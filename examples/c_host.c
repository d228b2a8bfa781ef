/* Shows a scan from a program in C: c_host FILE PICTURE

   The program makes an off-screen viewer, imports FILE (a measurement, or a mesh by its extension), prints what it
   holds, turns the view while it listens to the events, and writes PICTURE as a PPM file. It is plain C89 and needs no
   display. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "KV_ScenePane/kv_scenepane.h"

/* ---- values */

static kv_value short_value(int16_t value) {
    kv_value result;
    result.type = KV_SHORT;
    result.as.i16 = value;
    return result;
}

static kv_value long_value(int32_t value) {
    kv_value result;
    result.type = KV_LONG;
    result.as.i32 = value;
    return result;
}

static kv_value text_value(const char* value) {
    kv_value result;
    result.type = KV_UTF8;
    result.as.utf8 = value;
    return result;
}

static kv_value pointer_value(void* value) {
    kv_value result;
    result.type = KV_POINTER;
    result.as.pointer = value;
    return result;
}

static void print_value(const kv_value* value) {
    switch (value->type) {
        case KV_SHORT:
            printf(" %d", value->as.i16);
            break;
        case KV_LONG:
            printf(" %ld", (long)value->as.i32);
            break;
        case KV_FLOAT:
            printf(" %.3f", (double)value->as.f32);
            break;
        default:
            printf(" ?");
            break;
    }
}

/* ---- calls: each returns 0 when it has failed, and says why */

static int check(kv_status status) {
    if (status == KV_DONE) return 1;
    fprintf(stderr, "c_host: %s\n", kv_last_error());
    return 0;
}

/* Calls a method by its name, for programs that learn at run time what to call. */
static int call_by_name(kv_pane* pane, const char* name, const kv_value* arguments, size_t count, kv_value* result) {
    const kv_member_info* method = kv_member_by_name(KV_METHOD, name);
    if (method == NULL) {
        fprintf(stderr, "c_host: there is no method %s\n", name);
        return 0;
    }
    return check(kv_invoke(pane, method->id, arguments, count, result));
}

/* Prints any event: the name and the types come from the table. */
static int32_t print_event(void* user, int32_t id, const kv_value* arguments, size_t count) {
    size_t i;
    const kv_member_info* event = kv_member_by_id(KV_EVENT, id);
    int* number_of_events = (int*)user;

    ++*number_of_events;
    printf("event %s:", event->name);
    for (i = 0; i < count; ++i) {
        printf(" %s", event->arguments[i].name);
        print_value(&arguments[i]);
    }
    printf("\n");
    return 0; /* another value would end the call that fired the event */
}

/* The viewer writes here why a file was refused. */
static void print_debug_output(void* user, const char* text, size_t size) {
    (void)user;
    fwrite(text, 1, size, stderr);
}

static int ends_with(const char* text, const char* ending) {
    const size_t length = strlen(text), end = strlen(ending);
    return length >= end && strcmp(text + length - end, ending) == 0;
}

static int import_file(kv_pane* pane, const char* path) {
    kv_value arguments[2];
    kv_value count;
    const int is_scan = ends_with(path, ".pcm") || ends_with(path, ".pax") || ends_with(path, ".xdt");

    arguments[0] = text_value(path);
    arguments[1] = long_value(0x00C8D4DC); /* 0x00BBGGRR */
    if (!check(kv_invoke(pane, is_scan ? KV_ImportScan : KV_ImportMesh, arguments, is_scan ? 2 : 1, NULL))) return 0;
    if (!check(kv_invoke(pane, KV_GetNumObjects, NULL, 0, &count))) return 0;
    printf("objects: %d\n", count.as.i16);
    return count.as.i16 > 0;
}

static int print_counts(kv_pane* pane) {
    int32_t vertices = 0, triangles = 0;
    kv_value arguments[3];

    arguments[0] = short_value(0);
    arguments[1] = pointer_value(&vertices);
    arguments[2] = pointer_value(&triangles);
    if (!call_by_name(pane, "GetMeshDataSize", arguments, 3, NULL)) return 0;
    printf("vertices: %ld\ntriangles: %ld\n", (long)vertices, (long)triangles);
    return 1;
}

/* Looks at the scene from a side, and turns it as an operator would, by a drag with the left button. */
static int turn_view(kv_pane* pane) {
    int number_of_events = 0;
    int is_done;
    kv_value on = short_value(1);
    kv_value view = short_value(KV_ViewFromPlusYZUp);

    is_done = check(kv_invoke(pane, KV_SetViewMode, &view, 1, NULL)) &&
              check(kv_invoke(pane, KV_CenterView, NULL, 0, NULL)) &&
              check(kv_invoke(pane, KV_TracingMode, &on, 1, NULL)) && /* fires ViewDirectionChanged */
              check(kv_connect(pane, print_event, &number_of_events)) &&
              check(kv_send_mouse(pane, KV_MOUSE_LEFT_DOWN, KV_MOUSE_LEFT, 160, 120, 0)) &&
              check(kv_send_mouse(pane, KV_MOUSE_MOVE, KV_MOUSE_LEFT, 180, 120, 0)) &&
              check(kv_send_mouse(pane, KV_MOUSE_LEFT_UP, 0, 180, 120, 0)) &&
              check(kv_connect(pane, NULL, NULL)); /* the counter ends with this function */
    printf("events: %d\n", number_of_events);
    return is_done;
}

/* ---- the picture */

static int write_ppm(const char* path, const uint32_t* pixels, int32_t width, int32_t height) {
    int32_t i;
    int is_written;
    FILE* file = fopen(path, "wb");

    if (file == NULL) {
        perror(path);
        return 0;
    }
    fprintf(file, "P6\n%ld %ld\n255\n", (long)width, (long)height);
    for (i = 0; i < width * height; ++i) { /* 0xAARRGGBB */
        putc((int)(pixels[i] >> 16 & 0xFF), file);
        putc((int)(pixels[i] >> 8 & 0xFF), file);
        putc((int)(pixels[i] & 0xFF), file);
    }
    is_written = ferror(file) == 0;
    is_written = fclose(file) == 0 && is_written;
    if (!is_written) fprintf(stderr, "c_host: %s was not written\n", path);
    return is_written;
}

static int take_picture(kv_pane* pane, const char* path) {
    int32_t width = 0, height = 0;
    size_t capacity;
    uint32_t* pixels;
    int is_done;

    if (!check(kv_capture_picture(pane, NULL, 0, &width, &height))) return 0;
    capacity = (size_t)width * (size_t)height;
    pixels = (uint32_t*)malloc(capacity * sizeof *pixels);
    if (pixels == NULL) return 0;
    is_done =
        check(kv_capture_picture(pane, pixels, capacity, &width, &height)) && write_ppm(path, pixels, width, height);
    free(pixels);
    if (is_done) printf("picture: %ld x %ld\n", (long)width, (long)height);
    return is_done;
}

int main(int argc, char** argv) {
    kv_window_request request;
    kv_pane* pane;
    int is_done;

    if (argc != 3) {
        fprintf(stderr, "Usage: c_host FILE PICTURE\n");
        return 2;
    }
    kv_set_debug_output(print_debug_output, NULL);
    kv_window_request_init(&request);
    request.width = 320;
    request.height = 240;
    pane = kv_create(&request);
    if (pane == NULL) {
        fprintf(stderr, "c_host: no viewer: %s\n", kv_last_error());
        return 1;
    }
    printf("KV_ScenePane %s\n", kv_version());
    is_done = import_file(pane, argv[1]) && print_counts(pane) && turn_view(pane) && take_picture(pane, argv[2]);
    kv_destroy(pane);
    return is_done ? 0 : 1;
}
