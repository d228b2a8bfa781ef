// The structs and constants of kv_scenepane.h are part of programs that were compiled long ago.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "KV_ScenePane/kv_scenepane.h"
#include "control/c_header_layout.h"

namespace {

TEST(KvStructs, HaveTheFixedLayoutInC) {
    int entries = 0;
    for (const kv_layout_entry* entry = kv_c_layout; entry->name != nullptr; ++entry, ++entries)
        EXPECT_EQ(entry->compiled, entry->fixed) << entry->name;
    EXPECT_EQ(entries, 12 + 75) << "structs and members";
}

TEST(KvStructs, HaveTheFixedLayoutInCpp) {
#define KV_SIZE(type, bytes)                    \
    EXPECT_EQ(sizeof(type), bytes##u) << #type; \
    EXPECT_TRUE(std::is_standard_layout_v<type>&& std::is_trivial_v<type>) << #type;
#define KV_PLACE(type, member, bytes) EXPECT_EQ(offsetof(type, member), bytes##u) << #type "." #member;
#include "control/c_header_members.inc"
}

TEST(KvConstants, KeepTheirValues) {
    EXPECT_EQ((std::vector{KV_DONE, KV_UNKNOWN_ID, KV_BAD_ARGUMENTS, KV_FAILED, KV_HANDLER_FAILED}),
              (std::vector{0, 1, 2, 3, 4}));
    EXPECT_EQ((std::vector{KV_VOID, KV_SHORT, KV_LONG, KV_FLOAT, KV_STRING, KV_UTF8, KV_POINTER, KV_INT64}),
              (std::vector{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ((std::vector{KV_CHILD, KV_TOP_LEVEL, KV_OFF_SCREEN, KV_NO_PICTURE}), (std::vector{0, 1, 2, 3}));
    EXPECT_EQ((std::vector{KV_ANY_GPU, KV_SOFTWARE}), (std::vector{-1, -2}));
    EXPECT_EQ(
        (std::vector{KV_MOUSE_MOVE, KV_MOUSE_LEFT_DOWN, KV_MOUSE_LEFT_UP, KV_MOUSE_MIDDLE_DOWN, KV_MOUSE_MIDDLE_UP,
                     KV_MOUSE_RIGHT_DOWN, KV_MOUSE_RIGHT_UP, KV_MOUSE_DOUBLE_CLICK, KV_MOUSE_WHEEL}),
        (std::vector{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ((std::vector{KV_MOUSE_LEFT, KV_MOUSE_RIGHT, KV_MOUSE_SHIFT, KV_MOUSE_CTRL, KV_MOUSE_MIDDLE}),
              (std::vector{1u, 2u, 4u, 8u, 16u}));
    EXPECT_EQ((std::vector{KV_METHOD, KV_PROPERTY, KV_EVENT}), (std::vector{0, 1, 2}));
    EXPECT_EQ((std::vector{KV_PROPERTIES_TEXT, KV_PROPERTIES_BINARY}), (std::vector{0, 1}));
    EXPECT_EQ(KV_NO_TEXT, SIZE_MAX);
}

}  // namespace
