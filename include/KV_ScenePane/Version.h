/* The version of the headers that a program is compiled with; usable from C89 and C++ compilers, and by the
   preprocessor. The library that the program runs with may be a later one of the same major version:
   kv_version_number(), in C++ KV_ScenePane::LibraryVersion(). */
#ifndef KV_SCENEPANE_VERSION_H
#define KV_SCENEPANE_VERSION_H

#define KV_SCENEPANE_VERSION_MAJOR 5
#define KV_SCENEPANE_VERSION_MINOR 5
#define KV_SCENEPANE_VERSION_PATCH 0

/* One number to compare, such as 50500 of 5.5.0. */
#define KV_SCENEPANE_MAKE_VERSION(major, minor, patch) ((major)*10000 + (minor)*100 + (patch))
#define KV_SCENEPANE_VERSION \
    KV_SCENEPANE_MAKE_VERSION(KV_SCENEPANE_VERSION_MAJOR, KV_SCENEPANE_VERSION_MINOR, KV_SCENEPANE_VERSION_PATCH)

#endif
