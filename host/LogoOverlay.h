// An image that stays at its place over the scene.
#pragma once
#include <cstdint>
#include <map>
#include <utility>

#include "KV_ScenePane/_DKV_ScenePane.h"
#include "LogoImage.h"

/// Nine places, row by row: the reading order of their names.
enum class LogoAnchor { TopLeft, Top, TopRight, Left, Centre, Right, BottomLeft, Bottom, BottomRight };
inline constexpr int kLogoAnchorCount = 9;

/// Where an overlay lies, as AddOverlayData takes it.
struct OverlayPlace {
    float relPosX, relPosY;        ///< fraction of the drawing area
    float relOffsetX, relOffsetY;  ///< fraction of the image
    float absOffsetX, absOffsetY;  ///< pixels
};

/// @param margin  pixels between the image and the edges that it is anchored to
[[nodiscard]] OverlayPlace PlaceOf(LogoAnchor anchor, int margin);

/// One image in one viewer. An overlay never changes and never goes once it was added: for a new place another one is
/// added and the former is hidden; a place that the image had before shows that overlay again.
class LogoOverlay {
public:
    /// @param methods  of a new viewer, which knows of no overlay yet; null for none
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    void SetImage(LogoImage image);
    void SetPlace(LogoAnchor anchor, int margin);
    void SetVisible(bool visible);

private:
    void Update();

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    LogoImage m_image;  // empty until there is one
    LogoAnchor m_anchor = LogoAnchor::BottomRight;
    int m_nMargin = 0;  // pixels
    bool m_bVisible = true;
    std::map<std::pair<LogoAnchor, int>, std::int32_t> m_indices;  // of the present image, by anchor and margin
    std::int32_t m_nShown = -1;                                    // index of the overlay on screen, -1 for none
};
