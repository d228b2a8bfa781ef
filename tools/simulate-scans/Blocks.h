// Objects with sharp edges: boxes between the planes of a grid, some with a round hole through them.
#pragma once
#include <array>
#include <functional>
#include <vector>

#include "Shapes.h"

namespace simulate {

/// One cell of the grid.
struct Block {
    bool solid = false;
    int holeAxis = -1;     ///< 0 x, 1 y, 2 z; -1 without a hole. The neighbours at both ends of the hole must be empty
    float holeRadius = 0;  ///< millimetres; smaller than half the face
};

/// The object.
struct BlockGrid {
    std::array<std::vector<float>, 3>
        breaks;  ///< planes across x, y and z, ascending, millimetres; n planes bound n - 1 blocks
    std::function<Block(int x, int y, int z)> blockAt;  ///< called for positions inside the grid only
};

/// The surface between solid and empty blocks. An edge at which two blocks meet without a common face has four faces.
[[nodiscard]] TriangleMesh MeshOf(const BlockGrid& grid);

}  // namespace simulate
