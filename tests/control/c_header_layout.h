/* What c_header_c89.c knows of the structs of the C interface, for the tests in C++. */
#ifndef C_HEADER_LAYOUT_H
#define C_HEADER_LAYOUT_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

struct kv_layout_entry {
    const char* name; /* "type" or "type.member"; null at the end of the list */
    size_t compiled;  /* size of the type or offset of the member, bytes */
    size_t fixed;     /* the same as it was typed */
};

extern const struct kv_layout_entry kv_c_layout[];

#ifdef __cplusplus
}
#endif

#endif
