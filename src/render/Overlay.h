// An image that the host lays over the scene.
#pragma once
#include <cstdint>
#include <vector>

/// Its upper left corner is at anchor + relative offset + absolute offset, y downward from the top of the drawing area.
/// It is drawn in its own size, one image pixel per window pixel.
struct Overlay {
    std::uint32_t m_uTexture = 0;  ///< in the current context of the control; 0: no image, nothing is drawn
    bool m_bHasTexture = true;
    std::int32_t m_nWidth = 0, m_nHeight = 0;          ///< image size, pixels
    float m_fRelPosX = 0.0f, m_fRelPosY = 0.0f;        ///< anchor, fraction of the drawing area
    float m_fRelOffsetX = 0.0f, m_fRelOffsetY = 0.0f;  ///< fraction of the image size
    float m_fAbsOffsetX = 0.0f, m_fAbsOffsetY = 0.0f;  ///< pixels
    std::uint8_t m_bVisible = 1;
    /// Bytes b, g, r, a, top row first; kept to upload the texture again in a new context. Empty: all transparent.
    std::vector<std::uint8_t> m_vPixels;
};
