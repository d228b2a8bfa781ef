// What the driver of the current context can do or does wrong, where tests must expect different things of drivers.
#pragma once
#include <GL/glew.h>

#include <string_view>

/// The samples that a window can have: the wanted number, or 0 where the driver has none (softpipe).
inline int AvailableSamples(int wanted) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return most >= wanted ? wanted : 0;
}

/// What the driver of the current context keeps of every context of a viewer that is destroyed.
inline int LeakedMegabytesPerContext() {
    const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer != nullptr && std::string_view(renderer).starts_with("virgl") ? 4 : 0;
}

/// Whether the driver keeps the points of a draw in memory until it has drawn them: llvmpipe, alone or below zink.
inline bool QueuesPoints() {
    const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer != nullptr && std::string_view(renderer).find("llvmpipe") != std::string_view::npos;
}

/// Whether points are front faces for a shader, as OpenGL defines it. On softpipe (Mesa 22.3) gl_FrontFacing is what an
/// earlier draw left for points, lines and triangles drawn as lines.
inline bool FacesOfPointsAreDefined() {
    const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer != nullptr && std::string_view(renderer) != "softpipe";
}
