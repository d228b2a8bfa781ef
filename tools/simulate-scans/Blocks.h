// Objects with sharp edges: boxes in a grid of planes, some with a round hole through them.
#pragma once
#include <array>
#include <functional>
#include <vector>

#include "Shapes.h"

namespace simulate {

struct Block {
    bool solid = false;
    int holeAxis = -1;  ///< 0 x, 1 y, 2 z; -1 without a hole. Both ends of the hole must be in the open
    float holeRadius = 0;
};

struct BlockGrid {
    std::array<std::vector<float>, 3> breaks;  ///< planes along x, y and z, ascending; n planes bound n - 1 blocks
    std::function<Block(int x, int y, int z)> blockAt;
};

/// The surface between solid and empty. Blocks that meet in an edge only leave that edge with four faces.
[[nodiscard]] TriangleMesh MeshOf(const BlockGrid& grid);

}  // namespace simulate
