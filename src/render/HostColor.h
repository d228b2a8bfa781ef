// A colour of the host as OpenGL's current colour.
#pragma once
#include <GL/glew.h>

#include <cstdint>

/// @param color  0x00BBGGRR; the high byte is ignored
inline void SetHostColor(std::uint32_t color) {
    const auto channel = [color](unsigned shift) { return static_cast<float>(((color >> shift) & 0xFF) / 255.0); };
    glColor3f(channel(0), channel(8), channel(16));
}
