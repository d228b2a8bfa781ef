// The GLSL sources of the renderer's programs. ShaderPrograms.h builds them.
#pragma once
#include <array>
#include <string>

struct ShaderSource {
    const char* name;  ///< of the program in the log
    std::string vertex, fragment;
};

/// Index of each program in ShaderSources().
enum ShaderIndex {
    kShaderPerPixel,
    kShaderTexPerPixel,
    kShaderCreateMask,
    kShaderUseMask,
    kShaderDepth,
    kShaderQuad,
    kShaderShadow,
    kShaderFreeFloatingPoints,
    kShaderCount
};

/// All programs, in the order in which a new context builds and logs them.
[[nodiscard]] const std::array<ShaderSource, kShaderCount>& ShaderSources();
