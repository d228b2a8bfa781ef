/* Shows a mesh made in memory on an off-screen viewer; exit status 0 when all is well. */
#include <KV_ScenePane/kv_scenepane.h>
#include <stdio.h>
#include <string.h>

static uint32_t pixels[200 * 100];

static int fail(const char* what) {
    fprintf(stderr, "c_consumer: %s: %s\n", what, kv_last_error());
    return 1;
}

static kv_value long_value(int32_t value) {
    kv_value result;
    result.type = KV_LONG;
    result.as.i32 = value;
    return result;
}

static kv_value pointer_value(void* value) {
    kv_value result;
    result.type = KV_POINTER;
    result.as.pointer = value;
    return result;
}

static int use(kv_pane* pane) {
    float vertices[12] = {0, 0, 0, 10, 0, 0, 0, 10, 0, 10, 10, 0};
    int32_t triangles[6] = {0, 1, 2, 1, 3, 2};
    kv_value arguments[4];
    kv_value result;
    kv_surface_point hit;
    int32_t width = 0, height = 0;

    arguments[0] = long_value(4);
    arguments[1] = long_value(2);
    arguments[2] = pointer_value(vertices);
    arguments[3] = pointer_value(triangles);
    if (kv_invoke(pane, KV_ImportMeshFromMemory, arguments, 4, NULL) != KV_DONE) return fail("no import");
    if (kv_invoke(pane, KV_GetNumObjects, NULL, 0, &result) != KV_DONE) return fail("no count");
    if (result.type != KV_SHORT || result.as.i16 != 1) return fail("the mesh is not in the scene");
    if (kv_invoke(pane, KV_CenterView, NULL, 0, NULL) != KV_DONE) return fail("the view is not centred");
    if (kv_capture_picture(pane, pixels, 200 * 100, &width, &height) != KV_DONE) return fail("no picture");
    if (width != 200 || height != 100) return fail("the picture has another size");
    if (kv_pick_surface(pane, 100, 50, &hit) != KV_DONE || hit.object != 0) return fail("nothing in the middle");
    if (pixels[50 * 200 + 100] == pixels[0]) return fail("the mesh is not in the picture");
    return 0;
}

int main(void) {
    kv_window_request request;
    kv_pane* pane;
    int result;

    if (strcmp(kv_version(), EXPECTED_VERSION) != 0) return fail("another version");
    kv_window_request_init(&request);
    request.width = 200;
    request.height = 100;
    pane = kv_create(&request);
    if (pane == NULL) return fail("no viewer");
    result = use(pane);
    kv_destroy(pane);
    return result;
}
