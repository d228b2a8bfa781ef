// What a view shows of a scene is found by two frames: a pixel that is black on a black background and white on a white
// one shows nothing of it. From the rectangle of the others follow shift and magnification, which are not exact: a
// rectangle has whole pixels. Two or three rounds are.
#include "TightFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace {

using KV_ScenePane::Picture;
using KV_ScenePane::ScenePane;

constexpr int kMargin = 1;  // pixels at each side
constexpr int kMostRounds = 6;

/// Pixels of the picture, the right and the lower end exclusive.
struct Rectangle {
    int left = 0, top = 0, right = 0, bottom = 0;
};

Picture CaptureOn(ScenePane& pane, std::int32_t color) {
    pane.Methods().SetBackgroundColors(color, color);
    Picture picture;
    return pane.CapturePicture(&picture) ? picture : Picture{};
}

/// Nothing where the view shows nothing.
std::optional<Rectangle> FindShown(ScenePane& pane) {
    const Picture black = CaptureOn(pane, 0x000000), white = CaptureOn(pane, 0xFFFFFF);
    if (black.width < 1 || black.pixels.size() != white.pixels.size()) return std::nullopt;
    Rectangle shown{black.width, black.height, 0, 0};
    for (std::size_t i = 0; i < black.pixels.size(); ++i) {
        if ((black.pixels[i] & 0xFFFFFF) == 0 && (white.pixels[i] & 0xFFFFFF) == 0xFFFFFF) continue;
        const int x = static_cast<int>(i % static_cast<std::size_t>(black.width));
        const int y = static_cast<int>(i / static_cast<std::size_t>(black.width));
        shown.left = std::min(shown.left, x);
        shown.right = std::max(shown.right, x + 1);
        shown.top = std::min(shown.top, y);
        shown.bottom = y + 1;
    }
    if (shown.left >= shown.right) return std::nullopt;
    return shown;
}

/// A view as GetViewParams() returns it.
struct View {
    std::array<float, 3> right{}, up{}, center{};
    float zoom = 1.0f;
};

View ViewOf(ScenePane& pane) {
    View v;
    pane.Methods().GetViewParams(&v.right[0], &v.right[1], &v.right[2], &v.up[0], &v.up[1], &v.up[2], &v.center[0],
                                 &v.center[1], &v.center[2], &v.zoom);
    return v;
}

/// By the default zoom, which has no limits.
void SetView(ScenePane& pane, const View& v) {
    pane.Methods().SetDefaultZoomFactor(1.0f / v.zoom);
    pane.Methods().SetViewParams(v.right[0], v.right[1], v.right[2], v.up[0], v.up[1], v.up[2], v.center[0],
                                 v.center[1], v.center[2], 1.0f, 0);
}

View Shifted(View view, float right, float up) {
    for (std::size_t i = 0; i < 3; ++i) view.center[i] += right * view.right[i] + up * view.up[i];
    return view;
}

/// Diagonal of the box of all objects, scene units; 1 without any.
float SizeOfObjects(ScenePane& pane) {
    std::array<float, 3> low{}, high{};
    bool hasObject = false;
    for (std::int16_t i = 0; i < pane.Methods().GetNumObjects(); ++i) {
        std::array<float, 3> l{}, h{};
        pane.Methods().GetObjectBoundingBox(i, &l[0], &h[0], &l[1], &h[1], &l[2], &h[2]);
        if (!(l[0] <= h[0] && l[1] <= h[1] && l[2] <= h[2])) continue;
        for (std::size_t k = 0; k < 3; ++k) {
            low[k] = hasObject ? std::min(low[k], l[k]) : l[k];
            high[k] = hasObject ? std::max(high[k], h[k]) : h[k];
        }
        hasObject = true;
    }
    const float size = std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
    return hasObject && std::isfinite(size) && size > 0.0f ? size : 1.0f;
}

/// Scene units per pixel at the zoom of @p view, by shifting it: the viewer does not return them. Nothing when no shift
/// of a suitable length is found, as for a scene without extent.
std::optional<float> UnitsPerPixel(ScenePane& pane, const View& view, const Rectangle& shown) {
    constexpr int kLeastPixels = 16, kTries = 12;
    float shift = 0.1f * SizeOfObjects(pane);
    std::optional<float> units;
    for (int i = 0; i < kTries && !units; ++i) {
        SetView(pane, Shifted(view, shift, 0.0f));
        const std::optional<Rectangle> moved = FindShown(pane);  // to the left: its right end stays in the picture
        const int pixels = moved ? shown.right - moved->right : 0;
        if (pixels >= kLeastPixels)
            units = shift / static_cast<float>(pixels);
        else
            shift *= moved ? 4.0f : 0.1f;
    }
    SetView(pane, view);
    return units;
}

}  // namespace

void FitTightly(ScenePane& pane) {
    View view = ViewOf(pane);
    std::optional<Rectangle> shown = FindShown(pane);
    if (!shown) return;
    const std::optional<float> unitsAtStart = UnitsPerPixel(pane, view, *shown);
    if (!unitsAtStart) return;
    const float unitsAtZoomOne = *unitsAtStart * view.zoom;
    Picture size;
    if (!pane.CapturePicture(&size) || std::min(size.width, size.height) <= 2 * kMargin) return;
    const int width = size.width - 2 * kMargin, height = size.height - 2 * kMargin;
    for (int i = 0; i < kMostRounds; ++i) {
        // The picture has one place more than the rectangle where their difference is odd.
        const int offCenterX = shown->left + shown->right - size.width;
        const int offCenterY = size.height - shown->top - shown->bottom;
        const int shownWidth = shown->right - shown->left, shownHeight = shown->bottom - shown->top;
        const int missing = std::min(width - shownWidth, height - shownHeight);
        if (missing >= 0 && missing <= 1 && std::abs(offCenterX) <= 2 && std::abs(offCenterY) <= 2) return;
        const float units = unitsAtZoomOne / view.zoom;
        view =
            Shifted(view, 0.5f * static_cast<float>(offCenterX) * units, 0.5f * static_cast<float>(offCenterY) * units);
        view.zoom *= std::min(static_cast<float>(width) / static_cast<float>(shownWidth),
                              static_cast<float>(height) / static_cast<float>(shownHeight));
        SetView(pane, view);
        shown = FindShown(pane);
        if (!shown) return;
    }
}
