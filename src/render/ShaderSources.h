// The GLSL sources of the renderer's programs.
#pragma once
#include <array>
#include <string>

struct ShaderSource {
    const char* name;  ///< as the log calls the program
    std::string vertex, fragment;
};

/// Place of each program in ShaderSources().
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

/// In the order in which a context builds them.
[[nodiscard]] const std::array<ShaderSource, kShaderCount>& ShaderSources();
