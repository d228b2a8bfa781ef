// The box of lines and needles, to which the viewer fits no view by itself.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

/// The box of lines and needles, to which the viewer fits no view.
class MarkBox {
public:
    /// Coordinates that are not finite do not count.
    void Merge(const float* point) {
        if (!std::all_of(point, point + 3, [](float value) { return std::isfinite(value); })) return;
        for (std::size_t i = 0; i < 3; ++i) {
            m_corners[i] = std::min(m_corners[i], point[i]);
            m_corners[3 + i] = std::max(m_corners[3 + i], point[i]);
        }
    }
    [[nodiscard]] bool IsEmpty() const { return m_corners[0] > m_corners[3]; }
    [[nodiscard]] bool HasExtent() const {
        return !IsEmpty() && !std::equal(m_corners.begin(), m_corners.begin() + 3, m_corners.begin() + 3);
    }
    /// Two points: the lower and the upper corner. A box without any extent is widened by one unit to each side; far
    /// out by several float steps, which are larger than a unit there.
    [[nodiscard]] std::vector<float> Corners() const {
        std::vector<float> corners(m_corners.begin(), m_corners.end());
        if (std::equal(corners.begin(), corners.begin() + 3, corners.begin() + 3)) {
            const float largest = std::max({std::abs(corners[0]), std::abs(corners[1]), std::abs(corners[2])});
            const float margin = std::max(1.0f, largest * 1e-6f);
            for (std::size_t i = 0; i < 3; ++i) {
                corners[i] = std::max(corners[i] - margin, -kMax);
                corners[3 + i] = std::min(corners[3 + i] + margin, kMax);
            }
        }
        return corners;
    }

private:
    static constexpr float kMax = std::numeric_limits<float>::max();
    std::array<float, 6> m_corners{kMax, kMax, kMax, -kMax, -kMax, -kMax};
};
