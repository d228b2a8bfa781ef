// Measurements for the benchmarks: a wavy surface in front of the sensor with round holes, identical on every run.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

/// A measurement grid in the sensor frame, row by row.
struct BenchScan {
    int width = 0, height = 0;
    std::vector<float> points;                 ///< 3 per pixel, micrometres
    std::vector<float> confidence;             ///< 1 where measured, -1 in holes
    std::vector<std::uint8_t> classification;  ///< 250 in holes
    float trafo[16] = {1, 0, 0, 1000, 0, 1, 0, 2000, 0, 0, 1, 3000, 0, 0, 0, 1};
};

/// About 27 % of the pixels are in holes.
inline BenchScan MakeBenchScan(int width, int height) {
    BenchScan scan;
    scan.width = width;
    scan.height = height;
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    scan.points.resize(3 * pixels);
    scan.confidence.assign(pixels, 1.0f);
    scan.classification.assign(pixels, 1);
    // The surface: waves with noise of 5 micrometres, pixels 40 micrometres apart.
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-5.0f, 5.0f);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            float* p = &scan.points[3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                         static_cast<std::size_t>(x))];
            p[0] = static_cast<float>(x) * 40.0f;
            p[1] = static_cast<float>(y) * 40.0f;
            p[2] = 3000.0f * std::sin(static_cast<float>(x) * 0.01f) * std::cos(static_cast<float>(y) * 0.013f) +
                   noise(random);
        }
    // Discs at random positions, until enough pixels are missing.
    const int radius = width / 40;
    std::size_t missing = 0;
    while (missing < pixels * 27 / 100) {
        const int cx = static_cast<int>(random() % static_cast<unsigned>(width));
        const int cy = static_cast<int>(random() % static_cast<unsigned>(height));
        for (int y = std::max(0, cy - radius); y < std::min(height, cy + radius); ++y)
            for (int x = std::max(0, cx - radius); x < std::min(width, cx + radius); ++x) {
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) >= radius * radius) continue;
                const std::size_t i =
                    static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
                missing += scan.classification[i] == 1;
                scan.classification[i] = 250;
                scan.confidence[i] = -1.0f;
                scan.points[3 * i] = scan.points[3 * i + 1] = scan.points[3 * i + 2] = 0.0f;
            }
    }
    return scan;
}
