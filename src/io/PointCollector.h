// Points on their way from a reader into a PointCloud, block by block, with the checks that all formats have in common.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "KV_ScenePane/PointFiles.h"

/// What a point with a coordinate that is NaN is: a fault, or a hole of an image-like cloud that is omitted.
enum class PointHoles { kRefused, kOmitted };

/// Moves the finite points to the front of both arrays.
/// @param colors  three per point, or none
/// @param before  points in front of these, for the message
/// @return number of points that are left
/// @throws FileReadError "point N: ..." with N from 1 at a coordinate that is not finite, except for omitted holes
[[nodiscard]] std::size_t KeepFinitePoints(std::span<float> xyz, std::span<float> colors, PointHoles holes,
                                           std::uint64_t before);

/// The arrays are allocated once. A reader fills the block and adds it.
class PointCollector {
public:
    static constexpr std::size_t kBlock = 1024;  ///< points
    static constexpr float kLargestColor = 255;  ///< of colours whose scale the values decide

    /// @param capacity   how many points there can be at most, checked against the size of the file by the caller
    /// @param hasColors  whether the points have colours
    PointCollector(std::uint64_t capacity, bool hasColors, PointHoles holes = PointHoles::kRefused);
    [[nodiscard]] bool HasColors() const { return m_bHasColors; }
    /// Three per point of the block.
    [[nodiscard]] float* Xyz() { return m_fXyz.data(); }
    [[nodiscard]] float* Colors() { return m_fColors.data(); }
    /// Appends the first points of the block, with colours from 0 to 1.
    /// @throws FileReadError as KeepFinitePoints()
    void Add(std::size_t points);
    /// The same for colours that are divided by @p scale.
    /// @throws FileReadError for a colour that is not from 0 to @p scale, too
    void AddScaled(std::size_t points, float scale);
    /// The same for colours whose scale only their values show: 0 to 255 when any colour of the file is larger than 1,
    /// 0 to 1 otherwise.
    /// @throws FileReadError for a colour that is not from 0 to 255, too
    void AddUnscaled(std::size_t points);
    /// @throws FileReadError when there are no points
    [[nodiscard]] KV_ScenePane::PointCloud Finish();

private:
    void RequireColors(std::size_t points, float largest) const;

    KV_ScenePane::PointCloud m_cloud;
    bool m_bHasColors;
    PointHoles m_eHoles;
    std::uint64_t m_uSeen = 0;  ///< points of all blocks, with those that were omitted
    float m_fLargest = 0;       ///< of the colours that were added unscaled
    std::array<float, 3 * kBlock> m_fXyz{};
    std::array<float, 3 * kBlock> m_fColors{};
};
