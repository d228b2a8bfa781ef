// A call of the viewer leaves its context current and its framebuffer bound, so OpenGL can be asked directly.
#include "GraphicsLimits.h"

#include <dlfcn.h>

#include <algorithm>

namespace {

// Of the OpenGL headers, which nothing else of the program needs.
constexpr unsigned kMaxTextureSize = 0x0D33, kMaxViewport = 0x0D3A, kMaxRenderbufferSize = 0x84E8, kSamples = 0x80A9;

}  // namespace

std::optional<GraphicsLimits> GraphicsLimitsOf(KV_ScenePane::ScenePane& pane) {
    using GetIntegers = void (*)(unsigned name, int* values);
    // The viewer's library is linked to the one that has this function.
    const auto get = reinterpret_cast<GetIntegers>(dlsym(RTLD_DEFAULT, "glGetIntegerv"));
    KV_ScenePane::GraphicsInfo info;
    if (get == nullptr || !pane.GetGraphicsInfo(&info)) return std::nullopt;
    int texture = 0, renderbuffer = 0, viewport[2] = {};
    GraphicsLimits limits;
    get(kMaxTextureSize, &texture);
    get(kMaxRenderbufferSize, &renderbuffer);
    get(kMaxViewport, viewport);
    get(kSamples, &limits.samples);
    limits.largestSide = std::min({texture, renderbuffer, viewport[0], viewport[1]});
    if (limits.largestSide < 1) return std::nullopt;
    return limits;
}
