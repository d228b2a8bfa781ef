/* The header in plain C: it compiles, and a test compares the layout of its structs with that in C++. */
#include "c_header_layout.h"

#include <stddef.h>

#include "KV_ScenePane/kv_scenepane.h"

#define KV_SIZE(type, bytes) {#type, sizeof(type), bytes},
#define KV_PLACE(type, member, bytes) {#type "." #member, offsetof(type, member), bytes},

const struct kv_layout_entry kv_c_layout[] = {
#include "c_header_members.inc"
    {NULL, 0, 0}};
