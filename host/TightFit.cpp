// What a view shows of a scene is found by a frame on a background of a colour that no lit surface is likely to have:
// the rectangle of all other pixels. From it follow shift and magnification, which are not exact, since a rectangle has
// whole pixels: a second or third round is.
#include "TightFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>

namespace {

using KV_ScenePane::Picture;
using KV_ScenePane::ScenePane;

constexpr int kMargin = 1;  // pixels at each side
constexpr int kMostRounds = 6;

constexpr std::int32_t kKeyColor = 0xFF01FE;   // 0x00BBGGRR
constexpr std::uint32_t kKeyPixel = 0xFE01FF;  // the same, 0xRRGGBB

/// Pixels that show something, the right and the lower end exclusive, and the size of the picture.
struct Rectangle {
    int left = 0, top = 0, right = 0, bottom = 0;
    int pictureWidth = 0, pictureHeight = 0;
};

/// On the background of the key colour. Nothing where the view shows nothing.
std::optional<Rectangle> FindShown(ScenePane& pane) {
    Picture picture;
    if (!pane.CapturePicture(&picture) || picture.width < 1) return std::nullopt;
    Rectangle shown{picture.width, picture.height, 0, 0, picture.width, picture.height};
    for (int y = 0; y < picture.height; ++y) {
        const auto width = static_cast<std::size_t>(picture.width);
        const auto row = std::span(picture.pixels).subspan(static_cast<std::size_t>(y) * width, width);
        const auto isShown = [](std::uint32_t pixel) { return (pixel & 0xFFFFFF) != kKeyPixel; };
        const auto first = std::ranges::find_if(row, isShown);
        if (first == row.end()) continue;
        const auto last = std::find_if(row.rbegin(), row.rend(), isShown);
        shown.left = std::min(shown.left, static_cast<int>(first - row.begin()));
        shown.right = std::max(shown.right, static_cast<int>(row.rend() - last));
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
    pane.Methods().SetBackgroundColors(kKeyColor, kKeyColor);
    View view = ViewOf(pane);
    std::optional<Rectangle> shown = FindShown(pane);
    if (!shown) return;
    const std::optional<float> unitsAtStart = UnitsPerPixel(pane, view, *shown);
    if (!unitsAtStart) return;
    const float unitsAtZoomOne = *unitsAtStart * view.zoom;
    const int pictureWidth = shown->pictureWidth, pictureHeight = shown->pictureHeight;
    const int width = pictureWidth - 2 * kMargin, height = pictureHeight - 2 * kMargin;
    if (std::min(width, height) < 1) return;
    for (int i = 0; i < kMostRounds; ++i) {
        // In half pixels: their difference can be odd.
        const int offCenterX = shown->left + shown->right - pictureWidth;
        const int offCenterY = pictureHeight - shown->top - shown->bottom;
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
