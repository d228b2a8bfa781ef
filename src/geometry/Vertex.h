// The records of a mesh. Vertex and Triangle are public, since hosts pass their own meshes as arrays of them.
#pragma once
#include <cstdint>

#include "KV_ScenePane/MeshBuffers.h"

using KV_ScenePane::MeshBuffers;
using KV_ScenePane::Triangle;
using KV_ScenePane::Vertex;

/// Texture coordinate of one triangle corner.
struct TexCoord {
    float u = 0.0f, v = 0.0f;
};

/// One triangle of an hps file: its corners with their texture coordinates.
struct HpsFace {
    std::int32_t v[3] = {0, 0, 0};  ///< indices into the vertices
    TexCoord uv[3];                 ///< of the corners in order
};
static_assert(sizeof(HpsFace) == 36);
