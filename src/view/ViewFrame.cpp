// The maths of the camera: fixed views, projection, pan, zoom, and the point that the camera looks at.
#include "view/ViewFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "KV_ScenePane/Modes.h"

std::optional<ViewFrame> CannedView(std::int32_t mode) {
    constexpr float s = static_cast<float>(std::numbers::sqrt2 * 0.5);
    // wx, wy, wz
    switch (mode) {
        case KV_ScenePane::ViewFromPlusYZUp:
            return ViewFrame{{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {}};
        case KV_ScenePane::ViewFromMinusYZUp:
            return ViewFrame{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {}};
        case KV_ScenePane::ViewFromPlusXZUp:
            return ViewFrame{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {}};
        case KV_ScenePane::ViewFromMinusXZUp:
            return ViewFrame{{0, -1, 0}, {0, 0, 1}, {-1, 0, 0}, {}};
        case KV_ScenePane::ViewFromPlusZYUp:
            return ViewFrame{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {}};
        case KV_ScenePane::ViewFromMinusZYDown:
            return ViewFrame{{1, 0, 0}, {0, -1, 0}, {0, 0, -1}, {}};
        case KV_ScenePane::ViewObliqueZUp:
            return ViewFrame{{-s, s, 0}, {-0.5f, -0.5f, s}, {0.5f, 0.5f, s}, {}};
        case KV_ScenePane::ViewFromMinusZYUp:
            return ViewFrame{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {}};
        default:
            return std::nullopt;
    }
}

void SnapFrame(ViewFrame& frame) {
    const auto signOf = [](float value) { return value > 0.0f ? 1.0f : -1.0f; };
    const Float3& z = frame.wz;
    const Float3 acrossY{-z[0] * z[1], 1.0f - z[1] * z[1], -z[2] * z[1]};  // world Y without its part along wz
    if (Length(acrossY) > 1e-5f) return;
    frame.wz = {0, signOf(z[1]), 0};
    // The other two axes only when they are near the world's as well: a rotated view along Y keeps its rotation.
    if (1.0f - std::abs(frame.wx[0]) > 1e-5f) return;
    frame.wx = {signOf(frame.wx[0]), 0, 0};
    frame.wy = {0, 0, signOf(frame.wy[2])};
}

OrthoExtents ComputeOrthoExtents(float zoom, float sceneSize, float aspectX, float aspectY) {
    const double half = static_cast<double>(zoom) * sceneSize * 0.5;
    // The eye is two scene sizes from the centre, so the far plane lies two scene sizes beyond the centre. A zoom above
    // 1 shows more of the world and deepens with it.
    double depth = 4.0 * sceneSize;
    if (zoom > 1.0f) depth *= zoom;
    return {aspectX * half, aspectY * half, depth};
}

// A square window has 1 for both.
AspectFactors ComputeAspect(std::int32_t width, std::int32_t height) {
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    return width > height ? AspectFactors{w / h, 1.0f} : AspectFactors{1.0f, h / w};
}

Float3 EyePoint(const ViewFrame& frame, float sceneSize) { return frame.center + 2.0f * sceneSize * frame.wz; }

Float3 HeadLightDirection(const ViewFrame& frame) { return -50000.0f * frame.wy + 1000000.0f * frame.wz; }

bool IsViewFrame(const Float3& wx, const Float3& wy) {
    const auto isUnit = [](const Float3& axis) {
        const float squared = Dot(axis, axis);
        return squared >= 0.99f && squared <= 1.01f;
    };
    const float dot = Dot(wx, wy);
    return isUnit(wx) && isUnit(wy) && dot >= -0.01f && dot <= 0.01f;  // false for NaN in any of them
}

Float3 PannedCenter(const ViewFrame& frame, const PanScale& scale, std::int32_t dx, std::int32_t dy) {
    if (scale.width < 1 || scale.height < 1) return frame.center;  // no pixel has a size
    // World units per pixel are the same in both directions: size / aspect is the shorter side for both.
    const auto travel = [&](std::int32_t pixels, std::int32_t size, float aspect) {
        return static_cast<float>(pixels) * scale.sceneSize / (static_cast<float>(size) / aspect) * scale.zoom;
    };
    const float px = travel(dx, scale.width, scale.aspectX);
    const float py = travel(dy, scale.height, scale.aspectY);
    return frame.center - px * frame.wx + py * frame.wy;
}

float ZoomedBy(float zoom, std::int32_t dx, std::int32_t dy) {
    const double x = dx, y = dy;
    // A travel of 500 pixels is a factor of two. Up and right zoom in, down and left zoom out.
    double factor = std::sqrt(x * x + y * y) / 500.0 + 1.0;
    if (y - x > 0.0) factor = 1.0 / factor;
    const bool allowed = factor >= 1.0 ? zoom > 0.1f : zoom < 10.0f;
    return allowed ? static_cast<float>(zoom / factor) : zoom;
}

// Keeps two candidates in one pass: the vertex nearest to the axis, and the frontmost within the tube around it.
std::optional<Float3> FindAxisHit(std::span<const std::shared_ptr<Mesh>> meshes, const Float3& origin,
                                  const Float3& direction) {
    std::optional<Float3> nearestToAxis, frontmost;
    float bestOffset = std::numeric_limits<float>::max(), bestDepth = std::numeric_limits<float>::max();
    for (const auto& mesh : meshes) {
        for (const Vertex& vertex : mesh->m_vVertices) {
            // Edge-on vertices and those without a normal count as facing the viewer.
            if (Dot({vertex.nx, vertex.ny, vertex.nz}, direction) < 0.0f) continue;
            const Float3 point{vertex.x, vertex.y, vertex.z};
            const Float3 foot = origin + Dot(point - origin, direction) * direction;
            // Squared distances: from the axis, and along it from the origin.
            const float offset = Dot(point - foot, point - foot);
            if (offset < bestOffset) {
                bestOffset = offset;
                nearestToAxis = foot;
            }
            const float depth = Dot(foot - origin, foot - origin);
            if (offset < 0.1f && depth < bestDepth) {
                bestDepth = depth;
                frontmost = foot;
            }
        }
    }
    // A frontmost vertex in the very plane of the origin does not count.
    return frontmost && bestDepth > 0.0f ? frontmost : nearestToAxis;
}
