// An image that the host lays over the scene.
#pragma once
#include <cstdint>
#include <vector>

struct Overlay {
    std::uint32_t m_uTexture = 0;  ///< 0: there is no image, nothing is drawn
    bool m_bHasTexture = true;
    std::int32_t m_nWidth = 0, m_nHeight = 0;          ///< image size, pixels
    float m_fRelPosX = 0.0f, m_fRelPosY = 0.0f;        ///< anchor, fraction of the drawing area
    float m_fRelOffsetX = 0.0f, m_fRelOffsetY = 0.0f;  ///< fraction of the image size
    float m_fAbsOffsetX = 0.0f, m_fAbsOffsetY = 0.0f;  ///< pixels
    std::uint8_t m_bVisible = 1;
    std::vector<std::uint8_t> m_vPixels;  ///< b, g, r, a, top row first, for the next context; empty: all transparent
};
