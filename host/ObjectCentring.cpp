// The shorter side of the window shows the diagonal of the box that the view was fitted to, divided by the
// magnification.
#include "ObjectCentring.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "PaintBlock.h"

namespace {

using Box = std::array<float, 6>;  // min x, max x, min y, max y, min z, max z
using Axis = std::array<float, 3>;

constexpr float kFilled = 0.9f;  // part of the window that an object fills at most

struct View {
    Axis right{}, up{}, center{};
    float zoom = 1.0f;
};

View ViewOf(KV_ScenePane::_DKV_ScenePane& methods) {
    View view;
    methods.GetViewParams(&view.right[0], &view.right[1], &view.right[2], &view.up[0], &view.up[1], &view.up[2],
                          &view.center[0], &view.center[1], &view.center[2], &view.zoom);
    return view;
}

bool IsUsable(const Box& box) {
    return std::ranges::all_of(box, [](float value) { return std::isfinite(value); }) && box[0] <= box[1] &&
           box[2] <= box[3] && box[4] <= box[5];
}

Box BoxOf(KV_ScenePane::_DKV_ScenePane& methods, int index) {
    Box box{};
    methods.GetObjectBoundingBox(static_cast<std::int16_t>(index), &box[0], &box[1], &box[2], &box[3], &box[4],
                                 &box[5]);
    return box;
}

/// Length of the box along a direction.
float ExtentAlong(const Axis& direction, const Box& box) {
    float extent = 0.0f;
    for (std::size_t i = 0; i < 3; ++i) extent += std::abs(direction[i]) * (box[2 * i + 1] - box[2 * i]);
    return extent;
}

/// The magnification at which the box fills most of the window; nothing for a box that is a point or a line of sight.
std::optional<float> FillingZoom(const View& view, const Box& box, float sceneSize, QSize window) {
    const float shorter = static_cast<float>(std::min(window.width(), window.height()));
    std::optional<float> zoom;
    const auto limit = [&](const Axis& direction, int pixels) {
        const float extent = ExtentAlong(direction, box);
        if (!(extent > 0.0f)) return;
        const float filling = kFilled * sceneSize * static_cast<float>(pixels) / shorter / extent;
        zoom = zoom ? std::min(*zoom, filling) : filling;
    };
    limit(view.right, window.width());
    limit(view.up, window.height());
    return zoom;
}

}  // namespace

double SceneDiagonal(KV_ScenePane::_DKV_ScenePane& methods, const std::vector<int>& objects) {
    std::optional<Box> all;
    for (const int index : objects) {
        const Box box = BoxOf(methods, index);
        if (!IsUsable(box)) continue;
        if (!all) all = box;
        for (std::size_t i = 0; i < box.size(); i += 2) {
            (*all)[i] = std::min((*all)[i], box[i]);
            (*all)[i + 1] = std::max((*all)[i + 1], box[i + 1]);
        }
    }
    if (!all) return 0.0;
    const auto side = [&all](std::size_t axis) {
        return static_cast<double>((*all)[2 * axis + 1]) - static_cast<double>((*all)[2 * axis]);
    };
    return std::hypot(side(0), side(1), side(2));
}

void CentreObject(KV_ScenePane::_DKV_ScenePane& methods, int index, const std::vector<int>& visible, QSize window) {
    const Box box = BoxOf(methods, index);
    if (!IsUsable(box) || window.isEmpty()) return;
    const PaintBlock block(methods);
    const View before = ViewOf(methods);
    methods.CenterView();  // now the size of the scene is known
    const float fitted = ViewOf(methods).zoom;
    float zoom = before.zoom;
    if (const auto sceneSize = static_cast<float>(SceneDiagonal(methods, visible)); sceneSize > 0.0f)
        zoom = std::min(zoom, FillingZoom(before, box, sceneSize, window).value_or(zoom));
    const auto middle = [&box](std::size_t axis) { return 0.5f * (box[2 * axis] + box[2 * axis + 1]); };
    // The method expects the magnification as a multiple of that of a fitted view.
    (void)methods.SetViewParams(before.right[0], before.right[1], before.right[2], before.up[0], before.up[1],
                                before.up[2], middle(0), middle(1), middle(2), zoom / fitted, 0);
}
