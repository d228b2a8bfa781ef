// Positions by the viewer's rule: upper left corner = area x relPos + image x relOffset + absOffset.
#include "LogoOverlay.h"

OverlayPlace PlaceOf(LogoAnchor anchor, int margin) {
    const auto column = static_cast<int>(anchor) % 3, row = static_cast<int>(anchor) / 3;
    // 0, 1/2 or 1 of the area, minus the same fraction of the image; the margin points away from the edge.
    const auto share = [](int third) { return static_cast<float>(third) * 0.5f; };
    const auto inward = [margin](int third) { return static_cast<float>((1 - third) * margin); };
    return {share(column), share(row), -share(column), -share(row), inward(column), inward(row)};
}

void LogoOverlay::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    // Indices of overlays belong to one viewer.
    m_pMethods = methods;
    m_indices.clear();
    m_nShown = -1;
    Update();
}

void LogoOverlay::SetImage(LogoImage image) {
    m_image = std::move(image);
    m_indices.clear();  // the overlays of the former image stay in the viewer, hidden
    Update();
}

void LogoOverlay::SetPlace(LogoAnchor anchor, int margin) {
    m_anchor = anchor;
    // In the middle there is no edge: one overlay is enough for all margins.
    m_nMargin = anchor == LogoAnchor::Centre ? 0 : margin;
    Update();
}

void LogoOverlay::SetVisible(bool visible) {
    m_bVisible = visible;
    Update();
}

void LogoOverlay::Update() {
    if (m_pMethods == nullptr) return;
    // The overlay that must be visible; -1 for none.
    std::int32_t wanted = -1;
    if (m_bVisible && !m_image.bytes.empty()) {
        const auto [entry, isNew] = m_indices.try_emplace({m_anchor, m_nMargin}, -1);
        if (isNew) {
            const OverlayPlace place = PlaceOf(m_anchor, m_nMargin);
            entry->second = m_pMethods->AddOverlayData(m_image.bytes.data(), m_image.width, m_image.height,
                                                       place.relPosX, place.relPosY, place.relOffsetX, place.relOffsetY,
                                                       place.absOffsetX, place.absOffsetY);
        }
        wanted = entry->second;
    }
    if (wanted < 0 && m_nShown < 0) return;
    if (wanted != m_nShown) {
        if (m_nShown >= 0) m_pMethods->SetOverlayVisibility(m_nShown, 0);
        if (wanted >= 0) m_pMethods->SetOverlayVisibility(wanted, 1);
        m_nShown = wanted;
    }
    m_pMethods->PerformRefresh();
}
