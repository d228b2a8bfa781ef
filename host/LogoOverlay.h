// A logo: an image at a fixed place of the window, drawn over the scene.
#pragma once
#include <cstdint>
#include <map>
#include <utility>

#include "KV_ScenePane/_DKV_ScenePane.h"
#include "LogoImage.h"

/// Nine places, row by row. The value is 3 x row + column.
enum class LogoAnchor { TopLeft, Top, TopRight, Left, Centre, Right, BottomLeft, Bottom, BottomRight };
inline constexpr int kLogoAnchorCount = 9;

/// The position of an overlay, as the arguments of AddOverlayData.
struct OverlayPlace {
    float relPosX, relPosY;        ///< fraction of the drawing area
    float relOffsetX, relOffsetY;  ///< fraction of the image
    float absOffsetX, absOffsetY;  ///< pixels
};

/// @param margin  pixels between the image and the edges that it is anchored to
[[nodiscard]] OverlayPlace PlaceOf(LogoAnchor anchor, int margin);

/// One image in one viewer. An overlay of the viewer can be neither changed nor removed: for a new place another one is
/// added and the former is hidden. Returning to an earlier place shows the overlay of that place again, so that moving
/// the logo back and forth does not fill the memory of the viewer.
class LogoOverlay {
public:
    /// @param methods  of a new viewer, to which this object has added no overlay yet; null for none
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Replaces the image at its place; empty bytes for none.
    void SetImage(LogoImage image);
    /// @param margin  pixels; ignored for Centre
    void SetPlace(LogoAnchor anchor, int margin);
    /// A hidden logo keeps its image and place.
    void SetVisible(bool visible);

private:
    /// Makes the viewer show what the members say: adds the overlay of the place when it is new, hides the former one.
    void Update();

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    LogoImage m_image;  // empty until there is one
    LogoAnchor m_anchor = LogoAnchor::BottomRight;
    int m_nMargin = 0;  // pixels
    bool m_bVisible = true;
    std::map<std::pair<LogoAnchor, int>, std::int32_t> m_indices;  // of the present image, by anchor and margin
    std::int32_t m_nShown = -1;                                    // index of the overlay on screen, -1 for none
};
