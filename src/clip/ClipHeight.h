// A height for a horizontal clip plane, from the heights of the vertices near a fixed spot of the data, weighted by how
// much the surface there faces upward. Histogram and plane fit are objects of the component library.
#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "KV_ScenePane/ClipHeight.h"
#include "geometry/Mesh.h"

/// The vertices of one object where they are; nothing is copied.
struct PointSpan {
    std::int32_t count = 0;
    std::int32_t positionStride = sizeof(Vertex);  ///< bytes from one to the next
    std::int32_t normalStride = sizeof(Vertex);
    const float* positions = nullptr;  ///< x, y, z; world frame
    const float* normals = nullptr;
};

/// One span per mesh with vertices, also of hidden ones; valid as long as the vertices are not moved. Of a mesh with
/// more than 2^31 - 1 vertices the first ones.
[[nodiscard]] std::vector<PointSpan> SpansOf(std::span<const std::shared_ptr<Mesh>> meshes);

/// Every how many vertices of each object one is sampled, so that a pass never adds many more than 3.7 million samples.
[[nodiscard]] std::int32_t ClipHeightStep(std::int64_t vertexCount);

/// Takes finite vertices only. Where fewer than 10 lie within 1 unit of the spot the height is the mean of all,
/// weighted by both facing up and facing sideways; otherwise the shape within 12 units of it decides the rule.
/// Up to four passes over the vertices; memory for the points within 12 units of the spot.
/// @param step  of ClipHeightStep(); the box of the data is always that of all vertices
/// @return not found without a finite vertex, when the histogram has no peak, and when it reports a bin width, a peak
///         or a height that cannot be
/// @throws std::runtime_error with the text of the status that an object of the library returned, and when the library
///         has no such object
[[nodiscard]] KV_ScenePane::ClipHeight EstimateFromSpans(std::span<const PointSpan> spans, std::int32_t step);
