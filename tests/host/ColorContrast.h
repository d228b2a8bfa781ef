// How well two colours can be distinguished: the contrast ratio of the W3C's accessibility guidelines (WCAG 2).
#pragma once
#include <QColor>
#include <algorithm>
#include <cmath>

/// Of the light that a screen emits, 0 to 1.
inline double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    const double red = linear(static_cast<double>(color.redF())), green = linear(static_cast<double>(color.greenF())),
                 blue = linear(static_cast<double>(color.blueF()));
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
}

/// 1 for equal colours to 21 for black and white; 3 is legible for graphics, 4.5 for text.
inline double Contrast(const QColor& a, const QColor& b) {
    const double first = Luminance(a), second = Luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}
