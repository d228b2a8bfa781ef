// Points and lines of the reference renderer. Drivers round their places differently, so that they are compared by
// presence within one pixel, and by colour where every pixel of a mark has the same one.
#pragma once
#include <cstdint>
#include <span>
#include <string>

#include "support/ReferenceRenderer.h"

namespace reference {

/// A point, with equal ends and a side in pixels, or a line of one pixel's width.
struct Mark {
    Vec from, to;             ///< window with y upward, and depth
    double side = 0.0;        ///< of the square of a point; 0 for a line
    std::vector<Vec> colors;  ///< the ones it may have, 0 to 255; empty where they are not compared
};

/// One point per triangle, at its first corner.
[[nodiscard]] std::vector<Mark> PointMarks(const Scene& scene, double side);
/// The same under the program of shadows.
[[nodiscard]] std::vector<Mark> ShadowedPointMarks(const Scene& scene, double side);
/// The edges of the triangles, flat coloured.
[[nodiscard]] std::vector<Mark> EdgeMarks(const Scene& scene);
/// The bounding boxes of the visible objects.
[[nodiscard]] std::vector<Mark> BoxMarks(const Scene& scene);
/// Marks whose colours are not compared.
[[nodiscard]] std::vector<Mark> WithoutColors(std::vector<Mark> marks);

struct MarkComparison {
    int marks = 0;      ///< looked for in the picture
    int missing = 0;    ///< of these, without a drawn pixel within one pixel
    int drawn = 0;      ///< pixels that are not background
    int foreign = 0;    ///< of these, pixels of another colour than that of the marks within one pixel
    int uncovered = 0;  ///< background more than one pixel inside a point
    std::string first;  ///< the first that is wrong
};

/// @param background  what is drawn where no mark is
/// @param drawn       0xAARRGGBB, row by row, top row first
[[nodiscard]] MarkComparison CompareMarks(const std::vector<Mark>& marks, const Picture& background,
                                          std::span<const std::uint32_t> drawn);

}  // namespace reference
