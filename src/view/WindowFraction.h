// A pixel as a fraction of the drawing area.
#pragma once
#include <array>
#include <cstdint>

/// x and y as fractions of the size, 0 in a direction in which the window has no pixel.
template <class Real>
[[nodiscard]] constexpr std::array<Real, 2> WindowFraction(std::int32_t x, std::int32_t y, std::int32_t width,
                                                           std::int32_t height) {
    const auto fraction = [](std::int32_t at, std::int32_t size) {
        return size < 1 ? Real{0} : static_cast<Real>(at) / static_cast<Real>(size);
    };
    return {fraction(x, width), fraction(y, height)};
}
