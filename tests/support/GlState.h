// The OpenGL state that drawing could change and not restore, as one value to compare.
#pragma once
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>
#include <vector>

/// Values by the name of the state.
using GlState = std::map<std::string, std::vector<double>>;

inline void ReadGlState(GlState& state, const char* name, GLenum what) {
    std::array<double, 16> values{};
    glGetDoublev(what, values.data());
    state[name].assign(values.begin(), values.end());
}

/// Of the current context. Without the current colour and normal, which no drawing restores.
inline GlState ReadGlState() {
    GlState state;
#define KV_STATE(name) ReadGlState(state, #name, name)
    KV_STATE(GL_ALPHA_TEST), KV_STATE(GL_BLEND), KV_STATE(GL_CLIP_PLANE0), KV_STATE(GL_COLOR_MATERIAL);
    KV_STATE(GL_CULL_FACE), KV_STATE(GL_DEPTH_TEST), KV_STATE(GL_DITHER), KV_STATE(GL_FOG), KV_STATE(GL_LIGHT0);
    KV_STATE(GL_LIGHTING), KV_STATE(GL_LINE_SMOOTH), KV_STATE(GL_MULTISAMPLE), KV_STATE(GL_NORMALIZE);
    KV_STATE(GL_SCISSOR_TEST), KV_STATE(GL_STENCIL_TEST), KV_STATE(GL_TEXTURE_1D), KV_STATE(GL_TEXTURE_2D);
    KV_STATE(GL_TEXTURE_3D);
    KV_STATE(GL_BLEND_SRC), KV_STATE(GL_BLEND_DST), KV_STATE(GL_COLOR_CLEAR_VALUE), KV_STATE(GL_COLOR_WRITEMASK);
    KV_STATE(GL_COLOR_MATERIAL_FACE), KV_STATE(GL_COLOR_MATERIAL_PARAMETER), KV_STATE(GL_CULL_FACE_MODE);
    KV_STATE(GL_DEPTH_CLEAR_VALUE), KV_STATE(GL_DEPTH_FUNC), KV_STATE(GL_DEPTH_WRITEMASK), KV_STATE(GL_DRAW_BUFFER);
    KV_STATE(GL_FRONT_FACE), KV_STATE(GL_LINE_WIDTH), KV_STATE(GL_MATRIX_MODE), KV_STATE(GL_MODELVIEW_MATRIX);
    KV_STATE(GL_POLYGON_MODE), KV_STATE(GL_PROJECTION_MATRIX), KV_STATE(GL_READ_BUFFER), KV_STATE(GL_SHADE_MODEL);
    KV_STATE(GL_VIEWPORT), KV_STATE(GL_CURRENT_PROGRAM), KV_STATE(GL_FRAMEBUFFER_BINDING);
    KV_STATE(GL_ATTRIB_STACK_DEPTH), KV_STATE(GL_MODELVIEW_STACK_DEPTH), KV_STATE(GL_PROJECTION_STACK_DEPTH);
#undef KV_STATE
    for (const GLenum face : {GLenum{GL_FRONT}, GLenum{GL_BACK}})
        for (const GLenum name : {GLenum{GL_AMBIENT}, GLenum{GL_DIFFUSE}, GLenum{GL_SPECULAR}, GLenum{GL_EMISSION}}) {
            std::array<GLfloat, 4> value{};
            glGetMaterialfv(face, name, value.data());
            state["material " + std::to_string(face) + " " + std::to_string(name)].assign(value.begin(), value.end());
        }
    return state;
}

inline void ExpectGlStateIs(const GlState& expected) {
    for (const auto& [name, values] : ReadGlState()) EXPECT_EQ(values, expected.at(name)) << name;
}
