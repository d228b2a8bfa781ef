// The view while the objects of the first import arrive.
#pragma once
#include <array>
#include <optional>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// Fits the view to the visible objects again and again, until the user turns, moves or zooms it.
class ArrivalFit {
public:
    /// @param zoom  magnification of the fitted view
    explicit ArrivalFit(float zoom) : m_fZoom(zoom) {}

    /// Draws no frame, but invalidates. Does nothing once the view is no longer the one of Remember().
    void Fit(KV_ScenePane::_DKV_ScenePane& methods);
    /// The view is as the last fit and the frame after it have left it: a frame may turn it, for the axes.
    void Remember(KV_ScenePane::_DKV_ScenePane& methods);

private:
    using View = std::array<float, 10>;
    static View ViewOf(KV_ScenePane::_DKV_ScenePane& methods);

    const float m_fZoom;
    std::optional<View> m_fitted;  // empty before the first fit
    bool m_bLeftToUser = false;
};
