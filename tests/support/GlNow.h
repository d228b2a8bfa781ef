// The state of OpenGL in the context of a control.
#pragma once
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <array>

#include "control/ScenePaneCtrl.h"

inline GLenum GlErrorOf(CKV_ScenePaneCtrl& control) {
    EXPECT_TRUE(control.MakeContextCurrent());
    return glGetError();
}

inline GLint GlInteger(GLenum name) {
    GLint value = -12345;
    glGetIntegerv(name, &value);
    return value;
}

inline std::array<float, 4> GlMaterial(GLenum face, GLenum name) {
    std::array<float, 4> value{-1, -1, -1, -1};
    glGetMaterialfv(face, name, value.data());
    return value;
}
