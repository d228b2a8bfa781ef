// A freehand session and its slow reference under the same input, for tests that compare them.
#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <utility>

#include "cut/CutReference.h"
#include "cut/CutSession.h"

struct LassoTints {
    LassoTint fill{255, 0.5f}, outside{0, 0.0f};
    std::uint32_t packedFill = 0x7F0000FF, packedOutside = 0;  ///< the same as pixels
};

/// Half transparent red inside and nothing outside, swapped, both alike, and an outside like the lines.
inline std::vector<LassoTints> AllTints() {
    return {{},
            {{0, 0.0f}, {255, 0.5f}, 0, 0x7F0000FF},
            {{0x804020, 1.0f}, {0x804020, 1.0f}, 0xFF804020, 0xFF804020},
            {{0x0000FE, 0.25f}, {0xFFFF00, 1.0f}, 0x3F0000FE, 0xFFFFFF00}};
}

/// A session with its reference. Input goes to both, by pixels and a fraction of a pixel.
struct LassoPair {
    LassoPair(std::unique_ptr<CutMaskTextures> textures, int startX, int startY, const LassoTints& tints,
              std::uint32_t program)
        : width(textures->m_nWidth),
          height(textures->m_nHeight),
          session(std::move(textures), {startX, startY}, {0xFFFF00, 1.0f}, tints.fill, tints.outside, program),
          reference(width, height, {startX, startY}, 0xFFFFFF00, tints.packedFill, tints.packedOutside) {}

    void Add(double x, double y) {
        session.AddPoint(X(x), Y(y));
        reference.AddPoint(X(x), Y(y));
    }
    void Preview(double x, double y) {
        session.SetPreviewPoint(X(x), Y(y));
        reference.SetPreviewPoint(X(x), Y(y));
    }
    /// A drag, a click, a rubber band or a point on the border.
    template <class Random>
    void DoSomething(Random& random) {
        const auto upTo = [&random](int end) { return std::uniform_int_distribution<int>(-1, end)(random); };
        switch (std::uniform_int_distribution<int>(0, 5)(random)) {
            case 0:
            case 1: {  // pixel by pixel
                int x = reference.last.first, y = reference.last.second;
                for (int i = 0; i < 12; ++i) Add(x += upTo(1), y += upTo(1));
                break;
            }
            case 2:
                Add(upTo(width), upTo(height));
                break;
            case 3:
                Preview(upTo(width), upTo(height));
                break;
            case 4:  // on one line with the point before
                Add(reference.last.first, upTo(height));
                break;
            default:
                Add(upTo(width) < width / 2 ? 1 : width - 2, upTo(height) < height / 2 ? 1 : height - 2);
        }
    }

    /// A little inside the pixel, so that the product truncates to it.
    [[nodiscard]] float X(double x) const { return static_cast<float>((x + 0.25) / width); }
    [[nodiscard]] float Y(double y) const { return static_cast<float>((y + 0.25) / height); }

    int width, height;
    CutSession session;
    cut_reference::Session reference;
};

inline std::unique_ptr<CutMaskTextures> TexturesOfSize(int width, int height) {
    auto textures = std::make_unique<CutMaskTextures>();
    textures->m_nWidth = width;
    textures->m_nHeight = height;
    return textures;
}

inline void ExpectSameMask(const LassoPair& pair, int width, int height) {
    const MaskBits mask = pair.session.CreateMaskBits(width, height);
    const cut_reference::Mask expected = pair.reference.CreateMaskBits(width, height);
    ASSERT_EQ(mask.m_vBits.m_uCount, expected.bits.size());
    ASSERT_EQ(mask.m_vBits.m_vWords.size(), (expected.bits.size() + 31) / 32);
    std::vector<std::uint32_t> words(mask.m_vBits.m_vWords.size());
    for (std::size_t i = 0; i < expected.bits.size(); ++i) words[i / 32] |= (expected.bits[i] ? 1u : 0u) << i % 32;
    EXPECT_EQ(mask.m_vBits.m_vWords, words) << width << " x " << height;
    EXPECT_EQ(mask.m_rcBounds, expected.bounds) << width << " x " << height;
}
