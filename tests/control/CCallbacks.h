/* A host in C whose callback calls back into the viewer, fails or destroys it. */
#ifndef KV_C_CALLBACKS_H
#define KV_C_CALLBACKS_H

#include "KV_ScenePane/kv_scenepane.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What the callback does when the awaited event arrives. */
#define CALL_EVERY_METHOD 0
#define RETURN_ONE 1
#define DESTROY_THE_VIEWER 2

typedef struct callback_report {
    kv_status status;         /* of the call that fired the event */
    int32_t arrivals;         /* of the awaited event, before and after the callback acted */
    int32_t calls;            /* made by the callback */
    int32_t events_after_end; /* after kv_destroy() */
    int32_t is_whole;         /* the viewer has its window, draws, and fires the event again */
    char problem[300];        /* the first call of the callback that was refused, or what is not whole; else empty */
    char error[300];          /* kv_last_error() after the call that fired the event */
} callback_report;

/* Makes a viewer, lets the event fire and the callback act. Returns 0 when there is no viewer. */
int run_callback(int32_t event, int32_t action, const char* scratch_path, callback_report* report);

#ifdef __cplusplus
}
#endif

#endif
