// The OpenGL state that one step of a frame could leave changed for the next one, to compare before and after the step.
#pragma once
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>
#include <vector>

/// Name of each state and its values.
using GlSnapshot = std::map<std::string, std::vector<double>>;

namespace glsnapshot {

struct Name {
    GLenum name;
    const char* text;
};
#define KV_GL(name) \
    { name, #name }

inline constexpr Name kValues[] = {KV_GL(GL_MODELVIEW_MATRIX),
                                   KV_GL(GL_PROJECTION_MATRIX),
                                   KV_GL(GL_TEXTURE_MATRIX),
                                   KV_GL(GL_MATRIX_MODE),
                                   KV_GL(GL_MODELVIEW_STACK_DEPTH),
                                   KV_GL(GL_PROJECTION_STACK_DEPTH),
                                   KV_GL(GL_ATTRIB_STACK_DEPTH),
                                   KV_GL(GL_CLIENT_ATTRIB_STACK_DEPTH),
                                   KV_GL(GL_CURRENT_COLOR),
                                   KV_GL(GL_CURRENT_NORMAL),
                                   KV_GL(GL_CURRENT_TEXTURE_COORDS),
                                   KV_GL(GL_CURRENT_RASTER_POSITION),
                                   KV_GL(GL_LINE_WIDTH),
                                   KV_GL(GL_POINT_SIZE),
                                   KV_GL(GL_DEPTH_FUNC),
                                   KV_GL(GL_DEPTH_WRITEMASK),
                                   KV_GL(GL_DEPTH_CLEAR_VALUE),
                                   KV_GL(GL_BLEND_SRC),
                                   KV_GL(GL_BLEND_DST),
                                   KV_GL(GL_BLEND_EQUATION),
                                   KV_GL(GL_SHADE_MODEL),
                                   KV_GL(GL_POLYGON_MODE),
                                   KV_GL(GL_CULL_FACE_MODE),
                                   KV_GL(GL_COLOR_MATERIAL_FACE),
                                   KV_GL(GL_COLOR_MATERIAL_PARAMETER),
                                   KV_GL(GL_COLOR_WRITEMASK),
                                   KV_GL(GL_VIEWPORT),
                                   KV_GL(GL_SCISSOR_BOX),
                                   KV_GL(GL_LIST_BASE),
                                   KV_GL(GL_CURRENT_PROGRAM),
                                   KV_GL(GL_ACTIVE_TEXTURE),
                                   KV_GL(GL_TEXTURE_BINDING_2D),
                                   KV_GL(GL_ARRAY_BUFFER_BINDING),
                                   KV_GL(GL_ELEMENT_ARRAY_BUFFER_BINDING),
                                   KV_GL(GL_VERTEX_ARRAY_BINDING),
                                   KV_GL(GL_FRAMEBUFFER_BINDING),
                                   KV_GL(GL_READ_BUFFER),
                                   KV_GL(GL_DRAW_BUFFER),
                                   KV_GL(GL_UNPACK_ALIGNMENT),
                                   KV_GL(GL_UNPACK_ROW_LENGTH),
                                   KV_GL(GL_UNPACK_SKIP_ROWS),
                                   KV_GL(GL_UNPACK_SKIP_PIXELS),
                                   KV_GL(GL_UNPACK_SWAP_BYTES),
                                   KV_GL(GL_UNPACK_LSB_FIRST),
                                   KV_GL(GL_PIXEL_UNPACK_BUFFER_BINDING),
                                   KV_GL(GL_PACK_ALIGNMENT),
                                   KV_GL(GL_PACK_ROW_LENGTH)};

inline constexpr Name kSwitches[] = {
    KV_GL(GL_DEPTH_TEST),   KV_GL(GL_LIGHTING),     KV_GL(GL_LIGHT0),       KV_GL(GL_COLOR_MATERIAL),
    KV_GL(GL_TEXTURE_2D),   KV_GL(GL_BLEND),        KV_GL(GL_CLIP_PLANE0),  KV_GL(GL_CULL_FACE),
    KV_GL(GL_NORMALIZE),    KV_GL(GL_MULTISAMPLE),  KV_GL(GL_SCISSOR_TEST), KV_GL(GL_STENCIL_TEST),
    KV_GL(GL_ALPHA_TEST),   KV_GL(GL_LINE_SMOOTH),  KV_GL(GL_LINE_STIPPLE), KV_GL(GL_VERTEX_PROGRAM_POINT_SIZE),
    KV_GL(GL_VERTEX_ARRAY), KV_GL(GL_NORMAL_ARRAY), KV_GL(GL_COLOR_ARRAY),  KV_GL(GL_TEXTURE_COORD_ARRAY)};

inline constexpr Name kMaterial[] = {KV_GL(GL_DIFFUSE), KV_GL(GL_AMBIENT), KV_GL(GL_SPECULAR), KV_GL(GL_SHININESS)};
inline constexpr Name kLight[] = {KV_GL(GL_DIFFUSE), KV_GL(GL_AMBIENT), KV_GL(GL_SPECULAR), KV_GL(GL_POSITION)};
#undef KV_GL

}  // namespace glsnapshot

/// The state of the current context.
inline GlSnapshot TakeGlSnapshot() {
    GlSnapshot state;
    for (const auto& [name, text] : glsnapshot::kValues) {
        std::vector<double> values(16, 0.0);
        glGetDoublev(name, values.data());
        state[text] = values;
    }
    for (const auto& [name, text] : glsnapshot::kSwitches) state[text] = {static_cast<double>(glIsEnabled(name))};
    const auto keep = [&](const std::string& text, const std::array<float, 4>& values) {
        state[text] = {values.begin(), values.end()};
    };
    for (const auto& [name, text] : glsnapshot::kMaterial) {
        std::array<float, 4> front{}, back{};
        glGetMaterialfv(GL_FRONT, name, front.data());
        glGetMaterialfv(GL_BACK, name, back.data());
        keep(std::string("front ") + text, front);
        keep(std::string("back ") + text, back);
    }
    for (const auto& [name, text] : glsnapshot::kLight) {
        std::array<float, 4> light{};
        glGetLightfv(GL_LIGHT0, name, light.data());
        keep(std::string("light ") + text, light);
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "the snapshot queries an unknown state";
    return state;
}

/// Reports one failure per state that differs.
inline void ExpectSameGlState(const GlSnapshot& before, const GlSnapshot& after, const std::string& step) {
    ASSERT_EQ(before.size(), after.size());
    for (const auto& [text, value] : before) EXPECT_EQ(after.at(text), value) << step << " changes " << text;
}
