// Comparison per pixel, and a picture of both for a failed test.
#include "support/ReferenceCompare.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace reference {
namespace {

Vec Rounded(const Vec& color) {
    const auto round = [](double part) { return std::clamp(std::floor(part + 0.5), 0.0, 255.0); };
    return {round(color.x), round(color.y), round(color.z)};
}

std::string Describe(const Picture& expected, std::size_t pixel, const Vec& found) {
    const auto width = static_cast<std::size_t>(expected.width);
    const Vec& e = expected.colors[pixel];
    std::ostringstream text;
    text << "pixel (" << pixel % width << ", " << pixel / width << ") of object " << expected.objects[pixel] << " is "
         << found.x << " " << found.y << " " << found.z << ", expected " << e.x << " " << e.y << " " << e.z;
    return text.str();
}

void Put(std::ofstream& file, const Vec& color) {
    for (const double part : {color.x, color.y, color.z}) file.put(static_cast<char>(static_cast<int>(part)));
}

}  // namespace

Vec ColorOf(std::uint32_t pixel) {
    return {static_cast<double>(pixel >> 16 & 0xFF), static_cast<double>(pixel >> 8 & 0xFF),
            static_cast<double>(pixel & 0xFF)};
}

Comparison Compare(const Picture& expected, std::span<const std::uint32_t> drawn, int limit) {
    Comparison result;
    for (std::size_t pixel = 0; pixel < drawn.size() && pixel < expected.colors.size(); ++pixel) {
        if (expected.masked[pixel] != 0) {
            ++result.masked;
            continue;
        }
        ++result.compared;
        ++result.comparedOf[expected.objects[pixel]];
        const Vec found = ColorOf(drawn[pixel]);
        const int steps = static_cast<int>(Largest(found - Rounded(expected.colors[pixel])));
        result.largest = std::max(result.largest, steps);
        result.largestExact = std::max(result.largestExact, Largest(found - expected.colors[pixel]));
        if (steps <= limit) continue;
        if (result.wrong++ == 0) result.firstWrong = Describe(expected, pixel, found);
    }
    return result;
}

void WriteBeside(const std::string& path, const Picture& expected, std::span<const std::uint32_t> drawn) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << 3 * expected.width << " " << expected.height << "\n255\n";
    const auto width = static_cast<std::size_t>(expected.width);
    for (std::size_t row = 0; row < static_cast<std::size_t>(expected.height); ++row) {
        for (std::size_t i = row * width; i < (row + 1) * width; ++i)
            Put(file, i < drawn.size() ? ColorOf(drawn[i]) : Vec{});
        for (std::size_t i = row * width; i < (row + 1) * width; ++i) Put(file, Rounded(expected.colors[i]));
        for (std::size_t i = row * width; i < (row + 1) * width; ++i) {
            const Vec d = i < drawn.size() ? ColorOf(drawn[i]) - Rounded(expected.colors[i]) : Vec{};
            const double steps = std::min(255.0, 100.0 * Largest(d));
            Put(file, expected.masked[i] != 0 ? Vec{255.0, 0.0, 0.0} : Vec{steps, steps, steps});
        }
    }
}

}  // namespace reference
