// Pictures of the view at another size than that of the window.
#pragma once
#include <QSize>
#include <array>
#include <cstdint>
#include <functional>

#include "KV_ScenePane/ScenePane.h"

class ViewerWidget;

/// What a picture shows. Another shape than the window's shows what the window would show at that shape: the shorter
/// side has the same extent of the scene.
struct PictureLook {
    QSize size;                  ///< pixels; empty for that of the window
    bool hasDecorations = true;  ///< axes, cross, arrow, logo, clip plane, selection and markers
    bool isTransparent = false;  ///< no background
};

/// What the window knows and the viewer does not return. Called while painting is blocked.
struct PictureHooks {
    /// 0x00BBGGRR: top left, top right, bottom left, bottom right.
    std::function<std::array<std::int32_t, 4>()> background;
    /// Hides the decorations, or shows those again that were shown.
    std::function<void(bool isHidden)> hideDecorations;
};

/// Pixels that a picture may have at most: a frame with samples needs up to 100 bytes for each.
inline constexpr std::int64_t kMostPicturePixels = std::int64_t{1} << 26;

/// The longest side of a picture in pixels.
[[nodiscard]] int LargestPictureSide(KV_ScenePane::ScenePane& pane);

/// Why a picture of this size cannot be taken, for the user; empty when it can.
[[nodiscard]] QString SizeRefusal(QSize size, int largestSide);

/// Draws the view into a picture. Text, lines and points grow with the size. The screen shows the present view
/// meanwhile, and view, size and decorations are as before afterwards, also after a failure.
/// @param viewer  with a viewer
/// @throws std::bad_alloc; std::runtime_error with the reason in the language of the window
[[nodiscard]] KV_ScenePane::Picture TakeViewPicture(ViewerWidget& viewer, const PictureLook& look,
                                                    const PictureHooks& hooks);
