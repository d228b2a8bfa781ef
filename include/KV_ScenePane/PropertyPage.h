// The property page "General" of the viewer without its window: what a host needs to draw it in its own toolkit.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "KV_ScenePane/_DKV_ScenePane.h"

namespace KV_ScenePane {

/// One control of the page, bound to a property by its name.
struct PropertyPageControl {
    enum class Kind { DropDown, CheckBox };
    std::int32_t id;
    std::string_view label;
    Kind kind;
    std::string_view property;  ///< name of the property it is bound to
    std::int32_t start;         ///< value before the page has read the viewer; -1: no item of a drop-down
    std::span<const std::string_view> items = {};  ///< of a drop-down; the index is the value
};

/// The page. Its values are read from a viewer, changed by the user and written back.
class CKV_ScenePanePropPage {
public:
    static constexpr std::string_view kCaption = "General";
    static constexpr std::array<std::string_view, 4> kModeNames = {"Points", "Wireframe", "Flat Shaded",
                                                                   "Gouraud Shaded"};
    static constexpr std::array<PropertyPageControl, 3> kControls = {
        {{202, "Rendering Mode:", PropertyPageControl::Kind::DropDown, "DrawMode", -1, kModeNames},
         {201, "Mosaic Drawing:", PropertyPageControl::Kind::CheckBox, "DrawMosaic", 0},
         {206, "Reduced Movement:", PropertyPageControl::Kind::CheckBox, "MoveReduced", 0}}};

    /// Index of the drop-down, 0 to 3; -1 for no item, also while the viewer has another draw mode.
    std::int32_t m_nDrawMode = kControls[0].start;
    bool m_bDrawMosaic = kControls[1].start != 0;
    bool m_bMoveReduced = kControls[2].start != 0;

    /// Reads the properties of a viewer.
    void Load(_DKV_ScenePane& viewer) {
        const std::int16_t mode = viewer.GetDrawMode();
        m_nDrawMode = mode >= 0 && mode < static_cast<std::int16_t>(kModeNames.size()) ? mode : -1;
        m_bDrawMosaic = viewer.GetDrawMosaic() != 0;
        m_bMoveReduced = viewer.GetMoveReduced() != 0;
    }
    /// Writes the properties of a viewer; the draw mode only while an item is chosen.
    void Apply(_DKV_ScenePane& viewer) const {
        if (m_nDrawMode >= 0) viewer.SetDrawMode(static_cast<std::int16_t>(m_nDrawMode));
        viewer.SetDrawMosaic(m_bDrawMosaic ? kVariantTrue : kVariantFalse);
        viewer.SetMoveReduced(m_bMoveReduced ? kVariantTrue : kVariantFalse);
    }
};

}  // namespace KV_ScenePane
