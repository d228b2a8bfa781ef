// Reads the depth buffer at one pixel.
#include "markers/ReadDepth.h"

#include <GL/glew.h>

std::optional<float> ReadDepthAt(std::int32_t x, std::int32_t y, std::int32_t height, float limit) {
    float depth = 1.0f;  // unchanged outside the window, where nothing can be read
    glReadPixels(x, height - y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    if (!(depth < limit)) return std::nullopt;
    return depth;
}
