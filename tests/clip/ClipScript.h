// What the tests of the height estimate with a scripted component library share.
#pragma once
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "clip/ClipHeight.h"
#include "support/FakeComponents.h"

inline constexpr std::size_t kBins = 500;

/// A library whose histogram has bins of width 1 with their centres at 100, 101, ..., all of them 0.
struct ScriptedLibrary : FakeComponents {
    ScriptedLibrary() : FakeComponents() {
        binValues.assign(kBins, 0.0f);
        for (std::size_t i = 0; i < kBins; ++i) binCenters.push_back(100.0f + static_cast<float>(i));
    }
};

inline Vertex At(float x, float y, float z, float nz = 1.0f) {
    Vertex vertex;
    vertex.x = x, vertex.y = y, vertex.z = z, vertex.nz = nz;
    return vertex;
}

inline PointSpan SpanOf(const std::vector<Vertex>& vertices) {
    PointSpan span;
    span.count = static_cast<std::int32_t>(vertices.size());
    span.positions = &vertices.front().x;
    span.normals = &vertices.front().nx;
    return span;
}

/// Corners of a box from (-20, -20, 0) to (20, 60, 10): the spot is at (0, 0), and the corners are far from it.
inline std::vector<Vertex> Corners() { return {At(-20, -20, 0), At(20, 60, 10)}; }

/// Corners() and @p count vertices at the spot, at the height @p z.
inline std::vector<Vertex> AtTheSpot(int count, float z = 5.0f) {
    std::vector<Vertex> vertices = Corners();
    for (int i = 0; i < count; ++i) vertices.push_back(At(0, 0, z));
    return vertices;
}

inline KV_ScenePane::ClipHeight Estimate(const std::vector<Vertex>& vertices, std::int32_t step = 1) {
    const PointSpan spans[] = {SpanOf(vertices)};
    return EstimateFromSpans(spans, step);
}
